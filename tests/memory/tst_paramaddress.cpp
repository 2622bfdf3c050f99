// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/AddressTransTable.h"
#include "memory/ParamAddress.h"

#include <QtTest/QtTest>

#include <array>
#include <functional>
#include <vector>

// The vocabulary of the address space: construction, the 28 names, both named forms and the
// predicates, which are held against a table written down here, over a grid of addresses.

namespace
{

using Numbers = std::array<int, 4>;

Numbers numbersOf(const ParamAddress &address)
{
    return {address.getParamAddress(0), address.getParamAddress(1), address.getParamAddress(2),
            address.getParamAddress(3)};
}

struct NameRow
{
    const char *name;
    int number;
};

constexpr std::array<NameRow, 28> Names = {{
    {"knobA1", 0},
    {"knobB1", 1},
    {"knobC1", 2},
    {"knobD1", 3},
    {"knobA2", 4},
    {"knobB2", 5},
    {"knobC2", 6},
    {"knobD2", 7},
    {"knobA3", 8},
    {"knobB3", 9},
    {"knobC3", 10},
    {"knobD3", 11},
    {"templateName", 13},
    {"controlType", 14},
    {"vstiName", 15},
    {"displayName", 0},
    {"ccNumber", 1},
    {"displayFormat", 2},
    {"remoteNumber", 3},
    {"bankName", 50},
    {"bankAvailableFlag", 51},
    {"currentTemplateNumber", 52},
    {"none", -1},
    {"isOnline", -2},
    {"fileEditFlag", -3},
    {"fileName", -4},
    {"libraryEditFlag", -5},
    {"bankEditFlag", -6},
}};

struct Predicate
{
    const char *name;
    bool (ParamAddress::*asked)() const;
    // The same in terms of the plain numbers: bank, template, controller, parameter.
    bool (*expected)(int b, int t, int c, int p);
};

bool isOneOf(int n, std::initializer_list<int> set)
{
    return std::find(set.begin(), set.end(), n) != set.end();
}

using P = ParamAddress;
const std::vector<Predicate> Predicates = {
    {"isBankParam", &P::isBankParam, [](int b, int, int, int) { return b >= 0; }},
    {"isBankParamAdr", &P::isBankParamAdr,
     [](int, int t, int, int) { return static_cast<unsigned>(t) < 50u; }},
    {"isControllerAdr", &P::isControllerAdr,
     [](int, int, int c, int) { return static_cast<unsigned>(c) < 12u; }},
    {"isStoredBankParamAdr", &P::isStoredBankParamAdr, [](int b, int, int, int) { return b == 0; }},
    {"isEditBufferOrStoredBankParam", &P::isEditBufferOrStoredBankParam,
     [](int b, int, int, int) {
         return isOneOf(b, {0, 1});
     }},
    {"isTemplateNameAdr", &P::isTemplateNameAdr, [](int, int, int c, int) { return c == 13; }},
    {"isControlTypeAdr", &P::isControlTypeAdr, [](int, int, int c, int) { return c == 14; }},
    {"isVSTiNameAdr", &P::isVSTiNameAdr, [](int, int, int c, int) { return c == 15; }},
    {"isDisplayNameAdr", &P::isDisplayNameAdr, [](int, int, int, int p) { return p == 0; }},
    {"isCCNumAdr", &P::isCCNumAdr, [](int, int, int, int p) { return p == 1; }},
    {"isDispFormAdr", &P::isDispFormAdr, [](int, int, int, int p) { return p == 2; }},
    {"isRemoteTagIDAdr", &P::isRemoteTagIDAdr, [](int, int, int, int p) { return p == 3; }},
    {"isBankAvailFlagAdr", &P::isBankAvailFlagAdr, [](int, int t, int, int) { return t == 51; }},
    {"isCurrentTemplateNumAdr", &P::isCurrentTemplateNumAdr,
     [](int, int t, int, int) { return t == 52; }},
    {"isOnlineStateAdr", &P::isOnlineStateAdr, [](int b, int, int, int) { return b == -2; }},
    {"isFileEditFlagAdr", &P::isFileEditFlagAdr, [](int b, int, int, int) { return b == -3; }},
    {"isFileNameAdr", &P::isFileNameAdr, [](int b, int, int, int) { return b == -4; }},
    {"isLibraryEditFlagAdr", &P::isLibraryEditFlagAdr,
     [](int b, int, int, int) { return b == -5; }},
    {"isBankEditFlagAdr", &P::isBankEditFlagAdr, [](int b, int, int, int) { return b == -6; }},
    {"isStringParamAdr", &P::isStringParamAdr,
     [](int, int, int c, int p) {
         return isOneOf(c, {13, 15}) || isOneOf(p, {0, 3});
     }},
    {"isNumericParamAdr", &P::isNumericParamAdr,
     [](int b, int t, int c, int p) {
         return isOneOf(p, {1, 2}) || c == 14 || isOneOf(t, {51, 52}) || isOneOf(b, {-6, -3, -2});
     }},
    {"isParamUsedInOnlyEditor", &P::isParamUsedInOnlyEditor,
     [](int b, int t, int, int) {
         return isOneOf(b, {-6, -4, -3, -2}) || t == 51;
     }},
};

} // namespace

