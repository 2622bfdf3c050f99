# shellcheck shell=bash
# SPDX-License-Identifier: GPL-3.0-or-later
#
# Sourced by ./run, ./test and scripts/bench from the tree's root. Installs the Debian packages that are
# missing and says so; with everything there it asks dpkg once and touches no network.

# Runs a command as root: directly, or through sudo, which may ask for a password only where
# somebody can answer.
trn_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif ! command -v sudo >/dev/null; then
        echo "setup: neither root nor sudo is at hand. Run this as root:" >&2
        echo "    $*" >&2
        return 1
    elif [ -t 0 ] && [ -z "${CI:-}" ]; then
        sudo "$@"
    else
        sudo -n "$@"
    fi
}

# The packages of the given sections of packages.txt, one per line.
trn_packages() {
    awk -v wanted=" $* " '
        /^[[:space:]]*(#|$)/ { next }
        /^\[.*\]$/ { taken = index(wanted, " " substr($0, 2, length($0) - 2) " ") > 0; next }
        taken { print $1 }' packages.txt
}

# trn_setup SECTION...: installs what is missing of these sections of packages.txt.
trn_setup() {
    if ! command -v dpkg-query >/dev/null; then
        echo "setup: this is no Debian system; install the counterparts of packages.txt ($*)" >&2
        echo "       yourself, and set TRN_NO_SETUP=1 to go on with what is there." >&2
        [ -n "${TRN_NO_SETUP:-}" ]
        return
    fi
    [ -z "${TRN_NO_SETUP:-}" ] || return 0

    local wanted installed missing
    wanted=$(trn_packages "$@" | LC_ALL=C sort -u)
    # dpkg-query fails when it doesn't know a package; what it does know is all that counts.
    # shellcheck disable=SC2086 # one word per package
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
        sed -n 's/^installed //p' | LC_ALL=C sort -u)
    missing=$(LC_ALL=C comm -23 <(echo "$wanted") <(echo "$installed") | tr '\n' ' ')
    [ -n "${missing// /}" ] || return 0

    echo "setup: installing Debian packages: $missing"
    echo "setup: once only; a minute or two, the log is build/setup.log"
    mkdir -p build
    # shellcheck disable=SC2086
    if ! { trn_as_root apt-get -q update &&
        trn_as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
            -o DPkg::Lock::Timeout=120 -o Dpkg::Use-Pty=0 \
            install --no-install-recommends $missing; } >build/setup.log 2>&1 </dev/null; then
        tail -n 20 build/setup.log >&2
        echo "setup: apt-get failed (above, and whole in build/setup.log). By hand, as root:" >&2
        echo "    apt-get update && apt-get install --no-install-recommends $missing" >&2
        return 1
    fi
    echo "setup: done"
}
