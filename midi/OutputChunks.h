// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/NSUtilities.h"
#include "midi/TMIDITransport.h"

#include <QtCore/QElapsedTimer>

#include <algorithm>

// Cuts one message into the chunks that every binding sends: at most OutputChunkBytes each, the
// status byte counted with the first, and a pause of OutputChunkPauseMs before every further one.
//
// sendChunk(int length, const unsigned char *data, unsigned char status) sends one chunk of length
// bytes in all: the status, if it is not 0, followed by length - 1 bytes of data, or length bytes
// of data. It returns false if it could not, which ends the message. The result is that of the last
// chunk; false if there is nothing to send. The protocol's longest message has 39 bytes, so that
// the pause is never reached in its traffic.
template <typename SendChunk>
bool sendInChunks(int length, const unsigned char *data, unsigned char status, SendChunk sendChunk)
{
    if (length < 0 || (length > 0 && data == nullptr)) {
        return false;
    }
    const int statusBytes = status != 0 ? 1 : 0;
    // What remains is counted in data bytes, since length plus one may be more than an int holds.
    int remaining = length;
    const int firstData = std::min(remaining, TMIDITransport::OutputChunkBytes - statusBytes);
    if (firstData + statusBytes == 0) {
        return false;
    }
    bool ok = sendChunk(firstData + statusBytes, data, status);
    data += firstData;
    remaining -= firstData;
    while (remaining > 0 && ok) {
        QElapsedTimer pause;
        pause.start();
        for (qint64 passed = 0; passed < TMIDITransport::OutputChunkPauseMs;
             passed = pause.elapsed()) {
            NS_Utilities::milisecondDelay(
                static_cast<long>(TMIDITransport::OutputChunkPauseMs - passed));
        }
        const int chunk = std::min(remaining, TMIDITransport::OutputChunkBytes);
        ok = sendChunk(chunk, data, static_cast<unsigned char>(0));
        data += chunk;
        remaining -= chunk;
    }
    return ok;
}
