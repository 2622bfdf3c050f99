// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <public.sdk/source/vst/hosting/hostclasses.h>

// The host as a VST3 plug-in sees it. Both live as long as the process and count no references,
// since nobody knows when a plug-in's last thread lets go of them.

class Vst3Host : public Steinberg::Vst::HostApplication
{
public:
    Steinberg::tresult PLUGIN_API getName(Steinberg::Vst::String128 name) override;
    // Answers for the list of supported interfaces too, which the base class fails to find.
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID wanted,
                                                 void **object) override;
};

// Hears of edits, of which there are none while a plug-in is only questioned.
class Vst3EditHandler : public Steinberg::Vst::IComponentHandler
{
public:
    virtual ~Vst3EditHandler() = default;

    Steinberg::tresult PLUGIN_API beginEdit(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API performEdit(Steinberg::Vst::ParamID id,
                                              Steinberg::Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API endEdit(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32 flags) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID wanted,
                                                 void **object) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }
};
