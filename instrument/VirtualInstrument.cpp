// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/VirtualInstrument.h"

#include "instrument/InstrumentProtocol.h"

#include <algorithm>
#include <cstddef>

namespace
{

const QByteArray ActiveSensing = QByteArrayLiteral("\xFE");

// The low address bytes of the numbers and names of a page.
constexpr int LowTemplateName = 0;
constexpr int LowVstiName = 13;
constexpr int LowControlType = 25;
constexpr int LowDisplayName = 9;
constexpr int LowCcNumber = 24;
constexpr int LowDisplayFormat = 25;

bool isKnob(int knob)
{
    return knob >= 0 && knob < InstrumentKnobCount;
}

quint8 midOfBlock(int block)
{
    return block == 0 ? quint8{0} : static_cast<quint8>(0x0F + block);
}

QByteArray ascii(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text) {
        bytes.append(c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : '?');
    }
    return bytes;
}

bool isInRange(const InstrumentTemplate &t)
{
    return t.controlType <= 1 && t.reserved <= 127 &&
           std::all_of(t.knobs.cbegin(), t.knobs.cend(), [](const InstrumentKnob &knob) {
               return knob.ccNumber <= 127 && knob.displayFormat <= 1;
           });
}

MessageTag tagOf(const InstrumentMessage &message)
{
    using Kind = InstrumentMessage::Kind;
    MessageTag tag;
    switch (message.kind) {
    case Kind::Header:
        tag.messageClass = MessageClass::Header;
        break;
    case Kind::Block:
        tag.messageClass = MessageClass::Block;
        tag.block = message.block;
        break;
    case Kind::Footer:
        tag.messageClass = MessageClass::Footer;
        break;
    case Kind::Change:
        tag.messageClass = MessageClass::Change;
        break;
    case Kind::ParameterRequest:
        tag.messageClass = MessageClass::ParameterRequest;
        break;
    case Kind::BulkRequest:
        tag.messageClass = MessageClass::BulkRequest;
        break;
    case Kind::Store:
        tag.messageClass = MessageClass::Store;
        break;
    case Kind::StoreToFlash:
        tag.messageClass = MessageClass::StoreToFlash;
        break;
    case Kind::Acknowledge:
        tag.messageClass = MessageClass::Acknowledge;
        break;
    case Kind::Foreign:
    case Kind::Malformed:
        break;
    }
    if (message.templateNumber >= 0) {
        tag.templateNumber = message.templateNumber;
        tag.type = message.type;
    }
    return tag;
}

MessageTag changeTag()
{
    MessageTag tag;
    tag.messageClass = MessageClass::Change;
    return tag;
}

MessageTag dumpTag(MessageClass messageClass, DumpType type, int templateNumber, int block = -1)
{
    MessageTag tag;
    tag.messageClass = messageClass;
    tag.type = type;
    tag.templateNumber = templateNumber;
    tag.block = block;
    return tag;
}

} // namespace

VirtualInstrument::VirtualInstrument() = default;

VirtualInstrument::VirtualInstrument(const InstrumentMemory &memory)
{
    setContents(memory);
}

