// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/Vst3Session.h"

#include "helper/PlainText.h"
#include "helper/Vst3Host.h"

#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <public.sdk/source/common/memorystream.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

using namespace Steinberg;

namespace
{

// More than any module holds. A count is the plug-in's word only, and each class costs a call.
constexpr int MaximumClasses = 4096;
constexpr int MaximumUnits = 100000;

Vst3Host &host()
{
    static auto *const theHost = new Vst3Host;
    return *theHost;
}

Vst3EditHandler &editHandler()
{
    static auto *const theHandler = new Vst3EditHandler;
    return *theHandler;
}

// Null if the object has no such interface.
template <typename Interface>
Interface *interfaceOf(FUnknown *object)
{
    void *found = nullptr;
    if (object == nullptr || object->queryInterface(Interface::iid, &found) != kResultOk) {
        return nullptr;
    }
    return static_cast<Interface *>(found);
}

template <typename Interface>
void let(Interface **object)
{
    Interface *held = std::exchange(*object, nullptr);
    if (held != nullptr) {
        held->release();
    }
}

// Fields of a fixed size, whose end a plug-in may have forgotten.
template <std::size_t size>
std::string fieldBytes(const char8 (&field)[size])
{
    return lineFromBytes({field, strnlen(field, size)});
}

template <std::size_t size>
std::string fieldText(const char16 (&field)[size])
{
    return lineFromUtf16(field, size);
}

// Categories stand one after another, parted by "|".
bool namesInstrument(std::string_view subCategories)
{
    while (!subCategories.empty()) {
        const std::size_t end = std::min(subCategories.find('|'), subCategories.size());
        if (subCategories.substr(0, end) == Vst::PlugType::kInstrument) {
            return true;
        }
        subCategories.remove_prefix(std::min(end + 1, subCategories.size()));
    }
    return false;
}

} // namespace

Vst3Session::Vst3Session(PluginFile file)
    : m_file(std::move(file))
{
}

HelperExit Vst3Session::question(PluginAnswer *answer)
{
    const HelperExit opened = openModule();
    if (opened != HelperExit::List) {
        return opened;
    }
    questionClasses(answer);
    return answer->exitCode();
}

HelperExit Vst3Session::openModule()
{
    if (!m_object.load(m_file.binary)) {
        return HelperExit::CannotLoad;
    }
    using ModuleEntry = bool (*)(void *);
    using ModuleExit = bool (*)();
    const auto enter = m_object.function<ModuleEntry>("ModuleEntry");
    const auto factory = m_object.function<GetFactoryProc>("GetPluginFactory");
    if (enter == nullptr || factory == nullptr ||
        m_object.function<ModuleExit>("ModuleExit") == nullptr) {
        return HelperExit::NoEntry;
    }
    try {
        m_isEntered = enter(m_object.handle());
    } catch (...) {
        m_isEntered = false;
    }
    if (!m_isEntered) {
        return HelperExit::WouldNotInitialise;
    }
    try {
        m_factory = factory();
        m_factory2 = interfaceOf<IPluginFactory2>(m_factory);
        m_factory3 = interfaceOf<IPluginFactory3>(m_factory);
        if (m_factory3 != nullptr) {
            m_factory3->setHostContext(&host());
        }
    } catch (...) {
        m_factory = nullptr;
    }
    return m_factory == nullptr ? HelperExit::NoEntry : HelperExit::List;
}

void Vst3Session::questionClasses(PluginAnswer *answer)
{
    int count = 0;
    try {
        count = std::min(m_factory->countClasses(), MaximumClasses);
    } catch (...) {
        answer->addFailure(HelperExit::WouldNotInitialise);
    }
    for (int index = 0; index < count; ++index) {
        try {
            ClassInfo info;
            if (!classInfo(index, &info) || info.category != kVstAudioEffectClass) {
                continue;
            }
            if (namesInstrument(info.subCategories)) {
                questionInstrument(info, answer);
            } else {
                answer->addFailure(HelperExit::NoInstrument);
            }
        } catch (...) {
            answer->addFailure(HelperExit::WouldNotGiveParameters);
        }
    }
}

