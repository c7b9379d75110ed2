#!/usr/bin/env bash
# Builds the libFuzzer targets (fuzz/FuzzTargets.cmake) with clang in their
# own build folder and runs each for a given time, starting from its
# checked-in seed corpus fuzz/corpus/NAME. Not run by CI: CI replays the
# corpora in seconds (ctest -R fuzz_replay).
#
#   bash scripts/fuzz.sh [SECONDS] [TARGET...]   default 60 seconds, every target
#   STRAIGHTLUX_FUZZ_RUNS=N        stop each target after N executions instead
#   STRAIGHTLUX_FUZZ_BUILD_DIR=D   build folder (default build/fuzz)
#   STRAIGHTLUX_FUZZ_TIMEOUT=S     an input running longer is a finding (default 10 s;
#                                  raise it on a loaded machine)
#
# New inputs go to D/corpus/NAME (the checked-in seeds are left alone); an
# input that breaks a target is written to D/findings/NAME/. Once the fault
# is fixed, copy that input into fuzz/corpus/NAME so the replay keeps it
# fixed. The script ends with each target's executions and findings, and
# exits 1 when anything was found.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
shift || true
build=${STRAIGHTLUX_FUZZ_BUILD_DIR:-build/fuzz}
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  mapfile -t targets < <(sed -n 's/^straightlux_fuzz_target(\([A-Za-z0-9_]*\).*/\1/p' fuzz/FuzzTargets.cmake)
fi
for tool in clang clang++; do
  command -v "$tool" >/dev/null || { echo "fuzz: $tool is needed (apt-get install clang)" >&2; exit 1; }
done

echo "fuzz: building ${targets[*]} in $build"
cmake -S fuzz -B "$build" -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j2 --target "${targets[@]/#/fuzz_}" >/dev/null

limit=(-max_total_time="$seconds")
[ -n "${STRAIGHTLUX_FUZZ_RUNS:-}" ] && limit=(-runs="$STRAIGHTLUX_FUZZ_RUNS")
found=0
summary=()
for target in "${targets[@]}"; do
  mkdir -p "$build/corpus/$target" "$build/findings/$target"
  log="$build/fuzz_$target.log"
  echo "fuzz: running $target (${limit[*]}), log in $log"
  status=0
  # The plug-in object keeps its drawn lines, maps and pictures from one
  # input to the next by design; libFuzzer's per-input leak check reads that
  # as a leak and rescans the whole heap every time, slowing spark_process
  # tenfold. Its leaks are the asan test suite's business.
  extra=()
  [ "$target" = spark_process ] && extra=(-detect_leaks=0)
  ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1} "$build/fuzz_$target" "${limit[@]}" "${extra[@]}" -timeout="${STRAIGHTLUX_FUZZ_TIMEOUT:-10}" \
    -print_final_stats=1 -artifact_prefix="$build/findings/$target/" \
    "$build/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  findings=$(find "$build/findings/$target" -type f | wc -l)
  [ "$findings" -gt 0 ] || [ "$status" -ne 0 ] && found=1
  summary+=("$(printf '%-16s %12s executions  %s finding(s)  exit %s' "$target" "${runs:-?}" "$findings" "$status")")
done
echo "fuzz: results"
printf '  %s\n' "${summary[@]}"
exit "$found"
