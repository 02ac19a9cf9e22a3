#!/usr/bin/env bash
# What a change must pass besides the tests: the format, the second compiler, and the lints.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}" "${test_packages[@]}" "${check_packages[@]}"

cd "$here"
git ls-files '*.h' '*.cpp' | xargs clang-format --dry-run --Werror
cmake --preset clang
cmake --build --preset clang
git ls-files 'text/*.cpp' 'numbers/*.cpp' 'dates/*.cpp' 'persist/*.cpp' 'files/*.cpp' 'framework/*.cpp' 'platform/posix/*.cpp' \
    'system/*.cpp' 'tools/*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/clang
