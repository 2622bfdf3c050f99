// SPDX-License-Identifier: GPL-3.0-or-later
#include "FakeCore.h"
#include "midi/MIDIBinding.h"
#include "midi/TransportHarness.h"
#include "midi/mac/TMacMIDI.h"
#include "midi/mac/TMacMIDIPortAccessor.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <atomic>
#include <thread>

namespace
{

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

FakeCore::EndpointNames named(const QString &device, const QString &endpoint)
{
    return {device, endpoint, true, true};
}

const QString connectSource = QStringLiteral("MIDIPortConnectSource");
const QString inputPortCreate = QStringLiteral("MIDIInputPortCreate");
const QString outputPortCreate = QStringLiteral("MIDIOutputPortCreate");
const QString clientCreate = QStringLiteral("MIDIClientCreate");
const QString send = QStringLiteral("MIDISend");

} // namespace

class TestMacMidi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { FakeCore::reset(); }
    void cleanup()
    {
        m_transport.reset();
        m_accessor.reset();
        QCOMPARE(FakeCore::stringCount(), 0);
        QCOMPARE(FakeCore::portCount(), 0);
        QCOMPARE(FakeCore::clientCount(), 0);
        QCOMPARE(TMacMIDIPortAccessor::s_client, MIDIClientRef(0));
        QCOMPARE(TMacMIDIPortAccessor::s_midiClientCounter, 0);
    }

    void names_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("endpoint");
        QTest::addColumn<bool>("hasEntity");
        QTest::addColumn<bool>("hasDevice");
        QTest::addColumn<QString>("name");
        const QString synth = QStringLiteral("Synth");
        const QString port = QStringLiteral("Port1");
        QTest::newRow("device and endpoint") << synth << port << true << true << "Synth Port1";
        QTest::newRow("the device's name in front of the endpoint's")
            << synth << "Synth Port1" << true << true << "Synth Port1";
        QTest::newRow("no entity") << synth << port << false << false << "Unknown Device Port1";
        QTest::newRow("no device") << synth << port << true << false << "Unknown Device Port1";
        QTest::newRow("a device without a name")
            << QString() << port << true << true << "Unknown Device Port1";
        QTest::newRow("an endpoint without a name")
            << synth << QString() << true << true << "Synth Port #1";
        QTest::newRow("an empty name") << synth << "" << true << true << "Synth Port #1";
        QTest::newRow("letters outside ASCII")
            << QString::fromUtf8("S\xC3\xBCnth\xF0\x9F\x8E\xB9") << port << true << true
            << QString::fromUtf8("S\xC3\xBCnth\xF0\x9F\x8E\xB9 Port1");
    }
    void names()
    {
        QFETCH(QString, device);
        QFETCH(QString, endpoint);
        QFETCH(bool, hasEntity);
        QFETCH(bool, hasDevice);
        FakeCore::addSource({device, endpoint, hasEntity, hasDevice});
        FakeCore::addDestination({device, endpoint, hasEntity, hasDevice});
        TMacMIDIPortAccessor accessor;
        QTEST(accessor.identifierForIndex(0, 0), "name");
        QTEST(accessor.identifierForIndex(1, 0), "name");
        QCOMPARE(accessor.identifierForIndex(0, 1), QString());
        QCOMPARE(accessor.identifierForIndex(0, -1), QString());
    }

    void sourcesAreDirectionZeroAndDestinationsAnyOther()
    {
        FakeCore::addSource(named(QStringLiteral("In"), QStringLiteral("Port1")));
        FakeCore::addSourceGap();
        FakeCore::addSource(named(QStringLiteral("In"), QStringLiteral("Port2")));
        FakeCore::addDestination(named(QStringLiteral("Out"), QStringLiteral("Port1")));
        const std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
        QCOMPARE(accessor->getNumPorts(0), 3);
        QCOMPARE(accessor->getNumPorts(1), 1);
        QCOMPARE(accessor->getNumPorts(2), 1);
        QStringList inputs = accessor->getInputPortList();
        inputs.sort();
        // An endpoint of 0 is passed over, and keeps its number.
        QCOMPARE(inputs, (QStringList{QStringLiteral("1;In Port1"), QStringLiteral("3;In Port2")}));
        QCOMPARE(accessor->getOutputPortList(), QStringList{QStringLiteral("1;Out Port1")});
    }

    void accessorsShareOneClientForAsLongAsOneLives()
    {
        auto first = std::make_unique<TMacMIDIPortAccessor>();
        auto second = std::make_unique<TMacMIDIPortAccessor>();
        QCOMPARE(FakeCore::calls(), QStringList{QStringLiteral("MIDIClientCreate MIDI Client")});
        QCOMPARE(TMacMIDIPortAccessor::s_midiClientCounter, 2);
        first.reset();
        QVERIFY(TMacMIDIPortAccessor::s_client != 0);
        QCOMPARE(FakeCore::clientCount(), 1);
        second.reset();
        QCOMPARE(TMacMIDIPortAccessor::s_client, MIDIClientRef(0));
        QCOMPARE(FakeCore::clientCount(), 0);
        // And once more.
        first = std::make_unique<TMacMIDIPortAccessor>();
        QCOMPARE(FakeCore::clientCount(), 1);
    }

    void withoutAClientNothingOpens()
    {
        FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::setFailing(clientCreate, true);
        m_accessor = std::make_unique<TMacMIDIPortAccessor>();
        QCOMPARE(TMacMIDIPortAccessor::s_client, MIDIClientRef(0));
        const std::unique_ptr<TMIDITransport> transport(MIDITransportInstance());
        QVERIFY(!transport->openInput(1, nullptr, 0));
        QVERIFY(!transport->openOutput(1));
        QVERIFY(!transport->outputData(1, reinterpret_cast<const unsigned char *>("x"), 0));
        // The next accessor tries again.
        FakeCore::setFailing(clientCreate, false);
        const TMacMIDIPortAccessor second;
        QVERIFY(TMacMIDIPortAccessor::s_client != 0);
    }

    void everyTransportIsOfItsOwn()
    {
        m_accessor = std::make_unique<TMacMIDIPortAccessor>();
        const std::unique_ptr<TMIDITransport> first(MIDITransportInstance());
        const std::unique_ptr<TMIDITransport> second(MIDITransportInstance());
        QVERIFY(first != second);
    }

    void refusesPortNumbersOutsideTheList_data()
    {
        QTest::addColumn<int>("port");
        QTest::newRow("0") << 0;
        QTest::newRow("negative") << -1;
        QTest::newRow("one too many") << 2;
    }
    void refusesPortNumbersOutsideTheList()
    {
        QFETCH(int, port);
        FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        QVERIFY(!transport.openInput(port, nullptr, 0));
        QVERIFY(!transport.openOutput(port));
        QVERIFY(!transport.outputData(1, reinterpret_cast<const unsigned char *>("x"), 0));
        // The same transport opens the right one afterwards, on the ports that it has.
        QVERIFY(transport.openInput(1, nullptr, 0));
        QVERIFY(transport.openOutput(1));
        QCOMPARE(FakeCore::calls().count(QStringLiteral("MIDIInputPortCreate Input port")), 1);
        QCOMPARE(FakeCore::calls().count(QStringLiteral("MIDIOutputPortCreate Output port")), 1);
        m_transport.reset();
    }

    void walksEveryPacketOfAList_data()
    {
        QTest::addColumn<QList<QByteArray>>("packets");
        QTest::addColumn<QList<QByteArray>>("messages");
        using List = QList<QByteArray>;
        QTest::newRow("one") << List{hex("F04310F7")} << List{hex("4310F7")};
        QTest::newRow("several of odd and even lengths")
            << List{hex("F04310F7"), hex("F0431011F7"), hex("F043F7")}
            << List{hex("4310F7"), hex("431011F7"), hex("43F7")};
        QTest::newRow("empty packets are passed over")
            << List{QByteArray(), hex("F043"), QByteArray(),
                    QByteArray(), hex("10F7"), QByteArray()}
            << List{hex("4310F7")};
        QTest::newRow("a message over three packets")
            << List{hex("F0"), hex("4310"), hex("F7")} << List{hex("4310F7")};
        QTest::newRow("a packet longer than the declared array")
            << List{'\xF0' + QByteArray(1000, 'x') + '\xF7', hex("F043F7")}
            << List{QByteArray(1000, 'x') + '\xF7', hex("43F7")};
        QTest::newRow("the longest packet") << List{'\xF0' + QByteArray(65533, 'x') + '\xF7'}
                                            << List{QByteArray(65533, 'x') + '\xF7'};
        QTest::newRow("no packet") << List{} << List{};
    }
    void walksEveryPacketOfAList()
    {
        QFETCH(QList<QByteArray>, packets);
        QFETCH(QList<QByteArray>, messages);
        const MIDIEndpointRef source =
            FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        CollectingReader reader;
        QVERIFY(transport.openInput(1, &reader, 0));
        QVERIFY(FakeCore::deliver(source, packets));
        transport.closeInput();
        QList<QByteArray> got;
        const QList<SeenEvent> events = reader.events();
        for (const SeenEvent &event : events) {
            got.append(event.longData);
        }
        QCOMPARE(got, messages);
        m_transport.reset();
    }

    void aFailedInputPortOpensNothing()
    {
        FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::setFailing(inputPortCreate, true);
        TMacMIDI &transport = newTransport();
        QVERIFY(!transport.openInput(1, nullptr, 0));
        FakeCore::setFailing(inputPortCreate, false);
        QVERIFY(transport.openInput(1, nullptr, 0));
        m_transport.reset();
    }

    void aFailedOutputPortOpensNothing()
    {
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::setFailing(outputPortCreate, true);
        TMacMIDI &transport = newTransport();
        QVERIFY(!transport.openOutput(1));
        FakeCore::setFailing(outputPortCreate, false);
        QVERIFY(transport.openOutput(1));
        m_transport.reset();
    }

    void aFailedConnectionClosesWhatWasOpened()
    {
        const MIDIEndpointRef source =
            FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::setFailing(connectSource, true);
        TMacMIDI &transport = newTransport();
        CollectingReader reader;
        QVERIFY(!transport.openInput(1, &reader, 0));
        QVERIFY(!FakeCore::deliver(source, {hex("FE")}));
        QCOMPARE(FakeCore::portCount(), 0);
        // What was never connected is not disconnected.
        QVERIFY(!FakeCore::calls().contains(QStringLiteral("MIDIPortDisconnectSource")));
        FakeCore::setFailing(connectSource, false);
        QVERIFY(transport.openInput(1, &reader, 0));
        QVERIFY(FakeCore::deliver(source, {hex("FE")}));
        QVERIFY(reader.waitCount(1));
        m_transport.reset();
    }

    void closingDisconnectsAndDisposesOnce()
    {
        FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        QVERIFY(transport.openInput(1, nullptr, 0));
        QVERIFY(transport.openOutput(1));
        transport.closeInput();
        transport.closeInput();
        transport.closeOutput();
        transport.closeOutput();
        m_transport.reset();
        QCOMPARE(FakeCore::calls(), (QStringList{QStringLiteral("MIDIClientCreate MIDI Client"),
                                                 QStringLiteral("MIDIInputPortCreate Input port"),
                                                 QStringLiteral("MIDIPortConnectSource"),
                                                 QStringLiteral("MIDIOutputPortCreate Output port"),
                                                 QStringLiteral("MIDIPortDisconnectSource"),
                                                 QStringLiteral("MIDIPortDispose"),
                                                 QStringLiteral("MIDIPortDispose")}));
    }

    void destructionClosesBothDirections()
    {
        FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        QVERIFY(transport.openInput(1, nullptr, 0));
        QVERIFY(transport.openOutput(1));
        m_transport.reset();
        QCOMPARE(FakeCore::portCount(), 0);
    }

    void aCallbackThatComesTooLateFindsNothing()
    {
        const MIDIEndpointRef source =
            FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        CollectingReader reader;
        QVERIFY(transport.openInput(1, &reader, 0));
        QVERIFY(FakeCore::deliver(source, {hex("FE")}));
        QVERIFY(reader.waitCount(1));
        void *connection = &transport;
        transport.closeInput();
        FakeCore::deliverLate(connection, {hex("FE")});
        m_transport.reset();
        // A number to the platform, never read through.
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
        FakeCore::deliverLate(connection, {hex("FE")});
        QCOMPARE(reader.events().size(), 1);
    }

    void callbacksUnderWayWhileTransportsCloseAreSafe()
    {
        // For the sanitizers: the callback never sees a half-destroyed transport.
        const MIDIEndpointRef source =
            FakeCore::addSource(named(QStringLiteral("S"), QStringLiteral("P")));
        m_accessor = std::make_unique<TMacMIDIPortAccessor>();
        std::atomic<bool> isOver{false};
        std::thread callback([&] {
            while (!isOver) {
                FakeCore::deliver(source, {hex("F04310"), hex("FE"), hex("F7903C40")});
            }
        });
        for (int i = 0; i < 100; ++i) {
            CollectingReader reader;
            TMacMIDI transport(TMacMIDIPortAccessor::s_client);
            QVERIFY(transport.openInput(1, &reader, 0));
            QVERIFY(reader.waitCount(2));
        }
        isOver = true;
        callback.join();
    }

    void sendsOnePacketForEachChunk_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("status");
        QTest::addColumn<QList<int>>("lengths");
        QTest::newRow("a short message") << hex("3C40") << 0x90 << QList<int>{3};
        QTest::newRow("without a status") << hex("903C40") << 0 << QList<int>{3};
        QTest::newRow("a status alone") << QByteArray() << 0xFE << QList<int>{1};
        QTest::newRow("a whole chunk") << QByteArray(4096, 'x') << 0 << QList<int>{4096};
        QTest::newRow("a whole chunk with its status")
            << QByteArray(4095, 'x') << 0xF0 << QList<int>{4096};
        QTest::newRow("one byte more") << QByteArray(4097, 'x') << 0 << QList<int>{4096, 1};
        QTest::newRow("one byte more with the status")
            << QByteArray(4096, 'x') << 0xF0 << QList<int>{4096, 1};
        QTest::newRow("three chunks")
            << QByteArray(10000, 'x') << 0xF0 << QList<int>{4096, 4096, 1809};
    }
    void sendsOnePacketForEachChunk()
    {
        QFETCH(QByteArray, data);
        QFETCH(int, status);
        QFETCH(QList<int>, lengths);
        for (qsizetype i = 0; i < data.size(); ++i) {
            data[i] = static_cast<char>(i % 127);
        }
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P1")));
        const MIDIEndpointRef destination =
            FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P2")));
        TMacMIDI &transport = newTransport();
        QVERIFY(transport.openOutput(2));
        QElapsedTimer clock;
        clock.start();
        QVERIFY(output(transport, data, static_cast<unsigned char>(status)));
        QVERIFY(clock.elapsed() >= 100 * (lengths.size() - 1));
        QByteArray whole;
        QList<int> got;
        const QList<FakeCore::Sent> sent = FakeCore::sent();
        for (const FakeCore::Sent &packet : sent) {
            QCOMPARE(packet.destination, destination);
            QCOMPARE(packet.timeStamp, MIDITimeStamp(0));
            got.append(static_cast<int>(packet.bytes.size()));
            whole += packet.bytes;
        }
        QCOMPARE(got, lengths);
        if (status != 0) {
            data.prepend(static_cast<char>(status));
        }
        QCOMPARE(whole, data);
        m_transport.reset();
    }

    void aRefusedSendIsFalseAndCounted()
    {
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        QVERIFY(transport.openOutput(1));
        const quint64 before = TMIDITransport::outputFailureCount();
        FakeCore::setFailing(send, true);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!output(transport, QByteArray(100000, 'x'), 0xF0));
        // The first refusal ends the message.
        QVERIFY(clock.elapsed() < 2400);
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);
        FakeCore::setFailing(send, false);
        QVERIFY(output(transport, hex("3C40"), 0x90));
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);
        QCOMPARE(FakeCore::sent().size(), 1);
        m_transport.reset();
    }

    void nothingToSendOrNowhereToSendItIsFalse()
    {
        FakeCore::addDestination(named(QStringLiteral("S"), QStringLiteral("P")));
        TMacMIDI &transport = newTransport();
        QVERIFY(!output(transport, hex("3C40"), 0x90));
        QVERIFY(transport.openOutput(1));
        QVERIFY(!output(transport, QByteArray(), 0));
        transport.closeOutput();
        QVERIFY(!output(transport, hex("3C40"), 0x90));
        QCOMPARE(FakeCore::sent().size(), 0);
        m_transport.reset();
    }

private:
    // On a client that lives to the end of the test.
    TMacMIDI &newTransport()
    {
        m_accessor = std::make_unique<TMacMIDIPortAccessor>();
        m_transport = std::make_unique<TMacMIDI>(TMacMIDIPortAccessor::s_client);
        return *m_transport;
    }

    static bool output(TMIDITransport &transport, const QByteArray &data, unsigned char status)
    {
        return transport.outputData(static_cast<int>(data.size()),
                                    reinterpret_cast<const unsigned char *>(data.constData()),
                                    status);
    }

    std::unique_ptr<TMacMIDIPortAccessor> m_accessor;
    std::unique_ptr<TMacMIDI> m_transport;
};

QTEST_GUILESS_MAIN(TestMacMidi)
#include "tst_macmidi.moc"
