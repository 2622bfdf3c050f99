// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Comparison.h"
#include "cli/Console.h"
#include "cli/Document.h"
#include "cli/FileTarget.h"
#include "cli/InstrumentSession.h"
#include "cli/Workspace.h"

// diff compares two files value by value, as they are. verify compares a file with the instrument,
// and only in what the wire can carry.

ExitCode tellDifferences(Console *console, const QStringList &lines)
{
    for (const QString &line : lines) {
        console->line(line);
    }
    if (lines.isEmpty()) {
        return ExitCode::Done;
    }
    console->note(lines.size() == 1 ? QStringLiteral("1 value differs.")
                                    : QStringLiteral("%1 values differ.").arg(lines.size()));
    return ExitCode::Failed;
}

ExitCode runDiff(const CommandContext &context)
{
    QList<Document> documents;
    for (const QString &path : context.arguments.operands) {
        const ExitCode result = FileTarget::load(&context.workspace, &context.console, path);
        if (result != ExitCode::Done) {
            return result;
        }
        documents.append(Document::of(*context.workspace.api(), Bank::EditBuffer, Bank::Stored));
    }
    return tellDifferences(&context.console, differences(documents.at(0), documents.at(1)));
}

ExitCode runVerify(const CommandContext &context)
{
    RemoteMemAPI *api = context.workspace.api();
    ExitCode result =
        FileTarget::load(&context.workspace, &context.console, context.arguments.operands.first());
    if (result != ExitCode::Done) {
        return result;
    }
    const Document expected = Document::of(*api, Bank::EditBuffer, Bank::Stored).asCarried();
    InstrumentSession session(api, &context.console, &context.interruption);
    result = session.open(context.arguments.port);
    if (result == ExitCode::Done) {
        result = session.receive(context.arguments.timeoutMs);
    }
    if (result == ExitCode::Done) {
        result = session.close();
    }
    if (result != ExitCode::Done) {
        return result;
    }
    const Document held = Document::of(*api, Bank::HardwareEditBuffer, Bank::HardwareStored);
    return tellDifferences(&context.console, differences(expected, held));
}
