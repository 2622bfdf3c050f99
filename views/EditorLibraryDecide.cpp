// SPDX-License-Identifier: GPL-3.0-or-later
// The ways out of the library: with the changes, without them, and by a reset.

#include "app/EditorMainWindow.h"
#include "images/Artwork.h"
#include "memory/CSimpleNotifier.h"
#include "memory/ForcedCurrentTemplate.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorLibrary.h"
#include "views/EditorLibrary.h"

namespace
{

// While one lives, no write marks the document as edited.
class QuietWrites
{
public:
    explicit QuietWrites(RemoteMemAPI *api)
        : m_api(api)
    {
        m_api->denyToRaiseFileEditFlag();
    }
    ~QuietWrites() { m_api->allowToRaiseFileEditFlag(); }
    QuietWrites(const QuietWrites &) = delete;
    QuietWrites &operator=(const QuietWrites &) = delete;

private:
    RemoteMemAPI *m_api;
};

} // namespace

void EditorLibrary::decide()
{
    decide(UserDecision);
}

void EditorLibrary::decide(EResetMenuItems item)
{
    decide(ui->listTemplate->value(), item);
}

void EditorLibrary::decide(int number, EResetMenuItems item)
{
    ui->listImport->setValue(0);
    ui->listImport->adjustScroll();
    if (libraryEditFlagNotifier->getMemAPICurrentValue() == 1) {
        applyLibraryEdit(number, item);
    } else {
        // Another template in front is no edit.
        const QuietWrites quiet(remoteMemAPI);
        currentTemplateNumberNotifier->setMemAPICurrentValue(number);
    }
    mainWindow->viewTemplate();
}

void EditorLibrary::applyLibraryEdit(int number, EResetMenuItems item)
{
    const bool online = remoteMemAPI->isONLINE();
    const bool toStartUp = item == ResetToStartUpData;
    remoteMemAPI->activateLibraryEdit();
    if (toStartUp) {
        const QuietWrites quiet(remoteMemAPI);
        remoteMemAPI->copyBank(Bank::HardwareStored, Bank::Stored);
    }
    if (online) {
        // What the edit buffer now holds goes to the instrument as a whole, and not value by value.
        remoteMemAPI->setONLINEstate(0);
    }
    putInFront(number);
    if (online) {
        mainWindow->autoSync(true, !toStartUp);
    }
    fileEditFlagNotifier->setMemAPICurrentValue(1);
    libraryEditFlagNotifier->setMemAPICurrentValue(0);
    if (item == ResetToStoredData || item == ResetToFactorySettings) {
        remoteMemAPI->setStoreFlag(true);
    } else if (toStartUp) {
        remoteMemAPI->setStoreToFlashSendingFlag(true);
    }
}

// The template view builds itself anew even if the number stays, since the template is another one.
void EditorLibrary::putInFront(int number)
{
    const ForcedCurrentTemplate forced(remoteMemAPI);
    currentTemplateNumberNotifier->setMemAPICurrentValue(number);
}

void EditorLibrary::revoke()
{
    libraryEditFlagNotifier->setMemAPICurrentValue(0);
    mainWindow->viewTemplate();
}

void EditorLibrary::editTemplate(int number)
{
    if (canEditTemplate()) {
        decide(selectedOr(number));
    }
}

// --- Resets --------------------------------------------------------------------------------------

int EditorLibrary::selectedOr(int number) const
{
    return number < 0 ? ui->listTemplate->value() : number;
}

// Each copy raises the library's edit flag, by which the decision takes the way of a change.

void EditorLibrary::resetStoredData(int number)
{
    remoteMemAPI->copyBank(Bank::Stored, Bank::Library);
    decide(selectedOr(number), ResetToStoredData);
}

void EditorLibrary::restoreHWBackup(int number)
{
    remoteMemAPI->copyBank(Bank::HardwareEditBuffer, Bank::Library);
    decide(selectedOr(number), ResetToStartUpData);
}

void EditorLibrary::resetFactorySet(int number)
{
    remoteMemAPI->copyBank(Bank::Preset, Bank::Library);
    decide(selectedOr(number), ResetToFactorySettings);
}
