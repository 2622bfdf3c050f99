// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/ForcedCurrentTemplate.h"

#include "memory/RemoteMemAPI.h"

ForcedCurrentTemplate::ForcedCurrentTemplate(RemoteMemAPI *api)
    : m_api(api)
{
    m_api->memoryMutex.lock();
    m_api->currentTemplateHold = true;
}

ForcedCurrentTemplate::~ForcedCurrentTemplate()
{
    m_api->currentTemplateHold = false;
    m_api->memoryMutex.unlock();
}
