// SPDX-License-Identifier: GPL-3.0-or-later
#include "VSTiPathFinder/source/CVSTiPathFinder.h"
#include "app/Constants.h"
#include "vsti/AnalyzeVSTiThread.h"
#include "vsti/VstiHarness.h"

#include <QtTest/QtTest>

#include <sys/stat.h>

#include <csignal>

// The scan: what is asked of the helper, and what is made of its answers. The helper is a script
// that each plug-in brings along: a file's content, or a bundle's Contents/behaviour.

namespace
{

QByteArray parameter(int id, const QByteArray &name, const QByteArrayList &groups = {})
{
    QByteArray text =
        QByteArray::number(id) + '\n' + name + '\n' + QByteArray::number(groups.size()) + '\n';
    for (const QByteArray &group : groups) {
        text += group + '\n';
    }
    return text;
}

QByteArray instrument(const QByteArray &name, const QByteArrayList &parameters = {})
{
    return name + '\n' + QByteArray::number(parameters.size()) + '\n' + parameters.join();
}

QByteArray answer(const QByteArrayList &instruments)
{
    return QByteArray::number(instruments.size()) + '\n' + instruments.join();
}

// The script of a plug-in: writes the text and ends with the code.
QByteArray says(const QByteArray &text, int code = 0)
{
    return "cat > \"$2\" <<'end'\n" + text + "end\nexit " + QByteArray::number(code) + '\n';
}

QByteArray ends(int code)
{
    return "exit " + QByteArray::number(code) + '\n';
}

QByteArray cutOff(const QByteArray &text)
{
    return "printf '%s' '" + text + "' > \"$2\"\nexit 0\n";
}

class ScanningVSTiInfo : public ScannedVSTiInfo
{
public:
    using ScannedVSTiInfo::ScannedVSTiInfo;
    using VSTiInfo::execVSTiInfoFinder;
    using VSTiInfo::helperTimeoutMs;
    using VSTiInfo::moduleFolder;

    // One record per line: name, file name, format, parameters.
    QStringList results() const
    {
        QStringList lines;
        for (const SVSTiInfo &info : *scanResults) {
            lines.append(
                QString::fromUtf8(info.name + ' ' + info.path.mid(info.path.lastIndexOf('/') + 1)) +
                latin(info.isVST2 ? " 2 " : " 3 ") + QString::number(info.parameters.size()));
        }
        return lines;
    }
};

} // namespace

class TestVSTiScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void anInstrumentIsFoundWithItsParameters();
    void theWholeRunEndsInTheListsAndTheDatabase();
    void withNothingNewTheHelperIsNotStarted();
    void theSharedObjectOfAKnownBundleIsNotAsked();
    void aTouchedFileIsAskedAgain();
    void exitCodes_data();
    void exitCodes();
    void exitCodesOfFilesThatTheTableKnows_data();
    void exitCodesOfFilesThatTheTableKnows();
    void withoutFallbackAFailedHelperLeavesNothing_data();
    void withoutFallbackAFailedHelperLeavesNothing();
    void aListWithoutMeaningCountsWithADescriptionBesideIt();
    void aListWithoutMeaningDoesNotCountByADescriptionWithinIt();
    void aDescriptionInTheBundleIsFound();
    void damagedAnswers_data();
    void damagedAnswers();
    void anAnswerCutOffKeepsWhatWasComplete();
    void answers_data();
    void answers();
    void idsOfParameters_data();
    void idsOfParameters();
    void anOldAnswerIsNotMistakenForANewOne();
    void theAnswerIsGoneAfterwards_data();
    void theAnswerIsGoneAfterwards();
    void anAnswerTooLargeIsNotRead();
    void anAnswerThatIsAPipeIsNotWaitedFor();
    void theHelperIsToldThePlugInAndTheResultFile();
    void withoutHelperTheTableDecides();
    void aHelperThatCannotRunIsNoHelper();
    void aHelperThatHangsIsKilledWithAllItStarted();
    void aHelperThatEndsLeavesNothingRunning();
    void aHelperThatCrashesLeavesNothingRunning();
    void chatterGoesNowhereAndNobodyWaitsForInput();
    void ofTwoFormatsTheLaterOneIsTaken();
    void theOtherFormatIsPutBackOnTheListAfterAnUpdate();
    void anEntryOfTheDatabaseHidesTheOlderFormat();
    void anEntryOfTheDatabaseHidesByItsNameUpToTheFirstDot();
    void namesWithSeveralDotsAreTwoPlugIns();
    void anOlderFormatIsTakenWhereTheLaterIsNoInstrument();
    void theThreeInstrumentsOfOneFileAreThree();
    void anAliasAndItsPlainFormAreOneInstrument();
    void wellKnownPlugInsAreExaminedOnce();
    void wellKnownPlugInsUnderAnotherNameAreExaminedEachTime();
    void theListDoesNotHoldBackWellKnownPlugIns();
    void pathsWithLettersOutsideASCIIComeThrough();
    void namesThatAreNoTextAreListed();
    void awkwardNamesReachTheHelperAsTheyAre();
    void theFilesAreToldAndThenNull();
    void theDatabaseFolderIsMadeIfMissing();
    void aSecondScanForgetsTheFirst();
    void aScanOnAThreadOfItsOwn();
    void anotherEditorsScanIsWaitedFor();
    void aScanThatWaitsCanBeAbandoned();
    void whatCannotBeLockedIsNotWaitedFor_data();
    void whatCannotBeLockedIsNotWaitedFor();
    void aFolderInTheAnswersPlaceIsCleared_data();
    void aFolderInTheAnswersPlaceIsCleared();
    void aHundredPlugInsOfAllKinds();
    void readingLines();
    void readingLinesOfAnyLength();

