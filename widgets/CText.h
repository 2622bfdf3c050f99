// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/DoubleBuffer.h"

#include <QtCore/QString>
#include <QtWidgets/QWidget>

// A label in the text colour of its palette. A line feed begins a new line; nothing is wrapped.
// The text is its accessible name, too, unless it is given another one.
// Owner: its Qt parent. Thread: GUI.
class CText : public QWidget, public DoubleBuffer
{
    Q_OBJECT
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    explicit CText(QWidget *parent = nullptr);

    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);
    QString text() const { return m_text; }
    void setText(const QString &text);

    void paintDoubleBuffer(QPainter *painter) override;

protected:
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    Qt::Alignment m_alignment = Qt::AlignLeft | Qt::AlignVCenter;
    QString m_text;
};
