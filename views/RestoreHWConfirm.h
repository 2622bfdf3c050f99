// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_RestoreHWConfirm.h"

// Asks before the templates go back to what the instrument held when the program met it; the
// picture puts the question. Owner: the window. Thread: GUI.
class RestoreHWConfirm : public EditorOverlap, private Ui::RestoreHWConfirm
{
    Q_OBJECT

public:
    explicit RestoreHWConfirm(EditorMainWindow *window);

private Q_SLOTS:
    void selectOk();
    void emulateOKPressing();
    void emulateCancelPressing();
};
