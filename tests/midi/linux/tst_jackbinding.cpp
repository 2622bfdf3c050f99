// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackClient.h"
#include "midi/jack/JackMIDI.h"
#include "midi/jack/JackMIDIPortAccessor.h"
#include "tests/midi/linux/BindingTools.h"
#include "tests/tools/JackServer.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtTest/QTest>

#include <memory>

namespace
{

constexpr int Input = TMIDIPortAccessor::Input;
constexpr int Output = TMIDIPortAccessor::Output;
constexpr int ArrivalMs = 20000;
constexpr int TakeUpMs = 2000;
// A client that is killed holds up a synchronous server until its time-out.
constexpr int KilledPeerMs = 30000;

const QString PeerName = QStringLiteral("CORVAN TARN/TERN Port5");
const QString OtherName = QStringLiteral("CORVAN TARN/TERN Port1");

// The process at the other end.
class Peer
{
public:
    ~Peer() { quit(); }

    // bridged: the bracketed number of an instrument behind the a2j bridge, with two ports.
    bool plug(int bridged, const QStringList &options = {}, const QString &client = {})
    {
        const auto port = [bridged](const QString &endpoint) {
            const QString form = QStringLiteral("CORVAN TARN/TERN [%1] (%2): CORVAN TARN/TERN %3");
            return form.arg(bridged).arg(QStringLiteral("playback"), endpoint) + QLatin1Char('|') +
                   form.arg(bridged).arg(QStringLiteral("capture"), endpoint);
        };
        return start(options + QStringList{client.isEmpty() ? QStringLiteral("a2j") : client,
                                           port(QStringLiteral("MIDI 5")),
                                           port(QStringLiteral("Port1"))});
    }
    bool start(const QStringList &arguments)
    {
        m_process.setProcessChannelMode(QProcess::SeparateChannels);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral(TRN_BIN_DIR "/tests/jackpeer"), arguments);
        return m_process.waitForStarted() && answer() == "ready";
    }
    void say(const QByteArray &line)
    {
        m_process.write(line + '\n');
        m_process.waitForBytesWritten();
    }
    QByteArray answer()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(ArrivalMs)) {
                return {};
            }
        }
        return m_process.readLine().trimmed();
    }
    int received()
    {
        say("count");
        return answer().toInt();
    }
    void quit()
    {
        if (m_process.state() != QProcess::NotRunning) {
            say("quit");
            if (!m_process.waitForFinished(ArrivalMs)) {
                kill();
            }
        }
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(ArrivalMs);
    }

private:
    QProcess m_process;
};

} // namespace

class TestJackBinding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void portsBearTheirDevicesNamesAndNumbersFromOne();
    void ourOwnPortsAreNotListed();
    void aPortThatDoesNotExistIsRefused();
    void everyTransportSharesOneClient();
    void burstsGoOutAndComeBackWholeAndInOrder_data();
    void burstsGoOutAndComeBackWholeAndInOrder();
    void aBurstFromTheOtherSideInOnePeriodArrivesWhole_data();
    void aBurstFromTheOtherSideInOnePeriodArrivesWhole();
    void whatDoesNotFitOnePeriodWaitsForTheNext();
    void aLargeMessageGoesOutInChunksWithAPause();
    void nothingToSendIsRefused();
    void withoutRoomSendingIsRefusedAndWhatWasTakenArrives();
    void closingLetsOutWhatWasSentBefore();
    void closingAnInputWhileItReceivesIsSafe();
    void anUnpluggedPortRefusesAndIsTakenUpWhenItReturns();
    void nothingSentBeforeOrWhileUnpluggedArrivesAfterwards();
    void aKilledPeerRefusesAndIsTakenUpWhenItReturns();
    void anotherDeviceOfTheSameNameIsNotTakenForTheReturningOne();
    void aConnectionCutByHandRefusesAndIsNotFoughtOver();
    void whatIsConnectedByHandToAnIdlePortIsNotHeard();
    void aKilledServerRefusesEverythingAndClosingReturnsAtOnce();
    void aServerThatEndsInOrderIsTakenUpAgainByTheNextList();
    void serversThatComeAndGoLeaveTheClientAnswering();
    void aServerKilledWhileMessagesPassHarmsNothing();
    void aServerThatNoLongerAnswersHoldsUpNobodyForLong();
    void withoutAServerListsAreEmptyAndNothingIsSaid();

