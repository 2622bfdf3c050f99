// SPDX-License-Identifier: GPL-3.0-or-later
// How the template view saves the document.
#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "file/EditorFile.h"
#include "memory/CSimpleNotifier.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorTemplate.h"
#include "views/EditorTemplate.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QMessageBox>

namespace
{

// More banks than these the memory can't address.
constexpr int MaximumBanks = 128;
constexpr int ButtonWidthPx = 90;

bool hasEditorExtension(const QString &path)
{
    return path.right(EditorFileExtension.size())
               .compare(EditorFileExtension, Qt::CaseInsensitive) == 0;
}

} // namespace

bool EditorTemplate::canSaveBankAs() const
{
    return remoteMemAPI->getQuantityOfBank() < MaximumBanks;
}

// The stored bank is what goes into a document, with the edit buffer beside it.
bool EditorTemplate::writeDocument(const QString &path, QString *error)
{
    QFile file(path);
    return EditorFile::save(remoteMemAPI, Bank::Stored, &file, error);
}

bool EditorTemplate::saveBank()
{
    acceptTyping();
    const QString path = fileNameNotifier->getMemAPIString();
    if (path.isEmpty() || !hasEditorExtension(path)) {
        return saveBankAs();
    }
    QString error;
    if (!writeDocument(path, &error)) {
        mainWindow->critical(error, EditorName, QMessageBox::Ok);
        return false;
    }
    fileEditFlagNotifier->setMemAPICurrentValue(0);
    return true;
}

bool EditorTemplate::saveBankAs()
{
    acceptTyping();
    const QPointer<EditorTemplate> self(this);
    const QString present = fileNameNotifier->getMemAPIString();
    QString path = QFileInfo::exists(present) ? present : mainWindow->getWorkingFolder();
    bool replaces = false;
    do {
        path = QFileDialog::getSaveFileName(mainWindow, QStringLiteral("Save As"), path,
                                            EditorFileFilter, nullptr,
                                            QFileDialog::DontConfirmOverwrite);
        if (!self || path.isEmpty()) {
            return false;
        }
        if (!hasEditorExtension(path)) {
            path += EditorFileExtension;
        }
        replaces = QFileInfo::exists(path);
    } while (replaces && !mayOverwrite(path) && self);
    if (!self) {
        return false;
    }

    // An existing file stays as it is until the new one takes its place, in one step.
    QString error;
    if (!writeDocument(path, &error)) {
        if (replaces) {
            QMessageBox::critical(mainWindow, ModelName,
                                  QStringLiteral("Document \"%1\" not saved.").arg(path),
                                  QMessageBox::Ok);
        } else {
            mainWindow->critical(error, EditorName, QMessageBox::Ok);
        }
        return false;
    }
    fileNameNotifier->setMemAPIString(path);
    fileEditFlagNotifier->setMemAPICurrentValue(0);
    mainWindow->setWorkingFolder(path);
    return true;
}

bool EditorTemplate::mayOverwrite(const QString &path)
{
    const QString question = QStringLiteral("A file called %1 already exists.\r\n"
                                            "Do you want to overwrite it?");
    const QPointer<QMessageBox> box = new QMessageBox(
        QMessageBox::Question, ModelName, question.arg(path), QMessageBox::Yes | QMessageBox::No,
        mainWindow, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);
    box->setDefaultButton(QMessageBox::No);
    // A file's name is no markup.
    box->setTextFormat(Qt::PlainText);
    const QList<QAbstractButton *> buttons = box->buttons();
    for (QAbstractButton *button : buttons) {
        button->setFixedWidth(ButtonWidthPx);
    }
    const bool yes = box->exec() == QMessageBox::Yes;
    delete box.data();
    return yes;
}
