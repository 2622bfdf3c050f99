// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CListView.h"

#include "images/Artwork.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/qdrawutil.h>

#include <algorithm>

namespace
{

// Where a row goes when another one is inserted (by = 1) or removed (by = -1) at index.
template <class Value>
QHash<int, Value> shifted(const QHash<int, Value> &rows, int index, int by)
{
    QHash<int, Value> result;
    result.reserve(rows.size());
    for (auto it = rows.cbegin(); it != rows.cend(); ++it) {
        if (by < 0 && it.key() == index) {
            continue;
        }
        result.insert(it.key() < index ? it.key() : it.key() + by, it.value());
    }
    return result;
}

} // namespace

CListView::CListView(QWidget *parent)
    : QAbstractSlider(parent)
    , DoubleBuffer(this)
{
    setOrientation(Qt::Vertical);
    // The first row is at the top, so that Up goes down in value.
    setInvertedControls(true);
    setFocusPolicy(Qt::ClickFocus);
    setRange(0, 0);
    connect(this, &QAbstractSlider::valueChanged, this, &CListView::updateValue);
    updateSize();
}

// --- Properties
// -----------------------------------------------------------------------------------

void CListView::setColor(QColor &field, const QColor &color)
{
    if (field != color) {
        field = color;
        updateDoubleBuffer();
    }
}

void CListView::setLayoutValue(int &field, int value, int least)
{
    const int bounded = std::clamp(value, least, QWIDGETSIZE_MAX);
    if (field != bounded) {
        field = bounded;
        updateSize();
    }
}

