// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentProtocol.h"

#include "instrument/InstrumentMemory.h"

#include <cstddef>

// Positions on the wire, the start byte being 0:
//
//   0   1    2            3 4      5 6            7 8 9          10 ..    n-2       n-1
//   F0  43   class|device 7F model count (7+7)    address        data     checksum  F7     class 0
//   F0  43   10           7F model hi mid low                    data               F7
//   F0  43   20           7F model 0E type nn                                       F7
//   F0  43   30           7F model hi mid low                                       F7
//   F0  43   60           02                                                        F7
//
// The checksum makes the sum of the bytes from 5 to itself 0 in seven bits; the count is that of
// the data alone.

namespace
{

constexpr char Manufacturer = 0x43;
constexpr char ModelHigh = 0x7F;
constexpr char ControlChangeStatus = '\xB0';
constexpr quint8 HeaderHigh = 0x0E;
constexpr quint8 FooterHigh = 0x0F;
constexpr quint8 FlashHigh = 0x11;
constexpr quint8 DataHigh = 0x01;
constexpr quint8 FirstKnobMid = 0x10;
constexpr qsizetype ShortestBulk = 12;

constexpr qsizetype TemplatePageSize = 27;
constexpr qsizetype KnobPageSize = 26;
constexpr qsizetype RemoteIdSize = 9;

// A page is what one mid address byte holds, the low byte counting through it:
//   template   name 0-12   vstiName 13-24   controlType 25   reserved 26
//   knob       remoteId 0-8   displayName 9-23   ccNumber 24   displayFormat 25
constexpr qsizetype PageVstiName = 13;
constexpr qsizetype PageControlType = 25;
constexpr qsizetype PageReserved = 26;
constexpr qsizetype PageDisplayName = 9;
constexpr qsizetype PageCcNumber = 24;
constexpr qsizetype PageDisplayFormat = 25;

char byteOf(int value)
{
    return static_cast<char>(value & 0x7F);
}

quint8 at(const QByteArray &bytes, qsizetype position)
{
    return static_cast<quint8>(bytes.at(position));
}

// -1 for a mid byte that is no page's.
int blockOfMid(quint8 mid)
{
    if (mid == 0) {
        return 0;
    }
    return mid >= FirstKnobMid && mid < FirstKnobMid + InstrumentKnobCount ? mid - FirstKnobMid + 1
                                                                           : -1;
}

quint8 midOfBlock(int block)
{
    return block == 0 ? quint8{0} : static_cast<quint8>(FirstKnobMid + block - 1);
}

qsizetype pageSize(int block)
{
    return block == 0 ? TemplatePageSize : KnobPageSize;
}

QByteArray page(int block, const InstrumentTemplate &source)
{
    if (block == 0) {
        return source.templateName.padded() + source.vstiName.padded() +
               byteOf(source.controlType) + byteOf(source.reserved);
    }
    const InstrumentKnob &knob = source.knobs[static_cast<std::size_t>(block - 1)];
    return knob.remoteId.padded() + knob.displayName.padded() + byteOf(knob.ccNumber) +
           byteOf(knob.displayFormat);
}

bool setPage(int block, const QByteArray &bytes, InstrumentTemplate *target)
{
    if (block < 0 || block > InstrumentKnobCount || bytes.size() != pageSize(block)) {
        return false;
    }
    for (const char c : bytes) {
        if (static_cast<unsigned char>(c) > 0x7F) {
            return false;
        }
    }
    if (block == 0) {
        if (at(bytes, PageControlType) > 1) {
            return false;
        }
        target->templateName.set(bytes.first(PageVstiName));
        target->vstiName.set(bytes.mid(PageVstiName, PageControlType - PageVstiName));
        target->controlType = at(bytes, PageControlType);
        target->reserved = at(bytes, PageReserved);
        return true;
    }
    if (at(bytes, PageDisplayFormat) > 1) {
        return false;
    }
    InstrumentKnob &knob = target->knobs[static_cast<std::size_t>(block - 1)];
    knob.remoteId.set(bytes.first(PageDisplayName));
    knob.displayName.set(bytes.mid(PageDisplayName, PageCcNumber - PageDisplayName));
    knob.ccNumber = at(bytes, PageCcNumber);
    knob.displayFormat = at(bytes, PageDisplayFormat);
    return true;
}

bool isDumpType(quint8 byte)
{
    return byte == static_cast<quint8>(DumpType::Stored) ||
           byte == static_cast<quint8>(DumpType::EditBuffer);
}

InstrumentMessage refused(InstrumentMessage message, const QString &why)
{
    message.defect = why;
    return message;
}

InstrumentMessage ofKind(InstrumentMessage::Kind kind)
{
    InstrumentMessage message;
    message.kind = kind;
    return message;
}

// Type and number as headers, footers and requests carry them at these two positions.
bool readDumpName(const QByteArray &wire, qsizetype position, InstrumentMessage *message)
{
    const quint8 type = at(wire, position);
    const quint8 number = at(wire, position + 1);
    if (!isDumpType(type) || number >= InstrumentTemplateCount) {
        return false;
    }
    message->type = static_cast<DumpType>(type);
    message->templateNumber = number;
    return true;
}

InstrumentMessage decodeBulk(const QByteArray &wire)
{
    using Kind = InstrumentMessage::Kind;
    InstrumentMessage message;
    if (wire.size() < ShortestBulk) {
        return refused(message, QStringLiteral("too short"));
    }
    const quint8 high = at(wire, 7);
    const quint8 mid = at(wire, 8);
    const quint8 low = at(wire, 9);
    if (high == HeaderHigh || high == FooterHigh) {
        message.kind = high == HeaderHigh ? Kind::Header : Kind::Footer;
        if (!readDumpName(wire, 8, &message)) {
            return refused(message, QStringLiteral("unknown type or template number"));
        }
    } else if (high == FlashHigh && mid == 0 && low == 0) {
        message.kind = Kind::StoreToFlash;
    } else if (high == DataHigh) {
        message.kind = Kind::Block;
        message.mid = mid;
        message.low = low;
        message.block = blockOfMid(mid);
        if (message.block < 0 || low != 0) {
            return refused(message, QStringLiteral("unknown address"));
        }
    } else {
        return refused(message, QStringLiteral("unknown address"));
    }

    unsigned sum = 0;
    for (qsizetype i = 5; i < wire.size() - 1; ++i) {
        sum += at(wire, i);
    }
    if ((sum & 0x7FU) != 0) {
        return refused(message, QStringLiteral("wrong checksum"));
    }
    message.data = wire.mid(10, wire.size() - ShortestBulk);
    const qsizetype expected = message.kind == Kind::Block ? pageSize(message.block) : 0;
    const qsizetype count = at(wire, 5) * 128 + at(wire, 6);
    if (message.data.size() != expected || count != expected) {
        return refused(message, QStringLiteral("wrong length"));
    }
    return message;
}

InstrumentMessage decodeChange(const QByteArray &wire)
{
    InstrumentMessage message;
    if (wire.size() < 9) {
        return refused(message, QStringLiteral("too short"));
    }
    message.mid = at(wire, 6);
    message.low = at(wire, 7);
    message.data = wire.mid(8, wire.size() - 9);
    const bool isStore = message.mid == InstrumentProtocol::StoreMid && message.low == 0;
    message.kind = isStore ? InstrumentMessage::Kind::Store : InstrumentMessage::Kind::Change;
    if (at(wire, 5) != DataHigh) {
        return refused(message, QStringLiteral("unknown address"));
    }
    const qsizetype count = message.data.size();
    if (isStore ? count != 0 : count != 1 && count != RemoteIdSize) {
        return refused(message, QStringLiteral("wrong length"));
    }
    return message;
}

InstrumentMessage decodeRequest(const QByteArray &wire, InstrumentMessage::Kind kind)
{
    InstrumentMessage message = ofKind(kind);
    if (wire.size() != 9) {
        return refused(message, QStringLiteral("wrong length"));
    }
    if (kind == InstrumentMessage::Kind::BulkRequest) {
        if (at(wire, 5) != HeaderHigh || !readDumpName(wire, 6, &message)) {
            return refused(message, QStringLiteral("unknown type or template number"));
        }
        return message;
    }
    message.mid = at(wire, 6);
    message.low = at(wire, 7);
    if (at(wire, 5) != DataHigh) {
        return refused(message, QStringLiteral("unknown address"));
    }
    return message;
}

QByteArray bulk(quint8 high, quint8 mid, quint8 low, const QByteArray &data)
{
    QByteArray wire;
    wire.append('\xF0').append(Manufacturer).append('\0').append(ModelHigh);
    wire.append(static_cast<char>(MessageOrigin::Device));
    wire.append(byteOf(static_cast<int>(data.size() / 128)));
    wire.append(byteOf(static_cast<int>(data.size() % 128)));
    wire.append(byteOf(high)).append(byteOf(mid)).append(byteOf(low)).append(data);
    int sum = 0;
    for (qsizetype i = 5; i < wire.size(); ++i) {
        sum += at(wire, i);
    }
    wire.append(byteOf(128 - sum % 128)).append('\xF7');
    return wire;
}

QByteArray change(quint8 mid, quint8 low, const QByteArray &data)
{
    QByteArray wire;
    wire.append('\xF0').append(Manufacturer).append('\x10').append(ModelHigh);
    wire.append(static_cast<char>(MessageOrigin::Device));
    wire.append(byteOf(DataHigh)).append(byteOf(mid)).append(byteOf(low));
    wire.append(data).append('\xF7');
    return wire;
}

QString knobName(int knob)
{
    return QStringLiteral("knob%1%2").arg(QChar(u'A' + knob % 4)).arg(knob / 4 + 1);
}

QString addressName(quint8 mid, quint8 low)
{
    if (low == 0) {
        switch (mid) {
        case InstrumentProtocol::CurrentTemplateMid:
            return QStringLiteral("currentTemplateNumber");
        case InstrumentProtocol::StoreMid:
            return QStringLiteral("store");
        case InstrumentProtocol::EditFlagMid:
            return QStringLiteral("bankEditFlag");
        default:
            break;
        }
    }
    const int block = blockOfMid(mid);
    if (block < 0 || low >= pageSize(block)) {
        return QStringLiteral("unknown address %1 %2")
            .arg(mid, 2, 16, QLatin1Char('0'))
            .arg(low, 2, 16, QLatin1Char('0'));
    }
    const auto indexed = [low](const char *name, qsizetype first) {
        return QStringLiteral("%1[%2]").arg(QLatin1String(name)).arg(low - first);
    };
    if (block == 0) {
        return low < PageVstiName      ? indexed("templateName", 0)
               : low < PageControlType ? indexed("vstiName", PageVstiName)
               : low < PageReserved    ? QStringLiteral("controlType")
                                       : QStringLiteral("reserved");
    }
    return knobName(block - 1) + u'/' +
           (low < PageDisplayName     ? indexed("remoteNumber", 0)
            : low < PageCcNumber      ? indexed("displayName", PageDisplayName)
            : low < PageDisplayFormat ? QStringLiteral("ccNumber")
                                      : QStringLiteral("displayFormat"));
}

QString dumpName(const InstrumentMessage &message)
{
    if (message.templateNumber < 0) {
        return QString();
    }
    return QStringLiteral(", %1 template %2")
        .arg(message.type == DumpType::Stored ? QStringLiteral("stored")
                                              : QStringLiteral("edit buffer"))
        .arg(message.templateNumber + 1);
}

QString changeValue(const QByteArray &data)
{
    if (data.size() != 1) {
        return QLatin1Char('"') + QString::fromLatin1(data) + QLatin1Char('"');
    }
    const int value = at(data, 0);
    return value > 0x20 && value < 0x7F
               ? QStringLiteral("%1 '%2'").arg(value).arg(QLatin1Char(data.at(0)))
               : QString::number(value);
}

} // namespace

