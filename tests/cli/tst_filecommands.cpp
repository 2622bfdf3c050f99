// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "cli/CliHarness.h"
#include "instrument/InstrumentFile.h"
#include "instrument/InstrumentTestTools.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtTest/QtTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <memory>

// The commands on files: show, get, set, check, diff, and bad input to all that read one.

class TestFileCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void showAsJsonHasTheWholeDocument();
    void showAsJsonOfOneTemplate();
    void showAsATable();
    void showPrintsNamesThatLookLikePlaceholders();
    void getAndSetOfEveryField_data();
    void getAndSetOfEveryField();
    void refusedValuesNameTheLimit_data();
    void refusedValuesNameTheLimit();
    void refusedAddresses_data();
    void refusedAddresses();
    void aRefusedAddressIsToldWhatMayFollowTheBank();
    void aLostOutputIsNoSuccess();
    void aFullDiskLeavesTheOldFile();
    void exportOntoItsOwnSourceIsRefused();
    void exportOntoWhatIsNoPlainFileIsRefused();
    void exportGoesThroughALinkAndNotIntoARing();
    void aTerminalIsShownTextAndNothingToObey();
    void theProgramEndsAtOnceUnlessItWouldLeaveDisorder();
    void checkTellsEachFile();
    void diffOfEqualFilesIsSilent();
    void diffNamesEachParameter();
    void aValueThatALoadRefusesIsNotTakenFromTheOtherFile();
    void badInputIsRefusedWithTheLoadsText_data();
    void badInputIsRefusedWithTheLoadsText();

private:
    bool writeFile(const QString &name, const InstrumentMemory &memory)
    {
        QString error;
        return InstrumentFile::save(m_cli->path(name), memory, &error);
    }
    QString file() const { return m_cli->path(QStringLiteral("a.Q7V")); }
    QString other() const { return m_cli->path(QStringLiteral("b.Q7V")); }

    InstrumentMemory m_memory;
    std::unique_ptr<CliHarness> m_cli;
};

void TestFileCommands::init()
{
    m_memory = randomMemory(11);
    m_cli = std::make_unique<CliHarness>();
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), m_memory));
}

void TestFileCommands::showAsJsonHasTheWholeDocument()
{
    QCOMPARE(m_cli->run({"show", file(), "--json"}), 0);
    const QJsonObject root = m_cli->json();
    QCOMPARE(root.keys(), QStringList({"currentTemplate"_q, "edit"_q, "stored"_q}));
    QCOMPARE(root.value("currentTemplate"_q).toInt(), m_memory.currentTemplate + 1);
    for (const QString &bank : {"edit"_q, "stored"_q}) {
        const QJsonArray templates = root.value(bank).toArray();
        QCOMPARE(templates.size(), 50);
        const InstrumentBank &expected = bank == "edit"_q ? m_memory.editBuffer : m_memory.stored;
        for (int number = 0; number < 50; ++number) {
            const InstrumentTemplate &source = expected[static_cast<std::size_t>(number)];
            const QJsonObject object = templates.at(number).toObject();
            QCOMPARE(object.keys(), QStringList({"controlType"_q, "knobs"_q, "number"_q,
                                                 "templateName"_q, "vstiName"_q}));
            QCOMPARE(object.value("number"_q).toInt(), number + 1);
            QCOMPARE(object.value("templateName"_q).toString().toLatin1(),
                     source.templateName.trimmed());
            QCOMPARE(object.value("vstiName"_q).toString().toLatin1(), source.vstiName.trimmed());
            QCOMPARE(object.value("controlType"_q).toInt(), int(source.controlType));
            const QJsonArray knobs = object.value("knobs"_q).toArray();
            QCOMPARE(knobs.size(), 12);
            for (int knob = 0; knob < 12; ++knob) {
                const InstrumentKnob &from = source.knobs[static_cast<std::size_t>(knob)];
                const QJsonObject shown = knobs.at(knob).toObject();
                QCOMPARE(shown.keys(), QStringList({"ccNumber"_q, "displayFormat"_q,
                                                    "displayName"_q, "knob"_q, "remoteNumber"_q}));
                QCOMPARE(shown.value("knob"_q).toString(),
                         QLatin1String(LCDSelectAddressUpper[knob]));
                QCOMPARE(shown.value("displayName"_q).toString().toLatin1(),
                         from.displayName.trimmed());
                QCOMPARE(shown.value("ccNumber"_q).toInt(), int(from.ccNumber));
                QCOMPARE(shown.value("displayFormat"_q).toInt(), int(from.displayFormat));
                QCOMPARE(shown.value("remoteNumber"_q).toString().toLatin1(),
                         from.remoteId.trimmed());
            }
        }
    }
}

