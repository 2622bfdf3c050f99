// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageEncoder.h"

#include "memory/RemoteMemAPI.h"
#include "protocol/SysExBytes.h"

#include <algorithm>
#include <iterator>

// Dumps and requests of whole templates, replays as parameter changes, and the store messages.
//
// A dump of one template is 15 messages: header, template block, knob blocks 0 to 11, footer.
//
//   template block, position   9  templateName  13   ASCII, filled with blanks
//                              22 vstiName      12   ASCII, filled with blanks
//                              34 controlType   1
//                              35 reserved      1    0
//   knob block, position       9  remoteNumber  9    ASCII, filled with blanks
//                              18 displayName   15   ASCII, filled with blanks
//                              33 ccNumber      1
//                              34 displayFormat 1

namespace
{

constexpr int TemplateNameLength = 13;
constexpr int VSTiNameLength = 12;
constexpr int RemoteNumberLength = 9;
constexpr int DisplayNameLength = 15;
constexpr std::size_t BytesBeforeData = 9;
constexpr int BlockCount = 1 + ParamAddress::KnobCount;
// Header, template block, knob blocks, footer.
constexpr std::size_t DumpBytes = 11 + 38 + 37 * ParamAddress::KnobCount + 11;

unsigned char bulkTypeByte(MessageEncoder::BulkType type)
{
    return type == MessageEncoder::BulkStored ? SysEx::TypeStored : SysEx::TypeEditBuffer;
}

bool isBulkType(MessageEncoder::BulkType type)
{
    return type == MessageEncoder::BulkStored || type == MessageEncoder::BulkEditBuffer;
}

unsigned char checksum(const unsigned char *block, std::size_t size)
{
    if (size <= SysEx::PositionCount) {
        return 0;
    }
    const unsigned sum = SysEx::sum7(block + SysEx::PositionCount, size - SysEx::PositionCount);
    return static_cast<unsigned char>((0u - sum) & 0x7Fu);
}

void byteCount(std::size_t size, unsigned char *high, unsigned char *low)
{
    const std::size_t count = size < BytesBeforeData ? 0 : size - BytesBeforeData;
    *high = static_cast<unsigned char>((count >> 7) & 0x7F);
    *low = static_cast<unsigned char>(count & 0x7F);
}

// Cut at the field's length, or filled with blanks.
void putText(unsigned char *field, int length, const QString &text)
{
    const auto count = std::min<qsizetype>(length, text.size());
    std::transform(text.cbegin(), text.cbegin() + count, field, SysEx::dataByte);
    std::fill(field + count, field + length, static_cast<unsigned char>(' '));
}

unsigned char numberByte(const NumericParameter &parameter)
{
    return static_cast<unsigned char>(parameter.getCurrentValue() & 0xFF);
}

bool isTemplateNumber(int number)
{
    return number >= 0 && number < ParamAddress::TemplateCount;
}

} // namespace

// Writes the bytes before the data, and says where the data begins.
unsigned char *MessageEncoder::putBlockStart(unsigned char *block, unsigned char high,
                                             unsigned char mid, unsigned char low) const
{
    const unsigned char start[BytesBeforeData] = {
        SysEx::Manufacturer, SysEx::ClassBulk, m_modelID[0], m_modelID[1], 0, 0, high, mid, low};
    return std::copy(std::begin(start), std::end(start), block);
}

// Writes count, checksum and end of a block whose data ends at dataEnd, and says where it ends.
unsigned char *MessageEncoder::putBlockEnd(unsigned char *block, unsigned char *dataEnd)
{
    const auto size = static_cast<std::size_t>(dataEnd - block);
    byteCount(size, block + SysEx::PositionCount, block + SysEx::PositionCount + 1);
    *dataEnd = checksum(block, size);
    *++dataEnd = SysEx::End;
    return ++dataEnd;
}

unsigned char MessageEncoder::CreateBulkChecksum(const std::vector<unsigned char> &block)
{
    return checksum(block.data(), block.size());
}

void MessageEncoder::CreateByteCount(const std::vector<unsigned char> &block, unsigned char *high,
                                     unsigned char *low)
{
    byteCount(block.size(), high, low);
}

unsigned char *MessageEncoder::putHeaderFooter(unsigned char *block, BulkType type, BulkType2 kind,
                                               int template_) const
{
    const unsigned char high =
        kind == BulkHeader ? SysEx::AddressBulkHeader : SysEx::AddressBulkFooter;
    return putBlockEnd(block, putBlockStart(block, high, bulkTypeByte(type),
                                            static_cast<unsigned char>(template_)));
}

