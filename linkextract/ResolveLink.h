// SPDX-License-Identifier: MIT
//
// Turns a raw link and its page's base into an absolute URL.
//
// Links are bytes, not strings: pages lie about their encoding, and a link is compared and queued exactly as
// it stands. Every result fits a BoundedText; what does not fit is cut. Any thread.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "common/BoundedText.h"

namespace quillforth::linkextract {

/// Resolves any number of links against one base, which is split only once.
///
/// Never fails and never contacts the network: nonsense gives some text. The scheme written is always
/// "http:", also under an "https:" or "ftp:" base. A link that begins with "../" climbs once for every
/// "../" in it, wherever that stands. Both are intended.
class LinkResolver {
 public:
  explicit LinkResolver(const common::BoundedText& base);

  /// Writes the absolute URL of the first 255 bytes of `link`.
  void resolve(std::string_view link, common::BoundedText& absolute) const;

 private:
  void climb(std::string_view link, common::BoundedText& absolute) const;

  common::BoundedText site_;             // "http://host"
  common::BoundedText folder_;           // "http://host/directory/"
  common::BoundedText trail_;            // as `folder_`, but made of the segments
  std::vector<std::uint8_t> trailEnds_;  // where "http://host/" and each segment with its "/" end in `trail_`
};

/// The absolute URL of `link` on a page whose base is `base`, as `LinkResolver` has it.
[[nodiscard]] common::BoundedText ResolveLink(const common::BoundedText& base,
                                              const common::BoundedText& link);

}  // namespace quillforth::linkextract
