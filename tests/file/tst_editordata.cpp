// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "file/EditorData.h"
#include "file/EditorFileHarness.h"

#include <QtTest/QtTest>

#include <memory>

// Memory to XML elements and back, and the two forms of remote identifiers.

namespace
{

QDomElement parsed(const QByteArray &xml)
{
    QDomDocument document;
    document.setContent(xml, true);
    return document.documentElement();
}

QByteArray knobXml(const QByteArray &displayName, const QByteArray &cc, const QByteArray &format,
                   const QByteArray &remote)
{
    return "<controller><displayname>" + displayName + "</displayname><ccnumber>" + cc +
           "</ccnumber><displayformat>" + format + "</displayformat><remotenumber>" + remote +
           "</remotenumber></controller>";
}

} // namespace

class TestEditorData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void emptyTagsTakeTheirDefaults();
    void aKnobElementHasItsFourChildrenInOrder();
    void aTemplateElementHasItsChildrenInOrder();
    void aBankElementWithoutEditBufferHoldsItsTemplatesAlone();
    void aBankElementWithEditBufferHoldsBothAndTheNumber();
    void aKnobComesBackAtAnotherPlace();
    void aTemplateComesBackAtAnotherPlace();
    void aNullElementIsFalse();
    void anotherTagIsFalseAndReadsNothing();
    void aBankOfAnotherDocumentTypeIsTrueAndReadsNothing();
    void templatesAndKnobsAreReadForEveryDocumentType();
    void eachMissingChildMakesThePartFailAndTheRestIsRead_data();
    void eachMissingChildMakesThePartFailAndTheRestIsRead();
    void emptyChildrenWriteEmptyTextsAndZero();
    void numbersAreParsedInDecimal_data();
    void numbersAreParsedInDecimal();
    void aDisplayNameOfSixteenLeavesTheOldNameAndSucceeds();
    void aRemoteNumberInCapitalsIsStoredInLowerCase();
    void onlyTheRemoteNumberIsTurnedToLowerCase();
    void theFirstChildOfATagCounts();
    void aMissingTemplateDoesNotStopTheOthers();
    void clipboardDocumentsComeBack();

    void vdIdentifiersTranslateToT_data();
    void vdIdentifiersTranslateToT();
    void tIdentifiersTranslateToVd_data();
    void tIdentifiersTranslateToVd();
    void typeAndContentsOfATIdentifier_data();
    void typeAndContentsOfATIdentifier();
    void tIdentifiersComeBackFromVd();

private:
    std::unique_ptr<RemoteMemAPI> m_api;
    QDomDocument m_document;
    RemoteMemAPI *api() { return m_api.get(); }
};

void TestEditorData::init()
{
    m_api = std::make_unique<RemoteMemAPI>();
    makeNineBanks(api());
    fillDocument(api());
    m_document = QDomDocument();
}

void TestEditorData::emptyTagsTakeTheirDefaults()
{
    const QString none;
    QCOMPARE(EditorData::getBankDomElement(api(), &m_document, 0, none, false).tagName(),
             latin("bank"));
    QCOMPARE(EditorData::getTemplateDomElement(api(), &m_document, 0, 0, none).tagName(),
             latin("template"));
    QCOMPARE(EditorData::getControllerDomElement(api(), &m_document, 0, 0, 0, none).tagName(),
             latin("controller"));
    QCOMPARE(EditorData::getControllerDomElement(api(), &m_document, 0, 0, 0, latin("x")).tagName(),
             latin("x"));
}

void TestEditorData::aKnobElementHasItsFourChildrenInOrder()
{
    m_document.appendChild(
        EditorData::getControllerDomElement(api(), &m_document, 0, 3, 2, QString()));
    QCOMPARE(m_document.toByteArray(-1).simplified(), knobXml("K2 E3", "38", "1", "200000026"));
}

void TestEditorData::aTemplateElementHasItsChildrenInOrder()
{
    m_document.appendChild(
        EditorData::getTemplateDomElement(api(), &m_document, 1, 49, latin("t")));
    QCOMPARE(m_document.toByteArray(4), printedTemplate(*m_api, 1, 49, "t", ""));
}

