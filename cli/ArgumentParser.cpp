// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ArgumentParser.h"

#include "memory/ParamAddress.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QHash>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr double LongestTimeoutSeconds = 24 * 60 * 60;
constexpr int AnyNumber = std::numeric_limits<int>::max();

const QString HelpOption = QStringLiteral("help");
const QString MidiOption = QStringLiteral("midi");
const QString PortOption = QStringLiteral("port");
const QString TimeoutOption = QStringLiteral("timeout");
const QString JsonOption = QStringLiteral("json");
const QString TemplateOption = QStringLiteral("template");
const QString EditBufferOnlyOption = QStringLiteral("edit-buffer-only");
const QString StoreOption = QStringLiteral("store");
const QString BackupOption = QStringLiteral("backup");
const QString VerifyOption = QStringLiteral("verify");

// In the order in which help shows them.
const QList<QCommandLineOption> &allOptions()
{
    static const QList<QCommandLineOption> options = {
        {PortOption, QStringLiteral("The instrument of this name; by default the first."),
         QStringLiteral("NAME")},
        {TimeoutOption,
         QStringLiteral("Seconds from the start of a run after which it is broken off; by default "
                        "60 for a receive and 100 for a send."),
         QStringLiteral("S")},
        {JsonOption, QStringLiteral("As JSON.")},
        {TemplateOption, QStringLiteral("Template N alone, 1 to 50, with its knobs."),
         QStringLiteral("N")},
        {EditBufferOnlyOption, QStringLiteral("Sends the edit buffer without the stored bank.")},
        {StoreOption, QStringLiteral("Has the instrument store its edit buffer at the end.")},
        {BackupOption,
         QStringLiteral("Receives what is about to be overwritten, and saves it as a new file."),
         QStringLiteral("FILE")},
        {VerifyOption, QStringLiteral("Reads everything back and compares it.")},
    };
    return options;
}

struct Command
{
    QString name;
    QString operands;
    int fewest;
    int most;
    QStringList options;
    QString purpose;
};

const QHash<QString, QString> &operandMeanings()
{
    static const QHash<QString, QString> meanings = {
        {QStringLiteral("FILE"), QStringLiteral("An editor file.")},
        {QStringLiteral("FILE..."), QStringLiteral("Editor files.")},
        {QStringLiteral("A"), QStringLiteral("An editor file.")},
        {QStringLiteral("B"), QStringLiteral("An editor file.")},
        {QStringLiteral("ADDRESS"), QStringLiteral("As edit/13/knobA1/ccNumber, "
                                                   "stored/1/templateName or "
                                                   "edit/currentTemplateNumber.")},
        {QStringLiteral("VALUE"),
         QStringLiteral("The new value, a number or a text, which may begin with a dash.")},
        {QStringLiteral("IN.syx"), QStringLiteral("A file of dumps, which is read.")},
        {QStringLiteral("OUT.syx"), QStringLiteral("A file of dumps, which is written.")},
    };
    return meanings;
}

