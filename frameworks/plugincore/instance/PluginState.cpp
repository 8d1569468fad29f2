// SPDX-License-Identifier: ISC
// The state of an instance as a host, a format change and the history keep it: a dictionary,
// written as text and compressed. Every call builds it anew from what is there.
#include "frameworks/plugincore/dsp/path/ElementState.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/StateChunk.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace {

constexpr int32_t MajorVersion = 1;
constexpr int32_t MinorVersion = 1;

constexpr uint32_t ProTools = 2;

// Session modes of a product.
constexpr uint32_t SessionsHaveIdentifiers = 2;

const String StateKey("DSP State");
const String ContextKey("Context State");
const String SessionKey("Session UUID");
const String MajorVersionKey("Major Version");
const String MinorVersionKey("Minor Version");
const String DefaultStateKey("PT Default State");

bool IsInteger(const Util::DictionaryValue& value, int32_t expected)
{
    if (const auto* number = std::get_if<int32_t>(&value.value)) {
        return *number == expected;
    }
    const auto* number = std::get_if<uint32_t>(&value.value);
    return number != nullptr && *number == static_cast<uint32_t>(expected);
}

} // namespace

uint32_t Plugin::GetStateSize()
{
    LoadPendingChunks();
    return StateChunk::GetChunkSizeOfText(WriteText(BuildStateDictionary()));
}

bool Plugin::GetChunk(std::span<uint8_t> chunk)
{
    LoadPendingChunks();
    transform->BeforeSave();
    return WriteStateChunk(BuildStateDictionary(), chunk);
}

bool Plugin::GetCompareChunk(std::span<uint8_t> chunk)
{
    LoadPendingChunks();
    return WriteStateChunk(BuildCompareDictionary(), chunk);
}

bool Plugin::WriteStateChunk(const Util::Dictionary& dictionary, std::span<uint8_t> chunk)
{
    return StateChunk::WriteText(WriteText(dictionary), chunk);
}

String Plugin::WriteText(const Util::Dictionary& dictionary)
{
    Util::WriteDictionary(*writer, dictionary);
    return writer->GetText();
}

Util::Dictionary Plugin::BuildCommonDictionary() const
{
    Util::Dictionary result;
    result.Set(StateKey, {DSP::BuildElements(transform->GetSet())});
    if (GetDefinition().GetSessionMode() == SessionsHaveIdentifiers) {
        result.Set(SessionKey, {Util::FormatUuid(sessionUuid)});
    }
    result.Set(MajorVersionKey, {MajorVersion});
    result.Set(MinorVersionKey, {MinorVersion});
    return result;
}

Util::Dictionary Plugin::BuildStateDictionary() const
{
    Util::Dictionary result = BuildCommonDictionary();
    result.Set(ContextKey, {sessionContext->SaveContext()});
    if (hostFacts.GetNumber() == ProTools) {
        result.Set(DefaultStateKey, {defaultStateFlag});
    }
    return result;
}

Util::Dictionary Plugin::BuildCompareDictionary() const
{
    Util::Dictionary result = BuildCommonDictionary();
    result.Set(ContextKey, {sessionContext->SaveCompareContext()});
    return result;
}

bool Plugin::SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source)
{
    const std::optional<Util::Bytes> text = StateChunk::ReadText(chunk);
    if (!text) {
        return false;
    }
    LoadPendingChunks(); // the older state: this one may lack a value, or be none at all
    const EditorLoadScope scope(editor);
    transform->GetSet().BeforeStateChange();
    const bool isLegacy = version < GetDefinition().GetStateVersion();
    const bool succeeded = !isLegacy || transform->LoadLegacyChunk(*text, version);
    if (!isLegacy) {
        ApplyStateDictionary(*text, source);
    }
    transform->AfterStateLoaded();
    history.onStateChanged();
    return succeeded;
}

void Plugin::ApplyStateDictionary(Util::ByteSpan text, DSP::ValueSource source)
{
    const Util::Dictionary state = Util::ReadDictionary(*reader, text).value_or(Util::Dictionary());
    const auto version = std::find_if(state.begin(), state.end(), [](const auto& entry) {
        return entry.first == MajorVersionKey;
    });
    if (version == state.end()) {
        ApplyLegacyDictionary(state, source);
    } else if (IsInteger(version->second, MajorVersion)) {
        ApplyVersion1Dictionary(state, source);
    }
    // A state of a later program leaves the instance as it stands.
}

// Older states are what stands under "DSP State" now.
void Plugin::ApplyLegacyDictionary(const Util::Dictionary& state, DSP::ValueSource source)
{
    DSP::ApplyElements(transform->GetSet(), DSP::ReadElements(state), source);
}

void Plugin::ApplyVersion1Dictionary(const Util::Dictionary& state, DSP::ValueSource source)
{
    if (const auto* elements = state.Find<Util::Dictionary>(StateKey)) {
        DSP::ApplyElements(transform->GetSet(), DSP::ReadElements(*elements), source);
    }
    if (const auto* saved = state.Find<Util::Dictionary>(ContextKey)) {
        const bool* isDefault = state.Find<bool>(DefaultStateKey);
        if (isDefault != nullptr && *isDefault) {
            sessionContext->LoadDefaultContext(*saved);
        } else {
            sessionContext->LoadContext(*saved);
        }
    }
    if (const String* session = state.Find<String>(SessionKey);
        session != nullptr && GetDefinition().GetSessionMode() == SessionsHaveIdentifiers) {
        sessionUuid = Util::ParseUuid(*session).value_or(sessionUuid);
    }
}

bool Plugin::CompareChunk(Util::ByteSpan chunk, bool& equal)
{
    equal = true;
    const std::optional<Util::Bytes> text = StateChunk::ReadText(chunk);
    if (!text) {
        return false;
    }
    LoadPendingChunks();
    const Util::Dictionary state =
        Util::ReadDictionary(*reader, *text).value_or(Util::Dictionary());
    // Only states of the older form have their elements on top, so that any other compares equal:
    // hosts use the answer to mark a session as changed, and rely on it.
    for (const DSP::ElementParamData& data : DSP::ReadElements(state)) {
        const DSP::Element* element =
            DSP::FindElementByEitherName(transform->GetSet(), data.GetElementName());
        if (element == nullptr) {
            continue;
        }
        const std::optional<bool> isSame = DSP::IsSameState(*element, data);
        if (!isSame) {
            return false;
        }
        if (!*isSame) {
            equal = false;
            return true;
        }
    }
    return true;
}

void Plugin::LoadPendingChunks()
{
    for (const Util::Bytes& chunk : std::exchange(pendingChunks, {})) {
        SetChunk(chunk, GetDefinition().GetVersionNumber(), DSP::SourceHost);
    }
}
