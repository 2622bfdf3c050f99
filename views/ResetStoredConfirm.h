// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_ResetStoredConfirm.h"

// Asks before the templates go back to what is stored; the picture puts the question. Owner: the
// window. Thread: GUI.
class ResetStoredConfirm : public EditorOverlap, private Ui::ResetStoredConfirm
{
    Q_OBJECT

public:
    explicit ResetStoredConfirm(EditorMainWindow *window);

private Q_SLOTS:
    void selectOk();
    void emulateOKPressing();
    void emulateCancelPressing();
};
