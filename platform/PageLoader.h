// SPDX-License-Identifier: MIT
//
// Loads a page whole, while the caller waits.
#pragma once

#include <QByteArray>
#include <optional>

#include "platform/URL.h"

namespace quillforth::platform {

class PageLoader {
 public:
  virtual ~PageLoader() = default;
  /// The body as sent, at most `kMaxPageLength` bytes, without any cache; nothing when the load fails in any
  /// way or the body is longer. Follows redirects. Blocks until the end; any thread.
  [[nodiscard]] virtual std::optional<QByteArray> resourceData(const URL& url) = 0;

  /// As long as it is true, every load fails soon, also the one that runs. Any thread.
  virtual void setGivenUp(bool /*isGivenUp*/) {}

  /// Room for some 300,000 ordinary links; a hostile page of this length still makes a link table that a
  /// machine can hold.
  static constexpr qsizetype kMaxPageLength = qsizetype{32} * 1024 * 1024;
};

}  // namespace quillforth::platform
