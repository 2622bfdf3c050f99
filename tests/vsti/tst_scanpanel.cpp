// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/AnalyzeVSTi.h"

#include "app/InstrumentRig.h"
#include "views/About.h"
#include "views/Answers.h"
#include "views/FormCheck.h"
#include "views/PortNotFound.h"
#include "views/PortOpenError.h"
#include "views/PulldownMenu.h"
#include "views/Setup.h"
#include "vsti/DawMachine.h"
#include "widgets/CLineEdit.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"
#include "widgets/CRadioButton.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>

// The panel of a scan in the real window, on a machine with a DAW and with plug-ins that do what
// their scripts say; at last with real ones and the real helper.

namespace
{

constexpr int WaitMs = 60000;
// The parameter that the test instrument calls 30.
const QString CutoffId = QStringLiteral("000001087");

QTreeWidgetItem *itemNamed(const QTreeWidget *tree, const QString &name)
{
    return tree->findItems(name, Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

QList<int> childrenOf(qint64 process)
{
    QList<int> children;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(process));
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + QStringLiteral("/children")));
        if (file.open(QIODevice::ReadOnly)) {
            for (const QByteArray &child : file.readAll().simplified().split(' ')) {
                if (!child.isEmpty()) {
                    children.append(child.toInt());
                }
            }
        }
    }
    return children;
}

} // namespace

class TestScanPanel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void theForm();
    void atStartTheStoredDAWIsScanned();
    void withoutADAWNothingIsScannedAtStart();
    void withNothingNewNoHelperIsStartedAndThePanelIsSoonGone();
    void thePanelShowsBeforeTheWorkBegins();
    void aRunningScanHoldsTheWindow();
    void theLightRuns();
    void theLineOfTheFile_data();
    void theLineOfTheFile();
    void aPanelScansOnce();

    void whatWaitsComesInItsOrder();
    void atStartTheMissingPortIsToldAfterTheScan();
    void atStartTheSynchronisationFollowsTheScan();
    void aScanWaitsForThePanelThatStands();
    void afterTheWindowHasClosedNoScanBegins();
    void theFileOfTheCommandLineWaitsForTheScan();

    void updateAsksAgainWhatWasExcluded();
    void fullScanAsksForEverything();

    void theWindowDiesBeforeTheScanBegins();
    void theWindowDiesDuringTheScan();
    void aProgramThatEndsTakesTheHelperAlong_data();
    void aProgramThatEndsTakesTheHelperAlong();

    void aRealParameterGoesOnAKnob();

private:
    bool openWindow(const QString &daw = DawMachine::daw())
    {
        MainWindowRig::store("DAWName", daw);
        return m_rig->MainWindowRig::openWindow(PortNotAssigned);
    }
    bool openWindowAndScan() { return openWindow() && waitFree(); }
    AnalyzeVSTi *panel() const { return m_rig->panel<AnalyzeVSTi>(); }
    QString line() const { return m_rig->inPanel<CText>("txtAnalyzeFile")->text(); }
    bool waitFree() const
    {
        return QTest::qWaitFor([this] { return !m_rig->window->isWindowLocked(); }, WaitMs);
    }
    // The helper was started for that file.
    bool waitAsked(const char *name) const
    {
        return QTest::qWaitFor(
            [this, name] {
                return panel() != nullptr && panel()->isVisible() &&
                       line() == QStringLiteral("[File: %1]").arg(QString::fromUtf8(name)) &&
                       DawMachine::isRunning(m_machine->helperProcess());
            },
            WaitMs);
    }
    QStringList instruments() const { return m_rig->window->getVSTiInfo().getVSTiList(); }

    std::unique_ptr<DawMachine> m_machine;
    std::unique_ptr<Gate> m_gate;
    std::unique_ptr<InstrumentRig> m_rig;
};

