// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"
#include "file/EditorData.h"
#include "file/EditorFile.h"

#include <QtXml/QDomDocument>

#include <atomic>
#include <cstdio>
#include <memory>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

// Files that nobody would wish to be given, on the real window and by every way on which a file
// comes in: each ends in a message or in nothing, and memory, flags and files are as they were.

namespace
{

const QString NotOpened = QStringLiteral("File could not be opened.");
const QString NotOurs = QStringLiteral("File is not an editor file.");
const QString Malformed = QStringLiteral("Parse error at line ");
const QString Incomplete = QStringLiteral("Parameter is not found.");
const QString NotWritten = QStringLiteral("Failed in the file writing.");

const QString MyOwn = QStringLiteral("My own");
// Of opening a file that something else is at.
constexpr int ChangingRounds = 30;

enum Way { Menu, Outside, Import };

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// A bank whose templates are all called so.
QByteArray bankOf(const QString &name)
{
    RemoteMemAPI other;
    for (const int bank : {Bank::EditBuffer, Bank::Stored}) {
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            other.setParam(ParamAddress(bank, number, ParamAddress::TemplateName, -1), name);
        }
    }
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("bank.Q7V")));
    return EditorFile::save(&other, Bank::Stored, &file, nullptr) ? bytesOf(file.fileName())
                                                                  : QByteArray();
}

// For its life this thread's access to files is that of a user to whom nothing belongs. Whoever
// runs the tests as such a user needs nothing of it.
class OrdinaryUser
{
public:
    OrdinaryUser()
        : m_before(setfsuid(Nobody))
    {
    }
    ~OrdinaryUser() { setfsuid(static_cast<uid_t>(m_before)); }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    static constexpr uid_t Nobody = 65534;
    int m_before;
};

// Runs the work again and again, beside the window, until it is destroyed.
class Meanwhile
{
public:
    template <typename Work>
    explicit Meanwhile(Work work)
        : m_thread([this, work] {
            while (!m_ends) {
                work();
                ++m_rounds;
            }
        })
    {
    }
    ~Meanwhile()
    {
        m_ends = true;
        m_thread.join();
    }
    Meanwhile(const Meanwhile &) = delete;
    Meanwhile &operator=(const Meanwhile &) = delete;
    int rounds() const { return m_rounds; }

private:
    std::atomic<bool> m_ends{false};
    std::atomic<int> m_rounds{0};
    std::thread m_thread;
};

} // namespace

Q_DECLARE_METATYPE(Way)

class TestHostileFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void whatIsNoBankEndsInItsMessage_data();
    void whatIsNoBankEndsInItsMessage();
    void whatIsNotThereEndsInNothing();
    void aFileNobodyMayReadEndsInItsMessage_data() { ways(); }
    void aFileNobodyMayReadEndsInItsMessage();

    void everyNameIsOpenedShownAndSaved_data();
    void everyNameIsOpenedShownAndSaved();
    void aNameWithoutExtensionIsOpenedAndSavedUnderAnother();
    void theSameFileTwiceIsTheSameDocument_data() { ways(); }
    void theSameFileTwiceIsTheSameDocument();

    void aFileThatIsReplacedWhileItLoadsIsTheOldOrTheNewOne();
    void aFileThatIsRewrittenWhileItLoadsIsWholeOrRefused();
    void aFileThatComesAndGoesIsWholeOrMissed();

    void aDocumentOnAReadOnlyMediumStaysEdited();
    void savingAsOnAReadOnlyMediumIsTold_data();
    void savingAsOnAReadOnlyMediumIsTold();
    void aFolderTakesNoDocument();