class TestParamAddress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTableAloneLeavesAllFourNumbersAtNone();
    void fourIntegersAreStoredAndMinusOneIsSkipped();
    void minusOneInEveryArgumentChangesNothing();
    void otherNegativeNumbersAreStored();
    void initClearsTheNumbersAndKeepsTheTable();
    void anIndexOutsideZeroToThreeGivesNone();
    void equalNumbersWithDifferentTablesAreEqual();
    void aDifferenceInAnyOneNumberMakesAddressesUnequal();

    void theTableHoldsTheTwentyEightNames_data();
    void theTableHoldsTheTwentyEightNames();
    void theTableHoldsNothingElse();
    void anAddressWithoutATableKnowsNoName_data() { nameRows(); }
    void anAddressWithoutATableKnowsNoName();
    void anUnknownNameGivesNone_data();
    void anUnknownNameGivesNone();
    void namesAreSplitAtSlashesAndEmptyPartsSkipped_data();
    void namesAreSplitAtSlashesAndEmptyPartsSkipped();

    void theTwoPartFormNamesControllerAndParameter_data();
    void theTwoPartFormNamesControllerAndParameter();
    void theOneWordFormRewritesTheAddress_data();
    void theOneWordFormRewritesTheAddress();
    void aNullNameLeavesWhatItWouldName();

    void predicatesAgreeWithTheTableOverTheWholeGrid_data();
    void predicatesAgreeWithTheTableOverTheWholeGrid();
    void theComparingPredicatesCompareOneField();
    void theStaticBankPredicateTakesAnyNumber();

    void aBankLevelAddressIsABankParamAndNoBankParamAdr();
    void aGlobalAddressIsNeither();
    void aTemplateNameAddressIsBothAndNoController();
    void aDisplayNameAddressIsOneWhateverItsController();
    void theLibraryEditFlagIsNeitherNumericNorString();
    void theFileNameIsNoStringByThePredicate();
    void theCurrentTemplateNumberReachesTheInstrument();

private:
    void nameRows();
    AddressTransTable m_table;
};

void TestParamAddress::aTableAloneLeavesAllFourNumbersAtNone()
{
    const ParamAddress address(&m_table);
    QCOMPARE(numbersOf(address), (Numbers{-1, -1, -1, -1}));
    QCOMPARE(address.getAddressTransTable(), &m_table);
}

void TestParamAddress::fourIntegersAreStoredAndMinusOneIsSkipped()
{
    ParamAddress address(-2, 0, 0, 0);
    QCOMPARE(numbersOf(address), (Numbers{-2, 0, 0, 0}));
    QVERIFY(address.getAddressTransTable() == nullptr);
    address.setParamAddress(-1, 7, -1, 3);
    QCOMPARE(numbersOf(address), (Numbers{-2, 7, 0, 3}));
    address.setParamAddress(4, -1, 11, -1);
    QCOMPARE(numbersOf(address), (Numbers{4, 7, 11, 3}));
}

void TestParamAddress::minusOneInEveryArgumentChangesNothing()
{
    ParamAddress address(-2, 0, 0, 0);
    address.setParamAddress(-1, -1, -1, -1);
    QCOMPARE(numbersOf(address), (Numbers{-2, 0, 0, 0}));
}

void TestParamAddress::otherNegativeNumbersAreStored()
{
    const ParamAddress address(-7, -2, -300, -2147483647 - 1);
    QCOMPARE(numbersOf(address), (Numbers{-7, -2, -300, -2147483647 - 1}));
}

void TestParamAddress::initClearsTheNumbersAndKeepsTheTable()
{
    ParamAddress address(&m_table);
    address.setParamAddress(1, 2, 3, 0);
    address.initParamAddress();
    QCOMPARE(numbersOf(address), (Numbers{-1, -1, -1, -1}));
    QCOMPARE(address.getAddressTransTable(), &m_table);
}