void TestScanPanel::init()
{
    InstrumentRig::setTimings();
    m_machine = std::make_unique<DawMachine>();
    m_gate = std::make_unique<Gate>(*m_machine);
    QRandomGenerator random(99);
    m_rig = std::make_unique<InstrumentRig>(randomInstrument(&random));
}

void TestScanPanel::cleanup()
{
    m_rig.reset();
    QVERIFY(!DawMachine::isRunning(m_machine->helperProcess()));
    m_gate.reset();
    m_machine.reset();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

// --- The panel -----------------------------------------------------------------------------------

void TestScanPanel::theForm()
{
    const QList<FormPart> parts{
        {"txtAnalyzeFile", "CText", QRect(91, 232, 263, 12)},
        {"lblAnimation", "QLabel", QRect(91, 214, 259, 10)},
        {"txtMessage", "CText", QRect(91, 212, 263, 14), nullptr, "Scanning VSTi"},
    };
    QVERIFY(openWindow());
    QVERIFY(panel() != nullptr);
    checkForm(panel(), "AnalyzeVSTi", ":/images/trn_bak_start.png", parts);
    for (const FormPart &part : parts) {
        QVERIFY2(m_rig->inPanel(part.name)->isVisible(), part.name);
    }
    const auto *file = m_rig->inPanel<CText>("txtAnalyzeFile");
    QCOMPARE(file->font().family(), QStringLiteral("Corvan QRL 8"));
    QCOMPARE(file->alignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(line(), QString());
    QVERIFY(waitFree());
}

void TestScanPanel::atStartTheStoredDAWIsScanned()
{
    m_machine->install(DawMachine::otherDaw());
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    MainWindowRig::store("DAWName", DawMachine::daw());
    m_rig->makeWindow();
    // In the constructor already.
    QVERIFY(panel() != nullptr);
    QVERIFY(m_rig->window->isWindowLocked());
    QVERIFY(m_rig->showWindow());
    QVERIFY(waitFree());
    QCOMPARE(m_rig->window->getDAWName(), DawMachine::daw());
    QCOMPARE(m_machine->asked(), QStringList{QStringLiteral("Some.vst3")});
    QVERIFY(instruments().contains(QStringLiteral("Some")));
    QVERIFY(m_rig->inWindow<QWidget>("btnVSTiName")->isVisible());
    QVERIFY(m_rig->entry(MenuFileVSTiDatabase)->isEnabled());
    QVERIFY(m_rig->isFree());
}

void TestScanPanel::withoutADAWNothingIsScannedAtStart()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    QVERIFY(openWindow(OtherDAW));
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->isFree());
    QCOMPARE(m_machine->asked(), QStringList());
    QVERIFY(!m_rig->inWindow<QWidget>("btnVSTiName")->isVisible());
}

void TestScanPanel::withNothingNewNoHelperIsStartedAndThePanelIsSoonGone()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    m_machine->plugin(QStringLiteral("None.vst3"), DawMachine::saysNoInstrument());
    QVERIFY(openWindowAndScan());
    QCOMPARE(m_machine->asked().size(), 2);
    QElapsedTimer clock;
    clock.start();
    m_rig->window->analyzeVSTi();
    QVERIFY(panel() != nullptr);
    QVERIFY(waitFree());
    QVERIFY(clock.elapsed() >= 95);
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(m_machine->asked(), QStringList());
    QVERIFY(instruments().contains(QStringLiteral("Some")));
}

void TestScanPanel::thePanelShowsBeforeTheWorkBegins()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    QVERIFY(openWindow(OtherDAW));
    m_rig->window->setDAWName(DawMachine::daw());
    QVERIFY(panel()->isVisible());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    QCOMPARE(m_machine->asked(), QStringList());
    // Neither closes.
    QVERIFY(!panel()->close());
    QVERIFY(!m_rig->window->close());
    QVERIFY(m_rig->window->isVisible());
    QVERIFY(waitFree());
    QCOMPARE(m_machine->asked().size(), 1);
}

