// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/COnOffButton.h"

#include <QtCore/QPointer>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>

namespace
{

bool isArrowKey(const QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
        return true;
    default:
        return false;
    }
}

} // namespace

COnOffButton::COnOffButton(QWidget *parent)
    : QPushButton(parent)
    , ButtonSkin(this)
{
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QAbstractButton::pressed, this, &COnOffButton::checkUpdate,
            Qt::DirectConnection);
    connect(this, &QAbstractButton::released, this, &COnOffButton::checkUpdate,
            Qt::DirectConnection);
    connect(this, &QAbstractButton::toggled, this, &COnOffButton::checkUpdate,
            Qt::DirectConnection);
}

COnOffButton::~COnOffButton()
{
    unbind();
}

void COnOffButton::setOnStateTrigger(TOnOffStateTrigger trigger)
{
    m_onStateTrigger = trigger;
    updateDoubleBuffer();
}

void COnOffButton::setOffStateTrigger(TOnOffStateTrigger trigger)
{
    m_offStateTrigger = trigger;
    updateDoubleBuffer();
}

void COnOffButton::setOnValue(int value)
{
    m_onValue = value;
    if (isChecked()) {
        setMemAPICurrentValue(value);
    }
    updateDoubleBuffer();
}

void COnOffButton::setOffValue(int value)
{
    m_offValue = value;
    if (!isChecked()) {
        setMemAPICurrentValue(value);
    }
    updateDoubleBuffer();
}

void COnOffButton::assignMemAPI()
{
    MemProxy::assignMemAPI();
    updateMemAPI();
}

void COnOffButton::updateMemAPI()
{
    if (!isAssigned() || !isCheckable()) {
        return;
    }
    const MemoryLock lock = lockMemory();
    const int value = getMemAPICurrentValue();
    if (value == m_onValue && !isChecked()) {
        setChecked(true);
    } else if (value == m_offValue && isChecked()) {
        setChecked(false);
    }
}

void COnOffButton::checkUpdate()
{
    if (!takeStateChange()) {
        return;
    }
    const int value = isChecked() ? m_onValue : m_offValue;
    if (isAssigned() && getMemAPICurrentValue() != value) {
        setMemAPICurrentValue(value);
    }
    updateDoubleBuffer();
}

bool COnOffButton::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QPushButton::event(event);
}

void COnOffButton::mousePressEvent(QMouseEvent *event)
{
    // Whoever hears of a click may delete the button.
    const QPointer<COnOffButton> self(this);
    if (isCheckable() && event->button() == Qt::LeftButton) {
        if (m_onStateTrigger == buttonPush && !isChecked()) {
            click();
        }
        if (self && m_offStateTrigger == buttonPush && isChecked()) {
            click();
        }
    }
    if (self) {
        QPushButton::mousePressEvent(event);
    }
}

void COnOffButton::keyPressEvent(QKeyEvent *event)
{
    if (isArrowKey(event)) {
        event->accept();
        return;
    }
    QPushButton::keyPressEvent(event);
}

void COnOffButton::keyReleaseEvent(QKeyEvent *event)
{
    if (isArrowKey(event)) {
        event->accept();
        return;
    }
    QPushButton::keyReleaseEvent(event);
}

void COnOffButton::resizeEvent(QResizeEvent *event)
{
    QPushButton::resizeEvent(event);
    updateDoubleBuffer();
}
