// SPDX-License-Identifier: MIT
//
// Files that are named on the command line, read whole, and the lists of URLs in them. Main thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <vector>

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
};

/// The longest list of URLs, in bytes.
inline constexpr qsizetype kMaxListLength = qsizetype{256} * 1024 * 1024;

/// The URLs of a list: one a line, in UTF-8, with LF or CR LF. Empty lines and those that begin with "#" are
/// passed over, blanks around a URL do not count. A line that begins with "page" or "file" and a tab says
/// what its URL is; what comes after another tab is passed over, so that the output of `classify` is a list.
[[nodiscard]] std::vector<GivenURL> URLsOfList(const QByteArray& list);
/// The line of a list that stands for `url`, with its end.
[[nodiscard]] QByteArray LineOfList(const GivenURL& url);

}  // namespace quillforth::terminal
