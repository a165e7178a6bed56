#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Fails when a room includes one that it must not know. Arrows point down only: see docs/architecture.md.
set -euo pipefail

cd "$(dirname "$0")/.."
failures=0

# check FOLDER PATTERN...: every quoted include of FOLDER's own files begins with one of the patterns.
check() {
  local folder=$1 allowed
  shift
  allowed=$(IFS='|' && echo "$*")
  local found
  found=$(find "$folder" -maxdepth 1 \( -name '*.h' -o -name '*.cpp' \) -not -name main.cpp \
    -exec grep -HnE '^#include "' {} + | grep -vE "#include \"($allowed)" || true)
  if [ -n "$found" ]; then
    printf '%s must not include:\n%s\n' "$folder" "$found"
    failures=1
  fi
}

host='platform/[A-Za-z]+\.h'
check common common/
check platform common/ "$host"
check platform/linux common/ "$host" platform/linux/
check classify common/ "$host" classify/
check linkextract common/ classify/ExtensionMap platform/InternetConfig linkextract/
check fileops common/ classify/ "$host" fileops/
check app common/ classify/ linkextract/ fileops/ "$host" app/
check host app/ "$host" platform/linux/ host/
check desktop common/ app/ "$host" desktop/ ui_
check terminal common/ classify/ linkextract/ fileops/ app/ "$host" terminal/

if grep -rnE '#include <Q' common linkextract; then
  echo "common and linkextract work on bytes and know no Qt"
  failures=1
fi
exit "$failures"
