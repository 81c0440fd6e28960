#!/usr/bin/env bash
# Compares ta51 with as31 on the same programs and prints the figures as
# Markdown. It fails only when an assembler refuses a program or the two
# code images differ; no speed makes it fail.
#
#   bench/compare.sh [build dir] [pairs]     (defaults: build-bench, 5)
#
# Three programs come from ta51_gen_compare, each written in both syntaxes:
#   dense      35,000 lines, mostly instructions of every addressing mode;
#   symbols    100,000 and 1,000,000 lines, 10% labels and 49% EQU.
# For each: ta51 (`ta51 /NOLOGO prog.asm;`, object and list file written)
# and as31 (`as31 -Fhex prog.asm`) assemble it, ta51_image turns the object
# module and the Intel HEX file into code images, and the images must be
# equal byte for byte. Then the two are timed in pairs (ta51, as31, ta51,
# as31 ...), the smaller programs in four times as many pairs, and the
# median of each is reported (to the microsecond), with ta51's peak memory.
# Last, ta51 alone times the 100k and the 1M program in turn, for the
# growth from one to the other.
# Without as31 (not installed, or AS31= set empty) the comparison is skipped
# and ta51 is timed alone.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build-bench}
pairs=${2:-5}
case $build in /*) ;; *) build=$(pwd)/$build ;; esac

cmake -S "$root" -B "$build" -DTA51_BENCH=ON -DTA51_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target ta51 ta51_gen_compare ta51_image ta51_measure >/dev/null

ta51=$build/ta51
tools=$build/bench
work=$(mktemp -d /tmp/ta51-compare-XXXXXX)
trap 'rm -rf "$work"' EXIT

# AS31 names the as31 to use; set empty, it stands for an absent one.
as31=${AS31-$(command -v as31 || true)}
if [ -z "$as31" ]; then
  echo "as31 is not installed: the comparison with as31 is skipped; ta51 is timed alone."
fi

# Runs a command in a directory; prints "seconds maxrss_kb status".
measure() {
  local dir=$1
  shift
  (cd "$dir" && "$tools/ta51_measure" "$@" >stdout 2>report) || true
  sed -n 's/^wall=\([0-9.]*\) maxrss_kb=\([0-9]*\) status=\([0-9]*\)$/\1 \2 \3/p' "$dir/report"
}

median() { sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# Assembles once with each, checks the status and compares the images; the
# image must hold as many bytes as the generator placed, so that two empty
# images never pass for equal ones.
check_program() {
  local name=$1 bytes=$2 dir=$work/$1 status
  read -r _ _ status < <(measure "$dir/ta51" "$ta51" /NOLOGO 'prog.asm;')
  if [ "$status" != 0 ]; then
    echo "ta51 refused the $name program (status $status):"
    head -n 20 "$dir/ta51/stdout"
    return 1
  fi
  "$tools/ta51_image" obj "$dir/ta51/prog.OBJ" "$dir/ta51.image"
  if [ "$(wc -l <"$dir/ta51.image")" != "$bytes" ]; then
    echo "The $name program: ta51's image holds $(wc -l <"$dir/ta51.image") bytes, the program $bytes."
    return 1
  fi
  [ -n "$as31" ] || return 0
  read -r _ _ status < <(measure "$dir/as31" "$as31" -Fhex prog.asm)
  if [ "$status" != 0 ]; then
    echo "as31 refused the $name program (status $status):"
    tail -n 20 "$dir/as31/report"
    return 1
  fi
  "$tools/ta51_image" hex "$dir/as31/prog.hex" "$dir/as31.image"
  if ! cmp -s "$dir/ta51.image" "$dir/as31.image"; then
    echo "The $name program: the code images of ta51 and as31 differ (address byte, < ta51, > as31):"
    diff "$dir/ta51.image" "$dir/as31.image" | head -n 20
    return 1
  fi
}

# Times the program in $2 pairs; sets ta51_time, as31_time, ta51_rss (KiB, largest).
time_program() {
  local dir=$work/$1 count=$2 i seconds rss status
  : >"$dir/ta51.times"
  : >"$dir/as31.times"
  ta51_rss=0
  for ((i = 0; i < count; i++)); do
    read -r seconds rss status < <(measure "$dir/ta51" "$ta51" /NOLOGO 'prog.asm;')
    echo "$seconds" >>"$dir/ta51.times"
    if ((rss > ta51_rss)); then ta51_rss=$rss; fi
    if [ -n "$as31" ]; then
      read -r seconds rss status < <(measure "$dir/as31" "$as31" -Fhex prog.asm)
      echo "$seconds" >>"$dir/as31.times"
    fi
  done
  ta51_time=$(median <"$dir/ta51.times")
  as31_time=$([ -n "$as31" ] && median <"$dir/as31.times" || echo "")
}

# Generates a program into $work/NAME; prints its symbol count and code bytes.
generate() {
  local name=$1 mode=$2 lines=$3 dir=$work/$1
  mkdir -p "$dir/ta51" "$dir/as31"
  "$tools/ta51_gen_compare" "$mode" "$lines" "$dir/ta51/prog.asm" "$dir/as31/prog.asm" 2>"$dir/summary"
  sed -n 's/^[0-9]* lines, \([0-9]*\) labels, \([0-9]*\) EQUs, [0-9]* instructions, \([0-9]*\) code bytes.*/\1 \2 \3/p' \
    "$dir/summary" | awk '{ print $1 + $2, $3 }'
}

