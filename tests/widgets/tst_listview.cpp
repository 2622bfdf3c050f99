// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CListView.h"

#include <QtTest/QtTest>

#include <QtGui/QPainter>
#include <QtGui/QPicture>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>

#include <climits>
#include <memory>

// The list of several columns: what it draws, to the pixel, and how mouse, wheel and keys move it.

namespace
{

constexpr QRgb Window = qRgb(10, 20, 30);
constexpr QRgb Odd = qRgb(89, 89, 89);
constexpr QRgb Even = qRgb(72, 71, 71);
constexpr QRgb Focus = qRgb(0, 102, 0);
constexpr QRgb Unfocused = qRgb(0, 162, 0);
constexpr QRgb Mark = qRgb(0, 255, 0);

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

// A list of 100 by 100 pixels with a scroll bar beside it, in a window.
class ListWindow : public QWidget
{
public:
    ListWindow()
        : list(new CListView(this))
        , bar(new QScrollBar(Qt::Vertical, this))
        , other(new QLineEdit(this))
    {
        QPalette colours = palette();
        colours.setColor(QPalette::Window, QColor(Window));
        setPalette(colours);
        resize(200, 150);
        QFont font;
        font.setPixelSize(10);
        font.setStyleStrategy(QFont::NoAntialias);
        list->setFont(font);
        list->setGeometry(0, 0, 100, 100);
        bar->setGeometry(110, 0, 16, 100);
        other->setGeometry(0, 120, 100, 20);
    }
    void open()
    {
        other->setFocus();
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
        activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(this));
    }
    void fill(int count)
    {
        for (int i = 0; i < count; ++i) {
            list->addItem({QString()});
        }
    }
    QImage shown() { return grab().toImage().copy(list->geometry()); }

    CListView *list;
    QScrollBar *bar;
    QLineEdit *other;
};

