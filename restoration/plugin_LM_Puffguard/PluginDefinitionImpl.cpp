// SPDX-License-Identifier: ISC
#include "restoration/plugin_LM_Puffguard/PluginDefinitionImpl.h"

namespace LMPuffguard {

String PluginDefinitionImpl::GetVersionText() const
{
    return PUFFGUARD_MODULE_VERSION_TEXT;
}

uint32_t PluginDefinitionImpl::GetVersionNumber() const
{
    return PUFFGUARD_MODULE_VERSION;
}

bool PluginDefinitionImpl::GetOptionFlag(uint32_t number) const
{
    switch (number) {
    case 33:
    case 35:
    case 48:
    case 65:
    case 86:
    case 87:
    case 110:
        return true;
    default:
        return false;
    }
}

uint32_t PluginDefinitionImpl::GetValue(uint32_t number) const
{
    switch (number) {
    case 116:
        return GetAUVendor();
    case 117:
        return GetAUSubtype();
    default:
        return 0;
    }
}

} // namespace LMPuffguard
