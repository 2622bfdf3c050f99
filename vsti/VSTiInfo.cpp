// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/VSTiInfo.h"

#include "app/Constants.h"
#include "file/EditorData.h"

#include <QtCore/QFile>

#include <algorithm>
#include <utility>

namespace
{

constexpr int ExtensionNameLength = 12;
constexpr unsigned QuickControls = 8;

bool isControlGroup(const QString &name)
{
    return name == AudioTrackName || name == MIDITrackName || name == GenericName;
}

QStringList quickControlPath(unsigned index)
{
    return {TrackControlQuickControlFolderName,
            TrackControlQuickControlName + QString::number(index + 1, 16)};
}

// Orders the names that the popup shows.
class QStringSortCaseInsensitive
{
public:
    explicit QStringSortCaseInsensitive(QString string)
        : m_string(std::move(string))
    {
    }
    bool operator<(const QStringSortCaseInsensitive &other) const
    {
        return m_string.compare(other.m_string, Qt::CaseInsensitive) < 0;
    }
    const QString &string() const { return m_string; }

private:
    QString m_string;
};

} // namespace

VSTiInfo::VSTiInfo(const QDir &modules, const QDir &presets, const QDir &database)
    : moduleFolder(modules)
    , presetFolder(presets)
    , databaseFolder(database)
    , scanResults(std::make_unique<QList<SVSTiInfo>>())
{
    searchDAW();
    appendPreset();
}

VSTiInfo::~VSTiInfo() = default;

// --- Life and scan -------------------------------------------------------------------------------

void VSTiInfo::selectDAW(const QString &name)
{
    const RecursiveMutexLocker locker(mutex);
    currentDAW = name;
    dawSettingFolder = getDAWSettingFolder(dawSettings.value(name).first);
    parameterLists.clear();
    parameterMaps.clear();
    fileInfos.clear();
    getVSTi2Folder();
    getVSTi3Folder();
    QFile database(databaseFolder.filePath(DatabaseFileName));
    createParameterListFromDatabase(database);
}

void VSTiInfo::entryVSTiParameter()
{
    const RecursiveMutexLocker locker(mutex);
    for (const SVSTiInfo &result : std::as_const(*scanResults)) {
        const QString name = QString::fromUtf8(result.name);
        QList<Parameter> list;
        if (!result.parameters.isEmpty()) {
            QHash<QString, QStringList> map;
            for (const SVSTiParameterInfo &parameter : result.parameters) {
                if (map.contains(parameter.id)) {
                    continue;
                }
                QStringList path;
                for (const QByteArray &group : parameter.groups.first(
                         std::min<qsizetype>(parameter.groups.size(), MaximumGroups))) {
                    path.append(QString::fromUtf8(group));
                }
                path.append(QString::fromUtf8(parameter.name));
                list.append({parameter.id, path});
                map.insert(parameter.id, path);
            }
            parameterMaps.insert(name, map);
        }
        parameterLists.insert(name, list);
        fileInfos.insert(name, {QFileInfo(QFile::decodeName(result.path)), result.isVST2 ? 2 : 3});
    }
    for (auto entry = vstXmlData.cbegin(); entry != vstXmlData.cend(); ++entry) {
        updateParameterListFromVSTXMLData(entry.value(), entry.key(),
                                          vstXmlPrimaryNames.contains(entry.key()));
    }
    for (auto entry = vstXmlFiles.cbegin(); entry != vstXmlFiles.cend(); ++entry) {
        QFile description(entry.value());
        updateParameterListFromVSTXMLFile(description, entry.key(),
                                          vstXmlPrimaryNames.contains(entry.key()));
    }

    QFile database(databaseFolder.filePath(DatabaseFileName));
    writeParameterListDatabase(database);
    m_databaseLock.release();

    // Only now: a description beside a plug-in may change without the plug-in, so it is applied on
    // every run and never reaches the database.
    for (auto entry = fileInfos.cbegin(); entry != fileInfos.cend(); ++entry) {
        if (entry->version == 2) {
            QFile description(
                entry->fileInfo.absoluteDir().filePath(entry.key() + ExtensionVSTXML));
            updateParameterListFromVSTXMLFile(description, entry.key(), false);
        }
    }

    // Names that differ in case alone come in one order, whatever the hash's.
    QStringList names = fileInfos.keys();
    names.sort();
    QList<QStringSortCaseInsensitive> sorted(names.cbegin(), names.cend());
    std::stable_sort(sorted.begin(), sorted.end());
    vstiList.clear();
    for (const QStringSortCaseInsensitive &name : std::as_const(sorted)) {
        vstiList.append(name.string());
    }
    appendPreset();
}

