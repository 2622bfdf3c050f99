// SPDX-License-Identifier: GPL-3.0-or-later
#include "VSTiPathFinder/source/filesearch.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <dirent.h>
#include <sys/stat.h>

namespace
{

constexpr int NullEntryLine = 78;

[[noreturn]] void assertionFailed(const char *function, int line)
{
    std::fprintf(stderr,
                 "Assertion failed: (false), function %s, file VSTiPathFinder/source/filesearch, "
                 "line %d.\n",
                 function, line);
    std::abort();
}

bool startsWith(const std::string &text, const std::string &start)
{
    return text.compare(0, start.size(), start) == 0;
}

// What is neither file nor folder, as a pipe, is nothing: whoever opened it would wait.
enum class Kind { Nothing, File, Folder };

Kind kindOf(const std::string &path, struct stat *status)
{
    if (::stat(path.c_str(), status) != 0) {
        return Kind::Nothing;
    }
    return S_ISDIR(status->st_mode)   ? Kind::Folder
           : S_ISREG(status->st_mode) ? Kind::File
                                      : Kind::Nothing;
}

struct Entry
{
    std::string path;
    bool isFile; // true: the listing itself says so, and the file need not be asked
};

// All entries, hidden ones too, in the order of the file system. They are taken before any of them
// is looked at, so that no folder stays open on the way down. dir ends in "/". False if there is no
// listing.
bool list(const std::string &dir, std::vector<Entry> *entries)
{
    DIR *const folder = ::opendir(dir.c_str());
    if (folder == nullptr) {
        return false;
    }
    while (const dirent *entry = ::readdir(folder)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            entries->push_back({dir + entry->d_name, entry->d_type == DT_REG});
        }
    }
    ::closedir(folder);
    return true;
}

// Where the dot of a file name's extension stands; npos if it has none.
size_t extensionStart(std::string_view file)
{
    const size_t dot = file.rfind('.');
    const bool hasExtension = dot != std::string_view::npos && dot > 0 && dot + 1 < file.size();
    return hasExtension ? dot : std::string_view::npos;
}

} // namespace

// A folder is open for as long as one of these lives.
class CFileSearch::OpenFolder
{
public:
    OpenFolder(std::vector<FolderId> *folders, const FolderId &folder)
        : m_folders(folders)
    {
        m_folders->push_back(folder);
    }
    ~OpenFolder() { m_folders->pop_back(); }
    OpenFolder(const OpenFolder &) = delete;
    OpenFolder &operator=(const OpenFolder &) = delete;

private:
    std::vector<FolderId> *m_folders;
};

CFileSearch::~CFileSearch() = default;

// --- Keywords and paths to ignore ----------------------------------------------------------------

const CFileSearch::SKeywordAndPaths *CFileSearch::rowOf(unsigned index) const
{
    return index < keywords.size() ? &keywords[index] : nullptr;
}

unsigned CFileSearch::GetNumberOfSearchKeywords() const
{
    return static_cast<unsigned>(keywords.size());
}

bool CFileSearch::SetSearchExtension(const char *extension)
{
    if (extension == nullptr || GetKeywordIndex(extension, true) >= 0) {
        return false;
    }
    SKeywordAndPaths row;
    row.keyword = extension[0] == '.' ? extension + 1 : extension;
    MakeStringAllLower(&row.keyword);
    keywords.push_back(std::move(row));
    return true;
}

bool CFileSearch::GetSearchExtension(unsigned index, std::string *extension) const
{
    const SKeywordAndPaths *row = rowOf(index);
    if (row == nullptr || !row->isExtension || extension == nullptr) {
        return false;
    }
    *extension = row->keyword;
    return true;
}

bool CFileSearch::SetSearchPackageType(const char *type)
{
    if (type == nullptr || GetKeywordIndex(type, false) >= 0) {
        return false;
    }
    SKeywordAndPaths row;
    row.keyword = type;
    row.isExtension = false;
    keywords.push_back(std::move(row));
    return true;
}

bool CFileSearch::GetSearchPackageType(unsigned index, std::string *type) const
{
    const SKeywordAndPaths *row = rowOf(index);
    if (row == nullptr || row->isExtension || type == nullptr) {
        return false;
    }
    *type = row->keyword;
    return true;
}

