// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/EditorData.h"
#include "file/EditorFile.h"
#include "file/EditorFileHarness.h"
#include "file/XmlDocument.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// Editor files: golden bytes, every refusal with its text and the memory before and after, round
// trips, and saving where it cannot succeed.

namespace
{

const QString Corpus = QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/");
const QString Golden = Corpus + QStringLiteral("valid/document.Q7V");

const QString NotFound = QStringLiteral("File was not found.");
const QString NotOpened = QStringLiteral("File could not be opened.");
const QString OtherDocument = QStringLiteral("File is not an editor file.");
const QString OtherRoot = QStringLiteral("Root tag ID name is different.");
const QString OtherVersion = QStringLiteral("It doesn't correspond to this version.");
const QString NoParameter = QStringLiteral("Parameter is not found.");
const QString NotWritten = QStringLiteral("Failed in the file writing.");

// Everything of the memory that a failed load must leave as it was.
QStringList wholeMemory(const RemoteMemAPI &api)
{
    QStringList all;
    for (int bank = 0; bank < 9; ++bank) {
        if (bank != 6 && bank != 7) {
            all += contentOf(api, bank, false);
        }
    }
    for (const ParamAddress &flag : {FileEdit, LibraryEdit, BankEdit, Online}) {
        all += QString::number(valueAt(api, flag));
    }
    return all + QStringList{api.getParamQString(FilePath)};
}

// What a child process wrote its verdict with: 0 for a save that failed with the text told.
constexpr int SaveFailedAsTold = 0;
constexpr int SaveSucceeded = 10;
constexpr int SaveFailedOtherwise = 11;

int saveVerdict(RemoteMemAPI *api, const QString &path)
{
    QFile file(path);
    QString error;
    if (EditorFile::save(api, 1, &file, &error)) {
        return SaveSucceeded;
    }
    return error == NotWritten ? SaveFailedAsTold : SaveFailedOtherwise;
}

// Runs the action in a child process of this one, and gives its exit code, or -1 for a signal. The
// parent has no other thread that could hold a lock meanwhile.
template <typename Action>
int inChild(Action action)
{
    const pid_t child = fork();
    if (child == 0) {
        _exit(action());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Permission bits hold for ordinary users alone.
void becomeOrdinaryUser()
{
    if (geteuid() == 0) {
        // Wholly: what may be written is judged by the real user.
        constexpr uid_t Nobody = 65534;
        if (setgid(Nobody) != 0 || setuid(Nobody) != 0) {
            _exit(99);
        }
    }
}

} // namespace

class TestEditorFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    // What is written.
    void aSavedFileHasTheBytesOfTheGoldenOne();
    void aSavedFileIsWhatAnotherPrinterPrints();
    void saveWritesTheGivenBankAndAlwaysBankZero();
    void saveTouchesNoFlagAndNobodyHears();
    void savingReplacesALongerFileWhole();
    void permissionsAreKept_data();
    void permissionsAreKept();
    void theOwnerIsKept();
    void aSymlinkStaysAndItsTargetIsWritten();
    void aChainOfSymlinksStays();
    void aSymlinkToNothingCreatesItsTarget();
    void aRingOfSymlinksIsRefused();
    void whatCouldNotBeOpenedAgainReplacesNothing();
    void aPipeIsRefusedAndStaysAPipe();
    void aFolderIsRefused();
    void aVanishedFolderIsReported();
    void aReadOnlyFolderIsReportedAndTheFileStays();
    void aReadOnlyFileIsReportedAndStays();
    void aFullDiskIsReportedAndTheOldFileStays();
    void aKillWhileSavingLeavesTheOldOrTheNewFileWhole();

    // What is read.
    void theGoldenFileLoads();
    void savingAndLoadingRestoresBothBanksAndTheNumber();
    void randomDocumentsComeBack_data();
    void randomDocumentsComeBack();
    void withoutFullDocumentOnlyTheStoredTemplatesAreRead();
    void loadingNotifiesEachValue();
    void loadingSendsNothingAndRaisesNothing();
    void loadingLeavesTheEvacuatedCopies();
    void aMissingFileIsReported();
    void whatCannotBeOpenedIsReported_data();
    void whatCannotBeOpenedIsReported();
    void anUnreadableFileIsReported();
    void eachFileOfTheCorpusIsRefusedWithItsText_data();
    void eachFileOfTheCorpusIsRefusedWithItsText();
    void olderAndEqualVersionsLoad_data();
    void olderAndEqualVersionsLoad();
    void aDocumentWithoutEditBufferLoadsOnlyAsAnImport();
    void aDocumentWithoutBankInfoIsWrittenAndNotifiedBeforeItIsUndone();
    void aValueOutOfRangeLeavesTheOldOne_data();
    void aValueOutOfRangeLeavesTheOldOne();
    void eachMissingElementIsRefused_data();
    void eachMissingElementIsRefused();
    void everyTruncationIsRefusedOrWhole();
    void sixtyFourMegabytesAreRefusedFast();
    void theErrorPointerMayBeNull();
    void theDenyCountIsAsBeforeAfterEveryLoad();

    void createWritesUnderANewNameEachTime();
    void createInAMissingFolderMakesTheBankUnavailable();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<RemoteMemAPI> m_api;
    RemoteMemAPI *api() { return m_api.get(); }
    QString path(const char *name) const { return m_folder->filePath(latin(name)); }
    bool save(const QString &to, QString *error = nullptr)
    {
        QFile file(to);
        return EditorFile::save(api(), 1, &file, error);
    }
    bool load(const QString &from, bool full = true, QString *error = nullptr, int bank = -1)
    {
        QFile file(from);
        return EditorFile::load(api(), bank >= 0 ? bank : full ? 1 : 4, &file, full, error);
    }
    QStringList filesInFolder() const
    {
        return QDir(m_folder->path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
};

void TestEditorFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_api = std::make_unique<RemoteMemAPI>();
    makeNineBanks(api());
    fillDocument(api());
}

void TestEditorFile::cleanup()
{
    m_api.reset();
    m_folder.reset();
}

// --- What is written -----------------------------------------------------------------------------

void TestEditorFile::aSavedFileHasTheBytesOfTheGoldenOne()
{
    QVERIFY(save(path("a.Q7V")));
    const QByteArray golden = bytesOf(Golden);
    QVERIFY(!golden.isEmpty());
    QVERIFY(bytesOf(path("a.Q7V")) == golden);
}

void TestEditorFile::aSavedFileIsWhatAnotherPrinterPrints()
{
    QVERIFY(save(path("a.Q7V")));
    QVERIFY(bytesOf(path("a.Q7V")) == printedFile(*m_api, 1));
    QCOMPARE(filesInFolder(), QStringList{latin("a.Q7V")});
}

void TestEditorFile::saveWritesTheGivenBankAndAlwaysBankZero()
{
    fillBank(api(), 4, "four");
    QFile file(path("a.Q7V"));
    QVERIFY(EditorFile::save(api(), 4, &file, nullptr));
    QVERIFY(bytesOf(path("a.Q7V")) == printedFile(*m_api, 4));
}

void TestEditorFile::saveTouchesNoFlagAndNobodyHears()
{
    LoggingObserver observer(api(), ParamAddress(0, 0, 0, 0));
    LoggingObserver onFlag(api(), FileEdit);
    m_api->setParam(FileEdit, 1);
    const QStringList before = wholeMemory(*m_api);
    QVERIFY(save(path("a.Q7V")));
    QCOMPARE(wholeMemory(*m_api), before);
    QCOMPARE(observer.count, 0);
    QCOMPARE(onFlag.count, 1);
}

void TestEditorFile::savingReplacesALongerFileWhole()
{
    QVERIFY(writeBytes(path("a.Q7V"), QByteArray(2000000, 'x')));
    QVERIFY(save(path("a.Q7V")));
    QVERIFY(bytesOf(path("a.Q7V")) == printedFile(*m_api, 1));
}

void TestEditorFile::permissionsAreKept_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : {0400, 0444, 0600, 0640, 0644, 0664, 0666, 0755}) {
        QTest::addRow("%o", mode) << mode;
    }
}

