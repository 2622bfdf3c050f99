// SPDX-License-Identifier: GPL-3.0-or-later
// A VST3 module that does what its file name says: see Misbehaviour.h for the deeds, and below for
// the contents. Every other name gives one instrument with three parameters in two groups.
#include "Misbehaviour.h"
#include "Vst3Factory.h"

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivsthostapplication.h>
#include <pluginterfaces/vst/ivstpluginterfacesupport.h>
#include <public.sdk/source/vst/vstcomponent.h>
#include <public.sdk/source/vst/vsteditcontroller.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

using namespace Steinberg;

namespace
{

const LoadAndUnload whole;

const FUID ComponentId(0x5A1F0001, 0x11112222, 0x33334444, 0x00000001);
const FUID SecondComponentId(0x5A1F0001, 0x11112222, 0x33334444, 0x00000002);
const FUID ControllerId(0x5A1F0001, 0x11112222, 0x33334444, 0x00000003);

constexpr int MillionParameters = 1000000;
constexpr int DeepUnits = 300;
constexpr auto CanAutomate = Vst::ParameterInfo::kCanAutomate;

struct ParameterRow
{
    Vst::ParamID id;
    std::u16string title;
    Vst::UnitID unit = Vst::kRootUnitId;
    int flags = CanAutomate;
    std::u16string shortTitle = {};
};

struct UnitRow
{
    Vst::UnitID id;
    Vst::UnitID parent;
    std::u16string name;
};

template <std::size_t size>
void giveText(char16 (&to)[size], const std::u16string &text)
{
    const std::size_t length = std::min(text.size(), size);
    std::copy_n(text.begin(), length, to);
    // A text that fills its field has no room for an end, which some plug-ins forget about.
    if (length < size) {
        to[length] = 0;
    }
}

std::vector<UnitRow> unitRows()
{
    if (behavesAs("circle-of-groups")) {
        return {
            {0, -1, u"Root"}, {1, 2, u"One"}, {2, 3, u"Two"}, {3, 1, u"Three"}, {4, 4, u"Self"}};
    }
    if (behavesAs("odd-groups")) {
        // No parent, a parent that nobody knows, an id twice, a name of blanks.
        return {{1, Vst::kNoParentUnitId, u"Alone"},
                {2, 77, u"Lost"},
                {3, 0, u"First"},
                {3, 0, u"Second"},
                {4, 3, u"  "},
                {5, 4, u"In\nner"}};
    }
    if (behavesAs("deep-groups")) {
        std::vector<UnitRow> rows;
        for (int i = 1; i <= DeepUnits; ++i) {
            rows.push_back({i, i - 1, u"Level"});
        }
        return rows;
    }
    return {{0, Vst::kNoParentUnitId, u"Root"}, {1, 0, u"Filter"}, {2, 1, u"Envelope"}};
}

// Those that say something by their ids, names or flags.
std::vector<ParameterRow> parameterRows()
{
    if (behavesAs("no-parameters")) {
        return {};
    }
    if (behavesAs("numbered-names")) {
        return {{0, u"Parameter 1"}, {1, u"P2"}, {2, u"3"}};
    }
    if (behavesAs("numbered-but-bypass")) {
        return {{0, u"Param 1"}, {1, u"Bypass", 0, CanAutomate | Vst::ParameterInfo::kIsBypass}};
    }
    if (behavesAs("only-bypass")) {
        return {{1, u"", 0, CanAutomate | Vst::ParameterInfo::kIsBypass}};
    }
    if (behavesAs("no-names")) {
        return {{0, u""}, {1, u" "}, {2, u"\u3000"}};
    }
    if (behavesAs("odd-names")) {
        return {{0, u"Cut\noff\r\t\x7F\u0085\u2028!"},
                {1, u"\u0416 \U0001F39B \u96F6"},
                {2, std::u16string(u"half ") + char16_t(0xD83C) + u" pair" + char16_t(0xDF9B)},
                {3, std::u16string(128, u'x')},
                {4, u"", 0, CanAutomate, u"Short"},
                {5, u"\uFFFE\uFFFF"}};
    }
    if (behavesAs("special-flags")) {
        using Flags = Vst::ParameterInfo;
        return {{0, u"Plain"},
                {1, u"Hidden", 1, Flags::kIsHidden | Flags::kIsReadOnly},
                {2, u"Meter", 1, Flags::kIsReadOnly},
                {3, u"Program", 0, CanAutomate | Flags::kIsProgramChange | Flags::kIsList},
                {4, u"Wave", 1, CanAutomate | Flags::kIsList},
                {5, u"Not Automated", 2, Flags::kNoFlags},
                {6, u"Off", 0, CanAutomate | Flags::kIsBypass}};
    }
    if (behavesAs("duplicate-ids")) {
        return {{7, u"First"}, {7, u"Second"}, {8, u"Third"}};
    }
    if (behavesAs("large-ids")) {
        return {{2147483646, u"Above"}, {2147479447, u"Just Above"}, {2147479446, u"Largest"},
                {4294967295, u"None"},  {4294963095, u"Minus"},      {0, u"Smallest"}};
    }
    if (behavesAs("circle-of-groups")) {
        return {{0, u"In Circle", 1}, {1, u"In Itself", 4}, {2, u"Nowhere", 99}};
    }
    if (behavesAs("odd-groups")) {
        return {{0, u"A", 1}, {1, u"B", 2}, {2, u"C", 3}, {3, u"D", 5}};
    }
    if (behavesAs("deep-groups")) {
        return {{0, u"Bottom", DeepUnits}};
    }
    return {{0, u"Volume"}, {10, u"Cutoff", 1}, {11, u"Attack", 2}};
}

class TestController : public Vst::EditControllerEx1
{
public:
    tresult PLUGIN_API initialize(FUnknown *context) override
    {
        at("controller");
        m_rows = parameterRows();
        m_units = unitRows();
        if (behavesAs("joined")) {
            m_rows.clear();
            tellOfHost(context);
        }
        return behavesAs("controller-refuses") ? kResultFalse
                                               : EditControllerEx1::initialize(context);
    }
    tresult PLUGIN_API terminate() override
    {
        at("controller-terminate");
        return EditControllerEx1::terminate();
    }
    // What a plug-in learns only if it is joined as a host joins it becomes a parameter.
    tresult PLUGIN_API setComponentHandler(Vst::IComponentHandler *handler) override
    {
        if (behavesAs("joined") && handler != nullptr) {
            add(u"handler");
            handler->restartComponent(Vst::kParamTitlesChanged);
        }
        return EditControllerEx1::setComponentHandler(handler);
    }
    tresult PLUGIN_API notify(Vst::IMessage *message) override
    {
        int64 number = 0;
        if (behavesAs("joined") &&
            message->getAttributes()->getInt("number", number) == kResultOk && number == 42) {
            add(u"message");
        }
        return kResultOk;
    }
    tresult PLUGIN_API setComponentState(IBStream *state) override
    {
        std::array<char, 5> word = {};
        int32 length = 0;
        if (behavesAs("joined") && state->read(word.data(), 5, &length) == kResultOk &&
            std::string_view(word.data(), static_cast<std::size_t>(length)) == "state") {
            add(u"state");
        }
        return kResultOk;
    }

