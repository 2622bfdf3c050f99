// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/ComuController.h"

#include "midi/MIDIBinding.h"
#include "midi/MPEvent.h"
#include "midi/MessageProcessor.h"
#include "midi/TAppMIDIIn.h"
#include "midi/TAppMIDIOut.h"
#include "midi/TUniMIDIPortAccessor.h"

#include <algorithm>
#include <utility>

std::atomic<std::uint64_t> ComuController::s_timeCounter{0};

ComuController::ComuController(SysExParamChangeAddressTransTable *sysExTable)
    : m_mapMutex(std::make_unique<RecursiveMutex>())
    , m_spareMutex(std::make_unique<RecursiveMutex>())
    , m_sysExTable(sysExTable)
{
}

ComuController::~ComuController()
{
    CloseAllOpendPortAndDeleteAllTransporters();
}

TUniMIDIPortAccessor *ComuController::portAccessor()
{
    if (m_portAccessor == nullptr) {
        m_portAccessor.reset(MIDIPortAccessor());
    }
    return m_portAccessor.get();
}

std::uint32_t ComuController::midiOutDispatch(const tagMPEVENT &event, _MPASYNC_MODE mode)
{
    return midiOutDispatchAll(&event, 1, mode);
}

std::uint32_t ComuController::midiOutDispatchAll(const tagMPEVENT *events, std::size_t count,
                                                 _MPASYNC_MODE mode)
{
    if ((mode & MPAsyncSend) == 0) {
        return MidiSuccess;
    }
    const tagMPEVENT *const end = events + count;
    while (events != end) {
        const tagMPEVENT *const next =
            std::find_if(events, end, [port = events->portID](const tagMPEVENT &event) {
                return event.portID != port;
            });
        const std::uint32_t result =
            dispatchToOnePort(events, static_cast<std::size_t>(next - events));
        if (result != MidiSuccess) {
            return result;
        }
        events = next;
    }
    return MidiSuccess;
}

std::uint32_t ComuController::dispatchToOnePort(const tagMPEVENT *events, std::size_t count)
{
    if (m_mapMutex == nullptr) {
        return MidiFailure;
    }
    const int number = events->portID;
    std::shared_ptr<RecursiveMutex> portMutex;
    {
        const RecursiveMutexLocker map(*m_mapMutex);
        portMutex = m_midiOutMutexes.value(number);
    }
    if (portMutex == nullptr) {
        return MidiFailure;
    }
    // The map is left before the port is waited for and taken again afterwards, so that nobody
    // waits for a busy port while holding the map.
    const RecursiveMutexLocker port(*portMutex);
    TAppMIDIOut *transporter = nullptr;
    std::uint32_t changes = 0;
    for (const tagMPEVENT *event = events; event != events + count; ++event) {
        // A port that this thread holds no other closes, but a receiver that is called from within
        // the sending may.
        if (transporter == nullptr || changes != m_outputChanges) {
            const RecursiveMutexLocker map(*m_mapMutex);
            changes = m_outputChanges;
            // Another mutex under this number means that everything was closed meanwhile, and that
            // this one no longer guards the port.
            transporter = m_midiOutMutexes.value(number) == portMutex
                              ? m_midiOutTransporters.value(number)
                              : nullptr;
        }
        if (transporter == nullptr) {
            return MidiFailure;
        }
        // What the platform refuses counts as sent: only the connection's watcher tells of a device
        // that has gone.
        transporter->midiOut(*event);
    }
    return MidiSuccess;
}

