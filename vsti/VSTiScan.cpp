// SPDX-License-Identifier: GPL-3.0-or-later
// The scan: which plug-ins are new, and what each of them says of itself.
//
// None of a plug-in's code ever runs in this process. A helper program loads it, in a process of
// its own and with limited time, and tells by its exit code and a result file what it found out.
//
//   exit code   what it means                   instruments from      else
//   0           the result file holds a list    the file
//   1           an instrument without a list    the table of names    -
//   2           the list's names say nothing    the file, if there    -
//                                               is a description of
//                                               the instrument;
//                                               the table of names
//   3, 8        no instrument                   -                     excluded from now on
//   4 to 7      the helper failed on it         the table of names    excluded from now on
//   others      nothing was found out           -                     -
//   a crash, no end within the time, no helper: as 4 to 7
//
//   result file, in lines       number of instruments
//     for each instrument       name; if it is empty the instrument ends here
//                               number of parameters
//       for each parameter      id, name, number of groups
//         for each group        name, outermost first
#include "vsti/VSTiInfo.h"

#include "VSTiPathFinder/source/CVSTiPathFinder.h"
#include "VSTiPathFinder/source/filesearch.h"
#include "app/Constants.h"
#include "app/Folders.h"
#include "helper/HelperResult.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QSet>
#include <QtCore/QThread>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif
#include <unistd.h>

namespace
{

// Instruments that come with the DAWs and lie outside of their plug-in folders.
const QString _k_orskvalePath = QStringLiteral("/Brandholm/Components/Orskvale.vst3");
const QString _k_tamberlinePath = QStringLiteral("/Brandholm/Components/Tamberline.vst3");

// The helper writes half of this at most.
constexpr qint64 MaximumResultBytes = 128 * 1024 * 1024;
constexpr int IdDigits = 9;
constexpr int LinePartBytes = 256;
// How often one looks whether a scan is still wanted.
constexpr int LookUpMs = 100;
// For a helper that was asked to end, before it is made to.
constexpr int GraceMs = 2000;

std::string bytesOf(const QString &path)
{
    return QFile::encodeName(path).toStdString();
}

std::vector<std::string> bytesOf(const QList<QDir> &folders)
{
    std::vector<std::string> paths;
    for (const QDir &folder : folders) {
        paths.push_back(bytesOf(folder.absolutePath() + QLatin1Char('/')));
    }
    return paths;
}

// The program ends, and a scan has no time left. What it has not come to is then neither found nor
// excluded.
bool isAbandoned()
{
    return QThread::currentThread()->isInterruptionRequested();
}

// Whatever bears the name of the answer, as a folder that a plug-in has made.
void removeAnswer(const QString &path)
{
    for (const QString &name : {path, path + QLatin1String(UnfinishedSuffix)}) {
        if (!QFile::remove(name) && QFileInfo(name).isDir() && !QFileInfo(name).isSymLink()) {
            QDir(name).removeRecursively();
        }
    }
}

// False if the process did not end by itself in time.
bool waitForEnd(QProcess *process, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!process->waitForFinished(
        static_cast<int>(std::min<qint64>(deadline.remainingTime(), LookUpMs)))) {
        if (process->state() == QProcess::NotRunning || deadline.hasExpired() || isAbandoned()) {
            return false;
        }
    }
    return true;
}

// In the child: a process group of its own, and no life beyond this program's. It is asked to end
// and not killed, so that it takes along what it has started itself.
void leaveGroupAndFollow([[maybe_unused]] pid_t parent)
{
    ::setpgid(0, 0);
#ifdef Q_OS_LINUX
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) {
        ::_exit(EXIT_FAILURE);
    }
#endif
}

// Runs a program in a process group of its own, with nothing to read and nobody to listen, and
// leaves none of the group behind. Its exit code; nothing if it crashed, did not end in time, or
// could not be started.
std::optional<unsigned> run(const QString &program, const QStringList &arguments, int timeoutMs)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([parent = ::getpid()] { leaveGroupAndFollow(parent); });
    process.start(program, arguments, QIODevice::ReadWrite);
    const auto group = static_cast<pid_t>(process.processId());
    const bool hasEnded = waitForEnd(&process, timeoutMs);
    if (!hasEnded) {
        // The helper knows what has turned away from its group, and ends that too.
        process.terminate();
        process.waitForFinished(GraceMs);
    }
    if (group > 0) {
        ::kill(-group, SIGKILL);
    }
    if (!hasEnded) {
        process.kill();
        process.waitForFinished();
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit) {
        return std::nullopt;
    }
    return static_cast<unsigned>(process.exitCode());
}

} // namespace