// As the window system gives it.
void turnWheel(QWindow *window, const QPointF &position, int delta)
{
    QWheelEvent event(position, window->mapToGlobal(position), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(window, &event);
}

void wheel(QWidget *widget, int delta)
{
    const QPointF position(5, 5);
    QWheelEvent event(position, widget->mapToGlobal(position), QPoint(), QPoint(0, delta),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

} // namespace

class TestListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void defaults();
    void propertiesAreReadAndWrittenByName_data();
    void propertiesAreReadAndWrittenByName();
    void valuesBelowTheLeastAreRaised_data();
    void valuesBelowTheLeastAreRaised();
    void theIconColumnStaysWithinTheColumns_data();
    void theIconColumnStaysWithinTheColumns();

    void addingKeepsTheRange();
    void indicesOutOfRangeAreRefused();
    void aRowRemovedAboveAMarkedRowLeavesTheMarkOnItsItem();
    void aRowInsertedAboveMovesIconsAndMarks();
    void removingARowTakesItsIconAndMarkAway();
    void clearLeavesNothing();
    void textOutsideOfTheListIsNull();

    void visibleRows_data();
    void visibleRows();
    void columnWidths_data();
    void columnWidths();
    void aHintThatIsNoNumberLeavesNoHintsAndTheWidthsUntilTheNextResize_data();
    void aHintThatIsNoNumberLeavesNoHintsAndTheWidthsUntilTheNextResize();
    void anEmptyHintClearsTheHints();
    void rowsAndColumnsByPosition();
    void itemRectangles();

    void theScrollBarsRangeIsWhatDoesNotShow();
    void theScrollBarsMaximumIsZeroWhenAllItemsFit();
    void theScrollBarsPageIsWhatShows();
    void anotherScrollBarTakesOver();
    void aDeletedScrollBarLeavesTheFirstRowOnTop();

    void aListLowerThanARowPaintsNothing_data();
    void aListLowerThanARowPaintsNothing();
    void rowsAlternateFromTheFirstItemOn();
    void theSelectedRowsColours();
    void cellsAreFilledAndSpacesAreNot();
    void theIconStandsInItsColumnCentred();
    void ofAHighIconTheMiddleIsShown();
    void theTextStartsBehindTheIcon();
    void theTextIsShiftedByTheOffsets();
    void aMarkIsAFrameAroundTheWholeRow();
    void rowsIconsAndMarksAreSharpAtTwiceTheScale();
    void trimCutsWhatIsTooWide();
    void trimWithAColumnNarrowerThanTheLabelLeavesTheLabelAlone();
    void withoutTrimTheTextEndsAtTheCell();
    void aChangeOfTheFontIsShown();
    void scrollingShowsOtherRows();

    void aPressSelectsTheRowAtThePoint();
    void aPressOnTheMarginSelectsNothing();
    void aDoubleClickOnAnUnselectedRowOnlySelects();
    void aDoubleClickOnTheSelectedRowIsTold();
    void aDoubleClickWithAnotherButtonDoesNothing();
    void theWheelGoesToTheScrollBar();
    void fineWheelsStepOncePerNotchAndCarryTheRest();
    void theWheelAtTheEndIsPassedOnOnlyOnce();
    void theWheelWithoutAScrollBarDoesNothing();
    void theWheelTakesTheFocusIfThePolicyAllows();
    void leftAndRightDoNothing();
    void keysMoveTheSelectionAndTheScrollBarFollows();
    void pageKeysMoveByTheLists();
    void adjustScrollFollowsAnySelection();
    void focusSelectsTheListAndSaysSo();
    void ofTwoListsOneShowsTheFocus();

    void aListMayGoWhenItsSelectionMoves();

    void hostileValuesDoNotFall();
    void moreColumnsThanTextsAreEmpty();
    void veryLongTexts();
    void aHundredThousandRowsPaintOnlyWhatShows();

private:
    void addTexts(int count)
    {
        for (int i = 0; i < count; ++i) {
            list().addItem({QString::number(i)});
        }
    }
    CListView &list() { return *m_window->list; }
    QScrollBar &bar() { return *m_window->bar; }
    QImage shown() { return m_window->shown(); }

    std::unique_ptr<ListWindow> m_window;
};

void TestListView::init()
{
    m_window = std::make_unique<ListWindow>();
    list().setScrollBar(&bar());
}

void TestListView::cleanup()
{
    m_window.reset();
}

// --- Properties
// -----------------------------------------------------------------------------------

void TestListView::defaults()
{
    const CListView view;
    QCOMPARE(view.alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(view.foregroundColor(), QColor(182, 182, 182));
    QCOMPARE(view.foregroundFocusColor(), QColor(178, 178, 178));
    QCOMPARE(view.foregroundSelectedFocusColor(), QColor(255, 255, 255));
    QCOMPARE(view.backgroundOddRowColor(), QColor(89, 89, 89));
    QCOMPARE(view.backgroundEvenRowColor(), QColor(72, 71, 71));
    QCOMPARE(view.backgroundFocusColor(), QColor(0, 102, 0));
    QCOMPARE(view.backgroundUnselectedFocusColor(), QColor(0, 162, 0));
    QVERIFY(!view.backgroundSelectedFocusColor().isValid());
    QCOMPARE(view.markedFrameColor(), QColor(0, 255, 0));
    QVERIFY(view.columnWidthHint().isNull());
    QCOMPARE(view.rowHeight(), 15);
    QCOMPARE(view.marginWidth(), 0);
    QCOMPARE(view.marginHeight(), 0);
    QCOMPARE(view.spacingWidth(), 2);
    QCOMPARE(view.spacingHeight(), 2);
    QCOMPARE(view.textDrawXPointOffset(), 0);
    QCOMPARE(view.textDrawYPointOffset(), 0);
    QCOMPARE(view.itemMarginWidth(), 0);
    QCOMPARE(view.itemMarginHeight(), 0);
    QCOMPARE(view.iconMarginWidth(), 5);
    QCOMPARE(view.columnCount(), 1);
    QCOMPARE(view.columnIcon(), 0);
    QCOMPARE(view.trim(), false);
    QCOMPARE(view.trimLabel(), QStringLiteral("..."));
    QCOMPARE(view.count(), 0);
    QCOMPARE(view.minimum(), 0);
    QCOMPARE(view.maximum(), 0);
    QVERIFY(!view.scrollBar());
    QVERIFY(!view.isListSelected());
    QCOMPARE(view.orientation(), Qt::Vertical);
    QVERIFY(view.invertedControls());
    QCOMPARE(view.focusPolicy(), Qt::ClickFocus);
}

void TestListView::propertiesAreReadAndWrittenByName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QVariant>("value");
    const QVariant colour = QColor(1, 2, 3);
    for (const char *name :
         {"foregroundColor", "foregroundFocusColor", "foregroundSelectedFocusColor",
          "backgroundOddRowColor", "backgroundEvenRowColor", "backgroundFocusColor",
          "markedFrameColor"}) {
        QTest::newRow(name) << QByteArray(name) << colour;
    }
    for (const char *name : {"rowHeight", "marginWidth", "marginHeight", "spacingWidth",
                             "spacingHeight", "textDrawXPointOffset", "textDrawYPointOffset"}) {
        QTest::newRow(name) << QByteArray(name) << QVariant(7);
    }
    QTest::newRow("alignment") << QByteArray("alignment")
                               << QVariant::fromValue(Qt::Alignment(Qt::AlignBottom));
    QTest::newRow("columnWidthHint")
        << QByteArray("columnWidthHint") << QVariant(QStringLiteral("1,2"));
}

void TestListView::propertiesAreReadAndWrittenByName()
{
    QFETCH(QByteArray, name);
    QFETCH(QVariant, value);
    QVERIFY(list().metaObject()->indexOfProperty(name) >= 0);
    QVERIFY(list().property(name) != value);
    QVERIFY(list().setProperty(name, value));
    QCOMPARE(list().property(name), value);
}

void TestListView::valuesBelowTheLeastAreRaised_data()
{
    QTest::addColumn<int>("value");
    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -5;
    QTest::newRow("very negative") << INT_MIN;
}

void TestListView::valuesBelowTheLeastAreRaised()
{
    QFETCH(int, value);
    CListView view;
    view.setRowHeight(value);
    view.setColumnCount(value);
    view.setMarginWidth(value);
    view.setMarginHeight(value);
    view.setSpacingWidth(value);
    view.setSpacingHeight(value);
    view.setItemMarginWidth(value);
    view.setItemMarginHeight(value);
    view.setIconMarginWidth(value);
    QCOMPARE(view.rowHeight(), 1);
    QCOMPARE(view.columnCount(), 1);
    for (const int least :
         {view.marginWidth(), view.marginHeight(), view.spacingWidth(), view.spacingHeight(),
          view.itemMarginWidth(), view.itemMarginHeight(), view.iconMarginWidth()}) {
        QCOMPARE(least, 0);
    }
}

void TestListView::theIconColumnStaysWithinTheColumns_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("given");
    QTest::addColumn<int>("kept");
    QTest::newRow("first") << 3 << 0 << 0;
    QTest::newRow("second") << 3 << 1 << 1;
    QTest::newRow("last") << 3 << 2 << 2;
    QTest::newRow("beyond the last") << 3 << 3 << 2;
    QTest::newRow("far beyond the last") << 3 << INT_MAX << 2;
    QTest::newRow("negative") << 3 << -1 << 0;
    QTest::newRow("never the first when above 0") << 1 << 1 << 1;
}

void TestListView::theIconColumnStaysWithinTheColumns()
{
    QFETCH(int, count);
    QFETCH(int, given);
    QFETCH(int, kept);
    list().setColumnCount(count);
    list().setColumnIcon(given);
    QCOMPARE(list().columnIcon(), kept);
}

// --- Items
// ----------------------------------------------------------------------------------------

void TestListView::addingKeepsTheRange()
{
    QCOMPARE(list().addItem({QStringLiteral("a")}), 0);
    QCOMPARE(list().maximum(), 0);
    QCOMPARE(list().addItem({QStringLiteral("b")}), 1);
    QCOMPARE(list().maximum(), 1);
    QVERIFY(list().insertItem(0, {QStringLiteral("first")}));
    QVERIFY(list().insertItem(3, {QStringLiteral("last")}));
    QCOMPARE(list().maximum(), 3);
    QCOMPARE(list().minimum(), 0);
    QCOMPARE(list().text(0, 0), QStringLiteral("first"));
    QCOMPARE(list().text(3, 0), QStringLiteral("last"));
    list().setValue(3);
    QVERIFY(list().removeItem(3));
    QCOMPARE(list().maximum(), 2);
    QCOMPARE(list().value(), 2);
}

