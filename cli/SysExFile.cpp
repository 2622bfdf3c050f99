// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SysExFile.h"

#include "memory/RemoteMemAPI.h"
#include "midi/MPEvent.h"
#include "protocol/BulkReceipt.h"
#include "protocol/MessageDecoder.h"
#include "protocol/MessageEncoder.h"
#include "protocol/SysExBytes.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

namespace
{

constexpr unsigned char Start = 0xF0;
constexpr unsigned char FirstStatus = 0x80;
constexpr unsigned char FirstRealTime = 0xF8;

// Model identifiers: the editor's messages carry the one, the device's the other.
constexpr unsigned char ModelFirst = 0x7F;
constexpr unsigned char EditorModel = 0x14;
constexpr unsigned char DeviceModel = 0x15;

constexpr int FramingLength = 11;
constexpr int TemplateBlockLength = 38;
constexpr int KnobBlockLength = 37;
constexpr int CurrentTemplateLength = 9;
constexpr int ControlTypePosition = 34;
constexpr int DisplayFormatPosition = 34;
constexpr unsigned AllBlocks = (1u << BulkReceipt::BlockCount) - 1;

unsigned char byteAt(const QByteArray &message, int position)
{
    return position < message.size() ? static_cast<unsigned char>(message.at(position)) : 0xFF;
}

// A dump that is being read.
struct OpenDump
{
    bool isOpen = false;
    unsigned char model = 0;
    unsigned char type = 0;
    int template_ = 0;
    unsigned blocks = 0;

    QString name() const
    {
        return QStringLiteral("the dump of %1 template %2")
            .arg(type == SysEx::TypeStored ? QStringLiteral("stored")
                                           : QStringLiteral("edit buffer"))
            .arg(template_ + 1);
    }
};

class Reader
{
public:
    Reader(const QByteArray &bytes, SysExFile::Import *import)
        : m_bytes(bytes)
        , m_import(import)
    {
    }

    bool read(QString *error)
    {
        const bool isGood = readMessages() && isFinished();
        *error = m_error;
        return isGood;
    }

private:
    bool fail(const QString &what)
    {
        m_error = QStringLiteral("Byte %1: %2.").arg(m_position).arg(what);
        return false;
    }

    bool readMessages()
    {
        qsizetype i = 0;
        while (i < m_bytes.size()) {
            m_position = i;
            const auto first = static_cast<unsigned char>(m_bytes.at(i));
            if (first >= FirstRealTime) {
                ++i;
                continue;
            }
            if (first != Start) {
                return fail(QStringLiteral("this is no system exclusive message"));
            }
            QByteArray message;
            for (++i; i < m_bytes.size() && !message.endsWith(static_cast<char>(SysEx::End)); ++i) {
                const auto byte = static_cast<unsigned char>(m_bytes.at(i));
                if (byte >= FirstRealTime) {
                    continue;
                }
                if (byte >= FirstStatus && byte != SysEx::End) {
                    return fail(QStringLiteral("the message is broken"));
                }
                message.append(static_cast<char>(byte));
            }
            if (!message.endsWith(static_cast<char>(SysEx::End))) {
                return fail(QStringLiteral("the message is cut off"));
            }
            if (!readMessage(message)) {
                return false;
            }
        }
        return true;
    }

    bool isFinished()
    {
        m_position = m_bytes.size();
        if (m_dump.isOpen) {
            return fail(m_dump.name() + QStringLiteral(" is not finished"));
        }
        if (m_import->messages.isEmpty()) {
            m_error = QStringLiteral("The file holds no dump of the instrument.");
            return false;
        }
        return true;
    }

    bool readMessage(const QByteArray &message)
    {
        const unsigned char model = byteAt(message, SysEx::PositionModel + 1);
        if (byteAt(message, 0) != SysEx::Manufacturer ||
            byteAt(message, SysEx::PositionModel) != ModelFirst ||
            (model != EditorModel && model != DeviceModel)) {
            return true;
        }
        switch (byteAt(message, SysEx::PositionClass) & 0xF0) {
        case SysEx::ClassBulk:
            return readBulk(message, model);
        case SysEx::ClassParameterChange:
            return readChange(message);
        default:
            return true;
        }
    }

