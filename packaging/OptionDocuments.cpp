// SPDX-License-Identifier: MIT
//
// Writes what is made of the tables of options: the option sections of the manual pages, and the completions
// for bash, zsh and fish. With "--check" it compares instead, and fails where a file would change.
//
//     option_documents [--check] packaging

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "desktop/Options.h"
#include "terminal/Options.h"
#include "terminal/Settings.h"

namespace quillforth {

namespace {

using common::CommandDescription;
using common::Completes;
using common::Option;
using terminal::BooleanSetting;
using terminal::BooleanSettings;
using terminal::Commands;

constexpr std::string_view kFoldersKey = "DestinationDirectory";
constexpr std::string_view kNumberKey = "downloadsAhead";
constexpr std::string_view kNumbers = "0 1 2 3 4 5 6 7 8";

std::string Replaced(std::string text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
  return text;
}

std::vector<std::string> Split(std::string_view text, char separator) {
  std::istringstream stream{std::string(text)};
  std::vector<std::string> parts;
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

std::string Keys() {
  std::string keys;
  for (const BooleanSetting& setting : BooleanSettings()) keys.append(setting.preference.key.data()) += ' ';
  return keys.append(kNumberKey).append(" ").append(kFoldersKey);
}

// What fits beside a completion.
std::string Gist(std::string_view text) {
  std::size_t end = text.size();
  for (const std::string_view stop : {". ", ": ", "; "}) end = std::min(end, text.find(stop));
  return std::string(text.substr(0, end));
}

// Calls back for the options, or the arguments, of each command.
void ForEach(bool arguments, const std::function<void(const CommandDescription&, const Option&)>& call) {
  for (const CommandDescription& command : Commands()) {
    for (const Option& option : command.options) {
      if (option.isArgument() == arguments) call(command, option);
    }
  }
}

// Manual page (mdoc(7)): a sentence a line, and nothing in it taken for a request.
std::string Prose(std::string_view text) {
  std::string prose = Replaced(std::string(text), "\\", "\\e");
  prose = Replaced(Replaced(prose, "--", "\\-\\-"), ". ", ".\n");
  if (!prose.empty()) prose[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(prose[0])));
  return prose + ".\n";
}

std::string ManualOptions(const CommandDescription& command, const std::string& program) {
  std::string text = ".Bl -tag -width Ds\n";
  for (const Option& option : command.options) {
    if (option.isArgument() || option.bind == nullptr) continue;
    text += ".It";
    for (const std::string& name : Split(option.names, ',')) {
      text += (name == Split(option.names, ',').front() ? " Fl " : " , Fl ") + name.substr(1);
    }
    if (!option.value.empty()) text.append(" Ar ").append(option.value);
    text += '\n' + Prose(option.text);
    if (option.example.empty()) continue;
    const std::string example = Replaced(std::string(option.example), "\\", "\\e");
    text += ".Pp\n.Dl " + program + ' ' + Replaced(example, "\"", "\\(dq") + '\n';
  }
  return text + ".El\n";
}

std::string ManualSettings() {
  std::string text = ".Bl -tag -width Ds\n";
  for (const BooleanSetting& setting : BooleanSettings()) {
    const char* value = setting.preference.defaultValue ? " Pq yes\n" : " Pq no\n";
    text.append(".It Va ").append(setting.preference.key.data()).append(value).append(Prose(setting.text));
  }
  return text + ".El\n";
}

// `page` with what stands between its marks made anew.
std::string Manual(const std::string& page) {
  std::string text;
  bool isMade = false;
  for (const std::string& line : Split(page, '\n')) {
    const bool isEnd = line == ".\\\" end of what is made";
    isMade = isMade && !isEnd;
    if (!isMade) text += line + '\n';
    for (const CommandDescription& command : Commands()) {
      if (command.name.empty() || line != ".\\\" made: options of " + std::string(command.name)) continue;
      text += ManualOptions(command, "quillforth-cli");
      isMade = true;
    }
    if (line == ".\\\" made: options") text += ManualOptions(desktop::Options(), "quillforth");
    if (line == ".\\\" made: settings") text += ManualSettings();
    isMade = isMade || line == ".\\\" made: options" || line == ".\\\" made: settings";
  }
  return text;
}

std::string BashValues(const Option& option) {
  switch (option.completes) {
    case Completes::nothing:
      return "return";
    case Completes::words:
      return "words='" + std::string(option.words) + "'";
    case Completes::list:
      return "words='" + std::string(option.words) + "' prefix=,";
    case Completes::files:
      return "kind=file";
    case Completes::folders:
      return "kind=directory";
    case Completes::settings:
      return "words=$keys suffix='='";
    case Completes::settingValues:
      return "key=$previous";
  }
  return {};
}

std::string Bash() {
  std::string text = R"(# SPDX-License-Identifier: MIT
#
# Completion of quillforth-cli for bash. Made by packaging/OptionDocuments.cpp.

_quillforth_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  local keys=')" + Keys() +
                     R"('
  local words='' kind='' key='' prefix='' suffix=''
  # bash makes three words of a word with a "=".
  if [[ $current == '=' ]]; then
    key=$previous current=''
  elif [[ $previous == '=' ]]; then
    key=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  if [[ $key == -* ]]; then previous=$key key=''; fi
  if [[ $COMP_CWORD -eq 1 ]]; then
    words=')";
  std::string cases;
  for (const CommandDescription& command : Commands())
    text.append(command.name.empty() ? "" : " ").append(command.name);
  text += " help --help --version'\n  elif [[ -z $key ]]; then\n    case $command:$previous in\n";
  ForEach(false, [&](const CommandDescription& command, const Option& option) {
    if (option.value.empty() || command.name.empty()) return;
    std::string patterns;
    for (const std::string& name : Split(option.names, ',')) {
      patterns.append(patterns.empty() ? "" : " | ").append(command.name).append(":").append(name);
    }
    text += "      " + patterns + ") " + BashValues(option) + " ;;\n";
  });
  text += "      settings:--unset | settings:--json) words=$keys ;;\n      settings:-*) ;;\n";
  text += "      settings:*) if [[ $COMP_CWORD -eq 3 ]]; then key=$previous; else words=\"$keys";
  for (const Option& option : std::ranges::find(Commands(), "settings", &CommandDescription::name)->options) {
    if (!option.isArgument()) text.append(" ").append(option.longName());
  }
  text += "\"; fi ;;\n";
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty() || command.name == "settings") continue;
    text += "      " + std::string(command.name) + ":*) words='";
    std::string rest;
    for (const Option& option : command.options) {
      if (!option.isArgument()) text += (text.back() == '\'' ? "" : " ") + std::string(option.longName());
      if (option.isArgument() && option.completes != Completes::nothing) rest = ' ' + BashValues(option);
    }
    text += "'" + rest + " ;;\n";
  }
  text += "      help:*) words='";
  for (const CommandDescription& command : Commands())
    text.append(command.name).append(command.name.empty() ? "" : " ");
  return text + R"(' ;;
    esac
  fi
  case $key in
    '') ;;
    )" + std::string(kFoldersKey) +
         R"() kind=directory ;;
    )" + std::string(kNumberKey) +
         ") words='" + std::string(kNumbers) + R"(' ;;
    *) words='yes no' ;;
  esac
  if [[ -n $suffix ]]; then compopt -o nospace; fi
  if [[ $prefix == ',' && $current == *,* ]]; then prefix=${current%,*},; else prefix=''; fi
  mapfile -t COMPREPLY < <(compgen -P "$prefix" -S "$suffix" -W "$words" -- "${current#"$prefix"}")
  if [[ -n $kind && $current != -* ]]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -A "$kind" -- "$current")
  fi
}
complete -F _quillforth_cli quillforth-cli
)";
}

