// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "frameworks/plugincore/dsp/path/ElementParamData.h"
#include "frameworks/qobase/util/Dictionary.h"

#include <vector>

/// The values of elements as saved, and back. All of it: [ui], with the UI lock held; audio may
/// run.
namespace DSP {

/// The element of this name, which may be its own or the one that the set has it under: files have
/// the former, but were also written with the latter. Null when there is none.
Element* FindElementByEitherName(const DSPSetBase& set, const String& name);

/// The session parameters of one element as they are wanted now, with its name, the version of its
/// table and its extra bytes.
Util::Dictionary BuildElementDictionary(const Element& element);

/// All elements of the set: one dictionary under "DSP Elements", which has one an element by its
/// own name.
Util::Dictionary BuildElements(const DSPSetBase& set);

/// What BuildElements() made, from any source: what isn't of the expected form is left out.
std::vector<ElementParamData> ReadElements(const Util::Dictionary& dictionary);

/// Sets the session parameters of an element to what `data` has for them; all others keep their
/// values. The source goes with each change.
void ApplyElement(Element& element, const ElementParamData& data, ValueSource source);

/// The same for each element that the set has.
void ApplyElements(const DSPSetBase& set,
                   const std::vector<ElementParamData>& elements,
                   ValueSource source);

/// Whether every value in `data` for a session parameter of the element is the wanted one now.
/// Empty when the two can't be compared, because their tables are of different versions.
std::optional<bool> IsSameState(const Element& element, const ElementParamData& data);

} // namespace DSP