private:
    QString vst3(const char *name) const { return m_rig->path("home/.vst3/") + latin(name); }
    QString vst2(const char *name) const
    {
        return m_rig->path("system/opt/.app/Contents/VSTPlugIns/") + latin(name);
    }
    std::unique_ptr<ScanningVSTiInfo> model() const
    {
        return std::make_unique<ScanningVSTiInfo>(QDir(m_rig->path("modules")),
                                                  QDir(m_rig->path("resources")),
                                                  QDir(m_rig->path("data")));
    }
    // A scan's results; nothing is entered yet.
    std::unique_ptr<ScanningVSTiInfo> scan() const
    {
        std::unique_ptr<ScanningVSTiInfo> info = model();
        info->selectDAW(latin("Some DAW"));
        info->analyzeVSTi();
        return info;
    }
    std::unique_ptr<ScanningVSTiInfo> scanAndEnter() const
    {
        std::unique_ptr<ScanningVSTiInfo> info = scan();
        info->entryVSTiParameter();
        return info;
    }
    QStringList asked() const;
    QString notSynths() const { return QString::fromUtf8(bytesOf(m_rig->notSynthList())); }
    bool hasResultFile() const { return QFileInfo::exists(m_rig->path("data/VSTiInfoFinder.txt")); }
    bool isRunning(const QString &pidFile) const;

    std::unique_ptr<VstiRig> m_rig;
};

void TestVSTiScan::init()
{
    m_rig = std::make_unique<VstiRig>();
    const QString helper = m_rig->path("modules/vif_tarn_tern_x64");
    QVERIFY(writeBytes(helper,
                       "#!/bin/sh\n"
                       "printf '%s\\n' \"$1\" >> \"${0%/*}/asked\"\n"
                       "printf '%s\\n' \"$2\" > \"${0%/*}/told\"\n"
                       "if [ -d \"$1\" ]; then . \"$1/Contents/behaviour\"; else . \"$1\"; fi\n"));
    QVERIFY(QFile::setPermissions(helper, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void TestVSTiScan::cleanup()
{
    QVERIFY(!hasResultFile());
    m_rig.reset();
}

QStringList TestVSTiScan::asked() const
{
    QStringList files;
    const QString text = QString::fromUtf8(bytesOf(m_rig->path("modules/asked")));
    for (const QString &path : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        files.append(path.section(QLatin1Char('/'), -1));
    }
    files.sort();
    return files;
}

bool TestVSTiScan::isRunning(const QString &pidFile) const
{
    const int pid = bytesOf(pidFile).trimmed().toInt();
    if (pid <= 0) {
        return true;
    }
    // A process that has ended and that nobody has waited for yet runs no more.
    const QByteArray state = bytesOf(latin("/proc/%1/stat").arg(pid));
    return ::kill(pid, 0) == 0 && !state.mid(state.lastIndexOf(')')).startsWith(") Z");
}

void TestVSTiScan::anInstrumentIsFoundWithItsParameters()
{
    QVERIFY(writeBytes(
        vst3("Some.vst3"),
        says(answer({instrument("Some Synth", {parameter(4201, "Cutoff", {"Filter", "One"}),
                                               parameter(4202, "Volume")})}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"Some Synth Some.vst3 3 2"}));
    const SVSTiInfo &found = info->scanResults->constFirst();
    QCOMPARE(found.path, QFile::encodeName(vst3("Some.vst3")));
    QCOMPARE(found.parameters.at(0).id, latin("000001069"));
    QCOMPARE(found.parameters.at(0).name, QByteArray("Cutoff"));
    QCOMPARE(found.parameters.at(0).groups, QByteArrayList({"Filter", "One"}));
    QCOMPARE(found.parameters.at(1).id, latin("00000106a"));
    QVERIFY(found.parameters.at(1).groups.isEmpty());
    QCOMPARE(notSynths(), QString());
}

void TestVSTiScan::theWholeRunEndsInTheListsAndTheDatabase()
{
    QVERIFY(
        writeBytes(vst3("b.vst3/Contents/behaviour"),
                   says(answer({instrument("beta", {parameter(4201, "Cutoff", {"Filter"})})}))));
    QVERIFY(
        writeBytes(vst2("a.so"), says(answer({instrument("Alpha", {parameter(4201, "Volume")})}))));
    QVERIFY(writeBytes(vst3("e.vst3"), ends(3)));
    {
        const auto info = scanAndEnter();
        QCOMPARE(info->getVSTiList(),
                 names({"Alpha", "beta", "Audio Track", "MIDI Track", "Generic"}));
        QCOMPARE(printed(info->getVSTiParameterList(latin("beta"))),
                 names({"000001069 Filter/Cutoff"}));
        QCOMPARE(info->fileInfos.value(latin("Alpha")).version, 2);
        QCOMPARE(info->fileInfos.value(latin("beta")).version, 3);
    }
    QCOMPARE(asked(), names({"a.so", "b.vst3", "e.vst3"}));
    QCOMPARE(notSynths(), latin("e.vst3\n"));
    // A new start knows them from the files.
    const auto info = scanAndEnter();
    QCOMPARE(info->getVSTiList(), names({"Alpha", "beta", "Audio Track", "MIDI Track", "Generic"}));
    QCOMPARE(asked().size(), 3);
}

void TestVSTiScan::withNothingNewTheHelperIsNotStarted()
{
    QVERIFY(writeBytes(vst3("a.vst3"), says(answer({instrument("Alpha")}))));
    QVERIFY(writeBytes(vst2("b.so"), ends(8)));
    scanAndEnter();
    QCOMPARE(asked().size(), 2);
    scanAndEnter();
    QCOMPARE(asked().size(), 2);
    // Unless the user asks for it.
    auto info = model();
    info->clearNotSynthList();
    info->selectDAW(latin("Some DAW"));
    info->analyzeVSTi();
    QCOMPARE(asked(), names({"a.vst3", "b.so", "b.so"}));
    info->initializeDatabase();
    info->selectDAW(latin("Some DAW"));
    info->analyzeVSTi();
    QCOMPARE(asked().size(), 5);
}

void TestVSTiScan::theSharedObjectOfAKnownBundleIsNotAsked()
{
    QVERIFY(writeBytes(vst2("a.vst/Contents/behaviour"),
                       says(answer({instrument("Alpha", {parameter(4201, "A")})}))));
    QVERIFY(writeBytes(vst2("a.vst/a.so"), says(answer({instrument("Alpha")}))));
    QVERIFY(writeBytes(vst2("b.vst/Contents/behaviour"), ends(3)));
    QVERIFY(writeBytes(vst2("b.vst/b.so"), ends(3)));
    for (int i = 0; i < 3; ++i) {
        const auto info = scanAndEnter();
        QCOMPARE(info->fileInfos.value(latin("Alpha")).fileInfo.fileName(), latin("a.vst"));
        QCOMPARE(asked(), names({"a.vst", "b.vst"}));
    }
    QCOMPARE(notSynths(), latin("b.vst\n"));
}

void TestVSTiScan::aTouchedFileIsAskedAgain()
{
    QVERIFY(
        writeBytes(vst3("a.vst3"), says(answer({instrument("Alpha", {parameter(4201, "A")})}))));
    scanAndEnter();
    QVERIFY(writeBytes(vst3("a.vst3"),
                       says(answer({instrument("Alpha", {parameter(4201, "Another")})}))));
    const auto info = scanAndEnter();
    QCOMPARE(asked().size(), 2);
    QCOMPARE(printed(info->getVSTiParameterList(latin("Alpha"))), names({"000001069 Another"}));
}

void TestVSTiScan::exitCodes_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("isFound");
    QTest::addColumn<bool>("isListed");
    const QByteArray good = answer({instrument("Some Synth")});
    QTest::newRow("0, a list") << says(good) << true << false;
    QTest::newRow("0, no file") << ends(0) << false << true;
    QTest::newRow("0, empty file") << cutOff("") << false << true;
    QTest::newRow("0, no instrument") << says("0\n") << false << false;
    QTest::newRow("1, no list at all") << ends(1) << false << false;
    QTest::newRow("1 with a file") << says(good, 1) << false << false;
    QTest::newRow("2, names say nothing") << says(good, 2) << false << false;
    QTest::newRow("2, no file") << ends(2) << false << true;
    for (const int code : {3, 4, 5, 6, 7, 8}) {
        QTest::addRow("%d", code) << ends(code) << false << true;
        QTest::addRow("%d with a file", code) << says(good, code) << false << true;
    }
    for (const int code : {9, 64, 70, 73, 126, 127, 255}) {
        QTest::addRow("%d, of no meaning", code) << says(good, code) << false << false;
    }
    QTest::newRow("crash") << QByteArray("kill -SEGV $$\n") << false << true;
    QTest::newRow("crash after an answer")
        << QByteArray("printf '1\\nSome Synth\\n0\\n' > \"$2\"\nkill -ABRT $$\n") << false << true;
}

void TestVSTiScan::exitCodes()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, isFound);
    QFETCH(bool, isListed);
    QVERIFY(writeBytes(vst3("Some.vst3"), script));
    const auto info = scan();
    QCOMPARE(asked(), names({"Some.vst3"}));
    QCOMPARE(info->results(), isFound ? names({"Some Synth Some.vst3 3 0"}) : QStringList());
    QCOMPARE(notSynths(), isListed ? latin("Some.vst3\n") : QString());
}

void TestVSTiScan::exitCodesOfFilesThatTheTableKnows_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("isFound");
    QTest::addColumn<bool>("isListed");
    QTest::newRow("0, no file") << ends(0) << true << false;
    QTest::newRow("0, empty file") << cutOff("") << true << false;
    QTest::newRow("0, no instrument") << says("0\n") << false << false;
    QTest::newRow("1") << ends(1) << true << false;
    QTest::newRow("2") << says(answer({instrument("Some")}), 2) << true << false;
    QTest::newRow("2, no file") << ends(2) << true << false;
    QTest::newRow("3") << ends(3) << false << true;
    for (const int code : {4, 5, 6, 7}) {
        QTest::addRow("%d", code) << ends(code) << true << false;
    }
    QTest::newRow("8") << ends(8) << false << true;
    QTest::newRow("9") << ends(9) << false << false;
    QTest::newRow("crash") << QByteArray("kill -SEGV $$\n") << true << false;
}

