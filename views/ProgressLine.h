// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

// A thin line on a display that fills from the left with what is done of all. Owner: its Qt parent.
// Thread: GUI.
class ProgressLine : public QWidget
{
    Q_OBJECT

public:
    explicit ProgressLine(QWidget *parent = nullptr);

    // done is kept between 0 and total; a total of 0 leaves the line empty.
    void setProgress(int done, int total);
    int done() const { return m_done; }
    int total() const { return m_total; }
    // Pixels that are filled: all of them only when all is done.
    int filledWidth() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_done = 0;
    int m_total = 0;
};
