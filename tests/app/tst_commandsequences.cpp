// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/InstrumentRig.h"
#include "app/Shortcuts.h"
#include "file/EditorFile.h"
#include "memory/MemoryHarness.h"
#include "tests/tools/Sanitizers.h"
#include "views/Answers.h"
#include "views/CloseConfirm.h"
#include "views/StoreConfirm.h"
#include "widgets/CLineEdit.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CTextSlider.h"

#include <QtCore/QMimeData>
#include <QtCore/QRandomGenerator>
#include <QtGui/QClipboard>
#include <QtGui/QDropEvent>

#include <functional>
#include <optional>

// Random sequences of a user's commands on the real window with an instrument on its cable, beside
// a model of what the edit buffer, the stored bank, the flags and the instrument must hold. After
// each command all of it is compared. The number of a row is the seed of its sequence:
//   tst_commandsequences sequences:"seed 17"

namespace
{

// Under the sanitizers each takes up to ten times as long. What they look for lies in what is done,
// which comes again and again, and less in its order, which is for the build without them.
constexpr int Sequences = UnderThreadSanitizer ? 20 : UnderAddressSanitizer ? 60 : 200;
constexpr int CommandsOfEach = 24;
constexpr int SettleMs = 5000;

using Templates = std::array<ControlTemplateData, ParamAddress::TemplateCount>;

Templates templatesOf(const RemoteMemAPI &api, int bank)
{
    Templates templates;
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        templates[static_cast<std::size_t>(number)] = api.getTemplateData(bank, number);
    }
    return templates;
}

struct Document
{
    Templates editBuffer;
    Templates stored;
    int current = 0;
};

// What everything must hold.
struct Model
{
    Document document;
    Templates library;
    Templates import;
    Templates hardwareStored;
    Templates hardwareEditBuffer;
    Templates preset;
    ControlTemplateData blank;
    bool hasHardware = false;
    bool online = false;
    bool fileEdit = false;
    bool libraryEdit = false;
    bool bankEdit = false;
    bool inLibrary = false;
    int knob = 0;
    int row = 0;
    QString fileName;
    QMap<QString, Document> files;
    // Wishes for the next time that something is sent.
    bool storeWish = false;
    bool flashWish = false;
    std::optional<ControllerData> copiedKnob;
    std::optional<int> copiedTemplate; // of the library

    struct
    {
        Templates editBuffer;
        Templates stored;
        int current = 0;
        bool editFlag = false;
        int storesToFlash = 0;
    } instrument;

    ControlTemplateData &current() { return at(document.editBuffer, document.current); }
    static ControlTemplateData &at(Templates &of, int number)
    {
        return of[static_cast<std::size_t>(number)];
    }
};

// What a bank looks like to the instrument. A template is converted anew only when it has changed.
class InstrumentForm
{
public:
    const InstrumentTemplate &of(std::size_t number, const ControlTemplateData &source)
    {
        Entry &entry = m_entries[number];
        if (!(entry.source == source)) {
            entry.source = source;
            entry.form = asInstrument(source);
        }
        return entry.form;
    }

private:
    struct Entry
    {
        ControlTemplateData source;
        InstrumentTemplate form = asInstrument(source);
    };
    std::array<Entry, ParamAddress::TemplateCount> m_entries;
};

} // namespace

class TestCommandSequences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { m_rig.reset(); }
    void sequences_data();
    void sequences();