void TestVSTiScan::exitCodesOfFilesThatTheTableKnows()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, isFound);
    QFETCH(bool, isListed);
    QVERIFY(writeBytes(vst2("Dexed.so"), script));
    const auto info = scan();
    QCOMPARE(info->results(), isFound ? names({"Dexed Dexed.so 2 0"}) : QStringList());
    QCOMPARE(notSynths(), isListed ? latin("Dexed.so\n") : QString());
}

void TestVSTiScan::withoutFallbackAFailedHelperLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("result");
    QTest::addColumn<bool>("isListed");
    QTest::newRow("4") << ends(4) << false << false;
    QTest::newRow("5") << ends(5) << false << false;
    QTest::newRow("6") << ends(6) << true << true;
    QTest::newRow("7") << ends(7) << true << true;
    QTest::newRow("3") << ends(3) << true << true;
    QTest::newRow("8") << ends(8) << true << true;
    QTest::newRow("9") << ends(9) << false << false;
    QTest::newRow("1") << ends(1) << true << false;
    QTest::newRow("crash") << QByteArray("kill -SEGV $$\n") << false << false;
    QTest::newRow("no answer") << ends(0) << false << false;
    QTest::newRow("answer cut off") << cutOff("1") << true << false;
    QTest::newRow("answer") << says("0\n") << true << false;
}

void TestVSTiScan::withoutFallbackAFailedHelperLeavesNothing()
{
    QFETCH(QByteArray, script);
    QFETCH(bool, result);
    QFETCH(bool, isListed);
    const QString plugin = vst3("Some.vst3");
    QVERIFY(writeBytes(plugin, script));
    QVERIFY(QDir().mkpath(m_rig->path("data")));
    CVSTiPathFinder finder(m_rig->path("data").toStdString());
    const auto info = model();
    QCOMPARE(info->execVSTiInfoFinder(m_rig->path("modules/vif_tarn_tern_x64.app"), plugin,
                                      m_rig->path("data/VSTiInfoFinder.txt"), false, &finder, true),
             result);
    QCOMPARE(!notSynths().isEmpty(), isListed);
    QVERIFY(info->scanResults->isEmpty());
}

