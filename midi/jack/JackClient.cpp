// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackClient.h"

#include "app/Locks.h"
#include "midi/MidiPortName.h"
#include "midi/TMIDITransport.h"
#include "midi/jack/CallbackGate.h"
#include "midi/jack/JackPort.h"
#include "midi/jack/PeriodSignal.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QSet>

#include <jack/jack.h>
#include <jack/midiport.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <deque>
#include <functional>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace
{

constexpr const char *ClientName = "TARN-TERN Remote Editor";
constexpr std::size_t MaximumPorts = 64;
// What the editor opens: active sensing, and messages in and out.
constexpr int UsualInputs = 2;
constexpr int UsualOutputs = 1;
// How long the server may take until a connection that was made or cut has effect. It is a period,
// and more under load.
constexpr int GraphTimeoutMs = 1000;
// How long the library's thread that told of the server's end may take to end itself.
constexpr int LongestShutdownMs = 1000;

void saySomethingToNobody(const char *) {}

// A port of ours in the server's graph. It stays registered for the client's whole life, in use or
// not: the library goes through the client's ports on a thread of its own whenever the graph has
// changed, and does not expect that one of them goes meanwhile.
struct OwnPort
{
    jack_port_t *port = nullptr;
    PortDirection direction = PortDirection::Input;
    bool isStale = false; // has a connection that can't be cut
};

// What the server announces, in its order, for the worker.
struct Announcement
{
    enum class Kind { Registered, Unregistered, Connected, Disconnected } kind;
    jack_port_t *port;
    jack_port_t *other; // Connected and Disconnected only
};

struct Job
{
    std::function<void()> function;
    bool isDone = false; // under Connection's mutex
};

QByteArrayList portNames(jack_client_t *client, PortDirection direction)
{
    QByteArrayList names;
    const unsigned long flags =
        direction == PortDirection::Input ? JackPortIsOutput : JackPortIsInput;
    const char **found = jack_get_ports(client, nullptr, JACK_DEFAULT_MIDI_TYPE, flags);
    if (found == nullptr) {
        return names;
    }
    const QByteArray own = QByteArray(jack_get_client_name(client)) + ':';
    for (const char **name = found; *name != nullptr; ++name) {
        const QByteArray fullName(*name);
        if (!fullName.startsWith(own)) {
            names.append(fullName);
        }
    }
    jack_free(found);
    return names;
}

} // namespace

// What the worker thread, the server's callbacks and the client's users share.
//
// m_mutex guards the worker's mail: jobs, announcements, the flags beside them, and the catalogue.
// It is never held while the server is asked, nor with m_slotMutex. m_slotMutex guards who writes
// m_slots, against the withdrawal of a port that is just being opened.
class JackClient::Connection
{
public:
    Connection() = default;
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Thread: users.
    bool call(std::function<void()> function);
    void stop();
    void abandon();
    void endAbandonment();
    bool isAbandoned();
    bool isStuck();
    void withdraw(const std::shared_ptr<JackPort> &port);
    std::atomic<bool> isAlive{false};
    bool hasCatalogue(PortDirection direction);
    QByteArray catalogueName(PortDirection direction, int number);

    // Thread: worker.
    void run();
    bool connect();
    QStringList readPorts(PortDirection direction);
    bool openPort(const std::shared_ptr<JackPort> &port, const QByteArray &fullName);
    void closePort(const std::shared_ptr<JackPort> &port);

private:
    static int onProcess(jack_nframes_t frames, void *self);
    static void onPortRegistration(jack_port_id_t port, int isRegistered, void *self);
    static void onPortConnect(jack_port_id_t a, jack_port_id_t b, int isConnected, void *self);
    static void onShutdown(jack_status_t code, const char *reason, void *self);
    void announce(const Announcement &announcement);