bool Vst3Session::classInfo(int index, ClassInfo *info)
{
    // The newest form has the name in Unicode; the oldest has no sub-categories, so that nothing
    // in such a factory can call itself an instrument.
    PClassInfoW wide;
    if (m_factory3 != nullptr && m_factory3->getClassInfoUnicode(index, &wide) == kResultOk) {
        std::memcpy(info->id, wide.cid, sizeof(TUID));
        info->name = fieldText(wide.name);
        info->category = fieldBytes(wide.category);
        info->subCategories = fieldBytes(wide.subCategories);
        return true;
    }
    PClassInfo2 second;
    if (m_factory2 != nullptr && m_factory2->getClassInfo2(index, &second) == kResultOk) {
        std::memcpy(info->id, second.cid, sizeof(TUID));
        info->name = fieldBytes(second.name);
        info->category = fieldBytes(second.category);
        info->subCategories = fieldBytes(second.subCategories);
        return true;
    }
    PClassInfo first;
    if (m_factory->getClassInfo(index, &first) != kResultOk) {
        return false;
    }
    std::memcpy(info->id, first.cid, sizeof(TUID));
    info->name = fieldBytes(first.name);
    info->category = fieldBytes(first.category);
    return true;
}

void Vst3Session::questionInstrument(const ClassInfo &info, PluginAnswer *answer)
{
    m_instruments.emplace_back();
    Instrument &instrument = m_instruments.back();
    HelperExit code = HelperExit::WouldNotInitialise;
    try {
        code = make(info, &instrument);
    } catch (...) {
    }
    if (code != HelperExit::List) {
        answer->addFailure(code);
        return;
    }
    std::string name = info.name;
    if (isBlank(name)) {
        name = lineFromBytes(m_file.baseName);
    }
    InstrumentRecord record(isBlank(name) ? "Unnamed" : name);
    code = readParameters(instrument.controller, &record);
    if (code == HelperExit::List) {
        answer->addInstrument(std::move(record));
    } else {
        answer->addFailure(code);
    }
}

HelperExit Vst3Session::make(const ClassInfo &info, Instrument *instrument)
{
    void *component = nullptr;
    if (m_factory->createInstance(info.id, Vst::IComponent::iid, &component) != kResultOk ||
        component == nullptr) {
        return HelperExit::WouldNotInitialise;
    }
    instrument->component = static_cast<Vst::IComponent *>(component);
    if (instrument->component->initialize(&host()) != kResultOk) {
        return HelperExit::WouldNotInitialise;
    }
    instrument->componentIsInitialised = true;
    const HelperExit code = makeController(instrument);
    if (code == HelperExit::List) {
        instrument->controller->setComponentHandler(&editHandler());
        connect(instrument);
    }
    return code;
}

HelperExit Vst3Session::makeController(Instrument *instrument)
{
    instrument->controller = interfaceOf<Vst::IEditController>(instrument->component);
    if (instrument->controller != nullptr) {
        return HelperExit::List;
    }
    TUID id = {};
    constexpr TUID None = {};
    if (instrument->component->getControllerClassId(id) != kResultOk ||
        std::memcmp(id, None, sizeof(TUID)) == 0) {
        return HelperExit::NoListAtAll;
    }
    void *controller = nullptr;
    if (m_factory->createInstance(id, Vst::IEditController::iid, &controller) != kResultOk ||
        controller == nullptr) {
        return HelperExit::WouldNotGiveParameters;
    }
    instrument->controller = static_cast<Vst::IEditController *>(controller);
    instrument->controllerIsSeparate = true;
    if (instrument->controller->initialize(&host()) != kResultOk) {
        return HelperExit::WouldNotInitialise;
    }
    instrument->controllerIsInitialised = true;
    return HelperExit::List;
}

void Vst3Session::connect(Instrument *instrument)
{
    if (!instrument->controllerIsSeparate) {
        return;
    }
    instrument->componentPoint = interfaceOf<Vst::IConnectionPoint>(instrument->component);
    instrument->controllerPoint = interfaceOf<Vst::IConnectionPoint>(instrument->controller);
    if (instrument->componentPoint != nullptr && instrument->controllerPoint != nullptr) {
        instrument->isConnected = true;
        instrument->componentPoint->connect(instrument->controllerPoint);
        instrument->controllerPoint->connect(instrument->componentPoint);
    }
    // A controller may make its parameters only when it knows the component's state. A plug-in may
    // keep the stream for a while, so that it isn't one of this function's own.
    auto *stream = new MemoryStream;
    if (instrument->component->getState(stream) == kResultOk) {
        stream->seek(0, IBStream::kIBSeekSet, nullptr);
        instrument->controller->setComponentState(stream);
    }
    stream->release();
}

