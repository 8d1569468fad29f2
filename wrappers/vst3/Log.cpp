// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Log.h"

#include "wrappers/common/Log.h"

namespace Vst3 {

void WriteLog(const std::string& text)
{
    Wrapper::LogToStandardError("puffguard.vst3", text);
}

} // namespace Vst3
