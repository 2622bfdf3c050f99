// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "app/MainWindowRig.h"
#include "docs/manual/press/SourceHash.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtGui/QDesktopServices>
#include <QtTest/QTest>

// The manual: the PDF belongs to the source in the tree, the source has what it names, and the
// window finds and opens it.

namespace
{

const QString Source = QStringLiteral(TRN_SOURCE_DIR "/docs/manual");
const QString Resources = QStringLiteral(TRN_SOURCE_DIR "/resources");

QByteArray bytesAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// As a PDF has its texts about itself.
QByteArray bigEndian(const QString &text)
{
    QByteArray bytes;
    for (const QChar c : text) {
        bytes.append(char(c.unicode() >> 8)).append(char(c.unicode() & 0xFF));
    }
    return bytes;
}

} // namespace

class TestManual : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // The desktop's viewer.
    void view(const QUrl &url) { m_viewed.append(url.toLocalFile()); }

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void thePdfIsMadeFromTheSourceInTheTree();
    void everyFigureIsThereAndUsed();
    void everyCommandOfTheMenusIsTold();
    void theErrorTextsOfFilesAreTold();
    void theChecksumsOfTheChartHold();
    void itOpensInTheLanguageOfTheLocale();
    void withoutThatLanguageTheEnglishOneOpens();
    void theOneThatComesWithTheProgramOpens();
    void withoutAnyTheUserIsTold();

private:
    QString html() const
    {
        return QString::fromUtf8(bytesAt(Source + QStringLiteral("/manual.html")));
    }
    bool put(const QString &language) const
    {
        const QString folder = m_machine->filePath(QStringLiteral("resources/") + language);
        QFile file(folder + QLatin1Char('/') + HelpFileName);
        return QDir().mkpath(folder) && file.open(QIODevice::WriteOnly);
    }
    QString placeOf(const QString &language) const
    {
        return m_machine->filePath(QStringLiteral("resources/") + language + QLatin1Char('/') +
                                   HelpFileName);
    }
    // F1, in a window over the machine's resources.
    void askForTheManual(const QString &executableFolder)
    {
        MachineFolders folders;
        folders.executable = executableFolder;
        setMachineFolders(folders);
        MainWindowRig rig;
        rig.makeWindow();
        QAction *entry = rig.entry(MenuHelpManual);
        QVERIFY(entry != nullptr);
        entry->trigger();
    }

    std::unique_ptr<QTemporaryDir> m_machine;
    QStringList m_viewed;
};

void TestManual::initTestCase()
{
    PanelRig::setUpApplication();
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "view");
    QCOMPARE(QLocale::system().language(), QLocale::German);
}

void TestManual::init()
{
    m_viewed.clear();
    m_machine = std::make_unique<QTemporaryDir>();
    // The bank tells the resources' folder.
    QVERIFY(QDir().mkpath(m_machine->filePath(QStringLiteral("resources"))));
    QVERIFY(QFile::copy(Resources + QStringLiteral("/BankPreset1.Q7V"),
                        m_machine->filePath(QStringLiteral("resources/BankPreset1.Q7V"))));
}

void TestManual::cleanup()
{
    setMachineFolders({});
}

void TestManual::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
}

// If this fails, build the target "manual", look at the pages, and commit the PDF.
void TestManual::thePdfIsMadeFromTheSourceInTheTree()
{
    const QByteArray pdf = bytesAt(Resources + QStringLiteral("/English/") + HelpFileName);
    QVERIFY(pdf.startsWith("%PDF-"));
    const QByteArray hash = manualSourceHash(Source);
    QCOMPARE(hash.size(), 64);
    QVERIFY(pdf.contains(bigEndian(manualHashMark(hash))));
}

void TestManual::everyFigureIsThereAndUsed()
{
    QStringList used{QStringLiteral("display.png")}; // on the title page
    static const QRegularExpression pictures(QStringLiteral("<img src=\"figures/([^\"]+)\""));
    for (auto found = pictures.globalMatch(html()); found.hasNext();) {
        used.append(found.next().captured(1));
    }
    used.sort();
    const QDir figures(Source + QStringLiteral("/figures"));
    QCOMPARE(used, figures.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name));
}

void TestManual::everyCommandOfTheMenusIsTold()
{
    const QString text = html();
    for (QString command : {MenuFileNew, MenuFileOpen, MenuFileSave, MenuFileSaveAs,
                            MenuFileImportTemplate, MenuEditCopy, MenuEditPaste, MenuEditInitialize,
                            MenuEditResetStored, MenuEditRestoreHW, MenuEditResetFactory}) {
        command.remove(QLatin1Char('&'));
        QVERIFY2(text.contains(QLatin1Char('>') + command + QLatin1Char('<')), qPrintable(command));
    }
}

void TestManual::theErrorTextsOfFilesAreTold()
{
    const QString text = html();
    for (const char *said :
         {"File is not an editor file.", "Root tag ID name is different.", "Parse error at line",
          "It doesn't correspond to this version.", "Failed in the file writing.",
          "MIDI port is not found.", "Communication error. Please try again."}) {
        QVERIFY2(text.contains(QLatin1String(said)), said);
    }
}

// Of every bulk block that the manual writes out in full.
void TestManual::theChecksumsOfTheChartHold()
{
    static const QRegularExpression whole(
        QStringLiteral("<code>(F0 43 00 7F 14(?: [0-9A-F]{2})+ F7)</code>"));
    int messages = 0;
    const QString text = html();
    for (auto found = whole.globalMatch(text); found.hasNext(); ++messages) {
        const QString message = found.next().captured(1);
        const QByteArray bytes = QByteArray::fromHex(message.toLatin1());
        int sum = 0;
        for (qsizetype i = 5; i < bytes.size() - 1; ++i) {
            sum += bytes.at(i);
        }
        QVERIFY2(sum % 128 == 0, qPrintable(message));
    }
    QCOMPARE(messages, 3);
}

void TestManual::itOpensInTheLanguageOfTheLocale()
{
    QVERIFY(put(QStringLiteral("German")) && put(QStringLiteral("English")));
    askForTheManual(m_machine->path());
    QCOMPARE(m_viewed, QStringList(placeOf(QStringLiteral("German"))));
}

void TestManual::withoutThatLanguageTheEnglishOneOpens()
{
    QVERIFY(put(QStringLiteral("French")) && put(QStringLiteral("English")));
    askForTheManual(m_machine->path());
    QCOMPARE(m_viewed, QStringList(placeOf(QStringLiteral("English"))));
}

void TestManual::theOneThatComesWithTheProgramOpens()
{
    askForTheManual(QStringLiteral(TRN_BIN_DIR));
    QCOMPARE(m_viewed.size(), 1);
    QCOMPARE(bytesAt(m_viewed.constFirst()),
             bytesAt(Resources + QStringLiteral("/English/") + HelpFileName));
}

void TestManual::withoutAnyTheUserIsTold()
{
    const MessageBoxAnswer answer;
    askForTheManual(m_machine->path());
    QCOMPARE(m_viewed, QStringList());
    QCOMPARE(answer.asked(),
             QStringList(EditorName + QStringLiteral("|Failed to load help document.\r\nPlease try "
                                                     "re-installing the package.")));
}

int main(int argc, char **argv)
{
    // Of a user whose language the manual is not in; read when Qt is first asked.
    qputenv("LC_ALL", "de_DE.UTF-8");
    QTEST_SET_MAIN_SOURCE_PATH
    QApplication application(argc, argv);
    TestManual test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_manual.moc"
