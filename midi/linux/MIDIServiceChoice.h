// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

#include <optional>

// Which of the machine's MIDI services the program uses. Automatic: the ALSA sequencer if it can be
// opened, otherwise JACK if a server runs (none is ever started), otherwise none. What was found is
// kept as long as it works; a list that is read while there is none looks again.
//
// Thread: GUI.
enum class MIDIService { Automatic, Alsa, Jack };

// To be called before the first catalogue or transport is made. A service that is asked for by name
// is used or none.
void setMIDIService(MIDIService service);

// What is in use now; Automatic if there is none.
MIDIService midiServiceInUse();

// "alsa" and "jack", as on a command line; nothing for another text.
std::optional<MIDIService> midiServiceByName(const QString &name);
// As for a person: "ALSA", "JACK", "none".
QString midiServiceTitle(MIDIService service);