void CListView::setTextOffset(int &field, int offset)
{
    const int bounded = std::clamp(offset, -QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    if (field != bounded) {
        field = bounded;
        updateDoubleBuffer();
    }
}

void CListView::setAlignment(Qt::Alignment alignment)
{
    if (m_alignment != alignment) {
        m_alignment = alignment;
        updateDoubleBuffer();
    }
}

void CListView::setForegroundColor(const QColor &color)
{
    setColor(m_foregroundColor, color);
}

void CListView::setForegroundFocusColor(const QColor &color)
{
    setColor(m_foregroundFocusColor, color);
}

void CListView::setForegroundSelectedFocusColor(const QColor &color)
{
    setColor(m_foregroundSelectedFocusColor, color);
}

void CListView::setBackgroundOddRowColor(const QColor &color)
{
    setColor(m_backgroundOddRowColor, color);
}

void CListView::setBackgroundEvenRowColor(const QColor &color)
{
    setColor(m_backgroundEvenRowColor, color);
}

void CListView::setBackgroundFocusColor(const QColor &color)
{
    setColor(m_backgroundFocusColor, color);
}

void CListView::setBackgroundUnselectedFocusColor(const QColor &color)
{
    setColor(m_backgroundUnselectedFocusColor, color);
}

void CListView::setBackgroundSelectedFocusColor(const QColor &color)
{
    setColor(m_backgroundSelectedFocusColor, color);
}

void CListView::setMarkedFrameColor(const QColor &color)
{
    setColor(m_markedFrameColor, color);
}

void CListView::setColumnWidthHint(const QString &hint)
{
    m_columnWidthHint = hint;
    m_widthHints.clear();
    if (!hint.isEmpty()) {
        QList<int> hints;
        const QStringList parts = hint.split(u',');
        for (const QString &part : parts) {
            bool isNumber = false;
            const int width = part.toInt(&isNumber);
            if (!isNumber || width < 0) {
                return;
            }
            hints.append(width);
        }
        m_widthHints = hints;
    }
    updateSize();
}

void CListView::setRowHeight(int height)
{
    setLayoutValue(m_rowHeight, height, 1);
}

void CListView::setMarginWidth(int width)
{
    setLayoutValue(m_marginWidth, width, 0);
}

void CListView::setMarginHeight(int height)
{
    setLayoutValue(m_marginHeight, height, 0);
}

void CListView::setSpacingWidth(int width)
{
    setLayoutValue(m_spacingWidth, width, 0);
}

void CListView::setSpacingHeight(int height)
{
    setLayoutValue(m_spacingHeight, height, 0);
}

void CListView::setTextDrawXPointOffset(int offset)
{
    setTextOffset(m_textDrawXPointOffset, offset);
}

void CListView::setTextDrawYPointOffset(int offset)
{
    setTextOffset(m_textDrawYPointOffset, offset);
}

void CListView::setItemMarginWidth(int width)
{
    setLayoutValue(m_itemMarginWidth, width, 0);
}

void CListView::setItemMarginHeight(int height)
{
    setLayoutValue(m_itemMarginHeight, height, 0);
}

void CListView::setIconMarginWidth(int width)
{
    setLayoutValue(m_iconMarginWidth, width, 0);
}

void CListView::setColumnCount(int count)
{
    setLayoutValue(m_columnCount, count, 1);
    setColumnIcon(m_columnIcon);
}

void CListView::setColumnIcon(int column)
{
    const int bounded = column > 0 ? std::max(std::min(column, m_columnCount - 1), 1) : 0;
    if (m_columnIcon != bounded) {
        m_columnIcon = bounded;
        updateDoubleBuffer();
    }
}

void CListView::setTrim(bool trim)
{
    if (m_trim != trim) {
        m_trim = trim;
        updateDoubleBuffer();
    }
}

void CListView::setTrimLabel(const QString &label)
{
    if (m_trimLabel != label) {
        m_trimLabel = label;
        updateDoubleBuffer();
    }
}

// --- Items
// ----------------------------------------------------------------------------------------

int CListView::addItem(const QStringList &item)
{
    m_items.append(item);
    updateRange();
    return int(m_items.size()) - 1;
}

bool CListView::insertItem(int index, const QStringList &item)
{
    if (index < 0 || index > m_items.size()) {
        return false;
    }
    shiftRows(index, 1);
    m_items.insert(index, item);
    updateRange();
    return true;
}

bool CListView::removeItem(int index)
{
    if (!isIndex(index)) {
        return false;
    }
    shiftRows(index, -1);
    m_items.removeAt(index);
    updateRange();
    return true;
}

bool CListView::setItem(int index, const QStringList &item)
{
    if (!isIndex(index)) {
        return false;
    }
    if (m_items.at(index) != item) {
        m_items[index] = item;
        updateDoubleBuffer();
    }
    return true;
}

bool CListView::setItemIcon(int index, const QPixmap &icon)
{
    if (!isIndex(index)) {
        return false;
    }
    if (icon.isNull()) {
        m_icons.remove(index);
    } else {
        m_icons.insert(index, icon);
    }
    updateDoubleBuffer();
    return true;
}

void CListView::clear()
{
    m_items.clear();
    m_icons.clear();
    m_marks.clear();
    updateRange();
}

QString CListView::text(int row, int column) const
{
    return isIndex(row) ? m_items.at(row).value(column) : QString();
}

void CListView::clearMarks()
{
    m_marks.clear();
    updateDoubleBuffer();
}

void CListView::addMark(int index)
{
    if (isIndex(index)) {
        m_marks.insert(index, 1);
        updateDoubleBuffer();
    }
}

void CListView::removeMark(int index)
{
    if (m_marks.remove(index)) {
        updateDoubleBuffer();
    }
}

void CListView::shiftRows(int index, int by)
{
    m_icons = shifted(m_icons, index, by);
    m_marks = shifted(m_marks, index, by);
}

void CListView::updateRange()
{
    setRange(0, std::max(int(m_items.size()) - 1, 0));
    // The range of the first item is that of none.
    updateView();
}

// --- Geometry
// -------------------------------------------------------------------------------------

void CListView::updateSize()
{
    m_visibleRows = std::max((height() - m_marginHeight + m_spacingHeight) / rowPitch(), 0);

    m_columnWidths.clear();
    m_columnWidths.reserve(m_columnCount);
    qint64 left = width() - 2 * m_marginWidth;
    for (int column = 0; column < m_columnCount; ++column) {
        const int others = m_columnCount - 1 - column;
        qint64 columnWidth = left;
        if (others > 0) {
            columnWidth = column < m_widthHints.size()
                              ? std::min<qint64>(m_widthHints.at(column), left)
                              : (left - qint64(others) * m_spacingWidth) / (others + 1);
        }
        columnWidth = std::max<qint64>(columnWidth, 0);
        m_columnWidths.append(int(columnWidth));
        left -= columnWidth + m_spacingWidth;
    }
    if (m_scrollBar) {
        m_scrollBar->setPageStep(m_visibleRows);
    }
    updateView();
}

void CListView::updateView()
{
    if (m_scrollBar) {
        m_scrollBar->setRange(0, std::max(int(m_items.size()) - m_visibleRows, 0));
    }
    updateDoubleBuffer();
}

void CListView::updateValue()
{
    updateDoubleBuffer();
}

int CListView::firstVisibleRow() const
{
    return m_scrollBar ? std::max(m_scrollBar->value(), 0) : 0;
}

int CListView::rowPitch() const
{
    return m_rowHeight + m_spacingHeight;
}

// place: 0 for the first visible row.
QRect CListView::rowRect(int place) const
{
    return {m_marginWidth, m_marginHeight + place * rowPitch(), width() - 2 * m_marginWidth,
            m_rowHeight};
}

int CListView::getIndex(int y) const
{
    if (y < m_marginHeight) {
        return -1;
    }
    const int place = (y - m_marginHeight) / rowPitch();
    if (place >= m_visibleRows) {
        return -1;
    }
    const int row = firstVisibleRow() + place;
    return isIndex(row) ? row : -1;
}

int CListView::getColumn(int x) const
{
    if (x < m_marginWidth || x >= width() - m_marginWidth) {
        return -1;
    }
    int end = m_marginWidth;
    for (int column = 0; column < m_columnCount; ++column) {
        end += m_columnWidths.at(column) + m_spacingWidth;
        if (x < end) {
            return column;
        }
    }
    return -1;
}

QRect CListView::getItemRect(int row) const
{
    const int place = row - firstVisibleRow();
    return isIndex(row) && place >= 0 && place < m_visibleRows ? rowRect(place) : QRect();
}

void CListView::setScrollBar(QScrollBar *scrollBar)
{
    if (m_scrollBar) {
        disconnect(m_scrollBar, nullptr, this, nullptr);
    }
    m_scrollBar = scrollBar;
    if (scrollBar) {
        connect(scrollBar, &QAbstractSlider::valueChanged, this, &CListView::updateValue);
        // Without it the first row is the first one.
        connect(scrollBar, &QObject::destroyed, this, &CListView::updateValue);
    }
    updateSize();
}

void CListView::adjustScroll()
{
    if (!m_scrollBar) {
        return;
    }
    const int first = m_scrollBar->value();
    const int rows = std::max(m_visibleRows, 1);
    if (value() < first) {
        m_scrollBar->setValue(value());
    } else if (value() - rows >= first) {
        m_scrollBar->setValue(value() - rows + 1);
    }
}

void CListView::selectList()
{
    m_listSelected = true;
    updateDoubleBuffer();
}

void CListView::unselectList()
{
    m_listSelected = false;
    updateDoubleBuffer();
}

// --- Painting
// -------------------------------------------------------------------------------------

void CListView::paintDoubleBuffer(QPainter *painter)
{
    const int first = firstVisibleRow();
    const int last = std::min(first + m_visibleRows, int(m_items.size())) - 1;
    for (int row = first; row <= last; ++row) {
        paintRow(painter, row, rowRect(row - first));
    }
}

void CListView::paintRow(QPainter *painter, int row, const QRect &rect) const
{
    QColor foreground = m_foregroundColor;
    QColor background = row % 2 == 0 ? m_backgroundEvenRowColor : m_backgroundOddRowColor;
    if (row == value()) {
        foreground = m_listSelected ? m_foregroundSelectedFocusColor : m_foregroundFocusColor;
        background = m_listSelected ? m_backgroundFocusColor : m_backgroundUnselectedFocusColor;
    }

    const QStringList &item = m_items.at(row);
    const QPixmap icon = m_icons.value(row);
    painter->setPen(foreground);
    int x = rect.left();
    for (int column = 0; column < m_columnCount; ++column) {
        QRect cell(x, rect.top(), m_columnWidths.at(column), rect.height());
        x += cell.width() + m_spacingWidth;
        if (cell.isEmpty()) {
            continue;
        }
        painter->fillRect(cell, background);
        cell.adjust(m_itemMarginWidth, 0, -m_itemMarginWidth, 0);
        if (column == m_columnIcon && !icon.isNull()) {
            cell.setLeft(cell.left() + paintIcon(painter, icon, cell));
        }
        cell.adjust(0, m_itemMarginHeight, 0, -m_itemMarginHeight);
        if (!cell.isEmpty()) {
            paintText(painter, item.value(column), cell);
        }
    }
    if (m_marks.contains(row) && !rect.isEmpty()) {
        qDrawPlainRect(painter, rect, m_markedFrameColor);
    }
}

int CListView::paintIcon(QPainter *painter, const QPixmap &icon, const QRect &cell) const
{
    const QSize size = icon.deviceIndependentSize().toSize();
    const QSize shown = size.boundedTo(cell.size());
    if (!shown.isEmpty()) {
        // Of a higher icon the middle, of a wider one the left part.
        const QRect part(QPoint(0, (size.height() - shown.height()) / 2), shown);
        const QRect place(cell.left(), cell.top() + (cell.height() - shown.height()) / 2,
                          shown.width(), shown.height());
        const QPixmap picture = artworkFor(icon, painter->device()->devicePixelRatioF());
        const qreal ratio = picture.devicePixelRatio();
        painter->drawPixmap(QRectF(place), picture,
                            QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio));
    }
    return size.width() + m_iconMarginWidth;
}

