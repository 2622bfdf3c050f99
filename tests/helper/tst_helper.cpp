// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/HelperResult.h"
#include "tests/helper/HelperRun.h"

#include <QtTest/QtTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace
{

// Instead of an exit code: the helper dies of a signal.
constexpr int Dies = -1;

constexpr int MillionParameters = 1000000;
constexpr qsizetype LongName = 64 * 1024;

QStringList namesOf(const ReportedInstrument &instrument)
{
    QStringList names;
    for (const ReportedParameter &parameter : instrument.parameters) {
        names.append(parameter.name);
    }
    return names;
}

// A letter as the kernel tells it; empty if there is no such process.
QByteArray stateOf(pid_t pid)
{
    QFile file("/proc/"_q + QString::number(pid) + "/stat"_q);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray line = file.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1);
}

// Ended, whether or not somebody has asked for how it ended.
bool isGone(pid_t pid)
{
    const QByteArray state = stateOf(pid);
    return state.isEmpty() || state == "Z" || state == "X";
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

// The helper as a process of its own, on plug-ins that do everything that plug-ins do.
class TestHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitCodeTellsWhatBecameOfThePlugin_data();
    void exitCodeTellsWhatBecameOfThePlugin();
    void filesThatCannotBeLoaded_data();
    void filesThatCannotBeLoaded();
    void takingDownNeverTakesTheAnswerBack_data();
    void takingDownNeverTakesTheAnswerBack();
    void bundlesAndSingleFilesAreFound_data();
    void bundlesAndSingleFilesAreFound();

    void vst3ParametersWithGroups();
    void separatePartsAreJoinedAsAHostDoes();
    void flagsDecideWhatIsAParameter();
    void idsThatFitAndThoseThatDoNot();
    void duplicateIdsAreReportedAsTheyAre();
    void oddVst3NamesBecomeLines();
    void groupsInACircleEnd();
    void oddGroups();
    void aDeepGroupKeepsAllItsLevels();
    void aMillionParameters_data();
    void aMillionParameters();
    void severalInstrumentsInOneModule();
    void anEffectBesideAnInstrumentIsLeftOut();
    void aFailingClassCostsOnlyItself();
    void someParametersRefused();
    void anInstrumentWithoutAName_data();
    void anInstrumentWithoutAName();

    void vst2Parameters();
    void vst2Names_data();
    void vst2Names();
    void namesOf64Kilobytes();
    void aShellHoldsManyInstruments_data();
    void aShellHoldsManyInstruments();

    void chatterGoesNowhere_data();
    void chatterGoesNowhere();
    void coreDumpsAndTerminalAreOutOfReach();
    void memoryIsLimited_data();
    void memoryIsLimited();
    void whatThePluginStartedIsEnded_data();
    void whatThePluginStartedIsEnded();
    void aHangingPluginEndsWithItsGroup();
    void aPluginThatClosesWhatIsNotItsOwnKeepsNobodyBusy();
    void aHangingPluginEndsWithTheHelper_data();
    void aHangingPluginEndsWithTheHelper();

    void anOldResultIsReplacedWhole();
    void whatAnEarlierPluginLeftIsInNobodysWay();
    void aResultThatCannotBeWritten();
    void pathsOutsideAscii();
    void helpTellsEveryExitCode();
    void wrongArguments_data();
    void wrongArguments();
};

