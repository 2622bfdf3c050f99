// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageEncoder.h"

#include "memory/RemoteMemAPI.h"
#include "midi/ComuController.h"
#include "midi/TAppMIDIOut.h"
#include "protocol/SysExBytes.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <utility>

// Parameter changes, requests and the transmit queue; the dumps stand in MessageEncoderBulk.cpp.

namespace
{

constexpr int RemoteNumberLength = 9;
// bufferingMsg tells messages apart by bytes 1 and 6.
constexpr std::uint32_t ShortestMessage = 7;
// Of the largest group, the dump of one template.
constexpr int DumpMessages = 15;

// A byte with bit 7 set would end the message at the receiver.
bool isDataByte(unsigned char byte)
{
    return byte < 0x80;
}

} // namespace

MessageEncoder::SendLock::SendLock(MessageEncoder *encoder)
    : m_memoryLock(encoder->m_memAPI->memoryMutex)
    , m_queueLock(encoder->m_queueMutex)
{
}

MessageEncoder::MessageEncoder(unsigned char modelFirst, unsigned char modelSecond,
                               SysExParamChangeAddressTransTable *sysExTable,
                               ComuController *comuController, int portID,
                               AddressTransTable *addressTable, RemoteMemAPI *memAPI)
    : m_modelID{modelFirst, modelSecond}
    , m_sysExTable(sysExTable)
    , m_comuController(comuController)
    , m_portID(portID)
    , m_addressTable(addressTable)
    , m_memAPI(memAPI)
    , m_namedAddress(addressTable)
{
}

MessageEncoder::~MessageEncoder()
{
    clearTransmitQueue(true);
}

void MessageEncoder::Group::append(const tagMPEVENT &event)
{
    second.push_back({event.length, event.portID, event.eventType});
    bytes.insert(bytes.end(), event.longData, event.longData + event.length);
}

void MessageEncoder::Group::clear()
{
    second.clear();
    bytes.clear();
}

// --- Building messages ---------------------------------------------------------------------------

// The event of bytes that live longer.
tagMPEVENT MessageEncoder::eventOf(unsigned char *bytes, std::uint32_t length, int port)
{
    tagMPEVENT event;
    event.eventType = MPEventSysEx;
    event.portID = port;
    event.length = length;
    event.longData = bytes;
    return event;
}

void MessageEncoder::fillEvent(tagMPEVENT *event, Message *message, int port)
{
    *event = eventOf(nullptr, static_cast<std::uint32_t>(message->size()), port);
    event->longData = new unsigned char[event->length];
    std::copy(message->cbegin(), message->cend(), event->longData);
}

MessageEncoder::Message MessageEncoder::messageStart(unsigned char messageClass) const
{
    return {SysEx::Manufacturer, messageClass, m_modelID[0], m_modelID[1]};
}

bool MessageEncoder::buildParamChange(const unsigned char *address, const unsigned char *data,
                                      int count, Message *message) const
{
    const bool hasData = data != nullptr && count > 0;
    if (hasData && !std::all_of(data, data + count, isDataByte)) {
        return false;
    }
    *message = messageStart(SysEx::ClassParameterChange);
    const unsigned char place[] = {SysEx::AddressTemplateData, address[0], address[1]};
    message->append(place, std::size(place));
    if (hasData) {
        message->append(data, count);
    }
    message->append(SysEx::End);
    return true;
}

bool MessageEncoder::createParamChange(tagMPEVENT *event, const unsigned char *address,
                                       const unsigned char *data, int count)
{
    Message message;
    if (event == nullptr || !buildParamChange(address, data, count, &message)) {
        return false;
    }
    fillEvent(event, &message, m_portID);
    return true;
}

MessageEncoder::Message MessageEncoder::buildParamReq(const unsigned char *address) const
{
    Message message = messageStart(SysEx::ClassParameterRequest);
    const unsigned char rest[] = {SysEx::AddressTemplateData, address[0], address[1], SysEx::End};
    message.append(rest, std::size(rest));
    return message;
}

bool MessageEncoder::createParamReq(const unsigned char *address, int port, tagMPEVENT *event)
{
    if (event == nullptr) {
        return false;
    }
    Message message = buildParamReq(address);
    fillEvent(event, &message, port);
    return true;
}

