// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/alsa/AlsaClient.h"

#include "midi/MidiPortName.h"
#include "midi/TMIDITransport.h"
#include "midi/alsa/SequencerRoom.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

namespace
{

constexpr const char *ClientName = "TARN-TERN Remote Editor";
// The most that the sequencer grants; a short event takes one, system exclusive one more for every
// 28 bytes.
constexpr std::size_t InputPoolEvents = 2000;
// More than the pool can hold, since an event larger than the buffer could never be read.
constexpr std::size_t InputBufferBytes = 1 << 17;
// For messages other than system exclusive ones.
constexpr std::size_t CodecBytes = 64;
// How many events are taken with the ports locked, so that a sender gets its turn in between.
constexpr int EventsPerTurn = 256;
// More events than the bytes of one sequencer event come to, but for a run of short messages that
// somebody packed into a system exclusive event.
constexpr int EventsPerRun = 16;
// What may wait for room in a transport's ring, and how long until the ring is looked at again.
constexpr std::size_t MaximumWaitingBytes = std::size_t{1} << 22;
constexpr std::size_t WaitingMessageBytes = 40; // what a short one costs apart from its bytes
constexpr int RingRoomPauseMs = 2;
// How long a sender waits for a receiver that has no room.
constexpr std::chrono::milliseconds NoRoomLimit{500};
constexpr std::chrono::milliseconds NoRoomPause{1};
// A driver has a buffer of this size behind the sequencer and drops what does not fit, saying
// nothing to the sender. So no more is given to it than it had time to send on, at the pace that
// the chunks of a large message keep.
constexpr int DriverBufferBytes = TMIDITransport::OutputChunkBytes;
constexpr std::chrono::nanoseconds DriverTimePerByte{
    std::chrono::nanoseconds(std::chrono::milliseconds(TMIDITransport::OutputChunkPauseMs))
        .count() /
    TMIDITransport::OutputChunkBytes};
// What a bounce may come as; the library's header names only the first.
constexpr std::array<int, 3> BounceEvents{SND_SEQ_EVENT_BOUNCE, 150, 151};

void saySomethingToNobody(const char *, int, const char *, int, const char *, ...) {}

} // namespace

std::shared_ptr<AlsaClient> AlsaClient::shared()
{
    static Mutex mutex;
    static std::weak_ptr<AlsaClient> current;
    const MutexLocker lock(mutex);
    std::shared_ptr<AlsaClient> client = current.lock();
    if (client == nullptr) {
        client.reset(new AlsaClient);
        current = client;
    }
    return client;
}

AlsaClient::AlsaClient()
{
    // The library's messages would land on the user's terminal.
    snd_lib_error_set_handler(saySomethingToNobody);
}

AlsaClient::~AlsaClient()
{
    disconnect();
}

AlsaClient::Sequencer AlsaClient::openSequencer()
{
    // Defined here instead of looked up in the machine's configuration, so that nothing is needed
    // but the device.
    static constexpr char Definition[] = "seq.hw { type hw }";
    snd_seq_t *sequencer = nullptr;
    snd_config_t *config = nullptr;
    snd_input_t *text = nullptr;
    if (snd_config_top(&config) < 0) {
        return nullptr;
    }
    if (snd_input_buffer_open(&text, Definition, sizeof(Definition) - 1) >= 0) {
        if (snd_config_load(config, text) < 0 ||
            snd_seq_open_lconf(&sequencer, "hw", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK, config) <
                0) {
            sequencer = nullptr;
        }
        snd_input_close(text);
    }
    snd_config_delete(config);
    if (sequencer != nullptr) {
        snd_seq_set_client_name(sequencer, ClientName);
    }
    return Sequencer(sequencer);
}

