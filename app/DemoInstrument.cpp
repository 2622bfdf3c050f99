// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Companion.h"
#include "app/Constants.h"
#include "app/EditorMainWindow.h"
#include "app/Folders.h"
#include "instrument/InstrumentFile.h"
#include "instrument/InstrumentWindow.h"
#include "instrument/LoopbackCable.h"
#include "instrument/VirtualInstrument.h"
#include "memory/RemoteMemAPI.h"

#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <cstdio>
#include <cstdlib>

// The demonstration: an instrument inside the program, with its front panel beside the editor. With
// the folder TRN_DEMO_SCREENSHOTS in the environment it needs no user: as soon as the editor is
// online it saves a picture of each window there, and ends.

namespace
{

constexpr int PollMs = 100;
// From the start of the program; going online takes a second or two.
constexpr int OnlineTimeoutMs = 60000;
// For what has been asked to paint itself when the editor went online.
constexpr int SettleMs = 500;
constexpr int GapBetweenWindows = 16;

class DemoInstrument : public Companion
{
public:
    DemoInstrument()
        : m_instrument(factoryMemory())
        , m_cable(m_instrument, QStringLiteral("Corvan TARN/TERN"))
    {
        m_cable.setPlugged(true);
    }

    void windowShown(EditorMainWindow *window) override
    {
        m_panel = std::make_unique<InstrumentWindow>(m_instrument, m_cable);
        // The program ends with the editor.
        m_panel->setAttribute(Qt::WA_QuitOnClose, false);
        m_panel->move(beside(window));
        m_panel->show();
        window->activateWindow();
        m_instrument.start();
        if (const char *folder = std::getenv("TRN_DEMO_SCREENSHOTS")) {
            waitForOnline(window, QString::fromLocal8Bit(folder));
        }
    }

private:
    static InstrumentMemory factoryMemory()
    {
        InstrumentMemory memory;
        QString error;
        const QString preset =
            getInitialDirectory().filePath(PresetBankFile.arg(1) + EditorFileExtension);
        if (!InstrumentFile::load(preset, &memory, &error)) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(preset), qPrintable(error));
        }
        return memory;
    }

    QPoint beside(const EditorMainWindow *window) const
    {
        const QRect editor = window->frameGeometry();
        const QSize size = m_panel->sizeHint();
        const QRect screen = window->screen()->availableGeometry();
        QPoint place(editor.right() + GapBetweenWindows, editor.top());
        if (place.x() + size.width() > screen.right()) {
            place.setX(editor.left() - GapBetweenWindows - size.width());
        }
        place.setX(
            qBound(screen.left(), place.x(), qMax(screen.left(), screen.right() - size.width())));
        place.setY(qMax(place.y(), screen.top()));
        return place;
    }

    void waitForOnline(EditorMainWindow *window, const QString &folder)
    {
        auto *poll = new QTimer(window);
        QObject::connect(poll, &QTimer::timeout, window, [this, window, folder, poll] {
            m_waitedMs += PollMs;
            if (window->getRemoteMemAPI()->isONLINE() && !window->isWindowLocked()) {
                poll->stop();
                QTimer::singleShot(SettleMs, window,
                                   [this, window, folder] { savePictures(window, folder); });
            } else if (m_waitedMs >= OnlineTimeoutMs) {
                std::fputs("the editor did not go online\n", stderr);
                QCoreApplication::exit(1);
            }
        });
        poll->start(PollMs);
    }

    void savePictures(EditorMainWindow *window, const QString &folder) const
    {
        const QDir directory(folder);
        const bool saved =
            window->grab().save(directory.filePath(QStringLiteral("editor.png"))) &&
            m_panel->grab().save(directory.filePath(QStringLiteral("instrument.png")));
        if (!saved) {
            std::fprintf(stderr, "can't write the pictures into %s\n", qPrintable(folder));
        }
        QCoreApplication::exit(saved ? 0 : 1);
    }

    VirtualInstrument m_instrument;
    LoopbackCable m_cable;
    std::unique_ptr<InstrumentWindow> m_panel;
    int m_waitedMs = 0;
};

} // namespace

std::unique_ptr<Companion> makeCompanion()
{
    return std::make_unique<DemoInstrument>();
}
