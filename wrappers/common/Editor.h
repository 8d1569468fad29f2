// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Instance.h"

#include <cstdint>

namespace Wrapper {

/// The editor of an instance, in a window that the host lends. All calls come from the host's UI
/// thread.
class Editor {
public:
    struct Size {
        int32_t width = 0; ///< pixels, as is the height
        int32_t height = 0;
    };

    /// `newInstance` lives longer.
    explicit Editor(Instance& newInstance);
    /// Closes.
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;
    Editor(Editor&&) = delete;
    Editor& operator=(Editor&&) = delete;

    /// `parent` is the native handle of the host's window; `scale` is in percent, 0 leaves it to
    /// the editor. False when there is no editor to open.
    bool Open(void* parent, uint32_t scale);
    void Close();
    bool IsOpen() const { return isOpen; }

    /// Draws and moves what is due; hosts call it some 30 times a second.
    void Idle();

    /// Of the editor's own window; 0 while it isn't open.
    uint64_t GetNativeWindow();

    /// The nearest size that the editor can take.
    Size Constrain(Size wanted);
    void SetSize(Size size);

private:
    Instance& instance;
    bool isOpen = false;
};

} // namespace Wrapper
