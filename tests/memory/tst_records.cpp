// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/BankData.h"
#include "memory/ControlTemplateData.h"
#include "memory/ControllerData.h"
#include "memory/NumericParameter.h"

#include <QtTest/QtTest>

// The records that the memory is made of: bounded integers, knobs, templates and banks. The return
// value of every setter is tested, since notifications, flags and messages hang on it.

namespace
{

const QString Unassigned = QStringLiteral("204143dff");

ParamAddress knob(int number, int parameter)
{
    return ParamAddress(0, 0, number, parameter);
}

ParamAddress templateLevel(int selector)
{
    return ParamAddress(0, 0, selector, -1);
}

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

} // namespace

class TestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // NumericParameter
    void anInitialValueWithinTheBoundsBecomesCurrent_data();
    void anInitialValueWithinTheBoundsBecomesCurrent();
    void currentValuesOutsideTheBoundsAreRefusedWhole_data();
    void currentValuesOutsideTheBoundsAreRefusedWhole();
    void setCurrentValueReportsOnlyARealChange();
    void boundsAndInitialValueReportWhetherTheyChanged();
    void parametersCompareByCurrentValueAlone();

    // ControllerData
    void aNewKnobHasItsDefaults();
    void aDisplayNameOfFifteenIsTakenAndOfSixteenRefused();
    void aDisplayNameThatIsEqualReportsNoChange();
    void anEmptyDisplayNameReplacesAName();
    void anIdentifierOfTenCharactersIsRefused();
    void anIdentifierInCapitalsIsStoredInLowerCase();
    void aShortIdentifierIsTakenAsItIs();
    void ccNumberStopsAt127();
    void displayFormatIsZeroOrOne();
    void knobsAreEqualIfAllFourFieldsAre_data();
    void knobsAreEqualIfAllFourFieldsAre();

    // ControlTemplateData
    void aNewTemplateHasItsDefaults();
    void aTemplateWithEmptyNamesEqualsADefaultOne();
    void numbersAreWrittenByAddress_data();
    void numbersAreWrittenByAddress();
    void textsAreWrittenByAddress_data();
    void textsAreWrittenByAddress();
    void namesOfTheTemplateHaveNoLimit();
    void controlTypeIsReplacedWithItsBoundsWhenDifferent();
    void setControllerReportsTrueAlsoForAnEqualKnob();
    void setControllerRefusesABadIndex_data();
    void setControllerRefusesABadIndex();
    void getControllerOfABadIndexIsADefaultKnob();
    void readsOfAddressesThatNameNothingAreHarmless();
    void templatesThatDifferInBoundsAloneAreEqual();
    void aSwapOfTwoDifferentKnobsIsAChange();
    void templatesDifferInEachOfTheirParts_data();
    void templatesDifferInEachOfTheirParts();

    // BankData
    void aNewBankHasFiftyDefaultTemplatesAndItsFlags();
    void theAvailableFlagTakesTheConstructorsArgument();
    void setTemplateComparesFirst();
    void accessTemplateGivesNullOutsideTheFifty_data();
    void accessTemplateGivesNullOutsideTheFifty();
    void bankFlagsAndCurrentTemplateAreWrittenByAddress();
    void aFlagRefusesMinusOneAndTwo();
    void theCurrentTemplateNumberStopsAt49();
    void anAddressWithTemplateFiftyChangesNothing();
    void textsAreRefusedOutsideTheTemplates();
    void readsGoToTheTemplateThatTheAddressNames();
    void aCopyOfABankIsIndependentAndComplete();
    void badTemplateIndicesAreHarmless();
};

// --- NumericParameter ----------------------------------------------------------------------------

void TestRecords::anInitialValueWithinTheBoundsBecomesCurrent_data()
{
    QTest::addColumn<int>("initial");
    QTest::addColumn<bool>("taken");
    QTest::newRow("lower bound") << 2 << true;
    QTest::newRow("upper bound") << 5 << true;
    QTest::newRow("below") << 1 << false;
    QTest::newRow("above") << 6 << false;
}

