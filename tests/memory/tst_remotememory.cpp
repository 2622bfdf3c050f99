// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/RemoteMemory.h"

#include <QtTest/QtTest>

// The storage under the memory's door: its banks, flags, copies and exchanges, without observers.

namespace
{

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

const ParamAddress Available(1, 51, -1, -1);

struct Global
{
    const char *name;
    int bank;
};
constexpr Global Flags[] = {{"online state", -2},
                            {"file edit flag", -3},
                            {"library edit flag", -5},
                            {"bank edit flag", -6}};

constexpr int Lowest = -2147483647 - 1;
constexpr int Highest = 2147483647;

} // namespace

class TestRemoteMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sixBanksOfWhichOnlyTheFirstIsAvailable();
    void nineBanksAfterThreeMoreOfWhichTheNewAreAvailable();
    void everyDefaultIsAsTold();
    void everyValueOfTheAddressSpaceHasItsOwnPlace();
    void globalFlagsAreWrittenAndReadByBankAlone_data();
    void globalFlagsAreWrittenAndReadByBankAlone();
    void theFileNameCountsAsChangedAlsoWhenItIsTheSame();
    void addressesThatNameNothingAreRefused_data();
    void addressesThatNameNothingAreRefused();
    void valuesWiderThanAnIntAreRefused();
    void withWritingDisabledNoWriteByAddressChangesAnything();
    void withWritingDisabledCopiesStillWork();

    void setBankCopiesAllAndRaisesTheAvailableFlag();
    void copyBankOntoItselfRaisesTheFlagAndLeavesTheContent();
    void copyBankRaisesTheTargetsFlagAlsoFromAnUnavailableSource();
    void copyBankWithABadIndexDoesNothing_data();
    void copyBankWithABadIndexDoesNothing();
    void theAvailableFlagSetterTakesTheValueFirst();
    void badBankIndicesAreHarmless_data();
    void badBankIndicesAreHarmless();
    void indicesAreValidWithinTheirBounds();

    void copyTemplateReportsOnlyAChange();
    void copyTemplateWithABadIndexIsRefused_data();
    void copyTemplateWithABadIndexIsRefused();
    void exchangeTemplateSwapsBothPlaces();
    void exchangeOfTwoEqualTemplatesWritesNeitherPlace();
    void exchangeTemplateWithABadIndexIsRefused_data()
    {
        copyTemplateWithABadIndexIsRefused_data();
    }
    void exchangeTemplateWithABadIndexIsRefused();
    void copyControllerReportsOnlyAChange();
    void exchangeControllerSwapsBothKnobsAlsoWithinOneTemplate();
    void exchangeOfTwoEqualKnobsReportsNoChange();
    void knobOperationsWithABadIndexAreRefused_data();
    void knobOperationsWithABadIndexAreRefused();

    void getTemplateDataIsACopyAndADefaultForABadIndex();
    void theBlankTemplateIsTheLastPresetWithoutNamesAndType();
    void initializeTemplateWritesTheBlankOne();
    void initializeTemplateOnABlankOneChangesNothing();

    void onlineStateReportsWhetherItChanged();
    void theGateForMessagesIsAPlainFlag();
    void aCopyOfTheMemoryIsDeep();
    void assignmentToItselfKeepsEverything();
};

void TestRemoteMemory::sixBanksOfWhichOnlyTheFirstIsAvailable()
{
    const RemoteMemory memory;
    QCOMPARE(memory.getQuantityOfBank(), 6);
    for (int bank = 0; bank < 6; ++bank) {
        QCOMPARE(memory.getBankAvailableFlag(bank).getCurrentValue(), bank == 0 ? 1 : 0);
    }
}

void TestRemoteMemory::nineBanksAfterThreeMoreOfWhichTheNewAreAvailable()
{
    RemoteMemory memory;
    for (int bank = 6; bank < 9; ++bank) {
        QCOMPARE(memory.createBank(), bank);
        QCOMPARE(memory.getBankAvailableFlag(bank).getCurrentValue(), 1);
    }
    QCOMPARE(memory.getQuantityOfBank(), 9);
}

