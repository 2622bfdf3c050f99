// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PortNotFound.h"

PortNotFound::PortNotFound(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    connect(btnOK, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateOKPressing()));
}

void PortNotFound::emulateOKPressing()
{
    emulateButtonPressing(btnOK);
}
