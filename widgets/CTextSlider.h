// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/BoundSlider.h"

#include <QtCore/QPoint>
#include <QtCore/QString>

class CLineEdit;

// A number shown as text, offset + value * multiplier, and changed by dragging up and down: the
// pointer is hidden and held in the middle of the widget, and stands where it was when the button
// is released. Where a program can't place the pointer it is hidden, and left to move. The wheel
// steps, and with directEdit a double click opens an editor. Owner: its Qt parent. Thread: GUI.
class CTextSlider : public BoundSlider
{
    Q_OBJECT
    Q_PROPERTY(QString format READ format WRITE setFormat)
    Q_PROPERTY(double offset READ offset WRITE setOffset)
    Q_PROPERTY(double multiplier READ multiplier WRITE setMultiplier)
    Q_PROPERTY(bool directEdit READ directEdit WRITE setDirectEdit)
    Q_PROPERTY(int editMaxLength READ editMaxLength WRITE setEditMaxLength)
    Q_PROPERTY(QString editInputMask READ editInputMask WRITE setEditInputMask)
    Q_PROPERTY(QString editValidatorRegExp READ editValidatorRegExp WRITE setEditValidatorRegExp)

public:
    explicit CTextSlider(QWidget *parent = nullptr);
    ~CTextSlider() override;

    // See formatNumber().
    QString format() const { return m_format; }
    void setFormat(const QString &format);
    double offset() const { return m_offset; }
    void setOffset(double offset);
    double multiplier() const { return m_multiplier; }
    void setMultiplier(double multiplier);
    QString shownText() const { return m_shownText; }

    bool directEdit() const { return m_directEdit; }
    void setDirectEdit(bool direct);
    // Of the editor; at least 0.
    int editMaxLength() const { return m_editMaxLength; }
    void setEditMaxLength(int length);
    // These two are held only; the editor's validator follows from offset and multiplier.
    QString editInputMask() const { return m_editInputMask; }
    void setEditInputMask(const QString &mask);
    QString editValidatorRegExp() const { return m_editValidatorRegExp; }
    void setEditValidatorRegExp(const QString &expression);

    void paintDoubleBuffer(QPainter *painter) override;

protected:
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

protected Q_SLOTS:
    void updateValue() override;

private Q_SLOTS:
    void acceptEdit();
    void abortEdit();

private:
    void updateText();
    void beginDrag(const QMouseEvent *event);
    // How far the pointer has gone since the last call, in pixels, above 0 down.
    int takeMovement(const QMouseEvent *event);
    void dragBy(int pixels, bool finely);
    void endDrag();
    void openEditor();
    void closeEditor();
    void setBoundedValue(double value);

    QString m_format;
    double m_offset = 0;
    double m_multiplier = 1;
    bool m_directEdit = false;
    int m_editMaxLength;
    QString m_editInputMask;
    QString m_editValidatorRegExp;
    QString m_shownText;

    bool m_dragging = false;
    bool m_holding = false; // the pointer is put back to m_dragCenter
    int m_dragRemainder = 0;
    QPoint m_savedCursorPos;
    QPoint m_dragCenter;
    QPoint m_lastPosition; // what has been counted of the way up to now

    CLineEdit *m_editor;
    bool m_editAborted = false;
};
