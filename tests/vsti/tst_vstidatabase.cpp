// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "vsti/InstrumentTree.h"
#include "vsti/VstiHarness.h"

#include <QtCore/QDateTime>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>
#include <QtTest/QtTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>

// The database file: what of it is believed, what a scan's results make of it, and that neither a
// damaged file nor a plug-in with strange names costs more than itself.

namespace
{

const QString DAW = QStringLiteral("Trevia Pro 8.5");

// A "vsti" element as a scan of this moment would have written it.
QByteArray entry(const QByteArray &name, const QString &path, const QByteArray &content,
                 const QByteArray &version = "3")
{
    const QFileInfo file(path);
    return "<vsti name=\"" + name + "\" path=\"" + path.toUtf8() + "\" time=\"" +
           file.lastModified().toString(Qt::ISODate).toUtf8() + "\" size=\"" +
           QByteArray::number(getVSTiFileSize(file)) + "\" version=\"" + version + "\">" + content +
           "</vsti>";
}

QByteArray parameter(int index, const char *name)
{
    return "<parameter id=\"" + fileIdOf(index) + "\" name=\"" + name + "\"/>";
}

QByteArray section(const QByteArray &content, const QByteArray &daw = "Trevia Pro 8.5")
{
    return "<daw name=\"" + daw + "\">" + content + "</daw>";
}

QByteArray databaseOf(const QByteArray &sections)
{
    return "<!DOCTYPE VSTiDatabase>\n<dawlist>" + sections + "</dawlist>\n";
}

// The elements line by line, their attributes sorted: Qt writes those in a hash's order.
QStringList outline(const QString &path)
{
    QXmlStreamReader reader(bytesOf(path));
    QStringList lines;
    int depth = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            QStringList attributes;
            for (const QXmlStreamAttribute &attribute : reader.attributes()) {
                attributes.append(attribute.name().toString() + QLatin1Char('=') +
                                  attribute.value().toString());
            }
            attributes.sort();
            lines.append(QString(depth, QLatin1Char(' ')) + reader.name().toString() +
                         QLatin1Char(' ') + attributes.join(QLatin1Char(' ')));
            ++depth;
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        } else if (token == QXmlStreamReader::DTD) {
            lines.append(QLatin1Char('!') + reader.dtdName().toString());
        }
    }
    return reader.hasError() ? QStringList(reader.errorString()) : lines;
}

bool touch(const QString &path, const QDateTime &time)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(time, QFileDevice::FileModificationTime);
}

// The limit on the size of files, as a full disk would set it.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit small = m_before;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }

private:
    rlimit m_before = {};
};

} // namespace

class TestVSTiDatabase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aSectionIsLoaded();
    void selectingLeavesTheShownNamesAsTheyWere();
    void onlyTheFirstSectionOfTheDAWIsRead();
    void aTouchedFileIsDropped();
    void aFileOfAnotherSizeIsDropped();
    void aFileThatIsGoneIsDropped();
    void aChangeInsideABundleIsSeen();
    void onlyVersionsTwoAndThreeAreValid_data();
    void onlyVersionsTwoAndThreeAreValid();
    void incompleteEntriesAreSkipped_data();
    void incompleteEntriesAreSkipped();
    void ofTwoEntriesTheFirstWithAParameterWins();
    void parametersWithoutIdOrNameAreSkippedAndAnEmptyNameIsKept();
    void theFirstParameterOfAnIdWins();
    void databasesOfNoUseGiveAnEmptySection_data();
    void databasesOfNoUseGiveAnEmptySection();
    void moreNamesThanThereMayBeCostOnlyWhatComesAfter();

    void aScanIsWrittenAndReadAgain();
    void theFileHasTheLayoutTold();
    void groupsAreWrittenOnceAndInTheirOrder();
    void everyNameComesBackAsFarAsXMLCanHoldIt_data();
    void everyNameComesBackAsFarAsXMLCanHoldIt();
    void timeAndSizeAreThoseOfTheMomentOfWriting();
    void otherSectionsSurvive();
    void theSectionKeepsItsPlace();
    void aDamagedDatabaseIsMadeAnew_data();
    void aDamagedDatabaseIsMadeAnew();
    void aForeignDocumentStaysAndTheListIsAppended_data();
    void aForeignDocumentStaysAndTheListIsAppended();
    void theFolderIsMadeWhenItIsNeeded();
    void aFullDiskLeavesTheOldFile();
    void aFullDiskLeavesTheOldFileIfTheNewOneIsSmall();
    void aFileThatCannotBeReplacedLeavesTheModelValid();
    void deeperGroupsThanCanBeReadAreLeftOutOfThePath();
    void aPluginTooLargeForTheFileCostsNoOtherItsPlace_data();
    void aPluginTooLargeForTheFileCostsNoOtherItsPlace();
    void theSizeToldIsNeverLessThanTheSizeWritten();
    void twoHundredThousandParametersComeBack();

    void anEntryWithoutNewsRewritesTheFile();
    void repeatedIdsOfAScanAreDropped();
    void aRecordWithoutParametersIsKnownByName();
    void aLaterRecordReplacesAnEarlierOne();
    void presetsFillInWhatIsKnownByNameOnly();
    void shownNamesAreSortedWithoutRegardToCaseAndTheGroupsFollow();
    void scanResultsStayUntilTheNextScan();
    void descriptionsOfTheScanReachTheDatabase();
    void descriptionsInMemoryAreEntered();
    void aDescriptionBesideAVST2PluginRefinesTheModelAlone();
    void aDescriptionBesideAVST3PluginIsNotLookedAt();

    void theSizeOfAFileAndOfABundle();
    void linksInABundleAreNotFollowedIntoFolders();
    void aFolderALongWayDownIsReached();
    void nothingHasNoSize();

