#!/usr/bin/env bash
# Installs what is missing, builds, runs every test, then builds and runs the same tests again
# under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/ensure-packages.sh
ensure_packages

jobs=$(nproc)

echo "== normal build =="
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSETTINGSCORE_WERROR=ON
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

echo "== sanitizer build (ASan + UBSan) =="
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DSETTINGSCORE_SANITIZE=ON \
      -DSETTINGSCORE_BUILD_BENCH=OFF -DSETTINGSCORE_WERROR=ON
cmake --build build-asan -j "$jobs"
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:strict_string_checks=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
ctest --test-dir build-asan --output-on-failure -j "$jobs"

echo "== all tests passed =="