    int32 PLUGIN_API getParameterCount() override
    {
        if (behavesAs("negative-count")) {
            return -1;
        }
        if (behavesAs("million-parameters")) {
            return MillionParameters;
        }
        if (behavesAs("endless-parameters")) {
            return 2147483647;
        }
        return static_cast<int32>(m_rows.size());
    }
    tresult PLUGIN_API getParameterInfo(int32 index, Vst::ParameterInfo &info) override
    {
        at("parameters");
        if (behavesAs("gives-no-parameters") ||
            (behavesAs("gives-some-parameters") && index == 1)) {
            return kResultFalse;
        }
        if (behavesAs("million-parameters") || behavesAs("endless-parameters")) {
            fill({static_cast<Vst::ParamID>(index), u"Knob", 2}, &info);
            return kResultOk;
        }
        fill(m_rows.at(static_cast<std::size_t>(index)), &info);
        return kResultOk;
    }
    int32 PLUGIN_API getUnitCount() override
    {
        return behavesAs("negative-units") ? -5 : static_cast<int32>(m_units.size());
    }
    tresult PLUGIN_API getUnitInfo(int32 index, Vst::UnitInfo &info) override
    {
        const UnitRow &row = m_units.at(static_cast<std::size_t>(index));
        info.id = row.id;
        info.parentUnitId = row.parent;
        giveText(info.name, row.name);
        info.programListId = Vst::kNoProgramListId;
        return kResultOk;
    }

private:
    static void fill(const ParameterRow &row, Vst::ParameterInfo *info)
    {
        info->id = row.id;
        giveText(info->title, row.title);
        giveText(info->shortTitle, row.shortTitle);
        info->unitId = row.unit;
        info->flags = row.flags;
    }
    void add(const std::u16string &title)
    {
        m_rows.push_back({static_cast<Vst::ParamID>(m_rows.size()), title});
    }
    void tellOfHost(FUnknown *context)
    {
        FUnknownPtr<Vst::IHostApplication> host(context);
        Vst::String128 name = {};
        if (host && host->getName(name) == kResultOk) {
            add(std::u16string(name));
        }
        FUnknownPtr<Vst::IPlugInterfaceSupport> supported(context);
        if (supported &&
            supported->isPlugInterfaceSupported(Vst::IEditController::iid) == kResultTrue) {
            add(u"supported interfaces");
        }
    }

