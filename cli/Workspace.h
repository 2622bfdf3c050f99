// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/RemoteMemAPI.h"

#include <QtCore/QString>

// The memory as the editor has it after its start: nine banks, the factory templates if there are
// resources, blank banks 0 and 1. One document at a time is open in it. Thread: GUI.
class Workspace
{
public:
    Workspace();

    RemoteMemAPI *api() { return &m_api; }
    const RemoteMemAPI *api() const { return &m_api; }

    // Blank templates in banks 0 and 1, and template 0 current.
    void clear();
    // Opens the file as a document, in place of what was open. On failure *error has the load's own
    // text, and the workspace is blank.
    bool load(const QString &path, QString *error);
    // Replaces the file in one step; on failure it is as it was.
    bool save(const QString &path, QString *error);

private:
    RemoteMemAPI m_api;
};