void TestEditorFile::permissionsAreKept()
{
    QFETCH(int, mode);
    const QByteArray name = path("a.Q7V").toLocal8Bit();
    QVERIFY(writeBytes(path("a.Q7V"), "old"));
    QCOMPARE(chmod(name.constData(), static_cast<mode_t>(mode)), 0);
    const bool isWritable = access(name.constData(), W_OK) == 0;
    QCOMPARE(save(path("a.Q7V")), isWritable);
    struct stat status = {};
    QCOMPARE(stat(name.constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), mode);
}

void TestEditorFile::theOwnerIsKept()
{
    const QByteArray name = path("a.Q7V").toLocal8Bit();
    QVERIFY(writeBytes(path("a.Q7V"), "old"));
    // Whom the administrator may give it to, and anybody else to oneself.
    const uid_t owner = geteuid() == 0 ? 12345 : geteuid();
    const gid_t group = geteuid() == 0 ? 23456 : getegid();
    QCOMPARE(chown(name.constData(), owner, group), 0);
    QVERIFY(save(path("a.Q7V")));
    struct stat status = {};
    QCOMPARE(stat(name.constData(), &status), 0);
    QCOMPARE(status.st_uid, owner);
    QCOMPARE(status.st_gid, group);
}

void TestEditorFile::aSymlinkStaysAndItsTargetIsWritten()
{
    QVERIFY(writeBytes(path("target.Q7V"), "old"));
    QVERIFY(QFile::link(latin("target.Q7V"), path("link.Q7V")));
    QVERIFY(save(path("link.Q7V")));
    QVERIFY(QFileInfo(path("link.Q7V")).isSymLink());
    QVERIFY(!QFileInfo(path("target.Q7V")).isSymLink());
    QVERIFY(bytesOf(path("target.Q7V")) == printedFile(*m_api, 1));
}

