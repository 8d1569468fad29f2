// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/DispatchInfo.h"
#include "frameworks/plugincore/dsp/elements/ElementImpl.h"

#include <functional>
#include <map>
#include <memory>
#include <variant>
#include <vector>

namespace DSP {

/// What a concrete element states of one of its parameters. Callbacks may be empty.
template <typename T>
struct ParamRegistration {
    String name{};
    ValueRange<T> range{};
    T defaultValue{};
    T* target = nullptr; ///< the element's member that the audio code reads
    std::function<void(T value)> onProcessChange{}; ///< [process]
    std::function<void(T value)> onUIChange{};      ///< [ui]
    ParamInfo info{};
};

/// A registration whose values have labels; range.min is the first label's value.
struct EnumRegistration : ParamRegistration<uint32_t> {
    std::vector<String> labels;
};

/// Element with parameters: their table, and their transport between the two sides.
///
/// A concrete constructor registers its parameters by index, from 0 without gaps and in any order,
/// and ends with FinaliseParams().
class ElementDispatcher : public ElementImpl {
public:
    explicit ElementDispatcher(const Setup& setup);
    ~ElementDispatcher() override;

    void SyncParams() override;
    uint32_t GetParamCount() const override { return static_cast<uint32_t>(names.size()); }
    std::optional<uint32_t> FindParamIndex(const String& paramName) const override;
    String GetParamName(uint32_t index) const override;
    const ParamMap& GetParamMap() const override { return paramsByName; }
    const ParamObject* FindParam(uint32_t index) const override;
    const ParamInfo& GetParamInfoByName(const String& paramName) const override;
    std::shared_ptr<Controller::ControllerSet> GetControllerSet() override;

    /// Values by index, as that side has them. An index past the end, or of another type, is
    /// ignored and reads as 0. True when the value changed. [process] or [ui]
    bool SetFloatValue(uint32_t index, float value, Context thread, ValueSource source);
    bool SetEnumValue(uint32_t index, uint32_t value, Context thread, ValueSource source);
    bool SetBoolValue(uint32_t index, bool value, Context thread, ValueSource source);
    float GetFloatValue(uint32_t index, Context thread) const;
    uint32_t GetEnumValue(uint32_t index, Context thread) const;
    bool GetBoolValue(uint32_t index, Context thread) const;

    /// Transport of a parameter, for observers and listeners; null as above. [setup]
    template <typename T>
    DispatchInfo<T>* GetDispatchInfo(uint32_t index) const;

protected:
    /// Writes the default to the target and enters the parameter. [setup]
    ElementParam<float> RegisterFloatParam(uint32_t index, ParamRegistration<float> registration);
    ElementParam<bool> RegisterBoolParam(uint32_t index, ParamRegistration<bool> registration);
    ElementParamEnum RegisterEnumParam(uint32_t index, EnumRegistration registration);

    /// Builds the table and shows every default once to the callbacks. [setup]
    void FinaliseParams();

    /// An element whose parameters are shown in a way of their own makes another set. [ui]
    virtual std::shared_ptr<Controller::ControllerSet> CreateControllerSet();

private:
    // Empty first, so that a gap between two indices reads as "not registered".
    using Registration = std::variant<std::monostate,
                                      ParamRegistration<float>,
                                      ParamRegistration<bool>,
                                      EnumRegistration>;
    using Dispatch = std::variant<std::monostate,
                                  std::unique_ptr<DispatchInfo<float>>,
                                  std::unique_ptr<DispatchInfo<uint32_t>>,
                                  std::unique_ptr<DispatchInfo<bool>>>;

    template <typename Record>
    void Register(uint32_t index, Record registration);
    void Build(uint32_t index, Registration& registration);
    template <typename Param, typename Record>
    std::shared_ptr<Param> Make(uint32_t index, Record& registration);
    bool IsNameTaken(const String& paramName) const;

    ParamMap paramsByName;
    std::vector<const ParamObject*> paramsByIndex; // into paramsByName; null where none is
    std::vector<Dispatch> dispatch;                // by index
    std::vector<Registration> pending;             // by index, until FinaliseParams()
    std::map<String, uint32_t> indexByName;
    std::vector<String> names; // by index
    bool finalised = false;
    bool makingControllerSet = false;
    std::shared_ptr<Controller::ControllerSet> controllerSet; // last: it listens to the transports
};

} // namespace DSP