bool AlsaClient::connectToSequencer()
{
    if (m_isAlive) {
        return true;
    }
    disconnect();
    Sequencer input = openSequencer();
    Sequencer output = input != nullptr ? openSequencer() : nullptr;
    const auto newCodec = [] {
        snd_midi_event_t *codec = nullptr;
        return Codec(snd_midi_event_new(CodecBytes, &codec) < 0 ? nullptr : codec);
    };
    Codec encoder = newCodec();
    Codec decoder = newCodec();
    const int stopSignal = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (output == nullptr || encoder == nullptr || decoder == nullptr || stopSignal < 0) {
        if (stopSignal >= 0) {
            ::close(stopSignal);
        }
        return false;
    }
    snd_midi_event_no_status(decoder.get(), 1);
    snd_seq_set_client_pool_input(input.get(), InputPoolEvents);
    snd_seq_set_input_buffer_size(input.get(), InputBufferBytes);

    snd_seq_client_info_t *info = nullptr;
    snd_seq_client_info_alloca(&info);
    snd_seq_get_client_info(output.get(), info);
    snd_seq_client_info_set_error_bounce(info, 1);
    snd_seq_set_client_info(output.get(), info);

    const int announcements = snd_seq_create_simple_port(
        input.get(), "announcements", SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_NO_EXPORT,
        SND_SEQ_PORT_TYPE_APPLICATION);
    if (announcements < 0 || snd_seq_connect_from(input.get(), announcements, SND_SEQ_CLIENT_SYSTEM,
                                                  SND_SEQ_PORT_SYSTEM_ANNOUNCE) < 0) {
        ::close(stopSignal);
        return false;
    }

    {
        const MutexLocker outputLock(m_outputMutex);
        const MutexLocker portLock(m_portMutex);
        m_input = std::move(input);
        m_output = std::move(output);
        m_encoder = std::move(encoder);
        m_decoder = std::move(decoder);
        m_announcements = announcements;
        m_stopSignal = stopSignal;
        m_isAlive = true;
        for (const std::shared_ptr<AlsaPort> &port : m_ports) {
            createPort(*port);
        }
        takeUpPorts({});
    }
    // No signal of the program's is to be handled on the receiving thread.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    m_thread = std::thread([this] { run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return true;
}

void AlsaClient::disconnect()
{
    if (m_thread.joinable()) {
        eventfd_write(m_stopSignal, 1);
        m_thread.join();
        ::close(m_stopSignal);
    }
    const MutexLocker outputLock(m_outputMutex);
    const MutexLocker portLock(m_portMutex);
    m_isAlive = false;
    for (const std::shared_ptr<AlsaPort> &port : m_ports) {
        port->own = -1;
        port->other.reset();
        port->passedOver.clear();
    }
    m_input.reset();
    m_output.reset();
    m_inputs.reset();
    m_outputs.reset();
}

QStringList AlsaClient::ports(PortDirection direction)
{
    QStringList names;
    if (!connectToSequencer()) {
        return names;
    }
    const MutexLocker lock(m_portMutex);
    const QList<Found> found = findPorts(direction);
    for (qsizetype i = 0; i < found.size(); ++i) {
        const AlsaPortName &name = found.at(i).name;
        names.append(linuxMidiPortName(name.device, name.endpoint, static_cast<int>(i)));
    }
    (direction == PortDirection::Input ? m_inputs : m_outputs) = found;
    return names;
}

std::shared_ptr<AlsaPort> AlsaClient::openInput(int number, TMIDITransport *transport)
{
    return open(PortDirection::Input, number, transport);
}

std::shared_ptr<AlsaPort> AlsaClient::openOutput(int number)
{
    return open(PortDirection::Output, number, nullptr);
}

std::shared_ptr<AlsaPort> AlsaClient::open(PortDirection direction, int number,
                                           TMIDITransport *transport)
{
    const bool isInput = direction == PortDirection::Input;
    if (!m_isAlive || !(isInput ? m_inputs : m_outputs).has_value()) {
        ports(direction);
    }
    const MutexLocker lock(m_portMutex);
    const std::optional<QList<Found>> &list = isInput ? m_inputs : m_outputs;
    if (!m_isAlive || !list.has_value() || number < 1 || number > list->size()) {
        return nullptr;
    }
    const Found &found = list->at(number - 1);
    auto port = std::make_shared<AlsaPort>();
    port->direction = direction;
    port->boundTo = found.name;
    port->transport = transport;
    if (!createPort(*port)) {
        return nullptr;
    }
    if (!connectPort(*port, found.address)) {
        snd_seq_delete_simple_port((isInput ? m_input : m_output).get(), port->own);
        return nullptr;
    }
    m_ports.push_back(port);
    return port;
}