void TestListView::indicesOutOfRangeAreRefused()
{
    addTexts(2);
    for (const int index : {-1, 2, INT_MIN, INT_MAX}) {
        QVERIFY(!list().setItem(index, {}));
        QVERIFY(!list().setItemIcon(index, QPixmap(3, 3)));
        QVERIFY(!list().removeItem(index));
        list().addMark(index);
        list().removeMark(index);
        QVERIFY(!list().hasMark(index));
        QVERIFY(!list().getItemRect(index).isValid());
    }
    QVERIFY(!list().insertItem(-1, {}));
    QVERIFY(!list().insertItem(3, {}));
    QCOMPARE(list().count(), 2);
    QVERIFY(list().setItem(1, {QStringLiteral("x")}));
    QCOMPARE(list().text(1, 0), QStringLiteral("x"));
}

void TestListView::aRowRemovedAboveAMarkedRowLeavesTheMarkOnItsItem()
{
    addTexts(4);
    list().addMark(2);
    list().removeItem(1);
    QVERIFY(list().hasMark(1));
    QVERIFY(!list().hasMark(2));
    QCOMPARE(list().text(1, 0), QStringLiteral("2"));
    // One below changes nothing.
    list().removeItem(2);
    QVERIFY(list().hasMark(1));
}

void TestListView::aRowInsertedAboveMovesIconsAndMarks()
{
    m_window->open();
    m_window->fill(4);
    QPixmap red(3, 3);
    red.fill(Qt::red);
    list().setItemIcon(1, red);
    list().setItemIcon(2, red);
    list().addMark(1);
    list().insertItem(2, {});
    list().insertItem(1, {});
    const int iconRows[] = {0, 0, 1, 0, 1, 0};
    for (int row = 0; row < 6; ++row) {
        QCOMPARE(contains(shown(), QRect(0, row * 17, 10, 15), qRgb(255, 0, 0)),
                 bool(iconRows[row]));
        QCOMPARE(list().hasMark(row), row == 2);
    }
}

void TestListView::removingARowTakesItsIconAndMarkAway()
{
    m_window->open();
    m_window->fill(3);
    QPixmap red(3, 3);
    red.fill(Qt::red);
    list().setItemIcon(1, red);
    list().addMark(1);
    list().removeItem(1);
    QVERIFY(!list().hasMark(0));
    QVERIFY(!list().hasMark(1));
    QVERIFY(!contains(shown(), QRect(0, 0, 100, 100), qRgb(255, 0, 0)));
}

void TestListView::clearLeavesNothing()
{
    addTexts(9);
    list().addMark(0);
    list().setItemIcon(0, QPixmap(3, 3));
    list().setValue(5);
    list().clear();
    QCOMPARE(list().count(), 0);
    QCOMPARE(list().maximum(), 0);
    QCOMPARE(list().value(), 0);
    QCOMPARE(bar().maximum(), 0);
    addTexts(1);
    QVERIFY(!list().hasMark(0));
}

void TestListView::textOutsideOfTheListIsNull()
{
    list().addItem({QStringLiteral("a"), QString()});
    QCOMPARE(list().text(0, 0), QStringLiteral("a"));
    QVERIFY(list().text(0, 2).isNull());
    QVERIFY(list().text(0, -1).isNull());
    QVERIFY(list().text(1, 0).isNull());
    QVERIFY(list().text(-1, 0).isNull());
}

// --- Geometry
// -------------------------------------------------------------------------------------

void TestListView::visibleRows_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("margin");
    QTest::addColumn<int>("rowHeight");
    QTest::addColumn<int>("spacing");
    QTest::addColumn<int>("rows");
    QTest::newRow("one below a row") << 14 << 0 << 15 << 2 << 0;
    QTest::newRow("one row") << 15 << 0 << 15 << 2 << 1;
    QTest::newRow("one below two rows") << 31 << 0 << 15 << 2 << 1;
    QTest::newRow("two rows and the space between") << 32 << 0 << 15 << 2 << 2;
    QTest::newRow("the template list") << 195 << 5 << 15 << 2 << 11;
    QTest::newRow("the import list") << 185 << 0 << 15 << 2 << 11;
    QTest::newRow("margin higher than the list") << 20 << 50 << 15 << 2 << 0;
    QTest::newRow("rows of one pixel") << 20 << 0 << 1 << 0 << 20;
}

void TestListView::visibleRows()
{
    QFETCH(int, height);
    QFETCH(int, margin);
    QFETCH(int, rowHeight);
    QFETCH(int, spacing);
    QFETCH(int, rows);
    m_window->open();
    list().resize(100, height);
    list().setMarginHeight(margin);
    list().setRowHeight(rowHeight);
    list().setSpacingHeight(spacing);
    QCOMPARE(list().visibleRows(), rows);
}

void TestListView::columnWidths_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QString>("hint");
    QTest::addColumn<QList<int>>("widths");
    QTest::newRow("single column") << 100 << 1 << QString() << QList<int>{96};
    QTest::newRow("hint of the last column is not used")
        << 100 << 1 << QStringLiteral("20") << QList<int>{96};
    QTest::newRow("first by hint") << 100 << 2 << QStringLiteral("20") << QList<int>{20, 74};
    QTest::newRow("equal shares") << 104 << 3 << QString() << QList<int>{32, 32, 32};
    QTest::newRow("the last takes the rest") << 106 << 3 << QString() << QList<int>{32, 33, 33};
    QTest::newRow("hint, then shares")
        << 104 << 3 << QStringLiteral("10") << QList<int>{10, 43, 43};
    QTest::newRow("more hints than columns")
        << 100 << 2 << QStringLiteral("20,30,40") << QList<int>{20, 74};
    QTest::newRow("hint cut to what is left")
        << 100 << 3 << QStringLiteral("50,90") << QList<int>{50, 44, 0};
    QTest::newRow("first hint takes all")
        << 100 << 3 << QStringLiteral("500") << QList<int>{96, 0, 0};
    QTest::newRow("hint of 0") << 100 << 2 << QStringLiteral("0") << QList<int>{0, 94};
    QTest::newRow("no room at all") << 3 << 2 << QStringLiteral("9") << QList<int>{0, 0};
    QTest::newRow("blanks around a number")
        << 100 << 2 << QStringLiteral(" 20 , 1") << QList<int>{20, 74};
}