void TestRemoteMemory::everyDefaultIsAsTold()
{
    const RemoteMemory memory;
    for (const Global &flag : Flags) {
        const NumericParameter parameter = memory.getParam(ParamAddress(flag.bank, -1, -1, -1));
        QCOMPARE(parameter.getCurrentValue(), 0);
        QCOMPARE(parameter.getMinValue(), 0);
        QCOMPARE(parameter.getMaxValue(), 1);
    }
    QVERIFY(memory.getWriteEnable());
    QVERIFY(memory.isAllowedToSendSysEx());
    QVERIFY(!memory.isONLINE());
    QVERIFY(memory.getParamQString(ParamAddress(-4, -1, -1, -1)).isNull());
}

void TestRemoteMemory::everyValueOfTheAddressSpaceHasItsOwnPlace()
{
    RemoteMemory memory;
    for (int i = 6; i < 9; ++i) {
        memory.createBank();
    }
    const auto number = [](int b, int t, int k) { return (b * 31 + t * 7 + k) % 127 + 1; };
    const auto word = [](int b, int t, int k) {
        return QStringLiteral("%1.%2.%3").arg(b).arg(t).arg(k);
    };
    for (int b = 0; b < 9; ++b) {
        for (int t = 0; t < 50; ++t) {
            QVERIFY(memory.setParam(ParamAddress(b, t, 13, -1), word(b, t, 13)));
            QVERIFY(memory.setParam(ParamAddress(b, t, 15, -1), word(b, t, 15)));
            QVERIFY(memory.setParam(ParamAddress(b, t, 14, -1), 1));
            for (int k = 0; k < 12; ++k) {
                QVERIFY(memory.setParam(ParamAddress(b, t, k, 0), word(b, t, k)));
                QVERIFY(memory.setParam(ParamAddress(b, t, k, 1), number(b, t, k)));
                QVERIFY(memory.setParam(ParamAddress(b, t, k, 2), 1));
                QVERIFY(memory.setParam(ParamAddress(b, t, k, 3), word(b, t, k) + text("x")));
            }
        }
        QVERIFY(memory.setParam(ParamAddress(b, 52, -1, -1), b + 1));
    }
    for (int b = 0; b < 9; ++b) {
        for (int t = 0; t < 50; ++t) {
            QCOMPARE(memory.getParamQString(ParamAddress(b, t, 13, -1)), word(b, t, 13));
            QCOMPARE(memory.getParamQString(ParamAddress(b, t, 15, -1)), word(b, t, 15));
            QCOMPARE(memory.getParam(ParamAddress(b, t, 14, -1)).getCurrentValue(), 1);
            for (int k = 0; k < 12; ++k) {
                QCOMPARE(memory.getParamQString(ParamAddress(b, t, k, 0)), word(b, t, k));
                QCOMPARE(memory.getParam(ParamAddress(b, t, k, 1)).getCurrentValue(),
                         number(b, t, k));
                QCOMPARE(memory.getParam(ParamAddress(b, t, k, 2)).getCurrentValue(), 1);
                QCOMPARE(memory.getParamQString(ParamAddress(b, t, k, 3)),
                         word(b, t, k) + text("x"));
            }
        }
        QCOMPARE(memory.getParam(ParamAddress(b, 52, -1, -1)).getCurrentValue(), b + 1);
    }
}

void TestRemoteMemory::globalFlagsAreWrittenAndReadByBankAlone_data()
{
    QTest::addColumn<int>("bank");
    for (const Global &flag : Flags) {
        QTest::newRow(flag.name) << flag.bank;
    }
}