private:
    JackServer m_server;
};

void TestJackBinding::init()
{
    QVERIFY(m_server.start());
}

void TestJackBinding::portsBearTheirDevicesNamesAndNumbersFromOne()
{
    Peer instrument;
    QVERIFY(instrument.plug(20));
    Peer other;
    QVERIFY(other.start({QStringLiteral("keys"), QStringLiteral("in|out")}));
    JackMIDIPortAccessor accessor;
    accessor.updatePortInfo();
    QStringList inputs;
    for (int i = 0; i < accessor.getNumPorts(Input); ++i) {
        inputs.append(accessor.identifierForIndex(Input, i));
    }
    QStringList outputs;
    for (int i = 0; i < accessor.getNumPorts(Output); ++i) {
        outputs.append(accessor.identifierForIndex(Output, i));
    }
    QCOMPARE(inputs, (QStringList{PeerName, OtherName, QStringLiteral("keys out")}));
    QCOMPARE(outputs, (QStringList{PeerName, OtherName, QStringLiteral("keys in")}));
    QStringList encoded = accessor.getInputPortList();
    encoded.sort();
    QCOMPARE(encoded, (QStringList{QStringLiteral("1;CORVAN TARN/TERN Port5"),
                                   QStringLiteral("2;CORVAN TARN/TERN Port1"),
                                   QStringLiteral("3;keys out")}));
    QCOMPARE(accessor.identifierForIndex(Input, 3), QString());
    QCOMPARE(accessor.identifierForIndex(Input, -1), QString());
}

void TestJackBinding::ourOwnPortsAreNotListed()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI transport;
    QVERIFY(transport.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(transport.openOutput(portNumber(accessor, Output, PeerName)));
    QCOMPARE(accessor.getNumPorts(Input), 2);
    QCOMPARE(accessor.getNumPorts(Output), 2);
}

void TestJackBinding::aPortThatDoesNotExistIsRefused()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    Collector collector;
    JackMIDI transport;
    for (const int number : {-1, 0, 3, 1000}) {
        QVERIFY(!transport.openInput(number, &collector, 0));
        QVERIFY(!transport.openOutput(number));
    }
    QVERIFY(transport.openOutput(2));
}

void TestJackBinding::everyTransportSharesOneClient()
{
    const std::shared_ptr<JackClient> first = JackClient::shared();
    const JackMIDI transport;
    QCOMPARE(JackClient::shared(), first);
    QCOMPARE(first.use_count(), 2);
}

void TestJackBinding::burstsGoOutAndComeBackWholeAndInOrder_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    QTest::newRow("1000 control changes") << 1000 << 3;
    QTest::newRow("1000 parameter changes of the longest kind") << 1000 << 39;
    QTest::newRow("replay of 243 messages") << 243 << 20;
    QTest::newRow("fifty template dumps back to back") << 50 * 15 << 519 / 15;
}

void TestJackBinding::burstsGoOutAndComeBackWholeAndInOrder()
{
    QFETCH(int, count);
    QFETCH(int, length);
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const QList<QByteArray> messages = numberedMessages(count, length);
    for (const QByteArray &message : messages) {
        QVERIFY(sendMessage(output, message));
    }
    QTRY_COMPARE_WITH_TIMEOUT(collector.count(), messages.size(), ArrivalMs);
    QCOMPARE(collector.messages(), messages);
}

void TestJackBinding::aBurstFromTheOtherSideInOnePeriodArrivesWhole_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("length");
    QTest::newRow("1000 control changes") << 1000 << 3;
    QTest::newRow("1500 control changes") << 1500 << 3;
    QTest::newRow("1000 parameter changes of the longest kind") << 1000 << 39;
}

