#!/usr/bin/env bash
# Sequences side by side, in one run, as a user renders them: 24 frames of
# 2048x1556 10-bit DPX and 24 frames of 2048x1556 half-float ZIP OpenEXR,
# through sparkrun (2 threads, Radial1 0.1, Radial2 0.02), its plain
# one-frame-after-another loop (--sequential), ffmpeg's lenscorrection filter
# (bilinear, the same k1 and k2, 2 threads) and a plain oiiotool --threads 2
# copy. Each round runs every job once, in a rotated order, so that the
# machine's other load falls on all alike; the medians of the rounds and
# their ratios are printed. Installs ffmpeg for the comparison only.
#
#   STRAIGHTLUX_BENCH_ROUNDS=N   rounds (default 3)
#   STRAIGHTLUX_BENCH_EXR=0      the DPX jobs only
#   STRAIGHTLUX_BENCH_DIR=D      where the frames go (default /dev/shm, which
#                                measures the programs; a folder on a disk adds
#                                the disk: sparkrun syncs every frame it writes,
#                                the others do not)
#   STRAIGHTLUX_BUILD_DIR=D      build folder (default build/default)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
STRAIGHTLUX_SETUP_EXTRA="${STRAIGHTLUX_SETUP_EXTRA:-} ffmpeg" bash "$root/scripts/setup.sh"

build=${STRAIGHTLUX_BUILD_DIR:-$root/build/default}
if [ "$build" = "$root/build/default" ]; then
  (cd "$root" && cmake --preset default >/dev/null && cmake --build --preset default --target sparkrun >/dev/null)
else
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$build" --target sparkrun -j2 >/dev/null
fi
tool="$build/sparkrun"
rounds=${STRAIGHTLUX_BENCH_ROUNDS:-3}
base=${STRAIGHTLUX_BENCH_DIR:-/dev/shm}
[ -d "$base" ] || base=/tmp
work="$(mktemp -d "$base/straightlux-bench-XXXXXX")"
trap 'rm -rf "$work"' EXIT
cd "$work"

echo "== making 24 frames of each in $work"
for ((f = 1; f <= 24; ++f)); do
  name=$(printf 'in.%04d' "$f")
  # A gradient and noise of its own on every frame.
  oiiotool --pattern fill:topleft=0.1,0.2,0.3:topright=0.9,0.5,0.1:bottomleft=0.2,0.8,0.4:bottomright=0.6,0.3,0.9 \
    2048x1556 3 --pattern "noise:type=gaussian:mean=0:stddev=0.05:seed=$f" 2048x1556 3 --add \
    --clamp:min=0:max=1 -d uint10 -o "$name.dpx" -d half --compression zip -o "$name.exr"
done

controls=(--quiet --no-progress --threads 2 --set Radial1=0.1 --set Radial2=0.02)
job() {
  case "$1" in
    dpx-sparkrun) "$tool" "${controls[@]}" in.####.dpx out/s.####.dpx >/dev/null ;;
    dpx-sparkrun-sequential) "$tool" --sequential "${controls[@]}" in.####.dpx out/s.####.dpx >/dev/null ;;
    dpx-ffmpeg) ffmpeg -v error -y -threads 2 -filter_threads 2 -start_number 1 -i in.%04d.dpx \
      -vf lenscorrection=k1=0.1:k2=0.02:i=bilinear -start_number 1 out/f.%04d.dpx ;;
    dpx-oiiotool) oiiotool --threads 2 --frames 1-24 in.#.dpx -o out/o.#.dpx ;;
    exr-sparkrun) "$tool" "${controls[@]}" in.####.exr out/s.####.exr >/dev/null ;;
    exr-oiiotool) oiiotool --threads 2 --frames 1-24 in.#.exr -o out/o.#.exr ;;
  esac
}
jobs=(dpx-sparkrun dpx-sparkrun-sequential dpx-ffmpeg dpx-oiiotool)
[ "${STRAIGHTLUX_BENCH_EXR:-1}" = 0 ] || jobs+=(exr-sparkrun exr-oiiotool)
: >times
for ((r = 0; r < rounds; ++r)); do
  echo "== round $((r + 1)) of $rounds"
  for ((k = 0; k < ${#jobs[@]}; ++k)); do
    name=${jobs[$(((k + r) % ${#jobs[@]}))]}
    rm -rf out && mkdir out
    start=$(date +%s.%N)
    job "$name"
    end=$(date +%s.%N)
    [ "$(find out -type f | wc -l)" -eq 24 ] || { echo "bench: $name wrote no 24 frames" >&2; exit 1; }
    echo "$name $(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.3f", b - a }')" | tee -a times
  done
done

median() { awk -v job="$1" '$1 == job { print $2 }' times | sort -g |
  awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
echo "== medians of $rounds rounds, 24 frames each (seconds)"
for name in "${jobs[@]}"; do printf '%-26s %8.2f\n' "$name" "$(median "$name")"; done
ratio() { awk -v a="$(median "$1")" -v b="$(median "$2")" 'BEGIN { printf "%.2f", a / b }'; }
echo "== ratios"
echo "DPX: sparkrun / ffmpeg lenscorrection       $(ratio dpx-sparkrun dpx-ffmpeg)   (target 0.80 or less)"
echo "DPX: sparkrun --sequential / ffmpeg         $(ratio dpx-sparkrun-sequential dpx-ffmpeg)"
echo "DPX: oiiotool copy / ffmpeg lenscorrection  $(ratio dpx-oiiotool dpx-ffmpeg)"
if [ "${STRAIGHTLUX_BENCH_EXR:-1}" != 0 ]; then
  echo "EXR: sparkrun / oiiotool copy               $(ratio exr-sparkrun exr-oiiotool)   (target 1.20 or less)"
fi
