// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/DataStreamImpl.h"
#include "frameworks/qobase/util/File.h"

namespace Util {

/// Typed values in a file, which is closed with the object.
class FileStream final : public DataStreamImpl {
public:
    /// Opens at once; raises Util::Exception::DataStreamIO when that fails.
    FileStream(const String& path, File::Mode mode);

private:
    File file;
};

} // namespace Util
