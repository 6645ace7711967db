#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/ensure-packages.sh
ensure_packages

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSETTINGSCORE_WERROR=ON >/dev/null
cmake --build build -j "$(nproc)" --target tvsettings
exec scripts/demo.sh build
