// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CLineEdit.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CTextSlider.h"

#include "widgets/BoundHarness.h"

#include <atomic>
#include <chrono>
#include <thread>

// Bound controls while the memory is written from both sides: ten thousand changes a second from a
// second thread, and the user's own in between. Whatever the machine's speed, each change arrives,
// none is written back, no widget is touched on the other thread, and at the end each control shows
// what the memory has.

namespace
{

constexpr int ChangesPerSecond = 10000;
constexpr int Seconds = 10;
constexpr int ChangesPerTick = 10;
constexpr int Ticks = Seconds * ChangesPerSecond / ChangesPerTick;
constexpr std::chrono::microseconds Tick(1000000 * ChangesPerTick / ChangesPerSecond);
constexpr int DrainMs = 200000;

// Knobs of template 1 of the edit buffer, by who writes them.
const ParamAddress &ByThread = CCNumberA1;
const ParamAddress &FlagByThread = DisplayFormatA1;
const ParamAddress &NameByThread = TemplateName1;
const ParamAddress ByUser(0, 0, 1, 1);
const ParamAddress ByBoth(0, 0, 2, 1);

std::atomic<int> &touchesElsewhere()
{
    static std::atomic<int> count{0};
    return count;
}

void mustBeGuiThread()
{
    if (QThread::currentThread() != QCoreApplication::instance()->thread()) {
        ++touchesElsewhere();
    }
}

// A control that counts what it hears, and watches on which thread it is touched.
template <typename Control>
class Watched : public Control
{
public:
    explicit Watched(QWidget *parent)
        : Control(parent)
    {
    }
    void updateMemAPI() override
    {
        mustBeGuiThread();
        ++updates;
        Control::updateMemAPI();
    }
    int updates = 0;

protected:
    bool event(QEvent *event) override
    {
        mustBeGuiThread();
        return Control::event(event);
    }
};

// Hears every change on whichever thread it comes, inside memoryMutex.
class Witness : public MemChangeObserver
{
public:
    Witness(RemoteMemAPI *api, const ParamAddress &address)
        : m_address(address)
    {
        setMemAPI(api);
        api->registObserver(&m_address, this);
    }
    ~Witness() override { memAPI->unregistObserver(this); }
    void paramUpdate() override
    {
        ++changes;
        last = memAPI->getParam(m_address).getCurrentValue();
    }
    std::atomic<int> changes{0};
    std::atomic<int> last{-1};

private:
    ParamAddress m_address;
};

// What the second thread has written and really changed.
struct Written
{
    int number = 0;
    int flag = 0;
    int name = 0;
    int both = 0;
    int all = 0;
};

void writeFromAnotherThread(RemoteMemAPI *api, Written *written)
{
    auto due = std::chrono::steady_clock::now();
    int number = 64;
    for (int tick = 0; tick < Ticks; ++tick) {
        for (int i = 0; i < ChangesPerTick; ++i) {
            switch (i) {
            case 0:
                written->flag += api->setParam(FlagByThread, (tick + 1) % 2);
                break;
            case 1:
                written->name += api->setParam(NameByThread, QStringLiteral("Name %1").arg(tick));
                break;
            case 2:
            case 3:
                written->both += api->setParam(ByBoth, (tick * 5 + i) % 128);
                break;
            default:
                number = (number + 1 + tick % 100) % 128;
                written->number += api->setParam(ByThread, number);
                break;
            }
            ++written->all;
        }
        due += Tick;
        std::this_thread::sleep_until(due);
    }
}

} // namespace

class TestBoundStress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingArrivesFromBothSidesAndNothingIsWrittenBack();
};