void TestJackBinding::aBurstFromTheOtherSideInOnePeriodArrivesWhole()
{
    QFETCH(int, count);
    QFETCH(int, length);
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    // A new connection counts from the server's next cycle on; what the peer says in the one under
    // way goes nowhere. One message says that it counts, told from the burst by its length.
    bool isJoined = false;
    for (int marker = 40; !isJoined && marker < 60; ++marker) {
        peer.say("burst 1 " + QByteArray::number(marker));
        isJoined = QTest::qWaitFor(
            [&] { return collector.messages().contains(numberedMessage(0, marker)); }, 500);
    }
    QVERIFY(isJoined);
    collector.clear();
    peer.say("burst " + QByteArray::number(count) + ' ' + QByteArray::number(length));
    const QList<QByteArray> messages = numberedMessages(count, length);
    QTRY_COMPARE_WITH_TIMEOUT(collector.count(), messages.size(), ArrivalMs);
    QCOMPARE(collector.messages(), messages);
}

void TestJackBinding::whatDoesNotFitOnePeriodWaitsForTheNext()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    // A period holds 32 KB.
    const QList<QByteArray> messages = numberedMessages(25, 4000);
    for (const QByteArray &message : messages) {
        QVERIFY(sendMessage(output, message));
    }
    QTRY_COMPARE_WITH_TIMEOUT(collector.count(), messages.size(), ArrivalMs);
    QCOMPARE(collector.messages(), messages);
}

void TestJackBinding::aLargeMessageGoesOutInChunksWithAPause()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const QByteArray message = numberedMessage(7, 2 * TMIDITransport::OutputChunkBytes + 100);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(sendMessage(output, message));
    QVERIFY(timer.elapsed() >= 2 * TMIDITransport::OutputChunkPauseMs);
    QTRY_COMPARE_WITH_TIMEOUT(collector.count(), 1, ArrivalMs);
    QCOMPARE(collector.messages().constFirst(), message);
    QCOMPARE(peer.received(), 3);
}

void TestJackBinding::nothingToSendIsRefused()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    JackMIDI output;
    const unsigned char byte = 0xFE;
    QVERIFY(!output.outputData(1, &byte, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const quint64 before = TMIDITransport::outputFailureCount();
    QVERIFY(!output.outputData(0, &byte, 0));
    QVERIFY(!output.outputData(-1, &byte, 0));
    QCOMPARE(TMIDITransport::outputFailureCount(), before + 2);
    QVERIFY(output.outputData(0, nullptr, 0xFE));
    QVERIFY(output.outputData(1, &byte, 0));
    output.closeOutput();
    QVERIFY(!output.outputData(1, &byte, 0));
}

void TestJackBinding::withoutRoomSendingIsRefusedAndWhatWasTakenArrives()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    QList<QByteArray> taken;
    const quint64 before = TMIDITransport::outputFailureCount();
    quint64 refused = 0;
    for (int i = 0; i < 400; ++i) {
        const QByteArray message = numberedMessage(i, 4000);
        if (sendMessage(output, message)) {
            taken.append(message);
        } else {
            ++refused;
        }
    }
    QVERIFY(refused > 0);
    QCOMPARE(TMIDITransport::outputFailureCount(), before + refused);
    QTRY_COMPARE_WITH_TIMEOUT(collector.count(), taken.size(), ArrivalMs);
    QCOMPARE(collector.messages(), taken);
}

void TestJackBinding::closingLetsOutWhatWasSentBefore()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    {
        JackMIDI output;
        QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
        for (const QByteArray &message : numberedMessages(1000, 39)) {
            QVERIFY(sendMessage(output, message));
        }
    }
    QTRY_COMPARE_WITH_TIMEOUT(peer.received(), 1000, ArrivalMs);
}

