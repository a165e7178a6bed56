// SPDX-License-Identifier: MIT

#include "fileops/FolderItems.h"

#include <QUuid>

namespace quillforth::fileops {

namespace {

// The text after the last "."; empty for a name whose only "." is its first character.
std::string_view PathExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view{} : name.substr(dot + 1);
}

std::string NewUUIDString() {
  return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
}

}  // namespace

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

std::optional<std::string> MakeUniqueNameForMove(platform::FileManager& files,
                                                 const platform::FileReference& destination,
                                                 const platform::FileReference& item) {
  const std::optional<std::string> name = files.itemName(item);
  platform::FileReference existing;
  if (!name || !ItemExistsInFolder(files, destination, *name, existing)) return std::nullopt;
  const std::string extension(PathExtension(*name));
  std::string unique = *name;
  if (!extension.empty()) unique.resize(name->size() - extension.size() - 1);
  if (!unique.empty()) unique += " - ";
  unique += NewUUIDString();
  if (!extension.empty()) unique.append(".").append(extension);
  return unique;
}

}  // namespace quillforth::fileops
