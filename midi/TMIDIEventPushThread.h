// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "midi/CircularBuffer.h"

#include <QtCore/QThread>

class TMIDITransport;

// Takes events out of its ring and hands them to the transport's reader, so that the platform's
// callback never waits for the application. Owner: TMIDITransport. One per open input port,
// started with QThread::TimeCriticalPriority.
class TMIDIEventPushThread : public QThread
{
    Q_OBJECT

public:
    explicit TMIDIEventPushThread(TMIDITransport *transport);
    ~TMIDIEventPushThread() override;

    CircularBuffer &ring() { return m_ring; }
    // Thread: any, without the ring's mutex.
    void wake() { m_condition.notify_all(); }

protected:
    void run() override;

private:
    TMIDITransport *m_transport;
    WaitCondition m_condition;
    CircularBuffer m_ring;
};
