// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/helper/HelperRun.h"

#include <QtTest/QtTest>

namespace
{

constexpr qint64 FirstId = 4201;
constexpr qint64 BypassId = 10004202;

QString vst2Path(const QString &name)
{
    return "/usr/lib/vst/"_q + name;
}

// What the plug-in says itself, by a reader that shares nothing with the helper.
struct OwnWord
{
    bool isInstrument = false;
    QStringList names;
};

std::optional<OwnWord> ownWord(const QString &plugin)
{
    QProcess reader;
    reader.start(QStringLiteral(TRN_BIN_DIR "/tests/vst2-parameter-names"), {plugin});
    if (!reader.waitForFinished(60000) || reader.exitStatus() != QProcess::NormalExit ||
        reader.exitCode() != 0) {
        return {};
    }
    QStringList lines = QString::fromUtf8(reader.readAllStandardOutput()).split(u'\n');
    lines.removeLast();
    // What the plug-in itself wrote to the terminal stands before.
    for (qsizetype at = 0; at + 1 < lines.size(); ++at) {
        bool isNumber = false;
        const int count = lines.at(at + 1).toInt(&isNumber);
        if ((lines.at(at) == "0"_q || lines.at(at) == "1"_q) && isNumber &&
            lines.size() == at + 2 + count) {
            OwnWord word;
            word.isInstrument = lines.at(at) == "1"_q;
            word.names = lines.mid(at + 2);
            return word;
        }
    }
    return {};
}

// The framework makes ids of its parameters' words so.
qint64 frameworkId(const char *word)
{
    quint32 hash = 0;
    for (; *word != '\0'; ++word) {
        hash = hash * 31 + static_cast<quint32>(*word);
    }
    return (hash & 0x7FFFFFFF) + FirstId;
}

} // namespace

// The helper on plug-ins that others have made: those of Debian, and one on a framework that many
// stand on.
class TestHelperRealPlugins : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void vst2InstrumentsAreFoundWithTheirParameters_data();
    void vst2InstrumentsAreFoundWithTheirParameters();
    void vst2EffectsAreRefused_data();
    void vst2EffectsAreRefused();
    void vst3EffectsAreRefused_data();
    void vst3EffectsAreRefused();
    void anInstrumentOnAFramework();
    void theSmallInstrument();
};

void TestHelperRealPlugins::vst2InstrumentsAreFoundWithTheirParameters_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("someNames");
    QTest::newRow("amsynth") << "amsynth_vst.so"_q
                             << "amsynth"_q << 41
                             << QStringList{"amp_attack"_q, "filter_cutoff"_q, "osc2_detune"_q};
    QTest::newRow("Nekobi") << "Nekobi-vst.so"_q
                            << "Nekobi"_q << 8
                            << QStringList{"Waveform"_q, "VCF Resonance"_q, "Env Mod"_q};
    QTest::newRow("Kars") << "Kars-vst.so"_q
                          << "Kars"_q << 3 << QStringList{"Sustain"_q};
    QTest::newRow("ZynAddSubFX") << "ZynAddSubFX.so"_q
                                 << "ZynAddSubFX"_q << 16 << QStringList{"Slot 1"_q};
}

void TestHelperRealPlugins::vst2InstrumentsAreFoundWithTheirParameters()
{
    QFETCH(QString, file);
    QFETCH(QString, name);
    QFETCH(int, count);
    QFETCH(QStringList, someNames);
    HelperRun helper;
    QVERIFY2(QFile::exists(vst2Path(file)), "not installed; ./test installs it");
    QVERIFY(helper.run(vst2Path(file)));
    QCOMPARE(helper.exitCode(), 0);
    QVERIFY(helper.saidNothing());
    const ReportedInstrument instrument = helper.instrument();
    QCOMPARE(instrument.name, name);
    QCOMPARE(instrument.parameters.size(), count);

    const auto own = ownWord(vst2Path(file));
    QVERIFY(own);
    QVERIFY(own->isInstrument);
    QCOMPARE(own->names.size(), count);
    for (int i = 0; i < count; ++i) {
        const ReportedParameter wanted = {FirstId + i, own->names.at(i).trimmed(), {}};
        QCOMPARE(instrument.parameters.at(i), wanted);
    }
    for (const QString &some : someNames) {
        QVERIFY2(own->names.contains(some), qPrintable(some));
    }
}

void TestHelperRealPlugins::vst2EffectsAreRefused_data()
{
    QTest::addColumn<QString>("file");
    const QStringList files = {
        // dpf-plugins-vst
        "3BandEQ-vst.so"_q, "3BandSplitter-vst.so"_q, "AmplitudeImposer-vst.so"_q,
        "CycleShifter-vst.so"_q, "MVerb-vst.so"_q, "MaBitcrush-vst.so"_q, "MaFreeverb-vst.so"_q,
        "MaGigaverb-vst.so"_q, "MaPitchshift-vst.so"_q, "PingPongPan-vst.so"_q, "ProM.vst"_q,
        "SoulForce-vst.so"_q, "glBars-vst.so"_q,
        // zam-plugins
        "ZaMaximX2-vst.so"_q, "ZaMultiComp-vst.so"_q, "ZaMultiCompX2-vst.so"_q,
        "ZamAutoSat-vst.so"_q, "ZamComp-vst.so"_q, "ZamCompX2-vst.so"_q, "ZamDelay-vst.so"_q,
        "ZamDynamicEQ-vst.so"_q, "ZamEQ2-vst.so"_q, "ZamGEQ31-vst.so"_q, "ZamGate-vst.so"_q,
        "ZamGateX2-vst.so"_q, "ZamGrains-vst.so"_q, "ZamHeadX2-vst.so"_q, "ZamPhono-vst.so"_q,
        "ZamTube-vst.so"_q, "ZamVerb-vst.so"_q,
        // zynaddsubfx-vst
        "ZynAlienWah.so"_q, "ZynChorus.so"_q, "ZynDistortion.so"_q, "ZynDynamicFilter.so"_q,
        "ZynEcho.so"_q, "ZynPhaser.so"_q, "ZynReverb.so"_q};
    for (const QString &file : files) {
        QTest::newRow(qPrintable(file)) << file;
    }
}

