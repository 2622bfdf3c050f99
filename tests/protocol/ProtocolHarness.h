// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "memory/RemoteMemAPI.h"
#include "midi/MPEvent.h"
#include "midi/loopback/LoopbackHub.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QLoggingCategory>

#include <chrono>
#include <cstring>
#include <memory>

// Bytes as they are written in a table: "43 10 7F 14".
inline QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// The device's messages, laid out here by hand, as the editor holds them: 0x43 to 0xF7.
namespace DeviceSide
{

inline QByteArray bulk(const QByteArray &address, const QByteArray &data = {})
{
    QByteArray body;
    body.append('\0').append(static_cast<char>(data.size())).append(address).append(data);
    int sum = 0;
    for (const char byte : std::as_const(body)) {
        sum += byte & 0x7F;
    }
    return hex("43 00 7F 15") + body + static_cast<char>((128 - sum % 128) % 128) + '\xF7';
}

inline QByteArray address(int high, int mid, int low)
{
    return QByteArray(1, static_cast<char>(high)) + static_cast<char>(mid) + static_cast<char>(low);
}

constexpr int Stored = 0x60;
constexpr int EditBuffer = 0x6F;

inline QByteArray header(int type, int number)
{
    return bulk(address(0x0E, type, number));
}

inline QByteArray footer(int type, int number)
{
    return bulk(address(0x0F, type, number));
}

inline QByteArray templateBlock(const QByteArray &name, const QByteArray &vstiName, int controlType)
{
    return bulk(hex("01 00 00"), name.leftJustified(13, ' ') + vstiName.leftJustified(12, ' ') +
                                     static_cast<char>(controlType) + '\0');
}

inline QByteArray knobBlock(int knob, const QByteArray &id, const QByteArray &name, int cc,
                            int format)
{
    return bulk(address(0x01, 0x10 + knob, 0x00),
                id.leftJustified(9, ' ') + name.leftJustified(15, ' ') + static_cast<char>(cc) +
                    static_cast<char>(format));
}

// A whole dump, header to footer, with content told apart by number and knob.
inline QList<QByteArray> dump(int type, int number)
{
    const QByteArray tag = QByteArray::number(type) + '-' + QByteArray::number(number);
    QList<QByteArray> messages{header(type, number),
                               templateBlock("T" + tag, "V" + tag, number % 2)};
    for (int knob = 0; knob < 12; ++knob) {
        messages.append(knobBlock(knob, "20414" + QByteArray::number(1000 + number + knob),
                                  "K" + tag + '-' + QByteArray::number(knob), (number + knob) % 128,
                                  knob % 2));
    }
    messages.append(footer(type, number));
    return messages;
}

inline QByteArray change(int mid, int low, const QByteArray &data)
{
    return hex("43 10 7F 15") + address(0x01, mid, low) + data + '\xF7';
}

inline QByteArray change(int mid, int low, int value)
{
    return change(mid, low, QByteArray(1, static_cast<char>(value)));
}

inline QByteArray acknowledge()
{
    return hex("43 60 02 F7");
}

} // namespace DeviceSide

// An event whose bytes are a heap array of exactly their number, so that a read beyond them is seen
// by the address sanitizer.
class ExactEvent
{
public:
    explicit ExactEvent(const QByteArray &message, std::uint32_t type = MPEventSysEx)
        : m_bytes(new unsigned char[static_cast<std::size_t>(message.size())])
    {
        std::memcpy(m_bytes.get(), message.constData(), static_cast<std::size_t>(message.size()));
        event.eventType = type;
        event.length = static_cast<std::uint32_t>(message.size());
        event.longData = m_bytes.get();
    }

private:
    std::unique_ptr<unsigned char[]> m_bytes;

public:
    tagMPEVENT event;
};

// What an event under construction holds, from 0x43 to 0xF7.
inline QByteArray bytesOf(const tagMPEVENT &event)
{
    return QByteArray(reinterpret_cast<const char *>(event.longData),
                      static_cast<qsizetype>(event.length));
}

// Frees the bytes of an event that a create function filled.
class OwnedBytes
{
public:
    explicit OwnedBytes(const tagMPEVENT &event)
        : m_bytes(event.longData)
    {
    }

private:
    std::unique_ptr<unsigned char[]> m_bytes;
};

// A device on the loopback that keeps what the editor sends. Ports 1 to 5 of the catalogue are its
// own, since it is plugged in alone.
class RecordingDevice
{
public:
    static constexpr int SensingPort = 1;
    static constexpr int MessagePort = 5;

