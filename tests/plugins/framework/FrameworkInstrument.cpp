// SPDX-License-Identifier: GPL-3.0-or-later
// An instrument on a framework that many real ones stand on: what it reports through VST3 is that
// framework's reading of the interface.
#include <juce_audio_processors/juce_audio_processors.h>

namespace
{

using Group = juce::AudioProcessorParameterGroup;

std::unique_ptr<juce::AudioParameterFloat> knob(const char *id, const juce::String &name)
{
    return std::make_unique<juce::AudioParameterFloat>(juce::ParameterID(id, 1), name, 0.0F, 1.0F,
                                                       0.5F);
}

class Instrument : public juce::AudioProcessor
{
public:
    Instrument()
        : AudioProcessor(BusesProperties().withOutput("Output", juce::AudioChannelSet::stereo()))
    {
        addParameter(knob("volume", "Volume").release());
        auto envelope = std::make_unique<Group>("envelope", "Envelope", "|");
        envelope->addChild(knob("attack", "Attack"), knob("release", "Release"));
        auto filter = std::make_unique<Group>("filter", "Filter", "|");
        filter->addChild(knob("cutoff", "Cutoff"));
        filter->addChild(std::make_unique<juce::AudioParameterChoice>(
            juce::ParameterID("type", 1), "Type", juce::StringArray("Low", "Band", "High"), 0));
        filter->addChild(std::move(envelope));
        addParameterGroup(std::move(filter));
        auto foreign = std::make_unique<Group>(
            "foreign", juce::String::fromUTF8("\xD0\x93\xD1\x80\xD1\x83\xD0\xBF\xD0\xBF\xD0\xB0"),
            "|");
        foreign->addChild(knob("sharp", juce::String::fromUTF8("\xE2\x99\xAF Detune")));
        addParameterGroup(std::move(foreign));
        addParameter(new juce::AudioParameterBool(juce::ParameterID("mono", 1), "Mono", false));
    }

    const juce::String getName() const override { return JucePlugin_Name; }
    void prepareToPlay(double, int) override {}
    void releaseResources() override {}
    void processBlock(juce::AudioBuffer<float> &buffer, juce::MidiBuffer &) override
    {
        buffer.clear();
    }
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    bool hasEditor() const override { return false; }
    juce::AudioProcessorEditor *createEditor() override { return nullptr; }
    // More than one, so that there is a parameter that changes programs.
    int getNumPrograms() override { return 3; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram(int) override {}
    const juce::String getProgramName(int index) override { return juce::String(index); }
    void changeProgramName(int, const juce::String &) override {}
    void getStateInformation(juce::MemoryBlock &block) override { block.append("state", 5); }
    void setStateInformation(const void *, int) override {}
};

} // namespace

juce::AudioProcessor *JUCE_CALLTYPE createPluginFilter()
{
    return new Instrument;
}
