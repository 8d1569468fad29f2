// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/Expected.h"

#include <cstdint>

struct HistoryModel;

namespace Util {

/// What an undo history needs of the instance that it belongs to. All calls: [ui], under the UI
/// lock.
class HistoryDelegate {
public:
    HistoryDelegate() = default;
    HistoryDelegate(const HistoryDelegate&) = delete;
    HistoryDelegate& operator=(const HistoryDelegate&) = delete;
    virtual ~HistoryDelegate() = default;

    /// Bytes of the state as it is now; a later call may answer differently.
    virtual uint32_t GetStateSize() = 0;
    virtual uint32_t GetStateVersion() const = 0;
    /// Fills `buffer` with the state; false when that doesn't take exactly `size` bytes.
    virtual bool GetState(uint32_t size, void* buffer) = 0;
    /// Adds to a state that GetState() has given when that was; it's as good a state as before.
    virtual void AddTime(Bytes& /*state*/) {}
    /// False, and nothing changed, when the bytes are no state.
    virtual bool SetState(uint32_t size, const void* buffer, uint32_t version) = 0;
    /// As GetState(), in the form that states are compared in.
    virtual bool GetStateForFile(uint32_t size, void* buffer) = 0;

    /// Full path of the instance's own file; its folder is made when missing. An empty path means
    /// that no file is to be touched.
    virtual void GetHistoryFilePath(String& path) = 0;
    /// Tells an open editor, some time later, that the state isn't what it was.
    virtual void StateChanged() = 0;
    /// Writes the model to the instance's own file: whole, or not at all.
    virtual Expected<void> SaveHistory(const HistoryModel& model) = 0;
    /// Fills the model from the instance's own file. Throws Exception::InvalidHistoryFile and
    /// Util::Exception::DataStreamIO; the model is then empty.
    virtual void LoadHistory(HistoryModel& model) = 0;
};

} // namespace Util
