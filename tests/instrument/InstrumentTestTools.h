// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/VirtualInstrument.h"
#include "tests/tools/OwnCopy.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>

// Bytes as they are written in a table: "F0 43 60 02 F7".
inline QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// The editor's messages, laid out here once more by hand; "F0 43 00 7F 14" is the editor's model.
namespace EditorSide
{
inline QByteArray bulk(const QByteArray &address, const QByteArray &data = {})
{
    QByteArray wire = hex("F0 43 00 7F 14");
    QByteArray body;
    body.append('\0').append(static_cast<char>(data.size())).append(address).append(data);
    int sum = 0;
    for (const char c : body) {
        sum += c;
    }
    return wire + body + static_cast<char>((-sum) & 0x7F) + '\xF7';
}
inline QByteArray name(char high, char type, int number)
{
    return QByteArray(1, high) + type + static_cast<char>(number);
}
inline QByteArray header(char type, int number)
{
    return bulk(name(0x0E, type, number));
}
inline QByteArray footer(char type, int number)
{
    return bulk(name(0x0F, type, number));
}
inline QByteArray templateBlock(const QByteArray &name13, const QByteArray &vsti12,
                                char controlType)
{
    return bulk(hex("01 00 00"),
                name13.leftJustified(13, ' ') + vsti12.leftJustified(12, ' ') + controlType + '\0');
}
inline QByteArray knobBlock(int knob, const QByteArray &id, const QByteArray &display, char cc,
                            char format)
{
    QByteArray address = hex("01 10 00");
    address[1] = static_cast<char>(0x10 + knob);
    return bulk(address, id.leftJustified(9, ' ') + display.leftJustified(15, ' ') + cc + format);
}
inline QByteArray change(char mid, char low, const QByteArray &data)
{
    return hex("F0 43 10 7F 14 01") + mid + low + data + '\xF7';
}
inline QByteArray request(char mid, char low)
{
    return hex("F0 43 30 7F 14 01") + mid + low + '\xF7';
}
inline QByteArray bulkRequest(char type, int number)
{
    return hex("F0 43 20 7F 14 0E") + type + static_cast<char>(number) + '\xF7';
}
inline const QByteArray Store = hex("F0 43 10 7F 14 01 22 00 F7");
inline const QByteArray StoreToFlash = hex("F0 43 00 7F 14 00 00 11 00 00 6F F7");
} // namespace EditorSide

// What an instrument sent. The instrument must outlive it. Threads: any.
class Recorder
{
public:
    struct Sent
    {
        int port;
        QByteArray bytes;
        std::chrono::steady_clock::time_point when;
    };

    explicit Recorder(VirtualInstrument &instrument)
        : m_instrument(instrument)
    {
        instrument.setOutput([this](int port, const QByteArray &bytes) {
            const std::lock_guard locker(m_mutex);
            m_sent.append({port, bytes, std::chrono::steady_clock::now()});
            m_arrived.notify_all();
        });
    }
    // Waits for a call that is still in here.
    ~Recorder() { m_instrument.setOutput({}); }
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    QList<Sent> all() const
    {
        const std::lock_guard locker(m_mutex);
        return ownCopy(m_sent);
    }
    bool hasSent(const QByteArray &bytes) const
    {
        const std::lock_guard locker(m_mutex);
        return std::any_of(m_sent.cbegin(), m_sent.cend(),
                           [&bytes](const Sent &one) { return one.bytes == bytes; });
    }
    // Without sensing; empties the record.
    QList<QByteArray> take()
    {
        const std::lock_guard locker(m_mutex);
        QList<QByteArray> messages;
        for (const Sent &sent : std::as_const(m_sent)) {
            if (sent.bytes != hex("FE")) {
                messages.append(sent.bytes);
            }
        }
        m_sent.clear();
        return messages;
    }
    // Until so many were sent in all, sensing included.
    bool waitFor(qsizetype count, int timeoutMs = 10000)
    {
        std::unique_lock lock(m_mutex);
        return m_arrived.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                                  [&] { return m_sent.size() >= count; });
    }

private:
    VirtualInstrument &m_instrument;
    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    QList<Sent> m_sent;
};

template <std::size_t Width>
void fillRandom(InstrumentText<Width> &text, QRandomGenerator &random, const QByteArray &alphabet)
{
    QByteArray bytes;
    const auto length = random.bounded(static_cast<int>(Width) + 1);
    for (int i = 0; i < length; ++i) {
        bytes.append(alphabet.at(random.bounded(static_cast<int>(alphabet.size()))));
    }
    text.set(bytes);
}

inline InstrumentMemory randomMemory(quint32 seed)
{
    QRandomGenerator random(seed);
    const QByteArray letters =
        QByteArrayLiteral("ABCXYZabcxyz0123456789 !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~");
    InstrumentMemory memory;
    for (InstrumentBank *bank : {&memory.stored, &memory.editBuffer}) {
        for (InstrumentTemplate &t : *bank) {
            fillRandom(t.templateName, random, letters);
            fillRandom(t.vstiName, random, letters);
            t.controlType = static_cast<quint8>(random.bounded(2));
            for (InstrumentKnob &knob : t.knobs) {
                fillRandom(knob.remoteId, random, QByteArrayLiteral("0123456789abcdef"));
                fillRandom(knob.displayName, random, letters);
                knob.ccNumber = static_cast<quint8>(random.bounded(128));
                knob.displayFormat = static_cast<quint8>(random.bounded(2));
            }
        }
    }
    memory.currentTemplate = random.bounded(50);
    return memory;
}
