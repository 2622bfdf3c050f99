// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/About.h"
#include "views/CloseConfirm.h"
#include "views/ExitAnywayConfirm.h"
#include "views/FactorysetConfirm.h"
#include "views/FormCheck.h"
#include "views/PanelRig.h"
#include "views/PortNotFound.h"
#include "views/PortOpenError.h"
#include "views/ResetStoredConfirm.h"
#include "views/RestoreHWConfirm.h"
#include "views/StoreConfirm.h"

#include <QtCore/QTemporaryDir>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSlider>

// The nine small panels and what they share, in the real window, with real mouse and keys.

namespace
{

enum class Kind {
    About,
    CloseConfirm,
    PortOpenError,
    PortNotFound,
    ResetStored,
    RestoreHW,
    Factoryset,
    ExitAnyway,
    Store
};

struct KindRow
{
    Kind kind;
    const char *name;
};
constexpr KindRow Kinds[] = {{Kind::About, "About"},
                             {Kind::CloseConfirm, "CloseConfirm"},
                             {Kind::PortOpenError, "PortOpenError"},
                             {Kind::PortNotFound, "PortNotFound"},
                             {Kind::ResetStored, "ResetStoredConfirm"},
                             {Kind::RestoreHW, "RestoreHWConfirm"},
                             {Kind::Factoryset, "FactorysetConfirm"},
                             {Kind::ExitAnyway, "ExitAnywayConfirm"},
                             {Kind::Store, "StoreConfirm"}};

const QString PortName = QStringLiteral("Corvan TARN/TERN");

constexpr QRect CloseRect(68, 95, 15, 15);
constexpr QRect MessageRect(91, 190, 263, 14);
constexpr QRect LeftRect(194, 287, 51, 15);
constexpr QRect MiddleRect(249, 287, 51, 15);
constexpr QRect RightRect(304, 287, 51, 15);
constexpr const char *CloseImage = ":/images/vd_nsw_close.png";
constexpr const char *OkImage = ":/images/vd_nsw_ok.png";
constexpr const char *CancelImage = ":/images/vd_nsw_cancel.png";
constexpr const char *YesImage = ":/images/vd_nsw_yes.png";
constexpr const char *NoImage = ":/images/vd_nsw_no.png";
constexpr const char *Button = "COnOffButton";
constexpr const char *Text = "CText";

struct Form
{
    const char *background;
    QList<FormPart> parts;
};

Form formOf(Kind kind)
{
    const FormPart close{"btnClose", Button, CloseRect, CloseImage};
    const FormPart yes{"btnYes", Button, MiddleRect, YesImage};
    const FormPart no{"btnNo", Button, RightRect, NoImage};
    const FormPart loneOk{"btnOK", Button, RightRect, OkImage};
    const FormPart ok{"btnOK", Button, MiddleRect, OkImage};
    const FormPart cancel{"btnCancel", Button, RightRect, CancelImage};
    const auto message = [](const char *text) {
        return FormPart{"txtMessage", Text, MessageRect, nullptr, text};
    };
    switch (kind) {
    case Kind::About:
        return {":/images/trn_bak_about.png",
                {close,
                 {"txtEditorNameAndVersion", Text, QRect(91, 170, 263, 14), nullptr,
                  "TARN/TERN Remote Editor Ver.1.1.8"},
                 {"txtLicence", Text, QRect(91, 186, 263, 14)},
                 {"txtArtwork", Text, QRect(91, 202, 263, 14)}}};
    case Kind::CloseConfirm:
        return {":/images/trn_bak_save_change.png",
                {close,
                 message(" Save changes?"),
                 {"btnYes", Button, LeftRect, YesImage, nullptr},
                 {"btnNo", Button, MiddleRect, NoImage, nullptr},
                 cancel}};
    case Kind::PortOpenError:
        return {":/images/trn_bak_port_error.png", {message("Corvan TARN/TERN"), loneOk}};
    case Kind::PortNotFound:
        return {":/images/trn_bak_rename_caution.png",
                {message(" MIDI port is not found."), loneOk}};
    case Kind::ResetStored:
        return {":/images/trn_bak_reset_stored.png", {ok, cancel}};
    case Kind::RestoreHW:
        return {":/images/trn_bak_reset_original.png", {ok, cancel}};
    case Kind::Factoryset:
        return {":/images/trn_bak_reset_factoryset.png", {ok, cancel}};
    case Kind::ExitAnyway:
        return {":/images/trn_bak_exit_anyway.png",
                {close, message("Unsaved changes. Exit anyway?"), yes, no}};
    case Kind::Store:
        return {":/images/trn_bak_exit_anyway.png", {close, message("Are you sure?"), yes, no}};
    }
    return {};
}

const QString Directly = QStringLiteral("directly");

// Which button a key presses: none for nullptr.
const char *buttonOf(Kind kind, Qt::Key key)
{
    const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
    switch (kind) {
    case Kind::About:
        return key == Qt::Key_Escape ? "btnClose" : nullptr;
    case Kind::PortOpenError:
        return key == Qt::Key_Escape ? "directly" : nullptr;
    case Kind::PortNotFound:
        return key == Qt::Key_Escape || isReturn ? "btnOK" : nullptr;
    case Kind::ResetStored:
    case Kind::RestoreHW:
    case Kind::Factoryset:
        return key == Qt::Key_Escape ? "btnCancel" : isReturn ? "btnOK" : nullptr;
    case Kind::CloseConfirm:
    case Kind::ExitAnyway:
    case Kind::Store:
        if (key == Qt::Key_Escape) {
            return "btnClose";
        }
        return key == Qt::Key_N ? "btnNo" : isReturn || key == Qt::Key_Y ? "btnYes" : nullptr;
    }
    return nullptr;
}

void kindRows()
{
    QTest::addColumn<int>("kind");
    for (const KindRow &row : Kinds) {
        QTest::newRow(row.name) << static_cast<int>(row.kind);
    }
}

} // namespace

