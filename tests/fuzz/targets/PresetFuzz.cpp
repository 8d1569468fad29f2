// SPDX-License-Identifier: ISC
// Any file is refused, and the snapshot is as it was; or it is read, and what is written then is
// read back and written again as the same bytes.
#include "frameworks/plugincore/preset/file/LmPresetFile.h"
#include "frameworks/qobase/util/File.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdlib>

namespace {

/// Elements with parameters of the product, one of each type, which keep what they are given.
class FixedElements final : public Preset::PresetDSPInterfaceBase {
public:
    Preset::Snapshot TakeSnapshot() override
    {
        Preset::ElementSnapshot element;
        element.params[{"Puffguard", "Sensitivity"}] =
            Preset::FloatRecord{.value = 5, .range = {0, 10}};
        element.params[{"Puffguard", "Enum"}] = Preset::EnumRecord{.value = 1, .range = {0, 3}};
        element.params[{"Puffguard", "Bool"}] = Preset::BoolRecord{.value = true};
        element.extraBytes = {1, 2, 3};
        Preset::Snapshot snapshot;
        snapshot.elements["Puffguard"] = element;
        snapshot.elements["Global"] = {};
        return snapshot;
    }
    Preset::Snapshot TakeDefaults() override { return TakeSnapshot(); }
    Util::Expected<void> Apply(const Preset::Snapshot& /*snapshot*/) override { return {}; }
    Util::Bytes GetExtraBytes(const String& /*element*/) override { return {}; }
};

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
    static FixedElements elements;
    const String written = folder.Put("written.xml", nullptr, 0);
    Preset::LmPresetFile file({"LM6Pfgd", 1, 6000, 1}, elements, nullptr);
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
