// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's window as a user starts it, beside a bare Qt window of its size that is started in
// turn with it: time to the first painted window, resident memory, and what it costs to stand idle.

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <vector>

namespace
{

constexpr int StartTimeoutMs = 60000;
constexpr int IdleSeconds = 60;

struct Started
{
    double milliseconds = 0;
    double residentMiB = 0;
    double idleCpuSeconds = 0;
    bool isGood = false;
};

QString monotonicNanoseconds()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return QString::number(now.tv_sec * 1000000000LL + now.tv_nsec);
}

Started start(const QString &program, int idleSeconds)
{
    // A home of its own: no start finds what another has left.
    const QTemporaryDir home;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
    environment.insert(QStringLiteral("TRN_BENCH_IDLE"), QString::number(idleSeconds));
    environment.insert(QStringLiteral("TRN_BENCH_START"), monotonicNanoseconds());
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, {});
    Started started;
    if (!process.waitForFinished(StartTimeoutMs + idleSeconds * 1000)) {
        return started;
    }
    const QList<QByteArray> lines = process.readAllStandardOutput().trimmed().split('\n');
    const QList<QByteArray> first = lines.value(0).split(' ');
    started.milliseconds = first.value(0).toDouble() / 1e6;
    started.residentMiB = first.value(1).toDouble() / 1024;
    started.idleCpuSeconds = idleSeconds > 0 ? lines.value(2).toDouble() / 1e9 : 0;
    started.isGood = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0 &&
                     first.size() == 2 && (idleSeconds == 0 || lines.size() == 3);
    return started;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void startToFirstPaint(benchmark::State &state)
{
    std::vector<double> editorMs;
    std::vector<double> bareMs;
    std::vector<double> editorMiB;
    std::vector<double> bareMiB;
    for ([[maybe_unused]] auto step : state) {
        const Started bare = start(QStringLiteral("started-bare-window"), 0);
        const Started editor = start(QStringLiteral("started-editor"), 0);
        if (!bare.isGood || !editor.isGood) {
            state.SkipWithError("a window did not start");
            return;
        }
        editorMs.push_back(editor.milliseconds);
        bareMs.push_back(bare.milliseconds);
        editorMiB.push_back(editor.residentMiB);
        bareMiB.push_back(bare.residentMiB);
        state.SetIterationTime(editor.milliseconds / 1000);
    }
    state.counters["bare_ms"] = median(bareMs);
    state.counters["editor_ms"] = median(editorMs);
    state.counters["ratio_of_start"] = median(editorMs) / median(bareMs);
    state.counters["bare_MiB"] = median(bareMiB);
    state.counters["editor_MiB"] = median(editorMiB);
    state.counters["ratio_of_memory"] = median(editorMiB) / median(bareMiB);
}
BENCHMARK(startToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

void idleOnline(benchmark::State &state)
{
    for ([[maybe_unused]] auto step : state) {
        const Started editor = start(QStringLiteral("started-editor"), IdleSeconds);
        if (!editor.isGood) {
            state.SkipWithError("the window did not go online");
            return;
        }
        state.counters["percent_of_a_core"] = 100 * editor.idleCpuSeconds / IdleSeconds;
        state.SetIterationTime(editor.idleCpuSeconds);
    }
}
BENCHMARK(idleOnline)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
