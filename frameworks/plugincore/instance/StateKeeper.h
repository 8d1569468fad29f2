// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/EditorLink.h"
#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/StateDocument.h"

#include <span>
#include <vector>

/// The state of an instance as bytes that a host, a change of format and the history keep: a
/// document, compressed. Also keeps a state that waits for the editor of another thread.
///
/// Threads: all under the UI lock; Save() and Restore() come with the processing lock as well. [ui]
class StateKeeper {
public:
    /// What a state is loaded into, and who follows it. All outlive the keeper.
    struct Parts {
        DSP::TransformBase& path;
        EditorLink& editor;
        HistoryKeeper& history;
    };
    /// See StateDocument for the last.
    StateKeeper(const Parts& newParts, const PluginFactory& factory, bool hasDefaultFlag);

    /// The host has saved or loaded: the instance isn't as it was created.
    void ClearDefaultFlag() { document.ClearDefaultFlag(); }
    const Util::Uuid& GetSessionUuid() const { return document.GetSessionUuid(); }

    // See PluginCore. A state that waits is loaded first.
    uint32_t GetSize();
    bool GetChunk(std::span<uint8_t> chunk);
    bool GetCompareChunk(std::span<uint8_t> chunk);
    bool SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source);
    bool CompareChunk(Util::ByteSpan chunk, bool& equal);

    /// Adds to a chunk the present time; any reader takes it as before.
    void AddTime(Util::Bytes& chunk);
    /// "YYYY-MM-DDTHH:MM:SSZ"; empty when the chunk has none.
    String ReadTime(Util::ByteSpan chunk) const;

    /// The chunk of now; empty when it can't be had, so that what is made anew then starts with its
    /// defaults.
    Util::Bytes Save();
    /// Brings back what Save() gave, if it isn't what there is. While an editor waits to be
    /// attached again, so does the state.
    void Restore(const Util::Bytes& state);
    /// Whether a state waits.
    bool HasPending() const { return !pending.empty(); }
    void LoadPending();

private:
    const PluginDefinition& definition;
    const Parts parts;
    StateDocument document;
    std::vector<Util::Bytes> pending; // chunks
};