bool MessageEncoder::createBulkHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                            tagMPEVENT *event)
{
    if (event == nullptr || !isBulkType(type) || (kind != BulkHeader && kind != BulkFooter) ||
        !isTemplateNumber(template_)) {
        return false;
    }
    Message message;
    message.resize(SysEx::LongestMessage);
    message.resize(putHeaderFooter(message.data(), type, kind, template_) - message.data());
    fillEvent(event, &message, m_portID);
    return true;
}

bool MessageEncoder::buildBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                              Message *message) const
{
    if (!isBulkType(type) || kind != BulkHeader || !isTemplateNumber(template_)) {
        return false;
    }
    *message = messageStart(SysEx::ClassBulkRequest);
    const unsigned char rest[] = {SysEx::AddressBulkHeader, bulkTypeByte(type),
                                  static_cast<unsigned char>(template_), SysEx::End};
    message->append(rest, std::size(rest));
    return true;
}

bool MessageEncoder::createBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                               tagMPEVENT *event)
{
    Message message;
    if (event == nullptr || !buildBulkReqHeaderFooter(type, kind, template_, &message)) {
        return false;
    }
    fillEvent(event, &message, m_portID);
    return true;
}

bool MessageEncoder::enqueueBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_)
{
    Message message;
    if (!buildBulkReqHeaderFooter(type, kind, template_, &message)) {
        return failed();
    }
    return enqueue(&message);
}

// Under the memory's lock. data: null for a place that does not exist, which gives blanks and
// zeros.
unsigned char *MessageEncoder::putContents(unsigned char *block, int number,
                                           const ControlTemplateData *data) const
{
    static const QString none;
    unsigned char *field = nullptr;
    if (number == 0) {
        field = putBlockStart(block, SysEx::AddressTemplateData, SysEx::MidTemplate, 0);
        putText(field, TemplateNameLength, data != nullptr ? data->getTemplateName() : none);
        field += TemplateNameLength;
        putText(field, VSTiNameLength, data != nullptr ? data->getVSTiName() : none);
        field += VSTiNameLength;
        *field++ = data != nullptr ? numberByte(data->getCtrlType()) : 0;
        *field++ = 0; // reserved
    } else {
        const int knob = number - 1;
        const ControllerData *held = data != nullptr ? data->AccessController(knob) : nullptr;
        field = putBlockStart(block, SysEx::AddressTemplateData,
                              static_cast<unsigned char>(SysEx::MidFirstKnob + knob), 0);
        putText(field, RemoteNumberLength, held != nullptr ? held->getRemoteTagID() : none);
        field += RemoteNumberLength;
        putText(field, DisplayNameLength, held != nullptr ? held->getDisplayName() : none);
        field += DisplayNameLength;
        *field++ = held != nullptr ? numberByte(held->getCCNum()) : 0;
        *field++ = held != nullptr ? numberByte(held->getDispFormat()) : 0;
    }
    return putBlockEnd(block, field);
}

bool MessageEncoder::createBulkContent(int block, int bank, int template_, tagMPEVENT *event)
{
    if (event == nullptr || block < 0 || block >= BlockCount) {
        return false;
    }
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    Message message;
    message.resize(SysEx::LongestMessage);
    const unsigned char *end =
        putContents(message.data(), block, m_memAPI->AccessTemplate(bank, template_));
    message.resize(end - message.data());
    fillEvent(event, &message, m_portID);
    return true;
}

// The group that bufferingMsg() would make of the 15 messages one by one, made in one go: a send
// run makes a hundred of them before its first byte goes out.
bool MessageEncoder::enqueue1TemplateBulk(int bank, int template_)
{
    if ((bank != Bank::EditBuffer && bank != Bank::Stored) || !isTemplateNumber(template_)) {
        return false;
    }
    // Crosswise to the numbers: bank 0 mirrors the device's edit buffer.
    const BulkType type = bank == Bank::EditBuffer ? BulkEditBuffer : BulkStored;
    const SendLock lock(this);
    if (m_openGroup != nullptr) {
        return failed();
    }
    const ControlTemplateData *data = m_memAPI->AccessTemplate(bank, template_);
    auto group = std::make_shared<Group>();
    group->first = true;
    group->second.reserve(BlockCount + 2);
    group->bytes.resize(DumpBytes);
    unsigned char *place = group->bytes.data();
    const auto add = [this, &group, &place](unsigned char *end) {
        group->second.push_back({static_cast<std::uint32_t>(end - place), m_portID, MPEventSysEx});
        place = end;
    };
    add(putHeaderFooter(place, type, BulkHeader, template_));
    for (int block = 0; block < BlockCount; ++block) {
        add(putContents(place, block, data));
    }
    add(putHeaderFooter(place, type, BulkFooter, template_));
    m_transmitQueue.append(std::move(group));
    m_memAPI->incrementTransmitedBulkCounter();
    return true;
}

