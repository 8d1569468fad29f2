// SPDX-License-Identifier: ISC
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

namespace Lv2Host {

namespace {

int Log(LV2_Log_Handle handle, LV2_URID, const char* format, va_list arguments)
{
    std::array<char, 4096> text{};
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    static_cast<std::vector<std::string>*>(handle)->emplace_back(text.data());
    return length;
}

__attribute__((format(printf, 3, 4))) int
LogPlain(LV2_Log_Handle handle, LV2_URID type, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = Log(handle, type, format, arguments);
    va_end(arguments);
    return length;
}

} // namespace

Features::Features()
    : map{this,
          [](LV2_URID_Map_Handle handle, const char* uri) {
              return static_cast<Features*>(handle)->Map(uri);
          }}
    , log{&logged, LogPlain, Log}
    , mapFeature{LV2_URID__map, &map}
    , logFeature{LV2_LOG__log, &log}
    , all{&logFeature, &mapFeature, nullptr}
{
}

uint32_t Features::Map(const std::string& uri)
{
    const auto found = std::find(uris.begin(), uris.end(), uri);
    const auto index = found - uris.begin();
    if (found == uris.end()) {
        uris.push_back(uri);
    }
    return static_cast<uint32_t>(index + 1);
}

const LV2_Descriptor* Find(const std::string& name)
{
    // Bound lazily it would still be complete; RTLD_NOW shows what is missing.
    static const auto get = [] {
        void* library = dlopen(PUFFGUARD_BUNDLE "/puffguard.so", RTLD_NOW | RTLD_LOCAL);
        return reinterpret_cast<LV2_Descriptor_Function>(
            library != nullptr ? dlsym(library, "lv2_descriptor") : nullptr);
    }();
    for (uint32_t i = 0; get != nullptr && get(i) != nullptr; ++i) {
        if (std::string(get(i)->URI).ends_with("/" + name)) {
            return get(i);
        }
    }
    return nullptr;
}

Instance::Instance(const std::string& name,
                   uint32_t newChannels,
                   double rate,
                   Features* newFeatures)
    : channels(newChannels)
    , descriptor(Find(name))
    , handle(descriptor != nullptr
                 ? descriptor->instantiate(descriptor,
                                           rate,
                                           PUFFGUARD_BUNDLE "/",
                                           newFeatures != nullptr ? newFeatures->All() : nullptr)
                 : nullptr)
{
}

Instance::~Instance()
{
    if (handle != nullptr) {
        descriptor->cleanup(handle);
    }
}

void Instance::ConnectAudio(uint32_t channel, float* input, float* output)
{
    Connect(FirstAudio + channel, input);
    Connect(FirstAudio + channels + channel, output);
}

void Instance::ConnectControls()
{
    for (uint32_t port = 0; port < FirstAudio; ++port) {
        Connect(port, &controls[port]);
    }
}

void Instance::Run(Audio& audio, uint32_t block)
{
    const auto frames = static_cast<uint32_t>(audio[0].size());
    for (uint32_t done = 0; done < frames; done += block) {
        for (uint32_t c = 0; c < channels; ++c) {
            ConnectAudio(c, audio[c].data() + done, audio[c].data() + done);
        }
        Run(std::min(block, frames - done));
    }
}

const LV2_State_Interface& Instance::StateInterface() const
{
    return *static_cast<const LV2_State_Interface*>(
        descriptor->extension_data(LV2_STATE__interface));
}

LV2_State_Status Instance::Save(std::optional<Saved>& saved) const
{
    const auto store = [](LV2_State_Handle target,
                          uint32_t key,
                          const void* value,
                          size_t size,
                          uint32_t type,
                          uint32_t flags) {
        if ((flags & LV2_STATE_IS_POD) == 0) {
            return LV2_STATE_ERR_BAD_FLAGS;
        }
        const auto* bytes = static_cast<const uint8_t*>(value);
        *static_cast<std::optional<Saved>*>(target) = {key, type, {bytes, bytes + size}};
        return LV2_STATE_SUCCESS;
    };
    return StateInterface().save(handle, store, &saved, LV2_STATE_IS_POD, nullptr);
}

LV2_State_Status Instance::Restore(const std::optional<Saved>& saved)
{
    const auto retrieve = [](LV2_State_Handle source,
                             uint32_t key,
                             size_t* size,
                             uint32_t* type,
                             uint32_t* flags) -> const void* {
        const auto& property = *static_cast<const std::optional<Saved>*>(source);
        if (!property || property->key != key) {
            return nullptr;
        }
        *size = property->bytes.size();
        *type = property->type;
        *flags = LV2_STATE_IS_POD;
        return property->bytes.data();
    };
    auto* source = const_cast<std::optional<Saved>*>(&saved);
    return StateInterface().restore(handle, retrieve, source, 0, nullptr);
}

} // namespace Lv2Host
