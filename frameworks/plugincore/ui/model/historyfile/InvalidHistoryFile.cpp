// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/ui/model/historyfile/InvalidHistoryFile.h"

namespace Exception {

String InvalidHistoryFile::Describe() const
{
    return Base::Describe() + "\nInvalidHistoryFile\n";
}

} // namespace Exception
