// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSpinButton.h"

#include "widgets/COnOffButton.h"

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtGui/QWheelEvent>

namespace
{

constexpr int PressedMs = 100;

enum Row { NormalRow, UpRow, DownRow, RowCount };

} // namespace

CSpinButton::CSpinButton(QWidget *parent)
    : BoundSlider(Qt::AlignCenter, parent)
    , m_upButton(makeHalf(QStringLiteral("Up")))
    , m_downButton(makeHalf(QStringLiteral("Down")))
{
    m_releaseTimer.setSingleShot(true);
    m_releaseTimer.setInterval(PressedMs);
    connect(&m_releaseTimer, &QTimer::timeout, this, &CSpinButton::checkUpdate);
    connect(m_upButton, &QAbstractButton::clicked, this, &CSpinButton::stepUp);
    connect(m_downButton, &QAbstractButton::clicked, this, &CSpinButton::stepDown);
    placeHalves();
    enableHalves();
}

CSpinButton::~CSpinButton() = default;

COnOffButton *CSpinButton::makeHalf(const QString &says)
{
    auto *half = new COnOffButton(this);
    half->setFocusPolicy(Qt::NoFocus);
    half->setAutoRepeat(true);
    half->setAccessibleName(says);
    connect(half, &QAbstractButton::pressed, this, &CSpinButton::checkUpdate);
    connect(half, &QAbstractButton::released, this, &CSpinButton::checkUpdate);
    return half;
}

void CSpinButton::placeHalves()
{
    const int half = height() / 2;
    m_upButton->setGeometry(0, 0, width(), half);
    m_downButton->setGeometry(0, half, width(), height() - half);
}

void CSpinButton::setCombinedImage(const QPixmap &pixmap)
{
    m_combinedImage.setPixmap(pixmap);
    updateDoubleBuffer();
}

void CSpinButton::setImageCategories(int categories)
{
    m_combinedImage.setImageCategories(categories);
    updateDoubleBuffer();
}

void CSpinButton::setCategory(int category)
{
    m_combinedImage.setCategory(category);
    updateDoubleBuffer();
}

void CSpinButton::paintDoubleBuffer(QPainter *painter)
{
    const int row = m_downShown ? DownRow : m_upShown ? UpRow : NormalRow;
    m_combinedImage.paint(painter, rect(), alignment(), row, RowCount);
}

void CSpinButton::checkUpdate()
{
    m_releaseTimer.stop();
    const bool up = m_upButton->isDown();
    const bool down = m_downButton->isDown();
    if (up != m_upShown || down != m_downShown) {
        m_upShown = up;
        m_downShown = down;
        updateDoubleBuffer();
    }
}

void CSpinButton::showPressed(bool up)
{
    m_upShown = up;
    m_downShown = !up;
    updateDoubleBuffer();
    m_releaseTimer.start();
}

void CSpinButton::sliderChange(SliderChange change)
{
    BoundSlider::sliderChange(change);
    if (change == SliderRangeChange || change == SliderValueChange) {
        enableHalves();
    }
}

void CSpinButton::enableHalves()
{
    m_upButton->setEnabled(value() < maximum());
    m_downButton->setEnabled(value() > minimum());
}

void CSpinButton::resizeEvent(QResizeEvent *event)
{
    BoundSlider::resizeEvent(event);
    placeHalves();
}

void CSpinButton::wheelEvent(QWheelEvent *event)
{
    event->accept();
    // A wheel that is turned on after the pointer has left still sends its events here.
    if (!rect().contains(event->position().toPoint())) {
        return;
    }
    const int steps = wheelSteps(event);
    const bool up = steps > 0;
    // Whoever hears of a step may delete the control.
    const QPointer<CSpinButton> self(this);
    for (int i = 0; i < qAbs(steps) && !isAtLimit(up); ++i) {
        const int before = value();
        showPressed(up);
        if (up) {
            stepUp();
        } else {
            stepDown();
        }
        if (!self || value() == before) {
            break;
        }
    }
}

void CSpinButton::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Home:
    case Qt::Key_Left:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        if (!isAtLimit(false)) {
            showPressed(false);
        }
        break;
    case Qt::Key_End:
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_PageUp:
        if (!isAtLimit(true)) {
            showPressed(true);
        }
        break;
    default:
        break;
    }
    BoundSlider::keyPressEvent(event);
}