void TestScanPanel::aRunningScanHoldsTheWindow()
{
    m_machine->plugin(QStringLiteral("Some.vst3"),
                      DawMachine::waits(DawMachine::saysInstrument("Some")));
    QVERIFY(openWindow());
    QVERIFY(waitAsked("Some.vst3"));
    QVERIFY(!m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QVERIFY(!m_rig->menuBar()->isEnabled());
    QVERIFY(QGuiApplication::overrideCursor() != nullptr);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Y}) {
        m_rig->pressKey(key);
    }
    QVERIFY(!panel()->close());
    QVERIFY(!m_rig->window->close());
    m_rig->window->fileSetup();
    QVERIFY(m_rig->panel<Setup>() == nullptr);
    QVERIFY(m_rig->window->isVisible());
    QVERIFY(panel()->isVisible());
    QSignalSpy finished(panel(), &AnalyzeVSTi::finished);
    const QPointer<AnalyzeVSTi> scanned(panel());
    m_gate->open();
    QTRY_VERIFY_WITH_TIMEOUT(scanned.isNull(), WaitMs);
    QCOMPARE(finished.size(), 1);
    QVERIFY(m_rig->isFree());
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    QVERIFY(m_rig->window->close());
}

void TestScanPanel::theLightRuns()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::waits("exit 3\n"));
    QVERIFY(openWindow());
    QVERIFY(waitAsked("Some.vst3"));
    const auto *label = m_rig->inPanel<QLabel>("lblAnimation");
    // The column at which the light begins, from the left.
    const auto light = [label] {
        const QImage image = label->pixmap(Qt::ReturnByValue).toImage();
        for (int x = image.width() - 1; x >= 0; --x) {
            if (qAlpha(image.pixel(x, image.height() / 2)) > 0) {
                return x;
            }
        }
        return -1;
    };
    QTRY_VERIFY(!label->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(label->pixmap(Qt::ReturnByValue).deviceIndependentSize().toSize(), label->size());
    // All the way to the right, and again from the left.
    QList<int> seen;
    QTRY_VERIFY_WITH_TIMEOUT(
        (seen.append(light()),
         seen.last() > 240 && *std::min_element(seen.begin(), seen.end()) < 200),
        WaitMs);
    seen.clear();
    QTRY_VERIFY_WITH_TIMEOUT((seen.append(light()), seen.last() < 60), WaitMs);
    m_gate->open();
    QVERIFY(waitFree());
}

void TestScanPanel::theLineOfTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("line");
    QTest::newRow("a file") << QStringLiteral("Some.vst3") << QStringLiteral("[File: Some.vst3]");
    QTest::newRow("letters") << QStringLiteral("Übung ♪.vst3")
                             << QStringLiteral("[File: Übung ♪.vst3]");
    QTest::newRow("a percent sign")
        << QStringLiteral("100 %1.vst3") << QStringLiteral("[File: 100 %1.vst3]");
    QTest::newRow("a line feed") << QStringLiteral("two\nlines.vst3")
                                 << QStringLiteral("[File: two lines.vst3]");
    QTest::newRow("null") << QString() << QString();
}

void TestScanPanel::theLineOfTheFile()
{
    QFETCH(const QString, name);
    QFETCH(const QString, line);
    QVERIFY(openWindow(OtherDAW));
    m_rig->window->setDAWName(DawMachine::daw());
    auto *field = m_rig->inPanel<CText>("txtAnalyzeFile");
    panel()->analyze(QStringLiteral("before"));
    panel()->analyze(name);
    QCOMPARE(field->text(), line);
    QCOMPARE(field->accessibleName(), line);
    // One that is too long keeps its bracket, and all of it is told.
    const QString tooLong = QString(300, QLatin1Char('w')) + QStringLiteral(".vst3");
    panel()->analyze(tooLong);
    QVERIFY(field->text().startsWith(QStringLiteral("[File: www")));
    QVERIFY(field->text().endsWith(QStringLiteral("\uFB02]")));
    QVERIFY(field->fontMetrics().horizontalAdvance(field->text()) <= field->width());
    QCOMPARE(field->accessibleName(), QStringLiteral("[File: %1]").arg(tooLong));
    QVERIFY(waitFree());
}

