// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/ControllerData.h"

#include "app/Constants.h"

ControllerData::ControllerData()
    : remoteTagID(TrackControlNoAssignID.rightJustified(MaximumRemoteTagIDLength, QLatin1Char('0')))
{
}

bool ControllerData::setDisplayName(const QString &name)
{
    if (name.length() > MaximumDisplayNameLength || name == displayName) {
        return false;
    }
    displayName = name;
    return true;
}

bool ControllerData::setRemoteTagID(const QString &id)
{
    const QString lower = id.toLower();
    if (lower.length() > MaximumRemoteTagIDLength || lower == remoteTagID) {
        return false;
    }
    remoteTagID = lower;
    return true;
}
