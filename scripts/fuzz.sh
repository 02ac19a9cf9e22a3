#!/usr/bin/env bash
# fuzz.sh TARGET [SECONDS]: fuzzes one of the targets of fuzz/Targets.h, led by coverage, from its corpus, for a minute
# or so many seconds. What it finds to be new is kept in build/fuzz/found; an input that fails is left as crash-*.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}" clang libclang-rt-14-dev

cd "$here"
target=${1:?a target of fuzz/Targets.h}
grep -q "{\"$target\"," fuzz/Targets.h || { echo "no target of fuzz/Targets.h: $target" >&2; exit 2; }
cmake --preset fuzz
cmake --build --preset fuzz
mkdir -p "build/fuzz/found/$target" "fuzz/corpus/$target"
cd build/fuzz
KVT01_FUZZ=$target exec fuzz/kvt01_fuzz -max_total_time="${2:-60}" -print_final_stats=1 "found/$target" "$here/fuzz/corpus/$target"
