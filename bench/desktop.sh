#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# The program in windows, on a screen of its own (Xvfb): start-up against a plain window of Qt, a long queue, and one
# large file against quillforth-cli; medians of runs in turn. Build the bench preset first. PROGRAM and CLI name the
# programs, ROUNDS (7), URLS (100000) and MEGABYTES (1024) the amounts.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
CLI=${CLI:-$here/../build/bench/terminal/quillforth-cli}
# shellcheck source=bench/peers.sh
. "$here/peers.sh"

program=${PROGRAM:-$here/../build/bench/bench/desktop_benchmark}
rounds=${ROUNDS:-7}
exec 3< <(exec Xvfb -displayfd 1 -screen 0 1280x1024x24 2> /dev/null)
xvfb=$!
trap 'kill "$xvfb" 2> /dev/null || true; finish' EXIT
read -r -t 10 number <&3
chmod 700 "$work/home"
export DISPLAY=:$number XDG_RUNTIME_DIR=$work/home

for ((round = 0; round <= rounds; ++round)); do
  measure ours "$program" startup
  measure bare "$program" bare
  ((round > 0)) || rm "$work"/*.times
done
echo "First window painted"
report bare
rm "$work"/*.times

echo "A long queue"
"$program" queue "${URLS:-100000}"

head -c "$((${MEGABYTES:-1024} * 1048576))" /dev/urandom > "$work/www/large.bin"
start_nginx
folder="$XDG_DATA_HOME/Tessary Software/Quillforth"
for ((round = 0; round <= (rounds + 1) / 2; ++round)); do
  rm -rf "$folder"
  echo "One large file, round $round"
  "$program" download "$base/large.bin" | tee -a "$work/gaps"
  cmp "$work/www/large.bin" "$folder/large.bin"
  awk '/download-ms/ { print $2 / 1000, 0, 0 }' "$work/gaps" | tail -n 1 >> "$work/ours.times"
  measure quillforth-cli "$cli" get --local --file --to "$work/out" "$base/large.bin"
  ((round > 0)) || rm "$work"/*.times
done
report quillforth-cli
