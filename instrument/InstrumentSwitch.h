// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QCheckBox>

// A sliding switch on the dark strip of the front panel, its caption on the left; on is right.
// Thread: GUI.
class InstrumentSwitch : public QCheckBox
{
    Q_OBJECT

public:
    explicit InstrumentSwitch(const QString &text, QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;
};
