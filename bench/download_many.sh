#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# A page with many small files, one at a time over kept connections, against "wget -i" over the same list: wall and
# processor time and peak memory, the medians of runs in turn. Loading and scanning the page counts on our side.
# CLI names the program, ROUNDS (9), FILES (2000) and KIBIBYTES (10) the amount.
set -euo pipefail
# shellcheck source=bench/peers.sh
. "$(dirname "$0")/peers.sh"

rounds=${ROUNDS:-9}
files=${FILES:-2000}
size=$((${KIBIBYTES:-10} * 1024))
start_nginx
head -c "$((files * size))" /dev/urandom | split -b "$size" -a 6 -d --additional-suffix=.jpg - "$work/www/"
names=("$work"/www/*.jpg)
names=("${names[@]##*/}")
{
  echo '<html><head><title>Gallery</title></head><body>'
  for name in "${names[@]}"; do echo "<p><a href=\"$name\">Picture $name</a></p>"; done
  echo '</body></html>'
} > "$work/www/index.html"
printf "%s\n" "${names[@]/#/$base/}" > "$work/list"

for ((round = 0; round <= rounds; ++round)); do
  measure ours "$cli" get --local --page --to "$work/out" "$base/index.html"
  diff -r --exclude=index.html "$work/www" "$work/out" > /dev/null || { echo "the files differ" >&2; exit 1; }
  measure wget wget --quiet --input-file="$work/list" --directory-prefix="$work/out"
  ((round > 0)) || rm "$work"/*.times # the first round only warms up
done
report wget
