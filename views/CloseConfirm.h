// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_CloseConfirm.h"

class CSimpleNotifier;

// Asks what becomes of unsaved edits before something ends them, and then does that something.
// While it stands the program can't be ended otherwise. Owner: the window. Thread: GUI.
//
//   answer   saved   then
//   Yes      yes     the next action, as after No
//   Yes      no      nothing: the next action is dropped
//   No       -       the next action
//   Cancel   -       nothing
class CloseConfirm : public EditorOverlap, private Ui::CloseConfirm
{
    Q_OBJECT

public:
    // What the answer leads to: the end of the program, a new document, another document.
    enum NextActionType { Exit = 0, New = 1, Open = 2 };
    Q_ENUM(NextActionType)

    CloseConfirm(EditorMainWindow *window, NextActionType action);

private Q_SLOTS:
    void decideCloseWithSave();
    void decideCloseWithoutSave();
    void cancelClose();
    void emulateClosePressing();
    void emulateYesPressing();
    void emulateNoPressing();

private:
    NextActionType nextAction;
    CSimpleNotifier *m_fileEditNotifier;
};