private:
    static void ways()
    {
        QTest::addColumn<Way>("way");
        QTest::newRow("menu") << Menu;
        QTest::newRow("from outside") << Outside;
        QTest::newRow("import") << Import;
    }
    QString path(const char *name) const { return m_folder->filePath(QString::fromUtf8(name)); }
    // To where the file is asked for.
    void goTo(Way way)
    {
        if (way == Import) {
            m_rig->window->viewLibrary();
        }
    }
    // As its user does, or the desktop.
    void take(Way way, const QString &file)
    {
        m_answer = way == Outside ? nullptr : std::make_unique<FileDialogAnswer>(file);
        if (way == Menu) {
            m_rig->entry(QStringLiteral("&Open..."))->trigger();
        } else if (way == Import) {
            m_rig->entry(QStringLiteral("&Import Template..."))->trigger();
        } else {
            m_rig->window->applicationFileOpen(file);
            QCoreApplication::processEvents();
        }
    }
    // Everything that a load could touch, but the two banks that keep what a load may undo.
    QByteArray state() const
    {
        QByteArray text;
        for (int bank = 0; bank < Bank::Count; ++bank) {
            if (bank == Bank::EvacuatedBank || bank == Bank::EvacuatedEditBuffer) {
                continue;
            }
            QDomDocument document;
            document.appendChild(EditorData::getBankDomElement(m_rig->api.get(), &document, bank,
                                                               QStringLiteral("bank"), false));
            text += document.toByteArray();
        }
        for (const int flag : {ParamAddress::FileEditFlag, ParamAddress::LibraryEditFlag,
                               ParamAddress::BankEditFlag, ParamAddress::IsOnline}) {
            text += QByteArray::number(m_rig->flag(flag)) + ' ';
        }
        for (int bank = 0; bank < Bank::Count; ++bank) {
            text +=
                QByteArray::number(m_rig->api->getBankAvailableFlag(bank).getCurrentValue()) + ' ';
        }
        const ParamAddress current(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
        return text + QByteArray::number(m_rig->api->getParam(current).getCurrentValue()) +
               m_rig->fileName().toUtf8() + (m_rig->api->isAllowToRaiseFileEditFlag() ? '+' : '-') +
               (m_rig->api->isAllowToSendSysEx() ? '+' : '-') + (m_rig->isFree() ? '+' : '-');
    }
    QString nameIn(int bank, int number = 0) const
    {
        return m_rig->api->getParamQString(
            ParamAddress(bank, number, ParamAddress::TemplateName, -1));
    }
    // One name for all templates; empty if there are several.
    QString oneNameIn(int bank) const
    {
        for (int number = 1; number < ParamAddress::TemplateCount; ++number) {
            if (nameIn(bank, number) != nameIn(bank)) {
                return {};
            }
        }
        return nameIn(bank);
    }
    void edit() { m_rig->setFlag(ParamAddress::FileEditFlag, 1); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindowRig> m_rig;
    std::unique_ptr<FileDialogAnswer> m_answer;
};

void TestHostileFiles::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_rig = std::make_unique<MainWindowRig>();
    QVERIFY(m_rig->openWindow());
    // A document of the user's own, which must not be lost.
    m_rig->api->denyToRaiseFileEditFlag();
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 7, ParamAddress::TemplateName, -1), MyOwn);
    m_rig->api->allowToRaiseFileEditFlag();
}

void TestHostileFiles::cleanup()
{
    m_answer.reset();
    m_rig.reset();
    m_folder.reset();
}

// --- Bad files -----------------------------------------------------------------------------------

void TestHostileFiles::whatIsNoBankEndsInItsMessage_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("message");
    const QByteArray bank = bankOf(QStringLiteral("Good"));
    const auto without = [&bank](const QByteArray &from, const QByteArray &to) {
        const qsizetype at = bank.indexOf(from);
        const qsizetype end = bank.indexOf(to, at) + to.size();
        return QByteArray(bank).remove(at, end - at);
    };
    struct Row
    {
        const char *name;
        QString file;
        QByteArray content;
        QString message;
    };
    const QString file = QStringLiteral("bad.Q7V");
    const QList<Row> rows{
        {"a folder", QStringLiteral("folder.Q7V"), {}, NotOpened},
        {"a pipe", QStringLiteral("pipe.Q7V"), {}, NotOpened},
        {"a device", QStringLiteral("/dev/zero"), {}, NotOpened},
        {"empty", file, {}, Malformed},
        {"blanks", file, QByteArray(1000, ' '), Malformed},
        {"zeros", file, QByteArray(4096, '\0'), Malformed},
        {"a picture", file, bytesOf(QStringLiteral(":/images/vd_arrow.png")), Malformed},
        {"other XML", file, "<!DOCTYPE html>\n<html/>", NotOurs},
        {"no document type", file, without("<!DOCTYPE", ">"), NotOurs},
        {"a byte is missing", file, bank.chopped(3), Malformed},
        {"the half", file, bank.first(bank.size() / 2), Malformed},
        {"a byte too many", file, bank + "<", Malformed},
        {"a template is missing", file, without("<template20>", "</template20>"), Incomplete},
        {"a knob's part is missing", file, without("<ccnumber>", "</ccnumber>"), Incomplete},
        {"deep", file, QByteArray("<a>").repeated(100000), Malformed},
        {"seventeen megabytes", file, bank + QByteArray(17 * 1024 * 1024, ' '), Malformed},
        {"holes as long as a disk", QStringLiteral("sparse.Q7V"), {}, Malformed},
    };
    for (const Row &row : rows) {
        QTest::newRow(row.name) << row.file << row.content << row.message;
    }
}

