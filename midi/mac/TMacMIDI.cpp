// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/mac/TMacMIDI.h"

#include "app/Locks.h"
#include "midi/MIDIBinding.h"
#include "midi/OutputChunks.h"
#include "midi/mac/TMacMIDIPortAccessor.h"

#include <CoreFoundation/CoreFoundation.h>

#include <QtCore/QSet>

#include <cstddef>
#include <cstring>
#include <memory>

namespace
{

// A packet list of one packet: its count, and the packet's time stamp and length in front of a
// chunk's bytes.
constexpr std::size_t PacketListBytes = 4112;
constexpr std::size_t PacketHeaderBytes = 10;
static_assert(offsetof(MIDIPacket, data) == PacketHeaderBytes);
static_assert(offsetof(MIDIPacketList, packet) + PacketHeaderBytes +
                  static_cast<std::size_t>(TMIDITransport::OutputChunkBytes) <=
              PacketListBytes);

// The transports whose sources are connected. CoreMIDI does not promise that no read procedure is
// under way when a disconnection returns: one that comes late finds its transport gone from here.
struct Connections
{
    Mutex mutex;
    QSet<void *> transports;
};

Connections &connections()
{
    static Connections instance;
    return instance;
}

MIDIPortRef createInputPort(MIDIClientRef client, MIDIReadProc procedure)
{
    MIDIPortRef port = 0;
    const CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "Input port", kCFStringEncodingUTF8);
    const OSStatus status = MIDIInputPortCreate(client, name, procedure, nullptr, &port);
    CFRelease(name);
    return status == noErr ? port : 0;
}

MIDIPortRef createOutputPort(MIDIClientRef client)
{
    MIDIPortRef port = 0;
    const CFStringRef name =
        CFStringCreateWithCString(kCFAllocatorDefault, "Output port", kCFStringEncodingUTF8);
    const OSStatus status = MIDIOutputPortCreate(client, name, &port);
    CFRelease(name);
    return status == noErr ? port : 0;
}

} // namespace

TMIDITransport *MIDITransportInstance()
{
    return new TMacMIDI(TMacMIDIPortAccessor::s_client);
}

TMacMIDI::TMacMIDI(MIDIClientRef client)
    : m_client(client)
{
}

TMacMIDI::~TMacMIDI()
{
    TMacMIDI::closeInput();
    TMacMIDI::closeOutput();
}

bool TMacMIDI::openInput(int port, TMIDIReaderRefConInterface *reader, int /*filterType*/)
{
    if (m_client == 0) {
        return false;
    }
    if (m_source != 0) {
        closeInput();
    }
    if (m_inputPort == 0) {
        m_inputPort = createInputPort(m_client, &TMacMIDI::midiReadearProc);
        if (m_inputPort == 0) {
            return false;
        }
    }
    m_source = port > 0 ? MIDIGetSource(static_cast<ItemCount>(port - 1)) : 0;
    if (m_source == 0) {
        return false;
    }
    setReader(reader);
    startPusherThread();
    {
        const MutexLocker lock(connections().mutex);
        connections().transports.insert(this);
    }
    if (MIDIPortConnectSource(m_inputPort, m_source, this) != noErr) {
        m_source = 0;
        closeInput();
        return false;
    }
    return true;
}

void TMacMIDI::closeInput()
{
    if (m_source != 0) {
        MIDIPortDisconnectSource(m_inputPort, m_source);
        m_source = 0;
    }
    {
        // Waits for a read procedure under way.
        const MutexLocker lock(connections().mutex);
        connections().transports.remove(this);
    }
    stopPusherThread();
    if (m_inputPort != 0) {
        MIDIPortDispose(m_inputPort);
        m_inputPort = 0;
    }
}

void TMacMIDI::midiReadearProc(const MIDIPacketList *packets, void * /*procedure*/,
                               void *connection)
{
    const MutexLocker lock(connections().mutex);
    if (!connections().transports.contains(connection)) {
        return;
    }
    auto *transport = static_cast<TMacMIDI *>(connection);
    // Read as bytes: the packets follow one another without regard to alignment.
    const auto *packet =
        reinterpret_cast<const unsigned char *>(packets) + offsetof(MIDIPacketList, packet);
    for (UInt32 i = 0; i < packets->numPackets; ++i) {
        UInt16 length = 0;
        std::memcpy(&length, packet + offsetof(MIDIPacket, length), sizeof length);
        if (length > 0) {
            transport->read(length, packet + PacketHeaderBytes);
        }
        packet += PacketHeaderBytes + length;
#if defined(__arm__) || defined(__aarch64__)
        // There, and only there, each packet begins at a multiple of four.
        packet += (4 - reinterpret_cast<std::uintptr_t>(packet) % 4) % 4;
#endif
    }
}

bool TMacMIDI::openOutput(int port)
{
    if (m_client == 0) {
        return false;
    }
    if (m_outputPort == 0) {
        m_outputPort = createOutputPort(m_client);
        if (m_outputPort == 0) {
            return false;
        }
    }
    m_destination = port > 0 ? MIDIGetDestination(static_cast<ItemCount>(port - 1)) : 0;
    return m_destination != 0;
}

void TMacMIDI::closeOutput()
{
    m_destination = 0;
    if (m_outputPort != 0) {
        MIDIPortDispose(m_outputPort);
        m_outputPort = 0;
    }
}

bool TMacMIDI::outputData(int length, const unsigned char *data, unsigned char status)
{
    if (m_outputPort == 0 || m_destination == 0 || length < 0 || (length == 0 && status == 0)) {
        return false;
    }
    const auto sendChunk = [this](int chunkLength, const unsigned char *chunk,
                                  unsigned char first) {
        return outputData2(chunkLength, chunk, first);
    };
    return countedOutput(sendInChunks(length, data, status, sendChunk));
}

bool TMacMIDI::outputData2(int length, const unsigned char *data, unsigned char status)
{
    const auto buffer = std::make_unique<unsigned char[]>(PacketListBytes);
    auto *list = reinterpret_cast<MIDIPacketList *>(buffer.get());
    list->numPackets = 1;
    MIDIPacket &packet = list->packet[0];
    packet.timeStamp = 0; // at once
    packet.length = static_cast<UInt16>(length);
    unsigned char *bytes = buffer.get() + offsetof(MIDIPacketList, packet) + PacketHeaderBytes;
    if (status != 0) {
        *bytes = status;
        ++bytes;
        --length;
    }
    if (length > 0) {
        std::memcpy(bytes, data, static_cast<std::size_t>(length));
    }
    return MIDISend(m_outputPort, m_destination, list) == noErr;
}