private:
    struct Command
    {
        const char *name;
        std::function<bool()> isPossible;
        std::function<void()> run; // both the window and the model
    };

    bool start(quint32 seed);
    QList<Command> commands();
    // What differs, empty for nothing.
    QStringList differences();
    void compareBank(const char *name, int bank, const Templates &expected, QStringList *found);

    int random(int bound) { return m_random.bounded(bound); }
    RemoteMemAPI &api() { return *m_rig->api; }
    template <typename Widget>
    Widget *find(const char *name) const
    {
        return m_rig->window->findChild<Widget *>(QLatin1String(name));
    }
    CListView *list() const { return find<CListView>("listTemplate"); }
    CRadioButton *knobButton(int knob) const
    {
        return find<CRadioButton>(qPrintable(
            QStringLiteral("btnKnob%1%2").arg(QLatin1Char("ABCD"[knob % 4])).arg(knob / 4 + 1)));
    }
    // Never empty: the instrument's empty name is one of blanks, and the editor's is none.
    QString randomName(int maximum)
    {
        return QLatin1Char('n') + randomText(&m_random, maximum - 1, false).replace(u'~', u'-');
    }

    // --- The model's half of what several commands have in common.
    void edited(bool changed) { m.fileEdit = m.fileEdit || changed; }
    // A single value of the current template, which online goes to the instrument.
    void currentChanged(bool changed)
    {
        edited(changed);
        if (m.online && changed) {
            ControlTemplateData &there = Model::at(m.instrument.editBuffer, m.instrument.current);
            m.instrument.editFlag = m.instrument.editFlag || !(there == m.current());
            m.bankEdit = m.instrument.editFlag;
            there = m.current();
        }
    }
    void stored()
    {
        m.document.stored = m.document.editBuffer;
        for (const ControlTemplateData &one : m.document.editBuffer) {
            m.fileEdit = m.fileEdit || !(one == m.blank);
        }
        m.instrument.stored = m.instrument.editBuffer;
        m.instrument.editFlag = false;
        m.bankEdit = false;
    }
    void sent(bool editBufferOnly);
    void received(bool editBufferToo);
    void synchronised(bool editorToDevice, bool editBufferOnly);
    void decided(int number, bool toStartUp, bool stores);

    // --- The window's half.
    void synchronise() { QVERIFY(m_rig->synchronise()); }
    void answerNoIfAsked();
    void dropKnob(int from, int to, bool copies);
    void dropTemplate(int from, int to, bool copies);
    static void drop(QWidget *on, const QPoint &place, const QMimeData *data, bool copies)
    {
        const Qt::KeyboardModifiers modifiers = copies ? Qt::ControlModifier : Qt::NoModifier;
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        // What has not entered isn't dropped.
        QDragEnterEvent enter(place, actions, data, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(on, &enter);
        QDropEvent event(place, actions, data, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(on, &event);
    }
    void reset(const QString &entry, const Templates &source, bool toStartUp);

    QTemporaryDir m_folder;
    QRandomGenerator m_random;
    std::unique_ptr<InstrumentRig> m_rig;
    Model m;
    InstrumentForm m_editBufferForm;
    InstrumentForm m_storedForm;
};

void TestCommandSequences::initTestCase()
{
    PanelRig::setUpApplication();
    setMachineFolders({});
}

bool TestCommandSequences::start(quint32 seed)
{
    m_random.seed(seed);
    InstrumentRig::setTimings();
    InstrumentMemory memory = randomInstrument(&m_random);
    memory.editFlag = false;
    m_rig = std::make_unique<InstrumentRig>(memory);
    if (!m_rig->openWindow()) {
        return false;
    }
    QGuiApplication::clipboard()->clear();
    m = Model();
    m.document = {templatesOf(api(), Bank::EditBuffer), templatesOf(api(), Bank::Stored), 0};
    m.library = templatesOf(api(), Bank::Library);
    m.import = templatesOf(api(), Bank::Import);
    m.preset = templatesOf(api(), Bank::Preset);
    m.blank = m.document.editBuffer.front();
    // The instrument's content in the editor's terms, by way of an editor that fetches it.
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        const auto place = static_cast<std::size_t>(number);
        const auto asEditor = [](const InstrumentTemplate &from) {
            const auto text = [](const QByteArray &bytes) { return QString::fromLatin1(bytes); };
            ControlTemplateData to;
            to.setTemplateName(text(from.templateName.trimmed()));
            to.setVSTiName(text(from.vstiName.trimmed()));
            to.setCtrlType(NumericParameter(0, 1, from.controlType));
            for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
                const InstrumentKnob &source = from.knobs[static_cast<std::size_t>(knob)];
                ControllerData data;
                data.setDisplayName(text(source.displayName.trimmed()));
                data.setRemoteTagID(text(source.remoteId.trimmed()));
                data.setCCNum(source.ccNumber);
                data.setDispFormat(source.displayFormat);
                to.setController(data, knob);
            }
            return to;
        };
        m.instrument.editBuffer[place] = asEditor(memory.editBuffer[place]);
        m.instrument.stored[place] = asEditor(memory.stored[place]);
    }
    m.instrument.current = memory.currentTemplate;
    // Two documents that can be opened or imported.
    for (const char *name : {"One.Q7V", "Two.Q7V"}) {
        RemoteMemAPI other;
        makeNineBanks(&other);
        fillDocument(&other, &m_random);
        QFile file(m_folder.filePath(QLatin1String(name)));
        if (!EditorFile::save(&other, Bank::Stored, &file, nullptr)) {
            return false;
        }
        m.files[file.fileName()] = {templatesOf(other, Bank::EditBuffer),
                                    templatesOf(other, Bank::Stored),
                                    valueAt(other, currentTemplateAddress())};
    }
    return true;
}