void TestFileCommands::showAsJsonOfOneTemplate()
{
    QCOMPARE(m_cli->run({"show", file(), "--json", "--template", "13"}), 0);
    for (const QString &bank : {"edit"_q, "stored"_q}) {
        const QJsonArray templates = m_cli->json().value(bank).toArray();
        QCOMPARE(templates.size(), 1);
        QCOMPARE(templates.first().toObject().value("number"_q).toInt(), 13);
    }
}

void TestFileCommands::showAsATable()
{
    QCOMPARE(m_cli->run({"show", file()}), 0);
    QVERIFY(m_cli->out.startsWith("Current template: "));
    QCOMPARE(m_cli->out.count('\n'), 1 + 2 * (2 + 50));
    QCOMPARE(m_cli->run({"show", file(), "--template", "50"}), 0);
    QCOMPARE(m_cli->out.count("knobD3"), 2);
}

void TestFileCommands::showPrintsNamesThatLookLikePlaceholders()
{
    QCOMPARE(m_cli->run({"set", file(), "edit/1/templateName", "%6%5%1"}), 0);
    QCOMPARE(m_cli->run({"set", file(), "edit/1/knobA1/displayName", "%4%3"}), 0);
    QCOMPARE(m_cli->run({"show", file()}), 0);
    QVERIFY(m_cli->out.contains("%6%5%1"));
    QCOMPARE(m_cli->run({"show", file(), "--template", "1"}), 0);
    QVERIFY(m_cli->out.contains("%6%5%1"));
    QVERIFY(m_cli->out.contains("%4%3"));
}

void TestFileCommands::getAndSetOfEveryField_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("value");
    const auto row = [](const char *address, const char *value) {
        QTest::addRow("%s = %s", address, value)
            << QString::fromUtf8(address) << QString::fromUtf8(value);
    };
    row("edit/13/knobA1/ccNumber", "127");
    row("edit/1/knobD3/ccNumber", "0");
    row("edit/50/knobB2/displayFormat", "1");
    row("stored/1/knobC1/displayName", "fifteen letters");
    row("stored/2/knobC1/displayName", "");
    row("stored/50/knobD1/remoteNumber", "100000401");
    row("stored/1/templateName", "thirteen char");
    row("edit/1/vstiName", "twelve chars");
    row("edit/1/vstiName", "\xC3\x84 & <b> \" '");
    row("edit/7/controlType", "1");
    row("edit/currentTemplateNumber", "50");
    row("edit/currentTemplateNumber", "1");
}

void TestFileCommands::getAndSetOfEveryField()
{
    QFETCH(QString, address);
    QFETCH(QString, value);
    QVERIFY(QFile::copy(file(), other()));
    QCOMPARE(m_cli->run({"set", file(), address, value}), 0);
    QCOMPARE(m_cli->run({"get", file(), address}), 0);
    QCOMPARE(QString::fromUtf8(m_cli->out), value + QLatin1Char('\n'));
    // Nothing else has changed.
    m_cli->run({"diff", other(), file()});
    QVERIFY(m_cli->out.isEmpty() ||
            (m_cli->out.count('\n') == 1 && m_cli->out.startsWith(address.toUtf8() + ": ")));
}

