// SPDX-License-Identifier: MIT
//
// Marks the English texts of the table "LocalizedStrings" where they stand in the code.
//
// scripts/update_translations.sh collects what is marked. The text itself is its key: marking does not
// translate.
#pragma once

#include <QString>

// NOLINTBEGIN(cppcoreguidelines-macro-usage): the script, and QStringLiteral, want to see a literal
/// As a QString.
#define LOCALIZED(text) QStringLiteral(text)
/// As a literal, for constant tables.
#define LOCALIZED_CHARS(text) text
// NOLINTEND(cppcoreguidelines-macro-usage)
