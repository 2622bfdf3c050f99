// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "vsti/VstiHarness.h"

#include <QtTest/QtTest>
#include <QtXml/QDomDocument>

#include <limits>
#include <sys/stat.h>

// A maker's parameter description: its tree, templates and expressions, and what it does to the
// parameters that are known of a plug-in.

namespace
{

const QString Name = QStringLiteral("Synth");

QByteArray description(const QByteArray &content)
{
    return "<VSTParametersStructure>" + content + "</VSTParametersStructure>";
}

QByteArray param(const char *name, const QByteArray &id)
{
    return QByteArray("<Param name=\"") + name + "\" id=\"" + id + "\"/>";
}

// What the description alone holds.
QStringList described(const QByteArray &content)
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    info.updateParameterListFromVSTXMLData(description(content), Name, true);
    return printed(info.getVSTiParameterList(Name));
}

// A model in which a scan has reported these parameters of the plug-in.
class Known
{
public:
    explicit Known(const QList<VSTiInfo::Parameter> &list)
        : info(m_rig.info())
    {
        info.parameterLists.insert(Name, list);
        for (const VSTiInfo::Parameter &parameter : list) {
            info.parameterMaps[Name].insert(parameter.id, parameter.path);
        }
    }

    void update(const QByteArray &content, bool primary)
    {
        info.updateParameterListFromVSTXMLData(description(content), Name, primary);
    }
    QStringList list() const { return printed(info.getVSTiParameterList(Name)); }
    QString path(const char *name) const { return m_rig.path(name); }

private:
    VstiRig m_rig;

public:
    ScannedVSTiInfo info;
};

QList<VSTiInfo::Parameter> threeOfTheTool()
{
    return {{idOf(0), names({"p0"})}, {idOf(1), names({"p1"})}, {idOf(2), names({"p2"})}};
}

} // namespace

class TestParameterDescription : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void expressions_data();
    void expressions();
    void longExpressionsNeedNoStack();
    void aParamAtTheTopHasItsNameAlone();
    void groupsNestInThePath();
    void incompleteElementsAreSkipped_data();
    void incompleteElementsAreSkipped();
    void theFirstParamOfAnIdWins();
    void idsHaveTheTypeDigitZero_data();
    void idsHaveTheTypeDigitZero();
    void aTemplateTakesItsKeysFromTheGroup();
    void keysOfOneGroupAreUnknownInTheNext();
    void keysReachTemplatesWithinTemplates();
    void laterValuesUseEarlierOnes();
    void damagedValuesAreSkipped();
    void theFirstTemplateOfANameIsTaken();
    void anUnknownTemplateLeavesNoTrace();
    void templatesBelowGroupsAreNoTemplates();
    void refiningTakesNamesGroupsAndOrderFromTheFile();
    void refiningWithoutAMatchLeavesTheBypassAloneOrNothing();
    void refiningKeepsTheBypassFirstAndOnce();
    void refiningAPluginKnownByNameOnlyLeavesRoomForItsPreset();
    void aPrimaryFileKeepsThePlacesOfKnownParametersAndAddsTheRest();
    void aPrimaryFileWithoutParametersChangesNothing();
    void filesOfNoUseChangeNothing_data();
    void filesOfNoUseChangeNothing();
    void aFileIsRead();
    void aPipeIsNotWaitedFor();
    void templatesInACircleEnd_data();
    void templatesInACircleEnd();
    void templatesThatMultiplyEnd();
    void aChainOfManyTemplatesEnds();
    void copyingManyKeysEnds();
    void theWalkCanBeEnteredAnywhere();
};

void TestParameterDescription::expressions_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<int>("value");
    const auto row = [](const char *expression, int value) {
        QTest::newRow(expression) << latin(expression) << value;
    };
    row("7", 7);
    row(" 7 ", 7);
    row("", 0);
    row("word", 0);
    row("0x10", 0);
    row("1 2", 0);
    row("2+3*4", 20);
    row("a*b+c", 14);
    row("2*3*4", 24);
    row("10-3-2", 9);
    row("10-3+2", 5);
    row("10+3-2", 11);
    row("1-2-3-4", -2);
    row("-5", -5);
    row("--5", 5);
    row("+5", 5);
    row("5-", 5);
    row("5*", 0);
    row("*", 0);
    row("-", 0);
    row(" a + b ", 5);
    row("A", 0);
    row("long key", 9);
    row("a b", 0);
    row("a.b", 12);
    row("1+1", 2);
    row("2147483647", 2147483647);
    row("2147483648", 0);
    row("2147483647+1", std::numeric_limits<int>::min());
    row("0-2147483647-1", -2147483646);
    row("65536*65536", 0);
    row("2147483647*2147483647", 1);
    row("5/2", 0);
    row("(1+2)", 0);
    row("7+", 7);
    row("1+word", 1);
    QTest::newRow("a number as key") << latin("13") << 31;
    QTest::newRow("tabs and line ends") << latin("\t1\n+\n2\t") << 3;
}

