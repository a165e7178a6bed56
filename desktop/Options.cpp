// SPDX-License-Identifier: MIT

#include "desktop/Options.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <type_traits>

#include "desktop/Arguments.h"

namespace quillforth::desktop {

namespace {

using common::Completes;
using common::Option;

template <auto member>
CLI::Option* Fill(CLI::App& command, const std::string& names, void* parsed) {
  auto& place = static_cast<Arguments*>(parsed)->*member;
  if constexpr (std::is_same_v<std::remove_reference_t<decltype(place)>, bool>) {
    return command.add_flag(names, place);
  } else {
    return command.add_option(names, place);
  }
}

constexpr std::array kOptions{
    Option{"-h,--help", "", nullptr, "Print this help message and exit"},
    Option{"--version", "", nullptr, "Display program version information and exit"},
    Option{.names = "--local",
           .value = "",
           .bind = Fill<&Arguments::isNetworkAssumedUp>,
           .text = "Take the network as up without asking, for servers on this machine",
           .example = "--local http://localhost:8000/"},
    Option{.names = "--download-selection",
           .value = "",
           .bind = Fill<&Arguments::isSelectionWanted>,
           .text = "Download the URL that is selected on the screen, or else in the clipboard",
           .example = "--download-selection"},
    Option{.names = "--service",
           .value = "",
           .bind = Fill<&Arguments::isService>,
           .text = "Show no window before another program asks for something over D-Bus",
           .example = "--service"},
    Option{.names = "--wait",
           .value = "",
           .bind = Fill<&Arguments::isWaiting>,
           .text = "Where a Quillforth runs already, end when that one does, and not at once",
           .example = "--wait http://www.example.org/gallery/"},
    Option{
        .names = "FILE-OR-URL",
        .value = "",
        .bind = Fill<&Arguments::filesAndURLs>,
        .text =
            "Link files, opened for the URL in them; URLs, taken as if dropped on the window: pages with all "
            "their links, files",
        .completes = Completes::files},
};

constexpr common::CommandDescription kProgram{"", "download files from the web in batches, in a window", "",
                                              kOptions};

}  // namespace

const common::CommandDescription& Options() {
  return kProgram;
}

}  // namespace quillforth::desktop
