// SPDX-License-Identifier: MIT

#include "net/FileURL.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "common/BoundedText.h"
#include "net/UTF8.h"

namespace quillforth::platform {

namespace {

constexpr std::string_view kScheme("file:");

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

std::optional<FileReference> FileAtBytes(std::string path) {
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return FileReference(std::move(path));
}

}  // namespace

std::optional<FileReference> FileAtPath(const QString& path) {
  const std::optional<QByteArray> bytes = UTF8OfText(path);
  return bytes ? FileAtBytes(bytes->toStdString()) : std::nullopt;
}

QByteArray FileURL(const FileReference& file) {
  return "file://" + QByteArray::fromStdString(file.path()).toPercentEncoding("/");
}

std::optional<FileReference> FileAtURL(QByteArrayView url) {
  if (!common::StartsWithNoCase({url.data(), static_cast<std::size_t>(url.size())}, kScheme))
    return std::nullopt;
  const std::optional<QByteArrayView> escaped = PathOf(url.sliced(kScheme.size()));
  if (!escaped || escaped->size() > qsizetype{3 * kMaxPathLength}) return std::nullopt;
  const auto end =
      std::find_if(escaped->begin(), escaped->end(), [](char c) { return c == '?' || c == '#'; });
  const QByteArray path =
      QByteArray::fromPercentEncoding(escaped->first(end - escaped->begin()).toByteArray());
  std::optional<FileReference> file = FileAtBytes(path.toStdString());
  return file && file->path().size() > kMaxPathLength ? std::nullopt : file;
}

}  // namespace quillforth::platform
