// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/EditorMainWindow.h"

#include "app/Constants.h"
#include "app/Folders.h"
#include "app/MainWindowRects.h"
#include "app/Shortcuts.h"
#include "file/EditorFile.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/MemControllerFactory.h"
#include "memory/MemProxy.h"
#include "memory/ParamAddress.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorMainWindow.h"
#include "views/EditorLibrary.h"
#include "views/EditorTemplate.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QFile>
#include <QtGui/QClipboard>
#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtWidgets/QMenuBar>

#include <algorithm>
#include <limits>
#include <optional>

// Start and end of the window; the other sources are named in the header.

namespace
{

// Part of the window that stays on the screen at any stored position, in pixels.
constexpr int StartMargin = 19;

// Stored numbers may have been damaged or come from elsewhere: what is too large for its type is no
// number, and not the part of it that is left when it is cut.
std::optional<int> numberOf(const QSettings &settings, const QString &key)
{
    bool isNumber = false;
    const qlonglong value = settings.value(key).toLongLong(&isNumber);
    if (!isNumber || value < std::numeric_limits<int>::min() ||
        value > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(value);
}

bool flagOf(const QSettings &settings, const QString &key)
{
    return numberOf(settings, key) == 1;
}

} // namespace

EditorMainWindow::EditorMainWindow(RemoteMemAPI *api, bool autoSyncAtStart)
    : ui(std::make_unique<Ui::EditorMainWindow>())
    , remoteMemAPI(api)
    , memControllerFactory(std::make_unique<MemControllerFactory>(api))
    , settings(QSettings::UserScope, CorporationName, SettingName)
    , appDataDirectory(getAppDataDirectory())
    , initialDirectory(getInitialDirectory())
    , executeDirectory(getExecuteDirectory())
    , vstiInfo(executeDirectory, initialDirectory, appDataDirectory)
{
    setWindowFlags(Qt::FramelessWindowHint);
    m_fileRetry.setSingleShot(true);
    connect(&m_fileRetry, &QTimer::timeout, this, &EditorMainWindow::retryWaitingFiles);

    ui->setupUi(this);
    adjustFont(this);
    installTabCanceller(this);
    setCursor(QCursor(artwork(":/images/vd_arrow.png"), 0, 0));
    buildMenus();
    buildViews();
    connect(ui->btnWindowStaysOnTop, &COnOffButton::toggled, this, &EditorMainWindow::staysOnTop);
    connect(remoteMemAPI, &RemoteMemAPI::portActivated, this, &EditorMainWindow::activePort);
    buildNotifiers();
    createMemProxyController(memControllerFactory.get(), this);
    ui->btnWindowContract->setImageCategories(2);
    ui->btnWindowContract->setCategory(1);
    connect(ui->btnWindowContract, &COnOffButton::clicked, this,
            &EditorMainWindow::controlWindowSize);
    prepareMemory();
    editorLibrary->initializeList();
    readClipboard();
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this,
            &EditorMainWindow::readClipboard);
    // Queued, so that a request for a file comes back through the event loop, where a
    // synchronisation can end and a panel die meanwhile.
    connect(this, &EditorMainWindow::fileOpenRequest, this,
            qOverload<const QString &>(&EditorMainWindow::fileOpen), Qt::QueuedConnection);
    readWindowSettings();
    chooseDAW();
    choosePort();
    if (autoSyncAtStart && midiRouteOpen) {
        autoSync(false, true);
    }
    setAcceptDrops(true);
}

EditorMainWindow::~EditorMainWindow()
{
    destructing = true;
    settings.setValue(QStringLiteral("WindowX"), x());
    settings.setValue(QStringLiteral("WindowY"), y());
    settings.setValue(QStringLiteral("WindowShrink"), windowShrink ? 1 : 0);
    settings.setValue(QStringLiteral("WindowOnTop"), windowOnTop ? 1 : 0);
    // The bound objects of the views and panels refer to the factory; so they go first, while this
    // is still a whole window.
    qDeleteAll(findChildren<EditorOverlap *>(Qt::FindDirectChildrenOnly));
    delete editorTemplate;
    delete editorLibrary;
    for (CSimpleNotifier *notifier : {isOnlineNotifier, bankEditFlagNotifier, fileEditFlagNotifier,
                                      fileNameNotifier, libraryEditFlagNotifier}) {
        delete notifier;
    }
    memControllerFactory.reset();
}