HelperExit Vst3Session::readParameters(Vst::IEditController *controller, InstrumentRecord *record)
{
    const int count = controller->getParameterCount();
    if (count < 0) {
        return HelperExit::WouldNotGiveParameters;
    }
    const Units units = unitsOf(controller);
    std::map<Vst::UnitID, std::vector<std::string>> paths;
    bool anyGiven = false;
    for (int index = 0; index < count; ++index) {
        Vst::ParameterInfo info = {};
        if (controller->getParameterInfo(index, info) != kResultOk) {
            continue;
        }
        anyGiven = true;
        // A knob turns none of these.
        constexpr int LeftOut = Vst::ParameterInfo::kIsHidden | Vst::ParameterInfo::kIsReadOnly |
                                Vst::ParameterInfo::kIsProgramChange;
        if ((info.flags & LeftOut) != 0) {
            continue;
        }
        std::string name = fieldText(info.title);
        if (isBlank(name)) {
            name = fieldText(info.shortTitle);
        }
        auto known = paths.find(info.unitId);
        if (known == paths.end()) {
            known = paths.emplace(info.unitId, groupPath(units, info.unitId)).first;
        }
        const std::vector<std::string> &groups = known->second;
        if ((info.flags & Vst::ParameterInfo::kIsBypass) != 0) {
            record->addBypass(name, groups);
        } else {
            record->addParameter(info.id, name, groups);
        }
        if (record->size() > PluginAnswer::MaximumBytes) {
            return HelperExit::WouldNotGiveParameters;
        }
    }
    return anyGiven || count == 0 ? HelperExit::List : HelperExit::WouldNotGiveParameters;
}

Vst3Session::Units Vst3Session::unitsOf(Vst::IEditController *controller)
{
    Units units;
    auto *unitInfo = interfaceOf<Vst::IUnitInfo>(controller);
    if (unitInfo == nullptr) {
        return units;
    }
    const int count = std::min(unitInfo->getUnitCount(), MaximumUnits);
    for (int index = 0; index < count; ++index) {
        Vst::UnitInfo info = {};
        if (unitInfo->getUnitInfo(index, info) == kResultOk) {
            // The first of two units with one id counts, as the first of two parameters does.
            units.try_emplace(info.id, Unit{fieldText(info.name), info.parentUnitId});
        }
    }
    unitInfo->release();
    return units;
}

std::vector<std::string> Vst3Session::groupPath(const Units &units, Vst::UnitID id)
{
    std::vector<std::string> path;
    std::set<Vst::UnitID> seen;
    // Units whose parents go round in a circle end where the circle closes.
    while (id != Vst::kRootUnitId && seen.insert(id).second) {
        const auto unit = units.find(id);
        if (unit == units.end()) {
            break;
        }
        if (!isBlank(unit->second.name)) {
            path.push_back(unit->second.name);
        }
        id = unit->second.parent;
    }
    std::reverse(path.begin(), path.end());
    return path;
}

void Vst3Session::tearDown()
{
    while (!m_instruments.empty()) {
        Instrument instrument = m_instruments.back();
        m_instruments.pop_back();
        takeDown(&instrument);
    }
    if (m_factory3 != nullptr) {
        m_factory3->setHostContext(nullptr);
    }
    let(&m_factory3);
    let(&m_factory2);
    let(&m_factory);
    if (m_isEntered) {
        m_isEntered = false;
        using ModuleExit = bool (*)();
        m_object.function<ModuleExit>("ModuleExit")();
    }
    m_object.unload();
}

void Vst3Session::takeDown(Instrument *instrument)
{
    if (instrument->isConnected) {
        instrument->componentPoint->disconnect(instrument->controllerPoint);
        instrument->controllerPoint->disconnect(instrument->componentPoint);
    }
    let(&instrument->componentPoint);
    let(&instrument->controllerPoint);
    if (instrument->controller != nullptr) {
        instrument->controller->setComponentHandler(nullptr);
        if (instrument->controllerIsInitialised) {
            instrument->controller->terminate();
        }
    }
    let(&instrument->controller);
    if (instrument->componentIsInitialised) {
        instrument->component->terminate();
    }
    let(&instrument->component);
}
