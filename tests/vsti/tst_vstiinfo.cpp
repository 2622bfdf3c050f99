// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "vsti/VstiHarness.h"

#include <QtTest/QtTest>

// What the views ask: names to show, parameters of a name, names of an id, short names.

class TestVSTiInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshModelShowsTheThreeControlGroups();
    void aFreshModelFindsNoDAW();
    void theDAWListIsAscending();
    void aControlGroupHasNoFileAndNoParameters();
    void presetsAreKnownButNotShown();
    void aControlGroupThatThePresetDefinesIsNotShown();
    void presetsWithoutUseAreLeftOut_data();
    void presetsWithoutUseAreLeftOut();
    void theFirstPresetOfANameWithParametersWins();
    void thePresetsThatComeWithTheProgramAreRead();
    void theElevenTrackControls();
    void trackControlsHaveOneNameForEveryInstrument_data();
    void trackControlsHaveOneNameForEveryInstrument();
    void anIdInCapitalsFindsItsParameter();
    void theThreeFixedIdsAreKnownInLowerCaseOnly();
    void unknownNamesGiveNothing();
    void shortNames_data();
    void shortNames();
    void shortNamesLeadBackToTheirNames();
    void twoNamesWithOneShortNameGiveOneOfThemAlways();
    void anUnknownShortNameGivesNull();
    void initializingDeletesDatabaseAndListAndClearingTheListAlone();
    void theSignalCarriesTheFileName();
};

void TestVSTiInfo::aFreshModelShowsTheThreeControlGroups()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getVSTiList(), names({"Audio Track", "MIDI Track", "Generic"}));
    QStringList all = info.getVSTiExistsAndPresetList();
    all.sort();
    QCOMPARE(all, names({"Audio Track", "Generic", "MIDI Track"}));
    QVERIFY(info.currentDAW.isEmpty());
}

void TestVSTiInfo::aFreshModelFindsNoDAW()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    QVERIFY(info.getDAWList().isEmpty());
}

void TestVSTiInfo::theDAWListIsAscending()
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    for (const char *name : {"Trevia Pro 9", "Ostrel AI 8", "Trevia Pro 8.5"}) {
        info.dawSettings.insert(latin(name), {});
    }
    QCOMPARE(info.getDAWList(), names({"Ostrel AI 8", "Trevia Pro 8.5", "Trevia Pro 9"}));
}

void TestVSTiInfo::aControlGroupHasNoFileAndNoParameters()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    for (const QString &name : {AudioTrackName, MIDITrackName, GenericName}) {
        QVERIFY(info.getVSTiParameterList(name).isEmpty());
        QVERIFY(info.getVSTiParameterMap(name).isEmpty());
        QVERIFY(!info.parameterMaps.contains(name));
        QVERIFY(info.fileInfos.contains(name));
        QCOMPARE(info.fileInfos.value(name).version, 0);
        QVERIFY(info.fileInfos.value(name).fileInfo.filePath().isEmpty());
    }
}

void TestVSTiInfo::presetsAreKnownButNotShown()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"Some Synth\">"
                            "<parameter id=\"00000004201\" name=\"Volume\"/>"
                            "<group name=\"Filter\"><group name=\"One\">"
                            "<parameter id=\"00000004202\" name=\"Cutoff\"/></group></group>"
                            "</vsti>"));
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getVSTiList(), names({"Audio Track", "MIDI Track", "Generic"}));
    QVERIFY(info.getVSTiExistsAndPresetList().contains(latin("Some Synth")));
    QCOMPARE(printed(info.getVSTiParameterList(latin("Some Synth"))),
             names({"000001069 Volume", "00000106a Filter/One/Cutoff"}));
    QCOMPARE(info.getVSTiParameterMap(latin("Some Synth")).value(latin("00000106a")),
             names({"Filter", "One", "Cutoff"}));
    QVERIFY(!info.fileInfos.contains(latin("Some Synth")));
    QVERIFY(info.isConsistent());
}

void TestVSTiInfo::aControlGroupThatThePresetDefinesIsNotShown()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"Generic\">"
                            "<parameter id=\"00000004201\" name=\"Volume\"/></vsti>"));
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getVSTiList(), names({"Audio Track", "MIDI Track"}));
    QCOMPARE(printed(info.getVSTiParameterList(GenericName)), names({"000001069 Volume"}));
    QVERIFY(!info.fileInfos.contains(GenericName));
}