// Neither by hand nor by the window's coming back.
void TestScanPanel::aPanelScansOnce()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::waits("exit 1\n"));
    QVERIFY(openWindow());
    QVERIFY(waitAsked("Some.vst3"));
    panel()->start();
    m_rig->window->hide();
    m_rig->window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_rig->window.get()));
    QSignalSpy finished(panel(), &AnalyzeVSTi::finished);
    // At its end, while it still stands.
    connect(panel(), &AnalyzeVSTi::finished, this, [scanned = panel()] {
        scanned->start();
        scanned->finish();
    });
    m_gate->open();
    QVERIFY(waitFree());
    QCOMPARE(finished.size(), 1);
    QCOMPARE(m_machine->asked().size(), 1);
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

// --- Who waits for whom --------------------------------------------------------------------------

void TestScanPanel::whatWaitsComesInItsOrder()
{
    m_machine->plugin(QStringLiteral("Some.vst3"),
                      DawMachine::waits(DawMachine::saysInstrument("Some")));
    QVERIFY(m_rig->MainWindowRig::openWindow(InstrumentRig::deviceName()));
    QVERIFY(waitAsked("Some.vst3"));
    EditorMainWindow *window = m_rig->window.get();
    window->portNotFound();
    window->setPortName(InstrumentRig::deviceName());
    window->portOpenError(InstrumentRig::deviceName());
    window->autoSync(false, true);
    window->analyzeVSTi();
    QStringList seen{m_rig->anyPanel()->objectName()};
    m_gate->open();
    const auto next = [&] {
        const QString before = seen.last();
        const QPointer<EditorOverlap> closed(m_rig->anyPanel());
        if (before != QLatin1String("AnalyzeVSTi")) {
            closed->close();
        }
        return QTest::qWaitFor(
            [&] { return closed.isNull() && window->findChildren<EditorOverlap *>().size() <= 1; },
            WaitMs);
    };
    while (m_rig->anyPanel() != nullptr && seen.size() < 6) {
        QVERIFY(next());
        if (m_rig->anyPanel() != nullptr) {
            seen.append(m_rig->anyPanel()->objectName());
        }
    }
    // The second scan was asked for while the first one ran.
    QCOMPARE(seen, (QStringList{QStringLiteral("AnalyzeVSTi"), QStringLiteral("AnalyzeVSTi"),
                                QStringLiteral("AutoSync"), QStringLiteral("PortOpenError"),
                                QStringLiteral("PortNotFound")}));
    QVERIFY(m_rig->isFree());
}

void TestScanPanel::atStartTheMissingPortIsToldAfterTheScan()
{
    m_rig.reset(); // and with it the instrument
    auto rig = std::make_unique<MainWindowRig>();
    MainWindowRig::store("DAWName", DawMachine::daw());
    rig->makeWindow(true);
    QVERIFY(rig->panel<AnalyzeVSTi>() != nullptr);
    QVERIFY(rig->panel<PortNotFound>() == nullptr);
    QVERIFY(rig->showWindow());
    QTRY_VERIFY_WITH_TIMEOUT(rig->panel<PortNotFound>() != nullptr, WaitMs);
    QVERIFY(rig->panel<AnalyzeVSTi>() == nullptr);
    QVERIFY(rig->closePanel<PortNotFound>());
    QVERIFY(rig->isFree());
}

void TestScanPanel::atStartTheSynchronisationFollowsTheScan()
{
    MainWindowRig::store("DAWName", DawMachine::daw());
    m_rig->makeWindow(true);
    QVERIFY(panel() != nullptr);
    QVERIFY(m_rig->panel<AutoSync>() == nullptr);
    QVERIFY(m_rig->showWindow());
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->panel<AutoSync>() != nullptr, WaitMs);
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->synchronise());
    QVERIFY(m_rig->isFree());
}