void TestHostileFiles::whatIsNoBankEndsInItsMessage()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, message);
    const QString name = QDir(m_folder->path()).filePath(file);
    if (file.startsWith(QLatin1String("folder"))) {
        QVERIFY(QDir().mkpath(name));
    } else if (file.startsWith(QLatin1String("pipe"))) {
        QCOMPARE(mkfifo(QFile::encodeName(name).constData(), 0600), 0);
    } else if (file.startsWith(QLatin1String("sparse"))) {
        QFile sparse(name);
        QVERIFY(sparse.open(QIODevice::WriteOnly) && sparse.resize(qint64(1) << 40));
    } else if (!file.startsWith(QLatin1Char('/'))) {
        QVERIFY(writeBytes(name, content));
    }
    const bool isOrdinary = QFileInfo(name).isFile() && QFileInfo(name).size() < (1 << 30);
    QVERIFY(writeBytes(path("good.Q7V"), bankOf(QStringLiteral("Good"))));
    const MessageBoxAnswer boxes;
    int asked = 0;
    for (const Way way : {Menu, Outside, Import}) {
        goTo(way);
        const QByteArray before = state();
        take(way, name);
        ++asked;
        QTRY_COMPARE(boxes.asked().size(), asked);
        QVERIFY2(boxes.asked().last().startsWith(EditorName + QLatin1Char('|') + message),
                 qPrintable(boxes.asked().last()));
        QVERIFY(state() == before);
        QCOMPARE(nameIn(Bank::EditBuffer, 7), MyOwn);
        if (isOrdinary) {
            QVERIFY(bytesOf(name) == content);
        }
    }
    // And the next one is taken.
    take(Import, path("good.Q7V"));
    QTRY_COMPARE(oneNameIn(Bank::Import), QStringLiteral("Good"));
    QCOMPARE(boxes.asked().size(), asked);
}

void TestHostileFiles::whatIsNotThereEndsInNothing()
{
    QVERIFY(writeBytes(path("good.Q7V"), bankOf(QStringLiteral("Good"))));
    QVERIFY(QFile::link(path("nothing"), path("link.Q7V")));
    QVERIFY(QFile::link(path("ring.Q7V"), path("ring.Q7V")));
    const QByteArray before = state();
    const MessageBoxAnswer boxes;
    for (const QString &name : {
             QString(),
             path("none.Q7V"),
             path("none/none.Q7V"),
             path("good.Q7V/"),
             path("good.Q7V/bank.Q7V"),
             path("link.Q7V"),
             path("ring.Q7V"),
             m_folder->filePath(QString(300, QLatin1Char('n')) + EditorFileExtension),
             m_folder->filePath(QStringLiteral("folder/").repeated(1000)),
             QStringLiteral("file://") + path("good.Q7V"),
         }) {
        QVERIFY2(!m_rig->window->fileOpen(name), qPrintable(name));
        QCOMPARE(boxes.asked(), QStringList());
        QVERIFY2(state() == before, qPrintable(name));
    }
}

void TestHostileFiles::aFileNobodyMayReadEndsInItsMessage()
{
    QFETCH(Way, way);
    const QString name = path("secret.Q7V");
    const QByteArray content = bankOf(QStringLiteral("Secret"));
    QVERIFY(writeBytes(name, content));
    QCOMPARE(chmod(QFile::encodeName(name).constData(), 0), 0);
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    goTo(way);
    const QByteArray before = state();
    const MessageBoxAnswer boxes;
    {
        const OrdinaryUser nobody;
        take(way, name);
        QTRY_COMPARE(boxes.asked(), QStringList(EditorName + QLatin1Char('|') + NotOpened));
    }
    QVERIFY(state() == before);
    QVERIFY(bytesOf(name) == content || geteuid() != 0);
}

// --- Names ---------------------------------------------------------------------------------------

