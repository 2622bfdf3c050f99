// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/Setup.h"

#include "app/MainWindowRig.h"
#include "cli/LoopbackInstrument.h"
#include "protocol/AutoSync.h"
#include "views/About.h"
#include "views/FormCheck.h"
#include "views/PortOpenError.h"
#include "views/PulldownMenu.h"
#include "vsti/AnalyzeVSTi.h"
#include "vsti/DawMachine.h"

#include <QtGui/QScreen>

// The panel for port and DAW in the real window, with real mouse and keys, on a machine with two
// DAWs and two instruments.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
const QString OtherDeviceName = QStringLiteral("Corvan TARN/TERN X");
constexpr int WaitMs = 60000;

} // namespace

class TestSetup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void theForm();
    void theFieldsShowWhatIsInUse();
    void anIndexBeyondTheListCountsAsNoPort();
    void thePortInUseIsShownWhereverItStands();
    void anotherPortInThePlaceOfTheOneInUseIsAnother();
    void aPortThatIsGoneIsNotTheOneInItsPlace();
    void aSignOfAnInstrumentThatIsNotYetBackWaits();
    void aSignOfLifeLeavesThePanelsListAlone();
    void withAPanelInTheWindowItDoesNotOpen();

    void leavingChangesNothing_data();
    void leavingChangesNothing();
    void okStoresTheValuesAgainAndStartsNothing_data();
    void okStoresTheValuesAgainAndStartsNothing();
    void aChosenPortIsOpenedByOk();
    void noPortEndsTheRoute();
    void aChosenDAWIsScanned();
    void theDAWThatIsNoneIsInForceAtOnce();
    void aScanIsFollowedByTheComplaintOfThePort();
    void withoutADAWTheListHasOneEntry();
    void anUnknownDAWIsNone();

    void theMenusOpenBelowTheirFields_data();
    void theMenusOpenBelowTheirFields();
    void theMenusRowsFillTheirWidth();
    void aDismissedMenuChangesNothing();
    void theMenusStayOnTheScreen_data();
    void theMenusStayOnTheScreen();
    void aLongNameIsCutInItsField();

    void aPortThatComesMeanwhileIsListedTheNextTime();
    void closingTheWindowIsNoOk();
    void theKeysShowTheirButtons();

private:
    bool openWindow(const QString &port = PortNotAssigned, const QString &daw = OtherDAW)
    {
        MainWindowRig::store("DAWName", daw);
        return m_rig->openWindow(port) && waitFree();
    }
    Setup *openPanel()
    {
        m_rig->entry(MenuFileSetup)->trigger();
        return panel();
    }
    Setup *panel() const { return m_rig->panel<Setup>(); }
    QString shown(const char *name) const { return m_rig->inPanel<CText>(name)->text(); }
    // Until every panel has come and gone by itself.
    bool waitFree() const
    {
        return QTest::qWaitFor([this] { return !m_rig->window->isWindowLocked(); }, WaitMs);
    }
    PulldownMenu *openMenu(const char *button);
    bool choose(const char *button, const QString &text);
    void clearStored() const
    {
        QSettings settings = MainWindowRig::settings();
        settings.remove(QStringLiteral("PortName"));
        settings.remove(QStringLiteral("DAWName"));
    }

    std::unique_ptr<DawMachine> m_machine;
    std::unique_ptr<LoopbackInstrument> m_device;
    std::unique_ptr<LoopbackInstrument> m_otherDevice;
    std::unique_ptr<MainWindowRig> m_rig;
};

void TestSetup::init()
{
    timings() = Timings();
    timings().connectionWatcherPeriodMs = 600000; // nobody is sensed here
    m_machine = std::make_unique<DawMachine>();
    m_machine->install(DawMachine::otherDaw());
    m_device = std::make_unique<LoopbackInstrument>();
    m_otherDevice = std::make_unique<LoopbackInstrument>(InstrumentMemory(), OtherDeviceName);
    m_rig = std::make_unique<MainWindowRig>();
}