void TestEditorFile::aChainOfSymlinksStays()
{
    QVERIFY(QDir(m_folder->path()).mkdir(latin("sub")));
    QVERIFY(writeBytes(path("sub/target.Q7V"), "old"));
    QVERIFY(QFile::link(latin("target.Q7V"), path("sub/inner.Q7V")));
    QVERIFY(QFile::link(latin("sub/inner.Q7V"), path("middle.Q7V")));
    QVERIFY(QFile::link(latin("middle.Q7V"), path("outer.Q7V")));
    QVERIFY(save(path("outer.Q7V")));
    for (const char *link : {"outer.Q7V", "middle.Q7V", "sub/inner.Q7V"}) {
        QVERIFY2(QFileInfo(path(link)).isSymLink(), link);
    }
    QVERIFY(bytesOf(path("sub/target.Q7V")) == printedFile(*m_api, 1));
}

void TestEditorFile::aSymlinkToNothingCreatesItsTarget()
{
    QVERIFY(QFile::link(latin("target.Q7V"), path("link.Q7V")));
    QVERIFY(save(path("link.Q7V")));
    QVERIFY(QFileInfo(path("link.Q7V")).isSymLink());
    QVERIFY(bytesOf(path("target.Q7V")) == printedFile(*m_api, 1));
}

void TestEditorFile::aRingOfSymlinksIsRefused()
{
    QVERIFY(QFile::link(latin("b.Q7V"), path("a.Q7V")));
    QVERIFY(QFile::link(latin("a.Q7V"), path("b.Q7V")));
    QString error;
    QVERIFY(!save(path("a.Q7V"), &error));
    QCOMPARE(error, NotWritten);
    QVERIFY(QFileInfo(path("a.Q7V")).isSymLink());
}

void TestEditorFile::whatCouldNotBeOpenedAgainReplacesNothing()
{
    QVERIFY(save(path("good.Q7V")));
    const QByteArray before = bytesOf(path("good.Q7V"));
    // Less than what may be opened, and more in the file, where it takes two bytes each.
    QVERIFY(m_api->setParam(ParamAddress(1, 3, ParamAddress::TemplateName, -1),
                            QString(9 * 1024 * 1024, QChar(0xE9))));
    QString error;
    QVERIFY(!save(path("good.Q7V"), &error));
    QCOMPARE(error, NotWritten);
    QVERIFY(bytesOf(path("good.Q7V")) == before);
    QCOMPARE(filesInFolder(), QStringList{latin("good.Q7V")});
}

void TestEditorFile::aPipeIsRefusedAndStaysAPipe()
{
    const QByteArray name = path("pipe").toLocal8Bit();
    QCOMPARE(mkfifo(name.constData(), 0666), 0);
    QString error;
    QVERIFY(!save(path("pipe"), &error));
    QCOMPARE(error, NotWritten);
    struct stat status = {};
    QCOMPARE(lstat(name.constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
    QCOMPARE(filesInFolder(), QStringList{latin("pipe")});
}

void TestEditorFile::aFolderIsRefused()
{
    QString error;
    QVERIFY(!save(m_folder->path(), &error));
    QCOMPARE(error, NotWritten);
    QVERIFY(!save(QString(), &error));
    QVERIFY(QFileInfo(m_folder->path()).isDir());
}

void TestEditorFile::aVanishedFolderIsReported()
{
    QString error;
    QVERIFY(!save(path("gone/a.Q7V"), &error));
    QCOMPARE(error, NotWritten);
    QVERIFY(!save(path("gone/a.Q7V"), nullptr));
    QCOMPARE(filesInFolder(), QStringList());
}

void TestEditorFile::aReadOnlyFolderIsReportedAndTheFileStays()
{
    QVERIFY(writeBytes(path("a.Q7V"), "old"));
    QCOMPARE(chmod(path("a.Q7V").toLocal8Bit().constData(), 0666), 0);
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0555), 0);
    const int verdict = inChild([&] {
        becomeOrdinaryUser();
        return saveVerdict(api(), path("a.Q7V"));
    });
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0755), 0);
    QCOMPARE(verdict, SaveFailedAsTold);
    QCOMPARE(bytesOf(path("a.Q7V")), QByteArray("old"));
    QCOMPARE(filesInFolder(), QStringList{latin("a.Q7V")});
}

void TestEditorFile::aReadOnlyFileIsReportedAndStays()
{
    QVERIFY(writeBytes(path("a.Q7V"), "old"));
    QCOMPARE(chmod(path("a.Q7V").toLocal8Bit().constData(), 0444), 0);
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0777), 0);
    const int verdict = inChild([&] {
        becomeOrdinaryUser();
        return saveVerdict(api(), path("a.Q7V"));
    });
    QCOMPARE(verdict, SaveFailedAsTold);
    QCOMPARE(bytesOf(path("a.Q7V")), QByteArray("old"));
    QCOMPARE(filesInFolder(), QStringList{latin("a.Q7V")});
}

