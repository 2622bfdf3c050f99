// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

// Whether a sequencer client's inbox has room for an event with length bytes behind it. Asked of
// the kernel itself, because the library only tells of one's own inbox. descriptor: of any open
// sequencer. True for a client that is no program's, has no inbox or is away.
//
// A full inbox must not be tried: the kernel then throws away all that is in it.
bool sequencerHasRoom(int descriptor, int client, std::size_t length);
