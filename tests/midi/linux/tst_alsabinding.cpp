// SPDX-License-Identifier: GPL-3.0-or-later
// Needs nothing but its shared libraries and the sequencer's device. On a machine without one it
// ends with 77, which ctest takes for skipped; with TRN_REQUIRE_ALSA=1 in the environment, as in
// the virtual machine that has one, it fails instead.
#include "midi/alsa/AlsaClient.h"
#include "midi/alsa/AlsaMIDI.h"
#include "midi/alsa/AlsaMIDIPortAccessor.h"
#include "midi/alsa/SequencerRoom.h"
#include "tests/midi/linux/BindingTools.h"
#include "tests/tools/OwnCopy.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <alsa/asoundlib.h>
#include <poll.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>

namespace
{

constexpr int Input = TMIDIPortAccessor::Input;
constexpr int Output = TMIDIPortAccessor::Output;
constexpr int TakeUpMs = 2000;
// More than the transport's ring holds, and more than the sequencer keeps for one client.
constexpr int LagMessages = 3000;
constexpr int PeerPoolEvents = 2000;
constexpr int NoRoomMs = 20000;

const QString PeerName = QStringLiteral("CORVAN TARN/TERN Port5");
const QString OtherName = QStringLiteral("CORVAN TARN/TERN Port1");

snd_seq_t *openSequencer()
{
    static constexpr char Definition[] = "seq.hw { type hw }";
    snd_seq_t *sequencer = nullptr;
    snd_config_t *config = nullptr;
    snd_input_t *text = nullptr;
    snd_config_top(&config);
    snd_input_buffer_open(&text, Definition, sizeof(Definition) - 1);
    snd_config_load(config, text);
    if (snd_seq_open_lconf(&sequencer, "hw", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK, config) < 0) {
        sequencer = nullptr;
    }
    snd_input_close(text);
    snd_config_delete(config);
    return sequencer;
}

QString tally(qsizetype arrived, qsizetype expected)
{
    return QStringLiteral("%1 of %2 arrived").arg(arrived).arg(expected);
}

int lastPortNumber(TMIDIPortAccessor &accessor, int direction, const QString &name)
{
    int number = accessor.getNumPorts(direction);
    while (number > 0 && accessor.identifierForIndex(direction, number - 1) != name) {
        --number;
    }
    return number;
}

// A plain sequencer client with nothing of the binding in it: an instrument with two ports. What
// comes into the first is kept, and goes out of it again while it echoes.
class Peer
{
public:
    ~Peer() { unplug(); }

