// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/loopback/LoopbackHub.h"

#include "midi/MidiPortName.h"
#include "midi/loopback/LoopbackHub_p.h"
#include "midi/loopback/LoopbackMIDI.h"

#include <algorithm>
#include <limits>
#include <mutex>

namespace
{

template <typename Ends>
void bindReturned(const Ends &ends, const std::shared_ptr<LoopbackDevice> &device)
{
    for (const auto &end : ends) {
        if (end->device == nullptr && end->deviceName == device->name &&
            end->port <= device->portCount()) {
            end->device = device;
        }
    }
}

template <typename Ends>
void unbind(const Ends &ends, const std::shared_ptr<LoopbackDevice> &device)
{
    for (const auto &end : ends) {
        if (end->device == device) {
            end->device.reset();
        }
    }
}

bool isCalling(const LoopbackDevice &device, std::thread::id thread)
{
    return std::find(device.callers.cbegin(), device.callers.cend(), thread) !=
           device.callers.cend();
}

} // namespace

LoopbackHub::LoopbackHub()
    : d(std::make_unique<Private>())
{
}

LoopbackHub::~LoopbackHub() = default;

LoopbackHub &LoopbackHub::instance()
{
    static LoopbackHub hub;
    return hub;
}

int LoopbackHub::plug(const QString &name, int portCount, Receiver receiver)
{
    auto device = std::make_shared<LoopbackDevice>();
    device->name = name;
    device->receiver = std::move(receiver);
    device->ports.resize(static_cast<std::size_t>(std::max(portCount, 0)));
    const MutexLocker lock(d->mutex);
    device->handle = ++d->lastHandle;
    d->devices.append(device);
    bindReturned(d->inputs, device);
    bindReturned(d->outputs, device);
    return device->handle;
}

void LoopbackHub::unplug(int handle)
{
    std::shared_ptr<LoopbackDevice> device;
    {
        std::unique_lock<Mutex> lock(d->mutex);
        const auto found = std::find_if(d->devices.cbegin(), d->devices.cend(),
                                        [&](const auto &other) { return other->handle == handle; });
        if (found == d->devices.cend()) {
            return;
        }
        device = *found;
        d->devices.erase(found);
        device->isPlugged = false;
        unbind(d->inputs, device);
        unbind(d->outputs, device);
        // From within a call into the device, waiting for that call would be for ever.
        if (!isCalling(*device, std::this_thread::get_id())) {
            d->callEnded.wait(lock, [&] { return device->callers.empty(); });
        }
    }
    // What the device was sending just now has arrived before it counts as unplugged.
    for (LoopbackPort &port : device->ports) {
        const MutexLocker flush(port.sendMutex);
    }
}

void LoopbackHub::send(int handle, int port, const QByteArray &bytes)
{
    std::shared_ptr<LoopbackDevice> device;
    {
        const MutexLocker lock(d->mutex);
        const auto found = std::find_if(d->devices.cbegin(), d->devices.cend(),
                                        [&](const auto &other) { return other->handle == handle; });
        if (found == d->devices.cend()) {
            return;
        }
        device = *found;
    }
    if (port < 1 || port > device->portCount() || bytes.size() > std::numeric_limits<int>::max()) {
        return;
    }
    const MutexLocker sending(device->ports[static_cast<std::size_t>(port - 1)].sendMutex);
    QList<std::shared_ptr<LoopbackInput>> listeners;
    {
        const MutexLocker lock(d->mutex);
        for (const auto &input : std::as_const(d->inputs)) {
            if (input->device == device && input->port == port) {
                listeners.append(input);
            }
        }
    }
    for (const auto &input : std::as_const(listeners)) {
        const MutexLocker reading(input->mutex);
        if (input->transport != nullptr) {
            input->transport->read(static_cast<int>(bytes.size()), bytes.constData());
        }
    }
}

void LoopbackHub::setRefusing(bool refusing)
{
    const MutexLocker lock(d->mutex);
    d->isRefusing = refusing;
}

int LoopbackHub::Private::portCount() const
{
    const MutexLocker lock(mutex);
    int count = 0;
    for (const auto &device : devices) {
        count += device->portCount();
    }
    return count;
}

QString LoopbackHub::Private::portName(int index) const
{
    LoopbackEnd end;
    const MutexLocker lock(mutex);
    if (!bind(end, index + 1)) {
        return {};
    }
    return midiPortName(end.deviceName, QStringLiteral("Port%1").arg(end.port), index);
}

bool LoopbackHub::Private::bind(LoopbackEnd &end, int number) const
{
    if (number < 1) {
        return false;
    }
    for (const auto &device : devices) {
        if (number <= device->portCount()) {
            end.deviceName = device->name;
            end.port = number;
            end.device = device;
            return true;
        }
        number -= device->portCount();
    }
    return false;
}

bool LoopbackHub::Private::openInput(const std::shared_ptr<LoopbackInput> &input, int number)
{
    const MutexLocker lock(mutex);
    if (!bind(*input, number)) {
        return false;
    }
    inputs.append(input);
    return true;
}

bool LoopbackHub::Private::openOutput(const std::shared_ptr<LoopbackOutput> &output, int number)
{
    const MutexLocker lock(mutex);
    if (!bind(*output, number)) {
        return false;
    }
    outputs.append(output);
    return true;
}

void LoopbackHub::Private::closeInput(const std::shared_ptr<LoopbackInput> &input)
{
    {
        const MutexLocker lock(mutex);
        inputs.removeOne(input);
        input->device.reset();
    }
    // Waits for a read under way; one that comes later finds nobody.
    const MutexLocker reading(input->mutex);
    input->transport = nullptr;
}

void LoopbackHub::Private::closeOutput(const std::shared_ptr<LoopbackOutput> &output)
{
    const MutexLocker lock(mutex);
    outputs.removeOne(output);
    output->device.reset();
}

bool LoopbackHub::Private::isPlugged(const LoopbackEnd &end) const
{
    const MutexLocker lock(mutex);
    return end.device != nullptr;
}

bool LoopbackHub::Private::deliver(const std::shared_ptr<LoopbackOutput> &output,
                                   const QByteArray &bytes)
{
    std::shared_ptr<LoopbackDevice> device;
    int port = 0;
    {
        const MutexLocker lock(mutex);
        device = output->device;
        if (isRefusing || device == nullptr) {
            return false;
        }
        port = output->port;
    }
    const RecursiveMutexLocker receiving(
        device->ports[static_cast<std::size_t>(port - 1)].receiverMutex);
    const std::thread::id caller = std::this_thread::get_id();
    {
        const MutexLocker lock(mutex);
        // It may have gone, or begun to refuse, while this thread waited for its turn.
        if (!device->isPlugged || isRefusing) {
            return false;
        }
        device->callers.push_back(caller);
    }
    if (device->receiver) {
        device->receiver(port, bytes);
    }
    {
        const MutexLocker lock(mutex);
        device->callers.erase(std::find(device->callers.begin(), device->callers.end(), caller));
        // Under the lock: the one who waits may end the program next.
        callEnded.notify_all();
    }
    return true;
}
