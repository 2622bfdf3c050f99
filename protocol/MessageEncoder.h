// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "memory/ParamAddress.h"
#include "midi/MPEvent.h"
#include "protocol/SysExBytes.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVarLengthArray>

#include <array>
#include <memory>
#include <vector>

class AddressTransTable;
class ComuController;
class ControlTemplateData;
class RemoteMemAPI;
class SysExParamChangeAddressTransTable;

// Turns parameters into device messages and owns the transmit queue, a list of groups. Sending goes
// on until the queue is empty or a group with the wait mark has gone out; the device's reply, seen
// by the decoder, then releases the next. A template dump is a group of 15 with the mark, a bulk
// request a group of one with it, a change or a parameter request a group of one without it.
//
// Owner: RemoteMemAPI, one for each route. Threads: any; every operation takes RemoteMemAPI's
// memoryMutex and then the queue's, in this order.
//
// Failure: an enqueue or send operation that fails drops everything that was waiting and returns
// false. An address without a device address, and an argument out of range, give false and leave
// the queue alone.
class MessageEncoder : public QObject
{
    Q_OBJECT

public:
    // Of a fixed type, so that any number may be passed and is refused.
    enum BulkType : int { BulkStored = 0, BulkEditBuffer = 1 };
    enum BulkType2 : int { BulkHeader = 0, BulkFooter = 2 };

    // Nothing is owned, and all outlives the encoder. portID: output port of the route.
    MessageEncoder(unsigned char modelFirst, unsigned char modelSecond,
                   SysExParamChangeAddressTransTable *sysExTable, ComuController *comuController,
                   int portID, AddressTransTable *addressTable, RemoteMemAPI *memAPI);
    ~MessageEncoder() override;

    // --- Parameter changes and requests.
    // The value's low eight bits are the data byte; refused if that is no data byte (0 to 127).
    bool enqueueParamChange(const ParamAddress &address, int value);
    // A name fills its whole field with blanks, one message for each character; the remote
    // identifier is one message of nine bytes, cut or filled with blanks on the right.
    bool enqueueParamChange(const ParamAddress &address, const QString &text);
    // address: device mid and low byte. data: count bytes, 0 or more.
    bool enqueueParamChange(const unsigned char *address, const unsigned char *data, int count);
    // Fills the event; false if it is null or a data byte is none (above 127). The event then owns
    // its bytes (see OwnedMPEvent).
    bool createParamChange(tagMPEVENT *event, const unsigned char *address,
                           const unsigned char *data, int count);
    bool sendParamChange(const unsigned char *address, unsigned char value);
    bool enqueueParamReq(const unsigned char *address);
    bool createParamReq(const unsigned char *address, int port, tagMPEVENT *event);
    bool enququeTemplateNumberReq();    // historical spelling
    bool enququeBankEditFlagReq();      // historical spelling
    bool enququeTemplateNumberSelect(); // historical spelling

    // --- The queue.
    // Takes the event over if the result is true, and leaves it to the caller if it is false.
    bool bufferingMsg(tagMPEVENT *event);
    // Sends until the queue is empty or a wait mark is met. queueWasEmpty, if not null, receives
    // true when there was nothing to send.
    bool sendMessage(bool *queueWasEmpty);
    // takesMutex: false for a caller that holds the queue's mutex already.
    void clearTransmitQueue(bool takesMutex);