void TestEditorFile::aFullDiskIsReportedAndTheOldFileStays()
{
    // A limit on the size of files makes writing fail in the middle, as a full disk does.
    QVERIFY(save(path("whole.Q7V")));
    const qint64 size = QFileInfo(path("whole.Q7V")).size();
    for (const qint64 limit : {qint64(0), qint64(1), qint64(4096), size / 2, size - 1}) {
        QVERIFY(writeBytes(path("a.Q7V"), "old"));
        const int verdict = inChild([&] {
            signal(SIGXFSZ, SIG_IGN);
            rlimit room = {};
            room.rlim_cur = static_cast<rlim_t>(limit);
            room.rlim_max = static_cast<rlim_t>(limit);
            setrlimit(RLIMIT_FSIZE, &room);
            return saveVerdict(api(), path("a.Q7V"));
        });
        QCOMPARE(verdict, SaveFailedAsTold);
        QCOMPARE(bytesOf(path("a.Q7V")), QByteArray("old"));
        QCOMPARE(filesInFolder(), (QStringList{latin("a.Q7V"), latin("whole.Q7V")}));
    }
    const int verdict = inChild([&] {
        rlimit room = {};
        room.rlim_cur = static_cast<rlim_t>(size);
        room.rlim_max = static_cast<rlim_t>(size);
        setrlimit(RLIMIT_FSIZE, &room);
        return saveVerdict(api(), path("a.Q7V"));
    });
    QCOMPARE(verdict, SaveSucceeded);
}

