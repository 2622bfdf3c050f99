// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/PlainText.h"
#include "helper/PluginAnswer.h"
#include "tests/helper/HelperRun.h"

#include <QtTest/QtTest>

#include <fcntl.h>
#include <sys/resource.h>

#include <csignal>
#include <string>

// What the helper makes of names, and of several classes in one file, without any plug-in.
class TestHelperText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesBecomeALineOfUtf8_data();
    void bytesBecomeALineOfUtf8();
    void utf16BecomesALineOfUtf8_data();
    void utf16BecomesALineOfUtf8();
    void blanksOfEveryKind_data();
    void blanksOfEveryKind();
    void namesThatSaySomething_data();
    void namesThatSaySomething();
    void classesOfOneFileGiveOneCode_data();
    void classesOfOneFileGiveOneCode();
    void nothingIsLeftOfAFileThatCouldNotBeFinished();
};

void TestHelperText::bytesBecomeALineOfUtf8_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("empty") << QByteArray("") << QByteArray("");
    QTest::newRow("plain") << QByteArray("Cutoff") << QByteArray("Cutoff");
    QTest::newRow("controls") << QByteArray("a\nb\rc\td\x01\x7F") << QByteArray("a b c d  ");
    QTest::newRow("UTF-8") << QByteArray("\xC3\xA4\xE2\x99\xAF\xF0\x9D\x84\x9E")
                           << QByteArray("\xC3\xA4\xE2\x99\xAF\xF0\x9D\x84\x9E");
    QTest::newRow("control beyond ASCII") << QByteArray("a\xC2\x85z") << QByteArray("a z");
    QTest::newRow("separator of lines") << QByteArray("a\xE2\x80\xA8z") << QByteArray("a z");
    QTest::newRow("Latin-1") << QByteArray("gr\xF6\xDF") << QByteArray("gr\xC3\xB6\xC3\x9F");
    QTest::newRow("UTF-8 cut off is Latin-1") << QByteArray("a\xC3") << QByteArray("a\xC3\x83");
    QTest::newRow("a longer form than needed")
        << QByteArray("\xC0\xAF") << QByteArray("\xC3\x80\xC2\xAF");
    QTest::newRow("half of a surrogate pair")
        << QByteArray("\xED\xA0\x80") << QByteArray("\xC3\xAD\xC2\xA0 ");
    QTest::newRow("beyond the last character")
        << QByteArray("\xF5\x80\x80\x80") << QByteArray("\xC3\xB5   ");
    QTest::newRow("a lone continuation") << QByteArray("\xBF") << QByteArray("\xC2\xBF");
}

void TestHelperText::bytesBecomeALineOfUtf8()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, line);
    QCOMPARE(QByteArray::fromStdString(lineFromBytes(bytes.toStdString())), line);
}

void TestHelperText::utf16BecomesALineOfUtf8_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("line");
    QTest::newRow("up to its end") << "abc"_q << 128 << "abc"_q;
    QTest::newRow("up to its length") << "abc"_q << 2 << "ab"_q;
    QTest::newRow("a pair") << QString::fromUcs4(U"\U0001D11E") << 128
                            << QString::fromUcs4(U"\U0001D11E");
    QTest::newRow("a pair cut by the length")
        << QString::fromUcs4(U"\U0001D11E") << 1 << QString(QChar(0xFFFD));
    QTest::newRow("second half first")
        << QString(QChar(0xDC00)) + "a"_q << 128 << QString(QChar(0xFFFD)) + "a"_q;
    QTest::newRow("two first halves")
        << QString(2, QChar(0xD800)) << 128 << QString(2, QChar(0xFFFD));
    QTest::newRow("controls") << QString(QChar(0x9F)) + "\n"_q << 128 << "  "_q;
}

void TestHelperText::utf16BecomesALineOfUtf8()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    QFETCH(QString, line);
    const std::u16string units = text.toStdU16String();
    const std::string result = lineFromUtf16(units.c_str(), static_cast<std::size_t>(length));
    QCOMPARE(QString::fromStdString(result), line);
}

