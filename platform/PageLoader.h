// SPDX-License-Identifier: MIT
//
// Loads a page whole, while the caller waits.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "platform/URL.h"

namespace quillforth::platform {

struct PageLoad {
  /// The body with its content codings undone, at most `PageLoader::kMaxPageLength` bytes; or nothing.
  std::optional<QByteArray> data;
  /// Why there is nothing: for people, ends in "."; null when the program was interrupted.
  QString failure;
};

class PageLoader {
 public:
  virtual ~PageLoader() = default;
  /// Without any cache; fails when the body is longer. Follows redirects. Blocks until the end; any thread.
  [[nodiscard]] virtual PageLoad load(const URL& url) = 0;
  [[nodiscard]] std::optional<QByteArray> resourceData(const URL& url) { return load(url).data; }

  /// As long as it is true, every load fails soon, also the one that runs. Any thread.
  virtual void setGivenUp(bool /*isGivenUp*/) {}

  /// Room for some 300,000 ordinary links; a hostile page of this length still makes a link table that a
  /// machine can hold.
  static constexpr qsizetype kMaxPageLength = qsizetype{32} * 1024 * 1024;
};

}  // namespace quillforth::platform