void TestScanPanel::aScanWaitsForThePanelThatStands()
{
    QVERIFY(openWindowAndScan());
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    m_rig->window->helpAbout();
    m_rig->window->analyzeVSTi();
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(panel() != nullptr);
    QVERIFY(waitFree());
    QCOMPARE(m_machine->asked().size(), 1);
}

void TestScanPanel::afterTheWindowHasClosedNoScanBegins()
{
    QVERIFY(openWindowAndScan());
    QVERIFY(m_rig->window->close());
    m_rig->window->analyzeVSTi();
    QVERIFY(panel() == nullptr);
    QVERIFY(m_rig->isFree());
}

void TestScanPanel::theFileOfTheCommandLineWaitsForTheScan()
{
    const QString file = QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V");
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::waits("exit 3\n"));
    MainWindowRig::store("DAWName", DawMachine::daw());
    MainWindowRig::store("PortName", PortNotAssigned);
    m_rig->makeWindow();
    m_rig->window->applicationFileOpen(file);
    QVERIFY(m_rig->showWindow());
    QVERIFY(waitAsked("Some.vst3"));
    QCOMPARE(m_rig->fileName(), QString());
    m_gate->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_rig->fileName(), file, WaitMs);
    QVERIFY(waitFree());
}

// --- Commands ------------------------------------------------------------------------------------

void TestScanPanel::updateAsksAgainWhatWasExcluded()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    m_machine->plugin(QStringLiteral("None.vst3"), DawMachine::saysNoInstrument());
    QVERIFY(openWindowAndScan());
    m_machine->asked();
    QCOMPARE(m_machine->notSynthList(), QByteArray("None.vst3\n"));
    QVERIFY(m_rig->trigger(MenuFileVSTiDatabaseUpdate));
    QVERIFY(panel() != nullptr);
    QVERIFY(waitFree());
    QCOMPARE(m_machine->asked(), QStringList{QStringLiteral("None.vst3")});
    QCOMPARE(m_machine->notSynthList(), QByteArray("None.vst3\n"));
    QVERIFY(instruments().contains(QStringLiteral("Some")));
}

void TestScanPanel::fullScanAsksForEverything()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    m_machine->plugin(QStringLiteral("None.vst3"), DawMachine::saysNoInstrument());
    QVERIFY(openWindowAndScan());
    m_machine->asked();
    QVERIFY(m_rig->trigger(MenuFileVSTiDatabaseFullScan));
    QVERIFY(panel() != nullptr);
    QVERIFY(waitFree());
    QStringList asked = m_machine->asked();
    asked.sort();
    QCOMPARE(asked, (QStringList{QStringLiteral("None.vst3"), QStringLiteral("Some.vst3")}));
    QVERIFY(instruments().contains(QStringLiteral("Some")));
    QCOMPARE(m_machine->notSynthList(), QByteArray("None.vst3\n"));
}

// --- Ends ----------------------------------------------------------------------------------------

void TestScanPanel::theWindowDiesBeforeTheScanBegins()
{
    m_machine->plugin(QStringLiteral("Some.vst3"), DawMachine::saysInstrument("Some"));
    QVERIFY(openWindow(OtherDAW));
    m_rig->window->setDAWName(DawMachine::daw());
    QVERIFY(panel() != nullptr);
    m_rig->window.reset();
    QCoreApplication::processEvents();
    QCOMPARE(m_machine->asked(), QStringList());
}