void TestSetup::cleanup()
{
    m_rig.reset();
    m_device.reset();
    m_otherDevice.reset();
    m_machine.reset();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

PulldownMenu *TestSetup::openMenu(const char *button)
{
    m_rig->click(m_rig->inPanel(button));
    auto *menu = panel()->findChild<PulldownMenu *>();
    return menu != nullptr && QTest::qWaitForWindowExposed(menu) ? menu : nullptr;
}

// By a click at the far end of the row.
bool TestSetup::choose(const char *button, const QString &text)
{
    PulldownMenu *menu = openMenu(button);
    if (menu == nullptr) {
        return false;
    }
    for (QAction *action : menu->actions()) {
        if (action->text().trimmed() == text) {
            const QRect row = menu->actionGeometry(action);
            QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {},
                              {row.right() - 3, row.center().y()});
            break;
        }
    }
    return QTest::qWaitFor([this] { return panel()->findChild<PulldownMenu *>() == nullptr; });
}

// --- Form ----------------------------------------------------------------------------------------

void TestSetup::theForm()
{
    const QList<FormPart> parts{
        {"btnClose", "COnOffButton", QRect(68, 95, 15, 15), ":/images/vd_nsw_close.png"},
        {"txtMidiPort", "CText", QRect(92, 150, 239, 15)},
        {"btnMidiPort", "COnOffButton", QRect(89, 149, 265, 18), ":/images/vd_nsw_pulldown.png"},
        {"txtDAWName", "CText", QRect(92, 198, 239, 15)},
        {"btnDAWName", "COnOffButton", QRect(89, 197, 265, 18), ":/images/vd_nsw_pulldown.png"},
        {"btnOK", "COnOffButton", QRect(249, 287, 51, 15), ":/images/vd_nsw_ok.png"},
        {"btnCancel", "COnOffButton", QRect(304, 287, 51, 15), ":/images/vd_nsw_cancel.png"},
    };
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    checkForm(panel(), "Setup", ":/images/trn_bak_set.png", parts);
    for (const FormPart &part : parts) {
        QVERIFY2(m_rig->inPanel(part.name)->isVisible(), part.name);
    }
    for (const char *name : {"btnMidiPort", "btnDAWName"}) {
        QCOMPARE(m_rig->inPanel<COnOffButton>(name)->alignment(),
                 Qt::AlignRight | Qt::AlignVCenter);
    }
}

void TestSetup::theFieldsShowWhatIsInUse()
{
    QVERIFY(openWindow(OtherDeviceName, DawMachine::otherDaw()));
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(shown("txtMidiPort"), OtherDeviceName);
    QCOMPARE(shown("txtDAWName"), DawMachine::otherDaw());
    QVERIFY(m_rig->window->isWindowLocked());
    QVERIFY(!m_rig->menuBar()->isEnabled());
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
}

void TestSetup::anIndexBeyondTheListCountsAsNoPort()
{
    QVERIFY(openWindow(OtherDeviceName));
    QCOMPARE(m_rig->window->getPortIndex(), 2);
    m_otherDevice.reset();
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(shown("txtMidiPort"), PortNotAssigned);
}

// Those in front of it in the list have gone, or come back.
void TestSetup::thePortInUseIsShownWhereverItStands()
{
    QVERIFY(openWindow(OtherDeviceName));
    m_rig->setFlag(ParamAddress::IsOnline, 1);
    for (const int index : {1, 2}) {
        if (index == 1) {
            m_device.reset();
        } else {
            m_otherDevice.reset();
            m_device = std::make_unique<LoopbackInstrument>();
            m_otherDevice =
                std::make_unique<LoopbackInstrument>(InstrumentMemory(), OtherDeviceName);
        }
        QVERIFY(openPanel() != nullptr);
        QCOMPARE(shown("txtMidiPort"), OtherDeviceName);
        QCOMPARE(m_rig->window->getPortIndex(), index);
        m_rig->pressKey(Qt::Key_Return);
        QTRY_VERIFY(panel() == nullptr);
        // The route was left as it is.
        QVERIFY(m_rig->api->isONLINE());
        QCOMPARE(m_rig->window->getPortIndex(), index);
        QCOMPARE(MainWindowRig::stored("PortName").toString(), OtherDeviceName);
    }
}

