// SPDX-License-Identifier: ISC
// Any file is refused, and the snapshot is as it was; or it is read, and what is written then is
// read back and written again as the same bytes.
#include "tests/fuzz/targets/PresetTarget.h"

#include "frameworks/qobase/util/File.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdlib>

namespace {

Util::Bytes Write(Preset::LmPresetFile& file, const String& path)
{
    if (!file.Save(path, file.GetSnapshot(), Preset::TouchModified::No)) {
        std::abort();
    }
    return *Util::ReadWholeFile(path);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Fuzz::TargetFolder folder;
    static Fuzz::FixedElements elements;
    const String written = folder.Put("written.xml", nullptr, 0);
    Preset::LmPresetFile file(Fuzz::GetIdentity(), elements, nullptr);
    file.TakeSnapshotFromDSP();
    const Util::Bytes before = Write(file, written);
    if (!file.Load(folder.Put("read.xml", data, size))) {
        file.SetMetadata({});
        if (Write(file, written) != before) {
            std::abort();
        }
        return 0;
    }
    file.SetMetadata({});
    const Util::Bytes first = Write(file, written);
    if (!file.Load(written)) {
        std::abort();
    }
    file.SetMetadata({});
    if (Write(file, written) != first) {
        std::abort();
    }
    return 0;
}
