// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/About.h"

#include "app/Constants.h"

About::About(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    txtEditorNameAndVersion->setText(EditorName + QStringLiteral(" Ver.1.1.8"));
    txtLicence->setText(QStringLiteral("Free software: GNU GPL, version 3 or later."));
    txtArtwork->setText(QStringLiteral("Artwork and fonts are this project's own."));
    connect(btnClose, &QAbstractButton::clicked, this, &QWidget::close);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
}

void About::emulateClosePressing()
{
    emulateButtonPressing(btnClose);
}