void TestVSTiScan::aListWithoutMeaningCountsWithADescriptionBesideIt()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("Some", {parameter(4201, "")}),
                                                       instrument("Other", {parameter(4201, "")})}),
                                               2)));
    QVERIFY(writeBytes(vst3("Some.vstxml"),
                       "<VSTParametersStructure><Param name=\"Volume\" id=\"0\"/>"
                       "<Param name=\"Pan\" id=\"1\"/></VSTParametersStructure>"));
    const auto info = scanAndEnter();
    QCOMPARE(info->results(), names({"Some Some.vst3 3 1"}));
    QCOMPARE(info->vstXmlPrimaryNames, names({"Some"}));
    QCOMPARE(info->vstXmlFiles.value(latin("Some")), vst3("Some.vstxml"));
    QCOMPARE(printed(info->getVSTiParameterList(latin("Some"))),
             names({"000001069 Volume", "00000106a Pan"}));
    QCOMPARE(notSynths(), QString());
}

void TestVSTiScan::aListWithoutMeaningDoesNotCountByADescriptionWithinIt()
{
    QVERIFY(
        writeBytes(vst3("Some.vst3/Contents/behaviour"), says(answer({instrument("Some")}), 2)));
    QVERIFY(writeBytes(vst3("Some.vst3/Contents/Resources/Some.vstxml"), "x"));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QVERIFY(info->vstXmlPrimaryNames.isEmpty());
    QCOMPARE(notSynths(), QString());
}

void TestVSTiScan::aDescriptionInTheBundleIsFound()
{
    QVERIFY(writeBytes(vst3("Some.vst3/Contents/behaviour"),
                       says(answer({instrument("Some", {parameter(4201, "P0")})}))));
    QVERIFY(
        writeBytes(vst3("Some.vst3/Contents/Resources/Some.vstxml"),
                   "<VSTParametersStructure><Group name=\"Main\"><Param name=\"Volume\" id=\"0\"/>"
                   "<Param name=\"Pan\" id=\"1\"/></Group></VSTParametersStructure>"));
    const auto info = scanAndEnter();
    QVERIFY(info->vstXmlPrimaryNames.isEmpty());
    QCOMPARE(printed(info->getVSTiParameterList(latin("Some"))), names({"000001069 Main/Volume"}));
}

void TestVSTiScan::damagedAnswers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("no number") << QByteArray("many\n");
    QTest::newRow("blank line") << QByteArray("\n");
    QTest::newRow("count too large for an integer") << QByteArray("4294967296\n");
    QTest::newRow("no instrument follows") << QByteArray("1\n");
    QTest::newRow("no parameter count") << QByteArray("1\nSome\n");
    QTest::newRow("parameter count no number") << QByteArray("1\nSome\nx\n");
    QTest::newRow("no parameter follows") << QByteArray("1\nSome\n1\n");
    QTest::newRow("id no number") << QByteArray("1\nSome\n1\n0x10\nVolume\n0\n");
    QTest::newRow("no parameter name") << QByteArray("1\nSome\n1\n4201\n");
    QTest::newRow("no group count") << QByteArray("1\nSome\n1\n4201\nVolume\n");
    QTest::newRow("no group follows") << QByteArray("1\nSome\n1\n4201\nVolume\n1\n");
    QTest::newRow("a thousand million of everything")
        << QByteArray("2000000000\nSome\n2000000000\n4201\nVolume\n2000000000\nGroup\n");
    QTest::newRow("a thousand million instruments") << QByteArray("2000000000\n\n\n\n\n");
    QTest::newRow("bytes of no text") << QByteArray("\xff\xfe\x80\n");
}

void TestVSTiScan::damagedAnswers()
{
    QFETCH(QByteArray, text);
    QVERIFY(writeBytes(vst3("Some.vst3"), says(text)));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::anAnswerCutOffKeepsWhatWasComplete()
{
    QVERIFY(
        writeBytes(vst3("Some.vst3"),
                   cutOff("3\nOne\n1\n4201\nVolume\n0\nTwo\n0\nThree\n2\n4201\nVolume\n0\n42")));
    const auto info = scan();
    QCOMPARE(info->results(), names({"One Some.vst3 3 1", "Two Some.vst3 3 0"}));
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::answers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("results");
    QTest::newRow("two instruments")
        << answer({instrument("A", {parameter(4201, "x")}), instrument("B")})
        << names({"A Some.vst3 3 1", "B Some.vst3 3 0"});
    QTest::newRow("no name: the next line is the next name")
        << QByteArray("3\n\nA\n0\nB\n0\n") << names({"A Some.vst3 3 0", "B Some.vst3 3 0"});
    QTest::newRow("reserved name")
        << answer({instrument("Generic", {parameter(4201, "x")})}) << QStringList();
    QTest::newRow("reserved name and another")
        << answer({instrument("Generic", {parameter(4201, "x")}), instrument("B")})
        << names({"B Some.vst3 3 0"});
    QTest::newRow("negative counts") << QByteArray("1\nA\n-5\n") << names({"A Some.vst3 3 0"});
    QTest::newRow("negative number of groups")
        << QByteArray("1\nA\n1\n4201\nx\n-1\n") << names({"A Some.vst3 3 1"});
    QTest::newRow("negative number of instruments") << QByteArray("-1\nA\n0\n") << QStringList();
    QTest::newRow("blanks around")
        << QByteArray(" 1 \r\n  A \r\n 0\r\n") << names({"A Some.vst3 3 0"});
    QTest::newRow("names of no text for parameters")
        << QByteArray("1\nA\n2\n4201\n\n0\n4202\n\n0\n") << names({"A Some.vst3 3 2"});
    QTest::newRow("more than was counted")
        << QByteArray("1\nA\n0\nB\n0\n") << names({"A Some.vst3 3 0"});
    QTest::newRow("letters outside ASCII")
        << answer({instrument("\xc3\x84ther")})
        << QStringList(QString::fromUtf8("\xc3\x84ther Some.vst3 3 0"));
}

void TestVSTiScan::answers()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, results);
    QVERIFY(writeBytes(vst3("Some.vst3"), says(text)));
    const auto info = scan();
    QCOMPARE(info->results(), results);
    QCOMPARE(notSynths(), QString());
}

