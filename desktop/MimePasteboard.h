// SPDX-License-Identifier: MIT
//
// The strings of a drag or of the clipboard, as file managers and browsers write them.
//
// text/plain is the string. The URL is the first of text/uri-list (RFC 2483), or else the first line of
// text/x-moz-url, which is UTF-16 without a byte-order mark, a URL and a title by turns. The strings are
// copied: what is dragged is gone when the command that takes it runs.
#pragma once

#include <QMimeData>

#include "app/Pasteboard.h"

namespace quillforth::desktop {

/// All that `data` offers, a URL or a text a line: the list of URLs where there is one, which file managers
/// mean, else the text, else the browser's URL. Null when there is none.
[[nodiscard]] QString LinesOf(const QMimeData& data);

class MimePasteboard final : public app::Pasteboard {
 public:
  explicit MimePasteboard(const QMimeData& data);
  /// As if `string` was dragged.
  explicit MimePasteboard(const QString& string) : string_(string) {}

  [[nodiscard]] QString stringForType(const char* type) const override;

 private:
  QString string_;
  QString url_;
};

}  // namespace quillforth::desktop
