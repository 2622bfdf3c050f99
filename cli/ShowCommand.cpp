// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Document.h"
#include "cli/FileAddress.h"
#include "cli/FileTarget.h"
#include "cli/Workspace.h"

#include "app/Constants.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

// What a file holds: as JSON all of it, as a table the fifty templates or the knobs of one.

namespace
{

constexpr int NameWidth = 15;

QJsonObject knobObject(const ControllerData &knob, int index)
{
    return {{QStringLiteral("knob"), QLatin1String(LCDSelectAddressUpper[index])},
            {QStringLiteral("displayName"), knob.getDisplayName()},
            {QStringLiteral("ccNumber"), knob.getCCNum().getCurrentValue()},
            {QStringLiteral("displayFormat"), knob.getDispFormat().getCurrentValue()},
            {QStringLiteral("remoteNumber"), knob.getRemoteTagID()}};
}

QJsonObject templateObject(const ControlTemplateData &data, int number)
{
    QJsonArray knobs;
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        knobs.append(knobObject(data.getController(knob), knob));
    }
    return {{QStringLiteral("number"), number + 1},
            {QStringLiteral("templateName"), data.getTemplateName()},
            {QStringLiteral("vstiName"), data.getVSTiName()},
            {QStringLiteral("controlType"), data.getCtrlType().getCurrentValue()},
            {QStringLiteral("knobs"), knobs}};
}

QJsonArray bankArray(const BankData &bank, int only)
{
    QJsonArray templates;
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (only < 0 || only == number) {
            templates.append(templateObject(bank.getTemplate(number), number));
        }
    }
    return templates;
}

// A cell of the table. Control characters must not reach a terminal.
QString cell(const QString &text, int width)
{
    QString shown = text;
    for (QChar &character : shown) {
        if (!character.isPrint()) {
            character = QLatin1Char('?');
        }
    }
    return shown.leftJustified(width);
}

void showBank(Console *console, const BankData &bank, const BankData &other, int current)
{
    console->line(QStringLiteral("  No.  %1  %2  Type")
                      .arg(QStringLiteral("Template").leftJustified(NameWidth),
                           QStringLiteral("Instrument").leftJustified(NameWidth)));
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        const ControlTemplateData &data = bank.getTemplate(number);
        // One replacement for all: a name may hold what looks like a place to fill.
        console->line(
            QStringLiteral("%1 %2%3  %4  %5  %6")
                .arg(number == current ? QStringLiteral(">") : QStringLiteral(" "),
                     QString::number(number + 1).rightJustified(3),
                     data == other.getTemplate(number) ? QStringLiteral(" ") : QStringLiteral("*"),
                     cell(data.getTemplateName(), NameWidth), cell(data.getVSTiName(), NameWidth),
                     QString::number(data.getCtrlType().getCurrentValue())));
    }
}

void showTemplate(Console *console, const ControlTemplateData &data)
{
    console->line(QStringLiteral("  templateName \"%1\", vstiName \"%2\", controlType %3")
                      .arg(cell(data.getTemplateName(), 0), cell(data.getVSTiName(), 0),
                           QString::number(data.getCtrlType().getCurrentValue())));
    console->line(QStringLiteral("  Knob    %1   CC  Format  Remote")
                      .arg(QStringLiteral("Name").leftJustified(NameWidth)));
    for (int index = 0; index < ParamAddress::KnobCount; ++index) {
        const ControllerData knob = data.getController(index);
        console->line(
            QStringLiteral("  %1  %2  %3  %4  %5")
                .arg(QLatin1String(LCDSelectAddressUpper[index]),
                     cell(knob.getDisplayName(), NameWidth),
                     QString::number(knob.getCCNum().getCurrentValue()).rightJustified(3),
                     QString::number(knob.getDispFormat().getCurrentValue()).rightJustified(6),
                     cell(knob.getRemoteTagID(), 0)));
    }
}

} // namespace

ExitCode runShow(const CommandContext &context)
{
    const ExitCode result =
        FileTarget::load(&context.workspace, &context.console, context.arguments.operands.first());
    if (result != ExitCode::Done) {
        return result;
    }
    const Document document =
        Document::of(*context.workspace.api(), Bank::EditBuffer, Bank::Stored);
    const int only = context.arguments.template_;
    const QString current = FileAddress::currentTemplateNumber().value(document.edit);
    Console &console = context.console;
    if (context.arguments.json) {
        const QJsonObject root{{QStringLiteral("currentTemplate"), current.toInt()},
                               {QStringLiteral("edit"), bankArray(document.edit, only)},
                               {QStringLiteral("stored"), bankArray(document.stored, only)}};
        console.bytes(QJsonDocument(root).toJson(QJsonDocument::Indented));
        return ExitCode::Done;
    }
    console.line(QStringLiteral("Current template: %1").arg(current));
    if (only >= 0) {
        console.line(QStringLiteral("Template %1, edit buffer").arg(only + 1));
        showTemplate(&console, document.edit.getTemplate(only));
        console.line(QStringLiteral("Template %1, stored").arg(only + 1));
        showTemplate(&console, document.stored.getTemplate(only));
        return ExitCode::Done;
    }
    console.line(QStringLiteral("Edit buffer (> current, * differs from stored)"));
    showBank(&console, document.edit, document.stored, current.toInt() - 1);
    console.line(QStringLiteral("Stored"));
    showBank(&console, document.stored, document.stored, -1);
    return ExitCode::Done;
}