void TestRemoteMemory::globalFlagsAreWrittenAndReadByBankAlone()
{
    QFETCH(int, bank);
    RemoteMemory memory;
    const ParamAddress address(bank, -1, -1, -1);
    QVERIFY(!memory.setParam(address, 0));
    QVERIFY(memory.setParam(address, 1));
    QVERIFY(!memory.setParam(address, 1));
    QVERIFY(!memory.setParam(address, 2));
    QVERIFY(!memory.setParam(address, -1));
    QCOMPARE(memory.getParam(address).getCurrentValue(), 1);
    // A proxy whose template number was moved still reads the flag.
    QCOMPARE(memory.getParam(ParamAddress(bank, 7, 3, 1)).getCurrentValue(), 1);
    for (const Global &flag : Flags) {
        QCOMPARE(memory.getParam(ParamAddress(flag.bank, -1, -1, -1)).getCurrentValue(),
                 flag.bank == bank ? 1 : 0);
    }
}

void TestRemoteMemory::theFileNameCountsAsChangedAlsoWhenItIsTheSame()
{
    RemoteMemory memory;
    const ParamAddress address(-4, -1, -1, -1);
    QVERIFY(memory.setParam(address, text("/a.Q7V")));
    QVERIFY(memory.setParam(address, text("/a.Q7V")));
    QCOMPARE(memory.getParamQString(address), text("/a.Q7V"));
    QVERIFY(!memory.setParam(address, 1));
}

void TestRemoteMemory::addressesThatNameNothingAreRefused_data()
{
    QTest::addColumn<int>("bank");
    QTest::addColumn<int>("template_");
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    QTest::newRow("template 50") << 3 << 50 << -1 << -1;
    QTest::newRow("bank 12") << 12 << 0 << 0 << 1;
    QTest::newRow("bank 6 before it exists") << 6 << 0 << 0 << 1;
    QTest::newRow("no bank") << -1 << 0 << 0 << 1;
    QTest::newRow("global -7") << -7 << -1 << -1 << -1;
    QTest::newRow("highest bank") << Highest << 0 << 13 << -1;
    QTest::newRow("lowest bank") << Lowest << 0 << 13 << -1;
    QTest::newRow("knob 12") << 0 << 0 << 12 << 1;
    QTest::newRow("parameter 4") << 0 << 0 << 0 << 4;
    QTest::newRow("template 53") << 0 << 53 << 13 << -1;
    QTest::newRow("nothing") << -1 << -1 << -1 << -1;
}

void TestRemoteMemory::addressesThatNameNothingAreRefused()
{
    QFETCH(int, bank);
    QFETCH(int, template_);
    QFETCH(int, controller);
    QFETCH(int, parameter);
    RemoteMemory memory;
    const ParamAddress address(bank, template_, controller, parameter);
    for (const long value : {0L, 1L, 5L, -1L}) {
        QVERIFY(!memory.setParam(address, value));
    }
    QVERIFY(!memory.setParam(address, text("x")));
    (void)memory.getParam(address).getCurrentValue();
    QVERIFY(memory.getParamQString(address).isEmpty());
}

void TestRemoteMemory::valuesWiderThanAnIntAreRefused()
{
    RemoteMemory memory;
    if constexpr (sizeof(long) > sizeof(int)) {
        // Its low 32 bits alone would be a good value.
        const long wide = static_cast<long>(0x100000005LL);
        QVERIFY(!memory.setParam(ParamAddress(0, 0, 0, 1), wide));
        QVERIFY(!memory.setONLINEstate(static_cast<long>(0x100000001LL)));
    }
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 0);
    QVERIFY(!memory.isONLINE());
}