VirtualInstrument::~VirtualInstrument()
{
    {
        const MutexLocker locker(m_mutex);
        m_quit = true;
        m_wake.notify_all();
    }
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

// --- Callbacks ----------------------------------------------------------------------------------

void VirtualInstrument::setOutput(Output output)
{
    std::unique_lock lock(m_mutex);
    m_output = output ? std::make_shared<const Output>(std::move(output)) : nullptr;
    waitUntilNotInCall(lock, false);
}

void VirtualInstrument::setLog(Log log)
{
    std::unique_lock lock(m_mutex);
    m_log = log ? std::make_shared<const Log>(std::move(log)) : nullptr;
    waitUntilNotInCall(lock, false);
}

void VirtualInstrument::setChangeCallback(ChangeCallback callback)
{
    std::unique_lock lock(m_mutex);
    m_change = callback ? std::make_shared<const ChangeCallback>(std::move(callback)) : nullptr;
    waitUntilNotInCall(lock, false);
}

void VirtualInstrument::waitUntilNotInCall(std::unique_lock<Mutex> &lock, bool onlySensing)
{
    m_quiet.wait(lock, [&] {
        return !m_inCall || (onlySensing && !m_inSensing) ||
               m_drainThread == std::this_thread::get_id();
    });
}

// One thread at a time empties the outbox, so that the order is kept. A callback that leads back in
// here on the same thread only adds to the outbox, and the loop further up the stack goes on with
// it.
void VirtualInstrument::drain(std::unique_lock<Mutex> &lock)
{
    if (m_draining) {
        return;
    }
    m_draining = true;
    m_drainThread = std::this_thread::get_id();
    while (!m_outbox.empty()) {
        const Event event = std::move(m_outbox.front());
        m_outbox.pop_front();
        const auto output = m_output;
        const auto logger = m_log;
        const auto change = m_change;
        m_inCall = true;
        m_inSensing = event.sensing;
        lock.unlock();
        switch (event.kind) {
        case Event::Kind::Message:
            if (output) {
                (*output)(event.port, event.bytes);
            }
            break;
        case Event::Kind::Log:
            if (logger) {
                (*logger)(event.line);
            }
            break;
        case Event::Kind::Changed:
            if (change) {
                (*change)();
            }
            break;
        }
        lock.lock();
        m_inCall = false;
        m_inSensing = false;
        m_quiet.notify_all();
    }
    m_draining = false;
    m_drainThread = std::thread::id();
}

void VirtualInstrument::log(const QString &line)
{
    if (m_log) {
        Event event;
        event.kind = Event::Kind::Log;
        event.line = line;
        m_outbox.push_back(std::move(event));
    }
}

void VirtualInstrument::changed()
{
    if (m_change) {
        Event event;
        event.kind = Event::Kind::Changed;
        m_outbox.push_back(std::move(event));
    }
}

// --- Sending ------------------------------------------------------------------------------------

void VirtualInstrument::emitMessage(int port, const QByteArray &wire, bool sensing)
{
    if (!sensing) {
        ++m_counters.sentMessages;
    }
    if (m_log) {
        log(QStringLiteral("sent     port %1  %2  %3")
                .arg(port)
                .arg(QString::fromLatin1(wire.toHex(' ').toUpper()),
                     InstrumentProtocol::describe(wire, MessageOrigin::Device)));
    }
    Event event;
    event.port = port;
    event.bytes = wire;
    event.sensing = sensing;
    m_outbox.push_back(std::move(event));
}

void VirtualInstrument::send(int port, const QByteArray &wire, const MessageTag &tag)
{
    if (m_silent) {
        return;
    }
    const FaultVerdict verdict = m_plan.judge(MessageDirection::Sent, tag);
    if (verdict.silence) {
        silence(m_plan.comebackMs());
        return;
    }
    const bool sensing = tag.messageClass == MessageClass::Sensing;
    if (verdict.drop) {
        log(QStringLiteral("dropped  port %1  %2")
                .arg(port)
                .arg(InstrumentProtocol::describe(wire, MessageOrigin::Device)));
        return;
    }
    const QByteArray bytes = verdict.applied(wire);
    // A cable has one order: nothing overtakes a delayed message of its port.
    const auto last = std::find_if(m_delayedOut.crbegin(), m_delayedOut.crend(),
                                   [port](const Delayed &d) { return d.port == port; });
    const bool waits = last != m_delayedOut.crend();
    auto due = Clock::now() + std::chrono::milliseconds(verdict.delayMs);
    if (waits) {
        due = std::max(due, last->due);
    }
    for (int i = 0; i < verdict.copies; ++i) {
        if (waits || verdict.delayMs > 0) {
            m_delayedOut.push_back({due, port, bytes, sensing});
            ensureWorker();
        } else {
            emitMessage(port, bytes, sensing);
        }
    }
}

void VirtualInstrument::sendDump(DumpType type, int templateNumber)
{
    const InstrumentTemplate &source = bank(type)[static_cast<std::size_t>(templateNumber)];
    send(MessagePort, InstrumentProtocol::dumpHeader(type, templateNumber),
         dumpTag(MessageClass::Header, type, templateNumber));
    for (int block = 0; block <= InstrumentKnobCount; ++block) {
        send(MessagePort, InstrumentProtocol::dumpBlock(block, source),
             dumpTag(MessageClass::Block, type, templateNumber, block));
    }
    send(MessagePort, InstrumentProtocol::dumpFooter(type, templateNumber),
         dumpTag(MessageClass::Footer, type, templateNumber));
}

void VirtualInstrument::reportEditFlag()
{
    send(MessagePort,
         InstrumentProtocol::parameterChange(InstrumentProtocol::EditFlagMid, 0,
                                             QByteArray(1, m_memory.editFlag ? '\1' : '\0')),
         changeTag());
}

void VirtualInstrument::setEditFlag(bool raised)
{
    if (m_memory.editFlag == raised) {
        return;
    }
    m_memory.editFlag = raised;
    changed();
    reportEditFlag();
}

// --- Silence and the instrument's own thread ----------------------------------------------------

void VirtualInstrument::silence(int comebackMs)
{
    log(QStringLiteral("silent from here on"));
    m_silent = true;
    m_delayedOut.clear();
    m_comesBack = comebackMs > 0;
    if (m_comesBack) {
        m_comeback = Clock::now() + std::chrono::milliseconds(comebackMs);
        ensureWorker();
    }
}

void VirtualInstrument::setFaultPlan(const FaultPlan &plan)
{
    const MutexLocker locker(m_mutex);
    m_plan = plan;
}

void VirtualInstrument::fallSilent(int comebackMs)
{
    std::unique_lock lock(m_mutex);
    silence(comebackMs);
    drain(lock);
}

void VirtualInstrument::comeBack()
{
    std::unique_lock lock(m_mutex);
    if (m_silent) {
        m_silent = false;
        m_comesBack = false;
        log(QStringLiteral("back again"));
        drain(lock);
    }
}

bool VirtualInstrument::isSilent() const
{
    const MutexLocker locker(m_mutex);
    return m_silent;
}

void VirtualInstrument::ensureWorker()
{
    if (!m_worker.joinable()) {
        m_worker = std::thread(&VirtualInstrument::work, this);
    }
    m_wake.notify_all();
}

void VirtualInstrument::start()
{
    const MutexLocker locker(m_mutex);
    if (!m_sensing) {
        m_sensing = true;
        m_nextSensing = Clock::now();
        ensureWorker();
    }
}

void VirtualInstrument::stop()
{
    std::unique_lock lock(m_mutex);
    m_sensing = false;
    std::erase_if(m_outbox, [](const Event &event) { return event.sensing; });
    std::erase_if(m_delayedOut, [](const Delayed &delayed) { return delayed.sensing; });
    waitUntilNotInCall(lock, true);
}

void VirtualInstrument::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_quit) {
        doWhatIsDue();
        if (!m_outbox.empty() && !m_draining) {
            drain(lock);
            continue;
        }
        // Only now, since what was due may have brought new times.
        const auto wake = nextDue();
        if (wake == Clock::time_point::max()) {
            m_wake.wait(lock);
        } else {
            m_wake.wait_until(lock, wake);
        }
    }
}

