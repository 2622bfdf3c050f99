// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/AnalyzeVSTiThread.h"
#include "vsti/VstiHarness.h"

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <sys/resource.h>

#include <csignal>

// The scan with the helper itself, on plug-ins that are there: those of this project, which do what
// their names say, and those of Debian.

namespace
{

constexpr int BypassId = 10004202;
// Of the test, with a million parameters in it. The sanitizers take their share.
#ifdef TRN_THREAD_SANITIZER
// It keeps several times as much about the memory as there is.
constexpr long MaximumKilobytes = 15 * 1024 * 1024;
#else
constexpr long MaximumKilobytes = 3 * 1024 * 1024;
#endif
const QString Plugins = QStringLiteral(TRN_BIN_DIR "/tests/plugins");

class RealScan : public ScannedVSTiInfo
{
public:
    using ScannedVSTiInfo::ScannedVSTiInfo;
    using VSTiInfo::helperTimeoutMs;
};

QByteArray settings(const QStringList &folders)
{
    QByteArray objects;
    for (const QString &folder : folders) {
        const qsizetype slash = folder.lastIndexOf(QLatin1Char('/'));
        objects += "<obj class=\"FNPath\"><string name=\"Name\" value=\"" +
                   folder.mid(slash + 1).toHtmlEscaped().toUtf8() +
                   "\"/><string name=\"Path\" value=\"" +
                   folder.left(slash + 1).toHtmlEscaped().toUtf8() + "\"/></obj>";
    }
    return "<Vst2xPathlist><list name=\"Entries\" type=\"list\"><item>"
           "<string name=\"Group\" value=\"PathList\"/><member name=\"Values\">"
           "<member name=\"PathList\"><list name=\"paths\" type=\"obj\">" +
           objects + "</list></member></member></item></list></Vst2xPathlist>";
}

QString idWith(qint64 contents)
{
    return QString::number(contents, 16).rightJustified(9, QLatin1Char('0'));
}

} // namespace

class TestScanRealPlugins : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void plugInsOfTheMachine();
    void plugInsThatMisbehaveEndInTheRightLists();
    void plugInsThatHangCostTheirTimeAndNoMore();
    void whatAPlugInStartedIsGoneAfterwards();
    void aMillionParametersTakeNoOthersRoom();
    void theDemonstrationFindsItsInstrument();

private:
    // One run of the scan, as the window does it. Which files were examined is in m_examined.
    std::unique_ptr<RealScan> run(const QString &daw, int timeoutMs = 60000);
    std::unique_ptr<RealScan> run() { return run(latin("Trevia Pro 9")); }
    // The misbehaving plug-in of that format under a name that says what to do.
    bool place(const char *format, const char *behaviour) const;
    QStringList notSynths() const
    {
        QStringList lines = QString::fromUtf8(bytesOf(m_rig->notSynthList()))
                                .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        lines.sort();
        return lines;
    }
    // Name, file and number of parameters.
    static QStringList described(const RealScan &info);

    std::unique_ptr<VstiRig> m_rig;
    QStringList m_examined;
};

void TestScanRealPlugins::init()
{
    m_rig = std::make_unique<VstiRig>();
    QVERIFY(QDir().mkpath(m_rig->path("home/Applications/Trevia 9.app")));
    QVERIFY(QDir().mkpath(m_rig->path("home/.vst3")));
    QVERIFY(QDir().mkpath(m_rig->path("home/vst2")));
    QVERIFY(writeBytes(m_rig->path("home/.config/Trevia 9/Vst2xPlugin SearchPaths Trevia.xml"),
                       settings({m_rig->path("home/vst2")})));
}

void TestScanRealPlugins::cleanup()
{
    QVERIFY(!QFileInfo::exists(m_rig->path("data/VSTiInfoFinder.txt")));
    m_rig.reset();
}

std::unique_ptr<RealScan> TestScanRealPlugins::run(const QString &daw, int timeoutMs)
{
    auto info = std::make_unique<RealScan>(QDir(QStringLiteral(TRN_BIN_DIR)),
                                           QDir(QStringLiteral(TRN_SOURCE_DIR "/resources")),
                                           QDir(m_rig->path("data")));
    info->helperTimeoutMs = timeoutMs;
    m_examined.clear();
    connect(
        info.get(), &VSTiInfo::analyzingVSTi, this,
        [this](const QString &file) { m_examined.append(file); }, Qt::QueuedConnection);
    info->selectDAW(daw);
    AnalyzeVSTiThread thread(info.get());
    thread.start(QThread::LowestPriority);
    thread.join();
    QCoreApplication::sendPostedEvents();
    info->entryVSTiParameter();
    // The last word of a scan is that there is no file.
    if (m_examined.isEmpty() || !m_examined.takeLast().isNull()) {
        return nullptr;
    }
    m_examined.sort();
    return info->isConsistent() ? std::move(info) : nullptr;
}