void TestHostileFiles::everyNameIsOpenedShownAndSaved_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("blanks") << QStringLiteral(" my  bank .Q7V");
    QTest::newRow("quotes") << QStringLiteral("my 'bank' \"one\" `two`.Q7V");
    QTest::newRow("letters of other scripts") << QString::fromUtf8("Bänk né Ω 日本 🎹.Q7V");
    QTest::newRow("combining letters") << QString::fromUtf8("Ba\u0308nk.Q7V");
    QTest::newRow("right to left") << QString::fromUtf8("בנק.Q7V");
    QTest::newRow("markup") << QStringLiteral("<b>bank&amp;%1%20.Q7V");
    QTest::newRow("a shell's letters") << QStringLiteral("$(x);|*?~!#\\ bank.Q7V");
    QTest::newRow("a line end") << QStringLiteral("first\nsecond.Q7V");
    QTest::newRow("a hyphen in front") << QStringLiteral("-bank.Q7V");
    QTest::newRow("hidden") << QStringLiteral(".Q7V");
    QTest::newRow("dots") << QStringLiteral("..bank...Q7V");
    QTest::newRow("small extension") << QStringLiteral("bank.q7v");
    QTest::newRow("folders with blanks") << QStringLiteral("my folder/Größe \"x\"/bank.Q7V");
    // Longer ones leave no room beside them for the file that takes their place.
    QTest::newRow("long") << QString(200, QLatin1Char('n')) + EditorFileExtension;
}

void TestHostileFiles::everyNameIsOpenedShownAndSaved()
{
    QFETCH(QString, file);
    const QString name = m_folder->filePath(file);
    QVERIFY(QDir().mkpath(QFileInfo(name).absolutePath()));
    QVERIFY(writeBytes(name, bankOf(QStringLiteral("Good"))));
    const MessageBoxAnswer boxes;
    take(Outside, name);
    QTRY_COMPARE(m_rig->fileName(), name);
    QCOMPARE(oneNameIn(Bank::EditBuffer), QStringLiteral("Good"));
    QCOMPARE(m_rig->window->getWorkingFolder(), QFileInfo(name).absolutePath());
    auto *shown = m_rig->templateView()->findChild<CText *>(QStringLiteral("txtFileName"));
    QVERIFY(!shown->text().isEmpty());
    QVERIFY(QFileInfo(name).fileName().startsWith(shown->text().left(3)));

    m_rig->api->setParam(ParamAddress(Bank::Stored, 3, ParamAddress::TemplateName, -1),
                         QStringLiteral("Changed"));
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
    QVERIFY(m_rig->window->fileSaveBank());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    QVERIFY(bytesOf(name).contains("Changed"));
    QCOMPARE(QDir(QFileInfo(name).absolutePath()).entryList(QDir::Files | QDir::Hidden),
             QStringList(QFileInfo(name).fileName()));
    // For the import it is as good.
    m_rig->window->viewLibrary();
    take(Outside, name); // the library takes none from outside
    QVERIFY(nameIn(Bank::Import, 3).trimmed() != QStringLiteral("Changed"));
    if (!file.contains(QLatin1Char('"'))) { // Qt's own dialog takes these for several names
        take(Import, name);
        QTRY_COMPARE(nameIn(Bank::Import, 3), QStringLiteral("Changed"));
    }
    QCOMPARE(boxes.asked(), QStringList());
}

void TestHostileFiles::aNameWithoutExtensionIsOpenedAndSavedUnderAnother()
{
    const QString name = path("bank");
    const QByteArray content = bankOf(QStringLiteral("Good"));
    QVERIFY(writeBytes(name, content));
    const MessageBoxAnswer boxes;
    take(Outside, name);
    QTRY_COMPARE(m_rig->fileName(), name);
    edit();
    // Nobody saves over a file that is not called as a bank is.
    m_answer = std::make_unique<FileDialogAnswer>(name);
    QVERIFY(m_rig->window->fileSaveBank());
    QVERIFY(m_answer->wasAsked());
    QCOMPARE(m_rig->fileName(), name + EditorFileExtension);
    QCOMPARE(bytesOf(name), content);
    QCOMPARE(bytesOf(name + EditorFileExtension), content);
    QCOMPARE(boxes.asked(), QStringList());
}

