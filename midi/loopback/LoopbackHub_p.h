// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/loopback/LoopbackHub.h"

#include <QtCore/QList>

#include <deque>
#include <thread>
#include <vector>

// The hub's inside, shared with the binding's two classes.
//
// Locks, outermost first. A receiver is called with its port's receiverMutex alone; everything else
// is held only for moments in which nothing is called but the parser, which queues and returns. So
// a device may answer from within its receiver, and hold locks of its own while it sends.
//
//   LoopbackPort::receiverMutex   editor to device, one call at a time; recursive, since a device's
//                                 answer may make the same thread send again
//   LoopbackPort::sendMutex       device to editor, one call at a time
//   LoopbackInput::mutex          one read() at a time per transport, and none once it is closed
//   Private::mutex                everything else below

struct LoopbackPort
{
    RecursiveMutex receiverMutex;
    Mutex sendMutex;
};

struct LoopbackDevice
{
    int handle = 0;
    QString name;
    LoopbackHub::Receiver receiver;
    std::deque<LoopbackPort> ports; // deque: the ports hold mutexes and cannot be moved

    // Guarded by Private::mutex.
    bool isPlugged = true;
    std::vector<std::thread::id> callers; // one entry for each call under way into the device

    int portCount() const { return static_cast<int>(ports.size()); }
};

// What a transport has open, bound to the device's name: it outlives the device, and is taken up
// again by the next one of that name.
struct LoopbackEnd
{
    QString deviceName;
    int port = 0;                           // of the device, from 1
    std::shared_ptr<LoopbackDevice> device; // guarded by Private::mutex; null while unplugged
};

struct LoopbackInput : LoopbackEnd
{
    Mutex mutex;
    LoopbackMIDI *transport = nullptr; // guarded by mutex; null once closed
};

using LoopbackOutput = LoopbackEnd;

struct LoopbackHub::Private
{
    mutable Mutex mutex;
    WaitCondition callEnded;
    int lastHandle = 0;
    bool isRefusing = false;
    QList<std::shared_ptr<LoopbackDevice>> devices; // plugged in, in the order of plugging
    QList<std::shared_ptr<LoopbackInput>> inputs;   // open
    QList<std::shared_ptr<LoopbackOutput>> outputs; // open

    int portCount() const;
    // The name of the port at the 0-based index over all devices; empty if there is none.
    QString portName(int index) const;
    // Binds the end to the port with the 1-based number over all devices.
    bool bind(LoopbackEnd &end, int number) const;
    bool openInput(const std::shared_ptr<LoopbackInput> &input, int number);
    bool openOutput(const std::shared_ptr<LoopbackOutput> &output, int number);
    void closeInput(const std::shared_ptr<LoopbackInput> &input);
    void closeOutput(const std::shared_ptr<LoopbackOutput> &output);
    bool isPlugged(const LoopbackEnd &end) const;
    // Hands one chunk to the device; false if it is refused or the device is gone.
    bool deliver(const std::shared_ptr<LoopbackOutput> &output, const QByteArray &bytes);
};
