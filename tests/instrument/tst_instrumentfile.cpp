// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"
#include "instrument/InstrumentFile.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

namespace
{

// The document with one piece of its text replaced; fails the test's premise if it is not there.
QByteArray replaced(QByteArray xml, const char *from, const QByteArray &to)
{
    const qsizetype at = xml.indexOf(from);
    if (at < 0) {
        qFatal("the document does not hold %s", from);
    }
    return xml.replace(at, static_cast<qsizetype>(qstrlen(from)), to);
}

} // namespace

class TestInstrumentFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLayoutByteByByte()
    {
        InstrumentMemory memory;
        memory.stored[0].templateName.set("A & <B>");
        memory.stored[0].controlType = 1;
        memory.stored[0].knobs[0].ccNumber = 74;
        memory.currentTemplate = 12;
        const QByteArray xml = InstrumentFile::print(memory);
        QVERIFY(xml.startsWith("<!DOCTYPE TARN_TERNRemoteEditorFile>\n"
                               "<bank version=\"1.0\">\n"
                               "    <template1>\n"
                               "        <name>A &amp; &lt;B&gt;</name>\n"
                               "        <vstiname></vstiname>\n"
                               "        <controltype>1</controltype>\n"
                               "        <knobA1>\n"
                               "            <displayname></displayname>\n"
                               "            <ccnumber>74</ccnumber>\n"
                               "            <displayformat>0</displayformat>\n"
                               "            <remotenumber>204143dff</remotenumber>\n"
                               "        </knobA1>\n"
                               "        <knobB1>\n"));
        QVERIFY(xml.endsWith("    <bankInfo>\n"
                             "        <templateNumber>12</templateNumber>\n"
                             "    </bankInfo>\n"
                             "</bank>\n"));
        QVERIFY(xml.indexOf("<template50>") < xml.indexOf("<editBuffTemplate1>"));
        QCOMPARE(xml.count("<knobD3>"), 100);
    }

    void whatIsSavedIsLoadedAgain_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 5; ++seed) {
            QTest::addRow("seed %u", seed) << seed;
        }
    }
    void whatIsSavedIsLoadedAgain()
    {
        QFETCH(quint32, seed);
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("state.Q7V"));
        const InstrumentMemory memory = randomMemory(seed);
        QString error;
        QVERIFY2(InstrumentFile::save(path, memory, &error), qPrintable(error));
        InstrumentMemory loaded;
        QVERIFY2(InstrumentFile::load(path, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded, memory);
    }

    void everyCharacterAFieldCanHoldIsWrittenSoThatItCanBeRead()
    {
        InstrumentMemory memory;
        const auto field = [](InstrumentMemory &m, int c) -> InstrumentText<15> & {
            return m.editBuffer[static_cast<std::size_t>(c % 50)]
                .knobs[static_cast<std::size_t>(c / 50)]
                .displayName;
        };
        for (int c = 0; c < 0x80; ++c) {
            field(memory, c).set(QByteArray("a") + static_cast<char>(c) + 'b');
        }
        InstrumentMemory loaded;
        QString error;
        QVERIFY2(InstrumentFile::parse(InstrumentFile::print(memory), &loaded, &error),
                 qPrintable(error));
        for (int c = 0; c < 0x80; ++c) {
            const bool isForbidden = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
            QCOMPARE(field(loaded, c).trimmed(),
                     QByteArray("a") + (isForbidden ? '?' : static_cast<char>(c)) + 'b');
        }
    }

    void textsAreFittedToTheInstrumentsFields()
    {
        QByteArray xml = InstrumentFile::print(InstrumentMemory());
        xml = replaced(xml, "<name></name>", "<name>fourteen chars</name>");
        xml = replaced(xml, "<displayname></displayname>",
                       "<displayname>\xC3\xA9t\xC3\xA9</displayname>");
        xml = replaced(xml, "<remotenumber>204143dff", "<remotenumber>1000AB");
        InstrumentMemory loaded;
        QString error;
        QVERIFY2(InstrumentFile::parse(xml, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.stored[0].templateName.padded(), QByteArray("fourteen char"));
        QCOMPARE(loaded.stored[0].knobs[0].displayName.trimmed(), QByteArray("?t?"));
        QCOMPARE(loaded.stored[0].knobs[0].remoteId.padded(), QByteArray("1000ab   "));
    }

    void ofTwoAlikeTheFirstCountsAndStrangersArePassedOver()
    {
        QByteArray xml = InstrumentFile::print(InstrumentMemory());
        xml = replaced(xml, "<name></name>",
                       "<name>first</name><name>second</name><stranger><a/></stranger>");
        xml = replaced(xml, "<bankInfo>", "<template1/><other/><bankInfo>");
        InstrumentMemory loaded;
        QString error;
        QVERIFY2(InstrumentFile::parse(xml, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.stored[0].templateName.trimmed(), QByteArray("first"));
    }

    void damagedFilesAreRefusedWithAMessage_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("message");
        const QByteArray good = InstrumentFile::print(InstrumentMemory());
        const auto row = [](const char *name, const QByteArray &xml, const char *message) {
            QTest::newRow(name) << xml << QString::fromLatin1(message);
        };
        row("empty", {}, "line");
        row("blanks", "  \n ", "line");
        row("binary", QByteArray(1000, '\0'), "line");
        row("no document type", good.mid(good.indexOf("<bank")), "not an editor file");
        row("other document type", replaced(good, "TARN_TERNRemoteEditorFile", "Other"),
            "not an editor file");
        row("other root", replaced(replaced(good, "<bank ", "<bunk "), "</bank>", "</bunk>"),
            "Root tag");
        row("newer version", replaced(good, "1.0", "1.1"), "version");
        row("no version", replaced(good, " version=\"1.0\"", ""), "version");
        row("version that is no number", replaced(good, "1.0", "x"), "version");
        row("version nan", replaced(good, "1.0", "nan"), "version");
        row("a control change of 200", replaced(good, "<ccnumber>0", "<ccnumber>200"),
            "template1/knobA1/ccnumber is not a number from 0 to 127");
        row("a control type of 2", replaced(good, "<controltype>0", "<controltype>2"),
            "template1/controltype");
        row("a display format that is a word",
            replaced(good, "<displayformat>0", "<displayformat>on"), "displayformat");
        row("an empty number", replaced(good, "<ccnumber>0", "<ccnumber>"), "ccnumber");
        row("a fifty-first template as current",
            replaced(good, "<templateNumber>0", "<templateNumber>50"), "templateNumber");
        row("no template 50",
            replaced(replaced(good, "<template50>", "<tem>"), "</template50>", "</tem>"),
            "(template50)");
        row("no edit buffer template 1",
            replaced(replaced(good, "<editBuffTemplate1>", "<tem>"), "</editBuffTemplate1>",
                     "</tem>"),
            "(editBuffTemplate1)");
        row("no knob", replaced(replaced(good, "<knobC2>", "<k>"), "</knobC2>", "</k>"),
            "(template1/knobC2)");
        row("no name", replaced(good, "<name></name>", ""), "(template1/name)");
        row("no remote number", replaced(good, "<remotenumber>204143dff</remotenumber>", ""),
            "(template1/knobA1/remotenumber)");
        row("no bank info", replaced(replaced(good, "<bankInfo>", "<i>"), "</bankInfo>", "</i>"),
            "(bankInfo)");
        row("no template number", replaced(good, "<templateNumber>0</templateNumber>", ""),
            "(bankInfo/templateNumber)");
        row("an element in a text", replaced(good, "<name></name>", "<name><b/></name>"), "line 4");
        row("something behind the end", good + "<more/>", "line");
        row("entities of its own",
            replaced(good, "EditorFile>",
                     "EditorFile [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>"),
            "declares");
        row("an internal subset without entities",
            replaced(good, "EditorFile>", "EditorFile [<!ELEMENT bank ANY>]>"), "declares");
        row("an unknown entity", replaced(good, "<name></name>", "<name>&lol;</name>"), "line 4");
        row("nested without end",
            replaced(good, "<name></name>", QByteArray("<x>").repeated(200000)), "line");
        row("too large", good + QByteArray(InstrumentFile::MaxFileSize, ' '), "too large");
    }
    void damagedFilesAreRefusedWithAMessage()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, message);
        const QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("damaged.Q7V")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(xml) == xml.size());
        file.close();
        const InstrumentMemory before = randomMemory(9);
        InstrumentMemory memory = before;
        QString error;
        QVERIFY(!InstrumentFile::load(file.fileName(), &memory, &error));
        QVERIFY2(error.contains(message), qPrintable(error));
        QCOMPARE(memory, before);
    }

    void aFileCutAnywhereIsRefused()
    {
        const QByteArray good = InstrumentFile::print(InstrumentMemory());
        const qsizetype end = good.trimmed().size();
        for (qsizetype length = 0; length < end; length += length < 1000 ? 7 : 9973) {
            InstrumentMemory memory;
            QString error;
            QVERIFY(!InstrumentFile::parse(good.first(length), &memory, &error));
            QVERIFY(!error.isEmpty());
        }
    }

    void aPipeIsNotReplacedByAFile()
    {
        const QTemporaryDir dir;
        const QByteArray path = QFile::encodeName(dir.filePath(QStringLiteral("pipe")));
        QCOMPARE(mkfifo(path.constData(), 0600), 0);
        QString error;
        QVERIFY(!InstrumentFile::save(QFile::decodeName(path), InstrumentMemory(), &error));
        struct stat info = {};
        QCOMPARE(stat(path.constData(), &info), 0);
        QVERIFY(S_ISFIFO(info.st_mode));
    }

    void aFailedWritingLeavesTheOldFile()
    {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("state.Q7V"));
        const InstrumentMemory old = randomMemory(1);
        QString error;
        QVERIFY(InstrumentFile::save(path, old, &error));

        // A disk that is full after ten thousand bytes, as far as this process can see.
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit former = {};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
        rlimit small = former;
        small.rlim_cur = 10000;
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const bool saved = InstrumentFile::save(path, randomMemory(2), &error);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &former), 0);

        QVERIFY(!saved);
        QVERIFY(error.startsWith(QStringLiteral("Failed in the file writing.")));
        InstrumentMemory loaded;
        QVERIFY(InstrumentFile::load(path, &loaded, &error));
        QCOMPARE(loaded, old);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList(QStringLiteral("state.Q7V")));
    }

    void placesThatCannotBeReadOrWritten()
    {
        const QTemporaryDir dir;
        InstrumentMemory memory;
        QString error;
        QVERIFY(!InstrumentFile::load(dir.filePath(QStringLiteral("none.Q7V")), &memory, &error));
        QCOMPARE(error, QStringLiteral("File was not found."));
        QVERIFY(!InstrumentFile::load(dir.path(), &memory, &error));
        QCOMPARE(error, QStringLiteral("File could not be opened."));
        QVERIFY(!InstrumentFile::save(dir.filePath(QStringLiteral("none/x.Q7V")), memory, &error));
        QVERIFY(error.startsWith(QStringLiteral("Failed in the file writing.")));
        QVERIFY(!InstrumentFile::save(dir.path(), memory, &error));
        QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList());
    }
};

QTEST_APPLESS_MAIN(TestInstrumentFile)
#include "tst_instrumentfile.moc"
