// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/NumericParameter.h"
#include "memory/ParamAddress.h"

#include <QtCore/QString>

#include <memory>

class AddressTransTable;
class MemChangeObserver;
class RemoteMemAPI;

// Reads and writes one address of the memory for a bound object, and keeps the address that the
// list of observers points to. Owner: MemControllerHelper. Thread: GUI; a move of the address takes
// memoryMutex, since notifications on other threads compare with it.
class MemController
{
public:
    MemController() = default;
    // Takes its address out of the list of observers, since the address ends here.
    virtual ~MemController();
    MemController(const MemController &) = delete;
    MemController &operator=(const MemController &) = delete;

    // Registers the address and the observer; again at every call.
    void assign(MemChangeObserver *observer);

    // At the controller's address; without memory or address, false or an empty value.
    bool setParam(long value);
    bool setParam(const QString &text);
    NumericParameter getParam() const;
    QString getParamQString() const;

    // Takes the address over; null does nothing. Like the three that follow, it refreshes the
    // observers at the new address once the controller is registered.
    void setParamAddress(ParamAddress *address);
    void setParamAddressNumeric(int bank, int template_, int controller, int parameter);
    // The forms of the same signature of ParamAddress; a null name leaves what it would name.
    void setParamAddress(int bank, int template_, int controller, const char *name);
    void setParamAddress(int bank, int template_, const char *name);

    void setTransTableToParamAddress(AddressTransTable *table);
    void setAddressTransTable(AddressTransTable *table) { addressTransTable = table; }
    void setMemAPI(RemoteMemAPI *api) { memAPI = api; }
    RemoteMemAPI *getMemAPI() const { return memAPI; }
    // Null until first needed. Owned by the controller.
    ParamAddress *getParamAddress() const { return paramAddress.get(); }

private:
    template <typename Change>
    void changeAddress(Change change);

    RemoteMemAPI *memAPI = nullptr; // not owned
    std::unique_ptr<ParamAddress> paramAddress;
    AddressTransTable *addressTransTable = nullptr; // not owned
    bool registered = false;
};
