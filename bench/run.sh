#!/usr/bin/env bash
# Builds the benchmark programs if needed, runs each with JSON output and prints one Markdown
# table: every row BM_X beside its floor BM_Floor_X from the same run, and the ratio.
#
# Usage: bench/run.sh [build folder]   (default: build, relative to the repository root)
# Extra options for the programs can be passed in BENCH_ARGS, e.g.
#   BENCH_ARGS=--benchmark_min_time=0.05 bench/run.sh build-release
set -euo pipefail

repo="$(cd "$(dirname "$0")/.." && pwd)"
build="${1:-build}"
case "$build" in
    /*) ;;
    *) build="$repo/$build" ;;
esac

if [ ! -f "$build/CMakeCache.txt" ]; then
    cmake -S "$repo" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSETTINGSCORE_BUILD_BENCH=ON >&2
elif grep -q '^SETTINGSCORE_BUILD_BENCH:BOOL=OFF' "$build/CMakeCache.txt"; then
    echo "run.sh: $build was configured with SETTINGSCORE_BUILD_BENCH=OFF" >&2
    exit 1
fi
build_type="$(sed -n 's/^CMAKE_BUILD_TYPE:STRING=//p' "$build/CMakeCache.txt")"
echo "Benchmarks of $build (${build_type:-no build type})" >&2

targets=()
for source in "$repo"/bench/*.cpp; do
    targets+=("bench_$(basename "$source" .cpp)")
done
cmake --build "$build" --target "${targets[@]}" >&2

results="$(mktemp -d)"
trap 'rm -rf "$results"' EXIT

for target in "${targets[@]}"; do
    # shellcheck disable=SC2086  # BENCH_ARGS is a list of options
    "$build/bench/$target" --benchmark_format=json ${BENCH_ARGS:-} >"$results/$target.json"
done

python3 - "$results"/*.json <<'PY'
import json
import sys

print("| benchmark | ns per op | floor ns per op | ratio to floor |")
print("|---|---:|---:|---:|")
for path in sys.argv[1:]:
    with open(path) as handle:
        rows = json.load(handle)["benchmarks"]
    scale = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    times = {}
    for row in rows:
        if row.get("run_type", "iteration") != "iteration":
            continue
        times[row["name"]] = row["real_time"] * scale[row.get("time_unit", "ns")]
    for name, ns in times.items():
        if not name.startswith("BM_") or name.startswith("BM_Floor_"):
            continue
        floor = times.get("BM_Floor_" + name[len("BM_"):])
        if floor is None:
            print(f"| {name} | {ns:.2f} | - | - |")
        else:
            print(f"| {name} | {ns:.2f} | {floor:.2f} | {ns / floor:.2f} |")
PY
