#!/usr/bin/env bash
# Measures macro expansion and skipped sections and prints Markdown. It
# reports only: no speed makes it fail.
#
#   bench/macros.sh [build dir] [lines]     (defaults: build-bench, 100000)
#
# calls.asm: half of its lines call a 5-line macro with 3 arguments, a fifth
# stand in false IFEQ blocks, the rest are instructions and the IF lines.
# plain.asm: the same program with every call written out as its 5 lines.
# Both assemble to the same bytes; each is timed best of three, with the
# default listing (expansions not listed) and with NOLIST.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build-bench}
lines=${2:-100000}
case $build in /*) ;; *) build=$(pwd)/$build ;; esac
cmake -S "$root" -B "$build" -DTA51_BENCH=ON -DTA51_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target ta51 >/dev/null
ta51=$build/ta51
work=$(mktemp -d /tmp/ta51-macros-XXXXXX)
trap 'rm -rf "$work"' EXIT

# Every 10 lines: 5 calls, IFEQ 1, 2 skipped lines, ENDC, 1 instruction.
awk -v lines="$lines" -v work="$work" 'BEGIN {
  calls = work "/calls.asm"; plain = work "/plain.asm"
  print "MOVE3\tMACRO\n\tMOV\tR0,#\\0\n\tMOV\tA,\\1\n\tADD\tA,#\\2\n\tMOV\t@R0,A\n\tINC\tR0\n\tENDM" > calls
  print "\tCSEG\tAT 0" > calls; print "\tCSEG\tAT 0" > plain
  for (i = 0; i < lines / 10; i++) {
    for (k = 0; k < 5; k++) {
      a = (i * 5 + k) % 200 + 30; b = (i + k) % 128; c = k + 1
      printf "\tMOVE3\t%d,%d,%d\n", a, b, c > calls
      printf "\tMOV\tR0,#%d\n\tMOV\tA,%d\n\tADD\tA,#%d\n\tMOV\t@R0,A\n\tINC\tR0\n", a, b, c > plain
    }
    for (f = 0; f < 2; f++) {
      out = f ? plain : calls
      printf "\tIFEQ\t1\n\tMOV\tA,#%d\n\tLJMP\tNOWHERE\n\tENDC\n\tNOP\n", i % 256 > out
    }
  }
  print "\tEND" > calls; print "\tEND" > plain
}'

best_of_three() {
  local best=999 t
  for _ in 1 2 3; do
    t=$( { cd "$work" && /usr/bin/time -f %e "$ta51" /NOLOGO "$@" >/dev/null; } 2>&1 | tail -n 1)
    best=$(awk -v a="$best" -v b="$t" 'BEGIN { print (b < a) ? b : a }')
  done
  echo "$best"
}

src=$(wc -l <"$work/calls.asm")
expanded=$(wc -l <"$work/plain.asm")
echo "| Source | Listing | Source lines | Lines assembled | Wall time (s) | Source lines/s | Assembled lines/s |"
echo "|---|---|---:|---:|---:|---:|---:|"
for listing in default NOLIST; do
  extra=(); [ "$listing" = NOLIST ] && extra=(/NOLIST)
  for name in calls plain; do
    t=$(best_of_three "${extra[@]}" "$name.asm;")
    n=$(wc -l <"$work/$name.asm")
    awk -v name="$name" -v l="$listing" -v n="$n" -v e="$expanded" -v t="$t" 'BEGIN {
      printf "| %s | %s | %d | %d | %.2f | %.0f | %.0f |\n", name, l, n, e, t, n / t, e / t }'
  done
done
cmp -s <(grep '^LR' "$work/calls.OBJ") <(grep '^LR' "$work/plain.OBJ") &&
  echo "" && echo "Both programs give the same load records ($src and $expanded lines)."
