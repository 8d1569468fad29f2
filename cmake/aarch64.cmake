# SPDX-License-Identifier: ISC
# Builds for 64-bit ARM on another processor, and runs what it builds under emulation. The libraries
# are those of PUFFGUARD_SYSROOT; `./test --arm` makes such a folder.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PUFFGUARD_SYSROOT)
set(CMAKE_SYSROOT ${PUFFGUARD_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# pkg-config is this system's own, but reads the other one's files.
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${PUFFGUARD_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR}
    ${PUFFGUARD_SYSROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${PUFFGUARD_SYSROOT}/usr/share/pkgconfig)

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${PUFFGUARD_SYSROOT})