void TestFileCommands::refusedValuesNameTheLimit_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("limit");
    const auto row = [](const char *name, const char *address, const char *value,
                        const char *limit) {
        QTest::newRow(name) << QString::fromUtf8(address) << QString::fromUtf8(value)
                            << QByteArray(limit);
    };
    row("cc number too high", "edit/1/knobA1/ccNumber", "128", "from 0 to 127");
    row("cc number below 0", "edit/1/knobA1/ccNumber", "-1", "from 0 to 127");
    row("cc number empty", "edit/1/knobA1/ccNumber", "", "from 0 to 127");
    row("cc number that is none", "edit/1/knobA1/ccNumber", "7a", "from 0 to 127");
    row("cc number with a fraction", "edit/1/knobA1/ccNumber", "7.0", "from 0 to 127");
    row("cc number behind a blank", "edit/1/knobA1/ccNumber", " 7", "from 0 to 127");
    row("cc number with a plus sign", "edit/1/knobA1/ccNumber", "+7", "from 0 to 127");
    row("cc number beyond all", "edit/1/knobA1/ccNumber", "99999999999999999999", "from 0 to 127");
    row("display format", "edit/1/knobA1/displayFormat", "2", "from 0 to 1");
    row("control type", "edit/1/controlType", "2", "from 0 to 1");
    row("current template 0", "edit/currentTemplateNumber", "0", "from 1 to 50");
    row("current template 51", "edit/currentTemplateNumber", "51", "from 1 to 50");
    row("display name too long", "edit/1/knobA1/displayName", "sixteen letters!", "15 is the most");
    row("template name too long", "edit/1/templateName", "fourteen chars", "13 is the most");
    row("instrument name too long", "edit/1/vstiName", "thirteen char", "12 is the most");
    row("remote number too long in small letters", "edit/1/knobA1/remoteNumber",
        "\xC4\xB0\xC4\xB0\xC4\xB0\xC4\xB0\xC4\xB0", "9 is the most");
    row("remote number too long", "edit/1/knobA1/remoteNumber", "0123456789", "9 is the most");
    row("a control character", "edit/1/templateName", "a\x01", "can't be written");
    row("a line end", "edit/1/templateName", "a\nb", "can't be written");
    row("a control character beyond ASCII", "edit/1/templateName", "a\xC2\x9B", "can't be written");
    row("a turn of direction", "edit/1/templateName", "a\xE2\x80\xAE", "can't be written");
}

void TestFileCommands::refusedValuesNameTheLimit()
{
    QFETCH(QString, address);
    QFETCH(QString, value);
    QFETCH(QByteArray, limit);
    const QByteArray before = m_cli->read("a.Q7V"_q);
    QCOMPARE(m_cli->run({"set", file(), address, value}), 1);
    QVERIFY2(m_cli->err.contains(limit), m_cli->err.constData());
    QCOMPARE(m_cli->read("a.Q7V"_q), before);
}

void TestFileCommands::refusedAddresses_data()
{
    QTest::addColumn<QString>("address");
    for (const char *address : {"",
                                "edit",
                                "edit/",
                                "edit/0/templateName",
                                "edit/51/templateName",
                                "edit/1",
                                "edit/1/",
                                "edit/1/knobA1",
                                "edit/1/knobA4/ccNumber",
                                "edit/1/knobA1/templateName",
                                "edit/1/ccNumber",
                                "edit/1/knobA1/ccNumber/",
                                "other/1/templateName",
                                "stored/currentTemplateNumber",
                                "/edit/1/templateName",
                                "edit/1/TEMPLATENAME",
                                "edit/x/templateName",
                                "edit/ 1/templateName",
                                "edit/+1/templateName",
                                "edit/1/bankAvailableFlag",
                                "edit/bankEditFlag",
                                "stored",
                                "isOnline"}) {
        QTest::addRow("'%s'", address) << QString::fromLatin1(address);
    }
}

void TestFileCommands::refusedAddresses()
{
    QFETCH(QString, address);
    const QByteArray before = m_cli->read("a.Q7V"_q);
    QCOMPARE(m_cli->run({"get", file(), address}), 1);
    QVERIFY2(m_cli->err.contains("is no address: "), m_cli->err.constData());
    QCOMPARE(m_cli->run({"set", file(), address, "1"}), 1);
    QVERIFY(m_cli->err.contains("is no address: "));
    QCOMPARE(m_cli->read("a.Q7V"_q), before);
}

void TestFileCommands::aRefusedAddressIsToldWhatMayFollowTheBank()
{
    for (const char *address : {"edit", "edit/bankEditFlag"}) {
        QCOMPARE(m_cli->run({"get", file(), address}), 1);
        QVERIFY2(m_cli->err.contains("\"edit\" is followed by the number of a template or by "
                                     "\"currentTemplateNumber\"."),
                 m_cli->err.constData());
    }
    QCOMPARE(m_cli->run({"get", file(), "stored/bankEditFlag"}), 1);
    QVERIFY(m_cli->err.contains("\"stored\" is followed by the number of a template."));
    QCOMPARE(m_cli->run({"get", file(), "edit/51/templateName"}), 1);
    QVERIFY(m_cli->err.contains("templates are numbered from 1 to 50."));
}

