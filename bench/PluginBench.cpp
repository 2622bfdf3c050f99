// SPDX-License-Identifier: GPL-3.0-or-later
// The plug-in database: a scan beside running the helper alone, the walk through folders beside the
// system's own, and how entering and loading grow with the number of parameters.

#include "VSTiPathFinder/source/CVSTiPathFinder.h"
#include "app/Folders.h"
#include "bench/Compare.h"
#include "vsti/VSTiInfo.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

const QString DAW = QStringLiteral("Rack");
constexpr int ScannedPlugins = 20;
constexpr int FilesPerFolder = 100;
constexpr int LinksPerFile = 10000;
constexpr int ParametersPerInstrument = 1000;
constexpr int ParametersPerGroup = 10;
constexpr int MostInstruments = 200;
constexpr int MostFiles = 100000;

// A machine with nothing on it.
class Machine
{
public:
    Machine()
    {
        MachineFolders folders;
        folders.home = path("home");
        folders.system = path("system");
        setMachineFolders(folders);
        QDir().mkpath(path("data"));
        QDir().mkpath(path("home/.vst3"));
    }
    ~Machine() { setMachineFolders({}); }
    Machine(const Machine &) = delete;
    Machine &operator=(const Machine &) = delete;

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    void forget() const
    {
        QFile::remove(path("data/VSTiDatabase.xml"));
        QFile::remove(path("data/NotSynthList.txt"));
    }

private:
    QTemporaryDir m_folder;
};

class Database : public VSTiInfo
{
public:
    explicit Database(const Machine &machine)
        : VSTiInfo(QDir(QCoreApplication::applicationDirPath()), QDir(machine.path("resources")),
                   QDir(machine.path("data")))
    {
        selectDAW(DAW);
    }

    // As if a scan had found them, each in a file of its own.
    void find(const Machine &machine, int instruments)
    {
        for (int i = 0; i < instruments; ++i) {
            const QString file = machine.path("home/.vst3/%1.vst3").arg(i);
            QFile plugin(file);
            if (!plugin.exists() && !plugin.open(QIODevice::WriteOnly)) {
                qFatal("no plug-in could be made");
            }
            SVSTiInfo info;
            info.name = "Synth " + QByteArray::number(i);
            info.path = QFile::encodeName(file);
            for (int j = 0; j < ParametersPerInstrument; ++j) {
                SVSTiParameterInfo parameter;
                parameter.id = QStringLiteral("%1").arg(j + 4201, 9, 16, QLatin1Char('0'));
                parameter.name = "Parameter " + QByteArray::number(j);
                parameter.groups = {"Group " + QByteArray::number(j / 100),
                                    "Part " + QByteArray::number(j / ParametersPerGroup)};
                info.parameters.append(parameter);
            }
            scanResults->append(info);
        }
    }
};

// Runs a program to its end, and does nothing else. Its standard output goes nowhere.
void runBare(const std::vector<std::string> &command)
{
    std::vector<char *> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string &argument : command) {
        arguments.push_back(const_cast<char *>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = -1;
    if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0) {
        qFatal("%s could not be run", arguments[0]);
    }
    posix_spawn_file_actions_destroy(&actions);
}

// --- A scan --------------------------------------------------------------------------------------

