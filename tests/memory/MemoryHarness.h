// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Timings.h"
#include "memory/MemChangeObserver.h"
#include "memory/RemoteMemAPI.h"
#include "midi/loopback/LoopbackHub.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

inline const ParamAddress FileEdit(-3, -1, -1, -1);
inline const ParamAddress LibraryEdit(-5, -1, -1, -1);
inline const ParamAddress BankEdit(-6, -1, -1, -1);
inline const ParamAddress Online(-2, -1, -1, -1);
inline const ParamAddress FilePath(-4, -1, -1, -1);

inline QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

inline int valueAt(const RemoteMemAPI &api, const ParamAddress &address)
{
    return api.getParam(address).getCurrentValue();
}

// Everything of one bank as text, so that two moments can be compared and differences read.
inline QStringList contentOf(const RemoteMemAPI &api, int bank, bool withFlags = true)
{
    QStringList lines;
    for (int t = 0; t < 50; ++t) {
        QStringList line{QString::number(t), api.getParamQString(ParamAddress(bank, t, 13, -1)),
                         api.getParamQString(ParamAddress(bank, t, 15, -1)),
                         QString::number(valueAt(api, ParamAddress(bank, t, 14, -1)))};
        for (int k = 0; k < 12; ++k) {
            line << api.getParamQString(ParamAddress(bank, t, k, 0))
                 << QString::number(valueAt(api, ParamAddress(bank, t, k, 1)))
                 << QString::number(valueAt(api, ParamAddress(bank, t, k, 2)))
                 << api.getParamQString(ParamAddress(bank, t, k, 3));
        }
        lines << line.join(QChar(0x1F));
    }
    lines << QString::number(valueAt(api, ParamAddress(bank, 52, -1, -1)));
    if (withFlags) {
        lines << QString::number(valueAt(api, ParamAddress(bank, 51, -1, -1)));
    }
    return lines;
}

// Makes the banks up to nine, and the first two available, as the main window does at start.
inline void makeNineBanks(RemoteMemAPI *api)
{
    while (api->getQuantityOfBank() < Bank::Count) {
        api->createBank();
    }
    api->setParam(ParamAddress(1, 51, -1, -1), 1);
    api->setParam(ParamAddress(0, 51, -1, -1), 1);
    api->setParam(FileEdit, 0);
}

// Content of its own for every template of the bank, without raising an edit flag.
inline void fillBank(RemoteMemAPI *api, int bank, const char *word)
{
    api->denyToRaiseFileEditFlag();
    for (int t = 0; t < 50; ++t) {
        api->setParam(ParamAddress(bank, t, 13, -1),
                      QStringLiteral("%1 %2").arg(latin(word)).arg(t));
        for (int k = 0; k < 12; ++k) {
            api->setParam(ParamAddress(bank, t, k, 1), (t + 7 * k + bank) % 128);
        }
    }
    api->allowToRaiseFileEditFlag();
}

// Counts its notifications, appends its name to a shared log, and runs what a test hangs in.
class LoggingObserver : public MemChangeObserver
{
public:
    LoggingObserver(RemoteMemAPI *api, const ParamAddress &address, QStringList *log = nullptr,
                    const QString &name = QString())
        : m_address(address)
        , m_log(log)
        , m_name(name)
    {
        setMemAPI(api);
        api->registObserver(&m_address, this);
    }
    // Leaves the list before its part of the object is gone.
    ~LoggingObserver() override { memAPI->unregistObserver(this); }

    void paramUpdate() override
    {
        ++count;
        if (m_log != nullptr) {
            m_log->append(m_name);
        }
        if (then) {
            then();
        }
    }
    ParamAddress *address() { return &m_address; }

    int count = 0;
    std::function<void()> then;

private:
    ParamAddress m_address;
    QStringList *m_log;
    QString m_name;
};

// An instrument's five ports on the loopback's cable, and what came in at each.
class CableEnd
{
public:
    static constexpr int WatchPort = 1;
    static constexpr int CommunicationPort = 5;

    CableEnd()
    {
        // No sensing comes from here, and no test is to be taken offline for that.
        timings().connectionWatcherPeriodMs = 600000;
        m_device = LoopbackHub::instance().plug(latin("Corvan TARN/TERN"), 5,
                                                [this](int port, const QByteArray &bytes) {
                                                    const MutexLocker lock(m_mutex);
                                                    m_received.append({port, bytes});
                                                });
    }
    ~CableEnd() { LoopbackHub::instance().unplug(m_device); }
    CableEnd(const CableEnd &) = delete;
    CableEnd &operator=(const CableEnd &) = delete;

    bool connectTo(RemoteMemAPI *api)
    {
        return api->createMIDIComunicationRoute(WatchPort, CommunicationPort, CommunicationPort);
    }
    // The messages since the last call, in capital hexadecimal, 0xF0 included.
    QStringList take()
    {
        const MutexLocker lock(m_mutex);
        QStringList messages;
        for (const auto &[port, bytes] : m_received) {
            messages.append(
                (port == CommunicationPort ? QString() : QStringLiteral("port %1: ").arg(port)) +
                QString::fromLatin1(bytes.toHex(' ')).toUpper());
        }
        m_received.clear();
        return messages;
    }
    void send(int port, const QByteArray &bytes)
    {
        LoopbackHub::instance().send(m_device, port, bytes);
    }

private:
    int m_device = 0;
    Mutex m_mutex;
    QList<std::pair<int, QByteArray>> m_received;
};