class TestPanels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void theForm_data() { kindRows(); }
    void theForm();
    void everyButtonSaysItsName_data() { kindRows(); }
    void everyButtonSaysItsName();
    void textsFitIntoTheirPlaces_data() { kindRows(); }
    void textsFitIntoTheirPlaces();
    void aLongPortNameIsCut();

    void theWindowIsLockedUntilThePanelIsDeleted_data() { kindRows(); }
    void theWindowIsLockedUntilThePanelIsDeleted();
    void keysPressTheirButtons_data();
    void keysPressTheirButtons();
    void tabGoesNowhere_data() { kindRows(); }
    void tabGoesNowhere();
    void disabledKeysDoNothing();
    void aKeyHeldDownActsOnce();
    void theKeyThatClosedAPanelDoesNotAnswerTheNext();
    void aKeyBehindTheClosingOneDoesNothing();
    void theCloseLockHidesTheCloseButton();
    void exitAnywayLeavesTheCloseButton();
    void aCloseLockedPanelRefusesToClose();
    void theDestructorReleasesTheCloseLock();
    void theSmallWindowGrowsForAPanel();

    void everyOtherButtonCloses_data();
    void everyOtherButtonCloses();
    void cancelOfCloseConfirmKeepsTheEdits_data();
    void cancelOfCloseConfirmKeepsTheEdits();
    void noEndsTheProgram();
    void noMakesANewDocument();
    void noOpensAnotherDocument();
    void noThenACancelledDialogKeepsTheEdits();
    void anUnknownNextActionJustCloses();
    void yesWithoutAFileNameAsksForOne_data();
    void yesWithoutAFileNameAsksForOne();
    void yesSavesAndGoesOn();
    void exitAnywayForgetsTheEdits();
    void exitAnywayNoStays();
    void storeStores();
    void resetOkClosesAndUnlocks_data();
    void resetOkClosesAndUnlocks();

    void aPressedButtonRisesWithoutAClick();
    void aDraggedSliderIsLetGo();
    void anOpenMenuCloses();
    void aGrabIsReleased();
    void theRealReleaseFindsNobody();
    void theWindowDiesWithAPanelOpen_data() { kindRows(); }
    void theWindowDiesWithAPanelOpen();
    void panelsFollowOneAnother();

