// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PortOpenError.h"

#include "widgets/FontHelpers.h"

PortOpenError::PortOpenError(EditorMainWindow *window, const QString &name)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    txtMessage->setText(trimText(txtMessage, name, txtMessage->width()));
    txtMessage->setAccessibleName(name);
    connect(btnOK, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(close()));
}
