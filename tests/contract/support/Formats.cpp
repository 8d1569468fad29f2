// SPDX-License-Identifier: ISC
#include "tests/contract/support/Formats.h"

#include "tests/support/TemporaryFolder.h"

#include <ostream>

namespace Contract {

const std::vector<Format>& GetFormats()
{
    static const Support::UserFolders folders;
    static const std::vector<Format> formats = {
        {"Entry", MakeEntryHost, GetEntryBinary},
#ifdef PUFFGUARD_WITH_LV2
        {"LV2", MakeLv2Host, GetLv2Binary},
#endif
#ifdef PUFFGUARD_WITH_CLAP
        {"CLAP", MakeClapHost, GetClapBinary},
#endif
#ifdef PUFFGUARD_WITH_VST3
        {"VST3", MakeVst3Host, GetVst3Binary},
#endif
    };
    return formats;
}

void PrintTo(const Format& format, std::ostream* stream)
{
    *stream << format.name;
}

} // namespace Contract
