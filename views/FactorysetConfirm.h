// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_FactorysetConfirm.h"

// Asks before the templates go back to the factory settings; the picture puts the question.
// Owner: the window. Thread: GUI.
class FactorysetConfirm : public EditorOverlap, private Ui::FactorysetConfirm
{
    Q_OBJECT

public:
    explicit FactorysetConfirm(EditorMainWindow *window);

private Q_SLOTS:
    void selectOk();
    void emulateOKPressing();
    void emulateCancelPressing();
};