QString getStringFromFile(QFile *file, bool *error)
{
    if (*error || file->atEnd()) {
        *error = true;
        return {};
    }
    // Qt's own makes room for 32 kilobytes first. Among the names that are kept, a million of those
    // fall into pieces that nothing else fits into.
    QByteArray line;
    std::array<char, LinePartBytes> part;
    qint64 length = 0;
    do {
        length = file->readLine(part.data(), part.size());
        line.append(part.data(), std::max<qint64>(length, 0));
    } while (length > 0 && !line.endsWith('\n'));
    return QString::fromLocal8Bit(line).trimmed();
}

int getIntFromFile(QFile *file, bool *error)
{
    bool isNumber = false;
    const int value = getStringFromFile(file, error).toInt(&isNumber);
    if (!isNumber) {
        *error = true;
        return 0;
    }
    return value;
}

void VSTiInfo::analyzeVSTi()
{
    const RecursiveMutexLocker locker(mutex);
    scanResults->clear();
    vstXmlData.clear();
    vstXmlFiles.clear();
    vstXmlPrimaryNames.clear();
    // The helper writes there, and so does the finder.
    QDir().mkpath(databaseFolder.absolutePath());
    m_databaseLock.take(databaseFolder.filePath(DatabaseLockFileName), isAbandoned);
    if (isAbandoned()) {
        return;
    }
    CVSTiPathFinder finder(bytesOf(databaseFolder.absolutePath() + QLatin1Char('/')));

    std::vector<std::string> known;
    QSet<QString> vst3Names;
    for (const VSTiFileInfo &info : std::as_const(fileInfos)) {
        known.push_back(bytesOf(info.fileInfo.fileName()));
        if (info.version == 3) {
            vst3Names.insert(info.fileInfo.baseName());
        }
    }
    finder.SetIgnorableVSTis(known);
    std::vector<std::string> vst3Paths;
    std::vector<std::string> vst2Paths;
    finder.SearchAllFiles(bytesOf(vst3Folders), &vst3Paths, false);
    finder.SearchAllFiles(bytesOf(vst2Folders), &vst2Paths, true);

    // These are examined even if they were excluded.
    const std::array<std::pair<QString, QString>, 2> wellKnown = {
        {{QStringLiteral("Orskvale"), _k_orskvalePath},
         {QStringLiteral("Tamberline"), _k_tamberlinePath}}};
    for (const auto &[name, below] : wellKnown) {
        const QString path = sharedDataFolder() + below;
        if (!fileInfos.contains(name) && QFileInfo::exists(path)) {
            vst3Paths.push_back(bytesOf(path));
        }
    }

    for (const std::string &path : vst3Paths) {
        if (isAbandoned()) {
            return;
        }
        questionVSTi(path, false, &finder);
        std::string name;
        if (!scanResults->isEmpty() && scanResults->constLast().path.toStdString() == path &&
            CFileSearch::SplitPath(&path, nullptr, &name, nullptr, false)) {
            vst3Names.insert(QFile::decodeName(name.c_str()));
        }
    }
    for (const std::string &path : vst2Paths) {
        if (isAbandoned()) {
            return;
        }
        // A plug-in that is there in both formats is taken as VST3.
        if (vst3Names.contains(QFileInfo(QFile::decodeName(path.c_str())).baseName())) {
            finder.AddNotSynthList(path);
        } else {
            questionVSTi(path, true, &finder);
        }
    }
    Q_EMIT analyzingVSTi(QString());
}

void VSTiInfo::questionVSTi(const std::string &path, bool isVST2, CVSTiPathFinder *finder)
{
    const QString text = QFile::decodeName(path.c_str());
    Q_EMIT analyzingVSTi(QFileInfo(text).fileName());
    // A name that is no text could not be passed on, nor kept in the database.
    if (bytesOf(text) == path) {
        getVSTiParamInfo(text, isVST2, finder);
    } else {
        finder->AddNotSynthList(path);
    }
}

void VSTiInfo::getVSTiParamInfo(const QString &path, bool isVST2, CVSTiPathFinder *finder)
{
    const QFileInfo tool(moduleFolder, VSTiInfoFinderX64Module);
    execVSTiInfoFinder(tool.absoluteFilePath(), path,
                       databaseFolder.absoluteFilePath(VSTiInfoFinderTempFileName), isVST2, finder,
                       false);
}

