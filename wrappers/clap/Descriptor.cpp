// SPDX-License-Identifier: ISC
#include "wrappers/clap/Descriptor.h"

#include "wrappers/common/ProductWords.h"

#include <array>
#include <utility>

namespace Clap {

namespace {

constexpr const char* PluginId = "example.puffguard.puffguard"; // sessions hold it

// The format's type of the array isn't constant.
std::array<const char*, 6> features = {CLAP_PLUGIN_FEATURE_AUDIO_EFFECT,
                                       CLAP_PLUGIN_FEATURE_RESTORATION,
                                       CLAP_PLUGIN_FEATURE_MONO,
                                       CLAP_PLUGIN_FEATURE_STEREO,
                                       CLAP_PLUGIN_FEATURE_SURROUND,
                                       nullptr};

} // namespace

Descriptor::Descriptor(std::shared_ptr<const Wrapper::Module> newModule)
    : module(std::move(newModule))
{
    const Wrapper::Product& product = module->GetProduct();
    descriptor.clap_version = CLAP_VERSION;
    descriptor.id = PluginId;
    descriptor.name = product.displayName.c_str();
    descriptor.vendor = product.vendor.c_str();
    descriptor.url = "";
    descriptor.manual_url = "";
    descriptor.support_url = "";
    descriptor.version = product.versionText.c_str();
    descriptor.description = Wrapper::ShortDescription;
    descriptor.features = features.data();
}

} // namespace Clap