void VirtualInstrument::doWhatIsDue()
{
    const auto now = Clock::now();
    if (m_comesBack && m_comeback <= now) {
        m_comesBack = false;
        m_silent = false;
        log(QStringLiteral("back again"));
    }
    if (m_sensing && m_nextSensing <= now) {
        // A machine that stood still does not get the missed ones all at once.
        m_nextSensing += SensingPeriod;
        if (m_nextSensing <= now) {
            m_nextSensing = now + SensingPeriod;
        }
        MessageTag tag;
        tag.messageClass = MessageClass::Sensing;
        send(SensingPort, ActiveSensing, tag);
    }
    while (!m_delayedIn.empty() && m_delayedIn.front().due <= now) {
        const QByteArray wire = m_delayedIn.front().bytes;
        m_delayedIn.pop_front();
        handle(wire);
    }
    // Each port's messages lie in the order of their time; the ports among themselves do not.
    for (auto it = m_delayedOut.begin(); it != m_delayedOut.end();) {
        if (it->due <= now) {
            emitMessage(it->port, it->bytes, it->sensing);
            it = m_delayedOut.erase(it);
        } else {
            ++it;
        }
    }
}

VirtualInstrument::Clock::time_point VirtualInstrument::nextDue() const
{
    auto next = Clock::time_point::max();
    if (m_comesBack) {
        next = std::min(next, m_comeback);
    }
    if (m_sensing) {
        next = std::min(next, m_nextSensing);
    }
    if (!m_delayedIn.empty()) {
        next = std::min(next, m_delayedIn.front().due);
    }
    for (const Delayed &delayed : m_delayedOut) {
        next = std::min(next, delayed.due);
    }
    return next;
}