void TestListView::columnWidths()
{
    QFETCH(int, width);
    QFETCH(int, columns);
    QFETCH(QString, hint);
    QFETCH(QList<int>, widths);
    m_window->open();
    list().resize(width, 100);
    list().setMarginWidth(2);
    list().setColumnCount(columns);
    list().setColumnWidthHint(hint);
    QCOMPARE(list().columnWidths(), widths);
}

void TestListView::aHintThatIsNoNumberLeavesNoHintsAndTheWidthsUntilTheNextResize_data()
{
    QTest::addColumn<QString>("hint");
    QTest::newRow("word") << QStringLiteral("10,abc");
    QTest::newRow("first is a word") << QStringLiteral("abc,10");
    QTest::newRow("negative") << QStringLiteral("10,-1");
    QTest::newRow("fraction") << QStringLiteral("10,1.5");
    QTest::newRow("nothing between commas") << QStringLiteral("10,,10");
    QTest::newRow("comma at the end") << QStringLiteral("10,");
    QTest::newRow("only a comma") << QStringLiteral(",");
    QTest::newRow("too large") << QStringLiteral("10,99999999999");
    QTest::newRow("unit") << QStringLiteral("10px,10");
}

void TestListView::aHintThatIsNoNumberLeavesNoHintsAndTheWidthsUntilTheNextResize()
{
    QFETCH(QString, hint);
    m_window->open();
    list().setColumnCount(3);
    list().setColumnWidthHint(QStringLiteral("20,30"));
    const QList<int> before{20, 30, 46};
    QCOMPARE(list().columnWidths(), before);
    list().setColumnWidthHint(hint);
    QCOMPARE(list().columnWidths(), before);
    list().resize(101, 100);
    QCOMPARE(list().columnWidths(), (QList<int>{32, 32, 33}));
}

void TestListView::anEmptyHintClearsTheHints()
{
    m_window->open();
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("20"));
    list().setColumnWidthHint(QString());
    QCOMPARE(list().columnWidths(), (QList<int>{49, 49}));
}

void TestListView::rowsAndColumnsByPosition()
{
    m_window->open();
    m_window->fill(4);
    list().setMarginHeight(5);
    list().setMarginWidth(3);
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("20"));
    QCOMPARE(list().getIndex(-1), -1);
    QCOMPARE(list().getIndex(4), -1);
    QCOMPARE(list().getIndex(5), 0);
    QCOMPARE(list().getIndex(19), 0);
    QCOMPARE(list().getIndex(22), 1);
    QCOMPARE(list().getIndex(5 + 3 * 17 + 14), 3);
    QCOMPARE(list().getIndex(5 + 4 * 17), -1);
    QCOMPARE(list().getColumn(2), -1);
    QCOMPARE(list().getColumn(3), 0);
    QCOMPARE(list().getColumn(22), 0);
    QCOMPARE(list().getColumn(25), 1);
    QCOMPARE(list().getColumn(96), 1);
    QCOMPARE(list().getColumn(97), -1);
    m_window->fill(20);
    bar().setValue(7);
    QCOMPARE(list().getIndex(5), 7);
    // Below the last whole row nothing shows.
    QCOMPARE(list().visibleRows(), 5);
    QCOMPARE(list().getIndex(5 + 4 * 17 + 14), 11);
    QCOMPARE(list().getIndex(99), -1);
}

void TestListView::itemRectangles()
{
    m_window->open();
    m_window->fill(20);
    list().setMarginHeight(5);
    list().setMarginWidth(3);
    QCOMPARE(list().getItemRect(0), QRect(3, 5, 94, 15));
    QCOMPARE(list().getItemRect(4), QRect(3, 5 + 4 * 17, 94, 15));
    QVERIFY(!list().getItemRect(5).isValid());
    bar().setValue(3);
    QVERIFY(!list().getItemRect(2).isValid());
    QCOMPARE(list().getItemRect(3), QRect(3, 5, 94, 15));
    QCOMPARE(list().getItemRect(7), QRect(3, 73, 94, 15));
    QVERIFY(!list().getItemRect(8).isValid());
}

// --- The scroll bar
// -------------------------------------------------------------------------------

void TestListView::theScrollBarsRangeIsWhatDoesNotShow()
{
    m_window->open();
    m_window->fill(50);
    QCOMPARE(list().visibleRows(), 6);
    QCOMPARE(bar().minimum(), 0);
    QCOMPARE(bar().maximum(), 44);
    list().resize(100, 49);
    QCOMPARE(bar().maximum(), 47);
    list().removeItem(0);
    QCOMPARE(bar().maximum(), 46);
}

void TestListView::theScrollBarsMaximumIsZeroWhenAllItemsFit()
{
    m_window->open();
    m_window->fill(6);
    QCOMPARE(bar().maximum(), 0);
    m_window->fill(1);
    QCOMPARE(bar().maximum(), 1);
    list().resize(100, 150);
    QCOMPARE(bar().maximum(), 0);
}

void TestListView::theScrollBarsPageIsWhatShows()
{
    m_window->open();
    m_window->fill(50);
    QCOMPARE(bar().pageStep(), 6);
    list().resize(100, 49);
    QCOMPARE(bar().pageStep(), list().visibleRows());
    QCOMPARE(bar().pageStep(), 3);
    list().setRowHeight(30);
    QCOMPARE(bar().pageStep(), list().visibleRows());
    QCOMPARE(bar().pageStep(), 1);
    // A click behind the slider shows the rows that follow the last one.
    list().setRowHeight(15);
    bar().triggerAction(QAbstractSlider::SliderPageStepAdd);
    QCOMPARE(bar().value(), 3);
    QScrollBar second;
    list().setScrollBar(&second);
    QCOMPARE(second.pageStep(), 3);
}