void TestFileCommands::aLostOutputIsNoSuccess()
{
    int ends[2] = {-1, -1};
    QCOMPARE(pipe(ends), 0);
    close(ends[0]);
    const auto handler = std::signal(SIGPIPE, SIG_IGN);
    QFile out;
    QVERIFY(out.open(ends[1], QIODevice::WriteOnly, QFileDevice::AutoCloseHandle));
    QByteArray errors;
    QBuffer err(&errors);
    err.open(QIODevice::WriteOnly);
    Console console(&out, &err, false);
    Interruption interruption;
    const int result = trnRemote({"trn-remote"_q, "show"_q, file(), "--json"_q}, &console,
                                 &interruption, [](const QString &) {});
    std::signal(SIGPIPE, handler);
    QCOMPARE(result, 1);
    QVERIFY2(errors.contains("The output could not be written."), errors.constData());
}

void TestFileCommands::aFullDiskLeavesTheOldFile()
{
    QVERIFY(QFile::copy(file(), other()));
    const QByteArray before = m_cli->read("a.Q7V"_q);
    rlimit old{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &old), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{10000, old.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const int setCode = m_cli->run({"set", file(), "edit/1/templateName", "changed"});
    const QByteArray setError = m_cli->err;
    const int exportCode = m_cli->run({"export", file(), other()});
    const QByteArray exportError = m_cli->err;
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &old), 0);
    QCOMPARE(setCode, 1);
    QVERIFY2(setError.contains("Failed in the file writing."), setError.constData());
    QCOMPARE(exportCode, 1);
    QVERIFY2(exportError.contains("Failed in the file writing."), exportError.constData());
    QCOMPARE(m_cli->read("a.Q7V"_q), before);
    QCOMPARE(m_cli->read("b.Q7V"_q), before);
}

void TestFileCommands::exportOntoItsOwnSourceIsRefused()
{
    const QByteArray before = m_cli->read("a.Q7V"_q);
    QVERIFY(QFile::link(file(), m_cli->path("link"_q)));
    for (const QString &target : {file(), m_cli->path("./a.Q7V"_q), m_cli->path("link"_q)}) {
        QCOMPARE(m_cli->run({"export", file(), target}), 2);
        QVERIFY2(m_cli->err.contains("would overwrite what is exported"), m_cli->err.constData());
        QCOMPARE(m_cli->read("a.Q7V"_q), before);
    }
}

void TestFileCommands::exportOntoWhatIsNoPlainFileIsRefused()
{
    const QString pipe = m_cli->path("pipe"_q);
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &target : {pipe, m_cli->path("."_q), m_cli->path("none/out.syx"_q)}) {
        QCOMPARE(m_cli->run({"export", file(), target}), 1);
        QVERIFY2(m_cli->err.contains("Failed in the file writing."), m_cli->err.constData());
    }
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(pipe).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void TestFileCommands::exportGoesThroughALinkAndNotIntoARing()
{
    const QString ring = m_cli->path("ring"_q);
    QVERIFY(QFile::link(m_cli->path("other ring"_q), ring));
    QVERIFY(QFile::link(ring, m_cli->path("other ring"_q)));
    QCOMPARE(m_cli->run({"export", file(), ring}), 1);
    QVERIFY2(m_cli->err.contains("Failed in the file writing."), m_cli->err.constData());
    QCOMPARE(QFile::symLinkTarget(ring), m_cli->path("other ring"_q));
    const QString link = m_cli->path("link"_q);
    QVERIFY(QFile::link(m_cli->path("far.syx"_q), link));
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(m_cli->run({"export", file(), link}), 0);
        QCOMPARE(QFile::symLinkTarget(link), m_cli->path("far.syx"_q));
        QVERIFY(m_cli->read("far.syx"_q).startsWith('\xF0'));
    }
}

void TestFileCommands::aTerminalIsShownTextAndNothingToObey()
{
    QByteArray xml = m_cli->read("a.Q7V"_q);
    const auto name = xml.indexOf("<name>");
    QVERIFY(name > 0);
    xml.insert(name + qsizetype(std::strlen("<name>")), "\xC2\x9B"
                                                        "31m\xE2\x80\xAEz");
    QVERIFY(m_cli->write("\x1B[2J.Q7V"_q, xml));
    for (const bool isTerminal : {true, false}) {
        m_cli->isWatched = isTerminal;
        QByteArray all;
        for (const char *command : {"show", "check"}) {
            QCOMPARE(m_cli->run({command, m_cli->path("\x1B[2J.Q7V"_q)}), 0);
            all += m_cli->out;
        }
        QCOMPARE(m_cli->run({"diff", file(), m_cli->path("\x1B[2J.Q7V"_q)}), 1);
        all += m_cli->out;
        QCOMPARE(m_cli->run({"check", m_cli->path("\x1B[2J"_q)}), 1);
        all += m_cli->err;
        for (const char *obeyed : {"\x1B", "\xC2\x9B", "\xE2\x80\xAE"}) {
            QCOMPARE(all.contains(obeyed), !isTerminal);
        }
        QVERIFY(all.contains("31m"));
        QVERIFY(all.count('\n') > 100);
    }
}

