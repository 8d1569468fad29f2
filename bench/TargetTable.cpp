// SPDX-License-Identifier: ISC
#include "bench/TargetTable.h"

#include <cstdio>

namespace Bench {

namespace {

std::string Format(const Target& target, double value)
{
    char text[32];
    std::snprintf(&text[0], sizeof text, target.format, value);
    return &text[0];
}

const char* Judge(const Target& target, double measured)
{
    const bool moreIsBetter = target.aim > target.limit;
    const auto reaches = [&](double wanted) {
        return moreIsBetter ? measured >= wanted : measured <= wanted;
    };
    return reaches(target.aim) ? "aim reached" : reaches(target.limit) ? "within" : "MISSED";
}

} // namespace

void TargetTable::Add(const Target& target, double measured)
{
    rows.push_back({target, measured, false});
}

void TargetTable::AddMissing(const Target& target)
{
    rows.push_back({target, 0, true});
}

void TargetTable::Print() const
{
    std::printf("\n%-58s %8s %8s %8s\n", "Targets", "now", "limit", "aim");
    for (const Row& row : rows) {
        const Target& target = row.target;
        std::printf("%-58s %8s %8s %8s  %s\n",
                    target.figure.c_str(),
                    row.isMissing ? "-" : Format(target, row.measured).c_str(),
                    Format(target, target.limit).c_str(),
                    Format(target, target.aim).c_str(),
                    row.isMissing ? "not measured" : Judge(target, row.measured));
    }
}

} // namespace Bench