private:
    // By the way that the program takes.
    bool open(Kind kind);
    bool openFromRow()
    {
        const auto *row = static_cast<const int *>(QTest::qData("kind", qMetaTypeId<int>()));
        return row != nullptr && open(static_cast<Kind>(*row));
    }
    bool closeConfirm(CloseConfirm::NextActionType action)
    {
        m_rig->setFlag(ParamAddress::FileEditFlag, 1);
        m_rig->window->closeConfirm(action);
        return m_rig->panel<CloseConfirm>() != nullptr;
    }
    bool isGone() const { return m_rig->anyPanel() == nullptr; }
    COnOffButton *button(const char *name) const { return m_rig->inPanel<COnOffButton>(name); }

    std::unique_ptr<PanelRig> m_rig;
};

void TestPanels::init()
{
    m_rig = std::make_unique<PanelRig>();
    QVERIFY(m_rig->openWindow());
}

void TestPanels::cleanup()
{
    m_rig.reset();
}

bool TestPanels::open(Kind kind)
{
    EditorMainWindow *window = m_rig->window.get();
    switch (kind) {
    case Kind::About:
        window->helpAbout();
        break;
    case Kind::CloseConfirm:
        window->closeConfirm(CloseConfirm::Exit);
        break;
    case Kind::PortOpenError:
        window->portOpenError(PortName);
        break;
    case Kind::PortNotFound:
        window->portNotFound();
        break;
    case Kind::ResetStored:
        window->editResetStored();
        break;
    case Kind::RestoreHW:
        m_rig->api->setBankAvailableFlag(1, Bank::HardwareStored);
        m_rig->api->setBankAvailableFlag(1, Bank::HardwareEditBuffer);
        window->editRestoreHW();
        break;
    case Kind::Factoryset:
        window->editResetFactory();
        break;
    case Kind::ExitAnyway:
        window->viewLibrary();
        window->closeConfirm(CloseConfirm::Exit);
        break;
    case Kind::Store:
        window->viewStore();
        break;
    }
    EditorOverlap *panel = m_rig->anyPanel();
    return panel != nullptr && panel->isVisible();
}

// --- Forms ---------------------------------------------------------------------------------------

void TestPanels::theForm()
{
    QFETCH(int, kind);
    QVERIFY(openFromRow());
    const Form form = formOf(static_cast<Kind>(kind));
    checkForm(m_rig->anyPanel(), QTest::currentDataTag(), form.background, form.parts);
}

void TestPanels::everyButtonSaysItsName()
{
    QVERIFY(openFromRow());
    QVERIFY(!m_rig->anyPanel()->accessibleName().isEmpty());
    const QList<COnOffButton *> buttons = m_rig->anyPanel()->findChildren<COnOffButton *>();
    QVERIFY(!buttons.isEmpty());
    for (const COnOffButton *one : buttons) {
        QVERIFY2(!one->accessibleName().isEmpty(), qPrintable(one->objectName()));
    }
}

void TestPanels::textsFitIntoTheirPlaces()
{
    QVERIFY(openFromRow());
    const QList<CText *> texts = m_rig->anyPanel()->findChildren<CText *>();
    for (const CText *text : texts) {
        const QFontMetrics metrics(text->font());
        QVERIFY2(metrics.horizontalAdvance(text->text()) <= text->width(),
                 qPrintable(text->text()));
        QVERIFY(!text->text().isEmpty());
    }
}

void TestPanels::aLongPortNameIsCut()
{
    const QString name =
        QStringLiteral("An interface with a name of quite some length, ") + PortName;
    m_rig->window->portOpenError(name);
    auto *message = m_rig->inPanel<CText>("txtMessage");
    if (message == nullptr) {
        QFAIL("no message");
    }
    QVERIFY(message->text() != name);
    QVERIFY(QFontMetrics(message->font()).horizontalAdvance(message->text()) <= message->width());
    QCOMPARE(message->accessibleName(), name);
}

// --- Lock and keys -------------------------------------------------------------------------------

