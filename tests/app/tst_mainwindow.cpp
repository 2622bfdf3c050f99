// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"

#include "app/Shortcuts.h"
#include "cli/LoopbackInstrument.h"
#include "file/EditorFile.h"
#include "memory/ControlTemplateData.h"
#include "protocol/AutoSync.h"
#include "views/PortNotFound.h"
#include "vsti/AnalyzeVSTi.h"
#include "vsti/DawMachine.h"
#include "widgets/CLineEdit.h"
#include "widgets/CListView.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QDragEnterEvent>

// What the window is when its constructor is through: its form, its menus, what each step of the
// start has left behind, and what each setting makes of it.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
const QString OtherDeviceName = QStringLiteral("Corvan TARN/TERN X");
constexpr QSize LargeSize(470, 465);
constexpr QSize SmallSize(470, 324);

int bankAvailable(const RemoteMemAPI &api, int bank)
{
    return api.getBankAvailableFlag(bank).getCurrentValue();
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PanelRig::setUpApplication();
        timings().connectionWatcherPeriodMs = 600000; // nobody is sensed here
    }
    void init()
    {
        setMachineFolders({});
        QGuiApplication::clipboard()->clear();
        m_rig = std::make_unique<MainWindowRig>();
        MainWindowRig::store("PortName", PortNotAssigned);
    }
    void cleanup()
    {
        m_rig.reset();
        setMachineFolders({});
    }

    // --- Form
    void everyWidgetOfTheForm_data();
    void everyWidgetOfTheForm();
    void theFormItself();
    void thePaletteIsTheSameInAllGroups();
    void theButtonsOfTheSkinWork();

    // --- Steps of the constructor
    void theWindowIsFramelessAndFree();
    void theFoldersReachTheDatabaseOfInstruments();
    void menusHaveTheWindowsFontAndCursor();
    void theMenuBarLiesInTheSkin();
    void theViewsStandInTheirOrder();
    void portActivityIsHeardOf();
    void theNotifiersReact_data();
    void theNotifiersReact();
    void boundWidgetsOfBothViewsAreLive();
    void theSizeButtonHasTwoCategories();
    void thereAreNineBanks();
    void moreBanksStay();
    void thePresetBankIsLoaded();
    void atTheBoxOfAMissingPresetTheStepsBeforeAreDoneAndThoseBehindAreNot();
    void aDamagedPresetIsNamedAndTheStartGoesOn();
    void theEditBufferIsInitial();
    void theDataFolderIsMade();
    void theFirstTwoBanksAreAvailable();
    void theClipboardIsWatched();
    void fileRequestsAreQueued();
    void dropsAreTakenAndIgnored();

    // --- Settings
    void theStoredPosition_data();
    void theStoredPosition();
    void theStoredShrink_data();
    void theStoredShrink();
    void theStoredOnTop_data();
    void theStoredOnTop();
    void theStoredDAW_data();
    void theStoredDAW();
    void theStoredDAWOfTwo_data();
    void theStoredDAWOfTwo();
    void theStoredPort_data();
    void theStoredPort();
    void theStoredWorkingFolder_data();
    void theStoredWorkingFolder();
    void theWorkingFolderIsThatOfTheFile();
    void theDestructorWritesTheSettings();
    void aChosenDAWIsWrittenAtOnce();

    // --- Menus
    void everyEntry_data();
    void everyEntry();
    void theOrderOfTheEntries();
    void importTemplateHasItsKeyInTheLibraryAlone();

private:
    std::unique_ptr<MainWindowRig> m_rig;
};

// --- Form ----------------------------------------------------------------------------------------

void TestMainWindow::everyWidgetOfTheForm_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QRect>("place");
    QTest::addColumn<QString>("image");
    const auto row = [](const char *name, const char *className, const QRect &place,
                        const char *image) {
        QTest::newRow(name) << QString::fromLatin1(className) << place
                            << QString::fromLatin1(image);
    };
    row("bgWindowClose", "QWidget", {19, 6, 15, 15}, "");
    row("btnWindowClose", "COnOffButton", {19, 6, 15, 15}, ":/images/vd_nsw_window.png");
    row("btnWindowMinimize", "COnOffButton", {38, 6, 15, 15}, ":/images/vd_nsw_window_small.png");
    row("btnWindowStaysOnTop", "COnOffButton", {57, 6, 15, 15}, ":/images/vd_nsw_window_front.png");
    row("lblOnline", "QLabel", {14, 36, 87, 7}, ":/images/t27r_led_online.png");
    row("viewMainStack", "QStackedWidget", {14, 48, 442, 402}, "");
    row("btnWindowContract", "COnOffButton", {437, 455, 19, 10}, ":/images/t27r_tsw_size.png");
}

