// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/ParamRecords.h"

#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/DebugTrace.h"

#include <algorithm>
#include <cmath>

namespace {

using FloatParam = DSP::ElementParamImplBase<float>;
using BoolParam = DSP::ElementParamImplBase<bool>;
using EnumParam = DSP::ElementParamEnumImplBase;

void FillType(const FloatParam& param, const Translator& /*translator*/, ParamInfoRecord& record)
{
    record.type = ParamTypeFloat;
    record.minimum = param.GetRange().min;
    record.maximum = param.GetRange().max;
    record.defaultValue = param.GetDefault();
}

void FillType(const BoolParam& param, const Translator& /*translator*/, ParamInfoRecord& record)
{
    record.type = ParamTypeBool;
    record.maximum = 1.0F;
    record.defaultValue = param.GetDefault() ? 1.0F : 0.0F;
    record.steps = 2;
}

// All labels, with tabs between them, or none: hosts take the n-th text for the n-th value.
void FillLabels(const EnumParam& param, const Translator& translator, ParamInfoRecord& record)
{
    const uint32_t first = param.GetRange().min;
    String labels;
    uint32_t count = 0;
    for (uint32_t step = 0; step < record.steps; ++step) {
        const String label = param.GetEnumLabel(first + step);
        count += label.IsNull() ? 0 : 1; // null: the value has none
        const String text = label.IsNull() ? label : translator.Translate(label);
        labels = step == 0 ? text : labels + "\t" + text;
    }
    if (count == record.steps && labels.Length() < sizeof record.labels) {
        CopyText(record.labels, labels);
    } else if (count != record.steps && count != 0) {
        Util::DebugTrace(String("Enum size mismatch %1 != %2").arg(count).arg(record.steps));
    }
}

void FillType(const EnumParam& param, const Translator& translator, ParamInfoRecord& record)
{
    const auto range = param.GetRange();
    record.type = ParamTypeEnum;
    record.minimum = static_cast<float>(range.min);
    record.maximum = static_cast<float>(range.max);
    record.defaultValue = static_cast<float>(param.GetDefault());
    record.steps = range.max - range.min + 1;
    FillLabels(param, translator, record);
}

float Normalise(const FloatParam& param, DSP::Context context)
{
    const auto range = param.GetRange();
    return (param.GetValue(context) - range.min) / (range.max - range.min);
}

float Normalise(const BoolParam& param, DSP::Context context)
{
    return param.GetValue(context) ? 1.0F : 0.0F;
}

float Normalise(const EnumParam& param, DSP::Context context)
{
    const auto range = param.GetRange();
    return static_cast<float>(param.GetValue(context) - range.min) /
           static_cast<float>(range.max - range.min);
}

float Denormalise(const FloatParam& param, float value)
{
    const auto range = param.GetRange();
    return value * (range.max - range.min) + range.min;
}

bool Denormalise(const BoolParam& /*param*/, float value)
{
    return value >= 0.5F;
}

uint32_t Denormalise(const EnumParam& param, float value)
{
    const auto range = param.GetRange();
    const auto steps = static_cast<float>(range.max - range.min);
    return range.min + static_cast<uint32_t>(std::lround(value * steps));
}

} // namespace

void FillParamInfo(const DSP::ParamObject& param,
                   const String& elementName,
                   const String& displayName,
                   const Translator& translator,
                   ParamInfoRecord& record)
{
    record = ParamInfoRecord();
    std::visit(
        [&](const auto& object) {
            const DSP::ParamInfo& info = object->GetParamInfo();
            CopyText(record.identifier, elementName + "." + object->GetName());
            CopyText(record.displayName, translator.Translate(displayName));
            CopyText(record.units, info.units);
            record.flags = info.isLogarithmic ? ParamFlagLogarithmic : 0;
            FillType(*object, translator, record);
        },
        param);
}

float GetNormalised(const DSP::ParamObject& param, DSP::Context context)
{
    return std::visit([context](const auto& object) { return Normalise(*object, context); }, param);
}

bool SetNormalised(const DSP::ParamObject& param,
                   float value,
                   DSP::Context context,
                   DSP::ValueSource source)
{
    if (std::isnan(value)) {
        return false;
    }
    const float inside = std::clamp(value, 0.0F, 1.0F);
    return std::visit(
        [&](const auto& object) {
            return object->SetValue(Denormalise(*object, inside), context, source);
        },
        param);
}
