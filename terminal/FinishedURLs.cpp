// SPDX-License-Identifier: MIT

#include "terminal/FinishedURLs.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "net/URL.h"
#include "terminal/InputFile.h"

namespace quillforth::terminal {

namespace {

// So often at most the disk is made to take the archive.
constexpr std::chrono::seconds kSyncInterval{1};
// Ends a line that was cut off. What it begins with is no URL then that is ever asked for.
constexpr char kCutOff[] = " (cut off)\n";

}  // namespace

QString SameFileKey(const QString& url) {
  return platform::WithoutCredentials(url).section(u'#', 0, 0);
}

FinishedURLs::~FinishedURLs() {
  if (archive_ < 0) return;
  ::fdatasync(archive_);
  ::close(archive_);
}

std::optional<QString> FinishedURLs::openArchive(const std::string& path, bool isOnlyRead) {
  archiveName_ = QString::fromStdString(path);
  const auto fail = [this](const char* reason) {
    return archiveName_ + QStringLiteral(": ") + QString::fromLocal8Bit(reason);
  };
  const int mode = isOnlyRead ? O_RDONLY : O_RDWR | O_APPEND | O_CREAT;
  archive_ = ::open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK, 0600);
  if (archive_ < 0 && isOnlyRead && errno == ENOENT) return std::nullopt;
  if (archive_ < 0) return fail(std::strerror(errno));
  struct stat status {};
  if (::fstat(archive_, &status) != 0 || !S_ISREG(status.st_mode)) return fail("not a regular file");
  ::flock(archive_, LOCK_SH);  // nobody is in the middle of a line
  const InputFile list = ReadInputFile(path, kMaxListLength, QStringLiteral("too long for a list of URLs"));
  ::flock(archive_, LOCK_UN);
  if (!list.error.isNull()) return list.error;
  const QByteArray wholeLines = list.bytes.first(list.bytes.lastIndexOf('\n') + 1);
  for (const GivenURL& url : URLsOfList(wholeLines)) archived_.insert(SameFileKey(url.text));
  return std::nullopt;
}

std::optional<QString> FinishedURLs::whereIs(const QString& url) const {
  const QString key = SameFileKey(url);
  if (const auto file = files_.constFind(key); file != files_.constEnd()) return *file;
  return archived_.contains(key) ? std::optional(archiveName_) : std::nullopt;
}

bool FinishedURLs::archive(const QString& url) {
  if (archive_ < 0) return true;
  const QString key = SameFileKey(url);
  archived_.insert(key);
  if (::flock(archive_, LOCK_EX) != 0) return false;
  const bool isWritten = append(key.toUtf8() + '\n');
  ::flock(archive_, LOCK_UN);
  const auto now = std::chrono::steady_clock::now();
  const bool isDue = now - lastSync_ >= kSyncInterval;
  if (isDue) lastSync_ = now;
  return isWritten && (!isDue || ::fdatasync(archive_) == 0);
}

// Under the lock. Leaves all or nothing of the line, also on a full disk.
bool FinishedURLs::append(const QByteArray& line) {
  char last = '\n';
  const off_t length = ::lseek(archive_, 0, SEEK_END);
  if (length > 0 && ::pread(archive_, &last, 1, length - 1) != 1) return false;
  const QByteArray bytes = last == '\n' ? line : kCutOff + line;
  if (::write(archive_, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size())
    return true;
  // Without it, the next one closes the line that is cut off.
  [[maybe_unused]] const int isLeft = ::ftruncate(archive_, length);
  return false;
}

}  // namespace quillforth::terminal