void TestHelper::exitCodeTellsWhatBecameOfThePlugin_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<int>("code");
    const auto row = [](const char *name, const char *format, const char *behaviour, int code) {
        QTest::newRow(name) << QString::fromUtf8(format) << QString::fromUtf8(behaviour) << code;
    };
    row("0: an instrument", "vst3", "plain", 0);
    row("0: component and controller in one", "vst3", "single", 0);
    row("0: no parameters", "vst3", "no-parameters", 0);
    row("0: a bypass alone says nothing and is no witness", "vst3", "only-bypass", 0);
    row("0: a factory of the second generation", "vst3", "second-factory", 0);
    row("0: a negative number of units", "vst3", "negative-units", 0);
    row("0: VST2 instrument", "vst2", "plain", 0);
    row("0: VST2 with the old entry", "vst2-main", "plain", 0);
    row("0: VST2 without parameters", "vst2", "no-parameters", 0);
    row("0: VST2 with one name that says something", "vst2", "one-name", 0);
    row("0: a thread left running", "vst3", "thread-at-instantiation", 0);
    row("0: VST2 with a thread left running", "vst2", "thread-at-load", 0);
    row("1: no controller", "vst3", "no-controller", 1);
    row("2: numbered names", "vst3", "numbered-names", 2);
    row("2: numbered names beside a bypass", "vst3", "numbered-but-bypass", 2);
    row("2: empty names", "vst3", "no-names", 2);
    row("2: VST2 with numbered names", "vst2", "numbered-names", 2);
    row("2: VST2 with empty names", "vst2", "no-names", 2);
    row("3: an effect", "vst3", "effect", 3);
    row("3: a first factory, which knows no sub-categories", "vst3", "first-factory", 3);
    row("3: VST2 effect", "vst2", "effect", 3);
    row("5: no factory", "vst3", "no-factory", 5);
    row("5: the factory throws", "vst3", "throw-at-factory", 5);
    row("6: module entry refuses", "vst3", "refuses-entry", 6);
    row("6: module entry throws", "vst3", "throw-at-entry", 6);
    row("6: no instance", "vst3", "gives-null", 6);
    row("6: instance throws", "vst3", "throw-at-instantiation", 6);
    row("6: component refuses", "vst3", "refuses", 6);
    row("6: component throws", "vst3", "throw-at-initialisation", 6);
    row("6: controller refuses", "vst3", "controller-refuses", 6);
    row("6: controller throws", "vst3", "throw-at-controller", 6);
    row("6: VST2 without an instance", "vst2", "gives-null", 6);
    row("6: VST2 with a wrong mark", "vst2", "wrong-magic", 6);
    row("6: VST2 without a dispatcher", "vst2", "no-dispatcher", 6);
    row("6: VST2 entry throws", "vst2", "throw-at-instantiation", 6);
    row("6: VST2 throws when it is opened", "vst2", "throw-at-open", 6);
    row("7: controller is lost", "vst3", "lost-controller", 7);
    row("7: negative count", "vst3", "negative-count", 7);
    row("7: gives no parameter at all", "vst3", "gives-no-parameters", 7);
    row("7: throws at a parameter", "vst3", "throw-at-parameters", 7);
    row("7: never comes to an end", "vst3", "endless-parameters", 7);
    row("7: an instrument that fails outweighs an effect", "vst3", "failing-and-effect", 7);
    row("7: VST2 with a negative count", "vst2", "negative-count", 7);
    row("7: VST2 throws at a parameter", "vst2", "throw-at-parameters", 7);
    row("7: VST2 never comes to an end", "vst2", "endless-parameters", 7);
    row("8: no class", "vst3", "no-class", 8);
    row("8: a controller only", "vst3", "no-audio-class", 8);
    row("8: an empty shell", "vst2", "empty-shell", 8);
    for (const char *format : {"vst2", "vst3"}) {
        // A plug-in that ends the process has answered nothing, whatever code it gave.
        for (const char *deed : {"crash", "exit", "leave"}) {
            for (const char *stage : {"load", "instantiation", "parameters"}) {
                QTest::addRow("dies: %s, %s at %s", format, deed, stage)
                    << QString::fromUtf8(format)
                    << QString::fromUtf8(deed) + "-at-"_q + QString::fromUtf8(stage) << Dies;
            }
        }
    }
    row("dies: crash at entry", "vst3", "crash-at-entry", Dies);
    row("dies: exit at entry", "vst3", "exit-at-entry", Dies);
    row("dies: crash in the controller", "vst3", "crash-at-controller", Dies);
}

void TestHelper::exitCodeTellsWhatBecameOfThePlugin()
{
    QFETCH(QString, format);
    QFETCH(QString, behaviour);
    QFETCH(int, code);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, behaviour)));
    QCOMPARE(helper.died(), code == Dies);
    if (code != Dies) {
        QCOMPARE(helper.exitCode(), code);
    }
    QVERIFY(helper.saidNothing());
    const bool hasFile = code == 0 || code == 2;
    QCOMPARE(helper.written(), hasFile ? QStringList("result.txt"_q) : QStringList());
    if (hasFile) {
        QVERIFY(helper.report());
        QCOMPARE(helper.report()->size(), 1);
    }
}

