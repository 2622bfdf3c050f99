// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/alsa/AlsaMIDI.h"

#include "midi/OutputChunks.h"
#include "midi/alsa/AlsaClient.h"

AlsaMIDI::AlsaMIDI()
    : m_client(AlsaClient::shared())
{
}

AlsaMIDI::~AlsaMIDI()
{
    AlsaMIDI::closeInput();
    AlsaMIDI::closeOutput();
}

bool AlsaMIDI::openInput(int port, TMIDIReaderRefConInterface *reader, int)
{
    closeInput();
    setReader(reader);
    startPusherThread();
    m_input = m_client->openInput(port, this);
    if (m_input == nullptr) {
        closeInput();
        return false;
    }
    return true;
}

void AlsaMIDI::closeInput()
{
    if (m_input != nullptr) {
        m_client->close(m_input);
        m_input = nullptr;
    }
    stopPusherThread();
}

bool AlsaMIDI::openOutput(int port)
{
    closeOutput();
    m_output = m_client->openOutput(port);
    return m_output != nullptr;
}

void AlsaMIDI::closeOutput()
{
    if (m_output != nullptr) {
        m_client->close(m_output);
        m_output = nullptr;
    }
}

bool AlsaMIDI::outputData(int length, const unsigned char *data, unsigned char status)
{
    if (m_output == nullptr) {
        return countedOutput(false);
    }
    return countedOutput(sendInChunks(
        length, data, status, [this](int chunk, const unsigned char *bytes, unsigned char first) {
            return m_client->send(*m_output, first, bytes,
                                  static_cast<std::size_t>(first != 0 ? chunk - 1 : chunk));
        }));
}

TMIDITransport::Link AlsaMIDI::link() const
{
    const std::shared_ptr<AlsaPort> &port = m_input != nullptr ? m_input : m_output;
    if (port == nullptr) {
        return Link::Connected;
    }
    if (!m_client->isRunning()) {
        return Link::ServiceGone;
    }
    return m_client->isConnected(*port) ? Link::Connected : Link::PortAway;
}