    std::vector<ParameterRow> m_rows;
    std::vector<UnitRow> m_units;
};

class TestComponent : public Vst::Component
{
public:
    tresult PLUGIN_API initialize(FUnknown *context) override
    {
        at("initialisation");
        if (!behavesAs("no-controller")) {
            setControllerClass(ControllerId);
        }
        return behavesAs("refuses") ? kResultFalse : Component::initialize(context);
    }
    tresult PLUGIN_API terminate() override
    {
        at("terminate");
        return Component::terminate();
    }
    tresult PLUGIN_API connect(Vst::IConnectionPoint *other) override
    {
        const tresult result = Component::connect(other);
        if (Vst::IMessage *message = allocateMessage(); message != nullptr) {
            message->setMessageID("hello");
            message->getAttributes()->setInt("number", 42);
            sendMessage(message);
            message->release();
        }
        return result;
    }
    tresult PLUGIN_API getState(IBStream *state) override
    {
        std::array<char, 5> word = {'s', 't', 'a', 't', 'e'};
        return state->write(word.data(), 5, nullptr);
    }
};

// Component and controller in one object.
class SingleComponent : public TestController, public Vst::IComponent
{
public:
    tresult PLUGIN_API getControllerClassId(TUID) override { return kNotImplemented; }
    tresult PLUGIN_API setIoMode(Vst::IoMode) override { return kResultOk; }
    int32 PLUGIN_API getBusCount(Vst::MediaType, Vst::BusDirection) override { return 0; }
    tresult PLUGIN_API getBusInfo(Vst::MediaType, Vst::BusDirection, int32, Vst::BusInfo &) override
    {
        return kResultFalse;
    }
    tresult PLUGIN_API getRoutingInfo(Vst::RoutingInfo &, Vst::RoutingInfo &) override
    {
        return kResultFalse;
    }
    tresult PLUGIN_API activateBus(Vst::MediaType, Vst::BusDirection, int32, TBool) override
    {
        return kResultFalse;
    }
    tresult PLUGIN_API setActive(TBool) override { return kResultOk; }
    tresult PLUGIN_API setState(IBStream *) override { return kResultOk; }
    tresult PLUGIN_API getState(IBStream *) override { return kResultOk; }
    tresult PLUGIN_API initialize(FUnknown *context) override
    {
        // Once only, although it is initialised as both.
        return m_isInitialised++ == 0 ? TestController::initialize(context) : kResultFalse;
    }
    tresult PLUGIN_API terminate() override
    {
        if (--m_isInitialised != 0) {
            std::abort();
        }
        return TestController::terminate();
    }