void TestMainWindow::everyWidgetOfTheForm()
{
    QFETCH(QString, className);
    QFETCH(QRect, place);
    QFETCH(QString, image);
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    auto *widget = m_rig->window->findChild<QWidget *>(QLatin1String(QTest::currentDataTag()),
                                                       Qt::FindDirectChildrenOnly);
    QVERIFY(widget != nullptr);
    QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
    QCOMPARE(widget->geometry(), place);
    const QPixmap picture = image.isEmpty() ? QPixmap() : artwork(qPrintable(image));
    if (const auto *button = qobject_cast<COnOffButton *>(widget)) {
        QCOMPARE(button->combinedImage().cacheKey(), picture.cacheKey());
        QVERIFY(!button->hasDownImage());
        QCOMPARE(button->isCheckable(),
                 button->objectName() == QLatin1String("btnWindowStaysOnTop"));
    }
    if (const auto *label = qobject_cast<QLabel *>(widget)) {
        QCOMPARE(label->pixmap(Qt::ReturnByValue).cacheKey(), picture.cacheKey());
    }
}

void TestMainWindow::theFormItself()
{
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->objectName(), QStringLiteral("EditorMainWindow"));
    QCOMPARE(m_rig->window->windowTitle(), QStringLiteral("TARN/TERN Remote Editor"));
    QCOMPARE(m_rig->window->font().family(), QStringLiteral("Corvan QRL 8"));
    QVERIFY(m_rig->window->font().styleStrategy() & QFont::NoAntialias);
    QCOMPARE(m_rig->window->size(), LargeSize);
    QCOMPARE(m_rig->window->backgroundPixmap().cacheKey(),
             artwork(":/images/trn_bak_1.png").cacheKey());
    // Nothing of it can be made larger or smaller by the window manager.
    QVERIFY(m_rig->showWindow());
    QCOMPARE(m_rig->window->minimumSize(), LargeSize);
    QCOMPARE(m_rig->window->maximumSize(), LargeSize);
    QVERIFY(!m_rig->onlineLamp()->isVisible());
}

void TestMainWindow::thePaletteIsTheSameInAllGroups()
{
    m_rig->makeWindow();
    const auto grey = [](int level) { return QColor(level, level, level); };
    const QHash<QPalette::ColorRole, QColor> roles{
        {QPalette::WindowText, grey(55)},     {QPalette::Dark, grey(55)},
        {QPalette::Text, grey(55)},           {QPalette::ButtonText, grey(55)},
        {QPalette::Shadow, grey(55)},         {QPalette::Highlight, grey(55)},
        {QPalette::Link, grey(55)},           {QPalette::Button, grey(204)},
        {QPalette::Midlight, grey(204)},      {QPalette::Base, grey(204)},
        {QPalette::Window, grey(204)},        {QPalette::Mid, grey(102)},
        {QPalette::LinkVisited, grey(102)},   {QPalette::HighlightedText, QColor(174, 155, 130)},
        {QPalette::AlternateBase, grey(220)},
    };
    for (const QWidget *widget : {static_cast<QWidget *>(m_rig->window.get()),
                                  static_cast<QWidget *>(m_rig->templateView())}) {
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
                QCOMPARE(widget->palette().color(group, role.key()), role.value());
            }
        }
    }
}

void TestMainWindow::theButtonsOfTheSkinWork()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    m_rig->click(m_rig->inWindow<QWidget>("btnWindowMinimize"));
    QTRY_VERIFY(m_rig->window->isMinimized());
    m_rig->window->showNormal();
    QTRY_VERIFY(!m_rig->window->isMinimized() && m_rig->window->isVisible());
    m_rig->click(m_rig->inWindow<QWidget>("btnWindowClose"));
    QVERIFY(!m_rig->window->isVisible());
}

// --- Steps of the constructor --------------------------------------------------------------------

void TestMainWindow::theWindowIsFramelessAndFree()
{
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->parentWidget(), nullptr);
    QVERIFY(m_rig->window->windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(m_rig->window->isWindow());
    QVERIFY(m_rig->isFree());
    QVERIFY(!m_rig->showsLibrary());
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->window->getMemControllerFactory() != nullptr);
    QCOMPARE(m_rig->window->getRemoteMemAPI(), m_rig->api.get());
    const QCursor cursor = m_rig->window->cursor();
    QCOMPARE(cursor.hotSpot(), QPoint(0, 0));
    QCOMPARE(cursor.pixmap().toImage(), artwork(":/images/vd_arrow.png").toImage());
}

// The presets of instruments come from the resources.
void TestMainWindow::theFoldersReachTheDatabaseOfInstruments()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->window->getVSTiInfo().getVSTiExistsAndPresetList().contains(
        QStringLiteral("TARN/TERN VST")));
}

void TestMainWindow::menusHaveTheWindowsFontAndCursor()
{
    m_rig->makeWindow();
    for (const QString &title : {MenuFileMenu, MenuEditMenu, MenuHelpMenu, MenuFileVSTiDatabase}) {
        const QMenu *menu = m_rig->menu(title);
        QVERIFY2(menu != nullptr, qPrintable(title));
        QCOMPARE(menu->parentWidget(), m_rig->window.get());
        QCOMPARE(menu->font(), m_rig->window->font());
        QCOMPARE(menu->cursor().pixmap().cacheKey(), m_rig->window->cursor().pixmap().cacheKey());
    }
    QCOMPARE(m_rig->menuBar()->font(), m_rig->window->font());
}

