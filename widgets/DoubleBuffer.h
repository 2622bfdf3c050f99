// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QPixmap>

class QEvent;
class QPainter;
class QWidget;

// Mixin that gives a widget an off-screen picture of itself: the widget paints into it only when
// its content has changed, and a paint event is one copy to the screen. The user class overrides
// event() and hands each event to eventDoubleBuffer() first.
//
// The picture has the device pixels of the screen that the widget is on, and is painted again when
// the widget comes to a screen with another scale. Owner: the widget itself. Thread: GUI.
class DoubleBuffer
{
public:
    // served: the widget that this serves, not owned; it outlives this object, being the same.
    explicit DoubleBuffer(QWidget *served);
    virtual ~DoubleBuffer();
    DoubleBuffer(const DoubleBuffer &) = delete;
    DoubleBuffer &operator=(const DoubleBuffer &) = delete;

    // Draws the whole widget, in its own coordinates, on a transparent ground. Reads state, changes
    // none.
    virtual void paintDoubleBuffer(QPainter *painter) = 0;

    // A picture that shows the content as it stands, in the device pixels of the ratio, and is kept
    // instead of painting one like it; null, if there is none.
    virtual QPixmap finishedPicture(qreal devicePixelRatio) const;

    // The content has changed. Nothing before the widget is polished, since the polish paints.
    void updateDoubleBuffer();
    // The same, on the screen before this returns.
    void repaintDoubleBuffer();
    // True: the event is dealt with and goes no further.
    bool eventDoubleBuffer(QEvent *event);
    // Paints the picture if it is out of date and the widget has an area.
    void updateDoubleBufferPixmap();

protected:
    // Whether a QWidget::changeEvent() tells of a font or a colour, so that lettering looks
    // otherwise from now on.
    static bool changesLettering(const QEvent *event);

    QWidget *widget;
    bool dirty = true;
    bool polished = false;
    QPixmap bufferPixmap;

private:
    QPixmap paintedPicture(qreal ratio);
};
