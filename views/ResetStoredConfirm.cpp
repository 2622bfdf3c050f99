// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ResetStoredConfirm.h"

#include "app/EditorMainWindow.h"

ResetStoredConfirm::ResetStoredConfirm(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    connect(btnOK, &QAbstractButton::clicked, this, &ResetStoredConfirm::selectOk);
    connect(btnCancel, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateCancelPressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateOKPressing()));
}

void ResetStoredConfirm::selectOk()
{
    mainWindow->resetStoredData();
    close();
}

void ResetStoredConfirm::emulateOKPressing()
{
    emulateButtonPressing(btnOK);
}

void ResetStoredConfirm::emulateCancelPressing()
{
    emulateButtonPressing(btnCancel);
}