void scanPlugin(benchmark::State &state)
{
    const Machine machine;
    const QString bin = QCoreApplication::applicationDirPath();
    const QString instrument = bin + QStringLiteral("/tests/plugins/vst3/TestInstrument.vst3");
    std::vector<std::vector<std::string>> commands;
    for (int i = 0; i < ScannedPlugins; ++i) {
        const QString plugin = machine.path("home/.vst3/%1.vst3").arg(i);
        QFile::link(instrument, plugin);
        commands.push_back({(bin + QStringLiteral("/vif_tarn_tern_x64")).toStdString(),
                            plugin.toStdString(), machine.path("result").toStdString()});
    }
    int found = 0;
    compareTimes(
        state,
        [&] {
            machine.forget();
            Database database(machine);
            const Clock::time_point start = Clock::now();
            database.analyzeVSTi();
            database.entryVSTiParameter();
            const Clock::duration time = Clock::now() - start;
            found += static_cast<int>(
                database.getVSTiParameterList(QStringLiteral("Test Instrument")).size());
            return time / ScannedPlugins;
        },
        [&] {
            const Clock::time_point start = Clock::now();
            for (const std::vector<std::string> &command : commands) {
                // To replace a file takes longer than to make one.
                std::remove(command.back().c_str());
                runBare(command);
            }
            return (Clock::now() - start) / ScannedPlugins;
        });
    if (found == 0) {
        state.SkipWithError("the instrument was not found");
    }
}
BENCHMARK(scanPlugin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

// --- The walk ------------------------------------------------------------------------------------

// One in a hundred is a plug-in. They are links to a few files, since the file system takes minutes
// to make so many.
std::string filesOf(int count)
{
    static const QTemporaryDir folder;
    const QString root = folder.filePath(QString::number(count));
    if (QFileInfo::exists(root)) {
        return root.toStdString();
    }
    QByteArray first;
    for (int i = 0; i < count; ++i) {
        const QString within = root + QStringLiteral("/%1").arg(i / FilesPerFolder);
        if (i % FilesPerFolder == 0) {
            QDir().mkpath(within);
        }
        const QString extension = i % 100 == 0 ? QStringLiteral("vst3") : QStringLiteral("wav");
        const QByteArray path =
            QFile::encodeName(within + QStringLiteral("/file %1.%2").arg(i).arg(extension));
        if (i % LinksPerFile == 0) {
            first = path;
            QFile file(QFile::decodeName(path));
            if (!file.open(QIODevice::WriteOnly)) {
                qFatal("no file could be made");
            }
        } else if (::link(first.constData(), path.constData()) != 0) {
            qFatal("no file could be linked");
        }
    }
    return root.toStdString();
}

size_t walk(const std::string &root)
{
    CVSTiPathFinder finder((std::string()));
    std::vector<std::string> found;
    finder.SearchAllFiles({root + '/'}, &found, false);
    return found.size();
}

void walkFolders(benchmark::State &state)
{
    const auto count = static_cast<int>(state.range(0));
    const std::string root = filesOf(count);
    compare(
        state, [&] { benchmark::DoNotOptimize(walk(root)); },
        [&] {
            runBare({"find", "-L", root, "-name", "*.vst3"});
        });
    if (walk(root) != static_cast<size_t>(count) / 100) {
        state.SkipWithError("the walk did not find them all");
    }
}
BENCHMARK(walkFolders)
    ->Arg(MostFiles / 100)
    ->Arg(MostFiles / 10)
    ->Arg(MostFiles)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// --- Growth --------------------------------------------------------------------------------------

// The counter "growth" is how much longer it takes than so many times the smaller part: 1 if it is
// as long as that.
template <class Run>
void compareGrowth(benchmark::State &state, Run run)
{
    const auto factor = static_cast<int>(state.range(0));
    compareTimes(
        state, [&] { return run(MostInstruments); }, [&] { return run(MostInstruments / factor); });
    state.counters["growth"] = state.counters["ratio"] / factor;
}

void enterParameters(benchmark::State &state)
{
    const Machine machine;
    compareGrowth(state, [&](int instruments) {
        machine.forget();
        Database database(machine);
        database.find(machine, instruments);
        const Clock::time_point start = Clock::now();
        database.entryVSTiParameter();
        return Clock::now() - start;
    });
}
BENCHMARK(enterParameters)
    ->Arg(10)
    ->Arg(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2);

void loadDatabase(benchmark::State &state)
{
    const Machine machine;
    const auto written = [&machine](int instruments) {
        QString kept = machine.path("%1.xml").arg(instruments);
        machine.forget();
        Database database(machine);
        database.find(machine, instruments);
        database.entryVSTiParameter();
        QFile::rename(machine.path("data/VSTiDatabase.xml"), kept);
        return kept;
    };
    const QString most = written(MostInstruments);
    const QString few = written(MostInstruments / static_cast<int>(state.range(0)));
    bool isLoaded = true;
    compareGrowth(state, [&](int instruments) {
        machine.forget();
        Database database(machine);
        QFile::link(instruments == MostInstruments ? most : few,
                    machine.path("data/VSTiDatabase.xml"));
        const Clock::time_point start = Clock::now();
        database.selectDAW(DAW);
        const Clock::duration time = Clock::now() - start;
        isLoaded = isLoaded && database.getVSTiParameterList(QStringLiteral("Synth 0")).size() ==
                                   ParametersPerInstrument;
        return time;
    });
    if (!isLoaded) {
        state.SkipWithError("the database was not loaded");
    }
}
BENCHMARK(loadDatabase)
    ->Arg(10)
    ->Arg(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2);

} // namespace