std::string ZshText(std::string_view text) {
  std::string quoted = Gist(text);
  for (const char* special : {"[", "]", ":"}) quoted = Replaced(quoted, special, std::string("\\") + special);
  return Replaced(quoted, "'", "'\\''");
}

std::string ZshValues(const Option& option) {
  switch (option.completes) {
    case Completes::nothing:
      return " ";
    case Completes::words:
      return "(" + std::string(option.words) + ")";
    case Completes::list:
      return "_values -s , " + std::string(option.value) + ' ' + std::string(option.words);
    case Completes::files:
      return "_files";
    case Completes::folders:
      return "_files -/";
    case Completes::settings:
      return option.isArgument() ? "($keys)" : "_quillforth_cli_assignment";
    case Completes::settingValues:
      return "_quillforth_cli_value $words[2]";
  }
  return {};
}

std::string ZshOption(const Option& option) {
  const std::vector<std::string> names = Split(option.names, ',');
  std::string shutOut(option.excludes.starts_with('-') ? option.excludes : "");
  if (option.isRepeated) {
    shutOut = "*";
  } else {
    for (const std::string& name : names) shutOut += (shutOut.empty() ? "" : " ") + name;
    shutOut = "(" + shutOut + ")";
  }
  std::string text = "'" + shutOut + "'";
  text += names.size() == 1 ? names[0] : "{" + std::string(option.names) + "}";
  text += "'[" + ZshText(option.text) + "]";
  if (!option.value.empty()) text.append(":").append(option.value).append(":").append(ZshValues(option));
  return text + "'";
}