void TestHelperRealPlugins::vst2EffectsAreRefused()
{
    QFETCH(QString, file);
    HelperRun helper;
    QVERIFY2(QFile::exists(vst2Path(file)), "not installed; ./test installs it");
    QVERIFY(helper.run(vst2Path(file)));
    QVERIFY(!helper.died());
    QCOMPARE(helper.exitCode(), 3);
    QVERIFY(helper.saidNothing());
    QCOMPARE(helper.written(), QStringList());
}

void TestHelperRealPlugins::vst3EffectsAreRefused_data()
{
    QTest::addColumn<QString>("file");
    const QStringList names = {"ZaMaximX2"_q, "ZaMultiComp"_q, "ZaMultiCompX2"_q, "ZamAutoSat"_q,
                               "ZamComp"_q,   "ZamCompX2"_q,   "ZamDelay"_q,      "ZamDynamicEQ"_q,
                               "ZamEQ2"_q,    "ZamGEQ31"_q,    "ZamGate"_q,       "ZamGateX2"_q,
                               "ZamGrains"_q, "ZamHeadX2"_q,   "ZamPhono"_q,      "ZamTube"_q,
                               "ZamVerb"_q};
    for (const QString &name : names) {
        QTest::newRow(qPrintable(name)) << "/usr/lib/vst3/"_q + name + ".vst3"_q;
    }
}

void TestHelperRealPlugins::vst3EffectsAreRefused()
{
    QFETCH(QString, file);
    HelperRun helper;
    QVERIFY2(QFile::exists(file), "not installed; ./test installs it");
    QVERIFY(helper.run(file));
    QVERIFY(!helper.died());
    QCOMPARE(helper.exitCode(), 3);
    QVERIFY(helper.saidNothing());
}

void TestHelperRealPlugins::anInstrumentOnAFramework()
{
    HelperRun helper;
    QVERIFY(helper.run(HelperRun::plugins() + "/vst3/FrameworkInstrument.vst3"_q));
    QCOMPARE(helper.exitCode(), 0);
    QVERIFY(helper.saidNothing());
    const ReportedInstrument instrument = helper.instrument();
    QCOMPARE(instrument.name, "Framework Instrument"_q);
    const QList<ReportedParameter> wanted = {
        {frameworkId("volume"), "Volume"_q, {}},
        {frameworkId("cutoff"), "Cutoff"_q, {"Filter"_q}},
        {frameworkId("type"), "Type"_q, {"Filter"_q}},
        {frameworkId("attack"), "Attack"_q, {"Filter"_q, "Envelope"_q}},
        {frameworkId("release"), "Release"_q, {"Filter"_q, "Envelope"_q}},
        {frameworkId("sharp"), "\u266F Detune"_q, {"\u0413\u0440\u0443\u043F\u043F\u0430"_q}},
        {frameworkId("mono"), "Mono"_q, {}},
        {BypassId, "Bypass"_q, {}},
    };
    QCOMPARE(instrument.parameters.mid(0, wanted.size()), wanted);
    // The framework adds a parameter for every controller of every MIDI channel; the one that
    // changes programs is no parameter.
    constexpr qsizetype Channels = 16;
    constexpr qsizetype Controllers = 130;
    QCOMPARE(instrument.parameters.size(), wanted.size() + Channels * Controllers);
    for (const ReportedParameter &parameter : instrument.parameters.mid(wanted.size())) {
        QVERIFY2(parameter.name.startsWith("MIDI CC "_q), qPrintable(parameter.name));
    }
}

void TestHelperRealPlugins::theSmallInstrument()
{
    HelperRun helper;
    QVERIFY(helper.run(HelperRun::plugins() + "/vst3/TestInstrument.vst3"_q));
    QCOMPARE(helper.exitCode(), 0);
    const ReportedInstrument instrument = helper.instrument();
    QCOMPARE(instrument.name, "Test Instrument"_q);
    QCOMPARE(instrument.parameters.size(), 32);
    const ReportedParameter volume = {4201, "Master Volume"_q, {}};
    const ReportedParameter octave = {4222, "Octave"_q, {"Oscillators"_q, "Oscillator 2"_q}};
    const ReportedParameter amount = {4245, "Amount"_q, {"Filter"_q, "Envelope"_q}};
    const ReportedParameter mix = {4293, "Mix"_q, {"Effects"_q, "Delay"_q}};
    const ReportedParameter bypass = {BypassId, "Bypass"_q, {}};
    for (const ReportedParameter &wanted : {volume, octave, amount, mix, bypass}) {
        QVERIFY2(instrument.parameters.contains(wanted), qPrintable(wanted.name));
    }
}

QTEST_GUILESS_MAIN(TestHelperRealPlugins)
#include "tst_helper_realplugins.moc"