void TestHelperText::blanksOfEveryKind_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QString();
    for (int code = 1; code < 0x10000; ++code) {
        const QString one{QChar(code)};
        // Whatever the reader takes off must count as blank here.
        if (QString::fromUtf8(one.toUtf8()).trimmed().isEmpty()) {
            QTest::addRow("U+%04X", static_cast<unsigned>(code)) << one;
        }
    }
    QTest::newRow("several") << QString::fromUtf8(" \t\u00A0\u3000 ");
}

void TestHelperText::blanksOfEveryKind()
{
    QFETCH(QString, text);
    QVERIFY(isBlank(text.toStdString()));
    QVERIFY(!isBlank(text.toStdString() + "a"));
    QVERIFY(!saysSomething(text.toStdString()));
}

void TestHelperText::namesThatSaySomething_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("says");
    for (const char *name : {"", " ", "1", "007", "#3", "Param 1", "PARAMETER 12", "param_3", "P4",
                             "Par-5", "(6)", "[ 7 ]", "Parameter", "1.2"}) {
        QTest::addRow("\"%s\"", name) << QString::fromUtf8(name) << false;
    }
    for (const char *name : {"Cutoff", "LFO 1", "Macro 1", "Slot 16", "P1 Level", "MIDI CC 0|1",
                             "A", "\u03B1", "%", "Parameters of Room"}) {
        QTest::addRow("\"%s\"", name) << QString::fromUtf8(name) << true;
    }
}

void TestHelperText::namesThatSaySomething()
{
    QFETCH(QString, name);
    QFETCH(bool, says);
    QCOMPARE(saysSomething(name.toStdString()), says);
}

void TestHelperText::classesOfOneFileGiveOneCode_data()
{
    QTest::addColumn<QList<QStringList>>("instruments");
    QTest::addColumn<QList<int>>("failures");
    QTest::addColumn<int>("code");
    using Instruments = QList<QStringList>;
    const QStringList good = {"Cutoff"_q};
    const QStringList numbered = {"1"_q, "2"_q};
    const QStringList none;
    QTest::newRow("nothing") << Instruments() << QList<int>() << 8;
    QTest::newRow("an effect") << Instruments() << QList<int>{3} << 3;
    QTest::newRow("the first failure of an instrument")
        << Instruments() << QList<int>{3, 7, 6} << 7;
    QTest::newRow("an instrument outweighs all") << Instruments{good} << QList<int>{3, 6} << 0;
    QTest::newRow("without parameters") << Instruments{none} << QList<int>() << 0;
    QTest::newRow("numbered") << Instruments{numbered} << QList<int>() << 2;
    QTest::newRow("numbered, and without parameters")
        << Instruments{none, numbered} << QList<int>() << 2;
    QTest::newRow("numbered beside a good one") << Instruments{numbered, good} << QList<int>() << 0;
    QTest::newRow("one name among numbers")
        << Instruments{{"1"_q, "Cutoff"_q, "3"_q}} << QList<int>() << 0;
}

void TestHelperText::classesOfOneFileGiveOneCode()
{
    QFETCH(QList<QStringList>, instruments);
    QFETCH(QList<int>, failures);
    QFETCH(int, code);
    PluginAnswer answer;
    for (const int failure : failures) {
        answer.addFailure(static_cast<HelperExit>(failure));
    }
    for (const QStringList &names : instruments) {
        InstrumentRecord record("Name");
        for (int i = 0; i < names.size(); ++i) {
            record.addParameter(i, names.at(i).toStdString(), {});
        }
        answer.addInstrument(std::move(record));
    }
    QCOMPARE(static_cast<int>(answer.exitCode()), code);
}

void TestHelperText::nothingIsLeftOfAFileThatCouldNotBeFinished()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("result.txt"_q);
    PluginAnswer answer;
    InstrumentRecord record("Name");
    record.addParameter(0, std::string(100000, 'x'), {});
    answer.addInstrument(std::move(record));
    // As on a full disk: the file's first half is accepted.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
    rlimit small = before;
    small.rlim_cur = 50000;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written = answer.write(path.toStdString());
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &before), 0);
    QVERIFY(!written);
    QVERIFY(QDir(folder.path()).isEmpty());
    QVERIFY(answer.write(path.toStdString()));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("result.txt"_q));
}

QTEST_APPLESS_MAIN(TestHelperText)
#include "tst_helpertext.moc"
