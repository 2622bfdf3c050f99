// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/InstrumentSession.h"

#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/PortSelection.h"
#include "cli/Progress.h"
#include "memory/RemoteMemAPI.h"
#include "midi/ComuController.h"
#include "midi/TMIDITransport.h"
#include "protocol/BulkReceipt.h"
#include "protocol/SyncRun.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace
{

// How soon a run ends once the service has gone or has refused a message: what is lost is never
// answered.
constexpr int TroubleCheckPeriodMs = 100;
// How long the instrument's ports may be away. A cable that is pulled and put back is taken up
// again within this time, and the run goes on if nothing was to be sent meanwhile.
constexpr int PortReturnLimitMs = 2000;

// "3, 5-7", for template numbers from 0 in ascending order.
QString numberRanges(const QList<int> &numbers)
{
    QStringList ranges;
    for (qsizetype i = 0; i < numbers.size(); ++i) {
        const qsizetype first = i;
        while (i + 1 < numbers.size() && numbers.at(i + 1) == numbers.at(i) + 1) {
            ++i;
        }
        ranges.append(
            first == i ? QString::number(numbers.at(i) + 1)
                       : QStringLiteral("%1-%2").arg(numbers.at(first) + 1).arg(numbers.at(i) + 1));
    }
    return ranges.join(QStringLiteral(", "));
}

QString incompleteDumps(const BulkReceipt &receipt)
{
    QStringList parts;
    const QList<int> stored = receipt.incomplete(BulkReceipt::Stored);
    const QList<int> edit = receipt.incomplete(BulkReceipt::EditBuffer);
    if (!stored.isEmpty()) {
        parts.append(QStringLiteral("stored %1").arg(numberRanges(stored)));
    }
    if (!edit.isEmpty()) {
        parts.append(QStringLiteral("edit buffer %1").arg(numberRanges(edit)));
    }
    return parts.join(QStringLiteral("; "));
}

} // namespace

InstrumentSession::InstrumentSession(RemoteMemAPI *api, Console *console,
                                     Interruption *interruption)
    : m_api(api)
    , m_console(console)
    , m_interruption(interruption)
{
}

InstrumentSession::~InstrumentSession()
{
    m_api->deleteMIDIComunicationRoute();
}

ExitCode InstrumentSession::brokenOff(const QString &why)
{
    m_console->error(why);
    // Nothing is left that would be worth waiting for, least of all from a service that hangs.
    m_api->getComuController()->abandonPorts();
    return ExitCode::BrokenOff;
}

bool InstrumentSession::wasRefused() const
{
    return TMIDITransport::outputFailureCount() != m_failuresBefore;
}

ExitCode InstrumentSession::open(const QString &portName)
{
    m_interruption->listen();
    PortInfo instrument;
    QString error;
    const ExitCode selected = PortSelection(m_api).select(portName, &instrument, &error);
    if (selected != ExitCode::Done) {
        m_console->error(error);
        return selected;
    }
    m_name = instrument.name;
    m_failuresBefore = TMIDITransport::outputFailureCount();
    if (!m_api->createMIDIComunicationRoute(instrument.activeSensePort,
                                            instrument.communicationInPort,
                                            instrument.communicationOutPort)) {
        return brokenOff(QStringLiteral("The ports of \"%1\" could not be opened.").arg(m_name));
    }
    return ExitCode::Done;
}

InstrumentSession::End InstrumentSession::trouble(QElapsedTimer *portAwaySince) const
{
    // The service first: one that has gone refuses everything, which would tell less.
    switch (m_api->getComuController()->portLink()) {
    case TMIDITransport::Link::ServiceGone:
        return End::ServiceGone;
    case TMIDITransport::Link::PortAway:
        if (!portAwaySince->isValid()) {
            portAwaySince->start();
        }
        if (wasRefused() || portAwaySince->hasExpired(PortReturnLimitMs)) {
            return End::PortAway;
        }
        break;
    case TMIDITransport::Link::Connected:
        portAwaySince->invalidate();
        break;
    }
    return wasRefused() ? End::Refused : End::None;
}