void TestEditorFile::aKillWhileSavingLeavesTheOldOrTheNewFileWhole()
{
    QVERIFY(save(path("a.Q7V")));
    const QByteArray first = bytesOf(path("a.Q7V"));
    fillBank(api(), 1, "other");
    const QByteArray second = printedFile(*m_api, 1);
    QVERIFY(first != second);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(save(path("measured.Q7V")));
    const qint64 whole = timer.nsecsElapsed() / 1000;
    QRandomGenerator random(99);
    int killed = 0;
    for (int round = 0; round < 30; ++round) {
        QVERIFY(writeBytes(path("a.Q7V"), first));
        int ready[2];
        QCOMPARE(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            if (write(ready[1], "x", 1) != 1) {
                _exit(1);
            }
            _exit(saveVerdict(api(), path("a.Q7V")));
        }
        char byte = 0;
        QCOMPARE(read(ready[0], &byte, 1), ssize_t(1));
        close(ready[0]);
        close(ready[1]);
        // The moment is the test's subject: anywhere within the time that a save takes.
        usleep(static_cast<useconds_t>(random.bounded(static_cast<int>(whole) + 1)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        killed += WIFSIGNALED(status) ? 1 : 0;
        const QByteArray now = bytesOf(path("a.Q7V"));
        QVERIFY(now == first || now == second);
    }
    QVERIFY(killed > 0);
}

// --- What is read --------------------------------------------------------------------------------

void TestEditorFile::theGoldenFileLoads()
{
    const QStringList stored = contentOf(*m_api, 1, false);
    const QStringList edit = contentOf(*m_api, 0, false);
    RemoteMemAPI other;
    makeNineBanks(&other);
    QFile file(Golden);
    QString error = latin("untouched");
    QVERIFY(EditorFile::load(&other, 1, &file, true, &error));
    QCOMPARE(error, latin("untouched"));
    QCOMPARE(contentOf(other, 0, false), edit);
    // The number belongs to the edit buffer alone.
    QCOMPARE(contentOf(other, 1, false).mid(0, 50), stored.mid(0, 50));
    QVERIFY(!file.isOpen());
}

void TestEditorFile::savingAndLoadingRestoresBothBanksAndTheNumber()
{
    const QStringList before = wholeMemory(*m_api);
    QVERIFY(save(path("a.Q7V")));
    fillBank(api(), 0, "lost");
    fillBank(api(), 1, "lost");
    m_api->denyToRaiseFileEditFlag();
    m_api->setParam(ParamAddress(0, 52, -1, -1), 2);
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(load(path("a.Q7V")));
    QCOMPARE(wholeMemory(*m_api), before);
}

void TestEditorFile::randomDocumentsComeBack_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void TestEditorFile::randomDocumentsComeBack()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const auto randomText = [&](int longest) {
        QString text;
        const int length = random.bounded(longest + 1);
        for (int i = 0; i < length; ++i) {
            switch (random.bounded(5)) {
            case 0:
                text += QChar(static_cast<char16_t>(random.bounded(0x10000)));
                break;
            case 1:
                text += QChar(static_cast<char16_t>(random.bounded(0x20)));
                break;
            case 2:
                text += QLatin1Char(' ');
                break;
            case 3:
                text += QString::fromLatin1("]]>&<\r\n").at(random.bounded(7));
                break;
            default:
                text += QChar(static_cast<char16_t>(0x20 + random.bounded(0x5F)));
                break;
            }
        }
        return text;
    };
    m_api->denyToRaiseFileEditFlag();
    for (int bank = 0; bank < 2; ++bank) {
        for (int t = 0; t < 50; ++t) {
            m_api->setParam(ParamAddress(bank, t, 13, -1), randomText(40));
            m_api->setParam(ParamAddress(bank, t, 15, -1), randomText(40));
            for (int k = 0; k < 12; ++k) {
                m_api->setParam(ParamAddress(bank, t, k, 0), randomText(15));
                m_api->setParam(ParamAddress(bank, t, k, 1), random.bounded(128));
                m_api->setParam(ParamAddress(bank, t, k, 3), randomText(9));
            }
        }
    }
    m_api->setParam(ParamAddress(0, 52, -1, -1), random.bounded(50));
    m_api->allowToRaiseFileEditFlag();
    const auto asRead = [](const QString &text) {
        QString result = XmlDocument::writable(text);
        if (result.simplified().isEmpty()) {
            result.replace(latin("\r\n"), latin("\n")).replace(u'\r', u'\n');
        }
        return result;
    };
    RemoteMemAPI expected;
    makeNineBanks(&expected);
    for (int bank = 0; bank < 2; ++bank) {
        for (int t = 0; t < 50; ++t) {
            for (const int c : {13, 15}) {
                const ParamAddress address(bank, t, c, -1);
                expected.setParam(address, asRead(m_api->getParamQString(address)));
            }
            const ParamAddress type(bank, t, 14, -1);
            expected.setParam(type, valueAt(*m_api, type));
            for (int k = 0; k < 12; ++k) {
                for (int p = 0; p < 4; ++p) {
                    const ParamAddress address(bank, t, k, p);
                    if (address.isStringParamAdr()) {
                        expected.setParam(address, asRead(m_api->getParamQString(address)));
                    } else {
                        expected.setParam(address, valueAt(*m_api, address));
                    }
                }
            }
        }
    }
    expected.setParam(ParamAddress(0, 52, -1, -1), valueAt(*m_api, ParamAddress(0, 52, -1, -1)));

    QVERIFY(save(path("a.Q7V")));
    QString error;
    QVERIFY2(load(path("a.Q7V"), true, &error), qPrintable(error));
    for (int bank = 0; bank < 2; ++bank) {
        QCOMPARE(contentOf(*m_api, bank, false), contentOf(expected, bank, false));
    }
    // What was read once is stable from then on.
    const QByteArray once = bytesOf(path("a.Q7V"));
    QVERIFY(save(path("b.Q7V")));
    QVERIFY(load(path("b.Q7V")));
    QVERIFY(save(path("c.Q7V")));
    QVERIFY(bytesOf(path("b.Q7V")) == bytesOf(path("c.Q7V")));
    QVERIFY(!once.isEmpty());
}

void TestEditorFile::withoutFullDocumentOnlyTheStoredTemplatesAreRead()
{
    const QStringList zero = contentOf(*m_api, 0);
    const QStringList one = contentOf(*m_api, 1);
    for (const int bank : {4, 8}) {
        QVERIFY(load(Golden, false, nullptr, bank));
        QCOMPARE(contentOf(*m_api, bank, false).mid(0, 50), one.mid(0, 50));
        QCOMPARE(contentOf(*m_api, 0), zero);
        QCOMPARE(contentOf(*m_api, 1), one);
        QCOMPARE(valueAt(*m_api, ParamAddress(bank, 52, -1, -1)), 0);
    }
}

void TestEditorFile::loadingNotifiesEachValue()
{
    QVERIFY(save(path("a.Q7V")));
    fillBank(api(), 1, "other");
    m_api->setParam(ParamAddress(0, 52, -1, -1), 3);
    LoggingObserver name(api(), ParamAddress(1, 49, 13, -1));
    LoggingObserver number(api(), ParamAddress(0, 52, -1, -1));
    LoggingObserver unchanged(api(), ParamAddress(0, 20, 13, -1));
    QVERIFY(load(path("a.Q7V")));
    QCOMPARE(name.count, 1);
    QCOMPARE(number.count, 1);
    QCOMPARE(unchanged.count, 0);
}

void TestEditorFile::loadingSendsNothingAndRaisesNothing()
{
    CableEnd cable;
    QVERIFY(save(path("a.Q7V")));
    fillBank(api(), 0, "other");
    QVERIFY(cable.connectTo(api()));
    m_api->setONLINEstate(1);
    cable.take();
    LoggingObserver onFlag(api(), FileEdit);
    QVERIFY(load(path("a.Q7V")));
    QCOMPARE(cable.take(), QStringList());
    QVERIFY(!load(Corpus + latin("missing-element/one-template.Q7V")));
    QCOMPARE(cable.take(), QStringList());
    QCOMPARE(onFlag.count, 0);
    QVERIFY(m_api->isAllowToSendSysEx());
    QVERIFY(m_api->setParam(ParamAddress(0, 0, 0, 1), 99));
    QCOMPARE(cable.take().size(), 1);
    m_api->deleteMIDIComunicationRoute();
}

void TestEditorFile::loadingLeavesTheEvacuatedCopies()
{
    const QStringList zero = contentOf(*m_api, 0, false);
    fillBank(api(), 1, "before");
    const QStringList one = contentOf(*m_api, 1, false);
    QVERIFY(load(Golden));
    QCOMPARE(contentOf(*m_api, 6, false), one);
    QCOMPARE(contentOf(*m_api, 7, false), zero);
}

void TestEditorFile::aMissingFileIsReported()
{
    const QStringList before = wholeMemory(*m_api) + contentOf(*m_api, 6) + contentOf(*m_api, 7);
    QString error;
    QVERIFY(!load(path("none.Q7V"), true, &error));
    QCOMPARE(error, NotFound);
    QVERIFY(!load(QString(), true, &error));
    QCOMPARE(error, NotFound);
    QVERIFY(QFile::link(latin("none.Q7V"), path("dangling.Q7V")));
    QVERIFY(!load(path("dangling.Q7V"), true, &error));
    QCOMPARE(error, NotFound);
    QCOMPARE(wholeMemory(*m_api) + contentOf(*m_api, 6) + contentOf(*m_api, 7), before);
}

void TestEditorFile::whatCannotBeOpenedIsReported_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("folder") << latin("folder");
    QTest::newRow("pipe without a writer") << latin("pipe");
    QTest::newRow("device that never ends") << latin("/dev/zero");
    QTest::newRow("device") << latin("/dev/null");
    QTest::newRow("link to a pipe") << latin("link");
}

