// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageDecoder.h"

#include "memory/RemoteMemAPI.h"
#include "midi/MPEvent.h"
#include "protocol/SysExBytes.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

#include <QtCore/QDebug>

#include <algorithm>

// The reception of dumps:
//
//   state      message              next       does
//   any        header               receiving  remembers template and bank
//   receiving  contents             receiving  writes to the hardware bank
//   idle       contents             idle       drops it
//   any        footer               idle       counts the request as answered, sends the next group

namespace
{

constexpr int RemoteNumberLength = 9;
// Header and footer: address, checksum and end are all there.
constexpr std::uint32_t FramingLength = 11;
// A change without data, as the store report is.
constexpr std::uint32_t ShortestChangeLength = 8;

bool holds(const tagMPEVENT &event, int position)
{
    return event.longData != nullptr && static_cast<std::uint32_t>(position) < event.length;
}

// 0xFF, which is no data byte and no class, for a byte that is not there.
unsigned char byteAt(const tagMPEVENT &event, int position)
{
    return holds(event, position) ? event.longData[position] : static_cast<unsigned char>(0xFF);
}

// Bit 7 is never set within a message. Where it is, the input joined two messages that came in one
// run, and the first of them has ended already.
bool areDataBytes(const unsigned char *bytes, int count)
{
    return SysEx::areDataBytes(bytes, static_cast<std::size_t>(count));
}

bool isBulkType(unsigned char type)
{
    return type == SysEx::TypeStored || type == SysEx::TypeEditBuffer;
}

bool isFraming(const tagMPEVENT &event, unsigned char high)
{
    return event.length >= FramingLength && byteAt(event, SysEx::PositionBulkAddress) == high &&
           isBulkType(byteAt(event, SysEx::PositionBulkAddress + 1)) &&
           byteAt(event, SysEx::PositionBulkAddress + 2) < ParamAddress::TemplateCount;
}

QString withoutTrailingBlanks(QString text)
{
    while (text.endsWith(QLatin1Char(' '))) {
        text.chop(1);
    }
    return text;
}

// One value within a contents block: its parameter or selector, and where it stands in the data.
struct BlockField
{
    int selector;
    int first;
    int length;
};

// In the order in which the values are written.
constexpr BlockField TemplateFields[] = {{ParamAddress::TemplateName, 0, 13},
                                         {ParamAddress::ControlType, 25, 1},
                                         {ParamAddress::VSTiName, 13, 12}};
constexpr BlockField KnobFields[] = {{ParamAddress::DisplayName, 9, 15},
                                     {ParamAddress::CCNumber, 24, 1},
                                     {ParamAddress::DisplayFormat, 25, 1},
                                     {ParamAddress::RemoteNumber, 0, 9}};

// A text field of a block without the blanks that fill it.
QLatin1String textOf(const unsigned char *data, int length)
{
    while (length > 0 && data[length - 1] == ' ') {
        --length;
    }
    return QLatin1String(reinterpret_cast<const char *>(data), length);
}

// Whether the memory holds already what a field brings, so that writing it would do nothing.
bool isHeld(const ControlTemplateData &held, const BlockField &field, const unsigned char *data)
{
    const unsigned char *value = data + field.first;
    switch (field.selector) {
    case ParamAddress::TemplateName:
        return held.getTemplateName() == textOf(value, field.length);
    case ParamAddress::VSTiName:
        return held.getVSTiName() == textOf(value, field.length);
    default:
        return held.getCtrlType().getCurrentValue() == *value;
    }
}

bool isHeld(const ControllerData &held, const BlockField &field, const unsigned char *data)
{
    const unsigned char *value = data + field.first;
    switch (field.selector) {
    case ParamAddress::DisplayName:
        return held.getDisplayName() == textOf(value, field.length);
    case ParamAddress::RemoteNumber:
        return held.getRemoteTagID() == textOf(value, field.length);
    case ParamAddress::CCNumber:
        return held.getCCNum().getCurrentValue() == *value;
    default:
        return held.getDispFormat().getCurrentValue() == *value;
    }
}

// The rule of QString::replace with length 1: past the end nothing changes, at the end it appends.
void putCharacter(QString *text, int position, QChar character)
{
    if (position == text->size()) {
        text->append(character);
    } else if (position >= 0 && position < text->size()) {
        (*text)[position] = character;
    }
}

// For its life, values written by this thread are not sent back to the device. It holds the
// memory's lock meanwhile, so that no other thread's change is kept from being sent by it, and it
// puts back what it found, so that it does not open a gate that a file load has closed.
class ClosedGate
{
public:
    explicit ClosedGate(RemoteMemAPI *api)
        : m_api(api)
        , m_lock(api->memoryMutex)
        , m_wasOpen(api->isAllowToSendSysEx())
    {
        if (m_wasOpen) {
            m_api->setAllowToSendSysExFlag(false);
        }
    }
    ~ClosedGate()
    {
        if (m_wasOpen) {
            m_api->setAllowToSendSysExFlag(true);
        }
    }
    ClosedGate(const ClosedGate &) = delete;
    ClosedGate &operator=(const ClosedGate &) = delete;

private:
    RemoteMemAPI *m_api;
    const RecursiveMutexLocker m_lock;
    const bool m_wasOpen;
};

} // namespace

