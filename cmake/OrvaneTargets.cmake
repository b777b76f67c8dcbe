# SPDX-License-Identifier: GPL-3.0-or-later
# What every target of ours shares: the language level, the warnings and the sanitizers.

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set_property(GLOBAL PROPERTY AUTOGEN_SOURCE_GROUP "generated")

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_library(orvane_options INTERFACE)
target_compile_options(orvane_options INTERFACE -fno-omit-frame-pointer)
target_compile_definitions(orvane_options INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING
    ORVANE_VERSION="${PROJECT_VERSION}")
if(ORVANE_SANITIZERS)
    target_compile_options(orvane_options INTERFACE -fsanitize=${ORVANE_SANITIZERS} -fno-sanitize-recover=all)
    target_link_options(orvane_options INTERFACE -fsanitize=${ORVANE_SANITIZERS})
endif()

add_library(orvane_warnings INTERFACE)
target_compile_options(orvane_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
    -Wimplicit-fallthrough -Wnull-dereference -Wextra-semi -Wunused -Werror)

# Gives a target of ours the shared options; its sources may include from its own folder and from OrvaneKit's root.
function(orvane_target target)
    target_link_libraries(${target} PRIVATE orvane_options orvane_warnings)
endfunction()
