// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"
#include "app/XWatch.h"
#include "cli/LoopbackInstrument.h"
#include "protocol/AutoSync.h"
#include "views/About.h"
#include "views/Answers.h"
#include "views/PortNotFound.h"
#include "vsti/DawMachine.h"
#include "widgets/RealInput.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QListWidget>

// The window in its user's hands: its two sizes, dragging, staying on top, its boxes, its keys, and
// which of its menus' entries are on. The pointer is the X server's own, and what the window
// manager made of the window is read back from there.

namespace
{

constexpr QSize LargeSize(470, 465);
constexpr QSize SmallSize(470, 324);
constexpr QRect LargeButton(437, 455, 19, 10);
constexpr QRect SmallButton(437, 314, 19, 10);
// Nothing but the window's own ground lies there.
constexpr QPoint Title(300, 12);

} // namespace

class TestMainWindowHandling : public QObject
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
        QGuiApplication::clipboard()->clear();
        m_rig = std::make_unique<MainWindowRig>();
        QVERIFY(m_rig->openWindow());
    }
    void cleanup()
    {
        m_input.releaseLeft();
        m_rig.reset();
    }

    // --- Size
    void theSizeRule_data();
    void theSizeRule();
    void aPanelOverTheSmallWindowGrowsItAndItsEndShrinksItAgain();
    void theViewsChangeTheSize();
    void theWindowManagerCannotResizeIt();

    // --- Dragging
    void theWindowFollowsThePointer();
    void aWindowDraggedAboveTheAvailableScreenIsBroughtBack();
    void aPanelThatComesDuringADragLeavesNothingHeld();

    // --- Staying on top
    void staysOnTopThroughTheWindowManager();
    void staysOnTopFromTheStart();
    void staysOnTopBeyondMinimising();

    // --- Boxes
    void everyBoxSuspendsStayingOnTop_data();
    void everyBoxSuspendsStayingOnTop();
    void everyFileDialogSuspendsStayingOnTop_data();
    void everyFileDialogSuspendsStayingOnTop();
    void aBoxWithoutStayingOnTop();
    void stayingOnTopSetAgainDuringABox();

    // --- Keys
    void tabAndBacktabDoNothingAnywhere_data();
    void tabAndBacktabDoNothingAnywhere();
    void tabAndBacktabDoNothingInMenus_data();
    void tabAndBacktabDoNothingInMenus();
    void tabAndBacktabDoNothingInContextMenus_data();
    void tabAndBacktabDoNothingInContextMenus();
    void tabAndBacktabDoNothingInPopups_data();
    void tabAndBacktabDoNothingInPopups();
    void keysOfTheMenusAreOffWhileAPanelStands();

    // --- Views
    void theLibraryStartsFromTheEditBuffer();
    void backInTheTemplateViewTheKnobHasTheFocus();
    void storeAsksUnlessAPanelStands();
    void menusStayUsableUnderAReturnedLibrary();

    // --- Rules of the menus
    void theRules_data();
    void theRules();
    void resetStoredByFlags_data();
    void resetStoredByFlags();
    void restoreNeedsBothBanks();
    void saveAsIsOffAt128BanksAndSaveIsNot();
    void theDatabaseMenuIsOffWithoutADAW();
    void whatIsOffDoesNothingWhenCalled();

private:
    // A drag by the window's ground, so that the window's corner would come to the place. The
    // window manager holds the pointer back until it has seen a press, and loses what is done
    // meanwhile; no hand is that fast.
    void drag(const QPoint &grip, const QPoint &corner)
    {
        m_input.moveTo(m_rig->window->pos() + grip);
        m_input.pressLeft();
        QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::LeftButton);
        m_input.moveTo(corner + grip);
    }
    bool settled(const QPoint &place) const
    {
        return QTest::qWaitFor([this, place] { return m_rig->window->pos() == place; }, 5000);
    }

    std::unique_ptr<MainWindowRig> m_rig;
    RealInput m_input;
};

// --- Size ----------------------------------------------------------------------------------------

