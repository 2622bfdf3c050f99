// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageEncoder.h"

#include "memory/RemoteMemAPI.h"
#include "protocol/SysExBytes.h"

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

unsigned char bulkTypeByte(MessageEncoder::BulkType type)
{
    return type == MessageEncoder::BulkStored ? SysEx::TypeStored : SysEx::TypeEditBuffer;
}

bool isBulkType(MessageEncoder::BulkType type)
{
    return type == MessageEncoder::BulkStored || type == MessageEncoder::BulkEditBuffer;
}

bool isTemplateNumber(int number)
{
    return number >= 0 && number < ParamAddress::TemplateCount;
}

} // namespace

std::vector<unsigned char> MessageEncoder::bulkBlockStart(unsigned char high, unsigned char mid,
                                                          unsigned char low) const
{
    std::vector<unsigned char> block = messageStart(SysEx::ClassBulk);
    block.insert(block.end(), {0, 0, high, mid, low});
    return block;
}

unsigned char MessageEncoder::CreateBulkChecksum(const std::vector<unsigned char> &block)
{
    unsigned sum = 0;
    for (std::size_t i = SysEx::PositionCount; i < block.size(); ++i) {
        sum += block[i] & 0x7Fu;
    }
    return static_cast<unsigned char>((0u - sum) & 0x7Fu);
}

void MessageEncoder::CreateByteCount(const std::vector<unsigned char> &block, unsigned char *high,
                                     unsigned char *low)
{
    const std::size_t count = block.size() < BytesBeforeData ? 0 : block.size() - BytesBeforeData;
    *high = static_cast<unsigned char>((count >> 7) & 0x7F);
    *low = static_cast<unsigned char>(count & 0x7F);
}

void MessageEncoder::finishBulkBlock(std::vector<unsigned char> *block)
{
    CreateByteCount(*block, &(*block)[SysEx::PositionCount], &(*block)[SysEx::PositionCount + 1]);
    block->push_back(CreateBulkChecksum(*block));
    block->push_back(SysEx::End);
}

void MessageEncoder::appendText(std::vector<unsigned char> *block, const ParamAddress &address,
                                int length) const
{
    const QString text = m_memAPI->getParamQString(address);
    for (int i = 0; i < length; ++i) {
        block->push_back(i < text.size() ? SysEx::dataByte(text.at(i))
                                         : static_cast<unsigned char>(' '));
    }
}

void MessageEncoder::appendNumber(std::vector<unsigned char> *block,
                                  const ParamAddress &address) const
{
    block->push_back(
        static_cast<unsigned char>(m_memAPI->getParam(address).getCurrentValue() & 0xFF));
}

bool MessageEncoder::createBulkHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                            tagMPEVENT *event)
{
    if (event == nullptr || !isBulkType(type) || (kind != BulkHeader && kind != BulkFooter) ||
        !isTemplateNumber(template_)) {
        return false;
    }
    std::vector<unsigned char> block =
        bulkBlockStart(kind == BulkHeader ? SysEx::AddressBulkHeader : SysEx::AddressBulkFooter,
                       bulkTypeByte(type), static_cast<unsigned char>(template_));
    finishBulkBlock(&block);
    fillEvent(event, block, m_portID);
    return true;
}

bool MessageEncoder::createBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                               tagMPEVENT *event)
{
    if (event == nullptr || !isBulkType(type) || kind != BulkHeader ||
        !isTemplateNumber(template_)) {
        return false;
    }
    std::vector<unsigned char> message = messageStart(SysEx::ClassBulkRequest);
    message.insert(message.end(), {SysEx::AddressBulkHeader, bulkTypeByte(type),
                                   static_cast<unsigned char>(template_), SysEx::End});
    fillEvent(event, message, m_portID);
    return true;
}

bool MessageEncoder::enqueueBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_)
{
    OwnedMPEvent event(new tagMPEVENT);
    if (!createBulkReqHeaderFooter(type, kind, template_, event.get())) {
        return failed();
    }
    return enqueue(std::move(event));
}

bool MessageEncoder::createBulkContent(int block, int bank, int template_, tagMPEVENT *event)
{
    if (event == nullptr || block < 0 || block >= BlockCount) {
        return false;
    }
    std::vector<unsigned char> bytes;
    if (block == 0) {
        bytes = bulkBlockStart(SysEx::AddressTemplateData, SysEx::MidTemplate, 0);
        appendText(&bytes, ParamAddress(bank, template_, ParamAddress::TemplateName, -1),
                   TemplateNameLength);
        appendText(&bytes, ParamAddress(bank, template_, ParamAddress::VSTiName, -1),
                   VSTiNameLength);
        appendNumber(&bytes, ParamAddress(bank, template_, ParamAddress::ControlType, -1));
        bytes.push_back(0); // reserved
    } else {
        const int knob = block - 1;
        bytes = bulkBlockStart(SysEx::AddressTemplateData,
                               static_cast<unsigned char>(SysEx::MidFirstKnob + knob), 0);
        appendText(&bytes, ParamAddress(bank, template_, knob, ParamAddress::RemoteNumber),
                   RemoteNumberLength);
        appendText(&bytes, ParamAddress(bank, template_, knob, ParamAddress::DisplayName),
                   DisplayNameLength);
        appendNumber(&bytes, ParamAddress(bank, template_, knob, ParamAddress::CCNumber));
        appendNumber(&bytes, ParamAddress(bank, template_, knob, ParamAddress::DisplayFormat));
    }
    finishBulkBlock(&bytes);
    fillEvent(event, bytes, m_portID);
    return true;
}

bool MessageEncoder::enqueue1TemplateBulk(int bank, int template_)
{
    if ((bank != Bank::EditBuffer && bank != Bank::Stored) || !isTemplateNumber(template_)) {
        return false;
    }
    // Crosswise to the numbers: bank 0 mirrors the device's edit buffer.
    const BulkType type = bank == Bank::EditBuffer ? BulkEditBuffer : BulkStored;
    const RecursiveMutexLocker lock(m_memAPI->memoryMutex);

    OwnedMPEvent header(new tagMPEVENT);
    if (!createBulkHeaderFooter(type, BulkHeader, template_, header.get())) {
        return failed();
    }
    if (!enqueue(std::move(header))) {
        return false;
    }
    for (int block = 0; block < BlockCount; ++block) {
        OwnedMPEvent contents(new tagMPEVENT);
        if (!createBulkContent(block, bank, template_, contents.get())) {
            return failed();
        }
        if (!enqueue(std::move(contents))) {
            return false;
        }
    }
    OwnedMPEvent footer(new tagMPEVENT);
    if (!createBulkHeaderFooter(type, BulkFooter, template_, footer.get())) {
        return failed();
    }
    return enqueue(std::move(footer));
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
    std::vector<unsigned char> block = bulkBlockStart(SysEx::AddressStoreToFlash, 0, 0);
    finishBulkBlock(&block);
    OwnedMPEvent event(new tagMPEVENT);
    fillEvent(event.get(), block, m_portID);
    return enqueue(std::move(event));
}
