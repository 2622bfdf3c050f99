// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

// Lets another thread's callbacks in and tells when none is inside, without a lock, so that a
// real-time thread may pass. JACK ends its threads by cancelling them wherever they are: a client
// is therefore closed only with its gates closed, when no callback can be in the middle of
// anything.
class CallbackGate
{
public:
    // One passage. False if the gate is closed; the callback then does nothing.
    class Passage
    {
    public:
        explicit Passage(CallbackGate &gate)
            : m_gate(gate)
        {
            ++m_gate.m_inside;
            m_isOpen = !m_gate.m_isClosed;
        }
        ~Passage()
        {
            if (--m_gate.m_inside == 0) {
                m_gate.m_inside.notify_all();
            }
        }
        Passage(const Passage &) = delete;
        Passage &operator=(const Passage &) = delete;
        explicit operator bool() const { return m_isOpen; }

    private:
        CallbackGate &m_gate;
        bool m_isOpen;
    };

    void open() { m_isClosed = false; }
    // Returns when no callback is inside; from then on none does anything.
    void close()
    {
        m_isClosed = true;
        waitUntilEmpty();
    }
    // What was changed before this call is seen by every callback from its return on.
    void waitUntilEmpty()
    {
        for (int inside = m_inside; inside != 0; inside = m_inside) {
            m_inside.wait(inside);
        }
    }

private:
    std::atomic<int> m_inside{0};
    std::atomic<bool> m_isClosed{true};
};