MessageDecoder::MessageDecoder(int portID, RemoteMemAPI *memAPI, int midiFilterType,
                               unsigned char modelFirst, unsigned char modelSecond,
                               SysExParamChangeAddressTransTable *sysExTable,
                               AddressTransTable *addressTable)
    : MessageProcessor(portID, memAPI, midiFilterType)
    , m_sysExTable(sysExTable)
    , m_addressTable(addressTable)
    , m_namedAddress(addressTable)
    , m_modelID{modelFirst, modelSecond}
{
}

// --- Counters ------------------------------------------------------------------------------------

void MessageDecoder::incrementTransmitedBulkCounter()
{
    const MutexLocker lock(m_bulkCounterMutex);
    ++m_transmitedBulkCounter;
}

void MessageDecoder::decrementTransmitedBulkCounter()
{
    const MutexLocker lock(m_bulkCounterMutex);
    m_transmitedBulkCounter = std::max(0, m_transmitedBulkCounter - 1);
}

void MessageDecoder::clearTransmitedBulkCounter()
{
    const MutexLocker lock(m_bulkCounterMutex);
    m_transmitedBulkCounter = 0;
}

int MessageDecoder::transmitedBulkCount() const
{
    const MutexLocker lock(m_bulkCounterMutex);
    return m_transmitedBulkCounter;
}

void MessageDecoder::incrementTransmitedBulkReqCounter()
{
    const MutexLocker lock(m_bulkReqCounterMutex);
    ++m_transmitedBulkReqCounter;
}

void MessageDecoder::decrementTransmitedBulkReqCounter()
{
    const MutexLocker lock(m_bulkReqCounterMutex);
    m_transmitedBulkReqCounter = std::max(0, m_transmitedBulkReqCounter - 1);
}

void MessageDecoder::clearTransmitedBulkReqCounter()
{
    const MutexLocker lock(m_bulkReqCounterMutex);
    m_transmitedBulkReqCounter = 0;
}

int MessageDecoder::transmitedBulkReqCount() const
{
    const MutexLocker lock(m_bulkReqCounterMutex);
    return m_transmitedBulkReqCounter;
}

BulkReceipt MessageDecoder::bulkReceipt() const
{
    BulkReceipt receipt;
    for (std::size_t kind = 0; kind < m_receipt.size(); ++kind) {
        for (std::size_t number = 0; number < m_receipt[kind].size(); ++number) {
            const std::uint16_t noted = m_receipt[kind][number];
            receipt.blocks[kind][number] = noted & ~ReceiptFinished;
            receipt.finished[kind][number] = (noted & ReceiptFinished) != 0;
        }
    }
    return receipt;
}

void MessageDecoder::clearBulkReceipt()
{
    for (auto &kind : m_receipt) {
        for (std::atomic<std::uint16_t> &noted : kind) {
            noted = 0;
        }
    }
}

// Of the dump being received.
std::atomic<std::uint16_t> &MessageDecoder::receipt()
{
    const int kind =
        m_bulkBank == Bank::HardwareStored ? BulkReceipt::Stored : BulkReceipt::EditBuffer;
    return m_receipt[static_cast<std::size_t>(kind)]
                    [static_cast<std::size_t>(m_bulkTemplateNumber)];
}

// --- Tests on an event ---------------------------------------------------------------------------

bool MessageDecoder::isSysEx(const tagMPEVENT &event) const
{
    return event.eventType == MPEventSysEx;
}