private:
    std::unique_ptr<VstiRig> m_rig;

    bool writeDatabase(const QByteArray &sections)
    {
        return writeBytes(m_rig->database(), databaseOf(sections));
    }
    SVSTiInfo record(const QByteArray &name, const QString &path,
                     const QList<SVSTiParameterInfo> &parameters, bool isVST2 = false)
    {
        return {name, QFile::encodeName(path), isVST2, parameters};
    }
    // What is in the model after the database that a scan of these has written is read again.
    void readAgain(ScannedVSTiInfo *again) { again->selectDAW(DAW); }
};

void TestVSTiDatabase::init()
{
    m_rig = std::make_unique<VstiRig>();
}

void TestVSTiDatabase::cleanup()
{
    m_rig.reset();
}

// --- Reading -------------------------------------------------------------------------------------

void TestVSTiDatabase::aSectionIsLoaded()
{
    const QString a = m_rig->plugin("A.vst3");
    const QString b = m_rig->plugin("B.so");
    QVERIFY(writeDatabase(section(
        entry("A", a,
              parameter(0, "top") + "<group name=\"G\">" + parameter(1, "in") + "</group>") +
        entry("B", b, parameter(7, "x"), "2") + entry("C", b, {}, "2"))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(info.currentDAW, DAW);
    QStringList all = info.getVSTiExistsAndPresetList();
    all.sort();
    QCOMPARE(all, names({"A", "B", "C"}));
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))),
             names({"000001069 top", "00000106a G/in"}));
    QCOMPARE(info.fileInfos.value(latin("A")).version, 3);
    QCOMPARE(info.fileInfos.value(latin("B")).version, 2);
    QCOMPARE(info.fileInfos.value(latin("B")).fileInfo.absoluteFilePath(), b);
    QVERIFY(!info.parameterMaps.contains(latin("C")));
    QVERIFY(info.isConsistent());
}

void TestVSTiDatabase::selectingLeavesTheShownNamesAsTheyWere()
{
    QVERIFY(writeDatabase(section(entry("A", m_rig->plugin("A.vst3"), parameter(0, "p")))));
    ScannedVSTiInfo info = m_rig->info();
    const QStringList before = info.getVSTiList();
    info.selectDAW(DAW);
    QCOMPARE(info.getVSTiList(), before);
    QVERIFY(!info.parameterLists.contains(GenericName));
    info.selectDAW(latin("another"));
    QVERIFY(info.parameterLists.isEmpty());
    QVERIFY(info.parameterMaps.isEmpty());
    QVERIFY(info.fileInfos.isEmpty());
}