void TestRecords::anInitialValueWithinTheBoundsBecomesCurrent()
{
    QFETCH(int, initial);
    QFETCH(bool, taken);
    const NumericParameter parameter(2, 5, initial);
    QCOMPARE(parameter.getMinValue(), 2);
    QCOMPARE(parameter.getMaxValue(), 5);
    QCOMPARE(parameter.getInitialValue(), initial);
    QCOMPARE(parameter.getCurrentValue() == initial, taken);
}

void TestRecords::currentValuesOutsideTheBoundsAreRefusedWhole_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("taken");
    QTest::newRow("lowest int") << -2147483647 - 1 << false;
    QTest::newRow("minus one") << -1 << false;
    QTest::newRow("zero") << 0 << true;
    QTest::newRow("127") << 127 << true;
    QTest::newRow("128") << 128 << false;
    QTest::newRow("highest int") << 2147483647 << false;
}

void TestRecords::currentValuesOutsideTheBoundsAreRefusedWhole()
{
    QFETCH(int, value);
    QFETCH(bool, taken);
    NumericParameter parameter(0, 127, 64);
    QCOMPARE(parameter.setCurrentValue(value), taken);
    QCOMPARE(parameter.getCurrentValue(), taken ? value : 64);
}

void TestRecords::setCurrentValueReportsOnlyARealChange()
{
    NumericParameter parameter(0, 1, 0);
    QVERIFY(!parameter.setCurrentValue(0));
    QVERIFY(parameter.setCurrentValue(1));
    QVERIFY(!parameter.setCurrentValue(1));
}

void TestRecords::boundsAndInitialValueReportWhetherTheyChanged()
{
    NumericParameter parameter(0, 10, 5);
    QVERIFY(!parameter.setMinValue(0));
    QVERIFY(parameter.setMinValue(1));
    QVERIFY(!parameter.setMaxValue(10));
    QVERIFY(parameter.setMaxValue(11));
    QVERIFY(!parameter.setInitialValue(5));
    QVERIFY(parameter.setInitialValue(6));
    QCOMPARE(parameter.getMinValue(), 1);
    QCOMPARE(parameter.getMaxValue(), 11);
    QCOMPARE(parameter.getInitialValue(), 6);
    QCOMPARE(parameter.getCurrentValue(), 5);
}

void TestRecords::parametersCompareByCurrentValueAlone()
{
    QVERIFY(NumericParameter(0, 10, 5) == NumericParameter(5, 99, 5));
    NumericParameter other(0, 10, 5);
    QVERIFY(other.setCurrentValue(6));
    QVERIFY(!(NumericParameter(0, 10, 5) == other));
}

// --- ControllerData ------------------------------------------------------------------------------

void TestRecords::aNewKnobHasItsDefaults()
{
    const ControllerData data;
    QVERIFY(data.getDisplayName().isEmpty());
    QCOMPARE(data.getRemoteTagID(), Unassigned);
    QCOMPARE(data.getCCNum().getCurrentValue(), 0);
    QCOMPARE(data.getCCNum().getMinValue(), 0);
    QCOMPARE(data.getCCNum().getMaxValue(), 127);
    QCOMPARE(data.getCCNum().getInitialValue(), 0);
    QCOMPARE(data.getDispFormat().getCurrentValue(), 0);
    QCOMPARE(data.getDispFormat().getMinValue(), 0);
    QCOMPARE(data.getDispFormat().getMaxValue(), 1);
    QCOMPARE(data.getDispFormat().getInitialValue(), 0);
}

void TestRecords::aDisplayNameOfFifteenIsTakenAndOfSixteenRefused()
{
    ControllerData data;
    const QString fifteen = text("123456789012345");
    QVERIFY(data.setDisplayName(fifteen));
    QVERIFY(!data.setDisplayName(text("1234567890123456")));
    QCOMPARE(data.getDisplayName(), fifteen);
}

void TestRecords::aDisplayNameThatIsEqualReportsNoChange()
{
    ControllerData data;
    QVERIFY(!data.setDisplayName(QString()));
    QVERIFY(!data.setDisplayName(QStringLiteral("")));
    QVERIFY(data.setDisplayName(text("Cutoff")));
    QVERIFY(!data.setDisplayName(text("Cutoff")));
    QVERIFY(data.setDisplayName(text("cutoff")));
}

