// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

// Keeps a top-level window above the others, or lets it go back among them, without hiding it for a
// moment or moving it: on X11 by asking the window manager, elsewhere by the window's flags. On
// Wayland a program can't ask for this, and nothing happens. The window must be shown.
// Thread: GUI.
void setWindowLevel(QWidget *window, bool above);