    DEFINE_INTERFACES
    DEF_INTERFACE(IComponent)
    END_DEFINE_INTERFACES(TestController)
    REFCOUNT_METHODS(TestController)

private:
    int m_isInitialised = 0;
};

FUnknown *makeComponent()
{
    at("instantiation");
    if (behavesAs("gives-null")) {
        return nullptr;
    }
    if (behavesAs("single")) {
        return static_cast<Vst::IComponent *>(new SingleComponent);
    }
    return static_cast<Vst::IComponent *>(new TestComponent);
}

FUnknown *makeController()
{
    return behavesAs("lost-controller") ? nullptr
                                        : static_cast<Vst::IEditController *>(new TestController);
}

Vst3Class classRow(const FUID &id, const char *category, const std::u16string &name,
                   const char *subCategories, FUnknown *(*make)())
{
    TUID bytes = {};
    id.toTUID(bytes);
    return {PClassInfoW(bytes, PClassInfo::kManyInstances, category, name.c_str(), 0, subCategories,
                        u"Tests", u"1.0", u"VST 3.7"),
            make};
}

std::vector<Vst3Class> classes()
{
    constexpr const char *Audio = kVstAudioEffectClass;
    const Vst3Class controller =
        classRow(ControllerId, kVstComponentControllerClass, u"Controller", "", &makeController);
    const auto instrument = [](const std::u16string &name, const char *subCategories) {
        return classRow(ComponentId, Audio, name, subCategories, &makeComponent);
    };
    const auto second = [](const std::u16string &name, const char *subCategories) {
        return classRow(SecondComponentId, Audio, name, subCategories, &makeComponent);
    };
    if (behavesAs("no-class")) {
        return {};
    }
    if (behavesAs("no-audio-class")) {
        return {controller};
    }
    if (behavesAs("effect")) {
        return {instrument(u"Effect", "Fx|Instruments|Instrument Tools"), controller};
    }
    if (behavesAs("instrument-and-effect")) {
        return {second(u"Effect", "Fx|Reverb"), controller,
                instrument(u"Instrument", "Fx|Instrument")};
    }
    if (behavesAs("two-instruments")) {
        return {instrument(u"Lead", "Instrument|Synth"), controller,
                second(u"Bass", "Instrument|Synth")};
    }
    if (behavesAs("failing-and-effect")) {
        return {second(u"Effect", "Fx"), instrument(u"Fails", "Instrument")};
    }
    if (behavesAs("failing-and-good")) {
        Vst3Class failing = second(u"Fails", "Instrument");
        failing.make = [] { return static_cast<FUnknown *>(nullptr); };
        return {failing, instrument(u"Works", "Instrument"), controller};
    }
    std::u16string name = u"Test VST3";
    if (behavesAs("blank-name")) {
        name = u" \u00A0\u3000";
    } else if (behavesAs("odd-names")) {
        name = u"N\u00E4me\n\u266F";
    }
    return {instrument(name, "Instrument|Sampler"), controller};
}

int generation()
{
    if (behavesAs("first-factory")) {
        return 1;
    }
    return behavesAs("second-factory") ? 2 : 3;
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) bool ModuleEntry(void *handle)
{
    at("entry");
    return handle != nullptr && !behavesAs("refuses-entry");
}

__attribute__((visibility("default"))) bool ModuleExit()
{
    at("exit");
    return true;
}

__attribute__((visibility("default"))) IPluginFactory *GetPluginFactory()
{
    at("factory");
    if (behavesAs("no-factory")) {
        return nullptr;
    }
    static auto *const factory = new Vst3Factory(classes(), generation());
    return factory;
}
}
