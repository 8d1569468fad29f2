// SPDX-License-Identifier: ISC
// Whatever lies where the settings should be, and whatever is imported: reading gives values or
// defaults, and what is written afterwards is there.
#include "frameworks/qobase/util/ConfigFile.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Fuzz::TargetFolder folder;
    folder.Clear("config/Vendor");
    folder.Put("config/Vendor/Product.json", data, size);
    Util::ConfigFile settings("SOFTWARE/Vendor/Product");
    std::set<String> names;
    settings.GetValueNames(names, "");
    for (const String& name : names) {
        settings.ReadString(name, "");
        settings.ReadFloat(name, 0);
        settings.ReadInt(name, 0);
        settings.ReadBinary(name, {});
    }
    settings.Import(std::string_view(reinterpret_cast<const char*>(data), size));
    settings.WriteInt("Written", 7);
    if (settings.ReadInt("Written", 0) != 7) {
        std::abort();
    }
    return 0;
}