// --- Receiving ----------------------------------------------------------------------------------

void VirtualInstrument::receive(int port, const QByteArray &raw)
{
    if (port < 1 || port > PortCount) {
        return;
    }
    std::unique_lock lock(m_mutex);
    const auto index = static_cast<std::size_t>(port - 1);
    SysExAssembler &assembler = m_assemblers[index];
    for (const QByteArray &wire : assembler.push(raw)) {
        takeIn(port, wire);
    }
    m_counters.refusedMessages += assembler.brokenMessages() - m_brokenSeen[index];
    m_brokenSeen[index] = assembler.brokenMessages();
    drain(lock);
}

void VirtualInstrument::takeIn(int port, const QByteArray &wire)
{
    if (m_log) {
        log(QStringLiteral("received port %1  %2  %3")
                .arg(port)
                .arg(QString::fromLatin1(wire.toHex(' ').toUpper()),
                     InstrumentProtocol::describe(wire, MessageOrigin::Editor)));
    }
    if (port != MessagePort) {
        ++m_counters.ignoredMessages;
        return;
    }
    const FaultVerdict verdict = m_plan.judge(MessageDirection::Received, receivedTag(wire));
    if (verdict.silence) {
        silence(m_plan.comebackMs());
        return;
    }
    if (verdict.drop) {
        log(QStringLiteral("dropped  port %1  %2")
                .arg(port)
                .arg(InstrumentProtocol::describe(wire, MessageOrigin::Editor)));
        return;
    }
    const QByteArray bytes = verdict.applied(wire);
    auto due = Clock::now() + std::chrono::milliseconds(verdict.delayMs);
    const bool waits = !m_delayedIn.empty();
    if (waits) {
        due = std::max(due, m_delayedIn.back().due);
    }
    for (int i = 0; i < verdict.copies; ++i) {
        if (waits || verdict.delayMs > 0) {
            m_delayedIn.push_back({due, port, bytes, false});
            ensureWorker();
        } else {
            handle(bytes);
        }
    }
}

// A block names neither its template nor the kind of its dump; the header before it did.
MessageTag VirtualInstrument::receivedTag(const QByteArray &wire)
{
    MessageTag tag = tagOf(InstrumentProtocol::decode(wire));
    switch (tag.messageClass) {
    case MessageClass::Header:
        m_headerSeen = tag;
        break;
    case MessageClass::Block:
        tag.type = m_headerSeen.type;
        tag.templateNumber = m_headerSeen.templateNumber;
        break;
    case MessageClass::Footer:
        m_headerSeen = {};
        break;
    default:
        break;
    }
    return tag;
}

void VirtualInstrument::handle(const QByteArray &wire)
{
    if (!wire.endsWith('\xF7')) {
        ++m_counters.refusedMessages;
        return;
    }
    handle(InstrumentProtocol::decode(wire));
}

void VirtualInstrument::handle(const InstrumentMessage &message)
{
    using Kind = InstrumentMessage::Kind;
    if (message.kind == Kind::Foreign || message.kind == Kind::Acknowledge) {
        ++m_counters.ignoredMessages;
        return;
    }
    if (!message.defect.isEmpty()) {
        ++(message.kind == Kind::Block ? m_counters.refusedBlocks : m_counters.refusedMessages);
        return;
    }
    switch (message.kind) {
    case Kind::Header:
        ++m_counters.headers;
        m_dump = {true, false, message.type, message.templateNumber};
        break;
    case Kind::Block:
        takeBlock(message);
        break;
    case Kind::Footer:
        takeFooter(message);
        break;
    case Kind::Change:
        takeChange(message);
        break;
    case Kind::ParameterRequest:
        answerRequest(message);
        break;
    case Kind::BulkRequest:
        ++m_counters.bulkRequests;
        sendDump(message.type, message.templateNumber);
        break;
    case Kind::Store:
        ++m_counters.stores;
        store();
        break;
    case Kind::StoreToFlash:
        ++m_counters.storesToFlash;
        break;
    case Kind::Malformed:
    case Kind::Foreign:
    case Kind::Acknowledge:
        break;
    }
}

