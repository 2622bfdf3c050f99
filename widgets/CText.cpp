// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CText.h"

#include "widgets/FontHelpers.h"

#include <QtGui/QPainter>

namespace
{

// The trim label is a letter that only the program's own fonts draw as an ellipsis.
QString spoken(QString text)
{
    return text.replace(TrimLabel, QChar(u'\u2026'));
}

} // namespace

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
        const QString before = spoken(m_text);
        m_text = text;
        // A name that someone else has given says more than the text alone.
        if (accessibleName() == before) {
            setAccessibleName(spoken(m_text));
        }
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
