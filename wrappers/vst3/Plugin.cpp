// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Plugin.h"

#include <array>
#include <utility>

namespace Vst3 {

Plugin::Plugin(std::shared_ptr<const Wrapper::Module> module)
    : effect(std::move(module))
    , component(*this, effect)
    , processor(*this, effect)
    , requirements(*this)
    , controller(*this, effect)
    , hostEditing(*this, effect)
{
}

Interface* Plugin::Find(const uint8_t* iid) noexcept
{
    const std::array<Offer, 7> offers = {{
        {v3_funknown_iid, &component},
        {v3_plugin_base_iid, &component},
        {v3_component_iid, &component},
        {v3_audio_processor_iid, &processor},
        {v3_process_context_requirements_iid, &requirements},
        {v3_edit_controller_iid, &controller},
        {HostEditingId, &hostEditing},
    }};
    return FindOffer(offers, iid);
}

} // namespace Vst3