void TestPanels::theWindowIsLockedUntilThePanelIsDeleted()
{
    QVERIFY(!m_rig->window->isWindowLocked());
    QVERIFY(m_rig->window->findChild<QMenuBar *>()->isEnabled());
    QVERIFY(openFromRow());
    QVERIFY(m_rig->window->isWindowLocked());
    QVERIFY(!m_rig->window->findChild<QMenuBar *>()->isEnabled());
    EditorOverlap *panel = m_rig->anyPanel();
    QVERIFY(!panel->isClosed());
    QVERIFY(panel->hasFocus());
    // As the panel does it to itself.
    panel->closeUnlock();
    QVERIFY(panel->close());
    QVERIFY(panel->isClosed());
    QVERIFY(m_rig->window->isWindowLocked());
    QTRY_VERIFY(isGone());
    QVERIFY(!m_rig->window->isWindowLocked());
    QVERIFY(m_rig->window->findChild<QMenuBar *>()->isEnabled());
}

void TestPanels::keysPressTheirButtons_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("key");
    struct KeyRow
    {
        Qt::Key key;
        const char *name;
    };
    for (const KindRow &row : Kinds) {
        for (const KeyRow &key :
             {KeyRow{Qt::Key_Escape, "Escape"}, KeyRow{Qt::Key_Return, "Return"},
              KeyRow{Qt::Key_Enter, "Enter"}, KeyRow{Qt::Key_Y, "Y"}, KeyRow{Qt::Key_N, "N"}}) {
            QTest::addRow("%s on %s", key.name, row.name)
                << static_cast<int>(row.kind) << static_cast<int>(key.key);
        }
    }
}

void TestPanels::keysPressTheirButtons()
{
    QFETCH(int, key);
    QFETCH(int, kind);
    QVERIFY(openFromRow());
    const QPointer<EditorOverlap> panel(m_rig->anyPanel());
    const char *expected = buttonOf(static_cast<Kind>(kind), static_cast<Qt::Key>(key));
    QStringList pressed;
    const QList<COnOffButton *> buttons = panel->findChildren<COnOffButton *>();
    for (const COnOffButton *one : buttons) {
        connect(one, &QAbstractButton::pressed, this, [&pressed, one, panel] {
            QVERIFY(!panel->isClosed());
            pressed.append(one->objectName());
        });
    }
    const FileDialogAnswer cancelled{QString()};
    m_rig->pressKey(static_cast<Qt::Key>(key));
    if (expected == nullptr) {
        QVERIFY(panel != nullptr && !panel->isClosed());
        QCOMPARE(pressed, QStringList());
        return;
    }
    // The user sees the button go down, unless the key closes at once.
    const QString name = QString::fromLatin1(expected);
    if (name == Directly) {
        QVERIFY(panel == nullptr || panel->isClosed());
    }
    QTRY_VERIFY(isGone());
    QCOMPARE(pressed, name == Directly ? QStringList() : QStringList{name});
}

void TestPanels::tabGoesNowhere()
{
    QVERIFY(openFromRow());
    QWidget *before = QApplication::focusWidget();
    QVERIFY(before != nullptr);
    for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab}) {
        m_rig->pressKey(key);
        QCOMPARE(QApplication::focusWidget(), before);
    }
    const QList<COnOffButton *> buttons = m_rig->anyPanel()->findChildren<COnOffButton *>();
    for (COnOffButton *one : buttons) {
        one->setFocus();
        QCOMPARE(QApplication::focusWidget(), one);
        m_rig->pressKey(Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget(), one);
    }
}

void TestPanels::disabledKeysDoNothing()
{
    QVERIFY(open(Kind::PortNotFound));
    QSignalSpy pressed(button("btnOK"), &QAbstractButton::pressed);
    m_rig->anyPanel()->disableShortcut();
    m_rig->pressKey(Qt::Key_Return);
    QCOMPARE(pressed.count(), 0);
    m_rig->anyPanel()->enableShortcut();
    m_rig->pressKey(Qt::Key_Return);
    QCOMPARE(pressed.count(), 1);
    QTRY_VERIFY(isGone());
}