namespace InstrumentProtocol
{

InstrumentMessage decode(const QByteArray &wire, MessageOrigin origin)
{
    using Kind = InstrumentMessage::Kind;
    if (wire.size() < 5 || at(wire, 0) != 0xF0 || at(wire, wire.size() - 1) != 0xF7 ||
        wire.at(1) != Manufacturer || (at(wire, 2) & 0x0FU) != 0) {
        return ofKind(Kind::Foreign);
    }
    const int messageClass = at(wire, 2) >> 4;
    if (messageClass == 6 && at(wire, 3) == 0x02) {
        return ofKind(Kind::Acknowledge);
    }
    if (wire.size() < 6 || wire.at(3) != ModelHigh || at(wire, 4) != static_cast<quint8>(origin)) {
        return ofKind(Kind::Foreign);
    }
    switch (messageClass) {
    case 0:
        return decodeBulk(wire);
    case 1:
        return decodeChange(wire);
    case 2:
        return decodeRequest(wire, Kind::BulkRequest);
    case 3:
        return decodeRequest(wire, Kind::ParameterRequest);
    default:
        return refused(InstrumentMessage(), QStringLiteral("unknown class"));
    }
}

QString describe(const QByteArray &wire, MessageOrigin origin)
{
    using Kind = InstrumentMessage::Kind;
    if (wire == QByteArrayLiteral("\xFE")) {
        return QStringLiteral("active sensing");
    }
    if (wire.size() == 3 && wire.at(0) == ControlChangeStatus) {
        return QStringLiteral("control change, %1 = %2").arg(int{wire.at(1)}).arg(int{wire.at(2)});
    }
    const InstrumentMessage message = decode(wire, origin);
    QString words;
    switch (message.kind) {
    case Kind::Foreign:
        words = QStringLiteral("foreign message");
        break;
    case Kind::Malformed:
        words = QStringLiteral("malformed message");
        break;
    case Kind::Header:
        words = QStringLiteral("dump header") + dumpName(message);
        break;
    case Kind::Block:
        words = message.block > 0 ? QStringLiteral("dump block, ") + knobName(message.block - 1)
                                  : QStringLiteral("dump block, template");
        break;
    case Kind::Footer:
        words = QStringLiteral("dump footer") + dumpName(message);
        break;
    case Kind::Change:
        words = QStringLiteral("change, %1 = %2")
                    .arg(addressName(message.mid, message.low), changeValue(message.data));
        break;
    case Kind::ParameterRequest:
        words = QStringLiteral("parameter request, ") + addressName(message.mid, message.low);
        break;
    case Kind::BulkRequest:
        words = QStringLiteral("dump request") + dumpName(message);
        break;
    case Kind::Store:
        words = QStringLiteral("store");
        break;
    case Kind::StoreToFlash:
        words = QStringLiteral("store to flash");
        break;
    case Kind::Acknowledge:
        words = QStringLiteral("acknowledge");
        break;
    }
    return message.defect.isEmpty() ? words : QStringLiteral("%1 (%2)").arg(words, message.defect);
}

QByteArray dumpHeader(DumpType type, int templateNumber)
{
    return bulk(HeaderHigh, static_cast<quint8>(type), static_cast<quint8>(templateNumber), {});
}

QByteArray dumpFooter(DumpType type, int templateNumber)
{
    return bulk(FooterHigh, static_cast<quint8>(type), static_cast<quint8>(templateNumber), {});
}

QByteArray dumpBlock(int block, const InstrumentTemplate &source)
{
    return bulk(DataHigh, midOfBlock(block), 0, page(block, source));
}

QByteArray acknowledge()
{
    return QByteArrayLiteral("\xF0\x43\x60\x02\xF7");
}

QByteArray parameterChange(quint8 mid, quint8 low, const QByteArray &data)
{
    return change(mid, low, data);
}

QByteArray storePressed()
{
    return change(StoreMid, 0, {});
}

QByteArray controlChange(quint8 number, quint8 value)
{
    const char bytes[] = {ControlChangeStatus, static_cast<char>(number), static_cast<char>(value)};
    return QByteArray(bytes, sizeof bytes);
}

bool takeBlock(int block, const QByteArray &data, InstrumentTemplate *target)
{
    return setPage(block, data, target);
}

bool takeChange(quint8 mid, quint8 low, const QByteArray &data, InstrumentTemplate *target)
{
    const int block = blockOfMid(mid);
    const bool isWholeId = block > 0 && low == 0 && data.size() == RemoteIdSize;
    if (block < 0 || low >= pageSize(block) || (data.size() != 1 && !isWholeId)) {
        return false;
    }
    return setPage(block, page(block, *target).replace(low, data.size(), data), target);
}

QByteArray answer(quint8 mid, quint8 low, const InstrumentTemplate &source)
{
    const int block = blockOfMid(mid);
    if (block < 0 || low >= pageSize(block)) {
        return QByteArray();
    }
    const QByteArray bytes = page(block, source);
    return block > 0 && low < RemoteIdSize ? change(mid, 0, bytes.first(RemoteIdSize))
                                           : change(mid, low, bytes.mid(low, 1));
}

} // namespace InstrumentProtocol
