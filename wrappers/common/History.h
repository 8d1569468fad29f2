// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Wrapper {

class Instance;

/// A step of an undo history.
struct HistoryStep {
    std::string time;  ///< UTC, "YYYY-MM-DDTHH:MM:SSZ"; empty where it isn't known
    std::string text;  ///< what was done
    uint8_t slots = 0; ///< bit n for slot n that holds it
};

/// Undo histories that lie in files. Nothing comes back, after a line in the log, when the module
/// refuses the call itself. All calls are [ui].
class History {
public:
    /// What a file holds, oldest first; or why it can't be read.
    struct File {
        std::vector<HistoryStep> steps;
        std::string problem;
    };

    /// `newInstance` lives longer.
    explicit History(Instance& newInstance)
        : instance(newInstance)
    {
    }

    std::optional<File> Open(const std::string& path);
    /// Sets the instance to a step of the file that was opened last. False, and nothing changed,
    /// for one that holds no state.
    std::optional<bool> GoTo(uint32_t step);

private:
    Instance& instance;
};

} // namespace Wrapper