// --- The model -----------------------------------------------------------------------------------

void TestCommandSequences::sent(bool editBufferOnly)
{
    const Templates editBufferBefore = m.instrument.editBuffer;
    const Templates storedBefore = m.instrument.stored;
    m.instrument.editBuffer = m.document.editBuffer;
    m.instrument.current = m.document.current;
    if (!editBufferOnly) {
        m.instrument.stored = m.document.stored;
    }
    if (!(m.instrument.editBuffer == editBufferBefore) || !(m.instrument.stored == storedBefore)) {
        m.instrument.editFlag = !(m.instrument.editBuffer == m.instrument.stored);
        m.bankEdit = m.instrument.editFlag;
    }
    if (m.storeWish) {
        stored();
        m.storeWish = false;
    }
    if (m.flashWish) {
        ++m.instrument.storesToFlash;
        m.flashWish = false;
    }
}

void TestCommandSequences::received(bool editBufferToo)
{
    m.hardwareStored = m.instrument.stored;
    m.bankEdit = m.instrument.editFlag;
    if (editBufferToo) {
        m.hardwareEditBuffer = m.instrument.editBuffer;
        m.document.current = m.instrument.current;
    }
    m.hasHardware = true;
}

void TestCommandSequences::synchronised(bool editorToDevice, bool editBufferOnly)
{
    if (m.hasHardware) {
        sent(editBufferOnly);
    } else {
        received(!editorToDevice);
        if (editorToDevice) {
            sent(editBufferOnly);
        } else {
            m.document.stored = m.hardwareStored;
            m.document.editBuffer = m.hardwareEditBuffer;
            m.fileEdit = true;
        }
    }
    m.online = true;
}

// The way out of the library; the scratch copy is as it shall be.
void TestCommandSequences::decided(int number, bool toStartUp, bool stores)
{
    const bool wasOnline = m.online;
    m.inLibrary = false;
    if (!m.libraryEdit) {
        m.document.current = number;
        if (wasOnline) {
            m.instrument.current = number;
        }
        return;
    }
    m.document.editBuffer = m.library;
    if (toStartUp) {
        m.document.stored = m.hardwareStored;
    }
    m.document.current = number;
    m.online = false;
    m.fileEdit = true;
    m.libraryEdit = false;
    m.storeWish = m.storeWish || stores;
    m.flashWish = m.flashWish || toStartUp;
    if (wasOnline) {
        synchronise();
        synchronised(true, !toStartUp);
    }
}

// --- The window ----------------------------------------------------------------------------------

void TestCommandSequences::answerNoIfAsked()
{
    if (m.fileEdit) {
        QVERIFY(m_rig->panel<CloseConfirm>() != nullptr);
        m_rig->click(m_rig->inPanel("btnNo"));
    }
}

