// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RemoteEditorStyle.h"

#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    // Painting into memory, the same on every machine, with or without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setStyle(new RemoteEditorStyle);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
