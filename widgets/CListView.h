// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/DoubleBuffer.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QPixmap>
#include <QtWidgets/QAbstractSlider>
#include <QtWidgets/QScrollBar>

// The skinned list of several columns. It is a slider whose value is the selected row; a scroll bar
// of its own tells the first visible row (0 without one). A row is a list of strings, one for each
// column, and may have an icon and a mark, a frame around it.
//
// All rows are drawn into one picture, and only those that show, however many there are. Distances
// are in pixels; setters raise a value below their least one to that. An index out of range is
// never an error: such a call does nothing and says false or -1. Owner: its Qt parent. Thread: GUI.
class CListView : public QAbstractSlider, public DoubleBuffer
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(QColor foregroundColor READ foregroundColor WRITE setForegroundColor)
    Q_PROPERTY(QColor foregroundFocusColor READ foregroundFocusColor WRITE setForegroundFocusColor)
    Q_PROPERTY(QColor foregroundSelectedFocusColor READ foregroundSelectedFocusColor WRITE
                   setForegroundSelectedFocusColor)
    Q_PROPERTY(
        QColor backgroundOddRowColor READ backgroundOddRowColor WRITE setBackgroundOddRowColor)
    Q_PROPERTY(
        QColor backgroundEvenRowColor READ backgroundEvenRowColor WRITE setBackgroundEvenRowColor)
    Q_PROPERTY(QColor backgroundFocusColor READ backgroundFocusColor WRITE setBackgroundFocusColor)
    Q_PROPERTY(QColor markedFrameColor READ markedFrameColor WRITE setMarkedFrameColor)
    Q_PROPERTY(QString columnWidthHint READ columnWidthHint WRITE setColumnWidthHint)
    Q_PROPERTY(int rowHeight READ rowHeight WRITE setRowHeight)
    Q_PROPERTY(int marginWidth READ marginWidth WRITE setMarginWidth)
    Q_PROPERTY(int marginHeight READ marginHeight WRITE setMarginHeight)
    Q_PROPERTY(int spacingWidth READ spacingWidth WRITE setSpacingWidth)
    Q_PROPERTY(int spacingHeight READ spacingHeight WRITE setSpacingHeight)
    Q_PROPERTY(int textDrawXPointOffset READ textDrawXPointOffset WRITE setTextDrawXPointOffset)
    Q_PROPERTY(int textDrawYPointOffset READ textDrawYPointOffset WRITE setTextDrawYPointOffset)

public:
    explicit CListView(QWidget *parent = nullptr);

    // Of the text in a cell.
    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);

    // The text of an unselected row.
    QColor foregroundColor() const { return m_foregroundColor; }
    void setForegroundColor(const QColor &color);
    // Text and ground of the selected row while the list is not the selected one.
    QColor foregroundFocusColor() const { return m_foregroundFocusColor; }
    void setForegroundFocusColor(const QColor &color);
    QColor backgroundUnselectedFocusColor() const { return m_backgroundUnselectedFocusColor; }
    void setBackgroundUnselectedFocusColor(const QColor &color);
    // Text and ground of the selected row in the selected list.
    QColor foregroundSelectedFocusColor() const { return m_foregroundSelectedFocusColor; }
    void setForegroundSelectedFocusColor(const QColor &color);
    QColor backgroundFocusColor() const { return m_backgroundFocusColor; }
    void setBackgroundFocusColor(const QColor &color);
    // The grounds of unselected rows in turn; the first row, of index 0, is an even one.
    QColor backgroundOddRowColor() const { return m_backgroundOddRowColor; }
    void setBackgroundOddRowColor(const QColor &color);
    QColor backgroundEvenRowColor() const { return m_backgroundEvenRowColor; }
    void setBackgroundEvenRowColor(const QColor &color);
    // Held beside the others; nothing is drawn with it.
    QColor backgroundSelectedFocusColor() const { return m_backgroundSelectedFocusColor; }
    void setBackgroundSelectedFocusColor(const QColor &color);
    QColor markedFrameColor() const { return m_markedFrameColor; }
    void setMarkedFrameColor(const QColor &color);

    // The widths of the columns from the first on, whole numbers separated by commas. One part that
    // is none, or negative, leaves no hints at all, and the widths as they are until the next
    // change of size.
    QString columnWidthHint() const { return m_columnWidthHint; }
    void setColumnWidthHint(const QString &hint);

    int rowHeight() const { return m_rowHeight; }
    void setRowHeight(int height);
    int marginWidth() const { return m_marginWidth; }
    void setMarginWidth(int width);
    int marginHeight() const { return m_marginHeight; }
    void setMarginHeight(int height);
    int spacingWidth() const { return m_spacingWidth; }
    void setSpacingWidth(int width);
    int spacingHeight() const { return m_spacingHeight; }
    void setSpacingHeight(int height);
    int textDrawXPointOffset() const { return m_textDrawXPointOffset; }
    void setTextDrawXPointOffset(int offset);
    int textDrawYPointOffset() const { return m_textDrawYPointOffset; }
    void setTextDrawYPointOffset(int offset);
    int itemMarginWidth() const { return m_itemMarginWidth; }
    void setItemMarginWidth(int width);
    int itemMarginHeight() const { return m_itemMarginHeight; }
    void setItemMarginHeight(int height);
    int iconMarginWidth() const { return m_iconMarginWidth; }
    void setIconMarginWidth(int width);

    int columnCount() const { return m_columnCount; }
    void setColumnCount(int count);
    // The column that holds the icons. Anything above 0 ends between 1 and the last column, so that
    // only 0 stands for the first; with a single column, above 0 stands for no column.
    int columnIcon() const { return m_columnIcon; }
    void setColumnIcon(int column);

    // Whether a text too wide for its cell ends in the label instead.
    bool trim() const { return m_trim; }
    void setTrim(bool trim);
    QString trimLabel() const { return m_trimLabel; }
    void setTrimLabel(const QString &label);

    // The index of the new row.
    int addItem(const QStringList &item);
    // index: up to the number of rows, which appends. The icons and marks of the rows behind the
    // place stay with their rows.
    bool insertItem(int index, const QStringList &item);
    bool removeItem(int index);
    bool setItem(int index, const QStringList &item);
    // A null pixmap takes the icon away.
    bool setItemIcon(int index, const QPixmap &icon);
    void clear();
    int count() const { return int(m_items.size()); }
    // Null for a place that has no text.
    QString text(int row, int column) const;

    void clearMarks();
    void addMark(int index);
    void removeMark(int index);
    bool hasMark(int index) const { return m_marks.contains(index); }

    // The row at a y position, the space below it included, and the column at an x position, with
    // the space at its right; -1 for none.
    int getIndex(int y) const;
    int getColumn(int x) const;
    // Invalid for a row that doesn't show.
    QRect getItemRect(int row) const;
    int visibleRows() const { return m_visibleRows; }
    QList<int> columnWidths() const { return m_columnWidths; }

    // scrollBar: not owned, may be null.
    void setScrollBar(QScrollBar *scrollBar);
    QScrollBar *scrollBar() const { return m_scrollBar; }

    // Of several lists the selected one shows the focus colours.
    void selectList();
    void unselectList();
    bool isListSelected() const { return m_listSelected; }