void TestVSTiScan::idsOfParameters_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("form");
    QTest::newRow("first of a plug-in") << 4201 << latin("000001069");
    QTest::newRow("0") << 0 << latin("000000000");
    QTest::newRow("bypass") << 10004202 << latin("00098a6ea");
    QTest::newRow("largest") << 2147483647 << latin("07fffffff");
    QTest::newRow("-1") << -1 << latin("ffffffffffffffff");
    QTest::newRow("smallest") << (-2147483647 - 1) << latin("ffffffff80000000");
}

void TestVSTiScan::idsOfParameters()
{
    QFETCH(int, id);
    QFETCH(QString, form);
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("A", {parameter(id, "x")})}))));
    const auto info = scanAndEnter();
    QCOMPARE(info->scanResults->constFirst().parameters.constFirst().id, form);
    QVERIFY(info->isConsistent());
}

void TestVSTiScan::anOldAnswerIsNotMistakenForANewOne()
{
    QVERIFY(writeBytes(m_rig->path("data/VSTiInfoFinder.txt"), answer({instrument("Old")})));
    QVERIFY(writeBytes(vst3("Some.vst3"), ends(0)));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::theAnswerIsGoneAfterwards_data()
{
    QTest::addColumn<QByteArray>("ending");
    for (const char *ending : {"exit 0", "exit 1", "exit 2", "exit 3", "exit 4", "exit 6", "exit 9",
                               "kill -KILL $$", "sleep 100"}) {
        QTest::newRow(ending) << QByteArray(ending);
    }
}

void TestVSTiScan::theAnswerIsGoneAfterwards()
{
    QFETCH(QByteArray, ending);
    QVERIFY(writeBytes(vst3("Some.vst3"), "printf '1\\nA\\n0\\n' > \"$2\"\n" + ending + '\n'));
    const auto info = model();
    info->helperTimeoutMs = ending == "sleep 100" ? 1500 : 60000;
    info->selectDAW(latin("Some DAW"));
    info->analyzeVSTi();
    QCOMPARE(asked().size(), 1);
    QVERIFY(!hasResultFile());
}

void TestVSTiScan::anAnswerTooLargeIsNotRead()
{
    QVERIFY(writeBytes(vst3("Some.vst3"),
                       "printf '1\\nA\\n0\\n' > \"$2\"\ntruncate -s 100G \"$2\"\nexit 0\n"));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::anAnswerThatIsAPipeIsNotWaitedFor()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), "mkfifo \"$2\"\nexit 0\n"));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::theHelperIsToldThePlugInAndTheResultFile()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), "[ $# = 2 ] || exit 3\nexit 9\n"));
    scan();
    QCOMPARE(QString::fromUtf8(bytesOf(m_rig->path("modules/asked"))),
             vst3("Some.vst3") + QLatin1Char('\n'));
    QCOMPARE(QString::fromUtf8(bytesOf(m_rig->path("modules/told"))),
             m_rig->path("data/VSTiInfoFinder.txt\n"));
    QCOMPARE(notSynths(), QString());
}

void TestVSTiScan::withoutHelperTheTableDecides()
{
    QVERIFY(QFile::remove(m_rig->path("modules/vif_tarn_tern_x64")));
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("A")}))));
    QVERIFY(writeBytes(vst3("Dexed.vst3"), says(answer({instrument("A")}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"Dexed Dexed.vst3 3 0"}));
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::aHelperThatCannotRunIsNoHelper()
{
    QVERIFY(writeBytes(m_rig->path("modules/vif_tarn_tern_x64"), QByteArray("\x7f"
                                                                            "ELF nonsense")));
    QVERIFY(writeBytes(vst3("Some.vst3"), ends(0)));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::aHelperThatHangsIsKilledWithAllItStarted()
{
    const QByteArray self = m_rig->path("self").toUtf8();
    const QByteArray child = m_rig->path("child").toUtf8();
    QVERIFY(writeBytes(vst3("Some.vst3"), "echo $$ > " + self +
                                              "\ntrap '' TERM INT HUP\n"
                                              "(trap '' TERM INT HUP; sleep 1000; sleep 1000) &\n"
                                              "echo $! > " +
                                              child + "\nwhile :; do sleep 1000; done\n"));
    QVERIFY(writeBytes(vst3("Zeta.vst3"), says(answer({instrument("Z")}))));
    const auto info = model();
    info->helperTimeoutMs = 3000;
    info->selectDAW(latin("Some DAW"));
    QElapsedTimer timer;
    timer.start();
    info->analyzeVSTi();
    QVERIFY(timer.elapsed() >= 3000);
    QVERIFY(timer.elapsed() < 60000);
    QTRY_VERIFY(!isRunning(m_rig->path("self")));
    QTRY_VERIFY(!isRunning(m_rig->path("child")));
    QCOMPARE(info->results(), names({"Z Zeta.vst3 3 0"}));
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
    // Not again on the next scan.
    QCOMPARE(asked().size(), 2);
    info->analyzeVSTi();
    QCOMPARE(asked().count(latin("Some.vst3")), 1);
}

void TestVSTiScan::aHelperThatEndsLeavesNothingRunning()
{
    const QByteArray child = m_rig->path("child").toUtf8();
    QVERIFY(writeBytes(vst3("Some.vst3"), "sleep 1000 &\necho $! > " + child + '\n' +
                                              says(answer({instrument("A")}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"A Some.vst3 3 0"}));
    QTRY_VERIFY(!isRunning(m_rig->path("child")));
}

void TestVSTiScan::aHelperThatCrashesLeavesNothingRunning()
{
    const QByteArray child = m_rig->path("child").toUtf8();
    QVERIFY(
        writeBytes(vst3("Some.vst3"), "sleep 1000 &\necho $! > " + child + "\nkill -SEGV $$\n"));
    scan();
    QTRY_VERIFY(!isRunning(m_rig->path("child")));
}

void TestVSTiScan::chatterGoesNowhereAndNobodyWaitsForInput()
{
    QVERIFY(writeBytes(vst3("Some.vst3"),
                       "head -c 50000000 /dev/zero\nhead -c 50000000 /dev/zero >&2\ncat\n" +
                           says(answer({instrument("A")}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"A Some.vst3 3 0"}));
}

void TestVSTiScan::ofTwoFormatsTheLaterOneIsTaken()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}))));
    QVERIFY(writeBytes(vst2("Some.so"), says(answer({instrument("S")}))));
    const auto info = scanAndEnter();
    QCOMPARE(asked(), names({"Some.vst3"}));
    QCOMPARE(info->fileInfos.value(latin("S")).version, 3);
    QCOMPARE(notSynths(), latin("Some.so\n"));
}

