// SPDX-License-Identifier: MIT
//
// What was asked for on the command line, as plain values.
//
// Only the grammar is checked here: which options go with which command (Options.h), and how many arguments.
// Texts are the bytes as they came, and unchecked. Pure; no service is needed, so that `--version` and
// `--help` answer at once.
#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <variant>
#include <vector>

namespace quillforth::terminal {

inline constexpr int kExitSuccess = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

/// Which links of pages are wanted.
struct FilterArguments {
  std::vector<std::string> accept;  ///< lists with commas
  std::vector<std::string> reject;
  std::vector<std::string> match;
  std::vector<std::string> noMatch;
  bool sameHost = false;
};

struct GetArguments : FilterArguments {
  std::vector<std::string> urls;
  std::vector<std::string> inputFiles;
  std::optional<std::string> rest;
  bool unique = false;
  bool dryRun = false;
  bool skipExisting = false;
  std::optional<std::string> archive;
  std::optional<std::string> cookies;
  std::vector<std::string> headers;
  std::optional<std::string> referer;
  std::optional<std::string> userAgent;
  std::optional<std::string> retry;
  std::optional<std::string> wait;
  std::optional<std::string> limitRate;
  bool noComment = false;
  bool remoteTime = false;
  bool quiet = false;
  bool verbose = false;
  std::optional<std::string> to;
  bool page = false;  ///< not both
  bool file = false;
  std::optional<std::string> ahead;
  std::vector<std::string> settings;  ///< "KEY=VALUE" each
  bool json = false;
  bool local = false;
  bool noCookies = false;
};

struct LinksArguments : FilterArguments {
  std::vector<std::string> sources;  ///< files, "-" or URLs
  std::optional<std::string> base;
  std::optional<std::string> url;
  bool null = false;
  bool withFilename = false;  ///< with `null` only
  bool json = false;
};

struct ClassifyArguments {
  std::vector<std::string> urls;
  std::vector<std::string> inputFiles;
  bool json = false;
};

struct ExtensionsArguments {};

struct SettingsArguments {
  std::optional<std::string> key;
  std::optional<std::string> value;
  bool unset = false;
  bool json = false;
};

struct CommentArguments {
  std::vector<std::string> files;
  std::optional<std::string> text;  ///< the new comment; empty removes it
  std::optional<std::string> find;  ///< part of an origin; `files` are folders then
};

struct AggregateArguments {
  std::string folder;
  bool yes = false;
  bool dryRun = false;
};

/// What the options of all commands fill; one of these is used.
struct ParsedArguments {
  std::tuple<GetArguments, LinksArguments, ClassifyArguments, CommentArguments, ExtensionsArguments,
             SettingsArguments, AggregateArguments>
      commands;
};

/// Nothing to do but to say something.
struct Answer {
  std::string results;  ///< for standard output
  std::string errors;   ///< for standard error
  int exitStatus = kExitSuccess;
};

using Command = std::variant<Answer, GetArguments, LinksArguments, ClassifyArguments, CommentArguments,
                             ExtensionsArguments, SettingsArguments, AggregateArguments>;

/// `arguments`: without the program's name.
[[nodiscard]] Command ParseCommandLine(const std::vector<std::string>& arguments);

/// The answer to a mistake in the use of `command` ("get", …), or of the program when it is empty.
[[nodiscard]] Answer UsageError(const std::string& command, const std::string& message);

}  // namespace quillforth::terminal