bool ComuController::requestPort(int isOutput, int port, int filterType,
                                 MessageProcessor *processor)
{
    if (port == 0) {
        return false;
    }
    // A binding's transports may live on what its catalogue holds open.
    portAccessor();
    if (isOutput == 0) {
        if (m_midiInTransporters.contains(port)) {
            return true;
        }
        auto transporter = std::make_unique<TAppMIDIIn>(processor);
        if (!transporter->openPort(port, filterType)) {
            return false;
        }
        m_midiInTransporters.insert(port, transporter.release());
        return true;
    }
    if (m_mapMutex == nullptr) {
        return false;
    }
    std::shared_ptr<RecursiveMutex> portMutex;
    {
        const RecursiveMutexLocker map(*m_mapMutex);
        if (m_midiOutTransporters.contains(port)) {
            return true;
        }
        portMutex = m_midiOutMutexes.value(port);
    }
    if (portMutex == nullptr) {
        portMutex = std::make_shared<RecursiveMutex>();
    }
    auto transporter = std::make_unique<TAppMIDIOut>();
    if (!transporter->openPort(port)) {
        return false;
    }
    const RecursiveMutexLocker map(*m_mapMutex);
    m_midiOutTransporters.insert(port, transporter.release());
    m_midiOutMutexes.insert(port, portMutex);
    ++m_outputChanges;
    return true;
}

void ComuController::releasePort(int isOutput, int port)
{
    if (isOutput == 0) {
        // Waits for the event in delivery.
        delete m_midiInTransporters.take(port);
        return;
    }
    std::shared_ptr<RecursiveMutex> portMutex;
    {
        const RecursiveMutexLocker map(*m_mapMutex);
        if (!m_midiOutTransporters.contains(port)) {
            return;
        }
        portMutex = m_midiOutMutexes.value(port);
    }
    if (portMutex == nullptr) {
        return;
    }
    std::unique_ptr<TAppMIDIOut> transporter;
    {
        const RecursiveMutexLocker portLock(*portMutex);
        const RecursiveMutexLocker map(*m_mapMutex);
        transporter.reset(m_midiOutTransporters.take(port));
        ++m_outputChanges;
    }
}

bool ComuController::isPortActive(int isOutput, int port)
{
    if (isOutput == 0) {
        return m_midiInTransporters.contains(port);
    }
    const RecursiveMutexLocker map(*m_mapMutex);
    return m_midiOutTransporters.contains(port);
}

bool ComuController::setMessageProcessorAndOpenPort(MessageProcessor *processor)
{
    m_messageProcessor = processor;
    return processor != nullptr &&
           requestPort(0, processor->getPortID(), processor->getMidiFilterType(), processor);
}

QStringList ComuController::getInputPortList()
{
    portAccessor()->updatePortInfo();
    return portAccessor()->getInputPortList();
}

QStringList ComuController::getOutputPortList()
{
    portAccessor()->updatePortInfo();
    return portAccessor()->getOutputPortList();
}

bool ComuController::isServiceSilent() const
{
    return m_portAccessor != nullptr && m_portAccessor->isServiceSilent();
}

TMIDITransport::Link ComuController::portLink()
{
    TMIDITransport::Link worst = TMIDITransport::Link::Connected;
    for (const TAppMIDIIn *transporter : std::as_const(m_midiInTransporters)) {
        worst = std::max(worst, transporter->link());
    }
    const RecursiveMutexLocker map(*m_mapMutex);
    for (const TAppMIDIOut *transporter : std::as_const(m_midiOutTransporters)) {
        worst = std::max(worst, transporter->link());
    }
    return worst;
}

void ComuController::abandonPorts()
{
    for (TAppMIDIIn *transporter : std::as_const(m_midiInTransporters)) {
        transporter->abandon();
    }
    const RecursiveMutexLocker map(*m_mapMutex);
    for (TAppMIDIOut *transporter : std::as_const(m_midiOutTransporters)) {
        transporter->abandon();
    }
}

void ComuController::CloseAllOpendPortAndDeleteAllTransporters()
{
    const QList<int> inputs = m_midiInTransporters.keys();
    for (const int port : inputs) {
        releasePort(0, port);
    }
    m_messageProcessor = nullptr;
    QList<int> outputs;
    {
        const RecursiveMutexLocker map(*m_mapMutex);
        outputs = m_midiOutTransporters.keys();
    }
    for (const int port : outputs) {
        releasePort(1, port);
    }
    const RecursiveMutexLocker map(*m_mapMutex);
    m_midiOutMutexes.clear();
    ++m_outputChanges;
}
