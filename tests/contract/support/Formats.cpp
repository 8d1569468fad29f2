// SPDX-License-Identifier: ISC
#include "tests/contract/support/Formats.h"

#include "tests/support/TemporaryFolder.h"

#include <ostream>

namespace Contract {

const std::vector<Format>& GetFormats()
{
    static const Support::UserFolders Folders;
    static const std::vector<Format> Formats = {
        {"Entry", MakeEntryHost, PUFFGUARD_MODULE},
#ifdef PUFFGUARD_WITH_LV2
        {"LV2", MakeLv2Host, PUFFGUARD_LV2},
#endif
#ifdef PUFFGUARD_WITH_CLAP
        {"CLAP", MakeClapHost, PUFFGUARD_CLAP},
#endif
#ifdef PUFFGUARD_WITH_VST3
        {"VST3", MakeVst3Host, PUFFGUARD_VST3},
#endif
    };
    return Formats;
}

void PrintTo(const Format& format, std::ostream* stream)
{
    *stream << format.name;
}

} // namespace Contract