void TestJackBinding::closingAnInputWhileItReceivesIsSafe()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    const int number = portNumber(accessor, Input, PeerName);
    for (int i = 0; i < 20; ++i) {
        Collector collector;
        JackMIDI input;
        QVERIFY(input.openInput(number, &collector, 0));
        peer.say("burst 2000 3");
        QTRY_VERIFY_WITH_TIMEOUT(collector.count() > 0, ArrivalMs);
        input.closeInput();
        const qsizetype count = collector.count();
        QVERIFY(input.openInput(number, &collector, 0));
        input.closeInput();
        QVERIFY(collector.count() >= count);
    }
}

void TestJackBinding::anUnpluggedPortRefusesAndIsTakenUpWhenItReturns()
{
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    for (int round = 0; round < 3; ++round) {
        peer->quit();
        QVERIFY(refusesWithin(output, ArrivalMs));
        QVERIFY(!sendMessage(output, numberedMessage(2, 10)));
        QCOMPARE(portNumber(accessor, Output, PeerName), 0);
        collector.clear();
        // It returns with another number of the moment, and behind a stranger.
        Peer stranger;
        QVERIFY(stranger.start({QStringLiteral("keys"), QStringLiteral("in|out")}));
        QVERIFY(peer->plug(24 + round));
        QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
        QTRY_COMPARE_WITH_TIMEOUT(collector.count(), 1, ArrivalMs);
        QCOMPARE(collector.messages().constFirst(), numberedMessage(3, 10));
    }
}

void TestJackBinding::nothingSentBeforeOrWhileUnpluggedArrivesAfterwards()
{
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    JackMIDIPortAccessor accessor;
    JackMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    // Too much for one period, so that some of it is still there when the peer leaves.
    for (const QByteArray &message : numberedMessages(30, 4000)) {
        QVERIFY(sendMessage(output, message));
    }
    peer->quit();
    QVERIFY(refusesWithin(output, ArrivalMs));
    QVERIFY(peer->plug(24));
    QVERIFY(sendsWithin(output, numberedMessage(2, 10), TakeUpMs));
    QTRY_COMPARE_WITH_TIMEOUT(peer->received(), 1, ArrivalMs);
    // What is sent last arrives last: had there been more, it would be counted by now.
    QVERIFY(sendMessage(output, numberedMessage(3, 10)));
    QTRY_COMPARE_WITH_TIMEOUT(peer->received(), 2, ArrivalMs);
}

void TestJackBinding::aKilledPeerRefusesAndIsTakenUpWhenItReturns()
{
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer->kill();
    QVERIFY(refusesWithin(output, KilledPeerMs));
    QVERIFY(peer->plug(20));
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
    QTRY_COMPARE_WITH_TIMEOUT(collector.messages(), (QList<QByteArray>{numberedMessage(3, 10)}),
                              ArrivalMs);
}

void TestJackBinding::anotherDeviceOfTheSameNameIsNotTakenForTheReturningOne()
{
    Peer other;
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    QVERIFY(other.plug(28, {}, QStringLiteral("a2j-01")));
    JackMIDIPortAccessor accessor;
    JackMIDI output;
    QCOMPARE(accessor.getNumPorts(Output), 4);
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    peer->quit();
    QVERIFY(refusesWithin(output, ArrivalMs));
    QCOMPARE(portNumber(accessor, Output, PeerName), 1);
    QVERIFY(!sendMessage(output, numberedMessage(2, 10)));
    QVERIFY(peer->plug(32));
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
    QTRY_COMPARE_WITH_TIMEOUT(peer->received(), 1, ArrivalMs);
    QCOMPARE(other.received(), 0);
}