void VirtualInstrument::takeBlock(const InstrumentMessage &message)
{
    InstrumentTemplate &target = bank(m_dump.type)[static_cast<std::size_t>(m_dump.templateNumber)];
    const InstrumentTemplate before = target;
    if (!m_dump.open || !InstrumentProtocol::takeBlock(message.block, message.data, &target)) {
        ++m_counters.refusedBlocks;
        return;
    }
    ++m_counters.blocks;
    m_dump.changes = m_dump.changes || target != before;
    changed();
}

void VirtualInstrument::takeFooter(const InstrumentMessage &message)
{
    const bool ends = m_dump.open && m_dump.type == message.type &&
                      m_dump.templateNumber == message.templateNumber;
    m_dump.open = false;
    if (!ends) {
        ++m_counters.refusedMessages;
        return;
    }
    ++m_counters.footers;
    // Before the acknowledge, so that a run that ends with it knows of the flag.
    if (m_dump.changes) {
        setEditFlag(m_memory.editBuffer != m_memory.stored);
    }
    ++m_counters.acknowledgedDumps;
    send(MessagePort, InstrumentProtocol::acknowledge(),
         dumpTag(MessageClass::Acknowledge, message.type, message.templateNumber));
}

void VirtualInstrument::takeChange(const InstrumentMessage &message)
{
    if (message.mid == InstrumentProtocol::CurrentTemplateMid && message.low == 0) {
        const int number = static_cast<quint8>(message.data.at(0));
        if (message.data.size() != 1 || number >= InstrumentTemplateCount) {
            ++m_counters.refusedMessages;
            return;
        }
        m_memory.currentTemplate = number;
        send(MessagePort,
             InstrumentProtocol::parameterChange(message.mid, message.low, message.data),
             changeTag());
        ++m_counters.changes;
        changed();
        return;
    }
    const InstrumentTemplate before = current();
    if (!InstrumentProtocol::takeChange(message.mid, message.low, message.data, &current())) {
        ++m_counters.refusedMessages;
        return;
    }
    ++m_counters.changes;
    changed();
    setEditFlag(m_memory.editFlag || current() != before);
}

void VirtualInstrument::answerRequest(const InstrumentMessage &message)
{
    QByteArray wire;
    if (message.mid == InstrumentProtocol::CurrentTemplateMid && message.low == 0) {
        wire = InstrumentProtocol::parameterChange(
            message.mid, 0, QByteArray(1, static_cast<char>(m_memory.currentTemplate)));
    } else if (message.mid == InstrumentProtocol::EditFlagMid && message.low == 0) {
        ++m_counters.parameterRequests;
        reportEditFlag();
        return;
    } else {
        wire = InstrumentProtocol::answer(message.mid, message.low, current());
    }
    if (wire.isEmpty()) {
        ++m_counters.refusedMessages;
        return;
    }
    ++m_counters.parameterRequests;
    send(MessagePort, wire, changeTag());
}

void VirtualInstrument::store()
{
    m_memory.stored = m_memory.editBuffer;
    m_memory.editFlag = false;
    changed();
    reportEditFlag();
}

// --- Contents and edits -------------------------------------------------------------------------

InstrumentTemplate &VirtualInstrument::current()
{
    return m_memory.editBuffer[static_cast<std::size_t>(m_memory.currentTemplate)];
}

InstrumentBank &VirtualInstrument::bank(DumpType type)
{
    return type == DumpType::Stored ? m_memory.stored : m_memory.editBuffer;
}

InstrumentMemory VirtualInstrument::contents() const
{
    const MutexLocker locker(m_mutex);
    return m_memory;
}

bool VirtualInstrument::setContents(const InstrumentMemory &memory)
{
    if (memory.currentTemplate < 0 || memory.currentTemplate >= InstrumentTemplateCount ||
        !std::all_of(memory.stored.cbegin(), memory.stored.cend(), isInRange) ||
        !std::all_of(memory.editBuffer.cbegin(), memory.editBuffer.cend(), isInRange)) {
        return false;
    }
    std::unique_lock lock(m_mutex);
    m_memory = memory;
    changed();
    drain(lock);
    return true;
}

VirtualInstrument::Counters VirtualInstrument::counters() const
{
    const MutexLocker locker(m_mutex);
    return m_counters;
}

template <typename Edit>
auto VirtualInstrument::edited(Edit edit)
{
    std::unique_lock lock(m_mutex);
    const auto result = edit();
    drain(lock);
    return result;
}

