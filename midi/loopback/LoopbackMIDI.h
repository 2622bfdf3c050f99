// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"

struct LoopbackEnd;
struct LoopbackInput;

// One port at the editor's side of the loopback's cable. Threads and ownership as told at
// TMIDITransport; failures are those of the hub: no such port, a device that is gone, a cable that
// refuses.
class LoopbackMIDI : public TMIDITransport
{
    Q_OBJECT

public:
    LoopbackMIDI();
    ~LoopbackMIDI() override;

    bool openInput(int port, TMIDIReaderRefConInterface *reader, int filterType) override;
    void closeInput() override;
    bool openOutput(int port) override;
    void closeOutput() override;
    bool outputData(int length, const unsigned char *data, unsigned char status) override;
    Link link() const override;

private:
    std::shared_ptr<LoopbackInput> m_input;
    std::shared_ptr<LoopbackEnd> m_output;
};
