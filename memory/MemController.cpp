// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemController.h"

#include "memory/RemoteMemAPI.h"

#include <mutex>

MemController::~MemController()
{
    if (registered && memAPI != nullptr) {
        memAPI->unregistAddress(paramAddress.get());
    }
}

void MemController::assign(MemChangeObserver *observer)
{
    if (memAPI == nullptr || paramAddress == nullptr) {
        return;
    }
    memAPI->registObserver(paramAddress.get(), observer);
    registered = true;
}

bool MemController::setParam(long value)
{
    return memAPI != nullptr && paramAddress != nullptr && memAPI->setParam(*paramAddress, value);
}

bool MemController::setParam(const QString &text)
{
    return memAPI != nullptr && paramAddress != nullptr && memAPI->setParam(*paramAddress, text);
}

NumericParameter MemController::getParam() const
{
    return memAPI != nullptr && paramAddress != nullptr ? memAPI->getParam(*paramAddress)
                                                        : NumericParameter();
}

QString MemController::getParamQString() const
{
    return memAPI != nullptr && paramAddress != nullptr ? memAPI->getParamQString(*paramAddress)
                                                        : QString();
}

template <typename Change>
void MemController::changeAddress(Change change)
{
    std::unique_lock<RecursiveMutex> lock;
    if (memAPI != nullptr) {
        lock = std::unique_lock(memAPI->memoryMutex);
    }
    if (paramAddress == nullptr) {
        paramAddress = std::make_unique<ParamAddress>(addressTransTable);
    }
    change(*paramAddress);
    if (registered && memAPI != nullptr) {
        memAPI->notifyObserver(*paramAddress);
    }
}

void MemController::setParamAddress(ParamAddress *address)
{
    if (address == nullptr || address == paramAddress.get()) {
        return;
    }
    std::unique_ptr<ParamAddress> taken(address);
    std::unique_lock<RecursiveMutex> lock;
    if (registered && memAPI != nullptr) {
        lock = std::unique_lock(memAPI->memoryMutex);
        // The list of observers points to the old one, which ends with this call.
        memAPI->replaceAddress(paramAddress.get(), taken.get());
    }
    paramAddress.swap(taken);
    if (registered && memAPI != nullptr) {
        memAPI->notifyObserver(*paramAddress);
    }
}

void MemController::setParamAddressNumeric(int bank, int template_, int controller, int parameter)
{
    changeAddress(
        [=](ParamAddress &own) { own.setParamAddress(bank, template_, controller, parameter); });
}

void MemController::setParamAddress(int bank, int template_, int controller, const char *name)
{
    changeAddress(
        [=](ParamAddress &own) { own.setParamAddress(bank, template_, controller, name); });
}

void MemController::setParamAddress(int bank, int template_, const char *name)
{
    changeAddress(
        [=](ParamAddress &own) { own.setParamAddress(bank, template_, name, ParamAddress::None); });
}

void MemController::setTransTableToParamAddress(AddressTransTable *table)
{
    if (paramAddress == nullptr) {
        paramAddress = std::make_unique<ParamAddress>(table);
        return;
    }
    paramAddress->setAddressTransTable(table);
}