void TestHostileFiles::theSameFileTwiceIsTheSameDocument()
{
    QFETCH(Way, way);
    const QString name = path("bank.Q7V");
    QVERIFY(writeBytes(name, bankOf(QStringLiteral("Good"))));
    goTo(way);
    const MessageBoxAnswer boxes;
    take(way, name);
    QTRY_COMPARE(oneNameIn(way == Import ? Bank::Import : Bank::EditBuffer),
                 QStringLiteral("Good"));
    const QByteArray before = state();
    take(way, name);
    if (way == Outside) {
        // Both at once, before the window has come to either.
        m_rig->window->applicationFileOpen(name);
        m_rig->window->applicationFileOpen(name);
        QCoreApplication::processEvents();
    }
    QVERIFY(state() == before);
    QCOMPARE(boxes.asked(), QStringList());
    QVERIFY(m_rig->anyPanel() == nullptr);
}

// --- Files that change ---------------------------------------------------------------------------

void TestHostileFiles::aFileThatIsReplacedWhileItLoadsIsTheOldOrTheNewOne()
{
    const QString name = path("bank.Q7V");
    const QByteArray banks[] = {bankOf(QStringLiteral("Old")), bankOf(QStringLiteral("New"))};
    QVERIFY(writeBytes(name, banks[0]));
    const QByteArray place = QFile::encodeName(name);
    const QString beside = path("beside");
    const MessageBoxAnswer boxes;
    std::atomic<int> which{0};
    const Meanwhile replaced([&] {
        writeBytes(beside, banks[++which % 2]);
        std::rename(QFile::encodeName(beside).constData(), place.constData());
    });
    for (int round = 0; round < ChangingRounds; ++round) {
        QVERIFY(m_rig->window->fileOpen(name));
        QVERIFY((QStringList{QStringLiteral("Old"), QStringLiteral("New")}.contains(
            oneNameIn(Bank::EditBuffer))));
        QCOMPARE(oneNameIn(Bank::Stored), oneNameIn(Bank::EditBuffer));
    }
    QTRY_VERIFY(replaced.rounds() > ChangingRounds);
    QCOMPARE(boxes.asked(), QStringList());
}

void TestHostileFiles::aFileThatIsRewrittenWhileItLoadsIsWholeOrRefused()
{
    const QString name = path("bank.Q7V");
    const QByteArray bank = bankOf(QStringLiteral("Good"));
    QVERIFY(writeBytes(name, bank));
    // As a copy to the same place does: emptied, and filled piece by piece.
    const MessageBoxAnswer boxes;
    const Meanwhile rewritten([&] {
        constexpr qsizetype Piece = 4096;
        QFile file(name);
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        for (qsizetype at = 0; at < bank.size(); at += Piece) {
            file.write(bank.mid(at, Piece));
        }
    });
    const QByteArray before = state();
    int refused = 0;
    for (int round = 0; round < ChangingRounds; ++round) {
        const bool isLoaded = m_rig->window->fileOpen(name);
        refused += isLoaded ? 0 : 1;
        QCOMPARE(boxes.asked().size(), refused);
        if (isLoaded) {
            QCOMPARE(oneNameIn(Bank::EditBuffer), QStringLiteral("Good"));
            QCOMPARE(oneNameIn(Bank::Stored), QStringLiteral("Good"));
            // Back to what there was, for the next round.
            m_rig->window->fileNew();
            m_rig->api->denyToRaiseFileEditFlag();
            m_rig->api->copyBank(Bank::EditBuffer, Bank::Stored);
            m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 7, ParamAddress::TemplateName, -1),
                                 MyOwn);
            m_rig->api->allowToRaiseFileEditFlag();
        }
        QCOMPARE(nameIn(Bank::EditBuffer, 7), MyOwn);
        QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    }
    if (refused == ChangingRounds) {
        QVERIFY(state() == before);
    }
    QTRY_VERIFY(rewritten.rounds() > 1);
}

void TestHostileFiles::aFileThatComesAndGoesIsWholeOrMissed()
{
    const QString name = path("bank.Q7V");
    const QByteArray bank = bankOf(QStringLiteral("Good"));
    const MessageBoxAnswer boxes;
    const Meanwhile comingAndGoing([&] {
        writeBytes(path("beside"), bank);
        std::rename(QFile::encodeName(path("beside")).constData(),
                    QFile::encodeName(name).constData());
        QFile::remove(name);
    });
    for (int round = 0; round < ChangingRounds; ++round) {
        if (m_rig->window->fileOpen(name)) {
            QCOMPARE(oneNameIn(Bank::EditBuffer), QStringLiteral("Good"));
        }
    }
    QTRY_VERIFY(comingAndGoing.rounds() > 1);
    for (const QString &asked : boxes.asked()) {
        // It was there when it was asked for, and not when it was opened.
        QVERIFY2(asked.endsWith(NotOpened) || asked.endsWith(QStringLiteral("File was not found.")),
                 qPrintable(asked));
    }
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
    QVERIFY(m_rig->api->isAllowToSendSysEx());
}

