// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CApplication.h"

#include "app/Constants.h"
#include "app/EditorMainWindow.h"

#include <QtGui/QFileOpenEvent>

#include <cstdio>

EditorMainWindow *g_pEditorMainWindow = nullptr;

CApplication::CApplication(int &argc, char **argv)
    : QApplication(argc, argv)
{
    // So that every QSettings without a name of its own finds the program's.
    setOrganizationName(CorporationName);
    setApplicationName(SettingName);
}

bool CApplication::event(QEvent *event)
{
    if (event->type() != QEvent::FileOpen || g_pEditorMainWindow == nullptr) {
        return QApplication::event(event);
    }
    if (g_pEditorMainWindow->isMinimized()) {
        g_pEditorMainWindow->showNormal();
    }
    g_pEditorMainWindow->activateWindow();
    g_pEditorMainWindow->applicationFileOpen(static_cast<QFileOpenEvent *>(event)->file());
    return true;
}

void doNotOutputMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
    }
}
