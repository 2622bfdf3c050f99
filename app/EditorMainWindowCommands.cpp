// SPDX-License-Identifier: GPL-3.0-or-later
// What stands behind the menus, and the rules by which their entries are on.

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/EditorMainWindow_p.h"
#include "file/EditorFile.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "views/About.h"
#include "views/EditorLibrary.h"
#include "views/EditorTemplate.h"
#include "views/FactorysetConfirm.h"
#include "views/ResetStoredConfirm.h"
#include "views/RestoreHWConfirm.h"
#include "views/Setup.h"

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtGui/QDesktopServices>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QFileDialog>

#include <utility>

namespace
{

constexpr int FileRetryMs = 50;
// Of the resets: the template that is selected in the library.
constexpr int SelectedInLibrary = -1;

const QString ManualLanguage = QStringLiteral("English");

// The manual lies in a folder that is named after its language. Empty if there is none.
QString manualIn(const QDir &resources, const QString &language)
{
    const QString path = resources.filePath(language + QLatin1Char('/') + HelpFileName);
    return QFile::exists(path) ? path : QString();
}

} // namespace

// --- Rules ---------------------------------------------------------------------------------------

bool EditorMainWindow::canNew() const
{
    return currentView == 0;
}

bool EditorMainWindow::canOpen() const
{
    return currentView == 0;
}

bool EditorMainWindow::canSetup() const
{
    return currentView == 0;
}

bool EditorMainWindow::canSaveBank() const
{
    return currentView == 0 && editorTemplate->canSaveBank();
}

bool EditorMainWindow::canSaveBankAs() const
{
    return currentView == 0 && editorTemplate->canSaveBankAs();
}

bool EditorMainWindow::canVstiscan() const
{
    return currentView == 0 && isBrandholmDAW();
}

bool EditorMainWindow::canImportTemplate() const
{
    return currentView == 1;
}

bool EditorMainWindow::canImport() const
{
    return currentView == 1 && editorLibrary->canImport();
}

bool EditorMainWindow::canNewBank() const
{
    return currentView == 1 && editorLibrary->canNewBank();
}

bool EditorMainWindow::canDeleteBank() const
{
    return false;
}

bool EditorMainWindow::canCopy() const
{
    return currentView == 1 ? editorLibrary->canCopy() : editorTemplate->canCopy();
}

bool EditorMainWindow::canPaste() const
{
    return currentView == 1 ? editorLibrary->canPaste() : editorTemplate->canPaste();
}

bool EditorMainWindow::clipboardHolds(const QString &mimeType) const
{
    return clipboardFormats.contains(mimeType);
}

void EditorMainWindow::readClipboard()
{
    // Null when the owner of the clipboard has gone.
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    clipboardFormats = mime != nullptr ? mime->formats() : QStringList();
    updatesMenuEnabled();
}

bool EditorMainWindow::canInitialize() const
{
    return currentView == 1 ? editorLibrary->canInitialize() : editorTemplate->canInitialize();
}

bool EditorMainWindow::canResetStored() const
{
    if (isOnlineNotifier == nullptr || bankEditFlagNotifier == nullptr) {
        return false;
    }
    return isOnlineNotifier->getMemAPICurrentValue() == 0 ||
           bankEditFlagNotifier->getMemAPICurrentValue() != 0;
}

bool EditorMainWindow::canRestoreHW() const
{
    return remoteMemAPI->getBankAvailableFlag(Bank::HardwareStored).getCurrentValue() != 0 &&
           remoteMemAPI->getBankAvailableFlag(Bank::HardwareEditBuffer).getCurrentValue() != 0;
}

bool EditorMainWindow::canResetFactory() const
{
    return true;
}

void EditorMainWindow::updatesMenuEnabled()
{
    actionFileNew->setEnabled(canNew());
    actionFileOpen->setEnabled(canOpen());
    actionFileSave->setEnabled(canSaveBank());
    actionFileSaveAs->setEnabled(canSaveBankAs());
    actionFileImportTemplate->setEnabled(canImportTemplate());
    actionFileSetup->setEnabled(canSetup());
    actionFileVSTiDatabase->setEnabled(canVstiscan());
    actionEditCopy->setEnabled(canCopy());
    actionEditPaste->setEnabled(canPaste());
    actionEditInitialize->setEnabled(canInitialize());
    actionEditResetStored->setEnabled(canResetStored());
    actionEditRestoreHW->setEnabled(canRestoreHW());
    actionEditResetFactory->setEnabled(canResetFactory());
}