void AlsaClient::close(const std::shared_ptr<AlsaPort> &port)
{
    const MutexLocker outputLock(m_outputMutex);
    const MutexLocker portLock(m_portMutex);
    std::erase(m_ports, port);
    if (port->own >= 0) {
        const bool isInput = port->direction == PortDirection::Input;
        snd_seq_delete_simple_port((isInput ? m_input : m_output).get(), port->own);
    }
    port->own = -1;
    port->other.reset();
}

bool AlsaClient::isConnected(const AlsaPort &port)
{
    const MutexLocker lock(m_portMutex);
    return port.other.has_value();
}

// ---- Ports -------------------------------------------------------------------------------------

QList<AlsaClient::Found> AlsaClient::findPorts(PortDirection direction) const
{
    QList<Found> found;
    const unsigned needed = direction == PortDirection::Input
                                ? SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ
                                : SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE;
    snd_seq_client_info_t *client = nullptr;
    snd_seq_port_info_t *port = nullptr;
    snd_seq_client_info_alloca(&client);
    snd_seq_port_info_alloca(&port);
    snd_seq_client_info_set_client(client, -1);
    while (snd_seq_query_next_client(m_input.get(), client) >= 0) {
        const int number = snd_seq_client_info_get_client(client);
        if (number == SND_SEQ_CLIENT_SYSTEM || number == snd_seq_client_id(m_input.get()) ||
            number == snd_seq_client_id(m_output.get())) {
            continue;
        }
        snd_seq_port_info_set_client(port, number);
        snd_seq_port_info_set_port(port, -1);
        while (snd_seq_query_next_port(m_input.get(), port) >= 0) {
            const unsigned capabilities = snd_seq_port_info_get_capability(port);
            if ((capabilities & needed) == needed &&
                (capabilities & SND_SEQ_PORT_CAP_NO_EXPORT) == 0) {
                found.append({{number, snd_seq_port_info_get_port(port)},
                              {QString::fromUtf8(snd_seq_client_info_get_name(client)),
                               QString::fromUtf8(snd_seq_port_info_get_name(port))}});
            }
        }
    }
    return found;
}

