#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
#
# Brings the translations up to date with the texts in the code: new ones come in unfinished, those that are gone go.
#
#   scripts/update_translations.sh           rewrites desktop/translations/*.ts
#   scripts/update_translations.sh --check   only fails when that would change something
set -euo pipefail

cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate6 || echo /usr/lib/qt6/bin/lupdate)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# lupdate knows its own words only, so it reads a copy in which LOCALIZED is one of them.
find app linux desktop \( -name '*.cpp' -o -name '*.h' -o -name '*.ui' \) | sort |
  while IFS= read -r file; do
    mkdir -p "$work/$(dirname "$file")"
    sed -E 's/\bLOCALIZED(_CHARS)?\(/QT_TRANSLATE_NOOP("LocalizedStrings", /g' "$file" >"$work/$file"
  done
mkdir -p "$work/desktop/translations"
cp desktop/translations/*.ts "$work/desktop/translations"
"$lupdate" -silent -no-obsolete -no-ui-lines -locations none -I "$work" "$work/app" "$work/linux" "$work/desktop" \
  -ts "$work"/desktop/translations/*.ts
if [ "${1-}" = --check ]; then
  diff -u desktop/translations "$work/desktop/translations"
else
  cp "$work"/desktop/translations/*.ts desktop/translations
fi
