#!/bin/bash
# Checks that a built library, and a tool where there is one, have the toolchain's guards.
#   hardening.sh READELF LIBRARY [TOOL]
set -euo pipefail
readelf=$1
shift

# has FILE WHAT PATTERN: a line of what readelf says of the file matches.
has() {
  local said
  said=$("$readelf" --wide --dynamic --program-headers --dyn-syms "$1")
  grep -Eq "$3" <<<"$said" || { echo "$1: $2 (no $3)"; exit 1; }
}

for file; do
  has "$file" "symbols are bound while the program runs" 'BIND_NOW'
  has "$file" "its tables stay writable" '^ *GNU_RELRO '
  has "$file" "its stack can be executed" '^ *GNU_STACK .* RW +0x'
  has "$file" "it cannot be moved" 'Elf file type is DYN'
  has "$file" "no frame is protected" ' UND __stack_chk_fail'
  has "$file" "no call of the C library is checked" ' UND __[a-z]+_chk(@|$)'
done
