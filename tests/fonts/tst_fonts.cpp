// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fonts/FontHarness.h"

#include <QtCore/QProcess>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <QtGui/QFontMetrics>
#include <QtGui/QGlyphRun>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QRawFont>
#include <QtTest/QtTest>

namespace
{

constexpr QRgb paper = qRgb(255, 255, 255);
constexpr QRgb ink = qRgb(55, 55, 55);

struct Family
{
    const char *row;
    QLatin1String name;
    QString sheet;
};

const std::array families{
    Family{"Corvan QRL 8", FontFamilyQRL8, QStringLiteral("CorvanQRL8")},
    Family{"Corvan QRL 10", FontFamilyQRL10, QStringLiteral("CorvanQRL10")},
    Family{"Corvan QRL8 Expanded", FontFamilyQRL8Expanded, QStringLiteral("CorvanQRL8Expanded")},
};

// What a system or a font may ask for. Nothing of it may move an edge.
struct Hinting
{
    const char *row;
    int preference;
};
constexpr std::array hintings{
    Hinting{"as the system hints", QFont::PreferDefaultHinting},
    Hinting{"no hinting", QFont::PreferNoHinting},
    Hinting{"vertical hinting", QFont::PreferVerticalHinting},
    Hinting{"full hinting", QFont::PreferFullHinting},
};

QList<char32_t> coverage()
{
    QList<char32_t> result;
    for (char32_t c = 0x20; c <= 0x7E; ++c) {
        result.append(c);
    }
    for (char32_t c = 0xA0; c <= 0xFF; ++c) {
        result.append(c);
    }
    return result << 0xFB02 << 0xFFFD;
}

QString text(char32_t c)
{
    return QString(QChar(static_cast<char16_t>(c)));
}

// Blank and no-break space are empty; a soft hyphen that shows looks as any hyphen.
bool looksLikeAnother(char32_t c)
{
    return c == 0xA0 || c == 0xAD;
}

QFont plainFont(const Family &family, int pixelSize, QFont::HintingPreference hinting)
{
    QFont font{QString(family.name)};
    font.setPixelSize(pixelSize);
    font.setStyleStrategy(QFont::NoAntialias);
    font.setHintingPreference(hinting);
    return font;
}

// A picture for `columns` by `rows` pixels of a sheet, with two columns to spare on each side. One
// pixel of the sheet is `times` pixels of the widget.
constexpr int margin = 2;
QImage emptyImage(qsizetype columns, qsizetype rows, int ratio, int times = 1)
{
    const int scale = ratio * times;
    const QSize size(int(columns) + margin + margin, int(rows));
    QImage image(size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(paper);
    return image;
}

// What the rows of a sheet say, `scale` device pixels for each of theirs.
QImage expectedImage(const QStringList &rows, int scale)
{
    QImage image = emptyImage(rows.first().size(), rows.size(), 1);
    for (int y = 0; y < rows.size(); ++y) {
        for (int x = 0; x < rows[y].size(); ++x) {
            if (rows[y][x] == QLatin1Char('#')) {
                image.setPixel(margin + x, y, ink);
            }
        }
    }
    return image.scaled(image.size() * scale);
}

// The rows of a line of text, glyph beside glyph.
QStringList lineOfText(const Sheet &sheet, const QString &line)
{
    QStringList rows;
    for (const QChar c : line) {
        const SheetGlyph glyph = sheet.glyphs.value(c.unicode());
        while (rows.size() < glyph.size()) {
            rows.append(QString());
        }
        for (int y = 0; y < glyph.size(); ++y) {
            rows[y] += glyph[y];
        }
    }
    return rows;
}

// The rows of a picture as text, so that a failure shows what was drawn.
QByteArray drawn(const QImage &image)
{
    QByteArray result("\n");
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            result += pixel == paper ? '.' : pixel == ink ? '#' : '?';
        }
        result += '\n';
    }
    return result;
}

} // namespace

class TestFonts : public QObject
{
    Q_OBJECT

    QMap<QString, Sheet> m_sheets;

    const Sheet &sheetOf(const Family &family) { return m_sheets[family.sheet]; }

