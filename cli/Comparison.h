// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitCode.h"

#include <QtCore/QStringList>

class Console;

// Prints the lines of a comparison and their number; Failed if there is any.
ExitCode tellDifferences(Console *console, const QStringList &lines);
