// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

// What scripts/make-preset-bank says of tables that don't hold.

namespace
{

QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

} // namespace

class TestPresetTables : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theTablesOfTheTreeGiveTheBankOfTheTree();
    void aFaultIsToldWithFileAndLineAndNothingIsWritten_data();
    void aFaultIsToldWithFileAndLineAndNothingIsWritten();
    void aMissingTemplateIsTold();
    void aFolderWithoutTablesIsTold();
    void aBankThatDiffersFromTheTablesFailsTheCheck();

private:
    // Copies the tree's tables.
    void run(const QStringList &arguments)
    {
        QProcess script;
        script.start(QStringLiteral(TRN_SOURCE_DIR "/scripts/make-preset-bank"),
                     QStringList{latin("--tables"), m_tables, latin("--output"), m_output} +
                         arguments);
        QVERIFY(script.waitForFinished());
        QCOMPARE(script.exitStatus(), QProcess::NormalExit);
        m_code = script.exitCode();
        m_said = QString::fromUtf8(script.readAllStandardError()).trimmed();
    }

    QByteArray bytes(const QString &path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_tables;
    QString m_output;
    QString m_said;
    int m_code = -1;
};

void TestPresetTables::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_tables = m_folder->filePath(latin("tables"));
    m_output = m_folder->filePath(latin("Bank.Q7V"));
    QVERIFY(QDir().mkpath(m_tables));
    const QDir tables(QStringLiteral(TRN_SOURCE_DIR "/resources/presets"));
    for (const QString &name : tables.entryList({latin("*.txt")})) {
        QVERIFY(QFile::copy(tables.filePath(name), m_tables + QLatin1Char('/') + name));
    }
}

void TestPresetTables::theTablesOfTheTreeGiveTheBankOfTheTree()
{
    run({});
    QCOMPARE(m_said, QString());
    QCOMPARE(m_code, 0);
    QCOMPARE(bytes(m_output), bytes(QStringLiteral(TRN_SOURCE_DIR "/resources/BankPreset1.Q7V")));
}

