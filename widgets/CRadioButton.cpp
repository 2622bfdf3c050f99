// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CRadioButton.h"

#include <QtCore/QPointer>
#include <QtGui/QMouseEvent>

CRadioButton::CRadioButton(QWidget *parent)
    : QRadioButton(parent)
    , ButtonSkin(this)
{
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QAbstractButton::pressed, this, &CRadioButton::checkUpdate,
            Qt::DirectConnection);
    connect(this, &QAbstractButton::released, this, &CRadioButton::checkUpdate,
            Qt::DirectConnection);
    connect(this, &QAbstractButton::toggled, this, &CRadioButton::checkUpdate,
            Qt::DirectConnection);
}

CRadioButton::~CRadioButton()
{
    unbind();
}

void CRadioButton::setRadioStateTrigger(TRadioStateTrigger trigger)
{
    m_radioStateTrigger = trigger;
    updateDoubleBuffer();
}

void CRadioButton::setOnValue(int value)
{
    m_onValue = value;
    if (isChecked()) {
        setMemAPICurrentValue(value);
    }
    updateDoubleBuffer();
}

void CRadioButton::assignMemAPI()
{
    MemProxy::assignMemAPI();
    updateMemAPI();
}

void CRadioButton::updateMemAPI()
{
    if (!isAssigned() || !isCheckable()) {
        return;
    }
    const MemoryLock lock = lockMemory();
    if (getMemAPICurrentValue() == m_onValue && !isChecked()) {
        setChecked(true);
    }
}

void CRadioButton::checkUpdate()
{
    if (!takeStateChange()) {
        return;
    }
    if (isChecked() && isAssigned() && getMemAPICurrentValue() != m_onValue) {
        setMemAPICurrentValue(m_onValue);
    }
    updateDoubleBuffer();
}

bool CRadioButton::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QRadioButton::event(event);
}

bool CRadioButton::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void CRadioButton::mousePressEvent(QMouseEvent *event)
{
    // Whoever hears of the click may delete the button.
    const QPointer<CRadioButton> self(this);
    if (isCheckable() && event->button() == Qt::LeftButton && m_radioStateTrigger == buttonPush &&
        !isChecked()) {
        click();
    }
    if (self) {
        QRadioButton::mousePressEvent(event);
    }
}

void CRadioButton::resizeEvent(QResizeEvent *event)
{
    QRadioButton::resizeEvent(event);
    updateDoubleBuffer();
}
