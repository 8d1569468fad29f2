// SPDX-License-Identifier: ISC
// The one thing that a host finds in the file, and the factory behind it.
#include "wrappers/clap/Descriptor.h"
#include "wrappers/clap/Functions.h"

#include <clap/entry.h>
#include <clap/plugin-factory.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>

namespace Clap {

namespace {

/// What is there between the first init() and the last deinit(). All calls may come from any
/// thread.
class Library {
public:
    bool Begin()
    {
        const std::scoped_lock guard(mutex);
        if (users == 0) {
            // Without its module a plug-in isn't there at all, so that no host lists it.
            auto module = Wrapper::Module::Load(LogToStandardError);
            if (module == nullptr) {
                return false;
            }
            descriptor = std::make_shared<const Descriptor>(std::move(module));
        }
        ++users;
        return true;
    }

    void End()
    {
        const std::scoped_lock guard(mutex);
        if (users > 0) {
            --users;
        }
        if (users == 0) {
            descriptor.reset();
        }
    }

    /// Null when the library isn't in use.
    std::shared_ptr<const Descriptor> GetDescriptor()
    {
        const std::scoped_lock guard(mutex);
        return descriptor;
    }

private:
    std::mutex mutex;
    uint32_t users = 0;
    std::shared_ptr<const Descriptor> descriptor;
};

Library library;

uint32_t CountPlugins(const clap_plugin_factory_t* /*factory*/) noexcept
{
    return library.GetDescriptor() != nullptr ? 1 : 0;
}

const clap_plugin_descriptor_t* GetPluginDescriptor(const clap_plugin_factory_t* /*factory*/,
                                                    uint32_t index) noexcept
{
    // It stays until the last deinit(), as long as the host may use it.
    const auto descriptor = library.GetDescriptor();
    return descriptor != nullptr && index == 0 ? &descriptor->Get() : nullptr;
}

const clap_plugin_t* CreatePlugin(const clap_plugin_factory_t* /*factory*/,
                                  const clap_host_t* host,
                                  const char* id) noexcept
{
    const auto descriptor = library.GetDescriptor();
    if (descriptor == nullptr || host == nullptr || id == nullptr ||
        std::string_view(id) != descriptor->Get().id ||
        !clap_version_is_compatible(host->clap_version)) {
        return nullptr;
    }
    return MakePlugin(descriptor->Get(), host, descriptor->GetModule());
}

constexpr clap_plugin_factory_t FactoryTable = {CountPlugins, GetPluginDescriptor, CreatePlugin};

bool Init(const char* /*path*/) noexcept
{
    return Guarded(false, [] { return library.Begin(); });
}

void Deinit() noexcept
{
    library.End();
}

const void* GetFactory(const char* id) noexcept
{
    const bool isKnown = id != nullptr && std::string_view(id) == CLAP_PLUGIN_FACTORY_ID;
    return isKnown && library.GetDescriptor() != nullptr ? &FactoryTable : nullptr;
}

} // namespace

} // namespace Clap

extern "C" CLAP_EXPORT const clap_plugin_entry_t clap_entry = {
    CLAP_VERSION_INIT, Clap::Init, Clap::Deinit, Clap::GetFactory};
