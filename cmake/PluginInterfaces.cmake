# SPDX-License-Identifier: GPL-3.0-or-later
# The interfaces of both plug-in formats, as Debian packages them. trn_vst2 are the headers of fst-dev.
# The VST3 sources are those that juce-modules-source-data installs, compiled where they lie:
# trn_vst3_host is what a host needs, trn_vst3_plugin what a plug-in needs.
include_guard(GLOBAL)

find_path(FST_INCLUDE_DIR fst/aeffectx.h PATH_SUFFIXES pluginterfaces REQUIRED)
add_library(trn_vst2 INTERFACE)
target_include_directories(trn_vst2 SYSTEM INTERFACE ${FST_INCLUDE_DIR})
# The headers note by #warning what their authors mean to look up, and compilers repeat that even of
# system headers.
target_compile_options(trn_vst2 INTERFACE -Wno-cpp)

find_path(VST3_SDK_DIR pluginterfaces/vst/ivstcomponent.h
    PATHS /usr/share/juce/modules/juce_audio_processors/format_types/VST3_SDK NO_DEFAULT_PATH REQUIRED)

set(_interfaces coreiids.cpp conststringtable.cpp funknown.cpp ustring.cpp)
list(TRANSFORM _interfaces PREPEND ${VST3_SDK_DIR}/pluginterfaces/base/)
set(_base baseiids.cpp fbuffer.cpp fdebug.cpp fobject.cpp fstreamer.cpp fstring.cpp updatehandler.cpp)
list(TRANSFORM _base PREPEND ${VST3_SDK_DIR}/base/source/)
set(_hosting common/memorystream.cpp vst/hosting/hostclasses.cpp vst/hosting/pluginterfacesupport.cpp
    vst/vstinitiids.cpp)
list(TRANSFORM _hosting PREPEND ${VST3_SDK_DIR}/public.sdk/source/)
set(_plugin common/memorystream.cpp common/pluginview.cpp vst/vstbus.cpp vst/vstcomponent.cpp
    vst/vstcomponentbase.cpp vst/vsteditcontroller.cpp vst/vstinitiids.cpp vst/vstparameters.cpp)
list(TRANSFORM _plugin PREPEND ${VST3_SDK_DIR}/public.sdk/source/)

# Not this project's code, so neither its warnings nor its sanitizers apply.
function(trn_vst3_library NAME)
    add_library(${NAME} STATIC EXCLUDE_FROM_ALL ${ARGN})
    set_target_properties(${NAME} PROPERTIES AUTOMOC OFF POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
    target_compile_options(${NAME} PRIVATE -w)
    target_compile_definitions(${NAME} PUBLIC RELEASE=1)
    target_include_directories(${NAME} SYSTEM PUBLIC ${VST3_SDK_DIR})
endfunction()
trn_vst3_library(trn_vst3_host ${_interfaces} ${_base} ${_hosting}
    ${VST3_SDK_DIR}/base/thread/source/flock.cpp)
trn_vst3_library(trn_vst3_plugin ${_interfaces} ${_base} ${_plugin}
    ${VST3_SDK_DIR}/base/thread/source/flock.cpp)
