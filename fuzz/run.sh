#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds the fuzz targets and runs each in turn, from the seeds and from what earlier runs have found:
#
#   fuzz/run.sh SECONDS [TARGET...]     for example: fuzz/run.sh 900 answers gate scan
#
# Prints how many inputs each has run, what of the code they reach (edges, and features of these), and what it has
# found. Inputs are kept in build/fuzz/corpus, findings in build/fuzz/findings; with one of these, ends with 1.
set -euo pipefail
cd "$(dirname "$0")/.."
[ $# -gt 0 ] || { sed -n '4,9s/^# \{0,1\}//p' "$0" && exit 2; }
seconds=$1
shift
[ $# -gt 0 ] || set -- answers gate scan page resolve url head name resourcefork script record file hfspath

[ -e build/fuzz/build.ninja ] || cmake --preset fuzz >/dev/null
nice ninja -C build/fuzz "${@/%/_fuzzer}" >/dev/null
work=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo /tmp)/fuzz-XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p build/fuzz/findings

printf '%-14s %10s %9s %8s %8s  %s\n' target inputs 'a second' edges features findings
status=0
for target; do
  corpus=build/fuzz/corpus/$target
  mkdir -p "$corpus" "$work/seeds"
  fuzz/seeds.py "$target" "$work/seeds"
  options=(-max_total_time="$seconds" -timeout=25 -rss_limit_mb=3000 -max_len=4000 -print_final_stats=1
    -artifact_prefix="build/fuzz/findings/$target-")
  [ -e "fuzz/$target.dict" ] && options+=(-dict="fuzz/$target.dict")
  result=none
  TMPDIR=$work ASAN_OPTIONS=detect_stack_use_after_return=1 nice "build/fuzz/bin/${target}_fuzzer" "${options[@]}" "$corpus" "$work/seeds" \
    >"$work/log" 2>&1 || { status=1 && result=$(sed -n 's/.*Test unit written to //p' "$work/log"); }
  [ "$result" = none ] || grep -aE 'does not hold|SUMMARY|runtime error' "$work/log" || true
  last=$(grep -E 'cov: [0-9]+ ft: ' "$work/log" | tail -n 1)
  number() { grep -oE "$1 +[0-9]+" <<<"$2" | grep -oE '[0-9]+$' || echo '?'; }
  printf '%-14s %10s %9s %8s %8s  %s\n' "$target" "$(number 'number_of_executed_units:' "$(cat "$work/log")")" \
    "$(number 'average_exec_per_sec:' "$(cat "$work/log")")" "$(number cov: "$last")" "$(number ft: "$last")" "$result"
  rm -r "$work/seeds"
done
exit "$status"
