#!/bin/sh
# A real make with the rule of --depfile: nothing to do after a build, a
# rebuild after the include file changes, and after the source changes.
#   make_rebuilds.sh <path of ta51>
set -eu
ta51=$1
if ! command -v make >/dev/null 2>&1; then
  echo "make is not installed: skipped"
  exit 0
fi
dir=$(mktemp -d /tmp/ta51-depfile-XXXXXX)
trap 'rm -rf "$dir"' EXIT
cd "$dir"
mkdir inc
printf '\tCSEG AT 0\n\tINCLUDE inc/pins.inc\n#include "inc/limits.h"\n\tMOV A,#LIMIT\n\tEND\n' > prog.asm
printf 'LED\tEQU 90H\n' > inc/pins.inc
printf '#define LIMIT 7\n' > inc/limits.h
printf 'prog.OBJ:\n\t"%s" --depfile prog.d -NOLOGO "prog.asm;"\n-include prog.d\n' "$ta51" > Makefile

fail() { echo "FAIL: $1"; cat prog.d 2>/dev/null || true; exit 1; }
make -s >/dev/null || fail "first build"
[ -f prog.OBJ ] || fail "no object file"
grep -q 'inc/pins.inc' prog.d || fail "the rule misses the INCLUDE file"
grep -q 'inc/limits.h' prog.d || fail "the rule misses the #include file"
make -q || fail "make wants to rebuild right after a build"
for changed in inc/pins.inc inc/limits.h prog.asm; do
  sleep 1
  touch "$changed"
  if make -q; then fail "no rebuild after $changed changed"; fi
  make -s >/dev/null || fail "rebuild after $changed"
  make -q || fail "make wants to rebuild again after $changed"
done
echo "make rebuilds when an input changes"
