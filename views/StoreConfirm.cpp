// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/StoreConfirm.h"

#include "app/EditorMainWindow.h"

StoreConfirm::StoreConfirm(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    connect(btnYes, &QAbstractButton::clicked, this, &StoreConfirm::selectOk);
    connect(btnNo, &QAbstractButton::clicked, this, &QWidget::close);
    connect(btnClose, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Y"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("N"), SLOT(emulateNoPressing()));
}

void StoreConfirm::selectOk()
{
    mainWindow->storeBank(true);
    close();
}

void StoreConfirm::emulateClosePressing()
{
    emulateButtonPressing(btnClose);
}

void StoreConfirm::emulateYesPressing()
{
    emulateButtonPressing(btnYes);
}

void StoreConfirm::emulateNoPressing()
{
    emulateButtonPressing(btnNo);
}