bool TestScanRealPlugins::place(const char *format, const char *behaviour) const
{
    const QString name = latin(behaviour);
    const QString from = Plugins + QStringLiteral("/misbehaving/") + latin(format) + latin(".so");
    return QFile::link(from, latin(format) == latin("vst3")
                                 ? m_rig->path("home/.vst3/") + name + latin(".vst3")
                                 : m_rig->path("home/vst2/") + name + latin(".so"));
}

QStringList TestScanRealPlugins::described(const RealScan &info)
{
    QStringList lines;
    for (auto entry = info.fileInfos.cbegin(); entry != info.fileInfos.cend(); ++entry) {
        if (entry->version != 0) {
            lines.append(entry.key() + latin(" in ") + entry->fileInfo.fileName() + latin(": ") +
                         QString::number(info.getVSTiParameterList(entry.key()).size()));
        }
    }
    lines.sort();
    return lines;
}

void TestScanRealPlugins::plugInsOfTheMachine()
{
    const QString vst2 = latin("/usr/lib/vst");
    const QString vst3 = latin("/usr/lib/vst3");
    QVERIFY2(QFile::exists(vst2 + latin("/amsynth_vst.so")), "not installed; ./test installs it");
    QVERIFY(writeBytes(m_rig->path("home/.config/Trevia 9/Vst2xPlugin SearchPaths Trevia.xml"),
                       settings({vst2})));
    QVERIFY(QDir().mkpath(m_rig->path("system/usr/lib")));
    QVERIFY(QFile::link(vst3, m_rig->path("system/usr/lib/vst3")));
    for (const char *name : {"TestInstrument.vst3", "FrameworkInstrument.vst3"}) {
        QVERIFY(QFile::link(Plugins + latin("/vst3/") + latin(name),
                            m_rig->path("home/.vst3/") + latin(name)));
    }

    QStringList instruments;
    QStringList effects;
    {
        const auto info = run();
        QVERIFY(info != nullptr);
        QCOMPARE(info->getDAWList(), names({"Trevia Pro 9"}));
        QCOMPARE(info->vst2Folders.constLast().path(), vst2);
        instruments = described(*info);
        const QStringList wanted = names(
            {"Framework Instrument in FrameworkInstrument.vst3: 2088", "Kars in Kars-vst.so: 3",
             "Nekobi in Nekobi-vst.so: 8", "Test Instrument in TestInstrument.vst3: 32",
             "ZynAddSubFX in ZynAddSubFX.so: 16", "amsynth in amsynth_vst.so: 41"});
        for (const QString &line : wanted) {
            QVERIFY2(instruments.contains(line), qPrintable(instruments.join(latin("; "))));
        }
        // What a knob shows.
        const QString name = latin("Test Instrument");
        QCOMPARE(info->getParameterName(name, idOf(0)), names({"Master Volume"}));
        QCOMPARE(info->getParameterName(name, idOf(44)), names({"Filter", "Envelope", "Amount"}));
        QCOMPARE(info->getParameterName(name, idWith(BypassId)), names({"Bypass"}));
        QCOMPARE(info->getParameterName(latin("amsynth"), idOf(0)), names({"amp_attack"}));
        QCOMPARE(info->getVSTiList().last(3), names({"Audio Track", "MIDI Track", "Generic"}));
        QVERIFY(info->getVSTiList().contains(latin("Nekobi")));
        // Everything else that lies there is no instrument; every file was examined once.
        effects = notSynths();
        for (const char *effect : {"ZamComp-vst.so", "ZamComp.vst3", "ProM.vst", "ZynReverb.so",
                                   "MVerb-vst.so", "ZaMultiComp.vst3"}) {
            QVERIFY2(effects.contains(latin(effect)), effect);
        }
        QCOMPARE(instruments.size() + effects.size(), m_examined.size());
        QVERIFY(m_examined.removeDuplicates() == 0);
    }
    // A new start finds nothing to examine, and says the same.
    const auto info = run();
    QVERIFY(info != nullptr);
    QCOMPARE(m_examined, QStringList());
    QCOMPARE(described(*info), instruments);
    QCOMPARE(notSynths(), effects);
    QCOMPARE(info->getParameterName(latin("Test Instrument"), idOf(44)),
             names({"Filter", "Envelope", "Amount"}));
    // Those that are no instruments again after an update, and nothing but those.
    info->clearNotSynthList();
    const auto updated = run();
    QCOMPARE(m_examined, effects);
    QCOMPARE(notSynths(), effects);
    QCOMPARE(described(*updated), instruments);
}

