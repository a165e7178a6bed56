#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Makes the pictures of the windows in docs/screenshots, light and dark, in English and German, with the sample gallery.
#
#   scripts/screenshots.sh [BUILD]     BUILD is a folder that `quillforth` was built in; build/release if not given
#
# Nothing of the person who runs it is read or written: display, session bus and home are its own.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
cd "$root"
build=${1-build/release}
pictures=docs/screenshots
home=/tmp/quillforth-home # it can be read in the pictures, so it is always the same
files="$home/.local/share/Tessary Software/Quillforth"

if [ -z "${IN_SESSION-}" ]; then
  install_missing "${screenshot_packages[@]}"
  mkdir "$home" # fails where another run is at work
  trap 'rm -rf "$home"' EXIT
  env -i PATH="$PATH" HOME="$home" XDG_RUNTIME_DIR="$home" IN_SESSION=1 xvfb-run -a -s "-screen 0 1280x960x24" \
    dbus-run-session -- scripts/screenshots.sh "$build"
  exit
fi

trap 'kill "${manager-}" "${server-}" "${portal-}" "${program-}" 2>/dev/null || true' EXIT
openbox --sm-disable &
manager=$!
mkdir -p "$pictures"

# wait_for COMMAND...: until it succeeds, at most 20 seconds.
wait_for() {
  for _ in {1..200}; do
    "$@" >/dev/null 2>&1 && return
    sleep 0.1
  done
  echo "screenshots.sh: waited in vain for: $*" >&2
  return 1
}

window_is_active() {
  [ "$(xdotool getactivewindow)" = "$status_window" ]
}

another_is_active() {
  ! window_is_active && xdotool getactivewindow
}

# shoot NAME: the window that has the focus, in few colours, without what tells the day.
shoot() {
  sleep 0.6 # until nothing moves any more
  import -window "$(xdotool getactivewindow)" -dither None -colors 128 -strip -define png:compression-level=9 \
    -define png:exclude-chunks=date,time "PNG8:$pictures/$1-$suffix.png"
}

# begin [URL...]: starts the program, and waits for its window.
begin() {
  "$build/bin/quillforth" --local "$@" &
  program=$!
  status_window=$(timeout 20 xdotool search --sync --onlyvisible --pid "$program" | head -n 1)
  wait_for window_is_active
}

end() {
  kill "$program"
  wait "$program" || true
}

# visit: shows one window after the other, and then the sample at work.
visit() {
  begin
  shoot status
  xdotool key ctrl+comma
  wait_for another_is_active
  shoot preferences
  xdotool key Escape
  wait_for window_is_active
  xdotool key ctrl+i
  wait_for another_is_active
  xdotool type "$origin/index.html"
  shoot import
  end
  begin "$origin/index.html" "$origin/winter/index.html"
  wait_for test -e "$files/reef.gif"
  sleep 1 # well into the large file that comes next
  shoot download
  end
}

exec 3< <(exec "$build/bin/gallery_server" --rate 40 examples/gallery)
server=$!
read -r origin <&3
for language in en de; do
  for scheme in light dark; do
    suffix=$language-$scheme
    export LC_ALL=$language.UTF-8
    rm -rf "${home:?}"/{*,.[!.]*}
    exec 4< <(exec /usr/bin/python3 scripts/color_scheme_portal.py "$scheme")
    portal=$!
    read -r _ <&4
    visit
    kill "$portal"
  done
done
