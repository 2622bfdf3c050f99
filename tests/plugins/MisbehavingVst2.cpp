// SPDX-License-Identifier: GPL-3.0-or-later
// A VST2 plug-in that does what its file name says: see Misbehaviour.h for the deeds, and below for
// the contents. Every other name gives an instrument with three parameters.
#include "Misbehaviour.h"

#include <fst/aeffectx.h>

#include <sys/resource.h>

#include <array>
#include <cstring>
#include <string_view>
#include <vector>

namespace
{

const LoadAndUnload whole;

constexpr std::size_t LongName = 64 * 1024;
constexpr int MillionParameters = 1000000;

// The ids of the plug-ins in the shell.
constexpr int ShellFirst = 11;
constexpr int ShellEffect = 12;
constexpr int ShellSecond = 13;

struct Plugin
{
    AEffect effect = {};
    int shellId = 0;
    std::size_t shellPosition = 0;
};

int parameterCount()
{
    if (behavesAs("no-parameters")) {
        return 0;
    }
    if (behavesAs("negative-count")) {
        return -1;
    }
    if (behavesAs("million-parameters")) {
        return MillionParameters;
    }
    if (behavesAs("endless-parameters")) {
        return 2147483647;
    }
    return 3;
}

// What the plug-in finds around itself.
std::string surroundings(int index)
{
    if (index == 0) {
        rlimit limit = {};
        getrlimit(RLIMIT_CORE, &limit);
        return limit.rlim_max < 4096 ? "no core dump" : "core dumps";
    }
    if (index == 1) {
        std::array<char, 64> target = {};
        return readlink("/proc/self/fd/1", target.data(), target.size() - 1) < 0 ? "closed"
                                                                                 : target.data();
    }
    return access("/dev/tty", F_OK) == 0 && open("/dev/tty", O_WRONLY) >= 0 ? "terminal"
                                                                            : "no terminal";
}

std::string parameterName(int index)
{
    const std::string number = std::to_string(index + 1);
    if (behavesAs("no-names")) {
        return {};
    }
    if (behavesAs("numbered-names")) {
        const std::array<std::string, 3> names = {"Param 1", "#2", "  003 "};
        return names[static_cast<std::size_t>(index)];
    }
    if (behavesAs("one-name")) {
        return index == 1 ? "Cutoff" : "";
    }
    if (behavesAs("long-names")) {
        return std::string(LongName, static_cast<char>('a' + index));
    }
    if (behavesAs("line-feeds")) {
        return "Cut\noff\r\x01" + number + "\x7F";
    }
    if (behavesAs("latin-1")) {
        return "Lautst\xE4rke " + number;
    }
    if (behavesAs("utf-8")) {
        return "Lautst\xC3\xA4rke \xE2\x99\xAF\xF0\x9D\x84\x9E " + number;
    }
    if (behavesAs("surroundings")) {
        return surroundings(index);
    }
    if (behavesAs("endless-parameters")) {
        return "Knob";
    }
    return "Knob " + number;
}

t_fstPtrInt giveText(void *to, const std::string &text)
{
    std::memcpy(to, text.c_str(), text.size() + 1);
    return 1;
}

AEffect *makePlugin(int shellId);

t_fstPtrInt shellNext(Plugin *plugin, void *name)
{
    constexpr std::array<int, 3> Ids = {ShellFirst, ShellEffect, ShellSecond};
    if (behavesAs("empty-shell")) {
        return 0;
    }
    if (plugin->shellPosition >= Ids.size()) {
        if (!behavesAs("endless-shell")) {
            return 0;
        }
        plugin->shellPosition = 0;
    }
    const int id = Ids[plugin->shellPosition++];
    giveText(name, "Listed " + std::to_string(id));
    return id;
}

t_fstPtrInt effectName(const Plugin *plugin, void *text)
{
    if (plugin->shellId == ShellFirst) {
        return giveText(text, "Shell Lead");
    }
    if (plugin->shellId != 0 || behavesAs("no-name")) {
        return 0;
    }
    if (behavesAs("blank-name")) {
        return giveText(text, " \xC2\xA0\t");
    }
    return giveText(text, behavesAs("product-name") ? "" : "Test\nVST2");
}

t_fstPtrInt dispatch(AEffect *effect, int opcode, int index, t_fstPtrInt, void *const pointer,
                     float)
{
    auto *plugin = static_cast<Plugin *>(effect->object);
    switch (opcode) {
    case effOpen:
        at("open");
        return 0;
    case effClose:
        at("close");
        delete plugin;
        return 0;
    case effGetPlugCategory:
        if (plugin->shellId == 0 && behaviour().find("shell") != std::string::npos) {
            return kPlugCategShell;
        }
        return (effect->flags & effFlagsIsSynth) != 0 ? kPlugCategSynth : kPlugCategEffect;
    case effShellGetNextPlugin:
        return shellNext(plugin, pointer);
    case effGetEffectName:
        return effectName(plugin, pointer);
    case effGetProductString:
        return behavesAs("product-name") ? giveText(pointer, "Product") : 0;
    case effGetParamName:
        at("parameters");
        return giveText(pointer, parameterName(index));
    case effGetVstVersion:
        return kVstVersion;
    default:
        return 0;
    }
}

AEffect *makePlugin(int shellId)
{
    auto *plugin = new Plugin;
    plugin->shellId = shellId;
    AEffect &effect = plugin->effect;
    effect.object = plugin;
    effect.magic = behavesAs("wrong-magic") ? 0 : kEffectMagic;
    effect.dispatcher = behavesAs("no-dispatcher") ? nullptr : &dispatch;
    effect.numParams = parameterCount();
    effect.flags = behavesAs("effect") || shellId == ShellEffect ? 0 : effFlagsIsSynth;
    return &effect;
}

} // namespace

extern "C" __attribute__((visibility("default"))) AEffect *TRN_TEST_ENTRY(audioMasterCallback host)
{
    at("instantiation");
    const auto ask = [host](int opcode) { return host(nullptr, opcode, 0, 0, nullptr, 0.0F); };
    if (behavesAs("gives-null") || ask(audioMasterVersion) != kVstVersion) {
        return nullptr;
    }
    return makePlugin(static_cast<int>(ask(audioMasterCurrentId)));
}
