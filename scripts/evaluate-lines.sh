#!/usr/bin/env bash
# Evaluates automatic line detection and the plug-in's fit on it, with known
# truth. Every frame is distorted through the plug-in's Add mode with known
# coefficients, degraded as a camera would (lens blur, noise, JPEG), and
# then fitted as a user would without knowing them:
#   sparkrun --lines auto --autofind  (detect, draw, AutoFind)
# and, for comparison, with a stand-in for carefully hand-drawn lines: the
# twelve longest edges away from the centre of the undistorted picture (a
# rendered scene's straight edges; for a photograph, the detector's lines on
# it as it came that look straight there, within 0.5 px RMS), eleven points
# along each, carried into the distorted frame by the true model, with 0.5 px
# of hand noise. The measure is the largest displacement between the fitted and the
# true model over the points within 0.7 of the half-diagonal from the centre.
#
# A frame is drawn (or a photograph scaled) with a margin of a tenth of its
# longer side on every side, distorted whole and then cut to size, so that a
# barrel lens finds picture where it reaches beyond the frame; the true
# coefficients of the cut frame follow from the ratio s of the half-diagonals:
# k1 = K1 s^2, k2 = K2 s^4 (the plug-in was given K1, K2).
#
# Sets: rendered scenes (building, room, corridor, chart; OSMesa, perspective)
# at 640x360, 1280x720, 2048x1152 and 3840x2160; photographs from Debian
# packages (lomiri-wallpapers-16.04, python3-skimage, mate-backgrounds: taken
# with apt-get download into the cache folder, never installed) at 2K;
# charts with lens blur and noise (rows and columns straightened by the fit);
# refusals (flat, noise, foliage, out of focus: exit 3 expected).
#
# usage: bash scripts/evaluate-lines.sh [--quick] [--build DIR] [--work DIR]
#   --quick   the small subset CI runs (640x360, seconds); fails (exit 1) when
#             a target of the subset is missed
#   --table   only the table again, from the cases of an earlier --work DIR
# Prints the table and writes it, with every case, to WORK/results.md.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)
build="$root/build/default"
work=""
quick=0
table_only=0
while [ $# -gt 0 ]; do
  case "$1" in
    --quick) quick=1 ;;
    --table) table_only=1 ;;
    --build) build="$2"; shift ;;
    --work) work="$2"; shift ;;
    *) echo "evaluate-lines: unknown argument $1" >&2; exit 2 ;;
  esac
  shift
done
tool="$build/sparkrun"
eval_bin="$build/evaluation"
for program in "$tool" "$eval_bin/scene_render" "$eval_bin/degrade_image" "$eval_bin/line_eval"; do
  if [ ! -x "$program" ]; then
    echo "evaluate-lines: $program is not built (cmake --build --preset default)" >&2
    exit 2
  fi
done
if [ -z "$work" ]; then
  work=$(mktemp -d "${TMPDIR:-/tmp}/evaluate-lines.XXXXXX")
  trap 'rm -rf "$work"' EXIT
fi
mkdir -p "$work"
cases="$work/cases.tsv"
[ "$table_only" = 1 ] || : >"$cases"

# margin W H: a tenth of the longer side, even.
margin() { echo $(( ( ($1 > $2 ? $1 : $2) / 20 ) * 2 )); }

# big K W H M: the coefficient the plug-in is given on the frame with margins
# for the true coefficient K of power P (2 or 4) on the cut frame.
big_coefficient() {
  awk -v k="$1" -v p="$2" -v w="$3" -v h="$4" -v m="$5" 'BEGIN {
    s = sqrt(w * w + h * h) / sqrt((w + 2 * m) ^ 2 + (h + 2 * m) ^ 2)
    printf "%.9g", k / s ^ p }'
}

