// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "instrument/FaultPlan.h"
#include "instrument/InstrumentMemory.h"
#include "instrument/SysExAssembler.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <thread>

// The instrument behind the protocol: five ports each way, active sensing and what is played on the
// first, every message of the protocol on the fifth. Whoever joins it to a MIDI service hands
// received bytes to receive() and takes what it sends from the output.
//
// Where an instrument could behave in more than one way, this one does so:
// - A bulk request, parameter request or change that it cannot read, or that names a place it does
//   not have, gets no answer. So does a footer whose header it did not take, or that names another
//   dump: there is no dump to acknowledge. A dump is acknowledged whether its blocks were good or
//   not; those that were not are not taken, and the template keeps what it had there. A new header
//   begins a new dump. Blocks outside a dump are not taken.
// - A block is taken whole or not at all: a number out of its range refuses it. A number out of
//   range in a change refuses the change; a current template number above 49 is not echoed.
// - A dump goes straight into its template, block by block, and doesn't touch the current template.
// - The edit flag tells that the edit buffer holds what was not stored, whoever put it there. A
//   change by the editor that changes anything raises it; a dump that changes anything leaves it as
//   a comparison of both memories gives it. Either is reported only if the flag moved. An edit at
//   the instrument reports it each time, also when it was up already; choosing another template is
//   no edit.
// - A request for a remote identifier is answered by all nine characters, for any other address by
//   its one byte. Names travel by the character, in order, blanks included.
// - A store, from either side, ends with a report of the lowered flag.
// - A knob that is turned plays the control change of its number, on channel 1 of the first port,
//   while the current template is of the CC type. With the remote type its number means nothing and
//   none is sent. Turning a knob changes no contents.
// - Messages for another model or another device number, and messages on the ports 1 to 4, pass
//   unanswered.
//
// Silent, whether by a fault or by fallSilent(), it sends nothing but goes on to listen; what it
// would have said is lost.
//
// Threads: any, for every function. The output, the log and the change callback are called one at a
// time, in order, without a lock held: on the thread whose call caused them, on another that is
// emitting at that moment, or on the instrument's own thread for sensing and delayed messages. They
// may call anything here; what that causes is emitted after they return. Nobody may be inside a
// call when the instrument is destroyed.
class VirtualInstrument
{
public:
    static constexpr int PortCount = 5;
    static constexpr int SensingPort = 1;
    static constexpr int PlayPort = 1;
    static constexpr int MessagePort = 5;
    static constexpr std::chrono::milliseconds SensingPeriod{300};

    // One whole wire message, 0xF0 to 0xF7 (less if a fault cut it), a control change or 0xFE.
    // Ports are 1 to 5.
    using Output = std::function<void(int port, const QByteArray &bytes)>;
    // One line in words for each message sent or received, without an end of line.
    using Log = std::function<void(const QString &line)>;
    // After the contents changed, by a message, an edit or a store.
    using ChangeCallback = std::function<void()>;

    struct Counters
    {
        // Received and taken, by kind; a duplicate counts twice.
        int headers = 0;
        int blocks = 0;
        int footers = 0;
        int changes = 0;
        int bulkRequests = 0;
        int parameterRequests = 0;
        int stores = 0;
        int storesToFlash = 0;
        // Received and not taken.
        int refusedBlocks = 0;
        int refusedMessages = 0; // of any other kind of this protocol, and unfinished messages
        int ignoredMessages = 0; // foreign ones, and those on another port
        // Sent.
        int acknowledgedDumps = 0;
        int sentMessages = 0; // handed to the output, sensing left out

        bool operator==(const Counters &) const = default;
    };

    VirtualInstrument();
    explicit VirtualInstrument(const InstrumentMemory &memory);
    ~VirtualInstrument();
    VirtualInstrument(const VirtualInstrument &) = delete;
    VirtualInstrument &operator=(const VirtualInstrument &) = delete;

    // Each may be empty. When it returns the former one is not called any more, nor under way,
    // unless it is called from within one of the three.
    void setOutput(Output output);
    void setLog(Log log);
    void setChangeCallback(ChangeCallback callback);

    // Replaces the plan, with its counts. Messages already delayed stay so.
    void setFaultPlan(const FaultPlan &plan);
    // comebackMs 0: until comeBack().
    void fallSilent(int comebackMs = 0);
    void comeBack();
    bool isSilent() const;

