// SPDX-License-Identifier: ISC
// Any text is a tree or no tree; a tree is written and read back as itself.
#include "frameworks/qobase/util/DictionaryReaderJSON.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Util::DictionaryReaderJSON reader;
    static Util::JSONDictionaryWriter writer;
    const auto dictionary = Util::ReadDictionary(reader, {data, size});
    if (!dictionary) {
        return 0;
    }
    Util::WriteDictionary(writer, *dictionary);
    const String text = writer.GetText();
    const std::string_view bytes = text.View();
    const auto again = Util::ReadDictionary(
        reader, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    if (!again || !(*again == *dictionary)) {
        std::abort();
    }
    return 0;
}
