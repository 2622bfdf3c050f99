// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/RestoreHWConfirm.h"

#include "app/EditorMainWindow.h"

RestoreHWConfirm::RestoreHWConfirm(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    connect(btnOK, &QAbstractButton::clicked, this, &RestoreHWConfirm::selectOk);
    connect(btnCancel, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateCancelPressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateOKPressing()));
}

void RestoreHWConfirm::selectOk()
{
    mainWindow->restoreHWBackup();
    close();
}

void RestoreHWConfirm::emulateOKPressing()
{
    emulateButtonPressing(btnOK);
}

void RestoreHWConfirm::emulateCancelPressing()
{
    emulateButtonPressing(btnCancel);
}