    // --- Bulk dumps.
    bool createBulkHeaderFooter(BulkType type, BulkType2 kind, int template_, tagMPEVENT *event);
    bool createBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_, tagMPEVENT *event);
    bool enqueueBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_);
    // block: 0 the template block, 1 to 12 the knob blocks of knobs 0 to 11.
    bool createBulkContent(int block, int bank, int template_, tagMPEVENT *event);
    // Of a block under construction, from position 4 to its end; 0 below five bytes.
    static unsigned char CreateBulkChecksum(const std::vector<unsigned char> &block);
    // Of a block under construction: its size less the nine bytes in front of the data.
    static void CreateByteCount(const std::vector<unsigned char> &block, unsigned char *high,
                                unsigned char *low);
    // bank: 0, sent as edit buffer, or 1, sent as stored.
    bool enqueue1TemplateBulk(int bank, int template_);
    bool sendBulk(int bank, int template_);
    // Bank 0, the current template number, and, unless editBufferOnly, bank 1.
    bool sendEditorAllData(bool editBufferOnly);
    // Asks for all stored templates, the bank edit flag, and, if editBufferToo, the current
    // template number and all of the edit buffer.
    bool sendHardWareDataReq(bool editBufferToo);
    // 18 messages, to the device's current template whatever the template's number.
    bool sendParamChangeOfController(int bank, int template_, int knob);
    // 243 messages, likewise.
    bool send1TemplateDataParamChange(int bank, int template_);
    bool sendStoreMessage();
    bool enqueueStoreToFlash();

private:
    // A message under construction; the longest of the protocol needs no heap.
    using Message = QVarLengthArray<unsigned char, SysEx::LongestMessage + 2>;
    // The bytes of a group's events stand behind one another, since a run queues 1,500 of them; the
    // events themselves are made when the group is sent.
    struct Group
    {
        struct Place
        {
            std::uint32_t length;
            int port;
            std::uint32_t eventType;
        };
        bool first = false; // the wait mark
        std::vector<Place> second;
        std::vector<unsigned char> bytes;

        void append(const tagMPEVENT &event);
        void clear();
    };
    using GroupPointer = std::shared_ptr<Group>;
    // The memory's lock, then the queue's: the order on the whole way out.
    class SendLock
    {
    public:
        explicit SendLock(MessageEncoder *encoder);

    private:
        RecursiveMutexLocker m_memoryLock;
        RecursiveMutexLocker m_queueLock;
    };

    static tagMPEVENT eventOf(unsigned char *bytes, std::uint32_t length, int port);
    static void fillEvent(tagMPEVENT *event, Message *message, int port);
    Message messageStart(unsigned char messageClass) const;
    bool buildParamChange(const unsigned char *address, const unsigned char *data, int count,
                          Message *message) const;
    Message buildParamReq(const unsigned char *address) const;
    bool buildBulkReqHeaderFooter(BulkType type, BulkType2 kind, int template_,
                                  Message *message) const;
    // Each writes to block, which has room for the longest message.
    unsigned char *putBlockStart(unsigned char *block, unsigned char high, unsigned char mid,
                                 unsigned char low) const;
    static unsigned char *putBlockEnd(unsigned char *block, unsigned char *dataEnd);
    unsigned char *putHeaderFooter(unsigned char *block, BulkType type, BulkType2 kind,
                                   int template_) const;
    unsigned char *putContents(unsigned char *block, int number,
                               const ControlTemplateData *data) const;
    // Takes a copy of the event and its bytes. Under both locks.
    bool bufferCopy(const tagMPEVENT &event);
    bool enqueue(Message *message);
    bool enqueueKnobChanges(int bank, int template_, int knob);
    bool enqueueNamedRequest(const char *name);
    bool failed();

    std::array<unsigned char, 2> m_modelID;
    SysExParamChangeAddressTransTable *m_sysExTable;
    ComuController *m_comuController;
    QList<GroupPointer> m_transmitQueue; // guarded by m_queueMutex, as is m_openGroup
    // The dump being filled, or null. It survives a clearing of the queue, cut off from it, so that
    // what still belongs to that dump is collected and thrown away with it.
    GroupPointer m_openGroup;
    int m_portID;
    AddressTransTable *m_addressTable;
    RemoteMemAPI *m_memAPI;
    RecursiveMutex m_queueMutex;
    const ParamAddress m_namedAddress; // bound to the name table, all -1
};
