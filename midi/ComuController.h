// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "midi/TMIDITransport.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

struct tagMPEVENT;
class MessageProcessor;
class SysExParamChangeAddressTransTable;
class TAppMIDIIn;
class TAppMIDIOut;
class TUniMIDIPortAccessor;

// Mode of midiOutDispatch: bit 0 sends; nothing else is in use.
// NOLINTNEXTLINE(bugprone-reserved-identifier): historical spelling
enum _MPASYNC_MODE : int { MPAsyncNone = 0, MPAsyncSend = 1 };

// Owns the open MIDI ports, by port number, and guards the output path so that a port can be closed
// while another thread sends.
//
// Owner: RemoteMemAPI, for its whole life. Threads: midiOutDispatch may come on any; everything
// else belongs to the GUI thread. Closing an input waits for the event that it is delivering: never
// close one with memoryMutex held.
class ComuController : public QObject
{
    Q_OBJECT

public:
    // sysExTable is not owned and outlives this object.
    explicit ComuController(SysExParamChangeAddressTransTable *sysExTable);
    ~ComuController() override;

    // midiOutDispatch() for each of count events in turn, up to the first failure. All that have
    // the same port are sent in one go: no other thread's event comes between them.
    std::uint32_t midiOutDispatchAll(const tagMPEVENT *events, std::size_t count,
                                     _MPASYNC_MODE mode);

    // Not owned by the caller.
    // Made when it is first needed, since making it asks the platform's service for its ports, and
    // who only works on files has no use for that.
    TUniMIDIPortAccessor *portAccessor();

    // Running number of input events over all ports. Two pusher threads may collide on it; nothing
    // depends on the number.
    static std::atomic<std::uint64_t> s_timeCounter;

public Q_SLOTS:
    // Sends one event on the open output port event.portID. MidiSuccess or MidiFailure; a send that
    // the platform refused counts as success here, and is found in
    // TMIDITransport::outputFailureCount().
    std::uint32_t midiOutDispatch(const tagMPEVENT &event, _MPASYNC_MODE mode);
    // Opens a port, or finds it open. isOutput: 0 input, 1 output. port: 1-based; 0 is none and
    // gives false. processor: who gets the events of an input; ignored if the port is open already.
    bool requestPort(int isOutput, int port, int filterType, MessageProcessor *processor);
    void releasePort(int isOutput, int port);
    bool isPortActive(int isOutput, int port);
    bool setMessageProcessorAndOpenPort(MessageProcessor *processor);
    // Encoded names of the platform's ports, read anew.
    QStringList getInputPortList();
    QStringList getOutputPortList();
    // Whether the lists read last are empty because the platform's service doesn't answer.
    bool isServiceSilent() const;
    void CloseAllOpendPortAndDeleteAllTransporters(); // historical spelling
    // The worst of all open ports.
    TMIDITransport::Link portLink();
    // TMIDITransport::abandon() for all open ports, for one who closes them after a failure.
    void abandonPorts();

private:
    std::uint32_t dispatchToOnePort(const tagMPEVENT *events, std::size_t count);

    std::unique_ptr<TUniMIDIPortAccessor> m_portAccessor; // null until first needed
    QMap<int, TAppMIDIIn *> m_midiInTransporters;         // owned; GUI thread only
    QMap<int, TAppMIDIOut *> m_midiOutTransporters;       // owned; guarded by m_mapMutex
    // How often the map of outputs has changed; changed under m_mapMutex.
    std::atomic<std::uint32_t> m_outputChanges{0};
    // One for each output port ever opened; guarded by m_mapMutex. Shared with the senders that
    // wait for it, so that closing everything cannot take it from under them.
    QMap<int, std::shared_ptr<RecursiveMutex>> m_midiOutMutexes;
    std::unique_ptr<RecursiveMutex> m_mapMutex;
    std::unique_ptr<RecursiveMutex> m_spareMutex; // takes part in nothing; kept with the object
    [[maybe_unused]] SysExParamChangeAddressTransTable *m_sysExTable; // kept for its users
    MessageProcessor *m_messageProcessor = nullptr;
};
