// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RemoteEditorStyle.h"
#include "widgets/StyleColors.h"
#include "widgets/StyleImages.h"

#include <QtTest/QtTest>

#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyleFactory>
#include <QtWidgets/QStyleOption>
#include <QtWidgets/QTreeWidget>

#include <climits>
#include <limits>
#include <memory>

// The style of what Qt still draws: which widgets it takes, and each number and colour of it.

namespace
{

QRgb rgb(const QColor &color)
{
    return color.rgba();
}

// An image that shows where nothing was painted.
constexpr QRgb Untouched = qRgb(255, 0, 255);

QImage blank(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Untouched);
    return image;
}

bool contains(const QImage &image, const QRect &area, QRgb colour)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) == colour) {
                return true;
            }
        }
    }
    return false;
}

// Whether every pixel of the area has the colour.
bool isAll(const QImage &image, const QRect &area, QRgb colour)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) != colour) {
                return false;
            }
        }
    }
    return true;
}

QStyleOptionSlider barOption(Qt::Orientation orientation, int length, int minimum, int maximum,
                             int page, int position)
{
    QStyleOptionSlider option;
    option.orientation = orientation;
    option.rect = orientation == Qt::Horizontal ? QRect(0, 0, length, 16) : QRect(0, 0, 16, length);
    option.minimum = minimum;
    option.maximum = maximum;
    option.pageStep = page;
    option.singleStep = 1;
    option.sliderPosition = position;
    option.sliderValue = position;
    option.subControls = QStyle::SC_All;
    option.state = QStyle::State_Enabled;
    if (orientation == Qt::Horizontal) {
        option.state |= QStyle::State_Horizontal;
    }
    return option;
}

QStyleOptionMenuItem itemOption(const QString &text, QStyle::State state)
{
    QStyleOptionMenuItem option;
    option.rect = QRect(0, 0, 160, 20);
    option.text = text;
    option.state = state;
    option.menuItemType = QStyleOptionMenuItem::Normal;
    option.checkType = QStyleOptionMenuItem::NotCheckable;
    option.font = QApplication::font();
    option.font.setPixelSize(10);
    option.font.setStyleStrategy(QFont::NoAntialias);
    option.fontMetrics = QFontMetrics(option.font);
    return option;
}

} // namespace

class TestEditorStyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theFormerStyleLivesOnAsAChild();
    void aStyleThatWasNeverSetGivesTheFormerOneBack();
    void anotherStyleTakesThisOneAndTheFormerOneAway();

    void coloursAreTheDocumentedOnes_data();
    void coloursAreTheDocumentedOnes();
    void imagesHaveTheirSizesAndColours_data();
    void imagesHaveTheirSizesAndColours();
    void theUpArrowIsARisingTriangle();
    void theOtherArrowsAreTheUpArrowTurned();
    void theMarksAreABlockInABorder();
    void branchImagesAreAFrameWithABarOrACross();

    void whichWidgetsAreCustom();
    void paletteRoles_data();
    void paletteRoles();
    void popupsAndMenusGetThePalette();
    void otherWidgetsKeepTheirPalette();
    void pixelMetrics_data();
    void pixelMetrics();
    void metricsOfOtherWidgetsAreTheFormerStyles();
    void decorationIsSelectedInThePopupListOnly();
    void aPushButtonKeepsItsLook();
    void aLineEditDoesNot();
    void aQuestionWithoutAWidgetGoesToTheFormerStyle();

    void scrollBarRectangles_data();
    void scrollBarRectangles();
    void otherSubControlsOfAScrollBarAreEmpty();
    void aHorizontalBarIsMirroredFromRightToLeft();
    void hostileScrollBarsDoNotFall_data();
    void hostileScrollBarsDoNotFall();
    void scrollBarPartsArePaintedInTheirPlaces();
    void aScrollBarWithoutARangeHasNoSlider();
    void aHeldArrowLightsUpOnlyWhileItCanMove_data();
    void aHeldArrowLightsUpOnlyWhileItCanMove();
    void anArrowHeldWithTheMouseLightsUp();
    void clicksOnTheArrowsStep();

    void framesAreFilled();
    void primitivesThatDrawNothing_data();
    void primitivesThatDrawNothing();
    void branchLines_data();
    void branchLines();

    void menuBarItemColours_data();
    void menuBarItemColours();
    void menuBarItemWithAnIconShowsTheIcon();
    void theEmptyAreaOfTheMenuBarIsTransparent();
    void menuItemColours_data();
    void menuItemColours();
    void checkMarks_data();
    void checkMarks();
    void aCheckableItemWithAnIconHasNoMark();
    void theTextStartsBehindTheIconColumn_data();
    void theTextStartsBehindTheIconColumn();
    void theShortcutStandsAtTheRight();
    void backspaceIsWrittenAsTheKeysSay();
    void mnemonicsAreNotShown();
    void theDefaultItemIsBold();
    void separatorLine();
    void separatorWithATextStartsItsLineBehindIt();
    void submenuArrow_data();
    void submenuArrow();
    void painterStateIsAsBefore();
    void aRealMenuGivesRoomToTextsAndShortcuts();
    void aRealMenuShowsTheSelectedItem();
    void aMenuLongerThanTheScreenScrollsAndShowsIt();
    void nothingIsPaintedOutsideOfTheItemsRectangle();
    void everyPixelIsTwoByTwoAtTwiceTheScale_data();
    void everyPixelIsTwoByTwoAtTwiceTheScale();

private:
    const QStyle &style() const { return *QApplication::style(); }
    QImage paintItem(const QStyleOptionMenuItem &option,
                     QStyle::ControlElement element = QStyle::CE_MenuItem)
    {
        QImage image = blank(option.rect.size());
        QPainter painter(&image);
        painter.setFont(option.font);
        const QWidget *widget = element == QStyle::CE_MenuItem
                                    ? static_cast<const QWidget *>(&m_menu)
                                    : static_cast<const QWidget *>(&m_menuBar);
        style().drawControl(element, &option, &painter, widget);
        return image;
    }
    QImage paintBar(const QStyleOptionSlider &option)
    {
        QImage image = blank(option.rect.size());
        QPainter painter(&image);
        style().drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, &m_bar);
        return image;
    }

    QPointer<QStyle> m_former;
    QMenu m_menu;
    QMenuBar m_menuBar;
    QScrollBar m_bar;
};

void TestEditorStyle::initTestCase()
{
    m_former = QApplication::style();
    QApplication::setStyle(new RemoteEditorStyle);
}

// --- Ownership
// ------------------------------------------------------------------------------------

void TestEditorStyle::theFormerStyleLivesOnAsAChild()
{
    QVERIFY(m_former);
    QCOMPARE(m_former->parent(), QApplication::style());
    QCOMPARE(QApplication::style()->parent(), static_cast<QObject *>(qApp));
}

void TestEditorStyle::aStyleThatWasNeverSetGivesTheFormerOneBack()
{
    QPointer<QStyle> current = QApplication::style();
    {
        const RemoteEditorStyle unused;
        QCOMPARE(current->parent(), static_cast<const QObject *>(&unused));
    }
    QVERIFY(current);
    QCOMPARE(current->parent(), static_cast<QObject *>(qApp));
}