void TestListView::anotherScrollBarTakesOver()
{
    m_window->open();
    m_window->fill(50);
    QScrollBar second;
    list().setScrollBar(&second);
    QCOMPARE(second.maximum(), 44);
    second.setValue(9);
    QCOMPARE(list().getIndex(0), 9);
    bar().setValue(3);
    QCOMPARE(list().getIndex(0), 9);
    list().setScrollBar(nullptr);
    QCOMPARE(list().getIndex(0), 0);
}

void TestListView::aDeletedScrollBarLeavesTheFirstRowOnTop()
{
    m_window->open();
    m_window->fill(50);
    auto second = std::make_unique<QScrollBar>();
    list().setScrollBar(second.get());
    second->setValue(9);
    second.reset();
    QCOMPARE(list().getIndex(0), 0);
    QCOMPARE(shown().pixel(50, 7), Unfocused);
    list().adjustScroll();
    list().addItem({});
}

// --- Painting
// -------------------------------------------------------------------------------------

void TestListView::aListLowerThanARowPaintsNothing_data()
{
    QTest::addColumn<int>("height");
    QTest::newRow("14 pixels") << 14;
    QTest::newRow("1 pixel") << 1;
    QTest::newRow("nothing") << 0;
}

void TestListView::aListLowerThanARowPaintsNothing()
{
    QFETCH(int, height);
    m_window->open();
    m_window->fill(3);
    list().addMark(0);
    list().resize(100, height);
    if (height > 0) {
        QVERIFY(isAll(shown(), QRect(0, 0, 100, height), Window));
    }
    QCOMPARE(list().visibleRows(), 0);
    QTest::keyClick(&list(), Qt::Key_End);
    QTest::mouseClick(&list(), Qt::LeftButton, Qt::NoModifier, QPoint(0, 0));
}

void TestListView::rowsAlternateFromTheFirstItemOn()
{
    m_window->open();
    m_window->fill(20);
    list().setValue(19);
    QImage image = shown();
    for (int row = 0; row < 6; ++row) {
        QVERIFY(isAll(image, QRect(0, row * 17, 100, 15), row % 2 ? Odd : Even));
    }
    // A row keeps its colour when the list scrolls.
    bar().setValue(1);
    image = shown();
    QCOMPARE(image.pixel(0, 0), Odd);
    QCOMPARE(image.pixel(0, 17), Even);
}

void TestListView::theSelectedRowsColours()
{
    m_window->open();
    for (int i = 0; i < 3; ++i) {
        list().addItem({QStringLiteral("HHHHHH")});
    }
    list().setValue(1);
    const QRect row(0, 17, 100, 15);
    QImage image = shown();
    QCOMPARE(image.pixel(99, 17), Unfocused);
    QVERIFY(contains(image, row, qRgb(178, 178, 178)));
    QVERIFY(contains(image, row.translated(0, 17), qRgb(182, 182, 182)));
    list().selectList();
    image = shown();
    QCOMPARE(image.pixel(99, 17), Focus);
    QVERIFY(contains(image, row, qRgb(255, 255, 255)));
    QVERIFY(contains(image, row.translated(0, 17), qRgb(182, 182, 182)));
    list().unselectList();
    QCOMPARE(shown().pixel(99, 17), Unfocused);
    list().setBackgroundUnselectedFocusColor(QColor(1, 2, 3));
    QCOMPARE(shown().pixel(99, 17), qRgb(1, 2, 3));
}

void TestListView::cellsAreFilledAndSpacesAreNot()
{
    m_window->open();
    m_window->fill(3);
    list().setValue(2);
    list().setMarginWidth(4);
    list().setMarginHeight(3);
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("30"));
    const QImage image = shown();
    QVERIFY(isAll(image, QRect(0, 0, 100, 3), Window));
    QVERIFY(isAll(image, QRect(0, 0, 4, 100), Window));
    QVERIFY(isAll(image, QRect(96, 0, 4, 100), Window));
    QVERIFY(isAll(image, QRect(4, 3, 30, 15), Even));
    QVERIFY(isAll(image, QRect(34, 3, 2, 15), Window));
    QVERIFY(isAll(image, QRect(36, 3, 60, 15), Even));
    QVERIFY(isAll(image, QRect(4, 18, 92, 2), Window));
    QVERIFY(isAll(image, QRect(4, 20, 30, 15), Odd));
    // Nothing below the last item.
    QVERIFY(isAll(image, QRect(0, 52, 100, 48), Window));
}

void TestListView::theIconStandsInItsColumnCentred()
{
    m_window->open();
    m_window->fill(3);
    list().setValue(2);
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("30"));
    list().setItemMarginWidth(4);
    QPixmap red(6, 5);
    red.fill(Qt::red);
    list().setItemIcon(1, red);
    QVERIFY(isAll(shown(), QRect(4, 17 + 5, 6, 5), qRgb(255, 0, 0)));
    list().setColumnIcon(1);
    const QImage image = shown();
    QVERIFY(isAll(image, QRect(0, 17, 30, 15), Odd));
    QVERIFY(isAll(image, QRect(36, 17 + 5, 6, 5), qRgb(255, 0, 0)));
    QVERIFY(isAll(image, QRect(32, 17, 4, 15), Odd));
    QVERIFY(isAll(image, QRect(36, 17, 6, 5), Odd));
    QVERIFY(isAll(image, QRect(36, 17 + 10, 6, 5), Odd));
    list().setItemIcon(1, QPixmap());
    QVERIFY(!contains(shown(), QRect(0, 0, 100, 100), qRgb(255, 0, 0)));
}

void TestListView::ofAHighIconTheMiddleIsShown()
{
    m_window->open();
    m_window->fill(2);
    QPixmap icon(6, 35);
    icon.fill(Qt::red);
    {
        QPainter painter(&icon);
        painter.fillRect(0, 10, 6, 15, Qt::blue);
    }
    list().setItemIcon(1, icon);
    const QImage image = shown();
    QVERIFY(isAll(image, QRect(0, 17, 6, 15), qRgb(0, 0, 255)));
    QVERIFY(!contains(image, QRect(0, 0, 100, 100), qRgb(255, 0, 0)));
}

