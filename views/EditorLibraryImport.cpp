// SPDX-License-Identifier: GPL-3.0-or-later
// Templates from outside: the second file, and the data of the clipboard and of drags.

#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "file/EditorData.h"
#include "file/EditorFile.h"
#include "file/XmlDocument.h"
#include "images/Artwork.h"
#include "memory/RemoteMemAPI.h"
#include "ui_EditorLibrary.h"
#include "views/EditorLibrary.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QFile>
#include <QtCore/QMimeData>

namespace
{

// A template has some 3 KB. What is far larger is none, and not worth a look.
constexpr qsizetype MostBytes = 1024 * 1024;
constexpr int Indent = 1;
const QString TagTemplate = QStringLiteral("template");

int numberOf(const QDomElement &element, const QString &attribute)
{
    bool isNumber = false;
    const int number = element.attribute(attribute).toInt(&isNumber);
    return isNumber ? number : -1;
}

} // namespace

// --- The file ------------------------------------------------------------------------------------

void EditorLibrary::importBank()
{
    const QPointer<EditorLibrary> self(this);
    const QString path = mainWindow->askForFile(QStringLiteral("File Select"));
    // The program may have ended while the user looked around.
    if (!self || path.isEmpty()) {
        return;
    }
    QFile file(path);
    QString error;
    if (EditorFile::load(remoteMemAPI, Bank::Import, &file, false, &error)) {
        ui->txtFileName->setText(trimText(ui->txtFileName, path.section(QLatin1Char('/'), -1),
                                          ui->txtFileName->width()));
        ui->txtFileName->show();
        remoteMemAPI->setBankAvailableFlag(1, Bank::Import);
        importAvailable = true;
        updateLibrary();
    } else {
        mainWindow->critical(error, EditorName, QMessageBox::Ok, QMessageBox::NoButton);
        if (!self) {
            return;
        }
        // What the list shows stays until the view is entered again.
        importAvailable = false;
        remoteMemAPI->setBankAvailableFlag(0, Bank::Import);
    }
    mainWindow->setWorkingFolder(path);
}

void EditorLibrary::importTemplate()
{
    const int target = ui->listTemplate->value();
    flashItem(target);
    remoteMemAPI->copyTemplate(Bank::Import, ui->listImport->value(), Bank::Library, target);
}

// --- Clipboard and drag data ---------------------------------------------------------------------

QMimeData *EditorLibrary::createTemplateMimeData(int number) const
{
    const int bank = getBankNumber();
    QDomDocument document(TemplateDocType);
    QDomElement root;
    {
        // One moment of the template, also while the instrument sends.
        const RecursiveMutexLocker lock(remoteMemAPI->memoryMutex);
        root =
            EditorData::getTemplateDomElement(remoteMemAPI, &document, bank, number, TagTemplate);
    }
    root.setAttribute(EditorData::AttributeTemplateNumber, number);
    root.setAttribute(EditorData::AttributeBankNumber, bank);
    document.appendChild(root);
    auto *mime = new QMimeData;
    mime->setData(TemplateMimeType, document.toByteArray(Indent));
    return mime;
}

QDomElement EditorLibrary::templateElement(const QMimeData *mime, QDomDocument *document)
{
    if (mime == nullptr || !mime->hasFormat(TemplateMimeType)) {
        return {};
    }
    const QByteArray text = mime->data(TemplateMimeType);
    QString message;
    int line = 0;
    if (text.isEmpty() || text.size() > MostBytes ||
        !XmlDocument::parse(text, document, &message, &line) ||
        document->doctype().name() != TemplateDocType) {
        return {};
    }
    const QDomElement root = document->documentElement();
    return EditorData::isWholeTemplateElement(root, TagTemplate) ? root : QDomElement();
}

int EditorLibrary::getTemplateNumberFromTemplateMimeData(const QDomElement &element)
{
    return numberOf(element, EditorData::AttributeTemplateNumber);
}

int EditorLibrary::getBankNumberFromTemplateMimeData(const QDomElement &element)
{
    return numberOf(element, EditorData::AttributeBankNumber);
}

std::optional<EditorLibrary::TemplatePlace>
EditorLibrary::templatePlace(const QMimeData *mime) const
{
    QDomDocument document;
    const QDomElement root = templateElement(mime, &document);
    const TemplatePlace place{getBankNumberFromTemplateMimeData(root),
                              getTemplateNumberFromTemplateMimeData(root)};
    // A drag of another editor may tell of a second document where none is open here.
    const bool known = (place.bank == Bank::Library ||
                        (place.bank == Bank::Import && !ui->listImport->isHidden())) &&
                       place.number >= 0 && place.number < ParamAddress::TemplateCount;
    return known ? std::make_optional(place) : std::nullopt;
}

bool EditorLibrary::setTemplateMimeData(const QMimeData *mime, int number)
{
    QDomDocument document;
    const QDomElement root = templateElement(mime, &document);
    if (root.isNull()) {
        return false;
    }
    remoteMemAPI->lockSendParamChange();
    const bool whole = EditorData::setTemplateDomElement(remoteMemAPI, root, getBankNumber(),
                                                         number, TemplateDocType, QString());
    remoteMemAPI->unlockSendParamChange();
    return whole;
}
