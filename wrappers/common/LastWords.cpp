// SPDX-License-Identifier: ISC
#include "wrappers/common/LastWords.h"

#include <limits>

namespace Wrapper {

namespace {

constexpr float None = std::numeric_limits<float>::quiet_NaN();

} // namespace

LastWords::LastWords(uint32_t count)
    : words(count)
{
    for (uint32_t index = 0; index < count; ++index) {
        Drop(index);
    }
}

void LastWords::Drop(uint32_t index) noexcept
{
    words[index] = None;
}

bool LastWords::Load(const std::function<bool()>& load,
                     const std::function<void(uint32_t)>& takeOver)
{
    std::vector<float> former;
    former.reserve(words.size());
    for (std::atomic<float>& word : words) {
        former.push_back(word.exchange(None));
    }
    MarkUIAhead();
    const bool isLoaded = load();
    for (uint32_t index = 0; index < words.size(); ++index) {
        float word = None;
        if (!isLoaded) {
            words[index].compare_exchange_strong(word, former[index]);
        } else if (std::isnan(words[index])) {
            takeOver(index);
        }
    }
    MarkUIAhead(); // a block may have taken only a part of it
    return isLoaded;
}

} // namespace Wrapper
