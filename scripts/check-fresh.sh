#!/usr/bin/env bash
# Tries the README's two commands as a new user on a fresh machine would:
# removes the Debian packages that scripts/setup.sh adds to the base toolchain,
# clones the current commit into an empty folder and runs
#   bash scripts/test.sh    and    bash scripts/demo.sh
# there. It reports which step failed. It changes the machine (it purges
# packages, and the commands reinstall them), so it only runs when asked:
# CI never runs it. Run it whenever setup.sh or a find_package changes.
#
#   bash scripts/check-fresh.sh [--keep]    --keep leaves the clone for a look
set -uo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
keep=0
[ "${1:-}" = "--keep" ] && keep=1

# Everything setup.sh (and scripts/bench.sh) may install beyond the base
# toolchain, and the optional packages that would hide a missing dependency.
extra=(libopenimageio-dev openimageio-tools libopenimageio2.4 libosmesa6-dev libosmesa6
  pkg-config libopencv-dev liblensfun-dev liblensfun-data-v1 hershey-fonts-data libcli11-dev
  nlohmann-json3-dev qt6-base-dev libqt6opengl6-dev xvfb xdotool x11-apps ffmpeg)

fail() {
  echo "check-fresh: FAILED at step: $1" >&2
  [ -n "${work:-}" ] && echo "check-fresh: the clone is in $work (log: $work/check-fresh.log)" >&2
  exit 1
}

if [ "$(id -u)" -ne 0 ]; then
  echo "check-fresh: must run as root (it removes and reinstalls Debian packages)" >&2
  exit 1
fi

echo "== 1. removing packages beyond the base toolchain"
installed=()
for p in "${extra[@]}"; do
  if dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    installed+=("$p")
  fi
done
if [ ${#installed[@]} -gt 0 ]; then
  echo "   purging: ${installed[*]}"
  DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq "${installed[@]}" >/dev/null 2>&1 ||
    fail "removing packages"
  DEBIAN_FRONTEND=noninteractive apt-get autoremove -y -qq >/dev/null 2>&1 || fail "autoremove"
fi

echo "== 2. cloning $(git -C "$root" rev-parse --short HEAD) into a fresh folder"
work="$(mktemp -d /tmp/straightlux-fresh.XXXXXX)"
git clone -q "$root" "$work/main" || fail "git clone"
cd "$work/main" || fail "cd into the clone"

echo "== 3. bash scripts/test.sh"
if ! bash scripts/test.sh >"$work/check-fresh.log" 2>&1; then
  tail -30 "$work/check-fresh.log" >&2
  fail "bash scripts/test.sh"
fi
grep -E "tests passed|tests failed" "$work/check-fresh.log" | sed 's/^/   /'

echo "== 4. bash scripts/demo.sh"
if ! bash scripts/demo.sh >>"$work/check-fresh.log" 2>&1; then
  tail -30 "$work/check-fresh.log" >&2
  fail "bash scripts/demo.sh"
fi
for f in before_after.png overlay.png; do
  [ -s "out/$f" ] || fail "demo.sh wrote no out/$f"
done

echo "== 5. cmake --install into an empty prefix"
prefix="$work/prefix"
cmake --install build/default --prefix "$prefix" >/dev/null 2>&1 || fail "cmake --install"
for f in dl/sparks/straightlux.spark dl/help/straightlux.htm; do
  [ -f "$prefix/$f" ] || fail "cmake --install did not put $f under the prefix"
done

echo "check-fresh: all steps passed"
if [ $keep -eq 0 ]; then rm -rf "$work"; else echo "check-fresh: the clone is in $work"; fi
