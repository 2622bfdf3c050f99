// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"
#include "tests/tools/OwnCopy.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <chrono>
#include <condition_variable>
#include <mutex>

// What a reader saw of one event, copied, since the event lives for the call only.
struct SeenEvent
{
    quint32 type = 0;
    int channel = 0;
    quint32 length = 0;
    QByteArray shortData; // four bytes
    QByteArray longData;  // length bytes

    bool operator==(const SeenEvent &) const = default;
};

inline SeenEvent seenEvent(const tagMPEVENT &event)
{
    SeenEvent seen{event.eventType, event.channel, event.length,
                   QByteArray(reinterpret_cast<const char *>(event.shortData), 4), QByteArray()};
    if ((event.eventType & MPEventLongMask) != 0) {
        seen.longData = QByteArray(reinterpret_cast<const char *>(event.longData),
                                   static_cast<qsizetype>(event.length));
    }
    return seen;
}

// Collects events, and can be held so that it lags behind.
class CollectingReader : public TMIDIReaderRefConInterface
{
public:
    void midiIn(tagMPEVENT *event) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        ++m_entered;
        m_changed.notify_all();
        m_changed.wait(lock, [&] { return !m_isHeld; });
        m_events.append(seenEvent(*event));
        m_changed.notify_all();
    }

    void hold(bool isHeld)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isHeld = isHeld;
        m_changed.notify_all();
    }
    // True once the reader has been entered that often.
    bool waitEntered(int count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, limit, [&] { return m_entered >= count; });
    }
    // True once that many events have been delivered.
    bool waitCount(qsizetype count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, limit, [&] { return m_events.size() >= count; });
    }
    QList<SeenEvent> events() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return ownCopy(m_events);
    }
    void clear()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.clear();
        m_entered = 0;
    }

private:
    static constexpr std::chrono::seconds limit{30};

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QList<SeenEvent> m_events;
    int m_entered = 0;
    bool m_isHeld = false;
};

// A transport without a platform: the test is the platform's callback.
class BareTransport : public TMIDITransport
{
public:
    ~BareTransport() override { BareTransport::closeInput(); }

    bool openInput(int, TMIDIReaderRefConInterface *reader, int) override
    {
        setReader(reader);
        return startPusherThread();
    }
    void closeInput() override { stopPusherThread(); }
    bool openOutput(int) override { return true; }
    void closeOutput() override {}
    bool outputData(int, const unsigned char *, unsigned char) override
    {
        return countedOutput(m_isSending);
    }

    void feed(const QByteArray &run) { read(static_cast<int>(run.size()), run.constData()); }
    void setSending(bool isSending) { m_isSending = isSending; }

    using TMIDITransport::pushEvent;
    using TMIDITransport::pushLongEvent;
    using TMIDITransport::readLong;
    using TMIDITransport::readShort;
    using TMIDITransport::startPusherThread;
    using TMIDITransport::stopPusherThread;

private:
    bool m_isSending = true;
};