void TestMainWindow::theMenuBarLiesInTheSkin()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    QWidget *frame = m_rig->menuBar()->parentWidget();
    QCOMPARE(frame->metaObject()->className(), "QFrame");
    QCOMPARE(frame->parentWidget(), m_rig->window.get());
    QCOMPARE(frame->geometry(), QRect(79, 6, 97, 15));
    QCOMPARE(m_rig->menuBar()->geometry(), QRect(0, 0, 97, 15));
    QVERIFY(!m_rig->menuBar()->isNativeMenuBar());
    QStringList titles;
    const QList<QAction *> actions = m_rig->menuBar()->actions();
    for (const QAction *action : actions) {
        titles.append(action->text());
        // All three fit into the skin.
        QVERIFY(frame->rect().contains(
            m_rig->menuBar()->actionGeometry(const_cast<QAction *>(action))));
    }
    QCOMPARE(titles, (QStringList{MenuFileMenu, MenuEditMenu, MenuHelpMenu}));
}

void TestMainWindow::theViewsStandInTheirOrder()
{
    m_rig->makeWindow();
    QCOMPARE(m_rig->stack()->count(), 2);
    QCOMPARE(m_rig->stack()->widget(0), m_rig->templateView());
    QCOMPARE(m_rig->stack()->widget(1), m_rig->libraryView());
    QCOMPARE(m_rig->stack()->currentIndex(), 0);
}

void TestMainWindow::portActivityIsHeardOf()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->api->isWatchPortActivate());
    QVERIFY(!m_rig->api->needToWaitAutoSyncDone());
    m_rig->api->emitPortActivatedSignal();
    QVERIFY(!m_rig->api->isWatchPortActivate());
    QVERIFY(m_rig->api->needToWaitAutoSyncDone());
    // There is no route to synchronise over.
    QVERIFY(m_rig->panel<AutoSync>() == nullptr);
}

void TestMainWindow::theNotifiersReact_data()
{
    QTest::addColumn<int>("address");
    QTest::addColumn<bool>("menusFollow");
    QTest::newRow("isOnline") << ParamAddress::IsOnline << true;
    QTest::newRow("bankEditFlag") << ParamAddress::BankEditFlag << true;
    QTest::newRow("fileEditFlag") << ParamAddress::FileEditFlag << true;
    QTest::newRow("libraryEditFlag") << ParamAddress::LibraryEditFlag << false;
}

void TestMainWindow::theNotifiersReact()
{
    QFETCH(int, address);
    QFETCH(bool, menusFollow);
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    QAction *action = m_rig->entry(MenuFileNew);
    action->setEnabled(false); // wrong: the next look at the rules puts it right
    m_rig->setFlag(address, 1);
    // The way through the event loop is the same for all of them.
    QSignalSpy later(m_rig->inWindow<QLabel>("lblOnline"), &QObject::objectNameChanged);
    QMetaObject::invokeMethod(
        m_rig->onlineLamp(), [this] { m_rig->onlineLamp()->setObjectName(QStringLiteral("x")); },
        Qt::QueuedConnection);
    QVERIFY(later.count() == 1 || later.wait());
    QCOMPARE(action->isEnabled(), menusFollow);
}

void TestMainWindow::boundWidgetsOfBothViewsAreLive()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1),
                         QStringLiteral("Newly named"));
    const auto *name = m_rig->templateView()->findChild<CLineEdit *>();
    QVERIFY(name != nullptr);
    QTRY_COMPARE(name->text().trimmed(), QStringLiteral("Newly named"));
    const auto *list = m_rig->libraryView()->findChild<CListView *>(QStringLiteral("listTemplate"));
    QVERIFY(list != nullptr);
    m_rig->window->viewLibrary();
    QVERIFY(list->hasFocus());
}

void TestMainWindow::theSizeButtonHasTwoCategories()
{
    m_rig->makeWindow();
    QCOMPARE(m_rig->sizeButton()->imageCategories(), 2);
    QCOMPARE(m_rig->sizeButton()->category(), 1);
    QVERIFY(m_rig->showWindow());
    m_rig->click(m_rig->sizeButton());
    QCOMPARE(m_rig->window->size(), SmallSize);
}

void TestMainWindow::thereAreNineBanks()
{
    m_rig->makeWindow();
    QCOMPARE(m_rig->api->getQuantityOfBank(), 9);
}

void TestMainWindow::moreBanksStay()
{
    while (m_rig->api->getQuantityOfBank() < 12) {
        m_rig->api->createBank();
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->api->getQuantityOfBank(), 12);
}

