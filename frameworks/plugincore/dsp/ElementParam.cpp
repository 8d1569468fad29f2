// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/ElementParam.h"

#include <type_traits>

namespace DSP {

void VisitParams(const ParamMap& params, ParamVisitor& visitor)
{
    for (const auto& [name, object] : params) {
        std::visit(
            [&, &paramName = name](const auto& param) {
                using Pointer = std::decay_t<decltype(param)>;
                if constexpr (std::is_same_v<Pointer,
                                             std::shared_ptr<ElementParamImplBase<float>>>) {
                    visitor.VisitFloat(paramName, *param);
                } else if constexpr (std::is_same_v<Pointer,
                                                    std::shared_ptr<ElementParamImplBase<bool>>>) {
                    visitor.VisitBool(paramName, *param);
                } else {
                    visitor.VisitEnum(paramName, *param);
                }
            },
            object);
    }
}

} // namespace DSP
