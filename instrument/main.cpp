// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PlainText.h"
#include "app/TerminalProgram.h"
#include "instrument/AlsaInstrumentPorts.h"
#include "instrument/InstrumentFile.h"
#include "instrument/JackInstrumentPorts.h"
#include "instrument/VirtualInstrument.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

enum ExitCode { Done = 0, Failed = 1, Usage = 2, NoService = 3 };

// A line of standard error. Of names and files a terminal gets what it only shows.
void tell(const QString &line)
{
    static const bool isTerminal = isatty(STDERR_FILENO) == 1;
    const QString shown = isTerminal ? PlainText::shown(line) : line;
    std::fprintf(stderr, "%s\n", shown.toLocal8Bit().constData());
    std::fflush(stderr);
}

void complain(const QString &text)
{
    tell(QStringLiteral("virtual-instrument: ") + text);
}

void say(const char *line)
{
    std::printf("%s\n", line);
    std::fflush(stdout);
}

// The signals come through a descriptor, so that everything they cause runs on the main thread.
// Called before any thread begins: the others inherit the mask.
int takeSignals()
{
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    // The end of the terminal, unless somebody wants the program to outlive it.
    if (!TerminalProgram::outlivesTerminal()) {
        sigaddset(&set, SIGHUP);
    }
    sigaddset(&set, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    // A service that died must not end us with the next byte written to its socket.
    std::signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

bool dump(const QString &path, const VirtualInstrument &instrument)
{
    QString error;
    if (path.isEmpty() || InstrumentFile::save(path, instrument.contents(), &error)) {
        return true;
    }
    complain(QStringLiteral("%1: %2").arg(path, error));
    return false;
}

// The asked-for service, or without a wish the first that opens.
std::unique_ptr<InstrumentPorts> openPorts(const QString &wish, const QString &name,
                                           const InstrumentPorts::Callbacks &callbacks,
                                           QString *error)
{
    QString why;
    if (wish.isEmpty() || wish == QStringLiteral("alsa")) {
        auto ports = std::make_unique<AlsaInstrumentPorts>();
        if (ports->open(name, callbacks, &why)) {
            return ports;
        }
        *error = why;
    }
    if (wish.isEmpty() || wish == QStringLiteral("jack")) {
        auto ports = std::make_unique<JackInstrumentPorts>();
        if (ports->open(name, callbacks, &why)) {
            return ports;
        }
        *error += (error->isEmpty() ? QString() : QStringLiteral(" ")) + why;
    }
    return nullptr;
}

// Not the way through the service's library: without its server it may wait for ever, and with one
// that wakes up again it may call into what is being destroyed.
[[noreturn]] void leave(int code)
{
    std::fflush(nullptr);
    std::_Exit(code);
}

} // namespace

int main(int argc, char **argv)
{
    const int signalFd = takeSignals();
    const QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("virtual-instrument"));

    if (const auto complaint = TerminalProgram::complaintOfArguments(argc, argv)) {
        complain(*complaint);
        return Usage;
    }
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "A model of the instrument on a MIDI service, until SIGTERM or Ctrl-C. Prints \"ready\" "
        "once "
        "its ports exist; on SIGUSR1 it writes the dump and prints \"dumped\".\n"
        "Exit codes: 0 ended as asked, 1 failed or the service died, 2 usage, 3 no MIDI service."));
    parser.addHelpOption();
    const QCommandLineOption midi(QStringLiteral("midi"),
                                  QStringLiteral("alsa or jack; by default the first there is."),
                                  QStringLiteral("service"));
    const QCommandLineOption name(
        QStringLiteral("name"),
        QStringLiteral("Name of the device in its ports' names. The editor "
                       "takes those with \"Corvan TARN/TERN\" in them."),
        QStringLiteral("DEVICE"), QStringLiteral("Corvan TARN/TERN"));
    const QCommandLineOption state(QStringLiteral("state"),
                                   QStringLiteral("Contents to begin with."),
                                   QStringLiteral("FILE.Q7V"));
    const QCommandLineOption dumpFile(QStringLiteral("dump"),
                                      QStringLiteral("Written with the contents at the end."),
                                      QStringLiteral("FILE.Q7V"));
    const QCommandLineOption log(QStringLiteral("log"),
                                 QStringLiteral("Every message in hex and words on stderr."));
    const QCommandLineOption fault(QStringLiteral("fault"),
                                   QStringLiteral("A fault on demand, any number of times: ") +
                                       FaultPlan::grammar(),
                                   QStringLiteral("FAULT"));
    const QCommandLineOption ready(
        QStringLiteral("ready"),
        QStringLiteral("Accepted for clarity: \"ready\" is printed always."));
    parser.addOptions({midi, name, state, dumpFile, log, fault, ready});
    if (!parser.parse(QCoreApplication::arguments())) {
        complain(parser.errorText());
        return Usage;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        std::printf("%s", parser.helpText().toLocal8Bit().constData());
        return Done;
    }
    const QString wish = parser.value(midi);
    if (!parser.positionalArguments().isEmpty() || parser.value(name).isEmpty() ||
        (parser.isSet(midi) && wish != QStringLiteral("alsa") && wish != QStringLiteral("jack"))) {
        complain(QStringLiteral("Unknown argument; --help tells the options."));
        return Usage;
    }

    QString error;
    FaultPlan plan;
    for (const QString &text : parser.values(fault)) {
        if (!plan.add(text, &error)) {
            complain(error);
            return Usage;
        }
    }
    InstrumentMemory memory;
    if (parser.isSet(state) && !InstrumentFile::load(parser.value(state), &memory, &error)) {
        complain(QStringLiteral("%1: %2").arg(parser.value(state), error));
        return Failed;
    }

    VirtualInstrument instrument(memory);
    instrument.setFaultPlan(plan);
    if (parser.isSet(log)) {
        instrument.setLog(tell);
    }
    InstrumentPorts::Callbacks callbacks;
    callbacks.received = [&](int port, const QByteArray &bytes) {
        instrument.receive(port, bytes);
    };
    callbacks.lost = [](const QString &what) { complain(what); };
    callbacks.died = [&app] { // queued: this is the ports' thread
        QMetaObject::invokeMethod(
            const_cast<QCoreApplication *>(&app), [] { QCoreApplication::exit(Failed); },
            Qt::QueuedConnection);
    };
    const auto ports = openPorts(wish, parser.value(name), callbacks, &error);
    if (!ports) {
        complain(error);
        return NoService;
    }
    instrument.setOutput([&](int port, const QByteArray &bytes) { ports->send(port, bytes); });

    QSocketNotifier notifier(signalFd, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&] {
        signalfd_siginfo info{};
        while (read(signalFd, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            if (info.ssi_signo != SIGUSR1) {
                QCoreApplication::exit(Done);
            } else if (!parser.isSet(dumpFile)) {
                complain(QStringLiteral("There is nowhere to dump to without --dump."));
            } else if (dump(parser.value(dumpFile), instrument)) {
                say("dumped");
            }
        }
    });

    instrument.start();
    say("ready");
    const int result = QCoreApplication::exec();

    if (result == Failed) {
        complain(QStringLiteral("The MIDI service has died."));
        dump(parser.value(dumpFile), instrument);
        leave(Failed);
    }
    // The ports first: that ends the waiting of whoever sends.
    const bool closed = ports->close();
    instrument.stop();
    instrument.setOutput({});
    const int code = dump(parser.value(dumpFile), instrument) ? Done : Failed;
    if (!closed) {
        leave(code);
    }
    return code;
}
