// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/MainWindowRig.h"
#include "app/Timings.h"
#include "cli/LoopbackInstrument.h"
#include "protocol/AutoSync.h"
#include "protocol/RunRig.h"

// The main window and a virtual instrument on its cable, which is known from the start and silent
// until a test says that its port has woken.
class InstrumentRig : public MainWindowRig
{
public:
    static constexpr int WaitMs = 30000;
    static QString deviceName() { return QStringLiteral("Corvan TARN/TERN"); }

    // For the init() of a test.
    static void setTimings()
    {
        timings() = Timings();
        timings().connectionWatcherPeriodMs = 600000; // nobody is sensed here
        timings().lastDumpsTimeoutMs = 50;
    }

    explicit InstrumentRig(const InstrumentMemory &memory)
        : loopback(memory)
    {
    }
    ~InstrumentRig()
    {
        // The cable outlives the window that hangs on it.
        window.reset();
        api.reset();
    }

    bool openWindow() { return MainWindowRig::openWindow(deviceName()); }
    VirtualInstrument &instrument() { return loopback.instrument; }

    // The port wakes, and the panel that comes runs by itself to its end.
    bool wakePort()
    {
        api->emitPortActivatedSignal();
        return waitOnline();
    }
    // The panel that a command has asked for comes, maybe behind another, and its user presses
    // Start.
    bool synchronise()
    {
        const auto isReady = [this] {
            const auto *sync = panel<AutoSync>();
            return sync != nullptr && sync->isVisible() && inPanel("btnStart") != nullptr &&
                   inPanel("btnStart")->isVisible();
        };
        if (!QTest::qWaitFor(isReady, WaitMs)) {
            return false;
        }
        click(inPanel("btnStart"));
        return waitOnline();
    }
    bool waitOnline()
    {
        return QTest::qWaitFor([this] { return api->isONLINE() && anyPanel() == nullptr; }, WaitMs);
    }
    // As after a long silence.
    void loseInstrument() { api->setONLINEstate(0); }

    // What the entry of a menu does, if it is on.
    bool trigger(const QString &text)
    {
        QAction *action = entry(text);
        if (action == nullptr || !action->isEnabled()) {
            return false;
        }
        action->trigger();
        return true;
    }
    int currentTemplate() const
    {
        return api->getParam(currentTemplateAddress()).getCurrentValue();
    }
    int fileEditFlag() const { return flag(ParamAddress::FileEditFlag); }

    LoopbackInstrument loopback;
};
