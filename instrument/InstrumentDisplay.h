// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtWidgets/QWidget>

// The large display of the front panel: the template above, the knob turned last beneath. What it
// shows is also its accessible description. Thread: GUI.
class InstrumentDisplay : public QWidget
{
    Q_OBJECT

public:
    struct Content
    {
        int templateNumber = 1; // from 1
        QString templateName;
        QString vstiName;
        bool isControlChange = false; // the mode: control changes, else remote
        bool isEdited = false;
        bool isPlugged = true;
        QString knob; // "A1"; empty before the first is turned, and then what follows is not shown
        QString knobName;
        QString knobValue;
        double barFrom = 0; // the lit part of the bar, 0 to 1
        double barTo = 0;

        bool operator==(const Content &) const = default;
    };

    explicit InstrumentDisplay(QWidget *parent = nullptr);

    void setContent(const Content &content);
    const Content &content() const { return m_content; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();
    void paintTemplate(QPainter &painter) const;
    void paintKnob(QPainter &painter) const;

    Content m_content;
};