void TestRemoteMemory::withWritingDisabledNoWriteByAddressChangesAnything()
{
    RemoteMemory memory;
    memory.setWriteEnable(false);
    QVERIFY(!memory.getWriteEnable());
    QVERIFY(!memory.setParam(ParamAddress(0, 0, 0, 1), 5));
    QVERIFY(!memory.setParam(ParamAddress(0, 52, -1, -1), 5));
    QVERIFY(!memory.setParam(Available, 1));
    QVERIFY(!memory.setParam(ParamAddress(0, 0, 13, -1), text("x")));
    QVERIFY(!memory.setParam(ParamAddress(-4, -1, -1, -1), text("x")));
    for (const Global &flag : Flags) {
        QVERIFY(!memory.setParam(ParamAddress(flag.bank, -1, -1, -1), 1));
        QCOMPARE(memory.getParam(ParamAddress(flag.bank, -1, -1, -1)).getCurrentValue(), 0);
    }
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 0);
    QVERIFY(memory.getParamQString(ParamAddress(0, 0, 13, -1)).isEmpty());
    memory.setWriteEnable(true);
    QVERIFY(memory.setParam(ParamAddress(0, 0, 0, 1), 5));
}

void TestRemoteMemory::withWritingDisabledCopiesStillWork()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 0, 1), 5);
    memory.setWriteEnable(false);
    QVERIFY(memory.copyController(0, 0, 0, 0, 0, 1));
    QVERIFY(memory.copyTemplate(0, 0, 0, 1));
    memory.copyBank(0, 3);
    QCOMPARE(memory.getParam(ParamAddress(3, 1, 1, 1)).getCurrentValue(), 5);
    QVERIFY(memory.exchangeTemplate(0, 0, 0, 2));
    QVERIFY(memory.exchangeController(0, 2, 0, 0, 2, 5));
    QVERIFY(memory.initializeTemplate(0, 1));
    QVERIFY(memory.setONLINEstate(1));
}

void TestRemoteMemory::setBankCopiesAllAndRaisesTheAvailableFlag()
{
    RemoteMemory memory;
    BankData source(0);
    source.setParam(ParamAddress(0, 49, 13, -1), text("Last"));
    source.setParam(ParamAddress(0, 52, -1, -1), 31);
    source.setEditFlag(1);
    memory.setBank(source, 4);
    QCOMPARE(memory.getParamQString(ParamAddress(4, 49, 13, -1)), text("Last"));
    QCOMPARE(memory.getParam(ParamAddress(4, 52, -1, -1)).getCurrentValue(), 31);
    QCOMPARE(memory.getBank(4).getParam(ParamAddress(-6, -1, -1, -1)).getCurrentValue(), 1);
    QCOMPARE(memory.getBankAvailableFlag(4).getCurrentValue(), 1);
}

void TestRemoteMemory::copyBankOntoItselfRaisesTheFlagAndLeavesTheContent()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(5, 7, 13, -1), text("Kept"));
    memory.setParam(ParamAddress(5, 52, -1, -1), 7);
    memory.copyBank(5, 5);
    QCOMPARE(memory.getParamQString(ParamAddress(5, 7, 13, -1)), text("Kept"));
    QCOMPARE(memory.getParam(ParamAddress(5, 52, -1, -1)).getCurrentValue(), 7);
    QCOMPARE(memory.getBankAvailableFlag(5).getCurrentValue(), 1);
}

void TestRemoteMemory::copyBankRaisesTheTargetsFlagAlsoFromAnUnavailableSource()
{
    RemoteMemory memory;
    QCOMPARE(memory.getBankAvailableFlag(2).getCurrentValue(), 0);
    memory.copyBank(2, 3);
    QCOMPARE(memory.getBankAvailableFlag(3).getCurrentValue(), 1);
    QCOMPARE(memory.getBankAvailableFlag(2).getCurrentValue(), 0);
}

void TestRemoteMemory::copyBankWithABadIndexDoesNothing_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::newRow("bad source") << 6 << 1;
    QTest::newRow("negative source") << -1 << 1;
    QTest::newRow("bad target") << 0 << 6;
    QTest::newRow("negative target") << 0 << -1;
    QTest::newRow("both bad") << -3 << 99;
}