void TestParameterDescription::expressions()
{
    QFETCH(QString, expression);
    QFETCH(int, value);
    const QHash<QString, int> keys = {{latin("a"), 2},        {latin("b"), 3},    {latin("c"), 4},
                                      {latin("long key"), 9}, {latin("a.b"), 12}, {latin("13"), 31},
                                      {latin("1+1"), 1000000}};
    const VstiRig rig;
    QCOMPARE(rig.info().getIntValue(expression, keys), value);
}

void TestParameterDescription::longExpressionsNeedNoStack()
{
    const VstiRig rig;
    const ScannedVSTiInfo info = rig.info();
    constexpr int Terms = 2000000;
    QCOMPARE(info.getIntValue(latin("1+").repeated(Terms) + latin("1"), {}), Terms + 1);
    // 1-(1-(1- ... )) of an odd number of ones
    QCOMPARE(info.getIntValue(latin("1-").repeated(Terms) + latin("1"), {}), 1);
    QCOMPARE(info.getIntValue(latin("1*").repeated(Terms) + latin("5"), {}), 5);
    QCOMPARE(info.getIntValue(QString(Terms, QLatin1Char('-')), {}), 0);
    QCOMPARE(info.getIntValue(QString(Terms, QLatin1Char('9')), {}), 0);
}

void TestParameterDescription::aParamAtTheTopHasItsNameAlone()
{
    QCOMPARE(described(param("Volume", "0")), names({"000001069 Volume"}));
}

void TestParameterDescription::groupsNestInThePath()
{
    QCOMPARE(
        described("<Group name=\"A\">" + param("one", "1") + "<Group name=\"B\">" +
                  param("two", "2") + "</Group>" + param("three", "3") + "</Group>" +
                  param("four", "4")),
        names({"00000106a A/one", "00000106b A/B/two", "00000106c A/three", "00000106d four"}));
}

void TestParameterDescription::incompleteElementsAreSkipped_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("param without name") << QByteArray("<Param id=\"0\"/>") << QStringList();
    QTest::newRow("param without id") << QByteArray("<Param name=\"n\"/>") << QStringList();
    QTest::newRow("param with empty id") << param("n", "") << QStringList();
    QTest::newRow("param with empty name") << param("", "0") << names({"000001069 "});
    QTest::newRow("param with blank id") << param("n", " ") << names({"000001069 n"});
    QTest::newRow("group without name")
        << QByteArray("<Group>" + param("n", "0") + "</Group>") << QStringList();
    QTest::newRow("group with empty name")
        << QByteArray("<Group name=\"\">" + param("n", "0") + "</Group>")
        << names({"000001069 /n"});
    QTest::newRow("unknown element")
        << QByteArray("<Other name=\"o\">" + param("n", "0") + "</Other>") << QStringList();
    QTest::newRow("other case") << QByteArray("<param name=\"n\" id=\"0\"/>") << QStringList();
}

void TestParameterDescription::incompleteElementsAreSkipped()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    QCOMPARE(described(content), expected);
}

void TestParameterDescription::theFirstParamOfAnIdWins()
{
    QCOMPARE(described(param("first", "3") + param("second", "1+2")), names({"00000106c first"}));
}

void TestParameterDescription::idsHaveTheTypeDigitZero_data()
{
    QTest::addColumn<QByteArray>("expression");
    QTest::addColumn<QString>("id");
    QTest::newRow("first") << QByteArray("0") << latin("000001069");
    QTest::newRow("bypass") << QByteArray("10000001") << BypassID;
    QTest::newRow("largest") << QByteArray("2147479446") << latin("07fffffff");
    QTest::newRow("minus 4201") << QByteArray("-4201") << latin("000000000");
    QTest::newRow("minus 4202") << QByteArray("-4202") << latin("0ffffffff");
    QTest::newRow("beyond the largest") << QByteArray("2147483647") << latin("080001068");
}

void TestParameterDescription::idsHaveTheTypeDigitZero()
{
    QFETCH(QByteArray, expression);
    QFETCH(QString, id);
    QCOMPARE(described(param("n", expression)), QStringList(id + latin(" n")));
}

