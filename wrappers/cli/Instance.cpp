// SPDX-License-Identifier: ISC
#include "wrappers/cli/Instance.h"

#include "wrappers/cli/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Cli {

namespace {

constexpr uint32_t processContext = 0;
constexpr uint32_t uiContext = 1;

// Files have no controls that a change of latency or a parameter could be shown on.
uint32_t RefuseHostCall(uint32_t, uint32_t, uint32_t, void*, void*)
{
    return 1;
}

// Length of a text that may fill its field without a terminator.
std::string_view FieldText(const char* field, size_t size)
{
    return {field, ::strnlen(field, size)};
}

// A float's decimal form without the digits that come from its being binary: 200 and not
// 200.00000596.
double Tidy(double value)
{
    return std::round(value * 1e4) / 1e4;
}

} // namespace

uint32_t ChannelConfigOf(int channels)
{
    const auto count = static_cast<uint32_t>(channels);
    return count <= 2 ? count - 1 : count + 10;
}

Instance::Instance(const Module& newModule,
                   int sampleRate,
                   int channels,
                   const ChosenControls& chosen)
    : module(newModule)
{
    Create(sampleRate, channels);
    try {
        Call(SelectorInitialize, uiContext, nullptr, "be initialised");
        ReadParamList();
        SetControls(chosen);
        Call(SelectorGetLatency, processContext, &latency, "tell its latency");
        nextDetection = ReadTotals().detections;
    } catch (...) {
        module.Call(SelectorDestroyPlugin, uiContext, core, nullptr);
        throw;
    }
}

Instance::~Instance()
{
    module.Call(SelectorTerminate, uiContext, core, nullptr);
    module.Call(SelectorDestroyPlugin, uiContext, core, nullptr);
}

void Instance::Create(int sampleRate, int channels)
{
    CreateRecord record = {};
    record.hostCallback = RefuseHostCall;
    record.hostRefcon = this;
    module.GetPath().copy(static_cast<char*>(record.modulePath), sizeof record.modulePath - 1);
    record.identity.format = FormatStandalone;
    record.instance = &core;
    record.sampleRate = static_cast<float>(sampleRate);
    record.channelConfig = ChannelConfigOf(channels);
    const uint32_t answer = module.Call(SelectorCreatePlugin, uiContext, nullptr, &record);
    if (answer != PluginCoreSuccess || core == nullptr) {
        throw ModuleError(fmt::format("the module makes no instance (answer {})", answer));
    }
}

void Instance::Call(uint32_t selector, uint32_t context, void* data, const char* purpose) const
{
    const uint32_t answer = module.Call(selector, context, core, data);
    if (answer != PluginCoreSuccess) {
        throw ModuleError(fmt::format("the module refuses to {} (answer {})", purpose, answer));
    }
}

void Instance::ReadParamList()
{
    uint32_t count = 0;
    Call(SelectorGetElementParamCount, uiContext, &count, "count its parameters");
    params.resize(count);
    ParamListRecord list = {count, 0, params.data()};
    Call(SelectorGetElementParamList, uiContext, &list, "list its parameters");
}

const ElementParamInfoRecord& Instance::FindParam(std::string_view identifier,
                                                  uint32_t& index) const
{
    const auto isWanted = [&](const ElementParamInfoRecord& param) {
        const auto& field = param.info.identifier;
        // The element's name has been spelt both "PuffGuard" and "Puffguard".
        return LowerCase(FieldText(static_cast<const char*>(field), sizeof field)) ==
               LowerCase(identifier);
    };
    const auto found = std::find_if(params.begin(), params.end(), isWanted);
    if (found == params.end()) {
        throw ModuleError(fmt::format("the module has no parameter \"{}\"", identifier));
    }
    index = static_cast<uint32_t>(found - params.begin());
    return *found;
}

double Instance::SetControl(std::string_view identifier, std::optional<double> value)
{
    ParamValueRecord record = {};
    const ParamInfoRecord& info = FindParam(identifier, record.index).info;
    const auto minimum = static_cast<double>(info.minimum);
    const auto maximum = static_cast<double>(info.maximum);
    const double wanted =
        std::clamp(value.value_or(static_cast<double>(info.defaultValue)), minimum, maximum);
    const double range = maximum - minimum;
    record.value = static_cast<float>(range > 0 ? (wanted - minimum) / range : 0.0);
    Call(SelectorSetElementParamValue, uiContext, &record, "take a parameter");
    return value ? wanted : Tidy(wanted);
}

void Instance::SetControls(const ChosenControls& chosen)
{
    controls.sensitivity = SetControl("PuffGuard.Sensitivity", chosen.sensitivity);
    controls.strength = SetControl("PuffGuard.Strength", chosen.strength);
    controls.upperFrequency = SetControl("PuffGuard.Upper Repair Frequency", chosen.upperFrequency);
    controls.latencyScaling = SetControl("PuffGuard.Latency Scaling", chosen.latencyScaling);
    controls.bypass = SetControl("Global.Global Bypass", chosen.bypass ? 1.0 : 0.0) >= 0.5;
}

void Instance::Process(float** channels, uint32_t frames)
{
    ProcessRecord record = {};
    record.frames = frames;
    record.channels = channels;
    Call(SelectorProcess, processContext, &record, "process");
}

bool Instance::ReadTransform(TransformReadRecord& record) const
{
    return module.Call(SelectorTransformRead, processContext, core, &record) == PluginCoreSuccess &&
           record.answered != 0;
}

void Instance::ReadDetections(std::vector<DetectionRecord>& detections)
{
    TransformReadRecord record = {};
    record.request = TransformReadDetections;
    record.capacity = static_cast<uint32_t>(detectionBuffer.size());
    record.recordBytes = sizeof(DetectionRecord);
    record.buffer = detectionBuffer.data();
    do {
        record.position = nextDetection;
        if (!ReadTransform(record)) {
            throw ModuleError("the module doesn't tell its repairs");
        }
        for (uint32_t i = 0; i < record.count; ++i) {
            const DetectionRecord& detection = detectionBuffer[i];
            lostDetections += detection.number - nextDetection;
            nextDetection = detection.number + 1;
            detections.push_back(detection);
        }
    } while (record.flag != 0 && record.count > 0);
}

DetectionTotalsRecord Instance::ReadTotals() const
{
    DetectionTotalsRecord totals = {};
    TransformReadRecord record = {};
    record.request = TransformReadTotals;
    record.capacity = 1;
    record.recordBytes = sizeof totals;
    record.buffer = &totals;
    if (!ReadTransform(record)) {
        throw ModuleError("the module doesn't tell its sums");
    }
    return totals;
}

} // namespace Cli