void TestMainWindow::thePresetBankIsLoaded()
{
    RemoteMemAPI preset;
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        preset.setParam(ParamAddress(Bank::Stored, number, ParamAddress::TemplateName, -1),
                        QStringLiteral("Preset %1").arg(number));
    }
    QTemporaryDir machine;
    QFile file(machine.filePath(QStringLiteral("BankPreset1.Q7V")));
    QVERIFY(EditorFile::save(&preset, Bank::Stored, &file, nullptr));
    MachineFolders folders;
    folders.executable = machine.filePath(QStringLiteral("bin"));
    folders.shareFolder = machine.path();
    setMachineFolders(folders);
    m_rig->makeWindow();
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        QCOMPARE(m_rig->api->getTemplateData(Bank::Preset, number),
                 preset.getTemplateData(Bank::Stored, number));
        QVERIFY(m_rig->api->getTemplateData(Bank::Preset, number) !=
                m_rig->api->getTemplateData(Bank::EditBuffer, number));
    }
    // It is nobody's edit.
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
}

// A box within the constructor shows it half-way through.
void TestMainWindow::atTheBoxOfAMissingPresetTheStepsBeforeAreDoneAndThoseBehindAreNot()
{
    QTemporaryDir machine;
    MachineFolders folders;
    folders.home = machine.path();
    folders.executable = machine.path();
    folders.shareFolder = machine.path();
    setMachineFolders(folders);
    MainWindowRig::store("WindowX", 321);
    MainWindowRig::store("WindowY", 123);
    MainWindowRig::store("WindowOnTop", 1);

    EditorMainWindow *seen = nullptr;
    MessageBoxAnswer answer(QMessageBox::Ok, [&](const QMessageBox *box) {
        QCOMPARE(box->icon(), QMessageBox::Critical);
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
        QCOMPARE(box->parentWidget(), nullptr);
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows) {
            if (auto *found = qobject_cast<EditorMainWindow *>(window)) {
                seen = found;
            }
        }
        if (seen == nullptr) {
            QFAIL("there is no window");
        }
        // Before it
        QVERIFY(seen->windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(seen->windowTitle(), EditorName);
        QVERIFY(seen->findChild<QMenuBar *>() != nullptr);
        const auto *views = seen->findChild<QStackedWidget *>(QStringLiteral("viewMainStack"));
        QVERIFY(views != nullptr);
        QCOMPARE(views->count(), 2);
        const auto *size = seen->findChild<COnOffButton *>(QStringLiteral("btnWindowContract"));
        QVERIFY(size != nullptr);
        QCOMPARE(size->category(), 1);
        QCOMPARE(m_rig->api->getQuantityOfBank(), 9);
        // Behind it
        QVERIFY(!getAppDataDirectory().exists());
        QVERIFY(!seen->testAttribute(Qt::WA_Moved));
        QVERIFY(
            !seen->findChild<COnOffButton *>(QStringLiteral("btnWindowStaysOnTop"))->isChecked());
        QVERIFY(seen->getDAWList().isEmpty());
        QVERIFY(seen->getPortNameList().isEmpty());
        QVERIFY(!seen->acceptDrops());
    });
    m_rig->makeWindow();
    QCOMPARE(answer.asked().size(), 1);
    QVERIFY(answer.asked().first().startsWith(EditorName + QStringLiteral("|Bank Preset : ")));
    QCOMPARE(seen, m_rig->window.get());
    // And it goes on all the same, with the preset bank as it was made.
    QVERIFY(getAppDataDirectory().exists());
    QCOMPARE(bankAvailable(*m_rig->api, Bank::EditBuffer), 1);
    QCOMPARE(m_rig->window->pos(), QPoint(321, 123));
    QVERIFY(m_rig->window->acceptDrops());
    QCOMPARE(m_rig->api->getTemplateData(Bank::Preset, 0),
             m_rig->api->getTemplateData(Bank::EditBuffer, 0));
}

void TestMainWindow::aDamagedPresetIsNamedAndTheStartGoesOn()
{
    QTemporaryDir machine;
    QFile preset(machine.filePath(QStringLiteral("BankPreset1.Q7V")));
    QVERIFY(preset.open(QIODevice::WriteOnly));
    preset.write("<!DOCTYPE nothing>\n<bank");
    preset.close();
    MachineFolders folders;
    folders.executable = machine.filePath(QStringLiteral("bin"));
    folders.shareFolder = machine.path();
    setMachineFolders(folders);
    MessageBoxAnswer answer;
    m_rig->makeWindow();
    QCOMPARE(answer.asked().size(), 1);
    QVERIFY(answer.asked().first().startsWith(EditorName + QStringLiteral("|Bank Preset : ")));
    QVERIFY(answer.asked().first().size() >
            (EditorName + QStringLiteral("|Bank Preset : ")).size());
    QVERIFY(m_rig->showWindow());
    QVERIFY(m_rig->isFree());
}

void TestMainWindow::theEditBufferIsInitial()
{
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 7, ParamAddress::TemplateName, -1),
                         QStringLiteral("from before"));
    m_rig->makeWindow();
    for (int number = 1; number < ParamAddress::TemplateCount; ++number) {
        QCOMPARE(m_rig->api->getTemplateData(Bank::EditBuffer, number),
                 m_rig->api->getTemplateData(Bank::EditBuffer, 0));
    }
    QVERIFY(m_rig->fileName().isEmpty());
}