void TestRecords::anEmptyDisplayNameReplacesAName()
{
    ControllerData data;
    QVERIFY(data.setDisplayName(text("Cutoff")));
    QVERIFY(data.setDisplayName(QString()));
    QVERIFY(data.getDisplayName().isEmpty());
}

void TestRecords::anIdentifierOfTenCharactersIsRefused()
{
    ControllerData data;
    QVERIFY(!data.setRemoteTagID(text("1234567890")));
    QCOMPARE(data.getRemoteTagID(), Unassigned);
    QVERIFY(data.setRemoteTagID(text("123456789")));
}

void TestRecords::anIdentifierInCapitalsIsStoredInLowerCase()
{
    ControllerData data;
    QVERIFY(!data.setRemoteTagID(text("204143DFF")));
    QVERIFY(data.setRemoteTagID(text("1ABCDEF09")));
    QCOMPARE(data.getRemoteTagID(), text("1abcdef09"));
    QVERIFY(!data.setRemoteTagID(text("1abcdef09")));
    QVERIFY(!data.setRemoteTagID(text("1aBcDeF09")));
}

void TestRecords::aShortIdentifierIsTakenAsItIs()
{
    ControllerData data;
    QVERIFY(data.setRemoteTagID(text("1A")));
    QCOMPARE(data.getRemoteTagID(), text("1a"));
    QVERIFY(data.setRemoteTagID(QString()));
    QVERIFY(data.getRemoteTagID().isEmpty());
}

void TestRecords::ccNumberStopsAt127()
{
    ControllerData data;
    QVERIFY(data.setCCNum(127));
    QVERIFY(!data.setCCNum(128));
    QVERIFY(!data.setCCNum(-1));
    QVERIFY(!data.setCCNum(127));
    QCOMPARE(data.getCCNum().getCurrentValue(), 127);
}

void TestRecords::displayFormatIsZeroOrOne()
{
    ControllerData data;
    QVERIFY(data.setDispFormat(1));
    QVERIFY(!data.setDispFormat(2));
    QVERIFY(!data.setDispFormat(-1));
    QCOMPARE(data.getDispFormat().getCurrentValue(), 1);
}

void TestRecords::knobsAreEqualIfAllFourFieldsAre_data()
{
    QTest::addColumn<int>("field");
    QTest::newRow("display name") << 0;
    QTest::newRow("cc number") << 1;
    QTest::newRow("display format") << 2;
    QTest::newRow("identifier") << 3;
}

void TestRecords::knobsAreEqualIfAllFourFieldsAre()
{
    QFETCH(int, field);
    const ControllerData plain;
    ControllerData changed;
    QVERIFY(plain == changed);
    switch (field) {
    case 0:
        changed.setDisplayName(text("x"));
        break;
    case 1:
        changed.setCCNum(1);
        break;
    case 2:
        changed.setDispFormat(1);
        break;
    default:
        changed.setRemoteTagID(text("x"));
        break;
    }
    QVERIFY(!(plain == changed));
}

// --- ControlTemplateData -------------------------------------------------------------------------

void TestRecords::aNewTemplateHasItsDefaults()
{
    const ControlTemplateData data;
    QVERIFY(data.getTemplateName().isNull());
    QVERIFY(data.getVSTiName().isNull());
    QCOMPARE(data.getCtrlType().getCurrentValue(), 0);
    QCOMPARE(data.getCtrlType().getMinValue(), 0);
    QCOMPARE(data.getCtrlType().getMaxValue(), 1);
    QCOMPARE(data.getCtrlType().getInitialValue(), 0);
    for (int i = 0; i < 12; ++i) {
        QVERIFY(ControlTemplateData::isValidControllerIndex(i));
        QVERIFY(data.getController(i) == ControllerData());
    }
    QVERIFY(!ControlTemplateData::isValidControllerIndex(-1));
    QVERIFY(!ControlTemplateData::isValidControllerIndex(12));
}

