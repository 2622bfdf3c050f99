// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Document.h"
#include "cli/FileAddress.h"
#include "cli/FileTarget.h"
#include "cli/Interruption.h"
#include "cli/SysExFile.h"
#include "cli/Workspace.h"

#include <QtCore/QFileInfo>

// The commands that work on files alone: get, set, check, export, import.

namespace
{

ExitCode parseAddress(const CommandContext &context, FileAddress *address)
{
    QString error;
    if (!FileAddress::parse(context.arguments.operands.at(1), address, &error)) {
        context.console.error(error);
        return ExitCode::Failed;
    }
    return ExitCode::Done;
}

} // namespace

ExitCode runGet(const CommandContext &context)
{
    FileAddress address;
    ExitCode result = parseAddress(context, &address);
    if (result == ExitCode::Done) {
        result = FileTarget::load(&context.workspace, &context.console,
                                  context.arguments.operands.at(0));
    }
    if (result == ExitCode::Done) {
        const BankData bank =
            context.workspace.api()->getBank(address.address().getParamAddress(0));
        context.console.line(address.value(bank));
    }
    return result;
}

ExitCode runSet(const CommandContext &context)
{
    const QStringList &operands = context.arguments.operands;
    FileAddress address;
    ExitCode result = parseAddress(context, &address);
    if (result == ExitCode::Done) {
        result = FileTarget::load(&context.workspace, &context.console, operands.at(0));
    }
    if (result != ExitCode::Done) {
        return result;
    }
    QString error;
    if (!address.setValue(context.workspace.api(), operands.at(2), &error)) {
        context.console.error(error);
        return ExitCode::Failed;
    }
    context.interruption.listen();
    return FileTarget::save(&context.workspace, &context.console, operands.at(0));
}

ExitCode runCheck(const CommandContext &context)
{
    ExitCode result = ExitCode::Done;
    for (const QString &path : context.arguments.operands) {
        if (FileTarget::load(&context.workspace, &context.console, path) != ExitCode::Done) {
            result = ExitCode::Failed;
        } else {
            context.console.line(path + QStringLiteral(": ok"));
        }
    }
    return result;
}

ExitCode runExport(const CommandContext &context)
{
    const QStringList &operands = context.arguments.operands;
    const ExitCode result = FileTarget::load(&context.workspace, &context.console, operands.at(0));
    if (result != ExitCode::Done) {
        return result;
    }
    if (FileTarget::isSameFile(operands.at(0), operands.at(1))) {
        context.console.error(QStringLiteral("The export would overwrite what is exported."));
        return ExitCode::Usage;
    }
    context.interruption.listen();
    return FileTarget::write(&context.console, operands.at(1),
                             SysExFile::fullSend(context.workspace.api()));
}

ExitCode runImport(const CommandContext &context)
{
    const QString &source = context.arguments.operands.at(0);
    const QString &path = context.arguments.operands.at(1);
    QByteArray bytes;
    ExitCode result = FileTarget::read(&context.console, source, SysExFile::MaximumBytes, &bytes);
    if (result != ExitCode::Done) {
        return result;
    }
    SysExFile::Import import;
    QString error;
    if (!SysExFile::read(bytes, &import, &error)) {
        context.console.note(QStringLiteral("%1: %2").arg(source, error));
        return ExitCode::Failed;
    }
    // What the dumps do not have stays as the file has it, or blank in a new one.
    if (QFileInfo::exists(path)) {
        result = FileTarget::load(&context.workspace, &context.console, path);
        if (result != ExitCode::Done) {
            return result;
        }
    }
    SysExFile::apply(import, context.workspace.api());
    context.interruption.listen();
    return FileTarget::save(&context.workspace, &context.console, path);
}
