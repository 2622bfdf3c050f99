// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <dlfcn.h>

#include <string>

// A shared object that stays loaded until unload(): there is no destructor on purpose, since a
// plug-in must not be taken down by accident.
class SharedObject
{
public:
    // Functions are bound when they are called, as in hosts: a plug-in may lack one that it never
    // uses.
    [[nodiscard]] bool load(const std::string &path);
    // Null if there is no such function.
    template <typename Function>
    [[nodiscard]] Function function(const char *name) const
    {
        return reinterpret_cast<Function>(dlsym(m_handle, name));
    }
    [[nodiscard]] void *handle() const { return m_handle; }
    void unload();

private:
    void *m_handle = nullptr;
};
