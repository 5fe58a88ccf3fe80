# Sourced by the scripts: building a preset. The compiler's output is kept in build/PRESET.log and shown when the build
# fails.
#   build_preset PRESET WHAT [CMAKE-OPTION...]
#                            builds everything, or only the targets named in BUILD_TARGETS
# Needs: lib/setup.sh, and to be in the checkout's folder.

build_preset() {
    local preset=$1 what=$2 log=build/$1.log started=$SECONDS
    shift 2
    mkdir -p build
    say "building $what (build/$preset)"
    if ! { cmake --preset "$preset" "$@" && cmake --build --preset "$preset" ${BUILD_TARGETS:+--target ${BUILD_TARGETS}}; } >"$log" 2>&1 </dev/null; then
        tail -n 100 "$log" >&2
        die "the build of $preset failed; all of its output is in $log"
    fi
    say "built $preset in $((SECONDS - started)) s"
}
