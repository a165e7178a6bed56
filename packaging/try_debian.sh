#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Builds Quillforth and its packages on a bare Debian, and tries the packages on another bare one. Needs root, git,
# debootstrap, 6 GB, and about half an hour.
#
#   packaging/try_debian.sh [OPTION...] bookworm|trixie
#
#   --commit COMMIT   what is built; HEAD if not given
#   --folder FOLDER   where the systems are made, for those who want to look into them; otherwise they go at the end
#   --output FOLDER   gets the packages
#   --mirror URL      where Debian is fetched from; otherwise where this system's apt does
#
# A step that fails ends it, and its output is shown; the log of all steps stays. Nothing stays mounted, because each
# command has its own mounts.
# shellcheck disable=SC2016  # what is quoted is for others to expand
set -euo pipefail

commit=HEAD folder="" output="" mirror=""
while [ $# -gt 1 ]; do
  case $1 in
    --commit) commit=$2 ;;
    --folder) folder=$2 ;;
    --output) output=$2 ;;
    --mirror) mirror=$2 ;;
    *) break ;;
  esac
  shift 2
done
suite=${1-}
case $suite in
  bookworm | trixie) ;;
  *)
    sed -n '3,/^# shellcheck/{/shellcheck/d;s/^# \{0,1\}//p;}' "$0"
    exit 2
    ;;
esac
if [ "$(id -u)" -ne 0 ] || ! command -v debootstrap >/dev/null; then
  echo "try_debian.sh needs root, and the package debootstrap" >&2
  exit 1
fi
repository=$(cd "$(dirname "$0")/.." && pwd)
commit=$(git -C "$repository" rev-parse --verify "$commit^{commit}")
: "${mirror:=$(apt-get indextargets --format '$(SITE)' 'Label: Debian' 'Created-By: Packages' | head -n 1)}"
if [ -z "$folder" ]; then
  folder=$(mktemp -d)
  trap 'rm -rf "${folder:?}/$suite"-*' EXIT
fi
mkdir -p "$folder"
log=$folder/$suite.log
: >"$log"

# step TEXT COMMAND...: does it, and says how long it took.
step() {
  local begin=$SECONDS text=$1
  shift
  echo "== $text" >>"$log"
  if ! "$@" >>"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "try_debian.sh: failed: $text (all of it is in $log)" >&2
    exit 1
  fi
  printf '%-70s %4d s\n' "$text" $((SECONDS - begin))
}

# inside SYSTEM COMMAND...: runs it there, with its own mounts and processes, which end with it.
inside() {
  local system=$folder/$suite-$1
  shift
  unshare --mount --pid --fork --kill-child sh -euc '
    mount -t proc proc "$0/proc"
    mount --rbind /dev "$0/dev"
    exec chroot "$0" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
  ' "$system" "$@"
}

# system NAME: a bare one.
system() {
  local bare=$folder/$suite-bare
  if [ ! -e "$bare/complete" ]; then
    rm -rf "$bare"
    debootstrap --variant=minbase "$suite" "$bare" "$mirror"
    touch "$bare/complete"
  fi
  rm -rf "${folder:?}/$suite-$1"
  cp -a "$bare" "$folder/$suite-$1"
}

install_in() {
  inside "$1" apt-get update
  inside "$1" apt-get install -y --no-install-recommends "${@:2}"
}

clone_into() {
  git clone --quiet --no-hardlinks "$repository" "$folder/$suite-$1/source"
  git -C "$folder/$suite-$1/source" checkout --quiet --detach "$commit"
}

run_terminal() {
  inside build sh -c 'cd /source && ./run --terminal && ./run --terminal && ls -l downloads'
  [ -z "$(find "$folder/$suite-build/source/downloads" -name '*-[0-9].*')" ]
}

packages() {
  local needed
  needed=$(sed -n '/^Build-Depends:/,/^[^ B]/{s/^Build-Depends://;/^[^ ]/d;p}' "$repository/packaging/debian/control.in")
  inside build apt-get satisfy -y --no-install-recommends "build-essential, $needed"
  inside build sh -c 'cd /source && packaging/debian.sh HEAD /packages'
}

check_packages() {
  inside build sh -c 'lintian --allow-root --fail-on error,warning /packages/*.changes'
}

# The source lies elsewhere.
packages_again() {
  inside build sh -c 'cd /source && packaging/debian.sh HEAD /elsewhere/packages-again -b'
  inside build sh -c 'for each in /packages/*.deb; do cmp "$each" "/elsewhere/packages-again/${each##*/}"; done'
}

# lower_version DEB FOLDER: the same package as version 0.1.
lower_version() {
  inside user sh -euc 'dpkg-deb -R "$1" /tmp/lower
    sed -i -e "s/^Version: .*/Version: 0.1/" -e "s/^\(Depends: quillforth (= \)[^)]*/\10.1/" /tmp/lower/DEBIAN/control
    dpkg-deb -b /tmp/lower "$2"
    rm -r /tmp/lower' sh "$@"
}

upgrade() {
  local each name
  inside user mkdir /packages /lower
  cp "$folder/$suite-build/packages/"*.deb "$folder/$suite-user/packages"
  rm -f "$folder/$suite-user/packages/"*-dbgsym_*
  for each in "$folder/$suite-user/packages/"*.deb; do
    name=${each##*/}
    lower_version "/packages/$name" "/lower/$name"
  done
  inside user sh -c 'apt-get update && apt-get install -y /lower/*.deb'
  inside user useradd --create-home someone
  inside user su someone -c 'quillforth-cli settings playSoundWhenDone no'
  inside user sh -c 'apt-get install -y /packages/*.deb'
  inside user su someone -c 'quillforth-cli settings playSoundWhenDone' | grep -w no
  inside user su someone -c 'quillforth-cli settings playSoundWhenDone yes'
}

try_package() {
  inside user su someone -c "cd /source && packaging/debian/tests/$1"
}

# What is left is what the user has stored.
purge() {
  inside user sh -c 'apt-get purge -y quillforth quillforth-cli quillforth-sound && rm -r /packages /lower /source'
  inside user sh -c '! grep -rl quillforth /usr/share/applications /usr/share/mime /etc'
  inside user find / -xdev -iname '*quillforth*' -not -path '/home/*' -not -path '/var/cache/apt/*' -not -path '/proc/*' |
    tee "$folder/$suite.left"
  [ ! -s "$folder/$suite.left" ]
  inside user test -e "/home/someone/.config/Tessary Software/Quillforth.conf"
}

echo "Commit $commit on $suite"
step "A bare system" system build
step "git" install_in build git ca-certificates
step "A clean clone" clone_into build
step "./run --terminal, twice" run_terminal
step "Build dependencies, packages" packages
step "lintian" install_in build lintian
step "lintian finds no error and no warning" check_packages
step "The same packages, built again elsewhere" packages_again
step "Another bare system" system user
step "Lower versions, then the packages as upgrades" upgrade
step "What the tests need" install_in user dbus-daemon desktop-file-utils libglib2.0-bin python3 xauth xdotool xvfb
step "A clean clone" clone_into user
step "The terminal's program fetches the sample" try_package terminal
step "The window comes, and a link file is opened over the session bus" try_package desktop
step "Purging leaves only what the user has stored" purge
if [ -n "$output" ]; then
  mkdir -p "$output"
  cp "$folder/$suite-build/packages/"*.* "$output"
  echo "The packages are in $output"
fi
