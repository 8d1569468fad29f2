// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Param.h"

namespace Controller {

/// Brackets one gesture of the user, such as a drag from the pressing of the button to its release:
/// shared by all that take part in it. The parameter may go first. [ui]
template <typename T>
class GrabbedParamHandle {
public:
    explicit GrabbedParamHandle(Param<T>& newParam)
        : param(newParam)
        , observer(newParam)
    {
        param.BeginChange();
    }
    GrabbedParamHandle(const GrabbedParamHandle&) = delete;
    GrabbedParamHandle& operator=(const GrabbedParamHandle&) = delete;
    ~GrabbedParamHandle()
    {
        if (!observer.IsDestroyed()) {
            param.EndChange();
        }
    }

private:
    Param<T>& param;
    const DestructorObserver observer;
};

} // namespace Controller
