// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/MessageWords.h"
#include "cli/PortSelection.h"
#include "cli/Workspace.h"

#include "app/Timings.h"
#include "midi/ComuController.h"
#include "midi/MPEvent.h"
#include "midi/MessageProcessor.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTime>
#include <QtCore/QTimer>

#include <functional>

// Prints what the instrument sends until it is interrupted. Active sensing comes three times a
// second and is told by its beginning, its ceasing and its number at the end.

namespace
{

// Hands each event of a port, as words, to the GUI thread.
class Listener : public MessageProcessor
{
public:
    // tell: called on the context's thread.
    using Tell = std::function<void(bool isSensing, const QString &words)>;

    Listener(int port, QObject *context, Tell tell)
        : MessageProcessor(port, nullptr, 0)
        , m_context(context)
        , m_tell(std::move(tell))
    {
    }

    bool Process(tagMPEVENT &event) override
    {
        const bool isSensing = event.eventType == MPEventActiveSensing;
        const QString words = MessageWords::ofEvent(event);
        QMetaObject::invokeMethod(
            m_context, [tell = m_tell, isSensing, words] { tell(isSensing, words); },
            Qt::QueuedConnection);
        return true;
    }

private:
    QObject *m_context;
    Tell m_tell;
};

class SensingLog
{
public:
    explicit SensingLog(Console *console)
        : m_console(console)
    {
    }

    void heard()
    {
        ++m_count;
        if (!m_isPresent) {
            m_console->line(line(QStringLiteral("active sensing begins")));
        }
        m_isPresent = m_wasHeard = true;
    }
    void periodPassed()
    {
        if (m_isPresent && !m_wasHeard) {
            m_isPresent = false;
            m_console->line(line(QStringLiteral("active sensing has ceased")));
        }
        m_wasHeard = false;
    }
    int count() const { return m_count; }

    static QString line(const QString &words)
    {
        return QTime::currentTime().toString(QStringLiteral("hh:mm:ss.zzz  ")) + words;
    }

private:
    Console *m_console;
    int m_count = 0;
    bool m_isPresent = false;
    bool m_wasHeard = false;
};

} // namespace

ExitCode runMonitor(const CommandContext &context)
{
    RemoteMemAPI *api = context.workspace.api();
    Console &console = context.console;
    context.interruption.listen();
    PortInfo instrument;
    QString error;
    const ExitCode selected =
        PortSelection(api).select(context.arguments.port, &instrument, &error);
    if (selected != ExitCode::Done) {
        console.error(error);
        return selected;
    }
    QEventLoop loop;
    SensingLog sensing(&console);
    int messages = 0;
    const auto tell = [&](bool isSensing, const QString &words) {
        if (isSensing) {
            sensing.heard();
        } else {
            ++messages;
            console.line(SensingLog::line(words));
        }
        if (console.hasLostOutput()) {
            // Nobody reads any more.
            loop.quit();
        }
    };
    Listener communication(instrument.communicationInPort, &loop, tell);
    Listener watch(instrument.activeSensePort, &loop, tell);
    ComuController *ports = api->getComuController();
    const bool isOpen = ports->requestPort(0, instrument.communicationInPort, 0, &communication) &&
                        ports->requestPort(0, instrument.activeSensePort, 0, &watch);
    bool isServiceGone = false;
    if (isOpen) {
        QTimer period;
        QObject::connect(&period, &QTimer::timeout, &loop, [&] {
            sensing.periodPassed();
            // An instrument that is away may come back, and is listened to again.
            isServiceGone = ports->portLink() == TMIDITransport::Link::ServiceGone;
            if (isServiceGone) {
                loop.quit();
            }
        });
        period.start(timings().connectionWatcherPeriodMs);
        QObject::connect(&context.interruption, &Interruption::requested, &loop, &QEventLoop::quit);
        console.note(QStringLiteral("Listening to \"%1\"; Ctrl-C ends it.").arg(instrument.name));
        if (!context.interruption.isRequested()) {
            loop.exec();
        }
    }
    // Nothing was sent that would be worth waiting for, and the listeners are about to go, and
    // their threads with this.
    ports->abandonPorts();
    ports->CloseAllOpendPortAndDeleteAllTransporters();
    if (!isOpen) {
        console.error(
            QStringLiteral("The ports of \"%1\" could not be opened.").arg(instrument.name));
        return ExitCode::BrokenOff;
    }
    if (isServiceGone) {
        console.error(
            QStringLiteral("The connection to \"%1\" was lost, since the MIDI service has "
                           "gone.")
                .arg(instrument.name));
        return ExitCode::BrokenOff;
    }
    console.note(
        QStringLiteral("%1 messages, %2 times active sensing.").arg(messages).arg(sensing.count()));
    return ExitCode::Done;
}