    bool plug()
    {
        m_sequencer = openSequencer();
        if (m_sequencer == nullptr) {
            return false;
        }
        snd_seq_set_client_name(m_sequencer, "CORVAN TARN/TERN");
        snd_seq_set_client_pool_input(m_sequencer, PeerPoolEvents);
        snd_seq_set_input_buffer_size(m_sequencer, 1 << 17);
        m_port = addPort("CORVAN TARN/TERN MIDI 5");
        return m_port >= 0 && addPort("Port1") >= 0;
    }
    int addPort(const char *name)
    {
        return snd_seq_create_simple_port(m_sequencer, name,
                                          SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ |
                                              SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE,
                                          SND_SEQ_PORT_TYPE_MIDI_GENERIC |
                                              SND_SEQ_PORT_TYPE_APPLICATION);
    }
    void removePort() { snd_seq_delete_simple_port(m_sequencer, m_port); }
    void unplug()
    {
        stopReading();
        if (m_sequencer != nullptr) {
            snd_seq_close(m_sequencer);
            m_sequencer = nullptr;
        }
    }
    void startReading(bool isEchoing)
    {
        m_isReading = true;
        m_thread = std::thread([this, isEchoing] { run(isEchoing); });
    }
    void stopReading()
    {
        m_isReading = false;
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }
    // As it is, whether or not the other side has room. Without the reading thread, as the next
    // one.
    void send(const QByteArray &message) { sendMessage(message, false); }
    // False if the other side has none for long.
    bool sendWithRoom(const QByteArray &message) { return sendMessage(message, true); }
    void cutConnectionFrom(const char *clientName)
    {
        snd_seq_query_subscribe_t *query = nullptr;
        snd_seq_query_subscribe_alloca(&query);
        const snd_seq_addr_t own{static_cast<unsigned char>(snd_seq_client_id(m_sequencer)),
                                 static_cast<unsigned char>(m_port)};
        snd_seq_query_subscribe_set_root(query, &own);
        snd_seq_query_subscribe_set_type(query, SND_SEQ_QUERY_SUBS_WRITE);
        snd_seq_query_subscribe_set_index(query, 0);
        if (snd_seq_query_port_subscribers(m_sequencer, query) >= 0) {
            const snd_seq_addr_t *sender = snd_seq_query_subscribe_get_addr(query);
            snd_seq_client_info_t *info = nullptr;
            snd_seq_client_info_alloca(&info);
            snd_seq_get_any_client_info(m_sequencer, sender->client, info);
            QCOMPARE(QByteArray(snd_seq_client_info_get_name(info)), QByteArray(clientName));
            QCOMPARE(snd_seq_disconnect_from(m_sequencer, m_port, sender->client, sender->port), 0);
        }
    }
    QList<QByteArray> messages() const
    {
        const MutexLocker lock(m_mutex);
        return ownCopy(m_messages);
    }
    qsizetype count() const
    {
        const MutexLocker lock(m_mutex);
        return m_messages.size();
    }

private:
    bool sendMessage(const QByteArray &message, bool asksForRoom)
    {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        if (message.size() == 3) {
            snd_seq_ev_set_controller(&event, message.at(0) & 0x0F, message.at(1), message.at(2));
        } else {
            snd_seq_ev_set_sysex(&event, static_cast<unsigned>(message.size()),
                                 const_cast<char *>(message.constData()));
        }
        if (asksForRoom && !waitForRoom(event)) {
            return false;
        }
        sendEvent(&event);
        return true;
    }
    // As every sender must that does not want the sequencer to empty the other's inbox; it has no
    // way to tell when there is room again.
    bool waitForRoom(const snd_seq_event_t &event)
    {
        snd_seq_query_subscribe_t *query = nullptr;
        snd_seq_query_subscribe_alloca(&query);
        const snd_seq_addr_t own{static_cast<unsigned char>(snd_seq_client_id(m_sequencer)),
                                 static_cast<unsigned char>(m_port)};
        snd_seq_query_subscribe_set_root(query, &own);
        snd_seq_query_subscribe_set_type(query, SND_SEQ_QUERY_SUBS_READ);
        snd_seq_query_subscribe_set_index(query, 0);
        if (snd_seq_query_port_subscribers(m_sequencer, query) < 0) {
            return true;
        }
        pollfd source{};
        snd_seq_poll_descriptors(m_sequencer, &source, 1, POLLIN);
        const std::size_t length = snd_seq_ev_is_variable(&event) ? event.data.ext.len : 0;
        QElapsedTimer timer;
        timer.start();
        while (
            !sequencerHasRoom(source.fd, snd_seq_query_subscribe_get_addr(query)->client, length)) {
            if (timer.elapsed() > NoRoomMs) {
                return false;
            }
            poll(nullptr, 0, 1);
        }
        return true;
    }
    void sendEvent(snd_seq_event_t *event)
    {
        snd_seq_ev_set_source(event, static_cast<unsigned char>(m_port));
        snd_seq_ev_set_subs(event);
        snd_seq_ev_set_direct(event);
        snd_seq_event_output_direct(m_sequencer, event);
    }
    void run(bool isEchoing)
    {
        pollfd source{};
        snd_seq_poll_descriptors(m_sequencer, &source, 1, POLLIN);
        while (m_isReading) {
            snd_seq_event_t *event = nullptr;
            if (snd_seq_event_input(m_sequencer, &event) < 0) {
                poll(&source, 1, 20);
                continue;
            }
            QByteArray message;
            if (event->type == SND_SEQ_EVENT_SYSEX) {
                message = QByteArray(static_cast<const char *>(event->data.ext.ptr),
                                     static_cast<qsizetype>(event->data.ext.len));
            } else if (event->type == SND_SEQ_EVENT_CONTROLLER) {
                message.append(static_cast<char>(0xB0 | event->data.control.channel));
                message.append(static_cast<char>(event->data.control.param));
                message.append(static_cast<char>(event->data.control.value));
            } else {
                continue;
            }
            if (isEchoing && waitForRoom(*event)) {
                sendEvent(event);
            }
            const MutexLocker lock(m_mutex);
            m_messages.append(message);
        }
    }

    snd_seq_t *m_sequencer = nullptr;
    int m_port = -1;
    std::atomic<bool> m_isReading{false};
    std::thread m_thread;
    mutable Mutex m_mutex;
    QList<QByteArray> m_messages;
};

} // namespace

