// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/XmlDocument.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

// XML from outside is looked at before a tree is built, and what is written can be read back.

namespace
{

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

QString unit(char16_t code)
{
    return QString(QChar(code));
}

QByteArray nested(int depth)
{
    QByteArray document;
    for (int i = 0; i < depth; ++i) {
        document += "<a>";
    }
    for (int i = 0; i < depth; ++i) {
        document += "</a>";
    }
    return document;
}

// The value as it comes back from a document that was written with it.
bool readBack(const QString &value, QString *result)
{
    QDomDocument document;
    QDomElement root = document.createElement(text("root"));
    document.appendChild(root);
    QDomElement child = document.createElement(text("child"));
    root.appendChild(child);
    XmlDocument::appendText(&document, &child, value);
    QDomDocument parsed;
    QString message;
    int line = 0;
    if (!XmlDocument::parse(document.toByteArray(4), &parsed, &message, &line)) {
        *result = message;
        return false;
    }
    *result = parsed.documentElement().firstChildElement(text("child")).text();
    return true;
}

QString written(const QDomNode &node)
{
    QString result;
    QTextStream stream(&result);
    node.save(stream, -1);
    return result;
}

} // namespace

class TestXmlDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodTextGivesItsTree();
    void theTreeIsThatOfTheToolkitsOwnParser_data();
    void theTreeIsThatOfTheToolkitsOwnParser();
    void commentsAndInstructionsAreLeftOut();
    void documentTypesOutOfPlaceAreRefused_data();
    void documentTypesOutOfPlaceAreRefused();
    void sixtyFourLevelsAreTakenAndSixtyFiveRefused();
    void aMillionLevelsAreRefusedAtOnce();
    void declaredEntitiesAreRefused_data();
    void declaredEntitiesAreRefused();
    void theFivePredefinedEntitiesAndCharacterReferencesAreRead();
    void malformedTextTellsMessageAndLine_data();
    void malformedTextTellsMessageAndLine();
    void sixteenMegabytesAreTheLimit();
    void everyUsualEncodingIsRead_data();
    void everyUsualEncodingIsRead();
    void aThousandAttributesAreTakenAndOneMoreRefused();
    void halfAMillionElementsAreTakenAndOneMoreRefused();
    void attributesOfAllElementsAreLimited();
    void attributesAreCountedWhereTheyAreAlone_data();
    void attributesAreCountedWhereTheyAreAlone();
    void defaultAttributesAreRefused();
    void hostileBreadthIsRefusedInGoodTime_data();
    void hostileBreadthIsRefusedInGoodTime();
    void everyForbiddenCharacterIsWrittenAsAQuestionMark();
    void surrogatesAreKeptInPairsOnly_data();
    void surrogatesAreKeptInPairsOnly();
    void awkwardTextsComeBackAsTheyWent_data();
    void awkwardTextsComeBackAsTheyWent();
    void carriageReturnsAmongBlanksAloneComeBackAsLineEnds_data();
    void carriageReturnsAmongBlanksAloneComeBackAsLineEnds();
    void randomUnicodeComesBackAsItsWritableForm();
};

void TestXmlDocument::goodTextGivesItsTree()
{
    QDomDocument document;
    QString message;
    int line = 0;
    QVERIFY(
        XmlDocument::parse("<!DOCTYPE T>\n<a b=\"1\"><c>x</c></a>", &document, &message, &line));
    QCOMPARE(document.doctype().name(), text("T"));
    QCOMPARE(document.documentElement().attribute(text("b")), text("1"));
    QCOMPARE(document.documentElement().firstChildElement(text("c")).text(), text("x"));
}

void TestXmlDocument::theTreeIsThatOfTheToolkitsOwnParser_data()
{
    QTest::addColumn<QByteArray>("document");
    const auto row = [](const char *name, const char *document) {
        QTest::newRow(name) << QByteArray(document);
    };
    row("with a document type", "<!DOCTYPE T><a/>");
    row("with an outside document type", "<!DOCTYPE T SYSTEM 'nowhere.dtd'><a>x</a>");
    row("without a document type", "<a/>");
    row("attributes", "<a b='1' c='&lt;&#10;2'><d b='3'/></a>");
    row("names of other spaces", "<a xmlns='u:v' xmlns:p='u:w' p:b='1' b='2'><p:c/><d/></a>");
    row("text beside elements", "<a>x<b>y</b> z <b/></a>");
    row("blanks between elements", "<a>\n    <b> </b>\n    <c>\t</c>\n</a>");
    row("a section of blanks", "<a><![CDATA[  ]]></a>");
    row("a section in a text", "<a>x<![CDATA[<y>]]>&amp;z</a>");
}