void TestMainWindowHandling::theSizeRule_data()
{
    QTest::addColumn<bool>("locked");
    QTest::addColumn<bool>("library");
    QTest::addColumn<bool>("shrink");
    QTest::addColumn<bool>("small");
    QTest::addColumn<bool>("button");
    for (const bool locked : {false, true}) {
        for (const bool library : {false, true}) {
            for (const bool shrink : {false, true}) {
                const bool free = !locked && !library;
                QTest::addRow("%s, %s, %s", locked ? "locked" : "free",
                              library ? "library" : "template", shrink ? "small" : "large")
                    << locked << library << shrink << (free && shrink) << free;
            }
        }
    }
}

void TestMainWindowHandling::theSizeRule()
{
    QFETCH(bool, locked);
    QFETCH(bool, library);
    QFETCH(bool, shrink);
    QFETCH(bool, small);
    QFETCH(bool, button);
    if (shrink) {
        m_rig->click(m_rig->sizeButton());
    }
    if (library) {
        m_rig->window->viewLibrary();
    }
    if (locked) {
        m_rig->window->helpAbout();
        QVERIFY(m_rig->window->isWindowLocked());
    }
    m_rig->window->updateWindowSize();
    QCOMPARE(m_rig->window->size(), small ? SmallSize : LargeSize);
    QCOMPARE(m_rig->stack()->geometry(), QRect(14, 48, 442, small ? 261 : 402));
    QCOMPARE(m_rig->window->backgroundPixmap().cacheKey(),
             artwork(small ? ":/images/trn_bak_s.png" : ":/images/trn_bak_1.png").cacheKey());
    QCOMPARE(m_rig->sizeButton()->isVisible(), button);
    QCOMPARE(m_rig->sizeButton()->geometry(), small ? SmallButton : LargeButton);
    QCOMPARE(m_rig->sizeButton()->category(), small ? 0 : 1);
    // And that is what is painted.
    const QImage shown = m_rig->window->grab().toImage();
    const QImage ground = m_rig->window->backgroundPixmap().toImage();
    QCOMPARE(shown.size(), small ? SmallSize : LargeSize);
    const QPoint corner(2, (small ? SmallSize : LargeSize).height() - 3);
    QCOMPARE(shown.pixelColor(corner), ground.pixelColor(corner));
}

void TestMainWindowHandling::aPanelOverTheSmallWindowGrowsItAndItsEndShrinksItAgain()
{
    m_rig->click(m_rig->sizeButton());
    QCOMPARE(m_rig->window->size(), SmallSize);
    m_rig->window->helpAbout();
    QCOMPARE(m_rig->window->size(), LargeSize);
    QVERIFY(!m_rig->sizeButton()->isVisible());
    QVERIFY(m_rig->closePanel<About>());
    QCOMPARE(m_rig->window->size(), SmallSize);
    QVERIFY(m_rig->sizeButton()->isVisible());
}

void TestMainWindowHandling::theViewsChangeTheSize()
{
    m_rig->click(m_rig->sizeButton());
    m_rig->window->viewLibrary();
    QCOMPARE(m_rig->window->size(), LargeSize);
    m_rig->window->viewTemplate();
    QCOMPARE(m_rig->window->size(), SmallSize);
    m_rig->click(m_rig->sizeButton());
    // The window manager's answers to the sizes before may still be under way.
    QTRY_COMPARE(m_rig->window->size(), LargeSize);
}

void TestMainWindowHandling::theWindowManagerCannotResizeIt()
{
    for (const QSize &size : {LargeSize, SmallSize}) {
        QCOMPARE(m_rig->window->minimumSize(), size);
        QCOMPARE(m_rig->window->maximumSize(), size);
        m_rig->window->controlWindowSize();
    }
}

// --- Dragging ------------------------------------------------------------------------------------

void TestMainWindowHandling::theWindowFollowsThePointer()
{
    const QPoint start = m_rig->window->pos();
    drag(Title, start);
    for (const QPoint &step : {QPoint(1, 0), QPoint(60, 35), QPoint(-40, 70), QPoint(10, 10)}) {
        m_input.moveTo(start + step + Title);
        QVERIFY(settled(start + step));
    }
    m_input.releaseLeft();
    QVERIFY(settled(start + QPoint(10, 10)));
    // Let go, it stays.
    m_input.moveTo(start + QPoint(300, 300));
    m_input.moveTo(start + QPoint(310, 300));
    QTest::qWait(50); // for nothing to happen
    QCOMPARE(m_rig->window->pos(), start + QPoint(10, 10));
}

