// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_Setup.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// The panel in which the user picks the instrument's port and the DAW. It works on copies: nothing
// changes until OK, which hands both choices to the window, changed or not. Owner: the window.
// Thread: GUI.
class Setup : public EditorOverlap, private Ui::Setup
{
    Q_OBJECT

public:
    // The list of ports is made anew.
    explicit Setup(EditorMainWindow *window);

public Q_SLOTS:
    void popupMidiPort();
    void popupDAWName();
    void decideClose();
    void emulateOKPressing();
    void emulateClosePressing();

private:
    void showMidiPort();
    void showDAWName();

    int portIndex = 0; // into portList
    QStringList portList;
    QString dawChoice;
    QStringList dawListCopy;
};
