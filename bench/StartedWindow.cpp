// SPDX-License-Identifier: GPL-3.0-or-later
// started-editor, started-bare-window: START IDLE
// A window as a user starts it, for trn-bench-window to time: the editor with an instrument on the
// loopback, or nothing but a Qt window of its size. START is the monotonic clock of the starter in
// nanoseconds. Says on one line how long it took to the first painted window (nanoseconds) and what
// memory is resident then (KiB). With IDLE above 0 it then waits until it is online (the bare
// window: not at all), says "idle", stays for IDLE seconds, and says the processor time of these
// (nanoseconds).

#include <QtCore/QEvent>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <cstdio>
#include <ctime>

#ifdef TRN_EDITOR
#include "app/CApplication.h"
#include "app/EditorMainWindow.h"
#include "fonts/ApplicationFonts.h"
#include "instrument/LoopbackCable.h"
#include "instrument/VirtualInstrument.h"
#include "memory/RemoteMemAPI.h"
#include "widgets/RemoteEditorStyle.h"
#endif

namespace
{

constexpr int OnlinePollMs = 100;
constexpr QSize WindowSize(470, 465);

long long nanoseconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

long long residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').constFirst().toLongLong();
        }
    }
    return 0;
}

void say(const QByteArray &line)
{
    std::puts(line.constData());
    std::fflush(stdout);
}

// Tells of the first paint of the window, and then of the idle time.
class Watch : public QObject
{
public:
    Watch(QWidget *window, long long start, int idleSeconds, std::function<bool()> isReady)
        : m_start(start)
        , m_idleSeconds(idleSeconds)
        , m_isReady(std::move(isReady))
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_painted) {
            m_painted = true;
            // Behind the paint of the children and the hand-over to the screen.
            QTimer::singleShot(0, this, [this] { painted(); });
        }
        return false;
    }

private:
    void painted()
    {
        say(QByteArray::number(nanoseconds(CLOCK_MONOTONIC) - m_start) + ' ' +
            QByteArray::number(residentKiB()));
        if (m_idleSeconds == 0) {
            leave();
            return;
        }
        waitForReady();
    }

    void waitForReady()
    {
        if (!m_isReady()) {
            QTimer::singleShot(OnlinePollMs, this, [this] { waitForReady(); });
            return;
        }
        say("idle");
        const long long before = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
        QTimer::singleShot(m_idleSeconds * 1000, this, [before] {
            say(QByteArray::number(nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - before));
            leave();
        });
    }

    // Not quit(), which would ask about the unsaved bank.
    static void leave() { QCoreApplication::exit(); }

    long long m_start;
    int m_idleSeconds;
    std::function<bool()> m_isReady;
    bool m_painted = false;
};

} // namespace

int main(int argc, char **argv)
{
    const long long start = argc > 1 ? std::atoll(argv[1]) : 0;
    const int idleSeconds = argc > 2 ? std::atoi(argv[2]) : 0;
#ifdef TRN_EDITOR
    qInstallMessageHandler(doNotOutputMessage);
    CApplication application(argc, argv);
    VirtualInstrument instrument;
    LoopbackCable cable(instrument, QStringLiteral("Corvan TARN/TERN"));
    cable.setPlugged(true);
    instrument.start();
    RemoteMemAPI memory;
    loadApplicationFonts();
    QApplication::setStyle(new RemoteEditorStyle);
    EditorMainWindow window(&memory, true);
    const Watch watch(&window, start, idleSeconds,
                      [&] { return memory.isONLINE() && !window.isWindowLocked(); });
#else
    QApplication application(argc, argv);
    QWidget window(nullptr, Qt::FramelessWindowHint);
    window.resize(WindowSize);
    const Watch watch(&window, start, idleSeconds, [] { return true; });
#endif
    window.show();
    return QApplication::exec();
}
