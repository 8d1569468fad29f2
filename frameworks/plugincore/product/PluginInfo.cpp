// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/product/PluginInfo.h"

#include "frameworks/qobase/util/Utf8.h"

#include <cstring>
#include <iterator>
#include <string_view>

namespace {

uint32_t Flag(bool value)
{
    return value ? 1 : 0;
}

void FillIdentity(const PluginDefinition& definition, PluginInfoRecord& record)
{
    CopyText(record.vendor, definition.GetVendor());
    CopyText(record.vendorLong, definition.GetVendorLong());
    CopyText(record.bundlePrefix, definition.GetBundlePrefix());
    CopyText(record.shortName, definition.GetShortName());
    CopyText(record.displayName, definition.GetDisplayName());
    CopyText(record.fullName, definition.GetFullName());
    CopyText(record.versionText, definition.GetVersionText());
    record.versionNumber = definition.GetVersionNumber();
    record.buildNumber = definition.GetBuildNumber();
    record.revision = definition.GetRevision();
    record.stateVersion = definition.GetStateVersion();
    CopyText(record.presetId, definition.GetPresetId());
    CopyText(record.learnLabel, definition.GetLearnLabel());
    CopyText(record.resourceName, definition.GetResourceName());
    CopyText(record.debugProjectPath, definition.GetDebugProjectPath());
    CopyText(record.text60, definition.GetText(60));
    record.value62 = definition.GetValue(62);
}

void FillAbilities(const PluginDefinition& definition, PluginInfoRecord& record)
{
    record.supportsEditor = Flag(definition.SupportsEditor());
    for (uint32_t i = 0; i < std::size(record.formatFlags); ++i) {
        record.formatFlags[i] = Flag(definition.GetOptionFlag(26 + i));
    }
    record.sideChainInputs = definition.GetSideChainCount(29);
    record.sideChainCountC = definition.GetSideChainCount(31);
    record.sideChainCountB = definition.GetSideChainCount(30);
    for (uint32_t i = 0; i < std::size(record.optionFlags); ++i) {
        record.optionFlags[i] = Flag(definition.GetOptionFlag(33 + i));
    }
    record.optionFlag48 = Flag(definition.GetOptionFlag(48));
    record.optionFlag49 = Flag(definition.GetOptionFlag(49));
    record.optionFlag110 = Flag(definition.GetOptionFlag(110));
    record.supportsBypass = Flag(definition.SupportsBypass());
    record.defaultWidth = definition.GetDefaultWidth();
    record.defaultHeight = definition.GetDefaultHeight();
    record.isStandalone = Flag(definition.IsStandalone());
}

void FillFormats(const PluginDefinition& definition, PluginInfoRecord& record)
{
    record.aaxProductId = definition.GetAAXProductId();
    record.aaxVersion = definition.GetAAXVersion();
    CopyText(record.aaxVendorNames, definition.GetAAXVendorNames());
    record.aaxVendorId = definition.GetAAXVendorId();
    CopyText(record.aaxProductNames, definition.GetAAXProductNames());
    // The field is twice as long as its text may be.
    CopyText(record.text82, sizeof(record.text82) / 2, definition.GetText(82));
    record.vst2Id = definition.GetVST2Id();
    record.vst2Category = definition.GetVST2Category();
    record.optionFlag87 = Flag(definition.GetOptionFlag(87));
    record.optionFlag111 = Flag(definition.GetOptionFlag(111));
    record.optionFlag86 = Flag(definition.GetOptionFlag(86));
    record.optionFlag88 = Flag(definition.GetOptionFlag(88));
    record.optionFlag89 = Flag(definition.GetOptionFlag(89));
    record.auType = definition.GetAUType();
    record.auVendor = definition.GetAUVendor();
    record.auSubtype = definition.GetAUSubtype();
    CopyText(record.auName, definition.GetAUName());
}

void FillValues(const PluginDefinition& definition, PluginInfoRecord& record)
{
    record.value84 = definition.GetValue(84);
    for (uint32_t i = 0; i < std::size(record.values92); ++i) {
        record.values92[i] = definition.GetValue(92 + i);
    }
    for (uint32_t i = 0; i < std::size(record.values94); ++i) {
        record.values94[i] = definition.GetValue(94 + i);
    }
    for (uint32_t i = 0; i < std::size(record.values104); ++i) {
        record.values104[i] = definition.GetValue(104 + i);
    }
    record.auSecondVendor = definition.GetValue(116);
    record.auSecondSubtype = definition.GetValue(117);
    record.value118 = definition.GetValue(118);
}

} // namespace

void CopyText(char* field, std::size_t size, const String& text)
{
    const std::string_view whole = Util::Utf8::Cut(text.View(), size - 1);
    std::memset(field, 0, size);
    std::memcpy(field, whole.data(), whole.size());
}

void FillPluginInfo(const PluginDefinition& definition, PluginInfoRecord& record)
{
    record = PluginInfoRecord();
    FillIdentity(definition, record);
    FillAbilities(definition, record);
    FillFormats(definition, record);
    FillValues(definition, record);
}
