// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/EngineRig.h"

#include "app/Timings.h"
#include "midi/DevicePortList.h"

#include <condition_variable>
#include <mutex>

namespace
{

// A run's end, waited for without an event loop, so that none is measured.
class RunEnd
{
public:
    void reach()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_reached = true;
        m_condition.notify_all();
    }
    bool wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_condition.wait_for(lock, std::chrono::milliseconds(timings().sendRunTimeoutMs),
                                    [this] { return m_reached; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_reached = false;
};

} // namespace

EngineRig::EngineRig()
{
    while (api.getQuantityOfBank() < Bank::Count) {
        api.createBank();
    }
    for (int bank : {Bank::EditBuffer, Bank::Stored}) {
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            api.setParam(ParamAddress(bank, number, ParamAddress::TemplateName, -1),
                         QStringLiteral("Template %1 %2").arg(number, 2).arg(bank));
            api.setParam(ParamAddress(bank, number, ParamAddress::VSTiName, -1),
                         QStringLiteral("Instrument12"));
            for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
                api.setParam(ParamAddress(bank, number, knob, ParamAddress::DisplayName),
                             QStringLiteral("Parameter %1 %2").arg(knob, 2).arg(number, 2));
                api.setParam(ParamAddress(bank, number, knob, ParamAddress::CCNumber),
                             (number + knob) % 128);
            }
        }
    }
}

bool EngineRig::openRoute()
{
    // Once is enough: listing the ports writes the settings, and what follows an fsync starts cold.
    if (m_inPort != 0) {
        return api.createMIDIComunicationRoute(m_sensePort, m_inPort, m_outPort);
    }
    const QList<PortInfo> devices =
        recognizeDevicePorts(api.getInputPortList(), api.getOutputPortList());
    if (devices.isEmpty()) {
        return false;
    }
    m_inPort = devices.first().communicationInPort;
    m_outPort = devices.first().communicationOutPort;
    m_sensePort = devices.first().activeSensePort;
    return api.createMIDIComunicationRoute(m_sensePort, m_inPort, m_outPort);
}

bool EngineRig::receiveAll()
{
    RunEnd end;
    const QMetaObject::Connection connection = QObject::connect(
        &api, &RemoteMemAPI::completeBulkReceive, &api, [&end] { end.reach(); },
        Qt::DirectConnection);
    api.denyToRaiseFileEditFlag();
    api.setWaitBulkReceiveDone(true);
    const bool done = api.sendHardWareDataReq(true) && end.wait();
    api.allowToRaiseFileEditFlag();
    QObject::disconnect(connection);
    return done;
}

bool EngineRig::sendAll()
{
    RunEnd end;
    const QMetaObject::Connection connection = QObject::connect(
        &api, &RemoteMemAPI::completeBulkTransmit, &api, [&end] { end.reach(); },
        Qt::DirectConnection);
    api.setWaitBulkTransmitDone(true);
    const bool done = api.sendEditorAllData(false) && end.wait();
    QObject::disconnect(connection);
    return done;
}