// --- Files ---------------------------------------------------------------------------------------

void EditorMainWindow::fileNew()
{
    if (currentView != 0) {
        return;
    }
    editorTemplate->acceptTyping();
    if (fileEditFlagNotifier->getMemAPICurrentValue() == 1) {
        closeConfirm(CloseConfirm::New);
    } else {
        executefileNew();
    }
}

void EditorMainWindow::executefileNew()
{
    const bool wasOnline = isOnlineNotifier->getMemAPICurrentValue() != 0;
    isOnlineNotifier->setMemAPICurrentValue(0);
    editorTemplate->initializeEditBuffer();
    remoteMemAPI->setParam(ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber,
                                        ParamAddress::None, ParamAddress::None),
                           0);
    if (wasOnline) {
        autoSync(true, true);
        remoteMemAPI->setStoreFlag(true);
    }
    fileEditFlagNotifier->setMemAPICurrentValue(0);
}

bool EditorMainWindow::fileOpen()
{
    editorTemplate->acceptTyping();
    if (fileEditFlagNotifier->getMemAPICurrentValue() == 1) {
        closeConfirm(CloseConfirm::Open);
        return false;
    }
    return selectFileOpen();
}

bool EditorMainWindow::selectFileOpen()
{
    if (currentView != 0) {
        return false;
    }
    if (!pendingOpenFile.isEmpty()) {
        const bool accepted = fileOpen(pendingOpenFile);
        pendingOpenFile.clear();
        return accepted;
    }
    const QString name = askForFile(QStringLiteral("Open"));
    return !name.isEmpty() && fileOpen(name);
}

QString EditorMainWindow::askForFile(const QString &title)
{
    return aboveAll([this, &title] {
        return QFileDialog::getOpenFileName(nullptr, title, getWorkingFolder(),
                                            EditorOpenFileFilter);
    });
}

bool EditorMainWindow::fileOpen(const QString &name)
{
    if (currentView != 0) {
        return false;
    }
    if (remoteMemAPI->needToWaitAutoSyncDone() || isWindowLocked()) {
        qDebug("waiting fof autoSyncDone...");
        remoteMemAPI->setFileOpenRequestFlag(remoteMemAPI->needToWaitAutoSyncDone());
        // Comes back by applicationFileOpen() as soon as a panel has gone, or by the timer.
        m_waitingFiles.append(name);
        // A timer that runs already is left alone, lest a stream of requests puts it off for ever.
        if (!m_fileRetry.isActive()) {
            m_fileRetry.start(FileRetryMs);
        }
        return true;
    }
    // It waits no longer. Left standing, the flag would have the next receive, of whatever other
    // document, count as no edit.
    remoteMemAPI->setFileOpenRequestFlag(false);
    editorTemplate->acceptTyping();
    if (fileEditFlagNotifier->getMemAPICurrentValue() == 1) {
        pendingOpenFile = name;
        closeConfirm(CloseConfirm::Open);
        return false;
    }
    bool loaded = false;
    // By name, since the file's own word counts a link to nothing as there.
    if (QFile::exists(name)) {
        QFile file(name);
        QString error;
        remoteMemAPI->denyToRaiseFileEditFlag();
        loaded = EditorFile::load(remoteMemAPI, Bank::Stored, &file, true, &error);
        if (loaded) {
            fileNameNotifier->setMemAPIString(name);
            setWorkingFolder(name);
        }
        if (!loaded) {
            critical(error, EditorName);
        }
        remoteMemAPI->allowToRaiseFileEditFlag();
        if (loaded && remoteMemAPI->isONLINE()) {
            qDebug("fileOpenAutoSync_exec!!");
            remoteMemAPI->setONLINEstate(0);
            autoSync(true, false);
            remoteMemAPI->setStoreToFlashSendingFlag(true);
        }
    }
    updatesMenuEnabled();
    return loaded;
}

void EditorMainWindow::applicationFileOpen(const QString &name)
{
    Q_EMIT fileOpenRequest(name);
}

void EditorMainWindow::retryWaitingFiles()
{
    m_fileRetry.stop();
    const QStringList waiting = std::exchange(m_waitingFiles, {});
    for (const QString &name : waiting) {
        applicationFileOpen(name);
    }
}

bool EditorMainWindow::fileSaveBank()
{
    return canSaveBank() && editorTemplate->saveBank();
}

