# SPDX-License-Identifier: GPL-3.0-or-later
# Sourced by ./tarnel, ./check and bench/: installs what is missing and builds. A fresh clone on a bare
# machine has no compiler and perhaps no git, so this uses nothing beyond Debian's essential packages, and
# it says nothing on standard output, which belongs to the program that is built.
# Expects $root, the project's folder.

note() { printf '%s\n' "$*" >&2; }

# install_missing GROUP...: installs the packages of these groups that dpkg does not know as installed.
install_missing() {
    local name group wanted=() missing=()
    while read -r name group; do
        case "$name" in '' | '#'*) continue ;; esac
        for g in "$@"; do
            if [ "$group" = "$g" ]; then wanted+=("$name"); fi
        done
    done <"$root/packaging/apt-packages.txt"
    local have
    have=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p')
    for name in "${wanted[@]}"; do
        grep -qxF "$name" <<<"$have" || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            note "tarnel: these packages are missing: ${missing[*]}"
            note "tarnel: install them as root (apt-get install ${missing[*]}) and try again."
            return 1
        fi
        as=(sudo)
    fi
    note "Installing from Debian: ${missing[*]}"
    local log="$root/build/apt.log"
    if ! { "${as[@]}" apt-get -q update &&
        "${as[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends install \
            "${missing[@]}"; } </dev/null >"$log" 2>&1; then
        tail -n 20 "$log" >&2
        note "tarnel: the packages could not be installed; the whole output is in $log"
        return 1
    fi
}

# up_to_date STAMP: true when nothing that goes into the program is newer than the stamp. Two or three
# milliseconds, so that every call of ./tarnel can afford it.
up_to_date() {
    [ -e "$1" ] || return 1
    local parts=()
    local part
    for part in CMakeLists.txt CMakePresets.json system arx drafthost text zip state engine log support files script host app \
        ui html widgets res; do
        if [ -e "$root/$part" ]; then parts+=("$root/$part"); fi
    done
    [ -z "$(find "${parts[@]}" -newer "$1" -print -quit)" ]
}

# run_logged LOG COMMAND...: output to the terminal when there is one, else to the log, of which the end is
# shown when the command fails.
run_logged() {
    local log=$1
    shift
    if [ -t 2 ]; then
        "$@" >&2
    elif ! "$@" >>"$log" 2>&1; then
        tail -n 40 "$log" >&2
        note "tarnel: the build failed; the whole output is in $log"
        return 1
    fi
}

# build TESTS TARGET...: configures build/release and builds the targets there; none are all of them.
# TESTS is ON or OFF.
build() {
    local tests=$1 dir="$root/build/release" log="$root/build/build.log"
    shift
    local options=(-DTARNEL_TESTS="$tests" -DTARNEL_WERROR="$([ "${CI:-}" = true ] && echo ON || echo OFF)")
    if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    : >"$log"
    # The source tree is given as the working folder, since presets are looked for there.
    (
        cd "$root"
        run_logged "$log" cmake --preset release "${options[@]}" &&
            run_logged "$log" cmake --build "$dir" --parallel "$(nproc)" ${1:+--target "$@"}
    )
}