void TestParamAddress::anIndexOutsideZeroToThreeGivesNone()
{
    const ParamAddress address(1, 2, 3, 0);
    QCOMPARE(address.getParamAddress(-1), -1);
    QCOMPARE(address.getParamAddress(4), -1);
    QCOMPARE(address.getParamAddress(1000000), -1);
}

void TestParamAddress::equalNumbersWithDifferentTablesAreEqual()
{
    AddressTransTable other;
    ParamAddress first(&m_table);
    ParamAddress second(&other);
    const ParamAddress third(1, 2, 3, 0);
    first.setParamAddress(1, 2, 3, 0);
    second.setParamAddress(1, 2, 3, 0);
    QVERIFY(first == second);
    QVERIFY(first == third);
}

void TestParamAddress::aDifferenceInAnyOneNumberMakesAddressesUnequal()
{
    const ParamAddress address(1, 2, 3, 0);
    QVERIFY(!(address == ParamAddress(2, 2, 3, 0)));
    QVERIFY(!(address == ParamAddress(1, 3, 3, 0)));
    QVERIFY(!(address == ParamAddress(1, 2, 4, 0)));
    QVERIFY(!(address == ParamAddress(1, 2, 3, 1)));
}

void TestParamAddress::nameRows()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("number");
    for (const NameRow &row : Names) {
        QTest::newRow(row.name) << QString::fromLatin1(row.name) << row.number;
    }
}

void TestParamAddress::theTableHoldsTheTwentyEightNames_data()
{
    nameRows();
}

void TestParamAddress::theTableHoldsTheTwentyEightNames()
{
    QFETCH(QString, name);
    QFETCH(int, number);
    QVERIFY(m_table.getTable().contains(name));
    const ParamAddress address(&m_table);
    QCOMPARE(address.String2ParamAdr(name), number);
    QCOMPARE(address.String2ParamAdr(name.toLatin1().constData()), number);
}

void TestParamAddress::theTableHoldsNothingElse()
{
    QCOMPARE(m_table.getTable().size(), qsizetype(28));
    QHash<QString, int> copy = m_table.getTable();
    copy.insert(QStringLiteral("intruder"), 1);
    QCOMPARE(m_table.getTable().size(), qsizetype(28));
}

void TestParamAddress::anAddressWithoutATableKnowsNoName()
{
    QFETCH(QString, name);
    const ParamAddress address(1, 2, 3, 0);
    QCOMPARE(address.String2ParamAdr(name), -1);
    QCOMPARE(address.String2ParamAdr(name.toLatin1().constData()), -1);
}

void TestParamAddress::anUnknownNameGivesNone_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"", " ", "knobA0", "knobE1", "KnobA1", "knoba1", "ccnumber",
                             "knobA1/ccNumber", "displayName ", "caf\xc3\xa9", "\xff\xfe"}) {
        QTest::newRow(QByteArray(name).toPercentEncoding().prepend('\'').append('\''))
            << QByteArray(name);
    }
}

void TestParamAddress::anUnknownNameGivesNone()
{
    QFETCH(QByteArray, name);
    QCOMPARE(ParamAddress(&m_table).String2ParamAdr(name.constData()), -1);
}

void TestParamAddress::namesAreSplitAtSlashesAndEmptyPartsSkipped_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QStringList>("parts");
    const auto list = [](std::initializer_list<const char *> parts) {
        QStringList result;
        for (const char *part : parts) {
            result.append(QString::fromLatin1(part));
        }
        return result;
    };
    QTest::newRow("no slash") << QByteArray("isOnline") << list({"isOnline"});
    QTest::newRow("two parts") << QByteArray("knobA1/ccNumber") << list({"knobA1", "ccNumber"});
    QTest::newRow("slashes around")
        << QByteArray("/knobA1/ccNumber/") << list({"knobA1", "ccNumber"});
    QTest::newRow("doubled slash")
        << QByteArray("knobA1//ccNumber") << list({"knobA1", "ccNumber"});
    QTest::newRow("three parts") << QByteArray("a/b/c") << list({"a", "b", "c"});
    QTest::newRow("slashes alone") << QByteArray("///") << list({});
    QTest::newRow("empty") << QByteArray("") << list({});
}

void TestParamAddress::namesAreSplitAtSlashesAndEmptyPartsSkipped()
{
    QFETCH(QByteArray, name);
    QFETCH(QStringList, parts);
    QCOMPARE(ParamAddress::splitNamedAdr(name.constData()), parts);
}

