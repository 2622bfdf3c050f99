// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "memory/ParamAddress.h"
#include "midi/MessageProcessor.h"
#include "protocol/BulkReceipt.h"

#include <QtCore/QString>

#include <array>
#include <atomic>
#include <cstdint>

class AddressTransTable;
class SysExParamChangeAddressTransTable;

// The receiving end of the device protocol: writes what the device sends into the memory, and
// drives the transmit queue forward, since each acknowledge and each bulk footer is the go-ahead
// for the next queued group. Dumps go into the hardware banks 2 and 3, never into the working
// banks.
//
// Owner: RemoteMemAPI. Threads: Process and what it calls run on the communication port's pusher
// thread alone; the counters and the receipt may be used from any.
//
// Failure: a message of another maker, model or shape, one with a bad checksum, and one too short
// for the fields that it must hold are dropped whole without a word, and the memory keeps what it
// had. There is no time-out here: whoever started a run ends it.
class MessageDecoder : public MessageProcessor
{
public:
    // Nothing is owned, and all outlives the decoder.
    MessageDecoder(int portID, RemoteMemAPI *memAPI, int midiFilterType, unsigned char modelFirst,
                   unsigned char modelSecond, SysExParamChangeAddressTransTable *sysExTable,
                   AddressTransTable *addressTable);

    bool Process(tagMPEVENT &event) override;

    // --- Counters: dumps sent and not yet acknowledged, bulk requests sent and not yet answered.
    // Never below 0. Historical spellings.
    void incrementTransmitedBulkCounter();
    void decrementTransmitedBulkCounter();
    void clearTransmitedBulkCounter();
    int transmitedBulkCount() const;
    void incrementTransmitedBulkReqCounter();
    void decrementTransmitedBulkReqCounter();
    void clearTransmitedBulkReqCounter();
    int transmitedBulkReqCount() const;

    BulkReceipt bulkReceipt() const;
    void clearBulkReceipt();

    // --- Tests on an event; false too when it is too short to be told.
    bool isSysEx(const tagMPEVENT &event) const;
    bool isCorvanSysEx(const tagMPEVENT &event) const;
    bool isDesiredModelSysEx(const tagMPEVENT &event) const;
    bool isBulkDump(const tagMPEVENT &event) const;
    bool isParameterChange(const tagMPEVENT &event) const;
    bool isBulkAcknowledge(const tagMPEVENT &event) const;
    bool isBulkHeader(const tagMPEVENT &event) const;
    bool isBulkFooter(const tagMPEVENT &event) const;
    bool isBulkContents(const tagMPEVENT &event) const;
    bool isBulkContentsCommon(const tagMPEVENT &event) const;
    // knob, if not null, receives the low nibble, which may lie above 11.
    bool isBulkContentsController(const tagMPEVENT &event, int *knob) const;
    bool isNormalBulkHeader(const tagMPEVENT &event) const;
    bool isEditBuffBulkHeader(const tagMPEVENT &event) const;
    bool isBulkChecksumCorrect(const tagMPEVENT &event) const;
    int getTemplateNumberFromBulk(const tagMPEVENT &event) const;

private:
    bool DecodeBulk(tagMPEVENT &event);
    bool DecodeParameterChange(tagMPEVENT &event);
    bool decodeBulkHeader(const tagMPEVENT &event);
    bool decodeBulkContents(const tagMPEVENT &event);
    bool decodeBulkFooter(const tagMPEVENT &event);
    bool setParamToMemoryFromBulk(const ParamAddress &address, const tagMPEVENT &event);
    bool WriteNumericParamToMemory(const ParamAddress &address, int value);
    bool WriteStringParamToMemory(const ParamAddress &address, const QString &text);
    bool WriteStringParamToMemory(const unsigned char *characters, int position,
                                  const ParamAddress &address, int count);
    void getStringParamFromMemory(const ParamAddress &address);
    QString *cacheFor(const ParamAddress &address);
    std::atomic<std::uint16_t> &receipt();

    SysExParamChangeAddressTransTable *m_sysExTable;
    AddressTransTable *m_addressTable;
    // Texts being patched by changes of single characters.
    QString m_templateNameCache;
    QString m_vstiNameCache;
    QString m_displayNameCache;
    QString m_remoteTagCache;
    ParamAddress m_namedAddress;
    std::array<unsigned char, 2> m_modelID;
    int m_bulkTemplateNumber = 0;
    int m_bulkBank = 0;
    int m_transmitedBulkCounter = 0;    // guarded by m_bulkCounterMutex
    int m_transmitedBulkReqCounter = 0; // guarded by m_bulkReqCounterMutex
    mutable Mutex m_bulkCounterMutex;
    mutable Mutex m_bulkReqCounterMutex;
    bool m_receivingBulk = false;     // a header has been seen and its footer has not
    bool m_lastContentsResult = true; // of the latest contents block; nothing reads it
    // As BulkReceipt's blocks, with the footer in a bit of its own.
    static constexpr std::uint16_t ReceiptFinished = 1u << 15;
    std::array<std::array<std::atomic<std::uint16_t>, ParamAddress::TemplateCount>, 2> m_receipt{};
};