void TestEditorFile::whatCannotBeOpenedIsReported()
{
    QFETCH(QString, kind);
    QString name = kind;
    if (kind == latin("folder")) {
        name = m_folder->path();
    } else if (!kind.startsWith(u'/')) {
        name = path("pipe");
        QCOMPARE(mkfifo(name.toLocal8Bit().constData(), 0666), 0);
        if (kind == latin("link")) {
            QVERIFY(QFile::link(name, path("link")));
            name = path("link");
        }
    }
    const QStringList before = wholeMemory(*m_api) + contentOf(*m_api, 6) + contentOf(*m_api, 7);
    QString error;
    QVERIFY(!load(name, true, &error));
    QCOMPARE(error, NotOpened);
    QCOMPARE(wholeMemory(*m_api) + contentOf(*m_api, 6) + contentOf(*m_api, 7), before);
}

void TestEditorFile::anUnreadableFileIsReported()
{
    QVERIFY(save(path("a.Q7V")));
    QCOMPARE(chmod(path("a.Q7V").toLocal8Bit().constData(), 0000), 0);
    QCOMPARE(chmod(m_folder->path().toLocal8Bit().constData(), 0755), 0);
    const int verdict = inChild([&] {
        becomeOrdinaryUser();
        QString error;
        return !load(path("a.Q7V"), true, &error) && error == NotOpened ? 0 : 1;
    });
    QCOMPARE(verdict, 0);
}

void TestEditorFile::eachFileOfTheCorpusIsRefusedWithItsText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected"); // empty: a parse error
    const std::pair<const char *, QString> folders[] = {
        {"malformed", QString()},         {"entities", QString()},   {"nested", QString()},
        {"other-doctype", OtherDocument}, {"other-root", OtherRoot}, {"version", OtherVersion},
        {"missing-element", NoParameter}};
    for (const auto &[folder, text] : folders) {
        const QDir dir(Corpus + latin(folder));
        const QStringList names = dir.entryList(QDir::Files);
        QVERIFY2(!names.isEmpty(), folder);
        for (const QString &name : names) {
            QTest::addRow("%s/%s", folder, qPrintable(name)) << dir.filePath(name) << text;
        }
    }
}

void TestEditorFile::eachFileOfTheCorpusIsRefusedWithItsText()
{
    QFETCH(QString, name);
    QFETCH(QString, expected);
    if (expected.isEmpty()) {
        QDomDocument document;
        QString message;
        int line = 0;
        QVERIFY(!XmlDocument::parse(bytesOf(name), &document, &message, &line));
        QVERIFY(line >= 1);
        expected = QStringLiteral("Parse error at line %1. (").arg(line) + message + u')';
    }
    for (const bool full : {true, false}) {
        const QStringList before = wholeMemory(*m_api);
        LoggingObserver onFlag(api(), FileEdit);
        QString error;
        QVERIFY(!load(name, full, &error));
        QCOMPARE(error, expected);
        QCOMPARE(wholeMemory(*m_api), before);
        QCOMPARE(onFlag.count, 0);
        QVERIFY(m_api->isAllowToSendSysEx());
        QVERIFY(m_api->isAllowToRaiseFileEditFlag());
    }
}

void TestEditorFile::olderAndEqualVersionsLoad_data()
{
    QTest::addColumn<QByteArray>("version");
    for (const char *version : {"1.0", "0.9", "1", "0", "-1", "1.00", "1e0"}) {
        QTest::newRow(version) << QByteArray(version);
    }
}