void TestMainWindow::theDataFolderIsMade()
{
    QTemporaryDir machine;
    MachineFolders folders;
    folders.home = machine.path();
    setMachineFolders(folders);
    QVERIFY(!getAppDataDirectory().exists());
    m_rig->makeWindow();
    QVERIFY(getAppDataDirectory().exists());
}

void TestMainWindow::theFirstTwoBanksAreAvailable()
{
    m_rig->makeWindow();
    QCOMPARE(bankAvailable(*m_rig->api, Bank::EditBuffer), 1);
    QCOMPARE(bankAvailable(*m_rig->api, Bank::Stored), 1);
    QCOMPARE(bankAvailable(*m_rig->api, Bank::HardwareStored), 0);
    QCOMPARE(bankAvailable(*m_rig->api, Bank::HardwareEditBuffer), 0);
}

void TestMainWindow::theClipboardIsWatched()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    QVERIFY(!m_rig->entry(MenuEditPaste)->isEnabled());
    auto *knob = new QMimeData;
    knob->setData(KnobMimeType, "<knob/>");
    QGuiApplication::clipboard()->setMimeData(knob);
    QTRY_VERIFY(m_rig->entry(MenuEditPaste)->isEnabled());
    QGuiApplication::clipboard()->setText(QStringLiteral("words"));
    QTRY_VERIFY(!m_rig->entry(MenuEditPaste)->isEnabled());
}

void TestMainWindow::fileRequestsAreQueued()
{
    QTemporaryDir folder;
    RemoteMemAPI other;
    other.setParam(ParamAddress(Bank::Stored, 0, ParamAddress::TemplateName, -1),
                   QStringLiteral("Of the file"));
    const QString path = folder.filePath(QStringLiteral("a.Q7V"));
    QFile file(path);
    QVERIFY(EditorFile::save(&other, Bank::Stored, &file, nullptr));
    m_rig->makeWindow();
    m_rig->window->applicationFileOpen(path);
    QVERIFY(m_rig->fileName().isEmpty());
    QTRY_COMPARE(m_rig->fileName(), path);
}

void TestMainWindow::dropsAreTakenAndIgnored()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->window->acceptDrops());
    QMimeData data;
    data.setText(QStringLiteral("text"));
    QDragEnterEvent enter(QPoint(200, 12), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(m_rig->window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QCOMPARE(enter.dropAction(), Qt::IgnoreAction);
    QDragMoveEvent move(QPoint(200, 13), Qt::CopyAction, &data, Qt::LeftButton, {});
    move.accept();
    QApplication::sendEvent(m_rig->window.get(), &move);
    QVERIFY(!move.isAccepted());
}

// --- Settings ------------------------------------------------------------------------------------

void TestMainWindow::theStoredPosition_data()
{
    QTest::addColumn<QVariant>("x");
    QTest::addColumn<QVariant>("y");
    QTest::addColumn<bool>("moves");
    QTest::addColumn<QPoint>("place");
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const int lowestX = screen.left() + 19 - 469;
    const int lowestY = screen.top() + 19 - 464;
    const int highestX = screen.right() - 19;
    const int highestY = screen.bottom() - 19;
    const auto row = [](const char *name, const QVariant &x, const QVariant &y, bool moves,
                        const QPoint &place) { QTest::newRow(name) << x << y << moves << place; };
    row("absent", {}, {}, false, {});
    row("x alone", 200, {}, false, {});
    row("y alone", {}, 200, false, {});
    row("both", 200, 150, true, {200, 150});
    row("both as text", QStringLiteral("200"), QStringLiteral("150"), true, {200, 150});
    row("x damaged", QStringLiteral("two hundred"), 150, false, {});
    row("y damaged", 200, QStringLiteral(""), false, {});
    row("y broken", 200, QStringLiteral("150.5"), false, {});
    row("a list", QStringList{QStringLiteral("1"), QStringLiteral("2")}, 150, false, {});
    row("too large for a number", QStringLiteral("99999999999"), 150, false, {});
    row("at the left end", lowestX, 150, true, {lowestX, 150});
    row("left of it", lowestX - 1, 150, true, {lowestX, 150});
    row("far left", -100000, 150, true, {lowestX, 150});
    row("far right", 100000, 150, true, {highestX, 150});
    row("right of the right end", highestX + 1, 150, true, {highestX, 150});
    row("far up", 200, -100000, true, {200, lowestY});
    row("far down", 200, 100000, true, {200, highestY});
    row("the largest numbers", 2147483647, -2147483647, true, {highestX, lowestY});
}

void TestMainWindow::theStoredPosition()
{
    QFETCH(QVariant, x);
    QFETCH(QVariant, y);
    QFETCH(bool, moves);
    QFETCH(QPoint, place);
    if (x.isValid()) {
        MainWindowRig::store("WindowX", x);
    }
    if (y.isValid()) {
        MainWindowRig::store("WindowY", y);
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->testAttribute(Qt::WA_Moved), moves);
    if (moves) {
        QCOMPARE(m_rig->window->pos(), place);
    }
    // At least a corner can be seen.
    QVERIFY(m_rig->showWindow());
    const QRect seen = m_rig->window->geometry().intersected(
        QGuiApplication::primaryScreen()->availableGeometry());
    QVERIFY(seen.width() >= 19 && seen.height() >= 19);
}

namespace
{

// What a stored 0 or 1 may look like.
void flagRows()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("absent") << QVariant() << false;
    QTest::newRow("0") << QVariant(0) << false;
    QTest::newRow("1") << QVariant(1) << true;
    QTest::newRow("1 as text") << QVariant(QStringLiteral("1")) << true;
    QTest::newRow("2") << QVariant(2) << false;
    QTest::newRow("too large for a number") << QVariant(QStringLiteral("4294967297")) << false;
    QTest::newRow("minus 1") << QVariant(-1) << false;
    QTest::newRow("empty") << QVariant(QString()) << false;
    QTest::newRow("words") << QVariant(QStringLiteral("yes")) << false;
    QTest::newRow("a list") << QVariant(QStringList{QStringLiteral("1"), QStringLiteral("1")})
                            << false;
}

} // namespace

