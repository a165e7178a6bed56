// SPDX-License-Identifier: MIT
//
// The scanner once more, as plainly as it can be said: every match is cut out of a copy of the page, and
// every search starts over. Slow on purpose; what the real one is compared with.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "classify/ExtensionMap.h"

namespace quillforth::tests {

/// Raw links and their absolute URLs in table order.
using Links = std::vector<std::pair<std::string, std::string>>;

[[nodiscard]] std::string ReferenceResolve(const std::string& base, const std::string& link);
[[nodiscard]] Links ReferenceScan(const std::string& page, const std::string& base,
                                  const classify::CExtensionMap& extensions);

/// The real scanner's links in the same form.
[[nodiscard]] Links FastScan(const std::string& page, const std::string& base,
                             const classify::CExtensionMap& extensions);

/// Some extensions as a host would offer them, with dots, digits and capitals in them.
[[nodiscard]] classify::CExtensionMap SomeExtensions();

}  // namespace quillforth::tests
