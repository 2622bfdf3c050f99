// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"

#include <CoreMIDI/CoreMIDI.h>

// One CoreMIDI port. Threads and ownership as told at TMIDITransport; the read procedure runs on
// CoreMIDI's thread, parses and queues, and finds nothing once the port is closed.
class TMacMIDI : public TMIDITransport
{
    Q_OBJECT

public:
    // client: the accessors' shared one; 0 if there is none, and then nothing opens.
    explicit TMacMIDI(MIDIClientRef client);
    ~TMacMIDI() override;

    bool openInput(int port, TMIDIReaderRefConInterface *reader, int filterType) override;
    void closeInput() override;
    bool openOutput(int port) override;
    void closeOutput() override;
    bool outputData(int length, const unsigned char *data, unsigned char status) override;

private:
    // connection is the transport. Historical spelling.
    static void midiReadearProc(const MIDIPacketList *packets, void *procedure, void *connection);
    bool outputData2(int length, const unsigned char *data, unsigned char status);

    MIDIClientRef m_client;
    MIDIPortRef m_outputPort = 0;
    MIDIEndpointRef m_destination = 0;
    MIDIPortRef m_inputPort = 0;
    MIDIEndpointRef m_source = 0;
};
