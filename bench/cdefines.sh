#!/usr/bin/env bash
# Measures what the C-style preprocessor costs a plain line, and prints the
# times and ratios. It reports only: no speed makes it fail.
#
#   bench/cdefines.sh REFERENCE_TA51 [build dir] [lines] [runs]
#       (defaults: -, build-bench, 100000, 5)
#
# REFERENCE_TA51 is a ta51 built from a version without the preprocessor
# (give - to skip that column). The source is ta51_gen_source's program of
# LINES lines; defines.asm is the same program behind 1,000 #define lines
# whose names occur nowhere in it, so that every word of every line is
# looked up and none is replaced. Each figure is the best of RUNS runs of
# "ta51 /NOLOGO x.asm;" (object and list file written).
#
# With COUNT_INSTRUCTIONS=1 (and valgrind installed) the script also counts
# the instructions of one run of each case under callgrind: a figure that the
# load of a shared machine does not disturb.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
reference=${1:--}
build=${2:-$root/build-bench}
lines=${3:-100000}
runs=${4:-5}
case $build in /*) ;; *) build=$(pwd)/$build ;; esac
case $reference in -|/*) ;; *) reference=$(pwd)/$reference ;; esac

cmake -S "$root" -B "$build" -DTA51_BENCH=ON -DTA51_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target ta51 ta51_gen_source ta51_measure >/dev/null

ta51=$build/ta51
measure=$build/bench/ta51_measure
work=$(mktemp -d /tmp/ta51-cdefines-XXXXXX)
trap 'rm -rf "$work"' EXIT

"$build/bench/ta51_gen_source" "$lines" -o "$work/plain.asm"
{
  for i in $(seq 1 1000); do printf '#define CFG_OPTION_%04d (%d + 1)\n' "$i" "$i"; done
  cat "$work/plain.asm"
} >"$work/defines.asm"

# One wall time of an assembler on a source.
once() {
  local t
  t=$(cd "$work" && "$measure" "$1" /NOLOGO "$2;" 2>&1 >/dev/null | sed -n 's/^wall=\([0-9.]*\) .* status=0$/\1/p')
  [ -n "$t" ] || { echo "run of $1 on $2 failed" >&2; exit 1; }
  echo "$t"
}
min() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == "" || b < a) ? b : a }'; }

# The runs of the three cases alternate, so that a change of the machine's
# load during the measurement touches them alike; the best of each counts.
before="" none="" many=""
for i in $(seq 1 "$runs"); do
  [ "$reference" = - ] || before=$(min "$before" "$(once "$reference" plain.asm)")
  none=$(min "$none" "$(once "$ta51" plain.asm)")
  many=$(min "$many" "$(once "$ta51" defines.asm)")
done

echo "Source: $lines lines of ta51_gen_source; best of $runs runs each"
echo
echo "| Assembler | Source | Wall time (s) |"
echo "|---|---|---:|"
[ "$reference" = - ] || echo "| before the preprocessor | no #define | $before |"
echo "| this build | no #define | $none |"
echo "| this build | 1,000 #define | $many |"
echo
awk -v a="$many" -v b="$none" 'BEGIN { printf "1,000 #define against none: %.3f times (bound 1.5)\n", a / b }'
[ "$reference" = - ] ||
  awk -v a="$none" -v b="$before" 'BEGIN { printf "No #define against before: %.3f times (bound 1.1)\n", a / b }'

if [ "${COUNT_INSTRUCTIONS:-0}" = 1 ]; then
  # Instructions of one run under callgrind.
  count() {
    (cd "$work" && valgrind --tool=callgrind --callgrind-out-file=/dev/null "$1" /NOLOGO "$2;" 2>&1 >/dev/null |
      sed -n 's/^==[0-9]*== Collected : \([0-9]*\)$/\1/p')
  }
  echo
  echo "| Assembler | Source | Instructions |"
  echo "|---|---|---:|"
  [ "$reference" = - ] || { ibefore=$(count "$reference" plain.asm); echo "| before the preprocessor | no #define | $ibefore |"; }
  inone=$(count "$ta51" plain.asm)
  imany=$(count "$ta51" defines.asm)
  echo "| this build | no #define | $inone |"
  echo "| this build | 1,000 #define | $imany |"
  echo
  awk -v a="$imany" -v b="$inone" 'BEGIN { printf "Instructions, 1,000 #define against none: %.3f times\n", a / b }'
  [ "$reference" = - ] ||
    awk -v a="$inone" -v b="$ibefore" 'BEGIN { printf "Instructions, no #define against before: %.3f times\n", a / b }'
fi