bool EditorMainWindow::fileSaveBankAs()
{
    return canSaveBankAs() && editorTemplate->saveBankAs();
}

void EditorMainWindow::fileImportTemplate()
{
    if (canImportTemplate()) {
        editorLibrary->importBank();
    }
}

void EditorMainWindow::fileImport()
{
    if (canImport()) {
        editorLibrary->importBank();
    }
}

bool EditorMainWindow::storeBank(bool send)
{
    return remoteMemAPI != nullptr && remoteMemAPI->storeBank(send);
}

// --- Setup and database --------------------------------------------------------------------------

void EditorMainWindow::fileSetup()
{
    if (!isWindowLocked()) {
        showPanel(&setupPanel);
    }
}

void EditorMainWindow::setDAWName(const QString &name)
{
    const QString former = std::exchange(dawName, dawList.contains(name) ? name : QString());
    settings.setValue(QStringLiteral("DAWName"), dawName);
    actionFileVSTiDatabase->setEnabled(canVstiscan());
    if (!isBrandholmDAW()) {
        updateDAW();
    } else if (dawName != former) {
        analyzeVSTi();
    }
}

bool EditorMainWindow::isBrandholmDAW() const
{
    return !dawName.isEmpty() && dawName != OtherDAW;
}

void EditorMainWindow::fileVSTiDatabaseFullScan()
{
    if (isBrandholmDAW()) {
        vstiInfo.initializeDatabase();
        analyzeVSTi();
    }
}

void EditorMainWindow::fileVSTiDatabaseUpdate()
{
    if (isBrandholmDAW()) {
        vstiInfo.clearNotSynthList();
        analyzeVSTi();
    }
}

// --- Edit ----------------------------------------------------------------------------------------

void EditorMainWindow::editCopy()
{
    if (!canCopy()) {
        return;
    }
    if (currentView == 1) {
        editorLibrary->copyTemplate();
    } else {
        editorTemplate->copyKnob();
    }
}

void EditorMainWindow::editPaste()
{
    if (!canPaste()) {
        return;
    }
    if (currentView == 1) {
        editorLibrary->pasteTemplate();
    } else {
        editorTemplate->pasteKnob();
    }
}

void EditorMainWindow::editInitialize()
{
    if (!canInitialize()) {
        return;
    }
    if (currentView == 1) {
        editorLibrary->initializeTemplate();
    } else {
        editorTemplate->initializeTemplate();
    }
}

void EditorMainWindow::editResetStored()
{
    if (!isWindowLocked() && canResetStored()) {
        showModalPanel(&resetStoredConfirmPanel);
    }
}

void EditorMainWindow::editRestoreHW()
{
    if (!isWindowLocked() && canRestoreHW()) {
        showModalPanel(&restoreHWConfirmPanel);
    }
}

void EditorMainWindow::editResetFactory()
{
    if (!isWindowLocked()) {
        showModalPanel(&factorysetConfirmPanel);
    }
}

int EditorMainWindow::templateToReset() const
{
    return currentView == 0 ? editorTemplate->getCurrentTemplateNumber() : SelectedInLibrary;
}

void EditorMainWindow::resetStoredData()
{
    if (canResetStored()) {
        editorLibrary->resetStoredData(templateToReset());
    }
}

void EditorMainWindow::restoreHWBackup()
{
    if (canRestoreHW()) {
        editorLibrary->restoreHWBackup(templateToReset());
    }
}

void EditorMainWindow::resetFactorySet()
{
    editorLibrary->resetFactorySet(templateToReset());
}

// --- Help ----------------------------------------------------------------------------------------

void EditorMainWindow::helpAbout()
{
    if (!isWindowLocked()) {
        showModalPanel(&aboutPanel);
    }
}

void EditorMainWindow::helpManual()
{
    const QString language = QLocale::languageToString(QLocale::system().language());
    QString helpPath = manualIn(initialDirectory, language);
    if (helpPath.isEmpty()) {
        helpPath = manualIn(initialDirectory, ManualLanguage);
    }
    if (!helpPath.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(helpPath))) {
        return;
    }
    const QString advice = QStringLiteral("\r\nPlease try re-installing the package.");
    warning((helpPath.isEmpty()
                 ? QStringLiteral("Failed to load help document.")
                 : QStringLiteral("Failed to load \"%1\" help document.").arg(helpPath)) +
                advice,
            EditorName);
}
