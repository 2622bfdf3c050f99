// SPDX-License-Identifier: GPL-3.0-or-later
// Which DAWs are on the machine, and where the selected one looks for plug-ins: in folders of its
// own, in those that its settings name, and in those that all DAWs share.
//
//   NAME VERSION.app                        an application, its name and version
//   <preferences>/NAME VERSION/             its settings
//     Vst2xPlugins EDITION.xml              up to version 8
//     Vst2xPlugin SearchPaths EDITION.xml   later; either with " (x86_64)" in front of ".xml"
//
//   Vst2xPlugins or Vst2xPathlist           the XML of a settings file; all that match count
//     list name="Entries" type="list"
//       item
//         string name="Group" value="Vst2xPlugManager" or "PathList"
//         member name="Values"
//           member name="PathList"
//             list name="paths" type="obj"
//               obj class="FNPath"
//                 string name="Name" value
//                 string name="Path" value  the folder is path and name with nothing between
#include "vsti/VSTiInfo.h"

#include "app/Constants.h"
#include "app/Folders.h"
#include "vsti/PluginXml.h"

#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtXml/QDomDocument>

#include <cmath>
#include <initializer_list>
#include <utility>

namespace
{

const QString Trevia = QStringLiteral("Trevia");
const QString Ostrel = QStringLiteral("Ostrel");
const QString ProSuffix = QStringLiteral(" Pro");
const QString HiddenEdition = QStringLiteral("Trevia LE");
const QString BundleSuffix = QStringLiteral(".app");
const QString OwnVST2Folder = QStringLiteral("/Contents/VSTPlugIns");
const QString OwnVST3Folder = QStringLiteral("/Contents/VST3");
// The plain edition is called the Pro edition from here on; its files keep the old word.
constexpr float FirstVersionOfPro = 8.0F;
constexpr float FirstVersion = 1.0F;

using Attributes = std::initializer_list<std::pair<QString, QString>>;

bool has(const QDomElement &element, const Attributes &attributes)
{
    for (const auto &[name, value] : attributes) {
        if (element.attribute(name) != value) {
            return false;
        }
    }
    return true;
}

// The children of all the parents that have such a tag and such attributes, in their order.
QList<QDomElement> childrenOf(const QList<QDomElement> &parents, const QString &tag,
                              const Attributes &attributes)
{
    QList<QDomElement> found;
    for (const QDomElement &parent : parents) {
        for (QDomElement child = parent.firstChildElement(tag); !child.isNull();
             child = child.nextSiblingElement(tag)) {
            if (has(child, attributes)) {
                found.append(child);
            }
        }
    }
    return found;
}

bool isPathListItem(const QDomElement &item)
{
    for (QDomElement child = item.firstChildElement(TagItemString); !child.isNull();
         child = child.nextSiblingElement(TagItemString)) {
        const QString value = child.attribute(AttributeEntryItemValue);
        if (child.attribute(AttributeEntryItemName) == EntryItemName &&
            (value == EntryItemValue || value == EntryItemValueForTrevia9orLater)) {
            return true;
        }
    }
    return false;
}

// Empty unless both halves are there.
QString pathOf(const QDomElement &object)
{
    QString name;
    QString path;
    for (QDomElement child = object.firstChildElement(TagObjString); !child.isNull();
         child = child.nextSiblingElement(TagObjString)) {
        const QString half = child.attribute(AttributeObjStringName);
        if (half == ObjStringNameName) {
            name = child.attribute(AttributeObjStringValue);
        } else if (half == ObjStringNamePath) {
            path = child.attribute(AttributeObjStringValue);
        }
    }
    return name.isEmpty() || path.isEmpty() ? QString() : path + name;
}

// Equal for the folders that QDir's own comparison holds to be equal, which costs too much to ask
// of each pair in an enormous list.
QString keyOf(const QDir &folder)
{
    const QString canonical = folder.canonicalPath();
    return canonical.isEmpty() ? folder.absolutePath() : canonical;
}

} // namespace

