// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtTest/QtTest>

// The demonstration as a process: how it ends, and what it says. It takes its pictures and ends by
// itself once the editor is online.
class TestEditorProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesOnlineAndEndsWith0_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no file") << QStringList();
        QTest::newRow("an empty name") << QStringList{QString()};
        QTest::newRow("a file that is not there")
            << QStringList{QStringLiteral("/there/is/no/such/file.Q7V")};
        QTest::newRow("a file") << QStringList{
            QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V")};
        QTest::newRow("more than one")
            << QStringList{QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V"),
                           QStringLiteral("another")};
    }
    void goesOnlineAndEndsWith0()
    {
        QFETCH(const QStringList, arguments);
        const QTemporaryDir folder;
        run(arguments, {{QStringLiteral("TRN_DEMO_SCREENSHOTS"), folder.path()}});
        QCOMPARE(m_status, 0);
        QCOMPARE(m_said, QByteArray());
        QCOMPARE(QImage(folder.filePath(QStringLiteral("editor.png"))).size(), QSize(470, 465));
        QVERIFY(!QImage(folder.filePath(QStringLiteral("instrument.png"))).isNull());
    }

    // The loop's own result never comes through.
    void anyOtherEndIs1()
    {
        run({},
            {{QStringLiteral("TRN_DEMO_SCREENSHOTS"), QStringLiteral("/there/is/no/such/folder")}});
        QCOMPARE(m_status, 1);
        QVERIFY(m_said.contains("can't write the pictures"));
    }

    // Everything else that Qt might say is silenced; this ends the program.
    void aMissingDisplaySaysSo()
    {
        run({}, {{QStringLiteral("DISPLAY"), QString()}});
        QVERIFY(m_status != 0);
        QVERIFY2(m_said.contains("platform plugin"), m_said.constData());
    }

private:
    void run(const QStringList &arguments, const QHash<QString, QString> &settings)
    {
        const QTemporaryDir home;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home.path());
        environment.insert(QStringLiteral("XDG_DATA_HOME"), home.path());
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
            environment.insert(setting.key(), setting.value());
        }
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(TRN_BIN_DIR "/TARN_TERNRemoteEditorDemo"), arguments);
        QVERIFY(program.waitForFinished(90000));
        m_status = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
        m_said = program.readAllStandardError();
    }

    int m_status = -1;
    QByteArray m_said;
};

QTEST_MAIN(TestEditorProgram)
#include "tst_editorprogram.moc"
