// SPDX-License-Identifier: GPL-3.0-or-later
// Size, dragging, locks, panels, boxes and the end of the window.

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/EditorMainWindow_p.h"
#include "app/Folders.h"
#include "app/MainWindowRects.h"
#include "app/WindowLevel.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/AutoSync.h"
#include "ui_EditorMainWindow.h"
#include "views/About.h"
#include "views/EditorLibrary.h"
#include "views/EditorTemplate.h"
#include "views/ExitAnywayConfirm.h"
#include "views/FactorysetConfirm.h"
#include "views/PortNotFound.h"
#include "views/PortOpenError.h"
#include "views/ResetStoredConfirm.h"
#include "views/RestoreHWConfirm.h"
#include "views/Setup.h"
#include "views/StoreConfirm.h"
#include "vsti/AnalyzeVSTi.h"

#include <QtCore/QFileInfo>
#include <QtGui/QCloseEvent>
#include <QtGui/QDragEnterEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <algorithm>

namespace
{

// What a dragged window keeps within a screen, in pixels: the title strip from above, and a little
// of it from the sides.
constexpr int TitleHeight = 22;
constexpr int SideMargin = 11;

// Wayland lets no program place its window; its compositor moves it instead.
bool movesBySystem()
{
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

const QString WorkingFolderKey = QStringLiteral("WorkingFolder");

} // namespace

// --- Size ----------------------------------------------------------------------------------------

void EditorMainWindow::updateWindowSize()
{
    const bool hasButton = !isWindowLocked() && currentView == 0;
    const bool small = hasButton && windowShrink;
    if (small) {
        ui->viewMainStack->resize(ViewMainStackSmallSize);
        setFixedSize(EditorWindowSmallSize);
        setBackgroundPixmap(artwork(EditorWindowSmallPixmap));
    } else {
        setBackgroundPixmap(artwork(EditorWindowLargePixmap));
        ui->viewMainStack->resize(ViewMainStackLargeSize);
        setFixedSize(EditorWindowLargeSize);
    }
    ui->btnWindowContract->setGeometry(small ? EditorWindowControlButtonSmallRect
                                             : EditorWindowControlButtonLargeRect);
    ui->btnWindowContract->setCategory(small ? 0 : 1);
    ui->btnWindowContract->setVisible(hasButton);
    updateDoubleBuffer();
}

void EditorMainWindow::controlWindowSize()
{
    windowShrink = !windowShrink;
    updateWindowSize();
}

void EditorMainWindow::setCloseButtonVisible(bool visible)
{
    ui->btnWindowClose->setVisible(visible);
}

// --- Dragging ------------------------------------------------------------------------------------

void EditorMainWindow::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    dragOffset = event->globalPosition().toPoint() - pos();
    dragging = true;
}

void EditorMainWindow::mouseMoveEvent(QMouseEvent *event)
{
    if (!dragging || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    if (movesBySystem()) {
        // The compositor keeps the release to itself.
        endDrag();
        windowHandle()->startSystemMove();
        return;
    }
    move(QCursor::pos() - dragOffset);
    update();
}

void EditorMainWindow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (!dragging || moveIsGood()) {
        endDrag();
        return;
    }
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        endDrag();
        return;
    }
    const QRect available = screen->availableGeometry();
    QPoint place = QCursor::pos() - dragOffset;
    if (place.y() < available.top()) {
        place.setY(available.top());
    } else if (place.y() + TitleHeight > available.bottom()) {
        place.setY(available.bottom() - TitleHeight);
    }
    if (place.x() + width() - SideMargin < available.left()) {
        place.setX(available.left() + SideMargin - width());
    } else if (place.x() + SideMargin > available.right()) {
        place.setX(available.right() - SideMargin);
    }
    move(place);
    update();
    endDrag();
}

// Enough of the title strip lies on some screen to drag the window by.
bool EditorMainWindow::moveIsGood() const
{
    const QRect window = geometry();
    const QList<QScreen *> screens = QGuiApplication::screens();
    return std::any_of(screens.begin(), screens.end(), [&window](const QScreen *screen) {
        const QRect available = screen->availableGeometry();
        return window.top() >= available.top() && window.top() + TitleHeight < available.bottom() &&
               window.left() + SideMargin < available.right() &&
               window.right() - SideMargin > available.left();
    });
}

