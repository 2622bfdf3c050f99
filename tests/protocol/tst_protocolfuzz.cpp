// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TMIDITransport.h"
#include "protocol/DecoderRig.h"
#include "protocol/RunRig.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

// Random and mutated bytes, with fixed seeds, through the parser into the decoder.

namespace
{

// Hands what the parser delivers to the decoder, in arrays of exactly its length.
class FuzzReader : public TMIDIReaderRefConInterface
{
public:
    explicit FuzzReader(MessageDecoder *decoder)
        : m_decoder(decoder)
    {
    }
    void midiIn(tagMPEVENT *event) override
    {
        const bool isLong = (event->eventType & MPEventLongMask) != 0;
        ExactEvent exact(isLong ? bytesOf(*event) : QByteArray(), event->eventType);
        const bool isMark =
            event->eventType == MPEventNoteOn && event->channel == 15 && event->shortData[0] == 1;
        m_decoder->Process(exact.event);
        const MutexLocker lock(m_mutex);
        ++m_events;
        if (isMark) {
            ++m_marks;
            m_changed.notify_all();
        }
    }
    bool waitMarks(int count)
    {
        std::unique_lock<Mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(60), [&] { return m_marks >= count; });
    }
    int marks() const
    {
        const MutexLocker lock(m_mutex);
        return m_marks;
    }
    int events() const
    {
        const MutexLocker lock(m_mutex);
        return m_events;
    }

private:
    MessageDecoder *m_decoder;
    mutable Mutex m_mutex; // guards the counters
    WaitCondition m_changed;
    int m_marks = 0;
    int m_events = 0;
};

class FuzzTransport : public TMIDITransport
{
public:
    ~FuzzTransport() override { FuzzTransport::closeInput(); }
    bool openInput(int, TMIDIReaderRefConInterface *reader, int) override
    {
        setReader(reader);
        return startPusherThread();
    }
    void closeInput() override { stopPusherThread(); }
    bool openOutput(int) override { return false; }
    void closeOutput() override {}
    bool outputData(int, const unsigned char *, unsigned char) override { return false; }

    // From an array of exactly its length.
    void feed(const QByteArray &run)
    {
        const std::unique_ptr<unsigned char[]> bytes(
            new unsigned char[static_cast<std::size_t>(run.size())]);
        std::memcpy(bytes.get(), run.constData(), static_cast<std::size_t>(run.size()));
        read(static_cast<int>(run.size()), bytes.get());
    }
};

QByteArray randomBytes(QRandomGenerator *random, int maximum)
{
    QByteArray bytes(random->bounded(maximum + 1), Qt::Uninitialized);
    for (char &byte : bytes) {
        byte = static_cast<char>(random->bounded(256));
    }
    return bytes;
}

QByteArray validMessage(QRandomGenerator *random)
{
    using namespace DeviceSide;
    const int type = random->bounded(2) == 0 ? Stored : EditBuffer;
    const int number = random->bounded(50);
    switch (random->bounded(9)) {
    case 0:
        return header(type, number);
    case 1:
        return footer(type, number);
    case 2:
        return templateBlock("Name", "VSTi", random->bounded(2));
    case 3:
        return knobBlock(random->bounded(16), "204143dff", "Cutoff", random->bounded(128),
                         random->bounded(3));
    case 4:
        return change(0x00, random->bounded(28), random->bounded(128));
    case 5:
        return change(0x10 + random->bounded(13), random->bounded(27), random->bounded(128));
    case 6:
        return change(0x10 + random->bounded(12), random->bounded(10),
                      QByteArray("0123456789abcdef").mid(random->bounded(7), 9));
    case 7:
        return change(0x20 + random->bounded(4), 0, random->bounded(128));
    default:
        return acknowledge();
    }
}

// Puts the sum right again, so that a mutation gets past the checksum.
void mendChecksum(QByteArray *message)
{
    int sum = 0;
    for (qsizetype i = 4; i < message->size() - 2; ++i) {
        sum += message->at(i);
    }
    if (message->size() >= 6) {
        (*message)[message->size() - 2] = static_cast<char>((-sum) & 0x7F);
    }
}

