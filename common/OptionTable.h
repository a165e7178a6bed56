// SPDX-License-Identifier: MIT
//
// How the options of a program are written down: one table, from which the parser, the help, the option
// sections of the manual page and the completions of the shells are made.
//
// Pure data.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quillforth::common {

/// What a shell offers for a value.
enum class Completes {
  nothing,
  words,  ///< one of them
  list,   ///< some of them, with commas between
  files,
  folders,
  settings,      ///< the keys, with a "=" behind an option
  settingValues  ///< of the key before it
};

/// An option, or an argument that has no dashes.
struct Option {
  /// Adds it to a command of the parser, with the place in `parsed` that it fills; what that is is up to the
  /// program.
  using Bind = CLI::Option* (*)(CLI::App& command, const std::string& names, void* parsed);

  std::string_view names;  ///< "-d,-P,--to", short ones first; "URL" for an argument
  std::string_view value;  ///< what stands for its value; empty: it has none
  Bind bind;               ///< null: the parser knows it by itself
  std::string_view text;   ///< for people: plain ASCII, no line breaks
  Completes completes = Completes::nothing;
  std::string_view words = {};     ///< that complete it, with blanks between them
  std::string_view example = {};   ///< a command line, without the program
  std::string_view excludes = {};  ///< the long name of an option that it cannot stand beside
  std::string_view needs = {};     ///< the long name of one that must be there, too
  bool isRequired = false;         ///< of an argument
  bool isRepeated = false;         ///< may be given more than once

  [[nodiscard]] bool isArgument() const { return !names.starts_with('-'); }
  /// "--to", or the argument's name.
  [[nodiscard]] std::string_view longName() const { return names.substr(names.rfind(',') + 1); }
};

struct CommandDescription {
  std::string_view name;  ///< empty: the program's own options
  std::string_view summary;
  std::string_view arguments;  ///< as the list of commands shows them
  std::span<const Option> options;
};

}  // namespace quillforth::common