void TestJackBinding::aConnectionCutByHandRefusesAndIsNotFoughtOver()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    JackMIDIPortAccessor accessor;
    JackMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    const QStringList ends{
        QStringLiteral("TARN-TERN Remote Editor:out 1"),
        QStringLiteral("a2j:CORVAN TARN/TERN [20] (playback): CORVAN TARN/TERN MIDI 5")};
    QCOMPARE(QProcess::execute(QStringLiteral("jack_disconnect"), ends), 0);
    QVERIFY(refusesWithin(output, ArrivalMs));
    // A stranger's coming is no reason to take it up.
    Peer stranger;
    QVERIFY(stranger.start({QStringLiteral("keys"), QStringLiteral("in|out")}));
    QVERIFY(accessor.getNumPorts(Output) == 3);
    QVERIFY(!sendMessage(output, numberedMessage(1, 10)));
    // Who cut it may connect it again.
    QCOMPARE(QProcess::execute(QStringLiteral("jack_connect"), ends), 0);
    QVERIFY(sendsWithin(output, numberedMessage(2, 10), TakeUpMs));
    QTRY_COMPARE_WITH_TIMEOUT(peer.received(), 1, ArrivalMs);
}

void TestJackBinding::whatIsConnectedByHandToAnIdlePortIsNotHeard()
{
    Peer peer;
    QVERIFY(peer.plug(20));
    Peer stranger;
    QVERIFY(stranger.start({QStringLiteral("keys"), QStringLiteral("in|out")}));
    JackMIDIPortAccessor accessor;
    const int number = portNumber(accessor, Input, PeerName);
    for (int round = 0; round < 3; ++round) {
        QCOMPARE(QProcess::execute(
                     QStringLiteral("jack_connect"),
                     {QStringLiteral("keys:out"), QStringLiteral("TARN-TERN Remote Editor:in 1")}),
                 0);
        Collector collector;
        JackMIDI input;
        QVERIFY(input.openInput(number, &collector, 0));
        stranger.say("burst 1 10");
        peer.say("burst 2 10");
        QTRY_COMPARE_WITH_TIMEOUT(collector.count(), 2, ArrivalMs);
        QTest::qWait(100); // for nothing to come
        QCOMPARE(collector.count(), 2);
    }
}

void TestJackBinding::aKilledServerRefusesEverythingAndClosingReturnsAtOnce()
{
    OutputCapture capture;
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    JackMIDIPortAccessor accessor;
    Collector collector;
    JackMIDI input;
    JackMIDI output;
    JackMIDI closed;
    QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    QVERIFY(closed.openOutput(portNumber(accessor, Output, OtherName)));
    m_server.kill();
    QVERIFY(refusesWithin(output, ArrivalMs));
    QCOMPARE(accessor.getNumPorts(Input), 0);
    QCOMPARE(accessor.getNumPorts(Output), 0);
    QElapsedTimer timer;
    timer.start();
    closed.closeOutput();
    QVERIFY(timer.elapsed() < 500);
    QVERIFY(!closed.openOutput(1));
    peer->kill();

    // A new server is taken up by the next list, and the open ports with it.
    QVERIFY(m_server.start());
    QVERIFY(peer->plug(20));
    QVERIFY(!sendMessage(output, numberedMessage(1, 10)));
    QCOMPARE(accessor.getNumPorts(Input), 2);
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
    QTRY_COMPARE_WITH_TIMEOUT(collector.messages(), (QList<QByteArray>{numberedMessage(3, 10)}),
                              ArrivalMs);
    QCOMPARE(capture.end(), QByteArray());
}

void TestJackBinding::aServerThatEndsInOrderIsTakenUpAgainByTheNextList()
{
    OutputCapture capture;
    auto peer = std::make_unique<Peer>();
    QVERIFY(peer->plug(20));
    JackMIDIPortAccessor accessor;
    JackMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    m_server.stop();
    QVERIFY(refusesWithin(output, ArrivalMs));
    QCOMPARE(accessor.getNumPorts(Output), 0);
    peer->kill();
    QVERIFY(m_server.start());
    QCOMPARE(accessor.getNumPorts(Output), 0);
    QVERIFY(!sendMessage(output, numberedMessage(1, 10)));
    QVERIFY(peer->plug(20));
    QVERIFY(sendsWithin(output, numberedMessage(3, 10), TakeUpMs));
    QCOMPARE(capture.end(), QByteArray());
}

