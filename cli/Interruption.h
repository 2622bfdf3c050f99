// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>

#include <functional>
#include <utility>

// The wish to end, as Ctrl-C or a service manager tells it. A run that hears of it breaks off and
// leaves the MIDI service in order. Until a command listens such a wish ends the program at once,
// as it should while nothing is under way that would be left in disorder, and nothing hears of it.
// Thread: GUI.
class Interruption : public QObject
{
    Q_OBJECT

public:
    // takeSignals: called with the first listen(), if it isn't empty.
    explicit Interruption(std::function<void()> takeSignals = {})
        : m_takeSignals(std::move(takeSignals))
    {
    }

    // From now on a wish is told and does nothing else. Called before a MIDI service is met, and
    // before a file is written.
    void listen()
    {
        if (const auto takeSignals = std::exchange(m_takeSignals, {})) {
            takeSignals();
        }
    }
    void request()
    {
        m_isRequested = true;
        Q_EMIT requested();
    }
    bool isRequested() const { return m_isRequested; }

Q_SIGNALS:
    void requested();

private:
    std::function<void()> m_takeSignals;
    bool m_isRequested = false;
};
