// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/MIDIBinding.h"

#include "midi/TMIDITransport.h"
#include "midi/TUniMIDIPortAccessor.h"
#include "midi/alsa/AlsaClient.h"
#include "midi/alsa/AlsaMIDI.h"
#include "midi/alsa/AlsaMIDIPortAccessor.h"
#include "midi/jack/JackClient.h"
#include "midi/jack/JackMIDI.h"
#include "midi/jack/JackMIDIPortAccessor.h"
#include "midi/linux/MIDIServiceChoice.h"

namespace
{

MIDIService wantedService = MIDIService::Automatic;
MIDIService serviceInUse = MIDIService::Automatic;

bool connects(MIDIService service)
{
    switch (service) {
    case MIDIService::Alsa:
        return AlsaClient::shared()->connectToSequencer();
    case MIDIService::Jack:
        return JackClient::shared()->connectToServer();
    case MIDIService::Automatic:
        break;
    }
    return false;
}

// What is in use comes first, so that a second service which turns up does not take the open ports'
// numbers away.
MIDIService chooseService()
{
    for (const MIDIService service : {serviceInUse, MIDIService::Alsa, MIDIService::Jack}) {
        const bool isWanted = wantedService == MIDIService::Automatic || wantedService == service;
        if (isWanted && connects(service)) {
            return serviceInUse = service;
        }
    }
    return serviceInUse = MIDIService::Automatic;
}

// The catalogue of whichever service is in use when its lists are read.
class LinuxMIDIPortAccessor : public TUniMIDIPortAccessor
{
public:
    int getNumPorts(int direction) override
    {
        const MIDIService service = chooseService();
        if (TUniMIDIPortAccessor *accessor = accessorOf(service)) {
            return accessor->getNumPorts(direction);
        }
        return 0;
    }
    QString identifierForIndex(int direction, int index) override
    {
        if (TUniMIDIPortAccessor *accessor = accessorOf(serviceInUse)) {
            return accessor->identifierForIndex(direction, index);
        }
        return QString();
    }
    // The other service answers or isn't there; it has no server that could hang.
    bool isServiceSilent() const override { return m_jack.isServiceSilent(); }

private:
    TUniMIDIPortAccessor *accessorOf(MIDIService service)
    {
        switch (service) {
        case MIDIService::Alsa:
            return &m_alsa;
        case MIDIService::Jack:
            return &m_jack;
        case MIDIService::Automatic:
            break;
        }
        return nullptr;
    }

    AlsaMIDIPortAccessor m_alsa;
    JackMIDIPortAccessor m_jack;
};

// A port of a machine without MIDI.
class NoMIDI : public TMIDITransport
{
public:
    bool openInput(int, TMIDIReaderRefConInterface *, int) override { return false; }
    void closeInput() override {}
    bool openOutput(int) override { return false; }
    void closeOutput() override {}
    bool outputData(int, const unsigned char *, unsigned char) override
    {
        return countedOutput(false);
    }
};

} // namespace

void setMIDIService(MIDIService service)
{
    wantedService = service;
    serviceInUse = MIDIService::Automatic;
}

MIDIService midiServiceInUse()
{
    return serviceInUse;
}

std::optional<MIDIService> midiServiceByName(const QString &name)
{
    if (name == QLatin1String("alsa")) {
        return MIDIService::Alsa;
    }
    if (name == QLatin1String("jack")) {
        return MIDIService::Jack;
    }
    return std::nullopt;
}

QString midiServiceTitle(MIDIService service)
{
    switch (service) {
    case MIDIService::Alsa:
        return QStringLiteral("ALSA");
    case MIDIService::Jack:
        return QStringLiteral("JACK");
    case MIDIService::Automatic:
        break;
    }
    return QStringLiteral("none");
}

TUniMIDIPortAccessor *MIDIPortAccessor()
{
    auto *accessor = new LinuxMIDIPortAccessor;
    accessor->updatePortInfo();
    return accessor;
}

TMIDITransport *MIDITransportInstance()
{
    switch (chooseService()) {
    case MIDIService::Alsa:
        return new AlsaMIDI;
    case MIDIService::Jack:
        return new JackMIDI;
    case MIDIService::Automatic:
        break;
    }
    return new NoMIDI;
}
