// SPDX-License-Identifier: ISC
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Cli {

/// Takes text that goes to a file, piece by piece.
using TextSink = std::function<void(std::string_view)>;

/// What stands in the place of a mark: writes it.
using Slots = std::map<std::string, std::function<void(const TextSink&)>, std::less<>>;

/// Writes the resource called `name`: each {{mark}} in it gives way to the slot of that name, or
/// else to the resource of that name.
void FillTemplate(std::string_view name, const Slots& slots, const TextSink& sink);

/// The same into a file. Throws FileError.
void WriteTemplate(std::string_view name, const Slots& slots, int descriptor);

/// `text` for the inside of an HTML element or attribute.
std::string EscapeHtml(std::string_view text);

/// JSON that stands in a script element: no "<" can end that or begin a comment.
std::string EscapeScript(std::string json);

} // namespace Cli
