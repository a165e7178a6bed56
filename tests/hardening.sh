#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# hardening.sh BINARY...: says what each lacks of what makes a mistake harder to use.
set -euo pipefail

failures=0
for binary in "$@"; do
  header=$(readelf -hW "$binary")
  segments=$(readelf -lW "$binary")
  dynamic=$(readelf -dW "$binary")
  symbols=$(readelf --dyn-syms -W "$binary")
  need() {  # WHAT TEXT PATTERN
    if ! grep -qE "$3" <<<"$2"; then
      printf '%s lacks %s\n' "$binary" "$1"
      failures=1
    fi
  }
  need "a position-independent layout" "$header" 'Type: +DYN'
  need "read-only relocations" "$segments" GNU_RELRO
  need "binding at the start" "$dynamic" '\(FLAGS.*NOW'
  need "a stack that cannot run" "$segments" 'GNU_STACK.* RW +0x'
  need "stack canaries" "$symbols" __stack_chk_fail
  case "$binary" in *.so) continue ;; esac  # too small to call a checked function
  need "checked library calls" "$symbols" '__[a-z]+_chk'
  if [[ "$header" == *X86-64* ]]; then
    code=$(objdump -d --no-show-raw-insn "$binary")
    need "landing marks for indirect jumps" "$code" endbr64
    need "probes of each page of the stack" "$code" 'or[ql] +.0x0,'
  fi
done
exit $failures