void TestParameterDescription::aTemplateTakesItsKeysFromTheGroup()
{
    QCOMPARE(described("<Group name=\"Osc 1\" template=\"osc\" values=\"base=10\"/>"
                       "<Group name=\"Osc 2\" template=\"osc\" values=\" base = 20 \">" +
                       param("not this", "99") + "</Group><Template name=\"osc\">" +
                       param("wave", "base") + "<Group name=\"Env\">" + param("attack", "base+1") +
                       "</Group></Template>"),
             names({"000001073 Osc 1/wave", "000001074 Osc 1/Env/attack", "00000107d Osc 2/wave",
                    "00000107e Osc 2/Env/attack"}));
}

void TestParameterDescription::keysOfOneGroupAreUnknownInTheNext()
{
    QCOMPARE(described("<Group name=\"A\" template=\"t\" values=\"k=5\"/>"
                       "<Group name=\"B\" template=\"t\"/>"
                       "<Template name=\"t\">" +
                       param("p", "k+1") + "</Template>"),
             names({"00000106f A/p", "00000106a B/p"}));
}

void TestParameterDescription::keysReachTemplatesWithinTemplates()
{
    QCOMPARE(described("<Group name=\"A\" template=\"outer\" values=\"o=100\"/>"
                       "<Template name=\"outer\">"
                       "<Group name=\"1\" template=\"inner\" values=\"i=1\"/>"
                       "<Group name=\"2\" template=\"inner\" values=\"i=2;o=200\"/>"
                       "<Group name=\"3\" template=\"inner\" values=\"i=3\"/></Template>"
                       "<Template name=\"inner\">" +
                       param("p", "o+i") + "</Template>"),
             names({"0000010ce A/1/p", "000001133 A/2/p", "0000010d0 A/3/p"}));
}

void TestParameterDescription::laterValuesUseEarlierOnes()
{
    QCOMPARE(described("<Group name=\"A\" template=\"t\" values=\"a=2;b=a*3;a=b+1\"/>"
                       "<Template name=\"t\">" +
                       param("a", "a") + param("b", "b") + "</Template>"),
             names({"000001070 A/a", "00000106f A/b"}));
}

void TestParameterDescription::damagedValuesAreSkipped()
{
    QCOMPARE(described("<Group name=\"A\" template=\"t\" values=\";;a;=1; =2;b=;c= ;d=4;e=5=6;\"/>"
                       "<Template name=\"t\">" +
                       param("d", "d") + param("rest", "a+b+c+e") + "</Template>"),
             names({"00000106d A/d", "000001069 A/rest"}));
}

void TestParameterDescription::theFirstTemplateOfANameIsTaken()
{
    QCOMPARE(described("<Template name=\"t\">" + param("first", "1") + "</Template>" +
                       "<Template name=\"t\">" + param("second", "2") + "</Template>" +
                       "<Group name=\"A\" template=\"t\"/>"),
             names({"00000106a A/first"}));
}

void TestParameterDescription::anUnknownTemplateLeavesNoTrace()
{
    QCOMPARE(described("<Group name=\"A\" template=\"nothing\">" + param("n", "0") + "</Group>"),
             QStringList());
}

void TestParameterDescription::templatesBelowGroupsAreNoTemplates()
{
    QCOMPARE(described("<Group name=\"A\" template=\"t\"/><Group name=\"B\"><Template name=\"t\">" +
                       param("n", "0") + "</Template></Group>"),
             QStringList());
}

void TestParameterDescription::refiningTakesNamesGroupsAndOrderFromTheFile()
{
    Known known(threeOfTheTool());
    known.update("<Group name=\"G\">" + param("two", "2") + "</Group>" + param("unknown", "7") +
                     param("zero", "0"),
                 false);
    QCOMPARE(known.list(), names({"00000106b G/two", "000001069 zero"}));
    QVERIFY(known.info.isConsistent());
}

void TestParameterDescription::refiningWithoutAMatchLeavesTheBypassAloneOrNothing()
{
    Known nothing(threeOfTheTool());
    nothing.update(param("other", "9"), false);
    QCOMPARE(nothing.list(), QStringList());
    QVERIFY(nothing.info.isConsistent());

    Known bypass(threeOfTheTool() + QList<VSTiInfo::Parameter>{{BypassID, names({"Bypass"})}});
    bypass.update(param("other", "9"), false);
    QCOMPARE(bypass.list(), QStringList(BypassID + latin(" Bypass")));
    QVERIFY(bypass.info.isConsistent());
}

