// SPDX-License-Identifier: MIT
//
// Cuts the text of a script into words, literals, symbols and line ends.
#pragma once

#include <QString>
#include <optional>
#include <variant>
#include <vector>

#include "appleevents/AppleEvents.h"

namespace quillforth::platform {

enum class ScriptTokenKind {
  word,     ///< letters, digits and "_"; letter case does not count
  literal,  ///< a text in double quotes, or a number
  symbol,   ///< one of ( ) { } , -
  lineEnd,  ///< CR, LF or both
  end,      ///< of the text; always the last one
};

struct ScriptToken {
  ScriptTokenKind kind = ScriptTokenKind::end;
  QString text;          ///< of a word, in lower case, or the symbol
  AEDescriptor literal;  ///< text: UTF-16; a whole number: 32 bits, if it fits; else a 64-bit float
};

/// Longer scripts are refused, in UTF-16 units.
inline constexpr qsizetype kMaximumScriptLength = 16384;

/// Nothing when the text is too long, or a character belongs to no token. In texts \" \\ \n \r and \t stand
/// for one character each.
[[nodiscard]] std::optional<std::vector<ScriptToken>> ScriptTokens(QStringView source);

}  // namespace quillforth::platform
