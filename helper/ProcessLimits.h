// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What a process does to itself before it lets a plug-in in. Each does what it can and fails in
// silence: a plug-in is questioned also where one of them is not to be had.

// Standard input, output and error lead nowhere.
void silenceOutput();

// A plug-in that opens the terminal by itself finds none. The process group stays, so that whoever
// ends the group ends this process too.
void leaveTerminal();

// No core dumps, no more memory than a well-behaved plug-in needs, and no disk full of its files.
void limitResources();