// What it has found counts, and what it was at is neither found nor excluded.
void TestScanPanel::theWindowDiesDuringTheScan()
{
    m_machine->write("system/opt/Trevia 7.app/Contents/VST3/First.vst3",
                     DawMachine::saysInstrument("First"));
    m_machine->plugin(QStringLiteral("Second.vst3"), DawMachine::waits("exit 3\n"));
    QVERIFY(openWindow());
    QVERIFY(waitAsked("Second.vst3"));
    const int helper = m_machine->helperProcess();
    QElapsedTimer clock;
    clock.start();
    m_rig->window.reset();
    QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!DawMachine::isRunning(helper));
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    QCOMPARE(m_machine->notSynthList(), QByteArray());
    QCOMPARE(m_machine->asked().size(), 2);
    // The next one goes on from there.
    m_machine->plugin(QStringLiteral("Second.vst3"), DawMachine::saysInstrument("Second"));
    QVERIFY(openWindowAndScan());
    QCOMPARE(m_machine->asked(), QStringList{QStringLiteral("Second.vst3")});
    QVERIFY(instruments().contains(QStringLiteral("First")));
    QVERIFY(instruments().contains(QStringLiteral("Second")));
}

void TestScanPanel::aProgramThatEndsTakesTheHelperAlong_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("asked to end") << SIGTERM;
    QTest::newRow("interrupted") << SIGINT;
    QTest::newRow("its terminal gone") << SIGHUP;
    QTest::newRow("killed") << SIGKILL;
}

// With the helper and a plug-in that hangs, as they are.
void TestScanPanel::aProgramThatEndsTakesTheHelperAlong()
{
    QFETCH(const int, signal);
    const QTemporaryDir home;
    const QString plugins =
        home.filePath(QStringLiteral("Applications/Trevia 7.app/Contents/VST3"));
    QVERIFY(QDir().mkpath(plugins));
    QVERIFY(QFile::copy(QStringLiteral(TRN_BIN_DIR "/tests/plugins/misbehaving/vst3.so"),
                        plugins + QStringLiteral("/hang-at-load.vst3")));
    DawMachine::write(home.filePath(QStringLiteral(".config/Trevia 7/Vst2xPlugins Trevia.xml")),
                      "<Vst2xPlugins/>");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.remove(QStringLiteral("XDG_DATA_HOME"));
    const QString told = home.filePath(QStringLiteral("process"));
    environment.insert(QStringLiteral("TRN_TEST_PROCESS_ID"), told);
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(TRN_BIN_DIR "/TARN_TERNRemoteEditorDemo"), QStringList());
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(told), WaitMs);
    QFile file(told);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const int plugin = file.readAll().trimmed().toInt();
    const QList<int> helpers = childrenOf(program.processId());
    QCOMPARE(helpers.size(), 1);
    QVERIFY(DawMachine::isRunning(plugin));
    QCOMPARE(childrenOf(helpers.first()), QList<int>{plugin});
    QCOMPARE(::kill(static_cast<pid_t>(program.processId()), signal), 0);
    QVERIFY(program.waitForFinished(WaitMs));
    QTRY_VERIFY_WITH_TIMEOUT(!DawMachine::isRunning(plugin), WaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(!DawMachine::isRunning(helpers.first()), WaitMs);
}

// --- The whole way -------------------------------------------------------------------------------