void TestVSTiScan::theOtherFormatIsPutBackOnTheListAfterAnUpdate()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}))));
    QVERIFY(writeBytes(vst2("Some.so"), says(answer({instrument("S")}))));
    scanAndEnter()->clearNotSynthList();
    QCOMPARE(notSynths(), QString());
    scanAndEnter();
    QCOMPARE(notSynths(), latin("Some.so\n"));
    QCOMPARE(asked(), names({"Some.vst3"}));
}

void TestVSTiScan::anEntryOfTheDatabaseHidesTheOlderFormat()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S", {parameter(4201, "x")})}))));
    scanAndEnter();
    QVERIFY(writeBytes(vst2("Some.so"), says(answer({instrument("S2")}))));
    const auto info = scan();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(asked(), names({"Some.vst3"}));
    QCOMPARE(notSynths(), latin("Some.so\n"));
}

void TestVSTiScan::anEntryOfTheDatabaseHidesByItsNameUpToTheFirstDot()
{
    QVERIFY(
        writeBytes(vst3("Some.1.vst3"), says(answer({instrument("S", {parameter(4201, "x")})}))));
    scanAndEnter();
    QVERIFY(writeBytes(vst2("Some.so"), says(answer({instrument("S2")}))));
    QCOMPARE(scan()->results(), QStringList());
    QCOMPARE(notSynths(), latin("Some.so\n"));
}