void TestEditorFile::olderAndEqualVersionsLoad()
{
    QFETCH(QByteArray, version);
    QByteArray document = bytesOf(Golden);
    document.replace("version=\"1.0\"", "version=\"" + version + '"');
    QVERIFY(writeBytes(path("a.Q7V"), document));
    QVERIFY(load(path("a.Q7V")));
    QVERIFY(load(path("a.Q7V"), false));
}

void TestEditorFile::aDocumentWithoutEditBufferLoadsOnlyAsAnImport()
{
    QByteArray document = bytesOf(Golden);
    const qsizetype from = document.indexOf("    <editBuffTemplate1>");
    const qsizetype to = document.indexOf("    <bankInfo>");
    document.remove(from, to - from);
    QVERIFY(writeBytes(path("a.Q7V"), document));
    const QStringList before = wholeMemory(*m_api);
    QString error;
    QVERIFY(!load(path("a.Q7V"), true, &error));
    QCOMPARE(error, NoParameter);
    QCOMPARE(wholeMemory(*m_api), before);
    QVERIFY(load(path("a.Q7V"), false));
    QCOMPARE(contentOf(*m_api, 4, false).mid(0, 50), contentOf(*m_api, 1, false).mid(0, 50));
}

void TestEditorFile::aDocumentWithoutBankInfoIsWrittenAndNotifiedBeforeItIsUndone()
{
    QByteArray document = bytesOf(Golden);
    const qsizetype from = document.indexOf("    <bankInfo>");
    document.remove(from, document.indexOf("</bank>") - from);
    QVERIFY(writeBytes(path("a.Q7V"), document));
    fillBank(api(), 0, "zero");
    fillBank(api(), 1, "one");
    const QStringList before = wholeMemory(*m_api);
    for (const ParamAddress &address : {ParamAddress(1, 49, 13, -1), ParamAddress(0, 49, 13, -1)}) {
        QStringList seen;
        LoggingObserver observer(api(), address);
        observer.then = [&] { seen.append(m_api->getParamQString(address)); };
        const QString old = m_api->getParamQString(address);
        QString error;
        QVERIFY(!load(path("a.Q7V"), true, &error));
        QCOMPARE(error, NoParameter);
        // Once as written, once as the bank is put back.
        QCOMPARE(seen,
                 (QStringList{address.isThisBank(1) ? latin("Template S49") : latin("Template E49"),
                              old}));
        QCOMPARE(wholeMemory(*m_api), before);
    }
    QVERIFY(load(path("a.Q7V"), false));
}

void TestEditorFile::aValueOutOfRangeLeavesTheOldOne_data()
{
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QByteArray>("instead");
    QTest::addColumn<int>("controller");
    QTest::addColumn<int>("parameter");
    // Of the first stored template's first knob.
    QTest::newRow("display name of sixteen")
        << QByteArray("<displayname>K0 S0<") << QByteArray("<displayname>1234567890123456<") << 0
        << 0;
    QTest::newRow("cc number of 200")
        << QByteArray("<ccnumber>64<") << QByteArray("<ccnumber>200<") << 0 << 1;
    QTest::newRow("display format of 2")
        << QByteArray("<displayformat>1<") << QByteArray("<displayformat>2<") << 0 << 2;
    QTest::newRow("identifier of ten") << QByteArray("<remotenumber>0000003e8<")
                                       << QByteArray("<remotenumber>0000003e80<") << 0 << 3;
    QTest::newRow("control type of 2")
        << QByteArray("<controltype>1<") << QByteArray("<controltype>2<") << 14 << -1;
}

void TestEditorFile::aValueOutOfRangeLeavesTheOldOne()
{
    QFETCH(QByteArray, written);
    QFETCH(QByteArray, instead);
    QFETCH(int, controller);
    QFETCH(int, parameter);
    QByteArray document = bytesOf(Golden);
    const qsizetype at = document.indexOf(written);
    QVERIFY(at > 0);
    QVERIFY(at < document.indexOf("<template2>"));
    document.replace(at, written.size(), instead);
    QVERIFY(writeBytes(path("a.Q7V"), document));
    const ParamAddress address(1, 0, controller, parameter);
    if (address.isStringParamAdr()) {
        m_api->setParam(address, latin("old"));
        QVERIFY(load(path("a.Q7V")));
        QCOMPARE(m_api->getParamQString(address), latin("old"));
    } else {
        m_api->setParam(address, 0);
        QVERIFY(load(path("a.Q7V")));
        QCOMPARE(valueAt(*m_api, address), 0);
    }
}

void TestEditorFile::eachMissingElementIsRefused_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<bool>("importToo");
    for (const char *tag : {"template1", "template50", "name", "vstiname", "controltype", "knobA1",
                            "knobD3", "displayname", "ccnumber", "displayformat", "remotenumber"}) {
        QTest::newRow(tag) << QByteArray(tag) << true;
    }
    for (const char *tag :
         {"editBuffTemplate1", "editBuffTemplate50", "bankInfo", "templateNumber"}) {
        QTest::newRow(tag) << QByteArray(tag) << false;
    }
}

