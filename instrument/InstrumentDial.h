// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtWidgets/QDial>

// One knob of the front panel, with what it does written beneath it. The value is 0 to 127. Dragged
// up and down (with Shift in fine steps), turned by the wheel, or moved by the keys of a slider.
// Thread: GUI.
class InstrumentDial : public QDial
{
    Q_OBJECT

public:
    // How the value is shown: 0 to 127, or -64 to +63 with the ring lit from the middle.
    enum class Format { Unipolar, Bipolar };

    struct Caption
    {
        QString name;   // on the knob's little display, cut if it is too long
        QString detail; // beneath it, on the left
        QString value;  // beneath it, on the right

        bool operator==(const Caption &) const = default;
    };

    explicit InstrumentDial(QWidget *parent = nullptr);

    void setCaption(const Caption &caption);
    const Caption &caption() const { return m_caption; }
    void setFormat(Format format);
    // The knob that the large display shows has a brighter one of its own.
    void setSelected(bool selected);
    bool isSelected() const { return m_selected; }
    // How many values a notch of the wheel passes. With Shift it is one.
    void setNotch(int notch) { m_notch = notch; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void paintRing(QPainter &painter) const;
    void paintCap(QPainter &painter) const;
    void paintCaption(QPainter &painter) const;

    Caption m_caption;
    Format m_format = Format::Unipolar;
    bool m_selected = false;
    int m_notch = 1;
    qreal m_lastY = 0;      // of the drag
    qreal m_dragged = 0;    // what of it made no whole value yet
    int m_wheelEighths = 0; // of a degree, that made no whole notch yet
};
