// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/Vst2Session.h"

#include "helper/PlainText.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string_view>
#include <utility>

namespace
{

constexpr float SampleRate = 44100.0F;
constexpr int BlockSize = 512;
// The format grants a parameter's name 8 bytes, and many plug-ins write as many as they like.
constexpr std::size_t RoomForText = 1024 * 1024;
// More than any shell holds; one that never ends its list ends here.
constexpr std::size_t MaximumShellPlugins = 4096;

// A plug-in asks from its entry, before there is anything to ask for, and from threads of its own.
std::atomic<int> currentId{0};

// How much room there is a plug-in doesn't say; the format grants 64 bytes.
template <std::size_t size>
t_fstPtrInt copyText(void *to, const char (&text)[size])
{
    static_assert(size <= 64);
    std::memcpy(to, text, size);
    return 1;
}

// Texts and answers that a plug-in asks of its host. What is unknown is answered by 0.
t_fstPtrInt host(AEffect *, int opcode, int, t_fstPtrInt, void *const pointer, float)
{
    switch (opcode) {
    case audioMasterVersion:
        return kVstVersion;
    case audioMasterCurrentId:
        return currentId;
    case audioMasterGetSampleRate:
        return static_cast<t_fstPtrInt>(SampleRate);
    case audioMasterGetBlockSize:
        return BlockSize;
    case audioMasterGetVendorString:
        return pointer == nullptr ? 0 : copyText(pointer, "Corvan");
    case audioMasterGetProductString:
        return pointer == nullptr ? 0 : copyText(pointer, "TARN/TERN Remote Editor");
    case audioMasterGetVendorVersion:
        return 1000;
    case audioMasterCanDo: {
        if (pointer == nullptr) {
            return 0;
        }
        const std::string_view ability(static_cast<const char *>(pointer));
        return ability == "shellCategory" || ability == "supplyIdle" ? 1 : 0;
    }
    default:
        return 0;
    }
}

t_fstPtrInt dispatch(AEffect *effect, int opcode, int index = 0, t_fstPtrInt value = 0,
                     void *pointer = nullptr, float number = 0.0F)
{
    return effect->dispatcher(effect, opcode, index, value, pointer, number);
}

} // namespace

Vst2Session::Vst2Session(PluginFile file)
    : m_file(std::move(file))
    , m_text(RoomForText)
{
}

HelperExit Vst2Session::question(PluginAnswer *answer)
{
    if (!m_object.load(m_file.binary)) {
        return HelperExit::CannotLoad;
    }
    // The second name is that of the format's first years.
    m_entry = m_object.function<Entry>("VSTPluginMain");
    if (m_entry == nullptr) {
        m_entry = m_object.function<Entry>("main");
    }
    if (m_entry == nullptr) {
        return HelperExit::NoEntry;
    }
    AEffect *effect = create(0);
    if (effect == nullptr) {
        return HelperExit::WouldNotInitialise;
    }
    try {
        if (dispatch(effect, effGetPlugCategory) == kPlugCategShell) {
            questionShell(effect, answer);
        } else {
            questionEffect(effect, {}, answer);
        }
    } catch (...) {
        answer->addFailure(HelperExit::WouldNotGiveParameters);
    }
    return answer->exitCode();
}

AEffect *Vst2Session::create(int id)
{
    try {
        currentId = id;
        AEffect *effect = m_entry(&host);
        if (effect == nullptr || effect->magic != kEffectMagic || effect->dispatcher == nullptr) {
            return nullptr;
        }
        dispatch(effect, effOpen);
        dispatch(effect, effSetSampleRate, 0, 0, nullptr, SampleRate);
        dispatch(effect, effSetBlockSize, 0, BlockSize);
        m_effects.push_back(effect);
        return effect;
    } catch (...) {
        return nullptr;
    }
}

void Vst2Session::questionShell(AEffect *shell, PluginAnswer *answer)
{
    std::vector<std::pair<int, std::string>> listed;
    while (listed.size() < MaximumShellPlugins) {
        m_text.front() = '\0';
        const int id =
            static_cast<int>(dispatch(shell, effShellGetNextPlugin, 0, 0, m_text.data()));
        // A list that comes back to its start would never end.
        const bool isKnown = std::any_of(listed.begin(), listed.end(),
                                         [id](const auto &plugin) { return plugin.first == id; });
        if (id == 0 || isKnown) {
            break;
        }
        listed.emplace_back(id,
                            lineFromBytes({m_text.data(), strnlen(m_text.data(), RoomForText)}));
    }
    for (const auto &[id, name] : listed) {
        AEffect *effect = create(id);
        if (effect == nullptr) {
            answer->addFailure(HelperExit::WouldNotInitialise);
        } else {
            questionEffect(effect, name, answer);
        }
    }
}

void Vst2Session::questionEffect(AEffect *effect, const std::string &listedName,
                                 PluginAnswer *answer)
{
    if ((effect->flags & effFlagsIsSynth) == 0) {
        answer->addFailure(HelperExit::NoInstrument);
        return;
    }
    try {
        const int count = effect->numParams;
        if (count < 0) {
            answer->addFailure(HelperExit::WouldNotGiveParameters);
            return;
        }
        InstrumentRecord record(nameOf(effect, listedName));
        for (int index = 0; index < count; ++index) {
            record.addParameter(index, text(effect, effGetParamName, index), {});
            if (record.size() > PluginAnswer::MaximumBytes) {
                answer->addFailure(HelperExit::WouldNotGiveParameters);
                return;
            }
        }
        answer->addInstrument(std::move(record));
    } catch (...) {
        answer->addFailure(HelperExit::WouldNotGiveParameters);
    }
}

std::string Vst2Session::nameOf(AEffect *effect, const std::string &listedName)
{
    for (const std::string &name :
         {text(effect, effGetEffectName), text(effect, effGetProductString), listedName,
          lineFromBytes(m_file.baseName)}) {
        if (!isBlank(name)) {
            return name;
        }
    }
    return "Unnamed";
}

std::string Vst2Session::text(AEffect *effect, int opcode, int index)
{
    m_text.front() = '\0';
    dispatch(effect, opcode, index, 0, m_text.data());
    return lineFromBytes({m_text.data(), strnlen(m_text.data(), m_text.size())});
}

void Vst2Session::tearDown()
{
    // The shell was made first and goes last.
    while (!m_effects.empty()) {
        AEffect *effect = m_effects.back();
        m_effects.pop_back();
        dispatch(effect, effClose);
    }
    m_object.unload();
}
