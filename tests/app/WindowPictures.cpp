// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"
#include "cli/LoopbackInstrument.h"
#include "protocol/AutoSync.h"
#include "views/PulldownMenu.h"
#include "views/RunningLight.h"
#include "views/Setup.h"
#include "vsti/AnalyzeVSTi.h"
#include "vsti/DawMachine.h"
#include "widgets/CLineEdit.h"

#include <QtCore/QDir>

#include <cstdio>

// window-pictures DIR: the window in its sizes and views, and each of its panels, menus and popups,
// as NAME.png, or NAME@2x.png where the screen has two pixels per pixel.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
constexpr int WaitMs = 30000;

class Pictures
{
public:
    explicit Pictures(const QString &folder)
        : m_folder(folder)
    {
        QApplication::setCursorFlashTime(0); // a cursor that is there, whenever one looks
        timings().connectionWatcherPeriodMs = 600000;
        timings().lastDumpsTimeoutMs = 50;
        m_machine.install(DawMachine::otherDaw());
        m_machine.plugin(QStringLiteral("Halcyon.vst3"), DawMachine::saysInstrument("Halcyon"));
        MainWindowRig::store("DAWName", OtherDAW);
    }
    bool takeAll()
    {
        if (!m_folder.mkpath(QStringLiteral(".")) || !m_rig.openWindow(DeviceName) ||
            !m_rig.window->fileOpen(
                QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V"))) {
            return false;
        }
        views();
        menus();
        popups();
        panels();
        setup();
        synchronisation();
        scan();
        return m_isGood;
    }

private:
    void views()
    {
        take("window-template");
        m_rig.window->controlWindowSize();
        take("window-small");
        m_rig.window->controlWindowSize();
        m_rig.window->viewLibrary();
        take("window-library");
        m_rig.window->viewTemplate();
    }
    void menus()
    {
        for (const auto &[name, title] :
             {std::pair("menu-file", MenuFileMenu), std::pair("menu-edit", MenuEditMenu),
              std::pair("menu-help", MenuHelpMenu),
              std::pair("menu-database", MenuFileVSTiDatabase)}) {
            QMenu *menu = m_rig.menu(title);
            menu->popup(m_rig.window->mapToGlobal(QPoint(79, 21)));
            menu->setActiveAction(menu->actions().first());
            take(name, menu);
            menu->close();
        }
    }
    void popups()
    {
        EditorTemplate *view = m_rig.templateView();
        openPopups({
            {"popup-template", [view] { view->popupTemplate(); }},
            {"popup-instrument", [view] { view->popupVSTiName(); }},
            {"popup-parameter", [view] { view->popupRemoteControlParameter(); }},
            {"popup-cc", [view] { view->popupCCNumberAndDisplayName(); }},
        });
    }
    void openPopups(const QList<std::pair<const char *, std::function<void()>>> &all)
    {
        for (const auto &[name, open] : all) {
            // It runs an event loop of its own.
            QTimer::singleShot(0, m_rig.window.get(), [this, name = name] {
                QWidget *popup = QApplication::activePopupWidget();
                check(popup != nullptr, name);
                if (popup != nullptr) {
                    take(name, popup);
                    popup->close();
                }
            });
            open();
        }
    }
    void panels()
    {
        EditorMainWindow *window = m_rig.window.get();
        m_rig.api->setBankAvailableFlag(1, Bank::HardwareStored);
        m_rig.api->setBankAvailableFlag(1, Bank::HardwareEditBuffer);
        const std::pair<const char *, std::function<void()>> all[] = {
            {"panel-about", [window] { window->helpAbout(); }},
            {"panel-save-changes", [window] { window->closeConfirm(CloseConfirm::Exit); }},
            {"panel-port-error", [window] { window->portOpenError(DeviceName); }},
            {"panel-port-not-found", [window] { window->portNotFound(); }},
            {"panel-reset-stored", [window] { window->editResetStored(); }},
            {"panel-reset-original", [window] { window->editRestoreHW(); }},
            {"panel-reset-factory", [window] { window->editResetFactory(); }},
            {"panel-store", [window] { window->viewStore(); }},
            {"panel-exit-anyway",
             [window] {
                 window->viewLibrary();
                 window->closeConfirm(CloseConfirm::Exit);
             }},
        };
        for (const auto &[name, open] : all) {
            open();
            take(name);
            closePanel();
        }
        window->viewTemplate();
        m_rig.api->setBankAvailableFlag(0, Bank::HardwareStored);
        m_rig.api->setBankAvailableFlag(0, Bank::HardwareEditBuffer);
    }
    void setup()
    {
        m_rig.window->fileSetup();
        take("panel-setup");
        const std::pair<const char *, void (Setup::*)()> all[] = {
            {"popup-setup-port", &Setup::popupMidiPort},
            {"popup-setup-daw", &Setup::popupDAWName},
        };
        for (const auto &[name, open] : all) {
            (m_rig.panel<Setup>()->*open)();
            const QPointer<PulldownMenu> menu = m_rig.anyPanel()->findChild<PulldownMenu *>();
            QCoreApplication::sendPostedEvents();
            check(menu != nullptr && menu->isVisible(), name);
            if (menu != nullptr) {
                menu->setActiveAction(menu->actions().last());
                take(name, menu);
                menu->close();
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            }
        }
        closePanel();
    }
    void scan()
    {
        m_rig.window->setDAWName(DawMachine::daw());
        auto *panel = m_rig.panel<AnalyzeVSTi>();
        check(panel != nullptr, "the scan");
        if (panel == nullptr) {
            return;
        }
        // As in its middle, wherever the clock and the plug-ins are.
        panel->analyze(QStringLiteral("Halcyon.vst3"));
        (void)drawRunningLight(m_rig.inPanel<QLabel>("lblAnimation"),
                               artwork(":/images/trn_led_autosync.png"), 25);
        take("panel-scan");
        check(QTest::qWaitFor([this] { return m_rig.anyPanel() == nullptr; }, WaitMs),
              "the end of the scan");
        m_rig.inWindow<CLineEdit>("editVSTiName")->setText(QStringLiteral("Halcyon"));
        openPopups({{"popup-instrument-found", [this] { m_rig.templateView()->popupVSTiName(); }},
                    {"popup-parameter-found",
                     [this] { m_rig.templateView()->popupRemoteControlParameter(); }}});
    }
    void synchronisation()
    {
        timings().receiveRunTimeoutMs = 300;
        m_loopback.instrument.fallSilent();
        m_rig.window->autoSync(false, true);
        take("panel-synchronisation");
        m_rig.panel<AutoSync>()->popupMidiPort();
        const QPointer<PulldownMenu> menu = m_rig.anyPanel()->findChild<PulldownMenu *>();
        QCoreApplication::sendPostedEvents();
        check(menu != nullptr && menu->isVisible(), "popup-port");
        if (menu != nullptr) {
            menu->setActiveAction(menu->actions().last());
            take("popup-port", menu);
        }
        if (menu != nullptr) {
            menu->close();
        }
        // Before the light has taken its first step.
        m_rig.panel<AutoSync>()->start();
        take("panel-synchronisation-running");
        check(QTest::qWaitFor([this] { return m_rig.inPanel("lblError")->isVisible(); }, WaitMs),
              "the error");
        take("panel-synchronisation-error");
        m_loopback.instrument.comeBack();
        timings().receiveRunTimeoutMs = WaitMs;
        m_rig.panel<AutoSync>()->start();
        check(QTest::qWaitFor(
                  [this] { return m_rig.onlineLamp()->isVisible() && m_rig.anyPanel() == nullptr; },
                  WaitMs),
              "the synchronisation");
        take("window-online");
    }

    void check(bool isGood, const char *what)
    {
        if (!isGood) {
            std::fprintf(stderr, "window-pictures: %s did not come\n", what);
            m_isGood = false;
        }
    }
    void closePanel()
    {
        EditorOverlap *panel = m_rig.anyPanel();
        check(panel != nullptr, "a panel");
        if (panel != nullptr) {
            panel->closeUnlock();
            panel->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            check(m_rig.isFree(), "the end of a panel");
        }
    }
    void take(const char *name, QWidget *widget = nullptr)
    {
        // What stands on queued updates is shown before it is taken.
        QCoreApplication::sendPostedEvents();
        // Its light comes and goes by the clock.
        m_rig.inWindow<QLabel>("lblStoreFlash")->setPixmap(QPixmap());
        QWidget *shown = widget == nullptr ? m_rig.window.get() : widget;
        const QString file =
            m_folder.filePath(QLatin1String(name) +
                              QLatin1String(shown->devicePixelRatioF() > 1 ? "@2x.png" : ".png"));
        if (!shown->grab().save(file, "PNG")) {
            std::fprintf(stderr, "window-pictures: can't write %s\n", qPrintable(file));
            m_isGood = false;
        }
    }

    QDir m_folder;
    DawMachine m_machine;
    LoopbackInstrument m_loopback;
    MainWindowRig m_rig;
    bool m_isGood = true;
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("window-pictures DIR\n", stderr);
        return 2;
    }
    PanelRig::setUpApplication();
    return Pictures(QString::fromLocal8Bit(argv[1])).takeAll() ? 0 : 1;
}
