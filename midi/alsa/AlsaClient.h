// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "midi/linux/PortDirection.h"

#include <QtCore/QList>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <alsa/asoundlib.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

class TMIDITransport;

// A sequencer port's place of the moment, and the names that it is known by for good.
struct AlsaAddress
{
    int client = 0;
    int port = 0;

    bool operator==(const AlsaAddress &) const = default;
    // For sets.
    int key() const { return client * 256 + port; }
};
struct AlsaPortName
{
    QString device;   // the sequencer client's name
    QString endpoint; // the port's

    bool operator==(const AlsaPortName &) const = default;
};

// One port of ours, bound to the name of another's port for its whole life, also while that one is
// away. Owner: AlsaClient, shared with the transport that opened it; the fields are AlsaClient's.
struct AlsaPort
{
    PortDirection direction = PortDirection::Input;
    AlsaPortName boundTo;
    TMIDITransport *transport = nullptr; // inputs

    // Under AlsaClient's port mutex.
    int own = -1;                     // our port's number; below 0 without a sequencer
    std::optional<AlsaAddress> other; // the connected one
    bool isHardware = false;          // the other is a driver's, behind a buffer of the kernel's
    // Other ports of the bound name that were there when the connection broke: a second
    // instrument, or one that somebody disconnected by hand. Not to be taken for the returning one.
    QSet<int> passedOver;
    // Received, oldest first, while the transport's ring has no room for it.
    std::deque<std::vector<unsigned char>> waiting;
    std::size_t waitingBytes = 0;

    // The sender's.
    bool isBlocked = false; // the last message found no room for as long as one waits
    std::chrono::steady_clock::time_point
        drivenOut; // when a driver has got rid of what it was sent
};

// The process's connection to the ALSA sequencer, shared by catalogue and transports: it exists
// while any of them holds it.
//
// It is two sequencer clients. One receives, and listens to the system's announcements, on a thread
// of its own. The other sends, to its port directly and through no queue. The sequencer swallows
// what a receiver has no room for and empties its whole inbox, so the room is asked for first; if
// another sender was quicker, the bounce is in the sending client's inbox when the call returns.
//
// Our own inbox would be emptied likewise, and drivers ask nobody. So the receiving thread takes
// out what there is whether or not the transports' readers keep up, and what a transport has no
// room for waits with its port: some 50,000 messages, the newest being dropped beyond that.
//
// Threads: send() any, for one port one at a time; everything else one thread, that of the GUI.
// Locks, outermost first: m_outputMutex, m_portMutex.
class AlsaClient
{
public:
    // Without a sequencer, too; never null.
    static std::shared_ptr<AlsaClient> shared();
    ~AlsaClient();
    AlsaClient(const AlsaClient &) = delete;
    AlsaClient &operator=(const AlsaClient &) = delete;

    bool isRunning() const { return m_isAlive; }
    // False if the sequencer cannot be opened.
    bool connectToSequencer();

    // The names of the others' ports, read anew, by the naming rule; empty without a sequencer. The
    // list read last is the one that port numbers count in.
    QStringList ports(PortDirection direction);

    // number: 1-based. Null if there is no such port or it cannot be had. The transport's read() is
    // called on the receiving thread until close() returns.
    std::shared_ptr<AlsaPort> openInput(int number, TMIDITransport *transport);
    std::shared_ptr<AlsaPort> openOutput(int number);
    void close(const std::shared_ptr<AlsaPort> &port);
    // Whether the port's other side is there.
    bool isConnected(const AlsaPort &port);
    // One message, a status of 0 being none. Waits a little for a receiver that is behind. False if
    // the other side is away or has no room, or the sequencer refuses or cuts.
    bool send(AlsaPort &port, unsigned char status, const unsigned char *data, std::size_t length);

private:
    struct SequencerCloser
    {
        void operator()(snd_seq_t *sequencer) const { snd_seq_close(sequencer); }
    };
    struct CodecCloser
    {
        void operator()(snd_midi_event_t *codec) const { snd_midi_event_free(codec); }
    };
    using Sequencer = std::unique_ptr<snd_seq_t, SequencerCloser>;
    using Codec = std::unique_ptr<snd_midi_event_t, CodecCloser>;
    struct Found
    {
        AlsaAddress address;
        AlsaPortName name;
    };
    enum class Outcome { Sent, NoRoom, Refused };

    AlsaClient();
    static Sequencer openSequencer();
    void disconnect();
    std::shared_ptr<AlsaPort> open(PortDirection direction, int number, TMIDITransport *transport);

    // Under m_portMutex.
    QList<Found> findPorts(PortDirection direction) const;
    bool createPort(AlsaPort &port);
    bool connectPort(AlsaPort &port, const AlsaAddress &other);
    void losePort(AlsaPort &port);
    void takeUpPorts(const QSet<int> &started);
    bool isPresent(const AlsaAddress &address) const;

    // The receiving thread.
    void run();
    enum class Inbox { Empty, HasMore, Gone };
    Inbox takeEvents();
    void takeAnnouncement(const snd_seq_event_t &event);
    void deliver(const snd_seq_event_t &event);
    static void handOn(AlsaPort &port, const unsigned char *bytes, std::size_t length);
    bool handOnWaiting();

    // Under m_outputMutex.
    Outcome sendEvent(snd_seq_event_t *event, int own, const AlsaAddress &other);
    Outcome sendBytes(int own, const AlsaAddress &other, const std::vector<unsigned char> &bytes);

    std::atomic<bool> m_isAlive{false};
    Mutex m_outputMutex;
    Sequencer m_output; // writing and its inbox; replaced under both mutexes
    Codec m_encoder;
    Mutex m_portMutex;
    Sequencer m_input; // reading, queries, and who is connected
    Codec m_decoder;   // the receiving thread's
    int m_announcements = -1;
    std::vector<std::shared_ptr<AlsaPort>> m_ports;
    std::optional<QList<Found>> m_inputs;
    std::optional<QList<Found>> m_outputs;
    std::thread m_thread;
    int m_stopSignal = -1; // an eventfd
};