bool CFileSearch::RemoveSearchKeywordAndPaths(unsigned index)
{
    if (index >= keywords.size()) {
        return false;
    }
    keywords.erase(keywords.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

int CFileSearch::GetKeywordIndex(const char *keyword, bool isExtension) const
{
    if (keyword == nullptr) {
        return -1;
    }
    std::string wanted = isExtension && keyword[0] == '.' ? keyword + 1 : keyword;
    if (isExtension) {
        MakeStringAllLower(&wanted);
    }
    const auto found =
        std::find_if(keywords.begin(), keywords.end(), [&](const SKeywordAndPaths &row) {
            return row.isExtension == isExtension && row.keyword == wanted;
        });
    return found == keywords.end() ? -1 : static_cast<int>(found - keywords.begin());
}

unsigned CFileSearch::GetNumberOfIgnorableDirPaths() const
{
    return static_cast<unsigned>(ignorableDirPaths.size());
}

bool CFileSearch::SetIgnorableDirPath(const char *path)
{
    if (path == nullptr || path[0] == '\0') {
        return false;
    }
    std::string text = path;
    if (text.back() == '/') {
        text.pop_back();
    }
    ignorableDirPaths.push_back(std::move(text));
    return true;
}

bool CFileSearch::GetIgnorableDirPath(unsigned index, std::string *path) const
{
    if (index >= ignorableDirPaths.size() || path == nullptr) {
        return false;
    }
    *path = ignorableDirPaths[index];
    return true;
}

bool CFileSearch::RemoveIgnorableDirPath(unsigned index)
{
    if (index >= ignorableDirPaths.size()) {
        return false;
    }
    ignorableDirPaths.erase(ignorableDirPaths.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

void CFileSearch::ResetAll()
{
    keywords.clear();
    ignorableDirPaths.clear();
}

// --- What was found ------------------------------------------------------------------------------

unsigned CFileSearch::GetNumberOfPaths(unsigned index) const
{
    const SKeywordAndPaths *row = rowOf(index);
    return row == nullptr ? 0 : static_cast<unsigned>(row->paths.size());
}

bool CFileSearch::GetPath(unsigned index, unsigned pathIndex, std::string *path) const
{
    if (pathIndex >= GetNumberOfPaths(index) || path == nullptr) {
        return false;
    }
    *path = keywords[index].paths[pathIndex];
    return true;
}

std::string CFileSearch::GetPath(unsigned index, unsigned pathIndex) const
{
    std::string path;
    GetPath(index, pathIndex, &path);
    return path;
}

void CFileSearch::AddPath(const std::string &path, const char *packageType, bool uniqueFileName)
{
    const std::string_view file = std::string_view(path).substr(path.rfind('/') + 1);
    const size_t dot = extensionStart(file);
    std::string extension(dot == std::string_view::npos ? std::string_view()
                                                        : file.substr(dot + 1));
    MakeStringAllLower(&extension);
    for (SKeywordAndPaths &row : keywords) {
        const bool fits = row.isExtension ? row.keyword == extension
                                          : packageType != nullptr && row.keyword == packageType;
        // Few paths fit, and only those are worth being taken apart.
        std::string name;
        if (fits && SplitPath(&path, nullptr, &name, nullptr, false) &&
            (row.names.insert(name).second || !uniqueFileName)) {
            row.paths.push_back(path);
        }
    }
}

// --- The walk ------------------------------------------------------------------------------------

bool CFileSearch::IsOKToKeepSearching(const char *path, long depth) const
{
    size_t found = 0;
    for (const SKeywordAndPaths &row : keywords) {
        found += row.paths.size();
    }
    return depth <= MaximumDepth && std::strlen(path) <= MaximumPathBytes && found < MaximumPaths;
}

bool CFileSearch::SearchFiles(const char *dir, long depth, bool uniqueFileName)
{
    if (dir == nullptr || dir[0] == '\0') {
        return false;
    }
    if (!IsOKToKeepSearching(dir, depth)) {
        return true;
    }
    return walkFolder(dir, depth, uniqueFileName);
}

bool CFileSearch::walkFolder(const std::string &dir, long depth, bool uniqueFileName)
{
    struct stat status = {};
    if (kindOf(dir, &status) != Kind::Folder) {
        return false;
    }
    if (m_openFolders.empty()) {
        m_walkedFolders.clear();
    }
    const FolderId id(status.st_dev, status.st_ino);
    if (std::find(m_openFolders.begin(), m_openFolders.end(), id) != m_openFolders.end()) {
        return true;
    }
    // Links that meet again further down multiply the ways to a folder from level to level. A
    // second walk through it would find the names of the first.
    if (uniqueFileName) {
        const auto walked = m_walkedFolders.find(id);
        if (walked != m_walkedFolders.end() && walked->second <= depth) {
            return true;
        }
        if (!hidesPathsBelow(dir)) {
            m_walkedFolders[id] = depth;
        }
    }
    std::vector<Entry> entries;
    if (!list(dir.back() == '/' ? dir : dir + '/', &entries)) {
        return false;
    }
    const OpenFolder open(&m_openFolders, id);
    for (const Entry &entry : entries) {
        searchEntry(entry.path, entry.isFile, depth, uniqueFileName);
    }
    return true;
}

bool CFileSearch::hidesPathsBelow(const std::string &dir) const
{
    return std::any_of(ignorableDirPaths.begin(), ignorableDirPaths.end(),
                       [&dir](const std::string &path) { return startsWith(path, dir); });
}

void CFileSearch::SearchSubDirAndFile(const char *path, long depth, bool uniqueFileName)
{
    if (path == nullptr) {
        assertionFailed("SearchSubDirAndFile", NullEntryLine);
    }
    searchEntry(path, false, depth, uniqueFileName);
}

void CFileSearch::searchEntry(const std::string &path, bool isFile, long depth, bool uniqueFileName)
{
    if (!IsOKToKeepSearching(path.c_str(), depth) ||
        std::find(ignorableDirPaths.begin(), ignorableDirPaths.end(), path) !=
            ignorableDirPaths.end()) {
        return;
    }
    struct stat status = {};
    const Kind kind = isFile ? Kind::File : kindOf(path, &status);
    if (kind == Kind::Nothing) {
        return;
    }
    AddPath(path, nullptr, uniqueFileName);
    if (kind == Kind::Folder) {
        SearchFiles(path.c_str(), depth + 1, uniqueFileName);
    }
}

// --- Texts ---------------------------------------------------------------------------------------

bool CFileSearch::SplitPath(const std::string *path, std::string *dir, std::string *name,
                            std::string *ext, bool noDirectory)
{
    // The path may be one of the results.
    const std::string text = path == nullptr ? std::string() : *path;
    for (std::string *result : {dir, name, ext}) {
        if (result != nullptr) {
            result->clear();
        }
    }
    if (text.empty()) {
        return false;
    }
    size_t start = 0;
    if (!noDirectory) {
        const size_t slash = text.rfind('/');
        if ((text[0] != '/' && text[0] != ':') || slash == std::string::npos) {
            return false;
        }
        start = slash + 1;
        if (dir != nullptr) {
            *dir = text.substr(0, start);
        }
    }
    const std::string file = text.substr(start);
    const size_t dot = extensionStart(file);
    const bool hasExtension = dot != std::string::npos;
    if (name != nullptr) {
        *name = hasExtension ? file.substr(0, dot) : file;
    }
    if (ext != nullptr && hasExtension) {
        *ext = file.substr(dot);
    }
    return true;
}

bool CFileSearch::GetDirectoryName(const std::string *path, std::string *name)
{
    std::string dir;
    if (name == nullptr || !SplitPath(path, &dir, nullptr, nullptr, false)) {
        return false;
    }
    dir.pop_back();
    const size_t slash = dir.rfind('/');
    if (slash == std::string::npos) {
        return false;
    }
    *name = dir.substr(slash + 1);
    return true;
}

void CFileSearch::MakeStringAllLower(std::string *text) const
{
    if (text == nullptr ||
        std::any_of(text->begin(), text->end(), [](char byte) { return (byte & 0x80) != 0; })) {
        return;
    }
    for (char &letter : *text) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
}
