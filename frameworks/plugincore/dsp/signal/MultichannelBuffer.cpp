// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/MultichannelBuffer.h"

namespace DSP::multichannel_buffer_detail {

void view_canary::Unlink() noexcept
{
    if (previous != nullptr) {
        previous->next = next;
    }
    if (next != nullptr) {
        next->previous = previous;
    }
    previous = nullptr;
    next = nullptr;
}

void view_canary::LinkTo(view_canary& other) noexcept
{
    Unlink();
    previous = &other;
    next = other.next;
    other.next = this;
    if (next != nullptr) {
        next->previous = this;
    }
}

void view_canary::DropFollowers() noexcept
{
    while (next != nullptr) {
        view_canary& follower = *next;
        follower.Unlink();
        follower.onSamplesGone();
    }
}

} // namespace DSP::multichannel_buffer_detail
