// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CText.h"

#include <QtGui/QPainter>

CText::CText(QWidget *parent)
    : QWidget(parent)
    , DoubleBuffer(this)
{
    setFocusPolicy(Qt::ClickFocus);
}

void CText::setAlignment(Qt::Alignment alignment)
{
    if (m_alignment != alignment) {
        m_alignment = alignment;
        updateDoubleBuffer();
    }
}

void CText::setText(const QString &text)
{
    if (m_text != text) {
        m_text = text;
        updateDoubleBuffer();
    }
}

void CText::paintDoubleBuffer(QPainter *painter)
{
    painter->setPen(palette().color(QPalette::Text));
    painter->drawText(rect(), static_cast<int>(m_alignment), m_text);
}

bool CText::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QWidget::event(event);
}

void CText::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (changesLettering(event)) {
        updateDoubleBuffer();
    }
}

void CText::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateDoubleBuffer();
}
