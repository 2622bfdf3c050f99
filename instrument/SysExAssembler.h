// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>

#include <vector>

// Joins the raw bytes of one MIDI port into whole system exclusive messages, 0xF0 to 0xF7. Any run
// of bytes is safe: real-time bytes (0xF8 and above) are taken out wherever they stand, any other
// status byte breaks off an unfinished message, data bytes outside a message are passed over, and a
// message longer than MaxMessageSize is given up until the next one begins.
//
// Thread: one at a time; the owner guards it.
class SysExAssembler
{
public:
    // Far above the longest message of the protocol, 39 bytes; a limit on what a stranger can
    // claim.
    static constexpr qsizetype MaxMessageSize = 4096;

    // The messages that became whole with these bytes, in order.
    std::vector<QByteArray> push(const QByteArray &bytes);

    // Messages broken off or given up since construction.
    int brokenMessages() const { return m_broken; }

private:
    QByteArray m_message; // empty outside a message
    int m_broken = 0;
};
