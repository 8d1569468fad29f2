// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementParam.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/product/Translator.h"

// Parameters as the entry shows them: values from 0 to 1, linear over the range.

/// Describes a parameter, whose display name and labels go through the translator. `elementName` is
/// the one that the set knows it by. [ui]
void FillParamInfo(const DSP::ParamObject& param,
                   const String& elementName,
                   const String& displayName,
                   const Translator& translator,
                   ParamInfoRecord& record);

/// Value of that side, from 0 to 1. [any]
float GetNormalised(const DSP::ParamObject& param, DSP::Context context);

/// Sets the value of that side from 0 to 1; what lies outside counts as the nearer end and a NaN
/// changes nothing. A bool is true from 0.5 on; an enumeration is rounded to the nearest value.
/// True when the value changed. [process] or [ui]
bool SetNormalised(const DSP::ParamObject& param,
                   float value,
                   DSP::Context context,
                   DSP::ValueSource source);