void TestMainWindow::theStoredShrink_data()
{
    flagRows();
}

void TestMainWindow::theStoredShrink()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, isOn);
    if (stored.isValid()) {
        MainWindowRig::store("WindowShrink", stored);
    }
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    // It shows only when the size is next looked at.
    QCOMPARE(m_rig->window->size(), LargeSize);
    QCOMPARE(m_rig->sizeButton()->geometry(), QRect(437, 455, 19, 10));
    QVERIFY(m_rig->sizeButton()->isVisible());
    QCOMPARE(m_rig->sizeButton()->category(), 1);
    m_rig->window->helpAbout();
    QCOMPARE(m_rig->window->size(), LargeSize);
    QVERIFY(m_rig->closePanel<EditorOverlap>());
    QCOMPARE(m_rig->window->size(), isOn ? SmallSize : LargeSize);
    m_rig->window.reset();
    QCOMPARE(MainWindowRig::stored("WindowShrink").toInt(), isOn ? 1 : 0);
}

void TestMainWindow::theStoredOnTop_data()
{
    flagRows();
}

void TestMainWindow::theStoredOnTop()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, isOn);
    if (stored.isValid()) {
        MainWindowRig::store("WindowOnTop", stored);
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->inWindow<COnOffButton>("btnWindowStaysOnTop")->isChecked(), isOn);
    m_rig->window.reset();
    QCOMPARE(MainWindowRig::stored("WindowOnTop").toInt(), isOn ? 1 : 0);
}

void TestMainWindow::theStoredDAW_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::newRow("absent") << QVariant();
    QTest::newRow("Other") << QVariant(OtherDAW);
    QTest::newRow("in another case") << QVariant(QStringLiteral("other"));
    QTest::newRow("one that is not installed") << QVariant(QStringLiteral("Brandholm Trevia 9"));
    QTest::newRow("empty") << QVariant(QString());
    QTest::newRow("a list") << QVariant(QStringList{OtherDAW, OtherDAW});
}

// No DAW is installed, so only the word for none is left.
void TestMainWindow::theStoredDAW()
{
    QFETCH(QVariant, stored);
    if (stored.isValid()) {
        MainWindowRig::store("DAWName", stored);
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->getDAWList(), QStringList{OtherDAW});
    QCOMPARE(m_rig->window->getDAWName(), OtherDAW);
    QVERIFY(!m_rig->window->isBrandholmDAW());
    QVERIFY(!m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QVERIFY(m_rig->isFree());
    // Only a choice is written.
    QCOMPARE(MainWindowRig::stored("DAWName"), stored);
}

void TestMainWindow::theStoredDAWOfTwo_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("chosen");
    QTest::newRow("absent") << QVariant() << DawMachine::otherDaw();
    QTest::newRow("the first") << QVariant(DawMachine::otherDaw()) << DawMachine::otherDaw();
    QTest::newRow("the second") << QVariant(DawMachine::daw()) << DawMachine::daw();
    QTest::newRow("in another case")
        << QVariant(DawMachine::daw().toUpper()) << DawMachine::otherDaw();
    QTest::newRow("one that is not installed")
        << QVariant(QStringLiteral("Trevia 5")) << DawMachine::otherDaw();
    QTest::newRow("Other") << QVariant(OtherDAW) << OtherDAW;
}

void TestMainWindow::theStoredDAWOfTwo()
{
    QFETCH(const QVariant, stored);
    QFETCH(const QString, chosen);
    const DawMachine machine;
    machine.install(DawMachine::otherDaw());
    if (stored.isValid()) {
        MainWindowRig::store("DAWName", stored);
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->getDAWList(),
             (QStringList{OtherDAW, DawMachine::otherDaw(), DawMachine::daw()}));
    QCOMPARE(m_rig->window->getDAWName(), chosen);
    QCOMPARE(m_rig->panel<AnalyzeVSTi>() != nullptr, chosen != OtherDAW);
    QCOMPARE(m_rig->entry(MenuFileVSTiDatabase)->isEnabled(), chosen != OtherDAW);
    QCOMPARE(MainWindowRig::stored("DAWName"), stored);
    m_rig->window.reset();
}

