// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/CloseConfirm.h"

#include "app/EditorMainWindow.h"
#include "memory/CSimpleNotifier.h"

CloseConfirm::CloseConfirm(EditorMainWindow *window, NextActionType action)
    : EditorOverlap(window)
    , nextAction(action)
    , m_fileEditNotifier(new CSimpleNotifier(QStringLiteral("fileEditFlag"), this))
{
    setupUi(this);
    finishForm();
    createMemProxyController(mainWindow->getMemControllerFactory(), m_fileEditNotifier);
    connect(btnYes, &QAbstractButton::clicked, this, &CloseConfirm::decideCloseWithSave);
    connect(btnNo, &QAbstractButton::clicked, this, &CloseConfirm::decideCloseWithoutSave);
    connect(btnCancel, &QAbstractButton::clicked, this, &CloseConfirm::cancelClose);
    connect(btnClose, &QAbstractButton::clicked, this, &CloseConfirm::cancelClose);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("Y"), SLOT(emulateYesPressing()));
    installShortcut(QStringLiteral("N"), SLOT(emulateNoPressing()));
    closeLock();
}

void CloseConfirm::decideCloseWithSave()
{
    // False: the user has backed out of the file dialog, or the writing failed.
    if (mainWindow->fileSaveBank()) {
        decideCloseWithoutSave();
    } else {
        cancelClose();
    }
}

void CloseConfirm::decideCloseWithoutSave()
{
    switch (nextAction) {
    case Exit:
        closeUnlock();
        close();
        m_fileEditNotifier->setMemAPICurrentValue(0);
        mainWindow->close();
        break;
    case New:
        mainWindow->executefileNew();
        closeUnlock();
        close();
        break;
    case Open:
        closeUnlock();
        close();
        // The window stays locked until this panel is deleted, so that an accepted file waits for
        // that, and is loaded over edits that count as none by then.
        if (mainWindow->selectFileOpen()) {
            m_fileEditNotifier->setMemAPICurrentValue(0);
        }
        break;
    default:
        cancelClose();
        break;
    }
}

void CloseConfirm::cancelClose()
{
    closeUnlock();
    close();
}

void CloseConfirm::emulateClosePressing()
{
    emulateButtonPressing(btnClose);
}

void CloseConfirm::emulateYesPressing()
{
    emulateButtonPressing(btnYes);
}

void CloseConfirm::emulateNoPressing()
{
    emulateButtonPressing(btnNo);
}
