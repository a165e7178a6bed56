// SPDX-License-Identifier: MIT
//
// The command `links`: pages in, their links out, by the same steps that fill the queue. Main thread.
#pragma once

#include <QString>
#include <optional>

#include "app/LinkFilter.h"
#include "classify/ExtensionMap.h"
#include "platform/PageLoader.h"
#include "terminal/CommandLine.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

/// Whether a source of `links` is loaded from the web: it begins with "http://", "https://" or "ftp://".
[[nodiscard]] bool IsWebSource(const std::string& source);

/// Prints those links of one of the sources that pass the filter; what went wrong when the page could not be
/// read, or not each link judged. A source that is not on the web comes with a base or a URL.
[[nodiscard]] std::optional<QString> PrintLinks(const std::string& source, const LinksArguments& arguments,
                                                const classify::CExtensionMap& extensions,
                                                const app::LinkFilter& filter, platform::PageLoader& pages,
                                                Output& output);

}  // namespace quillforth::terminal
