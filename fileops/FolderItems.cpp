// SPDX-License-Identifier: MIT

#include "fileops/FolderItems.h"

#include <QUuid>

namespace quillforth::fileops {

namespace {

std::string NewUUIDString() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

// The longest beginning of at most `length` bytes that does not end within a character of UTF-8.
std::string_view CutAtCharacter(std::string_view text, std::size_t length) {
  if (length >= text.size()) return text;
  while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) --length;
  return text.substr(0, length);
}

}  // namespace

std::string PathInFolder(const platform::Folder& folder, std::string_view name) {
  std::string path = folder.path();
  if (!path.ends_with('/')) path += '/';
  return path.append(name);
}

std::string_view PathExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view{} : name.substr(dot + 1);
}

std::string UniqueName(std::string_view name, std::size_t longest) {
  constexpr std::string_view kSeparator = " - ";
  const std::string_view extension = PathExtension(name);
  std::string_view base = name;
  std::string ending = NewUUIDString();
  if (!extension.empty()) {
    base.remove_suffix(extension.size() + 1);
    ending.append(".").append(extension);
  }
  const std::size_t used = kSeparator.size() + ending.size();
  base = CutAtCharacter(base, longest > used ? longest - used : 0);
  return base.empty() ? ending : std::string(base).append(kSeparator).append(ending);
}

bool ItemExistsInFolder(platform::FileManager& files, const platform::FileReference& folder,
                        std::string_view name, platform::FileReference& item) {
  platform::FileResult found = files.makeReference(folder, name);
  if (found.status == common::kNoError) item = std::move(found.reference);
  return found.status != common::kFileNotFound;
}

platform::FileResult FindOrCreateFolder(platform::FileManager& files, const platform::FileReference& parent,
                                        std::string_view name) {
  platform::FileReference item;
  if (ItemExistsInFolder(files, parent, name, item)) return {common::kNoError, std::move(item)};
  return files.createDirectory(parent, name);
}

common::Status FindOrCreateFolder(platform::Folder& parent, const std::string& name) {
  const common::Status found = parent.findItem(name);
  if (found != common::kFileNotFound) return found;
  const common::Status created = parent.createFolder(name);
  return created == common::kDuplicateName ? common::kNoError : created;  // made by someone else just now
}

std::optional<std::string> MakeUniqueNameForMove(const platform::Folder& destination,
                                                 const std::string& name) {
  if (destination.findItem(name) == common::kFileNotFound) return std::nullopt;
  return UniqueName(name);
}

std::optional<platform::FileReference> GetSupportFolder(platform::FileManager& files) {
  const platform::FileResult support = files.findApplicationSupportFolder();
  if (support.status != common::kNoError) return std::nullopt;
  const platform::FileResult vendor = FindOrCreateFolder(files, support.reference, "Tessary Software");
  if (vendor.status != common::kNoError) return std::nullopt;
  platform::FileResult own = FindOrCreateFolder(files, vendor.reference, "Quillforth");
  if (own.status != common::kNoError) return std::nullopt;
  return std::move(own.reference);
}

}  // namespace quillforth::fileops