void TestEditorStyle::anotherStyleTakesThisOneAndTheFormerOneAway()
{
    QPointer<QStyle> current = QApplication::style();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QVERIFY(!current);
    QVERIFY(!m_former);
    initTestCase();
    QVERIFY(m_former);
}

// --- Colours and images
// ---------------------------------------------------------------------------

void TestEditorStyle::coloursAreTheDocumentedOnes_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<int>("red");
    QTest::addColumn<int>("green");
    QTest::addColumn<int>("blue");
    const auto row = [](const char *name, const QColor &color, int red, int green, int blue) {
        QTest::newRow(name) << color << red << green << blue;
    };
    row("colorPaletteBase", colorPaletteBase, 153, 153, 153);
    row("colorPaletteText", colorPaletteText, 24, 15, 2);
    row("colorPaletteHighlight", colorPaletteHighlight, 24, 15, 2);
    row("colorPaletteHighlightedText", colorPaletteHighlightedText, 0, 204, 0);
    row("colorPaletteFrame", colorPaletteFrame, 255, 255, 255);
    row("colorScrollBarBackground", colorScrollBarBackground, 102, 102, 102);
    row("colorScrollBarForeground", colorScrollBarForeground, 24, 15, 2);
    row("colorListViewLine", colorListViewLine, 24, 15, 2);
    row("colorMenuBarEnableBackgorund", colorMenuBarEnableBackgorund, 0, 0, 0);
    row("colorMenuBarEnableText", colorMenuBarEnableText, 220, 220, 220);
    row("colorMenuBarDisableBackgorund", colorMenuBarDisableBackgorund, 0, 0, 0);
    row("colorMenuBarDisableText", colorMenuBarDisableText, 102, 102, 102);
    row("colorMenuBarSelectBackground", colorMenuBarSelectBackground, 0, 0, 0);
    row("colorMenuBarSelectText", colorMenuBarSelectText, 0, 204, 0);
    row("colorMenuEnableBackground", colorMenuEnableBackground, 153, 153, 153);
    row("colorMenuEnableText", colorMenuEnableText, 24, 15, 2);
    row("colorMenuDisableBackground", colorMenuDisableBackground, 153, 153, 153);
    row("colorMenuDisableText", colorMenuDisableText, 102, 102, 102);
    row("colorMenuSunkenBackground", colorMenuSunkenBackground, 0, 0, 0);
    row("colorMenuSunkenText", colorMenuSunkenText, 0, 204, 0);
    row("colorMenuSelectBackground", colorMenuSelectBackground, 24, 15, 2);
    row("colorMenuSelectText", colorMenuSelectText, 0, 204, 0);
}

void TestEditorStyle::coloursAreTheDocumentedOnes()
{
    QFETCH(QColor, color);
    QFETCH(int, red);
    QFETCH(int, green);
    QFETCH(int, blue);
    QCOMPARE(color, QColor(red, green, blue, 255));
}

void TestEditorStyle::imagesHaveTheirSizesAndColours_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    const QString dark = QStringLiteral("#180F02");
    const QString grey = QStringLiteral("#666666");
    const QString green = QStringLiteral("#00ff00");
    const auto row = [](const char *name, const char *const *xpm, int width, int height,
                        const QString &one, const QString &other) {
        QTest::newRow(name) << QImage(xpm) << QSize(width, height) << one << other;
    };
    row("scrollbar_up_image", scrollbar_up_image, 10, 7, dark, grey);
    row("scrollbar_down_image", scrollbar_down_image, 10, 7, dark, grey);
    row("scrollbar_left_image", scrollbar_left_image, 7, 10, dark, grey);
    row("scrollbar_right_image", scrollbar_right_image, 7, 10, dark, grey);
    row("scrollbar_up_highlight_image", scrollbar_up_highlight_image, 10, 7, dark, green);
    row("scrollbar_down_highlight_image", scrollbar_down_highlight_image, 10, 7, dark, green);
    row("scrollbar_left_highlight_image", scrollbar_left_highlight_image, 7, 10, dark, green);
    row("scrollbar_right_highlight_image", scrollbar_right_highlight_image, 7, 10, dark, green);
    row("radio_image", radio_image, 5, 5, grey, QStringLiteral("#373737"));
    row("radio_check_image", radio_check_image, 5, 5, grey, QStringLiteral("#00cc00"));
    row("list_close_image", list_close_image, 9, 9, dark, QStringLiteral("#999999"));
    row("list_open_image", list_open_image, 9, 9, dark, QStringLiteral("#999999"));
}

void TestEditorStyle::imagesHaveTheirSizesAndColours()
{
    QFETCH(QImage, image);
    QFETCH(QSize, size);
    QFETCH(QString, one);
    QFETCH(QString, other);
    QCOMPARE(image.size(), size);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            colours.insert(image.pixel(x, y));
        }
    }
    QCOMPARE(colours, (QSet<QRgb>{rgb(QColor(one)), rgb(QColor(other))}));
}

void TestEditorStyle::theUpArrowIsARisingTriangle()
{
    const QImage image(scrollbar_up_image);
    const int widths[] = {0, 2, 4, 6, 8, 0, 0};
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool inside = x >= 5 - widths[y] / 2 && x < 5 + widths[y] / 2;
            QCOMPARE(image.pixel(x, y), inside ? qRgb(0x66, 0x66, 0x66) : rgb(colorPaletteText));
        }
    }
}

void TestEditorStyle::theOtherArrowsAreTheUpArrowTurned()
{
    const QImage up(scrollbar_up_image);
    const QTransform left = QTransform().rotate(-90);
    const QTransform right = QTransform().rotate(90);
    const auto plain = [](const QImage &image) {
        return image.convertToFormat(QImage::Format_ARGB32);
    };
    QCOMPARE(plain(QImage(scrollbar_down_image)), plain(up.mirrored()));
    QCOMPARE(plain(QImage(scrollbar_left_image)), plain(up.transformed(left)));
    QCOMPARE(plain(QImage(scrollbar_right_image)), plain(up.transformed(right)));
    const QImage lit(scrollbar_up_highlight_image);
    QCOMPARE(plain(QImage(scrollbar_down_highlight_image)), plain(lit.mirrored()));
    QCOMPARE(plain(QImage(scrollbar_left_highlight_image)), plain(lit.transformed(left)));
    QCOMPARE(plain(QImage(scrollbar_right_highlight_image)), plain(lit.transformed(right)));
}

void TestEditorStyle::theMarksAreABlockInABorder()
{
    const QImage on(radio_check_image);
    const QImage off(radio_image);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 5; ++x) {
            const bool border = x == 0 || y == 0 || x == 4 || y == 4;
            QCOMPARE(on.pixel(x, y), border ? qRgb(0x66, 0x66, 0x66) : qRgb(0, 0xcc, 0));
            QCOMPARE(off.pixel(x, y), border ? qRgb(0x66, 0x66, 0x66) : qRgb(0x37, 0x37, 0x37));
        }
    }
}

void TestEditorStyle::branchImagesAreAFrameWithABarOrACross()
{
    const QImage minus(list_close_image);
    const QImage plus(list_open_image);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) {
            const bool frame = x == 0 || y == 0 || x == 8 || y == 8;
            const bool bar = y == 4 && x >= 2 && x <= 6;
            const bool post = x == 4 && y >= 2 && y <= 6;
            const QRgb dark = rgb(colorPaletteText);
            const QRgb ground = rgb(colorPaletteBase);
            QCOMPARE(minus.pixel(x, y), frame || bar ? dark : ground);
            QCOMPARE(plus.pixel(x, y), frame || bar || post ? dark : ground);
        }
    }
}