void TestXmlDocument::theTreeIsThatOfTheToolkitsOwnParser()
{
    QFETCH(QByteArray, document);
    QDomDocument expected;
    QVERIFY(expected.setContent(QString::fromUtf8(document), true));
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse(document, &tree, &message, &line), qPrintable(message));
    QCOMPARE(written(tree.documentElement()), written(expected.documentElement()));
    QCOMPARE(tree.doctype().name(), expected.doctype().name());
}

void TestXmlDocument::commentsAndInstructionsAreLeftOut()
{
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY(XmlDocument::parse("<?xml version='1.0'?><!--a--><?b c?><d>x<!--e-->y<?f?></d><!--g-->",
                               &tree, &message, &line));
    QCOMPARE(written(tree), text("<d>xy</d>"));
}

void TestXmlDocument::documentTypesOutOfPlaceAreRefused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("a second") << QByteArray("<!DOCTYPE a><!DOCTYPE b><a/>");
    QTest::newRow("within") << QByteArray("<a><!DOCTYPE a></a>");
    QTest::newRow("behind") << QByteArray("<a/><!DOCTYPE a>");
}

void TestXmlDocument::documentTypesOutOfPlaceAreRefused()
{
    QFETCH(QByteArray, document);
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY(!XmlDocument::parse(document, &tree, &message, &line));
    QVERIFY(tree.isNull());
    QCOMPARE(line, 1);
}

void TestXmlDocument::sixtyFourLevelsAreTakenAndSixtyFiveRefused()
{
    QDomDocument document;
    QString message;
    int line = 0;
    QVERIFY(XmlDocument::parse(nested(64), &document, &message, &line));
    QVERIFY(!XmlDocument::parse(nested(65), &document, &message, &line));
    QVERIFY(!message.isEmpty());
    QCOMPARE(line, 1);
    QVERIFY(document.documentElement().isNull());
}

void TestXmlDocument::aMillionLevelsAreRefusedAtOnce()
{
    QDomDocument document;
    QString message;
    int line = 0;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!XmlDocument::parse(nested(1000000), &document, &message, &line));
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
}

void TestXmlDocument::declaredEntitiesAreRefused_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("one harmless entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY e \"x\">]><a>&e;</a>");
    QTest::newRow("declared and not used") << QByteArray("<!DOCTYPE a [<!ENTITY e \"x\">]><a/>");
    QTest::newRow("external file")
        << QByteArray("<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>");
    QTest::newRow("parameter entity")
        << QByteArray("<!DOCTYPE a [<!ENTITY % p \"<!ENTITY e 'x'>\"> %p;]><a>&e;</a>");
    QTest::newRow("undeclared reference") << QByteArray("<a>&unknown;</a>");
    QTest::newRow("undeclared in an attribute") << QByteArray("<a b=\"&unknown;\"/>");
    QByteArray bomb = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    for (int i = 1; i < 12; ++i) {
        bomb += "<!ENTITY e" + QByteArray::number(i) + " \"";
        for (int j = 0; j < 10; ++j) {
            bomb += "&e" + QByteArray::number(i - 1) + ";";
        }
        bomb += "\">";
    }
    QTest::newRow("bomb") << bomb + "]><a>&e11;</a>";
    QTest::newRow("bomb in an attribute") << bomb + "]><a b=\"&e11;\"/>";
}

void TestXmlDocument::declaredEntitiesAreRefused()
{
    QFETCH(QByteArray, document);
    QDomDocument tree;
    QString message;
    int line = 0;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!XmlDocument::parse(document, &tree, &message, &line));
    QVERIFY(timer.elapsed() < 5000);
    QVERIFY(!message.isEmpty());
    QCOMPARE(line, 1);
    QVERIFY(tree.documentElement().isNull());
}

void TestXmlDocument::theFivePredefinedEntitiesAndCharacterReferencesAreRead()
{
    QDomDocument document;
    QString message;
    int line = 0;
    QVERIFY(XmlDocument::parse("<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;</a>", &document, &message,
                               &line));
    QCOMPARE(document.documentElement().text(), text("<>&\"'AB"));
}