void TestVSTiDatabase::onlyTheFirstSectionOfTheDAWIsRead()
{
    const QString a = m_rig->plugin("A.vst3");
    QVERIFY(writeDatabase(section(entry("Other", a, parameter(0, "p")), "Ostrel 8") +
                          section(entry("First", a, parameter(0, "p"))) +
                          section(entry("Second", a, parameter(0, "p")))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(info.getVSTiExistsAndPresetList(), names({"First"}));
}

void TestVSTiDatabase::aTouchedFileIsDropped()
{
    const QString a = m_rig->plugin("A.vst3");
    QVERIFY(writeDatabase(section(entry("A", a, parameter(0, "p")))));
    QVERIFY(touch(a, QFileInfo(a).lastModified().addSecs(1)));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QVERIFY(info.parameterLists.isEmpty());
    QVERIFY(info.parameterMaps.isEmpty());
    QVERIFY(info.fileInfos.isEmpty());
}

void TestVSTiDatabase::aFileOfAnotherSizeIsDropped()
{
    const QString a = m_rig->plugin("A.vst3", 10);
    QVERIFY(writeDatabase(section(entry("A", a, parameter(0, "p")))));
    const QDateTime time = QFileInfo(a).lastModified();
    m_rig->plugin("A.vst3", 11);
    QVERIFY(touch(a, time));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QVERIFY(info.parameterLists.isEmpty());
}

void TestVSTiDatabase::aFileThatIsGoneIsDropped()
{
    const QString a = m_rig->plugin("A.vst3");
    QVERIFY(writeDatabase(section(entry("A", a, parameter(0, "p")))));
    QVERIFY(QFile::remove(a));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QVERIFY(info.parameterLists.isEmpty());
    // It disappears from the file when the results of the next scan are entered.
    info.entryVSTiParameter();
    QCOMPARE(outline(m_rig->database()),
             names({"!VSTiDatabase", "dawlist ", " daw name=Trevia Pro 8.5"}));
}

void TestVSTiDatabase::aChangeInsideABundleIsSeen()
{
    m_rig->plugin("A.vst3/Contents/x86_64-linux/A.so", 100);
    const QString bundle = m_rig->path("plugins/A.vst3");
    QVERIFY(writeDatabase(section(entry("A", bundle, parameter(0, "p")))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QVERIFY(info.parameterLists.contains(latin("A")));
    m_rig->plugin("A.vst3/Contents/x86_64-linux/A.so", 101);
    info.selectDAW(DAW);
    QVERIFY(!info.parameterLists.contains(latin("A")));
}

void TestVSTiDatabase::onlyVersionsTwoAndThreeAreValid_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<bool>("valid");
    for (const char *version : {"0", "1", "4", "-2", "", "x", "3.0", "0x3", "4294967298"}) {
        QTest::newRow(version) << QByteArray(version) << false;
    }
    for (const char *version : {"2", "3", "03"}) {
        QTest::newRow(version) << QByteArray(version) << true;
    }
}

void TestVSTiDatabase::onlyVersionsTwoAndThreeAreValid()
{
    QFETCH(QByteArray, version);
    QFETCH(bool, valid);
    QVERIFY(writeDatabase(section(entry("A", m_rig->plugin("A"), parameter(0, "p"), version))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(info.parameterLists.contains(latin("A")), valid);
    QCOMPARE(info.parameterMaps.contains(latin("A")), valid);
    QCOMPARE(info.fileInfos.contains(latin("A")), valid);
}

void TestVSTiDatabase::incompleteEntriesAreSkipped_data()
{
    QTest::addColumn<QByteArray>("attribute");
    for (const char *attribute : {"name", "path", "time", "size", "version"}) {
        QTest::newRow(attribute) << QByteArray(attribute);
    }
}

void TestVSTiDatabase::incompleteEntriesAreSkipped()
{
    QFETCH(QByteArray, attribute);
    const QByteArray whole = entry("A", m_rig->plugin("A"), parameter(0, "p"));
    const qsizetype start = whole.indexOf(' ' + attribute + "=\"");
    const qsizetype end = whole.indexOf('"', whole.indexOf('"', start) + 1) + 1;
    const QByteArray absent = QByteArray(whole).remove(start, end - start);
    const QByteArray empty =
        QByteArray(whole).replace(start, end - start, ' ' + attribute + "=\"\"");
    for (const QByteArray &damaged : {absent, empty}) {
        QVERIFY(writeDatabase(section(damaged)));
        ScannedVSTiInfo info = m_rig->info();
        info.selectDAW(DAW);
        QVERIFY(info.parameterLists.isEmpty());
    }
    QVERIFY(writeDatabase(section(whole)));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(info.parameterLists.size(), 1);
}

void TestVSTiDatabase::ofTwoEntriesTheFirstWithAParameterWins()
{
    const QString a = m_rig->plugin("a");
    const QString b = m_rig->plugin("b");
    const QString c = m_rig->plugin("c");
    QVERIFY(writeDatabase(section(entry("A", a, {}, "2") + entry("A", b, parameter(0, "second")) +
                                  entry("A", c, parameter(0, "third")))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"000001069 second"}));
    QCOMPARE(info.fileInfos.value(latin("A")).fileInfo.absoluteFilePath(), b);
}

void TestVSTiDatabase::parametersWithoutIdOrNameAreSkippedAndAnEmptyNameIsKept()
{
    QVERIFY(writeDatabase(section(entry(
        "A", m_rig->plugin("a"),
        "<parameter id=\"4201\"/><parameter name=\"no id\"/><parameter id=\"\" name=\"empty id\"/>"
        "<parameter id=\"4202\" name=\"\"/><group><parameter id=\"4203\" name=\"lost\"/></group>"
        "<group name=\"\"><parameter id=\"4204\" name=\"kept\"/></group>"
        "<other><parameter id=\"4205\" name=\"lost\"/></other>text<!-- comment -->"))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))),
             names({"00000106a ", "00000106c /kept"}));
    QVERIFY(info.isConsistent());
}

void TestVSTiDatabase::theFirstParameterOfAnIdWins()
{
    QVERIFY(writeDatabase(section(entry("A", m_rig->plugin("a"),
                                        "<group name=\"G\">" + parameter(0, "first") + "</group>" +
                                            parameter(0, "second") +
                                            "<parameter id=\"4201\" name=\"the same, short\"/>"))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"000001069 G/first"}));
}

void TestVSTiDatabase::databasesOfNoUseGiveAnEmptySection_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    const QByteArray type = "<!DOCTYPE VSTiDatabase>";
    QTest::newRow("cut off") << type + "<dawlist>" << QByteArray();
    QTest::newRow("other document type")
        << QByteArray("<!DOCTYPE VSTiPreset><dawlist>") << QByteArray("</dawlist>");
    QTest::newRow("no document type") << QByteArray("<dawlist>") << QByteArray("</dawlist>");
    QTest::newRow("other root") << type + "<list>" << QByteArray("</list>");
    QTest::newRow("section below another element")
        << type + "<dawlist><a>" << QByteArray("</a></dawlist>");
    QTest::newRow("declared entity")
        << QByteArray("<!DOCTYPE VSTiDatabase [<!ENTITY e \"x\">]><dawlist>")
        << QByteArray("</dawlist>");
    QTest::newRow("257 levels") << type + "<dawlist>"
                                << QByteArray("<a>").repeated(256) +
                                       QByteArray("</a>").repeated(256) + "</dawlist>";
    QTest::newRow("a million levels") << type + "<dawlist>" << QByteArray("<a>").repeated(1000000);
    QTest::newRow("more than a million elements")
        << type + "<dawlist>" << QByteArray("<a/>").repeated(1000000) + "</dawlist>";
    QTest::newRow("more than 128 MiB") << type + "<dawlist>"
                                       << "</dawlist>" + QByteArray(128 * 1024 * 1024, ' ');
    QTest::newRow("zeros") << QByteArray(1000, '\0') << QByteArray();
}

void TestVSTiDatabase::databasesOfNoUseGiveAnEmptySection()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const QByteArray content = section(entry("A", m_rig->plugin("a"), parameter(0, "p")));
    QVERIFY(writeBytes(m_rig->database(), before + content + after));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QVERIFY(info.parameterLists.isEmpty());
    QVERIFY(info.fileInfos.isEmpty());
}