void EditorMainWindow::endDrag()
{
    dragging = false;
    dragOffset = {};
}

// --- Staying on top ------------------------------------------------------------------------------

void EditorMainWindow::staysOnTop(bool on)
{
    if (on != windowOnTop) {
        windowOnTop = on;
        setWindowLevel(this, on);
    }
    setFocus(Qt::OtherFocusReason);
}

void EditorMainWindow::updateWindowStaysOnTop()
{
    setWindowLevel(this, windowOnTop);
}

QMessageBox::StandardButton EditorMainWindow::critical(const QString &text, const QString &title,
                                                       QMessageBox::StandardButtons buttons,
                                                       QMessageBox::StandardButton defaultButton)
{
    return aboveAll(
        [&] { return QMessageBox::critical(nullptr, title, text, buttons, defaultButton); });
}

QMessageBox::StandardButton EditorMainWindow::warning(const QString &text, const QString &title,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton)
{
    return aboveAll(
        [&] { return QMessageBox::warning(nullptr, title, text, buttons, defaultButton); });
}

QMessageBox::StandardButton EditorMainWindow::question(const QString &text, const QString &title,
                                                       QMessageBox::StandardButtons buttons,
                                                       QMessageBox::StandardButton defaultButton)
{
    return aboveAll(
        [&] { return QMessageBox::question(nullptr, title, text, buttons, defaultButton); });
}

// --- Keys and drops ------------------------------------------------------------------------------

void EditorMainWindow::installTabCanceller(QWidget *root)
{
    root->installEventFilter(this);
    const QObjectList children = root->children();
    for (QObject *child : children) {
        if (auto *inner = qobject_cast<QWidget *>(child)) {
            installTabCanceller(inner);
        }
    }
}

bool EditorMainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            return true;
        }
    }
    // A menu is made when it is asked for, some of them by the control itself.
    if (event->type() == QEvent::ChildPolished) {
        if (auto *menu = qobject_cast<QMenu *>(static_cast<QChildEvent *>(event)->child())) {
            installTabCanceller(menu);
        }
    }
    return CFrame::eventFilter(watched, event);
}

void EditorMainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
}

void EditorMainWindow::dragMoveEvent(QDragMoveEvent *event)
{
    event->ignore();
}

// --- Working folder ------------------------------------------------------------------------------

void EditorMainWindow::setWorkingFolder(const QString &path)
{
    const QDir folder = QFileInfo(path).absoluteDir();
    if (folder.exists()) {
        settings.setValue(WorkingFolderKey, folder.absolutePath());
    }
}

QString EditorMainWindow::getWorkingFolder() const
{
    const QString stored = settings.value(WorkingFolderKey).toString();
    return QFileInfo(stored).isDir() ? stored : documentsFolder();
}

// --- Views ---------------------------------------------------------------------------------------

void EditorMainWindow::viewTemplate()
{
    if (currentView != 0) {
        currentView = 0;
        updateWindowSize();
        ui->viewMainStack->setCurrentWidget(editorTemplate);
        editorTemplate->focusKnob();
    }
    updatesMenuEnabled();
}

void EditorMainWindow::viewLibrary()
{
    if (currentView != 1) {
        currentView = 1;
        remoteMemAPI->setupLibraryBank();
        editorLibrary->setCurrentTemplateNumber(editorTemplate->getCurrentTemplateNumber());
        editorLibrary->updateLibrary();
        updateWindowSize();
        ui->viewMainStack->setCurrentWidget(editorLibrary);
        editorLibrary->focusTemplateList();
    }
    updatesMenuEnabled();
}

void EditorMainWindow::viewStore()
{
    if (!isWindowLocked()) {
        showPanel(&storeConfirmPanel);
    }
}

// --- Lock and panels -----------------------------------------------------------------------------

void EditorMainWindow::windowLock()
{
    if (windowLockCount < 1) {
        menuBar->setEnabled(false);
        // A panel has Return, Enter and Escape to itself.
        editorLibrary->enableKeyboardShortcuts(false);
        windowLockCount = 0;
    }
    ++windowLockCount;
}