void TestHelper::filesThatCannotBeLoaded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");
    QTest::newRow("missing VST3") << "missing.vst3"_q << 4;
    QTest::newRow("missing VST2") << "missing.so"_q << 4;
    QTest::newRow("a text") << "text.so"_q << 4;
    QTest::newRow("an empty file") << "empty.vst3"_q << 4;
    QTest::newRow("cut off in the middle") << "cut.vst3"_q << 4;
    QTest::newRow("another architecture") << "foreign.so"_q << 4;
    QTest::newRow("in want of a library") << "orphan.so"_q << 4;
    QTest::newRow("a bundle for another system") << "elsewhere.vst3"_q << 4;
    QTest::newRow("a bundle with two objects of other names") << "two.vst"_q << 4;
    QTest::newRow("an empty bundle") << "nothing.vst"_q << 4;
    QTest::newRow("neither format's entry, as VST2") << "module.so"_q << 5;
    QTest::newRow("neither format's entry, as VST3") << "module.vst3"_q << 5;
    QTest::newRow("a VST2 plug-in under a VST3 name") << "vst2.vst3"_q << 5;
    QTest::newRow("a VST3 module under a VST2 name") << "vst3.so"_q << 5;
}

void TestHelper::filesThatCannotBeLoaded()
{
    QFETCH(QString, name);
    QFETCH(int, code);
    HelperRun helper;
    const QString misbehaving = HelperRun::plugins() + "/misbehaving/"_q;
    const QByteArray whole = readFile(misbehaving + "vst2.so"_q);
    QVERIFY(whole.size() > 4096);
    writeFile(helper.path("text.so"_q), "This is no plug-in.\n");
    writeFile(helper.path("empty.vst3"_q), {});
    // Early, since what lies behind may be no more than what debuggers read.
    writeFile(helper.path("cut.vst3"_q), whole.left(8192));
    QByteArray foreign = whole;
    // The machine's number in the file's head; 0xF3 is none that this runs on.
    foreign[18] = static_cast<char>(0xF3);
    writeFile(helper.path("foreign.so"_q), foreign);
    QVERIFY(QDir().mkpath(helper.path("elsewhere.vst3/Contents/MacOS"_q)));
    writeFile(helper.path("elsewhere.vst3/Contents/MacOS/elsewhere"_q), whole);
    QVERIFY(QDir().mkpath(helper.path("nothing.vst"_q)));
    QVERIFY(QDir().mkpath(helper.path("two.vst"_q)));
    writeFile(helper.path("two.vst/a.so"_q), whole);
    writeFile(helper.path("two.vst/b.so"_q), whole);
    QFile::link(misbehaving + "orphan.so"_q, helper.path("orphan.so"_q));
    QFile::link(misbehaving + "empty.so"_q, helper.path("module.so"_q));
    QFile::link(misbehaving + "empty.so"_q, helper.path("module.vst3"_q));
    QFile::link(misbehaving + "vst2.so"_q, helper.path("vst2.vst3"_q));
    QFile::link(misbehaving + "vst3.so"_q, helper.path("vst3.so"_q));

    QVERIFY(helper.run(helper.path(name)));
    QVERIFY(!helper.died());
    QCOMPARE(helper.exitCode(), code);
    QVERIFY(helper.saidNothing());
    QCOMPARE(helper.written(), QStringList());
}

void TestHelper::takingDownNeverTakesTheAnswerBack_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("behaviour");
    const QList<std::pair<QString, QStringList>> stages = {
        {"vst2"_q, {"close"_q, "unload"_q}},
        {"vst3"_q, {"terminate"_q, "controller-terminate"_q, "exit"_q, "unload"_q}},
    };
    for (const auto &[format, names] : stages) {
        for (const QString &stage : names) {
            for (const QString &deed : {"crash"_q, "exit"_q, "leave"_q, "throw"_q}) {
                const QString behaviour = deed + "-at-"_q + stage;
                QTest::addRow("%s, %s", qPrintable(format), qPrintable(behaviour))
                    << format << behaviour;
            }
        }
    }
    // One of each, since each costs what a plug-in is given for its end.
    QTest::newRow("vst2, hang-at-close") << "vst2"_q
                                         << "hang-at-close"_q;
    QTest::newRow("vst3, hang-at-unload") << "vst3"_q
                                          << "hang-at-unload"_q;
}