void TestParameterDescription::refiningKeepsTheBypassFirstAndOnce()
{
    Known known(threeOfTheTool() + QList<VSTiInfo::Parameter>{{BypassID, names({"Bypass"})}});
    known.update(param("one", "1") + param("of the file", "10000001"), false);
    QCOMPARE(known.list(), QStringList({BypassID + latin(" Bypass"), latin("00000106a one")}));
    QVERIFY(known.info.isConsistent());
}

void TestParameterDescription::refiningAPluginKnownByNameOnlyLeavesRoomForItsPreset()
{
    const VstiRig rig;
    QVERIFY(rig.writePreset("<vsti name=\"Synth\"><parameter id=\"4201\" name=\"V\"/></vsti>"));
    ScannedVSTiInfo info = rig.info();
    info.parameterLists = {{Name, {}}};
    info.parameterMaps.clear();
    info.updateParameterListFromVSTXMLData(description(param("n", "0")), Name, false);
    QVERIFY(info.getVSTiParameterList(Name).isEmpty());
    info.appendPreset();
    QCOMPARE(printed(info.getVSTiParameterList(Name)), names({"000001069 V"}));
}

void TestParameterDescription::aPrimaryFileKeepsThePlacesOfKnownParametersAndAddsTheRest()
{
    Known known(threeOfTheTool());
    known.update(param("nine", "9") + "<Group name=\"G\">" + param("one", "1") + "</Group>" +
                     param("eight", "8"),
                 true);
    QCOMPARE(known.list(), names({"000001069 p0", "00000106a G/one", "00000106b p2",
                                  "000001072 nine", "000001071 eight"}));
    QVERIFY(known.info.isConsistent());
}

void TestParameterDescription::aPrimaryFileWithoutParametersChangesNothing()
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    info.updateParameterListFromVSTXMLData(description({}), Name, true);
    QVERIFY(!info.parameterLists.contains(Name));
    QVERIFY(!info.parameterMaps.contains(Name));
}

void TestParameterDescription::filesOfNoUseChangeNothing_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray content = param("n", "0");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("\0\1\2\3", 4);
    QTest::newRow("malformed") << "<VSTParametersStructure>" + content;
    QTest::newRow("other root") << "<Structure>" + content + "</Structure>";
    QTest::newRow("root in other case")
        << "<vstparametersstructure>" + content + "</vstparametersstructure>";
    QTest::newRow("entities") << "<!DOCTYPE a [<!ENTITY e \"x\">]>" + description(content);
    QTest::newRow("257 levels") << description(content +
                                               QByteArray("<Group name=\"g\">").repeated(256) +
                                               QByteArray("</Group>").repeated(256));
    QTest::newRow("a million levels")
        << "<VSTParametersStructure>" + QByteArray("<Group name=\"g\">").repeated(1000000);
    QTest::newRow("a million elements")
        << description(content + QByteArray("<a/>").repeated(1000000));
    QTest::newRow("three million attributes") << description(
        content + QByteArray("<a b='' c='' d='' e='' f='' g='' h='' i=''/>").repeated(375000));
}

void TestParameterDescription::filesOfNoUseChangeNothing()
{
    QFETCH(QByteArray, text);
    for (const bool primary : {true, false}) {
        Known known(threeOfTheTool());
        known.info.updateParameterListFromVSTXMLData(text, Name, primary);
        QCOMPARE(known.list(), printed(threeOfTheTool()));
        QFile file(known.path("Synth.vstxml"));
        QVERIFY(writeBytes(file.fileName(), text));
        known.info.updateParameterListFromVSTXMLFile(file, Name, primary);
        QCOMPARE(known.list(), printed(threeOfTheTool()));
        QVERIFY(!file.isOpen());
    }
}

void TestParameterDescription::aFileIsRead()
{
    Known known(threeOfTheTool());
    QFile file(known.path("Synth.vstxml"));
    QVERIFY(writeBytes(file.fileName(), description(param("one", "1"))));
    known.info.updateParameterListFromVSTXMLFile(file, Name, false);
    QCOMPARE(known.list(), names({"00000106a one"}));
    QVERIFY(!file.isOpen());

    QFile missing(known.path("missing.vstxml"));
    known.info.updateParameterListFromVSTXMLFile(missing, Name, false);
    QFile folder(known.path("."));
    known.info.updateParameterListFromVSTXMLFile(folder, Name, false);
    QCOMPARE(known.list(), names({"00000106a one"}));
}

void TestParameterDescription::aPipeIsNotWaitedFor()
{
    Known known(threeOfTheTool());
    QFile pipe(known.path("Synth.vstxml"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe.fileName()).constData(), 0600), 0);
    known.info.updateParameterListFromVSTXMLFile(pipe, Name, false);
    QCOMPARE(known.list(), printed(threeOfTheTool()));
}