// A key that repeats would put the click off again and again.
void TestPanels::aKeyHeldDownActsOnce()
{
    QVERIFY(open(Kind::PortNotFound));
    QSignalSpy pressed(button("btnOK"), &QAbstractButton::pressed);
    QSignalSpy clicked(button("btnOK"), &QAbstractButton::clicked);
    QWindow *window = m_rig->window->windowHandle();
    QTest::keyPress(window, Qt::Key_Return);
    QTimer repeat;
    connect(&repeat, &QTimer::timeout, this, [window] {
        QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), true);
        QCoreApplication::sendEvent(window, &held);
    });
    repeat.start(20);
    QTRY_COMPARE(clicked.count(), 1);
    QCOMPARE(pressed.count(), 1);
    QTRY_VERIFY(isGone());
    repeat.stop();
    QTest::keyRelease(window, Qt::Key_Return);
}

void TestPanels::theKeyThatClosedAPanelDoesNotAnswerTheNext()
{
    QVERIFY(open(Kind::PortOpenError));
    m_rig->window->portNotFound(); // waits
    m_rig->pressKey(Qt::Key_Escape);
    QTRY_VERIFY(m_rig->panel<PortNotFound>() != nullptr);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(m_rig->window->windowHandle(), &held);
    QVERIFY(!button("btnOK")->isDown());
}

void TestPanels::aKeyBehindTheClosingOneDoesNothing()
{
    QVERIFY(open(Kind::Store));
    const ParamAddress stored(Bank::Stored, 0, ParamAddress::TemplateName, -1);
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1),
                         QStringLiteral("edited"));
    // Both within the tenth of a second that a press shows.
    QVERIFY(QMetaObject::invokeMethod(m_rig->anyPanel(), "emulateClosePressing"));
    QVERIFY(QMetaObject::invokeMethod(m_rig->anyPanel(), "emulateYesPressing"));
    QVERIFY(button("btnYes")->isDown());
    QTRY_VERIFY(isGone());
    QVERIFY(m_rig->api->getParamQString(stored) != QStringLiteral("edited"));
}

// --- Close lock and size -------------------------------------------------------------------------

void TestPanels::theCloseLockHidesTheCloseButton()
{
    auto *windowClose = m_rig->inWindow<COnOffButton>("btnWindowClose");
    QVERIFY(windowClose->isVisible());
    QVERIFY(open(Kind::CloseConfirm));
    QVERIFY(!windowClose->isVisible());
    m_rig->click(button("btnCancel"));
    QVERIFY(windowClose->isVisible());
    QTRY_VERIFY(isGone());
    QVERIFY(windowClose->isVisible());
}

void TestPanels::exitAnywayLeavesTheCloseButton()
{
    QVERIFY(open(Kind::ExitAnyway));
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
}

void TestPanels::aCloseLockedPanelRefusesToClose()
{
    QVERIFY(open(Kind::CloseConfirm));
    EditorOverlap *panel = m_rig->anyPanel();
    QVERIFY(!panel->close());
    QVERIFY(panel->isVisible());
    QVERIFY(!panel->isClosed());
    // Nor does the window.
    QVERIFY(!m_rig->window->close());
    QVERIFY(m_rig->window->isVisible());
    panel->closeUnlock();
    panel->closeUnlock();
    QVERIFY(panel->close());
}

void TestPanels::theDestructorReleasesTheCloseLock()
{
    QVERIFY(open(Kind::CloseConfirm));
    delete m_rig->anyPanel();
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QVERIFY(!m_rig->window->isWindowLocked());
}

void TestPanels::theSmallWindowGrowsForAPanel()
{
    m_rig->window->controlWindowSize();
    QCOMPARE(m_rig->window->size(), QSize(470, 324));
    QVERIFY(open(Kind::About));
    QCOMPARE(m_rig->window->size(), QSize(470, 465));
    m_rig->click(button("btnClose"));
    QTRY_COMPARE(m_rig->window->size(), QSize(470, 324));
    QVERIFY(isGone());
}

// --- What the buttons do -------------------------------------------------------------------------