void TestBoundStress::everythingArrivesFromBothSidesAndNothingIsWrittenBack()
{
    ControlWindow window;
    auto *spin = window.add<Watched<CSpinButton>>({10, 10, 20, 20});
    auto *slider = window.add<Watched<CTextSlider>>({40, 10, 60, 20});
    auto *line = window.add<Watched<CLineEdit>>({10, 40, 200, 20});
    auto *flag = window.add<Watched<COnOffButton>>({110, 10, 20, 20});
    auto *first = window.add<Watched<CRadioButton>>({140, 10, 20, 20});
    auto *second = window.add<Watched<CRadioButton>>({170, 10, 20, 20});
    auto *ownSpin = window.add<Watched<CSpinButton>>({10, 70, 20, 20});
    auto *ownSlider = window.add<Watched<CTextSlider>>({40, 70, 60, 20});
    auto *bothSpin = window.add<Watched<CSpinButton>>({10, 100, 20, 20});
    auto *bothSlider = window.add<Watched<CTextSlider>>({40, 100, 60, 20});
    auto *travellers = window.add<QWidget>({10, 130, 200, 30});
    auto *traveller = new Watched<CTextSlider>(travellers);
    traveller->setGeometry(0, 0, 60, 20);
    spin->setNamedAddress(CCName);
    slider->setNamedAddress(CCName);
    line->setNamedAddress(TemplateNameName);
    flag->setCheckable(true);
    flag->setNamedAddress(FormatName);
    first->setOnValue(0);
    first->setNamedAddress(FormatName);
    second->setOnValue(1);
    second->setNamedAddress(FormatName);
    ownSpin->setNamedAddress(QStringLiteral("knobB1/ccNumber"));
    ownSlider->setNamedAddress(QStringLiteral("knobB1/ccNumber"));
    bothSpin->setNamedAddress(QStringLiteral("knobC1/ccNumber"));
    bothSlider->setNamedAddress(QStringLiteral("knobC1/ccNumber"));
    traveller->setNamedAddress(CCName);
    for (CSpinButton *each : {static_cast<CSpinButton *>(spin), static_cast<CSpinButton *>(ownSpin),
                              static_cast<CSpinButton *>(bothSpin)}) {
        each->setCombinedImage(slices(3, 1, QSize(20, 20)));
    }
    for (int template_ = 1; template_ < 50; ++template_) {
        window.api.setParam(ParamAddress(0, template_, 0, 1), template_);
    }
    window.bind();
    window.open();
    const int spinBefore = spin->updates;
    const int sliderBefore = slider->updates;
    const int lineBefore = line->updates;
    const int flagBefore = flag->updates;
    const Witness byThread(&window.api, ByThread);
    const Witness flagByThread(&window.api, FlagByThread);
    const Witness nameByThread(&window.api, NameByThread);
    const Witness byUser(&window.api, ByUser);
    const Witness byBoth(&window.api, ByBoth);

    // The user: steps one control, drags another to and fro on a value that the thread writes as
    // well, and looks through the templates.
    int ownChanges = 0;
    connect(ownSpin, &CSpinButton::valueChanged, this, [&] {
        mustBeGuiThread();
        ++ownChanges;
    });
    int turns = 0;
    QTimer user;
    connect(&user, &QTimer::timeout, this, [&] {
        ++turns;
        for (int i = 0; i < 5; ++i) {
            if ((turns / 20) % 2 == 0) {
                ownSpin->stepUp();
            } else {
                ownSlider->stepDown();
            }
        }
        bothSlider->setValue((turns * 3) % 128);
        bothSpin->stepUp();
        if (turns % 20 == 0) {
            assignTemplate(travellers, turns / 20 % 50);
        }
    });
    user.start(1);

    Written written;
    std::atomic<bool> done{false};
    std::thread thread([&] {
        writeFromAnotherThread(&window.api, &written);
        done = true;
    });
    const bool ended = QTest::qWaitFor([&] { return done.load(); }, DrainMs);
    thread.join();
    user.stop();
    QVERIFY(ended);
    // The last one comes from the thread's side, so that nothing but its arrival can show it.
    QCOMPARE(written.all, Seconds * ChangesPerSecond);
    QCOMPARE(written.number, 6 * Ticks);
    QCOMPARE(written.flag, Ticks);
    QCOMPARE(written.name, Ticks);
    QVERIFY(turns > 0);

    // Each change is heard, once, and in the end by those whose thread it was not.
    QTRY_COMPARE_WITH_TIMEOUT(spin->updates - spinBefore, written.number, DrainMs);
    QTRY_COMPARE_WITH_TIMEOUT(slider->updates - sliderBefore, written.number, DrainMs);
    QTRY_COMPARE_WITH_TIMEOUT(line->updates - lineBefore, written.name, DrainMs);
    QTRY_COMPARE_WITH_TIMEOUT(flag->updates - flagBefore, written.flag, DrainMs);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    // More would be the controls' own: values that they had been told, written back.
    QCOMPARE(byThread.changes.load(), written.number);
    QCOMPARE(flagByThread.changes.load(), written.flag);
    QCOMPARE(nameByThread.changes.load(), written.name);
    QCOMPARE(byUser.changes.load(), ownChanges);

    // The last value is the one that shows.
    const int number = window.at(ByThread);
    QCOMPARE(byThread.last.load(), number);
    QCOMPARE(spin->value(), number);
    QCOMPARE(slider->value(), number);
    QCOMPARE(slider->shownText(), QString::number(number));
    QCOMPARE(line->text(), window.api.getParamQString(NameByThread));
    QCOMPARE(line->text(), QStringLiteral("Name %1").arg(Ticks - 1));
    QCOMPARE(flag->isChecked(), window.at(FlagByThread) == 1);
    QCOMPARE(first->isChecked(), window.at(FlagByThread) == 0);
    QCOMPARE(second->isChecked(), window.at(FlagByThread) == 1);
    QCOMPARE(ownSpin->value(), window.at(ByUser));
    QCOMPARE(ownSlider->value(), window.at(ByUser));
    QCOMPARE(byBoth.last.load(), window.at(ByBoth));
    QCOMPARE(bothSpin->value(), window.at(ByBoth));
    QCOMPARE(bothSlider->value(), window.at(ByBoth));
    QCOMPARE(traveller->value(), window.at(ParamAddress(0, turns / 20 % 50, 0, 1)));
    // On the screen, too: painting everything anew changes nothing.
    const QImage shown = window.grab().toImage();
    for (QWidget *each : window.findChildren<QWidget *>()) {
        if (auto *painted = dynamic_cast<DoubleBuffer *>(each)) {
            painted->updateDoubleBuffer();
        }
    }
    QCOMPARE(window.grab().toImage(), shown);

    QCOMPARE(touchesElsewhere().load(), 0);
    qInfo("%d changes by the thread, %d of them beside the user's %d; %d turns of the user",
          written.all, written.both, byBoth.changes.load() - written.both, turns);
}

QTEST_MAIN(TestBoundStress)
#include "tst_boundstress.moc"
