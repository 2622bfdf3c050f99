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

const QString PresetBankFileName = PresetBankFile.arg(1) + EditorFileExtension;

QString shareFolder()
{
    const QString &set = overrides().shareFolder;
    return set.isEmpty() ? QStringLiteral(TRN_INSTALL_SHARE) : set;
}

QString libexecFolder()
{
    const QString &set = overrides().libexecFolder;
    return set.isEmpty() ? QStringLiteral(TRN_INSTALL_LIBEXEC) : set;
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
    const QString &set = overrides().home;
#ifndef Q_OS_MACOS
    // The desktop's own idea of the data folder, which is AppDataFolderPath below the home folder
    // unless the user moved it.
    if (set.isEmpty()) {
        return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                    QLatin1String(UserFolderPath));
    }
#endif
    return QDir((set.isEmpty() ? QDir::homePath() : set) + QLatin1String(AppDataFolderPath) +
                QLatin1String(UserFolderPath));
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
    const QDir installed(libexecFolder());
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
