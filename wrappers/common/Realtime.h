// SPDX-License-Identifier: ISC
#pragma once

/// Marks a format's process call, behind its noexcept: it does not wait, allocate or call the
/// system, nor does what it calls, the module included. The real-time sanitizer checks that where
/// the compiler has one. (The module's own mark is not for wrappers: they know nothing of it but
/// its entry.)
#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::nonblocking)
#define WRAPPER_NONBLOCKING [[clang::nonblocking]]
#endif
#endif
#ifndef WRAPPER_NONBLOCKING
#define WRAPPER_NONBLOCKING
#endif