bool MessageDecoder::isCorvanSysEx(const tagMPEVENT &event) const
{
    return byteAt(event, 0) == SysEx::Manufacturer;
}

bool MessageDecoder::isDesiredModelSysEx(const tagMPEVENT &event) const
{
    return holds(event, SysEx::PositionModel + 1) &&
           byteAt(event, SysEx::PositionModel) == m_modelID[0] &&
           byteAt(event, SysEx::PositionModel + 1) == m_modelID[1];
}

bool MessageDecoder::isBulkDump(const tagMPEVENT &event) const
{
    return byteAt(event, SysEx::PositionClass) < 0x10;
}

bool MessageDecoder::isParameterChange(const tagMPEVENT &event) const
{
    return (byteAt(event, SysEx::PositionClass) & 0xF0) == SysEx::ClassParameterChange;
}

bool MessageDecoder::isBulkAcknowledge(const tagMPEVENT &event) const
{
    return byteAt(event, SysEx::PositionClass + 1) == SysEx::AcknowledgeByte &&
           (byteAt(event, SysEx::PositionClass) & 0xF0) == SysEx::ClassAcknowledge;
}

bool MessageDecoder::isBulkHeader(const tagMPEVENT &event) const
{
    return isFraming(event, SysEx::AddressBulkHeader);
}

bool MessageDecoder::isBulkFooter(const tagMPEVENT &event) const
{
    return isFraming(event, SysEx::AddressBulkFooter);
}

bool MessageDecoder::isBulkContents(const tagMPEVENT &event) const
{
    return byteAt(event, SysEx::PositionBulkAddress) == SysEx::AddressTemplateData;
}

bool MessageDecoder::isBulkContentsCommon(const tagMPEVENT &event) const
{
    return byteAt(event, SysEx::PositionBulkAddress + 1) == SysEx::MidTemplate;
}

bool MessageDecoder::isBulkContentsController(const tagMPEVENT &event, int *knob) const
{
    const unsigned char mid = byteAt(event, SysEx::PositionBulkAddress + 1);
    if ((mid & 0xF0) != SysEx::MidFirstKnob) {
        return false;
    }
    if (knob != nullptr) {
        *knob = mid & 0x0F;
    }
    return true;
}

bool MessageDecoder::isNormalBulkHeader(const tagMPEVENT &event) const
{
    return isBulkHeader(event) &&
           byteAt(event, SysEx::PositionBulkAddress + 1) == SysEx::TypeStored;
}

bool MessageDecoder::isEditBuffBulkHeader(const tagMPEVENT &event) const
{
    return isBulkHeader(event) &&
           byteAt(event, SysEx::PositionBulkAddress + 1) == SysEx::TypeEditBuffer;
}

bool MessageDecoder::isBulkChecksumCorrect(const tagMPEVENT &event) const
{
    if (event.longData == nullptr || event.length < 2) {
        return false;
    }
    // Data bytes from position 4, then the checksum, which stands before the end byte.
    const std::uint32_t checksum = event.length - 2;
    unsigned sum = event.longData[checksum];
    if (checksum > SysEx::PositionCount) {
        sum += SysEx::sum7(event.longData + SysEx::PositionCount, checksum - SysEx::PositionCount);
    }
    return (sum & 0x7F) == 0;
}

int MessageDecoder::getTemplateNumberFromBulk(const tagMPEVENT &event) const
{
    return byteAt(event, SysEx::PositionBulkAddress + 2);
}

// --- Decoding ------------------------------------------------------------------------------------

bool MessageDecoder::Process(tagMPEVENT &event)
{
    if (!isSysEx(event) || !isCorvanSysEx(event) || m_memAPI == nullptr) {
        return false;
    }
    if (isDesiredModelSysEx(event)) {
        if (isBulkDump(event)) {
            return DecodeBulk(event);
        }
        return isParameterChange(event) && DecodeParameterChange(event);
    }
    if (!isBulkAcknowledge(event)) {
        return false;
    }
    // In one piece: whoever hears of the completion may ask for dumps at once, and the wish for
    // them must not be revoked after that.
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    decrementTransmitedBulkCounter();
    bool queueWasEmpty = false;
    m_memAPI->sendMessage(&queueWasEmpty);
    if (queueWasEmpty && transmitedBulkCount() == 0 && m_memAPI->takeWaitBulkTransmitDone()) {
        m_memAPI->emitCompleteBulkTransmitSignal();
        m_memAPI->revokeReceivedBulk();
    }
    return true;
}

