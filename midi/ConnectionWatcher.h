// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/MessageProcessor.h"

#include <QtCore/QObject>

#include <atomic>

// Decides from the active sensing port whether the device is there: reports the first sign of it
// while offline, and sets the system offline when a whole timer period passes without any event.
// Whoever has stopped watching for it watches again from then on.
//
// Owner: RemoteMemAPI. Threads: built, destroyed and timed on the GUI thread; Process on the port's
// pusher thread.
class ConnectionWatcher : public QObject, public MessageProcessor
{
    Q_OBJECT

public:
    ConnectionWatcher(int portID, RemoteMemAPI *memAPI);
    ~ConnectionWatcher() override;

    bool Process(tagMPEVENT &event) override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    int m_timerID = 0;
    std::atomic<bool> m_eventSeen{false};
};
