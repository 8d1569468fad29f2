// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetErrors.h"

namespace Preset {

String GetReason(const Util::ErrorVariant& error)
{
    const auto arguments = error.Get().GetArguments();
    return arguments.empty() ? String("") : arguments.back();
}

String GetFullText(const Util::ErrorVariant& error)
{
    String text = error.GetDescription();
    const String reason = GetReason(error);
    if (reason.IsEmpty()) {
        return text;
    }
    const bool endsInStop = text.View().ends_with('.');
    return (endsInStop ? text.Left(text.Length() - 1) : text) + ": " + reason;
}

} // namespace Preset
