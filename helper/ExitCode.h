// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

// What the program says of a plug-in by its exit code alone. A plug-in that ends the process shows
// as a signal: the program then dies of one.
enum class ExitCode : int {
    List = 0,
    NoListAtAll = 1,
    NamesSayNothing = 2,
    NoInstrument = 3,
    CannotLoad = 4,
    NoEntry = 5,
    WouldNotInitialise = 6,
    WouldNotGiveParameters = 7,
    NoAudioClass = 8,
    // Beyond what is said of plug-ins: nothing was found out.
    Usage = 64,
    Internal = 70,
    ResultNotWritten = 73,
};

struct ExitCodeMeaning
{
    ExitCode code;
    const char *text;
};

// The one list of meanings; the program's help prints it.
inline constexpr std::array<ExitCodeMeaning, 12> ExitCodeMeanings = {{
    {ExitCode::List, "the result file holds the instruments and their parameters, maybe none"},
    {ExitCode::NoListAtAll,
     "an instrument that gives no parameter list at all: it has no controller"},
    {ExitCode::NamesSayNothing,
     "the result file holds a list, but its names are all empty or only numbered:\n"
     "      worth something only with a description file"},
    {ExitCode::NoInstrument, "the plug-in was loaded, and is no instrument"},
    {ExitCode::CannotLoad,
     "the plug-in can't be loaded: missing, of another architecture, or in want of a\n"
     "      library"},
    {ExitCode::NoEntry, "the file has no entry of its format, or gives no factory"},
    {ExitCode::WouldNotInitialise, "the plug-in would not initialise"},
    {ExitCode::WouldNotGiveParameters, "the instrument would not give its parameters"},
    {ExitCode::NoAudioClass, "the plug-in holds no audio class at all"},
    {ExitCode::Usage, "the program was called with wrong arguments"},
    {ExitCode::Internal, "the program could not start its work"},
    {ExitCode::ResultNotWritten, "the result file could not be written"},
}};

// The result file exists with these two only.
constexpr bool hasResult(ExitCode code)
{
    return code == ExitCode::List || code == ExitCode::NamesSayNothing;
}