void VSTiInfo::searchDAW()
{
    const QStringList applicationPatterns = {Trevia + QLatin1Char('*') + BundleSuffix,
                                             Ostrel + QLatin1Char('*') + BundleSuffix};
    const QStringList settingPatterns = {k_vst2xSettingFileNameWithoutExt + QLatin1Char('*') +
                                             k_vst2xSettingFileExtension,
                                         k_vst2xSettingFileNameWithoutExtForTrevia9orLater +
                                             QLatin1Char('*') + k_vst2xSettingFileExtension};
    dawSettings.clear();
    for (const QString &root : applicationFolders()) {
        const QFileInfoList applications = QDir(root).entryInfoList(
            applicationPatterns, QDir::Dirs | QDir::Executable, QDir::NoSort);
        for (const QFileInfo &application : applications) {
            const QString name = application.completeBaseName();
            const QString versionText = name.section(QLatin1Char(' '), -1);
            const float version = versionText.toFloat();
            // "inf" and "nan" pass as numbers, and as no version.
            if (!std::isfinite(version) || version < FirstVersion) {
                continue;
            }
            const QFileInfoList settings = getDAWSettingFolder(name).entryInfoList(
                settingPatterns, QDir::Files | QDir::Readable, QDir::NoSort);
            for (const QFileInfo &setting : settings) {
                const QString stem =
                    setting.completeBaseName().remove(k_vst2xSettingFileMac64Suffix);
                const QString displayName =
                    getDAWDisplayNameFromSettingFileName(stem, versionText, version);
                if (!displayName.isEmpty()) {
                    dawSettings.insert(displayName, {name, setting.fileName()});
                }
            }
        }
    }
}

QDir VSTiInfo::getDAWSettingFolder(const QString &applicationName) const
{
    return QDir(preferencesFolder().path() + QLatin1Char('/') + applicationName);
}

QString VSTiInfo::getDAWDisplayNameFromSettingFileName(const QString &fileStem,
                                                       const QString &versionText,
                                                       float version) const
{
    QString text = fileStem;
    text.remove(k_vst2xSettingFileNameWithoutExt);
    text.remove(k_vst2xSettingFileNameWithoutExtForTrevia9orLater);
    text = text.trimmed();
    if (version >= FirstVersionOfPro && text == Trevia) {
        text += ProSuffix;
    }
    if (text.isEmpty() || text == HiddenEdition) {
        return {};
    }
    return text + QLatin1Char(' ') + versionText;
}

void VSTiInfo::getVSTi2Folder()
{
    vst2Folders.clear();
    if (currentDAW.isEmpty()) {
        return;
    }
    const auto [name, file] = dawSettings.value(currentDAW);
    for (const QString &root : applicationFolders()) {
        vst2Folders.append(QDir(root + name + BundleSuffix + OwnVST2Folder));
    }
    const QFileInfo setting(dawSettingFolder, file);
    if (setting.isReadable()) {
        analyzeXmlToFindVST2Folders(setting.absoluteFilePath());
    }
    // A DAW that was run in both widths has settings of both.
    const QFileInfo twin(setting.absolutePath() + QLatin1Char('/') + setting.completeBaseName() +
                         k_vst2xSettingFileMac64Suffix + QLatin1Char('.') + setting.suffix());
    if (twin.isReadable()) {
        analyzeXmlToFindVST2Folders(twin.absoluteFilePath());
    }
}

void VSTiInfo::getVSTi3Folder()
{
    vst3Folders.clear();
    if (currentDAW.isEmpty()) {
        return;
    }
    const QString name = dawSettings.value(currentDAW).first;
    for (const QString &root : applicationFolders()) {
        vst3Folders.append(QDir(root + name + BundleSuffix + OwnVST3Folder));
    }
    for (const QString &folder : commonVST3Folders()) {
        vst3Folders.append(QDir(folder));
    }
}

void VSTiInfo::analyzeXmlToFindVST2Folders(const QString &filePath)
{
    QFile file(filePath);
    QDomDocument document;
    if (!PluginXml::parseFile(file, &document)) {
        return;
    }
    const QDomElement root = document.documentElement();
    if (root.tagName() != TagVST2xPlugins && root.tagName() != TagVST2xPluginsForTrevia9orLater) {
        return;
    }
    QList<QDomElement> items;
    for (const QDomElement &item : childrenOf(childrenOf({root}, TagEntryList,
                                                         {{AttributeEntryListName, EntryListName},
                                                          {AttributeEntryListType, EntryListType}}),
                                              TagEntryItem, {})) {
        if (isPathListItem(item)) {
            items.append(item);
        }
    }
    const QList<QDomElement> values =
        childrenOf(items, TagItemMember, {{AttributeItemMemberName, ItemMemberName}});
    const QList<QDomElement> pathLists =
        childrenOf(values, TagMember, {{AttributeMemberName, MemberName}});
    const QList<QDomElement> lists = childrenOf(
        pathLists, TagMemberList,
        {{AttributeMemberListName, MemberListName}, {AttributeMemberListType, MemberListType}});

    QSet<QString> known;
    for (const QDir &folder : std::as_const(vst2Folders)) {
        known.insert(keyOf(folder));
    }
    for (const QDomElement &object :
         childrenOf(lists, TagListObj, {{AttributeObjClass, ObjClass}})) {
        const QString path = pathOf(object);
        if (path.isEmpty()) {
            continue;
        }
        const QDir folder(path);
        const QString key = keyOf(folder);
        if (!known.contains(key)) {
            known.insert(key);
            vst2Folders.append(folder);
        }
    }
}
