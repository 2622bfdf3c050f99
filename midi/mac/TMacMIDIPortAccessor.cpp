// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/mac/TMacMIDIPortAccessor.h"

#include "midi/MIDIBinding.h"
#include "midi/MidiPortName.h"

#include <CoreFoundation/CoreFoundation.h>

#include <vector>

namespace
{

QString objectName(MIDIObjectRef object)
{
    CFStringRef name = nullptr;
    if (object == 0 || MIDIObjectGetStringProperty(object, kMIDIPropertyName, &name) != noErr ||
        name == nullptr) {
        return {};
    }
    QString text = CFStringToQString(name);
    CFRelease(name);
    return text;
}

MIDIDeviceRef deviceOf(MIDIEndpointRef endpoint)
{
    // Virtual endpoints have neither entity nor device.
    MIDIEntityRef entity = 0;
    if (MIDIEndpointGetEntity(endpoint, &entity) != noErr || entity == 0) {
        return 0;
    }
    MIDIDeviceRef device = 0;
    return MIDIEntityGetDevice(entity, &device) == noErr ? device : 0;
}

} // namespace

MIDIClientRef TMacMIDIPortAccessor::s_client = 0;
int TMacMIDIPortAccessor::s_midiClientCounter = 0;

TUniMIDIPortAccessor *MIDIPortAccessor()
{
    auto *accessor = new TMacMIDIPortAccessor;
    accessor->updatePortInfo();
    return accessor;
}

QString CFStringToQString(CFStringRef text)
{
    if (text == nullptr) {
        return {};
    }
    const CFIndex length = CFStringGetLength(text);
    std::vector<UniChar> units(static_cast<std::size_t>(length));
    CFStringGetCharacters(text, CFRangeMake(0, length), units.data());
    return QString(reinterpret_cast<const QChar *>(units.data()), static_cast<qsizetype>(length));
}

TMacMIDIPortAccessor::TMacMIDIPortAccessor()
{
    if (s_client == 0) {
        MIDIClientRef client = 0;
        const CFStringRef name =
            CFStringCreateWithCString(kCFAllocatorDefault, "MIDI Client", kCFStringEncodingUTF8);
        if (MIDIClientCreate(name, nullptr, nullptr, &client) == noErr) {
            s_client = client;
        }
        CFRelease(name);
    }
    ++s_midiClientCounter;
}

TMacMIDIPortAccessor::~TMacMIDIPortAccessor()
{
    if (--s_midiClientCounter > 0) {
        return;
    }
    if (s_client != 0) {
        MIDIClientDispose(s_client);
    }
    s_client = 0;
    s_midiClientCounter = 0;
}

int TMacMIDIPortAccessor::getNumPorts(int direction)
{
    return static_cast<int>(direction == Input ? MIDIGetNumberOfSources()
                                               : MIDIGetNumberOfDestinations());
}

QString TMacMIDIPortAccessor::identifierForIndex(int direction, int index)
{
    const auto place = static_cast<ItemCount>(index);
    const MIDIEndpointRef endpoint =
        index < 0 ? 0 : (direction == Input ? MIDIGetSource(place) : MIDIGetDestination(place));
    if (endpoint == 0) {
        return {};
    }
    return midiPortName(objectName(deviceOf(endpoint)), objectName(endpoint), index);
}