void TestJackBinding::serversThatComeAndGoLeaveTheClientAnswering()
{
    OutputCapture capture;
    JackMIDIPortAccessor accessor;
    for (int round = 0; round < 6; ++round) {
        QVERIFY(m_server.start());
        Peer peer;
        QVERIFY(peer.plug(20));
        Collector collector;
        JackMIDI input;
        JackMIDI output;
        QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
        QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
        peer.quit();
        m_server.stop();
        // The end may be heard of a moment later.
        QTRY_COMPARE_WITH_TIMEOUT(accessor.getNumPorts(Input), 0, ArrivalMs);
        QVERIFY(!JackClient::shared()->isUnanswered());
    }
    QCOMPARE(capture.end(), QByteArray());
}

void TestJackBinding::aServerKilledWhileMessagesPassHarmsNothing()
{
    OutputCapture capture;
    for (int round = 0; round < 3; ++round) {
        QVERIFY(m_server.start());
        Peer peer;
        QVERIFY(peer.plug(20));
        JackMIDIPortAccessor accessor;
        Collector collector;
        JackMIDI input;
        JackMIDI output;
        QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
        QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
        for (int i = 0; i < 500; ++i) {
            sendMessage(output, numberedMessage(i, 39));
        }
        QTRY_VERIFY_WITH_TIMEOUT(collector.count() > 0, ArrivalMs);
        m_server.kill();
        for (int i = 0; i < 500; ++i) {
            sendMessage(output, numberedMessage(i, 39));
        }
        QVERIFY(refusesWithin(output, ArrivalMs));
        QElapsedTimer timer;
        timer.start();
        input.closeInput();
        output.closeOutput();
        QVERIFY(timer.elapsed() < 1000);
        peer.kill();
    }
    QCOMPARE(capture.end(), QByteArray());
}

void TestJackBinding::aServerThatNoLongerAnswersHoldsUpNobodyForLong()
{
    OutputCapture capture;
    Peer peer;
    QVERIFY(peer.plug(20));
    {
        JackMIDIPortAccessor accessor;
        Collector collector;
        JackMIDI input;
        JackMIDI output;
        QVERIFY(input.openInput(portNumber(accessor, Input, PeerName), &collector, 0));
        const int number = portNumber(accessor, Output, PeerName);
        m_server.freeze();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!output.openOutput(number));
        // The second caller does not wait for what the first one gave up.
        QVERIFY(!output.openOutput(number));
        QCOMPARE(accessor.getNumPorts(Input), 0);
        input.closeInput();
        QVERIFY(timer.elapsed() < JackClient::RequestTimeoutMs + 2000);
    }
    m_server.thaw();
    JackMIDIPortAccessor accessor;
    QTRY_COMPARE_WITH_TIMEOUT(accessor.getNumPorts(Input), 2, ArrivalMs);
    JackMIDI output;
    QVERIFY(output.openOutput(portNumber(accessor, Output, PeerName)));
    QVERIFY(sendMessage(output, numberedMessage(3, 10)));
    QTRY_COMPARE_WITH_TIMEOUT(peer.received(), 1, ArrivalMs);
    QCOMPARE(capture.end(), QByteArray());
}

void TestJackBinding::withoutAServerListsAreEmptyAndNothingIsSaid()
{
    m_server.stop();
    OutputCapture capture;
    JackMIDIPortAccessor accessor;
    accessor.updatePortInfo();
    QCOMPARE(accessor.getNumPorts(Input), 0);
    QCOMPARE(accessor.getNumPorts(Output), 0);
    QCOMPARE(accessor.getInputPortList(), QStringList());
    Collector collector;
    JackMIDI transport;
    QVERIFY(!transport.openInput(1, &collector, 0));
    QVERIFY(!transport.openOutput(1));
    const quint64 before = TMIDITransport::outputFailureCount();
    QVERIFY(!sendMessage(transport, numberedMessage(1, 10)));
    QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);
    transport.closeInput();
    transport.closeOutput();
    QVERIFY(!JackClient::shared()->connectToServer());
    QCOMPARE(capture.end(), QByteArray());
}

QTEST_GUILESS_MAIN(TestJackBinding)
#include "tst_jackbinding.moc"
