// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Module.h"

#include <clap/plugin.h>

#include <memory>

namespace Clap {

/// What a host sees of the plug-in before there is an instance. The names are the module's, so that
/// none stands twice.
class Descriptor {
public:
    explicit Descriptor(std::shared_ptr<const Wrapper::Module> newModule);
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() = default;

    const clap_plugin_descriptor_t& Get() const { return descriptor; }
    const std::shared_ptr<const Wrapper::Module>& GetModule() const { return module; }

private:
    const std::shared_ptr<const Wrapper::Module> module;
    clap_plugin_descriptor_t descriptor{};
};

} // namespace Clap
