// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "helper/PluginSession.h"
#include "helper/SharedObject.h"

#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivstmessage.h>
#include <pluginterfaces/vst/ivstunits.h>

#include <map>
#include <string>
#include <vector>

// A VST3 module: a factory of classes, of which each that says it is an instrument is made, joined
// with its controller as a host does it, and asked for its parameters.
class Vst3Session : public PluginSession
{
public:
    explicit Vst3Session(PluginFile file);

    [[nodiscard]] HelperExit question(PluginAnswer *answer) override;
    void tearDown() override;

private:
    // One instrument: its parts as far as they were made, for tearDown().
    struct Instrument
    {
        Steinberg::Vst::IComponent *component = nullptr;
        Steinberg::Vst::IEditController *controller = nullptr;
        // A component that is its own controller is initialised and terminated once.
        bool controllerIsSeparate = false;
        bool componentIsInitialised = false;
        bool controllerIsInitialised = false;
        Steinberg::Vst::IConnectionPoint *componentPoint = nullptr;
        Steinberg::Vst::IConnectionPoint *controllerPoint = nullptr;
        bool isConnected = false;
    };
    struct ClassInfo
    {
        Steinberg::TUID id = {};
        std::string name;
        std::string category;
        std::string subCategories;
    };
    struct Unit
    {
        std::string name;
        Steinberg::Vst::UnitID parent = Steinberg::Vst::kNoParentUnitId;
    };
    using Units = std::map<Steinberg::Vst::UnitID, Unit>;

    [[nodiscard]] HelperExit openModule();
    void questionClasses(PluginAnswer *answer);
    [[nodiscard]] bool classInfo(int index, ClassInfo *info);
    void questionInstrument(const ClassInfo &info, PluginAnswer *answer);
    // These two return List if it may go on.
    [[nodiscard]] HelperExit make(const ClassInfo &info, Instrument *instrument);
    [[nodiscard]] HelperExit makeController(Instrument *instrument);
    static void connect(Instrument *instrument);
    [[nodiscard]] static HelperExit readParameters(Steinberg::Vst::IEditController *controller,
                                                   InstrumentRecord *record);
    [[nodiscard]] static Units unitsOf(Steinberg::Vst::IEditController *controller);
    // Outermost first, without the root, which stands for the plug-in itself.
    [[nodiscard]] static std::vector<std::string> groupPath(const Units &units,
                                                            Steinberg::Vst::UnitID id);
    void takeDown(Instrument *instrument);

    PluginFile m_file;
    SharedObject m_object;
    bool m_isEntered = false;
    Steinberg::IPluginFactory *m_factory = nullptr;
    Steinberg::IPluginFactory2 *m_factory2 = nullptr;
    Steinberg::IPluginFactory3 *m_factory3 = nullptr;
    std::vector<Instrument> m_instruments;
};
