// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ArgumentParser.h"
#include "cli/CliHarness.h"

#include <QtTest/QtTest>

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wrongUseEndsWithTwo_data();
    void wrongUseEndsWithTwo();
    void aWrongNumberOfArgumentsIsToldBeforeTheUsage_data();
    void aWrongNumberOfArgumentsIsToldBeforeTheUsage();
    void helpNamesEachArgumentOnALineOfItsOwn();
    void helpAndVersionAreAnswers_data();
    void helpAndVersionAreAnswers();
    void midiMayStandBeforeAndBehindTheCommand();
    void optionsAreTaken();
    void aValueMayBeginWithADash();
};

void TestCommandLine::wrongUseEndsWithTwo_data()
{
    QTest::addColumn<QString>("line");
    const auto row = [](const char *name, const char *line) {
        QTest::newRow(name) << QString::fromLatin1(line);
    };
    row("no command", "");
    row("unknown command", "recieve a");
    row("unknown option", "ports --all");
    row("an option of another command", "ports --port X");
    row("an option before the command that it belongs to", "--json ports");
    row("ports with an operand", "ports a");
    row("receive without a file", "receive");
    row("receive with two files", "receive a b");
    row("send without a file", "send --store");
    row("show without a file", "show --json");
    row("get without an address", "get a");
    row("set without a value", "set a edit/1/templateName");
    row("set with two values", "set a edit/1/templateName b c");
    row("check without a file", "check");
    row("export without a target", "export a");
    row("import without a target", "import a");
    row("diff of one file", "diff a");
    row("verify without a file", "verify");
    row("monitor with an operand", "monitor a");
    row("an unknown service", "ports --midi oss");
    row("an unknown service before the command", "--midi oss ports");
    row("a service without a name", "ports --midi");
    row("a time-out that is no number", "receive a --timeout soon");
    row("a time-out of nothing", "receive a --timeout 0");
    row("a negative time-out", "receive a --timeout=-1");
    row("an endless time-out", "receive a --timeout inf");
    row("a time-out without seconds", "receive a --timeout");
    row("template 0", "show a --template 0");
    row("template 51", "show a --template 51");
    row("template that is no number", "show a --template x");
    row("backup without a name", "send a --backup=");
    row("port without a name", "receive a --port=");
    row("port of no name to listen to", "monitor --port=");
}

void TestCommandLine::wrongUseEndsWithTwo()
{
    QFETCH(QString, line);
    CliHarness cli;
    QCOMPARE(cli.runWords(line.split(QLatin1Char(' '), Qt::SkipEmptyParts)), 2);
    QVERIFY(cli.out.isEmpty());
    QVERIFY2(cli.err.startsWith("trn-remote: "), cli.err.constData());
    QCOMPARE(cli.err.count('\n'), 1);
}

void TestCommandLine::aWrongNumberOfArgumentsIsToldBeforeTheUsage_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("told");
    QTest::newRow("too few") << QStringLiteral("set a edit/1/templateName")
                             << QByteArray("trn-remote: Too few arguments for \"set\". Usage: "
                                           "trn-remote set FILE ADDRESS VALUE [options]; "
                                           "\"trn-remote set --help\" tells them.\n");
    QTest::newRow("too many") << QStringLiteral("ports a")
                              << QByteArray("trn-remote: Too many arguments for \"ports\". Usage: "
                                            "trn-remote ports [options]; \"trn-remote ports "
                                            "--help\" tells them.\n");
}

void TestCommandLine::aWrongNumberOfArgumentsIsToldBeforeTheUsage()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, told);
    CliHarness cli;
    QCOMPARE(cli.runWords(line.split(QLatin1Char(' '))), 2);
    QCOMPARE(cli.err, told);
}

void TestCommandLine::helpNamesEachArgumentOnALineOfItsOwn()
{
    CliHarness cli;
    QCOMPARE(cli.run({"set", "--help"}), 0);
    for (const char *name : {"FILE", "ADDRESS", "VALUE"}) {
        QVERIFY2(cli.out.contains(QByteArray("\n  ") + name + ' '), cli.out.constData());
    }
    QVERIFY(cli.out.contains("set FILE ADDRESS VALUE\n"));
    // What an operand is called in a command's usage has its line in the command's help.
    QCOMPARE(cli.run({"import", "--help"}), 0);
    QVERIFY2(cli.out.contains("import IN.syx FILE\n"), cli.out.constData());
    QCOMPARE(cli.run({"diff", "--help"}), 0);
    QVERIFY2(cli.out.contains("diff A B\n"), cli.out.constData());
}

void TestCommandLine::helpAndVersionAreAnswers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("holds");
    QTest::newRow("help") << QStringLiteral("--help") << QByteArray("receive FILE");
    QTest::newRow("version") << QStringLiteral("--version") << QByteArray("trn-remote");
    for (const char *command : {"ports", "receive", "send", "show", "get", "set", "check", "export",
                                "import", "diff", "verify", "monitor"}) {
        QTest::addRow("help of %s", command)
            << QLatin1String(command) + QStringLiteral(" --help") << QByteArray(command);
    }
}

void TestCommandLine::helpAndVersionAreAnswers()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, holds);
    CliHarness cli;
    QCOMPARE(cli.runWords(line.split(QLatin1Char(' '))), 0);
    QVERIFY2(cli.out.contains(holds), cli.out.constData());
    QVERIFY(cli.err.isEmpty());
}

void TestCommandLine::midiMayStandBeforeAndBehindTheCommand()
{
    CliHarness cli;
    QCOMPARE(cli.run({"--midi", "alsa", "ports"}), 0);
    QCOMPARE(cli.chosenMidi, QStringLiteral("alsa"));
    QCOMPARE(cli.run({"ports", "--midi", "jack"}), 0);
    QCOMPARE(cli.chosenMidi, QStringLiteral("jack"));
}

void TestCommandLine::optionsAreTaken()
{
    Arguments arguments;
    QString text;
    const QStringList words =
        QStringLiteral("trn-remote send a --port P --timeout 1.5 --edit-buffer-only --store "
                       "--backup b --verify")
            .split(QLatin1Char(' '));
    QCOMPARE(ArgumentParser().parse(words, &arguments, &text), ArgumentParser::Result::Command);
    QCOMPARE(arguments.command, QStringLiteral("send"));
    QCOMPARE(arguments.operands, QStringList{QStringLiteral("a")});
    QCOMPARE(arguments.port, QStringLiteral("P"));
    QCOMPARE(arguments.timeoutMs, 1500);
    QVERIFY(arguments.editBufferOnly && arguments.store && arguments.verify);
    QCOMPARE(arguments.backup, QStringLiteral("b"));

    const QStringList show =
        QStringLiteral("trn-remote show --template 50 --json a").split(QLatin1Char(' '));
    QCOMPARE(ArgumentParser().parse(show, &arguments, &text), ArgumentParser::Result::Command);
    QCOMPARE(arguments.template_, 49);
    QVERIFY(arguments.json);
}

void TestCommandLine::aValueMayBeginWithADash()
{
    Arguments arguments;
    QString text;
    const QStringList words =
        QStringLiteral("trn-remote set a edit/1/templateName -x").split(QLatin1Char(' '));
    QCOMPARE(ArgumentParser().parse(words, &arguments, &text), ArgumentParser::Result::Command);
    QCOMPARE(arguments.operands.last(), QStringLiteral("-x"));
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