void TestPresetTables::aFaultIsToldWithFileAndLineAndNothingIsWritten_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("said");
    const auto row = [](const char *name, const char *table, const char *from, const char *to,
                        const char *said) {
        QTest::newRow(name) << latin(table) << latin(from) << latin(to) << latin(said);
    };
    row("name of a template too long", "1-standard", "[1] GM Sound", "[1] General Standard",
        "1-standard.txt:3: the name \"General Standard\" has 16 characters, 13 are the most");
    row("name of a knob too long", "1-standard", "Cutoff          +-", "Cutoff Frequency",
        "1-standard.txt:4: the name \"Cutoff Frequency\" has 16 characters, 15 are the most");
    row("name of a knob too wide for the display", "1-standard", "Cutoff          +-",
        "MMMMMMMMMMMMMMM",
        "1-standard.txt:4: \"MMMMMMMMMMMMMMM\" is 91 pixels wide, the display has 71");
    row("a character that the editor doesn't take", "1-standard", "Cutoff          +-", "Cutoff~",
        "1-standard.txt:4: the name \"Cutoff~\" has a character");
    row("two templates of one name", "1-standard", "[2] Performance", "[2] GM Sound",
        "1-standard.txt:17: template 1 has the name \"GM Sound\" already");
    row("two templates of one number", "1-standard", "[2] Performance", "[1] Performance",
        "1-standard.txt:17: there is a template 1 already");
    row("template 51", "1-standard", "[2] Performance", "[51] Performance",
        "1-standard.txt:17: a template begins with its number in brackets, 1 to 50");
    row("no name", "1-standard", "[2] Performance", "[2]",
        "1-standard.txt:17: only the last template has no name");
    row("one number twice in a template", "1-standard", "B1   71", "B1   74",
        "1-standard.txt:5: the control change 74 stands twice in the template");
    row("a number for bank select", "1-standard", "B1   71", "B1   32",
        "1-standard.txt:5: the control change 32 is not for knobs");
    row("a number above 127", "1-standard", "B1   71", "B1  128",
        "1-standard.txt:5: the control change 128 is not for knobs");
    row("one number with two names in a file", "1-standard", "A1    1  Mod Wheel", "A1    1  Wheel",
        "1-standard.txt:68: in this file \"1\" is \"Wheel\" already");
    row("a knob out of order", "1-standard", "B1   71", "C1   71",
        "1-standard.txt:5: the twelve knobs are told in the order A1 B1");
    row("no number", "1-standard", "B1   71", "B1     ",
        "1-standard.txt:5: a knob is a place, a number and a name");
    row("a knob left out", "1-standard", "D3    7  Volume\n\n[2]", "\n[2]",
        "1-standard.txt:16: template 1 has 11 knobs above");
    row("a knob left out at the end of a file", "8-blank", "D3   10  Pan", "",
        "8-blank.txt:15: template 50 has 11 knobs above");
    row("a knob before the first template", "1-standard", "[1] GM Sound", "",
        "1-standard.txt:4: what stands before the first template belongs to none");
    row("an instrument that nobody knows", "7-remote", "remote: Orskvale", "remote: Orskval",
        "7-remote.txt:80: \"Orskval\" is not in VSTiPreset.xml");
    row("a parameter that the instrument doesn't have", "7-remote", "> Layer A / Tone",
        "> Layer A / Taste", "7-remote.txt:82: Orskvale has no parameter \"Layer A / Taste\"");
    row("a parameter without Remote mode", "1-standard", "Cutoff          +-", "Cutoff > Volume",
        "1-standard.txt:4: a knob tells its parameter behind > in Remote mode, and only there");
    row("Remote mode without a parameter", "7-remote", "> Layer A / Tone", "",
        "7-remote.txt:82: a knob tells its parameter behind > in Remote mode, and only there");
    row("the neutral template in Remote mode", "8-blank", "[50]", "[50]\nremote: Generic",
        "8-blank.txt:4: the line remote: stands behind the head, and never in the last");
}

void TestPresetTables::aFaultIsToldWithFileAndLineAndNothingIsWritten()
{
    QFETCH(const QString, table);
    QFETCH(const QString, from);
    QFETCH(const QString, to);
    QFETCH(const QString, said);
    const QString path = m_tables + QLatin1Char('/') + table + latin(".txt");
    QString content = QString::fromUtf8(bytes(path));
    const qsizetype at = content.indexOf(from);
    QVERIFY(at >= 0);
    content.replace(at, from.size(), to);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(content.toUtf8()), content.toUtf8().size());
    file.close();
    run({});
    QCOMPARE(m_code, 1);
    QVERIFY2(m_said.startsWith(m_tables + QLatin1Char('/') + said), qPrintable(m_said));
    QVERIFY(!m_said.contains(QLatin1Char('\n')));
    QVERIFY(!QFile::exists(m_output));
}

void TestPresetTables::aMissingTemplateIsTold()
{
    QVERIFY(QFile::remove(m_tables + latin("/6-drums.txt")));
    run({});
    QCOMPARE(m_code, 1);
    QCOMPARE(m_said, m_tables + latin(": no template 41, 42"));
}

void TestPresetTables::aFolderWithoutTablesIsTold()
{
    m_tables = m_folder->path();
    run({});
    QCOMPARE(m_code, 1);
    QCOMPARE(m_said, m_tables + latin(": no tables (*.txt) there"));
}

void TestPresetTables::aBankThatDiffersFromTheTablesFailsTheCheck()
{
    run({});
    run({latin("--check")});
    QCOMPARE(m_code, 0);
    QFile file(m_output);
    QVERIFY(file.open(QIODevice::Append));
    QCOMPARE(file.write(" "), 1);
    file.close();
    run({latin("--check")});
    QCOMPARE(m_code, 1);
}

QTEST_GUILESS_MAIN(TestPresetTables)
#include "tst_presettables.moc"
