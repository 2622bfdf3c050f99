// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MessageWords.h"

#include "app/Constants.h"
#include "cli/FileAddress.h"
#include "midi/MPEvent.h"
#include "protocol/SysExBytes.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

#include <algorithm>

namespace
{

constexpr unsigned char ModelFirst = 0x7F;
constexpr unsigned char EditorModel = 0x14;
constexpr unsigned char DeviceModel = 0x15;
constexpr int FramingLength = 11;
constexpr qsizetype MostBytesShown = 16;

unsigned char byteAt(const QByteArray &message, qsizetype position)
{
    return position < message.size() ? static_cast<unsigned char>(message.at(position)) : 0xFF;
}

QString hexOf(const QByteArray &bytes)
{
    QString text = QString::fromLatin1(bytes.left(MostBytesShown).toHex(' ').toUpper());
    if (bytes.size() > MostBytesShown) {
        text += QStringLiteral(" ... (%1 bytes)").arg(bytes.size());
    }
    return text;
}

QString characters(const QByteArray &bytes)
{
    QString text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        text.append(code >= 0x20 && code < 0x7F ? QLatin1Char(byte) : QLatin1Char('?'));
    }
    return text;
}

QString fieldName(const QList<FileField> &fields, int number)
{
    for (const FileField &field : fields) {
        if (field.number == number) {
            return field.name;
        }
    }
    return QString();
}

// Of a change or a request; isText tells whether its bytes are characters.
QString placeName(unsigned char mid, unsigned char low, bool *isText)
{
    static const SysExParamChangeAddressTransTable table;
    *isText = false;
    if (low == 0) {
        switch (mid) {
        case SysEx::MidCurrentTemplateNumber:
            return QStringLiteral("current template");
        case SysEx::MidStore:
            return QStringLiteral("store");
        case SysEx::MidBankEditFlag:
            return QStringLiteral("edit flag");
        default:
            break;
        }
    }
    const unsigned char device[2] = {mid, low};
    const ParamAddress address = table.getMemoryParamAddress(device);
    *isText = address.isStringParamAdr();
    const int controller = address.getParamAddress(2);
    QString name;
    if (address.isControllerAdr()) {
        name = QLatin1String(LCDSelectAddressUpper[controller]) + QLatin1Char('/') +
               fieldName(FileField::ofKnob(), address.getParamAddress(3));
    } else if (controller == ParamAddress::ReservedTemplateByte) {
        name = QStringLiteral("reserved byte");
    } else {
        name = fieldName(FileField::ofTemplate(), controller);
    }
    if (name.isEmpty()) {
        return QStringLiteral("unknown place %1 %2")
            .arg(mid, 2, 16, QLatin1Char('0'))
            .arg(low, 2, 16, QLatin1Char('0'));
    }
    unsigned char place[2] = {0, 0};
    table.getSysExAddressParamInfo(device, place);
    if (*isText && !address.isRemoteTagIDAdr()) {
        name += QStringLiteral(", character %1").arg(place[0] + 1);
    }
    return name;
}

QString ofBulk(const QByteArray &message)
{
    unsigned sum = 0;
    for (qsizetype i = SysEx::PositionCount; i < message.size() - 1; ++i) {
        sum += byteAt(message, i);
    }
    const QString defect = message.size() < FramingLength ? QStringLiteral(" (too short)")
                           : (sum & 0x7F) != 0            ? QStringLiteral(" (wrong checksum)")
                                                          : QString();
    const unsigned char type = byteAt(message, SysEx::PositionBulkAddress + 1);
    const QString dump = QStringLiteral("%1 template %2")
                             .arg(type == SysEx::TypeStored       ? QStringLiteral("stored")
                                  : type == SysEx::TypeEditBuffer ? QStringLiteral("edit buffer")
                                                                  : QStringLiteral("unknown"))
                             .arg(byteAt(message, SysEx::PositionBulkAddress + 2) + 1);
    switch (byteAt(message, SysEx::PositionBulkAddress)) {
    case SysEx::AddressBulkHeader:
        return QStringLiteral("dump begins: ") + dump + defect;
    case SysEx::AddressBulkFooter:
        return QStringLiteral("dump ends: ") + dump + defect;
    case SysEx::AddressStoreToFlash:
        return QStringLiteral("store to flash") + defect;
    case SysEx::AddressTemplateData: {
        const int knob = type - SysEx::MidFirstKnob;
        if (type == SysEx::MidTemplate) {
            return QStringLiteral("dump block: template \"%1\"")
                       .arg(characters(message.mid(SysEx::PositionBulkData, 13)).trimmed()) +
                   defect;
        }
        if (knob >= 0 && knob < ParamAddress::KnobCount) {
            return QStringLiteral("dump block: ") + QLatin1String(LCDSelectAddressUpper[knob]) +
                   defect;
        }
        break;
    }
    default:
        break;
    }
    return QStringLiteral("unknown dump message: ") + hexOf(message);
}