void TestMainWindow::theStoredPort_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("devices");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("complains");
    const auto row = [](const char *name, const QVariant &stored, int devices, int index,
                        bool complains) {
        QTest::newRow(name) << stored << devices << index << complains;
    };
    row("absent, no instrument", {}, 0, 0, true);
    row("absent, an instrument", {}, 1, 1, false);
    row("absent, two", {}, 2, 1, false);
    row("not assigned, no instrument", PortNotAssigned, 0, 0, false);
    row("not assigned, an instrument", PortNotAssigned, 1, 0, false);
    row("known, it alone", DeviceName, 1, 1, false);
    row("the second of two", OtherDeviceName, 2, 2, false);
    row("unknown, another there", OtherDeviceName, 1, 1, false);
    row("unknown, none there", OtherDeviceName, 0, 0, true);
    row("empty, an instrument", QString(), 1, 1, false);
    row("a list, an instrument", QStringList{DeviceName, OtherDeviceName}, 1, 1, false);
}

void TestMainWindow::theStoredPort()
{
    QFETCH(QVariant, stored);
    QFETCH(int, devices);
    QFETCH(int, index);
    QFETCH(bool, complains);
    MainWindowRig::settings().remove(QStringLiteral("PortName"));
    if (stored.isValid()) {
        MainWindowRig::store("PortName", stored);
    }
    std::vector<std::unique_ptr<LoopbackInstrument>> instruments;
    QStringList names{PortNotAssigned};
    for (const QString &name : {DeviceName, OtherDeviceName}) {
        if (devices > static_cast<int>(instruments.size())) {
            instruments.push_back(std::make_unique<LoopbackInstrument>(InstrumentMemory(), name));
            names.append(name);
        }
    }
    m_rig->makeWindow(true);
    QCOMPARE(m_rig->window->getPortNameList(), names);
    QCOMPARE(m_rig->window->getPortIndex(), index);
    QCOMPARE(m_rig->panel<PortNotFound>() != nullptr, complains);
    // The start without a document goes on to a synchronisation, if there is a route for it.
    QCOMPARE(m_rig->panel<AutoSync>() != nullptr, index > 0);
    QCOMPARE(m_rig->window->isWindowLocked(), complains || index > 0);
    // A start chooses nothing on the user's behalf.
    QCOMPARE(MainWindowRig::stored("PortName"), stored);
    m_rig->window.reset();

    // With a document it waits.
    m_rig->makeWindow(false);
    QCOMPARE(m_rig->window->getPortIndex(), index);
    QVERIFY(m_rig->panel<AutoSync>() == nullptr);
    m_rig->window.reset();
    m_rig->api.reset();
}

void TestMainWindow::theStoredWorkingFolder_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("isUsed");
    QTest::newRow("absent") << QVariant() << false;
    QTest::newRow("a folder") << QVariant(QDir::tempPath()) << true;
    QTest::newRow("a file") << QVariant(QStringLiteral("/proc/self/stat")) << false;
    QTest::newRow("gone") << QVariant(QStringLiteral("/there/is/no/such/folder")) << false;
    QTest::newRow("empty") << QVariant(QString()) << false;
    QTest::newRow("a number") << QVariant(17) << false;
}

void TestMainWindow::theStoredWorkingFolder()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, isUsed);
    QTemporaryDir documents;
    MachineFolders folders;
    folders.documents = documents.path();
    setMachineFolders(folders);
    if (stored.isValid()) {
        MainWindowRig::store("WorkingFolder", stored);
    }
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->getWorkingFolder(), isUsed ? stored.toString() : documents.path());
    // Without documents it is the home folder.
    folders.documents.clear();
    setMachineFolders(folders);
    if (!isUsed) {
        QCOMPARE(m_rig->window->getWorkingFolder(), documentsFolder());
    }
}

void TestMainWindow::theWorkingFolderIsThatOfTheFile()
{
    m_rig->makeWindow();
    QTemporaryDir folder;
    m_rig->window->setWorkingFolder(folder.filePath(QStringLiteral("bank.Q7V")));
    QCOMPARE(MainWindowRig::stored("WorkingFolder").toString(), folder.path());
    QCOMPARE(m_rig->window->getWorkingFolder(), folder.path());
    // A folder that is not there changes nothing.
    m_rig->window->setWorkingFolder(QStringLiteral("/there/is/no/such/folder/bank.Q7V"));
    QCOMPARE(m_rig->window->getWorkingFolder(), folder.path());
    // What is stored is absolute.
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    QVERIFY(QDir().mkdir(QStringLiteral("below")));
    m_rig->window->setWorkingFolder(QStringLiteral("below/bank.Q7V"));
    QDir::setCurrent(before);
    QCOMPARE(m_rig->window->getWorkingFolder(), folder.filePath(QStringLiteral("below")));
}

