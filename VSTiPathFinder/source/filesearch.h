// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

// Walks through folders and collects the paths whose extension is asked for, by keyword. Paths are
// bytes, of any kind, as the file system has them; all results are in the order of its listings.
//
// The walk ends quietly where it would cost too much: below 20 levels, beyond 1023 bytes of a path,
// with 1024 paths collected. A folder that stands open on the way down is not entered again, so
// that a link to a folder further up costs nothing.
//
// Thread: any one at a time. Pointers to results may be null unless told otherwise; functions that
// return bool then give false. Indices out of range give false, an empty text or 0.
class CFileSearch
{
public:
    struct SKeywordAndPaths
    {
        std::string keyword;     // an extension without dot in lower case, or a package type
        bool isExtension = true; // false: a package type
        std::vector<std::string> paths;
        std::unordered_set<std::string> names; // of the paths, without folder and extension
    };

    static constexpr long MaximumDepth = 19;
    static constexpr size_t MaximumPathBytes = 1023;
    static constexpr size_t MaximumPaths = 1024;

    CFileSearch() = default;
    virtual ~CFileSearch();
    CFileSearch(const CFileSearch &) = delete;
    CFileSearch &operator=(const CFileSearch &) = delete;

    unsigned GetNumberOfSearchKeywords() const;
    // With or without a dot in front, in any case. False if it is registered already.
    bool SetSearchExtension(const char *extension);
    bool GetSearchExtension(unsigned index, std::string *extension) const;
    // Taken as it is. False if it is registered already.
    bool SetSearchPackageType(const char *type);
    bool GetSearchPackageType(unsigned index, std::string *type) const;
    // Later ones move up.
    bool RemoveSearchKeywordAndPaths(unsigned index);
    // -1 if there is none of that kind.
    int GetKeywordIndex(const char *keyword, bool isExtension) const;

    // A full path that is neither collected nor entered.
    unsigned GetNumberOfIgnorableDirPaths() const;
    bool SetIgnorableDirPath(const char *path);
    bool GetIgnorableDirPath(unsigned index, std::string *path) const;
    bool RemoveIgnorableDirPath(unsigned index);

    // Keywords, what was found, and paths to ignore.
    void ResetAll();

    unsigned GetNumberOfPaths(unsigned index) const;
    bool GetPath(unsigned index, unsigned pathIndex, std::string *path) const;
    std::string GetPath(unsigned index, unsigned pathIndex) const;

    // Whether the limits leave room. The path must not be null.
    bool IsOKToKeepSearching(const char *path, long depth) const;
    // Walks through a folder; depth counts the folders that it lies in, from 0. uniqueFileName: of
    // files that differ in folder and extension only, the first of each keyword counts. False if it
    // is no folder or cannot be listed; true where a limit ends the walk.
    bool SearchFiles(const char *dir, long depth, bool uniqueFileName);
    // Collects an entry of a folder, and walks through it if it is a folder itself: bundles are
    // folders. A null path stops the program.
    void SearchSubDirAndFile(const char *path, long depth, bool uniqueFileName);
    // Collects a path under all keywords that fit. packageType: null if it is not known.
    void AddPath(const std::string &path, const char *packageType, bool uniqueFileName);

    // Into folder with its "/", name, and extension with its dot; any of them may be null. A file
    // name that has no dot but its first is all name. False, with all empty, for an empty path and
    // for one that is not absolute; noDirectory: for a file name alone, false only if it is empty.
    static bool SplitPath(const std::string *path, std::string *dir, std::string *name,
                          std::string *ext, bool noDirectory);
    // The name of the folder that a path lies in; false if that is the root.
    static bool GetDirectoryName(const std::string *path, std::string *name);
    // ASCII letters only; a text with any other byte stays as it is.
    void MakeStringAllLower(std::string *text) const;

private:
    using FolderId = std::pair<unsigned long long, unsigned long long>; // device and inode
    class OpenFolder;

    const SKeywordAndPaths *rowOf(unsigned index) const;
    // isFile: true if that is known; otherwise it is found out.
    void searchEntry(const std::string &path, bool isFile, long depth, bool uniqueFileName);
    bool walkFolder(const std::string &dir, long depth, bool uniqueFileName);
    bool hidesPathsBelow(const std::string &dir) const;

    std::vector<SKeywordAndPaths> keywords; // in the order of registration
    std::vector<std::string> ignorableDirPaths;
    std::vector<FolderId> m_openFolders; // on the way down
    // Where a folder that links lead to again and again would yield nothing new: the smallest depth
    // at which it was walked through.
    std::map<FolderId, long> m_walkedFolders;
};