// The window manager keeps a margin of the screen to itself, and the title strip out of it.
void TestMainWindowHandling::aWindowDraggedAboveTheAvailableScreenIsBroughtBack()
{
    const XWatch watch(m_rig->window->winId());
    const QRect available = m_rig->window->screen()->availableGeometry();
    QVERIFY(available.top() > 5);
    const QPoint grip(5, 400);
    drag(grip, m_rig->window->pos());
    m_input.moveTo(QPoint(400, 2) + grip);
    QTRY_COMPARE(watch.position().x(), 400);
    m_input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    QTRY_COMPARE(watch.position(), QPoint(400, available.top()));
    QTRY_COMPARE(m_rig->window->pos(), QPoint(400, available.top()));
}

void TestMainWindowHandling::aPanelThatComesDuringADragLeavesNothingHeld()
{
    const QPoint start = m_rig->window->pos();
    drag(Title, start + QPoint(30, 30));
    QVERIFY(settled(start + QPoint(30, 30)));
    m_rig->window->portNotFound();
    m_input.moveTo(start + Title + QPoint(80, 30));
    m_input.releaseLeft();
    QVERIFY(QWidget::mouseGrabber() == nullptr);
    // The panel works at once.
    auto *ok = m_rig->inPanel<COnOffButton>("btnOK");
    m_input.moveTo(ok->mapToGlobal(ok->rect().center()));
    m_input.pressLeft();
    m_input.releaseLeft();
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
}

// --- Staying on top ------------------------------------------------------------------------------

void TestMainWindowHandling::staysOnTopThroughTheWindowManager()
{
    const XWatch watch(m_rig->window->winId());
    const WId id = m_rig->window->winId();
    const QPoint place = m_rig->window->pos();
    auto *button = m_rig->inWindow<COnOffButton>("btnWindowStaysOnTop");
    QVERIFY(!watch.isAbove());
    for (int round = 0; round < 3; ++round) {
        m_rig->click(button);
        QVERIFY(button->isChecked());
        QTRY_VERIFY(watch.isAbove());
        QVERIFY(m_rig->window->hasFocus());
        m_rig->click(button);
        QTRY_VERIFY(!watch.isAbove());
        QVERIFY(m_rig->window->hasFocus());
    }
    QCOMPARE(watch.takeMappings(), 0);
    QCOMPARE(m_rig->window->winId(), id);
    QCOMPARE(m_rig->window->pos(), place);
    QVERIFY(m_rig->window->isActiveWindow());
}

void TestMainWindowHandling::staysOnTopFromTheStart()
{
    m_rig->window.reset();
    MainWindowRig::store("WindowOnTop", 1);
    m_rig->makeWindow();
    m_rig->window->setVisible(true);
    m_rig->window->updateWindowStaysOnTop();
    const XWatch watch(m_rig->window->winId());
    QTRY_VERIFY(watch.isAbove());
    // And not because of the stored value alone.
    m_rig->window->staysOnTop(false);
    QTRY_VERIFY(!watch.isAbove());
    m_rig->window->updateWindowStaysOnTop();
    QVERIFY(QTest::qWaitForWindowActive(m_rig->window.get()));
    QVERIFY(!watch.isAbove());
}

void TestMainWindowHandling::staysOnTopBeyondMinimising()
{
    const XWatch watch(m_rig->window->winId());
    m_rig->window->staysOnTop(true);
    QTRY_VERIFY(watch.isAbove());
    m_rig->window->showMinimized();
    QTRY_VERIFY(watch.hasState("_NET_WM_STATE_HIDDEN"));
    // The watch sees the window manager's work before Qt has heard of it, and a state that Qt still
    // takes for the present one is not asked for again: the focus moves last, and tells both ways.
    QTRY_VERIFY(!m_rig->window->isActiveWindow());
    m_rig->window->showNormal();
    QTRY_VERIFY(!watch.hasState("_NET_WM_STATE_HIDDEN") && watch.isMapped());
    QVERIFY(QTest::qWaitForWindowActive(m_rig->window.get()));
    QVERIFY(watch.isAbove());
    // The level can be changed while the window is not to be seen.
    m_rig->window->showMinimized();
    QTRY_VERIFY(watch.hasState("_NET_WM_STATE_HIDDEN"));
    m_rig->window->staysOnTop(false);
    QTRY_VERIFY(!watch.isAbove());
    m_rig->window->showNormal();
    QTRY_VERIFY(watch.isMapped());
    QVERIFY(!watch.isAbove());
}

