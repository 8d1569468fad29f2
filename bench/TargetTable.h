// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace Bench {

/// A figure that the project holds itself to. Where `aim` is above `limit`, more is better.
struct Target {
    std::string figure;
    double limit; ///< at most so much, or at least where more is better
    double aim;
    const char* format = "%.2f"; ///< of printf, for the three numbers
};

/// The figures of one run beside their targets.
class TargetTable {
public:
    void Add(const Target& target, double measured);
    /// For what couldn't be measured here.
    void AddMissing(const Target& target);
    void Print() const;

private:
    struct Row {
        Target target;
        double measured;
        bool isMissing;
    };

    std::vector<Row> rows;
};

} // namespace Bench
