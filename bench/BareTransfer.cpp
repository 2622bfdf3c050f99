// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BareTransfer.h"

#include "midi/MIDIBinding.h"

#include <chrono>

namespace
{

constexpr unsigned char SysExStatus = 0xF0;
constexpr int AnswerTimeoutSeconds = 60;

QByteArray message(std::initializer_list<int> bytes)
{
    QByteArray result;
    for (const int byte : bytes) {
        result.append(static_cast<char>(byte));
    }
    return result;
}

} // namespace

QList<BareTransfer::Step> BareTransfer::receiveRun()
{
    QList<Step> steps;
    for (const int type : {0x60, 0x6F}) {
        for (int number = 0; number < 50; ++number) {
            steps.append({{message({0x43, 0x20, 0x7F, 0x14, 0x0E, type, number, 0xF7})}});
        }
    }
    // Both parameter requests go out with the first request for the edit buffer.
    steps[50].messages.prepend(message({0x43, 0x30, 0x7F, 0x14, 0x01, 0x20, 0x00, 0xF7}));
    steps[50].messages.prepend(message({0x43, 0x30, 0x7F, 0x14, 0x01, 0x23, 0x00, 0xF7}));
    return steps;
}

bool BareTransfer::open(int inPort, int outPort)
{
    m_input.reset(MIDITransportInstance());
    m_output.reset(MIDITransportInstance());
    return m_input->openInput(inPort, this, 0) && m_output->openOutput(outPort);
}

void BareTransfer::close()
{
    m_input.reset();
    m_output.reset();
}

bool BareTransfer::sendStep()
{
    const Step &step = m_steps->at(m_next++);
    for (const QByteArray &bytes : step.messages) {
        if (!m_output->outputData(static_cast<int>(bytes.size()),
                                  reinterpret_cast<const unsigned char *>(bytes.constData()),
                                  SysExStatus)) {
            return false;
        }
    }
    return true;
}

bool BareTransfer::run(const QList<Step> &steps)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_steps = &steps;
    m_next = 0;
    m_done = false;
    if (!sendStep()) {
        return false;
    }
    return m_condition.wait_for(lock, std::chrono::seconds(AnswerTimeoutSeconds),
                                [this] { return m_done; });
}

void BareTransfer::midiIn(tagMPEVENT *event)
{
    if (event->eventType != MPEventSysEx || event->length < 4) {
        return;
    }
    const bool isAcknowledge = event->longData[1] == 0x60 && event->longData[2] == 0x02;
    const bool isFooter =
        event->length == 11 && event->longData[1] == 0x00 && event->longData[6] == 0x0F;
    if (!isAcknowledge && !isFooter) {
        return;
    }
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_steps == nullptr || m_done) {
        return;
    }
    if (m_next < m_steps->size()) {
        sendStep();
        return;
    }
    m_done = true;
    m_condition.notify_all();
}
