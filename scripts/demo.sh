#!/usr/bin/env bash
# The main job: builds the command-line tool and the plug-in, makes the
# bundled test chart, distorts it through the plug-in by known radial
# coefficients (Mode Add), removes that distortion again with the same
# coefficients (Mode Remove), then fits them as a user would, from lines drawn
# along the distorted grid, and writes everything to ./out/:
#   chart.png        the chart of straight lines (960x540)
#   distorted.png    the chart after Add
#   corrected.png    the distorted frame after Remove
#   before_after.png distorted | corrected, side by side
#   correction.setup the set-up of the correcting run (load it with --setup)
#   lines.json       the distorted chart's outer grid lines, traced
#   fitted.png       the distorted frame corrected by AutoFind's coefficients
#   fitted.setup     that run's set-up: the lines and the fitted coefficients
#   overlay.png      the distorted frame with the plug-in's overlay: the lines,
#                    their handles, the centre and the fit's error points
# It prints the true and the fitted coefficients and the mean absolute
# difference of each frame against the chart over the interior (15% margin),
# in 8-bit levels.
# Set STRAIGHTLUX_BUILD_DIR to build in another folder.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
out="$PWD/out"
k1=0.12
k2=0.03
margin=15

bash "$root/scripts/setup.sh"
# STRAIGHTLUX_BUILD_DIR builds elsewhere than the default preset's folder.
if [ -n "${STRAIGHTLUX_BUILD_DIR:-}" ]; then
  build="$STRAIGHTLUX_BUILD_DIR"
  echo "== building sparkrun and the plug-in in $build"
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
  cmake --build "$build" --target sparkrun straightlux -j2 >/dev/null
else
  build="$root/build/default"
  echo "== building sparkrun and the plug-in (preset default)"
  (cd "$root" && cmake --preset default >/dev/null &&
    cmake --build --preset default --target sparkrun straightlux >/dev/null)
fi
tool="$build/sparkrun"
plugin="$build/straightlux.spark"

mkdir -p "$out"
"$tool" --make-chart "$out/chart.png"
echo "chart:      $out/chart.png"

lens=(--set "Radial1=$k1" --set "Radial2=$k2")
add=(--set Mode=Add)
remove=(--set Mode=Remove)

"$tool" --quiet "${add[@]}" "${lens[@]}" "$out/chart.png" "$out/distorted.png"
echo "distorted:  $out/distorted.png   (Mode Add, Radial1 $k1, Radial2 $k2)"
"$tool" --quiet "${remove[@]}" "${lens[@]}" --save-setup "$out/correction.setup" \
  "$out/distorted.png" "$out/corrected.png"
echo "corrected:  $out/corrected.png   (Mode Remove, Radial1 $k1, Radial2 $k2)"
echo "set-up:     $out/correction.setup"
"$tool" --side-by-side "$out/distorted.png" "$out/corrected.png" "$out/before_after.png"
echo "side by side (distorted | corrected): $out/before_after.png"


# Fitting: trace the grid lines, draw them in the viewer, press AutoFind.
"$tool" --trace-chart "$out/distorted.png" "$out/lines.json"
fit=$("$tool" --quiet "${remove[@]}" --lines "$out/lines.json" --autofind \
  --overlay "$out/overlay.png" --save-setup "$out/fitted.setup" \
  "$out/distorted.png" "$out/fitted.png")
echo "lines:      $out/lines.json"
echo "fitted:     $out/fitted.png   (true Radial1 $k1 Radial2 $k2; ${fit#autofind: })"
echo "set-up:     $out/fitted.setup"
echo "overlay:    $out/overlay.png"

echo "distorted vs chart: $("$tool" --compare --margin "$margin" "$out/chart.png" "$out/distorted.png")"
echo "corrected vs chart: $("$tool" --compare --margin "$margin" "$out/chart.png" "$out/corrected.png")"
echo "fitted vs chart:    $("$tool" --compare --margin "$margin" "$out/chart.png" "$out/fitted.png")"
