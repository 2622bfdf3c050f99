// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

enum class PluginFormat { Vst2, Vst3 };

// What a plug-in's path stands for. The extension alone tells the format, as it does for a host
// that looks for plug-ins by extension: ".vst3" is VST3, anything else is VST2. A path may name
//
//     NAME.vst3/Contents/ARCHITECTURE-linux/NAME.so    a VST3 bundle
//     NAME.vst/NAME.so                                 a VST2 bundle
//     NAME.vst3, NAME.so, NAME.vst                     the shared object itself
//
// A bundle that was renamed still holds its one shared object under the old name, which is taken.
struct PluginFile
{
    PluginFormat format = PluginFormat::Vst2;
    // Absolute path of the shared object, empty if there is none.
    std::string binary;
    // File name without folder and extension: the name of a plug-in that tells none itself.
    std::string baseName;
};

[[nodiscard]] PluginFile pluginFileOf(const std::string &path);