void TestEditorFile::eachMissingElementIsRefused()
{
    QFETCH(QByteArray, tag);
    QFETCH(bool, importToo);
    QByteArray document = bytesOf(Golden);
    // Renamed at its first place, with its end.
    document.replace(document.indexOf('<' + tag + '>'), tag.size() + 2, "<renamed>");
    document.replace(document.indexOf("</" + tag + '>'), tag.size() + 3, "</renamed>");
    QVERIFY(writeBytes(path("a.Q7V"), document));
    const QStringList before = wholeMemory(*m_api);
    QString error;
    QVERIFY(!load(path("a.Q7V"), true, &error));
    QCOMPARE(error, NoParameter);
    QCOMPARE(wholeMemory(*m_api), before);
    QCOMPARE(load(path("a.Q7V"), false), !importToo);
}

void TestEditorFile::everyTruncationIsRefusedOrWhole()
{
    const QByteArray document = bytesOf(Golden);
    const QStringList before = wholeMemory(*m_api);
    QRandomGenerator random(5);
    QList<qsizetype> cuts{0, 1, 10, 37, document.size() - 9, document.size() - 2};
    for (int i = 0; i < 20; ++i) {
        cuts.append(random.bounded(static_cast<int>(document.size() - 9)));
    }
    for (const qsizetype cut : cuts) {
        QVERIFY(writeBytes(path("a.Q7V"), document.first(cut)));
        QString error;
        QVERIFY(!load(path("a.Q7V"), true, &error));
        QVERIFY(error.startsWith(latin("Parse error at line ")));
        QCOMPARE(wholeMemory(*m_api), before);
    }
    // Without its last line end it is whole.
    QVERIFY(writeBytes(path("a.Q7V"), document.first(document.size() - 1)));
    QVERIFY(load(path("a.Q7V")));
}

void TestEditorFile::sixtyFourMegabytesAreRefusedFast()
{
    QFile file(path("huge.Q7V"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<!DOCTYPE TARN_TERNRemoteEditorFile>\n<bank version=\"1.0\">\n");
    const QByteArray piece = QByteArray("<template1><name>x</name></template1>\n").repeated(1000);
    while (file.size() < 64 * 1024 * 1024) {
        file.write(piece);
        file.flush();
    }
    file.write("</bank>\n");
    file.close();
    const QStringList before = wholeMemory(*m_api);
    QElapsedTimer timer;
    timer.start();
    QString error;
    QVERIFY(!load(path("huge.Q7V"), true, &error));
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(error.startsWith(latin("Parse error at line ")));
    QCOMPARE(wholeMemory(*m_api), before);
}

void TestEditorFile::theErrorPointerMayBeNull()
{
    QVERIFY(!load(path("none.Q7V")));
    QVERIFY(!load(m_folder->path()));
    QVERIFY(!load(Corpus + latin("malformed/empty.Q7V")));
    QVERIFY(!load(Corpus + latin("missing-element/empty-bank.Q7V")));
    QVERIFY(!save(path("gone/a.Q7V")));
}

void TestEditorFile::theDenyCountIsAsBeforeAfterEveryLoad()
{
    m_api->denyToRaiseFileEditFlag();
    for (const QString &name : {Golden, Corpus + latin("malformed/empty.Q7V"), path("none.Q7V"),
                                Corpus + latin("missing-element/empty-bank.Q7V")}) {
        (void)load(name);
        QVERIFY(!m_api->isAllowToRaiseFileEditFlag());
    }
    m_api->allowToRaiseFileEditFlag();
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestEditorFile::createWritesUnderANewNameEachTime()
{
    const QDir folder(m_folder->path());
    for (int i = 1; i <= 3; ++i) {
        QString error;
        QVERIFY(EditorFile::create(api(), 1, folder, latin("UserBank"), latin(".Q7V"), &error));
        QCOMPARE(filesInFolder().size(), qsizetype(i));
    }
    for (const QString &name : filesInFolder()) {
        QVERIFY(name.startsWith(latin("UserBank")));
        QVERIFY(name.endsWith(latin(".Q7V")));
        const QString identity = name.mid(8, name.size() - 12);
        QCOMPARE(QUuid(identity).toString(), identity);
        QVERIFY(bytesOf(folder.filePath(name)) == printedFile(*m_api, 1));
    }
    QCOMPARE(valueAt(*m_api, ParamAddress(1, 51, -1, -1)), 1);
    QVERIFY(m_api->getParamQString(FilePath).isEmpty());
}

void TestEditorFile::createInAMissingFolderMakesTheBankUnavailable()
{
    LoggingObserver observer(api(), ParamAddress(1, 51, -1, -1));
    QString error;
    QVERIFY(!EditorFile::create(api(), 1, QDir(path("gone")), latin("UserBank"), latin(".Q7V"),
                                &error));
    QCOMPARE(error, NotWritten);
    QCOMPARE(valueAt(*m_api, ParamAddress(1, 51, -1, -1)), 0);
    QCOMPARE(observer.count, 1);
}

QTEST_GUILESS_MAIN(TestEditorFile)
#include "tst_editorfile.moc"