bool VSTiInfo::execVSTiInfoFinder(const QString &toolPath, const QString &pluginPath,
                                  const QString &resultPath, bool isVST2, CVSTiPathFinder *finder,
                                  bool noFallback)
{
    // An old answer must not be mistaken for a new one.
    removeAnswer(resultPath);
    const std::optional<unsigned> code =
        run(helperExecutable(toolPath), {pluginPath, resultPath}, helperTimeoutMs);
    bool result = false;
    // One that was ended in the middle has said nothing.
    bool isFallback = !code.has_value() && !isAbandoned();
    const HelperExit said = code ? static_cast<HelperExit>(*code) : HelperExit::Internal;
    switch (said) {
    case HelperExit::List:
    case HelperExit::NamesSayNothing: {
        QFile file(resultPath);
        isFallback = !QFileInfo(resultPath).isFile() || file.size() > MaximumResultBytes ||
                     !file.open(QIODevice::ReadOnly) || file.atEnd();
        result = !isFallback;
        if (!isFallback &&
            !readScanResult(&file, pluginPath, isVST2, finder, said == HelperExit::List) &&
            !noFallback) {
            finder->AddNotSynthList(bytesOf(pluginPath));
        }
        break;
    }
    case HelperExit::NoListAtAll:
        entryVSTiPreset(pluginPath, isVST2, finder);
        result = true;
        break;
    case HelperExit::NoInstrument:
    case HelperExit::NoAudioClass:
        finder->AddNotSynthList(bytesOf(pluginPath));
        result = true;
        break;
    case HelperExit::CannotLoad:
    case HelperExit::NoEntry:
        isFallback = true;
        result = !noFallback;
        break;
    case HelperExit::WouldNotInitialise:
    case HelperExit::WouldNotGiveParameters:
        if (!entryVSTiPreset(pluginPath, isVST2, finder)) {
            finder->AddNotSynthList(bytesOf(pluginPath));
        }
        result = true;
        break;
    default:
        break;
    }
    if (isFallback && !noFallback && !entryVSTiPreset(pluginPath, isVST2, finder)) {
        finder->AddNotSynthList(bytesOf(pluginPath));
    }
    removeAnswer(resultPath);
    return result;
}

bool VSTiInfo::readScanResult(QFile *file, const QString &pluginPath, bool isVST2,
                              CVSTiPathFinder *finder, bool namesCount)
{
    bool error = false;
    const int instruments = getIntFromFile(file, &error);
    for (int i = 0; i < instruments && !error; ++i) {
        const QString name = getStringFromFile(file, &error);
        if (name.isEmpty()) {
            continue;
        }
        SVSTiInfo info;
        info.name = name.toUtf8();
        info.path = QFile::encodeName(pluginPath);
        info.isVST2 = isVST2;
        const int parameters = getIntFromFile(file, &error);
        for (int j = 0; j < parameters && !error; ++j) {
            SVSTiParameterInfo parameter;
            // Of a negative number all digits of its sign are told.
            const auto id = static_cast<quint64>(qint64{getIntFromFile(file, &error)});
            parameter.id = QString::number(id, 16).rightJustified(IdDigits, QLatin1Char('0'));
            parameter.name = getStringFromFile(file, &error).toUtf8();
            const int groups = getIntFromFile(file, &error);
            for (int k = 0; k < groups && !error; ++k) {
                parameter.groups.append(getStringFromFile(file, &error).toUtf8());
            }
            info.parameters.append(parameter);
        }
        // That word belongs to the control group.
        if (!error && name != GenericName) {
            enterScanResult(info, name, pluginPath, finder, namesCount);
        }
    }
    return !error;
}

void VSTiInfo::enterScanResult(const SVSTiInfo &info, const QString &name,
                               const QString &pluginPath, CVSTiPathFinder *finder, bool namesCount)
{
    const QString within = pluginPath + ResourceVSTXML + name + ExtensionVSTXML;
    if (QFileInfo::exists(within)) {
        vstXmlFiles.insert(name, within);
    }
    if (namesCount) {
        scanResults->append(info);
        return;
    }
    const QString beside = QFileInfo(pluginPath).absoluteDir().filePath(name + ExtensionVSTXML);
    if (QFileInfo::exists(beside)) {
        scanResults->append(info);
        vstXmlFiles.insert(name, beside);
        vstXmlPrimaryNames.append(name);
    } else {
        entryVSTiPreset(pluginPath, info.isVST2, finder);
    }
}

bool VSTiInfo::entryVSTiPreset(const QString &path, bool isVST2, CVSTiPathFinder *finder)
{
    const std::vector<std::string> names = finder->GetVSTiName(bytesOf(path));
    for (const std::string &name : names) {
        SVSTiInfo info;
        info.name = QByteArray::fromStdString(name);
        info.path = QFile::encodeName(path);
        info.isVST2 = isVST2;
        scanResults->append(info);
    }
    return !names.empty();
}
