// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/MIDIBinding.h"
#include "midi/TMIDITransport.h"
#include "midi/linux/MIDIServiceChoice.h"
#include "tests/midi/linux/BindingTools.h"
#include "tests/tools/JackServer.h"

#include <QtTest/QTest>

#include <memory>

class TestMIDIServiceChoice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void servicesHaveNames();
    void withNoServiceAtAllListsAreEmptyAndSendsRefused();
    void jackIsTakenWhileItRunsAndAgainWhenItReturns();
    void aServiceAskedForByNameIsUsedOrNone();

private:
    const bool m_hasAlsa = access("/dev/snd/seq", F_OK) == 0;
    JackServer m_server;
};

void TestMIDIServiceChoice::servicesHaveNames()
{
    QVERIFY(midiServiceByName(QStringLiteral("alsa")) == MIDIService::Alsa);
    QVERIFY(midiServiceByName(QStringLiteral("jack")) == MIDIService::Jack);
    QVERIFY(!midiServiceByName(QStringLiteral("JACK")).has_value());
    QVERIFY(!midiServiceByName(QString()).has_value());
    QCOMPARE(midiServiceTitle(MIDIService::Alsa), QStringLiteral("ALSA"));
    QCOMPARE(midiServiceTitle(MIDIService::Jack), QStringLiteral("JACK"));
    QCOMPARE(midiServiceTitle(MIDIService::Automatic), QStringLiteral("none"));
}

void TestMIDIServiceChoice::withNoServiceAtAllListsAreEmptyAndSendsRefused()
{
    OutputCapture capture;
    // Where there is a sequencer, the service that is not there is asked for by name.
    setMIDIService(m_hasAlsa ? MIDIService::Jack : MIDIService::Automatic);
    const std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
    QVERIFY(accessor != nullptr);
    QCOMPARE(accessor->getInputPortList(), QStringList());
    QCOMPARE(accessor->getOutputPortList(), QStringList());
    QCOMPARE(accessor->getNumPorts(TMIDIPortAccessor::Input), 0);
    QCOMPARE(accessor->getNumPorts(TMIDIPortAccessor::Output), 0);
    QCOMPARE(accessor->identifierForIndex(TMIDIPortAccessor::Input, 0), QString());
    QVERIFY(midiServiceInUse() == MIDIService::Automatic);
    const std::unique_ptr<TMIDITransport> transport(MIDITransportInstance());
    QVERIFY(transport != nullptr);
    Collector collector;
    QVERIFY(!transport->openInput(1, &collector, 0));
    QVERIFY(!transport->openOutput(1));
    const quint64 before = TMIDITransport::outputFailureCount();
    QVERIFY(!sendMessage(*transport, numberedMessage(1, 10)));
    QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);
    transport->closeInput();
    transport->closeOutput();
    QCOMPARE(capture.end(), QByteArray());
}

void TestMIDIServiceChoice::jackIsTakenWhileItRunsAndAgainWhenItReturns()
{
    setMIDIService(m_hasAlsa ? MIDIService::Jack : MIDIService::Automatic);
    const std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
    QVERIFY(midiServiceInUse() == MIDIService::Automatic);
    for (int round = 0; round < 2; ++round) {
        QVERIFY(m_server.start());
        QProcess peer;
        peer.start(QStringLiteral(TRN_BIN_DIR "/tests/jackpeer"),
                   {QStringLiteral("keys"), QStringLiteral("in|out")});
        QVERIFY(peer.waitForReadyRead(JackServer::TimeoutMs));
        // A server may be slow to let a client in; who asked has then been sent away, and asks
        // again.
        QTRY_COMPARE_WITH_TIMEOUT(accessor->getNumPorts(TMIDIPortAccessor::Output), 1,
                                  JackServer::TimeoutMs);
        QCOMPARE(accessor->identifierForIndex(TMIDIPortAccessor::Output, 0),
                 QStringLiteral("keys in"));
        QVERIFY(midiServiceInUse() == MIDIService::Jack);
        const std::unique_ptr<TMIDITransport> transport(MIDITransportInstance());
        Collector collector;
        QVERIFY(transport->openInput(portNumber(*accessor, 0, QStringLiteral("keys out")),
                                     &collector, 0));
        QVERIFY(transport->openOutput(1));
        QVERIFY(sendMessage(*transport, numberedMessage(5, 39)));
        QTRY_COMPARE_WITH_TIMEOUT(collector.messages(), (QList<QByteArray>{numberedMessage(5, 39)}),
                                  JackServer::TimeoutMs);
        peer.write("quit\n");
        QVERIFY(peer.waitForFinished(JackServer::TimeoutMs));
        m_server.stop();
        // The peer's port was gone before; the server's own end may be heard of a moment later.
        QTRY_VERIFY_WITH_TIMEOUT(accessor->getNumPorts(TMIDIPortAccessor::Output) == 0 &&
                                     midiServiceInUse() == MIDIService::Automatic,
                                 JackServer::TimeoutMs);
    }
}

void TestMIDIServiceChoice::aServiceAskedForByNameIsUsedOrNone()
{
    QVERIFY(m_server.start());
    setMIDIService(MIDIService::Jack);
    std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
    QTRY_VERIFY_WITH_TIMEOUT(accessor->getNumPorts(TMIDIPortAccessor::Output) == 0 &&
                                 midiServiceInUse() == MIDIService::Jack,
                             JackServer::TimeoutMs);
    setMIDIService(MIDIService::Alsa);
    accessor.reset(MIDIPortAccessor());
    QVERIFY(midiServiceInUse() == (m_hasAlsa ? MIDIService::Alsa : MIDIService::Automatic));
    accessor.reset();
    m_server.stop();
}

QTEST_GUILESS_MAIN(TestMIDIServiceChoice)
#include "tst_midiservicechoice.moc"
