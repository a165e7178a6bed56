// SPDX-License-Identifier: MIT
//
// Pages for the benchmarks: ordinary ones, and ones that a stranger would send to make the scanner slow.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "classify/ExtensionMap.h"

namespace quillforth::bench {

/// Markup, scripts, prose and links of all forms, as a site with a menu, articles, tables and a gallery has
/// them; about a link in 200 bytes, most of them new. The same text for the same size.
[[nodiscard]] std::string OrdinaryPage(std::size_t size);

struct HostilePage {
  const char* name;
  std::string (*make)(std::size_t size);
};
[[nodiscard]] const std::vector<HostilePage>& HostilePages();

/// `count` links, all different, each on a line of its own, in ascending order.
[[nodiscard]] std::string SortedLinks(std::size_t count);

/// About a thousand extensions.
[[nodiscard]] const classify::CExtensionMap& Extensions();

}  // namespace quillforth::bench
