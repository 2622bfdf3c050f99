// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/DoubleBuffer.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QFrame>

// A picture as a ground for other widgets: the window, the views and the panels are such frames.
// What is clicked beside their controls ends here, so that nothing below a panel hears of it.
// Owner: its Qt parent. Thread: GUI.
class CFrame : public QFrame, public DoubleBuffer
{
    Q_OBJECT
    Q_PROPERTY(QPixmap backgroundPixmap READ backgroundPixmap WRITE setBackgroundPixmap)

public:
    explicit CFrame(QWidget *parent = nullptr);

    // Drawn at the origin, unscaled; a null pixmap draws nothing.
    QPixmap backgroundPixmap() const { return m_backgroundPixmap; }
    void setBackgroundPixmap(const QPixmap &pixmap);

    void paintDoubleBuffer(QPainter *painter) final;
    // The background, if it covers the frame: the grounds of the window, its views and its panels
    // are the largest pictures there are.
    QPixmap finishedPicture(qreal devicePixelRatio) const final;

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    // Empty: the event stays accepted, and neither the base class nor a parent sees it.
    void mouseMoveEvent(QMouseEvent *) override {}
    void mousePressEvent(QMouseEvent *) override {}
    void mouseReleaseEvent(QMouseEvent *) override {}

private:
    QPixmap m_backgroundPixmap;
};
