// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Folders.h"

#include "app/Constants.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStandardPaths>

#ifdef Q_OS_MACOS
#include <CoreFoundation/CoreFoundation.h>
#endif

namespace
{

MachineFolders &overrides()
{
    static MachineFolders instance;
    return instance;
}

QString executableFolder()
{
    const QString &set = overrides().executable;
    return set.isEmpty() ? QCoreApplication::applicationDirPath() : set;
}

QString homeFolder()
{
    const QString &set = overrides().home;
    return set.isEmpty() ? QDir::homePath() : set;
}

#ifdef Q_OS_MACOS

// The bundle's resources directory; null if any step gives nothing.
QString bundleResources()
{
    const QString identifier = PlistCorpName + SettingName;
    CFStringRef identifierRef = identifier.toCFString();
    CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifierRef);
    CFRelease(identifierRef);
    if (bundle == nullptr) {
        bundle = CFBundleGetMainBundle();
    }
    if (bundle == nullptr) {
        return {};
    }
    CFURLRef relative = CFBundleCopyResourcesDirectoryURL(bundle);
    if (relative == nullptr) {
        return {};
    }
    CFURLRef absolute = CFURLCopyAbsoluteURL(relative);
    CFRelease(relative);
    if (absolute == nullptr) {
        return {};
    }
    CFStringRef path = CFURLCopyFileSystemPath(absolute, kCFURLPOSIXPathStyle);
    CFRelease(absolute);
    if (path == nullptr) {
        return {};
    }
    // 512 bytes: a path longer than 256 UTF-16 units is cut there.
    UInt8 buffer[512];
    CFIndex used = 0;
    CFStringGetBytes(path, CFRangeMake(0, CFStringGetLength(path)), kCFStringEncodingUTF16, ' ',
                     false, buffer, sizeof buffer, &used);
    CFRelease(path);
    return QString::fromUtf16(reinterpret_cast<const char16_t *>(buffer), used / 2);
}

#else

// What the desktop says of a folder of the real user's, who may have moved it.
QString userFolder(QStandardPaths::StandardLocation location, const char *belowHome)
{
    return overrides().home.isEmpty() ? QStandardPaths::writableLocation(location)
                                      : overrides().home + QLatin1String(belowHome);
}

const QString PresetBankFileName = PresetBankFile.arg(1) + EditorFileExtension;

QString shareFolder()
{
    const QString &set = overrides().shareFolder;
    return set.isEmpty() ? executableFolder() + QStringLiteral("/" TRN_TO_INSTALLED_SHARE) : set;
}

QString libexecFolder()
{
    const QString &set = overrides().libexecFolder;
    return set.isEmpty() ? executableFolder() + QStringLiteral("/" TRN_TO_INSTALLED_LIBEXEC) : set;
}

#endif

} // namespace

void setMachineFolders(const MachineFolders &folders)
{
    overrides() = folders;
}

MachineFolders machineFolders()
{
    return overrides();
}

QDir getAppDataDirectory()
{
#ifdef Q_OS_MACOS
    const QString data = homeFolder() + QLatin1String(AppDataFolderPath);
#else
    const QString data = userFolder(QStandardPaths::GenericDataLocation, AppDataFolderPath);
#endif
    return QDir(data + QLatin1String(UserFolderPath));
}

QDir getInitialDirectory()
{
#ifdef Q_OS_MACOS
    return QDir(bundleResources());
#else
    const QString beside = executableFolder();
    const QStringList candidates = {beside + QStringLiteral("/resources"),
                                    beside + QStringLiteral("/../resources"), shareFolder()};
    for (const QString &candidate : candidates) {
        if (QFileInfo::exists(candidate + QLatin1Char('/') + PresetBankFileName)) {
            return QDir(QDir::cleanPath(candidate));
        }
    }
    return QDir(QString());
#endif
}

QDir getExecuteDirectory()
{
#ifdef Q_OS_MACOS
    return QDir(bundleResources());
#else
    const QDir installed(QDir::cleanPath(libexecFolder()));
    return installed.exists() ? installed : QDir(executableFolder());
#endif
}

QString documentsFolder()
{
    const QString &set = overrides().documents;
    if (!set.isEmpty()) {
        return set;
    }
    const QString found = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return found.isEmpty() || !QFileInfo(found).isDir() ? QDir::homePath() : found;
}

QStringList applicationFolders()
{
#ifdef Q_OS_MACOS
    return {overrides().system + QStringLiteral("/Applications/")};
#else
    return {overrides().system + QStringLiteral("/opt/"),
            homeFolder() + QStringLiteral("/Applications/")};
#endif
}

QDir preferencesFolder()
{
#ifdef Q_OS_MACOS
    return QDir(homeFolder() + DAWSettingBasePath);
#else
    return QDir(userFolder(QStandardPaths::GenericConfigLocation, "/.config"));
#endif
}

QStringList commonVST3Folders()
{
#ifdef Q_OS_MACOS
    const QString folder = QStringLiteral("/Library/Audio/Plug-Ins/VST3");
    return {overrides().system + folder, homeFolder() + folder};
#else
    return {overrides().system + QStringLiteral("/usr/lib/vst3"),
            overrides().system + QStringLiteral("/usr/local/lib/vst3"),
            homeFolder() + QStringLiteral("/.vst3")};
#endif
}

QString sharedDataFolder()
{
#ifdef Q_OS_MACOS
    return overrides().system + QStringLiteral("/Library/Application Support");
#else
    return userFolder(QStandardPaths::GenericDataLocation, AppDataFolderPath);
#endif
}

QString helperExecutable(const QString &bundle)
{
    const QString suffix = QStringLiteral(".app");
    const QString name = bundle.section(QLatin1Char('/'), -1).remove(suffix);
#ifdef Q_OS_MACOS
    return bundle + QStringLiteral("/Contents/MacOS/") + name;
#else
    return bundle.left(bundle.lastIndexOf(QLatin1Char('/')) + 1) + name;
#endif
}