const QList<Command> &commands()
{
    static const QList<Command> list = {
        {QStringLiteral("ports"),
         QString(),
         0,
         0,
         {JsonOption},
         QStringLiteral("The instruments among the MIDI ports.")},
        {QStringLiteral("receive"),
         QStringLiteral("FILE"),
         1,
         1,
         {PortOption, TimeoutOption},
         QStringLiteral("Receives the instrument's memory into an editor file.")},
        {QStringLiteral("send"),
         QStringLiteral("FILE"),
         1,
         1,
         {PortOption, TimeoutOption, EditBufferOnlyOption, StoreOption, BackupOption, VerifyOption},
         QStringLiteral("Sends an editor file to the instrument.")},
        {QStringLiteral("show"),
         QStringLiteral("FILE"),
         1,
         1,
         {JsonOption, TemplateOption},
         QStringLiteral("What an editor file holds.")},
        {QStringLiteral("get"),
         QStringLiteral("FILE ADDRESS"),
         2,
         2,
         {},
         QStringLiteral("One value of an editor file, as edit/13/knobA1/ccNumber, "
                        "stored/1/templateName or edit/currentTemplateNumber.")},
        {QStringLiteral("set"),
         QStringLiteral("FILE ADDRESS VALUE"),
         3,
         3,
         {},
         QStringLiteral("Changes one value of an editor file.")},
        {QStringLiteral("check"),
         QStringLiteral("FILE..."),
         1,
         AnyNumber,
         {},
         QStringLiteral("Whether editor files can be opened.")},
        {QStringLiteral("export"),
         QStringLiteral("FILE OUT.syx"),
         2,
         2,
         {},
         QStringLiteral("Writes what a send would transmit.")},
        {QStringLiteral("import"),
         QStringLiteral("IN.syx FILE"),
         2,
         2,
         {},
         QStringLiteral("Takes the dumps of such a file into an editor file.")},
        {QStringLiteral("diff"),
         QStringLiteral("A B"),
         2,
         2,
         {},
         QStringLiteral("What differs between two editor files; ends with 1 if anything does.")},
        {QStringLiteral("verify"),
         QStringLiteral("FILE"),
         1,
         1,
         {PortOption, TimeoutOption},
         QStringLiteral("What differs between an editor file and the instrument; ends with 1 if "
                        "anything does.")},
        {QStringLiteral("monitor"),
         QString(),
         0,
         0,
         {PortOption},
         QStringLiteral("What the instrument sends, in words, until Ctrl-C.")},
    };
    return list;
}

const Command *findCommand(const QString &name)
{
    const auto found = std::find_if(commands().cbegin(), commands().cend(),
                                    [&](const Command &command) { return command.name == name; });
    return found == commands().cend() ? nullptr : &*found;
}

void addCommonOptions(QCommandLineParser *parser)
{
    parser->addOption({{QStringLiteral("h"), HelpOption}, QStringLiteral("Displays this help.")});
    parser->addOption({MidiOption, QStringLiteral("alsa or jack; by default the first there is."),
                       QStringLiteral("SERVICE")});
}

bool takeMidi(const QCommandLineParser &parser, QString *midi, QString *error)
{
    if (!parser.isSet(MidiOption)) {
        return true;
    }
    *midi = parser.value(MidiOption);
    if (*midi != QStringLiteral("alsa") && *midi != QStringLiteral("jack")) {
        *error = QStringLiteral("\"%1\" is no MIDI service; there are alsa and jack.").arg(*midi);
        return false;
    }
    return true;
}

QString overview(const QCommandLineParser &parser)
{
    QString text = parser.helpText() + QStringLiteral("\nCommands:\n");
    for (const Command &command : commands()) {
        text += QStringLiteral("  %1 %2\n      %3\n")
                    .arg(command.name, command.operands, command.purpose);
    }
    return text +
           QStringLiteral("\nTemplates are numbered from 1. Exit codes: 0 done, 1 failed, 2 usage, "
                          "3 no instrument, 4 timed out or broken off.\n");
}

} // namespace

ArgumentParser::Result ArgumentParser::parse(const QStringList &words, Arguments *arguments,
                                             QString *text) const
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Receives, edits and sends the remote-control assignments of the "
                       "instrument. \"trn-remote COMMAND --help\" tells a command's options."));
    // What follows the command is the command's.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    addCommonOptions(&parser);
    const QCommandLineOption version = parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("COMMAND"),
                                 QStringLiteral("One of the commands below."),
                                 QStringLiteral("COMMAND ..."));
    if (!parser.parse(words)) {
        *text = parser.errorText();
        return Result::Wrong;
    }
    if (parser.isSet(HelpOption)) {
        *text = overview(parser);
        return Result::Answer;
    }
    if (parser.isSet(version)) {
        *text = QStringLiteral("trn-remote ") + QCoreApplication::applicationVersion() +
                QLatin1Char('\n');
        return Result::Answer;
    }
    if (!takeMidi(parser, &arguments->midi, text)) {
        return Result::Wrong;
    }
    const QStringList rest = parser.positionalArguments();
    if (rest.isEmpty()) {
        *text = QStringLiteral("A command is needed; \"trn-remote --help\" tells them.");
        return Result::Wrong;
    }
    return parseCommand(rest, arguments, text);
}