    void disconnect();
    void awaitShutdownThread();
    template <typename IsDone>
    bool waitForAnswer(std::unique_lock<Mutex> &lock, IsDone isDone);
    void takeAnnouncements(const std::vector<Announcement> &announcements);
    bool registerOwnPort(std::size_t place, PortDirection direction);
    std::optional<std::size_t> freePlace(PortDirection direction);
    QByteArrayList connectionsOf(const jack_port_t *own) const;
    void cut(jack_port_t *own, const QByteArrayList &others);
    bool cutConnections(jack_port_t *own, const QByteArray &andThat = {});
    static jack_port_t *otherSide(const Announcement &announcement, const jack_port_t *own);
    bool takeOwnCut(const Announcement &announcement);
    template <typename IsSo>
    bool awaitPeriods(IsSo isSo);
    bool registerPort(const std::shared_ptr<JackPort> &port);
    bool connectPort(JackPort &port, const QByteArray &fullName);
    void losePort(JackPort &port, const QSet<QByteArray> &registered);
    void takeUpPorts(const QSet<QByteArray> &registered);
    QByteArrayList bearersOfName(const JackPort &port) const;

    Mutex m_mutex;
    WaitCondition m_mail;    // for the worker
    WaitCondition m_answers; // for its callers
    std::deque<std::shared_ptr<Job>> m_jobs;
    std::vector<Announcement> m_announcements;
    bool m_isServerGone = false;
    std::atomic<pid_t> m_shutdownThread{0}; // of the library, told of the server's end last
    bool m_isStopping = false;
    bool m_isFinished = false;
    bool m_isStuck = false; // a caller gave up waiting for the job at work
    // When waiting for the server ends, after abandon().
    std::optional<std::chrono::steady_clock::time_point> m_abandonedAt;
    // Full names as read last; none if not read from this server yet.
    std::optional<QByteArrayList> m_inputs;
    std::optional<QByteArrayList> m_outputs;

    CallbackGate m_processGate;
    CallbackGate m_eventGate;
    // By place: who is served there. The same places hold the outputs among m_own, for the process
    // thread, which keeps them empty while nobody uses them.
    std::array<std::atomic<JackPort *>, MaximumPorts> m_slots{};
    std::array<std::atomic<jack_port_t *>, MaximumPorts> m_ownOutputs{};
    Mutex m_slotMutex;
    std::vector<JackPort *> m_withdrawn; // by m_slotMutex; withdrawn before their opening was over

    PeriodSignal m_period; // for awaitPeriods()

    // Worker only.
    jack_client_t *m_client = nullptr;
    std::array<OwnPort, MaximumPorts> m_own{};
    // Cuts of the client's own, which the server is yet to announce: they break nothing.
    std::vector<std::pair<const jack_port_t *, const jack_port_t *>> m_ownCuts;
    std::vector<std::shared_ptr<JackPort>> m_ports;
    std::thread m_thread; // users: constructor and stop()

    friend class JackClient;
};

// ---- Users -------------------------------------------------------------------------------------

std::shared_ptr<JackClient> JackClient::shared()
{
    static Mutex mutex;
    static std::weak_ptr<JackClient> current;
    const MutexLocker lock(mutex);
    std::shared_ptr<JackClient> client = current.lock();
    if (client == nullptr) {
        client.reset(new JackClient);
        current = client;
    }
    return client;
}