// --- Queueing ------------------------------------------------------------------------------------

bool MessageEncoder::failed()
{
    clearTransmitQueue(true);
    return false;
}

bool MessageEncoder::enqueue(Message *message)
{
    const SendLock lock(this);
    return bufferCopy(
               eventOf(message->data(), static_cast<std::uint32_t>(message->size()), m_portID)) ||
           failed();
}

bool MessageEncoder::enqueueParamChange(const unsigned char *address, const unsigned char *data,
                                        int count)
{
    Message message;
    if (!buildParamChange(address, data, count, &message)) {
        return failed();
    }
    return enqueue(&message);
}

bool MessageEncoder::enqueueParamChange(const ParamAddress &address, int value)
{
    unsigned char device[4];
    if (!m_sysExTable->getSysExParamAddress(address, device)) {
        return false;
    }
    const auto data = static_cast<unsigned char>(value & 0xFF);
    if (!isDataByte(data)) {
        return false;
    }
    return enqueueParamChange(device, &data, 1);
}

bool MessageEncoder::enqueueParamChange(const ParamAddress &address, const QString &text)
{
    unsigned char device[4];
    if (!m_sysExTable->getSysExParamAddress(address, device)) {
        return false;
    }
    const auto byteAt = [&text](int index) {
        return index < text.size() ? SysEx::dataByte(text.at(index))
                                   : static_cast<unsigned char>(' ');
    };
    if (address.isTemplateNameAdr() || address.isVSTiNameAdr() || address.isDisplayNameAdr()) {
        const SendLock lock(this);
        const int length = device[3];
        for (int i = 0; i < length; ++i) {
            const unsigned char place[2] = {device[0], static_cast<unsigned char>(device[1] + i)};
            const unsigned char data = byteAt(i);
            if (!enqueueParamChange(place, &data, 1)) {
                return false;
            }
        }
        return true;
    }
    if (address.isRemoteTagIDAdr()) {
        unsigned char data[RemoteNumberLength];
        for (int i = 0; i < RemoteNumberLength; ++i) {
            data[i] = byteAt(i);
        }
        return enqueueParamChange(device, data, RemoteNumberLength);
    }
    return false;
}

bool MessageEncoder::sendParamChange(const unsigned char *address, unsigned char value)
{
    const SendLock lock(this);
    return enqueueParamChange(address, &value, 1) && (sendMessage(nullptr) || failed());
}

bool MessageEncoder::enqueueParamReq(const unsigned char *address)
{
    Message message = buildParamReq(address);
    return enqueue(&message);
}

bool MessageEncoder::enqueueNamedRequest(const char *name)
{
    ParamAddress address = m_namedAddress;
    address.setParamAddress(-1, -1, -1, name);
    unsigned char device[4];
    if (!m_sysExTable->getSysExParamAddress(address, device)) {
        return failed();
    }
    return enqueueParamReq(device);
}

bool MessageEncoder::enququeTemplateNumberReq()
{
    return enqueueNamedRequest("currentTemplateNumber");
}

bool MessageEncoder::enququeBankEditFlagReq()
{
    return enqueueNamedRequest("bankEditFlag");
}

bool MessageEncoder::enququeTemplateNumberSelect()
{
    ParamAddress address = m_namedAddress;
    address.setParamAddress(0, -1, -1, "currentTemplateNumber");
    return enqueueParamChange(address, m_memAPI->getParam(address).getCurrentValue()) || failed();
}