std::string Zsh() {
  std::string text = R"(#compdef quillforth-cli
# SPDX-License-Identifier: MIT
#
# Completion of quillforth-cli for zsh. Made by packaging/OptionDocuments.cpp.

local keys=')" + Keys() +
                     R"('
local context state line
typeset -A opt_args

_quillforth_cli_value() {
  case $1 in
    )" + std::string(kFoldersKey) +
                     R"() _files -/ ;;
    )" + std::string(kNumberKey) +
                     ") compadd " + std::string(kNumbers) + R"( ;;
    *) compadd yes no ;;
  esac
}
_quillforth_cli_assignment() {
  if compset -P '*='; then
    _quillforth_cli_value ${${IPREFIX%=}##*=}
  else
    compadd -S '=' ${=keys}
  fi
}

_arguments -C \
  '(- *)'{-h,--help}'[show help]' \
  '(- *)'{-V,--version}'[show the version]' \
  '1:command:((help\:"explain a command")";
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty()) continue;
    text += "\n    " + std::string(command.name) + "\\:\"" + ZshText(command.summary) + '"';
  }
  text += "))' \\\n  '*::argument:->argument'\n\n[[ $state == argument ]] || return\ncase $words[1] in\n";
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty()) continue;
    text += "  " + std::string(command.name) + ")\n    _arguments -s";
    int place = 0;
    for (const Option& option : command.options) {
      text += " \\\n      ";
      if (!option.isArgument()) {
        text += ZshOption(option);
      } else {
        const bool isOne = command.name == "settings" || command.name == "aggregate";
        const std::string values = option.names == "URL" ? "_urls" : ZshValues(option);
        text += '"' + (isOne ? std::to_string(++place) : "*") + ':' + std::string(option.names) + ':' +
                values + '"';
      }
    }
    text += "\n    ;;\n";
  }
  text += "  help) _arguments '1:command:(";
  for (const CommandDescription& command : Commands())
    text.append(command.name).append(command.name.empty() ? "" : " ");
  return text + ")' ;;\nesac\n";
}

std::string FishText(std::string_view text) {
  return " -d '" + Replaced(Gist(text), "'", "\\'") + "'\n";
}

std::string FishValues(const Option& option) {
  switch (option.completes) {
    case Completes::nothing:
      return " -x";
    case Completes::words:
      return " -x -a '" + std::string(option.words) + "'";
    case Completes::list:
      return " -x -a '(__fish_complete_list , \"string split \\\" \\\" \\\"" + std::string(option.words) +
             "\\\"\")'";
    case Completes::files:
      return " -r -F";
    case Completes::folders:
      return " -x -a '(__fish_complete_directories)'";
    case Completes::settings:
      return " -x -a '(__quillforth_cli_assignments)'";
    case Completes::settingValues:
      return {};
  }
  return {};
}

