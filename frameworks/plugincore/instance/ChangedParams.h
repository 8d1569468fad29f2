// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"

/// Lists what ChangedParamsRecord asks for. The elements have the names that the set knows them by.
/// [ui]
void AnswerChangedParams(const DSP::DSPSetBase& set, ChangedParamsRecord& record);
