// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace DSP {

class Element;

/// Closed interval.
template <typename T>
struct ValueRange {
    T min{};
    T max{};
};

/// Where a parameter is kept between runs.
enum class Persistence : uint32_t {
    Session = 0,    ///< saved in sessions and presets
    Persistent = 1, ///< saved in the settings of the user
    Transient = 2   ///< saved nowhere
};

/// What is known of a parameter beside its value and range.
struct ParamInfo {
    Persistence persistence = Persistence::Session;
    String units;
    bool isLogarithmic = false;
};

/// Where a change came from, carried unchanged with it. Empty: unknown.
using ValueSource = std::optional<int32_t>;
/// A controller, an undo step, a stored value.
inline constexpr int32_t SourceController = 0;
/// The plug-in host: it isn't notified of its own change.
inline constexpr int32_t SourceHost = 1;

/// One parameter of an element. The process side and the UI side each have a value; the element
/// brings them together.
template <typename T>
class ElementParamImplBase {
public:
    virtual ~ElementParamImplBase() = default;

    /// Value of that side. [any]
    virtual T GetValue(Context thread) const = 0;
    /// What the user or the plug-in host asked for last, also while it is on its way to the process
    /// side: what is saved. [ui]
    virtual T GetWantedValue() const = 0;
    /// Clamps, compares and sets the value of that side; true when it changed. [process] or [ui]
    virtual bool SetValue(T value, Context thread, ValueSource source) = 0;
    virtual ValueRange<T> GetRange() const = 0;
    virtual T GetDefault() const = 0;
    virtual const ParamInfo& GetParamInfo() const = 0;
    /// Brackets one gesture of the user. [ui]
    virtual void Grab() = 0;
    virtual void Release() = 0;
    virtual Element& GetElement() const = 0;
    virtual String GetName() const = 0;
};

/// An enumeration: a number with a label for each value.
class ElementParamEnumImplBase : public ElementParamImplBase<uint32_t> {
public:
    /// Empty for a value without a label.
    virtual String GetEnumLabel(uint32_t value) const = 0;
};

/// A parameter of any type, as the element's table holds it.
using ParamObject = std::variant<std::shared_ptr<ElementParamImplBase<float>>,
                                 std::shared_ptr<ElementParamEnumImplBase>,
                                 std::shared_ptr<ElementParamImplBase<bool>>>;

/// Parameters by name.
using ParamMap = std::map<String, ParamObject>;

/// Values that differ from their defaults, by name, in name order for each type.
struct ChangedParams {
    std::vector<std::pair<String, float>> floats;
    std::vector<std::pair<String, bool>> bools;
    std::vector<std::pair<String, String>> enums; ///< with the text of the value's label
};

/// Handle of a registered parameter: the element and the parameter's place in its table. Small, to
/// be copied; the element outlives it. An empty handle, and one whose element is still under
/// construction, answers 0, false or an empty text. Threads: as the parameter's.
template <typename T>
class ElementParam {
public:
    ElementParam() = default;
    ElementParam(const Element& newElement, uint32_t newIndex)
        : element(&newElement)
        , index(newIndex)
    {
    }

    T GetValue(Context thread) const;
    bool SetValue(T value, Context thread, ValueSource source) const;
    ValueRange<T> GetRange() const;
    T GetDefault() const;
    ParamInfo GetParamInfo() const;
    void Grab() const;
    void Release() const;
    /// Null for an empty handle.
    const Element* GetElement() const { return element; }
    String GetName() const;

protected:
    ElementParamImplBase<T>* Find() const;

private:
    const Element* element = nullptr; // not owned
    uint32_t index = 0;
};

/// The same for an enumeration.
class ElementParamEnum : public ElementParam<uint32_t> {
public:
    using ElementParam::ElementParam;
    String GetEnumLabel(uint32_t value) const;
};

extern template class ElementParam<float>;
extern template class ElementParam<uint32_t>;
extern template class ElementParam<bool>;

/// Does something with each parameter of an element, in name order.
class ParamVisitor {
public:
    virtual ~ParamVisitor() = default;
    virtual void VisitFloat(const String& /*name*/, const ElementParamImplBase<float>& /*param*/) {}
    virtual void VisitBool(const String& /*name*/, const ElementParamImplBase<bool>& /*param*/) {}
    virtual void VisitEnum(const String& /*name*/, const ElementParamEnumImplBase& /*param*/) {}
};

/// Shows every parameter of the table to the visitor.
void VisitParams(const ParamMap& params, ParamVisitor& visitor);

} // namespace DSP