void TestXmlDocument::malformedTextTellsMessageAndLine_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<int>("line");
    QTest::newRow("empty") << QByteArray() << 1;
    QTest::newRow("blanks alone") << QByteArray("  \n ") << 2;
    QTest::newRow("no XML") << QByteArray("hello") << 1;
    QTest::newRow("unclosed") << QByteArray("<a>\n<b>\n") << 3;
    QTest::newRow("mismatched") << QByteArray("<a>\n</b>") << 2;
    QTest::newRow("two roots") << QByteArray("<a/>\n<b/>") << 2;
    QTest::newRow("double attribute") << QByteArray("<a b=\"\" b=\"\"/>") << 1;
    QTest::newRow("binary") << QByteArray("\x00\x01\x02\xFF\xFE", 5) << 1;
    QTest::newRow("bad UTF-8") << QByteArray("<a>\n\xFF\xFF</a>") << 1;
    QTest::newRow("control character") << QByteArray("<a>\n\n\x01</a>") << 3;
    QTest::newRow("undeclared prefix") << QByteArray("<p:a/>") << 1;
}

void TestXmlDocument::malformedTextTellsMessageAndLine()
{
    QFETCH(QByteArray, document);
    QFETCH(int, line);
    QDomDocument tree;
    QString message;
    int told = -1;
    QVERIFY(!XmlDocument::parse(document, &tree, &message, &told));
    QVERIFY(!message.isEmpty());
    QCOMPARE(told, line);
    QVERIFY(tree.documentElement().isNull());
}

void TestXmlDocument::sixteenMegabytesAreTheLimit()
{
    QDomDocument document;
    QString message;
    int line = 0;
    const qsizetype limit = 16 * 1024 * 1024;
    const QByteArray frame = "<a></a>";
    const QByteArray full = "<a>" + QByteArray(limit - frame.size(), 'x') + "</a>";
    QVERIFY(XmlDocument::parse(full, &document, &message, &line));
    QVERIFY(!XmlDocument::parse(full + '\n', &document, &message, &line));
    QVERIFY(!message.isEmpty());
    QVERIFY(document.documentElement().isNull());
}

void TestXmlDocument::everyUsualEncodingIsRead_data()
{
    QTest::addColumn<QByteArray>("document");
    const QString plain = QStringLiteral("<a>\u00E4\u20AC</a>");
    const auto encoded = [](const QString &value, QStringConverter::Encoding encoding,
                            QStringConverter::Flag flag) {
        QStringEncoder encoder(encoding, flag);
        return QByteArray(encoder.encode(value));
    };
    using Flag = QStringConverter::Flag;
    QTest::newRow("UTF-8") << plain.toUtf8();
    QTest::newRow("UTF-8 with a mark") << encoded(plain, QStringConverter::Utf8, Flag::WriteBom);
    QTest::newRow("UTF-8 declared")
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + plain.toUtf8();
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE,
                                QStringConverter::Utf32LE, QStringConverter::Utf32BE}) {
        QTest::addRow("%s with a mark", QStringConverter::nameForEncoding(encoding))
            << encoded(plain, encoding, Flag::WriteBom);
        QTest::addRow("%s", QStringConverter::nameForEncoding(encoding))
            << encoded(plain, encoding, Flag::Default);
    }
    QTest::newRow("UTF-16 declared and marked")
        << encoded(text("<?xml version=\"1.0\" encoding=\"UTF-16\"?>") + plain,
                   QStringConverter::Utf16LE, Flag::WriteBom);
    QTest::newRow("Latin 1 declared")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE4&#x20AC;</a>");
}

void TestXmlDocument::everyUsualEncodingIsRead()
{
    QFETCH(QByteArray, document);
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse(document, &tree, &message, &line), qPrintable(message));
    QCOMPARE(tree.documentElement().text(), QStringLiteral("\u00E4\u20AC"));
}

void TestXmlDocument::aThousandAttributesAreTakenAndOneMoreRefused()
{
    QByteArray tag = "\n<a";
    for (int i = 0; i < 1000; ++i) {
        tag += " a" + QByteArray::number(i) + "='>'";
    }
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse(tag + "/>", &tree, &message, &line), qPrintable(message));
    QVERIFY(!XmlDocument::parse(tag + " b='x'/>", &tree, &message, &line));
    QCOMPARE(line, 2);
    QVERIFY(!message.isEmpty());
    QVERIFY(tree.documentElement().isNull());
}

