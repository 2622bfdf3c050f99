// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtCore/QDirIterator>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <sys/inotify.h>
#include <unistd.h>

namespace
{

const QString Program = QStringLiteral("/bin/TARN_TERNRemoteEditor");
const QString Share = QStringLiteral("/share/tarn-tern-remote-editor/");

} // namespace

// What `cmake --install` puts on a machine, and that the editor finds it there. The folder is not
// the one that the build was made for, as it isn't for whoever packs it.
class TestInstallation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QProcess install;
        install.start(QStringLiteral(CMAKE_COMMAND),
                      {QStringLiteral("--install"), QStringLiteral(TRN_BUILD_DIR),
                       QStringLiteral("--prefix"), m_prefix.path()});
        QVERIFY(install.waitForFinished(60000));
        QVERIFY2(install.exitCode() == 0, install.readAllStandardError().constData());
    }

    void everythingStandsInItsPlace()
    {
        QStringList found;
        QDirIterator files(m_prefix.path(), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            found.append(files.next().mid(m_prefix.path().size()));
        }
        found.sort();
        const QStringList programs{
            Program, QStringLiteral("/bin/trn-remote"),
            QStringLiteral("/libexec/tarn-tern-remote-editor/vif_tarn_tern_x64")};
        QStringList expected = programs;
        for (const char *name :
             {"BankPreset1.Q7V", "English/TARN_TERN Remote Editor.pdf", "VSTiPreset.xml"}) {
            expected.append(Share + QLatin1String(name));
        }
        expected.sort();
        QCOMPARE(found, expected);
        for (const QString &program : programs) {
            QVERIFY2(QFileInfo(m_prefix.path() + program).isExecutable(), qPrintable(program));
        }
    }

    void theEditorFindsItsResourcesAndItsHelper()
    {
        const QTemporaryDir home;
        QProcess daw;
        daw.start(
            QStringLiteral(TRN_SOURCE_DIR "/scripts/make-demo-daw"),
            {home.path(), QStringLiteral(TRN_BIN_DIR "/tests/plugins/vst3/TestInstrument.vst3")});
        QVERIFY(daw.waitForFinished(60000));
        QCOMPARE(daw.exitCode(), 0);

        const int opened = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        QVERIFY(opened >= 0);
        const QByteArray bank =
            QFile::encodeName(m_prefix.path() + Share + QStringLiteral("BankPreset1.Q7V"));
        QVERIFY(inotify_add_watch(opened, bank.constData(), IN_OPEN) >= 0);

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                           home.filePath(QStringLiteral(".config")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"),
                           home.filePath(QStringLiteral(".local/share")));
        QProcess editor;
        editor.setProcessEnvironment(environment);
        editor.start(m_prefix.path() + Program, QStringList());
        QVERIFY(editor.waitForStarted());
        // The first DAW that is found is taken at the first start, and scanned.
        const QString database = home.filePath(
            QStringLiteral(".local/share/Corvan/TARN_TERN Remote Editor/VSTiDatabase.xml"));
        const auto holdsInstrument = [&database] {
            QFile file(database);
            return file.open(QIODevice::ReadOnly) && file.readAll().contains("TestInstrument.vst3");
        };
        QTRY_VERIFY_WITH_TIMEOUT(holdsInstrument(), 60000);
        char events[4096];
        QVERIFY(::read(opened, events, sizeof events) > 0);
        ::close(opened);
        editor.terminate();
        QVERIFY(editor.waitForFinished(30000));
        QCOMPARE(editor.readAllStandardError(), QByteArray());
    }

private:
    QTemporaryDir m_prefix;
};

QTEST_MAIN(TestInstallation)
#include "tst_installation.moc"