void TestEditorData::aBankElementWithoutEditBufferHoldsItsTemplatesAlone()
{
    const QDomElement bank = EditorData::getBankDomElement(api(), &m_document, 1, QString(), false);
    QCOMPARE(bank.childNodes().count(), 50);
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(bank.childNodes().at(i).nodeName(), QStringLiteral("template%1").arg(i + 1));
    }
}

void TestEditorData::aBankElementWithEditBufferHoldsBothAndTheNumber()
{
    const QDomElement bank = EditorData::getBankDomElement(api(), &m_document, 1, QString(), true);
    QCOMPARE(bank.childNodes().count(), 101);
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(bank.childNodes().at(50 + i).nodeName(),
                 QStringLiteral("editBuffTemplate%1").arg(i + 1));
    }
    const QDomElement info = bank.lastChildElement();
    QCOMPARE(info.tagName(), latin("bankInfo"));
    QCOMPARE(info.firstChildElement(latin("templateNumber")).text(), latin("31"));
}

void TestEditorData::aKnobComesBackAtAnotherPlace()
{
    const QDomElement element =
        EditorData::getControllerDomElement(api(), &m_document, 1, 7, 5, QString());
    QVERIFY(EditorData::setControllerDomElement(api(), element, 4, 30, 11, KnobDocType, QString()));
    QVERIFY(m_api->getTemplateData(4, 30).getController(11) ==
            m_api->getTemplateData(1, 7).getController(5));
}

void TestEditorData::aTemplateComesBackAtAnotherPlace()
{
    const QDomElement element =
        EditorData::getTemplateDomElement(api(), &m_document, 1, 7, QString());
    QVERIFY(EditorData::setTemplateDomElement(api(), element, 4, 30, TemplateDocType, QString()));
    QVERIFY(m_api->getTemplateData(4, 30) == m_api->getTemplateData(1, 7));
}

void TestEditorData::aNullElementIsFalse()
{
    const QDomElement null;
    const QString type = EditorData::DocType;
    QVERIFY(!EditorData::setBankDomElement(api(), null, 4, type, false, QString()));
    QVERIFY(!EditorData::setBankDomElement(api(), null, 4, latin("other"), false, QString()));
    QVERIFY(!EditorData::setTemplateDomElement(api(), null, 4, 0, type, QString()));
    QVERIFY(!EditorData::setControllerDomElement(api(), null, 4, 0, 0, type, QString()));
    QVERIFY(!EditorData::setNumericParamFromDomElement(api(), null, type, latin("x"), 4, 0, 0, 1));
    QVERIFY(!setStringParamFromDomElement(api(), null, type, latin("x"), 4, 0, 0, 0));
}

void TestEditorData::anotherTagIsFalseAndReadsNothing()
{
    const QStringList before = contentOf(*m_api, 4);
    const QDomElement bank = EditorData::getBankDomElement(api(), &m_document, 1, QString(), true);
    const QDomElement template_ = bank.firstChildElement();
    const QDomElement knob = template_.firstChildElement(latin("knobA1"));
    const QString type = EditorData::DocType;
    QVERIFY(!EditorData::setBankDomElement(api(), bank, 4, type, false, latin("x")));
    QVERIFY(!EditorData::setTemplateDomElement(api(), template_, 4, 0, type, latin("x")));
    QVERIFY(!EditorData::setControllerDomElement(api(), knob, 4, 0, 0, type, latin("x")));
    QCOMPARE(contentOf(*m_api, 4), before);
    QVERIFY(EditorData::setBankDomElement(api(), bank, 4, type, false, latin("bank")));
    QVERIFY(contentOf(*m_api, 4) != before);
}

void TestEditorData::aBankOfAnotherDocumentTypeIsTrueAndReadsNothing()
{
    const QStringList before = contentOf(*m_api, 4);
    const QDomElement bank = EditorData::getBankDomElement(api(), &m_document, 1, QString(), true);
    QVERIFY(EditorData::setBankDomElement(api(), bank, 4, BankDocType, false, QString()));
    QVERIFY(EditorData::setBankDomElement(api(), parsed("<bank/>"), 4, QString(), true, QString()));
    QCOMPARE(contentOf(*m_api, 4), before);
}

