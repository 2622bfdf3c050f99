// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/MPEvent.h"
#include "midi/TMIDIReaderRefConInterface.h"

#include <QtCore/QObject>

#include <atomic>
#include <memory>

class TMIDIEventPushThread;

// One open MIDI port. The five port operations are the platform binding's; the parser from raw
// bytes to events, and the thread that delivers the events, are here.
//
// Owner: TAppMIDIIn or TAppMIDIOut. Threads: read() and what it calls belong to the platform's
// callback, one thread at a time; the open and close operations to the GUI thread; outputData() to
// whoever sends, one at a time (ComuController's port mutex).
//
// A binding's destructor must call closeInput() and closeOutput() itself: when this class's
// destructor runs, the binding's part is gone and must no longer be called back.
class TMIDITransport : public QObject
{
    Q_OBJECT

public:
    // Longest system exclusive message that is collected, its 0xF0 included. The protocol's longest
    // has 39 bytes; a sender that never ends its message must not eat the machine's memory. What
    // exceeds it is dropped whole, and parsing goes on at the next status byte.
    static constexpr int MaximumSysExBytes = 1 << 20;
    // 960 records.
    static constexpr int RingBytes = 69120;

    TMIDITransport();
    ~TMIDITransport() override;

    // Ports are numbered from 1, in the order of the platform's list. False if the platform has no
    // such port or refuses; nothing is open then. filterType is carried along and unused.
    virtual bool openInput(int port, TMIDIReaderRefConInterface *reader, int filterType) = 0;
    virtual void closeInput() = 0;
    virtual bool openOutput(int port) = 0;
    virtual void closeOutput() = 0;
    // Sends status (0: none) followed by length bytes, in chunks of at most OutputChunkBytes with a
    // pause of OutputChunkPauseMs between them. False if the port is not open, there is nothing to
    // send, or the service refuses, cuts, or has no room; each such refusal is counted.
    virtual bool outputData(int length, const unsigned char *data, unsigned char status) = 0;

    static constexpr int OutputChunkBytes = 4096;
    static constexpr int OutputChunkPauseMs = 100;

    // Whether the port that is open has its other side. What comes after Connected means the more,
    // so that the worst of several is the largest. Connected also if no port is open, and for a
    // binding that cannot tell.
    enum class Link {
        Connected,
        PortAway,    // it may come back, and is taken up again if it does
        ServiceGone, // nothing comes back before somebody lists the ports of another one
    };
    virtual Link link() const { return Link::Connected; }

    // Says that what is still on its way out is of no worth any more: closing does not wait until
    // it is out, and waits for a service that does not answer for AbandonLimitMs at most, all open
    // ports together.
    virtual void abandon() {}

    static constexpr int AbandonLimitMs = 700;

    // Parses one run of raw bytes, of any content and length; a length below 1 is nothing.
    // Always returns 0. Never blocks but for the ring's mutex.
    virtual int read(int length, const void *bytes);

    // How many events the ring behind the open input takes before it drops one; 0 without an open
    // input. For a binding that can hold back what comes in. Thread: that of read().
    int inputRoom() const;

    // Messages that a service refused since the program started, over all transports.
    // Thread: any.
    static quint64 outputFailureCount();

    // Whole length of the short message that begins with this status byte.
    static int midi_msg_length(unsigned char status);

protected:
    int readShort(int length, const unsigned char *bytes);
    int readLong(int length, const unsigned char *bytes);
    int pushLongEvent(const unsigned char *byte);
    void pushEvent();
    bool startPusherThread();
    // Returns when every event in delivery has finished. Not to be called on the pusher thread, nor
    // with a lock held that an event's receiver takes.
    void stopPusherThread();
    void setReader(TMIDIReaderRefConInterface *reader);

    // For bindings: returns ok, and counts it if it is false.
    static bool countedOutput(bool ok);

private:
    friend class TMIDIEventPushThread;

    void doEvent(tagMPEVENT *event, bool keepsLongData);
    void discardConstruction();

    TMIDIReaderRefConInterface *m_reader = nullptr;
    TMIDIEventPushThread *m_pusherThread = nullptr;
    // Under construction; MPEventNone when idle. Its longData then points at a heap QByteArray.
    tagMPEVENT m_event;
    bool m_discarding = false; // an over-long message is being dropped

    static std::atomic<quint64> s_outputFailures;
};
