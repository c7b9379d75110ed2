#!/usr/bin/env bash
# Renders one matrix of frames with two builds of the plug-in and compares the
# output files byte for byte: a refactor or a speed change must leave every
# byte as it was. Each build folder must hold sparkrun and straightlux.spark.
#
#   bash scripts/compare-builds.sh BUILD_A BUILD_B [--threads "1 2 3 7"]
#
# The matrix: 8- and 12-bit inputs, every sampling mode, Remove, Add and Auto
# Remove, curvatures, squeeze, an off-centre centre, magnify, blend and proxy
# factors, each at the given processor counts (B's at every count against A's
# at the first). Exit 0 when every output matches, 1 otherwise.
set -uo pipefail

a="$1"
b="$2"
shift 2
threads="1"
if [ "${1:-}" = "--threads" ]; then threads="$2"; fi
first_thread="${threads%% *}"

work="$(mktemp -d /tmp/straightlux-compare.XXXXXX)"
trap 'rm -rf "$work"' EXIT

"$a/sparkrun" --make-chart "$work/chart8.png" --size 322x181 >/dev/null
# A 16-bit input runs at 12 bits.
"$a/sparkrun" --quiet --depth 12 --set Mode=Add --set Radial1=0.05 "$work/chart8.png" \
  "$work/chart16.tif" >/dev/null

settings=(
  ""
  "--set Radial1=-0.08 --set Radial2=0.02"
  "--set Mode=Add --set Radial1=0.12 --set Radial2=0.03"
  "--set Mode=Auto_Remove --set Radial1=0.1"
  "--set Radial1=0.07 --set XCurvature=0.3 --set YCurvature=-0.2 --set Squeeze=1.7"
  "--set Radial1=0.07 --set Centre_X=41.5 --set Centre_Y=58"
  "--set Radial1=-0.1 --set Magnify=1.3"
  "--set Mode=Add --set Radial1=0.1 --set Magnify=0.8 --set Blend=30"
  "--set Radial1=0.06 --set Proxy=1/3"
  "--set Mode=Add --set Radial1=0.06 --set Proxy=1/2 --set Blend=55"
  "--set Radial1=0.06 --set Proxy=1/32"
  "--set View=Input --set Radial1=0.2"
)
samplings=(Nearest Linear Cubic SharpCubic BSpline)

failures=0
runs=0
for input in chart8.png chart16.tif; do
  for i in "${!settings[@]}"; do
    for sampling in "${samplings[@]}"; do
      # Underscores stand for blanks inside a setting's name or value.
      read -r -a args <<<"${settings[$i]//_/%}"
      args=("${args[@]//%/ }")
      out="$work/$input.$i.$sampling"
      "$a/sparkrun" --quiet --threads "$first_thread" "${args[@]}" --set "Sampling=$sampling" \
        "$work/$input" "$out.a.png" >/dev/null 2>&1 || { echo "A failed: $input ${settings[$i]}"; failures=$((failures + 1)); continue; }
      for t in $threads; do
        runs=$((runs + 1))
        "$b/sparkrun" --quiet --threads "$t" "${args[@]}" --set "Sampling=$sampling" \
          "$work/$input" "$out.b$t.png" >/dev/null 2>&1 || { echo "B failed: $input ${settings[$i]} threads $t"; failures=$((failures + 1)); continue; }
        if ! cmp -s "$out.a.png" "$out.b$t.png"; then
          echo "DIFFERENT: $input ${settings[$i]} Sampling=$sampling threads $t"
          failures=$((failures + 1))
        fi
      done
    done
  done
done
echo "compare-builds: $runs renders compared, $failures differences or failures"
[ $failures -eq 0 ]
