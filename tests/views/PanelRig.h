// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "app/Timings.h"
#include "fonts/ApplicationFonts.h"
#include "images/Artwork.h"
#include "memory/RemoteMemAPI.h"
#include "views/EditorOverlap.h"
#include "widgets/COnOffButton.h"
#include "widgets/CText.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtCore/QEvent>
#include <QtCore/QLoggingCategory>
#include <QtGui/QWindow>
#include <QtTest/QtTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>

#include <functional>
#include <memory>

// A memory and the main window over it, shown and active, with settings of its own. Mouse and keys
// go to its native window, and so take the way that those of a user take.
class PanelRig
{
public:
    // Once for each test program.
    static void setUpApplication()
    {
        // Lest a few thousand of the engine's debug lines hide the results.
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        // A shown and a hidden window come and go; that is not the end of the program.
        QGuiApplication::setQuitOnLastWindowClosed(false);
        // The resources stand beside the programs, and the tests a folder below.
        MachineFolders folders;
        folders.executable = QStringLiteral(TRN_BIN_DIR);
        setMachineFolders(folders);
        QVERIFY(loadApplicationFonts());
        QApplication::setStyle(new RemoteEditorStyle);
    }

    PanelRig()
    {
        QSettings(QSettings::UserScope, CorporationName, SettingName).clear();
        api = std::make_unique<RemoteMemAPI>();
    }
    ~PanelRig()
    {
        window.reset();
        api.reset();
    }
    PanelRig(const PanelRig &) = delete;
    PanelRig &operator=(const PanelRig &) = delete;

    // storedPort: the setting of the user's last choice; the default lets nothing open.
    bool openWindow(const QString &storedPort = PortNotAssigned, bool autoSyncAtStart = false)
    {
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("PortName"), storedPort);
        window = std::make_unique<EditorMainWindow>(api.get(), autoSyncAtStart);
        window->move(100, 100);
        window->show();
        window->activateWindow();
        return QTest::qWaitForWindowActive(window.get());
    }

    template <typename Panel>
    Panel *panel() const
    {
        return window->findChild<Panel *>(QString(), Qt::FindDirectChildrenOnly);
    }
    EditorOverlap *anyPanel() const { return panel<EditorOverlap>(); }
    // What is visible in it; null if there is no such child.
    template <typename Widget = QWidget>
    Widget *inPanel(const char *name) const
    {
        EditorOverlap *overlap = anyPanel();
        return overlap == nullptr ? nullptr : overlap->findChild<Widget *>(QLatin1String(name));
    }
    template <typename Widget>
    Widget *inWindow(const char *name) const
    {
        return window->findChild<Widget *>(QLatin1String(name));
    }
    QPoint centreOf(const QWidget *widget) const
    {
        return widget->mapTo(window.get(), widget->rect().center());
    }

    void pressKey(Qt::Key key) { QTest::keyClick(window->windowHandle(), key); }
    void click(const QWidget *widget)
    {
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, centreOf(widget));
    }
    void press(const QWidget *widget)
    {
        QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, centreOf(widget));
    }
    void release(const QWidget *widget)
    {
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, centreOf(widget));
    }

    int flag(int parameter) const
    {
        return api->getParam(ParamAddress(parameter, -1, -1, -1)).getCurrentValue();
    }
    void setFlag(int parameter, int value)
    {
        api->setParam(ParamAddress(parameter, -1, -1, -1), value);
    }

    std::unique_ptr<RemoteMemAPI> api;
    std::unique_ptr<EditorMainWindow> window;
};

// Answers the next file dialog from within its event loop. Its parent in time: it must be destroyed
// before the test ends, and says by wasAsked() whether there was one.
class FileDialogAnswer : public QObject
{
public:
    // name: empty for a cancel.
    explicit FileDialogAnswer(const QString &name)
        : m_name(name)
    {
        qApp->installEventFilter(this);
    }
    bool wasAsked() const { return m_asked; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *dialog = qobject_cast<QFileDialog *>(watched);
        if (dialog != nullptr && event->type() == QEvent::Show && !m_asked) {
            m_asked = true;
            QTimer::singleShot(0, dialog, [this, dialog] {
                if (m_name.isEmpty()) {
                    dialog->reject();
                } else {
                    dialog->selectFile(m_name);
                    static_cast<QDialog *>(dialog)->done(QDialog::Accepted);
                }
            });
        }
        return false;
    }

private:
    QString m_name;
    bool m_asked = false;
};