// One instrument is taken off the cable and another put on: it has the numbers of the first.
void TestSetup::anotherPortInThePlaceOfTheOneInUseIsAnother()
{
    m_otherDevice.reset();
    QVERIFY(openWindow(DeviceName));
    m_device.reset();
    m_otherDevice = std::make_unique<LoopbackInstrument>(InstrumentMemory(), OtherDeviceName);
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnMidiPort", OtherDeviceName));
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(panel() == nullptr);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), OtherDeviceName);
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(m_otherDevice->instrument.counters().bulkRequests, 100);
}

// Which is not the one in use, and must not become it by an OK that chooses a DAW.
void TestSetup::aPortThatIsGoneIsNotTheOneInItsPlace()
{
    QVERIFY(openWindow(DeviceName));
    m_device.reset();
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(shown("txtMidiPort"), PortNotAssigned);
    m_rig->pressKey(Qt::Key_Return);
    QTRY_VERIFY(panel() == nullptr);
    QCOMPARE(m_rig->window->getPortIndex(), 0);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), PortNotAssigned);
}

// Its sign of life comes before it is listed whole; the other instrument gets nothing.
void TestSetup::aSignOfAnInstrumentThatIsNotYetBackWaits()
{
    QVERIFY(openWindow(DeviceName));
    m_device.reset();
    m_rig->api->emitPortActivatedSignal();
    QTest::qWait(200);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->api->isWatchPortActivate());
    QCOMPARE(m_otherDevice->instrument.counters().bulkRequests, 0);
    m_device = std::make_unique<LoopbackInstrument>();
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(m_device->instrument.counters().bulkRequests, 100);
    QCOMPARE(m_otherDevice->instrument.counters().bulkRequests, 0);
    QCOMPARE(m_otherDevice->instrument.counters().headers, 0);
}

// The panel's choice is a position in it.
void TestSetup::aSignOfLifeLeavesThePanelsListAlone()
{
    QVERIFY(openWindow(OtherDeviceName));
    QVERIFY(openPanel() != nullptr);
    const QStringList listed = m_rig->window->getPortNameList();
    m_device.reset();
    m_rig->api->emitPortActivatedSignal();
    QTest::qWait(100);
    QVERIFY(panel() != nullptr);
    QCOMPARE(m_rig->window->getPortNameList(), listed);
    // The synchronisation that has waited lists the ports anew, and OK still means the same one.
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), OtherDeviceName);
    QCOMPARE(m_otherDevice->instrument.counters().bulkRequests, 100);
}

void TestSetup::withAPanelInTheWindowItDoesNotOpen()
{
    QVERIFY(openWindow());
    m_rig->window->helpAbout();
    m_rig->window->fileSetup();
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->isFree());
}

// --- Leaving and deciding ------------------------------------------------------------------------

void TestSetup::leavingChangesNothing_data()
{
    QTest::addColumn<QString>("by");
    for (const char *by : {"Escape", "btnClose", "btnCancel"}) {
        QTest::newRow(by) << QString::fromLatin1(by);
    }
}

void TestSetup::leavingChangesNothing()
{
    QFETCH(const QString, by);
    QVERIFY(openWindow(DeviceName, OtherDAW));
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnMidiPort", OtherDeviceName));
    QVERIFY(choose("btnDAWName", DawMachine::daw()));
    QCOMPARE(shown("txtMidiPort"), OtherDeviceName);
    QCOMPARE(shown("txtDAWName"), DawMachine::daw());
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QCOMPARE(m_rig->window->getDAWName(), OtherDAW);
    clearStored();
    if (by == QLatin1String("Escape")) {
        m_rig->pressKey(Qt::Key_Escape);
    } else {
        m_rig->click(m_rig->inPanel(by.toLatin1().constData()));
    }
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QCOMPARE(m_rig->window->getDAWName(), OtherDAW);
    QVERIFY(!MainWindowRig::stored("PortName").isValid());
    QVERIFY(!MainWindowRig::stored("DAWName").isValid());
    // The next one begins with what is in use.
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(shown("txtMidiPort"), DeviceName);
    QCOMPARE(shown("txtDAWName"), OtherDAW);
}

