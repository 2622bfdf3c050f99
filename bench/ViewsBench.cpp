// SPDX-License-Identifier: GPL-3.0-or-later
// The window at work, with an instrument on the loopback: from what the user or the memory does to
// the last pixel on the screen, beside what the bare repaint of the same place takes, a bare list
// of the same items, or a bare reading of the same file.

#include "app/CApplication.h"
#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "bench/Compare.h"
#include "fonts/ApplicationFonts.h"
#include "instrument/LoopbackCable.h"
#include "instrument/VirtualInstrument.h"
#include "memory/RemoteMemAPI.h"
#include "views/EditorLibrary.h"
#include "views/EditorTemplate.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupTree.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QMouseEvent>
#include <QtXml/QDomDocument>

#include <memory>

namespace
{

const QString DAW = QStringLiteral("Rack");
const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
const QString SynthName = QStringLiteral("Halcyon");
constexpr int OnlineTimeoutMs = 60000;
constexpr int SynthParameters = 5000;
constexpr int ParametersPerGroup = 100;
constexpr int DatabaseSynths = 20;
constexpr int DatabaseParameters = 20000;
constexpr QSize ParameterPopupSize(200, 277);

// Counts the paints of all widgets.
class PaintCounter : public QObject
{
public:
    PaintCounter() { qApp->installEventFilter(this); }
    int count() const { return m_count; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        m_count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    int m_count = 0;
};

// Until nothing is painted any more; the moment at which the X server had the last of it.
Clock::time_point settle()
{
    constexpr int QuietRounds = 2;
    static const PaintCounter *const paints = new PaintCounter; // lives with the application
    Clock::time_point finished = Clock::now();
    for (int quiet = 0; quiet < QuietRounds;) {
        const int before = paints->count();
        QCoreApplication::processEvents();
        if (paints->count() == before) {
            ++quiet;
            continue;
        }
        quiet = 0;
        QGuiApplication::sync();
        finished = Clock::now();
    }
    return finished;
}

Clock::duration repaint(QWidget *widget)
{
    settle();
    const Clock::time_point start = Clock::now();
    widget->update();
    return settle() - start;
}

// --- A database ----------------------------------------------------------------------------------

class ScannedVSTiInfo : public VSTiInfo
{
public:
    using VSTiInfo::scanResults;
    using VSTiInfo::VSTiInfo;
};

QString idOf(int index)
{
    return QString::number(index + 1, 16).rightJustified(9, QLatin1Char('0'));
}

// What a scan would have left behind: instruments with groups of parameters. The plug-ins lie in
// the same folder.
bool writeDatabase(const QDir &folder, const QStringList &names, int parametersOfEach)
{
    ScannedVSTiInfo info{QDir(), QDir(), folder};
    info.selectDAW(DAW);
    folder.mkpath(QStringLiteral("."));
    for (const QString &name : names) {
        QFile plugin(folder.filePath(name + QStringLiteral(".so")));
        if (!plugin.open(QIODevice::WriteOnly)) {
            return false;
        }
        SVSTiInfo result{name.toUtf8(), QFile::encodeName(plugin.fileName()), false, {}};
        for (int i = 0; i < parametersOfEach; ++i) {
            result.parameters.append({idOf(i),
                                      "Parameter " + QByteArray::number(i),
                                      {"Group " + QByteArray::number(i / ParametersPerGroup)}});
        }
        info.scanResults->append(result);
    }
    info.entryVSTiParameter();
    return QFile::exists(folder.filePath(DatabaseFileName));
}

// --- The window ----------------------------------------------------------------------------------

class Rig
{
public:
    Rig()
        : m_cable(m_instrument, DeviceName)
        , m_hasDatabase(writeDatabase(getAppDataDirectory(), {SynthName}, SynthParameters))
    {
        m_cable.setPlugged(true);
        m_instrument.start();
        api = std::make_unique<RemoteMemAPI>();
        window = std::make_unique<EditorMainWindow>(api.get(), true);
        window->show();
        QDeadlineTimer deadline(OnlineTimeoutMs);
        while (!isReady() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents,
                                            10);
        }
        templateView = window->findChild<EditorTemplate *>();
        libraryView = window->findChild<EditorLibrary *>();
        settle();
    }
    ~Rig()
    {
        window.reset();
        api.reset();
    }
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    bool isReady() const { return m_hasDatabase && api->isONLINE() && !window->isWindowLocked(); }

