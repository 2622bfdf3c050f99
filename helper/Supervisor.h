// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "helper/HelperResult.h"

#include <string>

// Runs the plug-in in a child process, and watches it from this one, in which no code of the
// plug-in ever runs. So nothing that the plug-in does takes back an answer once it is given:
// neither a crash nor an endless wait while it is put down again, nor a call of exit with a code of
// its own choice. Nothing that it has started is left behind.
//
// Returns what the child has found out. If it ended without that, this process dies of the child's
// signal, or of SIGABRT if the plug-in ended it in order; that is how its parent learns of a crash.
// How long the plug-in may take to answer is for the parent to decide.
HelperExit questionSupervised(const std::string &pluginPath, const std::string &resultPath);
