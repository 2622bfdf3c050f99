// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TAppMIDIIn.h"

#include "midi/ComuController.h"
#include "midi/MIDIBinding.h"
#include "midi/MPEvent.h"
#include "midi/MessageProcessor.h"

#include <algorithm>

TAppMIDIIn::TAppMIDIIn(MessageProcessor *processor)
    : m_processor(processor)
{
}

TAppMIDIIn::~TAppMIDIIn()
{
    // Before any other member goes: its thread calls midiIn() until it is stopped.
    m_transport.reset();
}

bool TAppMIDIIn::openPort(int port, int filterType)
{
    m_transport.reset(MIDITransportInstance());
    // Set before the first event can come.
    m_portNumber = port;
    m_portID = port;
    m_filterType = filterType;
    if (!m_transport->openInput(port, this, filterType)) {
        m_transport.reset();
        return false;
    }
    return true;
}

TMIDITransport::Link TAppMIDIIn::link() const
{
    return m_transport != nullptr ? m_transport->link() : TMIDITransport::Link::Connected;
}

void TAppMIDIIn::abandon()
{
    if (m_transport != nullptr) {
        m_transport->abandon();
    }
}

void TAppMIDIIn::attachEventFilter(IMPEventFilter *filter)
{
    const RecursiveMutexLocker lock(m_mutex);
    if (std::find(m_filters.cbegin(), m_filters.cend(), filter) == m_filters.cend()) {
        m_filters.push_back(filter);
    }
}

void TAppMIDIIn::detachEventFilter(IMPEventFilter *filter)
{
    const RecursiveMutexLocker lock(m_mutex);
    m_filters.erase(std::remove(m_filters.begin(), m_filters.end(), filter), m_filters.end());
}

void TAppMIDIIn::midiIn(tagMPEVENT *event)
{
    const RecursiveMutexLocker lock(m_mutex);
    event->portID = m_portNumber;
    event->timeCounter = ComuController::s_timeCounter.fetch_add(1);
    event->inputMark = 1;
    if (m_processor != nullptr) {
        m_processor->Process(*event);
    }
}
