// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QtGlobal>

struct InstrumentTemplate;

// The device's end of the protocol, bytes in and bytes out. It is written from the wire's layout
// and shares nothing with the editor's encoder and decoder, so that a mistake on one side shows on
// the other. Messages are whole wire messages here, 0xF0 to 0xF7.
//
// Thread: any, no state.

enum class DumpType : quint8 { Stored = 0x60, EditBuffer = 0x6F };

// Which side sent a message: the model identifier 7F xx differs by direction.
enum class MessageOrigin : quint8 { Editor = 0x14, Device = 0x15 };

// One message read from the wire.
struct InstrumentMessage
{
    enum class Kind {
        Foreign,          // not of this protocol, not for this model or not for device number 0
        Malformed,        // of this protocol, but no form that it knows
        Header,           // type, templateNumber
        Block,            // block, data
        Footer,           // type, templateNumber
        Change,           // mid, low, data (one or nine bytes)
        ParameterRequest, // mid, low
        BulkRequest,      // type, templateNumber
        Store,
        StoreToFlash,
        Acknowledge
    };

    Kind kind = Kind::Malformed;
    // Empty for a message that is to be taken; otherwise why it is refused, in words. The kind then
    // tells what the message set out to be, and the other fields are as far as they were read.
    QString defect;
    DumpType type = DumpType::Stored;
    int templateNumber = -1; // 0 to 49
    int block = -1;          // 0 the template's own, 1 to 12 the knobs in order
    quint8 mid = 0;
    quint8 low = 0;
    QByteArray data;
};

namespace InstrumentProtocol
{

// Where the numbers that are no part of a template stand (high byte 01, low byte 00).
inline constexpr quint8 CurrentTemplateMid = 0x20;
inline constexpr quint8 StoreMid = 0x22;
inline constexpr quint8 EditFlagMid = 0x23;

// Safe for any bytes.
InstrumentMessage decode(const QByteArray &wire, MessageOrigin origin = MessageOrigin::Editor);
// The message in words, for a log. Templates and knobs are named as on the display, templates
// from 1.
QString describe(const QByteArray &wire, MessageOrigin origin);

// What the device sends.
QByteArray dumpHeader(DumpType type, int templateNumber);
QByteArray dumpFooter(DumpType type, int templateNumber);
// block 0 to 12
QByteArray dumpBlock(int block, const InstrumentTemplate &source);
QByteArray acknowledge();
QByteArray parameterChange(quint8 mid, quint8 low, const QByteArray &data);
QByteArray storePressed();
// No message of the protocol, but what a knob plays: on channel 1, number and value 0 to 127.
QByteArray controlChange(quint8 number, quint8 value);

// Writes a block's data into the template. False, and the template as it was, for a wrong length or
// a number out of its range.
bool takeBlock(int block, const QByteArray &data, InstrumentTemplate *target);
// Writes a change into the template: one byte anywhere, or nine at the start of a remote
// identifier. False, and the template as it was, for any other address, count or a number out of
// its range.
bool takeChange(quint8 mid, quint8 low, const QByteArray &data, InstrumentTemplate *target);
// The change that answers a request for this address: one byte, or for any byte of a remote
// identifier the nine of the whole, since that is the only form in which identifiers travel.
// Empty for an address that the template does not have.
QByteArray answer(quint8 mid, quint8 low, const InstrumentTemplate &source);

} // namespace InstrumentProtocol
