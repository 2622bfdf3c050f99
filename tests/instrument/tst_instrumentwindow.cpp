// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"

#include "app/Locks.h"
#include "fonts/ApplicationFonts.h"
#include "instrument/InstrumentDial.h"
#include "instrument/InstrumentDisplay.h"
#include "instrument/InstrumentKey.h"
#include "instrument/InstrumentLamp.h"
#include "instrument/InstrumentSwitch.h"
#include "instrument/InstrumentWindow.h"
#include "instrument/LoopbackCable.h"
#include "memory/RemoteMemAPI.h"
#include "midi/MIDIBinding.h"
#include "midi/MPEvent.h"
#include "midi/TMIDIReaderRefConInterface.h"
#include "midi/TMIDITransport.h"
#include "tests/tools/OwnCopy.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <QtCore/QElapsedTimer>
#include <QtCore/QLoggingCategory>
#include <QtGui/QAccessible>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

#include <atomic>
#include <memory>
#include <thread>

// The instrument's front panel, worked as by hand, with the editor's memory at the far end.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
constexpr int Middle = 64;

// The control changes that come out of the playing port, as number and value.
class PlayListener : public TMIDIReaderRefConInterface
{
public:
    PlayListener()
        : m_transport(MIDITransportInstance())
    {
        m_transport->openInput(VirtualInstrument::PlayPort, this, 0);
    }
    ~PlayListener() override { m_transport->closeInput(); }
    PlayListener(const PlayListener &) = delete;
    PlayListener &operator=(const PlayListener &) = delete;

    void midiIn(tagMPEVENT *event) override
    {
        const MutexLocker lock(m_mutex);
        if (event->eventType == MPEventControlChange && event->channel == 0) {
            m_heard.append({event->shortData[0], event->shortData[1]});
        } else if (event->eventType != MPEventActiveSensing) {
            ++m_others;
        }
    }
    QList<std::pair<int, int>> heard() const
    {
        const MutexLocker lock(m_mutex);
        return ownCopy(m_heard);
    }
    int others() const
    {
        const MutexLocker lock(m_mutex);
        return m_others;
    }

private:
    mutable Mutex m_mutex; // guards what follows
    QList<std::pair<int, int>> m_heard;
    int m_others = 0;
    std::unique_ptr<TMIDITransport> m_transport;
};

// Instrument, cable, window, and the editor's memory, online.
class Rig
{
public:
    explicit Rig(const InstrumentMemory &memory = {})
        : instrument(memory)
        , cable(instrument, DeviceName)
    {
        cable.setPlugged(true);
        listener = std::make_unique<PlayListener>();
        while (api.getQuantityOfBank() < 9) {
            api.createBank();
        }
        api.setBankAvailableFlag(1, 0);
        api.setBankAvailableFlag(1, 1);
        api.createMIDIComunicationRoute(VirtualInstrument::SensingPort,
                                        VirtualInstrument::MessagePort,
                                        VirtualInstrument::MessagePort);
        api.setONLINEstate(1);
        window = std::make_unique<InstrumentWindow>(instrument, cable);
        window->move(40, 40);
        window->show();
        isShown = QTest::qWaitForWindowExposed(window.get());
    }
    ~Rig()
    {
        window.reset();
        api.deleteMIDIComunicationRoute();
        listener.reset();
    }
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    template <typename Part>
    Part *part(const char *name) const
    {
        return window->findChild<Part *>(QLatin1String(name));
    }
    InstrumentDial *dial(const char *place) const
    {
        return window->findChild<InstrumentDial *>(QStringLiteral("knob") + QLatin1String(place));
    }
    const InstrumentDisplay::Content &shown() const
    {
        return part<InstrumentDisplay>("display")->content();
    }
    int editorsValue(int controller, int parameter, int number = 0) const
    {
        return api.getParam(ParamAddress(0, number, controller, parameter)).getCurrentValue();
    }
    int editorsTemplate() const
    {
        return api.getParam(ParamAddress(0, ParamAddress::CurrentTemplateNumber, -1, -1))
            .getCurrentValue();
    }