void TestListView::theTextStartsBehindTheIcon()
{
    m_window->open();
    list().addItem({});
    list().addItem({QStringLiteral("HHH")});
    const QRgb text = qRgb(182, 182, 182);
    QVERIFY(contains(shown(), QRect(0, 17, 4, 15), text));
    QPixmap red(6, 5);
    red.fill(Qt::red);
    list().setItemIcon(1, red);
    QImage image = shown();
    QVERIFY(!contains(image, QRect(0, 17, 11, 15), text));
    QVERIFY(contains(image, QRect(11, 17, 4, 15), text));
    list().setIconMarginWidth(20);
    image = shown();
    QVERIFY(!contains(image, QRect(0, 17, 26, 15), text));
    QVERIFY(contains(image, QRect(26, 17, 4, 15), text));
}

void TestListView::theTextIsShiftedByTheOffsets()
{
    m_window->open();
    list().setAlignment(Qt::AlignLeft | Qt::AlignTop);
    list().setRowHeight(30);
    list().addItem({});
    list().addItem({QStringLiteral("HH")});
    const QImage before = shown();
    list().setTextDrawXPointOffset(7);
    list().setTextDrawYPointOffset(3);
    const QImage after = shown();
    QCOMPARE(after.copy(7, 35, 40, 20), before.copy(0, 32, 40, 20));
    QVERIFY(after != before);
}

void TestListView::aMarkIsAFrameAroundTheWholeRow()
{
    m_window->open();
    m_window->fill(3);
    list().setMarginWidth(4);
    list().setColumnCount(2);
    list().addMark(1);
    QImage image = shown();
    QVERIFY(isAll(image, QRect(4, 17, 92, 1), Mark));
    QVERIFY(isAll(image, QRect(4, 31, 92, 1), Mark));
    QVERIFY(isAll(image, QRect(4, 17, 1, 15), Mark));
    QVERIFY(isAll(image, QRect(95, 17, 1, 15), Mark));
    QVERIFY(!contains(image, QRect(5, 18, 90, 13), Mark));
    QVERIFY(!contains(image, QRect(0, 0, 100, 17), Mark));
    list().removeMark(1);
    QVERIFY(!contains(shown(), QRect(0, 0, 100, 100), Mark));
    list().addMark(0);
    list().addMark(2);
    list().clearMarks();
    QVERIFY(!contains(shown(), QRect(0, 0, 100, 100), Mark));
}

void TestListView::rowsIconsAndMarksAreSharpAtTwiceTheScale()
{
    class Painted : public CListView
    {
    public:
        using CListView::paintDoubleBuffer;
    } view;
    view.resize(100, 100);
    view.setColumnCount(2);
    view.setMarginWidth(3);
    QPixmap red(7, 6);
    red.fill(Qt::red);
    for (int i = 0; i < 4; ++i) {
        view.addItem({});
    }
    view.setItemIcon(2, red);
    view.addMark(1);
    const auto paint = [&](int ratio) {
        QImage image(QSize(100, 100) * ratio, QImage::Format_ARGB32);
        image.fill(Window);
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        view.paintDoubleBuffer(&painter);
        painter.end();
        image.setDevicePixelRatio(1);
        return image;
    };
    QCOMPARE(paint(2), paint(1).scaled(200, 200));
}

void TestListView::trimCutsWhatIsTooWide()
{
    m_window->open();
    const QFontMetrics metrics = list().fontMetrics();
    const QString text = QStringLiteral("A name that is far too long for it");
    QString cut = text;
    while (metrics.horizontalAdvance(cut + QStringLiteral("...")) > 100) {
        cut.chop(1);
    }
    list().addItem({text});
    list().setTrim(true);
    const QImage trimmed = shown();
    list().setTrim(false);
    QVERIFY(trimmed != shown());
    list().setItem(0, {cut + QStringLiteral("...")});
    QCOMPARE(trimmed, shown());
    // What fits stays whole.
    list().setItem(0, {cut});
    const QImage whole = shown();
    list().setTrim(true);
    QCOMPARE(whole, shown());
}

void TestListView::trimWithAColumnNarrowerThanTheLabelLeavesTheLabelAlone()
{
    m_window->open();
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("9"));
    list().setTrimLabel(QStringLiteral("MMM"));
    list().addItem({QStringLiteral("abcdef")});
    list().setTrim(true);
    const QImage trimmed = shown();
    list().setTrim(false);
    list().setItem(0, {QStringLiteral("MMM")});
    QCOMPARE(trimmed, shown());
}

void TestListView::withoutTrimTheTextEndsAtTheCell()
{
    m_window->open();
    list().setColumnCount(2);
    list().setColumnWidthHint(QStringLiteral("30"));
    list().addItem({});
    list().addItem({QString(50, u'H')});
    const QImage image = shown();
    const QRgb text = qRgb(182, 182, 182);
    QVERIFY(contains(image, QRect(20, 17, 10, 15), text));
    QVERIFY(!contains(image, QRect(30, 17, 70, 15), text));
}

void TestListView::aChangeOfTheFontIsShown()
{
    m_window->open();
    list().addItem({QStringLiteral("Text")});
    const QImage before = shown();
    QFont font = list().font();
    font.setPixelSize(14);
    list().setFont(font);
    QVERIFY(before != shown());
}

void TestListView::scrollingShowsOtherRows()
{
    m_window->open();
    addTexts(30);
    list().setValue(29);
    const QImage before = shown();
    bar().setValue(2);
    const QImage after = shown();
    QCOMPARE(after.copy(0, 0, 100, 66), before.copy(0, 34, 100, 66));
}

// --- Input
// ----------------------------------------------------------------------------------------

void TestListView::aPressSelectsTheRowAtThePoint()
{
    m_window->open();
    m_window->fill(20);
    bar().setValue(5);
    QSignalSpy spy(&list(), &QAbstractSlider::valueChanged);
    QTest::mousePress(&list(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 40));
    QCOMPARE(list().value(), 7);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(shown().pixel(50, 40), Focus);
    QTest::mouseRelease(&list(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 40));
    QCOMPARE(list().value(), 7);
    // Below the items of a short list there is no row.
    bar().setValue(0);
    while (list().count() > 2) {
        list().removeItem(2);
    }
    QTest::mousePress(&list(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 80));
    QCOMPARE(list().value(), 1);
}