public Q_SLOTS:
    // Scrolls so far that the selected row shows.
    void adjustScroll();
    void updateValue();

Q_SIGNALS:
    void itemDoubleClick(int index, int column);
    // The list has got the keyboard focus.
    void listSelected(CListView *self);

protected:
    void paintDoubleBuffer(QPainter *painter) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void sliderChange(SliderChange change) override;
    void resizeEvent(QResizeEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void setColor(QColor &field, const QColor &color);
    // Of two distances or heights the sum is still an int.
    void setLayoutValue(int &field, int value, int least);
    void setTextOffset(int &field, int offset);
    void updateSize();
    void updateView();
    void updateRange();
    // Moves the entries of the rows from index on by one row.
    void shiftRows(int index, int by);

    bool isIndex(int index) const { return index >= 0 && index < m_items.size(); }
    int firstVisibleRow() const;
    int rowPitch() const;
    QRect rowRect(int place) const;
    void mouseSelect(const QPoint &position);
    bool isWithinMargins(const QPoint &position) const;
    void paintRow(QPainter *painter, int row, const QRect &rect) const;
    // The width that the icon takes from the cell, its margin included.
    int paintIcon(QPainter *painter, const QPixmap &icon, const QRect &cell) const;
    void paintText(QPainter *painter, const QString &text, const QRect &cell) const;

    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
    QColor m_foregroundColor{182, 182, 182};
    QColor m_foregroundFocusColor{178, 178, 178};
    QColor m_foregroundSelectedFocusColor{255, 255, 255};
    QColor m_backgroundOddRowColor{89, 89, 89};
    QColor m_backgroundEvenRowColor{72, 71, 71};
    QColor m_backgroundFocusColor{0, 102, 0};
    QColor m_backgroundUnselectedFocusColor{0, 162, 0};
    QColor m_backgroundSelectedFocusColor;
    QColor m_markedFrameColor{0, 255, 0};
    QString m_columnWidthHint;
    int m_rowHeight = 15;
    int m_marginWidth = 0;
    int m_marginHeight = 0;
    int m_spacingWidth = 2;
    int m_spacingHeight = 2;
    int m_textDrawXPointOffset = 0;
    int m_textDrawYPointOffset = 0;
    int m_itemMarginWidth = 0;
    int m_itemMarginHeight = 0;
    int m_iconMarginWidth = 5;
    int m_columnCount = 1;
    int m_columnIcon = 0;
    bool m_trim = false;
    QString m_trimLabel = QStringLiteral("...");

    QList<QStringList> m_items;
    QHash<int, QPixmap> m_icons;
    QHash<int, int> m_marks;
    int m_visibleRows = 0;
    QList<int> m_widthHints;
    QList<int> m_columnWidths;
    QPointer<QScrollBar> m_scrollBar;
    bool m_listSelected = false;
};
