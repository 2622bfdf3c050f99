// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "app/TerminalProgram.h"
#include "cli/Console.h"
#include "cli/ExitCode.h"
#include "cli/Interruption.h"
#include "cli/TrnRemote.h"
#include "midi/linux/MIDIServiceChoice.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace
{

int signalPipe[2] = {-1, -1};

// A handler and no blocked mask: the MIDI services' libraries have threads of their own, and some
// of those set their mask themselves.
void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(signalPipe[1], &byte, 1);
}

void takeSignals()
{
    struct sigaction action = {};
    action.sa_handler = onSignal;
    // The second Ctrl-C ends the program whatever it is doing.
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // The end of the terminal, unless somebody wants the program to outlive it.
    if (!TerminalProgram::outlivesTerminal()) {
        sigaction(SIGHUP, &action, nullptr);
    }
}

// The program's own messages go through the console; the library's stay away from the terminal.
void doNotOutputMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(doNotOutputMessage);
    // A service that died must not end the program with the next byte written to its socket.
    std::signal(SIGPIPE, SIG_IGN);
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(CorporationName);
    QCoreApplication::setApplicationName(SettingName);
    QCoreApplication::setApplicationVersion(QStringLiteral(TRN_VERSION));

    QFile out;
    QFile err;
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0 || !out.open(stdout, QIODevice::WriteOnly) ||
        !err.open(stderr, QIODevice::WriteOnly)) {
        return 1;
    }
    Console console(&out, &err, isatty(STDERR_FILENO) == 1, isatty(STDOUT_FILENO) == 1);
    if (const auto complaint = TerminalProgram::complaintOfArguments(argc, argv)) {
        console.error(*complaint);
        return static_cast<int>(ExitCode::Usage);
    }
    Interruption interruption(takeSignals);
    QSocketNotifier notifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &interruption, [&] {
        notifier.setEnabled(false);
        interruption.request();
    });
    return trnRemote(
        QCoreApplication::arguments(), &console, &interruption, [](const QString &service) {
            setMIDIService(midiServiceByName(service).value_or(MIDIService::Automatic));
        });
}
