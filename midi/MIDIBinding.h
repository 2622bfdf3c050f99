// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class TUniMIDIPortAccessor;
class TMIDITransport;

// The only two places where the rest of the system meets a platform's MIDI. Each executable links
// exactly one binding, and that binding defines both.

// A new port catalogue, already updated; the caller owns it. Never null: without a MIDI service its
// lists are empty.
TUniMIDIPortAccessor *MIDIPortAccessor();
// A new transport for one port; the caller owns it. Never null: without a MIDI service its ports
// refuse to open.
TMIDITransport *MIDITransportInstance();
