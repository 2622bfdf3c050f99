// SPDX-License-Identifier: GPL-3.0-or-later
// Needs the sequencer's device. On a machine without one it ends with 77, which ctest takes for
// skipped; with TRN_REQUIRE_ALSA=1 in the environment, as in the virtual machine that has one, it
// fails instead.
#include "instrument/AlsaInstrumentPorts.h"
#include "midi/alsa/SequencerRoom.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtTest/QTest>

#include <alsa/asoundlib.h>
#include <poll.h>

#include <atomic>
#include <cstdio>
#include <thread>

namespace
{

// More than the sequencer keeps for one client.
constexpr int ManyMessages = 2000;
constexpr int MessageBytes = 39;
constexpr int MessagePort = 5;
// Without anything new for so long nothing more is waited for.
constexpr int SilenceMs = 20000;

QByteArray message(int number)
{
    QByteArray bytes(MessageBytes, 0x55);
    bytes[0] = '\xF0';
    bytes[1] = static_cast<char>(number >> 7);
    bytes[2] = static_cast<char>(number & 0x7F);
    bytes[MessageBytes - 1] = '\xF7';
    return bytes;
}

QList<QByteArray> messages(int count)
{
    QList<QByteArray> all;
    for (int i = 0; i < count; ++i) {
        all.append(message(i));
    }
    return all;
}

// An editor as the instrument sees it: a client that is connected to its fifth port both ways.
class Editor
{
public:
    ~Editor()
    {
        if (m_sequencer != nullptr) {
            snd_seq_close(m_sequencer);
        }
    }
    bool connectTo(const char *deviceName)
    {
        if (snd_seq_open(&m_sequencer, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) < 0) {
            m_sequencer = nullptr;
            return false;
        }
        snd_seq_set_client_name(m_sequencer, "editor");
        m_port = snd_seq_create_simple_port(m_sequencer, "port", SND_SEQ_PORT_CAP_WRITE,
                                            SND_SEQ_PORT_TYPE_MIDI_GENERIC);
        return snd_seq_parse_address(m_sequencer, &m_instrument, deviceName) >= 0 &&
               (m_instrument.port = MessagePort - 1, true) &&
               snd_seq_connect_from(m_sequencer, m_port, m_instrument.client, m_instrument.port) >=
                   0;
    }
    int client() const { return snd_seq_client_id(m_sequencer); }
    bool inboxIsFull() const { return !sequencerHasRoom(descriptor(), client(), MessageBytes); }
    // Takes what comes until there are count, or nothing comes any more.
    QList<QByteArray> read(qsizetype count)
    {
        QList<QByteArray> received;
        pollfd source{descriptor(), POLLIN, 0};
        while (received.size() < count) {
            snd_seq_event_t *event = nullptr;
            const int result = snd_seq_event_input(m_sequencer, &event);
            if (result == -EAGAIN) {
                if (poll(&source, 1, SilenceMs) == 0) {
                    break;
                }
            } else if (result == -ENOSPC) {
                received.append(QByteArrayLiteral("the inbox was emptied"));
            } else if (event != nullptr && event->type == SND_SEQ_EVENT_SYSEX) {
                received.append(QByteArray(static_cast<const char *>(event->data.ext.ptr),
                                           static_cast<qsizetype>(event->data.ext.len)));
            }
        }
        return received;
    }
    bool send(const QByteArray &bytes)
    {
        QElapsedTimer timer;
        timer.start();
        while (!sequencerHasRoom(descriptor(), m_instrument.client,
                                 static_cast<std::size_t>(bytes.size()))) {
            if (timer.elapsed() > SilenceMs) {
                return false;
            }
            poll(nullptr, 0, 1);
        }
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        snd_seq_ev_set_source(&event, static_cast<unsigned char>(m_port));
        snd_seq_ev_set_dest(&event, m_instrument.client, m_instrument.port);
        snd_seq_ev_set_direct(&event);
        snd_seq_ev_set_sysex(&event, static_cast<unsigned>(bytes.size()),
                             const_cast<char *>(bytes.constData()));
        return snd_seq_event_output_direct(m_sequencer, &event) >= 0;
    }

private:
    int descriptor() const
    {
        pollfd source{};
        snd_seq_poll_descriptors(m_sequencer, &source, 1, POLLIN);
        return source.fd;
    }