void TestHelper::takingDownNeverTakesTheAnswerBack()
{
    QFETCH(QString, format);
    QFETCH(QString, behaviour);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, behaviour)));
    QVERIFY(!helper.died());
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.instrument().parameters.size(), 3);
    QVERIFY(helper.saidNothing());
    if (helper.processId() != 0) {
        QVERIFY(isGone(helper.processId()));
    }
}

void TestHelper::bundlesAndSingleFilesAreFound_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("plugin");
    const QString inside = "Contents/"_q + QSysInfo::buildCpuArchitecture() + "-linux/"_q;
    const QString arch =
        inside.contains("x86_64"_q) ? "Contents/x86_64-linux/"_q : "Contents/aarch64-linux/"_q;
    QTest::newRow("VST3 bundle") << "One.vst3/"_q + arch + "One.so"_q
                                 << "vst3"_q
                                 << "One.vst3"_q;
    QTest::newRow("VST3 bundle with a slash at its end") << "One.vst3/"_q + arch + "One.so"_q
                                                         << "vst3"_q
                                                         << "One.vst3/"_q;
    QTest::newRow("renamed VST3 bundle") << "Two.vst3/"_q + arch + "One.so"_q
                                         << "vst3"_q
                                         << "Two.vst3"_q;
    QTest::newRow("VST3 bundle with an extension in capitals") << "One.VST3/"_q + arch + "One.so"_q
                                                               << "vst3"_q
                                                               << "One.VST3"_q;
    QTest::newRow("VST3 bundle with dots in its name")
        << "One.v1.2.vst3/"_q + arch + "One.v1.2.so"_q
        << "vst3"_q
        << "One.v1.2.vst3"_q;
    QTest::newRow("single VST3 file") << "One.vst3"_q
                                      << "vst3"_q
                                      << "One.vst3"_q;
    QTest::newRow("VST2 bundle") << "One.vst/One.so"_q
                                 << "vst2"_q
                                 << "One.vst"_q;
    QTest::newRow("renamed VST2 bundle") << "Two.vst/One.so"_q
                                         << "vst2"_q
                                         << "Two.vst"_q;
    QTest::newRow("VST2 object inside its bundle") << "One.vst/One.so"_q
                                                   << "vst2"_q
                                                   << "One.vst/One.so"_q;
    QTest::newRow("single VST2 file") << "One.so"_q
                                      << "vst2"_q
                                      << "One.so"_q;
    QTest::newRow("single VST2 file as .vst") << "One.vst"_q
                                              << "vst2"_q
                                              << "One.vst"_q;
}

void TestHelper::bundlesAndSingleFilesAreFound()
{
    QFETCH(QString, object);
    QFETCH(QString, format);
    QFETCH(QString, plugin);
    HelperRun helper;
    QVERIFY(QDir().mkpath(QFileInfo(helper.path(object)).path()));
    QVERIFY(QFile::copy(HelperRun::plugins() + "/misbehaving/"_q + format + ".so"_q,
                        helper.path(object)));
    QVERIFY(helper.run(helper.path(plugin)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.instrument().name, format == "vst3"_q ? "Test VST3"_q : "Test VST2"_q);
}

void TestHelper::vst3ParametersWithGroups()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "plain"_q)));
    const QList<ReportedParameter> wanted = {
        {4201, "Volume"_q, {}},
        {4211, "Cutoff"_q, {"Filter"_q}},
        {4212, "Attack"_q, {"Filter"_q, "Envelope"_q}},
    };
    QCOMPARE(helper.instrument().name, "Test VST3"_q);
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::separatePartsAreJoinedAsAHostDoes()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "joined"_q)));
    QCOMPARE(helper.exitCode(), 0);
    const QStringList wanted = {"TARN/TERN Remote Editor"_q, "supported interfaces"_q, "handler"_q,
                                "message"_q, "state"_q};
    QCOMPARE(namesOf(helper.instrument()), wanted);
}

