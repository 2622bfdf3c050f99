// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/PluginFile.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace
{

#if defined(__x86_64__)
constexpr const char *BundleFolder = "Contents/x86_64-linux";
#elif defined(__aarch64__)
constexpr const char *BundleFolder = "Contents/aarch64-linux";
#elif defined(__i386__)
constexpr const char *BundleFolder = "Contents/i386-linux";
#else
constexpr const char *BundleFolder = "Contents/unknown-linux";
#endif

constexpr const char *SharedObjectExtension = ".so";

bool isVst3Extension(std::string extension)
{
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return extension == ".vst3";
}

// By name, or the only one there; empty otherwise.
fs::path sharedObjectIn(const fs::path &folder, const std::string &baseName)
{
    std::error_code error;
    fs::path named = folder / (baseName + SharedObjectExtension);
    if (fs::is_regular_file(named, error)) {
        return named;
    }
    fs::path only;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code entryError;
        if (entry->path().extension() != SharedObjectExtension ||
            !entry->is_regular_file(entryError)) {
            continue;
        }
        if (!only.empty()) {
            return {};
        }
        only = entry->path();
    }
    return only;
}

} // namespace

PluginFile pluginFileOf(const std::string &path)
{
    PluginFile file;
    std::error_code error;
    fs::path absolute = fs::absolute(path, error);
    if (error) {
        return file;
    }
    // "NAME.vst3/" names the bundle too.
    if (!absolute.has_filename()) {
        absolute = absolute.parent_path();
    }
    file.format =
        isVst3Extension(absolute.extension().string()) ? PluginFormat::Vst3 : PluginFormat::Vst2;
    file.baseName = absolute.stem().string();
    if (!fs::is_directory(absolute, error)) {
        // Whether it exists is for the loader to find out.
        file.binary = absolute.string();
    } else if (file.format == PluginFormat::Vst3) {
        file.binary = sharedObjectIn(absolute / BundleFolder, file.baseName).string();
    } else {
        file.binary = sharedObjectIn(absolute, file.baseName).string();
    }
    return file;
}