void VirtualInstrument::sendOwnEdit(const QByteArray &wire)
{
    send(MessagePort, wire, changeTag());
}

bool VirtualInstrument::editByte(int block, int low, int value, int maximum)
{
    if (block < 0 || block > InstrumentKnobCount || value < 0 || value > maximum) {
        return false;
    }
    const QByteArray data(1, static_cast<char>(value));
    const quint8 mid = midOfBlock(block);
    const auto lowByte = static_cast<quint8>(low);
    if (!InstrumentProtocol::takeChange(mid, lowByte, data, &current())) {
        return false;
    }
    sendOwnEdit(InstrumentProtocol::parameterChange(mid, lowByte, data));
    m_memory.editFlag = true;
    changed();
    reportEditFlag();
    return true;
}

void VirtualInstrument::editText(int block, int low, const QByteArray &padded)
{
    const quint8 mid = midOfBlock(block);
    for (qsizetype i = 0; i < padded.size(); ++i) {
        const QByteArray data = padded.mid(i, 1);
        const auto lowByte = static_cast<quint8>(low + i);
        InstrumentProtocol::takeChange(mid, lowByte, data, &current());
        sendOwnEdit(InstrumentProtocol::parameterChange(mid, lowByte, data));
    }
    m_memory.editFlag = true;
    changed();
    reportEditFlag();
}

bool VirtualInstrument::setCCNumber(int knob, int value)
{
    return edited([&] { return isKnob(knob) && editByte(knob + 1, LowCcNumber, value, 127); });
}

bool VirtualInstrument::setDisplayFormat(int knob, int value)
{
    return edited([&] { return isKnob(knob) && editByte(knob + 1, LowDisplayFormat, value, 1); });
}

bool VirtualInstrument::setControlType(int value)
{
    return edited([&] { return editByte(0, LowControlType, value, 1); });
}

bool VirtualInstrument::setKnobName(int knob, const QString &name)
{
    return edited([&] {
        if (!isKnob(knob)) {
            return false;
        }
        editText(knob + 1, LowDisplayName, InstrumentText<15>(ascii(name)).padded());
        return true;
    });
}

void VirtualInstrument::setTemplateName(const QString &name)
{
    edited([&] {
        editText(0, LowTemplateName, InstrumentText<13>(ascii(name)).padded());
        return true;
    });
}

void VirtualInstrument::setVstiName(const QString &name)
{
    edited([&] {
        editText(0, LowVstiName, InstrumentText<12>(ascii(name)).padded());
        return true;
    });
}

bool VirtualInstrument::setRemoteId(int knob, const QString &id)
{
    return edited([&] {
        if (!isKnob(knob)) {
            return false;
        }
        const QByteArray data = InstrumentText<9>(ascii(id)).padded();
        const quint8 mid = midOfBlock(knob + 1);
        InstrumentProtocol::takeChange(mid, 0, data, &current());
        sendOwnEdit(InstrumentProtocol::parameterChange(mid, 0, data));
        m_memory.editFlag = true;
        changed();
        reportEditFlag();
        return true;
    });
}

bool VirtualInstrument::selectTemplate(int number)
{
    return edited([&] {
        if (number < 0 || number >= InstrumentTemplateCount) {
            return false;
        }
        m_memory.currentTemplate = number;
        sendOwnEdit(InstrumentProtocol::parameterChange(InstrumentProtocol::CurrentTemplateMid, 0,
                                                        QByteArray(1, static_cast<char>(number))));
        changed();
        return true;
    });
}

void VirtualInstrument::pressStore()
{
    edited([&] {
        MessageTag tag;
        tag.messageClass = MessageClass::Store;
        send(MessagePort, InstrumentProtocol::storePressed(), tag);
        store();
        return true;
    });
}

bool VirtualInstrument::turnKnob(int knob, int value)
{
    return edited([&] {
        if (!isKnob(knob) || value < 0 || value > 127) {
            return false;
        }
        const InstrumentTemplate &playing = current();
        if (playing.controlType == 1) {
            const quint8 number = playing.knobs[static_cast<std::size_t>(knob)].ccNumber;
            send(PlayPort, InstrumentProtocol::controlChange(number, static_cast<quint8>(value)),
                 MessageTag());
        }
        return true;
    });
}