class TestAlsaBinding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void portsBearTheirClientsNamesAndOursAreNotListed();
    void aPortThatDoesNotExistIsRefused();
    void burstsGoOutAndComeBackWholeAndInOrder_data();
    void burstsGoOutAndComeBackWholeAndInOrder();
    void aBurstFromTheOtherSideArrivesWhole_data();
    void aBurstFromTheOtherSideArrivesWhole();
    void aReaderThatLagsLosesNothingAndHoldsUpNobody_data();
    void aReaderThatLagsLosesNothingAndHoldsUpNobody();
    void anInputClosesWithItsReaderBehind();
    void aLargeMessageGoesOutInChunksWithAPause();
    void nothingToSendAndHalfAMessageAreRefused();
    void withoutRoomSendingIsRefusedAndWhatWasTakenArrives();
    void closingAnInputWhileItReceivesIsSafe();
    void anUnpluggedDeviceRefusesAndIsTakenUpWhenItReturns();
    void aPortThatAloneGoesIsRefusedAndTakenUpWhenItReturns();
    void anotherDeviceOfTheSameNameIsNotTakenForTheReturningOne();
    void aConnectionCutByHandRefuses();
    void nothingIsSaid();
};

void TestAlsaBinding::portsBearTheirClientsNamesAndOursAreNotListed()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI transport;
    const int inputs = accessor.getNumPorts(Input);
    const int outputs = accessor.getNumPorts(Output);
    QVERIFY(inputs >= 2);
    const int number = portNumber(accessor, Input, PeerName);
    QVERIFY(number > 0);
    QCOMPARE(portNumber(accessor, Input, OtherName), number + 1);
    QVERIFY(portNumber(accessor, Output, PeerName) > 0);
    QVERIFY(transport.openInput(number, &collector, 0));
    QVERIFY(transport.openOutput(portNumber(accessor, Output, PeerName)));
    QCOMPARE(accessor.getNumPorts(Input), inputs);
    QCOMPARE(accessor.getNumPorts(Output), outputs);
    for (int i = 0; i < inputs; ++i) {
        QVERIFY(!accessor.identifierForIndex(Input, i).startsWith(QStringLiteral("System")));
    }
    QCOMPARE(accessor.identifierForIndex(Input, inputs), QString());
}

void TestAlsaBinding::aPortThatDoesNotExistIsRefused()
{
    Peer peer;
    QVERIFY(peer.plug());
    Collector collector;
    AlsaMIDI transport;
    for (const int number : {-1, 0, 1000}) {
        QVERIFY(!transport.openInput(number, &collector, 0));
        QVERIFY(!transport.openOutput(number));
    }
    QVERIFY(transport.openOutput(1));
}

void TestAlsaBinding::burstsGoOutAndComeBackWholeAndInOrder_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    QTest::newRow("1000 control changes") << 1000 << 3;
    QTest::newRow("1000 parameter changes of the longest kind") << 1000 << 39;
    QTest::newRow("replay of 243 messages") << 243 << 20;
    QTest::newRow("fifty template dumps back to back") << 50 * 15 << 519 / 15;
}

void TestAlsaBinding::burstsGoOutAndComeBackWholeAndInOrder()
{
    QFETCH(int, count);
    QFETCH(int, length);
    Peer peer;
    QVERIFY(peer.plug());
    peer.startReading(true);
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI input;
    AlsaMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const QList<QByteArray> messages = numberedMessages(count, length);
    for (const QByteArray &message : messages) {
        QVERIFY(sendMessage(output, message));
    }
    QVERIFY2(arrives([&] { return peer.count(); }, count), qPrintable(tally(peer.count(), count)));
    QCOMPARE(peer.messages(), messages);
    QVERIFY2(arrives([&] { return collector.count(); }, count),
             qPrintable(tally(collector.count(), count)));
    QCOMPARE(collector.messages(), messages);
}

void TestAlsaBinding::aBurstFromTheOtherSideArrivesWhole_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    QTest::newRow("1000 control changes") << 1000 << 3;
    QTest::newRow("replay of 243 messages") << 243 << 20;
    QTest::newRow("600 messages of the longest kind") << 600 << 39;
    QTest::newRow("messages longer than a page") << 5 << 5000;
}

void TestAlsaBinding::aBurstFromTheOtherSideArrivesWhole()
{
    QFETCH(int, count);
    QFETCH(int, length);
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI input;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    const QList<QByteArray> messages = numberedMessages(count, length);
    for (const QByteArray &message : messages) {
        peer.send(message);
    }
    QVERIFY2(arrives([&] { return collector.count(); }, count),
             qPrintable(tally(collector.count(), count)));
    QCOMPARE(collector.messages(), messages);
}