void TestFileCommands::theProgramEndsAtOnceUnlessItWouldLeaveDisorder()
{
    const auto listens = [this](const QStringList &words) {
        bool isListening = false;
        Interruption interruption([&isListening] { isListening = true; });
        m_cli->runWords(words, &interruption);
        return isListening;
    };
    const QString number = "edit/1/knobA1/ccNumber"_q;
    QVERIFY(!listens({"check"_q, file()}));
    QVERIFY(!listens({"show"_q, file()}));
    QVERIFY(!listens({"get"_q, file(), number}));
    QVERIFY(!listens({"diff"_q, file(), file()}));
    QVERIFY(!listens({"set"_q, file(), number, "128"_q}));
    QVERIFY(listens({"set"_q, file(), number, "12"_q}));
    QVERIFY(listens({"export"_q, file(), m_cli->path("a.syx"_q)}));
    QVERIFY(listens({"import"_q, m_cli->path("a.syx"_q), other()}));
    QVERIFY(listens({"ports"_q}));
    QVERIFY(listens({"monitor"_q}));
    QVERIFY(listens({"receive"_q, other()}));
    QVERIFY(listens({"send"_q, file()}));
}

void TestFileCommands::checkTellsEachFile()
{
    QVERIFY(m_cli->write("bad"_q, "nonsense"));
    const QString bad = m_cli->path("bad"_q);
    QCOMPARE(m_cli->run({"check", file()}), 0);
    QVERIFY(m_cli->err.isEmpty());
    QCOMPARE(m_cli->run({"check", bad, file(), m_cli->path("none"_q)}), 1);
    const QList<QByteArray> lines = m_cli->err.trimmed().split('\n');
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.at(0).startsWith(bad.toUtf8() + ": Parse error at line 1. ("));
    QVERIFY(lines.at(1).endsWith("none: File was not found."));
    QVERIFY(m_cli->out.contains("a.Q7V: ok"));
}

void TestFileCommands::diffOfEqualFilesIsSilent()
{
    QVERIFY(QFile::copy(file(), other()));
    QCOMPARE(m_cli->run({"diff", file(), other()}), 0);
    QVERIFY(m_cli->out.isEmpty());
    QVERIFY(m_cli->err.isEmpty());
}

void TestFileCommands::diffNamesEachParameter()
{
    InstrumentMemory changed = m_memory;
    changed.editBuffer[0].controlType ^= 1;
    changed.stored[49].knobs[11].displayName.set("changed");
    changed.stored[49].knobs[11].remoteId.set("1");
    QVERIFY(writeFile("b.Q7V"_q, changed));
    QCOMPARE(m_cli->run({"diff", file(), other()}), 1);
    const QList<QByteArray> lines = m_cli->out.trimmed().split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(0).startsWith("edit/1/controlType: "));
    QVERIFY(lines.at(1).startsWith("stored/50/knobD3/displayName: "));
    QVERIFY(lines.at(1).endsWith("-> \"changed\""));
    QVERIFY(lines.at(2).startsWith("stored/50/knobD3/remoteNumber: "));
    QCOMPARE(m_cli->err, QByteArray("3 values differ.\n"));
}

void TestFileCommands::aValueThatALoadRefusesIsNotTakenFromTheOtherFile()
{
    QCOMPARE(m_cli->run({"set", file(), "edit/1/knobA1/ccNumber", "77"}), 0);
    QByteArray bytes = m_cli->read("a.Q7V"_q);
    const qsizetype place = bytes.indexOf("<ccnumber>77<", bytes.indexOf("<editBuffTemplate1>"));
    QVERIFY(place > 0);
    QVERIFY(m_cli->write("b.Q7V"_q, bytes.replace(place, 13, "<ccnumber>200<")));
    QCOMPARE(m_cli->run({"diff", file(), other()}), 1);
    QVERIFY(m_cli->out.startsWith("edit/1/knobA1/ccNumber: 77 -> "));
}

