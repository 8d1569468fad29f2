// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dispatch/EntryHandlers.h"

#include <algorithm>
#include <optional>
#include <span>

namespace EntryHandlers {
namespace {

// Each limit is optional. The protocol has this arithmetic in single precision.
int32_t Constrain(int32_t value, std::optional<uint32_t> low, std::optional<uint32_t> high)
{
    auto size = static_cast<float>(value);
    if (low) {
        size = std::max(size, static_cast<float>(*low));
    }
    if (high) {
        size = std::min(size, static_cast<float>(*high));
    }
    // The largest float below 2^31: a value that no limit held must still fit.
    return static_cast<int32_t>(std::min(size, 2147483520.0F));
}

// The caller knows how long the texts are, as it knows the product.
void PutText(const String& text, char* place)
{
    std::copy_n(text.c_str(), text.Length() + 1, place);
}

uint32_t DescribeModule(const PluginDefinition& definition, ModuleListRecord& record)
{
    const bool isContent = record.op == ModuleListOpGetContent;
    if (isContent && (record.text == nullptr || record.data == nullptr)) {
        return PluginCoreNullRecord;
    }
    if (record.index >= definition.GetModuleCount()) {
        return PluginCoreUnsupported;
    }
    if (isContent) {
        const PluginDefinition::ModuleContent content = definition.GetModuleContent(record.index);
        PutText(content.text, record.text);
        std::copy(content.data.begin(), content.data.end(), static_cast<uint8_t*>(record.data));
    } else {
        record.value = record.op == ModuleListOpGetFirstValue
                           ? definition.GetModuleFirstValue(record.index)
                           : definition.GetModuleSecondValue(record.index);
    }
    return PluginCoreSuccess;
}

} // namespace

uint32_t EditorCommand(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const PluginDefinition& definition = plugin.GetDefinition();
    auto& record = As<EditorRecord>(data);
    switch (record.op) {
    case EditorOpOpen:
        return plugin.OpenEditor(record) ? PluginCoreSuccess : PluginCoreNoEditor;
    case EditorOpClose:
        plugin.CloseEditor();
        return PluginCoreSuccess;
    case EditorOpIdle:
    case EditorOpShow:
    case EditorOpNone:
    case EditorOpSetWindowPosition:
    case EditorOpSetWindowSize:
        return PluginCoreSuccess;
    case EditorOpCanClose:
        record.result = 1;
        return PluginCoreSuccess;
    case EditorOpGetNativeWindow:
        record.nativeWindow = 0;
        return PluginCoreSuccess;
    case EditorOpWindowMessage:
        record.handled = 0;
        return PluginCoreSuccess;
    case EditorOpConstrainSize:
        record.width = Constrain(record.width, definition.GetMinWidth(), definition.GetMaxWidth());
        record.height =
            Constrain(record.height, definition.GetMinHeight(), definition.GetMaxHeight());
        return PluginCoreSuccess;
    case EditorOpGetScale:
        record.scale = 0;
        record.result = 1;
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}

uint32_t EditorKey(PluginCore& /*plugin*/, DSP::Context /*context*/, void* data)
{
    As<EditorKeyRecord>(data).handled = 0;
    return PluginCoreSuccess;
}

uint32_t EditorMouse(PluginCore& /*plugin*/, DSP::Context /*context*/, void* data)
{
    As<EditorMouseRecord>(data).handled = 0;
    return PluginCoreSuccess;
}

uint32_t StateCommand(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    auto& record = As<StateRecord>(data);
    if (record.op == StateOpGetSize) {
        record.size = plugin.GetStateSize();
        return PluginCoreSuccess;
    }
    // A chunk that has no place counts as one of no bytes, which is never right.
    auto* bytes = static_cast<uint8_t*>(record.buffer);
    const std::span<uint8_t> chunk(bytes, bytes != nullptr ? record.size : 0);
    bool succeeded = false;
    switch (record.op) {
    case StateOpGetCompareChunk:
        succeeded = plugin.GetCompareChunk(chunk);
        break;
    case StateOpGetChunk:
        succeeded = plugin.GetChunk(chunk);
        plugin.ClearDefaultState();
        break;
    case StateOpSetChunk:
        plugin.ClearDefaultState();
        succeeded = plugin.SetChunk(chunk, record.version, DSP::SourceHost);
        break;
    case StateOpCompareChunk: {
        bool equal = false;
        succeeded = plugin.CompareChunk(chunk, equal);
        if (succeeded) {
            record.equal = equal ? 1 : 0;
        }
        break;
    }
    default:
        return PluginCoreUnsupported;
    }
    record.failed = succeeded ? 0 : 1;
    return PluginCoreSuccess;
}

uint32_t ModuleListQuery(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const PluginDefinition& definition = plugin.GetDefinition();
    auto& record = As<ModuleListRecord>(data);
    switch (record.op) {
    case ModuleListOpGetCount:
        record.count = definition.GetModuleCount();
        return PluginCoreSuccess;
    case ModuleListOpGetFirstValue:
    case ModuleListOpGetSecondValue:
    case ModuleListOpGetContent:
        return DescribeModule(definition, record);
    case ModuleListOpGetTotal:
        record.value = definition.GetModuleTotal();
        return PluginCoreSuccess;
    case ModuleListOpGetText:
        if (record.text == nullptr) {
            return PluginCoreNullRecord;
        }
        PutText(definition.GetModuleListText(), record.text);
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}

uint32_t GetExtensionCount(PluginCore& /*plugin*/, DSP::Context /*context*/, void* data)
{
    As<uint32_t>(data) = 0;
    return PluginCoreSuccess;
}

} // namespace EntryHandlers