void TestAlsaBinding::aReaderThatLagsLosesNothingAndHoldsUpNobody_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("control changes") << 3;
    QTest::newRow("messages of the longest kind") << 39;
}

void TestAlsaBinding::aReaderThatLagsLosesNothingAndHoldsUpNobody()
{
    QFETCH(int, length);
    Peer peer;
    Peer other;
    QVERIFY(peer.plug());
    QVERIFY(other.plug());
    AlsaMIDIPortAccessor accessor;
    Collector lagging;
    Collector quick;
    AlsaMIDI input;
    AlsaMIDI quickInput;
    AlsaMIDI output;
    const int number = portNumber(accessor, Input, PeerName);
    const int quickNumber = lastPortNumber(accessor, Input, PeerName);
    QVERIFY(quickNumber > number);
    QVERIFY(input.openInput(number, &lagging, 0));
    QVERIFY(quickInput.openInput(quickNumber, &quick, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    lagging.hold(true);
    const QList<QByteArray> messages = numberedMessages(LagMessages, length);
    for (const QByteArray &message : messages) {
        QVERIFY(peer.sendWithRoom(message));
    }
    QVERIFY(QTest::qWaitFor([&] { return lagging.isWaiting(); }));
    QCOMPARE(lagging.count(), 0);
    // Neither another input nor the announcements wait behind it.
    other.send(numberedMessage(1, 39));
    QVERIFY(arrives([&] { return quick.count(); }, 1));
    peer.unplug();
    QVERIFY(refusesWithin(output, TakeUpMs));
    lagging.hold(false);
    QVERIFY2(arrives([&] { return lagging.count(); }, LagMessages),
             qPrintable(tally(lagging.count(), LagMessages)));
    QCOMPARE(lagging.messages(), messages);
    QCOMPARE(quick.messages(), (QList<QByteArray>{numberedMessage(1, 39)}));
}

void TestAlsaBinding::anInputClosesWithItsReaderBehind()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI input;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    collector.hold(true);
    for (const QByteArray &message : numberedMessages(LagMessages, 3)) {
        QVERIFY(peer.sendWithRoom(message));
    }
    QVERIFY(QTest::qWaitFor([&] { return collector.isWaiting(); }));
    std::thread release([&] { collector.hold(false); });
    input.closeInput();
    release.join();
    // In order to where it was closed, and nothing behind it.
    const QList<QByteArray> delivered = collector.messages();
    QVERIFY(!delivered.isEmpty());
    QCOMPARE(delivered, numberedMessages(LagMessages, 3).first(delivered.size()));
}

void TestAlsaBinding::aLargeMessageGoesOutInChunksWithAPause()
{
    Peer peer;
    QVERIFY(peer.plug());
    peer.startReading(true);
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI input;
    AlsaMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const QByteArray message = numberedMessage(7, 2 * TMIDITransport::OutputChunkBytes + 100);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(sendMessage(output, message));
    QVERIFY(timer.elapsed() >= 2 * TMIDITransport::OutputChunkPauseMs);
    QVERIFY(arrives([&] { return peer.count(); }, 3));
    QCOMPARE(peer.count(), 3);
    QVERIFY(arrives([&] { return collector.count(); }, 1));
    QCOMPARE(collector.count(), 1);
    QCOMPARE(collector.messages().constFirst(), message);
}

void TestAlsaBinding::nothingToSendAndHalfAMessageAreRefused()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    AlsaMIDI output;
    const unsigned char byte = 0xFE;
    QVERIFY(!output.outputData(1, &byte, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const quint64 before = TMIDITransport::outputFailureCount();
    QVERIFY(!output.outputData(0, &byte, 0));
    QVERIFY(!output.outputData(-1, &byte, 0));
    const unsigned char half = 0x10;
    QVERIFY(!output.outputData(1, &half, 0xB0));
    QCOMPARE(TMIDITransport::outputFailureCount(), before + 3);
    QVERIFY(output.outputData(1, &byte, 0));
    output.closeOutput();
    QVERIFY(!output.outputData(1, &byte, 0));
}

void TestAlsaBinding::withoutRoomSendingIsRefusedAndWhatWasTakenArrives()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    AlsaMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    QList<QByteArray> taken;
    const quint64 before = TMIDITransport::outputFailureCount();
    quint64 refused = 0;
    for (int i = 0; i < PeerPoolEvents + 500; ++i) {
        const QByteArray message = numberedMessage(i, 3);
        if (sendMessage(output, message)) {
            taken.append(message);
        } else {
            ++refused;
        }
    }
    QVERIFY(refused > 0);
    QCOMPARE(TMIDITransport::outputFailureCount(), before + refused);
    peer.startReading(false);
    QVERIFY2(arrives([&] { return peer.count(); }, taken.size()),
             qPrintable(tally(peer.count(), taken.size())));
    QCOMPARE(peer.messages(), taken);
    QVERIFY(sendsWithin(output, numberedMessage(1, 39), TakeUpMs));
}

void TestAlsaBinding::closingAnInputWhileItReceivesIsSafe()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    const int number = portNumber(accessor, Input, PeerName);
    for (int i = 0; i < 20; ++i) {
        Collector collector;
        AlsaMIDI input;
        QVERIFY(input.openInput(number, &collector, 0));
        for (const QByteArray &message : numberedMessages(500, 3)) {
            peer.send(message);
        }
        QVERIFY(arrives([&] { return collector.count(); }, 1));
        input.closeInput();
    }
}