void TestListView::aPressOnTheMarginSelectsNothing()
{
    m_window->open();
    m_window->fill(20);
    list().setMarginWidth(5);
    list().setMarginHeight(5);
    list().setValue(3);
    for (const QPoint &point : {QPoint(4, 30), QPoint(95, 30), QPoint(50, 4)}) {
        QTest::mouseClick(&list(), Qt::LeftButton, Qt::NoModifier, point);
        QCOMPARE(list().value(), 3);
    }
    QTest::mouseClick(&list(), Qt::LeftButton, Qt::NoModifier, QPoint(94, 30));
    QCOMPARE(list().value(), 1);
}

void TestListView::aDoubleClickOnAnUnselectedRowOnlySelects()
{
    m_window->open();
    m_window->fill(5);
    QSignalSpy spy(&list(), &CListView::itemDoubleClick);
    // The second half of a double click whose first half fell elsewhere.
    const QPointF position(50, 40);
    QMouseEvent event(QEvent::MouseButtonDblClick, position, list().mapToGlobal(position),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&list(), &event);
    QCOMPARE(list().value(), 2);
    QCOMPARE(spy.count(), 0);
}

void TestListView::aDoubleClickOnTheSelectedRowIsTold()
{
    m_window->open();
    m_window->fill(5);
    list().setColumnCount(2);
    QSignalSpy spy(&list(), &CListView::itemDoubleClick);
    QTest::mouseDClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(80, 40));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first(), (QVariantList{2, 1}));
}

void TestListView::aDoubleClickWithAnotherButtonDoesNothing()
{
    m_window->open();
    m_window->fill(5);
    QSignalSpy spy(&list(), &CListView::itemDoubleClick);
    const QPointF position(50, 40);
    QMouseEvent event(QEvent::MouseButtonDblClick, position, list().mapToGlobal(position),
                      Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&list(), &event);
    QCOMPARE(list().value(), 0);
    QCOMPARE(spy.count(), 0);
}

void TestListView::theWheelGoesToTheScrollBar()
{
    m_window->open();
    m_window->fill(50);
    QApplication::setWheelScrollLines(1);
    wheel(&list(), -120);
    QCOMPARE(bar().value(), 1);
    QCOMPARE(list().value(), 0);
    QCOMPARE(list().getIndex(0), 1);
    wheel(&list(), -360);
    QCOMPARE(bar().value(), 4);
    wheel(&list(), 240);
    QCOMPARE(bar().value(), 2);
}

void TestListView::fineWheelsStepOncePerNotchAndCarryTheRest()
{
    m_window->open();
    m_window->fill(50);
    QApplication::setWheelScrollLines(1);
    for (int i = 0; i < 3; ++i) {
        wheel(&list(), -30);
        QCOMPARE(bar().value(), 0);
    }
    wheel(&list(), -30);
    QCOMPARE(bar().value(), 1);
    for (int i = 0; i < 16; ++i) {
        wheel(&list(), -15);
    }
    QCOMPARE(bar().value(), 3);
}

void TestListView::theWheelAtTheEndIsPassedOnOnlyOnce()
{
    class Counter : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            wheels += event->type() == QEvent::Wheel;
            return false;
        }
        int wheels = 0;
    } counter;
    m_window->open();
    m_window->fill(50);
    m_window->installEventFilter(&counter);
    turnWheel(m_window->windowHandle(), QPointF(50, 50), 120);
    QVERIFY2(counter.wheels <= 1, qPrintable(QString::number(counter.wheels)));
    turnWheel(m_window->windowHandle(), QPointF(50, 50), -120);
    QCOMPARE(bar().value(), QApplication::wheelScrollLines());
}

void TestListView::theWheelWithoutAScrollBarDoesNothing()
{
    m_window->open();
    m_window->fill(50);
    list().setScrollBar(nullptr);
    list().setValue(3);
    wheel(&list(), -120);
    QCOMPARE(list().value(), 3);
    QCOMPARE(list().getIndex(0), 0);
}

void TestListView::theWheelTakesTheFocusIfThePolicyAllows()
{
    m_window->open();
    m_window->fill(50);
    QVERIFY(m_window->other->hasFocus());
    wheel(&list(), -120);
    QVERIFY(!list().hasFocus());
    list().setFocusPolicy(Qt::WheelFocus);
    wheel(&list(), -120);
    QVERIFY(list().hasFocus());
}

void TestListView::leftAndRightDoNothing()
{
    m_window->open();
    m_window->fill(50);
    list().setFocus();
    list().setValue(5);
    bar().setValue(20);
    QTest::keyClick(&list(), Qt::Key_Left);
    QTest::keyClick(&list(), Qt::Key_Right);
    QCOMPARE(list().value(), 5);
    QCOMPARE(bar().value(), 20);
}

void TestListView::keysMoveTheSelectionAndTheScrollBarFollows()
{
    m_window->open();
    m_window->fill(50);
    QCOMPARE(list().visibleRows(), 6);
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Down);
    QCOMPARE(list().value(), 1);
    QCOMPARE(bar().value(), 0);
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(&list(), Qt::Key_Down);
    }
    QCOMPARE(list().value(), 5);
    QCOMPARE(bar().value(), 0);
    QTest::keyClick(&list(), Qt::Key_Down);
    QCOMPARE(list().value(), 6);
    QCOMPARE(bar().value(), 1);
    QTest::keyClick(&list(), Qt::Key_End);
    QCOMPARE(list().value(), 49);
    QCOMPARE(bar().value(), 44);
    QTest::keyClick(&list(), Qt::Key_Up);
    QCOMPARE(list().value(), 48);
    QCOMPARE(bar().value(), 44);
    QTest::keyClick(&list(), Qt::Key_Home);
    QCOMPARE(list().value(), 0);
    QCOMPARE(bar().value(), 0);
    // The row was scrolled away.
    bar().setValue(30);
    QTest::keyClick(&list(), Qt::Key_Down);
    QCOMPARE(list().value(), 1);
    QCOMPARE(bar().value(), 1);
}

void TestListView::pageKeysMoveByTheLists()
{
    m_window->open();
    m_window->fill(50);
    list().setPageStep(11);
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_PageDown);
    QCOMPARE(list().value(), 11);
    QCOMPARE(bar().value(), 6);
    QTest::keyClick(&list(), Qt::Key_PageUp);
    QCOMPARE(list().value(), 0);
    QCOMPARE(bar().value(), 0);
}

