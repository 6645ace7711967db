#!/usr/bin/env bash
# Kills a saving process 10,000 times at random moments and checks after each kill that the
# user file is whole (the crash-safety test of the saving test program, at full length; the
# suite runs 200 kills). Prints the kills, the changes of the saved value seen and the
# temporary folders left over.
#
# Usage: scripts/crash-safety.sh [build folder]   (default: build, relative to the repository root)
# SETTINGSCORE_CRASH_KILLS overrides the number of kills.
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-build}"
case "$build" in
    /*) ;;
    *) build="$repo/$build" ;;
esac

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >&2
fi
cmake --build "$build" --target test_settingscore_core_saving >&2

SETTINGSCORE_CRASH_KILLS="${SETTINGSCORE_CRASH_KILLS:-10000}" \
LD_LIBRARY_PATH="$build/lib${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" \
    "$build/bin/test_settingscore_core_saving" \
    --gtest_filter='SavingTest.KilledSavesLeaveTheOldOrTheNewFileAndTheirLeftoversHarmNoLaterSave'