void TestVSTiDatabase::moreNamesThanThereMayBeCostOnlyWhatComesAfter()
{
    // 252 groups and a name for each of 70,000 parameters
    QByteArray rows;
    for (int i = 0; i < 70000; ++i) {
        rows += parameter(i, "p");
    }
    const QString a = m_rig->plugin("a");
    QVERIFY(writeDatabase(section(entry("A", a, parameter(0, "p")) +
                                  entry("B", a,
                                        QByteArray("<group name=\"g\">").repeated(252) + rows +
                                            QByteArray("</group>").repeated(252)))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QCOMPARE(info.getVSTiExistsAndPresetList(), names({"A"}));
    QVERIFY(info.isConsistent());
    QVERIFY(!info.parameterMaps.contains(latin("B")));
    QVERIFY(!info.fileInfos.contains(latin("B")));
}

// --- Writing -------------------------------------------------------------------------------------

void TestVSTiDatabase::aScanIsWrittenAndReadAgain()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("A.vst3"),
                                    {scanned(0, "Volume"),
                                     scanned(1, "Cutoff", {"Filter", "One"}),
                                     scanned(2, "Resonance", {"Filter", "One"}),
                                     {BypassID, "Bypass", {}}}));
    info.scanResults->append(record("B", m_rig->plugin("B.so"), {scanned(5, "x")}, true));
    info.scanResults->append(record("C", m_rig->plugin("C.vst3"), {}));
    info.entryVSTiParameter();
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QCOMPARE(printed(again.getVSTiParameterList(latin("A"))),
             names({"000001069 Volume", "00000106a Filter/One/Cutoff",
                    "00000106b Filter/One/Resonance", "00098a6ea Bypass"}));
    QCOMPARE(printed(again.getVSTiParameterList(latin("B"))), names({"00000106e x"}));
    for (const char *name : {"A", "B", "C"}) {
        QCOMPARE(printed(again.getVSTiParameterList(latin(name))),
                 printed(info.getVSTiParameterList(latin(name))));
        QCOMPARE(again.fileInfos.value(latin(name)).version,
                 info.fileInfos.value(latin(name)).version);
        QCOMPARE(again.fileInfos.value(latin(name)).fileInfo.absoluteFilePath(),
                 info.fileInfos.value(latin(name)).fileInfo.absoluteFilePath());
    }
    QCOMPARE(again.fileInfos.size(), 3);
    QVERIFY(again.isConsistent());
}

void TestVSTiDatabase::theFileHasTheLayoutTold()
{
    const QString file = m_rig->plugin("A.vst3", 1234);
    const QDateTime time(QDate(2019, 12, 3), QTime(4, 5, 6));
    QVERIFY(touch(file, time));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(
        record("A", file, {scanned(0, "Volume"), {BypassID, "Bypass", {"G"}}}));
    info.entryVSTiParameter();
    QCOMPARE(
        outline(m_rig->database()),
        QStringList(
            {latin("!VSTiDatabase"), latin("dawlist "), latin(" daw name=Trevia Pro 8.5"),
             latin("  vsti name=A path=%1 size=1234 time=2019-12-03T04:05:06 version=3").arg(file),
             latin("   parameter id=00000004201 name=Volume"), latin("   group name=G"),
             latin("    parameter id=00010004202 name=Bypass")}));
    const QByteArray text = bytesOf(m_rig->database());
    QVERIFY(
        text.startsWith("<!DOCTYPE VSTiDatabase>\n<dawlist>\n    <daw name=\"Trevia Pro 8.5\">\n"
                        "        <vsti "));
    QVERIFY(text.endsWith("        </vsti>\n    </daw>\n</dawlist>\n"));
}

void TestVSTiDatabase::groupsAreWrittenOnceAndInTheirOrder()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(
        record("A", m_rig->plugin("A.vst3"),
               {scanned(0, "a", {"X", "Y"}), scanned(1, "b", {"Z"}), scanned(2, "c", {"X"}),
                scanned(3, "d", {"X", "Y"}), scanned(4, "e", {"Y"}), scanned(5, "X")}));
    info.entryVSTiParameter();
    QCOMPARE(outline(m_rig->database()).mid(4),
             names({"   group name=X", "    group name=Y", "     parameter id=00000004201 name=a",
                    "     parameter id=00000004204 name=d", "    parameter id=00000004203 name=c",
                    "   group name=Z", "    parameter id=00000004202 name=b", "   group name=Y",
                    "    parameter id=00000004205 name=e", "   parameter id=00000004206 name=X"}));
}

void TestVSTiDatabase::everyNameComesBackAsFarAsXMLCanHoldIt_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("back");
    const auto same = [](const char *row, const QByteArray &name) {
        QTest::newRow(row) << name << name;
    };
    same("empty", "");
    same("blanks", "  ");
    same("blanks around", " a  b ");
    same("markup", "<a href='x'>&amp;]]>\"</a>");
    same("line feed", "a\nb");
    same("tab and carriage return", "\ta\r\nb\r");
    same("other scripts", "Größe 音量 🎹");
    same("no-break blank", "\u00a0");
    same("64 KB", QByteArray(65536, 'n'));
    QTest::newRow("control characters") << QByteArray("a\x01"
                                                      "b\x1f\x7f")
                                        << QByteArray("a?b?\x7f");
    QTest::newRow("not a character") << QByteArray("\xEF\xBF\xBE") << QByteArray("?");
    QTest::newRow("no UTF-8") << QByteArray("a\xff"
                                            "b")
                              << QByteArray("a\xEF\xBF\xBD"
                                            "b");
}

