# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# Installs Debian packages that are missing. Sourced by ./run, ./test, bench/run.sh and others.

# Some names are those of Debian 12. Elsewhere they are those of Debian 13.
clang_version=14 qt_core=libqt6core6 qt_svg=libqt6svg6
if [ "$(sed -n 's/^VERSION_ID="\(.*\)"$/\1/p' /etc/os-release 2>/dev/null)" != 12 ]; then
  clang_version=19 qt_core=libqt6core6t64 qt_svg=qt6-svg-plugins
fi

# shellcheck disable=SC2034  # read by the scripts that source this one
{
  terminal_packages=(g++ cmake ninja-build pkg-config "$qt_core" libcurl4-openssl-dev libssl-dev zlib1g-dev
    libbrotli-dev libcli11-dev libcpp-httplib-dev shared-mime-info ca-certificates)
  build_packages=("${terminal_packages[@]}" lowdown qt6-base-dev "$qt_svg" qt6-l10n-tools qt6-tools-dev qt6-translations-l10n libplist-dev
    libsndfile1-dev libpulse-dev libsystemd-dev libxcb1-dev)
  display_packages=(xvfb xauth openbox xdotool dbus-daemon python3-gi fonts-dejavu-core)
  screenshot_packages=("${display_packages[@]}" imagemagick)
  test_packages=(attr python3 "clang-$clang_version" "libclang-rt-$clang_version-dev" libgtest-dev nginx-light ntfs-3g openssl
    pulseaudio pulseaudio-utils shellcheck mandoc desktop-file-utils appstream libglib2.0-bin xclip at-spi2-core gir1.2-atspi-2.0
    "${display_packages[@]}")
  if [ "$clang_version" = 14 ]; then test_packages+=(clang-format-14 clang-tidy-14); fi
  bench_packages=(curl wget wget2 aria2 nginx-light time libbenchmark-dev libxml2-dev libgumbo-dev xvfb
    bash-doc python3.11-doc) # the last two are pages
}

# moving_line: shows each line of its input in place of the last one, and nothing where stdout is no terminal.
moving_line() {
  local line
  if [ ! -t 1 ]; then
    cat >/dev/null
    return
  fi
  while IFS= read -r line; do printf '\r\033[K%s' "${line:0:78}"; done
  printf '\r\033[K'
}

# missing_of PACKAGE...: those that are not installed, a line each.
missing_of() {
  comm -23 <(printf '%s\n' "$@" | sort -u) \
    <(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null | sed -n 's/^installed //p' | sort -u)
}

# install_missing PACKAGE...: nothing happens where all are there already.
install_missing() {
  local missing as_root=(env) log all
  mapfile -t missing < <(missing_of "$@")
  [ "${#missing[@]}" -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
  if ! command -v apt-get >/dev/null || ! command -v "${as_root[0]}" >/dev/null; then
    printf 'These Debian packages are missing, and cannot be installed from here without apt-get, and root or sudo:\n\n  %s\n' \
      "${missing[*]}" >&2
    exit 1
  fi
  "${as_root[@]}" true || exit 1 # asks for the password before anything moves
  log=$(mktemp)
  echo "Asking for the list of packages"
  if ! "${as_root[@]}" apt-get update >"$log" 2>&1; then
    cat "$log" >&2 # a list that stays old may still do
  fi
  all=(apt-get install --no-install-recommends "${missing[@]}")
  printf 'Installing %s: %d packages, %d MB to fetch\n' "${missing[*]}" "$("${all[@]}" -s 2>/dev/null | grep -c '^Inst ')" \
    "$("${all[@]}" --print-uris -qq 2>/dev/null | awk '{ bytes += $3 } END { printf "%d", bytes / 1e6 + 0.5 }')" | fold -s -w 110
  if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive "${all[@]}" -y -o APT::Status-Fd=1 -o Dpkg::Use-Pty=0 </dev/null 2>&1 |
    tee "$log" | sed -un 's/^\(dl\|pm\)status:[^:]*:\([0-9]*\)[^:]*:\(.*\)/\2 %  \3/p' | moving_line; then
    grep -v '^[dp][lm]status:' "$log" >&2
    rm -f "$log"
    exit 1
  fi
  rm -f "$log"
}

# unpack_qt FOLDER: puts there what the terminal's program needs of Qt to be built, for CMAKE_PREFIX_PATH. Installed,
# these packages would bring 80 MB of graphics libraries.
unpack_qt() {
  local package library
  rm -rf "$1"
  mkdir -p "$1"
  (cd "$1" && apt-get download -qq -o APT::Sandbox::User=root qt6-base-dev qt6-base-dev-tools qmake6 qmake6-bin)
  for package in "$1"/*.deb; do dpkg-deb -x "$package" "$1"; done
  rm "$1"/*.deb
  for library in /usr/lib/*/libQt6Core.so.6*; do ln -s "$library" "$1${library%/*}"; done
}
