// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class RemoteMemAPI;

// While one lives, the next write of a current template number counts as a change even if the
// number stays the same: observers hear it and the instrument is told. The library view needs that
// when it puts a new template in front of the template view.
//
// It holds memoryMutex from construction to destruction, on the one thread that it lives on, so
// that nothing comes between the decision and the write. Its first write ends the force; so does
// its end.
class ForcedCurrentTemplate
{
public:
    explicit ForcedCurrentTemplate(RemoteMemAPI *api);
    ~ForcedCurrentTemplate();
    ForcedCurrentTemplate(const ForcedCurrentTemplate &) = delete;
    ForcedCurrentTemplate &operator=(const ForcedCurrentTemplate &) = delete;

private:
    RemoteMemAPI *m_api;
};