void EditorMainWindow::buildMenus()
{
    fileMenu = addMenu(nullptr, MenuFileMenu);
    actionFileNew = addEntry(fileMenu, MenuFileNew, ShortcutFileNew, &EditorMainWindow::fileNew);
    actionFileOpen = addEntry(fileMenu, MenuFileOpen, ShortcutFileOpen,
                              qOverload<>(&EditorMainWindow::fileOpen));
    actionFileSave =
        addEntry(fileMenu, MenuFileSave, ShortcutFileSave, &EditorMainWindow::fileSaveBank);
    actionFileSaveAs =
        addEntry(fileMenu, MenuFileSaveAs, ShortcutFileSaveAs, &EditorMainWindow::fileSaveBankAs);
    actionFileImportTemplate = addEntry(fileMenu, MenuFileImportTemplate, ShortcutImportTemplate,
                                        &EditorMainWindow::fileImportTemplate);
    fileMenu->addSeparator();
    actionFileSetup =
        addEntry(fileMenu, MenuFileSetup, ShortcutFileSetup, &EditorMainWindow::fileSetup);
    QMenu *database = addMenu(fileMenu, MenuFileVSTiDatabase);
    actionFileVSTiDatabase = database->menuAction();
    addEntry(database, MenuFileVSTiDatabaseFullScan, ShortcutFileVSTiDatabaseFullScan,
             &EditorMainWindow::fileVSTiDatabaseFullScan);
    addEntry(database, MenuFileVSTiDatabaseUpdate, ShortcutFileVSTiDatabaseUpdate,
             &EditorMainWindow::fileVSTiDatabaseUpdate);

    editMenu = addMenu(nullptr, MenuEditMenu);
    actionEditCopy =
        addEntry(editMenu, MenuEditCopy, ShortcutEditCopy, &EditorMainWindow::editCopy);
    actionEditPaste =
        addEntry(editMenu, MenuEditPaste, ShortcutEditPaste, &EditorMainWindow::editPaste);
    editMenu->addSeparator();
    actionEditInitialize = addEntry(editMenu, MenuEditInitialize, ShortcutEditInitialize,
                                    &EditorMainWindow::editInitialize);
    actionEditResetStored = addEntry(editMenu, MenuEditResetStored, ShortcutEditResetStored,
                                     &EditorMainWindow::editResetStored);
    actionEditRestoreHW = addEntry(editMenu, MenuEditRestoreHW, ShortcutEditRestoreHW,
                                   &EditorMainWindow::editRestoreHW);
    actionEditResetFactory = addEntry(editMenu, MenuEditResetFactory, ShortcutEditResetFactory,
                                      &EditorMainWindow::editResetFactory);

    helpMenu = addMenu(nullptr, MenuHelpMenu);
    addEntry(helpMenu, MenuHelpManual, ShortcutHelpManual, &EditorMainWindow::helpManual);
    addEntry(helpMenu, MenuHelpAbout, ShortcutHelpAbout, &EditorMainWindow::helpAbout);

    auto *frame = new QFrame(this);
    frame->setGeometry(EditorMenuRect);
    menuBar = new QMenuBar(frame);
    // Part of the skin, also where the system has a menu bar of its own.
    menuBar->setNativeMenuBar(false);
    menuBar->setGeometry(frame->rect());
    menuBar->setFont(font());
    for (QMenu *menu : {fileMenu, editMenu, helpMenu}) {
        menuBar->addMenu(menu);
    }
    installTabCanceller(frame);
}

// parent: the menu that it is an entry of, null for one of the bar.
QMenu *EditorMainWindow::addMenu(QMenu *parent, const QString &text)
{
    auto *menu = new QMenu(text, this);
    menu->setFont(font());
    menu->setCursor(cursor());
    if (parent != nullptr) {
        parent->addMenu(menu);
    }
    return menu;
}

template <typename Slot>
QAction *EditorMainWindow::addEntry(QMenu *menu, const QString &text, const QKeySequence &key,
                                    Slot slot)
{
    QAction *action = menu->addAction(text);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, slot);
    return action;
}

