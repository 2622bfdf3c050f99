// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/SharedObject.h"

#include <elf.h>
#include <link.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace
{

template <typename Record>
bool readAt(std::ifstream *file, std::uintmax_t offset, Record *record)
{
    file->seekg(static_cast<std::streamoff>(offset));
    return static_cast<bool>(file->read(reinterpret_cast<char *>(record), sizeof(Record)));
}

// The loader maps what the file's head promises, and a file that is shorter, as an interrupted copy
// leaves it, ends the process at the first touch. Everything else is for the loader to judge.
bool isCutOff(const std::string &path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    std::ifstream file(path, std::ios::binary);
    ElfW(Ehdr) head = {};
    if (error || !readAt(&file, 0, &head) || std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 ||
        head.e_phentsize != sizeof(ElfW(Phdr))) {
        return false;
    }
    for (unsigned index = 0; index < head.e_phnum; ++index) {
        ElfW(Phdr) segment = {};
        if (!readAt(&file, head.e_phoff + index * sizeof(segment), &segment)) {
            return true;
        }
        if (segment.p_type == PT_LOAD &&
            (segment.p_offset > size || segment.p_filesz > size - segment.p_offset)) {
            return true;
        }
    }
    return false;
}

} // namespace

bool SharedObject::load(const std::string &path)
{
    if (!path.empty() && !isCutOff(path)) {
        m_handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    }
    return m_handle != nullptr;
}

void SharedObject::unload()
{
    if (m_handle != nullptr) {
        dlclose(m_handle);
    }
    m_handle = nullptr;
}
