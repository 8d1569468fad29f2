// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/base.h>

#include <atomic>
#include <cstdint>
#include <exception>
#include <span>
#include <type_traits>
#include <utility>

namespace Vst3 {

class Object;

/// One interface of an object of ours. A host holds the address of this, and finds in its first
/// place the address of the interface's table of functions.
struct Interface {
    const void* table = nullptr;
    Object* owner = nullptr;
};

/// What a host holds by counted references, and asks for its interfaces. It deletes itself with the
/// last reference; there is one at first. [any]
class Object {
public:
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    Object(Object&&) = delete;
    Object& operator=(Object&&) = delete;

    /// Counts a reference for what it gives; null in `result`, and V3_NO_INTERFACE, for an
    /// interface that isn't offered.
    v3_result QueryInterface(const uint8_t* iid, void** result) noexcept;
    uint32_t AddReference() noexcept;
    uint32_t Release() noexcept;

protected:
    struct Offer {
        const uint8_t* iid;
        Interface* interface;
    };

    Object() = default;
    virtual ~Object() = default;

    /// Null when it isn't offered.
    virtual Interface* Find(const uint8_t* iid) noexcept = 0;
    static Interface* FindOffer(std::span<const Offer> offers, const uint8_t* iid) noexcept;

private:
    std::atomic<uint32_t> references{1};
};

/// The first three places of every table.
extern const v3_funknown UnknownTable;

/// The C function for a place of a table: calls a method of the class that derives from the
/// interface. Nothing is thrown into a host; what can be is a lack of memory.
template <auto Method, typename Class, typename Result, typename... Arguments>
constexpr auto MakeSlot(Result (Class::* /*method*/)(Arguments...))
{
    return +[](void* self, Arguments... arguments) noexcept -> Result {
        auto& object = *static_cast<Class*>(static_cast<Interface*>(self));
        if constexpr (noexcept((object.*Method)(arguments...))) {
            return (object.*Method)(arguments...);
        } else {
            static_assert(std::is_same_v<Result, v3_result>, "counts and numbers tell no fault");
            try {
                return (object.*Method)(arguments...);
            } catch (const std::exception&) {
                return V3_INTERNAL_ERR;
            }
        }
    };
}
template <auto Method>
inline constexpr auto Slot = MakeSlot<Method>(Method);

} // namespace Vst3
