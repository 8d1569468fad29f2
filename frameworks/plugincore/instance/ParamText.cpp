// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/ParamText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

// 0 for a range of 100 and more.
int CountDecimals(DSP::ValueRange<float> range)
{
    const float width = range.max - range.min;
    return width > 0 ? std::clamp(2 - static_cast<int>(std::floor(std::log10(width))), 0, 6) : 0;
}

String Format(const DSP::ElementParamImplBase<float>& param)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(),
                                   text.data() + text.size(),
                                   param.GetValue(DSP::Context::UI),
                                   std::chars_format::fixed,
                                   CountDecimals(param.GetRange()));
    return std::string(text.data(), end.ptr);
}

String Format(const DSP::ElementParamImplBase<bool>& param)
{
    return param.GetValue(DSP::Context::UI) ? "On" : "Off";
}

String Format(const DSP::ElementParamEnumImplBase& param)
{
    const uint32_t value = param.GetValue(DSP::Context::UI);
    const String label = param.GetEnumLabel(value);
    return label.IsEmpty() ? String("%1").arg(value) : label;
}

} // namespace

String DescribeValue(const DSP::ParamObject& param)
{
    return std::visit([](const auto& object) { return object->GetName() + ": " + Format(*object); },
                      param);
}