void EditorMainWindow::windowUnlock()
{
    if (destructing) {
        return;
    }
    if (windowLockCount-- >= 2) {
        return;
    }
    menuBar->setEnabled(true);
    QApplication::restoreOverrideCursor();
    windowLockCount = 0;
    editorLibrary->enableKeyboardShortcuts(true);
    // Each panel that opens locks the window again, and those behind it stay pending.
    if (analyzeVSTiPending) {
        analyzeVSTi();
    }
    if (autoSyncPending) {
        autoSync(autoSyncPendingFirst, autoSyncPendingSecond);
    }
    if (portOpenErrorPending) {
        portOpenError(portName);
    }
    if (portNotFoundPending) {
        portNotFound();
    }
    retryWaitingFiles();
}

void EditorMainWindow::modalDialogClosed()
{
    // The next panel may stand already.
    if (!destructing && !isWindowLocked()) {
        editorLibrary->enableKeyboardShortcuts(true);
    }
}

void EditorMainWindow::analyzeVSTi()
{
    // A panel that refuses to close, in a window that nobody sees any more, would keep the program
    // from ending.
    if (closing) {
        return;
    }
    analyzeVSTiPending = isWindowLocked();
    if (analyzeVSTiPending) {
        return;
    }
    showPanel(&analyzeVSTiPanel, dawName);
    connect(analyzeVSTiPanel, &AnalyzeVSTi::finished, this, &EditorMainWindow::updateDAW,
            Qt::UniqueConnection);
}

void EditorMainWindow::updateDAW()
{
    editorTemplate->updateDAW();
    editorLibrary->updateDAW();
}

void EditorMainWindow::autoSync(bool editorToDevice, bool editBufferOnly)
{
    if (closing || !midiRouteOpen) {
        return;
    }
    if (isWindowLocked()) {
        autoSyncPending = true;
        autoSyncPendingFirst = editorToDevice;
        autoSyncPendingSecond = editBufferOnly;
        return;
    }
    showPanel(&autoSyncPanel, editorToDevice, editBufferOnly);
    if (activePortPending) {
        activePortPending = false;
        autoSyncPanel->activePort();
    }
    autoSyncPending = false;
}

void EditorMainWindow::portNotFound()
{
    portNotFoundPending = isWindowLocked();
    if (!portNotFoundPending) {
        showPanel(&portNotFoundPanel);
    }
}

void EditorMainWindow::portOpenError(const QString &name)
{
    portOpenErrorPending = isWindowLocked();
    if (!portOpenErrorPending) {
        showPanel(&portOpenErrorPanel, name);
    }
}

void EditorMainWindow::closeConfirm(CloseConfirm::NextActionType action)
{
    if (currentView == 1) {
        showModalPanel(&exitAnywayConfirmPanel);
    } else {
        showPanel(&closeConfirmPanel, action);
    }
}

// Made, deleted when closed, in its place, above all else.
void EditorMainWindow::placePanel(EditorOverlap *panel)
{
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->move(EditorViewPos);
    panel->raise();
    panel->setVisible(true);
}

// --- Closing -------------------------------------------------------------------------------------

bool EditorMainWindow::hasUnsavedEdits() const
{
    return fileEditFlagNotifier->getMemAPICurrentValue() != 0 ||
           libraryEditFlagNotifier->getMemAPICurrentValue() != 0;
}

void EditorMainWindow::closeEvent(QCloseEvent *event)
{
    event->ignore();
    if (analyzeVSTiPanel && !analyzeVSTiPanel->close()) {
        return;
    }
    if (autoSyncPanel && !autoSyncPanel->close()) {
        return;
    }
    EditorOverlap *const others[] = {setupPanel,
                                     aboutPanel,
                                     portOpenErrorPanel,
                                     portNotFoundPanel,
                                     resetStoredConfirmPanel,
                                     restoreHWConfirmPanel,
                                     factorysetConfirmPanel,
                                     storeConfirmPanel};
    for (EditorOverlap *panel : others) {
        if (panel != nullptr) {
            panel->close();
        }
    }
    editorTemplate->acceptTyping();
    const auto asks = [](const QWidget *panel) { return panel != nullptr && panel->isVisible(); };
    if (!asks(closeConfirmPanel) && !asks(exitAnywayConfirmPanel)) {
        if (!hasUnsavedEdits()) {
            closing = true;
            event->accept();
            return;
        }
        closeConfirm(CloseConfirm::Exit);
        repaint();
    }
    if (isMinimized()) {
        showNormal();
    }
}
