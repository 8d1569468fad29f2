// SPDX-License-Identifier: ISC
#include "wrappers/cli/page/Template.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/page/Resources.h"

namespace Cli {

namespace {

constexpr std::string_view Opening = "{{";
constexpr std::string_view Closing = "}}";

} // namespace

void FillTemplate(std::string_view name, const Slots& slots, const TextSink& sink)
{
    std::string_view rest = Web::FindResource(name);
    for (size_t at = rest.find(Opening); at != std::string_view::npos; at = rest.find(Opening)) {
        sink(rest.substr(0, at));
        const size_t end = rest.find(Closing, at);
        const auto mark = rest.substr(at + Opening.size(), end - at - Opening.size());
        const auto slot = slots.find(mark);
        if (slot != slots.end()) {
            slot->second(sink);
        } else {
            sink(Web::FindResource(mark));
        }
        rest.remove_prefix(end + Closing.size());
    }
    sink(rest);
}

void WriteTemplate(std::string_view name, const Slots& slots, int descriptor)
{
    FillTemplate(name, slots, [descriptor](std::string_view text) {
        const int failure = WriteFully(descriptor, text);
        if (failure != 0) {
            throw FileError::FromErrno(failure);
        }
    });
}

std::string EscapeHtml(std::string_view text)
{
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&#39;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

std::string EscapeScript(std::string json)
{
    constexpr std::string_view Harmless = "\\u003c"; // only strings hold a "<"
    for (size_t at = json.find('<'); at != std::string::npos; at = json.find('<', at)) {
        json.replace(at, 1, Harmless);
    }
    return json;
}

} // namespace Cli
