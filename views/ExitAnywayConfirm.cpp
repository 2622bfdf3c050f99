// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ExitAnywayConfirm.h"

#include "app/EditorMainWindow.h"
#include "memory/CSimpleNotifier.h"

ExitAnywayConfirm::ExitAnywayConfirm(EditorMainWindow *window)
    : EditorOverlap(window)
    , m_libraryEditNotifier(new CSimpleNotifier(QStringLiteral("libraryEditFlag"), this))
    , m_fileEditNotifier(new CSimpleNotifier(QStringLiteral("fileEditFlag"), this))
{
    setupUi(this);
    finishForm();
    createMemProxyController(mainWindow->getMemControllerFactory(), m_libraryEditNotifier);
    createMemProxyController(mainWindow->getMemControllerFactory(), m_fileEditNotifier);
    connect(btnYes, &QAbstractButton::clicked, this, &ExitAnywayConfirm::selectOk);
    connect(btnNo, &QAbstractButton::clicked, this, &ExitAnywayConfirm::cancelClose);
    connect(btnClose, &QAbstractButton::clicked, this, &ExitAnywayConfirm::cancelClose);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Y"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("N"), SLOT(emulateNoPressing()));
}

void ExitAnywayConfirm::selectOk()
{
    m_libraryEditNotifier->setMemAPICurrentValue(0);
    m_fileEditNotifier->setMemAPICurrentValue(0);
    closeUnlock();
    close();
    // It finds no edits now, and accepts.
    mainWindow->close();
}

void ExitAnywayConfirm::cancelClose()
{
    closeUnlock();
    close();
}

void ExitAnywayConfirm::emulateClosePressing()
{
    emulateButtonPressing(btnClose);
}

void ExitAnywayConfirm::emulateYesPressing()
{
    emulateButtonPressing(btnYes);
}

void ExitAnywayConfirm::emulateNoPressing()
{
    emulateButtonPressing(btnNo);
}
