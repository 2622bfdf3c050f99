// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeCore.h"

#include <QtCore/QMap>
#include <QtCore/QSet>

#include <cstddef>
#include <cstring>
#include <mutex>
#include <vector>

struct __CFString
{
    QString text;
};

namespace
{

constexpr OSStatus Refused = -10830;

struct Connection
{
    MIDIReadProc procedure = nullptr;
    void *procedureRefCon = nullptr;
    void *connectionRefCon = nullptr;
};

struct Service
{
    std::mutex mutex;
    MIDIObjectRef lastObject = 0;
    QList<MIDIEndpointRef> sources;
    QList<MIDIEndpointRef> destinations;
    QMap<MIDIObjectRef, QString> names;
    QMap<MIDIEndpointRef, MIDIEntityRef> entities;
    QMap<MIDIEntityRef, MIDIDeviceRef> devices;
    QSet<MIDIClientRef> clients;
    QMap<MIDIPortRef, Connection> ports;
    QMap<MIDIEndpointRef, Connection> connections;
    MIDIReadProc lastProcedure = nullptr;
    QSet<QString> failing;
    QStringList calls;
    int strings = 0;
    QList<FakeCore::Sent> sent;
};

Service &service()
{
    static Service instance;
    return instance;
}

using Lock = std::lock_guard<std::mutex>;

// Notes the call; false if it is to fail.
bool admit(const QString &call, CFStringRef name = nullptr)
{
    service().calls.append(name == nullptr ? call : call + QLatin1Char(' ') + name->text);
    return !service().failing.contains(call);
}

MIDIEndpointRef addEndpoint(QList<MIDIEndpointRef> &list, const FakeCore::EndpointNames &names)
{
    const MIDIEndpointRef endpoint = ++service().lastObject;
    if (!names.endpoint.isNull()) {
        service().names.insert(endpoint, names.endpoint);
    }
    if (names.hasEntity) {
        const MIDIEntityRef entity = ++service().lastObject;
        service().entities.insert(endpoint, entity);
        if (names.hasDevice) {
            const MIDIDeviceRef device = ++service().lastObject;
            service().devices.insert(entity, device);
            if (!names.device.isNull()) {
                service().names.insert(device, names.device);
            }
        }
    }
    list.append(endpoint);
    return endpoint;
}

// A packet list in the service's layout.
std::vector<unsigned char> packetList(const QList<QByteArray> &packets)
{
    std::vector<unsigned char> list(sizeof(UInt32));
    const auto count = static_cast<UInt32>(packets.size());
    std::memcpy(list.data(), &count, sizeof count);
    for (const QByteArray &packet : packets) {
        const MIDITimeStamp time = 1;
        const auto length = static_cast<UInt16>(packet.size());
        std::size_t at = list.size();
#if defined(__arm__) || defined(__aarch64__)
        at = (at + 3) / 4 * 4;
#endif
        list.resize(at + sizeof time + sizeof length + length);
        std::memcpy(list.data() + at, &time, sizeof time);
        std::memcpy(list.data() + at + sizeof time, &length, sizeof length);
        if (length > 0) {
            std::memcpy(list.data() + at + sizeof time + sizeof length, packet.constData(), length);
        }
    }
    return list;
}

const __CFString nameProperty{QStringLiteral("name")};

} // namespace

const CFStringRef kMIDIPropertyName = &nameProperty;

void FakeCore::reset()
{
    const Lock lock(service().mutex);
    service().sources.clear();
    service().destinations.clear();
    service().names.clear();
    service().entities.clear();
    service().devices.clear();
    service().connections.clear();
    service().failing.clear();
    service().calls.clear();
    service().sent.clear();
}

MIDIEndpointRef FakeCore::addSource(const EndpointNames &names)
{
    const Lock lock(service().mutex);
    return addEndpoint(service().sources, names);
}

MIDIEndpointRef FakeCore::addDestination(const EndpointNames &names)
{
    const Lock lock(service().mutex);
    return addEndpoint(service().destinations, names);
}

void FakeCore::addSourceGap()
{
    const Lock lock(service().mutex);
    service().sources.append(0);
}

void FakeCore::setFailing(const QString &call, bool isFailing)
{
    const Lock lock(service().mutex);
    if (isFailing) {
        service().failing.insert(call);
    } else {
        service().failing.remove(call);
    }
}

QStringList FakeCore::calls()
{
    const Lock lock(service().mutex);
    return service().calls;
}

int FakeCore::clientCount()
{
    const Lock lock(service().mutex);
    return static_cast<int>(service().clients.size());
}

int FakeCore::portCount()
{
    const Lock lock(service().mutex);
    return static_cast<int>(service().ports.size());
}

int FakeCore::stringCount()
{
    const Lock lock(service().mutex);
    return service().strings;
}

bool FakeCore::deliver(MIDIEndpointRef source, const QList<QByteArray> &packets)
{
    Connection connection;
    {
        const Lock lock(service().mutex);
        connection = service().connections.value(source);
    }
    if (connection.procedure == nullptr) {
        return false;
    }
    // Not under the lock, like a callback that is under way while its port is closed.
    const std::vector<unsigned char> list = packetList(packets);
    connection.procedure(reinterpret_cast<const MIDIPacketList *>(list.data()),
                         connection.procedureRefCon, connection.connectionRefCon);
    return true;
}

void FakeCore::deliverLate(void *connection, const QList<QByteArray> &packets)
{
    MIDIReadProc procedure = nullptr;
    {
        const Lock lock(service().mutex);
        procedure = service().lastProcedure;
    }
    const std::vector<unsigned char> list = packetList(packets);
    procedure(reinterpret_cast<const MIDIPacketList *>(list.data()), nullptr, connection);
}

