// SPDX-License-Identifier: ISC
#pragma once

#include <clocale>
#include <locale>
#include <string>

namespace Support {

/// For as long as the object lives, the process writes numbers as German hosts have them:
/// "1.234,5".
class GermanNumbers {
public:
    GermanNumbers()
    {
        std::setlocale(LC_ALL, "de_DE.UTF-8"); // where it is installed
    }
    GermanNumbers(const GermanNumbers&) = delete;
    GermanNumbers& operator=(const GermanNumbers&) = delete;
    ~GermanNumbers()
    {
        std::locale::global(formerOfStreams);
        std::setlocale(LC_ALL, former.c_str());
    }

private:
    struct CommaPoint : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };

    const std::string former = std::setlocale(LC_ALL, nullptr);
    const std::locale formerOfStreams =
        std::locale::global(std::locale(std::locale::classic(), new CommaPoint));
};

} // namespace Support