echo "Machine: $(nproc) cores, $(uname -m), $(awk '/MemTotal/ { printf "%.0f GiB", $2 / 1048576 }' /proc/meminfo)"
build_type=$(grep -m1 CMAKE_BUILD_TYPE: "$build/CMakeCache.txt" | cut -d= -f2)
echo "Build: ${build_type:-Release (the default)}, $(grep -m1 CMAKE_CXX_COMPILER:FILEPATH "$build/CMakeCache.txt" | cut -d= -f2)"
echo "as31: ${as31:-absent}; medians of $pairs pairs for the million lines, of $((pairs * 4)) for the others"

# The fixed base: ta51's peak memory on a program of a few lines.
generate base symbols 20 >/dev/null
read -r _ base_rss _ < <(measure "$work/base/ta51" "$ta51" /NOLOGO 'prog.asm;')

echo
echo "| Program | Lines | Symbols | Code bytes | ta51 (s) | as31 (s) | ta51/as31 | ta51 peak (MiB) | Bytes per symbol | Images |"
echo "|---|---:|---:|---:|---:|---:|---:|---:|---:|---|"
declare -A seconds_of
for program in "dense dense 35000" "symbols-100k symbols 100000" "symbols-1M symbols 1000000"; do
  read -r name mode lines <<<"$program"
  read -r symbols bytes < <(generate "$name" "$mode" "$lines")
  if [ -z "${bytes:-}" ]; then
    echo "ta51_gen_compare failed on the $name program:"
    cat "$work/$name/summary"
    exit 1
  fi
  check_program "$name" "$bytes"
  # A pair of the smaller programs takes a fraction of a second: more of
  # them steady the median.
  time_program "$name" "$([ "$lines" -ge 1000000 ] && echo "$pairs" || echo $((pairs * 4)))"
  seconds_of[$name]=$ta51_time
  awk -v n="$name" -v l="$lines" -v s="$symbols" -v b="$bytes" -v t="$ta51_time" -v a="$as31_time" \
      -v r="$ta51_rss" -v base="$base_rss" -v same="$([ -n "$as31" ] && echo equal || echo "not compared")" \
    'BEGIN { ratio = (a != "" && a > 0) ? sprintf("%.2f", t / a) : "-"
             printf "| %s | %d | %d | %d | %.4f | %s | %s | %.1f | %.0f | %s |\n", n, l, s, b, t,
                    (a == "" ? "-" : sprintf("%.4f", a)), ratio, r / 1024, (s > 0 ? (r - base) * 1024 / s : 0), same }'
done

# The growth from 100k to 1M lines, timed on its own: ta51 on the two
# programs in turn (100k, 1M, 100k, ...), so that both meet the machine in
# the same state and no as31 run of many seconds stands between them.
scaling_pairs=$((pairs * 2 + 1))
: >"$work/small.times"
: >"$work/big.times"
for ((i = 0; i < scaling_pairs; i++)); do
  read -r seconds _ _ < <(measure "$work/symbols-100k/ta51" "$ta51" /NOLOGO 'prog.asm;')
  echo "$seconds" >>"$work/small.times"
  read -r seconds _ _ < <(measure "$work/symbols-1M/ta51" "$ta51" /NOLOGO 'prog.asm;')
  echo "$seconds" >>"$work/big.times"
done
small_paired=$(median <"$work/small.times")
big_paired=$(median <"$work/big.times")

echo
awk -v big="${seconds_of[symbols-1M]}" -v small="${seconds_of[symbols-100k]}" -v base="$base_rss" \
    -v bigp="$big_paired" -v smallp="$small_paired" -v n="$scaling_pairs" \
  'BEGIN { if (small > 0) printf "ta51 time, 1M lines against 100k, from the table: %.2f times (10 times the lines)\n", big / small
           if (smallp > 0) printf "ta51 time, 1M lines against 100k, %d pairs of ta51 alone: %.3f s against %.3f s, %.2f times\n", n, bigp, smallp, bigp / smallp
           printf "Fixed base: ta51 peak memory on a 20-line program, %.1f MiB\n", base / 1024 }'