# distort BIG OUT W H M K1 K2 BLUR NOISE QUALITY SEED
distort() {
  local big=$1 out=$2 w=$3 h=$4 m=$5 k1=$6 k2=$7
  "$tool" --quiet --set Mode=Add --set "Radial1=$(big_coefficient "$k1" 2 "$w" "$h" "$m")" \
    --set "Radial2=$(big_coefficient "$k2" 4 "$w" "$h" "$m")" "$big" "$work/added.png" >/dev/null
  "$eval_bin/degrade_image" "$work/added.png" "$out" --crop "$m" --blur "$8" --noise "$9" \
    --jpeg "${10}" --seed "${11}"
}

# fit LINES IMAGE: prints "k1 k2" fitted by AutoFind, or "- -" when refused.
fit() {
  local text
  # Auto Preview off: the plug-in would render the frame again after every click.
  if text=$("$tool" --quiet --set Mode=Remove --set "Auto Preview=off" --lines "$1" --autofind \
      "$2" "$work/fitted.jpg" 2>/dev/null); then
    echo "$text" | sed -n 's/^autofind: Radial1=\([^ ]*\) Radial2=\([^ ]*\).*/\1 \2/p'
  else
    echo "- -"
  fi
}

displacement() {
  if [ "$5" = "-" ]; then echo "-"; else "$eval_bin/line_eval" displacement "$1" "$2" "$3" "$4" "$5" "$6"; fi
}

# one_case KIND LABEL BIG EDGES W H M K1 K2 BLUR NOISE QUALITY SEED
one_case() {
  local kind=$1 label=$2 big=$3 edges=$4 w=$5 h=$6 m=$7 k1=$8 k2=$9
  local image="$work/case.jpg"
  distort "$big" "$image" "$w" "$h" "$m" "$k1" "$k2" "${10}" "${11}" "${12}" "${13}"
  local start end auto hand lines
  start=$(date +%s.%N)
  read -r fk1 fk2 < <(fit auto "$image")
  end=$(date +%s.%N)
  lines=-
  [ "$quick" = 1 ] ||
    lines=$({ "$tool" --quiet --detect-lines "$work/auto.json" "$image" 2>/dev/null || true; } |
      awk '{ print $2 }')
  [ -n "$lines" ] || lines=0
  auto=$(displacement "$w" "$h" "$k1" "$k2" "$fk1" "$fk2")
  hand="-"
  if [ "$hand_lines" = 1 ] && [ -n "$edges" ] && "$eval_bin/line_eval" hand "$edges" "$m" "$w" "$h" "$k1" "$k2" "${13}" \
      "$work/hand.json" >/dev/null 2>&1; then
    read -r hk1 hk2 < <(fit "$work/hand.json" "$image")
    hand=$(displacement "$w" "$h" "$k1" "$k2" "$hk1" "$hk2")
  fi
  local straight="-"
  if [ "$kind" = chart ] && [ "$fk1" != "-" ]; then
    straight=$("$eval_bin/line_eval" straightness "$edges" "$m" "$w" "$h" "$k1" "$k2" "$fk1" "$fk2")
  fi
  printf '%s\t%s\t%dx%d\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%.2f\n' "$kind" "$label" "$w" "$h" \
    "$k1" "$k2" "${lines:--}" "$auto" "$hand" "$fk1 $fk2" "$straight" \
    "$(awk -v a="$start" -v b="$end" 'BEGIN { print b - a }')" | tee -a "$cases"
}

# render KIND W H SEED: the frame with margins and its straight edges.
render() {
  local m
  m=$(margin "$2" "$3")
  "$eval_bin/scene_render" "$1" $(( $2 + 2 * m )) $(( $3 + 2 * m )) "$4" "$work/big.png" \
    --truth "$work/edges.json"
}

# Coefficient sets (Radial1 Radial2): both signs, Radial1 up to 0.15, Radial2 up to 0.03.
models=("0.15 0.03" "0.08 -0.01" "-0.06 0.0" "-0.12 -0.02")
scene_kinds="building room corridor chart"
hand_lines=1

