// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_StoreConfirm.h"

// Asks before the edit buffer is stored, here and in the instrument. Owner: the window. Thread:
// GUI.
class StoreConfirm : public EditorOverlap, private Ui::StoreConfirm
{
    Q_OBJECT

public:
    explicit StoreConfirm(EditorMainWindow *window);

private Q_SLOTS:
    void selectOk();
    void emulateClosePressing();
    void emulateYesPressing();
    void emulateNoPressing();
};
