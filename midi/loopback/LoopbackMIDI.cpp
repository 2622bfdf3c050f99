// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/loopback/LoopbackMIDI.h"

#include "midi/MIDIBinding.h"
#include "midi/OutputChunks.h"
#include "midi/loopback/LoopbackHub_p.h"

#include <QtCore/QByteArray>

TMIDITransport *MIDITransportInstance()
{
    return new LoopbackMIDI;
}

LoopbackMIDI::LoopbackMIDI() = default;

LoopbackMIDI::~LoopbackMIDI()
{
    LoopbackMIDI::closeInput();
    LoopbackMIDI::closeOutput();
}

bool LoopbackMIDI::openInput(int port, TMIDIReaderRefConInterface *reader, int /*filterType*/)
{
    closeInput();
    auto input = std::make_shared<LoopbackInput>();
    input->transport = this;
    setReader(reader);
    // Before the hub knows of it: bytes may come at once.
    startPusherThread();
    if (!LoopbackHub::instance().d->openInput(input, port)) {
        stopPusherThread();
        return false;
    }
    m_input = input;
    return true;
}

void LoopbackMIDI::closeInput()
{
    if (m_input != nullptr) {
        LoopbackHub::instance().d->closeInput(m_input);
        m_input.reset();
    }
    stopPusherThread();
}

bool LoopbackMIDI::openOutput(int port)
{
    closeOutput();
    auto output = std::make_shared<LoopbackOutput>();
    if (!LoopbackHub::instance().d->openOutput(output, port)) {
        return false;
    }
    m_output = output;
    return true;
}

void LoopbackMIDI::closeOutput()
{
    if (m_output != nullptr) {
        LoopbackHub::instance().d->closeOutput(m_output);
        m_output.reset();
    }
}

bool LoopbackMIDI::outputData(int length, const unsigned char *data, unsigned char status)
{
    if (m_output == nullptr || length < 0 || (length == 0 && status == 0)) {
        return false;
    }
    // A receiver that closes the port takes nothing from under the rest of the message.
    const std::shared_ptr<LoopbackEnd> output = m_output;
    const auto sendChunk = [&](int chunkLength, const unsigned char *chunk, unsigned char first) {
        QByteArray bytes;
        bytes.reserve(chunkLength);
        if (first != 0) {
            bytes.append(static_cast<char>(first));
        }
        bytes.append(reinterpret_cast<const char *>(chunk), chunkLength - bytes.size());
        return LoopbackHub::instance().d->deliver(output, bytes);
    };
    return countedOutput(sendInChunks(length, data, status, sendChunk));
}

TMIDITransport::Link LoopbackMIDI::link() const
{
    const LoopbackEnd *end = m_input != nullptr ? m_input.get() : m_output.get();
    return end == nullptr || LoopbackHub::instance().d->isPlugged(*end) ? Link::Connected
                                                                        : Link::PortAway;
}
