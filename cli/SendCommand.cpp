// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Comparison.h"
#include "cli/Console.h"
#include "cli/Document.h"
#include "cli/FileTarget.h"
#include "cli/InstrumentSession.h"
#include "cli/Workspace.h"

// Opens the file as the document and sends it. In order: the backup, the send, the store, the
// comparison with what the instrument then holds.
//
// A backup is made in a new file only. A send that broke off is sent again, by the same words and
// from an instrument that is half of one and half of the other: its backup would replace the good
// one.

namespace
{

// Saves what the instrument holds, and leaves the document as it is.
ExitCode backUp(const CommandContext &context, InstrumentSession *session)
{
    RemoteMemAPI *api = context.workspace.api();
    // A copy of the banks, and with them of the current template number, which a receive writes.
    api->denyToRaiseFileEditFlag();
    api->evacuateSpecificBankAndEditBuff(Bank::Stored);
    ExitCode result = session->receive(context.arguments.timeoutMs);
    if (result == ExitCode::Done) {
        session->applyReceived();
        result = FileTarget::save(&context.workspace, &context.console, context.arguments.backup);
    }
    api->restoreSpecificBankAndEditBuff(Bank::Stored);
    api->allowToRaiseFileEditFlag();
    return result;
}

// What a send that ended before its time leaves behind.
void tellMixture(const CommandContext &context)
{
    const QString mixture = QStringLiteral(
        "The instrument may now hold part of what was sent and part of what it held before");
    const QString &backup = context.arguments.backup;
    context.console.error(
        backup.isEmpty() ? mixture + QLatin1Char('.')
                         : QStringLiteral("%1, all of which is in \"%2\".").arg(mixture, backup));
}

// Reads back and compares. What was not sent, and not stored from what was, is not compared.
ExitCode verify(const CommandContext &context, InstrumentSession *session)
{
    RemoteMemAPI *api = context.workspace.api();
    const Document expected = Document::of(*api, Bank::EditBuffer, Bank::Stored).asCarried();
    const ExitCode result = session->receive(context.arguments.timeoutMs);
    if (result != ExitCode::Done) {
        return result;
    }
    const Document held = Document::of(*api, Bank::HardwareEditBuffer, Bank::HardwareStored);
    const bool isWhole = !context.arguments.editBufferOnly || context.arguments.store;
    return tellDifferences(
        &context.console,
        differences(expected, held, isWhole ? DocumentParts::All : DocumentParts::EditBufferOnly));
}

} // namespace

ExitCode runSend(const CommandContext &context)
{
    const Arguments &arguments = context.arguments;
    const QString &path = arguments.operands.first();
    ExitCode result = FileTarget::load(&context.workspace, &context.console, path);
    if (result != ExitCode::Done) {
        return result;
    }
    if (!arguments.backup.isEmpty()) {
        if (FileTarget::isSameFile(path, arguments.backup)) {
            context.console.error(QStringLiteral("The backup would overwrite what is to be sent."));
            return ExitCode::Usage;
        }
        result = FileTarget::checkBackup(&context.console, arguments.backup);
        if (result != ExitCode::Done) {
            return result;
        }
    }
    InstrumentSession session(context.workspace.api(), &context.console, &context.interruption);
    result = session.open(arguments.port);
    if (result == ExitCode::Done && !arguments.backup.isEmpty()) {
        result = backUp(context, &session);
    }
    if (result == ExitCode::Done) {
        result = session.send(arguments.editBufferOnly, arguments.timeoutMs);
        if (result != ExitCode::Done && session.hasSent()) {
            tellMixture(context);
        }
    }
    if (result == ExitCode::Done && arguments.store) {
        result = session.store();
    }
    ExitCode comparison = ExitCode::Done;
    if (result == ExitCode::Done && arguments.verify) {
        comparison = verify(context, &session);
    }
    if (result == ExitCode::Done) {
        // Everything that was handed to the service has gone out after this.
        result = session.close();
    }
    return result == ExitCode::Done ? comparison : result;
}