void TestRecords::aTemplateWithEmptyNamesEqualsADefaultOne()
{
    ControlTemplateData data;
    QVERIFY(!data.setTemplateName(QStringLiteral("")));
    QVERIFY(data.setTemplateName(text("x")));
    QVERIFY(data.setTemplateName(QStringLiteral("")));
    QVERIFY(data.setVSTiName(text("x")));
    QVERIFY(data.setVSTiName(QStringLiteral("")));
    for (int i = 0; i < 12; ++i) {
        QVERIFY(data.setController(ControllerData(), i));
    }
    QVERIFY(!data.setCtrlType(NumericParameter(0, 1, 0)));
    QVERIFY(data == ControlTemplateData());
}

void TestRecords::numbersAreWrittenByAddress_data()
{
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    QTest::addColumn<bool>("taken");
    QTest::newRow("cc of the first knob") << 0 << 1 << true;
    QTest::newRow("cc of the last knob") << 11 << 1 << true;
    QTest::newRow("cc of knob 12") << 12 << 1 << false;
    QTest::newRow("cc without a knob") << -1 << 1 << false;
    QTest::newRow("format of a knob") << 5 << 2 << true;
    QTest::newRow("format without a knob") << -1 << 2 << false;
    QTest::newRow("control type") << 14 << -1 << true;
    // The parameter is looked at first.
    QTest::newRow("control type with the cc's parameter") << 14 << 1 << false;
    QTest::newRow("control type with the format's parameter") << 14 << 2 << false;
    QTest::newRow("control type with the name's parameter") << 14 << 0 << true;
    QTest::newRow("display name as a number") << 3 << 0 << false;
    QTest::newRow("identifier as a number") << 3 << 3 << false;
    QTest::newRow("template name as a number") << 13 << -1 << false;
    QTest::newRow("instrument name as a number") << 15 << -1 << false;
    QTest::newRow("nothing") << -1 << -1 << false;
}

void TestRecords::numbersAreWrittenByAddress()
{
    QFETCH(int, controller);
    QFETCH(int, parameter);
    QFETCH(bool, taken);
    ControlTemplateData data;
    const ParamAddress address = knob(controller, parameter);
    QCOMPARE(data.setParam(address, 1), taken);
    QVERIFY(!data.setParam(address, 1));
    QCOMPARE(data == ControlTemplateData(), !taken);
    if (taken) {
        QCOMPARE(data.getParam(address).getCurrentValue(), 1);
    }
}

void TestRecords::textsAreWrittenByAddress_data()
{
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    QTest::addColumn<bool>("taken");
    QTest::newRow("template name") << 13 << -1 << true;
    QTest::newRow("template name with any parameter") << 13 << 3 << true;
    QTest::newRow("instrument name") << 15 << -1 << true;
    QTest::newRow("display name of the first knob") << 0 << 0 << true;
    QTest::newRow("display name of the last knob") << 11 << 0 << true;
    QTest::newRow("display name of knob 12") << 12 << 0 << false;
    QTest::newRow("display name without a knob") << -1 << 0 << false;
    QTest::newRow("identifier of a knob") << 7 << 3 << true;
    QTest::newRow("identifier without a knob") << -1 << 3 << false;
    QTest::newRow("cc as a text") << 7 << 1 << false;
    QTest::newRow("format as a text") << 7 << 2 << false;
    QTest::newRow("control type as a text") << 14 << -1 << false;
    QTest::newRow("nothing") << -1 << -1 << false;
}

void TestRecords::textsAreWrittenByAddress()
{
    QFETCH(int, controller);
    QFETCH(int, parameter);
    QFETCH(bool, taken);
    ControlTemplateData data;
    const ParamAddress address = knob(controller, parameter);
    QCOMPARE(data.setParam(address, text("abc")), taken);
    QVERIFY(!data.setParam(address, text("abc")));
    QCOMPARE(data == ControlTemplateData(), !taken);
    QCOMPARE(data.getParamQString(address),
             taken ? text("abc") : data.getParamQString(ParamAddress(0, 0, -1, -1)));
}

void TestRecords::namesOfTheTemplateHaveNoLimit()
{
    ControlTemplateData data;
    const QString longName(100000, QLatin1Char('n'));
    QVERIFY(data.setParam(templateLevel(13), longName));
    QVERIFY(data.setParam(templateLevel(15), longName));
    QCOMPARE(data.getTemplateName(), longName);
    QCOMPARE(data.getVSTiName(), longName);
}