void TestPanels::everyOtherButtonCloses_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    const auto add = [](Kind kind, const char *panel, const char *name) {
        QTest::addRow("%s of %s", name, panel)
            << static_cast<int>(kind) << QString::fromLatin1(name);
    };
    add(Kind::About, "About", "btnClose");
    add(Kind::PortOpenError, "PortOpenError", "btnOK");
    add(Kind::PortNotFound, "PortNotFound", "btnOK");
    add(Kind::ResetStored, "ResetStoredConfirm", "btnCancel");
    add(Kind::RestoreHW, "RestoreHWConfirm", "btnCancel");
    add(Kind::Factoryset, "FactorysetConfirm", "btnCancel");
    add(Kind::ExitAnyway, "ExitAnywayConfirm", "btnClose");
    add(Kind::ExitAnyway, "ExitAnywayConfirm", "btnNo");
    add(Kind::Store, "StoreConfirm", "btnClose");
    add(Kind::Store, "StoreConfirm", "btnNo");
}

void TestPanels::everyOtherButtonCloses()
{
    QFETCH(QString, name);
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1),
                         QStringLiteral("mine"));
    const BankData before = m_rig->api->getBank(Bank::EditBuffer);
    const BankData storedBefore = m_rig->api->getBank(Bank::Stored);
    QVERIFY(openFromRow());
    m_rig->click(button(qPrintable(name)));
    QTRY_VERIFY(isGone());
    QVERIFY(m_rig->window->isVisible());
    QVERIFY(!m_rig->window->isWindowLocked());
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        QVERIFY(m_rig->api->getTemplateData(Bank::EditBuffer, number) ==
                before.getTemplate(number));
        QVERIFY(m_rig->api->getTemplateData(Bank::Stored, number) ==
                storedBefore.getTemplate(number));
    }
}

void TestPanels::cancelOfCloseConfirmKeepsTheEdits_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Cancel") << QStringLiteral("btnCancel");
    QTest::newRow("Close") << QStringLiteral("btnClose");
}

void TestPanels::cancelOfCloseConfirmKeepsTheEdits()
{
    QFETCH(QString, name);
    for (const auto action : {CloseConfirm::Exit, CloseConfirm::New, CloseConfirm::Open}) {
        QVERIFY(closeConfirm(action));
        m_rig->click(button(qPrintable(name)));
        QTRY_VERIFY(isGone());
        QVERIFY(m_rig->window->isVisible());
        QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
    }
}

void TestPanels::noEndsTheProgram()
{
    QVERIFY(closeConfirm(CloseConfirm::Exit));
    m_rig->click(button("btnNo"));
    QTRY_VERIFY(!m_rig->window->isVisible());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
}

void TestPanels::noMakesANewDocument()
{
    const ParamAddress name(Bank::EditBuffer, 3, ParamAddress::TemplateName, -1);
    m_rig->api->setParam(name, QStringLiteral("old"));
    QVERIFY(closeConfirm(CloseConfirm::New));
    m_rig->click(button("btnNo"));
    QTRY_VERIFY(isGone());
    QVERIFY(m_rig->window->isVisible());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    QVERIFY(m_rig->api->getParamQString(name) != QStringLiteral("old"));
}

void TestPanels::noOpensAnotherDocument()
{
    const QString document = QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V");
    const ParamAddress fileName(ParamAddress::FileName, -1, -1, -1);
    QVERIFY(closeConfirm(CloseConfirm::Open));
    const FileDialogAnswer answer(document);
    m_rig->click(button("btnNo"));
    QVERIFY(answer.wasAsked());
    QTRY_VERIFY(isGone());
    QTRY_COMPARE(m_rig->api->getParamQString(fileName), document);
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
}

void TestPanels::noThenACancelledDialogKeepsTheEdits()
{
    QVERIFY(closeConfirm(CloseConfirm::Open));
    const FileDialogAnswer answer{QString()};
    m_rig->click(button("btnNo"));
    QVERIFY(answer.wasAsked());
    QTRY_VERIFY(isGone());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
}

void TestPanels::anUnknownNextActionJustCloses()
{
    QVERIFY(closeConfirm(static_cast<CloseConfirm::NextActionType>(3)));
    m_rig->click(button("btnNo"));
    QTRY_VERIFY(isGone());
    QVERIFY(m_rig->window->isVisible());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
}

