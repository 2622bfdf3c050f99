// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"

#include <memory>

class JackClient;
class JackPort;

// One open port on JACK. Owner and threads: as TMIDITransport; read() is called on the JACK process
// thread. Without a server every port refuses to open, and what is open refuses to send.
class JackMIDI : public TMIDITransport
{
public:
    JackMIDI();
    ~JackMIDI() override;

    bool openInput(int port, TMIDIReaderRefConInterface *reader, int filterType) override;
    void closeInput() override;
    bool openOutput(int port) override;
    void closeOutput() override;
    bool outputData(int length, const unsigned char *data, unsigned char status) override;
    Link link() const override;
    void abandon() override;

private:
    const std::shared_ptr<JackClient> m_client;
    std::shared_ptr<JackPort> m_input;
    std::shared_ptr<JackPort> m_output;
};
