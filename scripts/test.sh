#!/usr/bin/env bash
# Installs what is missing, builds and runs the whole test suite with the
# default preset, then again under AddressSanitizer and UBSan.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
for preset in default asan; do
  echo "== $preset =="
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
