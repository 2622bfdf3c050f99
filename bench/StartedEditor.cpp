// SPDX-License-Identifier: GPL-3.0-or-later
// started-editor: the program's own main, with an instrument on the loopback and a watch on the
// window.
#include "app/Companion.h"
#include "app/EditorMainWindow.h"
#include "bench/StartWatch.h"
#include "instrument/LoopbackCable.h"
#include "instrument/VirtualInstrument.h"
#include "memory/RemoteMemAPI.h"

namespace
{

class WatchingCompanion : public Companion
{
public:
    WatchingCompanion()
        : m_cable(m_instrument, QStringLiteral("Corvan TARN/TERN"))
    {
        m_cable.setPlugged(true);
        m_instrument.start();
    }

    void windowShown(EditorMainWindow *window) override
    {
        m_watch = std::make_unique<StartWatch>(window, [window] {
            return window->getRemoteMemAPI()->isONLINE() && !window->isWindowLocked();
        });
    }

private:
    VirtualInstrument m_instrument;
    LoopbackCable m_cable;
    std::unique_ptr<StartWatch> m_watch;
};

} // namespace

std::unique_ptr<Companion> makeCompanion()
{
    return std::make_unique<WatchingCompanion>();
}
