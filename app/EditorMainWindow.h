// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/DevicePortList.h"
#include "views/CloseConfirm.h"
#include "vsti/VSTiInfo.h"
#include "widgets/CFrame.h"

#include <QtCore/QDir>
#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtCore/QTimer>
#include <QtWidgets/QMessageBox>

#include <memory>

class About;
class AnalyzeVSTi;
class AutoSync;
class CSimpleNotifier;
class EditorLibrary;
class EditorOverlap;
class EditorTemplate;
class ExitAnywayConfirm;
class FactorysetConfirm;
class MemControllerFactory;
class PortNotFound;
class PortOpenError;
class QAction;
class QMenu;
class QMenuBar;
class RemoteMemAPI;
class ResetStoredConfirm;
class RestoreHWConfirm;
class Setup;
class StoreConfirm;
namespace Ui
{
class EditorMainWindow;
}

// The one top-level window, and the hub that every view and panel talks to. It owns the settings,
// the plug-in database, both views, every panel and the menus, and holds no parameter data: all of
// that lies in the memory, which it is given.
//
// A panel that is asked for while another one holds the window is kept as a wish and opens when
// the window is free again (windowUnlock). Sources: EditorMainWindow.cpp start and end,
// EditorMainWindowState.cpp size, dragging, locks, panels, EditorMainWindowPorts.cpp ports and the
// online state, EditorMainWindowCommands.cpp what stands behind the menus.
//
// Owner: main. Thread: GUI. remoteMemAPI outlives it.
class EditorMainWindow : public CFrame
{
    Q_OBJECT

public:
    // autoSyncAtStart: the program was started without a document.
    EditorMainWindow(RemoteMemAPI *api, bool autoSyncAtStart);
    ~EditorMainWindow() override;

    // --- The lock: while any panel exists the menu bar is off and the window large.
    void windowLock();
    void windowUnlock();
    bool isWindowLocked() const { return windowLockCount > 0; }
    void updateWindowSize();
    // Puts windowOnTop in force at the window system.
    void updateWindowStaysOnTop();
    // Tab and Backtab go nowhere, in this widget, in all of its children, and in the menus that
    // open from any of these later.
    void installTabCanceller(QWidget *root);