void TestVSTiInfo::presetsWithoutUseAreLeftOut_data()
{
    QTest::addColumn<QByteArray>("file");
    const QByteArray row = "<vsti name=\"A\"><parameter id=\"4201\" name=\"V\"/></vsti>";
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("malformed") << "<!DOCTYPE VSTiPreset><vstilist>" + row;
    QTest::newRow("other document type")
        << "<!DOCTYPE VSTiDatabase><vstilist>" + row + "</vstilist>";
    QTest::newRow("no document type") << "<vstilist>" + row + "</vstilist>";
    QTest::newRow("other root") << "<!DOCTYPE VSTiPreset><list>" + row + "</list>";
    QTest::newRow("row without name")
        << QByteArray("<!DOCTYPE VSTiPreset><vstilist><vsti>"
                      "<parameter id=\"4201\" name=\"V\"/></vsti></vstilist>");
    QTest::newRow("declared entity")
        << "<!DOCTYPE VSTiPreset [<!ENTITY e \"x\">]><vstilist>" + row + "</vstilist>";
    QTest::newRow("300 levels") << "<!DOCTYPE VSTiPreset><vstilist>" + row +
                                       QByteArray("<vsti name=\"B\">") +
                                       QByteArray("<group name=\"g\">").repeated(300) +
                                       QByteArray("</group>").repeated(300) + "</vsti></vstilist>";
    QTest::newRow("too many elements") << "<!DOCTYPE VSTiPreset><vstilist>" + row +
                                              QByteArray("<a/>").repeated(1000000) + "</vstilist>";
}

void TestVSTiInfo::presetsWithoutUseAreLeftOut()
{
    QFETCH(QByteArray, file);
    const VstiRig rig;
    QVERIFY(writeBytes(rig.preset(), file));
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getVSTiExistsAndPresetList().size(), 3);
    QCOMPARE(info.getVSTiList(), names({"Audio Track", "MIDI Track", "Generic"}));
    QVERIFY(info.parameterMaps.isEmpty());
}

void TestVSTiInfo::theFirstPresetOfANameWithParametersWins()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"A\"/>"
                            "<vsti name=\"A\"><parameter id=\"4201\" name=\"first\"/></vsti>"
                            "<vsti name=\"A\"><parameter id=\"4201\" name=\"second\"/></vsti>"));
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(printed(info.getVSTiParameterList(latin("A"))), names({"000001069 first"}));
}

void TestVSTiInfo::thePresetsThatComeWithTheProgramAreRead()
{
    const VstiRig rig;
    QVERIFY(writeBytes(rig.preset(), bytesOf(latin(TRN_SOURCE_DIR "/resources/VSTiPreset.xml"))));
    const ScannedVSTiInfo info = rig.info();
    for (const char *name : {"TARN/TERN VST", "Orskvale", "Tamberline"}) {
        QVERIFY(!info.getVSTiParameterList(latin(name)).isEmpty());
    }
    QCOMPARE(info.getParameterName(latin("TARN/TERN VST"), idOf(8)), names({"Filter", "Cutoff"}));
    QVERIFY(info.isConsistent());
}

void TestVSTiInfo::theElevenTrackControls()
{
    const VstiRig rig;
    QStringList expected =
        names({"100000401 Volume", "100001069 Pan Left-Right", "204143dff No Assign"});
    for (int i = 1; i <= 8; ++i) {
        expected.append(latin("10000000%1 QuickCtrl/QuickCtrl%1").arg(i));
    }
    QCOMPARE(printed(rig.info().getTrackControlParameterList()), expected);
}

void TestVSTiInfo::trackControlsHaveOneNameForEveryInstrument_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QStringList>("name");
    const VstiRig rig;
    for (const VSTiInfo::Parameter &parameter : rig.info().getTrackControlParameterList()) {
        QTest::newRow(qPrintable(parameter.id)) << parameter.id << parameter.path;
    }
    QTest::newRow("before the quick controls") << latin("100000000") << QStringList();
    QTest::newRow("after the quick controls") << latin("100000009") << QStringList();
    QTest::newRow("quick control of another type") << latin("000000001") << QStringList();
    QTest::newRow("empty") << QString() << QStringList();
}

void TestVSTiInfo::trackControlsHaveOneNameForEveryInstrument()
{
    QFETCH(QString, id);
    QFETCH(QStringList, name);
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getParameterName(AudioTrackName, id), name);
    QCOMPARE(info.getParameterName(latin("no such instrument"), id), name);
    QCOMPARE(info.getParameterName(QString(), id), name);
}

void TestVSTiInfo::anIdInCapitalsFindsItsParameter()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"A\"><parameter id=\"4202\" name=\"Cutoff\"/></vsti>"));
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getParameterName(latin("A"), latin("00000106A")), names({"Cutoff"}));
    QCOMPARE(info.getVSTiParameterName(latin("A"), latin("00000106A")), names({"Cutoff"}));
    QCOMPARE(info.getVSTiParameterName(latin("a"), latin("00000106a")), QStringList());
}

