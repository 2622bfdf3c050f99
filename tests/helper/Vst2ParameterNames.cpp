// SPDX-License-Identifier: GPL-3.0-or-later
// Asks one VST2 plug-in for its parameters in the plainest way there is, for the tests to compare:
// its flag for instruments, the number of parameters, and each name, one per line.
#include <fst/aeffectx.h>

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <cstdio>

namespace
{

t_fstPtrInt host(AEffect *, int opcode, int, t_fstPtrInt, void *const, float)
{
    if (opcode == audioMasterVersion) {
        return 2400;
    }
    if (opcode == audioMasterGetSampleRate) {
        return 48000;
    }
    return opcode == audioMasterGetBlockSize ? 256 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    void *object = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
    if (object == nullptr) {
        return 1;
    }
    using Entry = AEffect *(*)(audioMasterCallback);
    void *entry = dlsym(object, "VSTPluginMain");
    if (entry == nullptr) {
        entry = dlsym(object, "main");
    }
    AEffect *effect = entry == nullptr ? nullptr : reinterpret_cast<Entry>(entry)(&host);
    if (effect == nullptr) {
        return 1;
    }
    effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0.0F);
    std::printf("%d\n%d\n", (effect->flags & effFlagsIsSynth) != 0 ? 1 : 0, effect->numParams);
    for (int i = 0; i < effect->numParams; ++i) {
        std::array<char, 4096> name = {};
        effect->dispatcher(effect, effGetParamName, i, 0, name.data(), 0.0F);
        std::printf("%s\n", name.data());
    }
    std::fflush(stdout);
    // How it would end is not asked.
    _exit(0);
}
