// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryDelegate.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryModel.h"
#include "frameworks/qobase/util/DataStream.h"

#include <span>

/// What distinguishes the forms of the file.
struct HistoryFileForm {
    uint32_t magic;           ///< the file's first word
    bool hasTotalSize;        ///< the header ends in the size of the state at the time of writing
    bool hasWideLength;       ///< a state's length takes 64 bits instead of 32
    const char* initialLabel; ///< of the only snapshot of a fresh history
    const char* badSlotText;  ///< diagnostic; takes the slot and the position in the file
};

/// The form of the instance's own file.
extern const HistoryFileForm FrameworkHistoryForm;

/// The state of now, with the time; empty when it can't be had.
std::optional<Snapshot> TakeSnapshot(Util::HistoryDelegate& delegate, const String& label);

/// Keeps an undo history in a file. All numbers little-endian, 32 bits unless stated otherwise:
///
///     magic, state version [, size of the state]
///     81232, length of the state (32 or 64 bits), the state, length of the label, the label
///     17711, slot, index of its snapshot
///
/// Snapshots come first and in order, then the slots that hold one. [ui]
class HistoryFile {
public:
    /// Both must outlive this object.
    HistoryFile(const HistoryFileForm& newForm, Util::HistoryDelegate& newDelegate)
        : form(newForm)
        , delegate(newDelegate)
    {
    }

    /// The present state becomes the only snapshot; slots stay.
    void MakeInitialState(HistoryModel& model) const;

    /// Fills the model from the file. A missing one, one of another version, and one that turns out
    /// damaged give the initial state.
    ///
    /// Throws Exception::InvalidHistoryFile for what is no history or one of another state size,
    /// and Util::Exception::DataStreamIO where reading fails or there is no regular file; the model
    /// is then empty.
    void Load(const String& path, HistoryModel& model) const;

    /// What Load() finds in the file.
    HistoryModel Read(Util::DataStream& stream) const;

    /// Replaces the file, whole or not at all.
    Util::Expected<void> Save(const String& path, const HistoryModel& model) const;

private:
    enum class Outcome { Complete, Dropped };

    Outcome ReadHeader(Util::DataStream& stream) const;
    void Write(Util::DataStream& stream, const HistoryModel& model) const;

    const HistoryFileForm& form;
    Util::HistoryDelegate& delegate;
};

struct HistoryErrorKind;

/// Why a file can't be listed.
using HistoryError = Util::BasicError<HistoryErrorKind>;

/// What a file of one of these forms holds, whatever the size of the state that it was written
/// beside: for looking at it, not for going on with it. A damaged one is a failure, and so is one
/// of another version. [ui]
Util::Expected<HistoryModel> ReadHistoryFile(const String& path,
                                             std::span<const HistoryFileForm* const> forms,
                                             uint32_t stateVersion);
