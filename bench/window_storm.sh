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
# every URL, and fails when there is one that no rule accounts for. Build the target window_storm of the bench preset
# first, or name another build's in PROGRAM; ROUND (12) is the seconds of a round, REPORT a file for what is known of
# each fault.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
seconds=${1:-60} seed=${2:-$(date +%s)} round=${ROUND:-12}

if [[ -z ${STORM_HOME:-} ]]; then
  for tool in Xvfb openbox dbus-run-session awk; do
    type "$tool" > /dev/null 2>&1 || { echo "$tool is missing" >&2; exit 2; }
  done
  program=${PROGRAM:-$here/../build/bench/bin/window_storm}
  [[ -x $program ]] || { echo "No $program; build the bench preset, or set PROGRAM." >&2; exit 2; }
  home=$(mktemp -d "${TMPDIR:-/tmp}/quillforth-storm.XXXXXX")
  mkdir -m 700 "$home/tmp" "$home/run"
  exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 2> /dev/null)
  xvfb=$!
  trap 'kill "$xvfb" 2> /dev/null || true; rm -rf "$home"' EXIT
  read -r -t 20 number <&3
  # The report is read after the home has gone.
  env -i PATH="$PATH" HOME="$home" TMPDIR="$home/tmp" XDG_RUNTIME_DIR="$home/run" LC_ALL=C.UTF-8 DISPLAY=":$number" \
    STORM_HOME="$home" PROGRAM="$(realpath "$program")" ROUND="$round" REPORT="$(realpath -m "${REPORT:-/dev/stderr}")" \
    ASAN_OPTIONS="${ASAN_OPTIONS:-}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-}" TSAN_OPTIONS="${TSAN_OPTIONS:-}" \
    dbus-run-session -- "$0" "$seconds" "$seed"
  exit
fi

managed=$STORM_HOME/managed # no window comes before the window manager: it would not be made active
openbox --sm-disable --startup "touch $managed" > /dev/null 2>&1 &
manager=$!
trap 'kill "$manager" 2> /dev/null || true' EXIT
for ((i = 0; i < 200; ++i)); do [[ ! -e $managed ]] || break; sleep 0.05; done

status=0
for ((phase = 1; SECONDS < seconds; ++phase)); do
  result=0
  "$PROGRAM" "$phase" "$seed" "$round" >> "$STORM_HOME/ledger" 2>> "$STORM_HOME/faults" || result=$?
  [[ $result == 0 ]] || { status=1; echo "  (round $phase)" >> "$STORM_HOME/faults"; }
  [[ $result -le 1 ]] || printf '1\tFAULT: round %d ended with status %d\n' "$phase" "$result" >> "$STORM_HOME/ledger"
done
cat "$STORM_HOME/faults" >> "$REPORT"
echo "Seed $seed, $((phase - 1)) rounds, $SECONDS seconds"
awk -F '\t' '
  { sum[$2] += $1 }
  END {
    for (name in sum) {
      if (name ~ /^in: /) { into += sum[name] } else if (name !~ /^(info|FAULT): / && !("FAULT: " name in sum)) { out += sum[name] }
    }
    for (name in sum) printf "%8d  %s\n", sum[name], name | "sort -k 2"
    close("sort -k 2")
    printf "%8d  URLs came in, %d are accounted for\n", into, out
    exit into != out
  }' "$STORM_HOME/ledger" || status=1
exit "$status"