// --- Which widgets
// --------------------------------------------------------------------------------

void TestEditorStyle::whichWidgetsAreCustom()
{
    const auto custom = [](const QWidget &widget) {
        return RemoteEditorStyle::isCustomStyle(&widget);
    };
    QVERIFY(custom(QMenuBar()));
    QVERIFY(custom(QMenu()));
    QVERIFY(custom(QScrollBar()));
    QVERIFY(custom(QLineEdit()));
    QVERIFY(!custom(QPushButton()));
    QVERIFY(!custom(QCheckBox()));
    QVERIFY(!custom(QComboBox()));
    QVERIFY(!custom(QWidget()));
    QVERIFY(!RemoteEditorStyle::isCustomStyle(nullptr));
    QVERIFY(!RemoteEditorStyle::isPopupTree(nullptr));
    QVERIFY(!RemoteEditorStyle::isPopupList(nullptr));

    // The kind of the view and its name both count.
    QTreeWidget tree;
    QListWidget list;
    QVERIFY(!custom(tree));
    QVERIFY(!custom(list));
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    list.setObjectName(QStringLiteral("CPopupListWidget"));
    QVERIFY(custom(tree));
    QVERIFY(custom(list));
    QVERIFY(RemoteEditorStyle::isPopupTree(&tree));
    QVERIFY(!RemoteEditorStyle::isPopupList(&tree));
    QVERIFY(RemoteEditorStyle::isPopupList(&list));
    QVERIFY(!RemoteEditorStyle::isPopupTree(&list));
    tree.setObjectName(QStringLiteral("CPopupListWidget"));
    list.setObjectName(QStringLiteral("CPopupTreeWidget"));
    QVERIFY(!custom(tree));
    QVERIFY(!custom(list));
}

void TestEditorStyle::paletteRoles_data()
{
    QTest::addColumn<int>("role");
    QTest::addColumn<QColor>("color");
    const auto row = [](const char *name, QPalette::ColorRole role, const QColor &color) {
        QTest::newRow(name) << int(role) << color;
    };
    row("Base", QPalette::Base, colorPaletteBase);
    row("Window", QPalette::Window, colorPaletteBase);
    row("Button", QPalette::Button, colorPaletteBase);
    row("AlternateBase", QPalette::AlternateBase, colorPaletteBase);
    row("WindowText", QPalette::WindowText, colorPaletteText);
    row("Text", QPalette::Text, colorPaletteText);
    row("ButtonText", QPalette::ButtonText, colorPaletteText);
    row("BrightText", QPalette::BrightText, colorPaletteHighlightedText);
    row("HighlightedText", QPalette::HighlightedText, colorPaletteHighlightedText);
    row("Light", QPalette::Light, colorPaletteFrame);
    row("Midlight", QPalette::Midlight, colorPaletteFrame);
    row("Dark", QPalette::Dark, colorPaletteFrame);
    row("Mid", QPalette::Mid, colorPaletteFrame);
    row("Shadow", QPalette::Shadow, colorPaletteFrame);
    row("Highlight", QPalette::Highlight, colorPaletteHighlight);
    row("Link", QPalette::Link, colorPaletteHighlight);
    row("LinkVisited", QPalette::LinkVisited, colorPaletteHighlight);
}

void TestEditorStyle::paletteRoles()
{
    QFETCH(int, role);
    QFETCH(QColor, color);
    for (const auto group : {QPalette::Disabled, QPalette::Active, QPalette::Inactive}) {
        QPalette palette;
        RemoteEditorStyle::setStandardPaletteColorGroup(&palette, group);
        QCOMPARE(palette.brush(group, QPalette::ColorRole(role)), QBrush(color));
        // Only this group.
        const auto other = group == QPalette::Active ? QPalette::Inactive : QPalette::Active;
        QCOMPARE(palette.brush(other, QPalette::ColorRole(role)),
                 QPalette().brush(other, QPalette::ColorRole(role)));
    }
}

void TestEditorStyle::popupsAndMenusGetThePalette()
{
    QMenu menu;
    QTreeWidget tree;
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    QListWidget list;
    list.setObjectName(QStringLiteral("CPopupListWidget"));
    for (QWidget *widget : {static_cast<QWidget *>(&menu), static_cast<QWidget *>(&tree),
                            static_cast<QWidget *>(&list)}) {
        widget->ensurePolished();
        for (const auto group : {QPalette::Disabled, QPalette::Active, QPalette::Inactive}) {
            QCOMPARE(widget->palette().color(group, QPalette::Base), colorPaletteBase);
            QCOMPARE(widget->palette().color(group, QPalette::Text), colorPaletteText);
            QCOMPARE(widget->palette().color(group, QPalette::HighlightedText),
                     colorPaletteHighlightedText);
        }
    }
}

void TestEditorStyle::otherWidgetsKeepTheirPalette()
{
    QPushButton button;
    QListWidget list;
    QScrollBar bar;
    for (QWidget *widget : {static_cast<QWidget *>(&button), static_cast<QWidget *>(&list),
                            static_cast<QWidget *>(&bar)}) {
        widget->ensurePolished();
        QCOMPARE(widget->palette().color(QPalette::Base),
                 QApplication::palette().color(QPalette::Base));
    }
    QCOMPARE(style().standardPalette(), m_former->standardPalette());
}

void TestEditorStyle::pixelMetrics_data()
{
    QTest::addColumn<int>("metric");
    QTest::addColumn<int>("value");
    QTest::newRow("PM_DefaultFrameWidth") << int(QStyle::PM_DefaultFrameWidth) << 1;
    QTest::newRow("PM_ScrollBarExtent") << int(QStyle::PM_ScrollBarExtent) << 16;
    QTest::newRow("PM_ScrollBarSliderMin") << int(QStyle::PM_ScrollBarSliderMin) << 10;
    QTest::newRow("PM_MenuHMargin") << int(QStyle::PM_MenuHMargin) << 0;
    QTest::newRow("PM_MenuVMargin") << int(QStyle::PM_MenuVMargin) << 0;
    QTest::newRow("PM_MenuBarPanelWidth") << int(QStyle::PM_MenuBarPanelWidth) << 0;
}

void TestEditorStyle::pixelMetrics()
{
    QFETCH(int, metric);
    QFETCH(int, value);
    const QLineEdit edit;
    QTreeWidget tree;
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    for (const QWidget *widget :
         {static_cast<const QWidget *>(&m_menu), static_cast<const QWidget *>(&m_menuBar),
          static_cast<const QWidget *>(&m_bar), static_cast<const QWidget *>(&edit),
          static_cast<const QWidget *>(&tree)}) {
        QCOMPARE(style().pixelMetric(QStyle::PixelMetric(metric), nullptr, widget), value);
    }
}

void TestEditorStyle::metricsOfOtherWidgetsAreTheFormerStyles()
{
    const QPushButton button;
    for (int metric = 0; metric <= int(QStyle::PM_LineEditIconMargin); ++metric) {
        const auto which = QStyle::PixelMetric(metric);
        QCOMPARE(style().pixelMetric(which, nullptr, &button),
                 m_former->pixelMetric(which, nullptr, &button));
    }
}