void TestSetup::okStoresTheValuesAgainAndStartsNothing_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("daw");
    for (const QString &daw : {OtherDAW, DawMachine::daw()}) {
        const QByteArray name = daw.toLatin1();
        QTest::addRow("Return, %s", name.constData()) << int(Qt::Key_Return) << daw;
        QTest::addRow("Enter, %s", name.constData()) << int(Qt::Key_Enter) << daw;
        QTest::addRow("the button, %s", name.constData()) << 0 << daw;
    }
}

void TestSetup::okStoresTheValuesAgainAndStartsNothing()
{
    QFETCH(const int, key);
    QFETCH(const QString, daw);
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    QVERIFY(openWindow(DeviceName, daw));
    m_machine->asked();
    clearStored();
    QVERIFY(openPanel() != nullptr);
    if (key != 0) {
        m_rig->pressKey(Qt::Key(key));
    } else {
        m_rig->click(m_rig->inPanel("btnOK"));
    }
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
    QCOMPARE(m_machine->asked(), QStringList());
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QCOMPARE(m_rig->window->getDAWName(), daw);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), DeviceName);
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), daw);
}

void TestSetup::aChosenPortIsOpenedByOk()
{
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnMidiPort", OtherDeviceName));
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(panel() == nullptr);
    QCOMPARE(m_rig->window->getPortIndex(), 2);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), OtherDeviceName);
    QVERIFY(m_rig->api->isWatchPortActivate());
    // Its sign of life brings the synchronisation, as on any change of the port.
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(m_otherDevice->instrument.counters().bulkRequests, 100);
    QCOMPARE(m_device->instrument.counters().bulkRequests, 0);
}

void TestSetup::noPortEndsTheRoute()
{
    QVERIFY(openWindow(DeviceName));
    m_rig->setFlag(ParamAddress::IsOnline, 1);
    QTRY_VERIFY(m_rig->onlineLamp()->isVisible());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnMidiPort", PortNotAssigned));
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(panel() == nullptr);
    QTRY_VERIFY(!m_rig->onlineLamp()->isVisible());
    QCOMPARE(m_rig->window->getPortIndex(), 0);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), PortNotAssigned);
}

void TestSetup::aChosenDAWIsScanned()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    QVERIFY(openWindow());
    QVERIFY(!m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QVERIFY(
        !m_rig->templateView()->findChild<QWidget *>(QStringLiteral("btnVSTiName"))->isVisible());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnDAWName", DawMachine::daw()));
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(m_rig->panel<AnalyzeVSTi>() != nullptr);
    QCOMPARE(m_rig->window->getDAWName(), DawMachine::daw());
    QVERIFY(m_rig->window->isBrandholmDAW());
    QVERIFY(waitFree());
    QCOMPARE(m_machine->asked(), QStringList{QStringLiteral("Some.vst3")});
    QVERIFY(m_rig->window->getVSTiInfo().getVSTiList().contains(QStringLiteral("Some")));
    QVERIFY(m_rig->inWindow<QWidget>("btnVSTiName")->isVisible());
    QVERIFY(m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), DawMachine::daw());
}

void TestSetup::theDAWThatIsNoneIsInForceAtOnce()
{
    QVERIFY(openWindow(PortNotAssigned, DawMachine::daw()));
    QVERIFY(m_rig->inWindow<QWidget>("btnVSTiName")->isVisible());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnDAWName", OtherDAW));
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(!m_rig->inWindow<QWidget>("btnVSTiName")->isVisible());
    QVERIFY(!m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), OtherDAW);
}

// Both choices may ask for a panel: the scan's comes first.
void TestSetup::aScanIsFollowedByTheComplaintOfThePort()
{
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnMidiPort", OtherDeviceName));
    QVERIFY(choose("btnDAWName", DawMachine::daw()));
    m_otherDevice.reset(); // pulled out
    m_rig->click(m_rig->inPanel("btnOK"));
    QTRY_VERIFY(m_rig->panel<AnalyzeVSTi>() != nullptr);
    QVERIFY(m_rig->panel<PortOpenError>() == nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->panel<PortOpenError>() != nullptr, WaitMs);
    QVERIFY(m_rig->panel<AnalyzeVSTi>() == nullptr);
    QCOMPARE(shown("txtMessage"), OtherDeviceName);
    QVERIFY(m_rig->closePanel<PortOpenError>());
    QVERIFY(m_rig->isFree());
}

