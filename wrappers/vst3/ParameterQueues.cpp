// SPDX-License-Identifier: ISC
#include "wrappers/vst3/ParameterQueues.h"

#include <algorithm>

namespace Vst3 {

void ParameterQueues::Begin(std::span<const v3_param_id> ids, v3_param_changes** changes) noexcept
{
    std::fill(cursors.begin(), cursors.end(), Cursor());
    size_t used = 0;
    const int32_t count = changes != nullptr ? v3_cpp_obj(changes)->get_param_count(changes) : 0;
    for (int32_t i = 0; i < count && used < cursors.size(); ++i) {
        v3_param_value_queue** const queue = v3_cpp_obj(changes)->get_param_data(changes, i);
        if (queue == nullptr) {
            continue;
        }
        const auto id = std::find(ids.begin(), ids.end(), v3_cpp_obj(queue)->get_param_id(queue));
        if (id != ids.end()) {
            cursors[used] = {queue, static_cast<uint32_t>(id - ids.begin()), 0, 0, 0.0};
            Advance(cursors[used++]);
        }
    }
}

uint32_t ParameterQueues::NextOffset() const noexcept
{
    uint32_t offset = None;
    for (const Cursor& cursor : cursors) {
        if (cursor.queue != nullptr) {
            offset = std::min(offset, cursor.offset);
        }
    }
    return offset;
}

// Points before the block count at its beginning; one that comes too late in its queue is due at
// once.
void ParameterQueues::Advance(Cursor& cursor) noexcept
{
    const v3_param_value_queue& functions = *v3_cpp_obj(cursor.queue);
    const int32_t count = functions.get_point_count(cursor.queue);
    while (cursor.next < count) {
        int32_t offset = 0;
        double value = 0;
        if (functions.get_point(cursor.queue, cursor.next++, &offset, &value) == V3_OK) {
            cursor.offset = static_cast<uint32_t>(std::max(offset, 0));
            cursor.value = value;
            return;
        }
    }
    cursor.queue = nullptr;
}

} // namespace Vst3
