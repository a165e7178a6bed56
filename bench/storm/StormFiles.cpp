// SPDX-License-Identifier: MIT

#include "bench/storm/StormFiles.h"

#include <sys/inotify.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <iterator>
#include <utility>

#include "bench/storm/StormItem.h"

namespace quillforth::bench {

namespace {

namespace fs = std::filesystem;

QString TextOf(const fs::path& path) {
  return QString::fromStdString(path.string());
}

}  // namespace

StormFiles::StormFiles(std::vector<fs::path> folders, std::uint64_t seed)
    : folders_(std::move(folders)), seed_(seed), notify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  for (const fs::path& folder : folders_) {
    fs::create_directories(folder);
    ::inotify_add_watch(notify_.get(), folder.c_str(), IN_DELETE | IN_MOVED_TO);
  }
}

void StormFiles::poll(Ledger& ledger) {
  alignas(inotify_event) std::array<char, 65536> bytes{};
  for (;;) {
    const ssize_t length = ::read(notify_.get(), bytes.data(), bytes.size());
    if (length <= 0) return;
    for (ssize_t at = 0; at < length;) {
      const auto* event = reinterpret_cast<const inotify_event*>(bytes.data() + at);
      at += static_cast<ssize_t>(sizeof *event + event->len);
      const std::string name = event->len == 0 ? "." : event->name;
      if ((event->mask & IN_Q_OVERFLOW) != 0)
        ledger.fault(QStringLiteral("the kernel tells too much at once"));
      if (name.starts_with('.') || (event->mask & IN_ISDIR) != 0) continue;
      if ((event->mask & IN_MOVED_TO) != 0) ++publishedCount_;
      if ((event->mask & IN_DELETE) != 0) {
        ledger.fault(QStringLiteral("a file that had its final name was removed"),
                     QString::fromStdString(name));
      }
    }
  }
}

StormFiles::Found StormFiles::read(const fs::path& file) const {
  std::ifstream stream(file, std::ios::binary);
  const std::string body{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  const std::optional<std::string> path = PathInBody(body);
  if (!path || body != BodyOf(ItemAt(*path, seed_), seed_)) return {};
  std::array<char, 1024> comment{};
  const ssize_t length = ::getxattr(file.c_str(), "user.xdg.comment", comment.data(), comment.size());
  return {*path, length > 0 ? std::string(comment.data(), static_cast<std::size_t>(length)) : std::string()};
}

void StormFiles::checkFile(Ledger& ledger, const fs::path& file, const std::string& origin) {
  if (file.filename().string().starts_with('.')) {
    return ledger.fault(QStringLiteral("a hidden file was left"), TextOf(file));
  }
  const Found found = read(file);
  if (found.path.empty()) {
    return ledger.fault(QStringLiteral("a file is not what the server has"), TextOf(file));
  }
  whole_[found.path].push_back(file);
  const auto entry = ledger.entries().constFind(QString::fromStdString(origin + found.path));
  if (entry == ledger.entries().cend()) return;  // of the run before
  ledger.note(entry.key(), QStringLiteral("stands as ") + TextOf(file));
  if (entry->fate != QStringLiteral("done"))
    ledger.count(QStringLiteral("info: whole file of a URL that was ") + entry->fate);
  if (entry->fate.startsWith(QStringLiteral("failed"))) {
    ledger.fault(QStringLiteral("a download has failed, and its file stands"), entry.key());
  }
  checkComment(ledger, found, origin);
}

void StormFiles::checkComment(Ledger& ledger, const Found& found, const std::string& origin) const {
  const QString url = QString::fromStdString(origin + found.path);
  const Ledger::Entry& entry = ledger.entries()[url];
  if (found.comment == url.toStdString()) return;
  // A sort takes what stands in the folder, also what is to get its comment with the end of the sort.
  if (found.comment.empty() && entry.isSortedAway) {
    return ledger.count(QStringLiteral("info: sorted before its end was told, and without a comment"));
  }
  if (!found.comment.empty()) {
    ledger.fault(QStringLiteral("a file has another one's comment"), url);
  } else if (entry.fate == QStringLiteral("done")) {
    ledger.fault(QStringLiteral("a file that is done has no comment"), url);
  }
}

void StormFiles::check(Ledger& ledger, const std::string& origin) {
  poll(ledger);
  for (const fs::path& folder : folders_) {
    for (const auto& item : fs::recursive_directory_iterator(folder)) {
      if (item.is_regular_file()) checkFile(ledger, item.path(), origin);
    }
  }
  const QString start = QString::fromStdString(origin);
  for (const QString& url : ledger.entries().keys()) {
    if (url.startsWith(start)) checkEntry(ledger, url, ItemAt(url.sliced(start.size()).toStdString(), seed_));
  }
}

void StormFiles::checkEntry(Ledger& ledger, const QString& url, const StormItem& item) {
  const QString& fate = ledger.entries()[url].fate;
  if ((fate == QStringLiteral("failed") || fate == QStringLiteral("failed: page")) && item.isForAll()) {
    ledger.fault(QStringLiteral("failed, though the server gives it to everybody"), url);
  }
  if (fate == QStringLiteral("done: page read") && !item.isForAll()) {
    ledger.fault(QStringLiteral("a page was read that the server does not give"), url);
  }
  // Of those that share a name, a later one may have taken the place.
  if (fate != QStringLiteral("done") || item.fate == Fate::renamed) return;
  const std::size_t count = whole_[item.path].size();
  if (count == 0) ledger.fault(QStringLiteral("done, and there is no file"), url);
  if (count > 1) ledger.fault(QStringLiteral("done, and its file stands twice"), url);
}

void StormFiles::checkEarlier(Ledger& ledger, const std::string& origin, const fs::path& notes) {
  std::ifstream earlier(notes);
  int count = 0;
  for (std::string path; std::getline(earlier, path); ++count) {
    if (whole_.contains(path)) continue;
    ledger.fault(QStringLiteral("a file of the run before is gone"), QString::fromStdString(path));
  }
  earlier.close();
  ledger.count(QStringLiteral("info: files of the run before, looked for"), count);
  std::ofstream next(notes);
  for (const auto& [path, files] : whole_) {
    if (!ledger.entries().contains(QString::fromStdString(origin + path))) {
      for (const fs::path& file : files) fs::remove(file);
    } else if (!files.empty() && ItemAt(path, seed_).fate != Fate::renamed) {
      next << path << '\n';
    }
  }
}

}  // namespace quillforth::bench
