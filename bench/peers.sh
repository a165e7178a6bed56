# SPDX-License-Identifier: MIT
#
# What bench/run.sh measures with: servers of its own on free loopback ports, runs in turn, medians, and rows of a
# table. Files go below DISK. Sourced by bash; `set -euo pipefail` is on.
# shellcheck shell=bash

type nginx > /dev/null 2>&1 || PATH=$PATH:/usr/sbin

work=$(mktemp -d "${DISK:-/var/tmp}/quillforth-bench.XXXXXX")
memory=$(mktemp -d "${MEMORY:-/dev/shm}/quillforth-bench.XXXXXX")
mkdir -p "$work/www/many" "$work/out" "$work/home"
out=$work/out # of the program that is measured
processes=()
finish() {
  [[ ${#processes[@]} == 0 ]] || kill "${processes[@]}" 2> /dev/null || true
  rm -rf "$work" "$memory"
}
trap finish EXIT
export LC_ALL=C
# Nothing of the user's settings counts, and no proxy stands in between.
export HOME=$work/home XDG_CONFIG_HOME=$work/home XDG_DATA_HOME=$work/home
unset http_proxy all_proxy ALL_PROXY

# Serves $work/www; sets `base` to its URL. What is not there below /many/ is small.
start_nginx() {
  local port attempt
  for attempt in 1 2 3 4 5 6 7 8 9 10; do
    port=$((20000 + (RANDOM + attempt) % 20000))
    cat > "$work/nginx.conf" << CONF
daemon off; master_process off; pid $work/nginx.pid; error_log $work/nginx.log;
events { worker_connections 64; }
http {
  access_log off; sendfile on; keepalive_requests 1000000;
  types { text/html html; image/jpeg jpg; }
  client_body_temp_path $work/t1; proxy_temp_path $work/t2; fastcgi_temp_path $work/t3;
  uwsgi_temp_path $work/t4; scgi_temp_path $work/t5;
  server {
    listen 127.0.0.1:$port; root $work/www;
    location /many/ { try_files \$uri /many/small.txt; }
  }
}
CONF
    nginx -p "$work" -c "$work/nginx.conf" 2> /dev/null &
    processes+=($!)
    # shellcheck disable=SC2034 # for the script that sources this
    base=http://127.0.0.1:$port
    for _ in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do
      if (exec 3<> "/dev/tcp/127.0.0.1/$port") 2> /dev/null && kill -0 "${processes[-1]}" 2> /dev/null; then return 0; fi
      sleep 0.05
    done
  done
  echo "nginx does not start" >&2
  exit 2
}

# make_files FOLDER COUNT KIBIBYTES: files below www/FOLDER, and a page with a link to each.
make_files() {
  local folder=$work/www/$1 name
  mkdir "$folder"
  head -c "$(($2 * $3 * 1024))" /dev/urandom | split -b "$3K" -a 6 -d --additional-suffix=.jpg - "$folder/"
  {
    echo '<html><head><title>Gallery</title></head><body>'
    for name in "$folder"/*.jpg; do echo "<p><a href=\"${name##*/}\">Picture ${name##*/}</a></p>"; done
    echo '</body></html>'
  } > "$folder/index.html"
}

# list_files FOLDER ORIGIN: their URLs in $work/list, and in $work/curl as curl wants them.
list_files() {
  local name
  for name in "$work/www/$1"/*.jpg; do echo "$2/$1/${name##*/}"; done > "$work/list"
  while read -r name; do printf 'url = %s\noutput = %s\n' "$name" "$out/${name##*/}"; done < "$work/list" > "$work/curl"
}

# An empty folder $out. The files of the run before are emptied and put aside: ext4 without a journal looks at each
# inode that was removed lately before it makes a new one, and that would be most of what is measured.
renew_out() {
  if [[ $out == "$memory"/* ]]; then
    rm -rf "$out"
  elif [[ -e $out ]]; then
    find "$out" -type f -exec truncate -s 0 {} +
    mv "$out" "$(mktemp -d "$work/aside.XXXXXX")"
  fi
  mkdir "$out"
}

# measure NAME COMMAND...: runs it into an empty folder $out, holds what is there against www/$wanted, and notes wall
# and processor seconds and the peak memory in KiB.
measure() {
  local name=$1 start end
  shift
  renew_out
  start=$EPOCHREALTIME
  timeout 300 /usr/bin/time -o "$work/time" -f '%U %S %M' "$@" > /dev/null
  end=$EPOCHREALTIME
  tail -n 1 "$work/time" | awk -v t="$start $end" '{ split(t, s); print s[2] - s[1], $1 + $2, $3 }' >> "$work/$name.times"
  [[ -z $wanted ]] || diff -r --exclude=index.html "$work/www/$wanted" "$out" > /dev/null ||
    { echo "$name: the files differ" >&2; exit 1; }
}

# in_turn ROUNDS FUNCTION...: each function measures something. The round before the first one only warms up.
in_turn() {
  local rounds=$1 round contender
  shift
  rm -f "$work"/*.times
  for ((round = 0; round <= rounds; ++round)); do
    for contender in "$@"; do "$contender"; done
    ((round > 0)) || rm -f "$work"/*.times
  done
}

# median NAME COLUMN
median() { sort -g -k "$2,$2" "$work/$1.times" | awk -v c="$2" '{ v[NR] = $c } END { print v[int((NR + 1) / 2)] }'; }

# row CASE OURS PEER: the medians of the two, and their ratios.
row() {
  awk -v what="$1" -v peer="$3" -v a="$(median "$2" 1)" -v b="$(median "$3" 1)" -v c="$(median "$2" 2)" \
    -v d="$(median "$3" 2)" -v e="$(median "$2" 3)" -v f="$(median "$3" 3)" 'BEGIN {
      processor = (d > 0) ? sprintf("%.2f", c / d) : ""
      memory = (e > 0) ? sprintf("%.1f / %.1f MiB", e / 1024, f / 1024) : ""
      printf("| %s | %.3f s | %s | %.3f s | %.2f | %s | %s |\n", what, a, peer, b, a / b, processor, memory) }' | tee -a "$work/table"
}
