#!/usr/bin/env bash
# Builds the libFuzzer targets of fuzz/ with clang and runs each one:
#
#   scripts/fuzz.sh [seconds-per-target] [runs-per-target]
#
# A target stops at whichever limit it reaches first (default: 60 seconds,
# no limit on runs). The seeds in fuzz/corpus/<target> are only read; new
# inputs go to build-fuzz/corpus/<target>, the full output to
# build-fuzz/<target>.log. An input that crashes a target is kept in
# build-fuzz/artifacts/ and the script ends with status 1; reproduce it with
#   build-fuzz/fuzz/fuzz_<target> build-fuzz/artifacts/<target>-crash-...
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
runs=${2:--1}
build=build-fuzz

CXX=clang++ cmake -S . -B "$build" -G Ninja -DZN_BUILD_FUZZERS=ON -DZN_BUILD_TESTS=OFF >/dev/null
targets=()
for source in fuzz/fuzz_*.cpp; do
  targets+=("$(basename "$source" .cpp)")
done
ninja -C "$build" "${targets[@]}"

mkdir -p "$build/artifacts"
failed=0
for name in "${targets[@]}"; do
  target=${name#fuzz_}
  mkdir -p "$build/corpus/$target"
  echo "== $name"
  status=0
  "$build/fuzz/$name" -max_total_time="$seconds" -runs="$runs" -close_fd_mask=3 \
    -print_final_stats=1 -dict="fuzz/dict/$target.dict" \
    -artifact_prefix="$build/artifacts/$target-" \
    "$build/corpus/$target" "fuzz/corpus/$target" >"$build/$target.log" 2>&1 || status=$?
  grep -E '^(Done |stat::(number_of_executed_units|average_exec_per_sec|peak_rss_mb))' \
    "$build/$target.log" || true
  if ((status != 0)); then
    echo "$name FAILED (status $status); the end of $build/$target.log:"
    tail -n 40 "$build/$target.log"
    failed=1
  fi
done
exit "$failed"
