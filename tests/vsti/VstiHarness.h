// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Folders.h"
#include "vsti/VSTiInfo.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>

inline QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

inline QStringList names(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts) {
        list.append(latin(text));
    }
    return list;
}

// The T form of a plug-in's parameter 0, 1, 2 ...
inline QString idOf(int index)
{
    return QString::number(index + 4201, 16).rightJustified(9, QLatin1Char('0'));
}

// The same in the form that files hold.
inline QByteArray fileIdOf(int index)
{
    return QByteArray::number(index + 4201).rightJustified(11, '0');
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// "id path/path" per parameter, in order.
inline QStringList printed(const QList<VSTiInfo::Parameter> &list)
{
    QStringList lines;
    for (const VSTiInfo::Parameter &parameter : list) {
        lines.append(parameter.id + QLatin1Char(' ') + parameter.path.join(QLatin1Char('/')));
    }
    return lines;
}

// What a scan would have found, and the steps that the scan and the reader of a DAW's settings
// call.
class ScannedVSTiInfo : public VSTiInfo
{
public:
    using VSTiInfo::VSTiInfo;

    using VSTiInfo::analyzeXmlToFindVST2Folders;
    using VSTiInfo::appendParameterTemplateFromVSTXML;
    using VSTiInfo::appendParameterTree;
    using VSTiInfo::appendParameterTreeFromVSTXML;
    using VSTiInfo::appendPreset;
    using VSTiInfo::createParameterListFromDatabase;
    using VSTiInfo::createParameterListFromPreset;
    using VSTiInfo::currentDAW;
    using VSTiInfo::dawSettingFolder;
    using VSTiInfo::dawSettings;
    using VSTiInfo::fileInfos;
    using VSTiInfo::getDAWDisplayNameFromSettingFileName;
    using VSTiInfo::getDAWSettingFolder;
    using VSTiInfo::getIntValue;
    using VSTiInfo::parameterLists;
    using VSTiInfo::parameterMaps;
    using VSTiInfo::scanResults;
    using VSTiInfo::searchDAW;
    using VSTiInfo::updateParameterListFromVSTXMLData;
    using VSTiInfo::updateParameterListFromVSTXMLFile;
    using VSTiInfo::vst2Folders;
    using VSTiInfo::vst3Folders;
    using VSTiInfo::vstXmlData;
    using VSTiInfo::vstXmlFiles;
    using VSTiInfo::vstXmlPrimaryNames;
    using VSTiInfo::writeParameterListDatabase;

    // The same ids with the same paths in the list and in the map, each once.
    bool isConsistent() const
    {
        for (auto entry = parameterLists.cbegin(); entry != parameterLists.cend(); ++entry) {
            const QHash<QString, QStringList> map = parameterMaps.value(entry.key());
            if (map.size() != entry->size() ||
                !std::all_of(entry->cbegin(), entry->cend(), [&map](const Parameter &parameter) {
                    return map.value(parameter.id) == parameter.path;
                })) {
                return false;
            }
        }
        return true;
    }
};

// A machine with nothing on it but the program's three folders and some plug-ins, new for each
// test. While it lives, every folder that is looked for lies in it.
class VstiRig
{
public:
    VstiRig()
    {
        MachineFolders folders;
        folders.home = path("home");
        folders.system = path("system");
        setMachineFolders(folders);
    }
    ~VstiRig() { setMachineFolders({}); }
    VstiRig(const VstiRig &) = delete;
    VstiRig &operator=(const VstiRig &) = delete;

    QString path(const char *name) const { return m_folder.filePath(latin(name)); }
    QString database() const { return path("data/VSTiDatabase.xml"); }
    QString notSynthList() const { return path("data/NotSynthList.txt"); }
    QString preset() const { return path("resources/VSTiPreset.xml"); }

    ScannedVSTiInfo info() const
    {
        return {QDir(path("modules")), QDir(path("resources")), QDir(path("data"))};
    }

    bool writePreset(const QByteArray &rows) const
    {
        return writeBytes(preset(), "<!DOCTYPE VSTiPreset>\n<vstilist>\n" + rows + "</vstilist>\n");
    }

    // A plug-in's file, of a size of its own.
    QString plugin(const char *name, int size = 10) const
    {
        QString file = path("plugins/") + latin(name);
        writeBytes(file, QByteArray(size, 'p'));
        return file;
    }

private:
    QTemporaryDir m_folder;
};

inline SVSTiParameterInfo scanned(int index, const QByteArray &name,
                                  const QList<QByteArray> &groups = {})
{
    return {idOf(index), name, groups};
}
