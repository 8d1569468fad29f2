// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StateDocument.h"

#include "frameworks/plugincore/dsp/path/ElementState.h"

#include <algorithm>
#include <variant>

namespace {

constexpr int32_t MajorVersion = 1;
constexpr int32_t MinorVersion = 1;

const String StateKey("DSP State");
const String ContextKey("Context State");
const String SessionKey("Session UUID");
const String MajorVersionKey("Major Version");
const String MinorVersionKey("Minor Version");
const String DefaultStateKey("PT Default State");
// The history's file has no place for the time of a step, and what a user looks for there is known
// by it. Within the state every reader of such files passes over it.
const String TimeKey("Snapshot Time");

bool IsInteger(const Util::DictionaryValue& value, int32_t expected)
{
    if (const auto* number = std::get_if<int32_t>(&value.value)) {
        return *number == expected;
    }
    const auto* number = std::get_if<uint32_t>(&value.value);
    return number != nullptr && *number == static_cast<uint32_t>(expected);
}

} // namespace

StateDocument::StateDocument(const PluginFactory& factory,
                             const DSP::TransformBase& newPath,
                             bool newHasDefaultFlag)
    : definition(factory.GetDefinition())
    , path(newPath)
    , hasDefaultFlag(newHasDefaultFlag)
    , reader(factory.CreateReader())
    , writer(factory.CreateWriter())
    , context(factory.CreateContext())
    , sessionUuid(Util::MakeUuid())
{
}

String StateDocument::Write(Form form)
{
    Util::WriteDictionary(*writer, Build(form));
    return writer->GetText();
}

Util::Dictionary StateDocument::Build(Form form) const
{
    Util::Dictionary result;
    result.Set(StateKey, {DSP::BuildElements(path.GetSet())});
    if (definition.GetSessionMode() == SessionMode::KeptIdentifier) {
        result.Set(SessionKey, {Util::FormatUuid(sessionUuid)});
    }
    result.Set(MajorVersionKey, {MajorVersion});
    result.Set(MinorVersionKey, {MinorVersion});
    if (form == Form::Comparable) {
        result.Set(ContextKey, {context->SaveCompareContext()});
        return result;
    }
    result.Set(ContextKey, {context->SaveContext()});
    if (hasDefaultFlag) {
        result.Set(DefaultStateKey, {isDefault});
    }
    return result;
}

Util::Dictionary StateDocument::Read(Util::ByteSpan text) const
{
    return Util::ReadDictionary(*reader, text).value_or(Util::Dictionary());
}

void StateDocument::Apply(Util::ByteSpan text, DSP::ValueSource source)
{
    const Util::Dictionary state = Read(text);
    const auto version = std::find_if(state.begin(), state.end(), [](const auto& entry) {
        return entry.first == MajorVersionKey;
    });
    if (version == state.end()) {
        ApplyLegacy(state, source);
    } else if (IsInteger(version->second, MajorVersion)) {
        ApplyVersion1(state, source);
    }
}

// Older states are what stands under "DSP State" now.
void StateDocument::ApplyLegacy(const Util::Dictionary& state, DSP::ValueSource source)
{
    DSP::ApplyElements(path.GetSet(), DSP::ReadElements(state), source);
}

void StateDocument::ApplyVersion1(const Util::Dictionary& state, DSP::ValueSource source)
{
    if (const auto* elements = state.Find<Util::Dictionary>(StateKey)) {
        DSP::ApplyElements(path.GetSet(), DSP::ReadElements(*elements), source);
    }
    ApplyContext(state);
    if (const auto* session = state.Find<String>(SessionKey);
        session != nullptr && definition.GetSessionMode() == SessionMode::KeptIdentifier) {
        sessionUuid = Util::ParseUuid(*session).value_or(sessionUuid);
    }
}

void StateDocument::ApplyContext(const Util::Dictionary& state)
{
    const auto* saved = state.Find<Util::Dictionary>(ContextKey);
    if (saved == nullptr) {
        return;
    }
    const bool* wasDefault = state.Find<bool>(DefaultStateKey);
    if (wasDefault != nullptr && *wasDefault) {
        context->LoadDefaultContext(*saved);
    } else {
        context->LoadContext(*saved);
    }
}

String StateDocument::AddTime(Util::ByteSpan text, const String& time)
{
    auto state = Util::ReadDictionary(*reader, text);
    if (!state) {
        return "";
    }
    state->Set(TimeKey, {time});
    Util::WriteDictionary(*writer, *state);
    return writer->GetText();
}

String StateDocument::ReadTime(Util::ByteSpan text) const
{
    const Util::Dictionary state = Read(text);
    const auto* time = state.Find<String>(TimeKey);
    return time != nullptr ? *time : String("");
}

std::optional<bool> StateDocument::IsSame(Util::ByteSpan text) const
{
    const Util::Dictionary state = Read(text);
    // Only states of the older form have their elements on top, so that any other compares equal:
    // hosts use the answer to mark a session as changed, and rely on it.
    for (const DSP::ElementParamData& data : DSP::ReadElements(state)) {
        const DSP::Element* element =
            DSP::FindElementByEitherName(path.GetSet(), data.GetElementName());
        if (element == nullptr) {
            continue;
        }
        const std::optional<bool> isSame = DSP::IsSameState(*element, data);
        if (!isSame || !*isSame) {
            return isSame;
        }
    }
    return true;
}
