// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Constants.h"
#include "app/MainWindowRig.h"
#include "file/EditorData.h"
#include "widgets/FlashFrame.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtGui/QClipboard>
#include <QtXml/QDomDocument>

#include <memory>

// The clipboard as another program holds it, on the real window: one that gives what it promised,
// one that gives something else, and one that is gone when it is asked. What is pasted is whole, or
// nothing is written and no flag rises.

namespace
{

// Qt waits that long for a program that does not answer.
constexpr int SilenceMs = 5000;
constexpr int WaitMs = 6 * SilenceMs;

const QString Copied = QStringLiteral("Copied");
const QString Mine = QStringLiteral("Mine");

// What this program itself puts on the clipboard.
QByteArray knobData()
{
    RemoteMemAPI other;
    other.setParam(ParamAddress(Bank::EditBuffer, 0, 3, ParamAddress::DisplayName), Copied);
    QDomDocument document(KnobDocType);
    QDomElement root =
        EditorData::getControllerDomElement(&other, &document, Bank::EditBuffer, 0, 3, QString());
    root.setAttribute(EditorData::AttributeKnobNumber, 3);
    document.appendChild(root);
    return document.toByteArray(1);
}

QByteArray templateData(int number)
{
    RemoteMemAPI other;
    QDomDocument document(TemplateDocType);
    QDomElement root =
        EditorData::getTemplateDomElement(&other, &document, Bank::EditBuffer, 0, QString());
    root.setAttribute(EditorData::AttributeTemplateNumber, number);
    root.setAttribute(EditorData::AttributeBankNumber, Bank::Library);
    document.appendChild(root);
    return document.toByteArray(1);
}

} // namespace

class TestForeignClipboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void whatAnotherProgramGivesIsPasted_data();
    void whatAnotherProgramGivesIsPasted();
    void whatAnotherProgramFailsToGiveWritesNothing_data();
    void whatAnotherProgramFailsToGiveWritesNothing();
    void anOwnerThatDiesTakesPasteWithIt_data() { views(); }
    void anOwnerThatDiesTakesPasteWithIt();
    void anOwnerThatHangsIsAskedOnce();

private:
    static void views()
    {
        QTest::addColumn<bool>("library");
        QTest::newRow("knob") << false;
        QTest::newRow("template") << true;
    }
    void show(bool library)
    {
        m_library = library;
        if (library) {
            m_rig->window->viewLibrary();
        }
    }
    // Another program takes the clipboard.
    bool own(const char *manner, const QByteArray &data)
    {
        QFile file(m_folder.filePath(QStringLiteral("data")));
        if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size()) {
            return false;
        }
        file.close();
        const QSignalSpy changed(QGuiApplication::clipboard(), &QClipboard::dataChanged);
        m_owner = std::make_unique<QProcess>();
        m_owner->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_owner->start(
            QStringLiteral(TRN_BIN_DIR "/tests/clipboard-owner"),
            {m_library ? TemplateMimeType : KnobMimeType, QLatin1String(manner), file.fileName()});
        return m_owner->waitForReadyRead() && m_owner->readLine() == "owning\n" &&
               QTest::qWaitFor([&changed] { return !changed.isEmpty(); });
    }
    bool canPaste() const { return m_rig->entry(QStringLiteral("&Paste"))->isEnabled(); }
    bool isGone() const { return m_owner->state() == QProcess::NotRunning; }
    // The place that a paste goes to.
    QString name() const
    {
        return m_rig->api->getParamQString(
            m_library ? ParamAddress(Bank::Library, 0, ParamAddress::TemplateName, -1)
                      : ParamAddress(Bank::EditBuffer, 0, 0, ParamAddress::DisplayName));
    }
    int flag() const
    {
        return m_rig->flag(m_library ? ParamAddress::LibraryEditFlag : ParamAddress::FileEditFlag);
    }
    QByteArray content() const
    {
        QByteArray text;
        for (const int bank : {Bank::EditBuffer, Bank::Stored, Bank::Library}) {
            QDomDocument document;
            document.appendChild(EditorData::getBankDomElement(m_rig->api.get(), &document, bank,
                                                               QStringLiteral("bank"), false));
            text += document.toByteArray();
        }
        return text;
    }
    qsizetype flashes() const { return m_rig->window->findChildren<FlashFrame *>().size(); }

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindowRig> m_rig;
    std::unique_ptr<QProcess> m_owner;
    bool m_library = false;
};

void TestForeignClipboard::init()
{
    QGuiApplication::clipboard()->clear();
    m_rig = std::make_unique<MainWindowRig>();
    QVERIFY(m_rig->openWindow());
    m_rig->api->denyToRaiseFileEditFlag();
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, 0, ParamAddress::DisplayName), Mine);
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1), Mine);
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 9, ParamAddress::TemplateName, -1), Copied);
    m_rig->api->allowToRaiseFileEditFlag();
}

void TestForeignClipboard::cleanup()
{
    if (m_owner) {
        m_owner->kill();
        m_owner->waitForFinished();
        m_owner.reset();
    }
    m_rig.reset();
    m_library = false;
}

