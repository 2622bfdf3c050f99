// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackMIDI.h"

#include "midi/OutputChunks.h"
#include "midi/jack/JackClient.h"
#include "midi/jack/JackPort.h"

JackMIDI::JackMIDI()
    : m_client(JackClient::shared())
{
}

JackMIDI::~JackMIDI()
{
    JackMIDI::closeInput();
    JackMIDI::closeOutput();
}

bool JackMIDI::openInput(int port, TMIDIReaderRefConInterface *reader, int)
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

void JackMIDI::closeInput()
{
    if (m_input != nullptr) {
        m_client->close(m_input);
        m_input = nullptr;
    }
    stopPusherThread();
}

bool JackMIDI::openOutput(int port)
{
    closeOutput();
    m_output = m_client->openOutput(port);
    return m_output != nullptr;
}

void JackMIDI::closeOutput()
{
    if (m_output != nullptr) {
        m_client->close(m_output);
        m_output = nullptr;
    }
}

bool JackMIDI::outputData(int length, const unsigned char *data, unsigned char status)
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

TMIDITransport::Link JackMIDI::link() const
{
    const JackPort *port = m_input != nullptr ? m_input.get() : m_output.get();
    if (port == nullptr) {
        return Link::Connected;
    }
    if (!m_client->isRunning()) {
        return Link::ServiceGone;
    }
    return port->isConnected() ? Link::Connected : Link::PortAway;
}

void JackMIDI::abandon()
{
    m_client->abandon();
}