void TestEditorStyle::decorationIsSelectedInThePopupListOnly()
{
    QTreeWidget tree;
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    QListWidget list;
    list.setObjectName(QStringLiteral("CPopupListWidget"));
    const auto hint = QStyle::SH_ItemView_ShowDecorationSelected;
    QCOMPARE(style().styleHint(hint, nullptr, &tree), 0);
    QCOMPARE(style().styleHint(hint, nullptr, &list), 1);
}

void TestEditorStyle::aPushButtonKeepsItsLook()
{
    QPushButton button(QStringLiteral("Button"));
    button.resize(90, 30);
    const QImage shown = button.grab().toImage();
    const std::unique_ptr<QStyle> former(QStyleFactory::create(m_former->objectName()));
    button.setStyle(former.get());
    QCOMPARE(shown, button.grab().toImage());
}

void TestEditorStyle::aLineEditDoesNot()
{
    QLineEdit edit(QStringLiteral("Text"));
    edit.resize(90, 30);
    const QImage shown = edit.grab().toImage();
    const std::unique_ptr<QStyle> former(QStyleFactory::create(m_former->objectName()));
    edit.setStyle(former.get());
    QVERIFY(shown != edit.grab().toImage());
}

void TestEditorStyle::aQuestionWithoutAWidgetGoesToTheFormerStyle()
{
    QCOMPARE(style().pixelMetric(QStyle::PM_ScrollBarExtent),
             m_former->pixelMetric(QStyle::PM_ScrollBarExtent));
    const QFontMetrics metrics(QApplication::font());
    const QRect rect(0, 0, 100, 20);
    QCOMPARE(style().itemTextRect(metrics, rect, Qt::AlignCenter, true, QStringLiteral("a")),
             m_former->itemTextRect(metrics, rect, Qt::AlignCenter, true, QStringLiteral("a")));
    QCOMPARE(style().standardIcon(QStyle::SP_DialogOkButton).isNull(),
             m_former->standardIcon(QStyle::SP_DialogOkButton).isNull());
}

// --- Scroll bars
// ----------------------------------------------------------------------------------

void TestEditorStyle::scrollBarRectangles_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("sliderFirst");
    QTest::addColumn<int>("sliderLast");
    const auto row = [](const char *name, int length, int minimum, int maximum, int page,
                        int position, int first, int last) {
        QTest::newRow(name) << length << minimum << maximum << page << position << first << last;
    };
    row("no range", 100, 0, 0, 10, 0, 21, 95);
    row("no range away from 0", 100, 7, 7, 10, 7, 21, 95);
    row("at the start", 191, 0, 39, 10, 0, 21, 53);
    row("in between", 191, 0, 39, 10, 20, 89, 121);
    row("at the end", 191, 0, 39, 10, 39, 154, 186);
    row("negative minimum", 191, -39, 0, 10, 0, 154, 186);
    row("shortest slider", 100, 0, 1000, 1, 0, 21, 30);
    row("shortest slider at the end", 100, 0, 1000, 1, 1000, 86, 95);
    row("large page", 100, 0, 10, 90, 10, 29, 95);
    row("slider cut to the groove", 30, 0, 1000, 1, 500, 21, 25);
}

void TestEditorStyle::scrollBarRectangles()
{
    QFETCH(int, length);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, page);
    QFETCH(int, position);
    QFETCH(int, sliderFirst);
    QFETCH(int, sliderLast);
    for (const auto orientation : {Qt::Vertical, Qt::Horizontal}) {
        const auto option = barOption(orientation, length, minimum, maximum, page, position);
        const auto along = [&](int first, int last, int acrossFirst, int acrossLast) {
            return orientation == Qt::Horizontal
                       ? QRect(QPoint(first, acrossFirst), QPoint(last, acrossLast))
                       : QRect(QPoint(acrossFirst, first), QPoint(acrossLast, last));
        };
        const auto rect = [&](QStyle::SubControl subControl) {
            return style().subControlRect(QStyle::CC_ScrollBar, &option, subControl, &m_bar);
        };
        QCOMPARE(rect(QStyle::SC_ScrollBarSubLine), along(3, 9, 3, 12));
        QCOMPARE(rect(QStyle::SC_ScrollBarAddLine), along(11, 17, 3, 12));
        QCOMPARE(rect(QStyle::SC_ScrollBarSubPage), along(21, sliderFirst - 1, 4, 11));
        QCOMPARE(rect(QStyle::SC_ScrollBarSlider), along(sliderFirst, sliderLast, 4, 11));
        QCOMPARE(rect(QStyle::SC_ScrollBarAddPage), along(sliderLast + 1, length - 5, 4, 11));
        QCOMPARE(rect(QStyle::SC_ScrollBarGroove), along(21, length - 5, 4, 11));
    }
}

void TestEditorStyle::otherSubControlsOfAScrollBarAreEmpty()
{
    const auto option = barOption(Qt::Vertical, 100, 0, 10, 5, 0);
    for (const auto subControl :
         {QStyle::SC_ScrollBarFirst, QStyle::SC_ScrollBarLast, QStyle::SC_None}) {
        QVERIFY(
            style().subControlRect(QStyle::CC_ScrollBar, &option, subControl, &m_bar).isEmpty());
    }
}

void TestEditorStyle::aHorizontalBarIsMirroredFromRightToLeft()
{
    auto option = barOption(Qt::Horizontal, 100, 0, 10, 5, 0);
    option.direction = Qt::RightToLeft;
    QCOMPARE(
        style().subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSubLine, &m_bar),
        QRect(QPoint(90, 3), QPoint(96, 12)));
}

void TestEditorStyle::hostileScrollBarsDoNotFall_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("page");
    QTest::addColumn<int>("position");
    QTest::newRow("no length") << 0 << 0 << 10 << 1 << 5;
    QTest::newRow("shorter than the arrows") << 12 << 0 << 10 << 1 << 5;
    QTest::newRow("no groove") << 25 << 0 << 10 << 1 << 5;
    QTest::newRow("all numbers") << 200 << INT_MIN << INT_MAX << INT_MAX << 0;
    QTest::newRow("no page") << 200 << 0 << 10 << 0 << 5;
    QTest::newRow("negative page") << 200 << 0 << 10 << -11 << 5;
    QTest::newRow("reversed range") << 200 << 10 << 0 << 1 << 5;
    QTest::newRow("position outside") << 200 << 0 << 10 << 1 << 50;
}

void TestEditorStyle::hostileScrollBarsDoNotFall()
{
    QFETCH(int, length);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, page);
    QFETCH(int, position);
    for (const auto orientation : {Qt::Vertical, Qt::Horizontal}) {
        const auto option = barOption(orientation, length, minimum, maximum, page, position);
        QImage image = blank(QSize(200, 200));
        QPainter painter(&image);
        style().drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, &m_bar);
        QCOMPARE(image.pixel(199, 199), Untouched);
        style().hitTestComplexControl(QStyle::CC_ScrollBar, &option, QPoint(5, 5), &m_bar);
    }
}

