// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Folders.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

class TestFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_machine = std::make_unique<QTemporaryDir>();
        QVERIFY(m_machine->isValid());
        setMachineFolders({path("home"), path("opt/bin"), path("share"), path("libexec"),
                           path("home/Papers"), path("system")});
    }
    void cleanup()
    {
        setMachineFolders({});
        m_machine.reset();
    }

    void aMachineOfATestsOwnIsKept()
    {
        QCOMPARE(machineFolders().home, path("home"));
        QCOMPARE(machineFolders().libexecFolder, path("libexec"));
        setMachineFolders({});
        QCOMPARE(machineFolders().home, QString());
    }

    void applicationDataLiesBelowTheHomeFolderAndIsNotCreated()
    {
        const QDir data = getAppDataDirectory();
        QCOMPARE(data.path(), path("home") + QLatin1String(AppDataFolderPath) +
                                  QStringLiteral("/Corvan/TARN_TERN Remote Editor"));
        QVERIFY(!data.exists());
    }

    void applicationDataOfTheRealMachineLiesInTheUsersDataFolder()
    {
        setMachineFolders({});
        const QString home = QDir::homePath();
        const QString data = getAppDataDirectory().path();
#ifdef Q_OS_MACOS
        QVERIFY(data.startsWith(home));
#else
        // The test's environment moves the data folder, and the program follows.
        const QString moved = qEnvironmentVariable("XDG_DATA_HOME");
        QVERIFY(data.startsWith(moved.isEmpty() ? home : moved));
#endif
        QVERIFY(data.endsWith(QStringLiteral("/Corvan/TARN_TERN Remote Editor")));
    }

    void documentsAreWhereTheyAreSetOrAtHome()
    {
        QCOMPARE(documentsFolder(), path("home/Papers"));
        setMachineFolders({});
        QVERIFY(QDir(documentsFolder()).exists());
    }

#ifndef Q_OS_MACOS
    void resourcesAreTheFirstFolderWithAPresetBank_data()
    {
        QTest::addColumn<QStringList>("withBank");
        QTest::addColumn<QString>("found");
        QTest::newRow("beside the executable")
            << QStringList{QStringLiteral("opt/bin/resources"), QStringLiteral("opt/resources"),
                           QStringLiteral("share")}
            << "opt/bin/resources";
        QTest::newRow("one level above")
            << QStringList{QStringLiteral("opt/resources"), QStringLiteral("share")}
            << "opt/resources";
        QTest::newRow("installed") << QStringList{QStringLiteral("share")} << "share";
    }
    void resourcesAreTheFirstFolderWithAPresetBank()
    {
        QFETCH(QStringList, withBank);
        QFETCH(QString, found);
        // An empty folder in front does not count.
        QVERIFY(QDir(m_machine->path()).mkpath(QStringLiteral("opt/bin/resources")));
        for (const QString &folder : std::as_const(withBank)) {
            QVERIFY(QDir(m_machine->path()).mkpath(folder));
            QFile bank(m_machine->filePath(folder + QStringLiteral("/BankPreset1.Q7V")));
            QVERIFY(bank.open(QIODevice::WriteOnly));
        }
        QCOMPARE(getInitialDirectory().path(), m_machine->filePath(found));
    }

    void withoutAPresetBankTheResultIsTheFolderOfANullPath()
    {
        QVERIFY(QDir(m_machine->path()).mkpath(QStringLiteral("share")));
        QCOMPARE(getInitialDirectory(), QDir(QString()));
    }

    void helpersLieInTheInstalledFolderIfItExists()
    {
        QCOMPARE(getExecuteDirectory().path(), path("opt/bin"));
        QVERIFY(QDir(m_machine->path()).mkpath(QStringLiteral("libexec")));
        QCOMPARE(getExecuteDirectory().path(), path("libexec"));
    }

    void withoutASettingTheExecutablesFolderCounts()
    {
        MachineFolders folders = machineFolders();
        folders.executable.clear();
        setMachineFolders(folders);
        QCOMPARE(getExecuteDirectory().path(), QCoreApplication::applicationDirPath());
    }

    void otherMakersProgramsLieOnTheMachineOfATestsOwn()
    {
        QCOMPARE(applicationFolders(),
                 QStringList({path("system/opt/"), path("home/Applications/")}));
        QCOMPARE(preferencesFolder().path(), path("home/.config"));
        QCOMPARE(commonVST3Folders(),
                 QStringList({path("system/usr/lib/vst3"), path("system/usr/local/lib/vst3"),
                              path("home/.vst3")}));
        QCOMPARE(sharedDataFolder(), path("home/.local/share"));
    }

    void otherMakersProgramsOfTheRealMachineFollowTheEnvironment()
    {
        setMachineFolders({});
        const QString home = QDir::homePath();
        QCOMPARE(applicationFolders(),
                 QStringList({QStringLiteral("/opt/"), home + QStringLiteral("/Applications/")}));
        QCOMPARE(preferencesFolder().path(),
                 QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
        QCOMPARE(commonVST3Folders(), QStringList({QStringLiteral("/usr/lib/vst3"),
                                                   QStringLiteral("/usr/local/lib/vst3"),
                                                   home + QStringLiteral("/.vst3")}));
        QCOMPARE(sharedDataFolder(),
                 QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    }

    void aHelpersProgramHasTheBundlesNameWithoutItsEnding()
    {
        QCOMPARE(helperExecutable(QStringLiteral("/usr/my.apps/some_tool.app")),
                 QStringLiteral("/usr/my.apps/some_tool"));
        QCOMPARE(helperExecutable(QStringLiteral("some_tool.app")), QStringLiteral("some_tool"));
    }
#endif

private:
    QString path(const char *below) const
    {
        return m_machine->filePath(QString::fromLatin1(below));
    }

    std::unique_ptr<QTemporaryDir> m_machine;
};

QTEST_GUILESS_MAIN(TestFolders)
#include "tst_folders.moc"