void TestMainWindow::theDestructorWritesTheSettings()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    for (const char *key : {"WindowX", "WindowY", "WindowShrink", "WindowOnTop"}) {
        QVERIFY(!MainWindowRig::stored(key).isValid());
    }
    m_rig->window->move(222, 111);
    QTRY_COMPARE(m_rig->window->pos(), QPoint(222, 111));
    m_rig->window->controlWindowSize();
    m_rig->click(m_rig->inWindow<QWidget>("btnWindowStaysOnTop"));
    m_rig->window.reset();
    QCOMPARE(MainWindowRig::stored("WindowX").toInt(), 222);
    QCOMPARE(MainWindowRig::stored("WindowY").toInt(), 111);
    QCOMPARE(MainWindowRig::stored("WindowShrink").toString(), QStringLiteral("1"));
    QCOMPARE(MainWindowRig::stored("WindowOnTop").toString(), QStringLiteral("1"));
    m_rig->makeWindow();
    QCOMPARE(m_rig->window->pos(), QPoint(222, 111));
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowStaysOnTop")->isChecked());
}

void TestMainWindow::aChosenDAWIsWrittenAtOnce()
{
    const DawMachine machine;
    MainWindowRig::store("DAWName", OtherDAW);
    m_rig->makeWindow();
    m_rig->window->setDAWName(DawMachine::daw());
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), DawMachine::daw());
    QVERIFY(m_rig->window->isBrandholmDAW());
    m_rig->window->setDAWName(OtherDAW);
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), OtherDAW);
    QVERIFY(!m_rig->window->isBrandholmDAW());
    m_rig->window->setDAWName(QString());
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), QString());
    QVERIFY(!m_rig->window->isBrandholmDAW());
    m_rig->window.reset();
}

// --- Menus ---------------------------------------------------------------------------------------

namespace
{

struct Entry
{
    const char *menu;
    const char *text; // nullptr: a separator
    const char *key;
};
constexpr Entry Entries[] = {
    {"&File", "&New", "Ctrl+N"},
    {"&File", "&Open...", "Ctrl+O"},
    {"&File", "&Save", "Ctrl+S"},
    {"&File", "Save &As...", ""},
    {"&File", "&Import Template...", "Ctrl+I"},
    {"&File", nullptr, ""},
    {"&File", "Set&up", ""},
    {"&File", "&VSTi Database", ""},
    {"&VSTi Database", "&Full Scan", ""},
    {"&VSTi Database", "&Update", ""},
    {"&Edit", "&Copy", "Ctrl+C"},
    {"&Edit", "&Paste", "Ctrl+V"},
    {"&Edit", nullptr, ""},
    {"&Edit", "Initialize Template", ""},
    {"&Edit", "Reset to Stored Data", ""},
    {"&Edit", "Reset to Original Data at Startup", ""},
    {"&Edit", "Reset to Factory Settings", ""},
    {"&Help", "&Manual", "F1"},
    {"&Help", "&About", ""},
};

} // namespace

void TestMainWindow::everyEntry_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QString>("key");
    for (const Entry &entry : Entries) {
        if (entry.text != nullptr) {
            QTest::newRow(entry.text)
                << QString::fromLatin1(entry.menu) << QString::fromLatin1(entry.key);
        }
    }
}

void TestMainWindow::everyEntry()
{
    QFETCH(QString, menu);
    QFETCH(QString, key);
    m_rig->makeWindow();
    const QAction *action = m_rig->entry(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(action != nullptr);
    QVERIFY(m_rig->menu(menu)->actions().contains(const_cast<QAction *>(action)));
    QCOMPARE(action->shortcut().toString(QKeySequence::PortableText), key);
    QVERIFY(!action->isCheckable());
    QVERIFY(action->isVisible());
}

void TestMainWindow::theOrderOfTheEntries()
{
    m_rig->makeWindow();
    QHash<QString, QStringList> expected;
    for (const Entry &entry : Entries) {
        expected[QString::fromLatin1(entry.menu)].append(QString::fromLatin1(entry.text));
    }
    for (auto menu = expected.cbegin(); menu != expected.cend(); ++menu) {
        QStringList texts;
        const QList<QAction *> actions = m_rig->menu(menu.key())->actions();
        for (const QAction *action : actions) {
            texts.append(action->isSeparator() ? QString() : action->text());
        }
        QCOMPARE(texts, menu.value());
    }
}

void TestMainWindow::importTemplateHasItsKeyInTheLibraryAlone()
{
    m_rig->makeWindow();
    QVERIFY(m_rig->showWindow());
    QVERIFY(!m_rig->entry(MenuFileImportTemplate)->isEnabled());
    QSignalSpy triggered(m_rig->entry(MenuFileImportTemplate), &QAction::triggered);
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(triggered.count(), 0);
    m_rig->window->viewLibrary();
    FileDialogAnswer cancel{QString()};
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_I, Qt::ControlModifier);
    QCOMPARE(triggered.count(), 1);
    QVERIFY(cancel.wasAsked());
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