ArgumentParser::Result ArgumentParser::parseCommand(const QStringList &words, Arguments *arguments,
                                                    QString *text) const
{
    const Command *command = findCommand(words.first());
    if (command == nullptr) {
        *text = QStringLiteral("\"%1\" is no command; \"trn-remote --help\" tells them.")
                    .arg(words.first());
        return Result::Wrong;
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(command->purpose);
    addCommonOptions(&parser);
    for (const QCommandLineOption &option : allOptions()) {
        if (command->options.contains(option.names().constFirst())) {
            parser.addOption(option);
        }
    }
    // Shown in the help's first line, where the operands stand.
    parser.addPositionalArgument(command->name, QStringLiteral("This command."), command->name);
    const QStringList operands = command->operands.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &operand : operands) {
        parser.addPositionalArgument(operand, operandMeanings().value(operand), operand);
    }
    if (command->name == QStringLiteral("set") && words.size() >= 4) {
        // A value may begin with a dash; options stand in front of it.
        parser.setOptionsAfterPositionalArgumentsMode(
            QCommandLineParser::ParseAsPositionalArguments);
    }
    if (!parser.parse(words)) {
        *text = parser.errorText();
        return Result::Wrong;
    }
    if (parser.isSet(HelpOption)) {
        *text = parser.helpText();
        return Result::Answer;
    }
    arguments->command = command->name;
    arguments->operands = parser.positionalArguments();
    if (arguments->operands.size() < command->fewest ||
        arguments->operands.size() > command->most) {
        *text = QStringLiteral("Too %1 arguments for \"%2\". Usage: trn-remote %2 %3 [options]; "
                               "\"trn-remote %2 --help\" tells them.")
                    .arg(arguments->operands.size() < command->fewest ? QStringLiteral("few")
                                                                      : QStringLiteral("many"),
                         command->name, command->operands)
                    .simplified();
        return Result::Wrong;
    }
    if (!takeMidi(parser, &arguments->midi, text)) {
        return Result::Wrong;
    }
    const auto takes = [&](const QString &option) {
        return command->options.contains(option) && parser.isSet(option);
    };
    arguments->json = takes(JsonOption);
    arguments->editBufferOnly = takes(EditBufferOnlyOption);
    arguments->store = takes(StoreOption);
    arguments->verify = takes(VerifyOption);
    if (takes(PortOption)) {
        arguments->port = parser.value(PortOption);
        // An empty one would stand for the first instrument, which nobody has asked for.
        if (arguments->port.isEmpty()) {
            *text = QStringLiteral("--port needs the name of an instrument.");
            return Result::Wrong;
        }
    }
    if (takes(BackupOption)) {
        arguments->backup = parser.value(BackupOption);
        if (arguments->backup.isEmpty()) {
            *text = QStringLiteral("--backup needs the name of a file.");
            return Result::Wrong;
        }
    }
    if (takes(TimeoutOption)) {
        bool isNumber = false;
        const double seconds = parser.value(TimeoutOption).toDouble(&isNumber);
        if (!isNumber || !(seconds > 0 && seconds <= LongestTimeoutSeconds)) {
            *text = QStringLiteral("--timeout needs seconds, above 0 and up to %1.")
                        .arg(LongestTimeoutSeconds);
            return Result::Wrong;
        }
        arguments->timeoutMs = std::max(1, static_cast<int>(std::lround(seconds * 1000)));
    }
    if (takes(TemplateOption)) {
        bool isNumber = false;
        const int number = parser.value(TemplateOption).toInt(&isNumber);
        if (!isNumber || number < 1 || number > ParamAddress::TemplateCount) {
            *text = QStringLiteral("--template needs a number from 1 to %1.")
                        .arg(ParamAddress::TemplateCount);
            return Result::Wrong;
        }
        arguments->template_ = number - 1;
    }
    return Result::Command;
}
