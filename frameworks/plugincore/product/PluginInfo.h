// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/product/PluginDefinition.h"

#include <cstddef>

/// Writes a text into a field of `size` bytes: cut between two characters where it is too long,
/// NUL-terminated, the rest zero. [any]
void CopyText(char* field, std::size_t size, const String& text);

template <std::size_t Size>
void CopyText(char (&field)[Size], const String& text)
{
    CopyText(field, Size, text);
}

/// Describes the product; what has no query comes out as 0. [any]
void FillPluginInfo(const PluginDefinition& definition, PluginInfoRecord& record);