void TestEditorStyle::scrollBarPartsArePaintedInTheirPlaces()
{
    const QImage image = paintBar(barOption(Qt::Vertical, 191, 0, 39, 10, 20));
    const QRgb ground = rgb(colorScrollBarBackground);
    const QRgb dark = rgb(colorScrollBarForeground);
    // Margins around the arrows and the groove.
    QVERIFY(isAll(image, QRect(0, 0, 16, 3), ground));
    QVERIFY(isAll(image, QRect(0, 0, 3, 191), ground));
    QVERIFY(isAll(image, QRect(3, 10, 10, 1), ground));
    QVERIFY(isAll(image, QRect(0, 187, 16, 4), ground));
    // The outline of the groove, and its inside above and below the slider.
    QVERIFY(isAll(image, QRect(4, 21, 8, 1), dark));
    QVERIFY(isAll(image, QRect(4, 186, 8, 1), dark));
    QVERIFY(isAll(image, QRect(4, 21, 1, 166), dark));
    QVERIFY(isAll(image, QRect(11, 21, 1, 166), dark));
    QVERIFY(isAll(image, QRect(QPoint(5, 22), QPoint(10, 88)), ground));
    QVERIFY(isAll(image, QRect(QPoint(5, 89), QPoint(10, 121)), dark));
    QVERIFY(isAll(image, QRect(QPoint(5, 122), QPoint(10, 185)), ground));
    // The arrows pixel by pixel.
    const QImage up = QImage(scrollbar_up_image).convertToFormat(QImage::Format_ARGB32);
    const QImage down = QImage(scrollbar_down_image).convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(image.copy(3, 3, 10, 7), up);
    QCOMPARE(image.copy(3, 11, 10, 7), down);

    const QImage lying = paintBar(barOption(Qt::Horizontal, 191, 0, 39, 10, 20));
    QCOMPARE(lying.copy(3, 3, 7, 10),
             QImage(scrollbar_left_image).convertToFormat(QImage::Format_ARGB32));
    QCOMPARE(lying.copy(11, 3, 7, 10),
             QImage(scrollbar_right_image).convertToFormat(QImage::Format_ARGB32));
    QVERIFY(isAll(lying, QRect(QPoint(89, 5), QPoint(121, 10)), dark));
}

void TestEditorStyle::aScrollBarWithoutARangeHasNoSlider()
{
    const QImage image = paintBar(barOption(Qt::Vertical, 100, 0, 0, 10, 0));
    QVERIFY(isAll(image, QRect(QPoint(5, 22), QPoint(10, 94)), rgb(colorScrollBarBackground)));
    QVERIFY(isAll(image, QRect(QPoint(4, 21), QPoint(4, 95)), rgb(colorScrollBarForeground)));
}

void TestEditorStyle::aHeldArrowLightsUpOnlyWhileItCanMove_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<bool>("up");
    QTest::addColumn<bool>("lit");
    QTest::newRow("up in between") << 5 << true << true;
    QTest::newRow("up at the start") << 0 << true << false;
    QTest::newRow("up at the end") << 10 << true << true;
    QTest::newRow("down in between") << 5 << false << true;
    QTest::newRow("down at the start") << 0 << false << true;
    QTest::newRow("down at the end") << 10 << false << false;
}

void TestEditorStyle::aHeldArrowLightsUpOnlyWhileItCanMove()
{
    QFETCH(int, position);
    QFETCH(bool, up);
    QFETCH(bool, lit);
    const QRgb green = qRgb(0, 255, 0);
    for (const auto orientation : {Qt::Vertical, Qt::Horizontal}) {
        auto option = barOption(orientation, 100, 0, 10, 5, position);
        option.activeSubControls = up ? QStyle::SC_ScrollBarSubLine : QStyle::SC_ScrollBarAddLine;
        QVERIFY(!contains(paintBar(option), option.rect, green));
        option.state |= QStyle::State_Sunken;
        const QImage image = paintBar(option);
        const QRect subLine(3, 3, orientation == Qt::Vertical ? 10 : 7,
                            orientation == Qt::Vertical ? 7 : 10);
        const QRect addLine =
            orientation == Qt::Vertical ? subLine.translated(0, 8) : subLine.translated(8, 0);
        QCOMPARE(contains(image, up ? subLine : addLine, green), lit);
        QVERIFY(!contains(image, up ? addLine : subLine, green));
    }
}

void TestEditorStyle::anArrowHeldWithTheMouseLightsUp()
{
    QScrollBar bar(Qt::Vertical);
    bar.setRange(0, 10);
    bar.setValue(5);
    bar.resize(16, 120);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    const QRgb green = qRgb(0, 255, 0);
    QVERIFY(!contains(bar.grab().toImage(), QRect(3, 3, 10, 7), green));
    QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 6));
    QVERIFY(contains(bar.grab().toImage(), QRect(3, 3, 10, 7), green));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 6));
    QVERIFY(!contains(bar.grab().toImage(), QRect(3, 3, 10, 7), green));
}

void TestEditorStyle::clicksOnTheArrowsStep()
{
    QScrollBar bar(Qt::Vertical);
    bar.setRange(0, 10);
    bar.setValue(5);
    bar.resize(16, 120);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 6));
    QCOMPARE(bar.value(), 4);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 14));
    QCOMPARE(bar.value(), 5);
    // Drag the slider to the end of the groove.
    QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 68));
    QTest::mouseMove(&bar, QPoint(8, 118));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(8, 118));
    QCOMPARE(bar.value(), 10);
}

// --- Primitives
// -----------------------------------------------------------------------------------

void TestEditorStyle::framesAreFilled()
{
    for (const auto element : {QStyle::PE_Frame, QStyle::PE_FrameMenu}) {
        QImage image = blank(QSize(20, 20));
        QPainter painter(&image);
        QStyleOptionFrame option;
        option.rect = QRect(2, 3, 10, 11);
        style().drawPrimitive(element, &option, &painter, &m_menu);
        QVERIFY(isAll(image, option.rect, rgb(colorPaletteFrame)));
        QCOMPARE(image.pixel(1, 3), Untouched);
        QCOMPARE(image.pixel(12, 3), Untouched);
        QCOMPARE(image.pixel(2, 14), Untouched);
    }
}

void TestEditorStyle::primitivesThatDrawNothing_data()
{
    QTest::addColumn<int>("element");
    QTest::newRow("focus") << int(QStyle::PE_FrameFocusRect);
    QTest::newRow("menu bar") << int(QStyle::PE_PanelMenuBar);
    QTest::newRow("line edit") << int(QStyle::PE_PanelLineEdit);
}

void TestEditorStyle::primitivesThatDrawNothing()
{
    QFETCH(int, element);
    QImage image = blank(QSize(20, 20));
    QPainter painter(&image);
    QStyleOptionFrame option;
    option.rect = image.rect();
    option.lineWidth = 1;
    option.state = QStyle::State_Enabled;
    style().drawPrimitive(QStyle::PrimitiveElement(element), &option, &painter, &m_menuBar);
    QVERIFY(isAll(image, image.rect(), Untouched));
}

void TestEditorStyle::branchLines_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<bool>("rightToLeft");
    QTest::addColumn<bool>("up");
    QTest::addColumn<bool>("down");
    QTest::addColumn<bool>("toText");
    using S = QStyle;
    const auto row = [](const char *name, QStyle::State state, bool up, bool down, bool toText) {
        QTest::addRow("%s", name) << state << false << up << down << toText;
        QTest::addRow("%s, right to left", name) << state << true << up << down << toText;
    };
    row("nothing", S::State_None, false, false, false);
    row("item", S::State_Item, true, false, true);
    row("sibling", S::State_Sibling, true, true, false);
    row("item and sibling", S::State_Item | S::State_Sibling, true, true, true);
    row("children", S::State_Children, true, false, false);
    row("open", S::State_Open, true, false, false);
    row("closed branch", S::State_Item | S::State_Children, true, false, true);
    row("open branch", S::State_Item | S::State_Children | S::State_Open, true, false, true);
}