// --- Boxes ---------------------------------------------------------------------------------------

void TestMainWindowHandling::everyBoxSuspendsStayingOnTop_data()
{
    QTest::addColumn<int>("icon");
    QTest::newRow("critical") << static_cast<int>(QMessageBox::Critical);
    QTest::newRow("warning") << static_cast<int>(QMessageBox::Warning);
    QTest::newRow("question") << static_cast<int>(QMessageBox::Question);
}

void TestMainWindowHandling::everyBoxSuspendsStayingOnTop()
{
    QFETCH(int, icon);
    const XWatch watch(m_rig->window->winId());
    const auto *button = m_rig->inWindow<COnOffButton>("btnWindowStaysOnTop");
    m_rig->click(button);
    QTRY_VERIFY(watch.isAbove());
    watch.takeMappings();
    bool wentDown = false;
    MessageBoxAnswer answer(QMessageBox::No, [&](QMessageBox *box) {
        QCOMPARE(static_cast<int>(box->icon()), icon);
        QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(box->defaultButton(), box->button(QMessageBox::Yes));
        QCOMPARE(box->parentWidget(), nullptr);
        wentDown = QTest::qWaitFor([&watch] { return !watch.isAbove(); });
        // That is the box's matter, and not a choice of the user's.
        QVERIFY(button->isChecked());
    });
    const auto buttons = QMessageBox::Yes | QMessageBox::No;
    const auto ask = [&]() -> QMessageBox::StandardButton {
        const QString text = QStringLiteral("What was asked");
        const QString title = QStringLiteral("The title");
        switch (icon) {
        case QMessageBox::Critical:
            return m_rig->window->critical(text, title, buttons, QMessageBox::Yes);
        case QMessageBox::Warning:
            return m_rig->window->warning(text, title, buttons, QMessageBox::Yes);
        default:
            return m_rig->window->question(text, title, buttons, QMessageBox::Yes);
        }
    };
    QCOMPARE(ask(), QMessageBox::No);
    QCOMPARE(answer.asked(), QStringList{QStringLiteral("The title|What was asked")});
    QVERIFY(wentDown);
    QTRY_VERIFY(watch.isAbove());
    QTRY_VERIFY(m_rig->window->hasFocus());
    QVERIFY(button->isChecked());
    QCOMPARE(watch.takeMappings(), 0);
}

void TestMainWindowHandling::everyFileDialogSuspendsStayingOnTop_data()
{
    QTest::addColumn<bool>("imports");
    QTest::newRow("open") << false;
    QTest::newRow("import") << true;
}

void TestMainWindowHandling::everyFileDialogSuspendsStayingOnTop()
{
    QFETCH(bool, imports);
    const XWatch watch(m_rig->window->winId());
    m_rig->click(m_rig->inWindow<COnOffButton>("btnWindowStaysOnTop"));
    QTRY_VERIFY(watch.isAbove());
    if (imports) {
        m_rig->window->viewLibrary();
    }
    Answers answers;
    bool wentDown = false;
    answers.expectFileDialog(QString(), [&](const QFileDialog *) {
        wentDown = QTest::qWaitFor([&watch] { return !watch.isAbove(); });
    });
    if (imports) {
        m_rig->window->fileImportTemplate();
    } else {
        m_rig->window->fileOpen();
    }
    QVERIFY(answers.allGiven());
    QVERIFY(wentDown);
    QTRY_VERIFY(watch.isAbove());
}

void TestMainWindowHandling::aBoxWithoutStayingOnTop()
{
    const XWatch watch(m_rig->window->winId());
    MessageBoxAnswer answer;
    QCOMPARE(m_rig->window->warning(QStringLiteral("a"), QStringLiteral("b")), QMessageBox::Ok);
    QVERIFY(QTest::qWaitForWindowActive(m_rig->window.get()));
    QVERIFY(!watch.isAbove());
}

