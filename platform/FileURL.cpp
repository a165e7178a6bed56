// SPDX-License-Identifier: MIT

#include "platform/FileURL.h"

#include <algorithm>

namespace quillforth::platform {

namespace {

constexpr QByteArrayView kScheme("file:");

bool StartsWithNoCase(QByteArrayView text, QByteArrayView prefix) {
  return text.size() >= prefix.size() && text.first(prefix.size()).compare(prefix, Qt::CaseInsensitive) == 0;
}

// The path after an authority that means this machine; nothing after another one.
std::optional<QByteArrayView> PathOf(QByteArrayView afterScheme) {
  if (!afterScheme.startsWith("//")) return afterScheme;
  const QByteArrayView authorityAndPath = afterScheme.sliced(2);
  const qsizetype slash = authorityAndPath.indexOf('/');
  if (slash < 0) return std::nullopt;
  const QByteArrayView authority = authorityAndPath.first(slash);
  if (!authority.isEmpty() && authority.compare("localhost", Qt::CaseInsensitive) != 0) return std::nullopt;
  return authorityAndPath.sliced(slash);
}

}  // namespace

QByteArray FileURL(const FileReference& file) {
  return "file://" + QByteArray::fromStdString(file.path()).toPercentEncoding("/");
}

std::optional<FileReference> FileAtURL(QByteArrayView url) {
  if (!StartsWithNoCase(url, kScheme)) return std::nullopt;
  const std::optional<QByteArrayView> escaped = PathOf(url.sliced(kScheme.size()));
  if (!escaped || escaped->size() > 3 * kMaxPathLength) return std::nullopt;
  const auto end =
      std::find_if(escaped->begin(), escaped->end(), [](char c) { return c == '?' || c == '#'; });
  std::string path =
      QByteArray::fromPercentEncoding(escaped->first(end - escaped->begin()).toByteArray()).toStdString();
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  if (static_cast<qsizetype>(path.size()) > kMaxPathLength) return std::nullopt;
  return FileReference(std::move(path));
}

}  // namespace quillforth::platform
