// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/HelperResult.h"
#include "helper/Supervisor.h"

#include <cstdio>
#include <string_view>

namespace
{

constexpr const char *Usage = "usage: vif_tarn_tern_x64 PLUGIN RESULT\n";

constexpr const char *About =
    "\n"
    "Loads the plug-in PLUGIN, a VST3 (.vst3) or VST2 (.so, .vst) bundle or file, and writes its\n"
    "instruments with their parameters to the file RESULT. Writes nothing else: what the plug-in\n"
    "says goes nowhere. One plug-in per call, since plug-ins crash.\n"
    "\n"
    "Exit codes:\n";

constexpr const char *AboutSignals =
    "If the plug-in crashes or ends the process before it has answered, the program dies of a "
    "signal.\n"
    "\n"
    "RESULT is text in lines: the number of instruments; for each its name and the number of its\n"
    "parameters; for each of these its id, its name, the number of groups it lies in, and their "
    "names\n"
    "from the outermost inwards.\n";

} // namespace

int main(int argc, char **argv)
{
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (argc == 2 && (first == "--help" || first == "-h")) {
        std::fputs(Usage, stdout);
        std::fputs(About, stdout);
        for (const HelperExitMeaning &meaning : HelperExitMeanings) {
            std::printf("  %2d  %s\n", static_cast<int>(meaning.code), meaning.text);
        }
        std::fputs(AboutSignals, stdout);
        return 0;
    }
    if (argc != 3) {
        std::fputs(Usage, stderr);
        return static_cast<int>(HelperExit::Usage);
    }
    return static_cast<int>(questionSupervised(argv[1], argv[2]));
}