// --- Media that take nothing ---------------------------------------------------------------------

void TestHostileFiles::aDocumentOnAReadOnlyMediumStaysEdited()
{
    const QString name = path("medium/bank.Q7V");
    QVERIFY(QDir().mkpath(path("medium")));
    const QByteArray content = bankOf(QStringLiteral("Good"));
    QVERIFY(writeBytes(name, content));
    QCOMPARE(chmod(QFile::encodeName(name).constData(), 0444), 0);
    QCOMPARE(chmod(QFile::encodeName(path("medium")).constData(), 0555), 0);
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    take(Outside, name);
    QTRY_COMPARE(m_rig->fileName(), name);
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 3, ParamAddress::TemplateName, -1),
                         QStringLiteral("Changed"));
    const QByteArray before = state();
    {
        const OrdinaryUser nobody;
        const MessageBoxAnswer boxes;
        QVERIFY(!m_rig->window->fileSaveBank());
        QCOMPARE(boxes.asked(), QStringList(EditorName + QLatin1Char('|') + NotWritten));
    }
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
    QVERIFY(state() == before);
    QVERIFY(bytesOf(name) == content);
    QCOMPARE(QDir(path("medium")).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("bank.Q7V")));
    // Elsewhere there is room, and the edits live on.
    m_answer = std::make_unique<FileDialogAnswer>(path("elsewhere.Q7V"));
    QVERIFY(m_rig->window->fileSaveBankAs());
    QVERIFY(bytesOf(path("elsewhere.Q7V")).contains("Changed"));
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    chmod(QFile::encodeName(path("medium")).constData(), 0755);
}

void TestHostileFiles::savingAsOnAReadOnlyMediumIsTold_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("a new file") << false;
    QTest::newRow("over an old one") << true;
}

void TestHostileFiles::savingAsOnAReadOnlyMediumIsTold()
{
    QFETCH(bool, exists);
    const QString name = path("medium/bank.Q7V");
    QVERIFY(QDir().mkpath(path("medium")));
    if (exists) {
        QVERIFY(writeBytes(name, "old"));
        QCOMPARE(chmod(QFile::encodeName(name).constData(), 0444), 0);
    }
    QCOMPARE(chmod(QFile::encodeName(path("medium")).constData(), 0555), 0);
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0755), 0);
    edit();
    const QByteArray before = state();
    m_answer = std::make_unique<FileDialogAnswer>(name);
    {
        const OrdinaryUser nobody;
        const MessageBoxAnswer boxes(QMessageBox::Yes, [](QMessageBox *box) {
            // The question is answered; what it leads to has but one button.
            if (box->button(QMessageBox::Yes) == nullptr) {
                box->addButton(QMessageBox::Yes);
            }
        });
        QVERIFY(!m_rig->window->fileSaveBankAs());
        QCOMPARE(boxes.asked().constLast(), exists ? ModelName + QStringLiteral("|Document \"") +
                                                         name + QStringLiteral("\" not saved.")
                                                   : EditorName + QLatin1Char('|') + NotWritten);
        QCOMPARE(boxes.asked().size(), exists ? 2 : 1);
    }
    QVERIFY(state() == before);
    QCOMPARE(bytesOf(name), exists ? QByteArray("old") : QByteArray());
    chmod(QFile::encodeName(path("medium")).constData(), 0755);
}

void TestHostileFiles::aFolderTakesNoDocument()
{
    const QString name = path("folder.Q7V");
    QVERIFY(QDir().mkpath(name));
    edit();
    m_rig->api->setParam(ParamAddress(ParamAddress::FileName, -1, -1, -1), name);
    const QByteArray before = state();
    const MessageBoxAnswer boxes;
    QVERIFY(!m_rig->window->fileSaveBank());
    QCOMPARE(boxes.asked(), QStringList(EditorName + QLatin1Char('|') + NotWritten));
    QVERIFY(state() == before);
    QVERIFY(QFileInfo(name).isDir());
    QVERIFY(QDir(name).isEmpty());
}

QTEST_MAIN(TestHostileFiles)
#include "tst_hostilefiles.moc"
