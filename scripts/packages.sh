# SPDX-License-Identifier: MIT
# shellcheck shell=bash
#
# Installs Debian packages that are missing. Sourced by ./run, ./test and bench/run.sh.

# shellcheck disable=SC2034  # read by the scripts that source this one
{
  build_packages=(g++ cmake ninja-build pkg-config python3 qt6-base-dev qt6-l10n-tools qt6-tools-dev
    qt6-translations-l10n libqt6svg6 libcurl4-openssl-dev libssl-dev zlib1g-dev libbrotli-dev libplist-dev
    libsndfile1-dev libpulse-dev libsystemd-dev libxcb1-dev libcli11-dev libcpp-httplib-dev shared-mime-info ca-certificates)
  display_packages=(xvfb xauth openbox xdotool dbus-daemon python3-gi fonts-dejavu-core)
  screenshot_packages=("${display_packages[@]}" imagemagick)
  test_packages=(clang-14 libclang-rt-14-dev clang-format-14 clang-tidy-14 libgtest-dev nginx-light ntfs-3g openssl
    pulseaudio pulseaudio-utils shellcheck mandoc desktop-file-utils appstream libglib2.0-bin xclip at-spi2-core gir1.2-atspi-2.0
    "${display_packages[@]}")
  bench_packages=(curl wget wget2 aria2 nginx-light time libbenchmark-dev libxml2-dev libgumbo-dev xvfb
    bash-doc python3.11-doc) # the last two are pages
}

# install_missing PACKAGE...: nothing happens where all are there already.
install_missing() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
  done
  [ "${#missing[@]}" -eq 0 ] && return
  echo "Installing: ${missing[*]}" >&2
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}
