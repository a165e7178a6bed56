#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Makes what a release consists of: the source archive of a tag, packages for both Debians that have been tried on bare
# systems, and the checksums of all of it. Needs what try_debian.sh needs, and as much time.
#
#   packaging/release.sh TAG [FOLDER]      TAG is "v" and the version; FOLDER, build/release-TAG, gets what is made
set -euo pipefail

if [ $# -lt 1 ]; then
  sed -n '4,/^set/{/^set/d;s/^# \{0,1\}//p;}' "$0"
  exit 2
fi
cd "$(dirname "$0")/.."
tag=$1
folder=${2-build/release-$tag}
version=$(git show "refs/tags/$tag:CMakeLists.txt" | sed -n 's/^project(Quillforth VERSION \([0-9.]*\) .*/\1/p')
if [ "$tag" != "v$version" ]; then
  echo "The tag is $tag, but the version in CMakeLists.txt is $version" >&2
  exit 1
fi
if ! git show "refs/tags/$tag:CHANGELOG.md" | grep -qE "^## \[${version//./\\.}\] - [0-9]{4}-[0-9]{2}-[0-9]{2}$"; then
  echo "CHANGELOG.md of $tag has no date for version $version" >&2
  exit 1
fi
mkdir -p "$folder"
git archive --format=tar --prefix="quillforth-$version/" "refs/tags/$tag^{commit}" | gzip -9n >"$folder/quillforth-$version.tar.gz"
for suite in bookworm trixie; do
  packaging/try_debian.sh --commit "refs/tags/$tag" --output "$folder/$suite" "$suite"
done
cd "$folder"
sums=$(find . -type f ! -name SHA256SUMS -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum)
echo "Made in $PWD:"
tee SHA256SUMS <<<"$sums"
