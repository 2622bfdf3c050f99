// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The few declarations of the platform's MIDI service that the binding uses, for compiling and
// testing it elsewhere. The platform's names and types; the implementation is FakeCore.cpp.

#include <CoreFoundation/CoreFoundation.h>

using MIDIObjectRef = UInt32;
using MIDIClientRef = MIDIObjectRef;
using MIDIPortRef = MIDIObjectRef;
using MIDIDeviceRef = MIDIObjectRef;
using MIDIEntityRef = MIDIObjectRef;
using MIDIEndpointRef = MIDIObjectRef;
using MIDITimeStamp = UInt64;

#pragma pack(push, 4)
struct MIDIPacket
{
    MIDITimeStamp timeStamp;
    UInt16 length;
    UInt8 data[256]; // as many as length says
};
struct MIDIPacketList
{
    UInt32 numPackets;
    MIDIPacket packet[1]; // as many as numPackets says, each behind the other's bytes
};
#pragma pack(pop)

struct MIDINotification;
using MIDINotifyProc = void (*)(const MIDINotification *message, void *refCon);
using MIDIReadProc = void (*)(const MIDIPacketList *packets, void *procRefCon, void *srcConnRefCon);

extern const CFStringRef kMIDIPropertyName;

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc notify, void *refCon,
                          MIDIClientRef *client);
OSStatus MIDIClientDispose(MIDIClientRef client);
ItemCount MIDIGetNumberOfSources();
ItemCount MIDIGetNumberOfDestinations();
MIDIEndpointRef MIDIGetSource(ItemCount index);
MIDIEndpointRef MIDIGetDestination(ItemCount index);
OSStatus MIDIEndpointGetEntity(MIDIEndpointRef endpoint, MIDIEntityRef *entity);
OSStatus MIDIEntityGetDevice(MIDIEntityRef entity, MIDIDeviceRef *device);
OSStatus MIDIObjectGetStringProperty(MIDIObjectRef object, CFStringRef property, CFStringRef *text);
OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef name, MIDIReadProc procedure,
                             void *refCon, MIDIPortRef *port);
OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef name, MIDIPortRef *port);
OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void *connRefCon);
OSStatus MIDIPortDisconnectSource(MIDIPortRef port, MIDIEndpointRef source);
OSStatus MIDIPortDispose(MIDIPortRef port);
OSStatus MIDISend(MIDIPortRef port, MIDIEndpointRef destination, const MIDIPacketList *packets);