void TestScanPanel::aRealParameterGoesOnAKnob()
{
    m_gate.reset();
    m_machine.reset();
    m_machine = std::make_unique<DawMachine>(DawMachine::Helper::Real);
    const QString inBundle = QStringLiteral("Contents/x86_64-linux/TestInstrument.so");
    const QString bundle = m_machine->vst3(QStringLiteral("TestInstrument.vst3/"));
    QVERIFY(QDir().mkpath(QFileInfo(bundle + inBundle).path()));
    QVERIFY(QFile::copy(QStringLiteral(TRN_BIN_DIR "/tests/plugins/vst3/TestInstrument.vst3/") +
                            inBundle,
                        bundle + inBundle));

    // With an instrument on the cable, and no DAW yet.
    MainWindowRig::store("DAWName", OtherDAW);
    QVERIFY(m_rig->openWindow());
    QVERIFY(m_rig->wakePort());

    // Setup, by mouse and keys.
    QVERIFY(m_rig->trigger(MenuFileSetup));
    m_rig->click(m_rig->inPanel("btnDAWName"));
    auto *menu = m_rig->panel<Setup>()->findChild<PulldownMenu *>();
    QVERIFY(QTest::qWaitForWindowExposed(menu));
    QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().at(1)).center());
    QTRY_COMPARE(m_rig->inPanel<CText>("txtDAWName")->text(), DawMachine::daw());
    m_rig->pressKey(Qt::Key_Return);
    QTRY_VERIFY(panel() != nullptr);
    QStringList files;
    connect(&m_rig->window->getVSTiInfo(), &VSTiInfo::analyzingVSTi, panel(),
            [this, &files] { files.append(line()); });
    QVERIFY(waitFree());
    QVERIFY(files.contains(QStringLiteral("[File: TestInstrument.vst3]")));
    QCOMPARE(files.last(), QString());

    // The instrument in the list, the parameter in its group.
    Answers answers;
    answers.expect<CPopupList>([](CPopupList *popup) {
        CPopupListWidget *list = popup->getListWidget();
        const QList<QListWidgetItem *> found =
            list->findItems(QStringLiteral("Test Instrument"), Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(found.first()).center());
    });
    m_rig->click(m_rig->inWindow<QWidget>("btnVSTiName"));
    QTRY_VERIFY(answers.allGiven());
    auto *knob = m_rig->inWindow<CRadioButton>("btnKnobB1");
    m_rig->click(knob);
    QTRY_VERIFY(knob->isChecked());
    answers.expect<CPopupTree>([](CPopupTree *popup) {
        QTreeWidget *tree = popup->getTreeWidget();
        QTreeWidgetItem *parameter = itemNamed(tree, QStringLiteral("Cutoff"));
        QVERIFY(parameter != nullptr);
        QCOMPARE(parameter->parent()->text(0), QStringLiteral("Filter"));
        QCOMPARE(parameter->parent()->parent()->text(0), QStringLiteral("Test Instrument"));
        parameter->parent()->setExpanded(true);
        tree->scrollToItem(parameter);
        const QRect place = tree->visualItemRect(parameter);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                          QPoint(place.left() + 4, place.center().y()));
    });
    m_rig->click(m_rig->inWindow<QWidget>("btnRemoteControlParameter"));
    QTRY_VERIFY(answers.allGiven());

    const int current = m_rig->currentTemplate();
    const auto id = [this, current] {
        return m_rig->api->getParamQString(
            ParamAddress(Bank::EditBuffer, current, 1, ParamAddress::RemoteNumber));
    };
    QCOMPARE(id(), CutoffId);
    QTRY_COMPARE(m_rig->templateView()->findChild<CText *>(QStringLiteral("txtKnobB1"))->text(),
                 QStringLiteral("Cutoff"));
    QTRY_COMPARE(m_rig->inWindow<CLineEdit>("txtRemoteControlParameter")->text(),
                 QStringLiteral("Filter - Cutoff"));

    // Sent as it was chosen, saved, and read back.
    QTRY_VERIFY_WITH_TIMEOUT(
        differences(*m_rig->api, Bank::EditBuffer, m_rig->instrument().contents().editBuffer)
            .isEmpty(),
        WaitMs);
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("real.Q7V"));
    answers.expectFileDialog(file);
    QVERIFY(m_rig->window->fileSaveBankAs());
    QVERIFY(QFileInfo::exists(file));
    m_rig->loseInstrument();
    m_rig->window->executefileNew();
    QVERIFY(id() != CutoffId);
    QVERIFY(m_rig->window->fileOpen(file));
    QCOMPARE(id(), CutoffId);
    QTRY_COMPARE(m_rig->templateView()->findChild<CText *>(QStringLiteral("txtKnobB1"))->text(),
                 QStringLiteral("Cutoff"));
    QVERIFY(answers.allGiven());
}

QTEST_MAIN(TestScanPanel)
#include "tst_scanpanel.moc"