void TestRemoteMemory::copyBankWithABadIndexDoesNothing()
{
    QFETCH(int, from);
    QFETCH(int, to);
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 0, 1), 5);
    memory.copyBank(from, to);
    QCOMPARE(memory.getQuantityOfBank(), 6);
    for (int bank = 1; bank < 6; ++bank) {
        QCOMPARE(memory.getBankAvailableFlag(bank).getCurrentValue(), 0);
        QCOMPARE(memory.getParam(ParamAddress(bank, 0, 0, 1)).getCurrentValue(), 0);
    }
}

void TestRemoteMemory::theAvailableFlagSetterTakesTheValueFirst()
{
    RemoteMemory memory;
    memory.setBankAvailableFlag(0, 0);
    QCOMPARE(memory.getBankAvailableFlag(0).getCurrentValue(), 0);
    memory.setBankAvailableFlag(1, 4);
    QCOMPARE(memory.getBankAvailableFlag(4).getCurrentValue(), 1);
    QCOMPARE(memory.getBankAvailableFlag(1).getCurrentValue(), 0);
}

void TestRemoteMemory::badBankIndicesAreHarmless_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("six of six") << 6;
    QTest::newRow("minus one") << -1;
    QTest::newRow("highest") << Highest;
    QTest::newRow("lowest") << Lowest;
}

void TestRemoteMemory::badBankIndicesAreHarmless()
{
    QFETCH(int, index);
    RemoteMemory memory;
    QVERIFY(memory.getBank(index).getTemplate(0) == ControlTemplateData());
    memory.setBank(BankData(), index);
    memory.setBankAvailableFlag(0, index);
    (void)memory.getBankAvailableFlag(index).getCurrentValue();
    QVERIFY(memory.AccessBank(ParamAddress(index, 0, 0, 0)) == nullptr);
    QVERIFY(!memory.initializeTemplate(index, 0));
    QVERIFY(memory.getTemplateData(index, 0) == ControlTemplateData());
    QCOMPARE(memory.getQuantityOfBank(), 6);
}

void TestRemoteMemory::indicesAreValidWithinTheirBounds()
{
    const RemoteMemory memory;
    for (int n = -2; n < 60; ++n) {
        QCOMPARE(memory.isValidBankIndex(n), n >= 0 && n < 6);
        QCOMPARE(RemoteMemory::isValidTemplateIndex(n), n >= 0 && n < 50);
        QCOMPARE(RemoteMemory::isValidControllerIndex(n), n >= 0 && n < 12);
    }
}

void TestRemoteMemory::copyTemplateReportsOnlyAChange()
{
    RemoteMemory memory;
    QVERIFY(!memory.copyTemplate(0, 0, 1, 49));
    memory.setParam(ParamAddress(0, 0, 13, -1), text("Lead"));
    QVERIFY(memory.copyTemplate(0, 0, 1, 49));
    QVERIFY(!memory.copyTemplate(0, 0, 1, 49));
    QVERIFY(!memory.copyTemplate(0, 0, 0, 0));
    QCOMPARE(memory.getParamQString(ParamAddress(1, 49, 13, -1)), text("Lead"));
}

void TestRemoteMemory::copyTemplateWithABadIndexIsRefused_data()
{
    QTest::addColumn<int>("bankA");
    QTest::addColumn<int>("templateA");
    QTest::addColumn<int>("bankB");
    QTest::addColumn<int>("templateB");
    QTest::newRow("first bank past the end") << 6 << 0 << 0 << 1;
    QTest::newRow("first bank negative") << -1 << 0 << 0 << 1;
    QTest::newRow("first template 50") << 0 << 50 << 0 << 1;
    QTest::newRow("first template negative") << 0 << -1 << 0 << 1;
    QTest::newRow("second bank past the end") << 0 << 0 << 6 << 1;
    QTest::newRow("second bank negative") << 0 << 0 << -1 << 1;
    QTest::newRow("second template 50") << 0 << 0 << 0 << 50;
    QTest::newRow("second template negative") << 0 << 0 << 0 << -1;
}

