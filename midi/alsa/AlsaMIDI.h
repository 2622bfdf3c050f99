// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"

#include <memory>

class AlsaClient;
struct AlsaPort;

// One open port on the ALSA sequencer. Owner and threads: as TMIDITransport; read() is called on
// AlsaClient's receiving thread. Without a sequencer every port refuses to open, and what is open
// refuses to send.
class AlsaMIDI : public TMIDITransport
{
public:
    AlsaMIDI();
    ~AlsaMIDI() override;

    bool openInput(int port, TMIDIReaderRefConInterface *reader, int filterType) override;
    void closeInput() override;
    bool openOutput(int port) override;
    void closeOutput() override;
    bool outputData(int length, const unsigned char *data, unsigned char status) override;
    Link link() const override;

private:
    const std::shared_ptr<AlsaClient> m_client;
    std::shared_ptr<AlsaPort> m_input;
    std::shared_ptr<AlsaPort> m_output;
};
