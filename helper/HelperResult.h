// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

// What the plug-in helper and the editor that runs it agree on.

// What the helper says of a plug-in by its exit code alone. A plug-in that ends the process shows
// as a signal: the program then dies of one.
enum class HelperExit {
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

struct HelperExitMeaning
{
    HelperExit code;
    const char *text;
};

// The one list of meanings; the program's help prints it.
inline constexpr std::array<HelperExitMeaning, 12> HelperExitMeanings = {{
    {HelperExit::List, "the result file holds the instruments and their parameters, maybe none"},
    {HelperExit::NoListAtAll,
     "an instrument that gives no parameter list at all: it has no controller"},
    {HelperExit::NamesSayNothing,
     "the result file holds a list, but its names are all empty or only numbered:\n"
     "      worth something only with a description file"},
    {HelperExit::NoInstrument, "the plug-in was loaded, and is no instrument"},
    {HelperExit::CannotLoad,
     "the plug-in can't be loaded: missing, of another architecture, or in want of a\n"
     "      library"},
    {HelperExit::NoEntry, "the file has no entry of its format, or gives no factory"},
    {HelperExit::WouldNotInitialise, "the plug-in would not initialise"},
    {HelperExit::WouldNotGiveParameters, "the instrument would not give its parameters"},
    {HelperExit::NoAudioClass, "the plug-in holds no audio class at all"},
    {HelperExit::Usage, "the program was called with wrong arguments"},
    {HelperExit::Internal, "the program could not start its work"},
    {HelperExit::ResultNotWritten, "the result file could not be written"},
}};

// The result file exists with these two only.
constexpr bool hasResult(HelperExit code)
{
    return code == HelperExit::List || code == HelperExit::NamesSayNothing;
}

// Behind the result file's name while the helper writes it. What is left under it is no answer.
inline constexpr char UnfinishedSuffix[] = ".part";
