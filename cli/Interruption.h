// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>

// The wish to end, as Ctrl-C or a service manager tells it. A run that hears of it breaks off and
// leaves the MIDI service in order. Thread: GUI.
class Interruption : public QObject
{
    Q_OBJECT

public:
    void request()
    {
        m_isRequested = true;
        Q_EMIT requested();
    }
    bool isRequested() const { return m_isRequested; }

Q_SIGNALS:
    void requested();

private:
    bool m_isRequested = false;
};