void VSTiInfo::initializeDatabase()
{
    QFile::remove(databaseFolder.filePath(DatabaseFileName));
    clearNotSynthList();
}

void VSTiInfo::clearNotSynthList()
{
    QFile::remove(databaseFolder.filePath(NotSynthListFileName));
}

void VSTiInfo::appendPreset()
{
    QFile preset(presetFolder.filePath(PresetFileName));
    createParameterListFromPreset(preset);
    for (const QString &name : {AudioTrackName, MIDITrackName, GenericName}) {
        if (!parameterLists.contains(name)) {
            parameterLists.insert(name, {});
            fileInfos.insert(name, {});
            vstiList.append(name);
        }
    }
}

// --- Lookups -------------------------------------------------------------------------------------

QStringList VSTiInfo::getDAWList() const
{
    return dawSettings.keys();
}

QStringList VSTiInfo::getVSTiList() const
{
    return vstiList;
}

QStringList VSTiInfo::getVSTiExistsAndPresetList() const
{
    return parameterLists.keys();
}

QList<VSTiInfo::Parameter> VSTiInfo::getVSTiParameterList(const QString &vstiName) const
{
    return parameterLists.value(vstiName);
}

QHash<QString, QStringList> VSTiInfo::getVSTiParameterMap(const QString &vstiName) const
{
    return parameterMaps.value(vstiName);
}

QStringList VSTiInfo::getVSTiParameterName(const QString &vstiName, const QString &id) const
{
    const auto map = parameterMaps.constFind(vstiName);
    return map == parameterMaps.cend() ? QStringList() : map->value(id.toLower());
}

QStringList VSTiInfo::getParameterName(const QString &vstiName, const QString &id) const
{
    if (id == TrackControlVolumeID) {
        return {TrackControlVolumeName};
    }
    if (id == TrackControlPanID) {
        return {TrackControlPanName};
    }
    if (id == TrackControlNoAssignID) {
        return {TrackControlNoAssignName};
    }
    const unsigned base =
        EditorData::getRemoteParamContentsFromTRemoteStringParam(TrackControlQuickControlID);
    const unsigned contents = EditorData::getRemoteParamContentsFromTRemoteStringParam(id);
    const unsigned type = EditorData::getRemoteParamTypeFromTRemoteStringParam(id);
    if (type == 1 && contents >= base && contents < base + QuickControls) {
        return quickControlPath(contents - base);
    }
    return getVSTiParameterName(vstiName, id);
}

QList<VSTiInfo::Parameter> VSTiInfo::getTrackControlParameterList() const
{
    QList<Parameter> list = {{TrackControlVolumeID, {TrackControlVolumeName}},
                             {TrackControlPanID, {TrackControlPanName}},
                             {TrackControlNoAssignID, {TrackControlNoAssignName}}};
    const unsigned base =
        EditorData::getRemoteParamContentsFromTRemoteStringParam(TrackControlQuickControlID);
    for (unsigned i = 0; i < QuickControls; ++i) {
        list.append({TrackControlQuickControlID.left(1) +
                         QStringLiteral("%1").arg(base + i, 8, 16, QLatin1Char('0')).toUpper(),
                     quickControlPath(i)});
    }
    return list;
}

QString VSTiInfo::getVSTiExtensionNameFromVSTiName(const QString &name) const
{
    if (isControlGroup(name)) {
        return name;
    }
    QString shortName = name;
    shortName.remove(QLatin1Char(' '));
    shortName.truncate(ExtensionNameLength);
    // Half of a pair could not be written to a file, and the template would lose its instrument.
    if (!shortName.isEmpty() && shortName.back().isHighSurrogate()) {
        shortName.chop(1);
    }
    return shortName;
}

QString VSTiInfo::getVSTiNameFromVSTiExtensionName(const QString &extensionName) const
{
    if (isControlGroup(extensionName)) {
        return extensionName;
    }
    for (auto entry = parameterLists.keyBegin(); entry != parameterLists.keyEnd(); ++entry) {
        if (getVSTiExtensionNameFromVSTiName(*entry) == extensionName) {
            return *entry;
        }
    }
    return {};
}