std::string Fish() {
  std::string text =
      "# SPDX-License-Identifier: MIT\n#\n# Completion of quillforth-cli for fish. Made by "
      "packaging/OptionDocuments.cpp.\n\nfunction __quillforth_cli_assignments\n    for key in";
  for (const BooleanSetting& setting : BooleanSettings())
    text.append(" ").append(setting.preference.key.data());
  text += "\n        printf '%s=yes\\n%s=no\\n' $key $key\n    end\n    printf '" + std::string(kNumberKey) +
          "=%s\\n' (seq 0 8)\n    printf '" + std::string(kFoldersKey) +
          "=%s\\n' (__fish_complete_directories (string replace -r '.*=' '' -- (commandline -ct)) | string "
          "replace -r '\\t.*' '')\nend\n\n";
  const std::string start = "complete -c quillforth-cli";
  text += start + " -f\n";
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty()) continue;
    text += start + " -n __fish_use_subcommand -a " + std::string(command.name) + FishText(command.summary);
  }
  text += start + " -n __fish_use_subcommand -a help -d 'explain a command'\n";
  for (const CommandDescription& command : Commands()) {
    const std::string condition = command.name.empty()
                                      ? " -n __fish_use_subcommand"
                                      : " -n '__fish_seen_subcommand_from " + std::string(command.name) + "'";
    for (const Option& option : command.options) {
      if (option.isArgument()) {
        if (option.completes == Completes::files) text += start + condition + " -F\n";
        if (option.completes == Completes::folders)
          text += start + condition + " -a '(__fish_complete_directories)'\n";
        if (option.completes == Completes::settings) text += start + condition + " -a '" + Keys() + "'\n";
        if (option.completes == Completes::settingValues) text += start + condition + " -a 'yes no'\n";
        continue;
      }
      text += start + condition;
      for (const std::string& name : Split(option.names, ',')) {
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      }
      if (!option.value.empty()) text += FishValues(option);
      text += FishText(option.text);
    }
  }
  return text;
}

// The program with windows has options, files and URLs, and no commands.
std::string DesktopBash() {
  std::string text =
      "# SPDX-License-Identifier: MIT\n#\n"
      "# Completion of quillforth for bash. Made by packaging/OptionDocuments.cpp.\n\n"
      "complete -f -W '";
  for (const Option& option : desktop::Options().options) {
    if (!option.isArgument()) text.append(text.ends_with('\'') ? "" : " ").append(option.longName());
  }
  return text + "' quillforth\n";
}

std::string DesktopZsh() {
  std::string text =
      "#compdef quillforth\n# SPDX-License-Identifier: MIT\n#\n"
      "# Completion of quillforth for zsh. Made by packaging/OptionDocuments.cpp.\n\n_arguments -s";
  for (const Option& option : desktop::Options().options) {
    text += " \\\n  " + (option.isArgument() ? "'*:file or URL:_files'" : ZshOption(option));
  }
  return text + '\n';
}

std::string DesktopFish() {
  std::string text =
      "# SPDX-License-Identifier: MIT\n#\n"
      "# Completion of quillforth for fish. Made by packaging/OptionDocuments.cpp.\n\n";
  for (const Option& option : desktop::Options().options) {
    if (option.isArgument()) continue;
    text += "complete -c quillforth";
    for (const std::string& name : Split(option.names, ',')) {
      text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    text += FishText(option.text);
  }
  return text;
}

std::string Read(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

int Make(const std::string& folder, bool isCheck) {
  const std::string manual = folder + "/man/quillforth-cli.1";
  const std::string desktopManual = folder + "/man/quillforth.1";
  const std::pair<std::string, std::string> files[] = {
      {manual, Manual(Read(manual))},
      {folder + "/completions/quillforth-cli.bash", Bash()},
      {folder + "/completions/_quillforth-cli", Zsh()},
      {folder + "/completions/quillforth-cli.fish", Fish()},
      {desktopManual, Manual(Read(desktopManual))},
      {folder + "/completions/quillforth.bash", DesktopBash()},
      {folder + "/completions/_quillforth", DesktopZsh()},
      {folder + "/completions/quillforth.fish", DesktopFish()}};
  int status = 0;
  for (const auto& [path, text] : files) {
    if (Read(path) == text) continue;
    if (isCheck) std::cerr << path << " is not what the table of options makes; run option_documents.\n";
    if (isCheck || !(std::ofstream(path) << text)) status = 1;
  }
  return status;
}

}  // namespace

}  // namespace quillforth

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.empty()) return 2;
  return quillforth::Make(arguments.back(), arguments.front() == "--check");
}
