// SPDX-License-Identifier: MIT
//
// A script that compiles: its sentences as a tree.
//
// The language is as much of AppleScript as it takes to ask a browser for its address:
//
//   sentence   = "tell" "application" TEXT ( "to" sentence | LINE {sentence LINE} "end" ["tell"] )
//              | "set" WORD "to" expression | "return" [expression] | "delay" expression | "activate"
//              | "keystroke" expression ["using" ( "command" "down" | "{" "command" "down" "}" )]
//              | "do" "script" expression [["window"] expression] | ["get"] expression
//   expression = owned ["as" "list"]
//   owned      = "url" "of" owned | "properties" "of" owned | "item" primary "of" owned | primary
//   primary    = ["the"] ( place ["browser"] object ["of" owned] | "clipboard" | WORD )
//              | TEXT | NUMBER | "-" NUMBER | "true" | "false"
//              | "(" expression ")" | "{" [expression {"," expression}] "}"
//   place      = "front" | "first" | "current" | "active"      object = "window" | "document" | "tab"
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "appleevents/AppleEvents.h"

namespace quillforth::platform {

struct ScriptExpression {
  enum class Kind {
    literal,
    list,         ///< of the operands
    variable,     ///< called `name`
    clipboard,    ///< its text
    front,        ///< what the application shows in front; the operand, if there is one, is what it lies in
    address,      ///< of the operand, which must be what an application shows
    properties,   ///< of such an operand: title, index and address
    item,         ///< of the second operand, at the first one, counted from 1
    asList,       ///< the operand; in a list of its own unless it is a list
    runInWindow,  ///< the first operand's text as a script of the page shown; the second says where
  };
  Kind kind = Kind::literal;
  AEDescriptor literal;
  QString name;
  std::vector<ScriptExpression> operands;
};

struct ScriptSentence {
  enum class Kind { tell, set, giveBack, delay, activate, keystroke, evaluate };
  Kind kind = Kind::evaluate;
  QString name;  ///< application or variable
  std::optional<ScriptExpression> expression;
  bool isCommandDown = false;
  std::vector<ScriptSentence> body;  ///< of a tell
};

using ScriptProgram = std::vector<ScriptSentence>;

/// Sentences and expressions that are nested deeper than this are refused.
inline constexpr int kMaximumScriptDepth = 32;

/// Nothing when the text is not such a script.
[[nodiscard]] std::optional<ScriptProgram> CompileScript(QStringView source);

}  // namespace quillforth::platform