bool MessageEncoder::sendBulk(int bank, int template_)
{
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    return enqueue1TemplateBulk(bank, template_) && (sendMessage(nullptr) || failed());
}

bool MessageEncoder::sendEditorAllData(bool editBufferOnly)
{
    // The whole run is queued before the first byte goes out; each acknowledge releases a group.
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (!enqueue1TemplateBulk(Bank::EditBuffer, number)) {
            return failed();
        }
    }
    if (!enququeTemplateNumberSelect()) {
        return failed();
    }
    if (!editBufferOnly) {
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            if (!enqueue1TemplateBulk(Bank::Stored, number)) {
                return failed();
            }
        }
    }
    return sendMessage(nullptr) || failed();
}

bool MessageEncoder::sendHardWareDataReq(bool editBufferToo)
{
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    // A refused request empties the queue and ends the loop, and the rest is tried all the same.
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (!enqueueBulkReqHeaderFooter(BulkStored, BulkHeader, number)) {
            break;
        }
    }
    if (!enququeBankEditFlagReq()) {
        return failed();
    }
    if (editBufferToo) {
        if (!enququeTemplateNumberReq()) {
            return failed();
        }
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            if (!enqueueBulkReqHeaderFooter(BulkEditBuffer, BulkHeader, number)) {
                return failed();
            }
        }
    }
    return sendMessage(nullptr) || failed();
}

bool MessageEncoder::enqueueKnobChanges(int bank, int template_, int knob)
{
    const auto address = [=](int parameter) {
        return ParamAddress(bank, template_, knob, parameter);
    };
    const auto text = [this](const ParamAddress &place) {
        return enqueueParamChange(place, m_memAPI->getParamQString(place));
    };
    const auto number = [this](const ParamAddress &place) {
        return enqueueParamChange(place, m_memAPI->getParam(place).getCurrentValue());
    };
    return text(address(ParamAddress::DisplayName)) && number(address(ParamAddress::CCNumber)) &&
           number(address(ParamAddress::DisplayFormat)) &&
           text(address(ParamAddress::RemoteNumber));
}

bool MessageEncoder::sendParamChangeOfController(int bank, int template_, int knob)
{
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    return (enqueueKnobChanges(bank, template_, knob) && sendMessage(nullptr)) || failed();
}

bool MessageEncoder::send1TemplateDataParamChange(int bank, int template_)
{
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    for (const int name : {ParamAddress::TemplateName, ParamAddress::VSTiName}) {
        const ParamAddress place(bank, template_, name, -1);
        if (!enqueueParamChange(place, m_memAPI->getParamQString(place))) {
            return failed();
        }
    }
    const ParamAddress type(bank, template_, ParamAddress::ControlType, -1);
    const ParamAddress reserved(bank, template_, ParamAddress::ReservedTemplateByte, -1);
    if (!enqueueParamChange(type, m_memAPI->getParam(type).getCurrentValue()) ||
        !enqueueParamChange(reserved, 0)) {
        return failed();
    }
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        if (!sendParamChangeOfController(bank, template_, knob)) {
            return false;
        }
    }
    return true;
}

bool MessageEncoder::sendStoreMessage()
{
    static constexpr unsigned char StoreAddress[2] = {SysEx::MidStore, 0x00};
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);
    return enqueueParamChange(StoreAddress, nullptr, 0) && (sendMessage(nullptr) || failed());
}

bool MessageEncoder::enqueueStoreToFlash()
{
    // The shape of a dump block without data; its checksum is the constant 0x6F.
    Message message;
    message.resize(SysEx::LongestMessage);
    unsigned char *block = message.data();
    message.resize(putBlockEnd(block, putBlockStart(block, SysEx::AddressStoreToFlash, 0, 0)) -
                   block);
    return enqueue(&message);
}
