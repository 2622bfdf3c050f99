// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/CircularBuffer.h"

#include <QtCore/QByteArray>
#include <QtTest/QtTest>

#include <mutex>
#include <thread>

class TestCircularBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isEmptyAtFirst()
    {
        const CircularBuffer ring(10, false);
        QCOMPARE(ring.size(), 10);
        QCOMPARE(ring.avail(), 0);
        QCOMPARE(ring.space(), 10);
    }

    void writesAndReadsAroundTheEndInTwoPieces()
    {
        CircularBuffer ring(10, false);
        QCOMPARE(ring.write("abcdefg", 7), 7);
        QCOMPARE(take(ring, 5), QByteArray("abcde"));
        QCOMPARE(ring.write("12345678", 8), 8);
        QCOMPARE(ring.avail(), 10);
        QCOMPARE(ring.space(), 0);
        QCOMPARE(take(ring, 10), QByteArray("fg12345678"));
        QCOMPARE(ring.avail(), 0);
    }

    void wrapsWhenAPieceEndsExactlyAtTheEnd()
    {
        CircularBuffer ring(4, false);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(ring.write("wxyz", 4), 4);
            QCOMPARE(take(ring, 4), QByteArray("wxyz"));
        }
    }

    void cutsAWriteToTheSpaceAndSaysSo()
    {
        CircularBuffer ring(4, false);
        QTest::ignoreMessage(QtDebugMsg, "CircularBuffer - buffer overflow? <tell oru>");
        QCOMPARE(ring.write("abcdef", 6), 4);
        QCOMPARE(take(ring, 4), QByteArray("abcd"));
    }

    void cutsAReadToWhatIsThereAndSaysSo()
    {
        CircularBuffer ring(8, false);
        ring.write("ab", 2);
        QTest::ignoreMessage(QtDebugMsg,
                             "CircularBuffer - Client is asking for too much data!!! count:5, "
                             "avail:2 <tell oru>");
        QCOMPARE(take(ring, 5), QByteArray("ab"));
    }

    void skipsWithANullDestination()
    {
        CircularBuffer ring(8, false);
        ring.write("abcdef", 6);
        QCOMPARE(ring.read(nullptr, 4), 4);
        QCOMPARE(take(ring, 2), QByteArray("ef"));
    }

    void takesNoCountBelowOne()
    {
        CircularBuffer ring(8, false);
        QCOMPARE(ring.write("abc", 0), 0);
        QCOMPARE(ring.write("abc", -3), 0);
        ring.write("abc", 3);
        char out[8];
        QCOMPARE(ring.read(out, 0), 0);
        QCOMPARE(ring.read(out, -1), 0);
        QCOMPARE(ring.avail(), 3);
    }

    void itsOwnOperationsDoNotTakeTheMutex()
    {
        CircularBuffer ring(8, false);
        const std::lock_guard<CircularBuffer::AnyMutex> lock(ring.mutex);
        QCOMPARE(ring.write("abc", 3), 3);
        QCOMPARE(take(ring, 3), QByteArray("abc"));
    }

    void aRecursiveMutexIsLockedAgainByItsHolder()
    {
        CircularBuffer ring(8, true);
        const std::lock_guard<CircularBuffer::AnyMutex> outer(ring.mutex);
        const std::lock_guard<CircularBuffer::AnyMutex> inner(ring.mutex);
        QCOMPARE(ring.avail(), 0);
    }

    void joinsTwoThreadsUnderItsMutex()
    {
        CircularBuffer ring(64, false);
        constexpr int total = 5000;
        std::thread writer([&] {
            for (int sent = 0; sent < total;) {
                const std::lock_guard<CircularBuffer::AnyMutex> lock(ring.mutex);
                if (ring.space() >= static_cast<int>(sizeof sent)) {
                    ring.write(&sent, sizeof sent);
                    ++sent;
                }
            }
        });
        bool inOrder = true;
        for (int expected = 0; expected < total;) {
            const std::lock_guard<CircularBuffer::AnyMutex> lock(ring.mutex);
            if (ring.avail() >= static_cast<int>(sizeof expected)) {
                int got = -1;
                ring.read(&got, sizeof got);
                inOrder = inOrder && got == expected;
                ++expected;
            }
        }
        writer.join();
        QVERIFY(inOrder);
    }

private:
    static QByteArray take(CircularBuffer &ring, int count)
    {
        QByteArray bytes(count, '?');
        bytes.truncate(ring.read(bytes.data(), count));
        return bytes;
    }
};

QTEST_GUILESS_MAIN(TestCircularBuffer)
#include "tst_circularbuffer.moc"
