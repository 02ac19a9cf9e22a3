#!/usr/bin/env bash
# Builds the library twice, plainly and with the sanitizers, and runs every test of both through CTest. With --windows:
# builds it for its original platform and runs the tests under Wine, in a fresh Wine folder.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}" "${test_packages[@]}"

cd "$here"
if [ "${1-}" = --windows ]; then
    need_packages "${windows_packages[@]}"
    rm -rf build/windows/wine
    cmake --preset windows -DKVT01_TESTS=ON
    cmake --build --preset windows
    echo "Left out:" && grep -v '^#' tests/windows-exceptions.txt
    exec ctest --preset windows --parallel "$(nproc)"
fi

for preset in release sanitize; do
    cmake --preset "$preset" -DKVT01_TESTS=ON
    cmake --build --preset "$preset"
done

# One run over both build folders, so that one count stands at the end.
mkdir -p build/all
printf 'subdirs("%s" "%s")\n' "$here/build/release" "$here/build/sanitize" >build/all/CTestTestfile.cmake
exec ctest --test-dir build/all --parallel "$(nproc)" --output-on-failure