void TestEditorData::templatesAndKnobsAreReadForEveryDocumentType()
{
    QVERIFY(EditorData::setControllerDomElement(
        api(), parsed(knobXml("Name", "5", "1", "000000001")), 4, 0, 0, latin("any"), QString()));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 0, 0)), latin("Name"));
}

void TestEditorData::eachMissingChildMakesThePartFailAndTheRestIsRead_data()
{
    QTest::addColumn<QString>("missing");
    for (const char *tag : {"displayname", "ccnumber", "displayformat", "remotenumber", "name",
                            "vstiname", "controltype"}) {
        QTest::newRow(tag) << latin(tag);
    }
    for (const char *tag : KnobTags) {
        QTest::newRow(tag) << latin(tag);
    }
}

void TestEditorData::eachMissingChildMakesThePartFailAndTheRestIsRead()
{
    QFETCH(QString, missing);
    QDomElement element = EditorData::getTemplateDomElement(api(), &m_document, 1, 7, QString());
    const bool isOfKnob = element.firstChildElement(missing).isNull();
    QDomElement parent = isOfKnob ? element.firstChildElement(latin("knobC2")) : element;
    parent.removeChild(parent.firstChildElement(missing));
    const ControlTemplateData before = m_api->getTemplateData(4, 30);
    QVERIFY(
        !EditorData::setTemplateDomElement(api(), element, 4, 30, EditorData::DocType, QString()));
    // All but that one part is the source's.
    int differences = 0;
    for (int k = 0; k < 12; ++k) {
        for (int p = 0; p < 4; ++p) {
            const ParamAddress to(4, 30, k, p);
            const ParamAddress from(1, 7, k, p);
            if (m_api->getParamQString(to) != m_api->getParamQString(from) ||
                valueAt(*m_api, to) != valueAt(*m_api, from)) {
                ++differences;
            }
        }
    }
    for (const int c : {13, 14, 15}) {
        const ParamAddress to(4, 30, c, -1);
        const ParamAddress from(1, 7, c, -1);
        if (m_api->getParamQString(to) != m_api->getParamQString(from) ||
            valueAt(*m_api, to) != valueAt(*m_api, from)) {
            ++differences;
        }
    }
    QVERIFY(differences <= (missing.startsWith(latin("knob")) ? 4 : 1));
    QVERIFY(!(m_api->getTemplateData(4, 30) == before));
}

void TestEditorData::emptyChildrenWriteEmptyTextsAndZero()
{
    m_api->setParam(ParamAddress(4, 0, 0, 0), latin("Old"));
    m_api->setParam(ParamAddress(4, 0, 0, 1), 99);
    m_api->setParam(ParamAddress(4, 0, 0, 2), 1);
    QVERIFY(EditorData::setControllerDomElement(api(), parsed(knobXml("", "", "", "")), 4, 0, 0,
                                                KnobDocType, QString()));
    QVERIFY(m_api->getParamQString(ParamAddress(4, 0, 0, 0)).isEmpty());
    QCOMPARE(valueAt(*m_api, ParamAddress(4, 0, 0, 1)), 0);
    QCOMPARE(valueAt(*m_api, ParamAddress(4, 0, 0, 2)), 0);
    QVERIFY(m_api->getParamQString(ParamAddress(4, 0, 0, 3)).isEmpty());
}

void TestEditorData::numbersAreParsedInDecimal_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<int>("value"); // 64 was there before
    QTest::newRow("plain") << QByteArray("74") << 74;
    QTest::newRow("leading zeros are no octal") << QByteArray("0010") << 10;
    QTest::newRow("plus") << QByteArray("+5") << 5;
    QTest::newRow("blanks around") << QByteArray(" 5 ") << 5;
    QTest::newRow("no number") << QByteArray("abc") << 0;
    QTest::newRow("hexadecimal is no number") << QByteArray("0x10") << 0;
    QTest::newRow("fraction is no number") << QByteArray("1.5") << 0;
    QTest::newRow("number and letters") << QByteArray("12a") << 0;
    QTest::newRow("127") << QByteArray("127") << 127;
    QTest::newRow("128 is out of range") << QByteArray("128") << 64;
    QTest::newRow("200 is out of range") << QByteArray("200") << 64;
    QTest::newRow("-1 is out of range") << QByteArray("-1") << 64;
    QTest::newRow("2 to the 32 plus 5") << QByteArray("4294967301") << 64;
    QTest::newRow("2 to the 64 plus 5") << QByteArray("18446744073709551621") << 64;
    QTest::newRow("thirty digits") << QByteArray(30, '9') << 64;
    QTest::newRow("minus thirty digits") << "-" + QByteArray(30, '9') << 64;
}