ExitCode InstrumentSession::perform(const QString &what,
                                    const std::function<bool(SyncRun *)> &start)
{
    End end = End::None;
    int doneTemplates = 0;
    int allTemplates = 0;
    {
        Progress progress(m_console, what);
        SyncRun run(m_api);
        QEventLoop loop;
        QElapsedTimer portAwaySince;
        const auto endWith = [&](End how) {
            if (end == End::None) {
                end = how;
            }
            run.cancel();
            loop.quit();
        };
        QObject::connect(&run, &SyncRun::progress, &loop, [&](int done, int total) {
            doneTemplates = done;
            allTemplates = total;
            progress.show(done, total);
        });
        QObject::connect(&run, &SyncRun::succeeded, &loop, [&] { endWith(End::Succeeded); });
        QObject::connect(&run, &SyncRun::failed, &loop, [&](SyncRun::Reason reason) {
            const End cause = trouble(&portAwaySince);
            if (cause != End::None) {
                endWith(cause);
            } else if (portAwaySince.isValid()) {
                endWith(End::PortAway);
            } else {
                endWith(reason == SyncRun::Reason::TimedOut ? End::TimedOut : End::Refused);
            }
        });
        QObject::connect(m_interruption, &Interruption::requested, &loop,
                         [&] { endWith(End::Interrupted); });
        QTimer troubleCheck;
        QObject::connect(&troubleCheck, &QTimer::timeout, &loop, [&] {
            const End cause = trouble(&portAwaySince);
            if (cause != End::None) {
                endWith(cause);
            }
        });
        troubleCheck.start(TroubleCheckPeriodMs);
        if (m_interruption->isRequested()) {
            end = End::Interrupted;
        } else if (start(&run)) {
            loop.exec();
        }
    }
    const QString state =
        QStringLiteral("%1 of %2 templates were done").arg(doneTemplates).arg(allTemplates);
    switch (end) {
    case End::Succeeded:
        break;
    case End::TimedOut:
        return brokenOff(
            QStringLiteral("%1 timed out: \"%2\" does not answer; %3.").arg(what, m_name, state));
    case End::Interrupted:
        return brokenOff(QStringLiteral("%1 was interrupted; %2.").arg(what, state));
    case End::ServiceGone:
        return brokenOff(
            QStringLiteral("%1 broke off: the connection to \"%2\" was lost, since the "
                           "MIDI service has gone; %3.")
                .arg(what, m_name, state));
    case End::PortAway:
        return brokenOff(
            QStringLiteral("%1 broke off: the connection to \"%2\" was lost, since its "
                           "ports have gone; %3.")
                .arg(what, m_name, state));
    case End::Refused:
    case End::None:
        return brokenOff(
            QStringLiteral("%1 broke off: the MIDI service refused what was sent to \"%2\"; %3.")
                .arg(what, m_name, state));
    }
    return ExitCode::Done;
}

ExitCode InstrumentSession::receive(int timeoutMs)
{
    // The number comes as a message of its own, which no receipt counts.
    bool isCurrentTemplateTold = false;
    QObject context;
    QObject::connect(
        m_api, &RemoteMemAPI::notifiedCurrentTemplateNumber, &context,
        [&] { isCurrentTemplateTold = true; }, Qt::QueuedConnection);
    const ExitCode result = perform(QStringLiteral("Receiving"), [&](SyncRun *run) {
        return run->startReceive(true, timeoutMs);
    });
    if (result != ExitCode::Done) {
        return result;
    }
    const QString incomplete = incompleteDumps(m_api->bulkReceipt());
    if (!incomplete.isEmpty()) {
        return brokenOff(
            QStringLiteral("Receiving broke off: the dumps of these templates were incomplete: %1.")
                .arg(incomplete));
    }
    if (!isCurrentTemplateTold) {
        return brokenOff(QStringLiteral(
            "Receiving broke off: the instrument did not tell its current template."));
    }
    return ExitCode::Done;
}

void InstrumentSession::applyReceived()
{
    SyncRun(m_api).applyReceived();
}

ExitCode InstrumentSession::send(bool editBufferOnly, int timeoutMs)
{
    return perform(QStringLiteral("Sending"), [&](SyncRun *run) {
        m_hasSent = true;
        return run->startSend(editBufferOnly, timeoutMs);
    });
}

ExitCode InstrumentSession::store()
{
    if (!m_api->storeBank(true) || wasRefused()) {
        return brokenOff(QStringLiteral(
            "The MIDI service refused the store message; the instrument has not stored."));
    }
    return ExitCode::Done;
}

ExitCode InstrumentSession::close()
{
    m_api->deleteMIDIComunicationRoute();
    if (wasRefused()) {
        return brokenOff(
            QStringLiteral("The MIDI service refused what was sent to \"%1\".").arg(m_name));
    }
    return ExitCode::Done;
}
