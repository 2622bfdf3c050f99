// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/MemProxy.h"

#include <QtCore/QString>
#include <QtWidgets/QLineEdit>

class QRegularExpressionValidator;

// A line of text bound to a parameter, which never sees half-typed text: an edit begins with the
// focus and ends by being accepted or aborted. Escape, and leaving a text that the validator
// refuses, abort it, and the text from before the edit returns. Owner: its Qt parent. Thread: GUI.
class CLineEdit : public QLineEdit, public MemProxy
{
    Q_OBJECT
    Q_PROPERTY(QString validatorRegExp READ validatorRegExp WRITE setValidatorRegExp)
    Q_PROPERTY(bool endTrim READ endTrim WRITE setEndTrim)
    Q_PROPERTY(QString namedAddress READ getNamedAddress WRITE setNamedAddress)

public:
    explicit CLineEdit(QWidget *parent = nullptr);
    ~CLineEdit() override;

    // What the text must match as a whole; empty for no such rule.
    QString validatorRegExp() const { return m_validatorRegExp; }
    void setValidatorRegExp(const QString &expression);
    // Whether blanks and tabs at the end go when an edit is accepted.
    bool endTrim() const { return m_endTrim; }
    void setEndTrim(bool trim) { m_endTrim = trim; }

    // An edit is under way, and has changed the text.
    bool hasTyping() const { return m_editing && text() != m_savedText; }

    void assignMemAPI() override;
    void updateMemAPI() override;

public Q_SLOTS:
    // Both do nothing outside of an edit.
    void accept();
    void abort();
    // Writes the text to the memory, but not during an edit.
    void updateText();

Q_SIGNALS:
    void started();
    void accepted();
    void aborted();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    // No key goes on to a parent.
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    // Whether the focus goes to this line's own menu, in the middle of an edit.
    bool isOwnPopup(Qt::FocusReason reason) const;

    QString m_validatorRegExp;
    bool m_endTrim = false;
    QRegularExpressionValidator *m_validator = nullptr; // owned as a child
    bool m_editing = false;
    QString m_savedText;
};
