# SPDX-License-Identifier: GPL-3.0-or-later
# Clang 19 wherever the system keeps it: GCC 12 miscompiles aggregate temporaries inside co_await expressions.
find_program(ORVANE_CLANGXX NAMES clang++-19 clang++
    HINTS /opt/homebrew/opt/llvm@19/bin /usr/local/opt/llvm@19/bin /opt/homebrew/opt/llvm/bin REQUIRED)
set(CMAKE_CXX_COMPILER ${ORVANE_CLANGXX})
if(CMAKE_HOST_SYSTEM_NAME STREQUAL "Linux")
    set(CMAKE_EXE_LINKER_FLAGS_INIT "-fuse-ld=lld")
    set(CMAKE_SHARED_LINKER_FLAGS_INIT "-fuse-ld=lld")
endif()
