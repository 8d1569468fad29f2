// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"

namespace Controller {

/// A parameter whose value is a member, with a range; it starts with its default. [ui]
template <typename Base>
class MemoryParam : public Base {
public:
    using T = typename Base::Value;

    MemoryParam(DSP::ValueRange<T> newRange, T newDefault)
        : Base(std::make_unique<ParamMemoryStorage<T>>(newDefault))
    {
        Base::SetRange(newRange);
        Base::SetDefault(newDefault);
    }
};

using FloatParamMemory = MemoryParam<FloatParam>;
using EnumParamMemory = MemoryParam<EnumParam>;
using BoolParamMemory = MemoryParam<BoolParam>;

/// The type of parameter that has values of type T.
template <typename T>
struct ParamOf;
template <>
struct ParamOf<float> {
    using Type = FloatParam;
};
template <>
struct ParamOf<uint32_t> {
    using Type = EnumParam;
};
template <>
struct ParamOf<bool> {
    using Type = BoolParam;
};

/// What a control without an element stands for: range and default never change. [ui]
template <typename T>
class DefaultController final : public MemoryParam<typename ParamOf<T>::Type> {
public:
    using Base = MemoryParam<typename ParamOf<T>::Type>;
    using Base::Base;

    void SetRange(DSP::ValueRange<T> /*newRange*/) override {}
    void SetDefault(const T& /*newDefault*/) override {}
};

} // namespace Controller