void TestMainWindowHandling::stayingOnTopSetAgainDuringABox()
{
    const XWatch watch(m_rig->window->winId());
    m_rig->window->staysOnTop(true);
    QTRY_VERIFY(watch.isAbove());
    MessageBoxAnswer answer(QMessageBox::Ok,
                            [this](const QMessageBox *) { m_rig->window->staysOnTop(true); });
    m_rig->window->critical(QStringLiteral("a"), QStringLiteral("b"));
    QTRY_VERIFY(watch.isAbove());
    m_rig->window.reset();
    QCOMPARE(MainWindowRig::stored("WindowOnTop").toInt(), 1);
}

// --- Keys ----------------------------------------------------------------------------------------

void TestMainWindowHandling::tabAndBacktabDoNothingAnywhere_data()
{
    QTest::addColumn<int>("where");
    QTest::newRow("template view") << 0;
    QTest::newRow("library") << 1;
    QTest::newRow("a panel") << 2;
    QTest::newRow("synchronisation") << 3;
}

void TestMainWindowHandling::tabAndBacktabDoNothingAnywhere()
{
    QFETCH(int, where);
    std::unique_ptr<LoopbackInstrument> instrument;
    if (where == 1) {
        m_rig->window->viewLibrary();
    } else if (where == 2) {
        m_rig->window->editResetFactory();
    } else if (where == 3) {
        instrument = std::make_unique<LoopbackInstrument>();
        m_rig->window->updatePortInfoList();
        m_rig->window->setPortIndex(1);
        m_rig->window->autoSync(false, true);
        QVERIFY(m_rig->panel<AutoSync>() != nullptr);
    }
    // Every widget that can have the focus is given it, and keeps it.
    const QList<QWidget *> all = m_rig->window->findChildren<QWidget *>();
    int tried = 0;
    for (QWidget *widget : all) {
        if (!widget->isVisible() || widget->isWindow() || widget->focusPolicy() == Qt::NoFocus) {
            continue;
        }
        widget->setFocus();
        QWidget *focused = QApplication::focusWidget();
        if (focused == nullptr) {
            continue;
        }
        ++tried;
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QKeyEvent event(type, key,
                                key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
                QApplication::sendEvent(focused, &event);
            }
            QTest::keyClick(m_rig->window->windowHandle(), key);
            QVERIFY2(QApplication::focusWidget() == focused, qPrintable(focused->objectName()));
        }
    }
    QVERIFY(tried > 0);
    m_rig->window.reset();
    m_rig->api.reset();
}

void TestMainWindowHandling::tabAndBacktabDoNothingInMenus_data()
{
    QTest::addColumn<QString>("title");
    QTest::newRow("menu") << MenuFileMenu;
    QTest::newRow("submenu") << MenuFileVSTiDatabase;
    QTest::newRow("list of ports") << QString();
}

void TestMainWindowHandling::tabAndBacktabDoNothingInMenus()
{
    QFETCH(QString, title);
    const LoopbackInstrument instrument;
    QMenu *menu = m_rig->menu(title);
    if (title.isEmpty()) {
        m_rig->window->updatePortInfoList();
        m_rig->window->setPortIndex(1);
        m_rig->window->autoSync(false, true);
        m_rig->click(m_rig->inPanel("btnMidiPort"));
        menu = m_rig->anyPanel()->findChild<QMenu *>();
    } else {
        menu->popup(m_rig->window->mapToGlobal(QPoint(80, 20)));
    }
    QVERIFY(menu != nullptr);
    QVERIFY(QTest::qWaitForWindowExposed(menu));
    QAction *const first = menu->actions().first();
    menu->setActiveAction(first);
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        QTest::keyClick(menu, key);
        QCOMPARE(menu->activeAction(), first);
    }
    menu->close();
    m_rig->window.reset();
    m_rig->api.reset();
}

void TestMainWindowHandling::tabAndBacktabDoNothingInContextMenus_data()
{
    QTest::addColumn<bool>("library");
    QTest::addColumn<QString>("name");
    QTest::newRow("knob") << false << QStringLiteral("btnKnobB2");
    QTest::newRow("template") << true << QStringLiteral("listTemplate");
    QTest::newRow("name of the template") << false << QStringLiteral("editTemplateName");
    QTest::newRow("name of the knob") << false << QStringLiteral("editDisplayName");
}