    bool readChange(const QByteArray &message)
    {
        if (byteAt(message, SysEx::PositionChangeAddress) != SysEx::AddressTemplateData ||
            byteAt(message, SysEx::PositionChangeAddress + 1) != SysEx::MidCurrentTemplateNumber ||
            byteAt(message, SysEx::PositionChangeAddress + 2) != 0) {
            return true;
        }
        if (message.size() != CurrentTemplateLength ||
            byteAt(message, SysEx::PositionChangeData) >= ParamAddress::TemplateCount) {
            return fail(QStringLiteral("this current template number is none"));
        }
        m_import->hasCurrentTemplate = true;
        m_import->messages.append(message);
        return true;
    }

    bool readBulk(const QByteArray &message, unsigned char model)
    {
        if (message.size() < FramingLength) {
            return fail(QStringLiteral("the dump message is too short"));
        }
        unsigned sum = 0;
        for (int i = SysEx::PositionCount; i < message.size() - 1; ++i) {
            sum += byteAt(message, i);
        }
        if ((sum & 0x7F) != 0) {
            return fail(QStringLiteral("the dump message's checksum is wrong"));
        }
        const int count = byteAt(message, SysEx::PositionCount) * 0x80 +
                          byteAt(message, SysEx::PositionCount + 1);
        if (count != message.size() - FramingLength) {
            return fail(QStringLiteral("the dump message's length is wrong"));
        }
        switch (byteAt(message, SysEx::PositionBulkAddress)) {
        case SysEx::AddressBulkHeader:
            return readHeader(message, model);
        case SysEx::AddressBulkFooter:
            return readFooter(message, model);
        case SysEx::AddressTemplateData:
            return readBlock(message, model);
        case SysEx::AddressStoreToFlash:
            return true;
        default:
            return fail(QStringLiteral("the dump message is of an unknown kind"));
        }
    }

    bool readFraming(const QByteArray &message, unsigned char *type, int *template_)
    {
        *type = byteAt(message, SysEx::PositionBulkAddress + 1);
        *template_ = byteAt(message, SysEx::PositionBulkAddress + 2);
        if (message.size() != FramingLength ||
            (*type != SysEx::TypeStored && *type != SysEx::TypeEditBuffer) ||
            *template_ >= ParamAddress::TemplateCount) {
            return fail(QStringLiteral("the dump is of an unknown kind"));
        }
        return true;
    }

    bool readHeader(const QByteArray &message, unsigned char model)
    {
        if (m_dump.isOpen) {
            return fail(m_dump.name() + QStringLiteral(" is not finished"));
        }
        m_dump = OpenDump();
        if (!readFraming(message, &m_dump.type, &m_dump.template_)) {
            return false;
        }
        m_dump.isOpen = true;
        m_dump.model = model;
        m_import->messages.append(message);
        return true;
    }

    bool readFooter(const QByteArray &message, unsigned char model)
    {
        unsigned char type = 0;
        int template_ = 0;
        if (!readFraming(message, &type, &template_)) {
            return false;
        }
        if (!m_dump.isOpen || model != m_dump.model || type != m_dump.type ||
            template_ != m_dump.template_) {
            return fail(QStringLiteral("a dump ends here that has not begun"));
        }
        if (m_dump.blocks != AllBlocks) {
            return fail(m_dump.name() + QStringLiteral(" lacks a block"));
        }
        m_dump.isOpen = false;
        (type == SysEx::TypeStored ? m_import->storedTemplates : m_import->editTemplates)
            .append(template_);
        m_import->messages.append(message);
        return true;
    }

