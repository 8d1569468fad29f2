// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DictionaryReader.h"

#include <utility>
#include <vector>

namespace Util {

namespace {

/// Puts a tree together from what its visitor calls bring.
class TreeBuilder final : public DictionaryActions {
public:
    void OnUInt(const String& key, uint32_t value) override { Add(key, {value}); }
    void OnInt(const String& key, int32_t value) override { Add(key, {value}); }
    void OnFloat(const String& key, double value) override { Add(key, {value}); }
    void OnBool(const String& key, bool value) override { Add(key, {value}); }
    void OnString(const String& key, const String& value) override { Add(key, {value}); }
    void OnBytes(const String& key, Bytes value) override { Add(key, {std::move(value)}); }
    void BeginDictionary(const String& key) override { open.push_back({key, {Dictionary()}}); }
    void EndDictionary() override { Close(); }
    void BeginArray(const String& key) override
    {
        open.push_back({key, {DictionaryValue::Array()}});
    }
    void EndArray() override { Close(); }

    Dictionary TakeRoot() { return std::move(root); }

private:
    struct Level {
        String key;
        DictionaryValue value; // a dictionary or an array
    };

    void Add(const String& key, DictionaryValue value)
    {
        if (open.empty()) {
            root.Set(key, std::move(value));
        } else if (auto* array = std::get_if<DictionaryValue::Array>(&open.back().value.value)) {
            array->push_back(std::move(value));
        } else if (auto* dictionary = std::get_if<Dictionary>(&open.back().value.value)) {
            dictionary->Set(key, std::move(value));
        }
    }
    void Close()
    {
        Level level = std::move(open.back());
        open.pop_back();
        Add(level.key, std::move(level.value));
    }

    Dictionary root;
    std::vector<Level> open; // innermost last
};

} // namespace

std::optional<Dictionary> ReadDictionary(DictionaryReader& reader, ByteSpan text)
{
    TreeBuilder builder;
    if (!reader.Read(text, builder)) {
        return std::nullopt;
    }
    return builder.TakeRoot();
}

} // namespace Util