    // Through the window's own window, so that the events take the way of those of a hand.
    void click(QWidget *widget) const
    {
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, Qt::NoModifier, inWindow(widget));
    }
    void drag(QWidget *widget, int up, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        const QPoint start = inWindow(widget);
        QWindow *handle = window->windowHandle();
        QTest::mousePress(handle, Qt::LeftButton, modifiers, start);
        for (int way = 1; way <= qAbs(up); ++way) {
            const QPointF at = start - QPoint(0, up > 0 ? way : -way);
            QMouseEvent move(QEvent::MouseMove, at, handle->mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, modifiers);
            QCoreApplication::sendEvent(handle, &move);
        }
        QTest::mouseRelease(handle, Qt::LeftButton, modifiers, start - QPoint(0, up));
    }
    void wheel(QWidget *widget, int eighths, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QWindow *handle = window->windowHandle();
        const QPointF at = inWindow(widget);
        QWheelEvent event(at, handle->mapToGlobal(at), QPoint(), QPoint(0, eighths), Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(handle, &event);
    }
    void key(QWidget *widget, Qt::Key which) const
    {
        widget->setFocus();
        QTest::keyClick(window->windowHandle(), which);
    }

    VirtualInstrument instrument;
    LoopbackCable cable;
    RemoteMemAPI api;
    std::unique_ptr<PlayListener> listener;
    std::unique_ptr<InstrumentWindow> window;
    bool isShown = false;

private:
    QPoint inWindow(QWidget *widget) const
    {
        return widget->mapTo(window.get(), QPoint(widget->width() / 2, 28).y() < widget->height()
                                               ? QPoint(widget->width() / 2, 28)
                                               : widget->rect().center());
    }
};

// A template with something to see in it: control changes with names, and both formats.
InstrumentMemory played()
{
    InstrumentMemory memory;
    InstrumentTemplate &t = memory.editBuffer[0];
    t.templateName.set("Grand Polaris");
    t.vstiName.set("Polaris");
    t.controlType = 1;
    const char *const names[] = {"Cutoff", "Resonance", "Env Amount",     "Key Follow",
                                 "Attack", "Decay",     "Sustain",        "Release",
                                 "Pan",    "LFO Rate",  "LFO Depth Wide", "Output Level XY"};
    for (int k = 0; k < InstrumentKnobCount; ++k) {
        InstrumentKnob &knob = t.knobs[static_cast<std::size_t>(k)];
        knob.displayName.set(names[k]);
        knob.ccNumber = static_cast<quint8>(70 + k);
        knob.displayFormat = k == 8 ? 1 : 0;
    }
    memory.editBuffer[1].templateName.set("Second");
    InstrumentTemplate &last = memory.editBuffer[InstrumentTemplateCount - 1];
    last.templateName.set("Last");
    const char *const ids[] = {"100000401", "100001069", "100000001",
                               "100000008", "00000002a", "204143dff"};
    for (std::size_t k = 0; k < std::size(ids); ++k) {
        last.knobs[k].remoteId.set(ids[k]);
    }
    memory.stored = memory.editBuffer;
    return memory;
}

} // namespace

class TestInstrumentWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
        QVERIFY(loadApplicationFonts());
    }

    // --- By the hand ----------------------------------------------------------------------------

    void aDraggedKnobPlaysTheControlChangeOfItsNumber()
    {
        Rig rig(played());
        QVERIFY(rig.isShown);
        rig.drag(rig.dial("B2"), 20);
        QCOMPARE(rig.dial("B2")->value(), Middle + 20);
        QTRY_COMPARE(rig.listener->heard().size(), 20);
        QCOMPARE(rig.listener->heard().first(), std::pair(75, Middle + 1));
        QCOMPARE(rig.listener->heard().last(), std::pair(75, Middle + 20));
        QCOMPARE(rig.listener->others(), 0);
        rig.drag(rig.dial("B2"), -50);
        QCOMPARE(rig.dial("B2")->value(), Middle - 30);
        QCOMPARE(rig.shown().knob, QStringLiteral("B2"));
        QCOMPARE(rig.shown().knobName, QStringLiteral("Decay"));
        QCOMPARE(rig.shown().knobValue, QStringLiteral("34"));
        QVERIFY(rig.dial("B2")->isSelected());
        // Playing is no edit.
        QVERIFY(!rig.instrument.contents().editFlag);
        QCOMPARE(rig.instrument.contents().editBuffer[0].knobs[5].ccNumber, quint8{75});
    }

    void aKnobOfARemoteTemplateSendsNoControlChange()
    {
        Rig rig;
        rig.drag(rig.dial("A1"), 10);
        QCOMPARE(rig.dial("A1")->value(), Middle + 10);
        QCOMPARE(rig.shown().knobValue, QString::number(Middle + 10));
        // What follows comes out behind anything that the drag sent.
        QVERIFY(rig.instrument.setControlType(1));
        QVERIFY(rig.instrument.turnKnob(0, 5));
        QTRY_COMPARE(rig.listener->heard().size(), 1);
        QCOMPARE(rig.listener->heard().first(), std::pair(0, 5));
    }

    void withShiftADragIsFine()
    {
        Rig rig(played());
        rig.drag(rig.dial("A1"), 20, Qt::ShiftModifier);
        QCOMPARE(rig.dial("A1")->value(), Middle + 4);
    }

    void aDragStopsAtTheEnds()
    {
        Rig rig(played());
        rig.drag(rig.dial("D3"), 200);
        QCOMPARE(rig.dial("D3")->value(), 127);
        rig.drag(rig.dial("D3"), -200);
        QCOMPARE(rig.dial("D3")->value(), 0);
    }

    void theRightButtonTurnsNothing()
    {
        Rig rig(played());
        InstrumentDial *dial = rig.dial("A1");
        QTest::mousePress(dial, Qt::RightButton, Qt::NoModifier, QPoint(50, 40));
        QTest::mouseMove(dial, QPoint(50, 10));
        QTest::mouseRelease(dial, Qt::RightButton, Qt::NoModifier, QPoint(50, 10));
        QCOMPARE(dial->value(), Middle);
    }

    void theWheelTurnsByNotches()
    {
        Rig rig(played());
        InstrumentDial *dial = rig.dial("C1");
        rig.wheel(dial, 120);
        QCOMPARE(dial->value(), Middle + 4);
        rig.wheel(dial, -240);
        QCOMPARE(dial->value(), Middle - 4);
        rig.wheel(dial, 120, Qt::ShiftModifier);
        QCOMPARE(dial->value(), Middle - 3);
        // Of a smooth wheel, the parts of a notch add up.
        rig.wheel(dial, 60);
        QCOMPARE(dial->value(), Middle - 3);
        rig.wheel(dial, 60);
        QCOMPARE(dial->value(), Middle + 1);
    }

    void theKeysOfASliderTurnTheFocusedKnob()
    {
        Rig rig(played());
        InstrumentDial *dial = rig.dial("D2");
        rig.key(dial, Qt::Key_Up);
        QCOMPARE(dial->value(), Middle + 1);
        rig.key(dial, Qt::Key_Down);
        rig.key(dial, Qt::Key_Down);
        QCOMPARE(dial->value(), Middle - 1);
        rig.key(dial, Qt::Key_PageUp);
        QCOMPARE(dial->value(), Middle + 15);
        rig.key(dial, Qt::Key_End);
        QCOMPARE(dial->value(), 127);
        rig.key(dial, Qt::Key_Home);
        QCOMPARE(dial->value(), 0);
        QTRY_COMPARE(rig.listener->heard().last(), std::pair(77, 0));
    }

    void withAssignAKnobChoosesItsNumberAndTheEditorFollows()
    {
        Rig rig; // of the remote type, all numbers 0
        rig.drag(rig.dial("C2"), 7);
        rig.click(rig.part<InstrumentKey>("assign"));
        QCOMPARE(rig.dial("C2")->value(), 0);
        rig.drag(rig.dial("C2"), 30);
        QTRY_COMPARE(rig.editorsValue(6, 1), 30);
        QTRY_COMPARE(rig.editorsValue(14, -1), 1);
        const InstrumentMemory memory = rig.instrument.contents();
        QCOMPARE(memory.editBuffer[0].knobs[6].ccNumber, quint8{30});
        QVERIFY(memory.editFlag);
        QTRY_VERIFY(rig.part<InstrumentKey>("store")->isLit());
        QVERIFY(rig.part<InstrumentKey>("cc")->isLit());
        QCOMPARE(rig.shown().knobValue, QStringLiteral("CC 30"));
        // A knob stands again where it stood.
        rig.click(rig.part<InstrumentKey>("assign"));
        QCOMPARE(rig.dial("C2")->value(), Middle + 7);
    }

    void theTemplateKeysStopAtTheEndsAndTheEditorFollows()
    {
        Rig rig(played());
        auto *up = rig.part<InstrumentKey>("templateUp");
        auto *down = rig.part<InstrumentKey>("templateDown");
        QVERIFY(down->isDimmed());
        QVERIFY(!up->isDimmed());
        rig.click(down);
        QCOMPARE(rig.shown().templateNumber, 1);
        QCOMPARE(rig.shown().templateNumber, 1);
        QCOMPARE(rig.shown().templateName, QStringLiteral("Grand Polaris"));
        rig.click(up);
        QCOMPARE(rig.shown().templateNumber, 2);
        QCOMPARE(rig.shown().templateName, QStringLiteral("Second"));
        QTRY_COMPARE(rig.editorsTemplate(), 1);
        for (int i = 2; i < InstrumentTemplateCount; ++i) {
            rig.click(up);
        }
        QCOMPARE(rig.shown().templateNumber, 50);
        QVERIFY(up->isDimmed());
        rig.click(up);
        QTRY_COMPARE(rig.editorsTemplate(), 49);
        rig.click(down);
        QCOMPARE(rig.shown().templateNumber, 49);
        QTRY_COMPARE(rig.editorsTemplate(), 48);
    }

    void theModeKeysChooseAndTheEditorFollows()
    {
        Rig rig;
        auto *remote = rig.part<InstrumentKey>("remote");
        auto *cc = rig.part<InstrumentKey>("cc");
        QVERIFY(remote->isLit());
        QVERIFY(!cc->isLit());
        rig.click(cc);
        QTRY_COMPARE(rig.editorsValue(14, -1), 1);
        QTRY_VERIFY(cc->isLit());
        QVERIFY(!remote->isLit());
        QVERIFY(rig.shown().isControlChange);
        rig.click(remote);
        QTRY_COMPARE(rig.editorsValue(14, -1), 0);
        QTRY_VERIFY(remote->isLit());
    }

    void storeTakesTheEditsAndPutsItsLampOut()
    {
        Rig rig(played());
        auto *store = rig.part<InstrumentKey>("store");
        QVERIFY(!store->isLit());
        QVERIFY(rig.instrument.setCCNumber(0, 3));
        QTRY_VERIFY(store->isLit());
        QVERIFY(rig.shown().isEdited);
        rig.click(store);
        QTRY_VERIFY(!store->isLit());
        QCOMPARE(rig.instrument.contents().stored[0].knobs[0].ccNumber, quint8{3});
    }

    // --- From the editor ------------------------------------------------------------------------

    void whatTheEditorChangesIsShown()
    {
        Rig rig;
        rig.api.setParam(ParamAddress(0, 0, 14, -1), 1);
        QTRY_VERIFY(rig.part<InstrumentKey>("cc")->isLit());
        rig.api.setParam(ParamAddress(0, 0, 1, 1), 74);
        QTRY_COMPARE(rig.dial("B1")->caption().detail, QStringLiteral("CC074"));
        QCOMPARE(rig.dial("B1")->caption().name, QStringLiteral("CC#=074"));
        QString name = QStringLiteral("Brightness");
        rig.api.setParam(ParamAddress(0, 0, 1, 0), name);
        QTRY_COMPARE(rig.dial("B1")->caption().name, name);
        rig.api.setParam(ParamAddress(0, 0, 1, 2), 1);
        QTRY_COMPARE(rig.dial("B1")->caption().value, QStringLiteral("0"));
        QString templateName = QStringLiteral("From there");
        rig.api.setParam(ParamAddress(0, 0, 13, -1), templateName);
        QTRY_COMPARE(rig.shown().templateName, templateName);
        rig.api.setParam(ParamAddress(0, ParamAddress::CurrentTemplateNumber, -1, -1), 41);
        QTRY_COMPARE(rig.shown().templateNumber, 42);
        // None of it is a turn of a knob.
        QVERIFY(rig.shown().knob.isEmpty());
        QCOMPARE(rig.listener->heard().size(), 0);
    }

    void anAssignmentByTheEditorMovesAKnobThatIsBeingAssigned()
    {
        Rig rig;
        rig.click(rig.part<InstrumentKey>("assign"));
        rig.api.setParam(ParamAddress(0, 0, 11, 1), 99);
        QTRY_COMPARE(rig.dial("D3")->value(), 99);
        rig.wheel(rig.dial("D3"), 120);
        QTRY_COMPARE(rig.editorsValue(11, 1), 100);
    }

    void theFormatOfAKnobSaysHowItsValueReads_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("read");
        QTest::newRow("unipolar low") << 0 << 0 << QStringLiteral("0");
        QTest::newRow("unipolar high") << 0 << 127 << QStringLiteral("127");
        QTest::newRow("bipolar low") << 1 << 0 << QStringLiteral("-64");
        QTest::newRow("bipolar middle") << 1 << 64 << QStringLiteral("0");
        QTest::newRow("bipolar high") << 1 << 127 << QStringLiteral("+63");
    }
    void theFormatOfAKnobSaysHowItsValueReads()
    {
        QFETCH(const int, format);
        QFETCH(const int, value);
        QFETCH(const QString, read);
        InstrumentMemory memory = played();
        memory.editBuffer[0].knobs[0].displayFormat = static_cast<quint8>(format);
        Rig rig(memory);
        rig.drag(rig.dial("A1"), 3);
        rig.drag(rig.dial("A1"), value - Middle - 3);
        QCOMPARE(rig.shown().knobValue, read);
        QCOMPARE(rig.dial("A1")->caption().value, read);
    }

    void theFixedControlsOfATrackHaveNames_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QString>("name");
        const auto row = [](const char *id, const char *name) {
            QTest::newRow(name) << QByteArray(id) << QString::fromLatin1(name);
        };
        row("204143dff", "No Assign");
        row("100000401", "Volume");
        row("100001069", "Pan Left-Right");
        row("100000001", "QuickCtrl1");
        row("100000008", "QuickCtrl8");
        // Those of plug-ins are shown as they are.
        row("100000009", "100000009");
        row("100000000", "100000000");
        row("00000002a", "00000002a");
        row("", "");
    }
    void theFixedControlsOfATrackHaveNames()
    {
        QFETCH(const QByteArray, id);
        QFETCH(const QString, name);
        InstrumentMemory memory;
        memory.editBuffer[0].knobs[0].remoteId.set(id);
        Rig rig(memory);
        QCOMPARE(rig.dial("A1")->caption().name, name);
    }

    // --- The cable and the lamp -----------------------------------------------------------------

    void thePulledCableCutsBothWaysAndThePutBackOneJoinsAgain()
    {
        Rig rig(played());
        auto *cable = rig.part<InstrumentSwitch>("cable");
        QVERIFY(cable->isChecked());
        rig.click(cable);
        QVERIFY(!rig.cable.isPlugged());
        QVERIFY(!rig.shown().isPlugged);
        rig.click(rig.part<InstrumentKey>("templateUp"));
        QCOMPARE(rig.shown().templateNumber, 2);
        rig.api.setParam(ParamAddress(0, 5, 0, 1), 9);
        rig.click(cable);
        QVERIFY(rig.cable.isPlugged());
        QVERIFY(rig.shown().isPlugged);
        QCOMPARE(rig.editorsTemplate(), 0);
        // The same ports, taken up again.
        rig.click(rig.part<InstrumentKey>("templateUp"));
        QTRY_COMPARE(rig.editorsTemplate(), 2);
        rig.api.setParam(ParamAddress(0, ParamAddress::CurrentTemplateNumber, -1, -1), 30);
        QTRY_COMPARE(rig.shown().templateNumber, 31);
    }

    void aCableThatIsOutAtTheStartIsShownSo()
    {
        VirtualInstrument instrument;
        LoopbackCable cable(instrument, DeviceName);
        InstrumentWindow window(instrument, cable);
        auto *cableSwitch = window.findChild<InstrumentSwitch *>(QStringLiteral("cable"));
        QVERIFY(!cableSwitch->isChecked());
        QVERIFY(!window.findChild<InstrumentDisplay *>()->content().isPlugged);
        QVERIFY(!cable.isPlugged());
    }

    void theLampBlinksForWhatComesInAndNotForWhatGoesOut()
    {
        Rig rig(played());
        auto *lamp = rig.part<InstrumentLamp>("midiLamp");
        QTRY_VERIFY(!lamp->isLit());
        QSignalSpy spy(lamp, &InstrumentLamp::litChanged);
        rig.drag(rig.dial("A1"), 5);
        QTRY_COMPARE(rig.listener->heard().size(), 5);
        QCOMPARE(spy.count(), 0);
        // Without a change of the contents as well.
        rig.api.sendHardWareDataReq(false);
        QTRY_VERIFY(lamp->isLit());
        QTRY_VERIFY(!lamp->isLit());
    }

    void whatComesWhileTheLampIsLitLightsItOnceMore()
    {
        InstrumentLamp lamp(QStringLiteral("MIDI"));
        QSignalSpy spy(&lamp, &InstrumentLamp::litChanged);
        for (int i = 0; i < 3; ++i) {
            lamp.blink();
        }
        QTRY_VERIFY(lamp.isIdle());
        QCOMPARE(spy.count(), 4);
    }

    void aSteadyStreamBlinks()
    {
        InstrumentLamp lamp(QStringLiteral("MIDI"));
        QSignalSpy spy(&lamp, &InstrumentLamp::litChanged);
        QTimer stream;
        connect(&stream, &QTimer::timeout, &lamp, &InstrumentLamp::blink);
        stream.start(0);
        QTRY_VERIFY(spy.count() >= 6);
        stream.stop();
        QTRY_VERIFY(!lamp.isLit());
    }

    // --- Many changes, and the end --------------------------------------------------------------

    void tenThousandChangesAreShownInFewRefreshes()
    {
        Rig rig(played());
        constexpr int count = 10000;
        QElapsedTimer clock;
        clock.start();
        const int before = rig.window->refreshCount();
        std::atomic<bool> done{false};
        std::thread sender([&] {
            for (int i = 1; i <= count; ++i) {
                rig.instrument.receive(
                    VirtualInstrument::MessagePort,
                    EditorSide::change(0x10, 0x18, QByteArray(1, static_cast<char>(i % 128))));
            }
            done = true;
        });
        QTRY_VERIFY(done);
        sender.join();
        const QString last = QStringLiteral("CC%1").arg(count % 128, 3, 10, QLatin1Char('0'));
        QTRY_COMPARE(rig.dial("A1")->caption().detail, last);
        const auto frames = clock.elapsed() / InstrumentWindow::FrameMs;
        QVERIFY2(rig.window->refreshCount() - before <= frames + 2,
                 qPrintable(QString::number(rig.window->refreshCount() - before)));
    }

    void aBusyMainThreadHoldsNobodyUp()
    {
        Rig rig(played());
        // This thread waits for the other and handles no event meanwhile.
        std::thread sender([&] {
            for (int i = 0; i < 1000; ++i) {
                rig.instrument.receive(VirtualInstrument::MessagePort,
                                       EditorSide::change(0x10, 0x18, QByteArray(1, '\x2A')));
                rig.instrument.selectTemplate(i % 2);
            }
            rig.instrument.selectTemplate(7);
        });
        sender.join();
        QCOMPARE(rig.shown().templateNumber, 1);
        QTRY_COMPARE(rig.shown().templateNumber, 8);
    }

    void destroyedWhileMessagesArrive()
    {
        VirtualInstrument instrument(played());
        LoopbackCable cable(instrument, DeviceName);
        cable.setPlugged(true);
        instrument.start();
        std::unique_ptr<TMIDITransport> editor(MIDITransportInstance());
        QVERIFY(editor->openOutput(VirtualInstrument::MessagePort));
        std::atomic<bool> quit{false};
        std::atomic<int> sent{0};
        std::thread sender([&] {
            const QByteArray wire = EditorSide::change(0x10, 0x18, QByteArray(1, '\x2A')).mid(1);
            while (!quit) {
                editor->outputData(static_cast<int>(wire.size()) + 1,
                                   reinterpret_cast<const unsigned char *>(wire.constData()), 0xF0);
                ++sent;
            }
        });
        for (int round = 0; round < 60; ++round) {
            auto window = std::make_unique<InstrumentWindow>(instrument, cable);
            window->show();
            const int seen = sent;
            QTRY_VERIFY(sent > seen + 5);
            if (round % 3 == 0) {
                cable.setPlugged(false);
                cable.setPlugged(true);
            }
            window.reset();
            // Nothing of these reaches for the window that is gone.
            const int after = sent;
            QTRY_VERIFY(sent > after + 5);
        }
        quit = true;
        sender.join();
        editor->closeOutput();
        instrument.stop();
    }

    // --- For everybody --------------------------------------------------------------------------

    void everyPartHasANameAndATip()
    {
        Rig rig(played());
        const QList<QWidget *> parts = rig.window->findChildren<QWidget *>();
        QCOMPARE(parts.size(), 12 + 6 + 3);
        for (const QWidget *part : parts) {
            QVERIFY2(!part->accessibleName().isEmpty(), qPrintable(part->objectName()));
            QVERIFY2(!part->toolTip().isEmpty(), qPrintable(part->objectName()));
        }
        QCOMPARE(rig.dial("A1")->accessibleName(), QStringLiteral("Knob A1, Cutoff"));
        QVERIFY(rig.part<InstrumentDisplay>("display")->accessibleDescription().contains(
            QStringLiteral("Grand Polaris")));
    }

    void aKnobIsADialAndTheSwitchACheckBoxForAReader()
    {
        Rig rig(played());
        QAccessibleInterface *dial = QAccessible::queryAccessibleInterface(rig.dial("B1"));
        QVERIFY(dial != nullptr);
        QCOMPARE(dial->role(), QAccessible::Dial);
        QVERIFY(dial->valueInterface() != nullptr);
        dial->valueInterface()->setCurrentValue(12);
        QTRY_COMPARE(rig.listener->heard().size(), 1);
        QCOMPARE(rig.listener->heard().first(), std::pair(71, 12));
        QAccessibleInterface *cable =
            QAccessible::queryAccessibleInterface(rig.part<InstrumentSwitch>("cable"));
        QCOMPARE(cable->role(), QAccessible::CheckBox);
        QVERIFY(cable->state().checked);
    }

    void theTabKeyReachesEverythingThatCanBeWorked()
    {
        Rig rig(played());
        rig.part<InstrumentSwitch>("cable")->setFocus();
        QSet<QWidget *> reached;
        for (int i = 0; i < 30; ++i) {
            reached.insert(rig.window->focusWidget());
            QTest::keyClick(rig.window->windowHandle(), Qt::Key_Tab);
        }
        QCOMPARE(reached.size(), 12 + 6 + 1);
    }

    // With TRN_SCREENSHOT_DIR in the environment the pictures are left there.
    void theWindowOfFixedSizeAtTheScreensRatio()
    {
        Rig rig(played());
        rig.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
        rig.part<InstrumentSwitch>("cable")->setFocus();
        const qreal ratio = rig.window->devicePixelRatio();
        const auto shoot = [&](const char *name) {
            const QImage image = rig.window->grab().toImage();
            QCOMPARE(image.size(), rig.window->sizeHint() * ratio);
            const QString folder = qEnvironmentVariable("TRN_SCREENSHOT_DIR");
            if (!folder.isEmpty()) {
                QVERIFY(image.save(QStringLiteral("%1/instrument-%2@%3x.png")
                                       .arg(folder, QLatin1String(name))
                                       .arg(ratio)));
            }
        };
        QCOMPARE(rig.window->size(), rig.window->sizeHint());
        QCOMPARE(rig.window->minimumSize(), rig.window->maximumSize());
        shoot("start");
        rig.drag(rig.dial("A1"), 38);
        rig.drag(rig.dial("B1"), -40);
        rig.drag(rig.dial("D2"), -64);
        rig.drag(rig.dial("C2"), 63);
        rig.drag(rig.dial("A3"), -24);
        rig.dial("B2")->setFocus();
        shoot("playing");
        rig.click(rig.part<InstrumentKey>("assign"));
        rig.drag(rig.dial("D1"), 5);
        rig.instrument.receive(VirtualInstrument::MessagePort, EditorSide::request(0x20, 0));
        rig.part<InstrumentLamp>("midiLamp")->blink();
        shoot("assigning");
        rig.click(rig.part<InstrumentKey>("assign"));
        rig.instrument.selectTemplate(InstrumentTemplateCount - 1);
        rig.click(rig.part<InstrumentSwitch>("cable"));
        QTRY_COMPARE(rig.shown().templateNumber, 50);
        shoot("remote");
    }
};

QTEST_MAIN(TestInstrumentWindow)
#include "tst_instrumentwindow.moc"
