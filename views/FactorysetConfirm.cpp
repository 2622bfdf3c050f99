// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/FactorysetConfirm.h"

#include "app/EditorMainWindow.h"

FactorysetConfirm::FactorysetConfirm(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    connect(btnOK, &QAbstractButton::clicked, this, &FactorysetConfirm::selectOk);
    connect(btnCancel, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateCancelPressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateOKPressing()));
}

void FactorysetConfirm::selectOk()
{
    mainWindow->resetFactorySet();
    close();
}

void FactorysetConfirm::emulateOKPressing()
{
    emulateButtonPressing(btnOK);
}

void FactorysetConfirm::emulateCancelPressing()
{
    emulateButtonPressing(btnCancel);
}