void TestXmlDocument::halfAMillionElementsAreTakenAndOneMoreRefused()
{
    const QByteArray children = QByteArray("<b/>").repeated(499999);
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse("<a>" + children + "</a>", &tree, &message, &line),
             qPrintable(message));
    QVERIFY(!XmlDocument::parse("<a>" + children + "<b/></a>", &tree, &message, &line));
    QVERIFY(!message.isEmpty());
    QVERIFY(tree.documentElement().isNull());
}

void TestXmlDocument::attributesOfAllElementsAreLimited()
{
    QByteArray element = "<b";
    for (char letter = 'a'; letter < 'a' + 20; ++letter) {
        element += QByteArray(" ") + letter + "='1'";
    }
    element += "/>";
    const QByteArray children = element.repeated(10000);
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse("<a>" + children + "</a>", &tree, &message, &line),
             qPrintable(message));
    QVERIFY(!XmlDocument::parse("<a>\n" + children + "\n<b c='1'/></a>", &tree, &message, &line));
    QCOMPARE(message, text("The document has too many attributes."));
    QCOMPARE(line, 3);
    QVERIFY(tree.documentElement().isNull());
}

void TestXmlDocument::attributesAreCountedWhereTheyAreAlone_data()
{
    QTest::addColumn<QByteArray>("document");
    const QByteArray quotes = QByteArray(" b=\"\"").repeated(5000);
    QTest::newRow("text") << "<a>" + quotes + "</a>";
    QTest::newRow("section") << "<a><![CDATA[<b" + quotes + "]]></a>";
    QTest::newRow("comment") << "<a><!-- <b" + quotes + " --></a>";
    QTest::newRow("instruction") << "<a><?b <" + quotes + "?></a>";
    QTest::newRow("one attribute's value") << "<a b='" + quotes + "'/>";
    QTest::newRow("many elements") << "<a>" + QByteArray("<b c=\"'\"/>").repeated(5000) + "</a>";
}

void TestXmlDocument::attributesAreCountedWhereTheyAreAlone()
{
    QFETCH(QByteArray, document);
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY2(XmlDocument::parse(document, &tree, &message, &line), qPrintable(message));
}

void TestXmlDocument::defaultAttributesAreRefused()
{
    QDomDocument tree;
    QString message;
    int line = 0;
    QVERIFY(
        !XmlDocument::parse("<!DOCTYPE a [<!ATTLIST a b CDATA 'x'>]><a/>", &tree, &message, &line));
    QVERIFY(!message.isEmpty());
}

void TestXmlDocument::hostileBreadthIsRefusedInGoodTime_data()
{
    QTest::addColumn<QByteArray>("document");
    // Without a limit the attributes alone would take an hour.
    const qsizetype size = 4 * 1024 * 1024;
    QByteArray attributes = "<a";
    for (int i = 0; attributes.size() < size; ++i) {
        attributes += " a" + QByteArray::number(i) + "=\"\"";
    }
    QTest::newRow("attributes") << attributes + "/>";
    QByteArray elements = "<a>";
    while (elements.size() < size) {
        elements += "<b/>";
    }
    QTest::newRow("elements") << elements + "</a>";
    QTest::newRow("one long name") << "<" + QByteArray(size, 'n') + "/>";
    QByteArray namespaces = "<a";
    for (int i = 0; namespaces.size() < size; ++i) {
        namespaces += " xmlns:a" + QByteArray::number(i) + "=\"u\"";
    }
    QTest::newRow("namespaces") << namespaces + "/>";
}

void TestXmlDocument::hostileBreadthIsRefusedInGoodTime()
{
    QFETCH(QByteArray, document);
    QDomDocument tree;
    QString message;
    int line = 0;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!XmlDocument::parse(document, &tree, &message, &line));
    QVERIFY2(timer.elapsed() < 30000, qPrintable(QString::number(timer.elapsed())));
}

