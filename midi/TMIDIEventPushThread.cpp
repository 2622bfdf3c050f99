// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TMIDIEventPushThread.h"

#include "midi/TMIDITransport.h"

#include <QtCore/QByteArray>

#include <mutex>

namespace
{
constexpr int RecordBytes = sizeof(tagMPEVENT);
}

TMIDIEventPushThread::TMIDIEventPushThread(TMIDITransport *transport)
    : m_transport(transport)
    , m_ring(TMIDITransport::RingBytes, false)
{
}

TMIDIEventPushThread::~TMIDIEventPushThread()
{
    // What came behind the stop record was never delivered, but its bytes are still ours.
    while (m_ring.avail() >= RecordBytes) {
        tagMPEVENT event;
        m_ring.read(&event, RecordBytes);
        if ((event.eventType & MPEventLongMask) != 0) {
            delete reinterpret_cast<QByteArray *>(event.longData);
        }
    }
}

void TMIDIEventPushThread::run()
{
    std::unique_lock<CircularBuffer::AnyMutex> lock(m_ring.mutex);
    for (;;) {
        // The count is asked first, since a wake-up may find nothing and an empty read is a fault
        // to the ring.
        while (m_ring.avail() >= RecordBytes) {
            tagMPEVENT event;
            m_ring.read(&event, RecordBytes);
            lock.unlock();
            if (event.eventType == MPEventNone) {
                endingThread(this);
                return;
            }
            m_transport->doEvent(&event, false);
            lock.lock();
        }
        m_condition.wait(lock);
    }
}
