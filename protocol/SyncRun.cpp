// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/SyncRun.h"

#include "app/Timings.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/BulkReceipt.h"

#include <algorithm>

namespace
{

// Coarse enough to cost nothing: a dump takes some 170 ms on a MIDI cable.
constexpr int ProgressPeriodMs = 100;

const ParamAddress CurrentTemplateNumberAddress(Bank::EditBuffer,
                                                ParamAddress::CurrentTemplateNumber, -1, -1);

ParamAddress availableFlagOf(int bank)
{
    return ParamAddress(bank, ParamAddress::BankAvailableFlag, -1, -1);
}

} // namespace

SyncRun::SyncRun(RemoteMemAPI *api, QObject *parent)
    : QObject(parent)
    , m_api(api)
{
    m_timeoutTimer.setSingleShot(true);
    m_timeoutTimer.setTimerType(Qt::PreciseTimer);
    m_lastDumpsTimer.setSingleShot(true);
    connect(&m_timeoutTimer, &QTimer::timeout, this, [this] { fail(Reason::TimedOut); });
    connect(&m_progressTimer, &QTimer::timeout, this, &SyncRun::reportProgress);
    connect(&m_lastDumpsTimer, &QTimer::timeout, this, &SyncRun::receiveSucceeded);
}

SyncRun::~SyncRun()
{
    cancel();
}

bool SyncRun::startReceive(bool editBufferToo, int timeoutMs)
{
    if (isRunning()) {
        return false;
    }
    m_editBufferToo = editBufferToo;
    start(Kind::Receive, ParamAddress::TemplateCount * (editBufferToo ? 2 : 1),
          timeoutMs > 0 ? timeoutMs : timings().receiveRunTimeoutMs);
    m_api->setWaitBulkReceiveDone(true);
    m_api->setReceiveRunning(true);
    connect(
        m_api, &RemoteMemAPI::completeBulkReceive, m_connections.get(),
        [this] { receiveCompleted(); }, Qt::QueuedConnection);
    if (!m_api->sendHardWareDataReq(editBufferToo)) {
        fail(Reason::Refused);
        return false;
    }
    reportProgress();
    return true;
}

bool SyncRun::startSend(bool editBufferOnly, int timeoutMs)
{
    if (isRunning()) {
        return false;
    }
    start(Kind::Send, ParamAddress::TemplateCount * (editBufferOnly ? 1 : 2),
          timeoutMs > 0 ? timeoutMs : timings().sendRunTimeoutMs);
    m_api->setWaitBulkTransmitDone(true);
    connect(
        m_api, &RemoteMemAPI::completeBulkTransmit, m_connections.get(),
        [this] { sendCompleted(); }, Qt::QueuedConnection);
    if (!m_api->sendEditorAllData(editBufferOnly)) {
        fail(Reason::Refused);
        return false;
    }
    reportProgress();
    return true;
}

void SyncRun::start(Kind kind, int total, int timeoutMs)
{
    m_kind = kind;
    m_total = total;
    m_reported = -1;
    m_connections = std::make_unique<QObject>();
    // What an earlier dump left unanswered would be counted as part of this run, which then ended
    // too late or never.
    m_api->clearTransmitQueue();
    m_api->clearTransmitedBulkCounter();
    m_api->clearTransmitedBulkReqCounter();
    m_api->denyToRaiseFileEditFlag();
    m_timeoutTimer.start(timeoutMs);
    m_progressTimer.start(ProgressPeriodMs);
}

// Back to idle, with nothing of the run left that could call here again.
void SyncRun::finish()
{
    m_kind = Kind::None;
    m_connections.reset();
    m_timeoutTimer.stop();
    m_progressTimer.stop();
    m_lastDumpsTimer.stop();
    m_api->setReceiveRunning(false);
    m_api->allowToRaiseFileEditFlag();
}