void TestMainWindowHandling::tabAndBacktabDoNothingInContextMenus()
{
    QFETCH(bool, library);
    QFETCH(QString, name);
    if (library) {
        m_rig->window->viewLibrary();
    }
    auto *widget = m_rig->window->findChild<QWidget *>(name);
    QVERIFY(widget != nullptr && widget->isVisible());
    // The menu runs an event loop of its own.
    bool came = false;
    QStringList moved;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &poll, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (menu == nullptr) {
            return;
        }
        poll.stop();
        came = true;
        for (QAction *action : menu->actions()) {
            if (!action->isEnabled() || action->isSeparator()) {
                continue;
            }
            menu->setActiveAction(action);
            for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
                QTest::keyClick(menu, key);
                if (menu->activeAction() != action) {
                    moved.append(action->text());
                }
            }
        }
        menu->close();
    });
    poll.start(5);
    const QPoint centre = widget->rect().center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, centre, widget->mapToGlobal(centre));
    QCoreApplication::sendEvent(widget, &event);
    QVERIFY(came);
    QCOMPARE(moved, QStringList());
}

void TestMainWindowHandling::tabAndBacktabDoNothingInPopups_data()
{
    QTest::addColumn<QString>("button");
    QTest::newRow("templates") << QStringLiteral("btnTemplate");
    QTest::newRow("control changes") << QStringLiteral("btnCCNumberAndDisplayName");
}

void TestMainWindowHandling::tabAndBacktabDoNothingInPopups()
{
    QFETCH(QString, button);
    auto *opener = m_rig->window->findChild<QWidget *>(button);
    bool stays = false;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &poll, [&] {
        const QPointer<QWidget> popup = QApplication::activePopupWidget();
        if (popup == nullptr) {
            return;
        }
        poll.stop();
        auto *view = popup->findChild<QListWidget *>();
        const int row = view->currentRow();
        const QPointer<QWidget> focused = QApplication::focusWidget();
        for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
            QTest::keyClick(popup->windowHandle(), key);
        }
        stays = popup != nullptr && popup->isVisible() && view->currentRow() == row &&
                focused == view && QApplication::focusWidget() == view;
        if (popup != nullptr) {
            popup->close();
        }
    });
    poll.start(5);
    m_rig->click(opener);
    QTRY_VERIFY(stays);
}

void TestMainWindowHandling::keysOfTheMenusAreOffWhileAPanelStands()
{
    QSignalSpy made(m_rig->entry(MenuFileNew), &QAction::triggered);
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(made.count(), 1);
    m_rig->window->helpAbout();
    QVERIFY(!m_rig->menuBar()->isEnabled());
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(made.count(), 1);
    QVERIFY(m_rig->closePanel<About>());
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(made.count(), 2);
}

// --- Views ---------------------------------------------------------------------------------------

void TestMainWindowHandling::theLibraryStartsFromTheEditBuffer()
{
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 3, ParamAddress::TemplateName, -1),
                         QStringLiteral("Edited"));
    m_rig->window->viewLibrary();
    QVERIFY(m_rig->showsLibrary());
    QCOMPARE(
        m_rig->api->getParamQString(ParamAddress(5, 3, ParamAddress::TemplateName, -1)).trimmed(),
        QStringLiteral("Edited"));
    QTRY_VERIFY(m_rig->inWindow<QWidget>("listTemplate")->hasFocus());
    // Once there, a second call copies nothing anew.
    m_rig->api->setParam(ParamAddress(5, 3, ParamAddress::TemplateName, -1),
                         QStringLiteral("Working copy"));
    m_rig->window->viewLibrary();
    QCOMPARE(
        m_rig->api->getParamQString(ParamAddress(5, 3, ParamAddress::TemplateName, -1)).trimmed(),
        QStringLiteral("Working copy"));
}

void TestMainWindowHandling::backInTheTemplateViewTheKnobHasTheFocus()
{
    m_rig->window->viewLibrary();
    m_rig->window->viewTemplate();
    QVERIFY(!m_rig->showsLibrary());
    QWidget *focused = QApplication::focusWidget();
    QVERIFY(focused != nullptr && m_rig->templateView()->isAncestorOf(focused));
}

