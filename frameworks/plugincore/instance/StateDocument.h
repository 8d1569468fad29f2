// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/PluginFactory.h"
#include "frameworks/qobase/util/Uuid.h"

#include <memory>
#include <optional>

/// What a saved state of an instance holds, as text: a dictionary of the elements' values, of the
/// session's context and of its identifier. Every call builds it anew from what there
/// is, or sets what there is by it.
///
/// Threads: all under the UI lock. [ui]
class StateDocument {
public:
    enum class Form {
        Full,
        Comparable ///< without what is no difference between two states
    };

    /// `factory` makes what the text is read and written by; its definition and `newPath` outlive
    /// the document. States of some hosts say whether they are those of an untouched instance.
    StateDocument(const PluginFactory& factory,
                  const DSP::TransformBase& newPath,
                  bool newHasDefaultFlag);

    String Write(Form form);
    /// Text that is no state, or the state of a later program, changes nothing. `source` goes with
    /// each changed value.
    void Apply(Util::ByteSpan text, DSP::ValueSource source);
    /// Whether the text's values are those of now; empty when they
    /// can't be compared.
    std::optional<bool> IsSame(Util::ByteSpan text) const;

    /// The text with a time in it, which no reader of states looks at; empty when it's no state.
    String AddTime(Util::ByteSpan text, const String& time);
    /// What AddTime() has put into the text; empty without.
    String ReadTime(Util::ByteSpan text) const;

    /// The host has saved or loaded: the instance isn't as it was created.
    void ClearDefaultFlag() { isDefault = false; }
    /// Of this instance, or of the session whose state was applied.
    const Util::Uuid& GetSessionUuid() const { return sessionUuid; }

private:
    Util::Dictionary Build(Form form) const;
    Util::Dictionary Read(Util::ByteSpan text) const;
    void ApplyLegacy(const Util::Dictionary& state, DSP::ValueSource source);
    void ApplyVersion1(const Util::Dictionary& state, DSP::ValueSource source);
    void ApplyContext(const Util::Dictionary& state);

    const PluginDefinition& definition;
    const DSP::TransformBase& path;
    const bool hasDefaultFlag;
    const std::unique_ptr<Util::DictionaryReader> reader;
    const std::unique_ptr<Util::DictionaryWriter> writer;
    const std::unique_ptr<Context::ContextBase> context;
    Util::Uuid sessionUuid;
    bool isDefault = true; // the host has neither saved nor loaded a state
};