void TestEditorStyle::branchLines()
{
    QFETCH(QStyle::State, state);
    QFETCH(bool, rightToLeft);
    QFETCH(bool, up);
    QFETCH(bool, down);
    QFETCH(bool, toText);
    QTreeWidget tree;
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    QImage image = blank(QSize(21, 17));
    {
        QPainter painter(&image);
        QStyleOption option;
        option.rect = image.rect();
        option.state = state;
        option.direction = rightToLeft ? Qt::RightToLeft : Qt::LeftToRight;
        style().drawPrimitive(QStyle::PE_IndicatorBranch, &option, &painter, &tree);
    }
    const QRgb line = rgb(colorListViewLine);
    // Outside of the picture in the middle, which covers 6 to 14 and 4 to 12.
    QVERIFY(isAll(image, QRect(QPoint(10, 0), QPoint(10, 3)), up ? line : Untouched));
    QVERIFY(isAll(image, QRect(QPoint(10, 13), QPoint(10, 16)), down ? line : Untouched));
    const QRect left(QPoint(0, 8), QPoint(5, 8));
    const QRect right(QPoint(15, 8), QPoint(20, 8));
    QVERIFY(isAll(image, rightToLeft ? left : right, toText ? line : Untouched));
    QVERIFY(isAll(image, rightToLeft ? right : left, Untouched));
    if (state & QStyle::State_Children) {
        const QImage expected(state & QStyle::State_Open ? list_close_image : list_open_image);
        QCOMPARE(image.copy(6, 4, 9, 9), expected.convertToFormat(QImage::Format_ARGB32));
    }
}

// --- Menus
// ----------------------------------------------------------------------------------------

void TestEditorStyle::menuBarItemColours_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("text");
    using S = QStyle;
    QTest::newRow("enabled") << QStyle::State(S::State_Enabled) << QColor(0, 0, 0)
                             << QColor(220, 220, 220);
    QTest::newRow("disabled") << QStyle::State(S::State_None) << QColor(0, 0, 0)
                              << QColor(102, 102, 102);
    QTest::newRow("selected") << (S::State_Enabled | S::State_Selected) << QColor(0, 0, 0)
                              << QColor(0, 204, 0);
    QTest::newRow("disabled and selected")
        << QStyle::State(S::State_Selected) << QColor(0, 0, 0) << QColor(102, 102, 102);
}

void TestEditorStyle::menuBarItemColours()
{
    QFETCH(QStyle::State, state);
    QFETCH(QColor, ground);
    QFETCH(QColor, text);
    auto option = itemOption(QStringLiteral("&HHHH"), state);
    const QImage image = paintItem(option, QStyle::CE_MenuBarItem);
    QCOMPARE(image.pixel(0, 0), rgb(ground));
    QVERIFY(contains(image, image.rect(), rgb(text)));
    // Centred: as much room on both sides, give or take a pixel.
    int first = image.width();
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        if (!isAll(image, QRect(x, 0, 1, image.height()), rgb(ground))) {
            first = qMin(first, x);
            last = x;
        }
    }
    QVERIFY(qAbs(first - (image.width() - 1 - last)) <= 2);
}

void TestEditorStyle::menuBarItemWithAnIconShowsTheIcon()
{
    auto option = itemOption(QStringLiteral("HHHH"), QStyle::State_Enabled);
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    option.icon = QIcon(pixmap);
    const QImage image = paintItem(option, QStyle::CE_MenuBarItem);
    QVERIFY(contains(image, image.rect(), qRgb(255, 0, 0)));
    QVERIFY(!contains(image, image.rect(), rgb(colorMenuBarEnableText)));
    QCOMPARE(image.pixel(image.rect().center()), qRgb(255, 0, 0));
}

void TestEditorStyle::theEmptyAreaOfTheMenuBarIsTransparent()
{
    const QImage image =
        paintItem(itemOption(QString(), QStyle::State_Enabled), QStyle::CE_MenuBarEmptyArea);
    QVERIFY(isAll(image, image.rect(), Untouched));
}

void TestEditorStyle::menuItemColours_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<QColor>("ground");
    QTest::addColumn<QColor>("text");
    using S = QStyle;
    const auto row = [](const char *name, QStyle::State state, const QColor &ground,
                        const QColor &text) { QTest::newRow(name) << state << ground << text; };
    const QColor green(0, 204, 0);
    row("enabled", S::State_Enabled, {153, 153, 153}, {24, 15, 2});
    row("disabled", S::State_None, {153, 153, 153}, {102, 102, 102});
    row("selected", S::State_Enabled | S::State_Selected, {24, 15, 2}, green);
    row("sunken", S::State_Enabled | S::State_Sunken, {0, 0, 0}, green);
    row("sunken and selected", S::State_Enabled | S::State_Sunken | S::State_Selected, {0, 0, 0},
        green);
    row("disabled and selected", S::State_Selected, {24, 15, 2}, {102, 102, 102});
    row("disabled and sunken", S::State_Sunken, {0, 0, 0}, {102, 102, 102});
}

void TestEditorStyle::menuItemColours()
{
    QFETCH(QStyle::State, state);
    QFETCH(QColor, ground);
    QFETCH(QColor, text);
    const auto option = itemOption(QStringLiteral("HHHH"), state);
    const QImage image = paintItem(option);
    for (const QPoint &corner : {image.rect().topLeft(), image.rect().topRight(),
                                 image.rect().bottomLeft(), image.rect().bottomRight()}) {
        QCOMPARE(image.pixel(corner), rgb(ground));
    }
    QVERIFY(contains(image, image.rect(), rgb(text)));
}

void TestEditorStyle::checkMarks_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("lit");
    using S = QStyle;
    QTest::newRow("off") << QStyle::State(S::State_Enabled) << false << false;
    QTest::newRow("on") << QStyle::State(S::State_Enabled) << true << true;
    QTest::newRow("off, held") << (S::State_Enabled | S::State_Sunken) << false << true;
    QTest::newRow("off, held, disabled") << QStyle::State(S::State_Sunken) << false << false;
    QTest::newRow("on, disabled") << QStyle::State(S::State_None) << true << true;
}

void TestEditorStyle::checkMarks()
{
    QFETCH(QStyle::State, state);
    QFETCH(bool, checked);
    QFETCH(bool, lit);
    auto option = itemOption(QString(), state);
    option.checkType = QStyleOptionMenuItem::NonExclusive;
    option.checked = checked;
    const QImage image = paintItem(option);
    // Five pixels from the left, (20 - 5) / 2 from the top.
    const QImage expected(lit ? radio_check_image : radio_image);
    QCOMPARE(image.copy(5, 7, 5, 5), expected.convertToFormat(QImage::Format_ARGB32));
    QCOMPARE(image.pixel(4, 9), image.pixel(0, 0));
    QCOMPARE(image.pixel(10, 9), image.pixel(0, 0));
}

