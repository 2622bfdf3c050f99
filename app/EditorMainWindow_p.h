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
// unlocks the window and may ask for the next of its kind.
template <typename PanelType>
bool isStanding(const QPointer<PanelType> &guard)
{
    return guard != nullptr && !guard->isClosed();
}

template <typename PanelType, typename... Arguments>
void EditorMainWindow::showPanel(QPointer<PanelType> *guard, Arguments &&...arguments)
{
    if (!isStanding(*guard)) {
        *guard = new PanelType(this, std::forward<Arguments>(arguments)...);
    }
    placePanel(guard->data());
}

template <typename PanelType>
void EditorMainWindow::showModalPanel(QPointer<PanelType> *guard)
{
    if (!isStanding(*guard)) {
        *guard = new PanelType(this);
        connect(guard->data(), &QObject::destroyed, this, &EditorMainWindow::modalDialogClosed);
    }
    editorLibrary->enableKeyboardShortcuts(false);
    placePanel(guard->data());
}