    bool readBlock(const QByteArray &message, unsigned char model)
    {
        if (!m_dump.isOpen || model != m_dump.model) {
            return fail(QStringLiteral("a block stands outside a dump"));
        }
        const unsigned char mid = byteAt(message, SysEx::PositionBulkAddress + 1);
        const bool isTemplate = mid == SysEx::MidTemplate;
        const int knob = mid - SysEx::MidFirstKnob;
        if ((!isTemplate && (knob < 0 || knob >= ParamAddress::KnobCount)) ||
            byteAt(message, SysEx::PositionBulkAddress + 2) != 0 ||
            message.size() != (isTemplate ? TemplateBlockLength : KnobBlockLength)) {
            return fail(QStringLiteral("%1 has a block of an unknown kind").arg(m_dump.name()));
        }
        if (byteAt(message, isTemplate ? ControlTypePosition : DisplayFormatPosition) > 1) {
            return fail(QStringLiteral("%1 has a value out of its range").arg(m_dump.name()));
        }
        m_dump.blocks |= 1u << (isTemplate ? 0 : 1 + knob);
        m_import->messages.append(message);
        return true;
    }

    const QByteArray &m_bytes;
    SysExFile::Import *m_import;
    OpenDump m_dump;
    qsizetype m_position = 0;
    QString m_error;
};

} // namespace

QByteArray SysExFile::fullSend(RemoteMemAPI *api)
{
    SysExParamChangeAddressTransTable table;
    MessageEncoder encoder(ModelFirst, EditorModel, &table, api->getComuController(), 0,
                           api->getAddressTransTable(), api);
    QByteArray bytes;
    // Takes what create() fills in.
    const auto add = [&bytes](const auto &create) {
        OwnedMPEvent event(new tagMPEVENT);
        if (create(event.get())) {
            bytes.append(static_cast<char>(Start));
            bytes.append(reinterpret_cast<const char *>(event->longData),
                         static_cast<qsizetype>(event->length));
        }
    };
    const auto addBank = [&](int bank) {
        const auto type =
            bank == Bank::Stored ? MessageEncoder::BulkStored : MessageEncoder::BulkEditBuffer;
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            add([&](tagMPEVENT *event) {
                return encoder.createBulkHeaderFooter(type, MessageEncoder::BulkHeader, number,
                                                      event);
            });
            for (int block = 0; block < BulkReceipt::BlockCount; ++block) {
                add([&](tagMPEVENT *event) {
                    return encoder.createBulkContent(block, bank, number, event);
                });
            }
            add([&](tagMPEVENT *event) {
                return encoder.createBulkHeaderFooter(type, MessageEncoder::BulkFooter, number,
                                                      event);
            });
        }
    };
    addBank(Bank::EditBuffer);
    add([&](tagMPEVENT *event) {
        const unsigned char address[2] = {SysEx::MidCurrentTemplateNumber, 0};
        const auto number = static_cast<unsigned char>(
            api->getParam(
                   ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1))
                .getCurrentValue());
        return encoder.createParamChange(event, address, &number, 1);
    });
    addBank(Bank::Stored);
    return bytes;
}

bool SysExFile::read(const QByteArray &bytes, Import *import, QString *error)
{
    return Reader(bytes, import).read(error);
}

void SysExFile::apply(const Import &import, RemoteMemAPI *api)
{
    SysExParamChangeAddressTransTable table;
    MessageDecoder editorSide(0, api, 0, ModelFirst, EditorModel, &table,
                              api->getAddressTransTable());
    MessageDecoder deviceSide(0, api, 0, ModelFirst, DeviceModel, &table,
                              api->getAddressTransTable());
    api->denyToRaiseFileEditFlag();
    for (QByteArray message : import.messages) {
        tagMPEVENT event;
        event.eventType = MPEventSysEx;
        event.length = static_cast<std::uint32_t>(message.size());
        event.longData = reinterpret_cast<unsigned char *>(message.data());
        // Each takes its own model's alone.
        editorSide.Process(event);
        deviceSide.Process(event);
    }
    for (const int number : import.storedTemplates) {
        api->copyTemplate(Bank::HardwareStored, number, Bank::Stored, number);
    }
    for (const int number : import.editTemplates) {
        api->copyTemplate(Bank::HardwareEditBuffer, number, Bank::EditBuffer, number);
    }
    api->allowToRaiseFileEditFlag();
}
