// SPDX-License-Identifier: GPL-3.0-or-later
// A small instrument to find, with its parameters in groups as a real one has them: the tests and
// the demonstration look for it. It plays one soft tone per note.
#include "Vst3Factory.h"

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstevents.h>
#include <public.sdk/source/vst/vstcomponent.h>
#include <public.sdk/source/vst/vsteditcontroller.h>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Steinberg;

namespace
{

const FUID ComponentId(0x3C0E7A51, 0x54A24B10, 0x9D1B2C60, 0x7E5A0001);
const FUID ControllerId(0x3C0E7A51, 0x54A24B10, 0x9D1B2C60, 0x7E5A0002);

struct Group
{
    Vst::UnitID id;
    Vst::UnitID parent;
    const char16_t *name;
};

constexpr std::array Groups = {
    Group{1, Vst::kRootUnitId, u"Oscillators"},
    Group{2, 1, u"Oscillator 1"},
    Group{3, 1, u"Oscillator 2"},
    Group{4, Vst::kRootUnitId, u"Filter"},
    Group{5, 4, u"Envelope"},
    Group{6, Vst::kRootUnitId, u"Amplifier"},
    Group{7, 6, u"Envelope"},
    Group{8, Vst::kRootUnitId, u"Modulation"},
    Group{9, Vst::kRootUnitId, u"Effects"},
    Group{10, 9, u"Chorus"},
    Group{11, 9, u"Delay"},
};

struct Knob
{
    Vst::ParamID id;
    Vst::UnitID group;
    const char16_t *name;
    int flags = Vst::ParameterInfo::kCanAutomate;
};

constexpr auto Switch = Vst::ParameterInfo::kCanAutomate | Vst::ParameterInfo::kIsBypass;

constexpr std::array Knobs = {
    Knob{0, Vst::kRootUnitId, u"Master Volume"},
    Knob{1, Vst::kRootUnitId, u"Glide"},
    Knob{10, 2, u"Waveform"},
    Knob{11, 2, u"Octave"},
    Knob{12, 2, u"Fine Tune"},
    Knob{13, 2, u"Level"},
    Knob{20, 3, u"Waveform"},
    Knob{21, 3, u"Octave"},
    Knob{22, 3, u"Fine Tune"},
    Knob{23, 3, u"Level"},
    Knob{30, 4, u"Cutoff"},
    Knob{31, 4, u"Resonance"},
    Knob{32, 4, u"Key Follow"},
    Knob{40, 5, u"Attack"},
    Knob{41, 5, u"Decay"},
    Knob{42, 5, u"Sustain"},
    Knob{43, 5, u"Release"},
    Knob{44, 5, u"Amount"},
    Knob{50, 6, u"Velocity"},
    Knob{60, 7, u"Attack"},
    Knob{61, 7, u"Decay"},
    Knob{62, 7, u"Sustain"},
    Knob{63, 7, u"Release"},
    Knob{70, 8, u"LFO Rate"},
    Knob{71, 8, u"LFO to Pitch"},
    Knob{72, 8, u"LFO to Cutoff"},
    Knob{80, 10, u"Rate"},
    Knob{81, 10, u"Depth"},
    Knob{90, 11, u"Time"},
    Knob{91, 11, u"Feedback"},
    Knob{92, 11, u"Mix"},
    Knob{100, Vst::kRootUnitId, u"Output Level", Vst::ParameterInfo::kIsReadOnly},
    Knob{101, Vst::kRootUnitId, u"Bypass", Switch},
};

class Controller : public Vst::EditControllerEx1
{
public:
    tresult PLUGIN_API initialize(FUnknown *context) override
    {
        const tresult result = EditControllerEx1::initialize(context);
        if (result != kResultOk) {
            return result;
        }
        for (const Group &group : Groups) {
            addUnit(new Vst::Unit(group.name, group.id, group.parent));
        }
        for (const Knob &knob : Knobs) {
            parameters.addParameter(knob.name, nullptr, knob.id == 101 ? 1 : 0,
                                    knob.id == 101 ? 0.0 : 0.5, knob.flags,
                                    static_cast<int32>(knob.id), knob.group);
        }
        return kResultOk;
    }
};

class Tone : public Vst::Component, public Vst::IAudioProcessor
{
public:
    Tone() { setControllerClass(ControllerId); }