scenes() {
  local size=$1 seeds=$2 sets=$3
  local w=${size%x*} h=${size#*x}
  local m
  m=$(margin "$w" "$h")
  # Lens blur and noise grow with the frame: a 4K frame is softer per pixel.
  local blur
  blur=$(awk -v w="$w" 'BEGIN { printf "%.2f", 0.7 * (w > 1280 ? w / 1920 : 1) }')
  for kind in $scene_kinds; do
    for seed in $(seq 1 "$seeds"); do
      render "$kind" "$w" "$h" "$seed"
      local i=0
      for model in "${models[@]:0:$sets}"; do
        i=$((i + 1))
        # shellcheck disable=SC2086
        one_case "$kind" "seed$seed" "$work/big.png" "$work/edges.json" "$w" "$h" "$m" $model \
          "$blur" 0.01 90 $((seed * 10 + i))
      done
    done
  done
}

# Photographs: Debian packages' pictures with straight structures.
photo_packages="lomiri-wallpapers-16.04 python3-skimage mate-backgrounds"
photos=(
  "usr/share/backgrounds/Bridge_by_Sander_Klootwijk.jpg"
  "usr/share/backgrounds/Wine_by_Jakkub_Mede.jpg"
  "usr/share/backgrounds/friends_by_Aitzol_Berasategi.jpg"
  "usr/lib/python3/dist-packages/skimage/data/motorcycle_left.png"
  "usr/lib/python3/dist-packages/skimage/data/rocket.jpg"
  "usr/share/backgrounds/mate/nature/Storm.jpg"
)
foliage_photos=(
  "usr/share/backgrounds/Dragonfly_by_Bolly.jpg"
  "usr/share/backgrounds/life_by_Aitzol_Berasategi.jpg"
  "usr/lib/python3/dist-packages/skimage/data/grass.png"
)
photo_root="${STRAIGHTLUX_EVAL_CACHE:-$root/build/eval-photos}"

fetch_photos() {
  mkdir -p "$photo_root"
  for package in $photo_packages; do
    [ -e "$photo_root/.$package" ] && continue
    (cd "$photo_root" && apt-get download "$package" >/dev/null 2>&1 &&
      dpkg-deb -x "$package"_*.deb . && rm -f "$package"_*.deb && touch ".$package") ||
      echo "evaluate-lines: could not fetch $package (photographs skipped)" >&2
  done
}

# scale_photo FILE LONG OUT: the photograph with its longer side LONG plus margins.
scale_photo() {
  local info w h tw th m
  info=$(oiiotool --info "$1" | head -1)
  w=$(echo "$info" | sed -n 's/.*: *\([0-9]*\) x *\([0-9]*\),.*/\1/p')
  h=$(echo "$info" | sed -n 's/.*: *\([0-9]*\) x *\([0-9]*\),.*/\2/p')
  if [ "$w" -ge "$h" ]; then tw=$2; th=$(( (h * $2 / w) / 2 * 2 )); else th=$2; tw=$(( (w * $2 / h) / 2 * 2 )); fi
  m=$(margin "$tw" "$th")
  oiiotool "$1" --ch R,G,B --resize $((tw + 2 * m))x$((th + 2 * m)) -d uint16 -o "$3" 2>/dev/null ||
    oiiotool "$1" --ch 0,0,0 --resize $((tw + 2 * m))x$((th + 2 * m)) -d uint16 -o "$3"
  echo "$tw $th $m"
}

# own_lens PHOTO W H M I: the photograph's own lens, for reference: the fit
# on it undistorted (big.png holds it, with margins).
own_lens() {
  one_case photo-own-lens "$(basename "$1" | cut -c1-16)" "$work/big.png" "" "$2" "$3" "$4" \
    0 0 0.8 0.01 90 $((100 + $5 * 10))
}

# The own lenses alone (for a partial run).
own_lenses() {
  fetch_photos
  local i=0
  for photo in "${photos[@]}"; do
    [ -f "$photo_root/$photo" ] || continue
    i=$((i + 1))
    read -r w h m < <(scale_photo "$photo_root/$photo" 2048 "$work/big.png")
    own_lens "$photo" "$w" "$h" "$m" "$i"
  done
}

photographs() {
  fetch_photos
  local i=0
  for photo in "${photos[@]}"; do
    [ -f "$photo_root/$photo" ] || continue
    i=$((i + 1))
    read -r w h m < <(scale_photo "$photo_root/$photo" 2048 "$work/big.png")
    # The edges a careful user would trace: the detector's lines on the
    # undistorted picture, followed as they run (the photograph's own lens
    # and the world's own curves included).
    "$eval_bin/line_eval" detect "$work/big.png" --lines "$work/edges.json" >/dev/null 2>&1 || true
    own_lens "$photo" "$w" "$h" "$m" "$i"
    local j=0
    for model in "${models[@]}"; do
      j=$((j + 1))
      # shellcheck disable=SC2086
      one_case photo "$(basename "$photo" | cut -c1-16)" "$work/big.png" "$work/edges.json" \
        "$w" "$h" "$m" $model 0.8 0.01 90 $((100 + i * 10 + j))
    done
  done
}

# refuse LABEL IMAGE: exit 3 expected from --detect-lines.
refuse() {
  local code=0
  "$tool" --quiet --detect-lines "$work/refused.json" "$2" >/dev/null 2>&1 || code=$?
  local verdict=refused
  [ "$code" = 3 ] || verdict="NOT refused (exit $code)"
  [ ! -e "$work/refused.json" ] || { verdict="$verdict, wrote a file"; rm -f "$work/refused.json"; }
  printf 'refusal\t%s\t%s\n' "$1" "$verdict" | tee -a "$cases"
}

refusals() {
  local w=$1 h=$2
  oiiotool --create "${w}x${h}" 3 --fill:color=0.45,0.45,0.45 "0,0,${w},${h}" -d uint16 \
    -o "$work/grey.png" >/dev/null
  "$eval_bin/degrade_image" "$work/grey.png" "$work/flat.jpg" --noise 0.01 --seed 1
  refuse flat "$work/flat.jpg"
  "$eval_bin/degrade_image" "$work/grey.png" "$work/noise.png" --noise 0.35 --seed 2
  refuse noise "$work/noise.png"
  if [ "$quick" = 0 ]; then
    "$eval_bin/scene_render" foliage "$w" "$h" 1 "$work/foliage.png"
    "$eval_bin/degrade_image" "$work/foliage.png" "$work/foliage.jpg" --blur 0.7 --noise 0.01
    refuse foliage-rendered "$work/foliage.jpg"
  fi
  for kind in building $([ "$quick" = 1 ] || echo room); do
    "$eval_bin/scene_render" "$kind" "$w" "$h" 2 "$work/sharp.png"
    "$eval_bin/degrade_image" "$work/sharp.png" "$work/soft.jpg" \
      --blur "$(awk -v w="$w" 'BEGIN { print 10 * w / 1920 }')" --noise 0.01
    refuse "out-of-focus-$kind" "$work/soft.jpg"
  done
  if [ "$quick" = 0 ]; then
    for photo in "${foliage_photos[@]}"; do
      [ -f "$photo_root/$photo" ] || continue
      read -r pw ph pm < <(scale_photo "$photo_root/$photo" 2048 "$work/big.png")
      "$eval_bin/degrade_image" "$work/big.png" "$work/leaves.jpg" --crop "$pm" --noise 0.01
      refuse "foliage-$(basename "$photo" | cut -c1-12)" "$work/leaves.jpg"
    done
  fi
}

if [ "$table_only" = 1 ]; then
  : # the cases of the earlier run
elif [ "$quick" = 1 ]; then
  models=("0.12 0.02")
  scene_kinds="building chart"
  hand_lines=0
  scenes 640x360 1 1
  refusals 640 360
elif [ -n "${STRAIGHTLUX_EVAL_ONLY:-}" ]; then
  # A part of the set, for working on it: shell words such as
  # "scene_kinds=chart; scenes 2048x1152 1 4" or "photographs".
  eval "$STRAIGHTLUX_EVAL_ONLY"
else
  scenes 2048x1152 2 4
  scenes 640x360 1 2
  scenes 1280x720 1 2
  scenes 3840x2160 1 1
  models=("0.15 0.03" "-0.12 -0.02")
  photographs
  refusals 2048 1152
fi

# The table: per set and size, the median and worst displacement of the
# automatic and the hand-drawn fits, in pixels (a refused fit counts as
# missing the target).
summary="$work/results.md"
if ! command -v python3 >/dev/null; then
  echo "(python3 is not installed: no table; the cases are in $cases)"
  cp "$cases" "$summary"
else
python3 - "$cases" >"$summary" <<'PYTHON'
import statistics, sys
rows = [line.rstrip("\n").split("\t") for line in open(sys.argv[1]) if line.strip()]
groups = {}
for r in rows:
    if r[0].startswith("photo"):
        groups.setdefault((r[0], r[1] + " " + r[2]), []).append(r)
    elif r[0] != "refusal":
        groups.setdefault((r[0], r[2]), []).append(r)
def size_key(k):
    if k[0].startswith("photo"):
        return (k[0], 0, k[1])
    w, h = k[1].split("x")
    return (k[0], int(w), "")
def fmt(v):
    return "-" if v is None else ("refused" if v == float("inf") else "%.2f" % v)
print("| set | size (photograph) | cases | auto median px | auto worst px | hand median px | hand worst px | chart rows/columns straightness px (RMS over cases) |")
print("|---|---|---|---|---|---|---|---|")
for key in sorted(groups, key=size_key):
    g = groups[key]
    auto = [float("inf") if r[6] == "-" else float(r[6]) for r in g]
    hand = [float(r[7]) for r in g if r[7] != "-"]
    charts = [r[9].split() for r in g if r[9] != "-"]
    straight = "-"
    if charts:
        rms = (sum(float(c[0]) ** 2 for c in charts) / len(charts)) ** 0.5
        straight = "%.3f, worst case %.3f, worst line %.3f" % (
            rms, max(float(c[0]) for c in charts), max(float(c[1]) for c in charts))
    print("| %s | %s | %d | %s | %s | %s | %s | %s |" % (
        key[0], key[1], len(g), fmt(statistics.median(auto)), fmt(max(auto)),
        fmt(statistics.median(hand)) if hand else "-", fmt(max(hand)) if hand else "-", straight))
print()
print("Refusals (exit 3 and no file expected):")
for r in rows:
    if r[0] == "refusal":
        print("- %s: %s" % (r[1], r[2]))
print()
print("Cases: set, label, size, true Radial1 and Radial2, lines detected, displacement auto and "
      "hand (px), fitted Radial1 Radial2, chart straightness (RMS, worst, lines), seconds for "
      "sparkrun --lines auto --autofind")
print("```")
for r in rows:
    print("\t".join(r))
print("```")
PYTHON
sed -n '1,/^Cases:/p' "$summary" | head -n -1
fi
echo "(every case: $summary)"

if [ "$quick" = 1 ]; then
  # The subset's targets: every fit within 1 px (at 640 wide), every refusal made.
  failed=$(awk -F'\t' '$1 == "refusal" && $3 != "refused" { print }
                       $1 != "refusal" && ($7 == "-" || $7 > 1.0) { print }' "$cases")
  if [ -n "$failed" ]; then
    echo "evaluate-lines: targets missed:" >&2
    echo "$failed" >&2
    exit 1
  fi
  echo "evaluate-lines: quick subset within its targets"
fi