void TestMainWindowHandling::storeAsksUnlessAPanelStands()
{
    m_rig->window->viewStore();
    EditorOverlap *panel = m_rig->anyPanel();
    QVERIFY(panel != nullptr);
    QCOMPARE(panel->objectName(), QStringLiteral("StoreConfirm"));
    QCOMPARE(panel->pos(), QPoint(14, 31));
    QVERIFY(m_rig->closePanel<EditorOverlap>());
    m_rig->window->helpAbout();
    m_rig->window->viewStore();
    QCOMPARE(m_rig->anyPanel()->objectName(), QStringLiteral("About"));
    QCOMPARE(m_rig->window->findChildren<EditorOverlap *>().size(), 1);
}

void TestMainWindowHandling::menusStayUsableUnderAReturnedLibrary()
{
    m_rig->window->viewLibrary();
    m_rig->window->helpAbout();
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(m_rig->isFree());
    // The library's own keys are its again.
    const QList<QAction *> actions = m_rig->libraryView()->actions();
    QVERIFY(!actions.isEmpty());
    for (const QAction *action : actions) {
        QVERIFY2(action->isEnabled(), qPrintable(action->shortcut().toString()));
    }
}

// --- Rules of the menus --------------------------------------------------------------------------

void TestMainWindowHandling::theRules_data()
{
    QTest::addColumn<bool>("inTemplate");
    QTest::addColumn<bool>("inLibrary");
    QTest::addColumn<bool>("needsDAW");
    const auto row = [](const QString &text, bool inTemplate, bool inLibrary,
                        bool needsDAW = false) {
        QTest::newRow(qPrintable(text)) << inTemplate << inLibrary << needsDAW;
    };
    row(MenuFileNew, true, false);
    row(MenuFileOpen, true, false);
    row(MenuFileSetup, true, false);
    row(MenuFileSave, true, false);
    row(MenuFileSaveAs, true, false);
    row(MenuFileVSTiDatabase, true, false, true);
    row(MenuFileImportTemplate, false, true);
    row(MenuEditCopy, true, true);
    row(MenuEditInitialize, true, true);
    row(MenuEditResetStored, true, true);
    row(MenuEditResetFactory, true, true);
    row(MenuEditRestoreHW, false, false);
    row(MenuHelpManual, true, true);
    row(MenuHelpAbout, true, true);
    row(MenuEditPaste, false, false);
}

void TestMainWindowHandling::theRules()
{
    QFETCH(bool, inTemplate);
    QFETCH(bool, inLibrary);
    QFETCH(bool, needsDAW);
    const DawMachine machine;
    m_rig.reset();
    m_rig = std::make_unique<MainWindowRig>();
    MainWindowRig::store("DAWName", DawMachine::daw());
    QVERIFY(m_rig->openWindow());
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->anyPanel() == nullptr, 60000);
    const QAction *action = m_rig->entry(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(action != nullptr);
    for (int round = 0; round < 2; ++round) {
        m_rig->window->viewTemplate();
        QCOMPARE(action->isEnabled(), inTemplate);
        m_rig->window->viewLibrary();
        QCOMPARE(action->isEnabled(), inLibrary);
    }
    m_rig->window->viewTemplate();
    m_rig->window->setDAWName(OtherDAW);
    QCOMPARE(action->isEnabled(), inTemplate && !needsDAW);
    m_rig.reset();
}

void TestMainWindowHandling::resetStoredByFlags_data()
{
    QTest::addColumn<int>("online");
    QTest::addColumn<int>("bankEdit");
    QTest::addColumn<bool>("isOn");
    QTest::newRow("offline") << 0 << 0 << true;
    QTest::newRow("offline, edited") << 0 << 1 << true;
    QTest::newRow("online") << 1 << 0 << false;
    QTest::newRow("online, edited") << 1 << 1 << true;
}

void TestMainWindowHandling::resetStoredByFlags()
{
    QFETCH(int, online);
    QFETCH(int, bankEdit);
    QFETCH(bool, isOn);
    // By way of the other state, so that every value is a change.
    m_rig->setFlag(ParamAddress::IsOnline, 1 - online);
    m_rig->setFlag(ParamAddress::BankEditFlag, 1 - bankEdit);
    m_rig->setFlag(ParamAddress::IsOnline, online);
    m_rig->setFlag(ParamAddress::BankEditFlag, bankEdit);
    QTRY_COMPARE(m_rig->onlineLamp()->isVisible(), online == 1);
    QTRY_COMPARE(m_rig->entry(MenuEditResetStored)->isEnabled(), isOn);
    QCOMPARE(m_rig->window->canResetStored(), isOn);
    QCOMPARE(m_rig->api->isWatchPortActivate(), online == 0);
    m_rig->window->editResetStored();
    QCOMPARE(m_rig->anyPanel() != nullptr, isOn);
}