void TestSetup::withoutADAWTheListHasOneEntry()
{
    QVERIFY(QDir(m_machine->path("system/opt")).removeRecursively());
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(shown("txtDAWName"), OtherDAW);
    QVERIFY(m_rig->inPanel("btnDAWName")->isVisible());
    QCOMPARE(openMenu("btnDAWName")->actions().size(), 1);
    QTest::keyClick(panel()->findChild<PulldownMenu *>(), Qt::Key_Escape);
    QVERIFY(choose("btnDAWName", OtherDAW));
    QCOMPARE(shown("txtDAWName"), OtherDAW);
    m_rig->pressKey(Qt::Key_Return);
    QTRY_VERIFY(panel() == nullptr);
    QCOMPARE(m_rig->window->getDAWName(), OtherDAW);
    QVERIFY(m_rig->isFree());
}

void TestSetup::anUnknownDAWIsNone()
{
    QVERIFY(openWindow(PortNotAssigned, DawMachine::daw()));
    m_rig->window->setDAWName(QStringLiteral("trevia 7"));
    QVERIFY(m_rig->window->getDAWName().isNull());
    QCOMPARE(MainWindowRig::stored("DAWName").toString(), QString());
    QVERIFY(!m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QVERIFY(m_rig->anyPanel() == nullptr);
}

// --- Menus ---------------------------------------------------------------------------------------

void TestSetup::theMenusOpenBelowTheirFields_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QPoint>("place");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("ports") << QByteArray("btnMidiPort") << QPoint(89, 167)
                           << QStringList{PortNotAssigned, DeviceName, OtherDeviceName};
    QTest::newRow("DAWs") << QByteArray("btnDAWName") << QPoint(89, 215)
                          << QStringList{OtherDAW, DawMachine::otherDaw(), DawMachine::daw()};
}

void TestSetup::theMenusOpenBelowTheirFields()
{
    QFETCH(const QByteArray, button);
    QFETCH(const QPoint, place);
    QFETCH(const QStringList, texts);
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    const PulldownMenu *menu = openMenu(button.constData());
    QVERIFY(menu != nullptr);
    QCOMPARE(menu->pos(), panel()->mapToGlobal(place));
    QCOMPARE(menu->width(), 265);
    QCOMPARE(menu->font(), m_rig->window->font());
    QStringList seen;
    for (const QAction *action : menu->actions()) {
        seen.append(action->text().trimmed());
    }
    QCOMPARE(seen, texts);
}

void TestSetup::theMenusRowsFillTheirWidth()
{
    const QString wide =
        QStringLiteral("Corvan TARN/TERN of the second studio, first floor, on the left");
    const LoopbackInstrument third(InstrumentMemory(), wide);
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    const PulldownMenu *menu = openMenu("btnMidiPort");
    QVERIFY(menu != nullptr);
    const QFontMetrics metrics(menu->font());
    QVERIFY(metrics.horizontalAdvance(wide) > 229);
    QStringList unchanged;
    for (const QAction *action : menu->actions()) {
        const int width = metrics.horizontalAdvance(action->text());
        QVERIFY(metrics.horizontalAdvance(action->text() + QLatin1Char(' ')) > 229);
        if (action->text().endsWith(QLatin1Char(' '))) {
            QVERIFY(width <= 229);
        } else {
            unchanged.append(action->text());
        }
    }
    QCOMPARE(unchanged, QStringList{wide});
    QCOMPARE(menu->width(), 265);
}

void TestSetup::aDismissedMenuChangesNothing()
{
    QVERIFY(openWindow(DeviceName));
    QVERIFY(openPanel() != nullptr);
    for (const char *button : {"btnMidiPort", "btnDAWName"}) {
        PulldownMenu *menu = openMenu(button);
        QVERIFY(menu != nullptr);
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(panel()->findChild<PulldownMenu *>() == nullptr);
    }
    QVERIFY(panel() != nullptr);
    QCOMPARE(shown("txtMidiPort"), DeviceName);
    QCOMPARE(shown("txtDAWName"), OtherDAW);
}

void TestSetup::theMenusStayOnTheScreen_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("ports") << QByteArray("btnMidiPort");
    QTest::newRow("DAWs") << QByteArray("btnDAWName");
}

