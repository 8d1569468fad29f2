// SPDX-License-Identifier: ISC
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include "tests/contract/support/AudioCall.h"
#include "tests/support/ModuleHost.h"

#include <lv2/atom/atom.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace Lv2Host {

namespace {

// By port, as the bundle's documents say.
constexpr struct {
    float minimum; // at the normalised value 0
    float maximum;
    float initial;
} Ranges[] = {{0, 10, 5}, {0, 10, 5}, {50, 500, 200}, {1, 0, 1}};

int Log(LV2_Log_Handle handle, LV2_URID, const char* format, va_list arguments)
{
    std::array<char, 4096> text{};
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    static_cast<std::vector<std::string>*>(handle)->emplace_back(text.data());
    return length;
}

// NOLINTBEGIN(modernize-avoid-variadic-functions): the format's type
__attribute__((format(printf, 3, 4))) int
LogPlain(LV2_Log_Handle handle, LV2_URID type, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int length = Log(handle, type, format, arguments);
    va_end(arguments);
    return length;
}
// NOLINTEND(modernize-avoid-variadic-functions)

/// The descriptor of a plug-in; null when the bundle has none.
const LV2_Descriptor* Find(const Contract::Library& library, uint32_t channels)
{
    const auto get = library.Find<LV2_Descriptor_Function>("lv2_descriptor");
    const std::string name = channels == 1   ? "/mono"
                             : channels == 2 ? "/stereo"
                             : channels == 6 ? "/surround51"
                                             : "/surround71";
    for (uint32_t i = 0; get != nullptr && get(i) != nullptr; ++i) {
        if (std::string(get(i)->URI).ends_with(name)) {
            return get(i);
        }
    }
    return nullptr;
}

void Append(std::vector<uint8_t>& bytes, float value)
{
    const auto* const place = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), place, place + sizeof value);
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

Plugin::Plugin(uint32_t newChannels, double newRate, Manner manner)
    : library(PUFFGUARD_LV2)
    , channels(newChannels)
    , rate(newRate)
    , descriptor(Find(library, newChannels))
    , handle(descriptor != nullptr
                 ? descriptor->instantiate(descriptor,
                                           rate,
                                           PUFFGUARD_BUNDLE "/",
                                           manner == Manner::Full ? features.All() : nullptr)
                 : nullptr)
{
    for (uint32_t port = 0; port < FirstAudio && handle != nullptr && manner == Manner::Full;
         ++port) {
        Connect(port, &controls[port]);
    }
    for (uint32_t port = 0; port < wanted.size(); ++port) {
        wanted[port] = Ranges[port].initial;
    }
}

Plugin::~Plugin()
{
    if (handle != nullptr) {
        descriptor->cleanup(handle);
    }
}

bool Plugin::Activate(double newRate, uint32_t /*longestBlock*/)
{
    if (newRate != rate) {
        return false;
    }
    descriptor->activate(handle);
    Run(0); // the latency shows in a port
    return true;
}

void Plugin::Process(const float* const* inputs, float* const* outputs, uint32_t frames)
{
    for (uint32_t c = 0; c < channels; ++c) {
        Connect(FirstAudio + c, inputs != nullptr ? const_cast<float*>(inputs[c]) : nullptr);
        Connect(FirstAudio + channels + c, outputs != nullptr ? outputs[c] : nullptr);
    }
    Run(frames);
}

// A port's memory belongs to the audio thread while it runs.
void Plugin::Run(uint32_t frames)
{
    std::copy(wanted.begin(), wanted.end(), controls.begin());
    {
        const Contract::AudioCall scope;
        descriptor->run(handle, frames);
    }
    latency = static_cast<uint32_t>(controls[Latency]);
}

void Plugin::Reset()
{
    descriptor->deactivate(handle);
    descriptor->activate(handle);
}

void Plugin::SetParameter(uint32_t index, float normalised)
{
    const auto& range = Ranges[index];
    wanted[index] = range.minimum + normalised * (range.maximum - range.minimum);
}

// The plug-in's own value stands in what it saves, in the module's form, where no bypass is.
std::optional<float> Plugin::GetParameter(uint32_t index)
{
    if (index == Enabled) {
        return std::nullopt;
    }
    TestHost::Instance reader(48000.0F, 1);
    return reader.LoadState(SaveChunk()) ? reader.Value(index) : std::nanf("");
}

const LV2_State_Interface& Plugin::StateInterface() const
{
    return *static_cast<const LV2_State_Interface*>(
        descriptor->extension_data(LV2_STATE__interface));
}

LV2_State_Status Plugin::Store(std::optional<Saved>& saved) const
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

LV2_State_Status Plugin::Restore(const std::optional<Saved>& saved)
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

Saved Plugin::MakeSaved(std::span<const uint8_t> chunk)
{
    return {features.Map("https://puffguard.example/lv2/state"),
            features.Map(LV2_ATOM__Chunk),
            {chunk.begin(), chunk.end()}};
}

std::vector<uint8_t> Plugin::SaveChunk() const
{
    std::optional<Saved> saved;
    return Store(saved) == LV2_STATE_SUCCESS ? saved->bytes : std::vector<uint8_t>{};
}

std::vector<uint8_t> Plugin::Save()
{
    std::vector<uint8_t> bytes = SaveChunk();
    for (const float value : wanted) {
        Append(bytes, value);
    }
    return bytes;
}

bool Plugin::Load(std::span<const uint8_t> bytes)
{
    PortValues values{};
    if (bytes.size() < sizeof values) {
        return false;
    }
    const auto chunk = bytes.first(bytes.size() - sizeof values);
    if (Restore(MakeSaved(chunk)) != LV2_STATE_SUCCESS) {
        return false;
    }
    std::memcpy(values.data(), bytes.data() + chunk.size(), sizeof values);
    std::copy(values.begin(), values.end(), wanted.begin());
    return true;
}

std::vector<uint8_t> Plugin::MakeSession(std::span<const uint8_t> chunk)
{
    std::vector<uint8_t> bytes(chunk.begin(), chunk.end());
    for (const auto& range : Ranges) {
        Append(bytes, range.initial);
    }
    return bytes;
}

} // namespace Lv2Host

namespace Contract {

std::unique_ptr<FormatHost> MakeLv2Host(double rate, uint32_t channels)
{
    auto host = std::make_unique<Lv2Host::Plugin>(channels, rate);
    for (const std::string& line : host->features.logged) {
        std::fprintf(stderr, "%s\n", line.c_str());
    }
    return *host ? std::move(host) : nullptr;
}

} // namespace Contract
