# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Sourced by ./run, ./test and scripts/bench from the tree's root.

# trn_configure PRESET [CMAKE-ARGUMENT...]: configures once, and again when the presets or this
# file changed since; everything else CMake notices by itself while building.
trn_configure() {
    local preset=$1 made=build/$1/build.ninja
    shift
    if [ -f "$made" ] && [ "$made" -nt CMakePresets.json ] && [ "$made" -nt scripts/build.sh ]; then
        return
    fi
    # Warnings are errors with the compilers of Debian 12. Others warn of other things, which must
    # not keep anyone from building.
    local errors=OFF
    case "$preset $(g++ -dumpversion)" in
    asan\ * | *\ 12) errors=ON ;;
    esac
    mkdir -p build
    if ! cmake --preset "$preset" -DTRN_WARNINGS_AS_ERRORS=$errors "$@" >build/configure.log 2>&1; then
        cat build/configure.log >&2
        return 1
    fi
    # CMake leaves an unchanged file alone, and would be called every time.
    touch "$made"
}

# trn_build PRESET [TARGET...]: builds, and says nothing when there is nothing to do.
trn_build() {
    local preset=$1
    shift
    cmake --build --preset "$preset" ${1:+--target "$@"} </dev/null 2>&1 |
        { grep --line-buffered -v -e 'Re-checking globbed directories' -e 'no work to do' || true; }
    return "${PIPESTATUS[0]}"
}