void TestParamAddress::theTwoPartFormNamesControllerAndParameter_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    for (int knob = 0; knob < 12; ++knob) {
        for (int parameter = 0; parameter < 4; ++parameter) {
            const QByteArray name = QByteArray(Names[static_cast<std::size_t>(knob)].name) + '/' +
                                    Names[15 + static_cast<std::size_t>(parameter)].name;
            QTest::newRow(name.constData()) << name << knob << parameter;
        }
    }
    QTest::newRow("without a slash both take the number") << QByteArray("knobD1") << 3 << 3;
    QTest::newRow("a template selector alone") << QByteArray("templateName") << 13 << 13;
    QTest::newRow("unknown first part") << QByteArray("knobX9/ccNumber") << -1 << 1;
    QTest::newRow("unknown last part") << QByteArray("knobB2/volume") << 5 << -1;
    QTest::newRow("both unknown") << QByteArray("x/y") << -1 << -1;
    QTest::newRow("three parts: first and last") << QByteArray("knobB2/x/displayFormat") << 5 << 2;
    QTest::newRow("slash alone") << QByteArray("/") << -1 << -1;
}

void TestParamAddress::theTwoPartFormNamesControllerAndParameter()
{
    QFETCH(QByteArray, name);
    QFETCH(int, controller);
    QFETCH(int, parameter);
    ParamAddress address(&m_table);
    address.setParamAddress(8, 9, 10, 2);
    address.setParamAddress(4, -1, name.constData(), 3);
    QCOMPARE(numbersOf(address), (Numbers{4, 9, controller, parameter}));

    ParamAddress withoutTable(8, 9, 10, 2);
    withoutTable.setParamAddress(4, 5, name.constData(), -1);
    QCOMPARE(numbersOf(withoutTable), (Numbers{4, 5, -1, -1}));
}

void TestParamAddress::theOneWordFormRewritesTheAddress_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("bank");
    QTest::addColumn<int>("template_");
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    // Applied with bank 5, template 6, controller 7.
    const auto row = [](const char *name, int b, int t, int c, int p) {
        QTest::newRow(name) << QByteArray(name) << b << t << c << p;
    };
    row("fileName", -4, -1, -1, -1);
    row("isOnline", -2, -1, -1, -1);
    row("bankEditFlag", -6, -1, -1, -1);
    row("fileEditFlag", -3, -1, -1, -1);
    row("libraryEditFlag", -5, -1, -1, -1);
    row("templateName", 5, 6, 13, -1);
    row("controlType", 5, 6, 14, -1);
    row("vstiName", 5, 6, 15, -1);
    row("bankAvailableFlag", 5, 51, -1, -1);
    row("currentTemplateNumber", 5, 52, -1, -1);
    row("displayName", 5, 6, 7, 0);
    row("ccNumber", 5, 6, 7, 1);
    row("displayFormat", 5, 6, 7, 2);
    row("remoteNumber", 5, 6, 7, 3);
    row("knobA1", 5, 6, 7, 0);
    row("knobD3", 5, 6, 7, 11);
    row("bankName", 5, 6, 7, 50);
    row("none", 5, 6, 7, -1);
    row("unheardOf", 5, 6, 7, -1);
    row("knobA1/ccNumber", 5, 6, 7, -1);
}

void TestParamAddress::theOneWordFormRewritesTheAddress()
{
    QFETCH(QByteArray, name);
    QFETCH(int, bank);
    QFETCH(int, template_);
    QFETCH(int, controller);
    QFETCH(int, parameter);
    ParamAddress address(&m_table);
    address.setParamAddress(0, 0, 0, 3);
    address.setParamAddress(5, 6, 7, name.constData());
    QCOMPARE(numbersOf(address), (Numbers{bank, template_, controller, parameter}));
    // Minus one skips here too, so that the numbers held before stay.
    address.initParamAddress();
    address.setParamAddress(5, 6, 7, 3);
    address.setParamAddress(-1, -1, -1, name.constData());
    QCOMPARE(numbersOf(address), (Numbers{bank, template_, controller, parameter}));
}

void TestParamAddress::aNullNameLeavesWhatItWouldName()
{
    ParamAddress address(&m_table);
    address.setParamAddress(1, 2, 3, 2);
    address.setParamAddress(4, 5, static_cast<const char *>(nullptr), -1);
    QCOMPARE(numbersOf(address), (Numbers{4, 5, 3, 2}));
    address.setParamAddress(-1, -1, static_cast<const char *>(nullptr), 1);
    QCOMPARE(numbersOf(address), (Numbers{4, 5, 3, 1}));
    address.setParamAddress(6, -1, 8, static_cast<const char *>(nullptr));
    QCOMPARE(numbersOf(address), (Numbers{6, 5, 8, 1}));
}

