// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "helper/PluginAnswer.h"
#include "helper/PluginFile.h"

#include <memory>

// One plug-in file in this process: loaded, questioned, put down again. Everything that the plug-in
// made lives until tearDown(), since taking things down is where plug-ins fail most, and by then
// the answer is written. A session that is never torn down leaves the plug-in as it is.
//
// Exceptions of the plug-in end the question they were thrown at, and count as its refusal. Any
// other misbehaviour is left to the process that watches this one.
class PluginSession
{
public:
    static std::unique_ptr<PluginSession> open(const PluginFile &file);

    PluginSession() = default;
    virtual ~PluginSession() = default;
    PluginSession(const PluginSession &) = delete;
    PluginSession &operator=(const PluginSession &) = delete;

    // Returns what is to be said of the file as a whole.
    [[nodiscard]] virtual HelperExit question(PluginAnswer *answer) = 0;
    virtual void tearDown() = 0;
};