    RecordingDevice()
        : m_handle(LoopbackHub::instance().plug(
              QStringLiteral("Recorder"), 5,
              [this](int port, const QByteArray &bytes) { received(port, bytes); }))
    {
    }
    ~RecordingDevice()
    {
        LoopbackHub::instance().setRefusing(false);
        LoopbackHub::instance().unplug(m_handle);
    }
    RecordingDevice(const RecordingDevice &) = delete;
    RecordingDevice &operator=(const RecordingDevice &) = delete;

    // What came since the last call, in order, without the 0xF0.
    QList<QByteArray> take()
    {
        const MutexLocker lock(m_mutex);
        return std::exchange(m_messages, {});
    }
    qsizetype count() const
    {
        const MutexLocker lock(m_mutex);
        return m_messages.size();
    }
    bool waitCount(qsizetype count)
    {
        std::unique_lock<Mutex> lock(m_mutex);
        return m_arrived.wait_for(lock, std::chrono::seconds(30),
                                  [&] { return m_messages.size() >= count; });
    }
    // Everything came on the message port, in one piece, from 0xF0 to 0xF7.
    bool isWellFormed() const
    {
        const MutexLocker lock(m_mutex);
        return m_isWellFormed;
    }
    // message from 0x43 to 0xF7
    void send(const QByteArray &message) { sendRaw(MessagePort, '\xF0' + message); }
    void sendRaw(int port, const QByteArray &bytes)
    {
        LoopbackHub::instance().send(m_handle, port, bytes);
    }

private:
    void received(int port, const QByteArray &bytes)
    {
        const MutexLocker lock(m_mutex);
        if (port != MessagePort || !bytes.startsWith('\xF0') || !bytes.endsWith('\xF7')) {
            m_isWellFormed = false;
        }
        m_messages.append(bytes.mid(1));
        m_arrived.notify_all();
    }

    mutable Mutex m_mutex; // guards everything below
    WaitCondition m_arrived;
    QList<QByteArray> m_messages;
    bool m_isWellFormed = true;
    int m_handle; // last: the receiver may be called as soon as it has a value
};

// Counts the signals of the memory's door, on whichever thread they come, and waits for them.
class RunSignals
{
public:
    explicit RunSignals(RemoteMemAPI *api)
    {
        const auto count = [&](auto signal, int RunSignals::*counter) {
            QObject::connect(
                api, signal, &m_context,
                [this, counter] {
                    const MutexLocker lock(m_mutex);
                    ++(this->*counter);
                    m_changed.notify_all();
                },
                Qt::DirectConnection);
        };
        count(&RemoteMemAPI::completeBulkReceive, &RunSignals::m_received);
        count(&RemoteMemAPI::completeBulkTransmit, &RunSignals::m_transmitted);
        count(&RemoteMemAPI::notifiedCurrentTemplateNumber, &RunSignals::m_notified);
        count(&RemoteMemAPI::portActivated, &RunSignals::m_activated);
    }

    int received() const { return get(&RunSignals::m_received); }
    int transmitted() const { return get(&RunSignals::m_transmitted); }
    int notified() const { return get(&RunSignals::m_notified); }
    int activated() const { return get(&RunSignals::m_activated); }
    bool waitReceived(int count) { return wait(&RunSignals::m_received, count); }
    bool waitTransmitted(int count) { return wait(&RunSignals::m_transmitted, count); }
    bool waitNotified(int count) { return wait(&RunSignals::m_notified, count); }
    bool waitActivated(int count) { return wait(&RunSignals::m_activated, count); }

private:
    int get(int RunSignals::*counter) const
    {
        const MutexLocker lock(m_mutex);
        return this->*counter;
    }
    bool wait(int RunSignals::*counter, int count)
    {
        std::unique_lock<Mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(60),
                                  [&] { return this->*counter >= count; });
    }

    mutable Mutex m_mutex; // guards the counters
    WaitCondition m_changed;
    int m_received = 0;
    int m_transmitted = 0;
    int m_notified = 0;
    int m_activated = 0;
    QObject m_context; // last: nothing comes once it is gone
};

// Nine banks, the first two marked as filled, as the program starts; and without the debug line
// that each dump gives.
inline void makeBanks(RemoteMemAPI *api)
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    while (api->getQuantityOfBank() < 9) {
        api->createBank();
    }
    api->setBankAvailableFlag(1, Bank::EditBuffer);
    api->setBankAvailableFlag(1, Bank::Stored);
}

inline ParamAddress currentTemplateAddress(int bank = Bank::EditBuffer)
{
    return ParamAddress(bank, ParamAddress::CurrentTemplateNumber, -1, -1);
}

inline ParamAddress knobAddress(int bank, int template_, int knob, int parameter)
{
    return ParamAddress(bank, template_, knob, parameter);
}

inline ParamAddress templateAddress(int bank, int template_, int selector)
{
    return ParamAddress(bank, template_, selector, -1);
}