void TestHelper::flagsDecideWhatIsAParameter()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "special-flags"_q)));
    const QList<ReportedParameter> wanted = {
        {4201, "Plain"_q, {}},
        {4205, "Wave"_q, {"Filter"_q}},
        {4206, "Not Automated"_q, {"Filter"_q, "Envelope"_q}},
        {10004202, "Off"_q, {}},
    };
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::idsThatFitAndThoseThatDoNot()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "large-ids"_q)));
    const QList<ReportedParameter> wanted = {
        {2147483647, "Largest"_q, {}},
        {4201, "Smallest"_q, {}},
    };
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::duplicateIdsAreReportedAsTheyAre()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "duplicate-ids"_q)));
    const QList<ReportedParameter> wanted = {
        {4208, "First"_q, {}},
        {4208, "Second"_q, {}},
        {4209, "Third"_q, {}},
    };
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::oddVst3NamesBecomeLines()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "odd-names"_q)));
    QCOMPARE(helper.instrument().name, "N\u00E4me \u266F"_q);
    const QStringList wanted = {
        "Cut off     !"_q,
        "\u0416 \U0001F39B \u96F6"_q,
        "half \uFFFD pair\uFFFD"_q,
        QString(128, u'x'),
        "Short"_q,
        "\uFFFE\uFFFF"_q,
    };
    QCOMPARE(namesOf(helper.instrument()), wanted);
}

void TestHelper::groupsInACircleEnd()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "circle-of-groups"_q)));
    const QList<ReportedParameter> wanted = {
        {4201, "In Circle"_q, {"Three"_q, "Two"_q, "One"_q}},
        {4202, "In Itself"_q, {"Self"_q}},
        {4203, "Nowhere"_q, {}},
    };
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::oddGroups()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "odd-groups"_q)));
    const QList<ReportedParameter> wanted = {
        {4201, "A"_q, {"Alone"_q}},
        {4202, "B"_q, {"Lost"_q}},
        {4203, "C"_q, {"First"_q}},
        {4204, "D"_q, {"First"_q, "In ner"_q}},
    };
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::aDeepGroupKeepsAllItsLevels()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "deep-groups"_q)));
    QCOMPARE(helper.instrument().parameters.size(), 1);
    QCOMPARE(helper.instrument().parameters.first().groups, QStringList(300, "Level"_q));
}

void TestHelper::aMillionParameters_data()
{
    QTest::addColumn<QString>("format");
    QTest::newRow("VST2") << "vst2"_q;
    QTest::newRow("VST3") << "vst3"_q;
}

void TestHelper::aMillionParameters()
{
    QFETCH(QString, format);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, "million-parameters"_q)));
    QCOMPARE(helper.exitCode(), 0);
    const ReportedInstrument instrument = helper.instrument();
    QCOMPARE(instrument.parameters.size(), MillionParameters);
    QCOMPARE(instrument.parameters.first().id, 4201);
    QCOMPARE(instrument.parameters.last().id, 4200 + MillionParameters);
}

void TestHelper::severalInstrumentsInOneModule()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "two-instruments"_q)));
    QCOMPARE(helper.exitCode(), 0);
    const auto report = helper.report();
    QVERIFY(report);
    QCOMPARE(report->size(), 2);
    QCOMPARE(report->at(0).name, "Lead"_q);
    QCOMPARE(report->at(1).name, "Bass"_q);
    QCOMPARE(report->at(1).parameters.size(), 3);
}

void TestHelper::anEffectBesideAnInstrumentIsLeftOut()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "instrument-and-effect"_q)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.instrument().name, "Instrument"_q);
}

void TestHelper::aFailingClassCostsOnlyItself()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "failing-and-good"_q)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.instrument().name, "Works"_q);
}

void TestHelper::someParametersRefused()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst3"_q, "gives-some-parameters"_q)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(namesOf(helper.instrument()), QStringList({"Volume"_q, "Attack"_q}));
}

void TestHelper::anInstrumentWithoutAName_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<QString>("name");
    // A blank name would be no name to the reader, who would lose his place.
    QTest::newRow("VST3, blanks") << "vst3"_q
                                  << "blank-name"_q
                                  << "blank-name"_q;
    QTest::newRow("VST2, none") << "vst2"_q
                                << "no-name"_q
                                << "no-name"_q;
    QTest::newRow("VST2, blanks") << "vst2"_q
                                  << "blank-name"_q
                                  << "blank-name"_q;
    QTest::newRow("VST2, by its product") << "vst2"_q
                                          << "product-name"_q
                                          << "Product"_q;
}

void TestHelper::anInstrumentWithoutAName()
{
    QFETCH(QString, format);
    QFETCH(QString, behaviour);
    QFETCH(QString, name);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, behaviour)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.instrument().name, name);
    QCOMPARE(helper.instrument().parameters.size(), 3);
}

