#!/usr/bin/env bash
# Measures the assembler on generated sources and prints the figures as
# Markdown tables. It reports only: no speed makes it fail.
#
#   bench/run.sh [build dir]        (default: build-bench)
#
# 1. Throughput: sources of 10k, 100k and 1M lines, 1 label in 10 lines;
#    wall-clock time, lines per second and peak resident memory of one run.
# 2. Symbol look-up: two sources of 200k lines with the same 100k label
#    lines, one defining 100,000 distinct labels, the other 1,000; the time
#    per line of each, best of three runs.
# Each run is "ta51 /NOLOGO bench.asm;", writing bench.OBJ and bench.LST.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build-bench}
case $build in /*) ;; *) build=$(pwd)/$build ;; esac

cmake -S "$root" -B "$build" -DTA51_BENCH=ON -DTA51_TESTS=OFF >/dev/null
cmake --build "$build" -j2 --target ta51 ta51_gen_source ta51_measure >/dev/null

ta51=$build/ta51
gen=$build/bench/ta51_gen_source
work=$(mktemp -d /tmp/ta51-bench-XXXXXX)
trap 'rm -rf "$work"' EXIT

# Runs the assembler in $work on bench.asm; prints "seconds maxrss_kb status".
measure() {
  local report=$work/report
  if [ -x /usr/bin/time ]; then
    (cd "$work" && /usr/bin/time -v "$ta51" /NOLOGO 'bench.asm;' >stdout 2>"$report") || true
    awk -F': ' '
      /Elapsed \(wall clock\)/ { n = split($2, p, ":"); s = 0
                                 for (i = 1; i <= n; i++) s = s * 60 + p[i] }
      /Maximum resident set size/ { rss = $2 }
      /Exit status/ { status = $2 }
      END { printf "%.3f %d %d\n", s, rss, status }' "$report"
  else
    (cd "$work" && "$build/bench/ta51_measure" "$ta51" /NOLOGO 'bench.asm;' >stdout 2>"$report")
    sed -n 's/^wall=\([0-9.]*\) maxrss_kb=\([0-9]*\) status=\([0-9]*\)$/\1 \2 \3/p' "$report"
  fi
}

# Best of three: prints the fastest "seconds maxrss_kb status".
best_of_three() {
  local i result best=""
  for i in 1 2 3; do
    result=$(measure)
    if [ -z "$best" ] || awk -v a="${result%% *}" -v b="${best%% *}" 'BEGIN { exit !(a < b) }'; then
      best=$result
    fi
  done
  echo "$best"
}

warn_status() {
  if [ "$1" != 0 ]; then
    echo "(exit status $1; first lines of the console:)"
    head -n 8 "$work/stdout" | sed 's/^/    /'
  fi
}

echo "Machine: $(nproc) cores, $(uname -m), $(awk '/MemTotal/ { printf "%.0f GiB", $2 / 1048576 }' /proc/meminfo)"
echo "Build: $(grep -m1 CMAKE_BUILD_TYPE: "$build/CMakeCache.txt" | cut -d= -f2), $(grep -m1 CMAKE_CXX_COMPILER:FILEPATH "$build/CMakeCache.txt" | cut -d= -f2)"
echo "Timer: $([ -x /usr/bin/time ] && echo '/usr/bin/time -v' || echo 'ta51_measure (getrusage)')"
echo
echo "| Lines | Labels | Source bytes | Wall time (s) | Lines per second | Peak memory (MiB) | Status |"
echo "|---:|---:|---:|---:|---:|---:|---:|"
for lines in 10000 100000 1000000; do
  "$gen" "$lines" -o "$work/bench.asm"
  read -r seconds rss status < <(measure)
  awk -v n="$lines" -v s="$seconds" -v r="$rss" -v st="$status" -v b="$(stat -c %s "$work/bench.asm")" \
    'BEGIN { printf "| %d | %d | %d | %.2f | %.0f | %.1f | %s |\n", n, n / 10, b, s,
             (s > 0 ? n / s : 0), r / 1024, st }'
  warn_status "$status"
done

echo
echo "| Lines | Label lines | Distinct labels | Best wall time (s) | Time per line (us) |"
echo "|---:|---:|---:|---:|---:|"
declare -A per_line
for labels in 1000 100000; do
  "$gen" 200000 --labels "$labels" --sites 100000 -o "$work/bench.asm"
  read -r seconds rss status < <(best_of_three)
  per_line[$labels]=$(awk -v s="$seconds" 'BEGIN { printf "%.3f", s * 1e6 / 200000 }')
  echo "| 200000 | 100000 | $labels | $seconds | ${per_line[$labels]} |"
  warn_status "$status"
done
awk -v a="${per_line[100000]}" -v b="${per_line[1000]}" \
  'BEGIN { if (b > 0) printf "\nTime per line, 100,000 labels against 1,000: %.2f times\n", a / b }'
