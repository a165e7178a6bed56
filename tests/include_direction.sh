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

host='(platform|net|appleevents)/'
check common common/
check net common/ net/
check appleevents common/ net/ appleevents/
check platform common/ "$host"
check scripting common/ "$host" scripting/
check linux/files common/ "$host" linux/files/
check linux/transfer common/ "$host" linux/files/ linux/transfer/
check linux/linkfiles common/ "$host" linux/files/ linux/linkfiles/
check linux/browser common/ "$host" scripting/ linux/files/ linux/browser/
check linux/session common/ "$host" linux/files/ linux/session/
check classify common/ "$host" classify/
check linkextract common/ classify/ExtensionMap platform/InternetConfig linkextract/
check fileops common/ classify/ "$host" fileops/
check app common/ classify/ linkextract/ fileops/ "$host" app/
check host fileops/ app/ "$host" linux/ host/
check desktop common/ app/ "$host" desktop/ ui_
check terminal common/ classify/ linkextract/ fileops/ app/ "$host" terminal/

if grep -rnE '#include <Q' common linkextract; then
  echo "common and linkextract work on bytes and know no Qt"
  failures=1
fi
exit "$failures"
