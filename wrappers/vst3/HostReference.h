// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/base.h>

#include <cstdint>
#include <utility>

namespace Vst3 {

/// A counted reference to an object of the host's by one of its interfaces, or to none.
template <typename Table>
class HostReference {
public:
    HostReference() = default;
    /// Adds a reference; `newObject` may be null.
    explicit HostReference(Table** newObject)
        : object(newObject)
    {
        if (object != nullptr) {
            v3_cpp_obj_ref(object);
        }
    }
    /// Asks an object, which may be null, for an interface: none when it has none such.
    template <typename OtherTable>
    static HostReference Query(OtherTable** other, const v3_tuid iid)
    {
        HostReference reference;
        Table** found = nullptr;
        if (other != nullptr && v3_cpp_obj_query_interface(other, iid, &found) == V3_OK) {
            reference.object = found; // the query has counted it
        }
        return reference;
    }
    ~HostReference() { Reset(); }
    HostReference(const HostReference&) = delete;
    HostReference& operator=(const HostReference&) = delete;
    HostReference(HostReference&& other) noexcept
        : object(std::exchange(other.object, nullptr))
    {
    }
    HostReference& operator=(HostReference&& other) noexcept
    {
        if (this != &other) {
            Reset();
            object = std::exchange(other.object, nullptr);
        }
        return *this;
    }

    void Reset()
    {
        if (Table** const former = std::exchange(object, nullptr); former != nullptr) {
            v3_cpp_obj_unref(former);
        }
    }

    explicit operator bool() const { return object != nullptr; }

    /// Calls a function of the interface; the reference isn't null.
    template <typename Result, typename... Parameters, typename... Arguments>
    Result Call(Result (*Table::*function)(void*, Parameters...), Arguments... arguments) const
    {
        return (v3_cpp_obj(object)->*function)(object, arguments...);
    }

private:
    Table** object = nullptr;
};

} // namespace Vst3
