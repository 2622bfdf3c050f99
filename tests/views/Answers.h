// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/PopupWindow.h"

#include <QtCore/QEvent>
#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <functional>

// Plays the user at windows that hold the program up: dialogs, popups, menus. An answer is given
// beforehand; it runs in the event loop of the first window of its kind that shows. A dialog or
// popup that nobody expected is closed and remembered, so that a test fails instead of hanging.
class Answers : public QObject
{
public:
    Answers() { qApp->installEventFilter(this); }
    ~Answers() override { qApp->removeEventFilter(this); }

    template <typename Window>
    void expect(std::function<void(Window *)> answer)
    {
        m_answers.append([answer](QWidget *shown) {
            auto *window = qobject_cast<Window *>(shown);
            if (window == nullptr) {
                return false;
            }
            // Not before all of it shows.
            const QPointer<QWidget> guard(window);
            QMetaObject::invokeMethod(
                window,
                [window, guard, answer] {
                    answer(window);
                    // Whoever fails has not come to his answer; the program must go on all the
                    // same.
                    if (QTest::currentTestFailed() && guard) {
                        guard->close();
                    }
                },
                Qt::QueuedConnection);
            return true;
        });
    }

    // Types the name as a user does and presses the button of the dialog.
    void expectFileDialog(const QString &path, const std::function<void(QFileDialog *)> &look = {})
    {
        expect<QFileDialog>([path, look](QFileDialog *dialog) {
            if (look) {
                look(dialog);
            }
            auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
            auto *buttons = dialog->findChild<QDialogButtonBox *>();
            if (path.isEmpty() || name == nullptr || buttons == nullptr) {
                dialog->reject();
                return;
            }
            name->setText(path);
            QTest::mouseClick(buttons->buttons().constFirst(), Qt::LeftButton);
        });
    }

    // Whether everything that was expected came, and nothing else.
    bool allGiven() const { return m_answers.isEmpty() && m_unexpected.isEmpty(); }
    QStringList unexpected() const { return m_unexpected; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *window = event->type() == QEvent::Show ? qobject_cast<QWidget *>(watched) : nullptr;
        if (window == nullptr || !window->isWindow()) {
            return false;
        }
        for (qsizetype i = 0; i < m_answers.size(); ++i) {
            if (m_answers.at(i)(window)) {
                m_answers.removeAt(i);
                return false;
            }
        }
        if (auto *dialog = qobject_cast<QDialog *>(window)) {
            m_unexpected.append(dialog->windowTitle());
            QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
        } else if (qobject_cast<PopupWindow *>(window) != nullptr) {
            m_unexpected.append(QString::fromLatin1(window->metaObject()->className()));
            QMetaObject::invokeMethod(window, &QWidget::close, Qt::QueuedConnection);
        }
        return false;
    }

private:
    QList<std::function<bool(QWidget *)>> m_answers;
    QStringList m_unexpected;
};