void TestEditorData::numbersAreParsedInDecimal()
{
    QFETCH(QByteArray, written);
    QFETCH(int, value);
    m_api->setParam(ParamAddress(4, 0, 0, 1), 64);
    QVERIFY(EditorData::setNumericParamFromDomElement(
        api(), parsed("<a><n>" + written + "</n></a>"), QString(), latin("n"), 4, 0, 0, 1));
    QCOMPARE(valueAt(*m_api, ParamAddress(4, 0, 0, 1)), value);
}

void TestEditorData::aDisplayNameOfSixteenLeavesTheOldNameAndSucceeds()
{
    m_api->setParam(ParamAddress(4, 0, 0, 0), latin("Old"));
    QVERIFY(EditorData::setControllerDomElement(
        api(), parsed(knobXml("1234567890123456", "1", "1", "1234567890")), 4, 0, 0, KnobDocType,
        QString()));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 0, 0)), latin("Old"));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 0, 3)), latin("204143dff"));
}

void TestEditorData::aRemoteNumberInCapitalsIsStoredInLowerCase()
{
    QVERIFY(EditorData::setControllerDomElement(api(), parsed(knobXml("", "1", "1", "1ABCDEF09")),
                                                4, 0, 0, KnobDocType, QString()));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 0, 3)), latin("1abcdef09"));
}

void TestEditorData::onlyTheRemoteNumberIsTurnedToLowerCase()
{
    QVERIFY(setStringParamFromDomElement(api(), parsed("<a><remotenumber>ABC</remotenumber></a>"),
                                         QString(), latin("remotenumber"), 4, 0, 13, -1));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 13, -1)), latin("abc"));
    QVERIFY(setStringParamFromDomElement(api(), parsed("<a><name>ABC</name></a>"), QString(),
                                         latin("name"), 4, 0, 13, -1));
    QCOMPARE(m_api->getParamQString(ParamAddress(4, 0, 13, -1)), latin("ABC"));
}

void TestEditorData::theFirstChildOfATagCounts()
{
    QVERIFY(EditorData::setNumericParamFromDomElement(api(), parsed("<a><n>5</n><n>6</n></a>"),
                                                      QString(), latin("n"), 4, 0, 0, 1));
    QCOMPARE(valueAt(*m_api, ParamAddress(4, 0, 0, 1)), 5);
}

void TestEditorData::aMissingTemplateDoesNotStopTheOthers()
{
    QDomElement bank = EditorData::getBankDomElement(api(), &m_document, 1, QString(), true);
    bank.removeChild(bank.firstChildElement(latin("template1")));
    bank.removeChild(bank.firstChildElement(latin("editBuffTemplate50")));
    const QString type = EditorData::DocType;
    QVERIFY(!EditorData::setBankDomElement(api(), bank, 4, type, false, QString()));
    QVERIFY(m_api->getTemplateData(4, 49) == m_api->getTemplateData(1, 49));
    QVERIFY(!EditorData::setBankDomElement(api(), bank, 5, type, true, QString()));
    QVERIFY(m_api->getTemplateData(5, 48) == m_api->getTemplateData(0, 48));
}

void TestEditorData::clipboardDocumentsComeBack()
{
    QDomDocument document(TemplateDocType);
    QDomElement root = EditorData::getTemplateDomElement(api(), &document, 1, 7, QString());
    root.setAttribute(EditorData::AttributeTemplateNumber, 7);
    root.setAttribute(EditorData::AttributeBankNumber, 1);
    document.appendChild(root);
    QDomDocument pasted;
    QVERIFY(pasted.setContent(document.toByteArray(1), true));
    QCOMPARE(pasted.doctype().name(), latin("TARN_TERN_RemoteEditorTemplate"));
    QCOMPARE(pasted.documentElement().attribute(latin("number")), latin("7"));
    QCOMPARE(pasted.documentElement().attribute(latin("banknumber")), latin("1"));
    QVERIFY(EditorData::setTemplateDomElement(api(), pasted.documentElement(), 4, 9,
                                              pasted.doctype().name(), QString()));
    QVERIFY(m_api->getTemplateData(4, 9) == m_api->getTemplateData(1, 7));
    QCOMPARE(EditorData::AttributeKnobNumber, latin("number"));
}