void TestEditorStyle::aCheckableItemWithAnIconHasNoMark()
{
    auto option = itemOption(QString(), QStyle::State_Enabled);
    option.checkType = QStyleOptionMenuItem::NonExclusive;
    option.checked = true;
    QPixmap pixmap(8, 8);
    pixmap.fill(Qt::red);
    option.icon = QIcon(pixmap);
    option.maxIconWidth = 20;
    const QImage image = paintItem(option);
    QVERIFY(!contains(image, image.rect(), qRgb(0x66, 0x66, 0x66)));
    QVERIFY(isAll(image, QRect(6, 6, 8, 8), qRgb(255, 0, 0)));
    QCOMPARE(image.pixel(5, 6), rgb(colorMenuEnableBackground));
    QCOMPARE(image.pixel(14, 6), rgb(colorMenuEnableBackground));
}

void TestEditorStyle::theTextStartsBehindTheIconColumn_data()
{
    QTest::addColumn<int>("iconWidth");
    QTest::addColumn<int>("start");
    QTest::newRow("no icons") << 0 << 12;
    QTest::newRow("narrow icons") << 6 << 12;
    QTest::newRow("wide icons") << 20 << 25;
}

void TestEditorStyle::theTextStartsBehindTheIconColumn()
{
    QFETCH(int, iconWidth);
    QFETCH(int, start);
    auto option = itemOption(QStringLiteral("HHHH"), QStyle::State_Enabled);
    option.maxIconWidth = iconWidth;
    const QImage image = paintItem(option);
    QVERIFY(isAll(image, QRect(0, 0, start, 20), rgb(colorMenuEnableBackground)));
    QVERIFY(contains(image, QRect(start, 0, 3, 20), rgb(colorMenuEnableText)));
}

void TestEditorStyle::theShortcutStandsAtTheRight()
{
    auto option = itemOption(QStringLiteral("\tH"), QStyle::State_Enabled);
    option.reservedShortcutWidth = 50;
    const QImage image = paintItem(option);
    // The text would end 14 + 50 pixels from the edge of 160, and the shortcut begins there.
    QVERIFY(isAll(image, QRect(0, 0, 96, 20), rgb(colorMenuEnableBackground)));
    QVERIFY(contains(image, QRect(96, 0, 4, 20), rgb(colorMenuEnableText)));
}

void TestEditorStyle::backspaceIsWrittenAsTheKeysSay()
{
    const auto painted = [this](const QString &text) {
        auto option = itemOption(text, QStyle::State_Enabled);
        option.reservedShortcutWidth = 90;
        return paintItem(option);
    };
    QCOMPARE(painted(QStringLiteral("A\tCtrl+Backspace")),
             painted(QStringLiteral("A\tCtrl+Del (BS)")));
    QCOMPARE(painted(QStringLiteral("A\tBackspace")), painted(QStringLiteral("A\tDel (BS)")));
    QVERIFY(painted(QStringLiteral("Backspace\tA")) != painted(QStringLiteral("Del (BS)\tA")));
}

void TestEditorStyle::mnemonicsAreNotShown()
{
    for (const auto element : {QStyle::CE_MenuItem, QStyle::CE_MenuBarItem}) {
        const auto painted = [&](const QString &text) {
            return paintItem(itemOption(text, QStyle::State_Enabled), element);
        };
        QCOMPARE(painted(QStringLiteral("&File && Edit&")), painted(QStringLiteral("File  Edit")));
    }
}

void TestEditorStyle::theDefaultItemIsBold()
{
    auto option = itemOption(QStringLiteral("HHHH"), QStyle::State_Enabled);
    const QImage plain = paintItem(option);
    option.font.setWeight(QFont::Bold);
    const QImage bold = paintItem(option);
    option.font.setWeight(QFont::Normal);
    option.menuItemType = QStyleOptionMenuItem::DefaultItem;
    QVERIFY(plain != bold);
    QCOMPARE(paintItem(option), bold);
}

void TestEditorStyle::separatorLine()
{
    auto option = itemOption(QString(), QStyle::State_Enabled);
    option.menuItemType = QStyleOptionMenuItem::Separator;
    option.rect = QRect(0, 0, 60, 7);
    const QImage image = paintItem(option);
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 60; ++x) {
            const bool line = y == 3 && x >= 5 && x < 55;
            QCOMPARE(image.pixel(x, y),
                     line ? rgb(colorMenuEnableText) : rgb(colorMenuEnableBackground));
        }
    }
}

void TestEditorStyle::separatorWithATextStartsItsLineBehindIt()
{
    auto option = itemOption(QStringLiteral("HHH"), QStyle::State_Enabled);
    option.menuItemType = QStyleOptionMenuItem::Separator;
    const QImage image = paintItem(option);
    const QRgb dark = rgb(colorMenuEnableText);
    const int end = 5 + option.fontMetrics.horizontalAdvance(option.text);
    QVERIFY(isAll(image, QRect(0, 0, 5, 20), rgb(colorMenuEnableBackground)));
    QVERIFY(contains(image, QRect(5, 0, 3, 20), dark));
    QVERIFY(isAll(image, QRect(end, 0, 5, 20), rgb(colorMenuEnableBackground)));
    QVERIFY(isAll(image, QRect(QPoint(end + 5, 10), QPoint(154, 10)), dark));
    QVERIFY(isAll(image, QRect(155, 0, 5, 20), rgb(colorMenuEnableBackground)));
}

void TestEditorStyle::submenuArrow_data()
{
    QTest::addColumn<QStyle::State>("state");
    QTest::addColumn<QColor>("color");
    QTest::newRow("enabled") << QStyle::State(QStyle::State_Enabled) << QColor(24, 15, 2);
    QTest::newRow("disabled") << QStyle::State(QStyle::State_None) << QColor(102, 102, 102);
    QTest::newRow("selected") << (QStyle::State_Enabled | QStyle::State_Selected)
                              << QColor(0, 204, 0);
}

void TestEditorStyle::submenuArrow()
{
    QFETCH(QStyle::State, state);
    QFETCH(QColor, color);
    auto option = itemOption(QString(), state);
    option.menuItemType = QStyleOptionMenuItem::SubMenu;
    const QImage right = paintItem(option);
    QVERIFY(contains(right, QRect(146, 0, 14, 20), rgb(color)));
    QVERIFY(isAll(right, QRect(0, 0, 146, 20), right.pixel(0, 0)));
    option.direction = Qt::RightToLeft;
    const QImage left = paintItem(option);
    QVERIFY(contains(left, QRect(0, 0, 14, 20), rgb(color)));
    QVERIFY(isAll(left, QRect(14, 0, 146, 20), left.pixel(159, 0)));
}

void TestEditorStyle::painterStateIsAsBefore()
{
    QImage image = blank(QSize(160, 100));
    QPainter painter(&image);
    painter.setPen(Qt::yellow);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    const QFont font = painter.font();
    auto option = itemOption(QStringLiteral("A\tB"), QStyle::State_Enabled);
    option.menuItemType = QStyleOptionMenuItem::DefaultItem;
    style().drawControl(QStyle::CE_MenuItem, &option, &painter, &m_menu);
    style().drawControl(QStyle::CE_MenuBarItem, &option, &painter, &m_menuBar);
    const auto bar = barOption(Qt::Vertical, 100, 0, 10, 5, 0);
    style().drawComplexControl(QStyle::CC_ScrollBar, &bar, &painter, &m_bar);
    style().drawPrimitive(QStyle::PE_FrameMenu, &option, &painter, &m_menu);
    QCOMPARE(painter.pen().color(), QColor(Qt::yellow));
    QCOMPARE(painter.font(), font);
    QVERIFY(painter.testRenderHint(QPainter::TextAntialiasing));
}