void TestListView::adjustScrollFollowsAnySelection()
{
    m_window->open();
    m_window->fill(50);
    list().setValue(20);
    QCOMPARE(bar().value(), 0);
    list().adjustScroll();
    QCOMPARE(bar().value(), 15);
    list().setValue(16);
    list().adjustScroll();
    QCOMPARE(bar().value(), 15);
    list().setValue(3);
    list().adjustScroll();
    QCOMPARE(bar().value(), 3);
}

void TestListView::focusSelectsTheListAndSaysSo()
{
    m_window->open();
    m_window->fill(3);
    QSignalSpy spy(&list(), &CListView::listSelected);
    QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 5));
    QVERIFY(list().hasFocus());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().value<CListView *>(), &list());
    QVERIFY(list().isListSelected());
    QCOMPARE(shown().pixel(99, 1), Focus);
    // The mark stays when the focus goes elsewhere.
    m_window->other->setFocus();
    QVERIFY(list().isListSelected());
}

void TestListView::ofTwoListsOneShowsTheFocus()
{
    m_window->open();
    m_window->fill(3);
    auto *second = new CListView(m_window.get());
    second->setGeometry(130, 0, 60, 100);
    second->addItem({});
    second->show();
    const auto selectOnly = [&](CListView *chosen) {
        (chosen == second ? &list() : second)->unselectList();
    };
    connect(&list(), &CListView::listSelected, this, selectOnly);
    connect(second, &CListView::listSelected, this, selectOnly);
    list().setFocus();
    QVERIFY(list().isListSelected());
    second->setFocus();
    QVERIFY(second->isListSelected());
    QVERIFY(!list().isListSelected());
    QCOMPARE(shown().pixel(99, 1), Unfocused);
}

// --- Bad input
// ------------------------------------------------------------------------------------

void TestListView::aListMayGoWhenItsSelectionMoves()
{
    m_window->open();
    const auto add = [this] {
        auto *made = new CListView(m_window.get());
        made->setGeometry(0, 0, 100, 100);
        for (int row = 0; row < 9; ++row) {
            made->addItem({QString()});
        }
        made->setScrollBar(&bar());
        made->show();
        connect(made, &CListView::valueChanged, made, [made] { delete made; });
        return QPointer<CListView>(made);
    };
    QPointer<CListView> made = add();
    QTest::keyClick(made, Qt::Key_Down);
    QVERIFY(made.isNull());
    made = add();
    QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 40));
    QVERIFY(made.isNull());
    QVERIFY(!m_window->grab().isNull());
}

void TestListView::hostileValuesDoNotFall()
{
    m_window->open();
    m_window->fill(5);
    list().setItemIcon(0, QPixmap(200, 300));
    list().addMark(0);
    for (const int value : {INT_MIN, -1, 0, 1, 7, 50, 1000, INT_MAX}) {
        for (auto setter :
             {&CListView::setRowHeight, &CListView::setMarginWidth, &CListView::setMarginHeight,
              &CListView::setSpacingWidth, &CListView::setSpacingHeight,
              &CListView::setItemMarginWidth, &CListView::setItemMarginHeight,
              &CListView::setIconMarginWidth, &CListView::setTextDrawXPointOffset,
              &CListView::setTextDrawYPointOffset, &CListView::setColumnIcon}) {
            CListView view;
            view.resize(60, 40);
            view.setColumnCount(3);
            view.addItem({QStringLiteral("abc"), QStringLiteral("def")});
            view.setItemIcon(0, QPixmap(200, 300));
            view.addMark(0);
            view.setTrim(true);
            (view.*setter)(value);
            view.grab();
            view.getIndex(value);
            view.getColumn(value);
            view.getItemRect(value);
        }
    }
    list().setColumnCount(1000);
    list().setColumnWidthHint(QStringLiteral("0,0,0,0"));
    list().setTrim(true);
    list().setTrimLabel(QString());
    shown();
    list().resize(0, 0);
    list().resize(1, 1);
    shown();
    list().setFont(QFont());
    list().setForegroundColor(QColor());
    list().setBackgroundEvenRowColor(QColor());
    list().resize(100, 100);
    shown();
}

void TestListView::moreColumnsThanTextsAreEmpty()
{
    m_window->open();
    list().setColumnCount(4);
    list().addItem({});
    list().addItem({QStringLiteral("one")});
    list().addItem({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                    QStringLiteral("4"), QStringLiteral("5"), QStringLiteral("6")});
    const QImage image = shown();
    QVERIFY(isAll(image, QRect(QPoint(25, 17), QPoint(47, 31)), Odd));
    QVERIFY(list().text(1, 3).isNull());
}

void TestListView::veryLongTexts()
{
    m_window->open();
    const QString text = QStringLiteral("long text ").repeated(1000);
    for (int i = 0; i < 6; ++i) {
        list().addItem({text});
    }
    const QImage whole = shown();
    list().setTrim(true);
    QVERIFY(whole != shown());
}

void TestListView::aHundredThousandRowsPaintOnlyWhatShows()
{
    // Counts what is drawn instead of measuring the time that it takes.
    class Painted : public CListView
    {
    public:
        using CListView::paintDoubleBuffer;
    } view;
    view.resize(100, 100);
    QScrollBar scroll;
    view.setScrollBar(&scroll);
    for (int i = 0; i < 100000; ++i) {
        view.addItem({QString::number(i)});
    }
    QCOMPARE(view.maximum(), 99999);
    QCOMPARE(scroll.maximum(), 100000 - 6);
    scroll.setValue(scroll.maximum());
    QCOMPARE(view.getIndex(99), 99999);

    QPicture picture;
    {
        QPainter painter(&picture);
        view.paintDoubleBuffer(&painter);
    }
    const uint many = picture.size();
    while (view.count() > 6) {
        view.removeItem(view.count() - 1);
    }
    for (int i = 0; i < 6; ++i) {
        view.setItem(i, {QString::number(99994 + i)});
    }
    QPicture few;
    {
        QPainter painter(&few);
        view.paintDoubleBuffer(&painter);
    }
    QCOMPARE(many, few.size());
}

QTEST_MAIN(TestListView)
#include "tst_listview.moc"
