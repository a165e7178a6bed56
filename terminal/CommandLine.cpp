// SPDX-License-Identifier: MIT

#include "terminal/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "net/UTF8.h"
#include "terminal/HelpText.h"
#include "terminal/Options.h"

namespace quillforth::terminal {

namespace {

// The parser with the values that it fills; it keeps references to them.
struct Parser {
  Parser();
  CLI::App app;
  ParsedArguments arguments;
};

CLI::Option* Find(CLI::App& command, std::string_view longName) {
  return longName.empty() ? nullptr : command.get_option(std::string(longName));
}

void AddOptions(CLI::App& command, std::span<const Option> options, ParsedArguments& arguments) {
  for (const Option& option : options) {
    if (option.bind == nullptr) continue;
    option.bind(command, std::string(option.names), &arguments)->required(option.isRequired);
  }
  for (const Option& option : options) {
    CLI::Option* own = option.bind == nullptr ? nullptr : Find(command, option.longName());
    if (CLI::Option* other = Find(command, option.excludes)) own->excludes(other);
    if (CLI::Option* other = Find(command, option.needs)) own->needs(other);
  }
}

Parser::Parser() {
  app.require_subcommand(1);
  app.set_version_flag("-V,--version", VersionText());
  for (const CommandDescription& command : Commands()) {
    if (command.name.empty()) continue;
    AddOptions(*app.add_subcommand(std::string(command.name)), command.options, arguments);
  }
}

std::string CommandName(const CLI::App& app) {
  const std::vector<CLI::App*> parsed = app.get_subcommands();
  return parsed.empty() ? std::string() : parsed.front()->get_name();
}

bool IsCommand(const std::string& name) {
  return !name.empty() &&
         std::ranges::any_of(Commands(), [&](const auto& each) { return each.name == name; });
}

template <typename Arguments>
Command Take(ParsedArguments& parsed) {
  return std::move(std::get<Arguments>(parsed.commands));
}

Command TakeCommand(Parser& parser) {
  const std::string name = CommandName(parser.app);
  if (name == "get") {
    const auto& get = std::get<GetArguments>(parser.arguments.commands);
    if (get.urls.empty() && get.inputFiles.empty()) return UsageError("get", "URL is required");
    return Take<GetArguments>(parser.arguments);
  }
  if (name == "links") return Take<LinksArguments>(parser.arguments);
  if (name == "classify") {
    const auto& classify = std::get<ClassifyArguments>(parser.arguments.commands);
    if (classify.urls.empty() && classify.inputFiles.empty()) return UsageError(name, "URL is required");
    return Take<ClassifyArguments>(parser.arguments);
  }
  if (name == "comment") return Take<CommentArguments>(parser.arguments);
  if (name == "settings") return Take<SettingsArguments>(parser.arguments);
  if (name == "aggregate") return Take<AggregateArguments>(parser.arguments);
  return ExtensionsArguments();
}

Answer UnknownCommand(const std::string& name) {
  return UsageError("", "no command is called \"" + name + "\"");
}

// "help" and, perhaps, a command.
Command Help(const std::vector<std::string>& arguments) {
  const std::string name = arguments.size() > 1 ? arguments[1] : "";
  if (arguments.size() > 2) return UsageError("", "help takes the name of one command");
  if (!name.empty() && !IsCommand(name)) return UnknownCommand(name);
  return Answer{.results = HelpText(name), .errors = {}, .exitStatus = kExitSuccess};
}

}  // namespace

Answer UsageError(const std::string& command, const std::string& message) {
  const std::string program = command.empty() ? "quillforth-cli" : "quillforth-cli " + command;
  const std::string shown = platform::Printable(QString::fromStdString(message)).toStdString();
  return {.results = {},
          .errors = program + ": " + shown + "\nTry '" + program + " --help'.\n",
          .exitStatus = kExitUsage};
}

Command ParseCommandLine(const std::vector<std::string>& arguments) {
  if (!arguments.empty() && arguments.front() == "help") return Help(arguments);
  Parser parser;
  const bool isKnown = arguments.empty() || IsCommand(arguments.front()) ||
                       parser.app.get_option_no_throw(arguments.front()) != nullptr;
  if (!isKnown) return UnknownCommand(arguments.front());
  try {
    parser.app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    return TakeCommand(parser);
  } catch (const CLI::CallForHelp&) {
    return Answer{.results = HelpText(CommandName(parser.app)), .errors = {}, .exitStatus = kExitSuccess};
  } catch (const CLI::CallForVersion&) {
    return Answer{.results = VersionText() + "\n", .errors = {}, .exitStatus = kExitSuccess};
  } catch (const CLI::Error& error) {
    return UsageError(CommandName(parser.app), error.what());
  }
}

}  // namespace quillforth::terminal
