// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/FileTarget.h"
#include "cli/InstrumentSession.h"
#include "cli/Workspace.h"

// Receives the instrument's whole memory, makes it the document, and saves that: stored templates,
// edit buffer, current template.

ExitCode runReceive(const CommandContext &context)
{
    const QString &path = context.arguments.operands.first();
    ExitCode result = FileTarget::checkWritable(&context.console, path);
    if (result != ExitCode::Done) {
        return result;
    }
    InstrumentSession session(context.workspace.api(), &context.console, &context.interruption);
    result = session.open(context.arguments.port);
    if (result == ExitCode::Done) {
        result = session.receive(context.arguments.timeoutMs);
    }
    if (result == ExitCode::Done) {
        // Closed first: an edit at the instrument during the saving would be half in the file.
        result = session.close();
    }
    if (result != ExitCode::Done) {
        return result;
    }
    session.applyReceived();
    return FileTarget::save(&context.workspace, &context.console, path);
}
