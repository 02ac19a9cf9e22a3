#!/usr/bin/env bash
# Builds the library and runs the example host: demo.sh [FOLDER]
# Without a folder it looks at the user's documents, or at this repository where there are none.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/scripts/lib/packages.sh"
need_packages "${build_packages[@]}"

log=$here/build/demo.log
mkdir -p "$here/build"
build() {
    cd "$here"
    cmake --preset release -DKVT01_TESTS=OFF && cmake --build --preset release --target recent_files kvt01
}
(build) >"$log" 2>&1 || { tail -n 40 "$log" >&2; exit 1; }

documents() { command -v xdg-user-dir >/dev/null && xdg-user-dir DOCUMENTS || echo "${HOME:-}/Documents"; }
folder=${1:-$(documents)}
if [ $# -eq 0 ] && { [ ! -d "$folder" ] || [ "$folder" = "${HOME:-}" ]; }; then folder=$here; fi
exec "$here/build/release/examples/recent_files/recent_files" "$folder"