void TestCommandSequences::dropKnob(int from, int to, bool copies)
{
    knobButton(from)->click();
    m_rig->templateView()->copyKnob();
    const QMimeData *clipboard = QGuiApplication::clipboard()->mimeData();
    QMimeData data;
    data.setData(KnobMimeType, clipboard->data(KnobMimeType));
    drop(knobButton(to), knobButton(to)->rect().center(), &data, copies);
    m.copiedKnob = m.current().getController(from);
    m.copiedTemplate.reset();
    if (from == to) {
        m.knob = from;
        return;
    }
    m.knob = to;
    const ControllerData source = m.current().getController(from);
    const ControllerData target = m.current().getController(to);
    if (copies) {
        m.current().setController(source, to);
    } else {
        m.current().setController(target, from);
        m.current().setController(source, to);
    }
    currentChanged(!(source == target));
}

void TestCommandSequences::dropTemplate(int from, int to, bool copies)
{
    // The clipboard has the data of a drag.
    list()->setValue(from);
    m_rig->libraryView()->copyTemplate();
    QMimeData data;
    data.setData(TemplateMimeType,
                 QGuiApplication::clipboard()->mimeData()->data(TemplateMimeType));
    m.copiedTemplate = from;
    m.copiedKnob.reset();
    const QRect item = list()->getItemRect(to);
    m.row = from;
    if (!item.isValid() || !list()->rect().contains(item)) {
        return; // not to be seen
    }
    // The point that is meant lies a little above the pointer.
    drop(list(), item.center() + QPoint(1, 3), &data, copies);
    if (from == to) {
        return;
    }
    m.row = to;
    ControlTemplateData &source = Model::at(m.library, from);
    ControlTemplateData &target = Model::at(m.library, to);
    if (copies) {
        target = source;
        m.libraryEdit = true;
    } else if (!(source == target)) {
        std::swap(source, target);
        m.libraryEdit = true;
    }
}

void TestCommandSequences::reset(const QString &entry, const Templates &source, bool toStartUp)
{
    const int number = m.inLibrary ? m.row : m.document.current;
    QVERIFY(m_rig->trigger(entry));
    m_rig->click(m_rig->inPanel("btnOK"));
    m.library = source;
    m.libraryEdit = true;
    decided(number, toStartUp, !toStartUp);
}

// --- The commands --------------------------------------------------------------------------------

