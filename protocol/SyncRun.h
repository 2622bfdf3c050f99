// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <memory>

class RemoteMemAPI;

// One synchronisation with the instrument, from the first message to its end: a receive of the
// instrument's memory into the hardware banks 2 and 3, or a send of the editor's. It does what a
// run needs of flags, counters and time-out, and shows nothing; whoever started it decides what
// follows (the next run, applyReceived(), the online state).
//
//   state      event                                      next   signal
//   idle       startReceive, startSend                    run    progress
//   idle       the same, refused by the encoder           idle   failed(Refused)
//   run        everything answered                        idle   succeeded
//   run        the limit for the whole run passes         idle   failed(TimedOut)
//   run        cancel, destruction                        idle   -
//   any        completion of something else, or late      same   -
//
// A failed or cancelled run leaves an empty transmit queue, counters at 0, and bulk reception
// revoked if it was a receive; the hardware banks then hold a mixture of old and new.
//
// Owner: any; the memory outlives it. Thread: GUI, with an event loop. One run at a time on one
// memory. The signals are emitted on the GUI thread, and a slot may start the next run.
class SyncRun : public QObject
{
    Q_OBJECT

public:
    enum class Reason { Refused, TimedOut };
    Q_ENUM(Reason)

    // A time-out that stands for the one of Timings.
    static constexpr int DefaultTimeout = 0;

    explicit SyncRun(RemoteMemAPI *api, QObject *parent = nullptr);
    ~SyncRun() override;

    // False if a run is active, which goes on, or if the encoder refused; failed() has then been
    // emitted. Limits in milliseconds for the whole run.
    // editBufferToo: after the stored templates also the edit buffer's, and the current number.
    bool startReceive(bool editBufferToo, int timeoutMs = DefaultTimeout);
    bool startSend(bool editBufferOnly, int timeoutMs = DefaultTimeout);
    bool isRunning() const { return m_kind != Kind::None; }
    // Breaks the run off without a signal.
    void cancel();

    // Makes what a successful receive of both banks brought the editor's own: bank 2 to the stored
    // bank, bank 3 to the edit buffer. The current template number stays, since the instrument has
    // told it apart from the dumps. Raises no file edit flag.
    void applyReceived();

Q_SIGNALS:
    // Templates that the instrument has answered, of all in the run.
    void progress(int done, int total);
    void succeeded();
    void failed(SyncRun::Reason reason);

private:
    enum class Kind { None, Receive, Send };

    void start(Kind kind, int total, int timeoutMs);
    void finish();
    void fail(Reason reason);
    void receiveCompleted();
    void receiveSucceeded();
    void sendCompleted();
    bool awaitsLastDumps() const;
    void reportProgress();

    RemoteMemAPI *m_api;
    Kind m_kind = Kind::None;
    bool m_editBufferToo = false;
    int m_total = 0;
    int m_reported = -1;
    // Context of the run's connections. A queued call dies with it, so that one that a former run
    // left behind never reaches the next.
    std::unique_ptr<QObject> m_connections;
    QTimer m_timeoutTimer;
    QTimer m_progressTimer;
    QTimer m_lastDumpsTimer;
};
