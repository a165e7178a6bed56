// SPDX-License-Identifier: MIT

#include "terminal/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <utility>

#include "net/UTF8.h"
#include "terminal/HelpText.h"

namespace quillforth::terminal {

namespace {

// The parser with the values that it fills; it keeps references to them.
struct Parser {
  Parser();
  // Whether `word` may be the first one.
  [[nodiscard]] bool knows(const std::string& word) {
    const auto isNamed = [&word](const CLI::App* command) { return command->get_name() == word; };
    return !app.get_subcommands(isNamed).empty() || app.get_option_no_throw(word) != nullptr;
  }

  CLI::App app;
  GetArguments getArguments;
  bool page = false;
  bool file = false;
  LinksArguments linksArguments;
  ClassifyArguments classifyArguments;
  CommentArguments commentArguments;
  SettingsArguments settingsArguments;
  AggregateArguments aggregateArguments;
  CLI::App* get;
  CLI::App* links;
  CLI::App* classify;
  CLI::App* comment;
  CLI::App* extensions;
  CLI::App* settings;
  CLI::App* aggregate;
};

Parser::Parser()
    : get(app.add_subcommand("get")),
      links(app.add_subcommand("links")),
      classify(app.add_subcommand("classify")),
      comment(app.add_subcommand("comment")),
      extensions(app.add_subcommand("extensions")),
      settings(app.add_subcommand("settings")),
      aggregate(app.add_subcommand("aggregate")) {
  app.require_subcommand(1);
  app.set_version_flag("--version", VersionText());

  get->add_option("--to", getArguments.to);
  CLI::Option* pageFlag = get->add_flag("--page", page);
  get->add_flag("--file", file)->excludes(pageFlag);
  get->add_option("--ahead", getArguments.ahead);
  get->add_option("--set", getArguments.settings)->allow_extra_args(false);
  get->add_flag("--json", getArguments.json);
  get->add_flag("--local", getArguments.local);
  get->add_flag("!--no-cookies", getArguments.keepsCookies);
  get->add_option("URL", getArguments.urls)->required();

  CLI::Option* baseOption = links->add_option("--base", linksArguments.base);
  links->add_option("--url", linksArguments.url)->excludes(baseOption);
  CLI::Option* nullFlag = links->add_flag("--null", linksArguments.null);
  links->add_flag("--with-filename", linksArguments.withFilename)->needs(nullFlag);
  links->add_option("FILE", linksArguments.sources)->required();

  classify->add_option("URL", classifyArguments.urls)->required();

  comment->add_option("--set", commentArguments.text)->allow_extra_args(false);
  comment->add_option("FILE", commentArguments.files)->required();

  CLI::Option* valueOption = nullptr;
  CLI::Option* keyOption = settings->add_option("KEY", settingsArguments.key);
  valueOption = settings->add_option("VALUE", settingsArguments.value)->needs(keyOption);
  settings->add_flag("--unset", settingsArguments.unset)->needs(keyOption)->excludes(valueOption);

  aggregate->add_flag("--yes", aggregateArguments.yes);
  aggregate->add_flag("--dry-run", aggregateArguments.dryRun);
  aggregate->add_option("DIR", aggregateArguments.folder)->required();
}

std::string CommandName(const CLI::App& app) {
  const std::vector<CLI::App*> parsed = app.get_subcommands();
  return parsed.empty() ? std::string() : parsed.front()->get_name();
}

Command TakeCommand(Parser& parser) {
  if (parser.get->parsed()) {
    if (parser.page) parser.getArguments.kind = GetArguments::Kind::page;
    if (parser.file) parser.getArguments.kind = GetArguments::Kind::file;
    return std::move(parser.getArguments);
  }
  if (parser.links->parsed()) return std::move(parser.linksArguments);
  if (parser.classify->parsed()) return std::move(parser.classifyArguments);
  if (parser.comment->parsed()) return std::move(parser.commentArguments);
  if (parser.settings->parsed()) return std::move(parser.settingsArguments);
  if (parser.aggregate->parsed()) return std::move(parser.aggregateArguments);
  return ExtensionsArguments();
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
  Parser parser;
  if (!arguments.empty() && !parser.knows(arguments.front())) {
    return UsageError("", "no command is called \"" + arguments.front() + "\"");
  }
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