void TestRemoteMemory::copyTemplateWithABadIndexIsRefused()
{
    QFETCH(int, bankA);
    QFETCH(int, templateA);
    QFETCH(int, bankB);
    QFETCH(int, templateB);
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 13, -1), text("Lead"));
    memory.setParam(ParamAddress(0, 1, 13, -1), text("Pad"));
    QVERIFY(!memory.copyTemplate(bankA, templateA, bankB, templateB));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 0, 13, -1)), text("Lead"));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 1, 13, -1)), text("Pad"));
}

void TestRemoteMemory::exchangeTemplateSwapsBothPlaces()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 13, -1), text("Lead"));
    memory.setParam(ParamAddress(5, 9, 13, -1), text("Pad"));
    QVERIFY(memory.exchangeTemplate(0, 0, 5, 9));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 0, 13, -1)), text("Pad"));
    QCOMPARE(memory.getParamQString(ParamAddress(5, 9, 13, -1)), text("Lead"));
}

void TestRemoteMemory::exchangeOfTwoEqualTemplatesWritesNeitherPlace()
{
    RemoteMemory memory;
    QVERIFY(!memory.exchangeTemplate(0, 0, 5, 9));
    QVERIFY(!memory.exchangeTemplate(0, 0, 0, 0));
    // Equal by content, with other bounds: had a place been written, its bounds would have moved.
    ControlTemplateData wide;
    wide.setCtrlType(NumericParameter(0, 9, 1));
    BankData bank;
    bank.setTemplate(wide, 3);
    memory.setBank(bank, 2);
    memory.setParam(ParamAddress(0, 3, 14, -1), 1);
    QVERIFY(!memory.exchangeTemplate(0, 3, 2, 3));
    QCOMPARE(memory.getParam(ParamAddress(0, 3, 14, -1)).getMaxValue(), 1);
    QCOMPARE(memory.getParam(ParamAddress(2, 3, 14, -1)).getMaxValue(), 9);
}

void TestRemoteMemory::exchangeTemplateWithABadIndexIsRefused()
{
    QFETCH(int, bankA);
    QFETCH(int, templateA);
    QFETCH(int, bankB);
    QFETCH(int, templateB);
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 13, -1), text("Lead"));
    memory.setParam(ParamAddress(0, 1, 13, -1), text("Pad"));
    QVERIFY(!memory.exchangeTemplate(bankA, templateA, bankB, templateB));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 0, 13, -1)), text("Lead"));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 1, 13, -1)), text("Pad"));
}

void TestRemoteMemory::copyControllerReportsOnlyAChange()
{
    RemoteMemory memory;
    QVERIFY(!memory.copyController(0, 0, 0, 0, 1, 11));
    memory.setParam(ParamAddress(0, 0, 0, 0), text("Cutoff"));
    memory.setParam(ParamAddress(0, 0, 0, 1), 74);
    QVERIFY(memory.copyController(0, 0, 0, 1, 49, 11));
    QVERIFY(!memory.copyController(0, 0, 0, 1, 49, 11));
    QCOMPARE(memory.getParamQString(ParamAddress(1, 49, 11, 0)), text("Cutoff"));
    QCOMPARE(memory.getParam(ParamAddress(1, 49, 11, 1)).getCurrentValue(), 74);
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 74);
}

void TestRemoteMemory::exchangeControllerSwapsBothKnobsAlsoWithinOneTemplate()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 0, 1), 1);
    memory.setParam(ParamAddress(0, 0, 11, 1), 2);
    QVERIFY(memory.exchangeController(0, 0, 0, 0, 0, 11));
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 2);
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 11, 1)).getCurrentValue(), 1);
    QVERIFY(memory.exchangeController(0, 0, 0, 3, 20, 4));
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 0);
    QCOMPARE(memory.getParam(ParamAddress(3, 20, 4, 1)).getCurrentValue(), 2);
}

