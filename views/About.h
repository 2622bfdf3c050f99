// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/EditorOverlap.h"

#include "ui_About.h"

// Says what program this is, whose, and under which licence. Owner: the window. Thread: GUI.
class About : public EditorOverlap, private Ui::About
{
    Q_OBJECT

public:
    explicit About(EditorMainWindow *window);

private Q_SLOTS:
    void emulateClosePressing();
};
