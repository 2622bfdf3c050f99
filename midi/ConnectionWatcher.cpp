// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/ConnectionWatcher.h"

#include "app/Timings.h"
#include "memory/RemoteMemAPI.h"
#include "midi/MPEvent.h"

#include <QtCore/QTimerEvent>

namespace
{

constexpr int EveryEvent = 0; // filter type
constexpr unsigned char ActiveSensing = 0xFE;

} // namespace

ConnectionWatcher::ConnectionWatcher(int portID, RemoteMemAPI *memAPI)
    : MessageProcessor(portID, memAPI, EveryEvent)
    , m_timerID(startTimer(timings().connectionWatcherPeriodMs))
{
}

ConnectionWatcher::~ConnectionWatcher() = default;

bool ConnectionWatcher::Process(tagMPEVENT &event)
{
    // Any event is a sign of life; only active sensing is the sign of the instrument.
    m_eventSeen = true;
    if (m_memAPI != nullptr && !m_memAPI->isONLINE() && m_memAPI->isWatchPortActivate() &&
        event.eventType == MPEventActiveSensing && event.shortData[1] == ActiveSensing) {
        m_memAPI->emitPortActivatedSignal();
    }
    return true;
}

void ConnectionWatcher::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timerID) {
        QObject::timerEvent(event);
        return;
    }
    // A loss shows after one whole period without an event, so between one and two periods after
    // the last.
    if (m_eventSeen.exchange(false) || m_memAPI == nullptr) {
        return;
    }
    if (m_memAPI->isONLINE()) {
        m_memAPI->setONLINEstate(0);
    }
    // From here on its return is news, also to somebody who has turned it away.
    m_memAPI->setWatchPortActivate(true);
}
