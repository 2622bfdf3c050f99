// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ArgumentParser.h"
#include "cli/ExitCode.h"

class Console;
class Interruption;
class Workspace;

// What a command works with. Nothing is owned. Thread: GUI, without an event loop running; those
// that need one run their own.
struct CommandContext
{
    const Arguments &arguments;
    Workspace &workspace;
    Console &console;
    Interruption &interruption;
};

// One function for each command; what each does stands at the head of its source. A file appears or
// changes only when the whole command succeeded.
ExitCode runPorts(const CommandContext &context);
ExitCode runReceive(const CommandContext &context);
ExitCode runSend(const CommandContext &context);
ExitCode runVerify(const CommandContext &context);
ExitCode runShow(const CommandContext &context);
ExitCode runGet(const CommandContext &context);
ExitCode runSet(const CommandContext &context);
ExitCode runCheck(const CommandContext &context);
ExitCode runExport(const CommandContext &context);
ExitCode runImport(const CommandContext &context);
ExitCode runDiff(const CommandContext &context);
ExitCode runMonitor(const CommandContext &context);