void TestForeignClipboard::whatAnotherProgramGivesIsPasted_data()
{
    QTest::addColumn<bool>("library");
    QTest::addColumn<QByteArray>("manner");
    QTest::newRow("knob") << false << QByteArray("serves");
    QTest::newRow("knob in pieces") << false << QByteArray("pieces");
    QTest::newRow("template") << true << QByteArray("serves");
    QTest::newRow("template in pieces") << true << QByteArray("pieces");
}

void TestForeignClipboard::whatAnotherProgramGivesIsPasted()
{
    QFETCH(bool, library);
    QFETCH(QByteArray, manner);
    show(library);
    QVERIFY(!canPaste());
    QVERIFY(own(manner.constData(), library ? templateData(9) : knobData()));
    QTRY_VERIFY(canPaste());
    m_rig->entry(QStringLiteral("&Paste"))->trigger();
    QCOMPARE(name(), Copied);
    QCOMPARE(flag(), 1);
    QCOMPARE(flashes(), 1);
}

void TestForeignClipboard::whatAnotherProgramFailsToGiveWritesNothing_data()
{
    QTest::addColumn<bool>("library");
    QTest::addColumn<QByteArray>("manner");
    QTest::addColumn<QByteArray>("data");
    const QByteArray huge = QByteArray(12 * 1024 * 1024, ' ');
    for (const bool library : {false, true}) {
        const QByteArray good = library ? templateData(9) : knobData();
        const auto row = [library](const char *name, const char *manner, const QByteArray &data) {
            QTest::addRow("%s, %s", library ? "template" : "knob", name)
                << library << QByteArray(manner) << data;
        };
        row("nothing", "serves", {});
        row("foreign", "serves",
            "\x7f"
            "ELF is no knob");
        row("the other kind", "serves", library ? knobData() : templateData(9));
        row("half of it", "serves", good.first(good.size() / 2));
        row("huge", "pieces", good + huge);
        row("refused", "refuses", good);
        row("gone when asked for it", "dies-at-data", good);
        row("gone in the middle", "dies-half-way", good + QByteArray(200 * 1024, ' '));
    }
}

void TestForeignClipboard::whatAnotherProgramFailsToGiveWritesNothing()
{
    QFETCH(bool, library);
    QFETCH(QByteArray, manner);
    QFETCH(QByteArray, data);
    show(library);
    QVERIFY(own(manner.constData(), data));
    QTRY_VERIFY(canPaste());
    const QByteArray before = content();
    m_rig->entry(QStringLiteral("&Paste"))->trigger();
    QVERIFY(content() == before);
    QCOMPARE(flag(), 0);
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    QCOMPARE(flashes(), 0);
    if (manner.startsWith("dies")) {
        QTRY_VERIFY_WITH_TIMEOUT(isGone(), WaitMs);
    }
    // The next one gives it.
    QVERIFY(own("serves", library ? templateData(9) : knobData()));
    QTRY_VERIFY_WITH_TIMEOUT(canPaste(), WaitMs);
    m_rig->entry(QStringLiteral("&Paste"))->trigger();
    QCOMPARE(name(), Copied);
    QCOMPARE(flag(), 1);
}

void TestForeignClipboard::anOwnerThatDiesTakesPasteWithIt()
{
    QFETCH(bool, library);
    show(library);
    QVERIFY(own("serves", library ? templateData(9) : knobData()));
    QTRY_VERIFY(canPaste());
    const QByteArray before = content();
    m_owner->kill();
    QVERIFY(m_owner->waitForFinished());
    QTRY_VERIFY(!canPaste());
    // Whoever calls it all the same gets nothing.
    m_rig->window->editPaste();
    QVERIFY(content() == before);
    QCOMPARE(flag(), 0);
    QCOMPARE(flashes(), 0);
    // One that is gone before it has said what it has.
    QVERIFY(own("dies-at-targets", knobData()));
    QTRY_VERIFY_WITH_TIMEOUT(isGone(), WaitMs);
    QTRY_VERIFY(!canPaste());
    m_rig->window->editPaste();
    QVERIFY(content() == before);
    // One's own copy comes back.
    m_rig->window->editCopy();
    QTRY_VERIFY(canPaste());
}

void TestForeignClipboard::anOwnerThatHangsIsAskedOnce()
{
    show(false);
    QVERIFY(own("serves", knobData()));
    QTRY_VERIFY(canPaste());
    m_owner->kill();
    m_owner->waitForFinished();
    QVERIFY(own("hangs", knobData()));
    QTRY_VERIFY_WITH_TIMEOUT(!canPaste(), WaitMs);
    m_owner->waitForReadyRead(0);
    const QByteArray asked = m_owner->readAll();
    QVERIFY(asked.startsWith("asked\n"));

    // Nothing of this asks again, nor waits for an answer.
    for (int i = 0; i < 5; ++i) {
        m_rig->window->updatesMenuEnabled();
        m_rig->window->viewLibrary();
        m_rig->setFlag(ParamAddress::FileEditFlag, i % 2);
        m_rig->window->viewTemplate();
    }
    QVERIFY(!canPaste());
    m_owner->waitForReadyRead(200);
    QCOMPARE(m_owner->readAll(), QByteArray());

    // Another owner, another answer.
    QVERIFY(own("serves", knobData()));
    QTRY_VERIFY_WITH_TIMEOUT(canPaste(), WaitMs);
}

QTEST_MAIN(TestForeignClipboard)
#include "tst_foreignclipboard.moc"