void TestFileCommands::badInputIsRefusedWithTheLoadsText_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QByteArray>("text");
    const auto row = [](const char *kind, const char *text) {
        QTest::newRow(kind) << QString::fromLatin1(kind) << QByteArray(text);
    };
    row("missing", "File was not found.");
    row("a folder given as a file", "File could not be opened.");
    row("a pipe given as a file", "File could not be opened.");
    row("empty", "Parse error");
    row("binary", "Parse error");
    row("truncated", "Parse error");
    row("damaged", "Parse error");
    row("deeply nested", "Parse error");
    row("entity bomb", "Parse error");
    row("huge", "Parse error");
    row("another document", "File is not an editor file.");
    row("another version", "It doesn't correspond to this version.");
    row("a part is missing", "Parameter is not found.");
}

void TestFileCommands::badInputIsRefusedWithTheLoadsText()
{
    QFETCH(QString, kind);
    QFETCH(QByteArray, text);
    const QByteArray good = m_cli->read("a.Q7V"_q);
    const QString bad = "bad.Q7V"_q;
    bool isWritten = true;
    if (kind == "a folder given as a file"_q) {
        isWritten = QDir().mkdir(m_cli->path(bad));
    } else if (kind == "a pipe given as a file"_q) {
        isWritten = mkfifo(QFile::encodeName(m_cli->path(bad)).constData(), 0600) == 0;
    } else if (kind != "missing"_q) {
        QByteArray bytes;
        if (kind == "binary"_q) {
            bytes = QByteArray::fromHex("00ff7f454c46f043").repeated(512);
        } else if (kind == "truncated"_q) {
            bytes = good.left(good.size() / 2);
        } else if (kind == "damaged"_q) {
            bytes = QByteArray(good).replace("</knobB2>", "</knobB3>");
        } else if (kind == "deeply nested"_q) {
            bytes = "<!DOCTYPE TARN_TERNRemoteEditorFile>" + QByteArray("<a>").repeated(200000);
        } else if (kind == "entity bomb"_q) {
            bytes = "<!DOCTYPE TARN_TERNRemoteEditorFile [<!ENTITY a \"aaaaaaaaaa\">"
                    "<!ENTITY b \"&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;\">]>"
                    "<bank version=\"1.0\">&c;</bank>";
        } else if (kind == "huge"_q) {
            bytes = "<!DOCTYPE TARN_TERNRemoteEditorFile><bank version=\"1.0\">" +
                    QByteArray(64 * 1024 * 1024, 'x');
        } else if (kind == "another document"_q) {
            bytes = "<!DOCTYPE html><bank version=\"1.0\"/>";
        } else if (kind == "another version"_q) {
            bytes = QByteArray(good).replace("version=\"1.0\"", "version=\"1.1\"");
        } else if (kind == "a part is missing"_q) {
            bytes = QByteArray(good).replace("bankInfo", "other");
        }
        isWritten = m_cli->write(bad, bytes);
    }
    QVERIFY(isWritten);
    const QByteArray before = m_cli->read("a.Q7V"_q);
    const QString path = m_cli->path(bad);
    const auto isTold = [&] {
        return m_cli->err.startsWith(path.toUtf8() + ": ") && m_cli->err.contains(text) &&
               m_cli->out.isEmpty();
    };
    QCOMPARE(m_cli->run({"check", path}), 1);
    QVERIFY2(isTold(), m_cli->err.constData());
    QCOMPARE(m_cli->run({"show", path}), 1);
    QVERIFY2(isTold(), m_cli->err.constData());
    QCOMPARE(m_cli->run({"get", path, "edit/1/templateName"}), 1);
    QVERIFY(isTold());
    QCOMPARE(m_cli->run({"set", path, "edit/1/templateName", "x"}), 1);
    QVERIFY(isTold());
    QCOMPARE(m_cli->run({"export", path, m_cli->path("out.syx"_q)}), 1);
    QVERIFY(isTold());
    QVERIFY(!m_cli->exists("out.syx"_q));
    QCOMPARE(m_cli->run({"diff", file(), path}), 1);
    QVERIFY(isTold());
    QCOMPARE(m_cli->run({"send", path}), 1);
    QVERIFY(isTold());
    QCOMPARE(m_cli->run({"verify", path}), 1);
    QVERIFY(isTold());
    QCOMPARE(m_cli->read("a.Q7V"_q), before);
}

QTEST_GUILESS_MAIN(TestFileCommands)
#include "tst_filecommands.moc"
