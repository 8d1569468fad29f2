// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Module.h"

#include <memory>
#include <stdexcept>

namespace Cli {

/// The module could not be loaded, or an instance refused a call.
class ModuleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Loads the file that $PUFFGUARD_MODULE names or, without it, the first one that exists of the
/// places where installation and build put it, counted from the executable. Throws ModuleError.
std::shared_ptr<const Wrapper::Module> LoadModule();

} // namespace Cli