void TestVSTiInfo::theThreeFixedIdsAreKnownInLowerCaseOnly()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    QCOMPARE(info.getParameterName(GenericName, latin("204143dff")), names({"No Assign"}));
    QCOMPARE(info.getParameterName(GenericName, latin("204143DFF")), QStringList());
}

void TestVSTiInfo::unknownNamesGiveNothing()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    const QString name = latin("no such instrument");
    QVERIFY(info.getVSTiParameterList(name).isEmpty());
    QVERIFY(info.getVSTiParameterMap(name).isEmpty());
    QVERIFY(info.getVSTiParameterName(name, idOf(0)).isEmpty());
    // Asking leaves no trace.
    QVERIFY(!info.getVSTiExistsAndPresetList().contains(name));
}

void TestVSTiInfo::shortNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shortName");
    QTest::newRow("audio track") << latin("Audio Track") << latin("Audio Track");
    QTest::newRow("MIDI track") << latin("MIDI Track") << latin("MIDI Track");
    QTest::newRow("generic") << latin("Generic") << latin("Generic");
    QTest::newRow("short") << latin("Orskvale") << latin("Orskvale");
    QTest::newRow("blanks") << latin(" TARN/TERN  VST ") << latin("TARN/TERNVST");
    QTest::newRow("twelve after the blanks")
        << latin("ab cd ef gh ij kl mn") << latin("abcdefghijkl");
    QTest::newRow("blanks alone") << latin("   ") << latin("");
    QTest::newRow("empty") << QString() << latin("");
    QTest::newRow("other case than a group") << latin("audio track") << latin("audiotrack");
    QTest::newRow("a pair at the cut")
        << latin("elevenchars") + QString::fromUcs4(U"\U0001F3B9") << latin("elevenchars");
}

void TestVSTiInfo::shortNames()
{
    QFETCH(QString, name);
    QFETCH(QString, shortName);
    const VstiRig rig;
    QCOMPARE(rig.info().getVSTiExtensionNameFromVSTiName(name), shortName);
}

void TestVSTiInfo::shortNamesLeadBackToTheirNames()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"A Synthesizer of Note\"/><vsti name=\"B\"/>"));
    const ScannedVSTiInfo info = rig.info();
    for (const QString &name : info.getVSTiExistsAndPresetList()) {
        QCOMPARE(info.getVSTiNameFromVSTiExtensionName(info.getVSTiExtensionNameFromVSTiName(name)),
                 name);
    }
    // Also when nothing of that name is known.
    ScannedVSTiInfo empty = rig.info();
    empty.parameterLists.clear();
    QCOMPARE(empty.getVSTiNameFromVSTiExtensionName(MIDITrackName), MIDITrackName);
}

void TestVSTiInfo::twoNamesWithOneShortNameGiveOneOfThemAlways()
{
    const VstiRig rig;
    QVERIFY(
        rig.writePreset("<vsti name=\"Twelve Chars X one\"/><vsti name=\"TwelveCharsX two\"/>"));
    const ScannedVSTiInfo info = rig.info();
    const QString first = info.getVSTiNameFromVSTiExtensionName(latin("TwelveCharsX"));
    QVERIFY(first == latin("Twelve Chars X one") || first == latin("TwelveCharsX two"));
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(info.getVSTiNameFromVSTiExtensionName(latin("TwelveCharsX")), first);
    }
}

void TestVSTiInfo::anUnknownShortNameGivesNull()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    QVERIFY(info.getVSTiNameFromVSTiExtensionName(latin("nothing")).isNull());
    QVERIFY(info.getVSTiNameFromVSTiExtensionName(QString()).isNull());
}

void TestVSTiInfo::initializingDeletesDatabaseAndListAndClearingTheListAlone()
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    const auto writeAll = [&rig] {
        return writeBytes(rig.database(), "database") && writeBytes(rig.notSynthList(), "list") &&
               writeBytes(rig.path("data/other.xml"), "other");
    };
    QVERIFY(writeAll());
    info.clearNotSynthList();
    QVERIFY(QFile::exists(rig.database()));
    QVERIFY(!QFile::exists(rig.notSynthList()));

    QVERIFY(writeAll());
    info.initializeDatabase();
    QVERIFY(!QFile::exists(rig.database()));
    QVERIFY(!QFile::exists(rig.notSynthList()));
    QVERIFY(QFile::exists(rig.path("data/other.xml")));

    // Nothing left to delete.
    info.initializeDatabase();
}

void TestVSTiInfo::theSignalCarriesTheFileName()
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    QSignalSpy spy(&info, &VSTiInfo::analyzingVSTi);
    Q_EMIT info.analyzingVSTi(latin("A.vst3"));
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toString(), latin("A.vst3"));
}

QTEST_GUILESS_MAIN(TestVSTiInfo)
#include "tst_vstiinfo.moc"
