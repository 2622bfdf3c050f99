// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

#include <cstring>
#include <functional>
#include <utility>
#include <vector>

// A class of a test plug-in: what the factory says of it, and how it is made. Making gives an
// object with one reference, or null.
struct Vst3Class
{
    Steinberg::PClassInfoW info;
    std::function<Steinberg::FUnknown *()> make;
};

// The factory of a module. `generation` says which of the three interfaces it has.
class Vst3Factory : public Steinberg::IPluginFactory3
{
public:
    explicit Vst3Factory(std::vector<Vst3Class> classes, int generation = 3)
        : m_classes(std::move(classes))
        , m_generation(generation)
    {
    }
    virtual ~Vst3Factory() = default;

    Steinberg::tresult PLUGIN_API getFactoryInfo(Steinberg::PFactoryInfo *info) override
    {
        *info = Steinberg::PFactoryInfo("Tests", "", "", Steinberg::PFactoryInfo::kUnicode);
        return Steinberg::kResultOk;
    }
    Steinberg::int32 PLUGIN_API countClasses() override
    {
        return static_cast<Steinberg::int32>(m_classes.size());
    }
    Steinberg::tresult PLUGIN_API getClassInfo(Steinberg::int32 index,
                                               Steinberg::PClassInfo *info) override
    {
        return narrow(index, info);
    }
    Steinberg::tresult PLUGIN_API getClassInfo2(Steinberg::int32 index,
                                                Steinberg::PClassInfo2 *info) override
    {
        const Steinberg::tresult result = narrow(index, info);
        if (result == Steinberg::kResultOk) {
            std::memcpy(info->subCategories, classAt(index)->info.subCategories,
                        sizeof(info->subCategories));
        }
        return result;
    }
    Steinberg::tresult PLUGIN_API getClassInfoUnicode(Steinberg::int32 index,
                                                      Steinberg::PClassInfoW *info) override
    {
        if (classAt(index) == nullptr) {
            return Steinberg::kInvalidArgument;
        }
        *info = classAt(index)->info;
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API setHostContext(Steinberg::FUnknown *context) override
    {
        m_context = context;
        return Steinberg::kResultOk;
    }
    Steinberg::tresult PLUGIN_API createInstance(Steinberg::FIDString id,
                                                 Steinberg::FIDString wanted,
                                                 void **object) override
    {
        *object = nullptr;
        for (const Vst3Class &one : m_classes) {
            if (std::memcmp(one.info.cid, id, sizeof(Steinberg::TUID)) != 0) {
                continue;
            }
            Steinberg::FUnknown *made = one.make();
            if (made == nullptr) {
                return Steinberg::kResultFalse;
            }
            const Steinberg::tresult result = made->queryInterface(wanted, object);
            made->release();
            return result;
        }
        return Steinberg::kNoInterface;
    }

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID wanted,
                                                 void **object) override
    {
        using Steinberg::FUnknownPrivate::iidEqual;
        if (iidEqual(wanted, Steinberg::FUnknown::iid) ||
            iidEqual(wanted, Steinberg::IPluginFactory::iid) ||
            (m_generation >= 2 && iidEqual(wanted, Steinberg::IPluginFactory2::iid)) ||
            (m_generation >= 3 && iidEqual(wanted, Steinberg::IPluginFactory3::iid))) {
            *object = static_cast<Steinberg::IPluginFactory3 *>(this);
            return Steinberg::kResultOk;
        }
        *object = nullptr;
        return Steinberg::kNoInterface;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    [[nodiscard]] const Vst3Class *classAt(Steinberg::int32 index) const
    {
        return index < 0 || static_cast<std::size_t>(index) >= m_classes.size()
                   ? nullptr
                   : &m_classes[static_cast<std::size_t>(index)];
    }
    template <typename Info>
    Steinberg::tresult narrow(Steinberg::int32 index, Info *info) const
    {
        const Vst3Class *one = classAt(index);
        if (one == nullptr) {
            return Steinberg::kInvalidArgument;
        }
        std::memcpy(info->cid, one->info.cid, sizeof(Steinberg::TUID));
        info->cardinality = one->info.cardinality;
        std::memcpy(info->category, one->info.category, sizeof(info->category));
        for (std::size_t i = 0; i < sizeof(info->name); ++i) {
            info->name[i] = static_cast<char>(one->info.name[i]);
        }
        return Steinberg::kResultOk;
    }

    std::vector<Vst3Class> m_classes;
    int m_generation;
    Steinberg::FUnknown *m_context = nullptr;
};
