// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_ExitAnywayConfirm.h"

class CSimpleNotifier;

// Asks whether the program is to end although edits are unsaved. Owner: the window. Thread: GUI.
class ExitAnywayConfirm : public EditorOverlap, private Ui::ExitAnywayConfirm
{
    Q_OBJECT

public:
    explicit ExitAnywayConfirm(EditorMainWindow *window);

private Q_SLOTS:
    void selectOk();
    void cancelClose();
    void emulateClosePressing();
    void emulateYesPressing();
    void emulateNoPressing();

private:
    CSimpleNotifier *m_libraryEditNotifier;
    CSimpleNotifier *m_fileEditNotifier;
};
