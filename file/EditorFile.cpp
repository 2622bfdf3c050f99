// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/EditorFile.h"

#include "file/EditorData.h"
#include "file/PlaceToWrite.h"
#include "file/XmlDocument.h"
#include "memory/RemoteMemAPI.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QTextStream>
#include <QtCore/QUuid>

#include <limits>

namespace
{

constexpr int Indent = 4;

const QString ErrorNotFound = QStringLiteral("File was not found.");
const QString ErrorNotOpened = QStringLiteral("File could not be opened.");
const QString ErrorParse = QStringLiteral("Parse error at line %1. (");
const QString ErrorOtherDocument = QStringLiteral("File is not an editor file.");
const QString ErrorOtherRoot = QStringLiteral("Root tag ID name is different.");
const QString ErrorVersion = QStringLiteral("It doesn't correspond to this version.");
const QString ErrorParameter = QStringLiteral("Parameter is not found.");
const QString ErrorWriting = QStringLiteral("Failed in the file writing.");

bool fail(QString *error, const QString &text)
{
    if (error != nullptr) {
        *error = text;
    }
    return false;
}

float versionNumber(const QString &text)
{
    bool isNumber = false;
    const float version = text.toFloat(&isNumber);
    return isNumber ? version : std::numeric_limits<float>::max();
}

// The text of the first check that fails; empty if the document is one of ours.
QString refusal(const QByteArray &content, QDomDocument *document)
{
    QString message;
    int line = 0;
    if (!XmlDocument::parse(content, document, &message, &line)) {
        return ErrorParse.arg(line) + message + QLatin1Char(')');
    }
    if (document->doctype().name() != EditorData::DocType) {
        return ErrorOtherDocument;
    }
    const QDomElement root = document->documentElement();
    if (root.tagName() != EditorData::TagEditorBank) {
        return ErrorOtherRoot;
    }
    const QString version = root.attribute(EditorData::AttributeVersion);
    if (!(versionNumber(EditorData::FileVersion) >= versionNumber(version))) {
        return ErrorVersion;
    }
    return QString();
}

bool readFullDocument(RemoteMemAPI *api, const QDomElement &root)
{
    const QString &docType = EditorData::DocType;
    bool complete =
        EditorData::setBankDomElement(api, root, Bank::Stored, docType, false, QString()) &&
        EditorData::setNumericParamFromDomElement(
            api, root.firstChildElement(EditorData::TagBankInfo), docType,
            EditorData::TagCurrentTemplateNumber, Bank::EditBuffer,
            ParamAddress::CurrentTemplateNumber, -1, -1);
    // In every case: a load that fails is undone whole.
    complete =
        EditorData::setBankDomElement(api, root, Bank::EditBuffer, docType, true, QString()) &&
        complete;
    return complete;
}

} // namespace

bool EditorFile::save(RemoteMemAPI *api, int bank, QFile *file, QString *error)
{
    QDomDocument document(EditorData::DocType);
    QDomElement root =
        EditorData::getBankDomElement(api, &document, bank, EditorData::TagEditorBank, true);
    root.setAttribute(EditorData::AttributeVersion, EditorData::FileVersion);
    document.appendChild(root);

    QByteArray content;
    {
        QTextStream stream(&content);
        document.save(stream, Indent);
    }
    // What would be refused when it is opened again replaces nothing.
    if (content.size() > XmlDocument::MaximumBytes) {
        return fail(error, ErrorWriting);
    }
    const QString path = placeToWrite(file->fileName());
    QSaveFile target(path);
    if (path.isEmpty() || !target.open(QIODevice::WriteOnly)) {
        return fail(error, ErrorWriting);
    }
    keepOwnerAndMode(path, &target);
    if (target.write(content) != content.size() || !target.commit()) {
        return fail(error, ErrorWriting);
    }
    return true;
}

bool EditorFile::load(RemoteMemAPI *api, int bank, QFile *file, bool fullDocument, QString *error)
{
    // By name, since the file's own word counts a link to nothing as there.
    if (!QFile::exists(file->fileName())) {
        return fail(error, ErrorNotFound);
    }
    QByteArray content;
    if (!XmlDocument::read(file, XmlDocument::MaximumBytes, &content)) {
        return fail(error, ErrorNotOpened);
    }

    api->setAllowToSendSysExFlag(false);
    api->denyToRaiseFileEditFlag();
    api->evacuateSpecificBankAndEditBuff(bank);
    api->allowToRaiseFileEditFlag();

    api->denyToRaiseFileEditFlag();
    QDomDocument document;
    QString problem = refusal(content, &document);
    if (problem.isEmpty()) {
        const QDomElement root = document.documentElement();
        const bool complete =
            fullDocument ? readFullDocument(api, root)
                         : EditorData::setBankDomElement(api, root, bank, EditorData::DocType,
                                                         false, QString());
        if (!complete) {
            problem = ErrorParameter;
        }
    }
    api->allowToRaiseFileEditFlag();

    if (!problem.isEmpty()) {
        api->denyToRaiseFileEditFlag();
        api->restoreSpecificBankAndEditBuff(bank);
        api->allowToRaiseFileEditFlag();
        api->setAllowToSendSysExFlag(true);
        return fail(error, problem);
    }
    api->setAllowToSendSysExFlag(true);
    return true;
}

bool EditorFile::create(RemoteMemAPI *api, int bank, const QDir &folder, const QString &prefix,
                        const QString &suffix, QString *error)
{
    QString path;
    do {
        path = folder.filePath(prefix + QUuid::createUuid().toString() + suffix);
    } while (QFileInfo::exists(path));
    QFile file(path);
    if (!save(api, bank, &file, error)) {
        api->setParam(ParamAddress(bank, ParamAddress::BankAvailableFlag, -1, -1), 0);
        return false;
    }
    api->setParam(ParamAddress(bank, ParamAddress::FileName, -1, -1), path);
    return true;
}
