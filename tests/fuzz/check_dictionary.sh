#!/bin/sh
# Checks the fuzz dictionary that ta51_make_dictionary prints: every line is
# an entry libFuzzer accepts ("..." with \" \\ \xNN escapes only), no entry
# repeats, and words of every kind of keyword are there, the option pair
# BIN/OBJOFF and the C-style directives among them.
#
#   check_dictionary.sh PATH/TO/ta51_make_dictionary
set -eu
dictionary=$(mktemp)
trap 'rm -f "$dictionary"' EXIT
"$1" >"$dictionary"

bad=$(grep -cvE '^"([^"\\]|\\["\\]|\\x[0-9A-F]{2})+"$' "$dictionary" || true)
if [ "$bad" != 0 ]; then
  echo "entries libFuzzer would refuse:"
  grep -vE '^"([^"\\]|\\["\\]|\\x[0-9A-F]{2})+"$' "$dictionary" | head
  exit 1
fi
repeated=$(sort "$dictionary" | uniq -d | head -n 5)
if [ -n "$repeated" ]; then
  echo "entries that repeat: $repeated"
  exit 1
fi
missing=0
for entry in '" MOV "' '" MOVX "' '" DJNZ "' '" DB "' '" CSEG "' '" ORG "' '" INCLUDE "' '" END "' \
    '" IFDEF "' '" ENDC "' '" ENDM "' '" MACRO "' '" EQU "' '" SET "' '" BIN "' '" OBJOFF "' \
    '"\x0A$INCLUDE"' '"\x0A$REGISTERBANK"' '"\x0A\x09BIN\x0A;"' '"\x0A\x09OBJOFF\x0A;"' '"%*DEFINE"' '"%MATCH"' '"LOCAL"' '"FI"' '"%'"'"'"' '"R7"' '"AR0"' '"ACC"' '"T2CON"' \
    '" AND "' '" SHL "' '" HIGH "' '"<>"' '"NARG"' '"INBLOCK"' '"NUMBER"' \
    '" __SFILE "' '" __SLINE "' '" __DEBUG "' '"BANK"' '"PORT"' '"SFR"' '"\x0A__DEBUGEND"' '"\x0ABB1"' \
    '"\x0A#define "' '"\x0A#ifndef "' '"\x0A#endif "' '" defined "' '"##"'; do
  if ! grep -qxF "$entry" "$dictionary"; then
    echo "missing entry: $entry"
    missing=1
  fi
done
[ "$missing" = 0 ] || exit 1
echo "fuzz dictionary: $(wc -l <"$dictionary") entries, all well formed"
