// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/RunningLight.h"

#include "images/Artwork.h"

#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

namespace
{

// The distance of the lamps that are drawn in the panels, in pixels.
constexpr int StepWidth = 7;

} // namespace

int drawRunningLight(QLabel *label, const QPixmap &light, int step)
{
    const qreal ratio = label->devicePixelRatioF();
    const QPixmap picture = artworkFor(light, ratio);
    const int x = step * StepWidth - picture.deviceIndependentSize().toSize().width() + StepWidth;
    QPixmap drawn(label->size() * ratio);
    drawn.setDevicePixelRatio(ratio);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.drawPixmap(x, 0, picture);
    painter.end();
    label->setPixmap(drawn);
    return x + StepWidth < label->width() ? step + 1 : 0;
}
