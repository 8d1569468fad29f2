// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/MemoryStream.h"

#include <cstdlib>
#include <cstring>

namespace Fuzz {

/// An instance whose state is eight bytes.
class FixedState final : public Util::HistoryDelegate {
public:
    uint32_t GetStateSize() override { return 8; }
    uint32_t GetStateVersion() const override { return 1; }
    bool GetState(uint32_t size, void* buffer) override
    {
        std::memset(buffer, 's', size);
        return size == 8;
    }
    bool SetState(uint32_t, const void*, uint32_t) override { return true; }
    bool GetStateForFile(uint32_t size, void* buffer) override { return GetState(size, buffer); }
    void GetHistoryFilePath(String& path) override { path = String(); }
    void StateChanged() override {}
    Util::Expected<void> SaveHistory(const HistoryModel&) override { return {}; }
    void LoadHistory(HistoryModel&) override {}
};

/// A file is refused by one of the two exceptions, or gives at least one snapshot, none of which is
/// larger than the file.
inline void ReadHistory(const HistoryFileForm& form, const uint8_t* data, size_t size)
{
    static FixedState state;
    const HistoryFile file(form, state);
    HistoryModel model;
    Util::MemoryStream stream(Util::Bytes(data, data + size));
    try {
        model = file.Read(stream);
    } catch (const Exception::InvalidHistoryFile&) {
        return;
    } catch (const Util::Exception::DataStreamIO&) {
        return;
    }
    if (model.snapshots.empty()) {
        std::abort();
    }
    for (const Snapshot& snapshot : model.snapshots) {
        if (snapshot.bytes.size() > size + 8) {
            std::abort();
        }
    }
}

} // namespace Fuzz
