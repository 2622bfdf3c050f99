// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/PortSelection.h"
#include "cli/Workspace.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

// Lists the recognised instruments. An empty list is an answer, too, but not of a MIDI service that
// gives none.

ExitCode runPorts(const CommandContext &context)
{
    context.interruption.listen();
    const PortSelection selection(context.workspace.api());
    if (selection.isServiceSilent()) {
        context.console.error(selection.whyNone());
        return ExitCode::BrokenOff;
    }
    if (!selection.whatIsJoined().isEmpty()) {
        context.console.error(selection.whatIsJoined());
    }
    if (context.arguments.json) {
        QJsonArray instruments;
        for (const PortInfo &instrument : selection.instruments()) {
            instruments.append(
                QJsonObject{{QStringLiteral("name"), instrument.name},
                            {QStringLiteral("activeSense"), instrument.activeSensePort},
                            {QStringLiteral("communicationIn"), instrument.communicationInPort},
                            {QStringLiteral("communicationOut"), instrument.communicationOutPort}});
        }
        const QJsonObject root{{QStringLiteral("instruments"), instruments}};
        context.console.bytes(QJsonDocument(root).toJson(QJsonDocument::Indented));
        return ExitCode::Done;
    }
    for (const PortInfo &instrument : selection.instruments()) {
        context.console.line(
            QStringLiteral(
                "%1  (active sensing from input %2, messages from input %3, to output %4)")
                .arg(instrument.name, QString::number(instrument.activeSensePort),
                     QString::number(instrument.communicationInPort),
                     QString::number(instrument.communicationOutPort)));
    }
    if (selection.instruments().isEmpty() && selection.whatIsJoined().isEmpty()) {
        context.console.note(selection.whyNone());
    }
    return ExitCode::Done;
}
