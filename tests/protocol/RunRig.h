// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/InstrumentProtocol.h"
#include "instrument/VirtualInstrument.h"
#include "protocol/BulkReceipt.h"
#include "protocol/ProtocolHarness.h"

#include <QtCore/QRandomGenerator>

#include <atomic>

// The instrument's model and the memory's door at the two ends of a cable, with everything that
// passes written down in its order.
class RunRig
{
public:
    RunRig()
        : handle(LoopbackHub::instance().plug(QStringLiteral("Instrument"), 5,
                                              [this](int port, const QByteArray &bytes) {
                                                  note('E', bytes);
                                                  instrument.receive(port, bytes);
                                              }))
        , api(std::make_unique<RemoteMemAPI>())
    {
        instrument.setOutput([this](int port, const QByteArray &bytes) {
            if (port == VirtualInstrument::MessagePort) {
                note('D', bytes);
            }
            if (bytes.size() == 10 && bytes.startsWith(hex("F0 43 10 7F 15 01 20 00"))) {
                ++m_notifications;
            }
            LoopbackHub::instance().send(handle, port, bytes);
        });
        makeBanks(api.get());
        openRoute();
        runSignals = std::make_unique<RunSignals>(api.get());
    }
    ~RunRig()
    {
        if (api != nullptr) {
            api->deleteMIDIComunicationRoute();
        }
        instrument.stop();
        instrument.setOutput({});
        LoopbackHub::instance().unplug(handle);
        runSignals.reset();
        api.reset();
    }
    RunRig(const RunRig &) = delete;
    RunRig &operator=(const RunRig &) = delete;

    bool openRoute()
    {
        return api->createMIDIComunicationRoute(VirtualInstrument::SensingPort,
                                                VirtualInstrument::MessagePort,
                                                VirtualInstrument::MessagePort);
    }

    // Another door, as after a start of the program.
    void restart()
    {
        api->deleteMIDIComunicationRoute();
        runSignals.reset();
        m_notifications = 0;
        api = std::make_unique<RemoteMemAPI>();
        makeBanks(api.get());
        openRoute();
        runSignals = std::make_unique<RunSignals>(api.get());
    }

    // The two runs of a synchronisation, up to their signal.
    bool receive(bool editBufferToo)
    {
        const int before = runSignals->received();
        api->denyToRaiseFileEditFlag();
        api->setWaitBulkReceiveDone(true);
        const bool good =
            api->sendHardWareDataReq(editBufferToo) && runSignals->waitReceived(before + 1);
        api->allowToRaiseFileEditFlag();
        return good;
    }
    bool send(bool editBufferOnly)
    {
        const int before = runSignals->transmitted();
        api->setWaitBulkTransmitDone(true);
        return api->sendEditorAllData(editBufferOnly) && runSignals->waitTransmitted(before + 1);
    }
    // What the end of a failed run does.
    void breakOff()
    {
        api->revokeReceivedBulk();
        api->clearTransmitedBulkReqCounter();
        api->clearTransmitedBulkCounter();
        api->clearTransmitQueue();
    }
    // What follows a receive run.
    void takeOver()
    {
        const int current = api->getParam(currentTemplateAddress()).getCurrentValue();
        api->copyBank(Bank::HardwareStored, Bank::Stored);
        api->copyBank(Bank::HardwareEditBuffer, Bank::EditBuffer);
        api->setParam(currentTemplateAddress(), current);
        api->setONLINEstate(1);
    }

    // Returns when all that the instrument has sent so far has been processed.
    bool fence()
    {
        // Each message about the current template number is signalled, whatever becomes of it, and
        // all of them are counted; this one is of no template, and so is written nowhere.
        const int wanted = ++m_notifications;
        LoopbackHub::instance().send(handle, VirtualInstrument::MessagePort,
                                     '\xF0' + DeviceSide::change(0x20, 0x00, 0x7F));
        return runSignals->waitNotified(wanted);
    }

    // Everything that passed since the last call, "E" or "D" in front.
    QList<QByteArray> takeTraffic()
    {
        const MutexLocker lock(m_mutex);
        return std::exchange(m_traffic, {});
    }

    VirtualInstrument instrument;
    int handle;
    std::unique_ptr<RemoteMemAPI> api;
    std::unique_ptr<RunSignals> runSignals;

private:
    void note(char side, const QByteArray &bytes)
    {
        const MutexLocker lock(m_mutex);
        m_traffic.append(side + bytes.mid(1));
    }

    Mutex m_mutex; // guards m_traffic
    QList<QByteArray> m_traffic;
    std::atomic<int> m_notifications{0};
};

// --- Content -------------------------------------------------------------------------------------

