// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "midi/MPEvent.h"
#include "midi/TMIDIReaderRefConInterface.h"
#include "midi/TUniMIDIPortAccessor.h"
#include "tests/tools/OwnCopy.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QTemporaryFile>
#include <QtTest/QTest>

#include <unistd.h>

#include <cstdio>
#include <mutex>

// What the tests of the bindings share.

// Keeps what a transport delivers, as the bytes that were on the wire, and can be held so that it
// lags behind.
class Collector : public TMIDIReaderRefConInterface
{
public:
    void midiIn(tagMPEVENT *event) override
    {
        QByteArray message;
        if ((event->eventType & MPEventLongMask) != 0) {
            message = QByteArray(1, event->eventType == MPEventSysEx ? '\xF0' : '\xF7');
            message.append(reinterpret_cast<const char *>(event->longData),
                           static_cast<qsizetype>(event->length));
        } else if (event->eventType == MPEventControlChange) {
            message.append(static_cast<char>(0xB0 | event->channel));
            message.append(static_cast<char>(event->shortData[0]));
            message.append(static_cast<char>(event->shortData[1]));
        }
        std::unique_lock<Mutex> lock(m_mutex);
        m_isWaiting = true;
        m_released.wait(lock, [this] { return !m_isHeld; });
        m_isWaiting = false;
        m_messages.append(message);
    }
    void hold(bool isHeld)
    {
        const MutexLocker lock(m_mutex);
        m_isHeld = isHeld;
        m_released.notify_all();
    }
    // With a message in hand, while it is held.
    bool isWaiting() const
    {
        const MutexLocker lock(m_mutex);
        return m_isWaiting;
    }
    QList<QByteArray> messages() const
    {
        const MutexLocker lock(m_mutex);
        return ownCopy(m_messages);
    }
    qsizetype count() const
    {
        const MutexLocker lock(m_mutex);
        return m_messages.size();
    }
    void clear()
    {
        const MutexLocker lock(m_mutex);
        m_messages.clear();
    }

private:
    mutable Mutex m_mutex;
    WaitCondition m_released;
    bool m_isHeld = false;
    bool m_isWaiting = false;
    QList<QByteArray> m_messages;
};

// Waits until count() is expected, for as long as it goes on growing: false only after silenceMs
// without anything new. The emulated machine on a busy host is too slow for one time for all.
template <typename Count>
bool arrives(Count count, qsizetype expected, int silenceMs = 20000)
{
    qsizetype before = -1;
    qsizetype now = count();
    while (now < expected && now != before) {
        before = now;
        now = QTest::qWaitFor([&] { return count() != before; }, silenceMs) ? count() : before;
    }
    return now >= expected;
}

// The n-th of a burst: a control change for a length of 3, otherwise system exclusive. Carries its
// number, so that a lost or a swapped one shows.
inline QByteArray numberedMessage(int number, int length)
{
    const char high = static_cast<char>((number >> 14) & 0x7F);
    const char middle = static_cast<char>((number >> 7) & 0x7F);
    const char low = static_cast<char>(number & 0x7F);
    if (length == 3) {
        return QByteArray(1, static_cast<char>(0xB0 | high)) + middle + low;
    }
    QByteArray message(length, 0x55);
    message[0] = '\xF0';
    message[1] = high;
    message[2] = middle;
    message[3] = low;
    message[length - 1] = '\xF7';
    return message;
}

inline QList<QByteArray> numberedMessages(int count, int length)
{
    QList<QByteArray> messages;
    for (int i = 0; i < count; ++i) {
        messages.append(numberedMessage(i, length));
    }
    return messages;
}

// As TAppMIDIOut sends: the status apart from the rest.
template <typename Transport>
bool sendMessage(Transport &transport, const QByteArray &message)
{
    const auto *bytes = reinterpret_cast<const unsigned char *>(message.constData());
    return transport.outputData(static_cast<int>(message.size()) - 1, bytes + 1, bytes[0]);
}

// Sends once and no more; QTRY_VERIFY would send several times.
template <typename Transport>
bool sendsWithin(Transport &transport, const QByteArray &message, int timeoutMs)
{
    return QTest::qWaitFor([&] { return sendMessage(transport, message); }, timeoutMs);
}

template <typename Transport>
bool refusesWithin(Transport &transport, int timeoutMs)
{
    return QTest::qWaitFor([&] { return !sendMessage(transport, numberedMessage(1, 10)); },
                           timeoutMs);
}

// The 1-based number of the port of this name in the list read now; 0 if there is none.
inline int portNumber(TMIDIPortAccessor &accessor, int direction, const QString &name)
{
    const int count = accessor.getNumPorts(direction);
    for (int i = 0; i < count; ++i) {
        if (accessor.identifierForIndex(direction, i) == name) {
            return i + 1;
        }
    }
    return 0;
}

// What the process writes to its two outputs while this lives.
class OutputCapture
{
public:
    OutputCapture()
    {
        m_file.open();
        fflush(nullptr);
        for (int i = 0; i < 2; ++i) {
            m_saved[i] = dup(i + 1);
            dup2(m_file.handle(), i + 1);
        }
    }
    // A test that fails before end() has said so into the capture.
    ~OutputCapture()
    {
        restore();
        if (!m_isEnded) {
            m_file.seek(0);
            fputs(m_file.readAll().constData(), stderr);
        }
    }
    OutputCapture(const OutputCapture &) = delete;
    OutputCapture &operator=(const OutputCapture &) = delete;

    QByteArray end()
    {
        restore();
        m_isEnded = true;
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    void restore()
    {
        fflush(nullptr);
        for (int i = 0; i < 2; ++i) {
            if (m_saved[i] >= 0) {
                dup2(m_saved[i], i + 1);
                close(m_saved[i]);
                m_saved[i] = -1;
            }
        }
    }
    QTemporaryFile m_file;
    int m_saved[2] = {-1, -1};
    bool m_isEnded = false;
};
