#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# One large file from a server on this machine to the disk, against the curl command: wall and processor time and
# peak memory, the medians of runs in turn. CLI names the program, ROUNDS (7) and MEGABYTES (1024) the amount.
set -euo pipefail
# shellcheck source=bench/peers.sh
. "$(dirname "$0")/peers.sh"

rounds=${ROUNDS:-7}
head -c "$((${MEGABYTES:-1024} * 1048576))" /dev/urandom > "$work/www/large.bin"
start_nginx
for ((round = 0; round <= rounds; ++round)); do
  measure ours "$cli" get --local --file --to "$work/out" "$base/large.bin"
  cmp "$work/www/large.bin" "$work/out/large.bin"
  measure curl curl --silent --output "$work/out/large.bin" "$base/large.bin"
  ((round > 0)) || rm "$work"/*.times # the first round only warms up
done
report curl
