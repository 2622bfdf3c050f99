// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/Vst3Host.h"

#include <string_view>

using namespace Steinberg;

tresult PLUGIN_API Vst3Host::getName(Vst::String128 name)
{
    constexpr std::u16string_view Name = u"TARN/TERN Remote Editor";
    name[Name.copy(name, 127)] = 0;
    return kResultOk;
}

tresult PLUGIN_API Vst3Host::queryInterface(const TUID wanted, void **object)
{
    if (HostApplication::queryInterface(wanted, object) == kResultOk) {
        return kResultOk;
    }
    return getPlugInterfaceSupport()->queryInterface(wanted, object);
}

tresult PLUGIN_API Vst3EditHandler::beginEdit(Vst::ParamID)
{
    return kResultOk;
}

tresult PLUGIN_API Vst3EditHandler::performEdit(Vst::ParamID, Vst::ParamValue)
{
    return kResultOk;
}

tresult PLUGIN_API Vst3EditHandler::endEdit(Vst::ParamID)
{
    return kResultOk;
}

tresult PLUGIN_API Vst3EditHandler::restartComponent(int32)
{
    return kResultOk;
}

tresult PLUGIN_API Vst3EditHandler::queryInterface(const TUID wanted, void **object)
{
    if (FUnknownPrivate::iidEqual(wanted, FUnknown::iid) ||
        FUnknownPrivate::iidEqual(wanted, IComponentHandler::iid)) {
        *object = static_cast<IComponentHandler *>(this);
        return kResultOk;
    }
    *object = nullptr;
    return kNoInterface;
}
