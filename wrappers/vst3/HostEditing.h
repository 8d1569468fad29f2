// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/vst3/Effect.h"
#include "wrappers/vst3/Object.h"

#include <travesty/edit_controller.h>

namespace Vst3 {

/// The format's interface by which a host brackets what its user does in a view of the host's own;
/// the headers of the format that are used here don't have it.
struct HostEditingFunctions : v3_funknown {
    v3_result(V3_API* beginEditFromHost)(void* self, v3_param_id id);
    v3_result(V3_API* endEditFromHost)(void* self, v3_param_id id);
};
inline constexpr const v3_tuid HostEditingId =
    V3_ID(0xC1271208, 0x70594098, 0xB9DD34B3, 0x6BB0195E);

/// Makes of each such touch one step of the undo history.
class HostEditing final : public Interface {
public:
    HostEditing(Object& newOwner, Effect& newEffect);

private:
    v3_result BeginEditFromHost(v3_param_id id);
    v3_result EndEditFromHost(v3_param_id id);

    static const HostEditingFunctions Functions;

    Effect& effect;
};

} // namespace Vst3
