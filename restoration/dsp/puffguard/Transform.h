// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "restoration/dsp/puffguard/DetectionLog.h"

#include <memory>
#include <string_view>

namespace DSP {

/// The product's signal path: the automatable parameters by their list, and the repairs read back.
class Transform final : public TransformBase {
public:
    struct Parts {
        std::unique_ptr<DSPSet> set;       ///< without elements yet
        std::shared_ptr<DetectionLog> log; ///< what the set's repair writes to
        std::string_view automatableRows;  ///< text of the list; see ParamSetImpl
    };

    /// Makes the elements for a rate, in Hz, and a layout code. [setup]
    Transform(ElementHost& owner, Parts parts, float sampleRate, uint32_t channelConfig);

    bool Read(TransformReadRecord& record) override;

private:
    bool ReadDetections(TransformReadRecord& record) const;
    bool ReadTotals(TransformReadRecord& record) const;

    const std::shared_ptr<const DetectionLog> log;
};

} // namespace DSP
