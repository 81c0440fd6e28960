#!/usr/bin/env bash
# Shows that linking a program costs less than assembling it: 100 modules of
# 1,000 lines each (tl51_gen_modules) are assembled one by one with ta51,
# then linked with tl51 into one HEX file and a map. Prints the figures as
# Markdown, best of three runs each; it fails only when a tool fails or the
# link takes longer than the assembly.
#
#   bench/link.sh [build dir] [modules] [lines]    (defaults: build-bench, 100, 1000)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build-bench}
modules=${2:-100}
lines=${3:-1000}
case $build in /*) ;; *) build=$(pwd)/$build ;; esac

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DTA51_BENCH=ON -DTA51_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target ta51 tl51 tl51_gen_modules >/dev/null

work=$(mktemp -d /tmp/tl51-bench-XXXXXX)
trap 'rm -rf "$work"' EXIT
"$build/bench/tl51_gen_modules" "$modules" "$lines" "$work"

now() { date +%s.%N; }

assemble_all() {
  local i
  for ((i = 0; i < modules; i++)); do
    "$build/ta51" /NOLOGO "mod$i.asm;" >/dev/null || { echo "ta51 failed on mod$i.asm"; exit 1; }
  done
}

link_all() {
  local objects=() i
  for ((i = 0; i < modules; i++)); do objects+=("mod$i.OBJ"); done
  "$build/tl51" -q -o prog.hex "${objects[@]}" || { echo "tl51 failed"; exit 1; }
}

# Best of three of a shell function run in $work; prints seconds.
best_of_three() {
  local best="" run start end seconds
  for run in 1 2 3; do
    start=$(now)
    (cd "$work" && "$1")
    end=$(now)
    seconds=$(awk -v a="$start" -v b="$end" 'BEGIN { printf "%.3f", b - a }')
    if [ -z "$best" ] || awk -v a="$seconds" -v b="$best" 'BEGIN { exit !(a < b) }'; then best=$seconds; fi
  done
  echo "$best"
}

assemble_seconds=$(best_of_three assemble_all)
link_seconds=$(best_of_three link_all)
objects=$(cd "$work" && ls mod*.OBJ | sort -V)
# shellcheck disable=SC2086
code_bytes=$(cd "$work" && "$build/tl51" -o prog.hex $objects | sed -n 's/.*: \([0-9]*\) bytes of code.*/\1/p')
fields=$(cat "$work"/mod*.OBJ | grep -o '(' | wc -l)

echo "Machine: $(nproc) cores, $(uname -m); build: Release, $(grep -m1 CMAKE_CXX_COMPILER:FILEPATH "$build/CMakeCache.txt" | cut -d= -f2)"
echo
echo "| Modules | Lines each | Code bytes | Parentheses in fields | Assemble all (s) | Link (s) | Link / assemble |"
echo "|---:|---:|---:|---:|---:|---:|---:|"
awk -v m="$modules" -v l="$lines" -v b="$code_bytes" -v f="$fields" -v a="$assemble_seconds" -v k="$link_seconds" \
  'BEGIN { printf "| %d | %d | %d | %d | %.3f | %.3f | %.2f |\n", m, l, b, f, a, k, (a > 0 ? k / a : 0) }'
if awk -v a="$assemble_seconds" -v k="$link_seconds" 'BEGIN { exit !(k >= a) }'; then
  echo "The link took longer than the assembly."
  exit 1
fi
