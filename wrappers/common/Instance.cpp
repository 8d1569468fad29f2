// SPDX-License-Identifier: ISC
#include "wrappers/common/Instance.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/ParameterRecords.h"
#include "wrappers/common/Text.h"

#include <filesystem>
#include <utility>

namespace Wrapper {

static_assert(BlockBuffers::MaxChannels == PLUGIN_CORE_MAX_CHANNELS);
static_assert(static_cast<uint32_t>(Side::Process) == ContextProcess &&
              static_cast<uint32_t>(Side::UI) == ContextUI);

namespace {

// The plain layouts: their channels have no meaning, whatever the host's order of speakers is.
uint32_t LayoutOf(uint32_t channels)
{
    switch (channels) {
    case 1:
        return ChannelConfigMono;
    case 2:
        return ChannelConfigStereo;
    default:
        return ChannelConfigPlain3 + (channels - 3);
    }
}

int32_t NumberOf(Format format)
{
    switch (format) {
    case Format::Program:
        return FormatStandalone;
    case Format::VST3:
        return FormatVST3;
    case Format::Other:
        break;
    }
    return FormatVST3 + 1; // a number that the module has no name for
}

} // namespace

std::unique_ptr<Instance> Instance::Create(std::shared_ptr<const Module> module,
                                           const Setup& setup,
                                           Listener& listener,
                                           const LogFunction& log)
{
    // The constructor is private, so that no instance exists that isn't usable.
    std::unique_ptr<Instance> instance(new Instance(std::move(module), listener, log));
    return instance->Start(setup) ? std::move(instance) : nullptr;
}

Instance::Instance(std::shared_ptr<const Module> newModule,
                   Listener& newListener,
                   LogFunction newLog)
    : module(std::move(newModule))
    , listener(newListener)
    , log(std::move(newLog))
{
}

Instance::~Instance()
{
    if (core != nullptr) {
        Call(SelectorTerminate, Side::UI, nullptr);
        Call(SelectorDestroyPlugin, Side::UI, nullptr);
    }
}

bool Instance::Start(const Setup& setup)
{
    if (setup.channels < 1 || setup.channels > BlockBuffers::MaxChannels) {
        log("the module makes no instance of " + std::to_string(setup.channels) + " channels");
        return false;
    }
    buffers.SetChannels(setup.channels);
    CreateRecord record = {};
    record.hostCallback = HostCallback;
    record.hostRefcon = this;
    // The module looks for what came with it beside this.
    CopyText(std::filesystem::absolute(module->GetPath()).string(), record.modulePath);
    record.identity.format = NumberOf(setup.format);
    CopyText(setup.use == Use::Files ? "Offline" : "", record.identity.options);
    record.instance = &core;
    const bool isServable = CanServe(setup.sampleRate, setup.channels);
    rate = isServable ? setup.sampleRate : static_cast<double>(PLUGIN_CORE_FALLBACK_RATE);
    record.sampleRate = static_cast<float>(rate);
    record.channelConfig = LayoutOf(setup.channels);
    const uint32_t answer = module->Call(SelectorCreatePlugin, ContextUI, nullptr, &record);
    if (answer != PluginCoreSuccess || core == nullptr) {
        log("the module makes no instance (answer " + std::to_string(answer) + ")");
        return false;
    }
    if (!Request(SelectorInitialize, nullptr, "be initialised") || !ReadParameters()) {
        return false;
    }
    if (setup.use == Use::Live) {
        softBypass.emplace(*this);
        softBypass->SetFormat(rate, setup.channels);
    }
    return true;
}

bool Instance::Request(uint32_t selector, void* data, const char* purpose) const
{
    const uint32_t answer = Call(selector, Side::UI, data);
    if (answer != PluginCoreSuccess) {
        log(std::string("the module refuses to ") + purpose + " (answer " + std::to_string(answer) +
            ")");
    }
    return answer == PluginCoreSuccess;
}

bool Instance::ReadParameters()
{
    const auto records = ReadParameterRecords<ParamInfoRecord>(
        SelectorGetAutomatableParamCount,
        SelectorGetAutomatableParamList,
        [this](auto&&... arguments) { return Request(arguments...); });
    if (!records) {
        return false;
    }
    for (const ParamInfoRecord& record : *records) {
        parameters.push_back(MakeParameter(record));
        if (parameters.back().identifier == BypassIdentifier) {
            bypassIndex = static_cast<uint32_t>(parameters.size() - 1);
        }
    }
    return true;
}

uint32_t Instance::HostCallback(
    uint32_t magic, uint32_t opcode, uint32_t context, void* refcon, void* data) noexcept
{
    if (magic != PLUGIN_CORE_MAGIC) {
        return PluginCoreWrongMagic;
    }
    const bool hasRecord = opcode == HostOpcodeParamEvent || opcode == HostOpcodeLatencyChanged;
    if (hasRecord && data == nullptr) {
        return PluginCoreNullRecord;
    }
    return static_cast<Instance*>(refcon)->OnHostCall(opcode, context, data);
}

uint32_t Instance::OnHostCall(uint32_t opcode, uint32_t context, const void* data) noexcept
{
    switch (opcode) {
    case HostOpcodeParamEvent:
        OnParamEvent(*static_cast<const ParamEventRecord*>(data));
        return PluginCoreSuccess;
    case HostOpcodeLatencyChanged:
        listener.OnLatencyChanged(context == ContextUI ? Side::UI : Side::Process,
                                  *static_cast<const uint32_t*>(data));
        return PluginCoreSuccess;
    case HostOpcodeDirtyState:
        listener.OnStateChanged();
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}

void Instance::OnParamEvent(const ParamEventRecord& event) noexcept
{
    switch (event.kind) {
    case ParamEventGestureBegins:
        listener.OnGestureBegun(event.index);
        break;
    case ParamEventValueChanged:
        listener.OnParameterChanged(event.index, event.value);
        break;
    case ParamEventGestureEnds:
        listener.OnGestureEnded(event.index);
        break;
    default:
        break;
    }
}

// The module passes over a format outside these bounds without a word.
bool Instance::CanServe(double sampleRate, uint32_t channels)
{
    constexpr auto Lowest = static_cast<double>(PLUGIN_CORE_LOWEST_RATE);
    constexpr auto Highest = static_cast<double>(PLUGIN_CORE_HIGHEST_RATE);
    return sampleRate >= Lowest && sampleRate <= Highest && channels >= 1 &&
           channels <= BlockBuffers::MaxChannels;
}

bool Instance::SetFormat(double sampleRate, uint32_t channels)
{
    if (!CanServe(sampleRate, channels)) {
        return false;
    }
    BlockBuffers newBuffers; // made first: without memory nothing changes
    newBuffers.SetChannels(channels);
    if (!SetModuleFormat(sampleRate, channels)) {
        return false;
    }
    try {
        if (softBypass) {
            softBypass->SetFormat(sampleRate, channels);
        }
    } catch (...) {
        SetModuleFormat(rate, buffers.GetChannels());
        throw;
    }
    buffers = std::move(newBuffers);
    rate = sampleRate;
    return true;
}

bool Instance::SetModuleFormat(double sampleRate, uint32_t channels)
{
    StreamFormatRecord record = {static_cast<float>(sampleRate), LayoutOf(channels)};
    return Request(SelectorSetStreamFormat, &record, "take a stream format");
}

void Instance::Activate()
{
    ProcessingStateRecord record = {1, 0};
    Call(SelectorSetProcessingState, Side::UI, &record);
    // What still waits for a block goes in now: else its latency came with the first one.
    uint32_t latency = 0;
    Call(SelectorResetProcessing, Side::UI, &latency);
    if (softBypass) {
        softBypass->Reset();
    }
}

void Instance::Deactivate()
{
    ProcessingStateRecord record = {0, 0};
    Call(SelectorSetProcessingState, Side::UI, &record);
}

void Instance::Reset() noexcept
{
    Call(SelectorSettle, Side::Process, nullptr);
    if (softBypass) {
        softBypass->Reset();
    }
}

bool Instance::Process(const Block& block, std::optional<double> position) noexcept
{
    bool isDone = true;
    buffers.Run(block, [&](float** channels, uint32_t begin, uint32_t frames) {
        const auto repair = [&](float** piece, uint32_t offset, uint32_t pieceFrames) {
            const auto place = position ? std::optional(*position + begin + offset) : std::nullopt;
            return Repair(piece, pieceFrames, place);
        };
        // After a refusal the rest passes untouched, too.
        isDone = isDone && (softBypass ? softBypass->Process(channels, frames, repair)
                                       : repair(channels, 0, frames));
    });
    return isDone;
}

bool Instance::Repair(float** channels, uint32_t frames, std::optional<double> position) noexcept
{
    TransportRecord transport = {};
    transport.isPositionValid = position ? 1 : 0;
    transport.position = position.value_or(0.0);
    ProcessRecord record = {};
    record.frames = frames;
    record.channels = channels;
    record.transport = &transport;
    return Call(SelectorProcess, Side::Process, &record) == PluginCoreSuccess;
}

uint32_t Instance::GetLatency(Side side) const noexcept
{
    uint32_t samples = 0;
    Call(SelectorGetLatency, side, &samples);
    return samples;
}

void Instance::SetParameter(Side side, uint32_t index, float normalised) noexcept
{
    ParamValueRecord record = {index, normalised};
    Call(SelectorSetAutomatableParamValue, side, &record);
}

float Instance::GetParameter(Side side, uint32_t index) const noexcept
{
    ParamValueRecord record = {index, 0.0F};
    Call(SelectorGetAutomatableParamValue, side, &record);
    return record.value;
}

void Instance::BeginGesture(uint32_t index, float before)
{
    ReportGesture({ParamEventGestureBegins, index, before});
}

void Instance::EndGesture(uint32_t index)
{
    ReportGesture({ParamEventGestureEnds, index, 0.0F});
}

void Instance::ReportGesture(ParamEventRecord event)
{
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_GESTURE, sizeof event, &event};
    Call(SelectorHostMessage, Side::UI, &message);
}

uint32_t Instance::CallEditor(EditorRecord& record) noexcept
{
    return Call(SelectorEditorCommand, Side::UI, &record);
}

} // namespace Wrapper
