// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

int main(int argc, char **argv)
{
    // The port catalogue writes settings; not the user's.
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(CorporationName);
    QCoreApplication::setApplicationName(SettingName);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
