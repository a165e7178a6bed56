// SPDX-License-Identifier: MIT
//
// The URLs that need not be fetched: their files are there already, or a list says that they were fetched.
//
// The list is a file of the user's, "the archive": a URL a line, without user name and password. Several runs
// may append to it at a time. A last line without its newline was cut off: it lists nothing, and is marked so
// before the next is appended. Main thread.
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <chrono>
#include <optional>
#include <string>

namespace quillforth::terminal {

/// What two texts have in common that name the same file: no user, no password, no fragment.
[[nodiscard]] QString SameFileKey(const QString& url);

class FinishedURLs {
 public:
  FinishedURLs() = default;
  ~FinishedURLs();
  FinishedURLs(const FinishedURLs&) = delete;
  FinishedURLs& operator=(const FinishedURLs&) = delete;

  /// Reads the archive. Unless it `isOnlyRead`, it is made, for its owner only, when it does not exist. What
  /// went wrong, if something did.
  [[nodiscard]] std::optional<QString> openArchive(const std::string& path, bool isOnlyRead);
  /// A file that is there came from `url`.
  void addFile(const QString& url, const QString& path) { files_.insert(SameFileKey(url), path); }
  /// Where the file of `url` is, or the archive that lists it; nothing when it is to be fetched.
  [[nodiscard]] std::optional<QString> whereIs(const QString& url) const;
  /// Appends to the archive, if there is one. False when that fails.
  [[nodiscard]] bool archive(const QString& url);

 private:
  bool append(const QByteArray& line);

  QHash<QString, QString> files_;
  QSet<QString> archived_;
  QString archiveName_;
  int archive_ = -1;
  std::chrono::steady_clock::time_point lastSync_{};
};

}  // namespace quillforth::terminal