void TestSetup::theMenusStayOnTheScreen()
{
    QFETCH(const QByteArray, button);
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    const QRect screen = m_rig->window->screen()->geometry();
    const QPoint below =
        m_rig->inPanel(button.constData())->mapTo(m_rig->window.get(), QPoint(0, 18));
    // Its lower right corner would lie outside, by each side on its own and by both.
    const QPoint edge(screen.right() - below.x() - 200, screen.bottom() - below.y() - 5);
    for (const QPoint &place : {QPoint(100, edge.y()), QPoint(edge.x(), 100), edge}) {
        m_rig->window->move(place);
        QTRY_COMPARE(m_rig->window->pos(), place);
        PulldownMenu *menu = openMenu(button.constData());
        QVERIFY(menu != nullptr);
        QVERIFY(screen.contains(menu->geometry()));
        const QPoint wanted = place + below;
        QCOMPARE(menu->x(), place.x() == 100 ? wanted.x() : screen.right() - 269);
        QCOMPARE(menu->y(),
                 place.y() == 100 ? wanted.y() : screen.bottom() + 1 - menu->sizeHint().height());
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(panel()->findChild<PulldownMenu *>() == nullptr);
    }
}

void TestSetup::aLongNameIsCutInItsField()
{
    const QString wide =
        QStringLiteral("Corvan TARN/TERN of the second studio, first floor, on the left");
    const LoopbackInstrument third(InstrumentMemory(), wide);
    QVERIFY(openWindow(wide));
    QVERIFY(openPanel() != nullptr);
    const auto *field = m_rig->inPanel<CText>("txtMidiPort");
    QVERIFY(field->text() != wide);
    QVERIFY(field->fontMetrics().horizontalAdvance(field->text()) <= field->width());
    QCOMPARE(field->accessibleName(), wide);
}

// --- Life ----------------------------------------------------------------------------------------

void TestSetup::aPortThatComesMeanwhileIsListedTheNextTime()
{
    m_otherDevice.reset();
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    m_otherDevice = std::make_unique<LoopbackInstrument>(InstrumentMemory(), OtherDeviceName);
    QCOMPARE(openMenu("btnMidiPort")->actions().size(), 2);
    QTest::keyClick(panel()->findChild<PulldownMenu *>(), Qt::Key_Escape);
    QTRY_VERIFY(panel()->findChild<PulldownMenu *>() == nullptr);
    QVERIFY(m_rig->closePanel<Setup>());
    QVERIFY(openPanel() != nullptr);
    QCOMPARE(openMenu("btnMidiPort")->actions().size(), 3);
}

void TestSetup::closingTheWindowIsNoOk()
{
    QVERIFY(openWindow());
    QVERIFY(openPanel() != nullptr);
    QVERIFY(choose("btnDAWName", DawMachine::daw()));
    clearStored();
    QVERIFY(m_rig->window->close());
    QVERIFY(!MainWindowRig::stored("DAWName").isValid());
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(m_rig->anyPanel() == nullptr);
}

void TestSetup::theKeysShowTheirButtons()
{
    QVERIFY(openWindow());
    for (const auto &[key, button] :
         {std::pair(Qt::Key_Escape, "btnClose"), std::pair(Qt::Key_Return, "btnOK"),
          std::pair(Qt::Key_Enter, "btnOK")}) {
        QVERIFY(openPanel() != nullptr);
        m_rig->pressKey(key);
        QVERIFY(m_rig->inPanel<COnOffButton>(button)->isDown());
        QTRY_VERIFY(panel() == nullptr);
    }
    // No other key does anything.
    QVERIFY(openPanel() != nullptr);
    for (const Qt::Key key : {Qt::Key_Y, Qt::Key_N, Qt::Key_Tab, Qt::Key_Space}) {
        m_rig->pressKey(key);
    }
    for (const char *button : {"btnClose", "btnOK", "btnCancel", "btnMidiPort", "btnDAWName"}) {
        QVERIFY(!m_rig->inPanel<COnOffButton>(button)->isDown());
    }
}

QTEST_MAIN(TestSetup)
#include "tst_setup.moc"
