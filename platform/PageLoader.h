// SPDX-License-Identifier: MIT
//
// Loads a page whole, while the caller waits.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "net/URL.h"
#include "platform/TransferFailure.h"

namespace quillforth::platform {

struct PageLoad {
  /// The body with its content codings undone, at most `PageLoader::kMaxPageLength` bytes; or nothing.
  std::optional<QByteArray> data;
  /// Why there is nothing: for people, ends in "."; null when the program was interrupted.
  QString failure;
  /// Where the page came from in the end, after redirects, without credentials and fragment; null without a
  /// page.
  QString url{};
  TransferFailure cause{};  ///< why there is nothing
};

class PageLoader {
 public:
  virtual ~PageLoader() = default;
  /// Without any cache; fails when the body is longer. Follows redirects. Blocks until the end; any thread.
  [[nodiscard]] virtual PageLoad resourceData(const URL& url) = 0;

  /// As long as it is true, every load fails soon, including the one that runs. Any thread.
  virtual void setGivenUp(bool /*isGivenUp*/) {}

  /// Room for some 300,000 ordinary links; a hostile page of this length still makes a link table that a
  /// machine can hold.
  static constexpr qsizetype kMaxPageLength = qsizetype{32} * 1024 * 1024;
};

}  // namespace quillforth::platform
