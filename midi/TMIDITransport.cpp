// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TMIDITransport.h"

#include "midi/NSUtilities.h"
#include "midi/TMIDIEventPushThread.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <cstring>
#include <mutex>

// The parser. What is under construction decides what a byte means:
//
//   byte                       a message is open               idle
//   0xF8 to 0xFF               dropped, the message goes on    readShort
//   0xF7                       ends the message                readLong: opens a continuation
//   0xF0                       ends it, looked at again        readLong: opens a message
//   0xF1 to 0xF6               ends it, looked at again        dropped
//   0x80 to 0xEF               ends it, looked at again        readShort
//   data                       readLong: goes on               dropped up to the next status
//
// An open message takes the rest of its run, or the part through the last 0xF7 in it, without
// looking at the bytes between. A message that grew too long counts as open until it ends, but
// nothing of it is kept.

namespace
{

constexpr unsigned char SysExStart = 0xF0;
constexpr unsigned char SysExEnd = 0xF7;
constexpr unsigned char FirstRealTime = 0xF8;
constexpr unsigned char ActiveSensing = 0xFE;
constexpr int RecordBytes = sizeof(tagMPEVENT);

constexpr int high_lengths[16] = {1, 1, 1, 1, 1, 1, 1, 1, 3, 3, 3, 3, 2, 2, 3, 1};
constexpr int low_lengths[16] = {1, 1, 3, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

// Event type by the high nibble of a channel status, from 0x8 upward.
constexpr MPEventType mpevent_short[7] = {
    MPEventNoteOff,       MPEventNoteOn,          MPEventPolyPressure, MPEventControlChange,
    MPEventProgramChange, MPEventChannelPressure, MPEventPitchBend};

constexpr bool isStatus(unsigned char byte)
{
    return (byte & 0x80) != 0;
}

QByteArray *heldBytes(const tagMPEVENT &event)
{
    return reinterpret_cast<QByteArray *>(event.longData);
}

} // namespace

std::atomic<quint64> TMIDITransport::s_outputFailures{0};

TMIDITransport::TMIDITransport() = default;

TMIDITransport::~TMIDITransport()
{
    stopPusherThread();
    discardConstruction();
}

quint64 TMIDITransport::outputFailureCount()
{
    return s_outputFailures.load();
}

bool TMIDITransport::countedOutput(bool ok)
{
    if (!ok) {
        ++s_outputFailures;
    }
    return ok;
}

int TMIDITransport::midi_msg_length(unsigned char status)
{
    return status < 0xF0 ? high_lengths[status >> 4] : low_lengths[status & 0x0F];
}

int TMIDITransport::read(int length, const void *bytes)
{
    const auto *place = static_cast<const unsigned char *>(bytes);
    while (length > 0) {
        const unsigned char byte = *place;
        int consumed = 1;
        if (m_event.eventType != MPEventNone) {
            if (byte >= FirstRealTime) {
                consumed = 1;
            } else if (isStatus(byte)) {
                consumed = pushLongEvent(place);
            } else {
                consumed = readLong(length, place);
            }
        } else if (m_discarding && byte >= FirstRealTime) {
            consumed = 1;
        } else if (m_discarding && isStatus(byte)) {
            m_discarding = false;
            consumed = byte == SysExEnd ? 1 : 0;
        } else if (!isStatus(byte)) {
            // Without a status of their own they mean nothing: there is no running status.
            consumed = static_cast<int>(std::find_if(place, place + length, isStatus) - place);
        } else if (byte == SysExStart || byte == SysExEnd) {
            consumed = readLong(length, place);
        } else if (byte < SysExStart || byte >= FirstRealTime) {
            consumed = readShort(length, place);
        }
        place += consumed;
        length -= consumed;
    }
    return 0;
}

int TMIDITransport::readShort(int length, const unsigned char *bytes)
{
    const unsigned char status = bytes[0];
    const int messageLength = midi_msg_length(status);
    if (messageLength > length) {
        // Cut by the end of the run.
        return length;
    }
    if (status >= SysExStart && status != ActiveSensing) {
        return messageLength;
    }
    m_event.length = 0;
    m_event.longData = nullptr;
    std::fill(std::begin(m_event.shortData), std::end(m_event.shortData),
              static_cast<unsigned char>(0));
    if (status == ActiveSensing) {
        m_event.eventType = MPEventActiveSensing;
        m_event.channel = 0;
        // The second of the four: that is where its receiver looks for it.
        m_event.shortData[1] = ActiveSensing;
    } else {
        m_event.eventType = mpevent_short[(status >> 4) - 8];
        m_event.channel = status & 0x0F;
        m_event.shortData[0] = bytes[1];
        m_event.shortData[1] = messageLength > 2 ? bytes[2] : 0;
    }
    pushEvent();
    return messageLength;
}

int TMIDITransport::readLong(int length, const unsigned char *bytes)
{
    const bool isNew = m_event.eventType == MPEventNone && isStatus(bytes[0]);
    if (!isNew && m_event.eventType == MPEventNone) {
        return length;
    }
    int taken = length;
    bool isComplete = false;
    // A lone status byte opens a message with no end in sight, even if it is an 0xF7.
    if (!isNew || length > 1) {
        // From the end of the run: of two whole messages in one run one event is made.
        const int first = isNew ? 1 : 0;
        for (int i = length - 1; i >= first && !isComplete; --i) {
            if (bytes[i] == SysExEnd) {
                taken = i + 1;
                isComplete = true;
            }
        }
    }
    if (isNew) {
        m_event.longData = reinterpret_cast<unsigned char *>(new QByteArray);
        m_event.eventType = bytes[0] == SysExStart ? MPEventSysEx : MPEventSysExContinuation;
        m_event.channel = 0;
        std::fill(std::begin(m_event.shortData), std::end(m_event.shortData),
                  static_cast<unsigned char>(0));
    }
    QByteArray *held = heldBytes(m_event);
    if (taken > MaximumSysExBytes - held->size()) {
        discardConstruction();
        m_discarding = !isComplete;
        return taken;
    }
    held->append(reinterpret_cast<const char *>(bytes), taken);
    if (isComplete) {
        m_event.length = static_cast<std::uint32_t>(held->size() - 1);
        pushEvent();
    }
    return taken;
}

int TMIDITransport::pushLongEvent(const unsigned char *byte)
{
    readLong(1, &SysExEnd);
    return *byte == SysExEnd ? 1 : 0;
}

void TMIDITransport::pushEvent()
{
    bool isWritten = false;
    if (m_pusherThread != nullptr) {
        CircularBuffer &ring = m_pusherThread->ring();
        {
            const std::lock_guard<CircularBuffer::AnyMutex> lock(ring.mutex);
            // Room for two, so that the stop record always has its place.
            if (ring.space() >= 2 * RecordBytes) {
                ring.write(&m_event, RecordBytes);
                isWritten = true;
            }
        }
        m_pusherThread->wake();
    }
    if (isWritten) {
        // The bytes are the ring's now.
        m_event.longData = nullptr;
        m_event.eventType = MPEventNone;
    } else {
        discardConstruction();
    }
}

int TMIDITransport::inputRoom() const
{
    if (m_pusherThread == nullptr) {
        return 0;
    }
    CircularBuffer &ring = m_pusherThread->ring();
    const std::lock_guard<CircularBuffer::AnyMutex> lock(ring.mutex);
    // The last place is the stop record's.
    return std::max(0, ring.space() / RecordBytes - 1);
}

void TMIDITransport::discardConstruction()
{
    if ((m_event.eventType & MPEventLongMask) != 0) {
        delete heldBytes(m_event);
    }
    m_event.longData = nullptr;
    m_event.eventType = MPEventNone;
}

void TMIDITransport::doEvent(tagMPEVENT *event, bool keepsLongData)
{
    std::unique_ptr<QByteArray> holder;
    if ((event->eventType & MPEventLongMask) != 0 && !keepsLongData) {
        holder.reset(heldBytes(*event));
        // Behind the leading 0xF0 or 0xF7.
        event->longData = reinterpret_cast<unsigned char *>(holder->data()) + 1;
    }
    if (m_reader != nullptr) {
        m_reader->midiIn(event);
    }
}

void TMIDITransport::setReader(TMIDIReaderRefConInterface *reader)
{
    m_reader = reader;
}

bool TMIDITransport::startPusherThread()
{
    if (m_pusherThread == nullptr) {
        m_pusherThread = new TMIDIEventPushThread(this);
        m_pusherThread->start(QThread::TimeCriticalPriority);
    }
    return true;
}

void TMIDITransport::stopPusherThread()
{
    if (m_pusherThread == nullptr) {
        return;
    }
    CircularBuffer &ring = m_pusherThread->ring();
    {
        std::unique_lock<CircularBuffer::AnyMutex> lock(ring.mutex);
        while (ring.space() < RecordBytes) {
            lock.unlock();
            NS_Utilities::milisecondDelay(1);
            lock.lock();
        }
        const tagMPEVENT stopRecord;
        ring.write(&stopRecord, RecordBytes);
    }
    m_pusherThread->wake();
    m_pusherThread->wait();
    joinedThread(m_pusherThread);
    delete m_pusherThread;
    m_pusherThread = nullptr;
}