// What the instrument must hold for a template of the memory: the fields one by one.
inline InstrumentTemplate asInstrument(const ControlTemplateData &source)
{
    const auto ascii = [](const QString &text) {
        QByteArray bytes;
        for (const QChar c : text) {
            bytes.append(c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : '?');
        }
        return bytes;
    };
    InstrumentTemplate target;
    target.templateName.set(ascii(source.getTemplateName()));
    target.vstiName.set(ascii(source.getVSTiName()));
    target.controlType = static_cast<quint8>(source.getCtrlType().getCurrentValue());
    for (int knob = 0; knob < 12; ++knob) {
        const ControllerData data = source.getController(knob);
        InstrumentKnob &place = target.knobs[static_cast<std::size_t>(knob)];
        place.remoteId.set(ascii(data.getRemoteTagID()));
        place.displayName.set(ascii(data.getDisplayName()));
        place.ccNumber = static_cast<quint8>(data.getCCNum().getCurrentValue());
        place.displayFormat = static_cast<quint8>(data.getDispFormat().getCurrentValue());
    }
    return target;
}

// Numbers of the templates in which a bank of the memory and one of the instrument differ.
inline QList<int> differences(const RemoteMemAPI &api, int bank, const InstrumentBank &other)
{
    QList<int> numbers;
    for (int number = 0; number < 50; ++number) {
        if (!(asInstrument(api.getTemplateData(bank, number)) ==
              other[static_cast<std::size_t>(number)])) {
            numbers.append(number);
        }
    }
    return numbers;
}

inline QString randomText(QRandomGenerator *random, int maximum, bool withBlanks)
{
    QString text;
    const int length = random->bounded(maximum + 1);
    for (int i = 0; i < length; ++i) {
        const bool isBlank = withBlanks && i > 0 && i < length - 1 && random->bounded(5) == 0;
        text.append(QChar(isBlank ? u' ' : static_cast<char16_t>(random->bounded(0x21, 0x7F))));
    }
    return text;
}

inline QString randomId(QRandomGenerator *random)
{
    return QStringLiteral("%1")
        .arg(random->bounded(0x7FFFFFFF), 8, 16, QLatin1Char('0'))
        .prepend(QString::number(random->bounded(3)));
}

// Banks 0 and 1 and the current template number.
inline void fillDocument(RemoteMemAPI *api, QRandomGenerator *random)
{
    for (const int bank : {Bank::EditBuffer, Bank::Stored}) {
        for (int number = 0; number < 50; ++number) {
            api->setParam(templateAddress(bank, number, 13), randomText(random, 13, true));
            api->setParam(templateAddress(bank, number, 15), randomText(random, 12, true));
            api->setParam(templateAddress(bank, number, 14), random->bounded(2));
            for (int knob = 0; knob < 12; ++knob) {
                api->setParam(knobAddress(bank, number, knob, 0), randomText(random, 15, true));
                api->setParam(knobAddress(bank, number, knob, 1), random->bounded(128));
                api->setParam(knobAddress(bank, number, knob, 2), random->bounded(2));
                api->setParam(knobAddress(bank, number, knob, 3), randomId(random));
            }
        }
    }
    api->setParam(currentTemplateAddress(), random->bounded(50));
}

inline InstrumentMemory randomInstrument(QRandomGenerator *random)
{
    InstrumentMemory memory;
    for (InstrumentBank *bank : {&memory.stored, &memory.editBuffer}) {
        for (InstrumentTemplate &place : *bank) {
            place.templateName.set(randomText(random, 13, true).toLatin1());
            place.vstiName.set(randomText(random, 12, true).toLatin1());
            place.controlType = static_cast<quint8>(random->bounded(2));
            for (InstrumentKnob &knob : place.knobs) {
                knob.remoteId.set(randomId(random).toLatin1());
                knob.displayName.set(randomText(random, 15, true).toLatin1());
                knob.ccNumber = static_cast<quint8>(random->bounded(128));
                knob.displayFormat = static_cast<quint8>(random->bounded(2));
            }
        }
    }
    memory.currentTemplate = random->bounded(50);
    memory.editFlag = random->bounded(2) == 1;
    return memory;
}

// Whatever came in, the memory keeps its own limits.
inline bool isSane(const RemoteMemAPI &api)
{
    const auto isData = [](const QString &text) {
        return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x80; });
    };
    for (int bank = 0; bank < 9; ++bank) {
        const int current = api.getParam(currentTemplateAddress(bank)).getCurrentValue();
        if (current < 0 || current > 49) {
            return false;
        }
        for (int number = 0; number < 50; ++number) {
            const ControlTemplateData data = api.getTemplateData(bank, number);
            const int type = data.getCtrlType().getCurrentValue();
            if (type < 0 || type > 1 || data.getTemplateName().size() > 13 ||
                data.getVSTiName().size() > 12 || !isData(data.getTemplateName()) ||
                !isData(data.getVSTiName())) {
                return false;
            }
            for (int knob = 0; knob < 12; ++knob) {
                const ControllerData place = data.getController(knob);
                const int cc = place.getCCNum().getCurrentValue();
                const int format = place.getDispFormat().getCurrentValue();
                if (cc < 0 || cc > 127 || format < 0 || format > 1 ||
                    place.getDisplayName().size() > 15 || place.getRemoteTagID().size() > 9 ||
                    !isData(place.getDisplayName()) || !isData(place.getRemoteTagID())) {
                    return false;
                }
            }
        }
    }
    return true;
}
