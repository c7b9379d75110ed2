#!/usr/bin/env bash
# Measures the plug-in's work beside its peers, OpenCV and lensfun, in one run:
# installs what is missing (the peers' Debian packages included), builds
# bench_peers with the default preset (release with debug info) and runs it.
# It prints every result and then the ratios of the pairs listed in
# bench/bench_peers.cpp. By default every benchmark runs 5 times, the runs of
# all benchmarks interleaved at random so that the machine's other load falls
# on all of them alike, and medians are reported. Arguments go to the
# benchmark program after those defaults (a later flag wins), e.g.
#   bash scripts/bench.sh --benchmark_filter=4096x2160 --benchmark_repetitions=3
# Set STRAIGHTLUX_BUILD_DIR to build in another folder. It then times whole
# sequences beside ffmpeg and oiiotool (scripts/bench-sequences.sh).
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"

# lensfun's pkg-config file needs glib's to be found.
STRAIGHTLUX_SETUP_EXTRA="${STRAIGHTLUX_SETUP_EXTRA:-} libopencv-dev liblensfun-dev libglib2.0-dev ffmpeg" \
  bash "$root/scripts/setup.sh"

if [ -n "${STRAIGHTLUX_BUILD_DIR:-}" ]; then
  build="$STRAIGHTLUX_BUILD_DIR"
  echo "== building bench_peers in $build"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$build" --target bench_peers -j2 >/dev/null
else
  build="$root/build/default"
  echo "== building bench_peers (preset default)"
  (cd "$root" && cmake --preset default >/dev/null &&
    cmake --build --preset default --target bench_peers >/dev/null)
fi

program="$build/bench/bench_peers"
if [ ! -x "$program" ]; then
  echo "bench: $program was not built: pkg-config did not find opencv4 and lensfun" >&2
  exit 1
fi
echo "== running $program"
"$program" --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true \
  --benchmark_report_aggregates_only=true "$@"

# Whole sequences through sparkrun beside ffmpeg and oiiotool
# (STRAIGHTLUX_BENCH_SEQUENCES=0 leaves them out).
if [ "${STRAIGHTLUX_BENCH_SEQUENCES:-1}" != 0 ]; then
  bash "$root/scripts/bench-sequences.sh"
fi
