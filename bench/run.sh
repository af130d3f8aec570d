#!/usr/bin/env bash
# The benchmark suite: bash bench/run.sh [ROUNDS]
#
# Builds build-bench/ (ZN_BENCH_BUILD_DIR to change it), lays out an install
# tree with an empty command, and prints the figures of the end-to-end runs,
# the class-path assembly and the launcher's own work. The trace figures need
# /var/opt/zn/logs/: made here when missing (as root), removed again after.
# ZN_BENCH_CANDIDATE=PATH adds another launcher build to the end-to-end runs.
# The instruction counts need valgrind; without it they are left out.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath -m "${ZN_BENCH_BUILD_DIR:-build-bench}")
rounds=${1:-30}

scripts/setup.sh
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DZN_BUILD_BENCHMARKS=ON -DZN_BUILD_TESTS=OFF >/dev/null
ninja -C "$build" znlauncher zn_bench_baseline zn_bench_ab zn_microbench zn_bench_jar >/dev/null
jdk=$(sed -n 's/^ZN_JDK_HOME:PATH=//p' "$build/CMakeCache.txt")

tree=$(mktemp -d /tmp/zn-bench-XXXXXX)
made=()
cleanup() {
  rm -rf "$tree"
  for ((i = ${#made[@]} - 1; i >= 0; i--)); do rmdir "${made[i]}" 2>/dev/null || true; done
}
trap cleanup EXIT
mkdir -p "$tree/opt/zn/lib" "$tree/bin"
ln -s "$jdk" "$tree/opt/zn/j2re"
ln -s "$build/bench/jars/bench.jar" "$tree/opt/zn/lib/bench.jar"
ln -s "$build/src/cxx/shared/ZnCLI/znlauncher" "$tree/bin/znexec"
candidate=()
if [ -n "${ZN_BENCH_CANDIDATE:-}" ]; then
  mkdir "$tree/candidate"
  ln -s "$(realpath "$ZN_BENCH_CANDIDATE")" "$tree/candidate/znexec"
  candidate=(3 "$tree/candidate/znexec")
fi
for dir in /var/opt /var/opt/zn /var/opt/zn/logs; do
  if [ ! -d "$dir" ] && mkdir "$dir" 2>/dev/null; then made+=("$dir"); fi
done

echo "Machine: $(nproc) cores, $(free -m | awk '/^Mem:/ {print $2}') MiB," \
  "$(lscpu | sed -n 's/^Model name: *//p'), kernel $(uname -r)," \
  "$("$jdk/bin/java" -version 2>&1 | head -n 2 | tail -n 1)"
echo "Load average before: $(cut -d' ' -f1-3 /proc/loadavg)"
echo

clean_env=(env -i PATH=/usr/bin:/bin LANG=C.UTF-8)
"${clean_env[@]}" "$build/bench/zn_bench_ab" "$tree" znexec \
  com/brennic/zn/cli/ZnCommandDispatcher "$build/bench/zn_bench_baseline" "$jdk/bin/java" \
  "$rounds" "${candidate[@]}" | tee "$tree/ab.txt"
empty_ms=$(sed -n 's/^empty-command wall ms: //p' "$tree/ab.txt")

# Instruction counts do not depend on the machine's load: one run of each
# under callgrind, every thread, user space only.
if command -v valgrind >/dev/null; then
  mapfile -t options < <("${clean_env[@]}" ZN_BASE_DIR="$tree" ZN_SHOW_JVM_OPTS=1 \
    "$tree/bin/znexec" | sed -n 's/^addJVMOption(): //p')
  instructions() {
    "${clean_env[@]}" ZN_BASE_DIR="$tree" valgrind --tool=callgrind \
      --callgrind-out-file="$tree/callgrind.out" "$@" 2>&1 >/dev/null |
      sed -n 's/.*Collected : //p'
  }
  launcher_ir=$(instructions "$tree/bin/znexec")
  baseline_ir=$(instructions "$build/bench/zn_bench_baseline" \
    com/brennic/zn/cli/ZnCommandDispatcher znexec "${options[@]}")
  mapfile -t java_options < <(printf '%s\n' "${options[@]}" | grep -v '^$')
  java_ir=$(instructions "$jdk/bin/java" -XX:+IgnoreUnrecognizedVMOptions "${java_options[@]}" \
    com.brennic.zn.cli.ZnCommandDispatcher znexec)
  echo
  echo "Instructions executed (callgrind, one run each, all threads, user space):"
  awk -v l="$launcher_ir" -v b="$baseline_ir" -v j="$java_ir" 'BEGIN {
    printf "  launcher %d, baseline %d, java %d\n", l, b, j
    printf "  launcher/baseline %.4f, launcher/java %.4f\n", l / b, l / j }'
fi
echo
"${clean_env[@]}" "$build/bench/zn_microbench" --tree="$tree" --empty-command-ms="$empty_ms" \
  --benchmark_repetitions=5 --benchmark_display_aggregates_only=true
echo
echo "Load average after: $(cut -d' ' -f1-3 /proc/loadavg)"
