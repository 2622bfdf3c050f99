// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <memory>

class LoopbackMIDI;

// The cable of the loopback binding: devices are plugged in on one side, and the binding's
// transports are the other. Bytes pass on the thread that sends them, with no thread and no queue
// of the hub's own.
//
// Threads: any. Each direction of each port delivers one call at a time. A device's receiver may
// send back from within its call. unplug() returns when no call into the device is under way,
// unless it is called from within one.
class LoopbackHub
{
public:
    // What the editor's side sent to the device's port (1 to the number of ports), as handed to
    // outputData, with its status byte in front.
    using Receiver = std::function<void(int port, const QByteArray &bytes)>;

    static LoopbackHub &instance();

    // Plugs in a device whose ports are named "NAME Port1" and so on, in both directions, behind
    // those of the devices already there. Returns its handle, above 0.
    int plug(const QString &name, int portCount, Receiver receiver);
    // A port that the editor has open stays open, dead, and is taken up again when a device of the
    // same name is plugged in; what is sent meanwhile is refused.
    void unplug(int device);
    // Bytes from the device's port to whoever has it open; dropped if nobody has.
    void send(int device, int port, const QByteArray &bytes);

    // While true, every outputData is refused, as by a service without room.
    void setRefusing(bool refusing);

private:
    LoopbackHub();
    ~LoopbackHub();
    friend class LoopbackMIDI;
    friend class LoopbackMIDIPortAccessor;
    struct Private;
    std::unique_ptr<Private> d;
};