void CListView::paintText(QPainter *painter, const QString &text, const QRect &cell) const
{
    QString shown = text;
    if (m_trim) {
        const QFontMetrics metrics = fontMetrics();
        if (metrics.horizontalAdvance(text) > cell.width()) {
            shown =
                text.left(trimmedLength(metrics, text, m_trimLabel, cell.width())) + m_trimLabel;
        }
    }
    painter->drawText(cell.translated(m_textDrawXPointOffset, m_textDrawYPointOffset),
                      int(m_alignment) | Qt::TextSingleLine, shown);
}

// --- Events
// ---------------------------------------------------------------------------------------

bool CListView::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QAbstractSlider::event(event);
}

void CListView::changeEvent(QEvent *event)
{
    QAbstractSlider::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateDoubleBuffer();
    }
}

void CListView::sliderChange(SliderChange change)
{
    QAbstractSlider::sliderChange(change);
    if (change == SliderRangeChange) {
        updateView();
    }
}

void CListView::resizeEvent(QResizeEvent *event)
{
    QAbstractSlider::resizeEvent(event);
    updateSize();
}

void CListView::focusInEvent(QFocusEvent *event)
{
    QAbstractSlider::focusInEvent(event);
    Q_EMIT listSelected(this);
    selectList();
}

bool CListView::isWithinMargins(const QPoint &position) const
{
    return position.x() >= m_marginWidth && position.x() < width() - m_marginWidth &&
           position.y() >= m_marginHeight && position.y() < height();
}

