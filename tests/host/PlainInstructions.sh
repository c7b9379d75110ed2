#!/usr/bin/env bash
# Fails when the plug-in holds an AVX (VEX-encoded) instruction outside the
# AVX2 forms: every such instruction must lie in a function named ...Avx2...
# or come from a source file named *Avx2.cpp (its helpers) or from the
# compiler's intrinsic headers, so that a processor without AVX2, which never
# enters those forms, runs the plug-in. Needs the line information of a build
# with debug info (-g); without it the test says so and passes.
# Run as: PlainInstructions.sh OBJDUMP PLUGIN
set -euo pipefail
objdump="$1"
plugin="$2"
"$objdump" -d -l --no-show-raw-insn "$plugin" | awk '
  /^\/.*:[0-9]+( \(discriminator [0-9]+\))?$/ { source = $1; sub(/:[0-9]+$/, "", source); lines++; next }
  /^[0-9a-f]+ <.*>:$/ { function_name = $2; next }
  /^ +[0-9a-f]+:\tv[a-z0-9]+/ {
    vex++
    if (function_name ~ /Avx2/ || source ~ /Avx2\.cpp$/ || source ~ /intrin\.h$/) next
    if (!(source in reported)) { reported[source] = 1; print "VEX instruction from " source " in " function_name }
    bad++
  }
  END {
    if (lines == 0) { print "SKIP: no line information in the plug-in"; exit 0 }
    printf "%d VEX instructions, %d outside the AVX2 forms\n", vex, bad
    exit bad > 0 ? 1 : 0
  }'
