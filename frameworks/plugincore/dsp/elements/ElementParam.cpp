// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/ElementParam.h"

#include "frameworks/plugincore/dsp/elements/Element.h"

#include <type_traits>

namespace DSP {
namespace {

// The object type that holds values of this type.
template <typename T>
using ObjectOf = std::
    conditional_t<std::is_same_v<T, uint32_t>, ElementParamEnumImplBase, ElementParamImplBase<T>>;

} // namespace

template <typename T>
ElementParamImplBase<T>* ElementParam<T>::Find() const
{
    const ParamObject* object = element != nullptr ? element->FindParam(index) : nullptr;
    if (object == nullptr) {
        return nullptr;
    }
    const auto* param = std::get_if<std::shared_ptr<ObjectOf<T>>>(object);
    return param != nullptr ? param->get() : nullptr;
}

template <typename T>
T ElementParam<T>::GetValue(Context thread) const
{
    const auto* param = Find();
    return param != nullptr ? param->GetValue(thread) : T{};
}

template <typename T>
bool ElementParam<T>::SetValue(T value, Context thread, ValueSource source) const
{
    auto* param = Find();
    return param != nullptr && param->SetValue(value, thread, source);
}

template <typename T>
ValueRange<T> ElementParam<T>::GetRange() const
{
    const auto* param = Find();
    return param != nullptr ? param->GetRange() : ValueRange<T>{};
}

template <typename T>
T ElementParam<T>::GetDefault() const
{
    const auto* param = Find();
    return param != nullptr ? param->GetDefault() : T{};
}

template <typename T>
ParamInfo ElementParam<T>::GetParamInfo() const
{
    const auto* param = Find();
    return param != nullptr ? param->GetParamInfo() : ParamInfo{};
}

template <typename T>
void ElementParam<T>::Grab() const
{
    if (auto* param = Find()) {
        param->Grab();
    }
}

template <typename T>
void ElementParam<T>::Release() const
{
    if (auto* param = Find()) {
        param->Release();
    }
}

template <typename T>
String ElementParam<T>::GetName() const
{
    const auto* param = Find();
    return param != nullptr ? param->GetName() : String();
}

String ElementParamEnum::GetEnumLabel(uint32_t value) const
{
    const auto* param = static_cast<const ElementParamEnumImplBase*>(Find());
    return param != nullptr ? param->GetEnumLabel(value) : String();
}

template class ElementParam<float>;
template class ElementParam<uint32_t>;
template class ElementParam<bool>;

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