void TestRemoteMemory::exchangeOfTwoEqualKnobsReportsNoChange()
{
    RemoteMemory memory;
    QVERIFY(!memory.exchangeController(0, 0, 0, 0, 0, 1));
    QVERIFY(!memory.exchangeController(0, 0, 0, 0, 0, 0));
}

void TestRemoteMemory::knobOperationsWithABadIndexAreRefused_data()
{
    QTest::addColumn<QList<int>>("places");
    const QList<int> good{0, 0, 0, 0, 0, 1};
    const char *names[] = {"first bank",  "first template",  "first knob",
                           "second bank", "second template", "second knob"};
    const int pastTheEnd[] = {6, 50, 12, 6, 50, 12};
    for (int i = 0; i < 6; ++i) {
        for (const int bad : {-1, pastTheEnd[i], Highest, Lowest}) {
            QList<int> places = good;
            places[i] = bad;
            QTest::addRow("%s %d", names[i], bad) << places;
        }
    }
}

void TestRemoteMemory::knobOperationsWithABadIndexAreRefused()
{
    QFETCH(QList<int>, places);
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 0, 1), 1);
    memory.setParam(ParamAddress(0, 0, 1, 1), 2);
    QVERIFY(
        !memory.copyController(places[0], places[1], places[2], places[3], places[4], places[5]));
    QVERIFY(!memory.exchangeController(places[0], places[1], places[2], places[3], places[4],
                                       places[5]));
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 0, 1)).getCurrentValue(), 1);
    QCOMPARE(memory.getParam(ParamAddress(0, 0, 1, 1)).getCurrentValue(), 2);
}

void TestRemoteMemory::getTemplateDataIsACopyAndADefaultForABadIndex()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 3, 13, -1), text("Lead"));
    ControlTemplateData copy = memory.getTemplateData(0, 3);
    QCOMPARE(copy.getTemplateName(), text("Lead"));
    copy.setTemplateName(text("Pad"));
    QCOMPARE(memory.getParamQString(ParamAddress(0, 3, 13, -1)), text("Lead"));
    for (const int bad : {-1, 50, Highest}) {
        QVERIFY(memory.getTemplateData(0, bad) == ControlTemplateData());
    }
}

void TestRemoteMemory::theBlankTemplateIsTheLastPresetWithoutNamesAndType()
{
    RemoteMemory memory;
    for (int i = 6; i < 9; ++i) {
        memory.createBank();
    }
    memory.setParam(ParamAddress(8, 49, 13, -1), text("Name"));
    memory.setParam(ParamAddress(8, 49, 15, -1), text("VSTi"));
    memory.setParam(ParamAddress(8, 49, 14, -1), 1);
    memory.setParam(ParamAddress(8, 49, 2, 1), 74);
    memory.setParam(ParamAddress(8, 49, 2, 0), text("Cutoff"));
    memory.setParam(ParamAddress(8, 48, 2, 1), 11);
    memory.initializeInitialTemplate();
    QVERIFY(memory.initializeTemplate(3, 30));
    QVERIFY(memory.getParamQString(ParamAddress(3, 30, 13, -1)).isNull());
    QVERIFY(memory.getParamQString(ParamAddress(3, 30, 15, -1)).isNull());
    QCOMPARE(memory.getParam(ParamAddress(3, 30, 14, -1)).getCurrentValue(), 0);
    QCOMPARE(memory.getParam(ParamAddress(3, 30, 14, -1)).getMaxValue(), 1);
    QCOMPARE(memory.getParam(ParamAddress(3, 30, 2, 1)).getCurrentValue(), 74);
    QCOMPARE(memory.getParamQString(ParamAddress(3, 30, 2, 0)), text("Cutoff"));
    // The preset itself stays as it is.
    QCOMPARE(memory.getParamQString(ParamAddress(8, 49, 13, -1)), text("Name"));
}