QByteArray mutatedRun(QRandomGenerator *random)
{
    QByteArray message = validMessage(random);
    const int mutations = random->bounded(4);
    for (int i = 0; i < mutations && message.size() > 2; ++i) {
        const int place = random->bounded(static_cast<int>(message.size()));
        switch (random->bounded(6)) {
        case 0:
            message[place] = static_cast<char>(random->bounded(256));
            break;
        case 1:
            message[place] = static_cast<char>(random->bounded(128));
            break;
        case 2:
            message.remove(place, 1 + random->bounded(4));
            break;
        case 3:
            message.insert(place, randomBytes(random, 4));
            break;
        case 4:
            message.truncate(place);
            break;
        default:
            message.insert(place, static_cast<char>(0xF8 + random->bounded(8)));
            break;
        }
    }
    if (random->bounded(2) == 0) {
        mendChecksum(&message);
    }
    QByteArray run = '\xF0' + message;
    if (random->bounded(8) == 0) {
        run += '\xF0' + validMessage(random); // two in one run
    }
    return run;
}

} // namespace

class TestProtocolFuzz : public QObject
{
    Q_OBJECT

private:
    // Runs of random bytes, each an event at worst, that the ring of 960 records holds for sure.
    static constexpr int LongestRandomRun = 60;
    static constexpr int MarkedRuns = 900 / LongestRandomRun;

    // Feeds so many inputs, in runs and in pieces of runs, and waits for the last.
    template <typename MakeRun>
    static void feedMany(DecoderRig *rig, int count, MakeRun makeRun, QRandomGenerator *random)
    {
        FuzzReader reader(&rig->decoder);
        FuzzTransport transport;
        transport.openInput(1, &reader, 0);
        for (int i = 0; i < count; ++i) {
            QByteArray run = makeRun();
            if (random->bounded(4) == 0 && run.size() > 1) {
                const int cut = 1 + random->bounded(static_cast<int>(run.size()) - 1);
                transport.feed(run.left(cut));
                run = run.mid(cut);
            }
            transport.feed(run);
            if (i % MarkedRuns == MarkedRuns - 1 || i == count - 1) {
                // The ring drops what it has no room for, so it is let run empty before that.
                const int wanted = reader.marks() + 1;
                transport.feed(QByteArray("\x9F\x01\x40"));
                QVERIFY(reader.waitMarks(wanted));
            }
        }
        transport.closeInput();
        QVERIFY(reader.events() > count / 50);
    }

    static void fillNames(DecoderRig *rig)
    {
        rig->api.setAllowToSendSysExFlag(false);
        for (int number = 0; number < 50; ++number) {
            rig->api.setParam(templateAddress(0, number, 13), QStringLiteral("Name"));
            rig->api.setParam(templateAddress(0, number, 15), QStringLiteral("VSTi"));
            rig->api.setParam(knobAddress(0, number, 0, 0), QStringLiteral("Knob"));
        }
        rig->api.setAllowToSendSysExFlag(true);
        rig->api.setONLINEstate(1);
    }

private Q_SLOTS:
    void randomBytesNeverGetPastTheLimits()
    {
        DecoderRig rig;
        fillNames(&rig);
        QRandomGenerator random(20);
        feedMany(
            &rig, 50000, [&] { return randomBytes(&random, LongestRandomRun); }, &random);
        QVERIFY(isSane(rig.api));
        QVERIFY(rig.device.take().isEmpty());
        QVERIFY(rig.api.isAllowToSendSysEx());
    }

    void mutatedMessagesNeverGetPastTheLimits()
    {
        DecoderRig rig;
        fillNames(&rig);
        QRandomGenerator random(21);
        feedMany(
            &rig, 150000, [&] { return mutatedRun(&random); }, &random);
        QVERIFY(isSane(rig.api));
        // Nothing was queued, so that no acknowledge and no footer had anything to let out.
        QVERIFY(rig.device.take().isEmpty());
        QVERIFY(rig.api.isAllowToSendSysEx());
        // What is whole still arrives.
        QVERIFY(rig.processAll(DeviceSide::dump(0x60, 44)));
        QVERIFY(rig.decoder.bulkReceipt().isComplete(BulkReceipt::Stored, 44));
    }

    void anyEventOfAnyLengthIsSafe()
    {
        DecoderRig rig;
        fillNames(&rig);
        QRandomGenerator random(22);
        for (int i = 0; i < 50000; ++i) {
            QByteArray message =
                random.bounded(2) == 0 ? validMessage(&random) : randomBytes(&random, 50);
            for (int j = random.bounded(4); j > 0 && !message.isEmpty(); --j) {
                message[random.bounded(static_cast<int>(message.size()))] =
                    static_cast<char>(random.bounded(256));
            }
            message.truncate(random.bounded(static_cast<int>(message.size()) + 1));
            rig.process(message, random.bounded(20) == 0 ? random.generate() : 0x10000u);
        }
        QVERIFY(isSane(rig.api));
        QVERIFY(rig.device.take().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestProtocolFuzz)

#include "tst_protocolfuzz.moc"
