// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class EditorMainWindow;

// What runs beside the editor in one of its programs: nothing, or the demonstration's instrument.
// main makes it behind the application and before the memory, which looks for instruments at once,
// and deletes it last of all but the application.
class Companion
{
public:
    Companion() = default;
    virtual ~Companion() = default;
    Companion(const Companion &) = delete;
    Companion &operator=(const Companion &) = delete;

    // The editor's window is shown. Not owned.
    virtual void windowShown(EditorMainWindow *window) = 0;
};

// Each program links one of these. Never null.
std::unique_ptr<Companion> makeCompanion();
