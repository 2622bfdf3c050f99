// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemControllerFactory.h"

#include "memory/MemController.h"
#include "memory/MemControllerHelper.h"
#include "memory/ParamAddress.h"

MemControllerFactory::MemControllerFactory(RemoteMemAPI *api)
    : memAPI(api)
{
    m_firstController = CreateController(ParameterController, static_cast<ParamAddress *>(nullptr));
}

MemControllerFactory::~MemControllerFactory()
{
    delete m_firstController;
}

MemController *MemControllerFactory::CreateController(ControllerType type, ParamAddress *address)
{
    if (type != ParameterController) {
        delete address;
        return nullptr;
    }
    auto *created = new MemController;
    created->setMemAPI(memAPI);
    created->setAddressTransTable(&addressTransTable);
    created->setParamAddress(address);
    created->setTransTableToParamAddress(&addressTransTable);
    lastController = created;
    return created;
}

MemController *MemControllerFactory::CreateController(ControllerType type,
                                                      MemControllerHelper *helper)
{
    if (helper == nullptr || type != ParameterController) {
        return nullptr;
    }
    const ParamAddress *old = helper->getParamAddress();
    MemController *created =
        CreateController(type, old != nullptr ? new ParamAddress(*old) : nullptr);
    helper->setController(created);
    return created;
}

MemController *MemControllerFactory::CreateController(MemControllerHelper *helper)
{
    return CreateController(ParameterController, helper);
}

void MemControllerFactory::DeleteController(MemController *controller)
{
    delete controller;
}
