// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <string_view>

// Instruments that are known by the names of their files, for plug-ins that cannot be questioned:
// some refuse to load outside of a host, some hang, some report nothing of use. Their parameters
// come from VSTiPreset.xml, which names none that is not here.
namespace InstrumentNames
{

struct Row
{
    std::string_view baseName; // of the file, without folder and extension; exactly so
    std::array<std::string_view, 3> names;
};

constexpr Row plain(std::string_view name)
{
    return {name, {name}};
}

// No base name stands twice.
inline constexpr std::array<Row, 62> Rows = {{
    // This keyboard's own, and those that come with its makers' DAWs. One file holds the three
    // small ones; its smaller editions hold the first of them alone.
    {"TARN_TERN", {"TARN/TERN VST"}},
    plain("Orskvale"),
    plain("Tamberline"),
    {"Brandholm Instruments", {"Penwick", "Sorrelby", "Thornmoor"}},
    {"Brandholm Instruments AI", {"Penwick"}},
    {"Brandholm Instruments LE", {"Penwick"}},
    // Files that are named after their format.
    {"Obxd_x64", {"Obxd"}},
    {"TAL-NoiseMaker VST OSX", {"TAL-NoiseMaker"}},
    {"ZynAddSubFX VST OSX", {"ZynAddSubFX"}},
    {"mdaEPiano_VST2Carbon", {"mdaEPiano"}},
    {"mdaPiano_VST2Carbon", {"mdaPiano"}},
    plain("ADLplug"),
    plain("ADLplug-OPN2"),
    plain("B-Step"),
    plain("BespokeSynth"),
    plain("Camomile"),
    plain("CardinalSynth"),
    plain("Dexed"),
    plain("Digits"),
    plain("DrumGizmo"),
    plain("FB-3100"),
    plain("Geonkick"),
    plain("Helm"),
    plain("JuceOPL"),
    plain("Kars"),
    plain("Monique"),
    plain("Nekobi"),
    plain("Ninjas2"),
    plain("OPNplug"),
    plain("Obxd"),
    plain("Odin2"),
    plain("Organ"),
    plain("PAPU"),
    plain("RP2A03"),
    plain("SID"),
    plain("SN76489"),
    plain("Shortcircuit XT"),
    plain("Six Sines"),
    plain("Surge"),
    plain("Surge XT"),
    plain("TAL-BassLine"),
    plain("TAL-Elek7ro"),
    plain("TAL-NoiseMaker"),
    plain("Tunefish4"),
    plain("Vex"),
    plain("Vital"),
    plain("Vitalium"),
    plain("Wolpertinger"),
    plain("Zyn-Fusion"),
    plain("ZynAddSubFX"),
    plain("amsynth"),
    plain("amsynth_vst"),
    plain("firefly_synth"),
    plain("mdaDX10"),
    plain("mdaEPiano"),
    plain("mdaJX10"),
    plain("mdaPiano"),
    plain("oxefmsynth"),
    plain("plugdata"),
    plain("sfizz"),
    plain("stochas"),
    plain("synister"),
}};

} // namespace InstrumentNames