void TestVSTiScan::namesWithSeveralDotsAreTwoPlugIns()
{
    QVERIFY(writeBytes(vst3("Some.1.vst3"), says(answer({instrument("S3")}))));
    QVERIFY(writeBytes(vst2("Some.1.so"), says(answer({instrument("S2")}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"S3 Some.1.vst3 3 0", "S2 Some.1.so 2 0"}));
}

void TestVSTiScan::anOlderFormatIsTakenWhereTheLaterIsNoInstrument()
{
    // Found before, and recognised.
    QVERIFY(writeBytes(m_rig->path("system/opt/.app/Contents/VST3/First.vst3"),
                       says(answer({instrument("F")}))));
    QVERIFY(writeBytes(vst3("Some.vst3"), ends(4)));
    QVERIFY(writeBytes(vst2("Some.so"), says(answer({instrument("S2")}))));
    const auto info = scan();
    QCOMPARE(info->results(), names({"F First.vst3 3 0", "S2 Some.so 2 0"}));
    QCOMPARE(notSynths(), latin("Some.vst3\n"));
}

void TestVSTiScan::theThreeInstrumentsOfOneFileAreThree()
{
    QVERIFY(writeBytes(vst3("Brandholm Instruments.vst3"), ends(1)));
    const auto info = scanAndEnter();
    QCOMPARE(info->results(), names({"Penwick Brandholm Instruments.vst3 3 0",
                                     "Sorrelby Brandholm Instruments.vst3 3 0",
                                     "Thornmoor Brandholm Instruments.vst3 3 0"}));
    const QString path = vst3("Brandholm Instruments.vst3").toHtmlEscaped();
    QCOMPARE(QString::fromUtf8(bytesOf(m_rig->database())).count(latin("path=\"") + path), 3);
    QCOMPARE(info->getVSTiList().first(3), names({"Penwick", "Sorrelby", "Thornmoor"}));
    scanAndEnter();
    QCOMPARE(asked().size(), 1);
}

void TestVSTiScan::anAliasAndItsPlainFormAreOneInstrument()
{
    QVERIFY(writeBytes(vst2("mdaPiano_VST2Carbon.vst/Contents/behaviour"), ends(1)));
    QVERIFY(writeBytes(vst2("mdaPiano.so"), ends(1)));
    const auto info = scanAndEnter();
    QCOMPARE(info->scanResults->size(), 2);
    QCOMPARE(info->fileInfos.value(latin("mdaPiano")).fileInfo.fileName(), latin("mdaPiano.so"));
}

void TestVSTiScan::wellKnownPlugInsAreExaminedOnce()
{
    const QString folder = m_rig->path("home/.local/share/Brandholm/Components/");
    QVERIFY(writeBytes(folder + latin("Orskvale.vst3"), says(answer({instrument("Orskvale")}))));
    // Known by its name, and not to be questioned.
    QVERIFY(writeBytes(folder + latin("Tamberline.vst3"), ends(1)));
    QVERIFY(writeBytes(folder + latin("Other.vst3"), says(answer({instrument("Other")}))));
    const auto info = scanAndEnter();
    QStringList results = info->results();
    results.sort();
    QCOMPARE(results, names({"Orskvale Orskvale.vst3 3 0", "Tamberline Tamberline.vst3 3 0"}));
    QCOMPARE(asked(), names({"Orskvale.vst3", "Tamberline.vst3"}));
    scanAndEnter();
    QCOMPARE(asked().size(), 2);
}

void TestVSTiScan::wellKnownPlugInsUnderAnotherNameAreExaminedEachTime()
{
    const QString folder = m_rig->path("home/.local/share/Brandholm/Components/");
    QVERIFY(writeBytes(folder + latin("Orskvale.vst3"), says(answer({instrument("Orskvale 2")}))));
    scanAndEnter();
    scanAndEnter();
    QCOMPARE(asked(), names({"Orskvale.vst3", "Orskvale.vst3"}));
}

void TestVSTiScan::theListDoesNotHoldBackWellKnownPlugIns()
{
    const QString folder = m_rig->path("home/.local/share/Brandholm/Components/");
    QVERIFY(writeBytes(folder + latin("Orskvale.vst3"), ends(3)));
    scanAndEnter();
    QCOMPARE(notSynths(), latin("Orskvale.vst3\n"));
    scanAndEnter();
    QCOMPARE(asked().size(), 2);
}

void TestVSTiScan::pathsWithLettersOutsideASCIIComeThrough()
{
    MachineFolders folders = machineFolders();
    folders.home = QString::fromUtf8("%1/J\xc3\xbcrgen \xe9\x9f\xb3").arg(m_rig->path("x"));
    setMachineFolders(folders);
    const QString plugin = folders.home + QString::fromUtf8("/.vst3/Gr\xc3\xbc\xc3\x9f.vst3");
    QVERIFY(writeBytes(plugin,
                       says(answer({instrument("Gr\xc3\xbc\xc3\x9f", {parameter(4201, "x")})}))));
    {
        const auto info = scanAndEnter();
        QCOMPARE(info->scanResults->size(), 1);
        const QString name = QString::fromUtf8("Gr\xc3\xbc\xc3\x9f");
        QCOMPARE(info->fileInfos.value(name).fileInfo.absoluteFilePath(), plugin);
    }
    scanAndEnter();
    QCOMPARE(asked().size(), 1);
}

void TestVSTiScan::namesThatAreNoTextAreListed()
{
    QVERIFY(QDir().mkpath(vst3("")));
    const QByteArray path = QFile::encodeName(vst3("")) + "bad\xff.vst3";
    std::FILE *file = std::fopen(path.constData(), "w");
    QVERIFY(file != nullptr);
    std::fclose(file);
    scan();
    QCOMPARE(asked(), QStringList());
    QCOMPARE(bytesOf(m_rig->notSynthList()), QByteArray("bad\xff.vst3\n"));
    scan();
    QCOMPARE(bytesOf(m_rig->notSynthList()), QByteArray("bad\xff.vst3\n"));
    QCOMPARE(std::remove(path.constData()), 0);
}

void TestVSTiScan::awkwardNamesReachTheHelperAsTheyAre()
{
    const QStringList files =
        names({" .vst3", "$(reboot).vst3", "'\".vst3", "*.vst3", "--help.vst3", "a;b&c|d.vst3",
               "a\\b.vst3", "a\tb.vst3", "%1%20.vst3"});
    for (const QString &file : files) {
        QVERIFY(writeBytes(vst3("") + file, ends(3)));
    }
    scan();
    QStringList sorted = files;
    sorted.sort();
    QCOMPARE(asked(), sorted);
}

void TestVSTiScan::theFilesAreToldAndThenNull()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), ends(9)));
    QVERIFY(writeBytes(vst2("Other.so"), ends(9)));
    const auto info = model();
    QSignalSpy told(info.get(), &VSTiInfo::analyzingVSTi);
    info->selectDAW(latin("Some DAW"));
    QCOMPARE(told.size(), 0);
    info->analyzeVSTi();
    QCOMPARE(told.size(), 3);
    QCOMPARE(told.at(0).at(0).toString(), latin("Some.vst3"));
    QCOMPARE(told.at(1).at(0).toString(), latin("Other.so"));
    QVERIFY(told.at(2).at(0).toString().isNull());
}

void TestVSTiScan::theDatabaseFolderIsMadeIfMissing()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}))));
    QVERIFY(writeBytes(vst3("No.vst3"), ends(3)));
    QVERIFY(!QFileInfo::exists(m_rig->path("data")));
    const auto info = scan();
    QCOMPARE(info->results(), names({"S Some.vst3 3 0"}));
    QCOMPARE(notSynths(), latin("No.vst3\n"));
}

void TestVSTiScan::aSecondScanForgetsTheFirst()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}), 2)));
    QVERIFY(writeBytes(vst3("S.vstxml"), "x"));
    const auto info = scan();
    QCOMPARE(info->results().size(), 1);
    QCOMPARE(info->vstXmlFiles.size(), 1);
    QVERIFY(QFile::remove(vst3("Some.vst3")));
    info->vstXmlData.insert(latin("x"), "x");
    info->analyzeVSTi();
    QCOMPARE(info->results(), QStringList());
    QVERIFY(info->vstXmlFiles.isEmpty());
    QVERIFY(info->vstXmlPrimaryNames.isEmpty());
    QVERIFY(info->vstXmlData.isEmpty());
}

void TestVSTiScan::aScanOnAThreadOfItsOwn()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S", {parameter(4201, "x")})}))));
    const auto info = model();
    QStringList told;
    connect(
        info.get(), &VSTiInfo::analyzingVSTi, this,
        [&told](const QString &file) { told.append(file); }, Qt::QueuedConnection);
    info->selectDAW(latin("Some DAW"));
    AnalyzeVSTiThread thread(info.get());
    thread.start(QThread::LowestPriority);
    QTRY_COMPARE_WITH_TIMEOUT(told, QStringList({latin("Some.vst3"), QString()}), 60000);
    thread.join();
    info->entryVSTiParameter();
    QCOMPARE(info->getVSTiList().first(), latin("S"));
}

