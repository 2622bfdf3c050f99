// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QLabel>

// A green outline that stands for half a second where something has just happened, and then
// deletes itself. A click that falls on it keeps it in place, unseen, until the button is released,
// so that the click ends where it began. Owner: its parent, and itself. Thread: GUI.
class FlashFrame : public QLabel
{
    Q_OBJECT

public:
    // Nothing for a null parent. An invalid rectangle stands for the whole parent.
    static void start(QWidget *parent, const QRect &rect);
    // In the parent's coordinates. Nothing without an area.
    static void start(QWidget *parent, int x, int y, int width, int height);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    explicit FlashFrame(QWidget *parent);

    bool m_pixmapRemoved = false;
};
