// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

class CFileSearch;

// Finds the plug-in files that a scan has to examine: those on the search path that are neither
// known nor on the list of files that turned out to be no instruments. It keeps that list, and
// knows some plug-ins by their file names alone. Paths are bytes as the file system has them.
//
// Thread: a scan's. No other writes the list meanwhile. Nothing here fails aloud: a list that
// cannot be read excludes nothing, and what cannot be written is examined again by the next scan.
class CVSTiPathFinder
{
public:
    // Beyond, what the list excludes is examined again. There is room for a million files.
    static constexpr std::uintmax_t MaximumListBytes = 16 * 1024 * 1024;

    // The folder of the list; empty: there is none.
    explicit CVSTiPathFinder(const std::string &folder);

    // File names with extension that need no examination, wherever they lie.
    void SetIgnorableVSTis(const std::vector<std::string> &names);

    // Appends what lies below the folders, in their order; of files that differ in folder and
    // extension only, the first counts. A folder with too much in it contributes what CFileSearch
    // takes. False without folders.
    bool SearchAllFiles(const std::vector<std::string> &folders, std::vector<std::string> *found,
                        bool isVST2);
    // The results of one search, keyword by keyword, but for the shared objects in bundles. False
    // if it did not ask for all of them.
    bool StoreFilePath(const CFileSearch &search, std::vector<std::string> *found, bool isVST2);
    bool IsIgnorable(const std::string &path) const;
    // True if the file is not on the list.
    bool CheckNotSynthList(const std::string &path) const;
    // Unless a file of that name, whatever its extension, is there already.
    void AddPath(const std::string &path, std::vector<std::string> *found);
    // Appends the file's name to the list, whether or not it stands there. False only if there is
    // no list or the path has no name.
    bool AddNotSynthList(const std::string &path) const;

    // The instruments that the file is known to hold by its name alone, mostly one; none if it is
    // not known.
    std::vector<std::string> GetVSTiName(const std::string &path) const;

private:
    // The root may itself lie in what is named as a bundle.
    bool storeBelow(const std::string &root, const CFileSearch &search,
                    std::vector<std::string> *found, bool isVST2);
    void readNotSynthList() const;

    std::string notSynthListPath; // empty: no list
    std::vector<std::string> ignorableVSTis;

    // The lines of the list while its file is as it was when they were read.
    mutable std::unordered_set<std::string> m_notSynths;
    mutable std::uintmax_t m_listBytes = 0;
    mutable std::int64_t m_listTime = 0;
};
