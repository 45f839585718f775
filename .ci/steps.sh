# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2154
# Sourced by .ci/run: its steps. Expects $root, $logs, $TIDY_UNTIL and packaging/bootstrap.sh.

have() {
    command -v "$1" >/dev/null || { note "$1 is not there: what needs it is left out."; return 1; }
}

# step NAME COMMAND...: runs it with its output in a log and prints its time, or ends the program.
step() {
    local name=$1 started=$SECONDS
    shift
    if ! "$@" </dev/null >"$logs/$name.log" 2>&1; then
        note "$name failed after $((SECONDS - started)) s; the end of $logs/$name.log:"
        tail -n 60 "$logs/$name.log" >&2
        printf '%s: %s\n' "$name" "$(first_failure "$logs/$name.log")"
        exit 1
    fi
    printf '%-10s %5d s\n' "$name" $((SECONDS - started))
}

# The first line of a log that tells of something wrong, else its last one.
first_failure() {
    grep -m 1 -E '\*\*\*(Failed|Exception|Timeout|Not Run)|: (fatal )?error: |CMake Error|: undefined reference|s  FAILED: |^Traceback|runtime error:|ERROR: |^tarnel: ' "$1" ||
        grep -v '^[[:space:]]*$' "$1" | tail -n 1
}

tests_of_check() {
    sed -n '/tests passed/,$p' "$logs/check.log"
}

sources() {
    find . -path './build*' -prune -o \( -name '*.h' -o -name '*.cpp' \) -print | LC_ALL=C sort
}

check_layout() {
    sources | xargs clang-format-16 --dry-run --Werror
}

# configure DIR OPTION...: a build folder beside that of ./check, with the quicker tools where they are.
configure() {
    local dir=$1 kind options=()
    shift
    if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    if command -v ld.lld >/dev/null; then
        for kind in EXE SHARED MODULE; do options+=("-DCMAKE_${kind}_LINKER_FLAGS=-fuse-ld=lld"); done
    fi
    cmake -S . -B "$dir" -G Ninja "${options[@]}" "$@"
}

check_sanitized() {
    configure build/sanitized -DCMAKE_BUILD_TYPE= -DCMAKE_CXX_FLAGS="-O1 -g1" \
        -DTARNEL_SANITIZE=address,undefined -DCMAKE_EXPORT_COMPILE_COMMANDS=ON &&
        cmake --build build/sanitized --parallel "$(nproc)" &&
        UBSAN_OPTIONS=print_stacktrace=1 ASAN_OPTIONS=verify_asan_link_order=0 \
            ctest --test-dir build/sanitized --output-on-failure -j "$(nproc)" -LE '^slow$'
}

run_harnesses() {
    local harness name
    configure build/fuzz -DCMAKE_BUILD_TYPE= -DCMAKE_CXX_FLAGS="-O1 -g1" -DCMAKE_CXX_COMPILER=clang++ \
        -DTARNEL_FUZZ=ON -DTARNEL_TESTS=OFF &&
        cmake --build build/fuzz --parallel "$(nproc)" --target fuzz/all || return 1
    for harness in build/fuzz/bin/fuzz_*; do
        name=${harness##*/fuzz_}
        mkdir -p "build/fuzz/found/$name"
        (cd build/fuzz/found && "$root/$harness" -max_total_time=10 -artifact_prefix="$name-" \
            "$name" "$root/fuzz/corpus/$name") || return 1
    done
}

build_bench() {
    local options=()
    if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    cmake --preset bench "${options[@]}" && cmake --build --preset bench --parallel "$(nproc)"
}

# The sources that the last twenty commits touched, newest first. A commit at the edge of a shallow clone seems to
# bring everything and does not count; without any other, or without git, it is all sources.
recent_sources() {
    local commits=() edge=/dev/null
    if command -v git >/dev/null && git -c safe.directory="$root" rev-parse --git-dir >/dev/null; then
        edge=$(git -c safe.directory="$root" rev-parse --git-path shallow)
        if [ ! -e "$edge" ]; then edge=/dev/null; fi
        mapfile -t commits < <(git -c safe.directory="$root" rev-list -n 20 HEAD | grep -vxFf "$edge")
    fi
    if [ "${TIDY:-}" = all ] || [ ${#commits[@]} -eq 0 ]; then
        sources
    else
        git -c safe.directory="$root" show --no-walk=unsorted --format= --name-only "${commits[@]}" -- '*.cpp' '*.h' |
            awk '{ print "./" $0 }'
    fi
}

# Headers are looked at where they are included; one stands for the source of its name.
check_tidy() {
    local left=$((TIDY_UNTIL - SECONDS)) file list=()
    if [ $left -lt 120 ]; then left=120; fi
    if [ "${TIDY:-}" = all ]; then left=100000; fi
    while read -r file; do
        file=${file%.h}
        file=${file%.cpp}.cpp
        if grep -qF "\"file\": \"$root/${file#./}\"" build/sanitized/compile_commands.json; then list+=("$file"); fi
    done < <(recent_sources | awk '!seen[$0]++')
    printf '%s\n' "${list[@]}" | awk '!seen[$0]++' |
        until=$(($(date +%s) + left)) xargs -r -P "$(nproc)" -n 1 .ci/tidy-one
}
