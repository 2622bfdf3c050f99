// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_PortNotFound.h"

// Tells that no instrument is among the MIDI ports. Owner: the window. Thread: GUI.
class PortNotFound : public EditorOverlap, private Ui::PortNotFound
{
    Q_OBJECT

public:
    explicit PortNotFound(EditorMainWindow *window);

private Q_SLOTS:
    void emulateOKPressing();
};
