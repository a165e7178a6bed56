#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# The real window, on a screen and a bus of its own, under random commands against a server of random delays and
# faults:
#
#   bench/window_storm.sh [SECONDS] [SEED]
#
# For about SECONDS (60) the program is started, stormed, ended in one of several ways, and started again; the
# same SEED (the time) gives the same URLs, answers and dice, though not the same moments. Prints what became of
# every URL, and fails when there is one that no rule accounts for (window_storm.py). Build the target window_storm of
# the bench preset first, or name another build's in PROGRAM; ROUND (12) is the seconds of a round, REPORT a file for
# what is known of each fault.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)

for tool in Xvfb openbox dbus-run-session python3; do
  type "$tool" > /dev/null 2>&1 || { echo "$tool is missing" >&2; exit 2; }
done
program=${PROGRAM:-$here/../build/bench/bin/window_storm}
[[ -x $program ]] || { echo "No $program; build the bench preset, or set PROGRAM." >&2; exit 2; }
home=$(mktemp -d "${TMPDIR:-/tmp}/quillforth-storm.XXXXXX")
mkdir -m 700 "$home/tmp" "$home/run"
exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 2> /dev/null)
xvfb=$!
trap 'kill "$xvfb" ${manager:-} 2> /dev/null || true; rm -rf "$home"' EXIT
read -r -t 20 number <&3
managed=$home/managed # no window comes before the window manager: it would not be made active
DISPLAY=":$number" HOME="$home" openbox --sm-disable --startup "touch $managed" > /dev/null 2>&1 &
manager=$!
for ((i = 0; i < 200; ++i)); do [[ ! -e $managed ]] || break; sleep 0.05; done

env -i PATH="$PATH" HOME="$home" TMPDIR="$home/tmp" XDG_RUNTIME_DIR="$home/run" LC_ALL=C.UTF-8 DISPLAY=":$number" \
  PROGRAM="$(realpath "$program")" ROUND="${ROUND:-12}" REPORT="$(realpath -m "${REPORT:-/dev/stderr}")" \
  ASAN_OPTIONS="${ASAN_OPTIONS:-}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-}" TSAN_OPTIONS="${TSAN_OPTIONS:-}" \
  PYTHONDONTWRITEBYTECODE=1 dbus-run-session -- python3 "$here/window_storm.py" "${1:-60}" "${2:-$(date +%s)}"
