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
  words,  ///< one of the option's `words`
  list,   ///< some of its `words`, with commas between them
  files,
  folders,
  settings,      ///< the keys of the settings; as the value of an option, each with a "=" after it
  settingValues  ///< the values of the setting whose key was given before
};

/// An option, or an argument that has no dashes.
struct Option {
  /// Adds it to a command of the parser, which will write its value into `parsed`. The program knows what
  /// type `parsed` points to.
  using Bind = CLI::Option* (*)(CLI::App& command, const std::string& names, void* parsed);

  std::string_view names;  ///< "-d,-P,--to", short ones first; "URL" for an argument
  std::string_view value;  ///< a name for its value, as help shows it; empty: it has no value
  Bind bind;               ///< null: the parser adds it by itself
  std::string_view text;   ///< for people: plain ASCII, no line breaks
  Completes completes = Completes::nothing;
  std::string_view words = {};     ///< what completes it, with blanks between
  std::string_view example = {};   ///< a command line, without the program
  std::string_view excludes = {};  ///< long name of an option that cannot be given with it
  std::string_view needs = {};     ///< long name of an option that must be given with it
  bool isRequired = false;         ///< for an argument: it must be given
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
