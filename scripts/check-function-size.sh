#!/usr/bin/env bash
# Lists the functions of the host side (the simulated host, safeio, sparkapp
# and the programs) longer than 60 lines, with clang-tidy's
# readability-function-size, and fails (exit 1) when there is one. Needs a
# configured build folder with compile_commands.json (default build/default,
# configured here with CMAKE_EXPORT_COMPILE_COMMANDS=ON).
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build/default}"
cmake --preset default -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null
config='{CheckOptions: [{key: readability-function-size.LineThreshold, value: 60}]}'
found=0
for file in $(git ls-files 'simhost/*.cpp' 'safeio/*.cpp' 'sparkapp/*.cpp' 'sparkview/*.cpp' 'tools/*.cpp'); do
  if clang-tidy -p "$build" --quiet -checks='-*,readability-function-size' -config="$config" \
    "$file" 2>/dev/null | grep "warning:"; then
    found=1
  fi
done
if [ "$found" -ne 0 ]; then
  echo "check-function-size: the functions above are longer than 60 lines" >&2
  exit 1
fi
echo "check-function-size: no function above 60 lines"