// --- Remote identifiers --------------------------------------------------------------------------

void TestEditorData::vdIdentifiersTranslateToT_data()
{
    QTest::addColumn<QString>("vd");
    QTest::addColumn<QString>("t");
    QTest::newRow("type 2, contents 1") << latin("20000000001") << latin("200000001");
    QTest::newRow("nothing") << latin("") << latin("000000000");
    QTest::newRow("short: padded, so type 0") << latin("268435455") << latin("00fffffff");
    QTest::newRow("ten characters: padded too") << latin("2000000001") << latin("077359401");
    QTest::newRow("largest of 32 bits") << latin("14294967295") << latin("1ffffffff");
    QTest::newRow("lower case digits") << latin("10000000171") << latin("1000000ab");
    QTest::newRow("not assigned") << latin("20068435455") << latin("204143dff");
    QTest::newRow("no digits") << latin("2abcdefghij") << latin("200000000");
}

void TestEditorData::vdIdentifiersTranslateToT()
{
    QFETCH(QString, vd);
    QFETCH(QString, t);
    QCOMPARE(EditorData::translateVdremoteparam2Tremoteparam(vd), t);
}

void TestEditorData::tIdentifiersTranslateToVd_data()
{
    QTest::addColumn<QString>("t");
    QTest::addColumn<QString>("vd");
    QTest::newRow("type 2, contents 1") << latin("200000001") << latin("20000000001");
    QTest::newRow("not assigned") << latin("204143dff") << latin("20068435455");
    QTest::newRow("capitals") << latin("1FFFFFFFF") << latin("14294967295");
    QTest::newRow("zero") << latin("000000000") << latin("00000000000");
    QTest::newRow("short") << latin("1") << latin("10000000001");
    QTest::newRow("empty") << latin("") << latin("0000000000");
    QTest::newRow("no digits") << latin("1zzzzzzzz") << latin("10000000000");
}

void TestEditorData::tIdentifiersTranslateToVd()
{
    QFETCH(QString, t);
    QFETCH(QString, vd);
    QCOMPARE(EditorData::translateTremoteparam2Vdremoteparam(t), vd);
}

void TestEditorData::typeAndContentsOfATIdentifier_data()
{
    QTest::addColumn<QString>("t");
    QTest::addColumn<unsigned>("type");
    QTest::addColumn<unsigned>("contents");
    QTest::newRow("not assigned") << latin("204143dff") << 2u << 0x04143dffu;
    QTest::newRow("largest") << latin("fffffffff") << 15u << 0xffffffffu;
    QTest::newRow("eight characters") << latin("12345678") << 1u << 0x12345678u;
    QTest::newRow("empty") << latin("") << 0u << 0u;
    QTest::newRow("no digits") << latin("xyz") << 0u << 0u;
}

void TestEditorData::typeAndContentsOfATIdentifier()
{
    QFETCH(QString, t);
    QFETCH(unsigned, type);
    QFETCH(unsigned, contents);
    QCOMPARE(EditorData::getRemoteParamTypeFromTRemoteStringParam(t), type);
    QCOMPARE(EditorData::getRemoteParamContentsFromTRemoteStringParam(t), contents);
}

void TestEditorData::tIdentifiersComeBackFromVd()
{
    QRandomGenerator random(4711);
    for (int i = 0; i < 2000; ++i) {
        const QString t = QStringLiteral("%1%2")
                              .arg(random.bounded(10))
                              .arg(random.generate(), 8, 16, QLatin1Char('0'));
        const QString vd = EditorData::translateTremoteparam2Vdremoteparam(t);
        QCOMPARE(vd.size(), qsizetype(11));
        QCOMPARE(EditorData::translateVdremoteparam2Tremoteparam(vd), t);
    }
}

QTEST_GUILESS_MAIN(TestEditorData)
#include "tst_editordata.moc"