void TestVSTiDatabase::everyNameComesBackAsFarAsXMLCanHoldIt()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, back);
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    // The instrument's own name may not be empty.
    info.scanResults->append(record("A" + name, m_rig->plugin("A.vst3"),
                                    {scanned(0, name, {name, "g", name}), scanned(1, name)}));
    info.entryVSTiParameter();
    const QString text = QString::fromUtf8(back);
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QCOMPARE(again.getVSTiExistsAndPresetList(), QStringList(latin("A") + text));
    const QList<VSTiInfo::Parameter> list = again.getVSTiParameterList(latin("A") + text);
    QCOMPARE(list.size(), 2);
    QCOMPARE(list.at(0).path, QStringList({text, latin("g"), text, text}));
    QCOMPARE(list.at(1).path, QStringList(text));
}

void TestVSTiDatabase::timeAndSizeAreThoseOfTheMomentOfWriting()
{
    const QString file = m_rig->plugin("A.vst3", 10);
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", file, {scanned(0, "p")}));
    info.entryVSTiParameter();
    // The model has seen the file; what it remembers of it must not be written.
    QVERIFY(info.fileInfos.value(latin("A")).fileInfo.size() == 10);
    m_rig->plugin("A.vst3", 20);
    QVERIFY(touch(file, QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5))));
    info.entryVSTiParameter();
    QVERIFY(outline(m_rig->database()).filter(latin("size=20 time=2020-01-02T03:04:05")).size() ==
            1);
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QVERIFY(again.fileInfos.contains(latin("A")));
}

void TestVSTiDatabase::otherSectionsSurvive()
{
    const QString a = m_rig->plugin("a");
    QVERIFY(writeDatabase(section(entry("Other", a, parameter(0, "p")), "Ostrel 8") +
                          section(entry("Old", m_rig->path("gone"), parameter(0, "p"))) +
                          section(entry("Last", a, parameter(0, "p")), "Trevia Pro 9") +
                          "<unknown attribute=\"kept\">text</unknown>"));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("New", a, {scanned(0, "p")}));
    info.entryVSTiParameter();
    const QStringList lines = outline(m_rig->database());
    QCOMPARE(lines.filter(latin("daw name=")),
             names({" daw name=Ostrel 8", " daw name=Trevia Pro 8.5", " daw name=Trevia Pro 9"}));
    QVERIFY(lines.contains(latin(" unknown attribute=kept")));
    QVERIFY(lines.filter(latin("Old")).isEmpty());
    for (const auto &[daw, name] :
         {std::pair("Ostrel 8", "Other"), {"Trevia Pro 8.5", "New"}, {"Trevia Pro 9", "Last"}}) {
        ScannedVSTiInfo again = m_rig->info();
        again.selectDAW(latin(daw));
        QCOMPARE(again.getVSTiExistsAndPresetList(), names({name}));
    }
}

void TestVSTiDatabase::theSectionKeepsItsPlace()
{
    ScannedVSTiInfo info = m_rig->info();
    for (const char *daw : {"one", "two", "three", "two", "one"}) {
        info.selectDAW(latin(daw));
        info.entryVSTiParameter();
    }
    QCOMPARE(outline(m_rig->database()).mid(2),
             names({" daw name=one", " daw name=two", " daw name=three"}));
}

void TestVSTiDatabase::aDamagedDatabaseIsMadeAnew_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << QByteArray("<!DOCTYPE VSTiDatabase><dawlist><daw name=\"x\">");
    QTest::newRow("a million levels") << QByteArray("<a>").repeated(1000000);
    QTest::newRow("zeros") << QByteArray(4096, '\0');
    QTest::newRow("two roots") << databaseOf({}) + "<dawlist/>";
}

void TestVSTiDatabase::aDamagedDatabaseIsMadeAnew()
{
    QFETCH(QByteArray, text);
    QVERIFY(writeBytes(m_rig->database(), text));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "p")}));
    info.entryVSTiParameter();
    QCOMPARE(outline(m_rig->database()).size(), 5);
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QCOMPARE(again.getVSTiExistsAndPresetList(), names({"A"}));
}

void TestVSTiDatabase::aForeignDocumentStaysAndTheListIsAppended_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("other document type") << QByteArray("<!DOCTYPE Other>\n<dawlist>\n</dawlist>\n");
    QTest::newRow("other root") << QByteArray("<!DOCTYPE VSTiDatabase>\n<other/>\n");
}

void TestVSTiDatabase::aForeignDocumentStaysAndTheListIsAppended()
{
    QFETCH(QByteArray, text);
    QVERIFY(writeBytes(m_rig->database(), text));
    const QByteArray type = text.first(text.indexOf('\n'));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "p")}));
    info.entryVSTiParameter();
    const QByteArray written = bytesOf(m_rig->database());
    QVERIFY(written.startsWith(type));
    QVERIFY(written.contains("<daw name=\"Trevia Pro 8.5\">"));
    QVERIFY(written.endsWith("</dawlist>\n"));
    // Two roots are no document, so the next run scans all and makes the file anew.
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QVERIFY(again.parameterLists.isEmpty());
    info.entryVSTiParameter();
    readAgain(&again);
    QCOMPARE(again.getVSTiExistsAndPresetList(), names({"A"}));
}

void TestVSTiDatabase::theFolderIsMadeWhenItIsNeeded()
{
    ScannedVSTiInfo info = m_rig->info();
    QVERIFY(!QFileInfo::exists(m_rig->path("data")));
    info.selectDAW(DAW);
    QVERIFY(!QFileInfo::exists(m_rig->path("data")));
    info.entryVSTiParameter();
    QVERIFY(QFileInfo::exists(m_rig->database()));
}

