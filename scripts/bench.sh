#!/usr/bin/env bash
# Measures the library side by side with what users would pick instead: bench.sh [TASK...], for example bench.sh t01 t11
# Peers are Debian packages; one that is not installed is left out (bench.sh --install gets them all first).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}" libbenchmark-dev pkg-config python3
if [ "${1:-}" = --install ]; then
    shift
    need_packages qt6-base-dev libwxgtk3.2-dev libpoco-dev libglib2.0-dev libabsl-dev libfmt-dev libssl-dev \
        libcereal-dev libboost-all-dev libhowardhinnant-date-dev libspdlog-dev
fi

cd "$here"
cmake --preset release -DKVT01_TESTS=OFF >/dev/null
cmake --build --preset release --target kvt01
export KVT01_INCLUDE=$here/include KVT01_LIB=$here/build/release
export BENCH_BUILD=${BENCH_BUILD:-$here/build/peers}
exec bench/peers/run.sh "$@"