void TestXmlDocument::everyForbiddenCharacterIsWrittenAsAQuestionMark()
{
    for (int code = 0; code < 0x10000; ++code) {
        const auto c = static_cast<char16_t>(code);
        const bool isAllowed = c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) ||
                               (c >= 0xE000 && c <= 0xFFFD);
        QCOMPARE(XmlDocument::writable(unit(c)), isAllowed ? unit(c) : text("?"));
    }
}

void TestXmlDocument::surrogatesAreKeptInPairsOnly_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    const QString high = unit(0xD83D);
    const QString low = unit(0xDE00);
    QTest::newRow("pair") << high + low << high + low;
    QTest::newRow("high alone") << high << text("?");
    QTest::newRow("low alone") << low << text("?");
    QTest::newRow("high at the end") << text("a") + high << text("a?");
    QTest::newRow("low first") << low + high << text("??");
    QTest::newRow("high, pair") << high + high + low << text("?") + high + low;
    QTest::newRow("pair, low") << high + low + low << high + low + text("?");
    QTest::newRow("high, letter") << high + text("a") << text("?a");
    QTest::newRow("empty") << QString() << QString();
}

void TestXmlDocument::surrogatesAreKeptInPairsOnly()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QCOMPARE(XmlDocument::writable(before), after);
}

void TestXmlDocument::awkwardTextsComeBackAsTheyWent_data()
{
    QTest::addColumn<QString>("value");
    for (const char *value :
         {"",     " ",     "   ",  "\t",     "\n",  "\n\n", " \t\n", "a ",    " a",
          " a ",  "a\nb",  "a\rb", "a\r\nb", "\ra", "a\r",  "]]>",   " ]]> ", "<![CDATA[x]]>",
          "<b>",  "&amp;", "&",    "\"'",    "-->", "<!--", "?>",    "\x7F",  "\x85",
          "\xA0", "\xA0 "}) {
        QTest::newRow(QByteArray(value).toPercentEncoding().prepend('\'').append('\''))
            << QString::fromLatin1(value);
    }
    QTest::newRow("line separator") << unit(0x2028);
    QTest::newRow("byte order mark") << unit(0xFEFF);
    QTest::newRow("wide blank") << unit(0x3000);
    QTest::newRow("emoji") << unit(0xD83D) + unit(0xDE00);
    QTest::newRow("last code point but two") << unit(0xDBFF) + unit(0xDFFD);
}

void TestXmlDocument::awkwardTextsComeBackAsTheyWent()
{
    QFETCH(QString, value);
    QString result;
    QVERIFY2(readBack(value, &result), qPrintable(result));
    QCOMPARE(result, value);
}

void TestXmlDocument::randomUnicodeComesBackAsItsWritableForm()
{
    QRandomGenerator random(20240131);
    for (int round = 0; round < 3000; ++round) {
        QString value;
        const int length = random.bounded(12);
        for (int i = 0; i < length; ++i) {
            switch (random.bounded(4)) {
            case 0:
                value += unit(static_cast<char16_t>(random.bounded(0x10000)));
                break;
            case 1:
                value += unit(static_cast<char16_t>(random.bounded(0x30)));
                break;
            case 2:
                value += unit(static_cast<char16_t>(0xD7F0 + random.bounded(0x820)));
                break;
            default:
                value += QString::fromLatin1("]<>&\" \r\n\t").at(random.bounded(9));
                break;
            }
        }
        QString result;
        QVERIFY2(readBack(value, &result), qPrintable(result));
        QString expected = XmlDocument::writable(value);
        if (expected.trimmed().isEmpty()) {
            expected.replace(text("\r\n"), text("\n")).replace(u'\r', u'\n');
        }
        QCOMPARE(result, expected);
    }
}

void TestXmlDocument::carriageReturnsAmongBlanksAloneComeBackAsLineEnds_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("back");
    QTest::newRow("alone") << text("\r") << text("\n");
    QTest::newRow("with its line feed") << text("\r\n") << text("\n");
    QTest::newRow("between blanks") << text(" \r ") << text(" \n ");
    QTest::newRow("twice") << text("\r\r") << text("\n\n");
}

void TestXmlDocument::carriageReturnsAmongBlanksAloneComeBackAsLineEnds()
{
    QFETCH(QString, value);
    QFETCH(QString, back);
    QString result;
    QVERIFY2(readBack(value, &result), qPrintable(result));
    QCOMPARE(result, back);
}

QTEST_APPLESS_MAIN(TestXmlDocument)
#include "tst_xmldocument.moc"
