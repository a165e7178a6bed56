#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Makes Debian packages of a commit, for the Debian that it runs on.
#
#   packaging/debian.sh [COMMIT [FOLDER [OPTION...]]]
#
# COMMIT is HEAD if not given; FOLDER, build/debian, gets what is made. OPTIONs are those of dpkg-buildpackage.
#
# It needs git, dpkg-dev and what packaging/debian/control.in names in Build-Depends. The version, maintainer and homepage
# are those of CMakeLists.txt, so that the packages' changelog is made here, too.
set -euo pipefail

cd "$(dirname "$0")/.."
commit=$(git rev-parse --verify "${1-HEAD}^{commit}")
mkdir -p "${2-build/debian}"
folder=$(cd "${2-build/debian}" && pwd)

# cmake_value VARIABLE: what CMakeLists.txt gives it.
cmake_value() {
  git show "$commit:CMakeLists.txt" | sed -n "s/^set($1 \"\\(.*\\)\" CACHE .*/\\1/p"
}
version=$(git show "$commit:CMakeLists.txt" | sed -n 's/^project(Quillforth VERSION \([0-9.]*\) .*/\1/p')
maintainer=$(cmake_value QUILLFORTH_MAINTAINER)
maintainer=${maintainer:-$(git show -s --format='%cn <%ce>' "$commit")} # a package has to have one
homepage=$(cmake_value QUILLFORTH_HOMEPAGE)
date=$(git show -s --format=%cD "$commit")
# shellcheck source=/dev/null
. /etc/os-release

archive=$folder/quillforth_$version.orig.tar.gz
source=$folder/quillforth-$version
rm -rf "$source"
git archive --format=tar --prefix="quillforth-$version/" "$commit" | gzip -9n >"$archive"
tar -xf "$archive" -C "$folder"
cp -r "$source/packaging/debian" "$source/debian"
cd "$source/debian"
sed -e "s|@MAINTAINER@|$maintainer|" -e "s|@HOMEPAGE@|$homepage|" control.in |
  sed '/^Homepage: $/d' >control
# Lintian of Debian 12 does not know what this is about; nor does it say anything when there is a homepage.
if [ "$VERSION_ID" = 12 ] || [ -n "$homepage" ]; then rm quillforth.lintian-overrides; fi
cat >changelog <<TEXT
quillforth ($version-1~deb$VERSION_ID) $VERSION_CODENAME; urgency=medium

  * Version $version; see changelog.gz beside this file.

 -- $maintainer  $date
TEXT
cd ..
dpkg-buildpackage --no-sign "${@:3}"
