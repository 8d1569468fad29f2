// SPDX-License-Identifier: ISC
#include "wrappers/cli/Instance.h"

#include "wrappers/cli/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace Cli {

namespace {

constexpr uint32_t processContext = 0;
constexpr uint32_t uiContext = 1;

constexpr const char* sensitivity = "PuffGuard.Sensitivity";
constexpr const char* strength = "PuffGuard.Strength";
constexpr const char* upperFrequency = "PuffGuard.Upper Repair Frequency";
constexpr const char* latencyScaling = "PuffGuard.Latency Scaling";
constexpr const char* bypass = "Global.Global Bypass";

// Files have no controls that a change of latency or a parameter could be shown on.
uint32_t RefuseHostCall(uint32_t, uint32_t, uint32_t, void*, void*)
{
    return 1;
}

} // namespace

uint32_t ChannelConfigOf(int channels)
{
    const auto count = static_cast<uint32_t>(channels);
    return count <= 2 ? count - 1 : count + 10;
}

Instance::Instance(const Module& newModule, int sampleRate, int channels, const Settings& settings)
    : module(newModule)
{
    Create(sampleRate, channels);
    try {
        SetUp(settings);
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
    // What the user has set up for live use must not shift a result.
    std::string_view("Offline").copy(static_cast<char*>(record.identity.options),
                                     sizeof record.identity.options - 1);
    record.instance = &core;
    record.sampleRate = static_cast<float>(sampleRate);
    record.channelConfig = ChannelConfigOf(channels);
    const uint32_t answer = module.Call(SelectorCreatePlugin, uiContext, nullptr, &record);
    if (answer != PluginCoreSuccess || core == nullptr) {
        throw ModuleError(fmt::format("the module makes no instance (answer {})", answer));
    }
}

void Instance::SetUp(const Settings& settings)
{
    Call(SelectorInitialize, uiContext, nullptr, "be initialised");
    ReadParamList();
    for (const char* name : {sensitivity, strength, upperFrequency, latencyScaling, bypass}) {
        SetParam(name, params[FindParam(name)].defaultValue);
    }
    if (!settings.state.empty() && !LoadState(settings.state)) {
        throw ModuleError("the module refuses the settings that it gave itself");
    }
    Choose(settings.chosen);
    nextDetection = ReadTotals().detections;
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
    std::vector<ElementParamInfoRecord> records(count);
    ParamListRecord list = {count, 0, records.data()};
    Call(SelectorGetElementParamList, uiContext, &list, "list its parameters");
    for (const ElementParamInfoRecord& record : records) {
        params.push_back(MakeParameter(record.info));
    }
}

uint32_t Instance::FindParam(std::string_view identifier) const
{
    const auto found = std::find_if(params.begin(), params.end(), [&](const Parameter& param) {
        // The element's name has been spelt both "PuffGuard" and "Puffguard".
        return LowerCase(param.identifier) == LowerCase(identifier);
    });
    if (found == params.end()) {
        throw ModuleError(fmt::format("the module has no parameter \"{}\"", identifier));
    }
    return static_cast<uint32_t>(found - params.begin());
}

void Instance::SetParam(std::string_view identifier, std::optional<double> value)
{
    if (value) {
        const uint32_t index = FindParam(identifier);
        ParamValueRecord record = {index, Normalised(params[index], *value)};
        Call(SelectorSetElementParamValue, uiContext, &record, "take a parameter");
    }
}

void Instance::SetAll(float normalised)
{
    for (uint32_t index = 0; index < params.size(); ++index) {
        ParamValueRecord record = {index, normalised};
        Call(SelectorSetElementParamValue, uiContext, &record, "take a parameter");
    }
}

double Instance::ReadParam(uint32_t index) const
{
    ParamValueRecord record = {index, 0};
    Call(SelectorGetElementParamValue, uiContext, &record, "tell a parameter");
    return FromNormalised(params[index], record.value);
}

void Instance::Choose(const ChosenControls& chosen)
{
    const auto set = [this](const char* name, std::optional<double> value) {
        SetParam(name, value);
        return value ? *value : ReadParam(FindParam(name));
    };
    controls.sensitivity = set(sensitivity, chosen.sensitivity);
    controls.strength = set(strength, chosen.strength);
    controls.upperFrequency = set(upperFrequency, chosen.upperFrequency);
    controls.latencyScaling = set(latencyScaling, chosen.latencyScaling);
    controls.bypass = set(bypass, chosen.bypass ? std::optional(1.0) : std::nullopt) >= 0.5;
    Call(SelectorGetLatency, processContext, &latency, "tell its latency");
}

std::vector<Parameter> Instance::ReadParameters() const
{
    std::vector<Parameter> result = params;
    for (uint32_t index = 0; index < result.size(); ++index) {
        result[index].value = ReadParam(index);
    }
    return result;
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
