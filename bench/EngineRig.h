// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/RemoteMemAPI.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>

// The engine as the program sets it up, with a bank of full-length texts in banks 0 and 1, so that
// no transfer is flattered by empty names.
class EngineRig
{
public:
    EngineRig();

    // Opens the route to the first recognised instrument, or the same one again; false if there is
    // none.
    bool openRoute();
    // Ports of the route, as the catalogue numbers them.
    int inPort() const { return m_inPort; }
    int outPort() const { return m_outPort; }

    // Whole runs, from the call to their end signal; false if one does not end.
    bool receiveAll();
    bool sendAll();

    RemoteMemAPI api;

private:
    int m_sensePort = 0;
    int m_inPort = 0;
    int m_outPort = 0;
};