bool AlsaClient::createPort(AlsaPort &port)
{
    const bool isInput = port.direction == PortDirection::Input;
    // An output is writable, too, but for nobody to connect to: that is how its bounces come in.
    const unsigned capabilities =
        isInput ? SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE
                : SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ | SND_SEQ_PORT_CAP_WRITE;
    port.own = snd_seq_create_simple_port(
        (isInput ? m_input : m_output).get(), isInput ? "in" : "out", capabilities,
        SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
    return port.own >= 0;
}

bool AlsaClient::connectPort(AlsaPort &port, const AlsaAddress &other)
{
    // A driver opens its device for whoever is connected to it.
    const int result = port.direction == PortDirection::Input
                           ? snd_seq_connect_from(m_input.get(), port.own, other.client, other.port)
                           : snd_seq_connect_to(m_output.get(), port.own, other.client, other.port);
    if (result < 0 && result != -EBUSY) {
        return false;
    }
    if (result == -EBUSY) {
        // Connected already by somebody's patch bay, or in somebody else's exclusive use.
        snd_seq_port_subscribe_t *subscription = nullptr;
        snd_seq_port_subscribe_alloca(&subscription);
        const bool isInput = port.direction == PortDirection::Input;
        const snd_seq_addr_t ours{
            static_cast<unsigned char>(snd_seq_client_id((isInput ? m_input : m_output).get())),
            static_cast<unsigned char>(port.own)};
        const snd_seq_addr_t theirs{static_cast<unsigned char>(other.client),
                                    static_cast<unsigned char>(other.port)};
        snd_seq_port_subscribe_set_sender(subscription, isInput ? &theirs : &ours);
        snd_seq_port_subscribe_set_dest(subscription, isInput ? &ours : &theirs);
        if (snd_seq_get_port_subscription(m_input.get(), subscription) < 0) {
            return false;
        }
    }
    snd_seq_client_info_t *client = nullptr;
    snd_seq_client_info_alloca(&client);
    port.isHardware = snd_seq_get_any_client_info(m_input.get(), other.client, client) >= 0 &&
                      snd_seq_client_info_get_type(client) == SND_SEQ_KERNEL_CLIENT &&
                      snd_seq_client_info_get_card(client) >= 0;
    port.other = other;
    port.passedOver.clear();
    return true;
}

bool AlsaClient::isPresent(const AlsaAddress &address) const
{
    snd_seq_port_info_t *port = nullptr;
    snd_seq_port_info_alloca(&port);
    return snd_seq_get_any_port_info(m_input.get(), address.client, address.port, port) >= 0;
}

void AlsaClient::losePort(AlsaPort &port)
{
    port.other.reset();
    port.passedOver.clear();
    const QList<Found> present = findPorts(port.direction);
    for (const Found &found : present) {
        if (found.name == port.boundTo) {
            port.passedOver.insert(found.address.key());
        }
    }
}

// Connects the open ports whose other side is there again. started: the ports that have just come.
void AlsaClient::takeUpPorts(const QSet<int> &started)
{
    for (const std::shared_ptr<AlsaPort> &port : m_ports) {
        if (port->own < 0 || port->other.has_value()) {
            continue;
        }
        port->passedOver.subtract(started);
        const QList<Found> present = findPorts(port->direction);
        for (const Found &found : present) {
            if (found.name == port->boundTo && !port->passedOver.contains(found.address.key()) &&
                connectPort(*port, found.address)) {
                break;
            }
        }
    }
}

// ---- Receiving ---------------------------------------------------------------------------------

void AlsaClient::run()
{
    std::array<pollfd, 2> sources{};
    snd_seq_poll_descriptors(m_input.get(), &sources[0], 1, POLLIN);
    sources[1] = {m_stopSignal, POLLIN, 0};
    Inbox inbox = Inbox::Empty;
    for (;;) {
        const bool isWaiting = handOnWaiting();
        // The library reads ahead: what it holds already the descriptor does not tell of.
        const int timeoutMs = inbox == Inbox::HasMore ? 0 : isWaiting ? RingRoomPauseMs : -1;
        if (poll(sources.data(), sources.size(), timeoutMs) < 0 && errno != EINTR) {
            break;
        }
        if (sources[1].revents != 0) {
            return;
        }
        if ((sources[0].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) {
            break;
        }
        if (inbox == Inbox::HasMore || (sources[0].revents & POLLIN) != 0) {
            inbox = takeEvents();
            if (inbox == Inbox::Gone) {
                break;
            }
        }
    }
    // The sequencer is gone: every send is refused from here on, and the next list tries again.
    m_isAlive = false;
}

AlsaClient::Inbox AlsaClient::takeEvents()
{
    const MutexLocker lock(m_portMutex);
    for (int taken = 0; taken < EventsPerTurn; ++taken) {
        snd_seq_event_t *event = nullptr;
        const int result = snd_seq_event_input(m_input.get(), &event);
        if (result == -EAGAIN) {
            return Inbox::Empty;
        }
        if (result == -ENOSPC) {
            // Events were lost, announcements perhaps among them.
            for (const std::shared_ptr<AlsaPort> &port : m_ports) {
                if (port->other.has_value() && !isPresent(*port->other)) {
                    losePort(*port);
                }
            }
            takeUpPorts({});
            continue;
        }
        if (result == -EINTR) {
            continue;
        }
        if (result < 0 || event == nullptr) {
            return Inbox::Gone;
        }
        if (event->dest.port == m_announcements) {
            takeAnnouncement(*event);
        } else {
            deliver(*event);
        }
    }
    return Inbox::HasMore;
}

void AlsaClient::takeAnnouncement(const snd_seq_event_t &event)
{
    const AlsaAddress address{event.data.addr.client, event.data.addr.port};
    const AlsaAddress sender{event.data.connect.sender.client, event.data.connect.sender.port};
    const AlsaAddress dest{event.data.connect.dest.client, event.data.connect.dest.port};
    switch (event.type) {
    case SND_SEQ_EVENT_PORT_START:
        takeUpPorts({address.key()});
        break;
    case SND_SEQ_EVENT_PORT_CHANGE:
    case SND_SEQ_EVENT_CLIENT_CHANGE:
        // A client may name itself and its ports after it made them.
        takeUpPorts({});
        break;
    case SND_SEQ_EVENT_PORT_EXIT:
    case SND_SEQ_EVENT_CLIENT_EXIT:
    case SND_SEQ_EVENT_PORT_UNSUBSCRIBED:
        for (const std::shared_ptr<AlsaPort> &port : m_ports) {
            if (!port->other.has_value()) {
                continue;
            }
            const bool isInput = port->direction == PortDirection::Input;
            const AlsaAddress own{snd_seq_client_id((isInput ? m_input : m_output).get()),
                                  port->own};
            const bool isLost = event.type == SND_SEQ_EVENT_PORT_EXIT ? address == *port->other
                                : event.type == SND_SEQ_EVENT_CLIENT_EXIT
                                    ? address.client == port->other->client
                                : isInput ? sender == *port->other && dest == own
                                          : sender == own && dest == *port->other;
            if (isLost) {
                losePort(*port);
            }
        }
        break;
    default:
        break;
    }
}

void AlsaClient::deliver(const snd_seq_event_t &event)
{
    const auto port = std::find_if(m_ports.begin(), m_ports.end(), [&event](const auto &candidate) {
        return candidate->direction == PortDirection::Input && candidate->own == event.dest.port;
    });
    if (port == m_ports.end()) {
        return;
    }
    if (event.type == SND_SEQ_EVENT_SYSEX) {
        handOn(**port, static_cast<const unsigned char *>(event.data.ext.ptr), event.data.ext.len);
        return;
    }
    // One event may stand for several messages, as a parameter number and its value do.
    std::array<unsigned char, CodecBytes> bytes{};
    const long length = snd_midi_event_decode(m_decoder.get(), bytes.data(),
                                              static_cast<long>(bytes.size()), &event);
    if (length > 0) {
        handOn(**port, bytes.data(), static_cast<std::size_t>(length));
    }
}

void AlsaClient::handOn(AlsaPort &port, const unsigned char *bytes, std::size_t length)
{
    if (port.waiting.empty() && port.transport->inputRoom() >= EventsPerRun) {
        port.transport->read(static_cast<int>(length), bytes);
    } else if (port.waitingBytes + length + WaitingMessageBytes <= MaximumWaitingBytes) {
        port.waiting.emplace_back(bytes, bytes + length);
        port.waitingBytes += length + WaitingMessageBytes;
    }
}

// True while anything still waits.
bool AlsaClient::handOnWaiting()
{
    const MutexLocker lock(m_portMutex);
    bool isWaiting = false;
    for (const std::shared_ptr<AlsaPort> &port : m_ports) {
        while (!port->waiting.empty() && port->transport->inputRoom() >= EventsPerRun) {
            const std::vector<unsigned char> &bytes = port->waiting.front();
            port->transport->read(static_cast<int>(bytes.size()), bytes.data());
            port->waitingBytes -= bytes.size() + WaitingMessageBytes;
            port->waiting.pop_front();
        }
        isWaiting = isWaiting || !port->waiting.empty();
    }
    return isWaiting;
}

// ---- Sending -----------------------------------------------------------------------------------

bool AlsaClient::send(AlsaPort &port, unsigned char status, const unsigned char *data,
                      std::size_t length)
{
    std::vector<unsigned char> bytes;
    bytes.reserve(length + 1);
    if (status != 0) {
        bytes.push_back(status);
    }
    bytes.insert(bytes.end(), data, data + length);

    using Clock = std::chrono::steady_clock;
    const Clock::time_point begin = Clock::now();
    for (;;) {
        std::chrono::nanoseconds pause = NoRoomPause;
        {
            const MutexLocker outputLock(m_outputMutex);
            int own = -1;
            std::optional<AlsaAddress> other;
            bool isHardware = false;
            {
                const MutexLocker portLock(m_portMutex);
                own = port.own;
                other = port.other;
                isHardware = port.isHardware;
            }
            if (!m_isAlive || own < 0 || !other.has_value()) {
                return false;
            }
            const Clock::time_point now = Clock::now();
            const auto drivenOut = std::max(port.drivenOut, now) +
                                   DriverTimePerByte * static_cast<std::int64_t>(bytes.size());
            const auto tooMuch = drivenOut - now - DriverTimePerByte * DriverBufferBytes;
            if (!isHardware || tooMuch <= tooMuch.zero()) {
                const Outcome outcome = sendBytes(own, *other, bytes);
                if (outcome == Outcome::Sent) {
                    port.drivenOut = drivenOut;
                    port.isBlocked = false;
                    return true;
                }
                if (outcome == Outcome::Refused || port.isBlocked || now - begin >= NoRoomLimit) {
                    port.isBlocked = outcome == Outcome::NoRoom;
                    return false;
                }
            } else {
                pause = tooMuch;
            }
        }
        std::this_thread::sleep_for(pause);
    }
}

AlsaClient::Outcome AlsaClient::sendBytes(int own, const AlsaAddress &other,
                                          const std::vector<unsigned char> &bytes)
{
    snd_seq_event_t event;
    const unsigned char first = bytes.front();
    if (first == 0xF0 || first == 0xF7 || first < 0x80) {
        snd_seq_ev_clear(&event);
        snd_seq_ev_set_sysex(&event, static_cast<unsigned>(bytes.size()),
                             const_cast<unsigned char *>(bytes.data()));
        return sendEvent(&event, own, other);
    }
    snd_midi_event_reset_encode(m_encoder.get());
    std::size_t place = 0;
    while (place < bytes.size()) {
        snd_seq_ev_clear(&event);
        const long taken = snd_midi_event_encode(m_encoder.get(), bytes.data() + place,
                                                 static_cast<long>(bytes.size() - place), &event);
        if (taken <= 0 || event.type == SND_SEQ_EVENT_NONE) {
            return Outcome::Refused; // no whole message
        }
        place += static_cast<std::size_t>(taken);
        const Outcome outcome = sendEvent(&event, own, other);
        if (outcome != Outcome::Sent) {
            return outcome;
        }
    }
    return Outcome::Sent;
}

AlsaClient::Outcome AlsaClient::sendEvent(snd_seq_event_t *event, int own, const AlsaAddress &other)
{
    snd_seq_ev_set_source(event, static_cast<unsigned char>(own));
    snd_seq_ev_set_dest(event, static_cast<unsigned char>(other.client),
                        static_cast<unsigned char>(other.port));
    snd_seq_ev_set_direct(event);
    pollfd descriptor{};
    snd_seq_poll_descriptors(m_output.get(), &descriptor, 1, POLLOUT);
    const std::size_t length = snd_seq_ev_is_variable(event) ? event->data.ext.len : 0;
    if (!sequencerHasRoom(descriptor.fd, other.client, length)) {
        return Outcome::NoRoom;
    }
    const int written = snd_seq_event_output_direct(m_output.get(), event);
    if (written < 0) {
        return written == -EAGAIN || written == -ENOMEM ? Outcome::NoRoom : Outcome::Refused;
    }
    Outcome outcome =
        written == static_cast<int>(snd_seq_event_length(event)) ? Outcome::Sent : Outcome::Refused;
    while (snd_seq_event_input_pending(m_output.get(), 1) > 0) {
        snd_seq_event_t *answer = nullptr;
        if (snd_seq_event_input(m_output.get(), &answer) < 0 || answer == nullptr) {
            break;
        }
        if (std::find(BounceEvents.begin(), BounceEvents.end(), answer->type) !=
            BounceEvents.end()) {
            // If it is away rather than full, its announcement tells before the next try.
            outcome = Outcome::NoRoom;
        }
    }
    return outcome;
}
