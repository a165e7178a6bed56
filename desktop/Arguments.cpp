// SPDX-License-Identifier: MIT

#include "desktop/Arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "net/UTF8.h"

namespace quillforth::desktop {

namespace {

constexpr int kExitUsage = 2;

}  // namespace

std::variant<Arguments, Answer> ParseCommandLine(std::vector<std::string> arguments) {
  Arguments parsed;
  CLI::App parser("Downloads files from the web in batches, in a window.", "quillforth");
  parser.set_version_flag("--version", "quillforth " QUILLFORTH_VERSION);
  parser.add_flag("--local", parsed.isNetworkAssumedUp,
                  "Take the network as up without asking, for servers on this machine");
  parser.add_flag("--download-selection", parsed.isSelectionWanted,
                  "Download the URL that is selected on the screen, or else in the clipboard");
  parser.add_flag("--service", parsed.isService,
                  "Show no window before another program asks for something over D-Bus");
  parser.add_flag("--wait", parsed.isWaiting,
                  "Where a Quillforth runs already, end when that one does, and not at once");
  const auto addHelper = [&](const char* option, SelectionSource source) {
    parser.add_flag_callback(option, [&parsed, source] { parsed.printed = source; })->group("");
  };
  addHelper("--print-selection", SelectionSource::selectionOrClipboard);
  addHelper("--print-clipboard", SelectionSource::clipboard);
  addHelper("--print-pasteboard", SelectionSource::pasteboard);
  parser.add_option("FILE-OR-URL", parsed.filesAndURLs,
                    "Link files, opened for the URL in them; URLs, taken as if dropped on the window: pages "
                    "with all their links, files");
  parser.footer(
      "What is asked of a second start is done by the one that runs.\nIn a terminal: quillforth-cli --help");
  std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
  try {
    parser.parse(std::move(arguments));
  } catch (const CLI::ParseError& error) {
    std::ostringstream results;
    std::ostringstream errors;
    const bool isAnswer = parser.exit(error, results, errors) == 0;
    if (isAnswer) return Answer{results.str(), 0};
    const QString fault = platform::Printable(QString::fromUtf8(error.what()));
    return Answer{"quillforth: " + fault.toStdString() + "\nSee quillforth --help.\n", kExitUsage};
  }
  return parsed;
}

}  // namespace quillforth::desktop