QString ofChange(const QByteArray &message)
{
    bool isText = false;
    const unsigned char mid = byteAt(message, SysEx::PositionChangeAddress + 1);
    const QString name = placeName(mid, byteAt(message, SysEx::PositionChangeAddress + 2), &isText);
    const QByteArray data =
        message.mid(SysEx::PositionChangeData, message.size() - SysEx::PositionChangeData - 1);
    if (message.size() <= SysEx::PositionChangeData || data.isEmpty()) {
        return mid == SysEx::MidStore ? name : QStringLiteral("change without a value: ") + name;
    }
    if (isText) {
        return QStringLiteral("change: %1 = \"%2\"").arg(name, characters(data));
    }
    const int shift = mid == SysEx::MidCurrentTemplateNumber ? 1 : 0;
    return QStringLiteral("change: %1 = %2").arg(name).arg(byteAt(data, 0) + shift);
}

} // namespace

QString MessageWords::ofSysEx(const QByteArray &message)
{
    const unsigned char model = byteAt(message, SysEx::PositionModel + 1);
    const unsigned char messageClass = byteAt(message, SysEx::PositionClass) & 0xF0;
    if (byteAt(message, 0) == SysEx::Manufacturer) {
        if (byteAt(message, SysEx::PositionModel) == ModelFirst &&
            (model == EditorModel || model == DeviceModel)) {
            bool isText = false;
            switch (messageClass) {
            case SysEx::ClassBulk:
                return ofBulk(message);
            case SysEx::ClassParameterChange:
                return ofChange(message);
            case SysEx::ClassBulkRequest:
                return QStringLiteral("dump request: %1 template %2")
                    .arg(byteAt(message, 5) == SysEx::TypeStored ? QStringLiteral("stored")
                                                                 : QStringLiteral("edit buffer"))
                    .arg(byteAt(message, 6) + 1);
            case SysEx::ClassParameterRequest:
                return QStringLiteral("request: ") +
                       placeName(byteAt(message, SysEx::PositionChangeAddress + 1),
                                 byteAt(message, SysEx::PositionChangeAddress + 2), &isText);
            default:
                break;
            }
        } else if (messageClass == SysEx::ClassAcknowledge &&
                   byteAt(message, SysEx::PositionModel) == SysEx::AcknowledgeByte) {
            return QStringLiteral("acknowledge");
        }
    }
    return QStringLiteral("other system exclusive: ") + hexOf(message);
}

QString MessageWords::ofEvent(const tagMPEVENT &event)
{
    if ((event.eventType & MPEventLongMask) != 0) {
        const QByteArray bytes(reinterpret_cast<const char *>(event.longData),
                               event.longData == nullptr ? 0
                                                         : static_cast<qsizetype>(event.length));
        return event.eventType == MPEventSysEx
                   ? ofSysEx(bytes)
                   : QStringLiteral("continued system exclusive: ") + hexOf(bytes);
    }
    struct Kind
    {
        std::uint32_t type;
        const char *name;
    };
    static constexpr Kind kinds[] = {{MPEventActiveSensing, "active sensing"},
                                     {MPEventNoteOff, "note off"},
                                     {MPEventNoteOn, "note on"},
                                     {MPEventPolyPressure, "polyphonic pressure"},
                                     {MPEventControlChange, "control change"},
                                     {MPEventProgramChange, "program change"},
                                     {MPEventChannelPressure, "channel pressure"},
                                     {MPEventPitchBend, "pitch bend"}};
    const auto *kind = std::find_if(std::begin(kinds), std::end(kinds), [&](const Kind &candidate) {
        return candidate.type == event.eventType;
    });
    if (kind == std::end(kinds)) {
        return QStringLiteral("other event");
    }
    if (kind->type == MPEventActiveSensing) {
        return QLatin1String(kind->name);
    }
    return QStringLiteral("%1, channel %2: %3 %4")
        .arg(QLatin1String(kind->name))
        .arg(event.channel + 1)
        .arg(event.shortData[0])
        .arg(event.shortData[1]);
}