void TestParameterDescription::templatesInACircleEnd_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray start = "<Group name=\"A\" template=\"t\"/>";
    QTest::newRow("in itself") << start + "<Template name=\"t\">" + param("n", "0") +
                                      "<Group name=\"A\" template=\"t\"/></Template>";
    QTest::newRow("in itself twice")
        << start + "<Template name=\"t\">" + param("n", "k") +
               "<Group name=\"A\" template=\"t\" values=\"k=k+1\"/>"
               "<Group name=\"B\" template=\"t\" values=\"k=k+2\"/></Template>";
    QTest::newRow("in one another") << start + "<Template name=\"t\">" + param("n", "0") +
                                           "<Group name=\"A\" template=\"u\"/></Template>"
                                           "<Template name=\"u\">"
                                           "<Group name=\"A\" template=\"t\"/></Template>";
}

void TestParameterDescription::templatesInACircleEnd()
{
    QFETCH(QByteArray, content);
    QCOMPARE(described(content), names({"000001069 A/n"}));
}

void TestParameterDescription::templatesThatMultiplyEnd()
{
    // 40 templates of which each has the next ten times: 10^40 parameters.
    QByteArray content = "<Group name=\"g\" template=\"t0\"/>";
    for (int i = 0; i < 40; ++i) {
        content += "<Template name=\"t" + QByteArray::number(i) + "\">";
        for (int k = 0; k < 10; ++k) {
            content += "<Group name=\"g\" template=\"t" + QByteArray::number(i + 1) +
                       "\" values=\"k=k*10+" + QByteArray::number(k) + "\"/>";
        }
        content += "</Template>";
    }
    content += "<Template name=\"t40\">" + param("n", "k") + "</Template>";
    const QStringList list = described(content);
    QVERIFY(!list.isEmpty());
    QVERIFY(list.size() < 1000000);
}

void TestParameterDescription::aChainOfManyTemplatesEnds()
{
    // Each has the next once; the stack holds a few hundred.
    constexpr int Templates = 20000;
    QByteArray content = "<Group name=\"g\" template=\"t0\"/>";
    for (int i = 0; i < Templates; ++i) {
        content += "<Template name=\"t" + QByteArray::number(i) + "\">" +
                   param("n", QByteArray::number(i)) + "<Group name=\"g\" template=\"t" +
                   QByteArray::number(i + 1) + "\"/></Template>";
    }
    QCOMPARE(described(content).size(), VSTiInfo::MaximumGroups);
}

void TestParameterDescription::copyingManyKeysEnds()
{
    // A table of 300,000 keys that each of 100,000 groups wants for itself.
    QByteArray values;
    for (int i = 0; i < 300000; ++i) {
        values += "k" + QByteArray::number(i) + "=1;";
    }
    QByteArray content =
        "<Group name=\"A\" template=\"t\" values=\"" + values + "\"/><Template name=\"t\">";
    for (int i = 0; i < 100000; ++i) {
        content += "<Group name=\"B\" template=\"u\" values=\"x=" + QByteArray::number(i) + "\"/>";
    }
    content += "</Template><Template name=\"u\">" + param("n", "x") + "</Template>";
    QVERIFY(described(content).size() < 100000);
}

void TestParameterDescription::theWalkCanBeEnteredAnywhere()
{
    const VstiRig rig;
    ScannedVSTiInfo info = rig.info();
    QDomDocument document;
    QVERIFY(document.setContent(QString::fromUtf8(
        description("<Group name=\"A\" template=\"t\" values=\"k=j+1\"/><Template name=\"t\">" +
                    param("n", "k") + "</Template>"))));
    const QDomElement group = document.documentElement().firstChildElement(TagGroup);
    QList<VSTiInfo::Parameter> list;
    QHash<QString, QStringList> map;
    info.appendParameterTemplateFromVSTXML(&list, &map, group, {{latin("j"), 1}}, names({"P"}),
                                           latin("t"));
    QCOMPARE(printed(list), names({"00000106b P/n"}));
    info.appendParameterTreeFromVSTXML(&list, &map, document.documentElement(), {{latin("j"), 2}},
                                       names({"Q"}));
    QCOMPARE(printed(list), names({"00000106b P/n", "00000106c Q/A/n"}));
    QCOMPARE(map.size(), 2);
}

QTEST_GUILESS_MAIN(TestParameterDescription)
#include "tst_parameterdescription.moc"