void TestHelper::vst2Parameters()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst2"_q, "plain"_q)));
    const QList<ReportedParameter> wanted = {
        {4201, "Knob 1"_q, {}},
        {4202, "Knob 2"_q, {}},
        {4203, "Knob 3"_q, {}},
    };
    QCOMPARE(helper.instrument().name, "Test VST2"_q);
    QCOMPARE(helper.instrument().parameters, wanted);
}

void TestHelper::vst2Names_data()
{
    QTest::addColumn<QString>("behaviour");
    QTest::addColumn<QString>("second");
    QTest::newRow("line feeds and control characters") << "line-feeds"_q
                                                       << "Cut off  2"_q;
    QTest::newRow("Latin-1") << "latin-1"_q
                             << "Lautst\u00E4rke 2"_q;
    QTest::newRow("UTF-8") << "utf-8"_q
                           << "Lautst\u00E4rke \u266F\U0001D11E 2"_q;
    QTest::newRow("one among empty ones") << "one-name"_q
                                          << "Cutoff"_q;
}

void TestHelper::vst2Names()
{
    QFETCH(QString, behaviour);
    QFETCH(QString, second);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst2"_q, behaviour)));
    QCOMPARE(helper.instrument().parameters.size(), 3);
    QCOMPARE(helper.instrument().parameters.at(1).name, second);
}

void TestHelper::namesOf64Kilobytes()
{
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst2"_q, "long-names"_q)));
    QCOMPARE(helper.exitCode(), 0);
    const QStringList wanted = {QString(LongName, u'a'), QString(LongName, u'b'),
                                QString(LongName, u'c')};
    QCOMPARE(namesOf(helper.instrument()), wanted);
}

void TestHelper::aShellHoldsManyInstruments_data()
{
    QTest::addColumn<QString>("behaviour");
    QTest::newRow("a list with an end") << "shell"_q;
    QTest::newRow("a list that starts anew") << "endless-shell"_q;
}

void TestHelper::aShellHoldsManyInstruments()
{
    QFETCH(QString, behaviour);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin("vst2"_q, behaviour)));
    QCOMPARE(helper.exitCode(), 0);
    const auto report = helper.report();
    QVERIFY(report);
    QCOMPARE(report->size(), 2);
    // The plug-in's own name, or the one in the shell's list.
    QCOMPARE(report->at(0).name, "Shell Lead"_q);
    QCOMPARE(report->at(1).name, "Listed 13"_q);
    QCOMPARE(report->at(1).parameters.size(), 3);
}

void TestHelper::chatterGoesNowhere_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("stage");
    for (const char *format : {"vst2", "vst3"}) {
        for (const char *stage : {"load", "instantiation", "unload"}) {
            QTest::addRow("%s, %s", format, stage)
                << QString::fromUtf8(format) << QString::fromUtf8(stage);
        }
    }
}

void TestHelper::chatterGoesNowhere()
{
    QFETCH(QString, format);
    QFETCH(QString, stage);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, "chatter-at-"_q + stage)));
    QCOMPARE(helper.exitCode(), 0);
    QVERIFY(helper.saidNothing());
    QCOMPARE(helper.instrument().parameters.size(), 3);
}

void TestHelper::coreDumpsAndTerminalAreOutOfReach()
{
    HelperRun helper;
    // Started from a terminal, as a user may start the editor.
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    const auto closeMaster = qScopeGuard([master] { close(master); });
    QVERIFY(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const QByteArray terminal = ptsname(master);
    helper.process.setChildProcessModifier([terminal] {
        setsid();
        open(terminal.constData(), O_RDWR);
    });
    QVERIFY(helper.run(helper.plugin("vst2"_q, "surroundings"_q)));
    QCOMPARE(namesOf(helper.instrument()),
             QStringList({"no core dump"_q, "/dev/null"_q, "no terminal"_q}));
}

void TestHelper::memoryIsLimited_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("stage");
    QTest::newRow("VST2, entry") << "vst2"_q
                                 << "instantiation"_q;
    QTest::newRow("VST2, parameters") << "vst2"_q
                                      << "parameters"_q;
    QTest::newRow("VST3, entry") << "vst3"_q
                                 << "entry"_q;
    QTest::newRow("VST3, controller") << "vst3"_q
                                      << "controller"_q;
    QTest::newRow("VST3, parameters") << "vst3"_q
                                      << "parameters"_q;
}

