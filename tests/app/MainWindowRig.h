// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Folders.h"
#include "views/EditorLibrary.h"
#include "views/EditorTemplate.h"
#include "views/PanelRig.h"

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QStackedWidget>

// What the tests of the main window add to those of its panels: settings of their own before the
// window is made, its parts, and answers to its boxes.
class MainWindowRig : public PanelRig
{
public:
    static QSettings settings() { return {QSettings::UserScope, CorporationName, SettingName}; }
    static void store(const char *key, const QVariant &value)
    {
        settings().setValue(QLatin1String(key), value);
    }
    static QVariant stored(const char *key) { return settings().value(QLatin1String(key)); }

    // The window alone, with the settings as they are; not shown.
    void makeWindow(bool autoSyncAtStart = false)
    {
        window = std::make_unique<EditorMainWindow>(api.get(), autoSyncAtStart);
    }
    bool showWindow()
    {
        window->show();
        window->activateWindow();
        return QTest::qWaitForWindowActive(window.get());
    }

    QMenuBar *menuBar() const { return window->findChild<QMenuBar *>(); }
    // A menu of the bar, or a submenu of its, by its text.
    QMenu *menu(const QString &title) const
    {
        const QList<QMenu *> menus =
            window->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly);
        for (QMenu *menu : menus) {
            if (menu->title() == title) {
                return menu;
            }
        }
        return nullptr;
    }
    // Null if no menu has an entry of that text.
    QAction *entry(const QString &text) const
    {
        const QList<QMenu *> menus =
            window->findChildren<QMenu *>(QString(), Qt::FindDirectChildrenOnly);
        for (const QMenu *menu : menus) {
            for (QAction *action : menu->actions()) {
                if (action->text() == text) {
                    return action;
                }
            }
        }
        return nullptr;
    }
    EditorTemplate *templateView() const { return window->findChild<EditorTemplate *>(); }
    EditorLibrary *libraryView() const { return window->findChild<EditorLibrary *>(); }
    QStackedWidget *stack() const { return inWindow<QStackedWidget>("viewMainStack"); }
    bool showsLibrary() const { return stack()->currentWidget() == libraryView(); }
    COnOffButton *sizeButton() const { return inWindow<COnOffButton>("btnWindowContract"); }
    QLabel *onlineLamp() const { return inWindow<QLabel>("lblOnline"); }
    QString fileName() const
    {
        return api->getParamQString(ParamAddress(ParamAddress::FileName, -1, -1, -1));
    }

    // The lock count is 0, neither more nor less: one lock is one unlock away from free.
    bool isFree() const
    {
        if (window->isWindowLocked()) {
            return false;
        }
        window->windowLock();
        const bool locked = window->isWindowLocked() && !menuBar()->isEnabled();
        window->windowUnlock();
        return locked && !window->isWindowLocked() && menuBar()->isEnabled();
    }
    // Closes the panel as its user does, and waits until it is gone.
    template <typename Panel>
    bool closePanel()
    {
        const QPointer<Panel> closed = panel<Panel>();
        return closed && closed->close() && QTest::qWaitFor([&closed] { return closed.isNull(); });
    }
};

// Answers every message box that comes while it lives, from within the box's event loop.
class MessageBoxAnswer : public QObject
{
public:
    explicit MessageBoxAnswer(QMessageBox::StandardButton answer = QMessageBox::Ok,
                              std::function<void(QMessageBox *)> look = {})
        : m_answer(answer)
        , m_look(std::move(look))
    {
        qApp->installEventFilter(this);
    }
    // "title|text" of each.
    QStringList asked() const { return m_asked; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *box = qobject_cast<QMessageBox *>(watched);
        if (box != nullptr && event->type() == QEvent::Show) {
            m_asked.append(box->windowTitle() + QLatin1Char('|') + box->text());
            QTimer::singleShot(0, box, [this, box] {
                if (m_look) {
                    m_look(box);
                }
                box->button(m_answer)->click();
            });
        }
        return false;
    }

private:
    QMessageBox::StandardButton m_answer;
    std::function<void(QMessageBox *)> m_look;
    QStringList m_asked;
};
