// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentLamp.h"

#include "instrument/InstrumentLooks.h"

#include <QtGui/QPainter>

namespace looks = InstrumentLooks;

namespace
{

constexpr QSize LampSize(52, 20);

} // namespace

// Phases: Idle, blink() -> Lit, after LitMs -> Dark, after DarkMs -> Lit if blink() was called
// since the light came on, else Idle.

InstrumentLamp::InstrumentLamp(const QString &text, QWidget *parent)
    : QWidget(parent)
    , m_text(text)
{
    setFixedSize(LampSize);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_phase == Phase::Lit) {
            enter(Phase::Dark);
        } else {
            enter(m_again ? Phase::Lit : Phase::Idle);
        }
    });
}

QSize InstrumentLamp::sizeHint() const
{
    return LampSize;
}

void InstrumentLamp::blink()
{
    if (m_phase == Phase::Idle) {
        enter(Phase::Lit);
    } else {
        m_again = true;
    }
}

void InstrumentLamp::enter(Phase phase)
{
    const bool wasLit = isLit();
    m_phase = phase;
    if (phase == Phase::Lit) {
        m_again = false;
        m_timer.start(LitMs);
    } else if (phase == Phase::Dark) {
        m_timer.start(DarkMs);
    }
    if (wasLit != isLit()) {
        update();
        Q_EMIT litChanged(isLit());
    }
}

void InstrumentLamp::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    looks::textRight(painter, looks::Face::Expanded, QPoint(width() - 18, 14), m_text,
                     looks::StripInk);
    looks::lamp(painter, QPointF(width() - 8, 10), isLit());
}