void TestEditorStyle::aRealMenuGivesRoomToTextsAndShortcuts()
{
    QMenu menu;
    QFont font = menu.font();
    font.setPixelSize(10);
    menu.setFont(font);
    const QString longest = QStringLiteral("The longest of all the texts");
    const QString shortcut = QStringLiteral("Ctrl+Shift+Backspace");
    QAction *action = menu.addAction(longest);
    action->setShortcut(QKeySequence(shortcut));
    menu.addAction(QStringLiteral("Short"));
    menu.setDefaultAction(action);
    const QFontMetrics metrics(font);
    QFont bold = font;
    bold.setWeight(QFont::Bold);
    const int least = 7 + 5 + QFontMetrics(bold).horizontalAdvance(longest) +
                      metrics.horizontalAdvance(shortcut) + 14;
    const QRect item = menu.actionGeometry(action);
    QVERIFY2(item.width() >= least, qPrintable(QString::number(item.width())));
    QVERIFY(item.width() < least + 40);
    QCOMPARE(item.height(), metrics.height() + 4);
}

void TestEditorStyle::aRealMenuShowsTheSelectedItem()
{
    QMenu menu;
    QAction *first = menu.addAction(QStringLiteral("First"));
    QAction *second = menu.addAction(QStringLiteral("Second"));
    menu.popup(QPoint(50, 50));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QTest::keyClick(&menu, Qt::Key_Down);
    QTest::keyClick(&menu, Qt::Key_Down);
    QCOMPARE(menu.activeAction(), second);
    const QImage image = menu.grab().toImage();
    const QPoint inset(1, 1);
    QCOMPARE(image.pixel(menu.actionGeometry(first).topLeft() + inset),
             rgb(colorMenuEnableBackground));
    QCOMPARE(image.pixel(menu.actionGeometry(second).topLeft() + inset),
             rgb(colorMenuSelectBackground));
    // A frame of one pixel.
    QCOMPARE(image.pixel(0, 0), rgb(colorPaletteFrame));
    QCOMPARE(menu.actionGeometry(first).topLeft(), QPoint(1, 1));
    menu.close();
}

void TestEditorStyle::aMenuLongerThanTheScreenScrollsAndShowsIt()
{
    QMenu menu;
    menu.setFixedWidth(265);
    const QRect screen = menu.screen()->geometry();
    for (int i = 0; i < screen.height() / 8; ++i) {
        menu.addAction(QString::number(i));
    }
    const auto shows = [&menu](int index) {
        return menu.rect().contains(menu.actionGeometry(menu.actions().at(index)));
    };
    // How many pixels of an arrow there are in the uppermost rows, or in the lowest.
    const auto arrowPixels = [&menu](bool below) {
        const QImage image = menu.grab().toImage();
        int count = 0;
        for (int y = 1; y < 10; ++y) {
            for (int x = 100; x < 165; ++x) {
                const int row = below ? image.height() - 1 - y : y;
                count += image.pixel(x, row) == rgb(colorMenuEnableText) ? 1 : 0;
            }
        }
        return count;
    };
    menu.popup(screen.topLeft());
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QVERIFY(screen.contains(menu.geometry()));
    const int last = static_cast<int>(menu.actions().size()) - 1;
    QVERIFY(shows(0));
    QVERIFY(!shows(last));
    QCOMPARE(arrowPixels(false), 0);
    QVERIFY(arrowPixels(true) > 5);
    QTest::keyClick(&menu, Qt::Key_End);
    QVERIFY(shows(last));
    QVERIFY(!shows(0));
    QVERIFY(arrowPixels(false) > 5);
    // The mouse on the arrow goes on by itself.
    QTest::mouseMove(&menu, QPoint(130, 4));
    QTRY_VERIFY(shows(0));
    menu.close();
}

void TestEditorStyle::nothingIsPaintedOutsideOfTheItemsRectangle()
{
    auto option = itemOption(QStringLiteral("A\tB"), QStyle::State_Enabled);
    option.menuItemType = QStyleOptionMenuItem::SubMenu;
    option.checkType = QStyleOptionMenuItem::NonExclusive;
    option.rect = QRect(30, 30, 100, 20);
    QImage image = blank(QSize(160, 80));
    {
        QPainter painter(&image);
        style().drawControl(QStyle::CE_MenuItem, &option, &painter, &m_menu);
        option.menuItemType = QStyleOptionMenuItem::Separator;
        style().drawControl(QStyle::CE_MenuItem, &option, &painter, &m_menu);
        style().drawControl(QStyle::CE_MenuBarItem, &option, &painter, &m_menuBar);
    }
    for (int y = 0; y < 80; ++y) {
        for (int x = 0; x < 160; ++x) {
            if (!option.rect.contains(x, y)) {
                QCOMPARE(image.pixel(x, y), Untouched);
            }
        }
    }
}

void TestEditorStyle::everyPixelIsTwoByTwoAtTwiceTheScale_data()
{
    QTest::addColumn<QString>("what");
    for (const char *what : {"vertical bar", "horizontal bar", "branch", "separator", "mark"}) {
        QTest::newRow(what) << QString::fromLatin1(what);
    }
}

void TestEditorStyle::everyPixelIsTwoByTwoAtTwiceTheScale()
{
    QFETCH(QString, what);
    QTreeWidget tree;
    tree.setObjectName(QStringLiteral("CPopupTreeWidget"));
    const auto paint = [&](int ratio) {
        QImage image = blank(QSize(191, 191) * ratio);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        // As it comes to a style from a widget on a screen of that scale.
        painter.setRenderHint(QPainter::SmoothPixmapTransform, ratio > 1);
        if (what.endsWith(QLatin1String("bar"))) {
            const bool upright = what == QLatin1String("vertical bar");
            const auto option =
                barOption(upright ? Qt::Vertical : Qt::Horizontal, 191, 0, 39, 10, 20);
            style().drawComplexControl(QStyle::CC_ScrollBar, &option, &painter, &m_bar);
        } else if (what == QLatin1String("branch")) {
            QStyleOption option;
            option.rect = QRect(3, 4, 20, 16);
            option.state = QStyle::State_Item | QStyle::State_Sibling | QStyle::State_Children;
            style().drawPrimitive(QStyle::PE_IndicatorBranch, &option, &painter, &tree);
        } else {
            auto option = itemOption(QString(), QStyle::State_Enabled);
            if (what == QLatin1String("separator")) {
                option.menuItemType = QStyleOptionMenuItem::Separator;
            }
            option.checkType = QStyleOptionMenuItem::NonExclusive;
            style().drawControl(QStyle::CE_MenuItem, &option, &painter, &m_menu);
        }
        painter.end();
        image.setDevicePixelRatio(1);
        return image;
    };
    QCOMPARE(paint(2), paint(1).scaled(382, 382));
}

QTEST_MAIN(TestEditorStyle)
#include "tst_editorstyle.moc"