void TestRemoteMemory::initializeTemplateWritesTheBlankOne()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 5, 13, -1), text("Lead"));
    QVERIFY(memory.initializeTemplate(0, 5));
    QVERIFY(memory.getTemplateData(0, 5) == ControlTemplateData());
    QVERIFY(!memory.initializeTemplate(0, 50));
}

void TestRemoteMemory::initializeTemplateOnABlankOneChangesNothing()
{
    RemoteMemory memory;
    QVERIFY(!memory.initializeTemplate(0, 5));
}

void TestRemoteMemory::onlineStateReportsWhetherItChanged()
{
    RemoteMemory memory;
    QVERIFY(!memory.setONLINEstate(0));
    QVERIFY(memory.setONLINEstate(1));
    QVERIFY(!memory.setONLINEstate(1));
    QVERIFY(memory.isONLINE());
    QVERIFY(!memory.setONLINEstate(2));
    QVERIFY(!memory.setONLINEstate(-1));
    QVERIFY(memory.isONLINE());
    QVERIFY(memory.setONLINEstate(0));
    QVERIFY(!memory.isONLINE());
}

void TestRemoteMemory::theGateForMessagesIsAPlainFlag()
{
    RemoteMemory memory;
    memory.setFlagOfIsAllowedToSendSysEx(false);
    QVERIFY(!memory.isAllowedToSendSysEx());
    memory.setFlagOfIsAllowedToSendSysEx(true);
    QVERIFY(memory.isAllowedToSendSysEx());
}

void TestRemoteMemory::aCopyOfTheMemoryIsDeep()
{
    RemoteMemory memory;
    memory.createBank();
    memory.setParam(ParamAddress(6, 0, 13, -1), text("Lead"));
    memory.setParam(ParamAddress(-3, -1, -1, -1), 1);
    memory.setParam(ParamAddress(-5, -1, -1, -1), 1);
    memory.setParam(ParamAddress(-6, -1, -1, -1), 1);
    memory.setParam(ParamAddress(-4, -1, -1, -1), text("/a.Q7V"));
    memory.setONLINEstate(1);
    memory.setFlagOfIsAllowedToSendSysEx(false);
    memory.setWriteEnable(false);

    RemoteMemory constructed(memory);
    RemoteMemory assigned;
    assigned = memory;
    RemoteMemory set;
    set.setMemory(memory);
    memory.setWriteEnable(true);
    memory.setParam(ParamAddress(6, 0, 13, -1), text("Changed"));
    for (RemoteMemory *copy : {&constructed, &assigned, &set}) {
        QCOMPARE(copy->getQuantityOfBank(), 7);
        QCOMPARE(copy->getParamQString(ParamAddress(6, 0, 13, -1)), text("Lead"));
        for (const Global &flag : Flags) {
            QCOMPARE(copy->getParam(ParamAddress(flag.bank, -1, -1, -1)).getCurrentValue(), 1);
        }
        QCOMPARE(copy->getParamQString(ParamAddress(-4, -1, -1, -1)), text("/a.Q7V"));
        QVERIFY(!copy->isAllowedToSendSysEx());
        QVERIFY(!copy->getWriteEnable());
        QVERIFY(copy->AccessBank(ParamAddress(6, 0, 0, 0)) !=
                memory.AccessBank(ParamAddress(6, 0, 0, 0)));
    }
}

void TestRemoteMemory::assignmentToItselfKeepsEverything()
{
    RemoteMemory memory;
    memory.setParam(ParamAddress(0, 0, 13, -1), text("Lead"));
    const RemoteMemory &same = memory;
    memory = same;
    QCOMPARE(memory.getParamQString(ParamAddress(0, 0, 13, -1)), text("Lead"));
    QCOMPARE(memory.getQuantityOfBank(), 6);
}

QTEST_APPLESS_MAIN(TestRemoteMemory)
#include "tst_remotememory.moc"
