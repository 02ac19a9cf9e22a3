#!/usr/bin/env bash
# Builds the library plainly, with the sanitizers, and for its original platform, and runs every test of the three
# through CTest, those of the last under Wine in a fresh Wine folder. With --windows: the last alone.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}" "${test_packages[@]}" "${windows_packages[@]}"

cd "$here"
presets=(release sanitize windows)
[ "${1-}" != --windows ] || presets=(windows)
export WINEPREFIX=$here/build/windows/wine
rm -rf "$WINEPREFIX"
for preset in "${presets[@]}"; do
    cmake --preset "$preset" -DKVT01_TESTS=ON
    cmake --build --preset "$preset"
done

echo "Left out on the original platform:"
sed '/^#/d' tests/windows-exceptions.txt

# One run over all build folders, so that one count stands at the end, and by label that of each platform.
mkdir -p build/all
printf 'subdirs("%s")\n' "${presets[@]/#/$here/build/}" >build/all/CTestTestfile.cmake
trap 'wineserver --kill || true' EXIT
# One program stays for the whole run, so that Wine does not end and start anew among the tests, and is there before
# them: it can hang for minutes when several programs start it together.
coproc cmake/wine.sh cmd.exe
read -r -t 300 -u "${COPROC[0]}" || { echo "Wine does not start" >&2; exit 1; }
ctest --test-dir build/all --parallel "$(nproc)" --output-on-failure