void TestPanels::yesWithoutAFileNameAsksForOne_data()
{
    QTest::addColumn<int>("action");
    QTest::newRow("exit") << int(CloseConfirm::Exit);
    QTest::newRow("new") << int(CloseConfirm::New);
    QTest::newRow("open") << int(CloseConfirm::Open);
}

void TestPanels::yesWithoutAFileNameAsksForOne()
{
    QFETCH(int, action);
    const ParamAddress name(Bank::EditBuffer, 3, ParamAddress::TemplateName, -1);
    m_rig->api->setParam(name, QStringLiteral("mine"));
    QVERIFY(closeConfirm(static_cast<CloseConfirm::NextActionType>(action)));
    const FileDialogAnswer answer{QString()};
    m_rig->click(button("btnYes"));
    QVERIFY(answer.wasAsked());
    QTRY_VERIFY(isGone());
    // Neither the exit nor the New nor the Open is remembered.
    QVERIFY(m_rig->window->isVisible());
    QCOMPARE(m_rig->api->getParamQString(name), QStringLiteral("mine"));
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 1);
    QVERIFY(!m_rig->window->isWindowLocked());
}

void TestPanels::yesSavesAndGoesOn()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("saved.Q7V"));
    m_rig->api->setParam(ParamAddress(ParamAddress::FileName, -1, -1, -1), file);
    QVERIFY(closeConfirm(CloseConfirm::Exit));
    m_rig->click(button("btnYes"));
    QTRY_VERIFY(!m_rig->window->isVisible());
    QVERIFY(QFile::exists(file));
}

void TestPanels::exitAnywayForgetsTheEdits()
{
    m_rig->setFlag(ParamAddress::FileEditFlag, 1);
    m_rig->setFlag(ParamAddress::LibraryEditFlag, 1);
    QVERIFY(open(Kind::ExitAnyway));
    m_rig->click(button("btnYes"));
    QTRY_VERIFY(!m_rig->window->isVisible());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), 0);
}

void TestPanels::exitAnywayNoStays()
{
    m_rig->setFlag(ParamAddress::LibraryEditFlag, 1);
    QVERIFY(open(Kind::ExitAnyway));
    m_rig->click(button("btnNo"));
    QTRY_VERIFY(isGone());
    QVERIFY(m_rig->window->isVisible());
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), 1);
}

void TestPanels::storeStores()
{
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 5, ParamAddress::TemplateName, -1),
                         QStringLiteral("edited"));
    QVERIFY(open(Kind::Store));
    m_rig->click(button("btnYes"));
    QTRY_VERIFY(isGone());
    QCOMPARE(
        m_rig->api->getParamQString(ParamAddress(Bank::Stored, 5, ParamAddress::TemplateName, -1)),
        QStringLiteral("edited"));
}

void TestPanels::resetOkClosesAndUnlocks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("source");
    QTest::newRow("stored") << int(Kind::ResetStored) << int(Bank::Stored);
    QTest::newRow("start-up") << int(Kind::RestoreHW) << int(Bank::HardwareEditBuffer);
    QTest::newRow("factory") << int(Kind::Factoryset) << int(Bank::Preset);
}

void TestPanels::resetOkClosesAndUnlocks()
{
    QFETCH(int, source);
    const auto nameIn = [](int bank) {
        return ParamAddress(bank, 0, ParamAddress::TemplateName, -1);
    };
    m_rig->api->setParam(nameIn(source), QStringLiteral("source"));
    m_rig->api->setParam(nameIn(Bank::EditBuffer), QStringLiteral("edited"));
    QVERIFY(openFromRow());
    m_rig->click(button("btnOK"));
    QTRY_VERIFY(isGone());
    QVERIFY(!m_rig->window->isWindowLocked());
    QCOMPARE(m_rig->api->getParamQString(nameIn(Bank::EditBuffer)), QStringLiteral("source"));
}

// --- What the pointer holds ----------------------------------------------------------------------