QList<TestCommandSequences::Command> TestCommandSequences::commands()
{
    const auto always = [] { return true; };
    const auto inTemplates = [this] { return !m.inLibrary; };
    const auto inLibrary = [this] { return m.inLibrary; };
    return {
        // --- The template view
        {"another template", inTemplates,
         [this] {
             const int number = random(50);
             find<CSpinButton>("btnTemplateNumber")->setValue(number);
             const bool changed = number != m.document.current;
             m.document.current = number;
             edited(changed);
             if (m.online && changed) {
                 m.instrument.current = number;
             }
         }},
        {"another knob", inTemplates,
         [this] {
             m.knob = random(12);
             knobButton(m.knob)->click();
         }},
        {"a CC number", inTemplates,
         [this] {
             const int number = random(128);
             find<CTextSlider>("txtCCNumber")->setValue(number);
             ControllerData knob = m.current().getController(m.knob);
             const bool changed = knob.setCCNum(number);
             m.current().setController(knob, m.knob);
             currentChanged(changed);
         }},
        {"a knob's name", inTemplates,
         [this] {
             const QString name = randomName(15);
             find<CLineEdit>("editDisplayName")->setText(name);
             ControllerData knob = m.current().getController(m.knob);
             const bool changed = knob.setDisplayName(name);
             m.current().setController(knob, m.knob);
             currentChanged(changed);
         }},
        {"a template's name", inTemplates,
         [this] {
             const QString name = randomName(13);
             find<CLineEdit>("editTemplateName")->setText(name);
             currentChanged(m.current().setTemplateName(name));
         }},
        {"CC", inTemplates,
         [this] {
             find<CRadioButton>("btnCC")->click();
             currentChanged(m.current().setCtrlType(NumericParameter(0, 1, 1)));
         }},
        {"Remote", inTemplates,
         [this] {
             find<CRadioButton>("btnRemote")->click();
             currentChanged(m.current().setCtrlType(NumericParameter(0, 1, 0)));
         }},
        {"copy a knob", inTemplates,
         [this] {
             QVERIFY(m_rig->trigger(MenuEditCopy));
             m.copiedKnob = m.current().getController(m.knob);
             m.copiedTemplate.reset();
         }},
        {"paste a knob", inTemplates,
         [this] {
             QCOMPARE(m_rig->trigger(MenuEditPaste), m.copiedKnob.has_value());
             if (m.copiedKnob) {
                 const bool changed = !(m.current().getController(m.knob) == *m.copiedKnob);
                 m.current().setController(*m.copiedKnob, m.knob);
                 currentChanged(changed);
             }
         }},
        {"initialize the template", inTemplates,
         [this] {
             QVERIFY(m_rig->trigger(MenuEditInitialize));
             m.current() = m.blank;
             m.fileEdit = true;
             currentChanged(true);
         }},
        {"move a knob", inTemplates, [this] { dropKnob(random(12), random(12), false); }},
        {"copy a knob by dragging", inTemplates,
         [this] { dropKnob(random(12), random(12), true); }},
        {"store", [this] { return !m.inLibrary && (!m.online || m.bankEdit); },
         [this] {
             m_rig->window->viewStore();
             QVERIFY(m_rig->panel<StoreConfirm>() != nullptr);
             m_rig->click(m_rig->inPanel("btnYes"));
             QTRY_VERIFY(m_rig->anyPanel() == nullptr);
             stored();
         }},
        // --- Documents
        {"new", inTemplates,
         [this] {
             QVERIFY(m_rig->trigger(MenuFileNew));
             answerNoIfAsked();
             const bool wasOnline = m.online;
             m.document.editBuffer.fill(m.blank);
             m.document.current = 0;
             m.fileName.clear();
             m.fileEdit = false;
             m.online = false;
             if (wasOnline) {
                 m.storeWish = true;
                 synchronise();
                 synchronised(true, true);
             }
         }},
        {"open", inTemplates,
         [this] {
             const QString name = m.files.keys().at(random(static_cast<int>(m.files.size())));
             Answers answers;
             answers.expectFileDialog(name);
             QVERIFY(m_rig->trigger(MenuFileOpen));
             answerNoIfAsked();
             QTRY_VERIFY(answers.allGiven());
             const bool wasOnline = m.online;
             m.document = m.files.value(name);
             m.fileName = name;
             m.fileEdit = false;
             if (wasOnline) {
                 m.online = false;
                 m.flashWish = true;
                 synchronise();
                 synchronised(true, false);
             }
         }},
        {"save", inTemplates,
         [this] {
             const bool asks = m.fileName.isEmpty();
             const QString name =
                 asks ? m_folder.filePath(QStringLiteral("%1.Q7V").arg(m_random.generate()))
                      : m.fileName;
             Answers answers;
             if (asks) {
                 answers.expectFileDialog(name);
             }
             QVERIFY(m_rig->trigger(MenuFileSave));
             QVERIFY(answers.allGiven());
             m.files[name] = m.document;
             m.fileName = name;
             m.fileEdit = false;
         }},
        {"save as, over another", inTemplates,
         [this] {
             const QString name = m.files.keys().at(random(static_cast<int>(m.files.size())));
             Answers answers;
             answers.expectFileDialog(name);
             answers.expect<QMessageBox>(
                 [](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
             QVERIFY(m_rig->trigger(MenuFileSaveAs));
             QVERIFY(answers.allGiven());
             m.files[name] = m.document;
             m.fileName = name;
             m.fileEdit = false;
         }},
        // --- The library
        {"enter the library", inTemplates,
         [this] {
             m_rig->window->viewLibrary();
             m.library = m.document.editBuffer;
             m.row = m.document.current;
             m.inLibrary = true;
         }},
        {"another row", inLibrary,
         [this] {
             m.row = random(50);
             list()->setValue(m.row);
             list()->adjustScroll();
         }},
        {"copy a template", inLibrary,
         [this] {
             QVERIFY(m_rig->trigger(MenuEditCopy));
             m.copiedTemplate = m.row;
             m.copiedKnob.reset();
         }},
        {"paste a template", inLibrary,
         [this] {
             QCOMPARE(m_rig->trigger(MenuEditPaste), m.copiedTemplate.has_value());
             if (m.copiedTemplate) {
                 Model::at(m.library, m.row) = Model::at(m.library, *m.copiedTemplate);
                 m.libraryEdit = true;
             }
         }},
        {"initialize a template of the library", inLibrary,
         [this] {
             QVERIFY(m_rig->trigger(MenuEditInitialize));
             Model::at(m.library, m.row) = m.blank;
             m.libraryEdit = true;
         }},
        {"move a template", inLibrary,
         [this] { dropTemplate(m.row, std::min(49, m.row + random(4)), false); }},
        {"copy a template by dragging", inLibrary,
         [this] { dropTemplate(m.row, std::max(0, m.row - random(4)), true); }},
        {"import", inLibrary,
         [this] {
             const QString name = m.files.keys().at(random(static_cast<int>(m.files.size())));
             Answers answers;
             answers.expectFileDialog(name);
             QVERIFY(m_rig->trigger(MenuFileImportTemplate));
             QVERIFY(answers.allGiven());
             m.import = m.files.value(name).stored;
             auto *rows = find<CListView>("listImport");
             const int row = random(10);
             rows->setValue(row);
             find<COnOffButton>("btnImport")->click();
             Model::at(m.library, m.row) = Model::at(m.import, row);
             m.libraryEdit = true;
         }},
        {"OK", inLibrary,
         [this] {
             find<COnOffButton>("btnOK")->click();
             decided(m.row, false, false);
         }},
        {"Cancel", inLibrary,
         [this] {
             find<COnOffButton>("btnCancel")->click();
             m.libraryEdit = false;
             m.inLibrary = false;
         }},
        // --- Resets, in both views
        {"reset to the stored data", [this] { return !m.online || m.bankEdit; },
         [this] { reset(MenuEditResetStored, Templates(m.document.stored), false); }},
        {"reset to the data at start-up", [this] { return m.hasHardware; },
         [this] { reset(MenuEditRestoreHW, Templates(m.hardwareEditBuffer), true); }},
        {"reset to the factory settings", always,
         [this] { reset(MenuEditResetFactory, Templates(m.preset), false); }},
        // --- The instrument
        {"the port wakes", [this] { return !m.online; },
         [this] {
             const bool hasDocument = m.fileEdit || !m.fileName.isEmpty();
             QVERIFY(m_rig->wakePort());
             synchronised(hasDocument, !hasDocument);
         }},
        {"the instrument is lost", [this] { return m.online; },
         [this] {
             m_rig->loseInstrument();
             m.online = false;
         }},
        {"a knob is edited at the instrument", [this] { return m.online; },
         [this] {
             const int knob = random(12);
             const int number = random(128);
             QVERIFY(m_rig->instrument().setCCNumber(knob, number));
             ControllerData data = m.current().getController(knob);
             const bool changed = data.setCCNum(number);
             m.current().setController(data, knob);
             edited(changed);
             Model::at(m.instrument.editBuffer, m.instrument.current) = m.current();
             m.instrument.editFlag = true;
             m.bankEdit = true;
         }},
    };
}

// --- Comparing -----------------------------------------------------------------------------------

void TestCommandSequences::compareBank(const char *name, int bank, const Templates &expected,
                                       QStringList *found)
{
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        // Most are the same in every field, which is seen at far less cost than how they look to
        // the instrument.
        const ControlTemplateData actual = api().getTemplateData(bank, number);
        const ControlTemplateData &wanted = expected[static_cast<std::size_t>(number)];
        if (!(actual == wanted) && !(asInstrument(actual) == asInstrument(wanted))) {
            found->append(QStringLiteral("%1, template %2").arg(QLatin1String(name)).arg(number));
            return;
        }
    }
}

QStringList TestCommandSequences::differences()
{
    QStringList found;
    const auto compare = [&found](const char *name, const auto &actual, const auto &expected) {
        if (!(actual == expected)) {
            found.append(QLatin1String(name));
        }
    };
    compareBank("edit buffer", Bank::EditBuffer, m.document.editBuffer, &found);
    compareBank("stored bank", Bank::Stored, m.document.stored, &found);
    if (m.inLibrary) {
        compareBank("library", Bank::Library, m.library, &found);
    }
    compare("current template", m_rig->currentTemplate(), m.document.current);
    compare("file edit flag", m_rig->fileEditFlag() != 0, m.fileEdit);
    compare("library edit flag", m_rig->flag(ParamAddress::LibraryEditFlag) != 0, m.libraryEdit);
    compare("bank edit flag", m_rig->flag(ParamAddress::BankEditFlag) != 0, m.bankEdit);
    compare("online", api().isONLINE(), m.online);
    compare("file name", m_rig->fileName(), m.fileName);
    compare("view", m_rig->showsLibrary(), m.inLibrary);
    compare("raising", api().isAllowToRaiseFileEditFlag(), true);
    compare("sending", api().isAllowToSendSysEx(), true);
    // The menus follow the memory by way of the event loop.
    const std::pair<QString, bool> entries[] = {
        {MenuFileNew, !m.inLibrary},
        {MenuFileSaveAs, !m.inLibrary},
        {MenuFileImportTemplate, m.inLibrary},
        {MenuEditCopy, true},
        {MenuEditPaste, m.inLibrary ? m.copiedTemplate.has_value() : m.copiedKnob.has_value()},
        {MenuEditInitialize, true},
        {MenuEditResetStored, !m.online || m.bankEdit},
        {MenuEditRestoreHW, m.hasHardware},
        {MenuEditResetFactory, true},
    };
    for (const auto &[text, isOn] : entries) {
        compare(qPrintable(text), m_rig->entry(text)->isEnabled(), isOn);
    }
    const InstrumentMemory instrument = m_rig->instrument().contents();
    const auto compareInstrument = [&](const char *name, const InstrumentBank &actual,
                                       const Templates &expected, InstrumentForm *form) {
        for (std::size_t number = 0; number < actual.size(); ++number) {
            if (!(actual[number] == form->of(number, expected[number]))) {
                found.append(
                    QStringLiteral("%1, template %2").arg(QLatin1String(name)).arg(number));
                return;
            }
        }
    };
    compareInstrument("instrument's edit buffer", instrument.editBuffer, m.instrument.editBuffer,
                      &m_editBufferForm);
    compareInstrument("instrument's stored bank", instrument.stored, m.instrument.stored,
                      &m_storedForm);
    compare("instrument's current template", instrument.currentTemplate, m.instrument.current);
    compare("instrument's edit flag", instrument.editFlag, m.instrument.editFlag);
    compare("stores to flash", m_rig->instrument().counters().storesToFlash,
            m.instrument.storesToFlash);
    if (m_rig->anyPanel() != nullptr || m_rig->window->isWindowLocked()) {
        found.append(QStringLiteral("a panel stands"));
    }
    return found;
}

// --- The test ------------------------------------------------------------------------------------

void TestCommandSequences::sequences_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= Sequences; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void TestCommandSequences::sequences()
{
    QFETCH(quint32, seed);
    QVERIFY(start(seed));
    const QList<Command> all = commands();
    QStringList story;
    QVERIFY2(differences().isEmpty(), qPrintable(differences().join(QStringLiteral(", "))));
    for (int step = 0; step < CommandsOfEach; ++step) {
        QList<const Command *> possible;
        for (const Command &command : all) {
            if (command.isPossible()) {
                possible.append(&command);
            }
        }
        const Command *command = possible.at(random(static_cast<int>(possible.size())));
        story.append(QLatin1String(command->name));
        command->run();
        const bool settled = !QTest::currentTestFailed() &&
                             QTest::qWaitFor([this] { return differences().isEmpty(); }, SettleMs);
        QVERIFY2(settled, qPrintable(story.join(QStringLiteral(" > ")) + QStringLiteral(": ") +
                                     differences().join(QStringLiteral(", "))));
    }
}

QTEST_MAIN(TestCommandSequences)
#include "tst_commandsequences.moc"
