// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "file/EditorFile.h"
#include "fonts/ApplicationFonts.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "views/EditorLibrary.h"
#include "vsti/DawMachine.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CText.h"
#include "widgets/FlashFrame.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtCore/QFile>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QDrag>
#include <QtGui/QWindow>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QScrollBar>

#include <functional>

// The real window with the library in front, and what a user does to it.
class LibraryRig
{
public:
    // Once per program.
    static void prepareApplication()
    {
        loadApplicationFonts();
        QApplication::setStyle(new RemoteEditorStyle);
        MachineFolders folders;
        folders.shareFolder = QStringLiteral(TRN_SOURCE_DIR "/resources");
        folders.executable = QStringLiteral(TRN_SOURCE_DIR "/tests");
        setMachineFolders(folders);
        // Without an instrument, and without a panel that says so.
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("PortName"), PortNotAssigned);
    }

    explicit LibraryRig(bool autoSyncAtStart = false)
        : machine(withoutDAW())
        , window(&api, autoSyncAtStart)
        , view(window.findChild<EditorLibrary *>())
    {
        window.move(40, 40);
        window.show();
        window.activateWindow();
    }

    // Chooses the DAW of the machine and waits for the end of its scan.
    bool useDAW()
    {
        window.setDAWName(DawMachine::daw());
        return QTest::qWaitFor([this] { return !window.isWindowLocked(); }, 60000);
    }

    // Fifty names, "A01" to "A50" for the letter A.
    void nameTemplates(int bank, char letter)
    {
        api.denyToRaiseFileEditFlag();
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            api.setParam(ParamAddress(bank, number, ParamAddress::TemplateName, -1),
                         name(letter, number));
        }
        api.allowToRaiseFileEditFlag();
    }
    static QString name(char letter, int number)
    {
        return QLatin1Char(letter) + QStringLiteral("%1").arg(number + 1, 2, 10, QLatin1Char('0'));
    }
    QString nameOf(int bank, int number) const
    {
        return api.getParamQString(ParamAddress(bank, number, ParamAddress::TemplateName, -1));
    }
    QStringList namesOf(int bank) const
    {
        QStringList names;
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            names.append(nameOf(bank, number));
        }
        return names;
    }

    // The template view with the edit buffer "A01" to "A50", and from there into the library.
    bool enter()
    {
        nameTemplates(Bank::EditBuffer, 'A');
        setFlag(ParamAddress::FileEditFlag, 0);
        window.viewLibrary();
        return QTest::qWaitForWindowActive(&window) && view->isVisible() &&
               QTest::qWaitFor([this] { return list()->hasFocus(); });
    }

    int flag(int address) const
    {
        return api.getParam(ParamAddress(address, -1, -1, -1)).getCurrentValue();
    }
    void setFlag(int address, int value) { api.setParam(ParamAddress(address, -1, -1, -1), value); }
    int fileEditFlag() const { return flag(ParamAddress::FileEditFlag); }
    int libraryEditFlag() const { return flag(ParamAddress::LibraryEditFlag); }
    int currentTemplate() const
    {
        return api
            .getParam(ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1))
            .getCurrentValue();
    }

    template <typename Widget>
    Widget *widget(const char *objectName) const
    {
        return view->findChild<Widget *>(QLatin1String(objectName));
    }
    CListView *list() const { return widget<CListView>("listTemplate"); }
    CListView *importList() const { return widget<CListView>("listImport"); }
    QScrollBar *scrollBar() const { return widget<QScrollBar>("scrollTemplate"); }
    QWidget *button(const char *objectName) const { return widget<COnOffButton>(objectName); }
    CText *text(const char *objectName) const { return widget<CText>(objectName); }
    void click(const char *objectName) { QTest::mouseClick(button(objectName), Qt::LeftButton); }
    void choose(CListView *of, int row)
    {
        QTest::mouseClick(of, Qt::LeftButton, {}, of->getItemRect(row).center());
    }
    qsizetype flashes() const { return view->findChildren<FlashFrame *>().size(); }

    // A file of fifty templates "F01" to "F50".
    QString makeFile(const QString &fileName, char letter = 'F')
    {
        RemoteMemAPI other;
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            other.setParam(ParamAddress(Bank::Stored, number, ParamAddress::TemplateName, -1),
                           name(letter, number));
        }
        QString path = folder.filePath(fileName);
        QFile file(path);
        QString error;
        EditorFile::save(&other, Bank::Stored, &file, &error);
        return path;
    }
    // The file dialog that is about to open is answered with the path, or dismissed without one.
    void answerFileDialog(const QString &path)
    {
        whenModal<QFileDialog>([path](QFileDialog *dialog) {
            if (path.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->findChild<QLineEdit *>()->setText(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }
    // And the message box; its text goes to the pointer.
    void answerMessageBox(QString *text)
    {
        whenModal<QMessageBox>([text](QMessageBox *box) {
            *text = box->windowTitle() + QLatin1Char('|') + box->text();
            box->accept();
        });
    }
    void importFile(const QString &path)
    {
        answerFileDialog(path);
        click("btnFileOpen");
    }

    template <typename Dialog>
    void whenModal(const std::function<void(Dialog *)> &act)
    {
        auto *poll = new QTimer(&window);
        QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
            if (auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget())) {
                poll->stop();
                poll->deleteLater();
                act(dialog);
            }
        });
        poll->start(5);
    }

    DawMachine machine;
    RemoteMemAPI api;
    EditorMainWindow window;
    EditorLibrary *view;
    QTemporaryDir folder;

private:
    // As the last user left it.
    static DawMachine::Helper withoutDAW()
    {
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("DAWName"), OtherDAW);
        return DawMachine::Helper::Script;
    }
};

