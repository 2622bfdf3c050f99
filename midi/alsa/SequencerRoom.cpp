// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/alsa/SequencerRoom.h"

// A source of its own: the kernel's header and the library's declare the same names.
#include <sound/asequencer.h>
#include <sys/ioctl.h>

namespace
{

// Left for whoever sends between the question and the event. An empty inbox need not have it.
constexpr std::size_t CellsLeft = 16;

} // namespace

bool sequencerHasRoom(int descriptor, int client, std::size_t length)
{
    snd_seq_client_pool pool{};
    pool.client = client;
    if (ioctl(descriptor, SNDRV_SEQ_IOCTL_GET_CLIENT_POOL, &pool) < 0 || pool.input_pool <= 0) {
        return true;
    }
    // One cell for the event, and the bytes behind it in cells of an event's size.
    const std::size_t cells = 1 + (length + sizeof(snd_seq_event) - 1) / sizeof(snd_seq_event);
    const std::size_t left = pool.input_free == pool.input_pool ? 0 : CellsLeft;
    return pool.input_free >= 0 && static_cast<std::size_t>(pool.input_free) >= cells + left;
}