void TestScanRealPlugins::plugInsThatMisbehaveEndInTheRightLists()
{
    // Found, under a name that no other has.
    for (const char *good : {"two-instruments", "instrument-and-effect", "failing-and-good",
                             "crash-at-unload", "odd-names", "blank-name"}) {
        QVERIFY(place("vst3", good));
    }
    for (const char *good : {"crash-at-close", "shell", "no-name"}) {
        QVERIFY(place("vst2", good));
    }
    // Not to be used.
    const QStringList listed3 =
        names({"crash-at-load", "crash-at-entry", "crash-at-instantiation", "crash-at-parameters",
               "exit-at-load", "leave-at-instantiation", "throw-at-factory", "refuses-entry",
               "gives-null", "negative-count", "endless-parameters", "allocate-at-parameters",
               "lost-controller", "effect", "no-class"});
    const QStringList listed2 = names({"crash-at-open", "exit-at-parameters", "throw-at-parameters",
                                       "wrong-magic", "empty-shell", "allocate-at-instantiation"});
    QStringList listed;
    for (const QString &name : listed3) {
        QVERIFY(place("vst3", name.toLatin1().constData()));
        listed.append(name + latin(".vst3"));
    }
    for (const QString &name : listed2) {
        QVERIFY(place("vst2", name.toLatin1().constData()));
        listed.append(name + latin(".so"));
    }
    QVERIFY(writeBytes(m_rig->path("home/.vst3/text.vst3"), "no plug-in"));
    QVERIFY(QDir().mkpath(m_rig->path("home/.vst3/hollow.vst3")));
    listed += names({"text.vst3", "hollow.vst3"});
    listed.sort();
    // Nothing can be said of them, so that the next scan tries again.
    QVERIFY(place("vst3", "no-controller"));
    QVERIFY(place("vst2", "numbered-names"));

    const auto info = run();
    QVERIFY(info != nullptr);
    QCOMPARE(notSynths(), listed);
    QStringList wanted =
        names({"Bass in two-instruments.vst3: 3", "Instrument in instrument-and-effect.vst3: 3",
               "Lead in two-instruments.vst3: 3", "Listed 13 in shell.so: 3",
               "Shell Lead in shell.so: 3", "Test VST2 in crash-at-close.so: 3",
               "Test VST3 in crash-at-unload.vst3: 3", "Works in failing-and-good.vst3: 3",
               "blank-name in blank-name.vst3: 3", "no-name in no-name.so: 3"});
    wanted.append(QString::fromUtf8("N\u00e4me \u266f in odd-names.vst3: 6"));
    wanted.sort();
    QCOMPARE(described(*info), wanted);
    run();
    QCOMPARE(m_examined, names({"no-controller.vst3", "numbered-names.so"}));
}

void TestScanRealPlugins::plugInsThatHangCostTheirTimeAndNoMore()
{
    QVERIFY(place("vst3", "hang-at-load"));
    QVERIFY(place("vst3", "hang-at-parameters"));
    QVERIFY(place("vst2", "hang-at-open"));
    constexpr int TimeoutMs = 2000;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(run(latin("Trevia Pro 9"), TimeoutMs) != nullptr);
    QVERIFY(timer.elapsed() >= 3 * TimeoutMs);
    const QStringList hanging =
        names({"hang-at-load.vst3", "hang-at-open.so", "hang-at-parameters.vst3"});
    QCOMPARE(m_examined, hanging);
    QCOMPARE(notSynths(), hanging);
    // A neighbour that comes later is found, and they aren't tried again.
    QVERIFY(place("vst3", "two-instruments"));
    const auto info = run();
    QVERIFY(info != nullptr);
    QCOMPARE(m_examined, names({"two-instruments.vst3"}));
    QCOMPARE(described(*info),
             names({"Bass in two-instruments.vst3: 3", "Lead in two-instruments.vst3: 3"}));
}

