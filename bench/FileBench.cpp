// SPDX-License-Identifier: GPL-3.0-or-later
// Loading and saving an editor file against Qt's parser and printer alone on the same document.

#include "bench/EngineRig.h"
#include "file/EditorFile.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>
#include <QtXml/QDomDocument>

#include <benchmark/benchmark.h>

#include <chrono>

namespace
{

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

QDomDocument parseAlone(const QString &path)
{
    QFile file(path);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, true)) {
        qFatal("the baseline could not parse the file");
    }
    return document;
}

void report(benchmark::State &state, Clock::duration own, Clock::duration alone)
{
    state.counters["dom_alone_ms"] =
        seconds(alone) * 1000 / static_cast<double>(state.iterations());
    state.counters["ratio_to_dom"] = seconds(own) / seconds(alone);
}

void loadFile(benchmark::State &state)
{
    EngineRig rig;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bank.Q7V"));
    QFile file(path);
    QString error;
    if (!EditorFile::save(&rig.api, Bank::Stored, &file, &error)) {
        state.SkipWithError("the file could not be saved");
        return;
    }
    Clock::duration own{0};
    Clock::duration alone{0};
    for ([[maybe_unused]] auto step : state) {
        const Clock::time_point start = Clock::now();
        const bool loaded = EditorFile::load(&rig.api, Bank::Stored, &file, true, &error);
        const Clock::time_point middle = Clock::now();
        {
            const QDomDocument document = parseAlone(path);
            benchmark::DoNotOptimize(document);
        }
        const Clock::time_point end = Clock::now();
        if (!loaded) {
            state.SkipWithError("the file could not be loaded");
            return;
        }
        own += middle - start;
        alone += end - middle;
        state.SetIterationTime(seconds(middle - start));
    }
    report(state, own, alone);
}
BENCHMARK(loadFile)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3);

void saveFile(benchmark::State &state)
{
    EngineRig rig;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bank.Q7V"));
    const QString otherPath = folder.filePath(QStringLiteral("alone.Q7V"));
    QFile file(path);
    QString error;
    EditorFile::save(&rig.api, Bank::Stored, &file, &error);
    const QDomDocument document = parseAlone(path);
    Clock::duration own{0};
    Clock::duration alone{0};
    for ([[maybe_unused]] auto step : state) {
        const Clock::time_point start = Clock::now();
        const bool saved = EditorFile::save(&rig.api, Bank::Stored, &file, &error);
        const Clock::time_point middle = Clock::now();
        {
            QFile other(otherPath);
            if (!other.open(QIODevice::WriteOnly)) {
                state.SkipWithError("the baseline could not be saved");
                return;
            }
            QTextStream stream(&other);
            document.save(stream, 4);
        }
        const Clock::time_point end = Clock::now();
        if (!saved) {
            state.SkipWithError("the file could not be saved");
            return;
        }
        own += middle - start;
        alone += end - middle;
        state.SetIterationTime(seconds(middle - start));
    }
    report(state, own, alone);
}
BENCHMARK(saveFile)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3);

} // namespace
