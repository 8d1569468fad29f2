// SPDX-License-Identifier: ISC
#include "wrappers/vst3/HostEditing.h"

namespace Vst3 {

const HostEditingFunctions HostEditing::Functions = {
    UnknownTable, Slot<&HostEditing::BeginEditFromHost>, Slot<&HostEditing::EndEditFromHost>};

HostEditing::HostEditing(Object& newOwner, Effect& newEffect)
    : Interface{&Functions, &newOwner}
    , effect(newEffect)
{
}

v3_result HostEditing::BeginEditFromHost(v3_param_id id)
{
    return effect.BeginEdit(id) ? V3_OK : V3_INVALID_ARG;
}

v3_result HostEditing::EndEditFromHost(v3_param_id id)
{
    return effect.EndEdit(id) ? V3_OK : V3_INVALID_ARG;
}

} // namespace Vst3
