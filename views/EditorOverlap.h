// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/CFrame.h"

#include <QtCore/QList>
#include <QtCore/QString>

class COnOffButton;
class EditorMainWindow;
class QAction;
class RemoteMemAPI;

// Base of all panels that are laid over the main window's view area, where another program would
// open a dialog. A panel is an ordinary child of the window; what makes it modal is the window's
// lock, which it holds from its construction to its destruction, whether it is shown or not.
//
// When it comes, whatever the pointer holds in the window is let go: popups and menus close, a drag
// ends, a pressed button rises without a click. Nothing below it stays stuck or goes on to change
// values.
//
// Owner: the window, its Qt parent, which gives it Qt::WA_DeleteOnClose. The deletion is deferred
// to the event loop, so that the window stays locked until control is back there. Thread: GUI.
class EditorOverlap : public CFrame
{
    Q_OBJECT

public:
    // window: not null; its memory outlives it and the panel.
    explicit EditorOverlap(EditorMainWindow *window);
    ~EditorOverlap() override;

    // While in force the panel refuses to close, and the window has no button that ends the
    // program. A second call of either does nothing; the destructor unlocks.
    void closeLock();
    void closeUnlock();
    // Its close was accepted, and only its deletion is still to come. Such a panel is as good as
    // gone: its buttons say nothing any more, and whoever wants it makes another one.
    bool isClosed() const { return m_closed; }

public Q_SLOTS:
    // Of all keys that installShortcut() has installed.
    void enableShortcut();
    void disableShortcut();

Q_SIGNALS:
    // As isClosed() becomes true; the panel is whole still.
    void closed();

protected:
    void closeEvent(QCloseEvent *event) override;

    // What follows setupUi() in the constructor of each panel.
    void finishForm();
    // key: a name such as "Escape"; slot: of this panel, as SLOT() writes it. A key that is held
    // down acts once, so that the one that closed a panel doesn't answer the next.
    void installShortcut(const QString &key, const char *slot);
    // The button goes down for a tenth of a second, and is then clicked. Nothing for null.
    static void emulateButtonPressing(COnOffButton *button);
    // As if whatever the pointer holds had been released beside everything.
    void releasePointer();

    EditorMainWindow *mainWindow;
    RemoteMemAPI *remoteMemAPI;
    bool closeLocked = false;
    QList<QAction *> shortcuts;

private:
    bool m_closed = false;
};