// One drag by the mouse, from the press to the release. A step runs in the drag's own event loop,
// again and again until it says that it is done; the last release ends the drag.
class MouseDrag
{
public:
    using Step = std::function<bool()>;

    MouseDrag(QWidget *from, const QPoint &start, Qt::KeyboardModifiers modifiers = {})
        : m_from(from)
        , m_start(start)
        , m_modifiers(modifiers)
    {
    }

    MouseDrag &moveTo(QWidget *to, const QPoint &point)
    {
        return then([this, to, point] {
            mouse(QTest::MouseMove, to, point);
            return true;
        });
    }
    MouseDrag &hold(Qt::KeyboardModifiers modifiers)
    {
        return then([this, modifiers] {
            m_modifiers = modifiers;
            return true;
        });
    }
    MouseDrag &release(QWidget *to, const QPoint &point)
    {
        return then([this, to, point] {
            mouse(QTest::MouseRelease, to, point);
            return true;
        });
    }
    MouseDrag &drop(QWidget *to, const QPoint &point)
    {
        return moveTo(to, point).release(to, point);
    }
    MouseDrag &then(const Step &step)
    {
        m_steps.append(step);
        return *this;
    }

    // False if no drag came about, or a step was left over.
    bool run()
    {
        QTimer steps;
        bool dragged = false;
        QObject::connect(&steps, &QTimer::timeout, &steps, [this, &dragged] {
            if (m_from->findChild<QDrag *>() == nullptr) {
                return;
            }
            dragged = true;
            if (!m_steps.isEmpty()) {
                const Step step = m_steps.first();
                if (step()) {
                    m_steps.removeFirst();
                }
            }
        });
        mouse(QTest::MousePress, m_from, m_start);
        steps.start(10);
        // Two moves: the first may be the one to where the pointer is already.
        mouse(QTest::MouseMove, m_from, m_start + QPoint(3, 0));
        mouse(QTest::MouseMove, m_from, m_start + QPoint(QApplication::startDragDistance() + 1, 0));
        steps.stop();
        if (!dragged) {
            mouse(QTest::MouseRelease, m_from, m_start);
        }
        return dragged && m_steps.isEmpty();
    }

private:
    void mouse(QTest::MouseAction action, QWidget *widget, const QPoint &point) const
    {
        QWindow *window = widget->window()->windowHandle();
        QTest::mouseEvent(action, window,
                          action == QTest::MouseMove ? Qt::NoButton : Qt::LeftButton, m_modifiers,
                          widget->mapTo(widget->window(), point));
    }

    QWidget *m_from;
    QPoint m_start;
    Qt::KeyboardModifiers m_modifiers;
    QList<Step> m_steps;
};
