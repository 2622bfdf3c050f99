// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "helper/PluginSession.h"
#include "helper/SharedObject.h"

#include <fst/aeffectx.h>

#include <vector>

// A VST2 plug-in: one effect, or a shell that holds many. Its parameters have no groups: the
// headers know names of parameters and nothing of their categories.
class Vst2Session : public PluginSession
{
public:
    explicit Vst2Session(PluginFile file);

    [[nodiscard]] HelperExit question(PluginAnswer *answer) override;
    void tearDown() override;

private:
    using Entry = AEffect *(*)(audioMasterCallback);

    // Null if the plug-in would not. `id` chooses one of a shell's, and is 0 otherwise.
    AEffect *create(int id);
    void questionShell(AEffect *shell, PluginAnswer *answer);
    // `listedName` is the name that a shell gave it.
    void questionEffect(AEffect *effect, const std::string &listedName, PluginAnswer *answer);
    [[nodiscard]] std::string nameOf(AEffect *effect, const std::string &listedName);
    // What the plug-in writes for an opcode that asks for text.
    [[nodiscard]] std::string text(AEffect *effect, int opcode, int index = 0);

    PluginFile m_file;
    SharedObject m_object;
    Entry m_entry = nullptr;
    std::vector<AEffect *> m_effects;
    std::vector<char> m_text;
};
