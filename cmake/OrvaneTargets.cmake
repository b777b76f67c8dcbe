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
    # Without this it passes over whatever is compiled with a precompiled header.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
endif()

add_library(orvane_options INTERFACE)
# The time inside a precompiled header would make two that are otherwise the same differ, for ccache above all.
target_compile_options(orvane_options INTERFACE -fno-omit-frame-pointer "SHELL:-Xclang -fno-pch-timestamp")
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
    -Wimplicit-fallthrough -Wnull-dereference -Wextra-semi -Wunused -Werror
    # Of names in two files that are compiled together.
    $<$<BOOL:${CMAKE_UNITY_BUILD}>:-Wno-shadow>)

# Headers that most sources include, which take the compiler longer than what the sources do with them. Precompiled for
# OrvaneSupport, for the product above it (by OrvaneAPI) and for the tests (by OrvaneTestSupport). Sources name what they
# use all the same: with CMAKE_DISABLE_PRECOMPILE_HEADERS=ON everything builds too, and ccache then finds what another
# folder compiled. <filesystem> is left out: it brings std::quoted along, which is taken for functions of that name.
set(orvane_support_headers
    <algorithm> <array> <atomic> <charconv> <chrono> <cmath> <coroutine> <cstdint> <cstring> <deque>
    <fstream> <functional> <map> <memory> <mutex> <optional> <random> <set> <span> <sstream> <string> <string_view>
    <thread> <tuple> <unordered_map> <utility> <variant> <vector>
    <QAbstractEventDispatcher> <QCoreApplication> <QCoro/QCoroTask> <QLoggingCategory> <QObject> <QPointer> <QString>
    <QThread> <QThreadPool> <QTimer> <QUrl> <tl/expected.hpp>)
set(orvane_product_headers ${orvane_support_headers}
    <OrvaneAPI/HttpMessage.h> <OrvaneAPI/Responses.h> <OrvaneAPI/Schemas.h> <Support/AsyncHop.h> <Support/Instant.h>
    <Support/Json.h>)
set(orvane_test_headers ${orvane_product_headers} <QProcess> <QTemporaryDir> <gmock/gmock.h> <gtest/gtest.h>)

# With CMAKE_UNITY_BUILD the sources of one folder are compiled as one, which takes the processor half the time and makes
# no use of ccache when one of them changes: for who builds once. So the names that a folder's sources keep to themselves
# differ.
function(orvane_group_by_folder target)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder FILENAME group)
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${group}")
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()

# Gives a target of ours the shared options, and the precompiled header of HEADERS_OF when it is named. LIGHTLY is for what
# waits for disks, networks and people: in a release it is optimized with less effort, a third of the compiler's time.
function(orvane_target target)
    cmake_parse_arguments(arg "LIGHTLY" "HEADERS_OF" "" ${ARGN})
    target_link_libraries(${target} PRIVATE orvane_options orvane_warnings)
    if(arg_HEADERS_OF)
        target_precompile_headers(${target} REUSE_FROM ${arg_HEADERS_OF})
    endif()
    if(arg_LIGHTLY)
        target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
    endif()
    orvane_group_by_folder(${target})
endfunction()

# A module's QML as byte code, many documents compiled as one; each as C++ of its own takes the compiler minutes, and the
# first frame is not there sooner.
function(orvane_qml target)
    set_target_properties(${target} PROPERTIES QT_QMLCACHEGEN_ARGUMENTS "--only-bytecode"
        UNITY_BUILD ON UNITY_BUILD_MODE BATCH UNITY_BUILD_BATCH_SIZE 40)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources EXCLUDE REGEX "/qmlcache/[^/]+_qml\\.cpp$|/qmlcache/.*/[^/]+_qml\\.cpp$")
    set_source_files_properties(${sources} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
