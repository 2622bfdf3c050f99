// SPDX-License-Identifier: GPL-3.0-or-later
// Painting of the widgets against the bare drawing of the same things in the same run, and the time
// that cutting a text takes by its length.

#include "bench/Compare.h"
#include "widgets/CListView.h"
#include "widgets/CText.h"
#include "widgets/CTextSlider.h"
#include "widgets/FontHelpers.h"
#include "widgets/StyleColors.h"
#include "widgets/StyleImages.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QPaintEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QWidget>

#include <benchmark/benchmark.h>

namespace
{

constexpr int RowHeight = 15;
constexpr int RowPitch = 17;
constexpr QSize ListSize(198, 195);
constexpr QSize CellSize(71, 21);
constexpr QSize SliderSize(44, 15);
constexpr QSize BarSize(16, 191);

QFont benchFont(int pixelSize)
{
    QFont font;
    font.setPixelSize(pixelSize);
    font.setStyleStrategy(QFont::NoAntialias);
    return font;
}

// The picture of a widget's size that a repaint begins with.
template <class Paint>
void paintBare(const QSize &size, const QFont &font, Paint paint)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setFont(font);
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    paint(painter);
    benchmark::DoNotOptimize(pixmap);
}

void repaintList(benchmark::State &state)
{
    const auto rows = int(state.range(0));
    CListView list;
    QScrollBar bar;
    list.resize(ListSize);
    list.setFont(benchFont(10));
    list.setScrollBar(&bar);
    for (int row = 0; row < rows; ++row) {
        list.addItem({QStringLiteral("%1  Template").arg(row)});
    }
    bar.setValue(rows / 2);
    list.show();
    QCoreApplication::processEvents();
    const int shown = list.visibleRows();
    compare(
        state,
        [&] {
            list.updateDoubleBuffer();
            list.updateDoubleBufferPixmap();
        },
        [&] {
            paintBare(ListSize, list.font(), [&](QPainter &painter) {
                painter.setPen(list.foregroundColor());
                for (int place = 0; place < shown; ++place) {
                    const QRect row(0, place * RowPitch, ListSize.width(), RowHeight);
                    painter.fillRect(row, place % 2 ? list.backgroundOddRowColor()
                                                    : list.backgroundEvenRowColor());
                    painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                                     list.text(rows / 2 + place, 0));
                }
            });
        });
}
BENCHMARK(repaintList)->Arg(50)->Arg(100000)->UseManualTime()->Unit(benchmark::kMicrosecond);

// A list that cuts each of its texts.
void repaintTrimmedList(benchmark::State &state)
{
    CListView list;
    list.resize(ListSize);
    list.setFont(benchFont(10));
    list.setTrim(true);
    const QString text(state.range(0), u'n');
    for (int row = 0; row < 11; ++row) {
        list.addItem({text});
    }
    list.show();
    QCoreApplication::processEvents();
    for ([[maybe_unused]] auto step : state) {
        list.updateDoubleBuffer();
        list.updateDoubleBufferPixmap();
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(repaintTrimmedList)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void repaintScrollBar(benchmark::State &state)
{
    QScrollBar bar(Qt::Vertical);
    bar.setRange(0, 39);
    bar.setValue(20);
    bar.resize(BarSize);
    bar.show();
    QCoreApplication::processEvents();
    const QImage up(scrollbar_up_image);
    const QImage down(scrollbar_down_image);
    QPixmap pixmap(BarSize);
    compare(
        state, [&] { bar.render(&pixmap, QPoint(), QRegion(), QWidget::RenderFlags()); },
        [&] {
            QPainter painter(&pixmap);
            painter.fillRect(QRect(QPoint(), BarSize), colorScrollBarBackground);
            painter.setPen(colorScrollBarForeground);
            painter.drawRect(QRect(4, 21, 7, 165));
            painter.fillRect(QRect(5, 89, 6, 33), colorScrollBarForeground);
            painter.drawImage(QRect(3, 3, 10, 7), up);
            painter.drawImage(QRect(3, 11, 10, 7), down);
        });
}
BENCHMARK(repaintScrollBar)->UseManualTime()->Unit(benchmark::kMicrosecond);

// A cell of the LCD: two lines of text in a widget with a picture of itself.
void repaintCell(benchmark::State &state)
{
    const QString words = QStringLiteral("CC074\nCutoff");
    CText cell;
    cell.resize(CellSize);
    cell.setFont(benchFont(8));
    cell.setAlignment(Qt::AlignCenter);
    cell.setText(words);
    cell.show();
    QCoreApplication::processEvents();
    compare(
        state,
        [&] {
            cell.updateDoubleBuffer();
            cell.updateDoubleBufferPixmap();
        },
        [&] {
            paintBare(CellSize, cell.font(), [&](QPainter &painter) {
                painter.setPen(cell.palette().color(QPalette::Text));
                painter.drawText(QRect(QPoint(), CellSize), Qt::AlignCenter, words);
            });
        });
}
BENCHMARK(repaintCell)->UseManualTime()->Unit(benchmark::kMicrosecond);

// A widget that does nothing but copy a picture.
class Copy : public QWidget
{
public:
    explicit Copy(const QPixmap &picture)
        : m_picture(picture)
    {
        resize(picture.size());
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawPixmap(0, 0, m_picture);
    }

private:
    QPixmap m_picture;
};

// A paint event of an unchanged widget is one copy.
void paintUnchanged(benchmark::State &state, QWidget *widget)
{
    Copy copy(widget->grab());
    widget->show();
    copy.show();
    QCoreApplication::processEvents();
    compare(
        state, [&] { widget->repaint(); }, [&] { copy.repaint(); });
}

void paintUnchangedList(benchmark::State &state)
{
    CListView list;
    list.resize(ListSize);
    for (int row = 0; row < 50; ++row) {
        list.addItem({QStringLiteral("%1  Template").arg(row)});
    }
    paintUnchanged(state, &list);
}
BENCHMARK(paintUnchangedList)->UseManualTime()->Unit(benchmark::kMicrosecond);

void paintUnchangedCell(benchmark::State &state)
{
    CText cell;
    cell.resize(CellSize);
    cell.setFont(benchFont(8));
    cell.setText(QStringLiteral("CC074\nCutoff"));
    paintUnchanged(state, &cell);
}
BENCHMARK(paintUnchangedCell)->UseManualTime()->Unit(benchmark::kMicrosecond);

void paintUnchangedSlider(benchmark::State &state)
{
    CTextSlider slider;
    slider.resize(SliderSize);
    slider.setFont(benchFont(8));
    paintUnchanged(state, &slider);
}
BENCHMARK(paintUnchangedSlider)->UseManualTime()->Unit(benchmark::kMicrosecond);

void trimTextTo(benchmark::State &state, int width, const QString &text)
{
    QWidget widget;
    widget.setFont(benchFont(8));
    if (width <= 0) {
        width = widget.fontMetrics().horizontalAdvance(text) / 2;
    }
    for ([[maybe_unused]] auto step : state) {
        benchmark::DoNotOptimize(trimText(&widget, text, width));
    }
    state.SetComplexityN(state.range(0));
}

QString longText(qint64 length)
{
    return QStringLiteral("Filter Cutoff ").repeated(length / 14 + 1).left(length);
}

// Down to a cell of the LCD.
void trimTextToACell(benchmark::State &state)
{
    trimTextTo(state, CellSize.width(), longText(state.range(0)));
}
BENCHMARK(trimTextToACell)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void trimTextToHalf(benchmark::State &state)
{
    trimTextTo(state, 0, longText(state.range(0)));
}
BENCHMARK(trimTextToHalf)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

} // namespace
