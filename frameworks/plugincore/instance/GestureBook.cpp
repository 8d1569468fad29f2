// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/GestureBook.h"

bool GestureBook::Grab(const DSP::Element& element, const String& name, bool mayReport)
{
    Held& entry = held[{&element, name}]; // first: it may throw, and then nothing goes on
    ++underWay;
    if (++entry.count > 1) {
        return false;
    }
    entry.isReported = mayReport;
    return mayReport;
}

GestureBook::Ended GestureBook::Release(const DSP::Element& element, const String& name)
{
    const auto found = held.find({&element, name});
    if (found == held.end()) {
        return {};
    }
    Ended ended;
    if (--found->second.count == 0) {
        ended.wasReported = found->second.isReported;
        held.erase(found);
    }
    ended.isActionDone = EndAction();
    return ended;
}

bool GestureBook::EndAction()
{
    --underWay;
    return TakeDone();
}

bool GestureBook::NoteChange()
{
    changed = true;
    return TakeDone();
}

bool GestureBook::TakeDone()
{
    return underWay == 0 && std::exchange(changed, false);
}