void TestParamAddress::predicatesAgreeWithTheTableOverTheWholeGrid_data()
{
    QTest::addColumn<int>("index");
    for (std::size_t i = 0; i < Predicates.size(); ++i) {
        QTest::newRow(Predicates[i].name) << static_cast<int>(i);
    }
}

void TestParamAddress::predicatesAgreeWithTheTableOverTheWholeGrid()
{
    QFETCH(int, index);
    const Predicate &predicate = Predicates[static_cast<std::size_t>(index)];
    constexpr int Lowest = -2147483647 - 1;
    constexpr int Highest = 2147483647;
    std::vector<int> banks{Lowest, Highest};
    std::vector<int> templates{Lowest, Highest, -2};
    std::vector<int> controllers{Lowest, Highest, -2};
    std::vector<int> parameters{Lowest, Highest, -2};
    const auto fill = [](std::vector<int> &numbers, int first, int last) {
        for (int n = first; n <= last; ++n) {
            numbers.push_back(n);
        }
    };
    fill(banks, -8, 10);
    fill(templates, -1, 54);
    fill(controllers, -1, 18);
    fill(parameters, -1, 6);
    for (const int b : banks) {
        for (const int t : templates) {
            for (const int c : controllers) {
                for (const int p : parameters) {
                    const ParamAddress address(b, t, c, p);
                    if ((address.*predicate.asked)() != predicate.expected(b, t, c, p)) {
                        QFAIL(qPrintable(QStringLiteral("%1 at (%2, %3, %4, %5)")
                                             .arg(QLatin1String(predicate.name))
                                             .arg(b)
                                             .arg(t)
                                             .arg(c)
                                             .arg(p)));
                    }
                }
            }
        }
    }
}

void TestParamAddress::theComparingPredicatesCompareOneField()
{
    const ParamAddress address(3, 14, 9, 2);
    for (int n = -8; n < 60; ++n) {
        QCOMPARE(address.isThisBank(n), n == 3);
        QCOMPARE(address.isThisTemplate(n), n == 14);
        QCOMPARE(address.isThisController(n), n == 9);
    }
}

void TestParamAddress::theStaticBankPredicateTakesAnyNumber()
{
    for (int n = -10; n < 12; ++n) {
        QCOMPARE(ParamAddress::isEditBufferOrStoredBankParam(n), n == 0 || n == 1);
    }
}

void TestParamAddress::aBankLevelAddressIsABankParamAndNoBankParamAdr()
{
    const ParamAddress address(5, 52, -1, -1);
    QVERIFY(address.isBankParam());
    QVERIFY(!address.isBankParamAdr());
}

void TestParamAddress::aGlobalAddressIsNeither()
{
    const ParamAddress address(-3, -1, -1, -1);
    QVERIFY(!address.isBankParam());
    QVERIFY(!address.isBankParamAdr());
}

void TestParamAddress::aTemplateNameAddressIsBothAndNoController()
{
    const ParamAddress address(5, 49, 13, -1);
    QVERIFY(address.isBankParam());
    QVERIFY(address.isBankParamAdr());
    QVERIFY(!address.isControllerAdr());
}

void TestParamAddress::aDisplayNameAddressIsOneWhateverItsController()
{
    QVERIFY(ParamAddress(0, 0, 13, 0).isDisplayNameAdr());
    QVERIFY(ParamAddress(0, 0, -1, 0).isDisplayNameAdr());
    QVERIFY(!ParamAddress(0, 0, 13, 0).isControllerAdr());
}

void TestParamAddress::theLibraryEditFlagIsNeitherNumericNorString()
{
    const ParamAddress address(-5, -1, -1, -1);
    QVERIFY(!address.isNumericParamAdr());
    QVERIFY(!address.isStringParamAdr());
    QVERIFY(!address.isParamUsedInOnlyEditor());
}

void TestParamAddress::theFileNameIsNoStringByThePredicate()
{
    QVERIFY(!ParamAddress(-4, -1, -1, -1).isStringParamAdr());
    QVERIFY(ParamAddress(-4, -1, -1, -1).isParamUsedInOnlyEditor());
}

void TestParamAddress::theCurrentTemplateNumberReachesTheInstrument()
{
    QVERIFY(!ParamAddress(0, 52, -1, -1).isParamUsedInOnlyEditor());
    QVERIFY(ParamAddress(0, 51, -1, -1).isParamUsedInOnlyEditor());
}

QTEST_APPLESS_MAIN(TestParamAddress)
#include "tst_paramaddress.moc"
