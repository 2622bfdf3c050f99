// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CApplication.h"
#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "fonts/ApplicationFonts.h"
#include "images/Artwork.h"
#include "instrument/InstrumentFile.h"
#include "instrument/LoopbackCable.h"
#include "instrument/VirtualInstrument.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/AutoSync.h"
#include "views/EditorTemplate.h"
#include "views/PulldownMenu.h"
#include "views/Setup.h"
#include "vsti/AnalyzeVSTi.h"
#include "widgets/CText.h"
#include "widgets/RemoteEditorStyle.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QPainter>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

#include <cstdio>
#include <functional>
#include <memory>

// manual-figures DIR PLUGIN: the pictures of the manual, taken of the editor itself while it works
// on an instrument inside this program, and finds the plug-in, a VST3 instrument. Whoever changes
// the looks of the window calls the target manual, which calls this. Ends with 1, and says why,
// when something that it waits for does not come.
//
// A callout is a number in the margin with a line to what it means; the manual has the words.

namespace
{

constexpr int WaitMs = 20000;
constexpr int MarginPx = 26;
constexpr int DiscPx = 15;
// Between discs of one side, so that they never touch.
constexpr int DiscPitchPx = 17;
// The label in front of the document's name.
constexpr int LabelWidthPx = -46;
// The panels over the window, all of one size.
const QRect PanelPlace(75, 120, 320, 228);
const QRect ListPlace(0, 133, 170, 144);
const QColor InkColor(0x9a, 0x34, 0x12);

// The application's name, and the edition's as its settings have the editor list it.
const QString WorkstationName = QStringLiteral("Trevia 9");
// Parameters of the plug-in, for the knobs from A1 to D3 in the order of the memory.
const QStringList RemoteParameters = [] {
    QStringList ids;
    for (const int number : {30, 31, 32, 44, 10, 11, 12, 13, 60, 61, 62, 63}) {
        ids.append(QString::number(number + 4201, 16).rightJustified(9, QLatin1Char('0')));
    }
    return ids;
}();
const QString WorkstationInList = QStringLiteral("Trevia Pro 9");

enum class Side { Left, Right, Top, Bottom };

struct Callout
{
    QRect target; // in the window
    Side side;
};

[[noreturn]] void giveUp(const QString &what)
{
    std::fprintf(stderr, "manual-figures: %s\n", qPrintable(what));
    std::exit(1);
}

void waitFor(const QString &what, const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(WaitMs);
    while (!condition()) {
        if (deadline.hasExpired()) {
            giveUp(QStringLiteral("waited in vain for ") + what);
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

// What has been asked to paint itself has done so.
void settle()
{
    bool passed = false;
    QTimer::singleShot(300, qApp, [&passed] { passed = true; });
    waitFor(QStringLiteral("time to pass"), [&passed] { return passed; });
}

class Studio
{
public:
    Studio(const QString &folder, const QString &plugin, const QString &home)
        : m_folder(folder)
    {
        MachineFolders folders = machineFolders();
        folders.home = home;
        folders.documents = home;
        folders.system = home + QStringLiteral("/system");
        setMachineFolders(folders);
        layOutWorkstation(plugin);
        // The first one found would be chosen by itself.
        QSettings(QSettings::UserScope, CorporationName, SettingName)
            .setValue(QStringLiteral("DAWName"), OtherDAW);
        const QString preset =
            getInitialDirectory().filePath(PresetBankFile.arg(1) + EditorFileExtension);
        InstrumentMemory memory;
        QString error;
        if (!InstrumentFile::load(preset, &memory, &error)) {
            giveUp(preset + QStringLiteral(": ") + error);
        }
        m_bank = home + QStringLiteral("/Stage Set.Q7V");
        if (!QFile::copy(preset, m_bank)) {
            giveUp(QStringLiteral("can't write ") + m_bank);
        }
        m_instrument = std::make_unique<VirtualInstrument>(memory);
        m_cable =
            std::make_unique<LoopbackCable>(*m_instrument, QStringLiteral("Corvan TARN/TERN"));
        m_cable->setPlugged(true);
        m_api = std::make_unique<RemoteMemAPI>();
        m_window = std::make_unique<EditorMainWindow>(m_api.get(), true);
        m_window->show();
    }

    void takeAll()
    {
        goOnline();
        templateView();
        popups();
        menus();
        panels();
        library();
        setUp();
        trouble();
    }

private:
    // One without plug-ins of its own, and the plug-in in the folder that all of them share.
    static void layOutWorkstation(const QString &plugin)
    {
        const QString application =
            applicationFolders().first() + WorkstationName + QStringLiteral(".app");
        const QString settings = preferencesFolder().filePath(
            WorkstationName + QStringLiteral("/Vst2xPlugins ") +
            WorkstationName.section(QLatin1Char(' '), 0, 0) + QStringLiteral(".xml"));
        const QString folder = commonVST3Folders().last();
        QFile file(settings);
        if (!QDir().mkpath(application) || !QDir().mkpath(QFileInfo(settings).path()) ||
            !QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly) ||
            file.write("<?xml version=\"1.0\"?>\n<Vst2xPlugins/>\n") < 0 ||
            !QFile::link(QFileInfo(plugin).absoluteFilePath(),
                         QDir(folder).filePath(QFileInfo(plugin).fileName()))) {
            giveUp(QStringLiteral("can't lay out a workstation"));
        }
    }

    template <typename Widget = QWidget>
    Widget *widget(const char *name) const
    {
        Widget *found = nullptr;
        for (Widget *candidate : m_window->findChildren<Widget *>(QString::fromLatin1(name))) {
            if (found == nullptr || candidate->isVisible()) {
                found = candidate;
            }
        }
        if (found == nullptr) {
            giveUp(QStringLiteral("no widget ") + QString::fromLatin1(name));
        }
        return found;
    }

    QRect place(const char *name) const
    {
        const QWidget *found = widget(name);
        return {found->mapTo(m_window.get(), QPoint(0, 0)), found->size()};
    }

    void save(const QImage &image, const char *name) const
    {
        const QString path = m_folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png"));
        if (!image.save(path)) {
            giveUp(QStringLiteral("can't write ") + path);
        }
    }

    // The Store button blinks; the pictures have it lit, so that they are the same each time.
    QImage window() const
    {
        const QLabel *flash = widget<QLabel>("lblStoreFlash");
        const QImage lit = artwork(":/images/t27r_btn_back_store.png").toImage();
        waitFor(QStringLiteral("the Store button to light up"),
                [flash, &lit] { return !flash->isVisible() || flash->pixmap().toImage() == lit; });
        return m_window->grab().toImage();
    }

    static QImage part(const QImage &image, const QRect &rect)
    {
        const qreal ratio = image.devicePixelRatio();
        QImage cut = image.copy(
            QRectF(rect.x() * ratio, rect.y() * ratio, rect.width() * ratio, rect.height() * ratio)
                .toRect());
        cut.setDevicePixelRatio(ratio);
        return cut;
    }

    // Numbers from 1, in the order given.
    static QImage withCallouts(const QImage &image, const QList<Callout> &callouts)
    {
        const qreal ratio = image.devicePixelRatio();
        const QSize inner = (QSizeF(image.size()) / ratio).toSize();
        const QSize outer = inner + QSize(2 * MarginPx, 2 * MarginPx);
        QImage result(outer * ratio, QImage::Format_RGB32);
        result.setDevicePixelRatio(ratio);
        result.fill(Qt::white);
        QPainter painter(&result);
        painter.drawImage(QPoint(MarginPx, MarginPx), image);
        painter.setRenderHint(QPainter::Antialiasing);
        QFont font(FontFamilyQRL10);
        font.setPixelSize(10);
        font.setHintingPreference(QFont::PreferNoHinting);
        painter.setFont(font);
        QHash<Side, QList<int>> taken;
        for (qsizetype i = 0; i < callouts.size(); ++i) {
            const Callout &callout = callouts.at(i);
            const QRectF target(callout.target.translated(MarginPx, MarginPx));
            const bool across = callout.side == Side::Left || callout.side == Side::Right;
            const QPointF middle = target.center();
            int along = qRound(across ? middle.y() : middle.x());
            QList<int> &there = taken[callout.side];
            for (bool moved = true; moved;) {
                moved = false;
                for (const int other : there) {
                    if (qAbs(other - along) < DiscPitchPx) {
                        along = other + DiscPitchPx;
                        moved = true;
                    }
                }
            }
            there.append(along);
            QPointF disc;
            QPointF end;
            switch (callout.side) {
            case Side::Left:
                disc = {MarginPx / 2.0 - 1, qreal(along)};
                end = {target.left() + 2, middle.y()};
                break;
            case Side::Right:
                disc = {outer.width() - MarginPx / 2.0 + 1, qreal(along)};
                end = {target.right() - 2, middle.y()};
                break;
            case Side::Top:
                disc = {qreal(along), MarginPx / 2.0 - 1};
                end = {middle.x(), target.top() + 2};
                break;
            case Side::Bottom:
                disc = {qreal(along), outer.height() - MarginPx / 2.0 + 1};
                end = {middle.x(), target.bottom() - 2};
                break;
            }
            painter.setPen(QPen(Qt::white, 3));
            painter.drawLine(disc, end);
            painter.setPen(QPen(InkColor, 1.2));
            painter.drawLine(disc, end);
            painter.setBrush(InkColor);
            painter.drawEllipse(end, 2, 2);
            const QRectF round(disc.x() - DiscPx / 2.0, disc.y() - DiscPx / 2.0, DiscPx, DiscPx);
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(round);
            painter.setPen(Qt::white);
            painter.drawText(round.translated(0.5, 0.5), Qt::AlignCenter, QString::number(i + 1));
        }
        return result;
    }

    // Opens, and takes what then pops up over the window, which it closes.
    QImage popupOf(const std::function<void()> &open)
    {
        QImage taken;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, m_window.get(), [&taken, &poll] {
            QWidget *popup = QApplication::activePopupWidget();
            if (popup == nullptr) {
                return;
            }
            poll.stop();
            taken = popup->grab().toImage();
            popup->close();
        });
        poll.start(200);
        open();
        waitFor(QStringLiteral("a popup"), [&taken] { return !taken.isNull(); });
        return taken;
    }

    void goOnline()
    {
        waitFor(QStringLiteral("the panel AutoSync"), [this] {
            const auto panels = m_window->findChildren<AutoSync *>();
            return !panels.isEmpty() && panels.constFirst()->isVisible();
        });
        settle();
        save(part(window(), PanelPlace), "sync-ready");
        m_instrument->start();
        waitFor(QStringLiteral("the instrument"),
                [this] { return m_api->isONLINE() && !m_window->isWindowLocked(); });
        settle();
    }

    void templateView()
    {
        // A document, so that its name shows.
        m_window->applicationFileOpen(m_bank);
        // What came from the instrument is not saved yet, and the editor asks.
        waitFor(QStringLiteral("the question"), [this] {
            const auto panels = m_window->findChildren<CloseConfirm *>();
            return !panels.isEmpty() && panels.constFirst()->isVisible();
        });
        settle();
        widget<QAbstractButton>("btnNo")->click();
        waitFor(QStringLiteral("the file"), [this] {
            return m_api->getParamQString(ParamAddress(-4, -1, -1, -1)) == m_bank &&
                   m_api->isONLINE() && !m_window->isWindowLocked();
        });
        m_api->setParam(ParamAddress(0, ParamAddress::CurrentTemplateNumber, -1, -1), 11);
        widget<QAbstractButton>("btnKnobB1")->click();
        // A change at the instrument, so that both lamps and the Store button tell.
        m_instrument->setCCNumber(1, 70);
        m_instrument->setCCNumber(1, 71);
        waitFor(QStringLiteral("the instrument's edit flag"), [this] {
            return m_api->getParam(ParamAddress(ParamAddress::BankEditFlag, -1, -1, -1))
                       .getCurrentValue() == 1;
        });
        settle();
        save(withCallouts(
                 window(),
                 {{place("btnWindowClose"), Side::Top},
                  {place("btnWindowMinimize"), Side::Top},
                  {place("btnWindowStaysOnTop"), Side::Top},
                  {QRect(79, 6, 97, 15), Side::Top},
                  {place("btnTemplateNumber").united(place("btnTemplate")), Side::Top},
                  {place("lblBankEditFlag").united(place("lblFileEditFlag")), Side::Top},
                  {place("btnStore"), Side::Top},
                  {place("btnLibrary"), Side::Right},
                  {place("btnKnobD2"), Side::Right},
                  {place("spinCCNumber").united(place("btnCCNumberAndDisplayName")), Side::Right},
                  {place("editDisplayName"), Side::Right},
                  {place("frameDisplayFormat"), Side::Right},
                  {place("lblOnline"), Side::Left},
                  {place("txtFileName").adjusted(LabelWidthPx, 0, 0, 0), Side::Left},
                  {place("txtTemplateNumber").adjusted(-6, 0, 0, 0), Side::Left},
                  {place("btnKnobB1"), Side::Left},
                  {place("btnWindowContract"), Side::Bottom}}),
             "template");
        save(part(window(), QRect(14, 100, 442, 210)), "display");
        save(part(window(), QRect(14, 314, 442, 138)), "setting");
        widget<QAbstractButton>("btnWindowContract")->click();
        settle();
        save(window(), "small");
        widget<QAbstractButton>("btnWindowContract")->click();
        settle();
    }

    void popups()
    {
        // The part of the list that has the chosen number and names around it.
        save(
            part(popupOf([this] { widget<QAbstractButton>("btnCCNumberAndDisplayName")->click(); }),
                 ListPlace),
            "popup-cc");
    }

    void menus()
    {
        QList<QImage> taken;
        for (QMenuBar *bar : m_window->findChildren<QMenuBar *>()) {
            for (QAction *title : bar->actions()) {
                QMenu *menu = title->menu();
                menu->popup(m_window->mapToGlobal(QPoint(80, 24)));
                settle();
                taken.append(menu->grab().toImage());
                menu->close();
            }
        }
        save(row(taken, 16), "menus");
    }

    static QImage row(const QList<QImage> &pictures, int gap)
    {
        QSize size(-gap, 0);
        const qreal ratio = pictures.constFirst().devicePixelRatio();
        for (const QImage &picture : pictures) {
            const QSize one = (QSizeF(picture.size()) / ratio).toSize();
            size = QSize(size.width() + gap + one.width(), qMax(size.height(), one.height()));
        }
        QImage result(size * ratio, QImage::Format_RGB32);
        result.setDevicePixelRatio(ratio);
        result.fill(Qt::white);
        QPainter painter(&result);
        int x = 0;
        for (const QImage &picture : pictures) {
            painter.drawImage(QPoint(x, 0), picture);
            x += qRound(picture.width() / ratio) + gap;
        }
        return result;
    }

    // Opens a panel, takes the part of the window that holds it, and closes it by a button.
    QImage panel(const std::function<void()> &open, const char *closingButton)
    {
        open();
        waitFor(QStringLiteral("a panel"), [this] { return m_window->isWindowLocked(); });
        settle();
        QImage taken = part(window(), PanelPlace);
        widget<QAbstractButton>(closingButton)->click();
        waitFor(QStringLiteral("the panel to close"),
                [this] { return !m_window->isWindowLocked(); });
        return taken;
    }

    void panels()
    {
        save(panel([this] { m_window->viewStore(); }, "btnNo"), "panel-store");
        save(panel([this] { m_window->closeConfirm(CloseConfirm::New); }, "btnCancel"),
             "panel-changes");
        save(row({panel([this] { m_window->editResetStored(); }, "btnCancel"),
                  panel([this] { m_window->editRestoreHW(); }, "btnCancel"),
                  panel([this] { m_window->editResetFactory(); }, "btnCancel")},
                 12),
             "panel-resets");
    }

    void library()
    {
        widget<QAbstractButton>("btnLibrary")->click();
        settle();
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, m_window.get(), [this, &poll] {
            for (QWidget *top : QApplication::topLevelWidgets()) {
                auto *dialog = qobject_cast<QFileDialog *>(top);
                if (dialog != nullptr && dialog->isVisible()) {
                    poll.stop();
                    auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
                    auto *buttons = dialog->findChild<QDialogButtonBox *>();
                    if (name == nullptr || buttons == nullptr) {
                        giveUp(QStringLiteral("the file dialog is another one"));
                    }
                    name->setText(m_bank);
                    buttons->button(QDialogButtonBox::Open)->click();
                }
            }
        });
        poll.start(200);
        widget<QAbstractButton>("btnFileOpen")->click();
        poll.stop();
        settle();
        const QRect list = place("listTemplate");
        save(withCallouts(window(), {{place("btnFileOpen"), Side::Top},
                                     {place("listImport"), Side::Left},
                                     {place("btnImport"), Side::Top},
                                     {list, Side::Right},
                                     {place("framePreview"), Side::Left},
                                     {place("btnOK"), Side::Top},
                                     {place("btnCancel"), Side::Right}}),
             "library");
        widget<QAbstractButton>("btnCancel")->click();
        settle();
    }

    // A workstation is chosen, its plug-ins are looked for, and a knob is given a parameter.
    void setUp()
    {
        m_window->fileSetup();
        Setup *panel = nullptr;
        waitFor(QStringLiteral("the panel Setup"), [this, &panel] {
            panel = m_window->findChild<Setup *>();
            return panel != nullptr && panel->isVisible();
        });
        panel->popupDAWName();
        auto *menu = panel->findChild<PulldownMenu *>();
        for (QAction *action : menu->actions()) {
            if (action->text().trimmed() == WorkstationInList) {
                action->trigger();
            }
        }
        menu->close();
        waitFor(QStringLiteral("the choice"), [panel] {
            return panel->findChild<PulldownMenu *>() == nullptr &&
                   panel->findChild<CText *>(QStringLiteral("txtDAWName"))->text() ==
                       WorkstationInList;
        });
        settle();
        save(part(window(), PanelPlace), "panel-setup");
        widget<QAbstractButton>("btnOK")->click();
        waitFor(QStringLiteral("the panel AnalyzeVSTi"),
                [this] { return m_window->findChild<AnalyzeVSTi *>() != nullptr; });
        // One plug-in is soon questioned; this hears of it right after the panel.
        QImage scan;
        const auto heard = QObject::connect(
            &m_window->getVSTiInfo(), &VSTiInfo::analyzingVSTi, m_window.get(),
            [this, &scan](const QString &file) {
                if (!file.isEmpty()) {
                    scan = part(m_window->grab().toImage(), PanelPlace);
                }
            },
            Qt::QueuedConnection);
        waitFor(QStringLiteral("the scan"), [&scan] { return !scan.isNull(); });
        QObject::disconnect(heard);
        save(scan, "panel-scan");
        waitFor(QStringLiteral("the end of the scan"),
                [this] { return !m_window->isWindowLocked(); });

        auto *view = m_window->findChild<EditorTemplate *>();
        widget<QAbstractButton>("btnRemote")->click();
        const QImage instruments =
            part(popupOf([view] { view->popupVSTiName(); }), QRect(0, 0, 160, 46));
        widget<QLineEdit>("editVSTiName")
            ->setText(m_window->getVSTiInfo().getVSTiExtensionNameFromVSTiName(
                QStringLiteral("Test Instrument")));
        for (int knob = 0; knob < RemoteParameters.size(); ++knob) {
            m_api->setParam(ParamAddress(0, 11, knob, ParamAddress::RemoteNumber),
                            RemoteParameters.at(knob));
        }
        settle();
        const QImage parameters = popupOf([view] { view->popupRemoteControlParameter(); });
        save(window(), "remote");
        save(row({instruments, parameters}, 12), "popup-remote");
    }

    // The window's head with the instrument gone.
    void trouble()
    {
        m_cable->setPlugged(false);
        waitFor(QStringLiteral("the loss of the instrument"),
                [this] { return !m_api->isONLINE(); });
        settle();
        save(part(window(), QRect(0, 0, 470, 90)), "offline");
    }

    const QDir m_folder;
    QString m_bank;
    std::unique_ptr<VirtualInstrument> m_instrument;
    std::unique_ptr<LoopbackCable> m_cable;
    std::unique_ptr<RemoteMemAPI> m_api;
    std::unique_ptr<EditorMainWindow> m_window;
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: manual-figures DIR PLUGIN\n", stderr);
        return 2;
    }
    // Settings of its own, not the user's.
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    qInstallMessageHandler(doNotOutputMessage);
    QApplication application(argc, argv);
    loadApplicationFonts();
    QApplication::setStyle(new RemoteEditorStyle);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    Studio(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]), home.path()).takeAll();
    return 0;
}
