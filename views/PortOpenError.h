// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_PortOpenError.h"

// Tells that a MIDI port could not be opened; the picture says so, the text which one. Owner: the
// window. Thread: GUI.
class PortOpenError : public EditorOverlap, private Ui::PortOpenError
{
    Q_OBJECT

public:
    // name: of the port, cut to the panel's width.
    PortOpenError(EditorMainWindow *window, const QString &name);
};
