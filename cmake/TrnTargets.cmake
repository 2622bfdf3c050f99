# SPDX-License-Identifier: GPL-3.0-or-later
# The compiler options that every target of the tree shares, and the one way to declare a test.

add_library(trn_options INTERFACE)
target_compile_options(trn_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(TRN_WARNINGS_AS_ERRORS)
    target_compile_options(trn_options INTERFACE -Werror)
endif()
target_compile_definitions(trn_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(TRN_SANITIZE STREQUAL "address")
    set(_san -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(TRN_SANITIZE STREQUAL "thread")
    set(_san -fsanitize=thread -fno-omit-frame-pointer)
    # In the programs themselves, so that it goes before the sanitizer's.
    add_library(trn_vfork OBJECT ${CMAKE_SOURCE_DIR}/cmake/VforkUnderThreadSanitizer.cpp)
    set_target_properties(trn_vfork PROPERTIES AUTOMOC OFF)
    target_sources(trn_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:trn_vfork>>)
endif()
if(_san)
    target_compile_options(trn_options INTERFACE ${_san})
    target_link_options(trn_options INTERFACE ${_san})
endif()
if(TRN_COVERAGE)
    target_compile_options(trn_options INTERFACE --coverage)
    target_link_options(trn_options INTERFACE --coverage)
endif()

# trn_shared_headers(NAME LIBRARY HEADER...): precompiled headers for targets that use LIBRARY and
# name them by REUSE_FROM. Parsing Qt's headers is much of a source's compile time otherwise.
function(trn_shared_headers NAME LIBRARY)
    add_library(${NAME} STATIC ${CMAKE_SOURCE_DIR}/cmake/PrecompiledHeaders.cpp)
    set_target_properties(${NAME} PROPERTIES AUTOMOC OFF)
    target_link_libraries(${NAME} PRIVATE ${LIBRARY} trn_options)
    target_precompile_headers(${NAME} PRIVATE ${ARGN}
        <algorithm> <array> <atomic> <chrono> <functional> <memory> <mutex> <optional> <random>
        <thread> <vector>)
endfunction()

# A hundred tests are linked, each with most of the tree: this linker takes a third of the time.
include(CheckLinkerFlag)
check_linker_flag(CXX -fuse-ld=lld TRN_HAS_LLD)

# What the tests have in common, so that they can share headers. The optimiser would take longer
# over the tests than it saves: what costs time when they run lies in what they test.
function(trn_test_options TARGET)
    target_compile_options(${TARGET} PRIVATE -O0)
    if(TRN_HAS_LLD)
        target_link_options(${TARGET} PRIVATE -fuse-ld=lld)
    endif()
    target_compile_definitions(${TARGET} PRIVATE
        TRN_BIN_DIR="${CMAKE_BINARY_DIR}/bin" TRN_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
    target_include_directories(${TARGET} PRIVATE ${CMAKE_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${TARGET} PRIVATE trn_engine)
endfunction()

# trn_test(NAME SOURCES file... [BINDING target] [LIBRARIES target...] [LABELS label...]
#          [LOCK name...] [TIMEOUT seconds] [DEPENDS target...] [DISPLAY]
#          [WINDOW_MANAGER])
# One QtTest executable, run with a home of its own, so that no test reads or writes a user's
# files or settings, and with a fixed hash seed. BINDING is the MIDI binding that the executable
# links (trn_midi_loopback unless told otherwise; NONE for a test that needs no engine route).
# DISPLAY: the test opens windows, on an X server in memory of its own at 96 dots per inch.
# WINDOW_MANAGER: the same with a window manager.
#
# The thread sanitizer by default sleeps for a second at the end of each program, which the tests
# of the programs' time limits would take for theirs.
function(trn_test NAME)
    cmake_parse_arguments(T "DISPLAY;WINDOW_MANAGER" "BINDING;TIMEOUT" "SOURCES;LIBRARIES;LABELS;LOCK;DEPENDS;ENVIRONMENT" ${ARGN})
    if(NOT T_BINDING)
        set(T_BINDING trn_midi_loopback)
    endif()
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 120)
    endif()
    # Under this sanitizer programs take up to twenty times as long.
    if(TRN_SANITIZE STREQUAL "thread")
        math(EXPR T_TIMEOUT "${T_TIMEOUT} * 4")
    endif()
    add_executable(${NAME} ${T_SOURCES})
    # A test includes its own meta-object code at its end; looking for more costs each of them a
    # build step and a source.
    set_target_properties(${NAME} PROPERTIES AUTOMOC OFF)
    foreach(source IN LISTS T_SOURCES)
        get_filename_component(base ${source} NAME_WE)
        set(includes "")
        if(source MATCHES "\\.cpp$")
            file(STRINGS ${source} includes REGEX "^#include \"${base}\\.moc\"")
        endif()
        if(includes)
            qt6_generate_moc(${source} ${base}.moc TARGET ${NAME})
            target_sources(${NAME} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${base}.moc)
            target_include_directories(${NAME} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
        endif()
    endforeach()
    set_target_properties(${NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin/tests)
    if(T_DISPLAY OR T_WINDOW_MANAGER)
        target_precompile_headers(${NAME} REUSE_FROM trn_window_test_headers)
    else()
        target_precompile_headers(${NAME} REUSE_FROM trn_test_headers)
    endif()
    if(NOT T_BINDING STREQUAL "NONE")
        target_link_libraries(${NAME} PRIVATE ${T_BINDING})
    endif()
    target_link_libraries(${NAME} PRIVATE ${T_LIBRARIES} Qt6::Test)
    trn_test_options(${NAME})
    if(T_DEPENDS)
        add_dependencies(${NAME} ${T_DEPENDS})
    endif()
    set(home ${CMAKE_BINARY_DIR}/test-home/${NAME})
    file(MAKE_DIRECTORY ${home})
    set(on_display "")
    if(T_DISPLAY OR T_WINDOW_MANAGER)
        set(on_display ${CMAKE_SOURCE_DIR}/scripts/with-display)
        if(T_WINDOW_MANAGER)
            list(APPEND on_display --window-manager)
        endif()
        target_link_libraries(${NAME} PRIVATE trn_widgets)
    endif()
    add_test(NAME ${NAME} COMMAND ${on_display} $<TARGET_FILE:${NAME}>)
    # Whoever may take long begins first, so that nothing waits for it at the end; before all those
    # of which one runs at a time.
    set(cost ${T_TIMEOUT})
    if(T_LOCK)
        math(EXPR cost "${cost} + 10000")
    endif()
    set_tests_properties(${NAME} PROPERTIES
        TIMEOUT ${T_TIMEOUT}
        COST ${cost}
        LABELS "${T_LABELS}"
        RESOURCE_LOCK "${T_LOCK}"
        ENVIRONMENT "QT_HASH_SEED=0;QT_NO_GLIB=1;HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;LC_ALL=C.UTF-8;ASAN_OPTIONS=detect_leaks=1:abort_on_error=0;UBSAN_OPTIONS=print_stacktrace=1;TSAN_OPTIONS=halt_on_error=0:exitcode=66:atexit_sleep_ms=100:suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp;${T_ENVIRONMENT}")
endfunction()
