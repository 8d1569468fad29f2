// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DataStreamIO.h"

namespace Util::Exception {

String DataStreamIO::Describe() const
{
    return Base::Describe() + "\nDataStreamIO\n";
}

} // namespace Util::Exception
