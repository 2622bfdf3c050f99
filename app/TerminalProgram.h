// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

#include <csignal>
#include <optional>

// What the programs for the terminal have in common. Thread: GUI, before any other begins.
namespace TerminalProgram
{

// Whether the program is to go on when its terminal goes (as under nohup): it was started with the
// signal of that ignored.
inline bool outlivesTerminal()
{
    struct sigaction hangUp = {};
    sigaction(SIGHUP, nullptr, &hangUp);
    return hangUp.sa_handler == SIG_IGN;
}

// What to say of the first argument with bytes that are no text in the terminal's encoding; nothing
// if all are. Its bytes are lost when it becomes a text: a file of another name would be read or
// written.
inline std::optional<QString> complaintOfArguments(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const QString text = QString::fromLocal8Bit(argv[i]);
        if (text.toLocal8Bit() != argv[i]) {
            return QStringLiteral("The argument \"%1\" holds bytes that are no text.").arg(text);
        }
    }
    return {};
}

} // namespace TerminalProgram
