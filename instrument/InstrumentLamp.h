// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

// The lamp for received MIDI on the dark strip of the front panel, its caption on the left. It
// lights for a moment at a time, so that a steady stream still blinks. Thread: GUI.
class InstrumentLamp : public QWidget
{
    Q_OBJECT

public:
    static constexpr int LitMs = 80;
    static constexpr int DarkMs = 60;

    explicit InstrumentLamp(const QString &text, QWidget *parent = nullptr);

    void blink();
    bool isLit() const { return m_phase == Phase::Lit; }
    // Dark, and with nothing left to show.
    bool isIdle() const { return m_phase == Phase::Idle; }
    QSize sizeHint() const override;

Q_SIGNALS:
    void litChanged(bool lit);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    enum class Phase { Idle, Lit, Dark };
    void enter(Phase phase);

    const QString m_text;
    QTimer m_timer;
    Phase m_phase = Phase::Idle;
    bool m_again = false; // asked for while it could not light
};
