// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <map>
#include <utility>

namespace DSP {
class Element;
}

/// Keeps count of what the user is at: which parameters are held, and when an action, of which
/// gestures may be part, is done. Gestures of one parameter may overlap and count as one. [ui]
class GestureBook {
public:
    /// A parameter is held once more. True when the host is to be notified: that is the first hold,
    /// and `mayReport`.
    bool Grab(const DSP::Element& element, const String& name, bool mayReport);

    struct Ended {
        bool wasReported = false;  ///< the last hold is gone, and the first was reported
        bool isActionDone = false; ///< nothing goes on any more, and something has changed
    };
    /// One without its Grab() ends nothing.
    Ended Release(const DSP::Element& element, const String& name);

    bool IsHeld(const DSP::Element& element, const String& name) const
    {
        return held.contains({&element, name});
    }
    /// Whether a gesture or an action goes on.
    bool IsUnderWay() const { return underWay != 0; }

    /// Around an action that changes several parameters or none.
    void BeginAction() { ++underWay; }
    /// True when the action is done, as in Ended.
    bool EndAction();

    /// The user has changed something. True when that was an action by itself.
    bool NoteChange();

private:
    struct Held {
        uint32_t count = 0;
        bool isReported = false;
    };
    bool TakeDone();

    std::map<std::pair<const DSP::Element*, String>, Held> held;
    uint32_t underWay = 0; // holds and actions
    bool changed = false;  // within what is under way
};