    static void familyRows()
    {
        QTest::addColumn<int>("index");
        for (size_t i = 0; i < families.size(); ++i) {
            QTest::newRow(families[i].row) << int(i);
        }
    }
    static const Family &family(int index) { return families[size_t(index)]; }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(!QFontDatabase::families().contains(QString(FontFamilyQRL8)));
        QVERIFY(loadApplicationFonts());
        for (const Family &family : families) {
            const auto sheet = readSheet(family.sheet);
            QVERIFY2(sheet, qPrintable(family.sheet));
            m_sheets[family.sheet] = *sheet;
        }
    }

    void aFamilyIsFoundUnderItsExactName_data() { familyRows(); }
    void aFamilyIsFoundUnderItsExactName()
    {
        QFETCH(int, index);
        const QString name(family(index).name);
        QCOMPARE(name, QString::fromLatin1(family(index).row));
        QCOMPARE(QFontDatabase::families().count(name), 1);
        QStringList styles = QFontDatabase::styles(name);
        styles.sort();
        QCOMPARE(styles, (QStringList{QStringLiteral("Bold"), QStringLiteral("Regular")}));
        const QFontInfo info(widgetFont(family(index).name));
        QCOMPARE(info.family(), name);
        QVERIFY(info.exactMatch());
    }

    void loadingAgainGivesTheSameAnswerAndNoSecondFamily()
    {
        const QStringList before = QFontDatabase::families();
        QVERIFY(loadApplicationFonts());
        QCOMPARE(QFontDatabase::families(), before);
    }

    void aLineIsAsHighAsTheSheetSays_data() { familyRows(); }
    void aLineIsAsHighAsTheSheetSays()
    {
        QFETCH(int, index);
        const Sheet &sheet = sheetOf(family(index));
        const QFontMetrics metrics(widgetFont(family(index).name));
        QCOMPARE(metrics.ascent(), sheet.ascent);
        QCOMPARE(metrics.descent(), sheet.descent);
        QCOMPARE(metrics.lineSpacing(), sheet.ascent + sheet.descent);
    }

    void everyCharacterHasAGlyphOfItsOwn_data() { familyRows(); }
    void everyCharacterHasAGlyphOfItsOwn()
    {
        QFETCH(int, index);
        const Sheet &sheet = sheetOf(family(index));
        const QRawFont font = QRawFont::fromFont(widgetFont(family(index).name));
        QSet<quint32> seen;
        for (const char32_t c : coverage()) {
            const QByteArray label = QByteArray::number(uint(c), 16);
            QVERIFY2(sheet.glyphs.contains(c), label.constData());
            const QList<quint32> glyphs = font.glyphIndexesForString(text(c));
            QCOMPARE(glyphs.size(), 1);
            QVERIFY2(glyphs.first() != 0, label.constData());
            QVERIFY2(!seen.contains(glyphs.first()), label.constData());
            seen.insert(glyphs.first());
        }
        QCOMPARE(sheet.glyphs.size(), coverage().size());
    }

    void noTwoCharactersLookTheSame_data() { familyRows(); }
    void noTwoCharactersLookTheSame()
    {
        QFETCH(int, index);
        const Sheet &sheet = sheetOf(family(index));
        const QList<char32_t> characters = coverage();
        for (qsizetype i = 0; i < characters.size(); ++i) {
            for (qsizetype k = i + 1; k < characters.size(); ++k) {
                if (looksLikeAnother(characters[i]) || looksLikeAnother(characters[k])) {
                    continue;
                }
                QVERIFY2(differingPixels(sheet, characters[i], characters[k]) >= 1,
                         qPrintable(text(characters[i]) + text(characters[k])));
            }
        }
    }

    void lettersThatMustStayApartDifferInTwoPixels_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        const QStringList pairs{
            QStringLiteral("0 O"),           QStringLiteral("0 o"),
            QStringLiteral("O o"),           QStringLiteral("0 Q"),
            QStringLiteral("O Q"),           QStringLiteral("O D"),
            QStringLiteral("0 D"),           QStringLiteral("0 8"),
            QStringLiteral("0 \u00D8"),      QStringLiteral("1 l"),
            QStringLiteral("1 I"),           QStringLiteral("l I"),
            QStringLiteral("l |"),           QStringLiteral("I |"),
            QStringLiteral("1 |"),           QStringLiteral("i l"),
            QStringLiteral("i j"),           QStringLiteral("1 7"),
            QStringLiteral("5 S"),           QStringLiteral("5 6"),
            QStringLiteral("8 B"),           QStringLiteral("8 S"),
            QStringLiteral("6 8"),           QStringLiteral("8 9"),
            QStringLiteral("2 Z"),           QStringLiteral("2 7"),
            QStringLiteral("rn m"),          QStringLiteral("cl d"),
            QStringLiteral("vv w"),          QStringLiteral("VV W"),
            QStringLiteral("U V"),           QStringLiteral("u v"),
            QStringLiteral("C G"),           QStringLiteral("c e"),
            QStringLiteral("g q"),           QStringLiteral("9 g"),
            QStringLiteral(". ,"),           QStringLiteral(": ;"),
            QStringLiteral("- ~"),           QStringLiteral("( ["),
            QStringLiteral("( {"),           QStringLiteral("' `"),
            QStringLiteral("\u00C2 \u00C4"), QStringLiteral("\u00C3 \u00C4"),
            QStringLiteral("\u00E1 \u00E0"), QStringLiteral("\u00F4 \u00F6"),
        };
        for (size_t i = 0; i < families.size(); ++i) {
            for (const QString &pair : pairs) {
                const QStringList sides = pair.split(QLatin1Char(' '));
                QTest::addRow("%s: %s", families[i].row, qPrintable(pair))
                    << int(i) << sides.first() << sides.last();
            }
        }
    }
    void lettersThatMustStayApartDifferInTwoPixels()
    {
        QFETCH(int, index);
        QFETCH(QString, first);
        QFETCH(QString, second);
        const QFont font = widgetFont(family(index).name);
        const QImage one = draw(font, first, 1);
        const QImage other = draw(font, second, 1);
        int differing = 0;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                differing += one.pixel(x, y) != other.pixel(x, y);
            }
        }
        QVERIFY2(differing >= 2, (drawn(one) + drawn(other)).constData());
    }

    void aGlyphIsTheSheetToThePixel_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("times");
        QTest::addColumn<int>("ratio");
        QTest::addColumn<int>("hinting");
        for (size_t i = 0; i < families.size(); ++i) {
            for (const auto &[name, hinting] : hintings) {
                for (int ratio = 1; ratio <= 3; ++ratio) {
                    QTest::addRow("%s, %s, device pixel ratio %d", families[i].row, name, ratio)
                        << int(i) << 1 << ratio << hinting;
                }
                QTest::addRow("%s, %s, twice the size", families[i].row, name)
                    << int(i) << 2 << 1 << hinting;
            }
        }
    }
    void aGlyphIsTheSheetToThePixel()
    {
        QFETCH(int, index);
        QFETCH(int, times);
        QFETCH(int, ratio);
        QFETCH(int, hinting);
        const Sheet &sheet = sheetOf(family(index));
        const QFont font =
            plainFont(family(index), sheet.pixelsPerEm * times, QFont::HintingPreference(hinting));
        // A glyph run, since a layout of text hides the soft hyphen.
        QGlyphRun run;
        run.setRawFont(QRawFont::fromFont(font));
        for (const char32_t c : coverage()) {
            const SheetGlyph glyph = sheet.glyphs[c];
            QImage image = emptyImage(glyph.first().size(), glyph.size(), ratio, times);
            run.setGlyphIndexes(run.rawFont().glyphIndexesForString(text(c)));
            run.setPositions({QPointF(0, 0)});
            {
                QPainter painter(&image);
                painter.setRenderHint(QPainter::TextAntialiasing, false);
                painter.setPen(QColor(ink));
                painter.drawGlyphRun(QPointF(margin * times, sheet.top * times), run);
            }
            const QByteArray expected = drawn(expectedImage(glyph, times * ratio));
            QVERIFY2(drawn(image) == expected, (drawn(image) + expected).constData());
        }
    }

    void aLineOfTextKeepsItsLettersEvenlyApart_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<double>("letterSpacing");
        QTest::addColumn<int>("ratio");
        for (int ratio = 1; ratio <= 3; ++ratio) {
            for (size_t i = 0; i < families.size(); ++i) {
                QTest::addRow("%s, device pixel ratio %d", families[i].row, ratio)
                    << int(i) << 0.0 << ratio;
            }
            // The letter spacing that this family gets in the widgets would widen every tenth gap.
            QTest::addRow("Corvan QRL 8, a tenth of a pixel of letter spacing, ratio %d", ratio)
                << 0 << 0.1 << ratio;
        }
    }
    void aLineOfTextKeepsItsLettersEvenlyApart()
    {
        QFETCH(int, index);
        QFETCH(double, letterSpacing);
        QFETCH(int, ratio);
        const Sheet &sheet = sheetOf(family(index));
        QFont font = plainFont(family(index), sheet.pixelsPerEm, QFont::PreferNoHinting);
        if (letterSpacing > 0) {
            font.setLetterSpacing(QFont::AbsoluteSpacing, letterSpacing);
        }
        const QStringList lines{
            QString(200, QLatin1Char('H')),
            QString(200, QLatin1Char('i')),
            QStringLiteral("The quick brown fox jumps over the lazy dog, 0123456789 times."),
            QStringLiteral("AVAWATATo.Ty.Yo.\"L'\" fi fl ffi ff"),
        };
        for (const QString &line : lines) {
            const QStringList rows = lineOfText(sheet, line);
            QCOMPARE(QFontMetrics(font).horizontalAdvance(line), rows.first().size());
            QImage image = emptyImage(rows.first().size(), rows.size(), ratio);
            {
                QPainter painter(&image);
                painter.setFont(font);
                painter.setRenderHint(QPainter::TextAntialiasing, false);
                painter.setPen(QColor(ink));
                painter.drawText(QPointF(margin, sheet.top), line);
            }
            const QByteArray expected = drawn(expectedImage(rows, ratio));
            QVERIFY2(drawn(image) == expected, (drawn(image) + expected).constData());
        }
    }

    void anAntialiasedTextLooksNoDifferent_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("hinting");
        for (size_t i = 0; i < families.size(); ++i) {
            for (const auto &[name, hinting] : hintings) {
                QTest::addRow("%s, %s", families[i].row, name) << int(i) << hinting;
            }
        }
    }
    // As someone draws it who does not think of the render hint. At whole multiples of its size
    // there is no grey edge that smoothing could give it.
    void anAntialiasedTextLooksNoDifferent()
    {
        QFETCH(int, index);
        QFETCH(int, hinting);
        const QString line = QStringLiteral("Reset to Original Data at Startup \u00C5\u00FF");
        QFont font = plainFont(family(index), sheetOf(family(index)).pixelsPerEm,
                               QFont::HintingPreference(hinting));
        for (int ratio = 1; ratio <= 3; ++ratio) {
            font.setStyleStrategy(QFont::NoAntialias);
            const QByteArray plain = drawn(draw(font, line, ratio));
            font.setStyleStrategy(QFont::PreferAntialias);
            const QByteArray smooth = drawn(draw(font, line, ratio, true));
            QVERIFY2(smooth == plain, (smooth + plain).constData());
        }
    }

    void boldLettersAreDrawnTwice_data() { familyRows(); }
    void boldLettersAreDrawnTwice()
    {
        QFETCH(int, index);
        const QFont plain = widgetFont(family(index).name);
        QFont bold = plain;
        bold.setWeight(QFont::Bold);
        const QString word = QStringLiteral("l");
        QCOMPARE(QFontMetrics(bold).horizontalAdvance(word),
                 QFontMetrics(plain).horizontalAdvance(word) + 1);
        for (int ratio = 1; ratio <= 2; ++ratio) {
            QImage twice = draw(plain, word, ratio);
            QPainter painter(&twice);
            painter.setFont(plain);
            painter.setRenderHint(QPainter::TextAntialiasing, false);
            painter.setPen(QColor(ink));
            painter.drawText(QPointF(margin + 1, 10), word);
            painter.end();
            QCOMPARE(drawn(draw(bold, word, ratio)), drawn(twice));
        }
    }

    void aBoldTextHasNoGreyEdge_data() { familyRows(); }
    // The default item of a menu is bold.
    void aBoldTextHasNoGreyEdge()
    {
        QFETCH(int, index);
        QFont font = widgetFont(family(index).name);
        font.setWeight(QFont::Bold);
        for (int ratio = 1; ratio <= 2; ++ratio) {
            const QByteArray rows = drawn(draw(font, QStringLiteral("Save As..."), ratio));
            QVERIFY(rows.contains('#'));
            QVERIFY2(!rows.contains('?'), rows.constData());
        }
    }

    void aDigitIsAsWideAsTwoBlanks()
    {
        const QFontMetrics metrics(widgetFont(FontFamilyQRL8));
        const int blanks = metrics.horizontalAdvance(QStringLiteral("  "));
        for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
            QCOMPARE(metrics.horizontalAdvance(QChar(digit)), blanks);
        }
    }

    void theFilesAreWhatTheSheetsGive()
    {
        QProcess script;
        script.setProcessChannelMode(QProcess::MergedChannels);
        script.start(QStringLiteral(TRN_SOURCE_DIR "/fonts/build-fonts"),
                     {QStringLiteral("--check")});
        QVERIFY2(script.waitForStarted(), qPrintable(script.errorString()));
        QVERIFY(script.waitForFinished());
        QVERIFY2(script.exitStatus() == QProcess::NormalExit && script.exitCode() == 0,
                 script.readAll().constData());
    }

private:
    static int differingPixels(const Sheet &sheet, char32_t one, char32_t other)
    {
        const SheetGlyph a = sheet.glyphs[one];
        const SheetGlyph b = sheet.glyphs[other];
        int result = 0;
        for (qsizetype y = 0; y < a.size(); ++y) {
            for (qsizetype x = 0; x < qMax(a[y].size(), b[y].size()); ++x) {
                const bool inA = x < a[y].size() && a[y][x] == QLatin1Char('#');
                const bool inB = x < b[y].size() && b[y][x] == QLatin1Char('#');
                result += inA != inB;
            }
        }
        return result;
    }

    static QImage draw(const QFont &font, const QString &line, int ratio, bool smooth = false)
    {
        QImage image = emptyImage(400, 14, ratio);
        QPainter painter(&image);
        painter.setFont(font);
        painter.setRenderHint(QPainter::TextAntialiasing, smooth);
        painter.setPen(QColor(ink));
        painter.drawText(QPointF(margin, 10), line);
        return image;
    }
};

QTEST_MAIN(TestFonts)
#include "tst_fonts.moc"
