// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"

#include <cstdint>
#include <vector>

namespace Controller {

template <typename ParamType>
class AbsoluteLinkController;

/// The value is that of another parameter. It is set there with all that belongs to it. Once that
/// one is gone, its last value stays.
template <typename T, typename ParamType>
class LinkedParamStorage final : public ParamStorage<T> {
public:
    /// The parameter may go first.
    explicit LinkedParamStorage(ParamType& newParam)
        : param(newParam)
        , observer(newParam)
        , last(newParam.GetValue())
        , connection(param.ValueChanged().Connect([this](const T& value) {
            last = value;
            this->ValueChanged().Emit(value);
        }))
    {
    }

    void Store(const T& value) override
    {
        if (!observer.IsDestroyed()) {
            param.SetValue(value);
        }
    }
    T Load() const override { return observer.IsDestroyed() ? last : param.GetValue(); }

private:
    ParamType& param;
    const DestructorObserver observer;
    T last;
    const Connection connection;
};

/// Stands for a parameter of a link: setting it sets all of them, and a gesture on it is one on all
/// of them. [ui]
template <typename ParamType>
class LinkedParam final : public ParamType {
public:
    using T = typename ParamType::Value;

    /// Made by the link, which outlives it.
    LinkedParam(AbsoluteLinkController<ParamType>& newLink, ParamType& newTarget);

    void StoreValue(const T& value) override;
    void BeginChange() override { link.BeginChangeOfAll(); }
    void EndChange() override { link.EndChangeOfAll(); }
    /// Null once the parameter is gone.
    ParamType* GetTarget() const { return observer.IsDestroyed() ? nullptr : &target; }

private:
    AbsoluteLinkController<ParamType>& link;
    ParamType& target;
    const DestructorObserver observer;
};

/// Keeps several parameters at the same value: a change of one sets the others, each as far as its
/// own constraints and range allow. What they become by that changes no other. Parameters may have
/// different values until the first change. [ui]
template <typename ParamType>
class AbsoluteLinkController final : public Object, public virtual Trackable {
public:
    using T = typename ParamType::Value;

    /// Joins a parameter, which may go first; answers what stands for it, owned by the link. Not
    /// during a gesture.
    LinkedParam<ParamType>& Add(ParamType& param);

    /// For LinkedParam.
    void BeginChangeOfAll();
    void EndChangeOfAll();
    /// Sets the others to the value.
    void Spread(const ParamType& from, const T& value);
    /// How often that has been done.
    uint64_t GetSpreadCount() const { return spreadCount; }

private:
    std::vector<LinkedParam<ParamType>*> linked; // children
    bool spreading = false;
    uint64_t spreadCount = 0;
};

extern template class LinkedParam<FloatParam>;
extern template class LinkedParam<EnumParam>;
extern template class LinkedParam<BoolParam>;
extern template class AbsoluteLinkController<FloatParam>;
extern template class AbsoluteLinkController<EnumParam>;
extern template class AbsoluteLinkController<BoolParam>;

} // namespace Controller