void TestVSTiDatabase::aFullDiskLeavesTheOldFile()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.entryVSTiParameter();
    const QByteArray old = bytesOf(m_rig->database());
    QList<SVSTiParameterInfo> many;
    for (int i = 0; i < 1000; ++i) {
        many.append(scanned(i, "parameter"));
    }
    info.scanResults->append(record("A", m_rig->plugin("a"), many));
    for (const rlim_t room : {rlim_t(0), rlim_t(1), rlim_t(4096), rlim_t(30000)}) {
        const FullDisk disk(room);
        info.entryVSTiParameter();
        QCOMPARE(bytesOf(m_rig->database()), old);
        QCOMPARE(QDir(m_rig->path("data")).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
    QCOMPARE(info.getVSTiParameterList(latin("A")).size(), 1000);
    info.entryVSTiParameter();
    QVERIFY(bytesOf(m_rig->database()).size() > 30000);
}

void TestVSTiDatabase::aFullDiskLeavesTheOldFileIfTheNewOneIsSmall()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "p")}));
    info.entryVSTiParameter();
    const QByteArray old = bytesOf(m_rig->database());
    info.scanResults->append(record("B", m_rig->plugin("b"), {scanned(0, "p")}));
    for (const rlim_t room : {rlim_t(0), rlim_t(1), rlim_t(100)}) {
        const FullDisk disk(room);
        info.entryVSTiParameter();
        QCOMPARE(bytesOf(m_rig->database()), old);
        QCOMPARE(QDir(m_rig->path("data")).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
}

void TestVSTiDatabase::aFileThatCannotBeReplacedLeavesTheModelValid()
{
    // A folder of the file's name.
    QVERIFY(QDir().mkpath(m_rig->database()));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "p")}));
    QFile file(m_rig->database());
    QVERIFY(!info.writeParameterListDatabase(file));
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList().first(), latin("A"));
    QCOMPARE(info.getParameterName(latin("A"), idOf(0)), names({"p"}));
}

void TestVSTiDatabase::deeperGroupsThanCanBeReadAreLeftOutOfThePath()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    const QString file = m_rig->plugin("a");
    info.scanResults->append(record("A", file,
                                    {scanned(0, "fits", QList<QByteArray>(252, "g")),
                                     scanned(1, "too deep", QList<QByteArray>(253, "g")),
                                     scanned(2, "endless", QList<QByteArray>(100000, "g"))}));
    info.entryVSTiParameter();
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    for (const ScannedVSTiInfo *one : {&info, &again}) {
        const QList<VSTiInfo::Parameter> list = one->getVSTiParameterList(latin("A"));
        QCOMPARE(list.size(), 3);
        for (const VSTiInfo::Parameter &parameter : list) {
            QCOMPARE(parameter.path.size(), 253);
        }
        QCOMPARE(list.at(2).path.last(), latin("endless"));
    }
}

void TestVSTiDatabase::aPluginTooLargeForTheFileCostsNoOtherItsPlace_data()
{
    QTest::addColumn<int>("parameters");
    QTest::addColumn<int>("nameLength");
    QTest::newRow("a million parameters") << 1000000 << 1;
    // The list, the section, and each of the others with its one parameter take eight.
    QTest::newRow("one element more than there is room for") << 1000000 - 8 << 1;
    QTest::newRow("3000 names of 64 KB") << 3000 << 65536;
}

void TestVSTiDatabase::aPluginTooLargeForTheFileCostsNoOtherItsPlace()
{
    QFETCH(int, parameters);
    QFETCH(int, nameLength);
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    QList<SVSTiParameterInfo> many;
    many.reserve(parameters);
    const QByteArray name(nameLength, 'n');
    for (int i = 0; i < parameters; ++i) {
        many.append(scanned(i, name));
    }
    info.scanResults->append(record("Large", m_rig->plugin("large"), many));
    for (const char *small : {"A", "B", "C"}) {
        info.scanResults->append(record(small, m_rig->plugin(small), {scanned(0, "p")}));
    }
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiParameterList(latin("Large")).size(), parameters);
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QStringList all = again.getVSTiExistsAndPresetList();
    all.sort();
    QCOMPARE(all, names({"A", "B", "C"}));
}

void TestVSTiDatabase::theSizeToldIsNeverLessThanTheSizeWritten()
{
    const QString name = QString::fromUtf8("<>&\"'\t\r\n ü音🎹") + QString(1000, QLatin1Char('"'));
    QList<VSTiInfo::Parameter> list;
    for (int i = 0; i < 100; ++i) {
        list.append({idOf(i), {latin("group"), name, name}});
        list.append(
            {idOf(100 + i), QStringList(VSTiInfo::MaximumGroups, latin("g")) + QStringList(name)});
    }
    const InstrumentTreeWriter tree(list, 0);
    QByteArray written;
    QXmlStreamWriter stream(&written);
    stream.setAutoFormatting(true);
    tree.write(&stream);
    QVERIFY(tree.size().bytes >= written.size());
    QVERIFY(tree.size().bytes < 2 * written.size());
    QCOMPARE(tree.size().elements, 200 + 2 + VSTiInfo::MaximumGroups);
    QCOMPARE(tree.size().attributes, 400 + 2 + VSTiInfo::MaximumGroups);
}

void TestVSTiDatabase::twoHundredThousandParametersComeBack()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    for (int instrument = 0; instrument < 200; ++instrument) {
        QList<SVSTiParameterInfo> list;
        for (int i = 0; i < 1000; ++i) {
            list.append(scanned(i, "Parameter " + QByteArray::number(i),
                                {"Group " + QByteArray::number(i / 20)}));
        }
        const QByteArray name = "Instrument " + QByteArray::number(instrument);
        info.scanResults->append(record(name, m_rig->plugin(name.constData()), list));
    }
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList().size(), 203);
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QCOMPARE(again.parameterLists.size(), 200);
    for (auto list = again.parameterLists.cbegin(); list != again.parameterLists.cend(); ++list) {
        QCOMPARE(printed(*list), printed(info.getVSTiParameterList(list.key())));
    }
    QVERIFY(again.isConsistent());
}

