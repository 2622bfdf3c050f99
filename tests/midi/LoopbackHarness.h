// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/MPEvent.h"
#include "midi/loopback/LoopbackHub.h"
#include "tests/tools/OwnCopy.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

// A device on the loopback's cable that keeps what it receives. Thread: any.
class LoopbackDeviceStub
{
public:
    using Message = std::pair<int, QByteArray>;

    explicit LoopbackDeviceStub(const QString &name, int ports = 5)
        : m_handle(LoopbackHub::instance().plug(
              name, ports, [this](int port, const QByteArray &bytes) { take(port, bytes); }))
    {
    }
    ~LoopbackDeviceStub() { unplug(); }

    void unplug() { LoopbackHub::instance().unplug(m_handle.exchange(0)); }
    void send(int port, const QByteArray &bytes)
    {
        LoopbackHub::instance().send(m_handle, port, bytes);
    }
    int handle() const { return m_handle; }

    // What the device does with a message besides keeping it, from the next one on.
    void setAnswer(LoopbackHub::Receiver answer)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_answer = std::move(answer);
    }

    QList<Message> messages() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return ownCopy(m_messages);
    }
    bool waitCount(qsizetype count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30),
                                  [&] { return m_messages.size() >= count; });
    }

private:
    void take(int port, const QByteArray &bytes)
    {
        LoopbackHub::Receiver answer;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_messages.append({port, bytes});
            m_changed.notify_all();
            answer = m_answer;
        }
        if (answer) {
            answer(port, bytes);
        }
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QList<Message> m_messages;
    LoopbackHub::Receiver m_answer;
    std::atomic<int> m_handle; // last: the first message may come at once
};

inline tagMPEVENT shortOutput(std::uint32_t type, int port, int channel, const char *data)
{
    tagMPEVENT event;
    event.eventType = type;
    event.portID = port;
    event.channel = channel;
    const QByteArray bytes = QByteArray::fromHex(data);
    for (qsizetype i = 0; i < bytes.size() && i < 4; ++i) {
        event.shortData[i] = static_cast<unsigned char>(bytes.at(i));
    }
    return event;
}

// bytes outlives the event.
inline tagMPEVENT longOutput(std::uint32_t type, int port, QByteArray &bytes)
{
    tagMPEVENT event;
    event.eventType = type;
    event.portID = port;
    event.length = static_cast<std::uint32_t>(bytes.size());
    event.longData = reinterpret_cast<unsigned char *>(bytes.data());
    return event;
}