void TestHelper::memoryIsLimited()
{
    QFETCH(QString, format);
    QFETCH(QString, stage);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, "allocate-at-"_q + stage)));
    // It gets an exception for what it asks, or what it stands on ends the process.
    QVERIFY(helper.died() || helper.exitCode() == 6 || helper.exitCode() == 7);
    QCOMPARE(helper.written(), QStringList());
}

void TestHelper::whatThePluginStartedIsEnded_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("stage");
    QTest::newRow("VST2, load") << "vst2"_q
                                << "load"_q;
    QTest::newRow("VST2, close") << "vst2"_q
                                 << "close"_q;
    QTest::newRow("VST3, instantiation") << "vst3"_q
                                         << "instantiation"_q;
    QTest::newRow("VST3, unload") << "vst3"_q
                                  << "unload"_q;
}

void TestHelper::whatThePluginStartedIsEnded()
{
    QFETCH(QString, format);
    QFETCH(QString, stage);
    HelperRun helper;
    QVERIFY(helper.run(helper.plugin(format, "fork-at-"_q + stage)));
    QCOMPARE(helper.exitCode(), 0);
    QVERIFY(helper.processId() > 0);
    QVERIFY(isGone(helper.processId()));
}

void TestHelper::aHangingPluginEndsWithItsGroup()
{
    HelperRun helper;
    helper.process.setChildProcessModifier([] { setpgid(0, 0); });
    helper.start(helper.plugin("vst3"_q, "hang-at-instantiation"_q));
    QTRY_VERIFY_WITH_TIMEOUT(helper.processId() > 0, 30000);
    // The plug-in may have told its number before the process was taken note of here.
    QVERIFY(helper.process.state() == QProcess::Running || helper.process.waitForStarted(30000));
    QCOMPARE(getpgid(helper.processId()), static_cast<pid_t>(helper.process.processId()));
    QCOMPARE(kill(-static_cast<pid_t>(helper.process.processId()), SIGKILL), 0);
    QVERIFY(helper.process.waitForFinished(30000));
    QTRY_VERIFY_WITH_TIMEOUT(isGone(helper.processId()), 30000);
    QCOMPARE(helper.written(), QStringList());
}

void TestHelper::aPluginThatClosesWhatIsNotItsOwnKeepsNobodyBusy()
{
    HelperRun helper;
    helper.start(helper.plugin("vst2"_q, "close-and-hang-at-load"_q));
    QTRY_VERIFY_WITH_TIMEOUT(helper.processId() > 0, 30000);
    const auto watcher = static_cast<pid_t>(helper.process.processId());
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(watcher), QByteArray("S"), 30000);
    QCOMPARE(kill(watcher, SIGTERM), 0);
    QVERIFY(helper.process.waitForFinished(30000));
    QVERIFY(helper.died());
    QTRY_VERIFY_WITH_TIMEOUT(isGone(helper.processId()), 30000);
}

void TestHelper::aHangingPluginEndsWithTheHelper_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("asked to end") << SIGTERM;
    QTest::newRow("interrupted") << SIGINT;
    QTest::newRow("killed") << SIGKILL;
}

void TestHelper::aHangingPluginEndsWithTheHelper()
{
    QFETCH(int, signalNumber);
    HelperRun helper;
    helper.start(helper.plugin("vst2"_q, "hang-at-parameters"_q));
    QTRY_VERIFY_WITH_TIMEOUT(helper.processId() > 0, 30000);
    QCOMPARE(kill(static_cast<pid_t>(helper.process.processId()), signalNumber), 0);
    QVERIFY(helper.process.waitForFinished(30000));
    QVERIFY(helper.died());
    QTRY_VERIFY_WITH_TIMEOUT(isGone(helper.processId()), 30000);
}

void TestHelper::anOldResultIsReplacedWhole()
{
    HelperRun helper;
    const QString plugin = helper.plugin("vst3"_q, "plain"_q);
    helper.start(QStringList{plugin, helper.path("result.txt"_q)});
    QVERIFY(helper.process.waitForFinished(60000));
    const QByteArray good = readFile(helper.resultPath());
    writeFile(helper.path("result-old.txt"_q), QByteArray(100000, 'x'));
    // A link in the place of what is renamed leads nowhere else.
    writeFile(helper.path("precious"_q), "kept");
    QFile::link(helper.path("precious"_q), helper.path("result-linked.txt"_q));
    for (const QString &name : {"result-old.txt"_q, "result-linked.txt"_q}) {
        helper.start(QStringList{plugin, helper.path(name)});
        QVERIFY(helper.process.waitForFinished(60000));
        QCOMPARE(helper.exitCode(), 0);
        QCOMPARE(readFile(helper.path(name)), good);
    }
    QCOMPARE(readFile(helper.path("precious"_q)), QByteArray("kept"));
}