void TestMainWindowHandling::restoreNeedsBothBanks()
{
    const auto isOn = [this] {
        m_rig->window->updatesMenuEnabled();
        return m_rig->entry(MenuEditRestoreHW)->isEnabled();
    };
    QVERIFY(!isOn());
    m_rig->api->setBankAvailableFlag(1, Bank::HardwareStored);
    QVERIFY(!isOn());
    m_rig->window->editRestoreHW();
    QVERIFY(m_rig->anyPanel() == nullptr);
    m_rig->api->setBankAvailableFlag(0, Bank::HardwareStored);
    m_rig->api->setBankAvailableFlag(1, Bank::HardwareEditBuffer);
    QVERIFY(!isOn());
    m_rig->api->setBankAvailableFlag(1, Bank::HardwareStored);
    QVERIFY(isOn());
    m_rig->window->editRestoreHW();
    QCOMPARE(m_rig->anyPanel()->objectName(), QStringLiteral("RestoreHWConfirm"));
    // The rule is asked again when the answer comes.
    m_rig->api->setBankAvailableFlag(0, Bank::HardwareStored);
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
}

void TestMainWindowHandling::saveAsIsOffAt128BanksAndSaveIsNot()
{
    while (m_rig->api->getQuantityOfBank() < 127) {
        m_rig->api->createBank();
    }
    m_rig->window->updatesMenuEnabled();
    QVERIFY(m_rig->entry(MenuFileSaveAs)->isEnabled());
    m_rig->api->createBank();
    m_rig->window->updatesMenuEnabled();
    QVERIFY(!m_rig->entry(MenuFileSaveAs)->isEnabled());
    QVERIFY(m_rig->entry(MenuFileSave)->isEnabled());
    QVERIFY(!m_rig->window->fileSaveBankAs());
    m_rig->window->viewLibrary();
    QVERIFY(!m_rig->window->canImport());
    QVERIFY(!m_rig->window->canNewBank());
    QVERIFY(m_rig->window->canImportTemplate());
}

void TestMainWindowHandling::theDatabaseMenuIsOffWithoutADAW()
{
    for (const QString &daw : {OtherDAW, QString()}) {
        m_rig->window->setDAWName(daw);
        m_rig->window->updatesMenuEnabled();
        QVERIFY(!m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
        m_rig->window->fileVSTiDatabaseFullScan();
        m_rig->window->fileVSTiDatabaseUpdate();
        QVERIFY(m_rig->anyPanel() == nullptr);
        QVERIFY(m_rig->isFree());
    }
}

void TestMainWindowHandling::whatIsOffDoesNothingWhenCalled()
{
    m_rig->window->viewLibrary();
    m_rig->setFlag(ParamAddress::FileEditFlag, 1);
    FileDialogAnswer dialogs{QString()};
    m_rig->window->fileNew();
    QVERIFY(!m_rig->window->selectFileOpen());
    QVERIFY(!m_rig->window->fileOpen(QStringLiteral("/proc/self/stat")));
    QVERIFY(!m_rig->window->fileSaveBank());
    QVERIFY(!m_rig->window->fileSaveBankAs());
    QVERIFY(!m_rig->window->canDeleteBank());
    m_rig->window->editPaste();
    m_rig->window->viewTemplate();
    m_rig->window->fileImportTemplate();
    m_rig->window->fileImport();
    QVERIFY(!m_rig->window->canNewBank());
    QVERIFY(!dialogs.wasAsked());
    QVERIFY(m_rig->anyPanel() == nullptr);
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
    // Copy fills the clipboard with a knob, and Paste is on.
    m_rig->window->editCopy();
    QTRY_VERIFY(m_rig->entry(MenuEditPaste)->isEnabled());
}

QTEST_MAIN(TestMainWindowHandling)
#include "tst_mainwindowhandling.moc"