void SyncRun::cancel()
{
    if (!isRunning()) {
        return;
    }
    if (m_kind == Kind::Receive) {
        m_api->setReceiveRunning(false);
        m_api->revokeReceivedBulk();
    }
    // The queue first: an answer that comes now would release the next group and count it.
    m_api->clearTransmitQueue();
    if (m_kind == Kind::Receive) {
        m_api->clearTransmitedBulkReqCounter();
    } else {
        m_api->clearTransmitedBulkCounter();
    }
    finish();
}

void SyncRun::fail(Reason reason)
{
    cancel();
    Q_EMIT failed(reason);
}

// --- Receiving -----------------------------------------------------------------------------------

// A footer that came twice answered two requests, so the counter may be through while the last
// dumps are still on their way. Footers alone tell: a dump lost in the middle is not waited for.
bool SyncRun::awaitsLastDumps() const
{
    const BulkReceipt receipt = m_api->bulkReceipt();
    const auto last = static_cast<std::size_t>(ParamAddress::TemplateCount - 1);
    return !receipt.finished[m_editBufferToo ? BulkReceipt::EditBuffer : BulkReceipt::Stored][last];
}

void SyncRun::receiveCompleted()
{
    if (awaitsLastDumps()) {
        // Each further footer finds the counter at 0 and completes again. The flag first, so that a
        // footer in between is not missed.
        m_api->setWaitBulkReceiveDone(true);
        if (awaitsLastDumps()) {
            m_lastDumpsTimer.start(timings().lastDumpsTimeoutMs);
            return;
        }
    }
    receiveSucceeded();
}

void SyncRun::receiveSucceeded()
{
    m_api->setWaitBulkReceiveDone(false);
    // Under the deny of the run: neither flag is content.
    m_api->setParam(availableFlagOf(Bank::HardwareStored), 1);
    m_api->setParam(availableFlagOf(Bank::HardwareEditBuffer), 1);
    const int total = m_total;
    finish();
    Q_EMIT progress(total, total);
    Q_EMIT succeeded();
}

void SyncRun::applyReceived()
{
    m_api->setBankAvailableFlag(1, Bank::HardwareStored);
    m_api->setBankAvailableFlag(1, Bank::HardwareEditBuffer);
    m_api->denyToRaiseFileEditFlag();
    {
        // The instrument may select another template at any moment; the number is carried over the
        // copy in one piece.
        const RecursiveMutexLocker lock(m_api->memoryMutex);
        const int current = m_api->getParam(CurrentTemplateNumberAddress).getCurrentValue();
        m_api->copyBank(Bank::HardwareStored, Bank::Stored);
        m_api->copyBank(Bank::HardwareEditBuffer, Bank::EditBuffer);
        m_api->setParam(CurrentTemplateNumberAddress, current);
    }
    m_api->allowToRaiseFileEditFlag();
}

// --- Sending -------------------------------------------------------------------------------------

// Any message without a wait mark that empties the queue reports a completed transmit, also a lone
// parameter change, and a store message behind the dumps does so while dumps are unanswered. The
// run is over when no dump is.
void SyncRun::sendCompleted()
{
    if (m_api->transmitedBulkCount() > 0) {
        // The flag first: whoever then brings the counter to 0 reports it, and if that has happened
        // in between, the flag is taken back here.
        m_api->setWaitBulkTransmitDone(true);
        if (m_api->transmitedBulkCount() > 0 || !m_api->takeWaitBulkTransmitDone()) {
            return;
        }
    }
    const int total = m_total;
    finish();
    Q_EMIT progress(total, total);
    Q_EMIT succeeded();
}

// --- Progress ------------------------------------------------------------------------------------

void SyncRun::reportProgress()
{
    const int outstanding =
        m_kind == Kind::Receive ? m_api->transmitedBulkReqCount() : m_api->transmitedBulkCount();
    const int done = std::clamp(m_total - outstanding, 0, m_total);
    if (isRunning() && done > m_reported) {
        m_reported = done;
        Q_EMIT progress(done, m_total);
    }
}