QList<FakeCore::Sent> FakeCore::sent()
{
    const Lock lock(service().mutex);
    return service().sent;
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *text, CFStringEncoding)
{
    const Lock lock(service().mutex);
    ++service().strings;
    return new __CFString{QString::fromUtf8(text)};
}

CFIndex CFStringGetLength(CFStringRef text)
{
    return static_cast<CFIndex>(text->text.size());
}

void CFStringGetCharacters(CFStringRef text, CFRange range, UniChar *units)
{
    if (range.length < 1) {
        return;
    }
    std::memcpy(units, text->text.utf16() + range.location,
                static_cast<std::size_t>(range.length) * sizeof(UniChar));
}

void CFRelease(CFTypeRef object)
{
    const Lock lock(service().mutex);
    --service().strings;
    delete static_cast<CFStringRef>(object);
}

OSStatus MIDIClientCreate(CFStringRef name, MIDINotifyProc, void *, MIDIClientRef *client)
{
    const Lock lock(service().mutex);
    // What the service leaves there on a failure is no client.
    *client = ++service().lastObject;
    if (!admit(QStringLiteral("MIDIClientCreate"), name)) {
        return Refused;
    }
    service().clients.insert(*client);
    return noErr;
}

OSStatus MIDIClientDispose(MIDIClientRef client)
{
    const Lock lock(service().mutex);
    admit(QStringLiteral("MIDIClientDispose"));
    return service().clients.remove(client) ? noErr : Refused;
}

ItemCount MIDIGetNumberOfSources()
{
    const Lock lock(service().mutex);
    return static_cast<ItemCount>(service().sources.size());
}

ItemCount MIDIGetNumberOfDestinations()
{
    const Lock lock(service().mutex);
    return static_cast<ItemCount>(service().destinations.size());
}

MIDIEndpointRef MIDIGetSource(ItemCount index)
{
    const Lock lock(service().mutex);
    return service().sources.value(static_cast<qsizetype>(index));
}

MIDIEndpointRef MIDIGetDestination(ItemCount index)
{
    const Lock lock(service().mutex);
    return service().destinations.value(static_cast<qsizetype>(index));
}

OSStatus MIDIEndpointGetEntity(MIDIEndpointRef endpoint, MIDIEntityRef *entity)
{
    const Lock lock(service().mutex);
    *entity = service().entities.value(endpoint);
    return *entity != 0 ? noErr : Refused;
}

OSStatus MIDIEntityGetDevice(MIDIEntityRef entity, MIDIDeviceRef *device)
{
    const Lock lock(service().mutex);
    *device = service().devices.value(entity);
    return *device != 0 ? noErr : Refused;
}

OSStatus MIDIObjectGetStringProperty(MIDIObjectRef object, CFStringRef property, CFStringRef *text)
{
    const Lock lock(service().mutex);
    const auto name = service().names.constFind(object);
    if (property != kMIDIPropertyName || name == service().names.cend()) {
        return Refused;
    }
    ++service().strings;
    *text = new __CFString{*name};
    return noErr;
}

OSStatus MIDIInputPortCreate(MIDIClientRef client, CFStringRef name, MIDIReadProc procedure,
                             void *refCon, MIDIPortRef *port)
{
    const Lock lock(service().mutex);
    *port = ++service().lastObject;
    if (!admit(QStringLiteral("MIDIInputPortCreate"), name) ||
        !service().clients.contains(client)) {
        return Refused;
    }
    service().lastProcedure = procedure;
    service().ports.insert(*port, {procedure, refCon, nullptr});
    return noErr;
}

OSStatus MIDIOutputPortCreate(MIDIClientRef client, CFStringRef name, MIDIPortRef *port)
{
    const Lock lock(service().mutex);
    *port = ++service().lastObject;
    if (!admit(QStringLiteral("MIDIOutputPortCreate"), name) ||
        !service().clients.contains(client)) {
        return Refused;
    }
    service().ports.insert(*port, {});
    return noErr;
}

OSStatus MIDIPortConnectSource(MIDIPortRef port, MIDIEndpointRef source, void *connRefCon)
{
    const Lock lock(service().mutex);
    if (!admit(QStringLiteral("MIDIPortConnectSource")) || !service().ports.contains(port)) {
        return Refused;
    }
    Connection connection = service().ports.value(port);
    connection.connectionRefCon = connRefCon;
    service().connections.insert(source, connection);
    return noErr;
}

OSStatus MIDIPortDisconnectSource(MIDIPortRef, MIDIEndpointRef source)
{
    const Lock lock(service().mutex);
    admit(QStringLiteral("MIDIPortDisconnectSource"));
    return service().connections.remove(source) > 0 ? noErr : Refused;
}

OSStatus MIDIPortDispose(MIDIPortRef port)
{
    const Lock lock(service().mutex);
    admit(QStringLiteral("MIDIPortDispose"));
    return service().ports.remove(port) > 0 ? noErr : Refused;
}

OSStatus MIDISend(MIDIPortRef port, MIDIEndpointRef destination, const MIDIPacketList *packets)
{
    const Lock lock(service().mutex);
    if (service().failing.contains(QStringLiteral("MIDISend")) || !service().ports.contains(port) ||
        packets->numPackets != 1) {
        return Refused;
    }
    const auto *packet = reinterpret_cast<const char *>(packets) + offsetof(MIDIPacketList, packet);
    FakeCore::Sent entry;
    entry.destination = destination;
    std::memcpy(&entry.timeStamp, packet, sizeof entry.timeStamp);
    UInt16 length = 0;
    std::memcpy(&length, packet + offsetof(MIDIPacket, length), sizeof length);
    entry.bytes = QByteArray(packet + offsetof(MIDIPacket, data), length);
    service().sent.append(entry);
    return noErr;
}
