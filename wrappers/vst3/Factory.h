// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Module.h"
#include "wrappers/vst3/Object.h"

#include <travesty/factory.h>

#include <cstdint>
#include <memory>

namespace Vst3 {

/// What the library offers: one class. Its texts are the module's; a library without its module
/// lists nothing.
class Factory final : public Object, public Interface {
public:
    Factory();

    /// As the host holds it.
    void* GetInterface() { return static_cast<Interface*>(this); }

private:
    ~Factory() override = default;
    Interface* Find(const uint8_t* iid) noexcept override;

    v3_result GetFactoryInfo(v3_factory_info* info);
    int32_t CountClasses() noexcept;
    v3_result GetClassInfo(int32_t index, v3_class_info* info);
    v3_result CreateInstance(const uint8_t* wantedClass, const uint8_t* iid, void** instance);
    v3_result GetClassInfo2(int32_t index, v3_class_info_2* info);
    v3_result GetClassInfoUtf16(int32_t index, v3_class_info_3* info);
    v3_result SetHostContext(v3_funknown** context) noexcept;

    bool IsClass(int32_t index) const noexcept { return index == 0 && module != nullptr; }

    static const v3_plugin_factory_cpp Functions;

    std::shared_ptr<const Wrapper::Module> module;
};

} // namespace Vst3
