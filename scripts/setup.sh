#!/usr/bin/env bash
# Installs the Debian packages that the build, the tests and the tool need, and
# does nothing when they are all present. It names what it installs, and stops
# with a clear message (exit 1) when it cannot install: not root and no sudo,
# or apt-get failing (no network, unknown package), so that nothing fails
# later and less clearly inside CMake.
#
#   STRAIGHTLUX_SETUP_EXTRA="pkg ..."   further packages (scripts/bench.sh uses it)
set -euo pipefail

# The base toolchain (a fresh machine has these) and what the project adds:
# pkg-config finds OpenImageIO for the command-line tool; OSMesa gives the
# simulated host's viewer a real OpenGL context; CLI11 parses the programs'
# command lines and nlohmann-json reads lines files; OpenCV and lensfun (whose
# pkg-config file needs glib's) read and write lens data, and the ST-map tests
# run oiiotool.
packages=(g++ cmake make pkg-config clang-format libgtest-dev libbenchmark-dev libopenimageio-dev
  libosmesa6-dev libcli11-dev nlohmann-json3-dev libopencv-dev liblensfun-dev liblensfun-data-v1
  libglib2.0-dev openimageio-tools
  qt6-base-dev libqt6opengl6-dev libxcb1-dev xvfb xdotool x11-apps python3)
# qt6-base-dev and libqt6opengl6-dev build sparkview (Qt 6 Widgets with an
# OpenGL viewer); xvfb, xdotool and x11-apps (xwd) run its end-to-end test
# on a virtual display with real X pointer and key events and screenshots,
# driven by a python3 script.
# shellcheck disable=SC2206
packages+=(${STRAIGHTLUX_SETUP_EXTRA:-})

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "setup: installing Debian packages: ${missing[*]}"
SUDO=()
if [ "$(id -u)" -ne 0 ]; then
  if command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
    SUDO=(sudo -n)
  else
    echo "setup: cannot install ${missing[*]}: not running as root and sudo is not available" >&2
    echo "setup: install them as an administrator: apt-get install ${missing[*]}" >&2
    exit 1
  fi
fi
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
if ! "${SUDO[@]}" apt-get update -qq >"$log" 2>&1; then
  cat "$log" >&2
  echo "setup: apt-get update failed (no network or no package source?); could not install ${missing[*]}" >&2
  exit 1
fi
if ! DEBIAN_FRONTEND=noninteractive "${SUDO[@]}" apt-get install -y -qq --no-install-recommends \
  "${missing[@]}" >"$log" 2>&1; then
  tail -20 "$log" >&2
  echo "setup: apt-get install failed; could not install ${missing[*]}" >&2
  exit 1
fi
echo "setup: installed ${missing[*]}"
