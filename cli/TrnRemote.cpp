// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/TrnRemote.h"

#include "cli/ArgumentParser.h"
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Workspace.h"

#include <algorithm>

namespace
{

struct NamedCommand
{
    QString name;
    ExitCode (*run)(const CommandContext &context);
};

const QList<NamedCommand> &commandFunctions()
{
    static const QList<NamedCommand> commands = {
        {QStringLiteral("ports"), runPorts},   {QStringLiteral("receive"), runReceive},
        {QStringLiteral("send"), runSend},     {QStringLiteral("show"), runShow},
        {QStringLiteral("get"), runGet},       {QStringLiteral("set"), runSet},
        {QStringLiteral("check"), runCheck},   {QStringLiteral("export"), runExport},
        {QStringLiteral("import"), runImport}, {QStringLiteral("diff"), runDiff},
        {QStringLiteral("verify"), runVerify}, {QStringLiteral("monitor"), runMonitor},
    };
    return commands;
}

} // namespace

int trnRemote(const QStringList &words, Console *console, Interruption *interruption,
              const std::function<void(const QString &service)> &chooseMidi)
{
    Arguments arguments;
    QString text;
    switch (ArgumentParser().parse(words, &arguments, &text)) {
    case ArgumentParser::Result::Answer:
        console->bytes(text.toUtf8());
        return static_cast<int>(ExitCode::Done);
    case ArgumentParser::Result::Wrong:
        console->error(text);
        return static_cast<int>(ExitCode::Usage);
    case ArgumentParser::Result::Command:
        break;
    }
    if (chooseMidi && !arguments.midi.isEmpty()) {
        chooseMidi(arguments.midi);
    }
    const auto command =
        std::find_if(commandFunctions().cbegin(), commandFunctions().cend(),
                     [&](const NamedCommand &named) { return named.name == arguments.command; });
    Q_ASSERT(command != commandFunctions().cend());
    Workspace workspace;
    const ExitCode result = command->run({arguments, workspace, *console, *interruption});
    if (result == ExitCode::Done && console->hasLostOutput()) {
        console->error(QStringLiteral("The output could not be written."));
        return static_cast<int>(ExitCode::Failed);
    }
    return static_cast<int>(result);
}