void TestPanels::aPressedButtonRisesWithoutAClick()
{
    QPushButton pushed(m_rig->window.get());
    pushed.setGeometry(100, 200, 80, 20);
    pushed.show();
    QSignalSpy clicked(&pushed, &QAbstractButton::clicked);
    m_rig->press(&pushed);
    QVERIFY(pushed.isDown());
    QVERIFY(open(Kind::PortNotFound));
    QVERIFY(!pushed.isDown());
    // Moving about with the button still held doesn't push it again.
    QTest::mouseMove(m_rig->window->windowHandle(), m_rig->centreOf(&pushed) + QPoint(2, 2));
    QVERIFY(!pushed.isDown());
    m_rig->release(&pushed);
    QVERIFY(!pushed.isDown());
    QCOMPARE(clicked.count(), 0);
}

void TestPanels::aDraggedSliderIsLetGo()
{
    QSlider slider(Qt::Horizontal, m_rig->window.get());
    slider.setGeometry(100, 200, 200, 30);
    slider.setRange(0, 100);
    slider.show();
    QTest::mousePress(m_rig->window->windowHandle(), Qt::LeftButton, {},
                      slider.mapTo(m_rig->window.get(), QPoint(4, 15)));
    QVERIFY(slider.isSliderDown());
    QVERIFY(open(Kind::PortNotFound));
    QVERIFY(!slider.isSliderDown());
    const int value = slider.value();
    QTest::mouseMove(m_rig->window->windowHandle(), m_rig->centreOf(&slider));
    QCOMPARE(slider.value(), value);
    m_rig->release(&slider);
}

void TestPanels::anOpenMenuCloses()
{
    QMenu menu(m_rig->window.get());
    menu.addAction(QStringLiteral("Entry"));
    menu.popup(QPoint(300, 300));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QCOMPARE(QApplication::activePopupWidget(), &menu);
    QVERIFY(open(Kind::PortNotFound));
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
    QVERIFY(!menu.isVisible());
    m_rig->pressKey(Qt::Key_Return);
    QTRY_VERIFY(isGone());
}

void TestPanels::aGrabIsReleased()
{
    QWidget grabbing(m_rig->window.get());
    grabbing.setGeometry(100, 200, 80, 20);
    grabbing.show();
    grabbing.grabMouse();
    QCOMPARE(QWidget::mouseGrabber(), &grabbing);
    QVERIFY(open(Kind::PortNotFound));
    QCOMPARE(QWidget::mouseGrabber(), nullptr);
}

// The button of the panel that has opened under the pointer was never pressed.
void TestPanels::theRealReleaseFindsNobody()
{
    QPushButton pushed(m_rig->window.get());
    pushed.setGeometry(QRect(304 + 14, 287 + 31, 51, 15));
    pushed.show();
    m_rig->press(&pushed);
    QVERIFY(open(Kind::PortNotFound));
    m_rig->release(button("btnOK"));
    QVERIFY(!button("btnOK")->isDown());
    QVERIFY(!m_rig->anyPanel()->isClosed());
    m_rig->click(button("btnOK"));
    QTRY_VERIFY(isGone());
}

// --- Ends ----------------------------------------------------------------------------------------

void TestPanels::theWindowDiesWithAPanelOpen()
{
    QVERIFY(openFromRow());
    m_rig->window.reset();
}

void TestPanels::panelsFollowOneAnother()
{
    QVERIFY(open(Kind::About));
    m_rig->window->portNotFound();
    m_rig->window->portOpenError(PortName);
    QVERIFY(m_rig->panel<PortNotFound>() == nullptr);
    QVERIFY(m_rig->panel<PortOpenError>() == nullptr);
    m_rig->pressKey(Qt::Key_Escape);
    QTRY_VERIFY(m_rig->panel<PortOpenError>() != nullptr);
    QVERIFY(m_rig->panel<About>() == nullptr);
    QVERIFY(m_rig->panel<PortNotFound>() == nullptr);
    m_rig->pressKey(Qt::Key_Escape);
    QTRY_VERIFY(m_rig->panel<PortNotFound>() != nullptr);
    QVERIFY(m_rig->panel<PortOpenError>() == nullptr);
    m_rig->pressKey(Qt::Key_Escape);
    QTRY_VERIFY(isGone());
    QVERIFY(!m_rig->window->isWindowLocked());
}

QTEST_MAIN(TestPanels)
#include "tst_panels.moc"