    snd_seq_t *m_sequencer = nullptr;
    int m_port = -1;
    snd_seq_addr_t m_instrument{};
};

// The ports with what they called back.
struct Instrument
{
    ~Instrument() { ports.close(); }
    bool open()
    {
        InstrumentPorts::Callbacks callbacks;
        callbacks.received = [this](int port, const QByteArray &bytes) {
            const MutexLocker lock(mutex);
            received.append(port == MessagePort ? bytes : QByteArrayLiteral("on another port"));
        };
        callbacks.lost = [this](const QString &) { ++losses; };
        callbacks.died = [this] { hasDied = true; };
        QString error;
        return ports.open(QStringLiteral("Test instrument"), callbacks, &error);
    }
    qsizetype count() const
    {
        const MutexLocker lock(mutex);
        return received.size();
    }

    AlsaInstrumentPorts ports;
    mutable Mutex mutex;
    QList<QByteArray> received;
    std::atomic<int> losses{0};
    std::atomic<bool> hasDied{false};
};

} // namespace

class TestAlsaInstrumentPorts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReceiverThatIsBehindIsWaitedForAndGetsEverything();
    void aStuckReceiverIsToldAndHoldsUpTheOthersOnce();
    void closingBreaksOffTheWaitForRoom();
    void aBurstComesInWholeAndInOrder();
};

void TestAlsaInstrumentPorts::aReceiverThatIsBehindIsWaitedForAndGetsEverything()
{
    Instrument instrument;
    QVERIFY(instrument.open());
    Editor editor;
    QVERIFY(editor.connectTo("Test instrument"));
    std::thread sender([&] {
        for (const QByteArray &bytes : messages(ManyMessages)) {
            instrument.ports.send(MessagePort, bytes);
        }
    });
    const bool isFull = QTest::qWaitFor([&] { return editor.inboxIsFull(); }, SilenceMs);
    const QList<QByteArray> received = editor.read(ManyMessages);
    sender.join();
    QVERIFY(isFull);
    QCOMPARE(received, messages(ManyMessages));
    QCOMPARE(instrument.losses.load(), 0);
    QVERIFY(!instrument.hasDied);
}

void TestAlsaInstrumentPorts::aStuckReceiverIsToldAndHoldsUpTheOthersOnce()
{
    Instrument instrument;
    QVERIFY(instrument.open());
    Editor stuck;
    Editor editor;
    QVERIFY(stuck.connectTo("Test instrument"));
    QVERIFY(editor.connectTo("Test instrument"));
    QList<QByteArray> received;
    std::thread reader([&] { received = editor.read(ManyMessages); });
    for (const QByteArray &bytes : messages(ManyMessages)) {
        instrument.ports.send(MessagePort, bytes);
    }
    reader.join();
    QCOMPARE(received, messages(ManyMessages));
    QVERIFY(instrument.losses > 0);
    // What it was sent in time is all there.
    const int taken = ManyMessages - instrument.losses;
    QCOMPARE(stuck.read(taken), messages(taken));
    // It is served again once it has room.
    instrument.ports.send(MessagePort, message(1));
    QCOMPARE(stuck.read(1), (QList<QByteArray>{message(1)}));
}

void TestAlsaInstrumentPorts::closingBreaksOffTheWaitForRoom()
{
    Instrument instrument;
    QVERIFY(instrument.open());
    Editor editor;
    QVERIFY(editor.connectTo("Test instrument"));
    std::thread sender([&] {
        for (const QByteArray &bytes : messages(ManyMessages)) {
            instrument.ports.send(MessagePort, bytes);
        }
    });
    const bool isFull = QTest::qWaitFor([&] { return editor.inboxIsFull(); }, SilenceMs);
    instrument.ports.close();
    sender.join();
    QVERIFY(isFull);
    QCOMPARE(instrument.losses.load(), 0);
    QVERIFY(!instrument.hasDied);
}

void TestAlsaInstrumentPorts::aBurstComesInWholeAndInOrder()
{
    Instrument instrument;
    QVERIFY(instrument.open());
    Editor editor;
    QVERIFY(editor.connectTo("Test instrument"));
    for (const QByteArray &bytes : messages(ManyMessages)) {
        QVERIFY(editor.send(bytes));
    }
    QVERIFY(QTest::qWaitFor([&] { return instrument.count() == ManyMessages; }, SilenceMs));
    QCOMPARE(instrument.received, messages(ManyMessages));
    QCOMPARE(instrument.losses.load(), 0);
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    if (qgetenv("TRN_REQUIRE_ALSA") != "1" && !Instrument().open()) {
        std::puts("skipped: this machine has no ALSA sequencer");
        return 77;
    }
    TestAlsaInstrumentPorts test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_alsainstrumentports.moc"
