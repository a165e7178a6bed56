// SPDX-License-Identifier: MIT
//
// Files that are named on the command line, read whole, and the lists of URLs in them. Main thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "net/URL.h"

namespace quillforth::terminal {

struct InputFile {
  QByteArray bytes;
  QString error;  ///< for people, with the file's name; null when it was read
};

/// "-" is standard input. `tooLong` is what is said of a file of more than `limit` bytes.
[[nodiscard]] InputFile ReadInputFile(const std::string& path, qsizetype limit, const QString& tooLong);

/// A URL as it was given, and what it is to be taken for.
struct GivenURL {
  enum class Kind { judged, page, file };
  QString text;
  Kind kind = Kind::judged;
  bool isCut = false;  ///< a line that is too long: only what it begins with, to be shown
  bool operator==(const GivenURL&) const = default;
};

/// A text from the command line or a list. Bytes that are no UTF-8 become the %-escapes that stand for them
/// in a URL.
[[nodiscard]] QString GivenText(const QByteArray& bytes);

/// The URL that is meant, if there is one (`platform::URLOfTypedText`).
[[nodiscard]] std::optional<platform::URL> MeantURL(const GivenURL& url);

/// The longest list of URLs, in bytes.
inline constexpr qsizetype kMaxListLength = qsizetype{256} * 1024 * 1024;
/// The longest line of such a list, in bytes, without its end.
inline constexpr qsizetype kMaxLineLength = 65'536;

/// The URLs of a list: one a line, in UTF-8, with LF or CR LF. Empty lines and those that begin with "#" are
/// passed over, blanks around a URL do not count. A line that begins with "page" or "file" and a tab says
/// what its URL is; what comes after another tab is passed over, so that the output of `classify` is a list.
[[nodiscard]] std::vector<GivenURL> URLsOfList(const QByteArray& list);
/// Appends the line of a list that stands for `url`. False when no line does, because `URLsOfList` would make
/// something else of it; then `list` stays as it is.
[[nodiscard]] bool AppendToList(QByteArray& list, const GivenURL& url);

}  // namespace quillforth::terminal