JackClient::JackClient()
    : m_connection(std::make_shared<Connection>())
{
    // The library's messages would land on the user's terminal.
    jack_set_error_function(saySomethingToNobody);
    jack_set_info_function(saySomethingToNobody);
    // No signal of the program's is to be handled on the worker or on the threads that the library
    // starts from it; and writing to a dead server must not end the program.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_connection->m_thread = std::thread([connection = m_connection] { connection->run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

JackClient::~JackClient()
{
    m_connection->stop();
}

bool JackClient::isRunning() const
{
    return m_connection->isAlive;
}

bool JackClient::isUnanswered() const
{
    return m_connection->isStuck();
}

bool JackClient::connectToServer()
{
    if (isRunning()) {
        return true;
    }
    Connection *connection = m_connection.get();
    m_connection->call([connection] { connection->connect(); });
    return isRunning();
}

QStringList JackClient::ports(PortDirection direction)
{
    m_connection->endAbandonment();
    const auto names = std::make_shared<QStringList>();
    Connection *connection = m_connection.get();
    const bool isAnswered = m_connection->call(
        [connection, names, direction] { *names = connection->readPorts(direction); });
    return isAnswered ? *names : QStringList();
}

std::shared_ptr<JackPort> JackClient::openInput(int number, TMIDITransport *transport)
{
    return open(PortDirection::Input, number, transport);
}

std::shared_ptr<JackPort> JackClient::openOutput(int number)
{
    return open(PortDirection::Output, number, nullptr);
}

std::shared_ptr<JackPort> JackClient::open(PortDirection direction, int number,
                                           TMIDITransport *transport)
{
    m_connection->endAbandonment();
    if (!m_connection->hasCatalogue(direction)) {
        ports(direction);
    }
    const QByteArray fullName = m_connection->catalogueName(direction, number);
    if (fullName.isEmpty()) {
        return nullptr;
    }
    auto port = std::make_shared<JackPort>(
        direction, splitJackPortName(QString::fromUtf8(fullName)), transport);
    Connection *connection = m_connection.get();
    const auto isOpen = std::make_shared<bool>(false);
    const bool isAnswered = m_connection->call(
        [connection, port, fullName, isOpen] { *isOpen = connection->openPort(port, fullName); });
    if (!isAnswered) {
        // Should the worker come to it after all, it undoes it.
        m_connection->withdraw(port);
        m_connection->call([connection, port] { connection->closePort(port); });
        return nullptr;
    }
    return *isOpen ? port : nullptr;
}

void JackClient::close(const std::shared_ptr<JackPort> &port)
{
    if (port->direction() == PortDirection::Output && isRunning() && !m_connection->isAbandoned()) {
        port->drain();
    }
    m_connection->withdraw(port);
    Connection *connection = m_connection.get();
    m_connection->call([connection, port] { connection->closePort(port); });
}

void JackClient::abandon()
{
    m_connection->abandon();
}

bool JackClient::send(JackPort &port, unsigned char status, const unsigned char *data,
                      std::size_t length)
{
    return isRunning() && port.send(status, data, length);
}

// Has the worker do something, and waits. False if it did not come to its end in time; it may then
// still do so later.
bool JackClient::Connection::call(std::function<void()> function)
{
    const auto job = std::make_shared<Job>();
    job->function = std::move(function);
    std::unique_lock<Mutex> lock(m_mutex);
    m_jobs.push_back(job);
    m_mail.notify_all();
    if (m_isStuck) {
        return false;
    }
    const bool isDone = waitForAnswer(lock, [&job] { return job->isDone; });
    m_isStuck = m_isStuck || !isDone;
    return isDone;
}

void JackClient::Connection::stop()
{
    std::unique_lock<Mutex> lock(m_mutex);
    m_isStopping = true;
    m_mail.notify_all();
    const bool isFinished =
        m_isStuck ? m_isFinished : waitForAnswer(lock, [this] { return m_isFinished; });
    lock.unlock();
    if (isFinished) {
        m_thread.join();
    } else {
        m_thread.detach();
    }
}

template <typename IsDone>
bool JackClient::Connection::waitForAnswer(std::unique_lock<Mutex> &lock, IsDone isDone)
{
    const auto limit =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(RequestTimeoutMs);
    return m_answers.wait_until(lock, std::min(m_abandonedAt.value_or(limit), limit), isDone);
}

void JackClient::Connection::abandon()
{
    const MutexLocker lock(m_mutex);
    if (!m_abandonedAt.has_value()) {
        m_abandonedAt = std::chrono::steady_clock::now() +
                        std::chrono::milliseconds(TMIDITransport::AbandonLimitMs);
    }
}

void JackClient::Connection::endAbandonment()
{
    const MutexLocker lock(m_mutex);
    m_abandonedAt.reset();
}

bool JackClient::Connection::isStuck()
{
    const MutexLocker lock(m_mutex);
    return m_isStuck;
}

bool JackClient::Connection::isAbandoned()
{
    const MutexLocker lock(m_mutex);
    return m_abandonedAt.has_value();
}

// Takes the port from the process thread: when this returns, its transport is no longer called.
void JackClient::Connection::withdraw(const std::shared_ptr<JackPort> &port)
{
    {
        const MutexLocker lock(m_slotMutex);
        for (std::atomic<JackPort *> &slot : m_slots) {
            if (slot == port.get()) {
                slot = nullptr;
            }
        }
        m_withdrawn.push_back(port.get());
    }
    m_processGate.waitUntilEmpty();
}

bool JackClient::Connection::hasCatalogue(PortDirection direction)
{
    const MutexLocker lock(m_mutex);
    return (direction == PortDirection::Input ? m_inputs : m_outputs).has_value();
}

QByteArray JackClient::Connection::catalogueName(PortDirection direction, int number)
{
    const MutexLocker lock(m_mutex);
    return (direction == PortDirection::Input ? m_inputs : m_outputs)
        .value_or(QByteArrayList())
        .value(number - 1);
}

// ---- The server's threads ----------------------------------------------------------------------

int JackClient::Connection::onProcess(jack_nframes_t frames, void *self)
{
    auto *connection = static_cast<Connection *>(self);
    const CallbackGate::Passage passage(connection->m_processGate);
    if (passage) {
        for (std::size_t i = 0; i < MaximumPorts; ++i) {
            if (JackPort *port = connection->m_slots[i]) {
                port->process(frames);
            } else if (jack_port_t *idle = connection->m_ownOutputs[i]) {
                // Otherwise it would say again in each period what it said last.
                jack_midi_clear_buffer(jack_port_get_buffer(idle, frames));
            }
        }
        connection->m_period.periodEnded();
    }
    return 0;
}

void JackClient::Connection::onPortRegistration(jack_port_id_t port, int isRegistered, void *self)
{
    auto *connection = static_cast<Connection *>(self);
    const CallbackGate::Passage passage(connection->m_eventGate);
    if (passage) {
        connection->announce(
            {isRegistered != 0 ? Announcement::Kind::Registered : Announcement::Kind::Unregistered,
             jack_port_by_id(connection->m_client, port), nullptr});
    }
}

void JackClient::Connection::onPortConnect(jack_port_id_t a, jack_port_id_t b, int isConnected,
                                           void *self)
{
    auto *connection = static_cast<Connection *>(self);
    const CallbackGate::Passage passage(connection->m_eventGate);
    if (passage) {
        connection->announce(
            {isConnected != 0 ? Announcement::Kind::Connected : Announcement::Kind::Disconnected,
             jack_port_by_id(connection->m_client, a), jack_port_by_id(connection->m_client, b)});
    }
}

void JackClient::Connection::onShutdown(jack_status_t, const char *, void *self)
{
    auto *connection = static_cast<Connection *>(self);
    const CallbackGate::Passage passage(connection->m_eventGate);
    // A closed gate or not: who closes the client waits for this thread.
    connection->m_shutdownThread = gettid();
    if (passage) {
        connection->isAlive = false;
        connection->m_period.release();
        const MutexLocker lock(connection->m_mutex);
        connection->m_isServerGone = true;
        connection->m_mail.notify_all();
    }
}

void JackClient::Connection::announce(const Announcement &announcement)
{
    const MutexLocker lock(m_mutex);
    m_announcements.push_back(announcement);
    m_mail.notify_all();
}

// ---- The worker --------------------------------------------------------------------------------

void JackClient::Connection::run()
{
    std::unique_lock<Mutex> lock(m_mutex);
    for (;;) {
        m_mail.wait(lock, [this] {
            return m_isStopping || m_isServerGone || !m_announcements.empty() || !m_jobs.empty();
        });
        const std::vector<Announcement> announcements = std::exchange(m_announcements, {});
        const std::shared_ptr<Job> job = m_jobs.empty() ? nullptr : m_jobs.front();
        if (job != nullptr) {
            m_jobs.pop_front();
        }
        m_isServerGone = false;
        const bool isStopping = m_isStopping && job == nullptr;
        lock.unlock();
        if (m_client != nullptr && !isAlive) {
            disconnect();
        }
        if (isStopping) {
            break;
        }
        if (!announcements.empty() && m_client != nullptr) {
            takeAnnouncements(announcements);
        }
        if (job != nullptr) {
            job->function();
        }
        lock.lock();
        if (job != nullptr) {
            job->isDone = true;
            m_isStuck = false;
            m_answers.notify_all();
        }
    }
    disconnect();
    lock.lock();
    m_isFinished = true;
    m_answers.notify_all();
}

bool JackClient::Connection::connect()
{
    if (m_client != nullptr && isAlive) {
        return true;
    }
    disconnect();
    jack_status_t status{};
    jack_client_t *client = jack_client_open(ClientName, JackNoStartServer, &status);
    if (client == nullptr) {
        return false;
    }
    m_client = client;
    jack_set_process_callback(client, onProcess, this);
    jack_set_port_registration_callback(client, onPortRegistration, this);
    jack_set_port_connect_callback(client, onPortConnect, this);
    jack_on_info_shutdown(client, onShutdown, this);
    for (int i = 0; i < UsualInputs + UsualOutputs; ++i) {
        registerOwnPort(static_cast<std::size_t>(i),
                        i < UsualInputs ? PortDirection::Input : PortDirection::Output);
    }
    isAlive = true;
    m_processGate.open();
    m_eventGate.open();
    if (jack_activate(client) != 0) {
        disconnect();
        return false;
    }
    for (const std::shared_ptr<JackPort> &port : m_ports) {
        registerPort(port);
    }
    takeUpPorts({});
    return isAlive;
}

void JackClient::Connection::disconnect()
{
    if (m_client == nullptr) {
        return;
    }
    isAlive = false;
    m_eventGate.close();
    m_processGate.close();
    {
        const MutexLocker lock(m_slotMutex);
        for (std::atomic<JackPort *> &slot : m_slots) {
            slot = nullptr;
        }
    }
    for (std::atomic<jack_port_t *> &output : m_ownOutputs) {
        output = nullptr;
    }
    m_own.fill({});
    m_ownCuts.clear();
    for (const std::shared_ptr<JackPort> &port : m_ports) {
        port->setDisconnected();
        port->graph = {};
    }
    awaitShutdownThread();
    jack_client_close(std::exchange(m_client, nullptr));
    const MutexLocker lock(m_mutex);
    m_announcements.clear();
    m_inputs.reset();
    m_outputs.reset();
}

// A server that ends tells so first, and of each client's leaving then. The library's thread that
// hears it takes a lock of the library for each of them, and ends by itself when nothing more can
// come. Closing the client cancels it wherever it is and takes that lock itself: in the middle of
// a client's leaving it would wait for ever.
void JackClient::Connection::awaitShutdownThread()
{
    const pid_t thread = m_shutdownThread.exchange(0);
    const auto limit =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(LongestShutdownMs);
    while (thread != 0 && tgkill(getpid(), thread, 0) == 0 &&
           std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

QStringList JackClient::Connection::readPorts(PortDirection direction)
{
    QStringList names;
    if (!connect()) {
        return names;
    }
    const QByteArrayList fullNames = portNames(m_client, direction);
    if (!isAlive) {
        return names;
    }
    for (qsizetype i = 0; i < fullNames.size(); ++i) {
        const JackPortName name = splitJackPortName(QString::fromUtf8(fullNames.at(i)));
        names.append(linuxMidiPortName(name.device, name.endpoint, static_cast<int>(i)));
    }
    const MutexLocker lock(m_mutex);
    (direction == PortDirection::Input ? m_inputs : m_outputs) = fullNames;
    return names;
}

bool JackClient::Connection::openPort(const std::shared_ptr<JackPort> &port,
                                      const QByteArray &fullName)
{
    if (m_client == nullptr || !isAlive) {
        return false;
    }
    m_ports.push_back(port);
    // An answer must not be faster than the way for it.
    const auto isCarrying = [&] {
        return jack_port_connected_to(port->graph.port, fullName.constData()) != 0;
    };
    if (registerPort(port) && connectPort(*port, fullName) && awaitPeriods(isCarrying)) {
        // What somebody connected by hand just before has effect by now, too.
        QByteArrayList others = connectionsOf(port->graph.port);
        others.removeAll(fullName);
        cut(port->graph.port, others);
        return true;
    }
    withdraw(port);
    closePort(port);
    return false;
}

// After withdraw().
void JackClient::Connection::closePort(const std::shared_ptr<JackPort> &port)
{
    if (m_client != nullptr && isAlive && port->graph.port != nullptr) {
        // The one of ours, too, if it has no effect yet and isn't among those that have.
        cutConnections(port->graph.port, port->graph.other != nullptr
                                             ? QByteArray(jack_port_name(port->graph.other))
                                             : QByteArray());
    }
    port->setDisconnected();
    port->graph = {};
    std::erase(m_ports, port);
    const MutexLocker lock(m_slotMutex);
    std::erase(m_withdrawn, port.get());
}

// Returns when isSo says so, which is asked after each period, or after GraphTimeoutMs; what it
// said last.
template <typename IsSo>
bool JackClient::Connection::awaitPeriods(IsSo isSo)
{
    PeriodWatch watch(m_period, GraphTimeoutMs);
    bool isIt = isSo();
    for (bool isInTime = true; isInTime && isAlive && !isIt;) {
        isInTime = watch.awaitNext();
        isIt = isSo();
    }
    return isIt;
}

bool JackClient::Connection::registerOwnPort(std::size_t place, PortDirection direction)
{
    const bool isInput = direction == PortDirection::Input;
    const auto number = 1 + std::count_if(m_own.cbegin(), m_own.cend(), [&](const OwnPort &own) {
                            return own.port != nullptr && own.direction == direction;
                        });
    const QByteArray name = (isInput ? QByteArray("in ") : QByteArray("out ")) +
                            QByteArray::number(static_cast<int>(number));
    jack_port_t *port = jack_port_register(m_client, name.constData(), JACK_DEFAULT_MIDI_TYPE,
                                           isInput ? JackPortIsInput : JackPortIsOutput, 0);
    m_own[place] = {port, direction};
    m_ownOutputs[place] = isInput ? nullptr : port;
    return port != nullptr;
}

// Where a port of ours is not in use, or another one is registered. None if there are too many.
std::optional<std::size_t> JackClient::Connection::freePlace(PortDirection direction)
{
    for (std::size_t i = 0; i < MaximumPorts; ++i) {
        if (m_own[i].port == nullptr || m_own[i].direction != direction || m_slots[i] != nullptr) {
            continue;
        }
        // Somebody may have connected it by hand meanwhile. A connection that stays although it was
        // cut would be heard together with the next one: that port is let lie until it has gone.
        if (jack_port_connected(m_own[i].port) == 0 ||
            (!m_own[i].isStale && cutConnections(m_own[i].port))) {
            m_own[i].isStale = false;
            return i;
        }
        m_own[i].isStale = true;
    }
    for (std::size_t i = 0; i < MaximumPorts; ++i) {
        if (m_own[i].port == nullptr) {
            return registerOwnPort(i, direction) ? std::optional(i) : std::nullopt;
        }
    }
    return {};
}

// The ports that a connection of ours has effect with.
QByteArrayList JackClient::Connection::connectionsOf(const jack_port_t *own) const
{
    QByteArrayList names;
    if (const char **others = jack_port_get_all_connections(m_client, own)) {
        for (const char **name = others; *name != nullptr; ++name) {
            names.append(*name);
        }
        jack_free(others);
    }
    return names;
}

void JackClient::Connection::cut(jack_port_t *own, const QByteArrayList &others)
{
    const bool isInput = (jack_port_flags(own) & JackPortIsInput) != 0;
    const char *ownName = jack_port_name(own);
    for (const QByteArray &name : others) {
        const jack_port_t *other = jack_port_by_name(m_client, name.constData());
        const char *source = isInput ? name.constData() : ownName;
        const char *destination = isInput ? ownName : name.constData();
        if (jack_disconnect(m_client, source, destination) == 0 && other != nullptr) {
            m_ownCuts.emplace_back(own, other);
        }
    }
}

// All that have effect, and the one to the port named. Returns when nothing passes over them any
// more; false if they can't be cut.
bool JackClient::Connection::cutConnections(jack_port_t *own, const QByteArray &andThat)
{
    QByteArrayList others = connectionsOf(own);
    if (!andThat.isEmpty() && !others.contains(andThat)) {
        others.append(andThat);
    }
    cut(own, others);
    return awaitPeriods([own] { return jack_port_connected(own) == 0; });
}

// True for an announcement of what cut() has done.
bool JackClient::Connection::takeOwnCut(const Announcement &announcement)
{
    const auto cut = std::find_if(m_ownCuts.cbegin(), m_ownCuts.cend(), [&](const auto &pair) {
        return (pair.first == announcement.port && pair.second == announcement.other) ||
               (pair.first == announcement.other && pair.second == announcement.port);
    });
    if (announcement.kind != Announcement::Kind::Disconnected || cut == m_ownCuts.cend()) {
        return false;
    }
    m_ownCuts.erase(cut);
    return true;
}

// The port that the announcement tells of together with ours; null if it is not about ours.
jack_port_t *JackClient::Connection::otherSide(const Announcement &announcement,
                                               const jack_port_t *own)
{
    if (own == nullptr) {
        return nullptr;
    }
    if (announcement.port == own) {
        return announcement.other;
    }
    return announcement.other == own ? announcement.port : nullptr;
}

bool JackClient::Connection::registerPort(const std::shared_ptr<JackPort> &port)
{
    const std::optional<std::size_t> place = freePlace(port->direction());
    if (!place) {
        return false;
    }
    const MutexLocker lock(m_slotMutex);
    if (std::find(m_withdrawn.begin(), m_withdrawn.end(), port.get()) != m_withdrawn.end()) {
        return false;
    }
    port->graph.port = m_own[*place].port;
    m_slots[*place] = port.get();
    return true;
}

bool JackClient::Connection::connectPort(JackPort &port, const QByteArray &fullName)
{
    const char *own = jack_port_name(port.graph.port);
    const bool isInput = port.direction() == PortDirection::Input;
    const int result = jack_connect(m_client, isInput ? fullName.constData() : own,
                                    isInput ? own : fullName.constData());
    if (result != 0 && result != EEXIST) {
        return false;
    }
    port.graph.other = jack_port_by_name(m_client, fullName.constData());
    port.graph.passedOver.clear();
    port.setConnected();
    return true;
}

QByteArrayList JackClient::Connection::bearersOfName(const JackPort &port) const
{
    QByteArrayList names = portNames(m_client, port.direction());
    names.removeIf([&port](const QByteArray &fullName) {
        return splitJackPortName(QString::fromUtf8(fullName)) != port.boundTo;
    });
    return names;
}

void JackClient::Connection::losePort(JackPort &port, const QSet<QByteArray> &registered)
{
    port.setDisconnected();
    port.graph.other = nullptr;
    const QByteArrayList present = bearersOfName(port);
    port.graph.passedOver = QSet<QByteArray>(present.begin(), present.end()) - registered;
}

void JackClient::Connection::takeAnnouncements(const std::vector<Announcement> &announcements)
{
    QSet<QByteArray> registered;
    for (const Announcement &announcement : announcements) {
        if (announcement.kind == Announcement::Kind::Registered && announcement.port != nullptr) {
            registered.insert(jack_port_name(announcement.port));
        }
    }
    for (const Announcement &announcement : announcements) {
        if (takeOwnCut(announcement)) {
            continue;
        }
        for (const std::shared_ptr<JackPort> &port : m_ports) {
            jack_port_t *other = otherSide(announcement, port->graph.port);
            switch (announcement.kind) {
            case Announcement::Kind::Unregistered:
                if (port->graph.other != nullptr && announcement.port == port->graph.other) {
                    losePort(*port, registered);
                }
                break;
            case Announcement::Kind::Disconnected:
                if (other != nullptr && other == port->graph.other) {
                    losePort(*port, registered);
                }
                break;
            case Announcement::Kind::Connected:
                // By hand, after it was cut by hand.
                if (other != nullptr && port->graph.other == nullptr &&
                    bearersOfName(*port).contains(jack_port_name(other))) {
                    port->graph.other = other;
                    port->graph.passedOver.clear();
                    port->setConnected();
                }
                break;
            case Announcement::Kind::Registered:
                break;
            }
        }
    }
    takeUpPorts(registered);
}

// Connects the open ports whose other side is there again.
void JackClient::Connection::takeUpPorts(const QSet<QByteArray> &registered)
{
    for (const std::shared_ptr<JackPort> &port : m_ports) {
        if (port->graph.port == nullptr || port->graph.other != nullptr) {
            continue;
        }
        const QByteArrayList present = bearersOfName(*port);
        port->graph.passedOver.intersect(QSet<QByteArray>(present.begin(), present.end()));
        port->graph.passedOver.subtract(registered);
        for (const QByteArray &fullName : present) {
            if (!port->graph.passedOver.contains(fullName) && connectPort(*port, fullName)) {
                break;
            }
        }
    }
}
