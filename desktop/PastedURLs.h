// SPDX-License-Identifier: MIT
//
// What "Copy" puts into the clipboard, and what "Paste" finds there.
//
// Copied entries of the queue are offered as a text, a line each, and in a type of the program's own, so that
// they come back exactly as they stood. Of everything else Paste takes one URL a line, without the blanks
// around it. On its way the clipboard is one text, because a second process may have to read it: a line that
// says what it is, and the rest. Pure values; a QGuiApplication is not needed.
#pragma once

#include <QMimeData>
#include <QString>
#include <QStringList>
#include <memory>

namespace quillforth::desktop {

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