void TestAlsaBinding::anUnpluggedDeviceRefusesAndIsTakenUpWhenItReturns()
{
    Peer stranger;
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug());
    peer->startReading(true);
    AlsaMIDIPortAccessor accessor;
    Collector collector;
    AlsaMIDI input;
    AlsaMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    for (int round = 0; round < 3; ++round) {
        peer->unplug();
        QVERIFY(!sendMessage(output, numberedMessage(1, 10)));
        QCOMPARE(portNumber(accessor, Output, PeerName), 0);
        collector.clear();
        // Something else takes its number.
        snd_seq_t *squatter = openSequencer();
        QVERIFY(squatter != nullptr);
        peer = std::make_unique<Peer>();
        QVERIFY(peer->plug());
        peer->startReading(true);
        QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
        QVERIFY(arrives([&] { return peer->count(); }, 1));
        QCOMPARE(peer->messages(), (QList<QByteArray>{numberedMessage(3, 10)}));
        // The input is taken up on its own; an echo that it was late for comes again.
        QTRY_VERIFY_WITH_TIMEOUT(collector.count() > 0 ||
                                     (sendMessage(output, numberedMessage(4, 10)), false),
                                 TakeUpMs);
        snd_seq_close(squatter);
    }
}

void TestAlsaBinding::aPortThatAloneGoesIsRefusedAndTakenUpWhenItReturns()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    AlsaMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer.removePort();
    QVERIFY(refusesWithin(output, TakeUpMs));
    QVERIFY(!sendMessage(output, numberedMessage(1, 10)));
    QVERIFY(peer.addPort("CORVAN TARN/TERN MIDI 5") >= 0);
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
}

void TestAlsaBinding::anotherDeviceOfTheSameNameIsNotTakenForTheReturningOne()
{
    auto peer = std::make_unique<Peer>();
    Peer other;
    QVERIFY(peer->plug());
    QVERIFY(other.plug());
    other.startReading(false);
    AlsaMIDIPortAccessor accessor;
    AlsaMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer->unplug();
    QVERIFY(refusesWithin(output, TakeUpMs));
    QVERIFY(portNumber(accessor, Output, PeerName) > 0);
    QVERIFY(!sendMessage(output, numberedMessage(2, 10)));
    peer = std::make_unique<Peer>();
    QVERIFY(peer->plug());
    peer->startReading(false);
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
    QVERIFY(arrives([&] { return peer->count(); }, 1));
    QCOMPARE(peer->count(), 1);
    QCOMPARE(other.count(), 0);
}

void TestAlsaBinding::aConnectionCutByHandRefuses()
{
    Peer peer;
    QVERIFY(peer.plug());
    AlsaMIDIPortAccessor accessor;
    AlsaMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer.cutConnectionFrom("TARN-TERN Remote Editor");
    QVERIFY(refusesWithin(output, TakeUpMs));
}

void TestAlsaBinding::nothingIsSaid()
{
    OutputCapture capture;
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug());
    AlsaMIDIPortAccessor accessor;
    accessor.updatePortInfo();
    AlsaMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer->unplug();
    QVERIFY(refusesWithin(output, TakeUpMs));
    output.closeOutput();
    QVERIFY(!output.openOutput(1000));
    QCOMPARE(capture.end(), QByteArray());
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (qgetenv("TRN_REQUIRE_ALSA") != "1" && !AlsaClient::shared()->connectToSequencer()) {
        std::puts("skipped: this machine has no ALSA sequencer");
        return 77;
    }
    TestAlsaBinding test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_alsabinding.moc"