// --- Entering ------------------------------------------------------------------------------------

void TestVSTiDatabase::anEntryWithoutNewsRewritesTheFile()
{
    const QString a = m_rig->plugin("a");
    QVERIFY(writeDatabase(section(entry("A", a, parameter(0, "p")) +
                                  entry("Gone", m_rig->path("gone"), parameter(0, "p")))));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList(), names({"A", "Audio Track", "MIDI Track", "Generic"}));
    const QStringList lines = outline(m_rig->database());
    QCOMPARE(lines.filter(latin("vsti name=A ")).size(), 1);
    QVERIFY(lines.filter(latin("Gone")).isEmpty());
}

void TestVSTiDatabase::repeatedIdsOfAScanAreDropped()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record(
        "A", m_rig->plugin("a"), {scanned(1, "first"), scanned(0, "zero"), scanned(1, "again")}));
    info.entryVSTiParameter();
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))),
             names({"00000106a first", "000001069 zero"}));
    QVERIFY(info.isConsistent());
}

void TestVSTiDatabase::aRecordWithoutParametersIsKnownByName()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("Named Only", m_rig->plugin("a"), {}));
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList(), names({"Named Only", "Audio Track", "MIDI Track", "Generic"}));
    QVERIFY(info.getVSTiParameterList(latin("Named Only")).isEmpty());
    QVERIFY(!info.parameterMaps.contains(latin("Named Only")));
    QVERIFY(info.getVSTiExistsAndPresetList().contains(latin("Named Only")));
}

void TestVSTiDatabase::aLaterRecordReplacesAnEarlierOne()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    const QString second = m_rig->plugin("b");
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "old"), scanned(1, "x")}));
    info.scanResults->append(record("A", second, {scanned(0, "new")}, true));
    info.entryVSTiParameter();
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"000001069 new"}));
    QCOMPARE(info.fileInfos.value(latin("A")).version, 2);
    QCOMPARE(info.fileInfos.value(latin("A")).fileInfo.absoluteFilePath(), second);
    QVERIFY(info.isConsistent());
}

void TestVSTiDatabase::presetsFillInWhatIsKnownByNameOnly()
{
    QVERIFY(m_rig->writePreset("<vsti name=\"Named\">"
                               "<parameter id=\"4201\" name=\"of the preset\"/></vsti>"
                               "<vsti name=\"Scanned\">"
                               "<parameter id=\"4201\" name=\"of the preset\"/></vsti>"
                               "<vsti name=\"Not Installed\">"
                               "<parameter id=\"4201\" name=\"of the preset\"/></vsti>"));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("Named", m_rig->plugin("a"), {}));
    info.scanResults->append(record("Scanned", m_rig->plugin("b"), {scanned(0, "of the scan")}));
    info.entryVSTiParameter();
    QCOMPARE(printed(info.getVSTiParameterList(latin("Named"))),
             names({"000001069 of the preset"}));
    QCOMPARE(printed(info.getVSTiParameterList(latin("Scanned"))),
             names({"000001069 of the scan"}));
    QVERIFY(info.getVSTiExistsAndPresetList().contains(latin("Not Installed")));
    QCOMPARE(info.getVSTiList(),
             names({"Named", "Scanned", "Audio Track", "MIDI Track", "Generic"}));
    QVERIFY(info.isConsistent());
    // Presets don't enter the database.
    QVERIFY(!bytesOf(m_rig->database()).contains("preset"));
    QVERIFY(!bytesOf(m_rig->database()).contains("Not Installed"));
}

void TestVSTiDatabase::shownNamesAreSortedWithoutRegardToCaseAndTheGroupsFollow()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    for (const char *name : {"zeta", "Alpha", "beta", "ALPHA", "Zulu", "1st", "alpha"}) {
        info.scanResults->append(record(name, m_rig->plugin(name), {}));
    }
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiList(), names({"1st", "ALPHA", "Alpha", "alpha", "beta", "zeta", "Zulu",
                                        "Audio Track", "MIDI Track", "Generic"}));
}

void TestVSTiDatabase::scanResultsStayUntilTheNextScan()
{
    ScannedVSTiInfo info = m_rig->info();
    info.scanResults->append(record("A", m_rig->plugin("a"), {}));
    info.vstXmlFiles.insert(latin("A"), m_rig->path("a.vstxml"));
    info.vstXmlPrimaryNames.append(latin("A"));
    info.selectDAW(DAW);
    info.entryVSTiParameter();
    QCOMPARE(info.scanResults->size(), 1);
    QCOMPARE(info.vstXmlFiles.size(), 1);
    QCOMPARE(info.vstXmlPrimaryNames.size(), 1);
}

void TestVSTiDatabase::descriptionsOfTheScanReachTheDatabase()
{
    const QByteArray description = "<VSTParametersStructure><Group name=\"G\">"
                                   "<Param name=\"one\" id=\"1\"/><Param name=\"nine\" id=\"9\"/>"
                                   "</Group></VSTParametersStructure>";
    QVERIFY(writeBytes(m_rig->path("x.vstxml"), description));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    for (const char *name : {"Refined", "Primary"}) {
        info.scanResults->append(
            record(name, m_rig->plugin(name), {scanned(0, "p0"), scanned(1, "p1")}));
        info.vstXmlFiles.insert(latin(name), m_rig->path("x.vstxml"));
    }
    info.vstXmlPrimaryNames.append(latin("Primary"));
    info.entryVSTiParameter();
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    for (const ScannedVSTiInfo *one : {&info, &again}) {
        QCOMPARE(printed(one->getVSTiParameterList(latin("Refined"))), names({"00000106a G/one"}));
        QCOMPARE(printed(one->getVSTiParameterList(latin("Primary"))),
                 names({"000001069 p0", "00000106a G/one", "000001072 G/nine"}));
        QVERIFY(one->isConsistent());
    }
}