void TestHelper::whatAnEarlierPluginLeftIsInNobodysWay()
{
    HelperRun helper;
    const QString unfinished = helper.resultPath() + ".part"_q;
    writeFile(helper.path("precious"_q), "kept");
    QVERIFY(QFile::link(helper.path("precious"_q), unfinished));
    QVERIFY(helper.run(helper.plugin("vst3"_q, "plain"_q)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.written(), QStringList{"result.txt"_q});
    QCOMPARE(readFile(helper.path("precious"_q)), QByteArray("kept"));
    // Opening it would wait for a reader.
    QCOMPARE(mkfifo(QFile::encodeName(unfinished).constData(), 0600), 0);
    QVERIFY(helper.run(helper.plugin("vst3"_q, "plain"_q)));
    QCOMPARE(helper.exitCode(), 0);
    QCOMPARE(helper.written(), QStringList{"result.txt"_q});
}

void TestHelper::aResultThatCannotBeWritten()
{
    HelperRun helper;
    // Whatever is no file stays what it is.
    const QByteArray pipe = QFile::encodeName(helper.path("pipe"_q));
    QCOMPARE(mkfifo(pipe.constData(), 0600), 0);
    helper.start(QStringList{helper.plugin("vst3"_q, "plain"_q), helper.path("pipe"_q)});
    QVERIFY(helper.process.waitForFinished(60000));
    QCOMPARE(helper.exitCode(), 73);
    struct stat status = {};
    QCOMPARE(lstat(pipe.constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));

    helper.start(
        QStringList{helper.plugin("vst3"_q, "plain"_q), helper.path("no/such/result.txt"_q)});
    QVERIFY(helper.process.waitForFinished(60000));
    QVERIFY(!helper.died());
    QCOMPARE(helper.exitCode(), static_cast<int>(HelperExit::ResultNotWritten));
}

void TestHelper::pathsOutsideAscii()
{
    HelperRun helper;
    const QString folder = helper.path("Gr\u00F6\u00DFe \u266F"_q);
    QVERIFY(QDir().mkpath(folder));
    const QString plugin = folder + "/\u0416\u0443\u043A.so"_q;
    QVERIFY(QFile::copy(HelperRun::plugins() + "/misbehaving/vst2.so"_q, plugin));
    helper.start(QStringList{plugin, folder + "/result.txt"_q});
    QVERIFY(helper.process.waitForFinished(60000));
    QCOMPARE(helper.exitCode(), 0);
    QVERIFY(readReport(readFile(folder + "/result.txt"_q)));
}

void TestHelper::helpTellsEveryExitCode()
{
    HelperRun helper;
    helper.start(QStringList{"--help"_q});
    QVERIFY(helper.process.waitForFinished(60000));
    QCOMPARE(helper.exitCode(), 0);
    const QString help = QString::fromUtf8(helper.process.readAllStandardOutput());
    QVERIFY(helper.process.readAllStandardError().isEmpty());
    for (const HelperExitMeaning &meaning : HelperExitMeanings) {
        const QString line = QString::number(static_cast<int>(meaning.code)).rightJustified(4) +
                             "  "_q + QString::fromUtf8(meaning.text) + "\n"_q;
        QVERIFY2(help.contains("\n"_q + line), qPrintable(line));
    }
}

void TestHelper::wrongArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("none") << QStringList();
    QTest::newRow("one") << QStringList("a.so"_q);
    QTest::newRow("three") << QStringList({"a.so"_q, "b"_q, "c"_q});
}

void TestHelper::wrongArguments()
{
    QFETCH(QStringList, arguments);
    HelperRun helper;
    helper.start(arguments);
    QVERIFY(helper.process.waitForFinished(60000));
    QCOMPARE(helper.exitCode(), static_cast<int>(HelperExit::Usage));
    QVERIFY(helper.process.readAllStandardError().contains("usage"));
}

QTEST_GUILESS_MAIN(TestHelper)
#include "tst_helper.moc"
