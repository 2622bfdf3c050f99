// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemProxy.h"
#include "widgets/DoubleBuffer.h"
#include "widgets/WheelSteps.h"

#include <QtWidgets/QAbstractSlider>

// What the controls that step and drag a number have in common: a slider that takes its range and
// value from a parameter, follows it, and writes each change of its value there.
//
// Qt's range of an unbound slider is 0 to 99. Owner: its Qt parent. Thread: GUI.
class BoundSlider : public QAbstractSlider, public DoubleBuffer, public MemProxy
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(QString namedAddress READ getNamedAddress WRITE setNamedAddress)

public:
    ~BoundSlider() override;

    // Of what is drawn within the widget.
    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);

    void assignMemAPI() override;
    void updateMemAPI() override;

public Q_SLOTS:
    // One single step, the other way with inverted controls.
    void stepUp();
    void stepDown();

protected:
    BoundSlider(Qt::Alignment alignment, QWidget *parent);

    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

    // The steps that a wheel event makes due, above 0 up. Sideways turning makes none.
    int wheelSteps(const QWheelEvent *event);
    // Whether the value is where no further step of this direction can bring it.
    bool isAtLimit(bool up) const;

protected Q_SLOTS:
    // Writes the value to the memory and shows it.
    virtual void updateValue();

private:
    Qt::Alignment m_alignment;
    WheelSteps m_wheel;
    bool m_takingRange = false;
};