void TestVSTiDatabase::descriptionsInMemoryAreEntered()
{
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", m_rig->plugin("a"), {scanned(0, "p0")}));
    info.vstXmlData.insert(latin("A"), "<VSTParametersStructure><Param name=\"zero\" id=\"0\"/>"
                                       "</VSTParametersStructure>");
    info.entryVSTiParameter();
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"000001069 zero"}));
}

void TestVSTiDatabase::aDescriptionBesideAVST2PluginRefinesTheModelAlone()
{
    const QString file = m_rig->plugin("A file.so");
    QVERIFY(writeBytes(m_rig->path("plugins/A.vstxml"),
                       "<VSTParametersStructure><Param name=\"one\" id=\"1\"/>"
                       "</VSTParametersStructure>"));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", file, {scanned(0, "p0"), scanned(1, "p1")}, true));
    info.entryVSTiParameter();
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"00000106a one"}));

    // The database has the whole list, and the file is applied again to what comes from there.
    ScannedVSTiInfo again = m_rig->info();
    readAgain(&again);
    QCOMPARE(printed(again.getVSTiParameterList(latin("A"))),
             names({"000001069 p0", "00000106a p1"}));
    again.entryVSTiParameter();
    QCOMPARE(printed(again.getVSTiParameterList(latin("A"))), names({"00000106a one"}));
    QVERIFY(again.isConsistent());
    QVERIFY(!bytesOf(m_rig->database()).contains("one"));
}

void TestVSTiDatabase::aDescriptionBesideAVST3PluginIsNotLookedAt()
{
    const QString file = m_rig->plugin("A.vst3");
    QVERIFY(writeBytes(m_rig->path("plugins/A.vstxml"),
                       "<VSTParametersStructure><Param name=\"one\" id=\"1\"/>"
                       "</VSTParametersStructure>"));
    ScannedVSTiInfo info = m_rig->info();
    info.selectDAW(DAW);
    info.scanResults->append(record("A", file, {scanned(0, "p0"), scanned(1, "p1")}));
    info.entryVSTiParameter();
    QCOMPARE(info.getVSTiParameterList(latin("A")).size(), 2);
}

// --- Sizes ---------------------------------------------------------------------------------------

void TestVSTiDatabase::theSizeOfAFileAndOfABundle()
{
    QCOMPARE(getVSTiFileSize(QFileInfo(m_rig->plugin("file", 123))), 123);
    m_rig->plugin("B.vst3/Contents/x86_64-linux/B.so", 1000);
    m_rig->plugin("B.vst3/Contents/Resources/.hidden/a", 200);
    m_rig->plugin("B.vst3/Contents/Resources/.b", 30);
    m_rig->plugin("B.vst3/c", 4);
    QVERIFY(QDir().mkpath(m_rig->path("plugins/B.vst3/empty")));
    const QFileInfo bundle(m_rig->path("plugins/B.vst3"));
    QCOMPARE(getVSTiFileSize(bundle), 1234);
    QCOMPARE(getVSTiFileSize(bundle), 1234);
    m_rig->plugin("B.vst3/Contents/Resources/.hidden/a", 201);
    QCOMPARE(getVSTiFileSize(bundle), 1235);
}

void TestVSTiDatabase::linksInABundleAreNotFollowedIntoFolders()
{
    m_rig->plugin("B.vst3/a", 1000);
    const QString outside = m_rig->plugin("outside/b", 30);
    const QString bundle = m_rig->path("plugins/B.vst3");
    const auto link = [&bundle](const QString &target, const char *name) {
        return QFile::link(target, bundle + QLatin1Char('/') + latin(name));
    };
    QVERIFY(link(latin("."), "itself"));
    QVERIFY(link(latin(".."), "parent"));
    QVERIFY(link(m_rig->path("plugins/outside"), "outside"));
    QVERIFY(link(latin("/"), "everything"));
    QVERIFY(link(latin("circle"), "circle"));
    QVERIFY(link(latin("nothing"), "broken"));
    QCOMPARE(getVSTiFileSize(QFileInfo(bundle)), 1000);
    // The plug-in's own binary may be such a link.
    QVERIFY(link(outside, "file"));
    QCOMPARE(getVSTiFileSize(QFileInfo(bundle)), 1030);
    // And so may the bundle.
    QVERIFY(QFile::link(bundle, m_rig->path("plugins/link.vst3")));
    QCOMPARE(getVSTiFileSize(QFileInfo(m_rig->path("plugins/link.vst3"))), 1030);
}

void TestVSTiDatabase::aFolderALongWayDownIsReached()
{
    const QByteArray folders = QByteArray("d/").repeated(600);
    m_rig->plugin(("B.vst3/" + folders + "a").constData(), 7);
    QCOMPARE(getVSTiFileSize(QFileInfo(m_rig->path("plugins/B.vst3"))), 7);
}

void TestVSTiDatabase::nothingHasNoSize()
{
    QCOMPARE(getVSTiFileSize(QFileInfo()), 0);
    QCOMPARE(getVSTiFileSize(QFileInfo(m_rig->path("missing"))), 0);
}

QTEST_GUILESS_MAIN(TestVSTiDatabase)
#include "tst_vstidatabase.moc"