    // As a finished scan does.
    void useRack() const
    {
        window->setDAWName(DAW);
        window->getVSTiInfo().selectDAW(DAW);
        window->getVSTiInfo().entryVSTiParameter();
        templateView->updateDAW();
        settle();
    }
    void nameKnobs(int number) const
    {
        api->setParam(ParamAddress(Bank::EditBuffer, number, ParamAddress::TemplateName, -1),
                      QStringLiteral("Template %1").arg(number + 1));
        api->setParam(ParamAddress(Bank::EditBuffer, number, ParamAddress::VSTiName, -1),
                      SynthName);
        api->setParam(ParamAddress(Bank::EditBuffer, number, ParamAddress::ControlType, -1), 0);
        for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
            api->setParam(ParamAddress(Bank::EditBuffer, number, knob, ParamAddress::DisplayName),
                          QStringLiteral("Knob %1 of %2").arg(knob + 1).arg(number + 1));
            api->setParam(ParamAddress(Bank::EditBuffer, number, knob, ParamAddress::RemoteNumber),
                          idOf(number * ParamAddress::KnobCount + knob));
        }
        settle();
    }

    // Of the template view.
    template <typename Widget>
    Widget *get(const char *name) const
    {
        return templateView->findChild<Widget *>(QLatin1String(name));
    }

    std::unique_ptr<RemoteMemAPI> api;
    std::unique_ptr<EditorMainWindow> window;
    EditorTemplate *templateView = nullptr;
    EditorLibrary *libraryView = nullptr;

private:
    VirtualInstrument m_instrument;
    LoopbackCable m_cable;
    bool m_hasDatabase;
};

const char *const NotReady = "the window did not go online";
const char *const NotShown = "the window does not show what it should";

// --- Template view -------------------------------------------------------------------------------

// The argument: 0 control changes, 1 parameters of an instrument, whose names are looked up.
void changeTemplate(benchmark::State &state)
{
    const Rig rig;
    if (!rig.isReady()) {
        state.SkipWithError(NotReady);
        return;
    }
    for (int number : {0, 1}) {
        rig.nameKnobs(number);
    }
    if (state.range(0) == 1) {
        rig.useRack();
    }
    auto *const spin = rig.get<CSpinButton>("btnTemplateNumber");
    compareTimes(
        state,
        [&] {
            settle();
            const Clock::time_point start = Clock::now();
            spin->setValue(1 - spin->value());
            return settle() - start;
        },
        [&] { return repaint(rig.templateView); });
    const int number = rig.templateView->getCurrentTemplateNumber();
    const QString wanted =
        state.range(0) == 1 ? QStringLiteral("Parameter %1").arg(number * ParamAddress::KnobCount)
                            : QStringLiteral("\nKnob 1 of %1").arg(number + 1);
    if (!rig.get<CText>("txtKnobA1")->text().endsWith(wanted)) {
        state.SkipWithError(NotShown);
    }
}
BENCHMARK(changeTemplate)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// A knob's name comes from the memory, as the instrument or another control changes it.
void changeKnob(benchmark::State &state)
{
    const Rig rig;
    if (!rig.isReady()) {
        state.SkipWithError(NotReady);
        return;
    }
    rig.nameKnobs(0);
    const ParamAddress address(Bank::EditBuffer, rig.templateView->getCurrentTemplateNumber(), 0,
                               ParamAddress::DisplayName);
    int turn = 0;
    compareTimes(
        state,
        [&] {
            settle();
            const Clock::time_point start = Clock::now();
            rig.api->setParam(address, QStringLiteral("Turn %1").arg(++turn));
            return settle() - start;
        },
        [&] { return repaint(rig.templateView); });
    if (!rig.get<CText>("txtKnobA1")->text().endsWith(QStringLiteral("Turn %1").arg(turn))) {
        state.SkipWithError(NotShown);
    }
}
BENCHMARK(changeKnob)->UseManualTime()->Unit(benchmark::kMillisecond);

// --- Popup ---------------------------------------------------------------------------------------

// Notes when the first popup that comes has been painted, and closes it.
class PopupWatch : public QObject
{
public:
    PopupWatch() { qApp->installEventFilter(this); }
    bool isShown() const { return m_isShown; }
    Clock::time_point shown() const { return m_shown; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        auto *widget = event->type() == QEvent::Paint ? qobject_cast<QWidget *>(watched) : nullptr;
        if (!m_isAwaited || widget == nullptr || widget->window()->windowType() != Qt::Popup) {
            return false;
        }
        m_isAwaited = false;
        const QPointer<QWidget> popup = widget->window();
        // Behind this paint.
        QMetaObject::invokeMethod(
            popup,
            [this, popup] {
                m_shown = settle();
                m_isShown = true;
                if (popup) {
                    popup->close();
                }
            },
            Qt::QueuedConnection);
        return false;
    }

private:
    bool m_isAwaited = true;
    bool m_isShown = false;
    Clock::time_point m_shown;
};

void click(QWidget *widget)
{
    const QPointF centre = widget->rect().center();
    const QPointF global = widget->mapToGlobal(centre);
    QMouseEvent press(QEvent::MouseButtonPress, centre, global, Qt::LeftButton, Qt::LeftButton, {});
    QMouseEvent release(QEvent::MouseButtonRelease, centre, global, Qt::LeftButton, Qt::NoButton,
                        {});
    QCoreApplication::sendEvent(widget, &press);
    QCoreApplication::sendEvent(widget, &release);
}

