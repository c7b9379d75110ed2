#!/usr/bin/env bash
# Installs the Debian packages the build, tests and tool need; does nothing when
# they are all present.
set -euo pipefail
packages=(g++ cmake make pkg-config libgtest-dev libgmock-dev libbenchmark-dev libopenimageio-dev)
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
$SUDO apt-get update -qq
DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