void TestRecords::controlTypeIsReplacedWithItsBoundsWhenDifferent()
{
    ControlTemplateData data;
    QVERIFY(!data.setCtrlType(NumericParameter(0, 9, 0)));
    QCOMPARE(data.getCtrlType().getMaxValue(), 1);
    QVERIFY(data.setCtrlType(NumericParameter(-3, 9, 7)));
    QCOMPARE(data.getCtrlType().getCurrentValue(), 7);
    QCOMPARE(data.getCtrlType().getMaxValue(), 9);
    QCOMPARE(data.getCtrlType().getMinValue(), -3);
    QCOMPARE(data.getCtrlType().getInitialValue(), 7);
}

void TestRecords::setControllerReportsTrueAlsoForAnEqualKnob()
{
    ControlTemplateData data;
    QVERIFY(data.setController(ControllerData(), 0));
    QVERIFY(data == ControlTemplateData());
    ControllerData changed;
    changed.setCCNum(9);
    QVERIFY(data.setController(changed, 11));
    QVERIFY(data.setController(changed, 11));
    QVERIFY(data.getController(11) == changed);
}

void TestRecords::setControllerRefusesABadIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("minus one") << -1;
    QTest::newRow("twelve") << 12;
    QTest::newRow("highest") << 2147483647;
    QTest::newRow("lowest") << -2147483647 - 1;
}

void TestRecords::setControllerRefusesABadIndex()
{
    QFETCH(int, index);
    ControlTemplateData data;
    ControllerData changed;
    changed.setCCNum(9);
    QVERIFY(!data.setController(changed, index));
    QVERIFY(data == ControlTemplateData());
}

void TestRecords::getControllerOfABadIndexIsADefaultKnob()
{
    ControlTemplateData data;
    ControllerData changed;
    changed.setCCNum(9);
    for (int i = 0; i < 12; ++i) {
        data.setController(changed, i);
    }
    QVERIFY(data.getController(12) == ControllerData());
    QVERIFY(data.getController(-1) == ControllerData());
}

void TestRecords::readsOfAddressesThatNameNothingAreHarmless()
{
    const ControlTemplateData data;
    for (int c = -3; c < 20; ++c) {
        for (int p = -3; p < 8; ++p) {
            (void)data.getParam(knob(c, p)).getCurrentValue();
            (void)data.getParamQString(knob(c, p)).size();
        }
    }
    QVERIFY(data.getParamQString(knob(12, 0)).isEmpty());
    QVERIFY(data.getParamQString(knob(3, 1)).isEmpty());
    QVERIFY(data.getParamQString(knob(-1, 3)).isEmpty());
}

void TestRecords::templatesThatDifferInBoundsAloneAreEqual()
{
    ControlTemplateData first;
    ControlTemplateData second;
    QVERIFY(first.setCtrlType(NumericParameter(0, 1, 1)));
    QVERIFY(second.setCtrlType(NumericParameter(-5, 5, 1)));
    QVERIFY(first == second);
}

void TestRecords::aSwapOfTwoDifferentKnobsIsAChange()
{
    ControllerData one;
    one.setCCNum(1);
    ControllerData two;
    two.setCCNum(2);
    ControlTemplateData first;
    first.setController(one, 0);
    first.setController(two, 1);
    ControlTemplateData swapped;
    swapped.setController(two, 0);
    swapped.setController(one, 1);
    QVERIFY(!(first == swapped));
}

void TestRecords::templatesDifferInEachOfTheirParts_data()
{
    QTest::addColumn<int>("part");
    QTest::newRow("template name") << -3;
    QTest::newRow("instrument name") << -2;
    QTest::newRow("control type") << -1;
    for (int i = 0; i < 12; ++i) {
        QTest::addRow("knob %d", i) << i;
    }
}

void TestRecords::templatesDifferInEachOfTheirParts()
{
    QFETCH(int, part);
    ControlTemplateData changed;
    switch (part) {
    case -3:
        changed.setTemplateName(text("x"));
        break;
    case -2:
        changed.setVSTiName(text("x"));
        break;
    case -1:
        changed.setParam(templateLevel(14), 1);
        break;
    default:
        changed.setParam(knob(part, 2), 1);
        break;
    }
    QVERIFY(!(changed == ControlTemplateData()));
}