bool MessageDecoder::DecodeBulk(tagMPEVENT &event)
{
    if (!m_memAPI->getBulkRecieveEnableFlag() || !isBulkChecksumCorrect(event)) {
        return false;
    }
    if (isBulkContents(event)) {
        m_lastContentsResult = decodeBulkContents(event);
        return m_lastContentsResult;
    }
    if (isBulkFooter(event)) {
        return decodeBulkFooter(event);
    }
    if (isBulkHeader(event)) {
        qDebug("*** Receiving Bulk...");
        return decodeBulkHeader(event);
    }
    return false;
}

bool MessageDecoder::decodeBulkHeader(const tagMPEVENT &event)
{
    m_receivingBulk = true;
    m_bulkTemplateNumber = getTemplateNumberFromBulk(event);
    m_bulkBank = isNormalBulkHeader(event) ? Bank::HardwareStored : Bank::HardwareEditBuffer;

    receipt() = 0;
    return true;
}

bool MessageDecoder::decodeBulkContents(const tagMPEVENT &event)
{
    int knob = 0;
    const bool isCommon = isBulkContentsCommon(event);
    if (!isCommon && !isBulkContentsController(event, &knob)) {
        return true;
    }
    if (!isCommon && knob >= ParamAddress::KnobCount) {
        return false;
    }
    // Checked before the first field is written: a short block is refused whole.
    const int dataLength = isCommon ? SysEx::TemplateDataLength : SysEx::KnobDataLength;
    if (!m_receivingBulk || !holds(event, SysEx::PositionBulkData + dataLength + 1) ||
        !areDataBytes(event.longData + SysEx::PositionBulkData, dataLength)) {
        return false;
    }
    const unsigned char *data = event.longData + SysEx::PositionBulkData;
    // Held once for all fields of the block. A run brings 5,200 of them, and most bring nothing
    // new: those are only compared.
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    const ControlTemplateData *held = m_memAPI->AccessTemplate(m_bulkBank, m_bulkTemplateNumber);
    if (held == nullptr) {
        return false;
    }
    bool good = true;
    if (isCommon) {
        for (const BlockField &field : TemplateFields) {
            if (!isHeld(*held, field, data)) {
                const ParamAddress address(m_bulkBank, m_bulkTemplateNumber, field.selector, -1);
                good = setParamToMemoryFromBulk(address, event) && good;
            }
        }
    } else {
        const ControllerData *heldKnob = held->AccessController(knob);
        for (const BlockField &field : KnobFields) {
            if (!isHeld(*heldKnob, field, data)) {
                const ParamAddress address(m_bulkBank, m_bulkTemplateNumber, knob, field.selector);
                good = setParamToMemoryFromBulk(address, event) && good;
            }
        }
    }
    if (good) {
        receipt() |= static_cast<std::uint16_t>(1u << (isCommon ? 0 : 1 + knob));
    }
    return good;
}

bool MessageDecoder::setParamToMemoryFromBulk(const ParamAddress &address, const tagMPEVENT &event)
{
    unsigned char device[4];
    if (!m_receivingBulk || !m_sysExTable->getSysExParamAddress(address, device)) {
        return false;
    }
    const int first = SysEx::PositionBulkData + device[1];
    const int length = device[3];
    // The checksum and the end byte follow the data.
    if (!holds(event, first + length + 1)) {
        return false;
    }
    if (address.isNumericParamAdr()) {
        return WriteNumericParamToMemory(address, event.longData[first]);
    }
    if (!address.isStringParamAdr()) {
        return false;
    }
    return WriteStringParamToMemory(address, QString(textOf(event.longData + first, length)));
}

bool MessageDecoder::decodeBulkFooter(const tagMPEVENT &)
{
    if (m_receivingBulk) {
        receipt() |= ReceiptFinished;
    }
    m_receivingBulk = false;
    decrementTransmitedBulkReqCounter();
    m_memAPI->sendMessage(nullptr);
    if (transmitedBulkReqCount() == 0 && m_memAPI->takeWaitBulkReceiveDone()) {
        m_memAPI->emitCompleteBulkReceiveSignal();
    }
    return true;
}

