// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QPushButton>

// A key of the front panel, with a caption or an arrow on it and, if asked for, a lamp. Checkable
// ones show their state by the lamp; of others it is set. Thread: GUI.
class InstrumentKey : public QPushButton
{
    Q_OBJECT

public:
    enum class Face { Caption, ArrowUp, ArrowDown };

    // text: the caption; never a shortcut.
    InstrumentKey(Face face, const QString &text, QWidget *parent = nullptr);

    void setHasLamp(bool hasLamp);
    void setLit(bool lit);
    bool isLit() const;
    // Looks as if nothing came of a click. It keeps the focus, which a disabled key would pass on
    // to a neighbour that does something else.
    void setDimmed(bool dimmed);
    bool isDimmed() const { return m_dimmed; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;

private:
    const Face m_face;
    bool m_hasLamp = false;
    bool m_lit = false;
    bool m_dimmed = false;
};