// --- BankData ------------------------------------------------------------------------------------

void TestRecords::aNewBankHasFiftyDefaultTemplatesAndItsFlags()
{
    const BankData bank;
    for (int i = 0; i < 50; ++i) {
        QVERIFY(bank.getTemplate(i) == ControlTemplateData());
        QVERIFY(BankData::isValidTemplateIndex(i));
    }
    QVERIFY(!BankData::isValidTemplateIndex(-1));
    QVERIFY(!BankData::isValidTemplateIndex(50));
    QCOMPARE(bank.getBankAvailableFlag().getCurrentValue(), 1);
    QCOMPARE(bank.getBankAvailableFlag().getMinValue(), 0);
    QCOMPARE(bank.getBankAvailableFlag().getMaxValue(), 1);
    const NumericParameter number = bank.getParam(ParamAddress(0, 52, -1, -1));
    QCOMPARE(number.getCurrentValue(), 0);
    QCOMPARE(number.getMinValue(), 0);
    QCOMPARE(number.getMaxValue(), 49);
    QCOMPARE(number.getInitialValue(), 0);
    QCOMPARE(bank.getParam(ParamAddress(-6, -1, -1, -1)).getCurrentValue(), 0);
}

void TestRecords::theAvailableFlagTakesTheConstructorsArgument()
{
    QCOMPARE(BankData(0).getBankAvailableFlag().getCurrentValue(), 0);
    QCOMPARE(BankData(0).getBankAvailableFlag().getInitialValue(), 0);
    QCOMPARE(BankData(1).getBankAvailableFlag().getCurrentValue(), 1);
}

void TestRecords::setTemplateComparesFirst()
{
    BankData bank;
    ControlTemplateData data;
    QVERIFY(!bank.setTemplate(data, 49));
    data.setTemplateName(text("Lead"));
    QVERIFY(bank.setTemplate(data, 49));
    QVERIFY(!bank.setTemplate(data, 49));
    QVERIFY(bank.getTemplate(49) == data);
    QVERIFY(bank.getCopiedTemplate(49) == data);
    QVERIFY(bank.getTemplate(48) == ControlTemplateData());
}

void TestRecords::accessTemplateGivesNullOutsideTheFifty_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("exists");
    QTest::newRow("0") << 0 << true;
    QTest::newRow("49") << 49 << true;
    QTest::newRow("50") << 50 << false;
    QTest::newRow("51") << 51 << false;
    QTest::newRow("none") << -1 << false;
    QTest::newRow("-2") << -2 << false;
    QTest::newRow("highest") << 2147483647 << false;
}

void TestRecords::accessTemplateGivesNullOutsideTheFifty()
{
    QFETCH(int, number);
    QFETCH(bool, exists);
    BankData bank;
    QCOMPARE(bank.AccessTemplate(ParamAddress(0, number, 0, 0)) != nullptr, exists);
}

void TestRecords::bankFlagsAndCurrentTemplateAreWrittenByAddress()
{
    BankData bank;
    const ParamAddress available(0, 51, -1, -1);
    const ParamAddress current(0, 52, -1, -1);
    const ParamAddress edited(-6, -1, -1, -1);
    QVERIFY(!bank.setParam(available, 1));
    QVERIFY(bank.setParam(available, 0));
    QVERIFY(!bank.setParam(available, 0));
    QVERIFY(!bank.setParam(current, 0));
    QVERIFY(bank.setParam(current, 17));
    QVERIFY(!bank.setParam(current, 17));
    QVERIFY(!bank.setParam(edited, 0));
    QVERIFY(bank.setParam(edited, 1));
    QVERIFY(!bank.setParam(edited, 1));
    QCOMPARE(bank.getParam(available).getCurrentValue(), 0);
    QCOMPARE(bank.getParam(current).getCurrentValue(), 17);
    QCOMPARE(bank.getParam(edited).getCurrentValue(), 1);
    QVERIFY(bank.setEditFlag(0));
    QVERIFY(!bank.setEditFlag(0));
    QVERIFY(bank.setBankAvailableFlag(1));
    QVERIFY(!bank.setBankAvailableFlag(1));
}

