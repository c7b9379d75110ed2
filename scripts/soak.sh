#!/usr/bin/env bash
# Soak: renders a 1,000-frame 2K sequence through the real plug-in and
# reports the peak memory of the tool at frames 100 and 1,000, and of its
# reader process the peak and the resident size it keeps between frames.
# The coefficients are keyed across the sequence, so the plug-in rebuilds
# its address map on every frame. The tool's peak and what the reader keeps
# between frames must not grow from frame 100 to 1,000; the script exits 1
# when they do. (The reader's own peak is reported only: the image library's
# threads move it by a few pages over a long run, as a plain decode loop
# shows too.) Not run by CI (it takes minutes).
#
#   bash scripts/soak.sh [FRAMES]     default 1000 (at least 100)
#   STRAIGHTLUX_BUILD_DIR=D           build folder (default build/default)
# The frames are written to a scratch folder that is removed at the end.
set -euo pipefail
cd "$(dirname "$0")/.."

frames=${1:-1000}
[ "$frames" -ge 100 ] || { echo "soak: at least 100 frames" >&2; exit 2; }
build=${STRAIGHTLUX_BUILD_DIR:-build/default}
if [ "$build" = build/default ]; then
  cmake --preset default >/dev/null
else
  cmake -S . -B "$build" >/dev/null
fi
cmake --build "$build" -j2 --target sparkrun >/dev/null
tool="$build/sparkrun"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/out"
"$tool" --make-chart "$work/chart.png" --size 2048x1080 >/dev/null
# Every frame of the sequence is the chart, read and decoded afresh.
for ((f = 1; f <= frames; ++f)); do
  ln -s chart.png "$(printf '%s/in.%04d.png' "$work" "$f")"
done

echo "soak: $frames frames of 2048x1080 through $build/straightlux.spark"
start=$(date +%s)
"$tool" --quiet --verbose --key Radial1@1=-0.08 --key "Radial1@$frames=0.08" \
  --key Radial2@1=0.02 --key "Radial2@$frames=-0.02" \
  "$work/in.####.png" "$work/out/frame.####.png" >"$work/log"
seconds=$(( $(date +%s) - start ))

# "frame 100: ...  (peak memory: tool 213.2 MiB, reader 168.6 MiB; reader between frames 162.4 MiB)"
field() { sed -n "s/^frame $1: .*(peak memory: tool \(.*\), reader \(.*\); reader between frames \(.*\))\$/\\$2/p" "$work/log"; }
report() { echo "tool peak $(field "$1" 1), reader peak $(field "$1" 2), reader between frames $(field "$1" 3)"; }
echo "soak: frame 100:   $(report 100)"
echo "soak: frame $frames: $(report "$frames")"
echo "soak: $frames frames in ${seconds}s"
if [ -z "$(field 100 1)" ] || [ "$(field 100 1)" != "$(field "$frames" 1)" ] ||
   [ "$(field 100 3)" != "$(field "$frames" 3)" ]; then
  echo "soak: memory grew between frame 100 and frame $frames" >&2
  exit 1
fi
echo "soak: growth 0 (tool peak, reader between frames)"