// How a message finds its group, by byte 1 (class) and byte 6 (for dumps, the high address byte);
// the first row that fits:
//
//   message                       open group   goes to                          wait   open after
//   bulk header                   none         a new group                      yes    that group
//   change, parameter request     any          a group of its own               no     none
//   bulk request                  none         a group of its own               yes    none
//   store to flash                any          the open group, or a new one     no     none
//   other dump class, footer      yes          the open group                   -      none
//   other dump class, contents    yes          the open group                   -      that group
//   everything else               any          refused
bool MessageEncoder::bufferCopy(const tagMPEVENT &event)
{
    if (event.longData == nullptr || event.length < ShortestMessage) {
        return false;
    }
    const unsigned char *bytes = event.longData;
    const unsigned char b1 = bytes[SysEx::PositionClass];
    const unsigned char b6 = bytes[SysEx::PositionBulkAddress];
    const unsigned char messageClass = b1 & 0xF0;
    const bool isDump = messageClass == SysEx::ClassBulk;

    const auto startGroup = [this, &event](bool waits) {
        auto group = std::make_shared<Group>();
        group->first = waits;
        group->append(event);
        m_transmitQueue.append(group);
        return group;
    };

    if (b6 == SysEx::AddressBulkHeader && isDump && m_openGroup == nullptr) {
        m_openGroup = startGroup(true);
        m_memAPI->incrementTransmitedBulkCounter();
        return true;
    }
    const bool isBulkRequest = messageClass == SysEx::ClassBulkRequest;
    if (messageClass == SysEx::ClassParameterChange ||
        messageClass == SysEx::ClassParameterRequest || (isBulkRequest && m_openGroup == nullptr)) {
        startGroup(isBulkRequest);
        m_openGroup.reset();
        if (isBulkRequest) {
            m_memAPI->incrementTransmitedBulkReqCounter();
        }
        return true;
    }
    if (b6 == SysEx::AddressStoreToFlash && event.length > SysEx::PositionBulkAddress + 2 &&
        bytes[SysEx::PositionBulkAddress + 1] == 0 && bytes[SysEx::PositionBulkAddress + 2] == 0) {
        // A group that a clearing cut off would bring the rest of a broken dump with it.
        if (m_openGroup == nullptr || !m_transmitQueue.contains(m_openGroup)) {
            startGroup(false);
        } else {
            m_openGroup->first = false;
            m_openGroup->append(event);
        }
        m_openGroup.reset();
        return true;
    }
    if (!isDump || b6 == SysEx::AddressBulkHeader || m_openGroup == nullptr) {
        return false;
    }
    m_openGroup->append(event);
    if (b6 == SysEx::AddressBulkFooter) {
        m_openGroup.reset();
    }
    return true;
}

bool MessageEncoder::bufferingMsg(tagMPEVENT *event)
{
    const SendLock lock(this);
    if (event == nullptr || !bufferCopy(*event)) {
        return false;
    }
    MPEventDeleter()(event);
    return true;
}

bool MessageEncoder::sendMessage(bool *queueWasEmpty)
{
    const SendLock lock(this);
    if (queueWasEmpty != nullptr) {
        *queueWasEmpty = m_transmitQueue.isEmpty();
    }
    while (!m_transmitQueue.isEmpty()) {
        const GroupPointer group = m_transmitQueue.takeFirst();
        // Taken out of the group, which may be the open one and then lives on without them.
        const std::vector<Group::Place> places = std::exchange(group->second, {});
        std::vector<unsigned char> bytes = std::exchange(group->bytes, {});
        QVarLengthArray<tagMPEVENT, DumpMessages> events(static_cast<qsizetype>(places.size()));
        unsigned char *place = bytes.data();
        for (std::size_t i = 0; i < places.size(); ++i) {
            events[static_cast<qsizetype>(i)] = eventOf(place, places[i].length, places[i].port);
            events[static_cast<qsizetype>(i)].eventType = places[i].eventType;
            place += places[i].length;
        }
        if (m_comuController->midiOutDispatchAll(events.data(), places.size(), MPAsyncSend) !=
            MidiSuccess) {
            clearTransmitQueue(false);
            return false;
        }
        if (group->first) {
            return true;
        }
        if (m_transmitQueue.isEmpty()) {
            m_memAPI->setWaitBulkTransmitDone(false);
            m_memAPI->emitCompleteBulkTransmitSignal();
            m_memAPI->revokeReceivedBulk();
        }
    }
    return true;
}

void MessageEncoder::clearTransmitQueue(bool takesMutex)
{
    std::unique_lock<RecursiveMutex> lock(m_queueMutex, std::defer_lock);
    if (takesMutex) {
        lock.lock();
    }
    for (const GroupPointer &group : std::as_const(m_transmitQueue)) {
        group->clear(); // the open group lives on, without what it held
    }
    m_transmitQueue.clear();
}
