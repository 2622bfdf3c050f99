// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/InstrumentMemory.h"

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <array>
#include <atomic>

class InstrumentCable;
class InstrumentDial;
class InstrumentDisplay;
class InstrumentKey;
class InstrumentLamp;
class InstrumentSwitch;
class VirtualInstrument;

// The front panel of a virtual instrument: display, template keys, the choice between remote and
// control changes, twelve knobs, the lamp for received MIDI and the switch that pulls the cable.
//
// It shows what the instrument holds, whoever changed it, and does what a hand at the panel would
// do, through the instrument's own edits. A turned knob plays; with ASSIGN on it chooses its
// control change number instead, which makes the template one of the CC type, as in the editor.
//
// The cable's state is read once, here: from then on the switch is the only hand at it.
//
// Instrument and cable are not owned and outlive the window, which takes the instrument's change
// callback and the cable's activity callback for itself. Thread: GUI. The callbacks may come from
// any thread, as fast as they like: they raise flags that the window looks at once per frame.
class InstrumentWindow : public QWidget
{
    Q_OBJECT

public:
    // How long changes gather before they are shown.
    static constexpr int FrameMs = 16;

    InstrumentWindow(VirtualInstrument &instrument, InstrumentCable &cable,
                     QWidget *parent = nullptr);
    ~InstrumentWindow() override;

    QSize sizeHint() const override;
    // How often the instrument's contents were read to be shown.
    int refreshCount() const { return m_refreshCount; }

Q_SIGNALS:
    // From any thread: a flag is up, and none was before.
    void flagRaised();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void makeStrip();
    void makeKeys();
    void makeKnobs();
    InstrumentKey *makeKey(int column, int row, const QString &text, const QString &objectName,
                           const QString &toolTip);

    // Any thread.
    void notify(std::atomic<bool> &flag);
    void lookAtFlags();
    void refresh();
    void showAll();
    void showKnob(int index);
    void showDisplay();
    void turned(int index, int value);
    void stepTemplate(int by);
    void setPlugged(bool plugged);
    bool isAssigning() const;

    VirtualInstrument &m_instrument;
    InstrumentCable &m_cable;

    InstrumentDisplay *m_display;
    InstrumentLamp *m_lamp = nullptr;
    InstrumentSwitch *m_cableSwitch = nullptr;
    InstrumentKey *m_down = nullptr;
    InstrumentKey *m_up = nullptr;
    InstrumentKey *m_remote = nullptr;
    InstrumentKey *m_cc = nullptr;
    InstrumentKey *m_assign = nullptr;
    InstrumentKey *m_store = nullptr;
    std::array<InstrumentDial *, InstrumentKnobCount> m_dials{};

    // Where the twelve knobs stand. The instrument's memory knows nothing of it.
    std::array<int, InstrumentKnobCount> m_positions{};
    int m_lastTurned = -1;
    InstrumentTemplate m_current; // as last read, with the two below
    int m_templateNumber = 0;
    bool m_isEdited = false;
    int m_refreshCount = 0;

    QTimer m_frame;
    std::atomic<bool> m_changed{false};
    std::atomic<bool> m_heard{false};
    std::atomic<bool> m_posted{false};
};
