// SPDX-License-Identifier: ISC
// Any bytes as a history, in both forms of the file.
#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"
#include "frameworks/qobase/util/DataStreamIO.h"
#include "frameworks/qobase/util/MemoryStream.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/support/TestHistoryDelegate.h"

#include <cstdlib>

namespace {

// A file is refused by one of the two exceptions, or gives at least one snapshot, none of which is
// larger than the file.
void Read(const HistoryFileForm& form, const uint8_t* data, size_t size)
{
    static Support::TestHistoryDelegate state;
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
        if (snapshot.bytes.size() > size + state.state.size()) {
            std::abort();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Read(FrameworkHistoryForm, data, size);
    Read(UI::Dialog::DialogHistoryForm, data, size);
    return 0;
}