    // Raw bytes from a port, 1 to 5, cut anywhere. Other ports are ignored.
    void receive(int port, const QByteArray &raw);

    // Active sensing, the first at once. After stop() none is sent nor under way, unless it is
    // called from within the output.
    void start();
    void stop();

    InstrumentMemory contents() const;
    // Sends nothing. False, and nothing changed, for a number out of its range.
    bool setContents(const InstrumentMemory &memory);
    Counters counters() const;

    // Edits at the instrument's own panel, in the current template of the edit buffer. False, and
    // nothing done, for a knob beyond 0 to 11 or a value out of range. Texts are cut to the field,
    // characters outside ASCII become '?'.
    bool setCCNumber(int knob, int value);
    bool setDisplayFormat(int knob, int value);
    bool setKnobName(int knob, const QString &name);
    bool setRemoteId(int knob, const QString &id);
    void setTemplateName(const QString &name);
    void setVstiName(const QString &name);
    bool setControlType(int value);
    bool selectTemplate(int number);
    void pressStore();
    // The knob, 0 to 11, stands at the value now, 0 to 127. False, and nothing done, for another
    // knob or value.
    bool turnKnob(int knob, int value);

private:
    using Clock = std::chrono::steady_clock;

    struct Event
    {
        enum class Kind { Message, Log, Changed };
        Kind kind = Kind::Message;
        int port = 0;
        QByteArray bytes;
        QString line;
        bool sensing = false;
    };
    // A message that a fault holds back, and those that wait behind it.
    struct Delayed
    {
        Clock::time_point due;
        int port = 0;
        QByteArray bytes;
        bool sensing = false;
    };
    struct Dump
    {
        bool open = false;
        bool changes = false; // the template is not what it was
        DumpType type = DumpType::Stored;
        int templateNumber = 0;
    };

    // All of these are called with m_mutex held.
    void takeIn(int port, const QByteArray &wire);
    MessageTag receivedTag(const QByteArray &wire);
    void handle(const QByteArray &wire);
    void handle(const InstrumentMessage &message);
    void takeBlock(const InstrumentMessage &message);
    void takeFooter(const InstrumentMessage &message);
    void takeChange(const InstrumentMessage &message);
    void answerRequest(const InstrumentMessage &message);
    void sendDump(DumpType type, int templateNumber);
    void sendOwnEdit(const QByteArray &wire);
    void reportEditFlag();
    void setEditFlag(bool raised); // reports it if that is news
    void store();
    bool editByte(int block, int low, int value, int maximum);
    void editText(int block, int low, const QByteArray &padded);
    void send(int port, const QByteArray &wire, const MessageTag &tag);
    void emitMessage(int port, const QByteArray &wire, bool sensing);
    void log(const QString &line);
    void changed();
    void silence(int comebackMs);
    void ensureWorker();
    InstrumentTemplate &current();
    InstrumentBank &bank(DumpType type);

    void drain(std::unique_lock<Mutex> &lock);
    void waitUntilNotInCall(std::unique_lock<Mutex> &lock, bool onlySensing);
    template <typename Edit>
    auto edited(Edit edit);
    void work();
    void doWhatIsDue();
    Clock::time_point nextDue() const;

    mutable Mutex m_mutex; // guards everything below
    WaitCondition m_wake;  // the worker's
    WaitCondition m_quiet; // of whoever waits for a callback to end

    InstrumentMemory m_memory;
    Counters m_counters;
    Dump m_dump;
    MessageTag m_headerSeen; // of the dump on the wire, whatever a fault makes of its messages
    std::array<SysExAssembler, PortCount> m_assemblers;
    std::array<int, PortCount> m_brokenSeen{};
    FaultPlan m_plan;
    bool m_silent = false;
    bool m_comesBack = false;
    Clock::time_point m_comeback;

    std::shared_ptr<const Output> m_output;
    std::shared_ptr<const Log> m_log;
    std::shared_ptr<const ChangeCallback> m_change;

    std::deque<Event> m_outbox;
    bool m_draining = false;
    bool m_inCall = false;
    bool m_inSensing = false;
    std::thread::id m_drainThread;

    std::deque<Delayed> m_delayedOut; // in order of sending
    std::deque<Delayed> m_delayedIn;  // in order of receiving
    bool m_sensing = false;
    Clock::time_point m_nextSensing;
    bool m_quit = false;
    std::thread m_worker; // begun with the first start(), delay or silence with an end
};
