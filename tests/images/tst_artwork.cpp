// SPDX-License-Identifier: GPL-3.0-or-later
#include "fonts/ApplicationFonts.h"
#include "images/Artwork.h"
#include "images/generator/Catalogue.h"
#include "images/generator/Palette.h"

#include <QtCore/QDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtTest/QtTest>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace
{

// How a picture lies in its widget.
enum class Fit {
    Whole,   // a background, or slices exactly as large as the widget
    Centred, // in the middle of the widget, which may be larger
    Right,   // at the right end of a wider widget, vertically centred
    Free,    // not shown in a widget of its own
};

struct Expected
{
    const char *name;
    // Of the widget that shows it, in pixels.
    QSize widget;
    int categories;
    int rows;
    Fit fit;
};

// The pictures that the forms, the panels and the views name, with the sizes of the widgets that
// show them: columns are categories, rows states (rest, on or pressed; of a spin button rest, up,
// down).
constexpr std::array expected{
    // The main window
    Expected{"trn_bak_1", {470, 465}, 1, 1, Fit::Whole},
    Expected{"trn_bak_s", {470, 324}, 1, 1, Fit::Whole},
    Expected{"vd_nsw_window", {15, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_window_small", {15, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_window_front", {15, 15}, 1, 2, Fit::Centred},
    Expected{"t27r_led_online", {87, 7}, 1, 1, Fit::Whole},
    Expected{"t27r_tsw_size", {19, 10}, 2, 2, Fit::Centred},
    Expected{"vd_arrow", {}, 1, 1, Fit::Free},
    // The template view
    Expected{"trn_bak_main", {442, 402}, 1, 1, Fit::Whole},
    Expected{"trn_led_edit_t", {9, 9}, 1, 1, Fit::Whole},
    Expected{"t27r_led_edit_f", {9, 9}, 1, 1, Fit::Whole},
    Expected{"t27r_btn_back_store", {48, 16}, 1, 1, Fit::Whole},
    Expected{"t27r_nsw_store", {46, 14}, 1, 2, Fit::Centred},
    Expected{"vd_tsw_lib_open", {46, 14}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_inc_dec_l", {19, 19}, 1, 3, Fit::Centred},
    Expected{"vd_nsw_popup_s", {19, 19}, 1, 2, Fit::Centred},
    Expected{"trn_tsw_radiobtn_cc_rem", {19, 18}, 1, 2, Fit::Centred},
    Expected{"t27r_lcd_panel", {71, 23}, 1, 1, Fit::Whole},
    Expected{"t27r_bak_remote", {38, 106}, 1, 1, Fit::Whole},
    Expected{"t27r_bak_cc", {38, 106}, 1, 1, Fit::Whole},
    Expected{"vd_nsw_popup", {19, 18}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_inc_dec_s", {19, 18}, 1, 3, Fit::Centred},
    Expected{"trn_tsw_radiobtn", {19, 18}, 1, 2, Fit::Centred},
    // The library view
    Expected{"trn_bak_library", {442, 402}, 1, 1, Fit::Whole},
    Expected{"t27r_nsw_lib_import", {46, 14}, 1, 2, Fit::Centred},
    Expected{"t27r_nsw_file", {19, 19}, 1, 2, Fit::Centred},
    Expected{"t27r_nsw_cancel_2", {46, 14}, 1, 2, Fit::Centred},
    Expected{"t27r_nsw_ok_2", {46, 14}, 1, 2, Fit::Centred},
    Expected{"t27r_bak_lib_remote_off", {38, 132}, 1, 1, Fit::Whole},
    // The panels
    Expected{"trn_bak_about", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_save_change", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_port_error", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_rename_caution", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_reset_stored", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_reset_original", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_reset_factoryset", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_exit_anyway", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_set", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_autosync", {442, 419}, 1, 1, Fit::Whole},
    Expected{"trn_bak_start", {442, 419}, 1, 1, Fit::Whole},
    Expected{"vd_nsw_close", {15, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_yes", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_no", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_ok", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_cancel", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_start", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_retry", {51, 15}, 1, 2, Fit::Centred},
    Expected{"vd_nsw_pulldown", {265, 18}, 1, 2, Fit::Right},
    Expected{"t27r_txt_error", {263, 14}, 1, 1, Fit::Whole},
    Expected{"trn_led_autosync", {259, 10}, 1, 1, Fit::Free},
};

QString path(const char *name)
{
    return QStringLiteral(":/images/%1.png").arg(QString::fromLatin1(name));
}

// The file's own pixels, whatever its name says about their size.
QImage pixels(const QString &file)
{
    QImage image = QImage(file).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(1);
    return image;
}

double meanDifference(const QImage &left, const QImage &right)
{
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QRgb one = left.pixel(x, y);
            const QRgb other = right.pixel(x, y);
            sum += std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
                   std::abs(qBlue(one) - qBlue(other));
        }
    }
    return sum / (3.0 * left.width() * left.height());
}

// The largest mean difference of any part of the size of a few letters, their transparency
// included: of a whole background a lost caption is next to nothing.
double largestDifference(const QImage &left, const QImage &right)
{
    constexpr int Part = 16;
    double largest = 0;
    for (int y = 0; y < left.height(); y += Part) {
        for (int x = 0; x < left.width(); x += Part) {
            const QRect part = QRect(x, y, Part, Part) & left.rect();
            double sum = 0;
            for (int row = part.top(); row <= part.bottom(); ++row) {
                for (int column = part.left(); column <= part.right(); ++column) {
                    const QRgb one = left.pixel(column, row);
                    const QRgb other = right.pixel(column, row);
                    sum +=
                        std::abs(qRed(one) - qRed(other)) + std::abs(qGreen(one) - qGreen(other)) +
                        std::abs(qBlue(one) - qBlue(other)) + std::abs(qAlpha(one) - qAlpha(other));
                }
            }
            largest = std::max(largest, sum / (4.0 * part.width() * part.height()));
        }
    }
    return largest;
}

double luminance(const QColor &color)
{
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const double left = luminance(one);
    const double right = luminance(other);
    return (std::max(left, right) + 0.05) / (std::min(left, right) + 0.05);
}

} // namespace

class tst_artwork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(loadApplicationFonts()); }

    void everyPictureIsThereAtBothScalesAndNoOther()
    {
        QStringList names;
        for (const Expected &picture : expected) {
            const QString name = QString::fromLatin1(picture.name);
            names << name + QStringLiteral(".png") << name + QStringLiteral("@2x.png");
        }
        names.sort();
        const QStringList found =
            QDir(QStringLiteral(TRN_SOURCE_DIR "/images")).entryList({QStringLiteral("*.png")});
        QCOMPARE(QStringList(found.begin(), found.end()), names);
        // What is compiled in is what lies in the folder.
        QStringList compiled = QDir(QStringLiteral(":/images")).entryList();
        compiled.sort();
        QCOMPARE(compiled, names);
    }

    void picture_data()
    {
        QTest::addColumn<int>("index");
        for (std::size_t index = 0; index < expected.size(); ++index) {
            QTest::newRow(expected[index].name) << static_cast<int>(index);
        }
    }

    void picture()
    {
        QFETCH(int, index);
        const Expected &picture = expected[static_cast<std::size_t>(index)];
        const QImage plain = pixels(path(picture.name));
        const QImage fine = pixels(artworkFile(path(picture.name), 2));
        QVERIFY(!plain.isNull());
        QVERIFY(!fine.isNull());
        QCOMPARE(fine.size(), plain.size() * 2);

        // Whole slices, and no slice larger than its widget.
        QCOMPARE(plain.width() % picture.categories, 0);
        QCOMPARE(plain.height() % picture.rows, 0);
        const QSize slice(plain.width() / picture.categories, plain.height() / picture.rows);
        const QSize widget = picture.widget;
        switch (picture.fit) {
        case Fit::Whole:
            QCOMPARE(slice, widget);
            break;
        case Fit::Centred:
            QVERIFY(slice.width() <= widget.width() && slice.height() <= widget.height());
            // An odd rest would leave the slice half a pixel beside the middle.
            QCOMPARE((widget.width() - slice.width()) % 2, 0);
            QCOMPARE((widget.height() - slice.height()) % 2, 0);
            break;
        case Fit::Right:
            QVERIFY(slice.width() < widget.width());
            QCOMPARE(slice.height(), widget.height());
            break;
        case Fit::Free:
            break;
        }

        // The loaded pixmaps have the same size for whoever paints them.
        const QPixmap shown = artwork(path(picture.name), 2);
        QCOMPARE(shown.devicePixelRatio(), 2.0);
        QCOMPARE(shown.deviceIndependentSize().toSize(), plain.size());
        QCOMPARE(artwork(path(picture.name), 1).size(), plain.size());
        QCOMPARE(artwork(path(picture.name), 1.5).size(), plain.size() * 2);

        // A state that looks like another one tells nothing. Each differs at a glance: by a tenth
        // of the range in the middle of its slice.
        for (int category = 0; category < picture.categories; ++category) {
            for (int one = 0; one < picture.rows; ++one) {
                for (int other = one + 1; other < picture.rows; ++other) {
                    const auto cut = [&](int row) {
                        return plain.copy(category * slice.width(), row * slice.height(),
                                          slice.width(), slice.height());
                    };
                    const double difference = meanDifference(cut(one), cut(other));
                    QVERIFY2(difference > 25,
                             qPrintable(QStringLiteral("rows %1 and %2 differ by %3")
                                            .arg(one)
                                            .arg(other)
                                            .arg(difference)));
                }
            }
        }
    }

    void categoriesOfTheSizeButtonPointUpAndDown()
    {
        const QImage image = pixels(path("t27r_tsw_size"));
        const QSize slice(image.width() / 2, image.height() / 2);
        const QImage down = image.copy(QRect({0, 0}, slice));
        const QImage up = image.copy(QRect({slice.width(), 0}, slice));
        QVERIFY(meanDifference(down, up) > 2);
    }

    void filesAreWhatTheGeneratorDraws()
    {
        for (const Artwork &artwork : catalogue()) {
            for (const int ratio : {1, 2}) {
                QImage drawn = render(artwork, ratio);
                drawn.setDevicePixelRatio(1);
                const QString file = artworkFile(path(artwork.name), ratio);
                const QImage found = pixels(file);
                QVERIFY2(drawn.size() == found.size(), qPrintable(file));
                const double difference =
                    largestDifference(drawn.convertToFormat(found.format()), found);
                QVERIFY2(difference < 2, qPrintable(file + QString::asprintf(" %f", difference)));
            }
        }
    }

    void aLostLetterIsADifference()
    {
        const QImage whole = pixels(path("trn_bak_main"));
        QImage without = whole;
        // The last digit of the captions at the right of the LCD.
        QPainter painter(&without);
        painter.fillRect(425, 217, 12, 12, whole.pixelColor(424, 217));
        painter.end();
        QVERIFY(largestDifference(whole, without) > 2);
        QCOMPARE(largestDifference(whole, whole), 0.0);
    }

    void generatorDrawsTheSameTwice()
    {
        for (const Artwork &artwork : catalogue()) {
            QCOMPARE(render(artwork, 2), render(artwork, 2));
        }
    }

    void curvesAreDrawnAnewForTwoDevicePixels_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name :
             {"trn_led_edit_t", "t27r_led_edit_f", "t27r_led_online", "trn_tsw_radiobtn",
              "trn_tsw_radiobtn_cc_rem", "t27r_btn_back_store", "vd_arrow", "trn_bak_about",
              "t27r_bak_remote", "t27r_nsw_store"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }

    void curvesAreDrawnAnewForTwoDevicePixels()
    {
        QFETCH(QString, name);
        const QString file = QStringLiteral(":/images/%1.png").arg(name);
        const QImage plain = pixels(file);
        const QImage fine = pixels(artworkFile(file, 2));
        QVERIFY(fine != plain.scaled(fine.size()));
    }

    void aPathWithoutACounterpartStaysAsItIs()
    {
        QCOMPARE(artworkFile(QStringLiteral(":/images/none.png"), 2),
                 QStringLiteral(":/images/none.png"));
        QCOMPARE(artworkFile(QString(), 2), QString());
        QVERIFY(artwork(QStringLiteral(":/images/none.png"), 2).isNull());
        QVERIFY(artwork(":/images/none.png").isNull());
    }

    void aPictureIsExchangedForTheOneOfAnotherScreen()
    {
        // The screen of this test is a plain one.
        const QPixmap plain = artwork(":/images/vd_arrow.png");
        QCOMPARE(plain.devicePixelRatio(), 1.0);
        const QPixmap fine = artworkFor(plain, 2);
        QCOMPARE(fine.devicePixelRatio(), 2.0);
        QCOMPARE(fine.deviceIndependentSize(), plain.deviceIndependentSize());
        QCOMPARE(artworkFor(fine, 2).cacheKey(), fine.cacheKey());
        QCOMPARE(artworkFor(fine, 1).cacheKey(), plain.cacheKey());
    }

    void aPixmapFromElsewhereIsNotExchanged()
    {
        QPixmap own(7, 5);
        own.fill(Qt::red);
        QCOMPARE(artworkFor(own, 2).cacheKey(), own.cacheKey());
        QVERIFY(artworkFor({}, 2).isNull());
        // Painted over, a picture is no longer the artwork that it came from.
        QPixmap changed = artwork(":/images/vd_arrow.png");
        changed.fill(Qt::blue);
        QCOMPARE(artworkFor(changed, 2).cacheKey(), changed.cacheKey());
    }

    void theStoreFlashFadesByItsAlphaChannel()
    {
        const QImage flash = QImage(path("t27r_btn_back_store"));
        QVERIFY(flash.hasAlphaChannel());
        QCOMPARE(qAlpha(flash.pixel(0, 0)), 0);
    }

    void thePointersTipIsItsHotSpot()
    {
        const QImage pointer = QImage(path("vd_arrow"));
        QCOMPARE(qAlpha(pointer.pixel(0, 0)), 255);
        // Readable on dark and on light: a rim and a body of either kind.
        QCOMPARE(pointer.pixelColor(0, 8), QColor(Qt::white));
        QCOMPARE(pointer.pixelColor(2, 8), QColor(Qt::black));
    }

    void lettersStandOutFromTheirGround_data()
    {
        QTest::addColumn<QColor>("ink");
        QTest::addColumn<QColor>("ground");
        using namespace palette;
        QTest::newRow("captions on the body") << ink << body;
        QTest::newRow("captions on a plate") << ink << plate;
        QTest::newRow("headings on the body") << quietInk << body;
        QTest::newRow("headings on a plate") << quietInk << plate;
        QTest::newRow("name of the program") << stripInk << strip;
        QTest::newRow("kind of the program") << stripQuietInk << strip;
        QTest::newRow("tab in force") << stripInk << strip;
        QTest::newRow("display") << ink << glass;
        QTest::newRow("display cell") << ink << cell;
        QTest::newRow("selected cell") << ink << cellLifted;
        QTest::newRow("field") << ink << field;
        QTest::newRow("key") << ink << keyBottom;
        QTest::newRow("key pressed") << accent << keyDown;
        QTest::newRow("lamp unlit") << unlitInk << window;
        QTest::newRow("lamp lit") << accent << window;
        QTest::newRow("text over the running light") << ink << accent;
        QTest::newRow("sign and error") << cellLifted << ink;
        QTest::newRow("list, odd row") << listInk << listOdd;
    }

    void lettersStandOutFromTheirGround()
    {
        QFETCH(QColor, ink);
        QFETCH(QColor, ground);
        const double ratio = contrast(ink, ground);
        QVERIFY2(ratio >= 4.5, qPrintable(QString::number(ratio)));
    }
};

QTEST_MAIN(tst_artwork)
#include "tst_artwork.moc"
