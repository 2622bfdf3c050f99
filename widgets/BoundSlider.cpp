// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/BoundSlider.h"

#include <QtGui/QWheelEvent>

BoundSlider::BoundSlider(Qt::Alignment alignment, QWidget *parent)
    : QAbstractSlider(parent)
    , DoubleBuffer(this)
    , m_alignment(alignment)
{
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QAbstractSlider::valueChanged, this, &BoundSlider::updateValue,
            Qt::DirectConnection);
}

BoundSlider::~BoundSlider()
{
    unbind();
}

void BoundSlider::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    updateDoubleBuffer();
}

void BoundSlider::assignMemAPI()
{
    MemProxy::assignMemAPI();
    if (!isAssigned()) {
        return;
    }
    const MemoryLock lock = lockMemory();
    // A value that the new range pushes aside is the slider's old one, and not one to be written.
    m_takingRange = true;
    setMinimum(getMemAPIMinimumValue());
    setMaximum(getMemAPIMaximumValue());
    m_takingRange = false;
    updateMemAPI();
}

void BoundSlider::updateMemAPI()
{
    if (!isAssigned()) {
        return;
    }
    const MemoryLock lock = lockMemory();
    setValue(getMemAPICurrentValue());
}

void BoundSlider::updateValue()
{
    if (!m_takingRange) {
        setMemAPICurrentValue(value());
    }
    updateDoubleBuffer();
}

void BoundSlider::stepUp()
{
    triggerAction(invertedControls() ? SliderSingleStepSub : SliderSingleStepAdd);
}

void BoundSlider::stepDown()
{
    triggerAction(invertedControls() ? SliderSingleStepAdd : SliderSingleStepSub);
}

int BoundSlider::wheelSteps(const QWheelEvent *event)
{
    return m_wheel.take(event->angleDelta().y());
}

bool BoundSlider::isAtLimit(bool up) const
{
    return value() == (up != invertedControls() ? maximum() : minimum());
}

bool BoundSlider::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QAbstractSlider::event(event);
}

void BoundSlider::resizeEvent(QResizeEvent *event)
{
    QAbstractSlider::resizeEvent(event);
    updateDoubleBuffer();
}