void EditorMainWindow::buildViews()
{
    editorTemplate = new EditorTemplate(this);
    editorTemplate->setPalette(palette());
    editorLibrary = new EditorLibrary(this);
    ui->viewMainStack->addWidget(editorTemplate);
    ui->viewMainStack->addWidget(editorLibrary);
}

void EditorMainWindow::buildNotifiers()
{
    isOnlineNotifier = new CSimpleNotifier(QStringLiteral("isOnline"), this);
    connect(isOnlineNotifier, &CSimpleNotifier::update, this, &EditorMainWindow::updateOnline);
    bankEditFlagNotifier = new CSimpleNotifier(QStringLiteral("bankEditFlag"), this);
    connect(bankEditFlagNotifier, &CSimpleNotifier::update, this,
            &EditorMainWindow::updatesMenuEnabled);
    libraryEditFlagNotifier = new CSimpleNotifier(QStringLiteral("libraryEditFlag"), this);
    fileEditFlagNotifier = new CSimpleNotifier(QStringLiteral("fileEditFlag"), this);
    connect(fileEditFlagNotifier, &CSimpleNotifier::update, this,
            &EditorMainWindow::updatesMenuEnabled);
    fileNameNotifier = new CSimpleNotifier(QStringLiteral("fileName"), this);
}

void EditorMainWindow::prepareMemory()
{
    while (remoteMemAPI->getQuantityOfBank() <= Bank::Preset) {
        remoteMemAPI->createBank();
    }
    QFile preset(initialDirectory.filePath(PresetBankFile.arg(1) + EditorFileExtension));
    QString error;
    if (!EditorFile::load(remoteMemAPI, Bank::Preset, &preset, false, &error)) {
        critical(QStringLiteral("Bank Preset : ") + error, EditorName);
    }
    remoteMemAPI->initializeInitialTemplate();
    editorTemplate->initializeEditBuffer();
    if (!appDataDirectory.exists()) {
        appDataDirectory.mkpath(appDataDirectory.path());
    }
    for (const int bank : {Bank::EditBuffer, Bank::Stored}) {
        remoteMemAPI->setParam(ParamAddress(bank, ParamAddress::BankAvailableFlag,
                                            ParamAddress::None, ParamAddress::None),
                               1);
    }
}

void EditorMainWindow::readWindowSettings()
{
    const std::optional<int> storedX = numberOf(settings, QStringLiteral("WindowX"));
    const std::optional<int> storedY = numberOf(settings, QStringLiteral("WindowY"));
    windowShrink = flagOf(settings, QStringLiteral("WindowShrink"));
    windowOnTop = flagOf(settings, QStringLiteral("WindowOnTop"));
    ui->btnWindowStaysOnTop->setChecked(windowOnTop);
    if (storedX && storedY) {
        moveToStoredPosition({*storedX, *storedY});
    }
}

void EditorMainWindow::moveToStoredPosition(const QPoint &stored)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) {
        return;
    }
    const QRect available = screen->availableGeometry();
    const auto limited = [](int value, int lowest, int highest) {
        return std::min(std::max(value, lowest), highest);
    };
    move(limited(stored.x(), available.left() + StartMargin - (width() - 1),
                 available.right() - StartMargin),
         limited(stored.y(), available.top() + StartMargin - (height() - 1),
                 available.bottom() - StartMargin));
}

void EditorMainWindow::chooseDAW()
{
    dawList = vstiInfo.getDAWList();
    dawList.prepend(OtherDAW);
    dawName = settings.value(QStringLiteral("DAWName")).toString();
    if (!dawList.contains(dawName)) {
        dawName = dawList.size() >= 2 ? dawList.at(1) : OtherDAW;
    }
    if (isBrandholmDAW()) {
        analyzeVSTi();
    } else {
        editorTemplate->updateDAW();
    }
    actionFileVSTiDatabase->setEnabled(isBrandholmDAW());
}

void EditorMainWindow::choosePort()
{
    updatePortInfoList();
    const auto found = portNameList.indexOf(settings.value(QStringLiteral("PortName")).toString());
    if (found >= 0) {
        portIndex = static_cast<int>(found);
    } else if (portNameList.size() >= 2) {
        portIndex = 1;
    } else {
        portIndex = 0;
        portNotFound();
    }
    if (portIndex > 0) {
        openRoute();
    }
}
