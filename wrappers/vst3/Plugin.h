// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Module.h"
#include "wrappers/vst3/AudioProcessor.h"
#include "wrappers/vst3/Component.h"
#include "wrappers/vst3/EditController.h"
#include "wrappers/vst3/Effect.h"
#include "wrappers/vst3/HostEditing.h"
#include "wrappers/vst3/Object.h"

#include <memory>

namespace Vst3 {

/// One plug-in in a host of this format: an object with all interfaces, the controller's too.
///
/// Two objects, which the format wants to be able to run in two processes, would have to send each
/// other what they share here: one instance of the module, which has the texts, the state and the
/// editor. Every host takes a plug-in of one object, since it is how the simpler ones are made;
/// only that it can be split is not part of the class.
class Plugin final : public Object {
public:
    explicit Plugin(std::shared_ptr<const Wrapper::Module> module);

private:
    ~Plugin() override = default;
    Interface* Find(const uint8_t* iid) noexcept override;

    Effect effect;
    Component component;
    AudioProcessor processor;
    ContextRequirements requirements;
    EditController controller;
    HostEditing hostEditing;
};

} // namespace Vst3
