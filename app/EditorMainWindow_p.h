// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/EditorMainWindow.h"
#include "app/WindowLevel.h"
#include "images/Artwork.h"
#include "views/EditorLibrary.h"
#include "views/EditorOverlap.h"

#include <utility>

// The templates that more than one source of the window uses.

template <typename Show>
auto EditorMainWindow::aboveAll(Show show)
{
    const bool wasOnTop = windowOnTop;
    if (wasOnTop) {
        windowOnTop = false;
        setWindowLevel(this, false);
        setFocus(Qt::OtherFocusReason);
    }
    // The program may end while a dialog stands.
    const QPointer<EditorMainWindow> self(this);
    auto result = show();
    if (wasOnTop && self) {
        // Unless it has been set again meanwhile.
        if (!windowOnTop) {
            windowOnTop = true;
            setWindowLevel(this, true);
        }
        setFocus(Qt::OtherFocusReason);
    }
    return result;
}

// A panel that is closed and not yet deleted counts as gone: it waits for its deletion, which
// unlocks the window and may ask for the next of its kind. So its guard forgets it as it closes,
// and not only in the last of its destructors, behind that unlocking.
template <typename PanelType>
void EditorMainWindow::forgetWhenClosed(QPointer<PanelType> *guard)
{
    connect(guard->data(), &EditorOverlap::closed, this, [guard, panel = guard->data()] {
        if (*guard == panel) {
            guard->clear();
        }
    });
}

template <typename PanelType, typename... Arguments>
void EditorMainWindow::showPanel(QPointer<PanelType> *guard, Arguments &&...arguments)
{
    if (guard->isNull()) {
        *guard = new PanelType(this, std::forward<Arguments>(arguments)...);
        forgetWhenClosed(guard);
    }
    placePanel(guard->data());
}

template <typename PanelType>
void EditorMainWindow::showModalPanel(QPointer<PanelType> *guard)
{
    if (guard->isNull()) {
        *guard = new PanelType(this);
        forgetWhenClosed(guard);
        connect(guard->data(), &QObject::destroyed, this, &EditorMainWindow::modalDialogClosed);
    }
    editorLibrary->enableKeyboardShortcuts(false);
    placePanel(guard->data());
}
