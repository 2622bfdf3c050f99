// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/AddressTransTable.h"

class MemController;
class MemControllerHelper;
class ParamAddress;
class RemoteMemAPI;

// There is one kind of controller; any other number gives none.
enum ControllerType : int { ParameterController = 0 };

// Makes the controllers of bound objects, all for one memory and with one name table, which must
// outlive them. Owner: the main window. Thread: GUI.
class MemControllerFactory
{
public:
    MemControllerFactory() = default;
    explicit MemControllerFactory(RemoteMemAPI *api); // not owned
    virtual ~MemControllerFactory();
    MemControllerFactory(const MemControllerFactory &) = delete;
    MemControllerFactory &operator=(const MemControllerFactory &) = delete;

    // A new controller, owned by the caller, that owns the given address (may be null).
    MemController *CreateController(ControllerType type, ParamAddress *address);
    // As above with a copy of the helper's address; the helper owns the controller and loses its
    // old one, which must not be registered any more. Returned for use only.
    MemController *CreateController(ControllerType type, MemControllerHelper *helper);
    MemController *CreateController(MemControllerHelper *helper);
    void DeleteController(MemController *controller); // null is allowed

    // The last controller that was made; for comparison only, it may be gone.
    const MemController *getLastController() const { return lastController; }
    RemoteMemAPI *getMemAPI() const { return memAPI; }

private:
    RemoteMemAPI *memAPI = nullptr;
    AddressTransTable addressTransTable;
    MemController *lastController = nullptr;
    MemController *m_firstController = nullptr; // owned; made by the constructor
};