    tresult PLUGIN_API initialize(FUnknown *context) override
    {
        const tresult result = Component::initialize(context);
        audioOutputs.push_back(
            IPtr<Vst::Bus>(new Vst::AudioBus(u"Output", Vst::kMain, Vst::BusInfo::kDefaultActive,
                                             Vst::SpeakerArr::kStereo),
                           false));
        eventInputs.push_back(IPtr<Vst::Bus>(
            new Vst::EventBus(u"Notes", Vst::kMain, Vst::BusInfo::kDefaultActive, 16), false));
        return result;
    }
    tresult PLUGIN_API setBusArrangements(Vst::SpeakerArrangement *, int32 inputs,
                                          Vst::SpeakerArrangement *outputs, int32 count) override
    {
        return inputs == 0 && count == 1 && outputs[0] == Vst::SpeakerArr::kStereo ? kResultTrue
                                                                                   : kResultFalse;
    }
    tresult PLUGIN_API getBusArrangement(Vst::BusDirection direction, int32 index,
                                         Vst::SpeakerArrangement &arrangement) override
    {
        arrangement = Vst::SpeakerArr::kStereo;
        return direction == Vst::kOutput && index == 0 ? kResultTrue : kInvalidArgument;
    }
    tresult PLUGIN_API canProcessSampleSize(int32 size) override
    {
        return size == Vst::kSample32 ? kResultTrue : kResultFalse;
    }
    uint32 PLUGIN_API getLatencySamples() override { return 0; }
    uint32 PLUGIN_API getTailSamples() override { return Vst::kNoTail; }
    tresult PLUGIN_API setupProcessing(Vst::ProcessSetup &setup) override
    {
        m_sampleRate = setup.sampleRate;
        return kResultOk;
    }
    tresult PLUGIN_API setProcessing(TBool) override { return kResultOk; }
    tresult PLUGIN_API process(Vst::ProcessData &data) override
    {
        takeNotes(data.inputEvents);
        if (data.numOutputs < 1) {
            return kResultOk;
        }
        Vst::AudioBusBuffers &output = data.outputs[0];
        for (int32 frame = 0; frame < data.numSamples; ++frame) {
            // A step would be heard as a click.
            m_level += ((m_pitch >= 0 ? 0.25 : 0.0) - m_level) * 0.002;
            const auto value = static_cast<Vst::Sample32>(std::sin(m_phase) * m_level);
            m_phase = std::fmod(m_phase + m_step, 2 * Pi);
            for (int32 channel = 0; channel < output.numChannels; ++channel) {
                output.channelBuffers32[channel][frame] = value;
            }
        }
        output.silenceFlags = 0;
        return kResultOk;
    }

    DEFINE_INTERFACES
    DEF_INTERFACE(IAudioProcessor)
    END_DEFINE_INTERFACES(Component)
    REFCOUNT_METHODS(Component)

private:
    static constexpr double Pi = 3.14159265358979323846;

    void takeNotes(Vst::IEventList *events)
    {
        const int32 count = events == nullptr ? 0 : events->getEventCount();
        for (int32 i = 0; i < count; ++i) {
            Vst::Event event = {};
            if (events->getEvent(i, event) != kResultOk) {
                continue;
            }
            if (event.type == Vst::Event::kNoteOnEvent) {
                m_pitch = event.noteOn.pitch;
                m_step = 2 * Pi * 440.0 * std::exp2((m_pitch - 69) / 12.0) / m_sampleRate;
            } else if (event.type == Vst::Event::kNoteOffEvent && event.noteOff.pitch == m_pitch) {
                m_pitch = -1;
            }
        }
    }

    double m_sampleRate = 44100.0;
    int m_pitch = -1;
    double m_phase = 0.0;
    double m_step = 0.0;
    double m_level = 0.0;
};

Vst3Class classRow(const FUID &id, const char *category, const char16_t *name,
                   const char *subCategories, FUnknown *(*make)())
{
    TUID bytes = {};
    id.toTUID(bytes);
    return {PClassInfoW(bytes, PClassInfo::kManyInstances, category, name, 0, subCategories,
                        u"Tests", u"1.0", u"VST 3.7"),
            make};
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) bool ModuleEntry(void *)
{
    return true;
}

__attribute__((visibility("default"))) bool ModuleExit()
{
    return true;
}

__attribute__((visibility("default"))) IPluginFactory *GetPluginFactory()
{
    static auto *const factory = new Vst3Factory({
        classRow(ComponentId, kVstAudioEffectClass, u"Test Instrument", "Instrument|Synth",
                 [] { return static_cast<FUnknown *>(static_cast<Vst::IComponent *>(new Tone)); }),
        classRow(ControllerId, kVstComponentControllerClass, u"Test Instrument Controller", "",
                 [] {
                     return static_cast<FUnknown *>(
                         static_cast<Vst::IEditController *>(new Controller));
                 }),
    });
    return factory;
}
}
