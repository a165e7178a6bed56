# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# For the tests beside it, which run in the folder of the source: the sample gallery on loopback at "$origin", and a home
# folder that goes with the test.
set -euo pipefail

work=$(mktemp -d)
trap 'kill "${server-}" 2>/dev/null || true; rm -rf "$work"' EXIT
export HOME=$work/home XDG_RUNTIME_DIR=$work/run LC_ALL=C.UTF-8
unset XDG_CONFIG_HOME XDG_DATA_HOME
mkdir -m 700 "$HOME" "$XDG_RUNTIME_DIR"

# wait_for COMMAND...: until it succeeds, at most 30 seconds.
wait_for() {
  for _ in {1..300}; do
    "$@" >/dev/null 2>&1 && return
    sleep 0.1
  done
  echo "Waited in vain for: $*" >&2
  exit 1
}

cp -r examples/gallery "$work/site"
python3 -u -m http.server --bind 127.0.0.1 --directory "$work/site" 0 >"$work/server" 2>"$work/requests" &
server=$!
wait_for grep -q http: "$work/server"
origin=$(grep -o 'http://127.0.0.1:[0-9]*' "$work/server")
LC_ALL=C sed -i "s|{{ORIGIN}}|$origin|g" "$work"/site/*.html "$work"/site/*/*.html
