// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FontHelpers.h"

#include <QtTest/QtTest>

#include <QtGui/QFontMetrics>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

// Fitting fonts and texts to the interface: which widgets get which font, and where a text is cut.

namespace
{

const QString Small = QStringLiteral("Corvan QRL 8");
const QString Large = QStringLiteral("Corvan QRL 10");
const QString Expanded = QStringLiteral("Corvan QRL8 Expanded");

// The rule itself, without regard to time.
QString trimmedSlowly(const QFontMetrics &metrics, QString text, int width)
{
    if (metrics.horizontalAdvance(text) <= width) {
        return text;
    }
    do {
        text.chop(1);
        if (text.endsWith(QChar(0xD83D))) {
            // Half of a pair is not left behind.
            text.chop(1);
        }
    } while (!text.isEmpty() && metrics.horizontalAdvance(text + QChar(0xFB02)) > width);
    return text.isEmpty() ? text : text + QChar(0xFB02);
}

} // namespace

class TestFontHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSmallFontGetsItsSizeAndSpacing();
    void aLargeFontGetsItsSize();
    void anotherFontStaysAsItIs_data();
    void anotherFontStaysAsItIs();
    void everyDescendantIsReached();
    void aWidgetWithoutAFontTakesItsParents();
    void aWidgetWithoutAFontUnderOneWithoutStaysWithout();
    void aNullWidgetIsNoError();

    void theTrimLabelIsOneCharacter();
    void aTextThatFitsIsReturnedAsItIs();
    void aWidthOfZeroGivesAnEmptyText_data();
    void aWidthOfZeroGivesAnEmptyText();
    void aCutTextFitsAndOneMoreCharacterWouldNot();
    void theCutIsThatOfTheRule_data();
    void theCutIsThatOfTheRule();
    void aPairOfSurrogatesIsNotTornApart();
    void aLongTextIsMeasuredAFewTimesOnly();
    void theWidgetsFontMeasures();
};

void TestFontHelpers::aSmallFontGetsItsSizeAndSpacing()
{
    QWidget widget;
    widget.setFont(QFont(Small, 20));
    adjustFont(&widget);
    QCOMPARE(widget.font().family(), Small);
    QCOMPARE(widget.font().pixelSize(), 8);
    // A tenth, as near as a font can hold it.
    QVERIFY(qAbs(widget.font().letterSpacing() - 0.1) < 1.0 / 64);
    QCOMPARE(widget.font().letterSpacingType(), QFont::AbsoluteSpacing);
    QCOMPARE(widget.font().styleHint(), QFont::AnyStyle);
    QCOMPARE(widget.font().styleStrategy(), QFont::NoAntialias);
}

void TestFontHelpers::aLargeFontGetsItsSize()
{
    QWidget widget;
    widget.setFont(QFont(Large, 20));
    adjustFont(&widget);
    QCOMPARE(widget.font().family(), Large);
    QCOMPARE(widget.font().pixelSize(), 10);
    QCOMPARE(widget.font().letterSpacing(), 0.0);
    QCOMPARE(widget.font().styleStrategy(), QFont::NoAntialias);
}

void TestFontHelpers::anotherFontStaysAsItIs_data()
{
    QTest::addColumn<QString>("family");
    QTest::newRow("expanded") << Expanded;
    QTest::newRow("other") << QStringLiteral("Some Other Family");
    QTest::newRow("nearly the same") << QStringLiteral("Corvan QRL 80");
}

void TestFontHelpers::anotherFontStaysAsItIs()
{
    QFETCH(QString, family);
    QWidget widget;
    widget.setFont(QFont(family, 20));
    const QFont before = widget.font();
    adjustFont(&widget);
    QCOMPARE(widget.font(), before);
}

void TestFontHelpers::everyDescendantIsReached()
{
    QWidget top;
    auto *frame = new QWidget(&top);
    auto *inner = new QWidget(frame);
    auto *label = new QLabel(inner);
    auto *button = new QPushButton(inner);
    new QObject(inner);
    label->setFont(QFont(Large, 20));
    button->setFont(QFont(Small, 20));
    adjustFont(&top);
    QCOMPARE(label->font().pixelSize(), 10);
    QCOMPARE(button->font().pixelSize(), 8);
    QVERIFY(!top.testAttribute(Qt::WA_SetFont));
    QVERIFY(!inner->testAttribute(Qt::WA_SetFont));
}

void TestFontHelpers::aWidgetWithoutAFontTakesItsParents()
{
    QWidget top;
    top.setFont(QFont(Small, 20));
    auto *inner = new QWidget(&top);
    auto *label = new QLabel(inner);
    adjustFont(&top);
    for (const QWidget *widget : {static_cast<QWidget *>(inner), static_cast<QWidget *>(label)}) {
        QVERIFY(widget->testAttribute(Qt::WA_SetFont));
        QCOMPARE(widget->font(), top.font());
        QCOMPARE(widget->font().pixelSize(), 8);
        QCOMPARE(widget->font().styleStrategy(), QFont::NoAntialias);
    }
}

void TestFontHelpers::aWidgetWithoutAFontUnderOneWithoutStaysWithout()
{
    QWidget top;
    auto *inner = new QWidget(&top);
    adjustFont(&top);
    QVERIFY(!inner->testAttribute(Qt::WA_SetFont));
    QCOMPARE(inner->font(), QApplication::font());
}

void TestFontHelpers::aNullWidgetIsNoError()
{
    adjustFont(nullptr);
    QCOMPARE(trimText(nullptr, QStringLiteral("text"), 1), QStringLiteral("text"));
}