void TestScanRealPlugins::whatAPlugInStartedIsGoneAfterwards()
{
    const QString told = m_rig->path("process");
    // What has ended and was not waited for yet is gone.
    const auto isGone = [&told] {
        const int pid = bytesOf(told).trimmed().toInt();
        const QByteArray state = bytesOf(latin("/proc/%1/stat").arg(pid));
        return pid > 0 &&
               (::kill(pid, 0) != 0 || state.mid(state.lastIndexOf(')')).startsWith(") Z"));
    };
    QVERIFY(qputenv("TRN_TEST_PROCESS_ID", QFile::encodeName(told)));
    const auto untold = qScopeGuard([&] {
        qunsetenv("TRN_TEST_PROCESS_ID");
        // A test that fails leaves no plug-in running.
        const int pid = bytesOf(told).trimmed().toInt();
        if (bytesOf(latin("/proc/%1/cmdline").arg(pid))
                .contains(QFile::encodeName(told.section(QLatin1Char('/'), 0, -2)))) {
            ::kill(pid, SIGKILL);
        }
    });
    QVERIFY(place("vst3", "hang-at-instantiation"));
    QVERIFY(run(latin("Trevia Pro 9"), 2000) != nullptr);
    QTRY_VERIFY(isGone());
    // One that has left the group that is killed, of a plug-in that hangs and of one that answers.
    QVERIFY(QFile::remove(told));
    QVERIFY(place("vst3", "fork-and-hang-at-instantiation"));
    QVERIFY(run(latin("Trevia Pro 9"), 2000) != nullptr);
    QCOMPARE(notSynths(),
             names({"fork-and-hang-at-instantiation.vst3", "hang-at-instantiation.vst3"}));
    QTRY_VERIFY(isGone());
    QVERIFY(QFile::remove(told));
    QVERIFY(place("vst2", "fork-at-load"));
    const auto info = run();
    QVERIFY(info != nullptr);
    QCOMPARE(described(*info), names({"Test VST2 in fork-at-load.so: 3"}));
    QTRY_VERIFY(isGone());
}

void TestScanRealPlugins::aMillionParametersTakeNoOthersRoom()
{
    QVERIFY(place("vst3", "million-parameters"));
    QVERIFY(place("vst3", "two-instruments"));
    {
        const auto info = run();
        QVERIFY(info != nullptr);
        QCOMPARE(info->getVSTiParameterList(latin("Test VST3")).size(), 1000000);
    }
    rusage usage = {};
    QCOMPARE(::getrusage(RUSAGE_SELF, &usage), 0);
    QVERIFY2(usage.ru_maxrss < MaximumKilobytes, qPrintable(QString::number(usage.ru_maxrss)));
    // It would make a database that is refused, so that it is asked anew each time.
    const auto info = run();
    QVERIFY(info != nullptr);
    QCOMPARE(m_examined, names({"million-parameters.vst3"}));
    QCOMPARE(info->getVSTiParameterList(latin("Lead")).size(), 3);
}

void TestScanRealPlugins::theDemonstrationFindsItsInstrument()
{
    const QString instrument = Plugins + latin("/vst3/TestInstrument.vst3");
    const QString home = m_rig->path("demo <home> & more");
    MachineFolders folders = machineFolders();
    folders.home = home;
    setMachineFolders(folders);
    // Laid out anew on every start.
    for (int i = 0; i < 2; ++i) {
        QProcess script;
        script.setProcessChannelMode(QProcess::ForwardedChannels);
        script.start(QStringLiteral(TRN_SOURCE_DIR "/scripts/make-demo-daw"), {home, instrument});
        QVERIFY(script.waitForFinished());
        QCOMPARE(script.exitCode(), 0);
        QVERIFY(QDir().mkpath(QDir::homePath() + latin("/.vst")));
        const auto info = run(latin("Trevia Demo 9"));
        QVERIFY(info != nullptr);
        QCOMPARE(info->getDAWList(), names({"Trevia Demo 9"}));
        QCOMPARE(info->vst2Folders.at(1).path(),
                 home + latin("/Applications/Trevia 9.app/Contents/VSTPlugIns"));
        QStringList named;
        for (const QDir &folder : std::as_const(info->vst2Folders)) {
            named.append(folder.path());
        }
        QVERIFY(named.contains(latin("/usr/lib/vst")));
        QVERIFY(named.contains(QDir::homePath() + latin("/.vst")));
        QVERIFY(info->getVSTiList().contains(latin("Test Instrument")));
        QCOMPARE(info->getVSTiParameterList(latin("Test Instrument")).size(), 32);
        QCOMPARE(m_examined.contains(latin("TestInstrument.vst3")), i == 0);
    }
}

QTEST_GUILESS_MAIN(TestScanRealPlugins)
#include "tst_scanrealplugins.moc"
