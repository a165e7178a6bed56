// SPDX-License-Identifier: MIT
//
// What the passes over a page ask of whoever wants its links.
#pragma once

#include <string_view>

namespace quillforth::linkextract {

class LinkSink {
 public:
  virtual ~LinkSink() = default;
  /// A link as it stands in the page, cut at 255 bytes: a part of the text that the pass was given.
  virtual void add(std::string_view link) = 0;
  /// A link out of parts of the page that cuts have joined, cut at 255 bytes; valid during the call only.
  virtual void addJoined(std::string_view link) = 0;
};

}  // namespace quillforth::linkextract
