// SPDX-License-Identifier: GPL-3.0-or-later
//
//   NotSynthList.txt   one line for each file that is no instrument, ended by a line feed: its name
//                      with its extension, and no folder
#include "VSTiPathFinder/source/CVSTiPathFinder.h"

#include "VSTiPathFinder/source/InstrumentNames.h"
#include "VSTiPathFinder/source/filesearch.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace
{

constexpr const char *NotSynthListName = "NotSynthList.txt";
constexpr size_t MaximumLineBytes = 1023;

// The DAW's own effects lie in these folders.
constexpr std::array<const char *, 9> EffectFolders = {"Distortion", "Dynamics",    "Filter",
                                                       "Modulation", "Restoration", "Reverb",
                                                       "Surround",   "Tools",       "Spatial"};

constexpr const char *VST3Extension = "vst3";
constexpr const char *VST2PackageType = "aPcs";
// Where plug-ins are no bundles they are shared objects, which have no extension of their own.
constexpr const char *VST2Extension = "vst";
constexpr const char *SharedObjectExtension = "so";
constexpr std::array VST2Extensions = {
    VST2Extension,
#ifndef __APPLE__
    SharedObjectExtension,
#endif
};

// With extension and without folder. False if there is none.
bool fileNameOf(const std::string &path, std::string *fileName)
{
    std::string extension;
    if (!CFileSearch::SplitPath(&path, nullptr, fileName, &extension, false)) {
        return false;
    }
    *fileName += extension;
    return true;
}

// Whether one of the folders that the path lies in is a bundle; those up to the start don't count.
bool isInBundle(const std::string &path, size_t start)
{
    CFileSearch search;
    for (size_t end = path.find('/', start); end != std::string::npos;
         end = path.find('/', start)) {
        const std::string folder = path.substr(start, end - start);
        std::string extension;
        CFileSearch::SplitPath(&folder, nullptr, nullptr, &extension, true);
        search.MakeStringAllLower(&extension);
        if (!extension.empty() &&
            (extension.substr(1) == VST2Extension || extension.substr(1) == VST3Extension)) {
            return true;
        }
        start = end + 1;
    }
    return false;
}

using Names = std::unordered_set<std::string>;

// Without folder and extension.
Names namesOf(const std::vector<std::string> &paths)
{
    Names names;
    for (const std::string &path : paths) {
        std::string name;
        CFileSearch::SplitPath(&path, nullptr, &name, nullptr, false);
        names.insert(name);
    }
    return names;
}

void appendNew(const std::string &path, std::vector<std::string> *paths, Names *names)
{
    std::string name;
    if (CFileSearch::SplitPath(&path, nullptr, &name, nullptr, false) && !name.empty() &&
        names->insert(name).second) {
        paths->push_back(path);
    }
}

} // namespace

CVSTiPathFinder::CVSTiPathFinder(const std::string &folder)
{
    if (!folder.empty()) {
        notSynthListPath = folder + (folder.back() == '/' ? "" : "/") + NotSynthListName;
    }
}

void CVSTiPathFinder::SetIgnorableVSTis(const std::vector<std::string> &names)
{
    ignorableVSTis = names;
}

bool CVSTiPathFinder::SearchAllFiles(const std::vector<std::string> &folders,
                                     std::vector<std::string> *found, bool isVST2)
{
    if (found == nullptr || folders.empty()) {
        return false;
    }
    CFileSearch search;
    for (const std::string &folder : folders) {
        search.ResetAll();
        if (folder.empty()) {
            continue;
        }
        if (isVST2) {
            const std::string root = folder.back() == '/' ? folder : folder + '/';
            for (const char *name : EffectFolders) {
                search.SetIgnorableDirPath((root + name).c_str());
            }
            for (const char *extension : VST2Extensions) {
                search.SetSearchExtension(extension);
            }
            search.SetSearchPackageType(VST2PackageType);
        } else {
            search.SetSearchExtension(VST3Extension);
        }
        if (search.SearchFiles(folder.c_str(), 0, true)) {
            storeBelow(folder, search, found, isVST2);
        }
    }
    return true;
}

bool CVSTiPathFinder::StoreFilePath(const CFileSearch &search, std::vector<std::string> *found,
                                    bool isVST2)
{
    return storeBelow("/", search, found, isVST2);
}

