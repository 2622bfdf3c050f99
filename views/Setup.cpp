// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/Setup.h"

#include "app/EditorMainWindow.h"
#include "views/PulldownMenu.h"
#include "widgets/FontHelpers.h"

namespace
{

// Right below the fields, in the panel's pixels.
constexpr QPoint PopupMidiPortPosition(89, 167);
constexpr QPoint PopupDAWNamePosition(89, 215);

// What the field has no room for is cut; a screen reader has all of it.
void showIn(CText *field, const QString &text)
{
    field->setText(trimText(field, text, field->width()));
    field->setAccessibleName(text);
}

} // namespace

Setup::Setup(EditorMainWindow *window)
    : EditorOverlap(window)
{
    setupUi(this);
    finishForm();
    mainWindow->updatePortInfoList();
    portList = mainWindow->getPortNameList();
    // The ports may have become fewer since.
    portIndex = mainWindow->getPortIndex() < portList.size() ? mainWindow->getPortIndex() : 0;
    showMidiPort();
    dawListCopy = mainWindow->getDAWList();
    dawChoice = mainWindow->getDAWName();
    showDAWName();
    btnDAWName->setVisible(!dawListCopy.isEmpty());

    connect(btnMidiPort, &QAbstractButton::clicked, this, &Setup::popupMidiPort);
    connect(btnDAWName, &QAbstractButton::clicked, this, &Setup::popupDAWName);
    connect(btnOK, &QAbstractButton::clicked, this, &Setup::decideClose);
    installShortcut(QStringLiteral("Escape"), SLOT(emulateClosePressing()));
    installShortcut(QStringLiteral("Return"), SLOT(emulateOKPressing()));
    installShortcut(QStringLiteral("Enter"), SLOT(emulateOKPressing()));
}

void Setup::showMidiPort()
{
    showIn(txtMidiPort, portList.value(portIndex));
}

void Setup::showDAWName()
{
    showIn(txtDAWName, dawChoice);
}

void Setup::popupMidiPort()
{
    auto *menu = new PulldownMenu(this, portList);
    connect(menu, &PulldownMenu::chosen, this, [this](int index) {
        portIndex = index;
        showMidiPort();
    });
    menu->open(PopupMidiPortPosition);
}

void Setup::popupDAWName()
{
    auto *menu = new PulldownMenu(this, dawListCopy);
    connect(menu, &PulldownMenu::chosen, this, [this](int index) {
        dawChoice = dawListCopy.value(index);
        showDAWName();
    });
    menu->open(PopupDAWNamePosition);
}

void Setup::decideClose()
{
    // First, so that the panels which these may ask for follow this one.
    close();
    mainWindow->setPortIndex(portIndex);
    mainWindow->setDAWName(dawChoice);
}

void Setup::emulateOKPressing()
{
    emulateButtonPressing(btnOK);
}

void Setup::emulateClosePressing()
{
    emulateButtonPressing(btnClose);
}
