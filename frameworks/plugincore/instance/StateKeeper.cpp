// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StateKeeper.h"

#include "frameworks/plugincore/instance/StateChunk.h"
#include "frameworks/qobase/util/TimeText.h"

#include <optional>
#include <utility>

StateKeeper::StateKeeper(const Parts& newParts, const PluginFactory& factory, bool hasDefaultFlag)
    : definition(factory.GetDefinition())
    , parts(newParts)
    , document(factory, newParts.path, hasDefaultFlag)
{
}

uint32_t StateKeeper::GetSize()
{
    LoadPending();
    return StateChunk::GetChunkSizeOfText(document.Write(StateDocument::Form::Full));
}

bool StateKeeper::GetChunk(std::span<uint8_t> chunk)
{
    LoadPending();
    parts.path.BeforeSave();
    return StateChunk::WriteText(document.Write(StateDocument::Form::Full), chunk);
}

bool StateKeeper::GetCompareChunk(std::span<uint8_t> chunk)
{
    LoadPending();
    return StateChunk::WriteText(document.Write(StateDocument::Form::Comparable), chunk);
}

bool StateKeeper::SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source)
{
    const std::optional<Util::Bytes> text = StateChunk::ReadText(chunk);
    if (!text) {
        return false;
    }
    LoadPending(); // the older state: this one may lack a value, or be none at all
    const EditorLoadScope scope(parts.editor);
    parts.path.GetSet().BeforeStateChange();
    const bool isLegacy = version < definition.GetStateVersion();
    const bool succeeded = !isLegacy || parts.path.LoadLegacyChunk(*text, version);
    if (!isLegacy) {
        document.Apply(*text, source);
    }
    parts.path.AfterStateLoaded();
    parts.history.onStateChanged();
    return succeeded;
}

bool StateKeeper::CompareChunk(Util::ByteSpan chunk, bool& equal)
{
    equal = true;
    const std::optional<Util::Bytes> text = StateChunk::ReadText(chunk);
    if (!text) {
        return false;
    }
    LoadPending();
    const std::optional<bool> isSame = document.IsSame(*text);
    equal = isSame.value_or(true);
    return isSame.has_value();
}

void StateKeeper::AddTime(Util::Bytes& chunk)
{
    const auto text = StateChunk::ReadText(chunk);
    const String dated = text ? document.AddTime(*text, Util::GetPresentTimeText()) : String("");
    if (!dated.IsEmpty()) {
        chunk.resize(StateChunk::GetChunkSizeOfText(dated));
        StateChunk::WriteText(dated, chunk);
    }
}

String StateKeeper::ReadTime(Util::ByteSpan chunk) const
{
    const auto text = StateChunk::ReadText(chunk);
    return text ? document.ReadTime(*text) : String("");
}

Util::Bytes StateKeeper::Save()
{
    Util::Bytes state(GetSize());
    if (!GetChunk(state)) {
        state.clear();
    }
    return state;
}

void StateKeeper::Restore(const Util::Bytes& state)
{
    // Elements that live on have kept their values. They are not set again later, by when the host
    // may have changed them.
    if (state.empty() || Save() == state) {
        return;
    }
    if (parts.editor.IsPending()) {
        pending.assign(1, state);
    } else {
        SetChunk(state, definition.GetVersionNumber(), DSP::SourceHost);
    }
}

void StateKeeper::LoadPending()
{
    for (const Util::Bytes& chunk : std::exchange(pending, {})) {
        SetChunk(chunk, definition.GetVersionNumber(), DSP::SourceHost);
    }
}
