// SPDX-License-Identifier: MIT
//
// The strings of a drag or of the clipboard, as file managers and browsers write them.
//
// text/plain is the string. The URL is the first of text/uri-list (RFC 2483), or else the first line of
// text/x-moz-url, which is UTF-16 without a byte-order mark, a URL and a title by turns. The strings are
// copied: what is dragged is gone when the command that takes it runs.
#pragma once

#include <QMimeData>
#include <QString>
#include <QStringList>
#include <memory>

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

// What "Copy" puts into the clipboard, and what "Paste" finds there.
//
// Copied entries of the queue are offered as a text, a line each, and in a type of the program's own, so that
// they come back exactly as they stood. Of everything else Paste takes one URL a line, without the blanks
// around it. On its way the clipboard is one text, because a second process may have to read it: a line that
// says what it is, and the rest. Pure values; a QGuiApplication is not needed.

/// The entries, in both types.
[[nodiscard]] std::unique_ptr<QMimeData> CopiedEntries(const QStringList& entries);
/// What `data` offers, as one text: entries, else a list of URLs, else a text. Empty when it is none of
/// these, or too long.
[[nodiscard]] QString PasteboardText(const QMimeData& data);

/// Whether a text is taken for a URL: one of http, https or ftp, with a host, and not too long to be dropped.
[[nodiscard]] bool CanBeTaken(const QString& text);

struct PastedURLs {
  static constexpr qsizetype kMaxLength = 16 << 20;  ///< of the text, in UTF-16 units

  QStringList entries;  ///< to be queued as they stand
  QStringList urls;     ///< that can be taken
  QStringList refused;  ///< the other lines

  /// `pasteboardText`: as above. All are empty when there is nothing in it.
  [[nodiscard]] static PastedURLs in(const QString& pasteboardText);
};

}  // namespace quillforth::desktop