void TestFontHelpers::theTrimLabelIsOneCharacter()
{
    QCOMPARE(TrimLabel, QString(QChar(0xFB02)));
}

void TestFontHelpers::aTextThatFitsIsReturnedAsItIs()
{
    QWidget widget;
    const QString text = QStringLiteral("Cutoff frequency");
    const int width = widget.fontMetrics().horizontalAdvance(text);
    QCOMPARE(trimText(&widget, text, width), text);
    QCOMPARE(trimText(&widget, text, width + 1), text);
    QVERIFY(trimText(&widget, text, width - 1) != text);
    QCOMPARE(trimText(&widget, QString(), 0), QString());
}

void TestFontHelpers::aWidthOfZeroGivesAnEmptyText_data()
{
    QTest::addColumn<int>("width");
    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("very negative") << INT_MIN;
    QTest::newRow("narrower than the label and a letter") << 3;
}

void TestFontHelpers::aWidthOfZeroGivesAnEmptyText()
{
    QFETCH(int, width);
    QWidget widget;
    QCOMPARE(trimText(&widget, QStringLiteral("WWWW"), width), QString());
    QCOMPARE(trimText(&widget, QStringLiteral("W"), width), QString());
}

void TestFontHelpers::aCutTextFitsAndOneMoreCharacterWouldNot()
{
    QWidget widget;
    const QFontMetrics metrics = widget.fontMetrics();
    const QString text = QStringLiteral("A parameter of a very long name");
    const QString cut = trimText(&widget, text, 100);
    QVERIFY(cut.endsWith(TrimLabel));
    const qsizetype left = cut.size() - 1;
    QVERIFY(text.startsWith(cut.left(left)));
    QVERIFY(metrics.horizontalAdvance(cut) <= 100);
    QVERIFY(metrics.horizontalAdvance(text.left(left + 1) + TrimLabel) > 100);
}

void TestFontHelpers::theCutIsThatOfTheRule_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("A parameter of a very long name, and then more");
    QTest::newRow("ligatures") << QStringLiteral("office fluffy affliction fi fl ffi ffl ff ff ff");
    QTest::newRow("kerning") << QStringLiteral("AVAVAVAV To Ta Ty LT LY P. V. Wa AVAVAV.,.,.,");
    QTest::newRow("Latin-1") << QStringLiteral(
        u"\u00C4\u00D6\u00DC \u00E9\u00E8\u00EA \u00FE\u00DF");
    QTest::newRow("combining") << QStringLiteral(
        u"e\u0301a\u0308o\u0302\u0301\u0323\u0328u\u030Axyz");
    QTest::newRow("only combining") << QStringLiteral("a") + QString(100, QChar(0x0301));
    QTest::newRow("emoji family") << QStringLiteral(
        u"ab\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466cd");
    QTest::newRow("right to left")
        << QStringLiteral(u"\u05E9\u05DC\u05D5\u05DD \u05E2\u05D5\u05DC\u05DD abc");
    QTest::newRow("joined letters") << QStringLiteral(
        u"\u0645\u0631\u062D\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645");
    QTest::newRow("tabs and breaks") << QStringLiteral("a\tb\nc\r\nd e");
    QTest::newRow("zeros") << QString(8, QChar(0)) + QStringLiteral("abc");
}

void TestFontHelpers::theCutIsThatOfTheRule()
{
    QFETCH(QString, text);
    QWidget widget;
    const QFontMetrics metrics = widget.fontMetrics();
    const int full = metrics.horizontalAdvance(text);
    for (int width = 0; width <= full + 2; ++width) {
        QCOMPARE(trimText(&widget, text, width), trimmedSlowly(metrics, text, width));
    }
}

void TestFontHelpers::aPairOfSurrogatesIsNotTornApart()
{
    QWidget widget;
    const QString text = QStringLiteral(u"a\U0001F3B9\U0001F3B9\U0001F3B9\U0001F3B9");
    const int full = widget.fontMetrics().horizontalAdvance(text);
    for (int width = 0; width < full; ++width) {
        const QString cut = trimText(&widget, text, width);
        if (!cut.isEmpty()) {
            QVERIFY(!cut.at(cut.size() - 2).isHighSurrogate());
        }
    }
}

void TestFontHelpers::aLongTextIsMeasuredAFewTimesOnly()
{
    QWidget widget;
    const QFontMetrics metrics = widget.fontMetrics();
    const QString text = QStringLiteral("The quick brown fox jumps. ").repeated(4000);
    const int full = metrics.horizontalAdvance(text);
    // Cut one by one this would take hours.
    for (const int width : {10, 100, full / 2, full - 1}) {
        const QString cut = trimText(&widget, text, width);
        QVERIFY(metrics.horizontalAdvance(cut) <= width);
        QVERIFY(cut.isEmpty() || cut.endsWith(TrimLabel));
    }
}

void TestFontHelpers::theWidgetsFontMeasures()
{
    QWidget small;
    QWidget large;
    QFont font = small.font();
    font.setPixelSize(8);
    small.setFont(font);
    font.setPixelSize(24);
    large.setFont(font);
    const QString text = QStringLiteral("Resonance");
    const int width = small.fontMetrics().horizontalAdvance(text);
    QCOMPARE(trimText(&small, text, width), text);
    QVERIFY(trimText(&large, text, width).size() < text.size());
}

QTEST_MAIN(TestFontHelpers)
#include "tst_fonthelpers.moc"
