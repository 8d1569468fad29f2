// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Factory.h"

#include "wrappers/common/Text.h"
#include "wrappers/vst3/Log.h"
#include "wrappers/vst3/Plugin.h"
#include "wrappers/vst3/Utf16.h"

#include <algorithm>
#include <array>

namespace Vst3 {

namespace {

/// Stays for good: sessions hold it.
constexpr v3_tuid ClassId = V3_ID(0xEA92480B, 0x276D315D, 0xD76F5F30, 0xA7891AE4);

constexpr const char* Category = "Audio Module Class";
constexpr const char* SubCategories = "Fx|Restoration";
constexpr const char* FormatVersion = "VST 3.7.4"; // whose interfaces these are
constexpr int32_t ManyInstances = 0x7FFFFFFF;
constexpr int32_t UnicodeFlag = 0x10;

/// What stands in the same way in all three records of a class.
template <typename Info>
void FillClass(Info& info)
{
    info = {};
    std::copy_n(static_cast<const uint8_t*>(ClassId), sizeof(v3_tuid), info.class_id);
    info.cardinality = ManyInstances;
    Wrapper::CopyText(Category, info.category);
}

} // namespace

const v3_plugin_factory_cpp Factory::Functions = {
    UnknownTable,
    {Slot<&Factory::GetFactoryInfo>,
     Slot<&Factory::CountClasses>,
     Slot<&Factory::GetClassInfo>,
     Slot<&Factory::CreateInstance>},
    {Slot<&Factory::GetClassInfo2>},
    {Slot<&Factory::GetClassInfoUtf16>, Slot<&Factory::SetHostContext>},
};

Factory::Factory()
    : Interface{&Functions, this}
    , module(Wrapper::Module::Load(WriteLog))
{
}

Interface* Factory::Find(const uint8_t* iid) noexcept
{
    const std::array<Offer, 4> offers = {{
        {v3_funknown_iid, this},
        {v3_plugin_factory_iid, this},
        {v3_plugin_factory_2_iid, this},
        {v3_plugin_factory_3_iid, this},
    }};
    return FindOffer(offers, iid);
}

v3_result Factory::GetFactoryInfo(v3_factory_info* info)
{
    if (info == nullptr) {
        return V3_INVALID_ARG;
    }
    *info = {};
    info->flags = UnicodeFlag;
    if (module != nullptr) {
        Wrapper::CopyText(module->GetProduct().vendorLong, info->vendor);
    }
    return V3_OK;
}

int32_t Factory::CountClasses() noexcept
{
    return IsClass(0) ? 1 : 0;
}

v3_result Factory::GetClassInfo(int32_t index, v3_class_info* info)
{
    if (info == nullptr || !IsClass(index)) {
        return V3_INVALID_ARG;
    }
    FillClass(*info);
    Wrapper::CopyText(module->GetProduct().displayName, info->name);
    return V3_OK;
}

v3_result Factory::GetClassInfo2(int32_t index, v3_class_info_2* info)
{
    if (info == nullptr || !IsClass(index)) {
        return V3_INVALID_ARG;
    }
    const Wrapper::Product& product = module->GetProduct();
    FillClass(*info);
    Wrapper::CopyText(product.displayName, info->name);
    Wrapper::CopyText(SubCategories, info->sub_categories);
    Wrapper::CopyText(product.vendorLong, info->vendor);
    Wrapper::CopyText(product.versionText, info->version);
    Wrapper::CopyText(FormatVersion, info->sdk_version);
    return V3_OK;
}

v3_result Factory::GetClassInfoUtf16(int32_t index, v3_class_info_3* info)
{
    if (info == nullptr || !IsClass(index)) {
        return V3_INVALID_ARG;
    }
    const Wrapper::Product& product = module->GetProduct();
    FillClass(*info);
    CopyUtf16(product.displayName, info->name);
    Wrapper::CopyText(SubCategories, info->sub_categories);
    CopyUtf16(product.vendorLong, info->vendor);
    CopyUtf16(product.versionText, info->version);
    CopyUtf16(FormatVersion, info->sdk_version);
    return V3_OK;
}

v3_result Factory::CreateInstance(const uint8_t* wantedClass, const uint8_t* iid, void** instance)
{
    if (instance == nullptr || wantedClass == nullptr || iid == nullptr) {
        return V3_INVALID_ARG;
    }
    *instance = nullptr;
    if (!v3_tuid_match(wantedClass, ClassId)) {
        return V3_NO_INTERFACE;
    }
    if (module == nullptr) {
        WriteLog("there is no plug-in without its module");
        return V3_FALSE;
    }
    auto* const plugin = new Plugin(module);
    const v3_result result = plugin->QueryInterface(iid, instance);
    plugin->Release(); // the reference from its making
    return result;
}

// Each plug-in gets a context of its own when it is initialized.
v3_result Factory::SetHostContext(v3_funknown** /*context*/) noexcept
{
    return V3_OK;
}

} // namespace Vst3
