#!/usr/bin/env bash
# Fails (exit 1) when a C++ source or header of the repository differs from
# what clang-format makes of it with the repository's .clang-format. Fix with:
#   git ls-files '*.cpp' '*.h' | xargs clang-format -i
set -euo pipefail
cd "$(dirname "$0")/.."
if ! command -v clang-format >/dev/null 2>&1; then
  echo "check-format: clang-format is not installed" >&2
  exit 1
fi
if ! git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror; then
  echo "check-format: the files above drift from .clang-format" >&2
  exit 1
fi
echo "check-format: clean"