bool MessageDecoder::DecodeParameterChange(tagMPEVENT &event)
{
    if (m_sysExTable == nullptr || event.length < ShortestChangeLength) {
        return false;
    }
    // Positions 5 and 6: the device's mid and low address byte. The high one is not read.
    const unsigned char *device = event.longData + SysEx::PositionChangeAddress + 1;
    const unsigned char *data = event.longData + SysEx::PositionChangeData;
    // The end byte follows the data.
    const int dataLength = static_cast<int>(event.length) - SysEx::PositionChangeData - 1;

    // The place is read and written in one piece: another thread may select another template.
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    ParamAddress address = m_sysExTable->getMemoryParamAddress(device);
    if (address.isCurrentTemplateNumAdr()) {
        address.setParamAddress(Bank::EditBuffer, -1, -1, -1);
    } else if (device[0] == SysEx::MidStore && device[1] == 0) {
        m_memAPI->storeBank(false);
        return true;
    } else if (device[0] == SysEx::MidBankEditFlag && device[1] == 0) {
        address.setParamAddress(ParamAddress::BankEditFlag, -1, -1, -1);
    } else {
        const ParamAddress current(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
        address.setParamAddress(Bank::EditBuffer, m_memAPI->getParam(current).getCurrentValue(), -1,
                                -1);
    }
    unsigned char place[2] = {0, 0}; // position in the field, length of the field
    m_sysExTable->getSysExAddressParamInfo(device, place);

    if (!address.isStringParamAdr()) {
        if (dataLength < 1 || !areDataBytes(data, 1)) {
            return false;
        }
        const bool written = WriteNumericParamToMemory(address, data[0]);
        if (address.isCurrentTemplateNumAdr()) {
            m_memAPI->emitNotifiedCurrentTemplateNumberSignal();
        }
        return written;
    }
    getStringParamFromMemory(address);
    int count = 0;
    if (address.isTemplateNameAdr() || address.isDisplayNameAdr() || address.isVSTiNameAdr()) {
        count = 1;
    } else if (address.isRemoteTagIDAdr()) {
        count = RemoteNumberLength;
    }
    return count > 0 && dataLength >= count && areDataBytes(data, count) &&
           WriteStringParamToMemory(data, place[0], address, count);
}

QString *MessageDecoder::cacheFor(const ParamAddress &address)
{
    if (address.isTemplateNameAdr()) {
        return &m_templateNameCache;
    }
    if (address.isVSTiNameAdr()) {
        return &m_vstiNameCache;
    }
    if (address.isDisplayNameAdr()) {
        return &m_displayNameCache;
    }
    return address.isRemoteTagIDAdr() ? &m_remoteTagCache : nullptr;
}

void MessageDecoder::getStringParamFromMemory(const ParamAddress &address)
{
    QString *cache = cacheFor(address);
    if (cache == nullptr) {
        return;
    }
    *cache = m_memAPI->getParamQString(address);
    if (cache == &m_remoteTagCache) {
        *cache = cache->rightJustified(RemoteNumberLength, QLatin1Char('0'));
    }
}

bool MessageDecoder::WriteStringParamToMemory(const unsigned char *characters, int position,
                                              const ParamAddress &address, int count)
{
    const QString *cache = cacheFor(address);
    if (m_memAPI == nullptr || cache == nullptr) {
        return false;
    }
    const ClosedGate gate(m_memAPI);
    QString text = *cache;
    if (text.isEmpty()) {
        return false;
    }
    for (int i = 0; i < count; ++i) {
        putCharacter(&text, position + i, QLatin1Char(static_cast<char>(characters[i])));
    }
    m_memAPI->setParam(address, withoutTrailingBlanks(text));
    return true;
}

bool MessageDecoder::WriteStringParamToMemory(const ParamAddress &address, const QString &text)
{
    const ClosedGate gate(m_memAPI);
    m_memAPI->setParam(address, text);
    return true;
}

bool MessageDecoder::WriteNumericParamToMemory(const ParamAddress &address, int value)
{
    if (m_memAPI == nullptr) {
        return false;
    }
    if (address.isCurrentTemplateNumAdr() && m_memAPI->takeSentTemplateNumber(value)) {
        // The device's echo of the editor's own change.
        m_memAPI->endCurrentTemplateHold();
        return true;
    }
    const ClosedGate gate(m_memAPI);
    m_memAPI->setParam(address, value);
    return true;
}