// The parameters in a bare tree, the last of them in sight.
Clock::duration openBareTree(const QList<VSTiInfo::Parameter> &parameters)
{
    settle();
    const PopupWatch watch;
    const Clock::time_point start = Clock::now();
    QTreeWidget tree;
    tree.setWindowFlags(Qt::Popup);
    tree.setHeaderHidden(true);
    tree.resize(ParameterPopupSize);
    auto *root = new QTreeWidgetItem({SynthName});
    QTreeWidgetItem *group = nullptr;
    QTreeWidgetItem *leaf = nullptr;
    for (const VSTiInfo::Parameter &parameter : parameters) {
        if (group == nullptr || group->text(0) != parameter.path.first()) {
            group = new QTreeWidgetItem(root, {parameter.path.first()});
        }
        leaf = new QTreeWidgetItem(group, {parameter.path.last()});
    }
    tree.addTopLevelItem(root);
    root->setExpanded(true);
    tree.setCurrentItem(leaf);
    tree.show();
    QDeadlineTimer deadline(OnlineTimeoutMs);
    while (!watch.isShown() && !deadline.hasExpired()) {
        QCoreApplication::processEvents();
    }
    return watch.shown() - start;
}

// The last parameter is the current one, so that the tree opens far down.
void openParameters(benchmark::State &state)
{
    const Rig rig;
    if (!rig.isReady()) {
        state.SkipWithError(NotReady);
        return;
    }
    rig.nameKnobs(0);
    rig.api->setParam(ParamAddress(Bank::EditBuffer, 0, 0, ParamAddress::RemoteNumber),
                      idOf(SynthParameters - 1));
    rig.useRack();
    const QList<VSTiInfo::Parameter> parameters =
        rig.window->getVSTiInfo().getVSTiParameterList(SynthName);
    auto *const button = rig.get<COnOffButton>("btnRemoteControlParameter");
    if (parameters.size() != SynthParameters || !button->isVisible()) {
        state.SkipWithError(NotShown);
        return;
    }
    bool isShown = true;
    compareTimes(
        state,
        [&] {
            settle();
            const PopupWatch watch;
            const Clock::time_point start = Clock::now();
            click(button);
            isShown = isShown && watch.isShown();
            return watch.shown() - start;
        },
        [&] { return openBareTree(parameters); });
    if (!isShown) {
        state.SkipWithError(NotShown);
    }
}
BENCHMARK(openParameters)->UseManualTime()->Unit(benchmark::kMillisecond);

// --- Library -------------------------------------------------------------------------------------

void renameLibrary(benchmark::State &state)
{
    const Rig rig;
    if (!rig.isReady()) {
        state.SkipWithError(NotReady);
        return;
    }
    rig.window->viewLibrary();
    int turn = 0;
    compareTimes(
        state,
        [&] {
            settle();
            const Clock::time_point start = Clock::now();
            ++turn;
            for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
                rig.api->setParam(
                    ParamAddress(Bank::Library, number, ParamAddress::TemplateName, -1),
                    QStringLiteral("Name %1").arg(turn));
            }
            return settle() - start;
        },
        [&] { return repaint(rig.libraryView); });
    const auto *const list =
        rig.libraryView->findChild<CListView *>(QStringLiteral("listTemplate"));
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (!list->text(number, 0).endsWith(QStringLiteral("Name %1").arg(turn))) {
            state.SkipWithError(NotShown);
            return;
        }
    }
}
BENCHMARK(renameLibrary)->UseManualTime()->Unit(benchmark::kMillisecond);

// --- Database ------------------------------------------------------------------------------------

void loadDatabase(benchmark::State &state)
{
    const QTemporaryDir folder;
    QStringList names;
    for (int i = 0; i < DatabaseSynths; ++i) {
        names.append(QStringLiteral("Synth %1").arg(i));
    }
    if (!writeDatabase(QDir(folder.path()), names, DatabaseParameters / DatabaseSynths)) {
        state.SkipWithError("the database could not be written");
        return;
    }
    VSTiInfo info{QDir(), QDir(), QDir(folder.path())};
    bool isRead = true;
    compare(
        state, [&] { info.selectDAW(DAW); },
        [&] {
            QFile file(folder.filePath(DatabaseFileName));
            QDomDocument document;
            isRead = isRead && file.open(QIODevice::ReadOnly) && document.setContent(&file, true);
        });
    qsizetype parameters = 0;
    for (const QString &name : names) {
        parameters += info.getVSTiParameterList(name).size();
    }
    if (!isRead || parameters != DatabaseParameters) {
        state.SkipWithError("the database was not read");
    }
}
BENCHMARK(loadDatabase)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    // A home of its own, with the settings of a first start.
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
    qInstallMessageHandler(doNotOutputMessage);
    CApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    loadApplicationFonts();
    QApplication::setStyle(new RemoteEditorStyle);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
