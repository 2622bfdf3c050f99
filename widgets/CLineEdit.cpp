// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CLineEdit.h"

#include <QtCore/QPointer>
#include <QtCore/QRegularExpression>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

// From state   on                                          to state
// not editing  focus in                                    editing, started()
// editing      Return, focus out with an acceptable text   not editing, accepted()
// editing      Escape, focus out with another text         not editing, aborted()

CLineEdit::CLineEdit(QWidget *parent)
    : QLineEdit(parent)
{
    setFrame(false);
    setFocusPolicy(Qt::ClickFocus);
    connect(this, &QLineEdit::textChanged, this, &CLineEdit::updateText);
    connect(this, &QLineEdit::editingFinished, this, &CLineEdit::accept);
    connect(this, &QLineEdit::returnPressed, this, &CLineEdit::accept);
}

CLineEdit::~CLineEdit()
{
    unbind();
}

void CLineEdit::setValidatorRegExp(const QString &expression)
{
    m_validatorRegExp = expression;
    delete m_validator;
    m_validator = nullptr;
    if (!expression.isEmpty()) {
        m_validator = new QRegularExpressionValidator(QRegularExpression(expression), this);
    }
    setValidator(m_validator);
}

void CLineEdit::assignMemAPI()
{
    MemProxy::assignMemAPI();
    updateMemAPI();
}

void CLineEdit::updateMemAPI()
{
    if (!isAssigned()) {
        return;
    }
    const MemoryLock lock = lockMemory();
    const QString now = getMemAPIString();
    // The same text again would only move the cursor.
    if (text() != now) {
        setText(now);
    }
}

void CLineEdit::updateText()
{
    if (!m_editing) {
        setMemAPIString(text());
    }
}

void CLineEdit::accept()
{
    if (!m_editing) {
        return;
    }
    m_editing = false;
    if (m_endTrim) {
        static const QRegularExpression end(QStringLiteral("[ \t]+$"));
        setText(text().remove(end));
    }
    updateText();
    clearFocus();
    Q_EMIT accepted();
}

void CLineEdit::abort()
{
    if (!m_editing) {
        return;
    }
    m_editing = false;
    clearFocus();
    setText(m_savedText);
    Q_EMIT aborted();
}

void CLineEdit::focusInEvent(QFocusEvent *event)
{
    if (!m_editing) {
        m_editing = true;
        m_savedText = text();
        Q_EMIT started();
    }
    QLineEdit::focusInEvent(event);
}

bool CLineEdit::isOwnPopup(Qt::FocusReason reason) const
{
    const QWidget *popup = QApplication::activePopupWidget();
    return reason == Qt::PopupFocusReason && popup != nullptr && popup->parentWidget() == this;
}

void CLineEdit::focusOutEvent(QFocusEvent *event)
{
    if (m_editing && !hasAcceptableInput()) {
        abort();
    }
    QLineEdit::focusOutEvent(event);
    // Qt says that an edit is finished only if something was typed; this one has ended either way.
    if (!isOwnPopup(event->reason())) {
        accept();
    }
}

void CLineEdit::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        abort();
    } else {
        QLineEdit::keyPressEvent(event);
    }
    event->accept();
}

void CLineEdit::contextMenuEvent(QContextMenuEvent *event)
{
    const QWidget *shell = window();
    if (shell == nullptr || shell == this) {
        QLineEdit::contextMenuEvent(event);
        return;
    }
    // The menu is a child of the line, which may be deleted while the menu stands.
    const QPointer<QMenu> menu = createStandardContextMenu();
    if (menu.isNull()) {
        return;
    }
    menu->setFont(shell->font());
    menu->exec(event->globalPos());
    delete menu.data();
}
