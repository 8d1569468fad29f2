// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/RunContext.h"

#include "wrappers/cli/text/Text.h"

namespace Cli {

void ReportSpooling(const RunContext& context, const Task& task)
{
    context.console.Result(Printable(task.input.InputLabel()) +
                           ": kept in a temporary file, since it is read more than once");
}

} // namespace Cli
