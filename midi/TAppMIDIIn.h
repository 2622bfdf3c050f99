// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "midi/TMIDIReaderRefConInterface.h"
#include "midi/TMIDITransport.h"

#include <memory>
#include <vector>

class MessageProcessor;

// A filter that an input can carry. No event is held back by one: the list is kept for its users'
// sake, and the interface is empty.
class IMPEventFilter
{
public:
    virtual ~IMPEventFilter() = default;
};

// The application's end of an open input port: stamps each event and hands it to the processor.
// Owner: ComuController. Destroying it waits until an event in delivery has finished.
class TAppMIDIIn : public TMIDIReaderRefConInterface
{
public:
    // processor is not owned and outlives this object; null drops every event.
    explicit TAppMIDIIn(MessageProcessor *processor);
    ~TAppMIDIIn() override;

    // port: 1-based; false if the binding has no such port.
    bool openPort(int port, int filterType);
    int getPortID() const { return m_portID; }
    // As TMIDITransport's; Connected and nothing without an open port. Thread: GUI.
    TMIDITransport::Link link() const;
    void abandon();

    void attachEventFilter(IMPEventFilter *filter); // not owned; once at most
    void detachEventFilter(IMPEventFilter *filter);

    // Thread: the transport's pusher thread.
    void midiIn(tagMPEVENT *event) override;

private:
    int m_portNumber = 0;
    std::unique_ptr<TMIDITransport> m_transport;
    RecursiveMutex m_mutex;
    std::vector<IMPEventFilter *> m_filters; // guarded by m_mutex
    MessageProcessor *m_processor;
    int m_filterType = 0;
    int m_portID = 0;
};
