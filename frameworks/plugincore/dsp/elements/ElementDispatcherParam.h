// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include <utility>

namespace DSP {

/// Parameter object over an element's transport, for float and bool.
template <typename T>
class ElementDispatcherParam final : public ElementParamImplBase<T> {
public:
    /// Element and transport outlive the parameter.
    ElementDispatcherParam(ElementDispatcher& newElement,
                           DispatchInfo<T>& newTransport,
                           ParamRegistration<T>&& registration)
        : element(newElement)
        , transport(newTransport)
        , name(std::move(registration.name))
        , range(registration.range)
        , defaultValue(registration.defaultValue)
        , info(std::move(registration.info))
    {
    }

    T GetValue(Context thread) const override { return transport.GetValue(thread); }
    T GetWantedValue() const override { return transport.GetWantedValue(); }
    bool SetValue(T value, Context thread, ValueSource source) override
    {
        return transport.SetValue(value, thread, source);
    }
    ValueRange<T> GetRange() const override { return range; }
    T GetDefault() const override { return defaultValue; }
    const ParamInfo& GetParamInfo() const override { return info; }
    void Grab() override { element.GetHost().ParamGrabbed(element, name); }
    void Release() override { element.GetHost().ParamReleased(element, name); }
    Element& GetElement() const override { return element; }
    String GetName() const override { return name; }

private:
    ElementDispatcher& element;
    DispatchInfo<T>& transport;
    const String name;
    const ValueRange<T> range;
    const T defaultValue;
    const ParamInfo info;
};

/// The same for an enumeration, with its labels.
class ElementDispatcherParamEnum final : public ElementParamEnumImplBase {
public:
    ElementDispatcherParamEnum(ElementDispatcher& element,
                               DispatchInfo<uint32_t>& transport,
                               EnumRegistration&& registration)
        : labels(std::move(registration.labels))
        , inner(element, transport, std::move(registration))
    {
    }

    uint32_t GetValue(Context thread) const override { return inner.GetValue(thread); }
    uint32_t GetWantedValue() const override { return inner.GetWantedValue(); }
    bool SetValue(uint32_t value, Context thread, ValueSource source) override
    {
        return inner.SetValue(value, thread, source);
    }
    ValueRange<uint32_t> GetRange() const override { return inner.GetRange(); }
    uint32_t GetDefault() const override { return inner.GetDefault(); }
    const ParamInfo& GetParamInfo() const override { return inner.GetParamInfo(); }
    void Grab() override { inner.Grab(); }
    void Release() override { inner.Release(); }
    Element& GetElement() const override { return inner.GetElement(); }
    String GetName() const override { return inner.GetName(); }
    String GetEnumLabel(uint32_t value) const override
    {
        const ValueRange<uint32_t> range = inner.GetRange();
        const bool isInside = value >= range.min && value <= range.max;
        return isInside && value - range.min < labels.size() ? labels[value - range.min] : String();
    }

private:
    const std::vector<String> labels;
    ElementDispatcherParam<uint32_t> inner;
};

} // namespace DSP
