// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementParam.h"

namespace DSP {

/// Collects the session parameters whose value on the UI side differs from their default, with
/// enumerations as the text of their label. [ui]
class HumanReadableParamVisitor final : public ParamVisitor {
public:
    void VisitFloat(const String& name, const ElementParamImplBase<float>& param) override;
    void VisitBool(const String& name, const ElementParamImplBase<bool>& param) override;
    void VisitEnum(const String& name, const ElementParamEnumImplBase& param) override;

    ChangedParams changed;
};

} // namespace DSP