void TestVSTiScan::anotherEditorsScanIsWaitedFor()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S", {parameter(4201, "x")})}))));
    // Not entered yet, and so under way.
    std::unique_ptr<ScanningVSTiInfo> other = scan();
    QCOMPARE(asked().size(), 1);
    const auto info = model();
    info->selectDAW(latin("Some DAW"));
    AnalyzeVSTiThread thread(info.get());
    thread.start();
    QVERIFY(!thread.wait(500));
    QCOMPARE(asked().size(), 1);
    other->entryVSTiParameter();
    QVERIFY(thread.wait(60000));
    thread.join();
    QCOMPARE(asked().size(), 2);
    QCOMPARE(info->results(), QStringList{latin("S Some.vst3 3 1")});
    info->entryVSTiParameter();
    // One that dies in the middle holds nobody up.
    other = scan();
    other.reset();
    QVERIFY(scanAndEnter()->getVSTiList().contains(latin("S")));
}

void TestVSTiScan::aScanThatWaitsCanBeAbandoned()
{
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}))));
    const std::unique_ptr<ScanningVSTiInfo> other = scan();
    const auto info = model();
    info->selectDAW(latin("Some DAW"));
    AnalyzeVSTiThread thread(info.get());
    thread.start();
    thread.requestInterruption();
    QVERIFY(thread.wait(60000));
    thread.join();
    QCOMPARE(info->results(), QStringList());
    QCOMPARE(asked().size(), 1);
}

void TestVSTiScan::whatCannotBeLockedIsNotWaitedFor_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("a pipe") << latin("pipe");
    QTest::newRow("a folder") << latin("folder");
    QTest::newRow("a link to elsewhere") << latin("link");
}

void TestVSTiScan::whatCannotBeLockedIsNotWaitedFor()
{
    QFETCH(QString, kind);
    QVERIFY(writeBytes(vst3("Some.vst3"), says(answer({instrument("S")}))));
    const QString path = m_rig->path("data/VSTiDatabase.lock");
    QVERIFY(QDir().mkpath(m_rig->path("data")));
    if (kind == latin("pipe")) {
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    } else if (kind == latin("folder")) {
        QVERIFY(QDir().mkpath(path));
    } else {
        QVERIFY(QFile::link(m_rig->path("elsewhere"), path));
    }
    QVERIFY(scanAndEnter()->getVSTiList().contains(latin("S")));
    QVERIFY(!QFileInfo::exists(m_rig->path("elsewhere")));
}

void TestVSTiScan::aFolderInTheAnswersPlaceIsCleared_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::newRow("answer") << QString();
    QTest::newRow("unfinished answer") << latin(".part");
}

void TestVSTiScan::aFolderInTheAnswersPlaceIsCleared()
{
    QFETCH(QString, suffix);
    // It uses what stands there, as the helper does.
    QVERIFY(writeBytes(vst3("Some.vst3"),
                       "[ ! -e \"$2.part\" ] || exit 73\n" + says(answer({instrument("S")}))));
    const QString folder = m_rig->path("data/VSTiInfoFinder.txt") + suffix;
    QVERIFY(QDir().mkpath(folder + latin("/below")));
    QVERIFY(writeBytes(m_rig->path("precious/file"), "kept"));
    QVERIFY(QFile::link(m_rig->path("precious"), folder + latin("/link")));
    QCOMPARE(scan()->results(), QStringList{latin("S Some.vst3 3 0")});
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(bytesOf(m_rig->path("precious/file")), QByteArray("kept"));
}

void TestVSTiScan::aHundredPlugInsOfAllKinds()
{
    int found = 0;
    for (int i = 0; i < 100; ++i) {
        const QByteArray name = "p" + QByteArray::number(i);
        const bool isFound = i % 10 == 0;
        found += isFound ? 1 : 0;
        QVERIFY(writeBytes(vst3((name + ".vst3").constData()),
                           isFound       ? says(answer({instrument(name, {parameter(4201, "x")})}))
                           : i % 10 == 9 ? QByteArray("kill -SEGV $$\n")
                                         : ends(i % 10)));
    }
    const auto info = scanAndEnter();
    QCOMPARE(asked().size(), 100);
    QCOMPARE(info->getVSTiList().size(), found + 3);
    scanAndEnter();
    // Again: what is neither known nor listed, that is exit codes 1 and 2; 2 without a file is as a
    // failed helper.
    QCOMPARE(asked().size(), 110);
}

void TestVSTiScan::readingLines()
{
    QVERIFY(writeBytes(m_rig->path("lines"), "  one \r\n\n 42\n4x\n-7"));
    QFile file(m_rig->path("lines"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    bool error = false;
    QCOMPARE(getStringFromFile(&file, &error), latin("one"));
    QCOMPARE(getStringFromFile(&file, &error), QString());
    QVERIFY(!error);
    QCOMPARE(getIntFromFile(&file, &error), 42);
    QVERIFY(!error);
    QCOMPARE(getIntFromFile(&file, &error), 0);
    QVERIFY(error);
    // Nothing is read once there is an error.
    QCOMPARE(getStringFromFile(&file, &error), QString());
    error = false;
    QCOMPARE(getIntFromFile(&file, &error), -7);
    QVERIFY(!error);
    QCOMPARE(getStringFromFile(&file, &error), QString());
    QVERIFY(error);
}

void TestVSTiScan::readingLinesOfAnyLength()
{
    const QList<int> lengths = {1, 254, 255, 256, 257, 510, 511, 512, 65536, 1000000, 3};
    QByteArray text;
    for (const int length : lengths) {
        text += QByteArray(length, 'x') + '\n';
    }
    text.chop(1);
    QVERIFY(writeBytes(m_rig->path("lines"), text));
    QFile file(m_rig->path("lines"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    bool error = false;
    for (const int length : lengths) {
        QCOMPARE(getStringFromFile(&file, &error), QString(length, QLatin1Char('x')));
        QVERIFY(!error);
    }
    QCOMPARE(getStringFromFile(&file, &error), QString());
    QVERIFY(error);
}

QTEST_GUILESS_MAIN(TestVSTiScan)
#include "tst_vstiscan.moc"
