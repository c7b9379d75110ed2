#!/usr/bin/env bash
# Installs what is missing, checks the formatting, then builds and runs the
# whole test suite with the CI preset (warnings are errors), then again under
# AddressSanitizer and UBSan, and last the tests labelled "threads" (frames,
# bands, the multi-processor equality test) under ThreadSanitizer; the tsan
# build preset builds only those tests.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/check-format.sh
for preset in ci asan tsan; do
  echo "== $preset =="
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done
