// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDIReaderRefConInterface.h"
#include "midi/TMIDITransport.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <condition_variable>
#include <memory>
#include <mutex>

// The baseline of the transfers: the same messages over the same transport with nothing behind it.
// Each step sends its messages and waits for one answer that ends it, as the protocol's
// stop-and-wait does; the answer is recognised by one byte and looked at no further.
class BareTransfer : public TMIDIReaderRefConInterface
{
public:
    // Messages from the manufacturer byte to 0xF7, as a queued event holds them.
    struct Step
    {
        QList<QByteArray> messages;
    };

    // The run of requests, and the run of dumps, in the order of a full receive and a full send.
    // dump(type, template) gives the 15 messages of one template.
    static QList<Step> receiveRun();
    template <typename Dump>
    static QList<Step> sendRun(Dump dump)
    {
        QList<Step> steps;
        for (const int type : {0x6F, 0x60}) {
            for (int number = 0; number < 50; ++number) {
                steps.append({dump(type, number)});
            }
        }
        return steps;
    }

    bool open(int inPort, int outPort);
    void close();
    // False if an answer stays out.
    bool run(const QList<Step> &steps);

    void midiIn(tagMPEVENT *event) override;

private:
    bool sendStep();

    std::unique_ptr<TMIDITransport> m_input;
    std::unique_ptr<TMIDITransport> m_output;
    std::mutex m_mutex;
    std::condition_variable m_condition;
    const QList<Step> *m_steps = nullptr;
    int m_next = 0;
    bool m_done = false;
};