bool CVSTiPathFinder::storeBelow(const std::string &root, const CFileSearch &search,
                                 std::vector<std::string> *found, bool isVST2)
{
    if (found == nullptr) {
        return false;
    }
    Names names = namesOf(*found);
    std::vector<int> rows;
    if (isVST2) {
        for (const char *extension : VST2Extensions) {
            rows.push_back(search.GetKeywordIndex(extension, true));
        }
        rows.push_back(search.GetKeywordIndex(VST2PackageType, false));
    } else {
        rows.push_back(search.GetKeywordIndex(VST3Extension, true));
    }
    for (const int row : rows) {
        if (row < 0) {
            return false;
        }
        const auto index = static_cast<unsigned>(row);
        std::string extension;
        const bool isPartOfBundles =
            search.GetSearchExtension(index, &extension) && extension == SharedObjectExtension;
        for (unsigned i = 0; i < search.GetNumberOfPaths(index); ++i) {
            const std::string path = search.GetPath(index, i);
            // A shared object in a bundle is not a plug-in of its own, whatever is known of the
            // bundle by now.
            if (isPartOfBundles && isInBundle(path, root.size())) {
                continue;
            }
            if (!IsIgnorable(path) && CheckNotSynthList(path)) {
                appendNew(path, found, &names);
            }
        }
    }
    return true;
}

bool CVSTiPathFinder::IsIgnorable(const std::string &path) const
{
    std::string fileName;
    return !fileNameOf(path, &fileName) || std::find(ignorableVSTis.begin(), ignorableVSTis.end(),
                                                     fileName) != ignorableVSTis.end();
}

void CVSTiPathFinder::AddPath(const std::string &path, std::vector<std::string> *found)
{
    if (found != nullptr) {
        Names names = namesOf(*found);
        appendNew(path, found, &names);
    }
}

// --- The list of what is no instrument -----------------------------------------------------------

bool CVSTiPathFinder::CheckNotSynthList(const std::string &path) const
{
    std::string fileName;
    if (!fileNameOf(path, &fileName)) {
        return false;
    }
    readNotSynthList();
    return m_notSynths.count(fileName) == 0;
}

bool CVSTiPathFinder::AddNotSynthList(const std::string &path) const
{
    std::string fileName;
    if (notSynthListPath.empty() || !fileNameOf(path, &fileName) || fileName.empty()) {
        return false;
    }
    // Two lines would be two other names.
    if (fileName.find('\n') != std::string::npos) {
        return true;
    }
    // Opening a pipe could wait for ever.
    std::error_code error;
    if (std::filesystem::exists(notSynthListPath, error) &&
        !std::filesystem::is_regular_file(notSynthListPath, error)) {
        return true;
    }
    // A list that was cut off must not make one line of two.
    std::ifstream list(notSynthListPath, std::ios::binary | std::ios::ate);
    if (list && list.tellg() > 0 && list.seekg(-1, std::ios::end) && list.get() != '\n') {
        fileName.insert(0, 1, '\n');
    }
    list.close();
    std::ofstream(notSynthListPath, std::ios::binary | std::ios::app) << fileName << '\n';
    return true;
}

void CVSTiPathFinder::readNotSynthList() const
{
    namespace fs = std::filesystem;
    std::error_code error;
    const bool isFile = !notSynthListPath.empty() && fs::is_regular_file(notSynthListPath, error);
    const std::uintmax_t bytes = isFile ? fs::file_size(notSynthListPath, error) : 0;
    const std::int64_t time =
        isFile ? fs::last_write_time(notSynthListPath, error).time_since_epoch().count() : 0;
    if (bytes == m_listBytes && time == m_listTime) {
        return;
    }
    m_notSynths.clear();
    m_listBytes = bytes;
    m_listTime = time;
    if (!isFile) {
        return;
    }
    std::string text(static_cast<size_t>(std::min(bytes, MaximumListBytes)), '\0');
    std::ifstream list(notSynthListPath, std::ios::binary);
    list.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<size_t>(list.gcount()));
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        if (end - start <= MaximumLineBytes) {
            m_notSynths.insert(text.substr(start, end - start));
        }
        start = end + 1;
    }
}

// --- What is known by name -----------------------------------------------------------------------

std::vector<std::string> CVSTiPathFinder::GetVSTiName(const std::string &path) const
{
    std::string name;
    std::vector<std::string> names;
    if (!CFileSearch::SplitPath(&path, nullptr, &name, nullptr, false) || name.empty()) {
        return names;
    }
    for (const InstrumentNames::Row &row : InstrumentNames::Rows) {
        for (const std::string_view instrument : row.names) {
            if (row.baseName == name && !instrument.empty()) {
                names.emplace_back(instrument);
            }
        }
    }
    return names;
}