void TestRecords::aFlagRefusesMinusOneAndTwo()
{
    BankData bank;
    QVERIFY(!bank.setParam(ParamAddress(0, 51, -1, -1), -1));
    QVERIFY(!bank.setParam(ParamAddress(0, 51, -1, -1), 2));
    QCOMPARE(bank.getBankAvailableFlag().getCurrentValue(), 1);
    QVERIFY(!bank.setEditFlag(-1));
    QVERIFY(!bank.setEditFlag(2));
}

void TestRecords::theCurrentTemplateNumberStopsAt49()
{
    BankData bank;
    const ParamAddress current(0, 52, -1, -1);
    QVERIFY(bank.setParam(current, 49));
    QVERIFY(!bank.setParam(current, 50));
    QVERIFY(!bank.setParam(current, -1));
    QCOMPARE(bank.getParam(current).getCurrentValue(), 49);
}

void TestRecords::anAddressWithTemplateFiftyChangesNothing()
{
    BankData bank;
    const BankData untouched;
    QVERIFY(!bank.setParam(ParamAddress(0, 50, 0, 1), 5));
    QVERIFY(!bank.setParam(ParamAddress(0, 50, -1, -1), 1));
    QVERIFY(!bank.setParam(ParamAddress(0, 50, 13, -1), text("x")));
    for (int i = 0; i < 50; ++i) {
        QVERIFY(bank.getTemplate(i) == untouched.getTemplate(i));
    }
}

void TestRecords::textsAreRefusedOutsideTheTemplates()
{
    BankData bank;
    for (const int number : {-2, -1, 50, 51, 52, 100}) {
        QVERIFY(!bank.setParam(ParamAddress(0, number, 13, 0), text("x")));
        QVERIFY(bank.getParamQString(ParamAddress(0, number, 13, 0)).isEmpty());
    }
}

void TestRecords::readsGoToTheTemplateThatTheAddressNames()
{
    BankData bank;
    for (int t = 0; t < 50; ++t) {
        QVERIFY(bank.setParam(ParamAddress(3, t, 13, -1), QString::number(t)));
        QVERIFY(bank.setParam(ParamAddress(3, t, 4, 1), t + 1));
    }
    for (int t = 0; t < 50; ++t) {
        QCOMPARE(bank.getParamQString(ParamAddress(3, t, 13, -1)), QString::number(t));
        QCOMPARE(bank.getParam(ParamAddress(3, t, 4, 1)).getCurrentValue(), t + 1);
    }
}

void TestRecords::aCopyOfABankIsIndependentAndComplete()
{
    BankData bank;
    bank.setParam(ParamAddress(0, 3, 13, -1), text("Pad"));
    bank.setParam(ParamAddress(0, 52, -1, -1), 3);
    bank.setBankAvailableFlag(0);
    bank.setEditFlag(1);
    BankData copy(bank);
    QCOMPARE(copy.getParamQString(ParamAddress(0, 3, 13, -1)), text("Pad"));
    QCOMPARE(copy.getParam(ParamAddress(0, 52, -1, -1)).getCurrentValue(), 3);
    QCOMPARE(copy.getBankAvailableFlag().getCurrentValue(), 0);
    QCOMPARE(copy.getParam(ParamAddress(-6, -1, -1, -1)).getCurrentValue(), 1);
    copy.setParam(ParamAddress(0, 3, 13, -1), text("Bass"));
    QCOMPARE(bank.getParamQString(ParamAddress(0, 3, 13, -1)), text("Pad"));
}

void TestRecords::badTemplateIndicesAreHarmless()
{
    BankData bank;
    ControlTemplateData data;
    data.setTemplateName(text("x"));
    for (const int index : {-1, 50, 2147483647, -2147483647 - 1}) {
        QVERIFY(!bank.setTemplate(data, index));
        QVERIFY(bank.getTemplate(index) == ControlTemplateData());
        QVERIFY(bank.getCopiedTemplate(index) == ControlTemplateData());
    }
}

QTEST_APPLESS_MAIN(TestRecords)
#include "tst_records.moc"