    // Modal boxes; staying on top is suspended for their time, so that a box never hides.
    QMessageBox::StandardButton
    critical(const QString &text, const QString &title,
             QMessageBox::StandardButtons buttons = QMessageBox::Ok,
             QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    QMessageBox::StandardButton
    warning(const QString &text, const QString &title,
            QMessageBox::StandardButtons buttons = QMessageBox::Ok,
            QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    QMessageBox::StandardButton
    question(const QString &text, const QString &title, QMessageBox::StandardButtons buttons,
             QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

    // --- Panels; each opens, or is remembered until the window is free.
    // Looks for the instruments of the DAW in use.
    void analyzeVSTi();
    // The arguments go to the panel: editor to device, edit buffer only.
    void autoSync(bool editorToDevice, bool editBufferOnly);
    void portNotFound();
    void portOpenError(const QString &name);
    void closeConfirm(CloseConfirm::NextActionType action);

    // --- Ports.
    // Lists the instruments anew. Ports go by their position in the platform's lists, which shifts
    // when instruments come and go: getPortIndex() and the ports in use follow the instrument that
    // the route was opened for. Not while a panel stands that holds positions of the old list.
    void updatePortInfoList();
    // index: into the list of names; 0 is no instrument.
    void setPortIndex(int index);
    // 0 while the instrument of the route is not listed: whoever stands in its place is another.
    int getPortIndex() const { return isRouteGone() ? 0 : portIndex; }
    QStringList getPortNameList() const { return portNameList; }
    QString getPortName() const { return portName; }
    void setPortName(const QString &name) { portName = name; }

    // --- DAW.
    // A name that is not on the list is none. A DAW that was not in use is looked through for
    // instruments.
    void setDAWName(const QString &name);
    QString getDAWName() const { return dawName; }
    QStringList getDAWList() const { return dawList; }
    bool isBrandholmDAW() const;

    // --- Files.
    void applicationFileOpen(const QString &name);
    void setWorkingFolder(const QString &path);
    QString getWorkingFolder() const;
    bool selectFileOpen();
    // An editor file that is there, asked for with staying on top suspended; empty for none.
    QString askForFile(const QString &title);

    bool storeBank(bool send);
    void resetStoredData();
    void restoreHWBackup();
    void resetFactorySet();

    // --- Rules of the menus.
    bool canNew() const;
    bool canOpen() const;
    bool canSetup() const;
    bool canSaveBank() const;
    bool canSaveBankAs() const;
    bool canVstiscan() const;
    bool canImportTemplate() const;
    bool canImport() const;
    bool canNewBank() const;
    bool canDeleteBank() const;
    bool canCopy() const;
    bool canPaste() const;
    // Whether the clipboard offers this type. It is asked once after each of its changes: an owner
    // that doesn't answer holds up whoever asks, for seconds each time.
    bool clipboardHolds(const QString &mimeType) const;
    bool canInitialize() const;
    bool canResetStored() const;
    bool canRestoreHW() const;
    bool canResetFactory() const;

    RemoteMemAPI *getRemoteMemAPI() const { return remoteMemAPI; }
    MemControllerFactory *getMemControllerFactory() const { return memControllerFactory.get(); }
    const VSTiInfo &getVSTiInfo() const { return vstiInfo; }
    VSTiInfo &getVSTiInfo() { return vstiInfo; }
    // For panels during which the program must not end.
    void setCloseButtonVisible(bool visible);

Q_SIGNALS:
    void fileOpenRequest(const QString &name);

public Q_SLOTS:
    void updatesMenuEnabled();
    void staysOnTop(bool on);
    void viewTemplate();
    void viewLibrary();
    void viewStore();
    void controlWindowSize();
    void fileNew();
    bool fileSaveBank();
    bool fileSaveBankAs();
    bool fileOpen();
    void executefileNew();
    void modalDialogClosed();
    bool fileOpen(const QString &name);
    void activePort();
    void fileImportTemplate();
    void fileImport();
    void fileSetup();
    void fileVSTiDatabaseFullScan();
    void fileVSTiDatabaseUpdate();
    void editCopy();
    void editPaste();
    void editResetStored();
    void editRestoreHW();
    void editResetFactory();
    void editInitialize();
    void helpManual();
    void helpAbout();
    void updateOnline();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;

private:
    // --- Start-up, in the order of the constructor.
    void buildMenus();
    void buildViews();
    void buildNotifiers();
    void readClipboard();
    void prepareMemory();
    void readWindowSettings();
    void moveToStoredPosition(const QPoint &stored);
    void chooseDAW();
    void choosePort();

    void openRoute();
    void takePorts(const PortInfo &info);
    // Its instrument was not in the last list, or not with all of its ports.
    bool isRouteGone() const { return !routeName.isNull() && communicationInPort == 0; }
    int templateToReset() const;
    static void placePanel(EditorOverlap *panel);
    // Makes the panel unless it stands, and shows it.
    template <typename PanelType, typename... Arguments>
    void showPanel(QPointer<PanelType> *guard, Arguments &&...arguments);
    // guard: a member.
    template <typename PanelType>
    void forgetWhenClosed(QPointer<PanelType> *guard);
    // A reset's question or About: the library's keys are off while it stands.
    template <typename PanelType>
    void showModalPanel(QPointer<PanelType> *guard);
    // Both views, of what is known of the DAW's instruments.
    void updateDAW();
    // Runs a modal box or dialog with staying on top suspended, so that it never hides.
    template <typename Show>
    auto aboveAll(Show show);
    void retryWaitingFiles();
    bool moveIsGood() const;
    void endDrag();
    bool hasUnsavedEdits() const;
    template <typename Slot>
    QAction *addEntry(QMenu *menu, const QString &text, const QKeySequence &key, Slot slot);
    QMenu *addMenu(QMenu *parent, const QString &text);

    std::unique_ptr<Ui::EditorMainWindow> ui;
    RemoteMemAPI *remoteMemAPI;
    std::unique_ptr<MemControllerFactory> memControllerFactory;
    QMenuBar *menuBar = nullptr;
    int windowLockCount = 0;
    bool windowOnTop = false;
    bool windowShrink = false;
    int currentView = 0; // 0 template view, 1 library view
    QSettings settings;
    QDir appDataDirectory;
    QDir initialDirectory;
    QDir executeDirectory;
    QList<PortInfo> portInfoList;
    QStringList portNameList; // entry 0 is PortNotAssigned, entry n portInfoList[n - 1]
    int portIndex = 0;
    int activeSensePort = 0;
    int communicationInPort = 0;
    int communicationOutPort = 0;
    QString routeName; // of the instrument that the three were opened for; null without a route
    QStringList dawList;
    QString dawName;
    QString portName;           // of the last port that failed to open
    QString pendingOpenFile;    // waits for the user's answer on unsaved edits
    QStringList m_waitingFiles; // asked for while the way is blocked, oldest first
    QTimer m_fileRetry;
    VSTiInfo vstiInfo;
    bool analyzeVSTiPending = false;
    QStringList clipboardFormats; // as of the clipboard's last change
    bool autoSyncPending = false;
    bool autoSyncPendingFirst = false;
    bool autoSyncPendingSecond = false;
    bool activePortPending = false;
    bool portOpenErrorPending = false;
    bool portNotFoundPending = false;
    bool midiRouteOpen = false;
    EditorTemplate *editorTemplate = nullptr;
    EditorLibrary *editorLibrary = nullptr;
    QPointer<AnalyzeVSTi> analyzeVSTiPanel;
    QPointer<AutoSync> autoSyncPanel;
    QPointer<Setup> setupPanel;
    QPointer<About> aboutPanel;
    QPointer<CloseConfirm> closeConfirmPanel;
    QPointer<PortOpenError> portOpenErrorPanel;
    QPointer<PortNotFound> portNotFoundPanel;
    QPointer<ResetStoredConfirm> resetStoredConfirmPanel;
    QPointer<RestoreHWConfirm> restoreHWConfirmPanel;
    QPointer<FactorysetConfirm> factorysetConfirmPanel;
    QPointer<ExitAnywayConfirm> exitAnywayConfirmPanel;
    QPointer<StoreConfirm> storeConfirmPanel;
    QAction *actionFileNew = nullptr;
    QAction *actionFileOpen = nullptr;
    QAction *actionFileSave = nullptr;
    QAction *actionFileSaveAs = nullptr;
    QAction *actionFileImportTemplate = nullptr;
    QAction *actionFileSetup = nullptr;
    QAction *actionFileVSTiDatabase = nullptr;
    QAction *actionEditCopy = nullptr;
    QAction *actionEditPaste = nullptr;
    QAction *actionEditInitialize = nullptr;
    QAction *actionEditResetStored = nullptr;
    QAction *actionEditRestoreHW = nullptr;
    QAction *actionEditResetFactory = nullptr;
    QMenu *fileMenu = nullptr;
    QMenu *editMenu = nullptr;
    QMenu *helpMenu = nullptr;
    CSimpleNotifier *isOnlineNotifier = nullptr;
    CSimpleNotifier *bankEditFlagNotifier = nullptr;
    CSimpleNotifier *fileEditFlagNotifier = nullptr;
    CSimpleNotifier *fileNameNotifier = nullptr;
    CSimpleNotifier *libraryEditFlagNotifier = nullptr;
    bool destructing = false;
    bool closing = false;
    bool dragging = false;
    QPoint dragOffset; // global press position less the window's
};
