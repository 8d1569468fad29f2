// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Object.h"

namespace Vst3 {

namespace {

Object& OwnerOf(void* self)
{
    return *static_cast<Interface*>(self)->owner;
}

v3_result QueryInterface(void* self, const v3_tuid iid, void** result) noexcept
{
    return OwnerOf(self).QueryInterface(iid, result);
}

uint32_t AddReference(void* self) noexcept
{
    return OwnerOf(self).AddReference();
}

uint32_t Release(void* self) noexcept
{
    return OwnerOf(self).Release();
}

} // namespace

const v3_funknown UnknownTable = {QueryInterface, AddReference, Release};

v3_result Object::QueryInterface(const uint8_t* iid, void** result) noexcept
{
    if (result == nullptr) {
        return V3_INVALID_ARG;
    }
    *result = iid != nullptr ? Find(iid) : nullptr;
    if (*result == nullptr) {
        return V3_NO_INTERFACE;
    }
    AddReference();
    return V3_OK;
}

uint32_t Object::AddReference() noexcept
{
    return references.fetch_add(1) + 1;
}

uint32_t Object::Release() noexcept
{
    const uint32_t left = references.fetch_sub(1) - 1;
    if (left == 0) {
        delete this;
    }
    return left;
}

Interface* Object::FindOffer(std::span<const Offer> offers, const uint8_t* iid) noexcept
{
    for (const Offer& offer : offers) {
        if (v3_tuid_match(offer.iid, iid)) {
            return offer.interface;
        }
    }
    return nullptr;
}

} // namespace Vst3