void CListView::mouseSelect(const QPoint &position)
{
    if (!isWithinMargins(position)) {
        return;
    }
    const int row = getIndex(position.y());
    if (row >= 0) {
        setValue(row);
    }
}

void CListView::mousePressEvent(QMouseEvent *event)
{
    mouseSelect(event->position().toPoint());
}

void CListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const QPoint position = event->position().toPoint();
    const int row = isWithinMargins(position) ? getIndex(position.y()) : -1;
    if (row >= 0 && row == value()) {
        Q_EMIT itemDoubleClick(row, getColumn(position.x()));
    } else {
        mouseSelect(position);
    }
}

void CListView::wheelEvent(QWheelEvent *event)
{
    if ((focusPolicy() & Qt::WheelFocus) == Qt::WheelFocus) {
        setFocus(Qt::MouseFocusReason);
    }
    if (!m_scrollBar) {
        return;
    }
    event->setAccepted(false);
    QCoreApplication::sendEvent(m_scrollBar, event);
}

void CListView::keyPressEvent(QKeyEvent *event)
{
    // Whoever hears of the selection may delete the list.
    const QPointer<CListView> self(this);
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        return;
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        QAbstractSlider::keyPressEvent(event);
        if (self) {
            adjustScroll();
        }
        return;
    default:
        QAbstractSlider::keyPressEvent(event);
        return;
    }
}
