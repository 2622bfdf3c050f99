// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ProgressLine.h"

#include <QtGui/QPainter>

#include <algorithm>

namespace
{

// A groove in the display's glass, and the lettering's grey in it.
constexpr QColor GrooveColor(0, 0, 0, 28);
constexpr QColor FilledColor(55, 55, 55);

} // namespace

ProgressLine::ProgressLine(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ProgressLine::setProgress(int done, int total)
{
    total = std::max(total, 0);
    done = std::clamp(done, 0, total);
    if (done == m_done && total == m_total) {
        return;
    }
    m_done = done;
    m_total = total;
    setAccessibleDescription(QStringLiteral("%1 of %2").arg(done).arg(total));
    update();
}

int ProgressLine::filledWidth() const
{
    return m_total == 0 ? 0 : static_cast<int>(qint64{width()} * m_done / m_total);
}

void ProgressLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), GrooveColor);
    painter.fillRect(0, 0, filledWidth(), height(), FilledColor);
}
