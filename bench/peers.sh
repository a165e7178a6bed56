# SPDX-License-Identifier: MIT
#
# What the scripts that measure downloads against other programs have in common: an nginx of their own on a free
# loopback port, runs in turn, and medians. Files go below TMPDIR. Sourced by bash; `set -euo pipefail` is on.
# shellcheck shell=bash

for tool in nginx awk; do
  type "$tool" > /dev/null 2>&1 || PATH=$PATH:/usr/sbin
  type "$tool" > /dev/null 2>&1 || { echo "$tool is missing" >&2; exit 2; }
done

cli=${CLI:-$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)/build/release/terminal/quillforth-cli}
[[ -x $cli ]] || { echo "No $cli; build the release preset, or set CLI." >&2; exit 2; }

work=$(mktemp -d "${TMPDIR:-/tmp}/quillforth-bench.XXXXXX")
mkdir "$work/www" "$work/out" "$work/home"
nginx_pid=
finish() {
  [[ -z $nginx_pid ]] || kill "$nginx_pid" 2> /dev/null || true
  rm -rf "$work"
}
trap finish EXIT
export LC_ALL=C
# Nothing of the user's settings counts, and no proxy stands in between.
export HOME=$work/home XDG_CONFIG_HOME=$work/home XDG_DATA_HOME=$work/home
unset http_proxy all_proxy ALL_PROXY

# Serves $work/www; sets `base` to its URL.
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
  server { listen 127.0.0.1:$port; root $work/www; }
}
CONF
    nginx -p "$work" -c "$work/nginx.conf" 2> /dev/null &
    nginx_pid=$!
    # shellcheck disable=SC2034 # for the scripts that source this
    base=http://127.0.0.1:$port
    for _ in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do
      if (exec 3<> "/dev/tcp/127.0.0.1/$port") 2> /dev/null && kill -0 "$nginx_pid" 2> /dev/null; then return 0; fi
      sleep 0.05
    done
    kill "$nginx_pid" 2> /dev/null || true
  done
  echo "nginx does not start" >&2
  exit 2
}

# measure NAME COMMAND...: runs it once into an empty folder $work/out, and notes wall, processor seconds and the
# peak memory in KiB.
measure() {
  local name=$1 start end
  shift
  rm -rf "$work/out"
  mkdir "$work/out"
  start=$EPOCHREALTIME
  timeout 120 /usr/bin/time -o "$work/time" -f '%U %S %M' "$@" > /dev/null
  end=$EPOCHREALTIME
  awk -v start="$start" -v end="$end" '{ print end - start, $1 + $2, $3 }' "$work/time" >> "$work/$name.times"
}

# median NAME COLUMN
median() { sort -g -k "$2,$2" "$work/$1.times" | awk -v c="$2" '{ v[NR] = $c } END { print v[int((NR + 1) / 2)] }'; }

# best NAME COLUMN
best() { sort -g -k "$2,$2" "$work/$1.times" | awk -v c="$2" 'NR == 1 { print $c }'; }

# report PEER: the medians and the best of "ours" and PEER, and their ratios. On a machine that is itself a guest
# the best says more: memory that its host has to find first can cost either side seconds a gigabyte.
report() {
  printf '%-16s %10s %10s %10s %12s\n' "median of ${rounds:-1}" 'wall s' 'cpu s' 'best s' 'peak KiB'
  local name
  for name in ours "$1"; do
    printf '%-16s %10.3f %10.2f %10.3f %12d\n' "$name" "$(median "$name" 1)" "$(median "$name" 2)" "$(best "$name" 1)" \
      "$(median "$name" 3)"
  done
  awk -v a="$(median ours 1)" -v b="$(median "$1" 1)" -v c="$(median ours 2)" -v d="$(median "$1" 2)" \
    -v e="$(best ours 1)" -v f="$(best "$1" 1)" \
    'BEGIN { printf "ratio            %10.2f %10.2f %10.2f\n", a / b, (d > 0 ? c / d : 0), e / f }'
}
