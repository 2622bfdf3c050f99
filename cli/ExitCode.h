// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What trn-remote tells the shell.
enum class ExitCode {
    Done = 0,
    Failed = 1, // a file or a value was refused, or a comparison found differences
    Usage = 2,
    NoInstrument = 3,
    BrokenOff = 4, // timed out, interrupted, refused by the service, or incomplete
};
