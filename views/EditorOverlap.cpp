// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/EditorOverlap.h"

#include "app/EditorMainWindow.h"
#include "widgets/COnOffButton.h"
#include "widgets/FontHelpers.h"

#include <QtGui/QAction>
#include <QtGui/QCloseEvent>
#include <QtGui/QDrag>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

EditorOverlap::EditorOverlap(EditorMainWindow *window)
    : CFrame(window)
    , mainWindow(window)
    , remoteMemAPI(window->getRemoteMemAPI())
{
    releasePointer();
    mainWindow->windowLock();
    mainWindow->updateWindowSize();
    setFocus(Qt::OtherFocusReason);
}

EditorOverlap::~EditorOverlap()
{
    // A window that is being destroyed itself has become a mere widget by the time that its
    // children go, and there is nothing left to unlock.
    if (qobject_cast<EditorMainWindow *>(parent()) == nullptr) {
        return;
    }
    closeUnlock();
    mainWindow->windowUnlock();
    mainWindow->updateWindowSize();
}

void EditorOverlap::closeLock()
{
    if (!closeLocked) {
        closeLocked = true;
        mainWindow->setCloseButtonVisible(false);
    }
}

void EditorOverlap::closeUnlock()
{
    if (closeLocked) {
        closeLocked = false;
        mainWindow->setCloseButtonVisible(true);
    }
}

void EditorOverlap::enableShortcut()
{
    for (QAction *action : std::as_const(shortcuts)) {
        action->setEnabled(true);
    }
}

void EditorOverlap::disableShortcut()
{
    for (QAction *action : std::as_const(shortcuts)) {
        action->setEnabled(false);
    }
}

void EditorOverlap::closeEvent(QCloseEvent *event)
{
    if (closeLocked) {
        event->ignore();
        return;
    }
    m_closed = true;
    // Another key's click may be under way. It would act on behalf of a panel that the user has
    // seen go.
    const QList<QAbstractButton *> buttons = findChildren<QAbstractButton *>();
    for (QAbstractButton *button : buttons) {
        button->blockSignals(true);
    }
    Q_EMIT closed();
}

void EditorOverlap::finishForm()
{
    adjustFont(this);
    mainWindow->installTabCanceller(this);
}

void EditorOverlap::installShortcut(const QString &key, const char *slot)
{
    auto *action = new QAction(this);
    action->setShortcut(QKeySequence(key));
    action->setAutoRepeat(false);
    connect(action, SIGNAL(triggered()), this, slot);
    addAction(action);
    shortcuts.append(action);
}

void EditorOverlap::emulateButtonPressing(COnOffButton *button)
{
    if (button != nullptr) {
        button->animateClick();
    }
}

void EditorOverlap::releasePointer()
{
    QDrag::cancel();
    // One popup may have opened another.
    while (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
        if (QApplication::activePopupWidget() == popup) {
            break; // it refuses
        }
    }
    if (QWidget *grabber = QWidget::mouseGrabber(); grabber != nullptr) {
        grabber->releaseMouse();
    }
    QWindow *window = mainWindow->windowHandle();
    if (window == nullptr || !(QGuiApplication::mouseButtons() & Qt::LeftButton)) {
        return;
    }
    // To the window and not to a widget: only it knows which of them holds the pointer, and forgets
    // about it with this event. The real release then finds nobody.
    const QPointF beside(-10000, -10000);
    QMouseEvent release(QEvent::MouseButtonRelease, beside, window->mapToGlobal(beside),
                        Qt::LeftButton, Qt::NoButton, QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(window, &release);
}
