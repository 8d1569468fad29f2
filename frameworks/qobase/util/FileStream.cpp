// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/FileStream.h"

#include "frameworks/qobase/util/DataStreamIO.h"

namespace Util {

FileStream::FileStream(const String& path, File::Mode mode)
    : DataStreamImpl(file)
    , file(path)
{
    if (!file.Open(mode)) {
        throw Exception::DataStreamIO(String("Can't open file: %1").arg(path));
    }
}

} // namespace Util
