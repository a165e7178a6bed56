// SPDX-License-Identifier: MIT

#include "fileops/Subfolders.h"

#include <utility>

#include "fileops/FolderItems.h"

namespace quillforth::fileops {

namespace {

// A look costs a fifth of a move. A folder that was removed is noticed at once anyway, because moves fail.
constexpr int kUsesBetweenLooks = 64;

}  // namespace

std::string Subfolder::path() const {
  return PathInFolder(parent_, name_);
}

common::Status Subfolder::open() {
  if (folder_ && (++uses_ < kUsesBetweenLooks || !wasReplaced())) return common::kNoError;
  platform::FolderResult opened = parent_.openFolder(name_);
  folder_ = std::move(opened.folder);
  return opened.status;
}

bool Subfolder::wasReplaced() {
  uses_ = 0;
  if (parent_.holds(name_, *folder_)) return false;
  close();
  return true;
}

Subfolders::Result Subfolders::forExtension(std::string_view extension) {
  auto found = subfolders_.find(extension);
  if (found == subfolders_.end()) {
    std::string name(extension);
    const common::Status status = FindOrCreateFolder(parent_, name);
    if (status != common::kNoError) return {status, nullptr};
    found = subfolders_.try_emplace(name, parent_, name).first;
  }
  holdOpen(found->second);
  return {common::kNoError, &found->second};
}

void Subfolders::holdOpen(Subfolder& subfolder) {
  if (subfolder.isOpen()) return;
  if (open_.size() == kMostOpen) {
    for (Subfolder* other : open_) other->close();
    open_.clear();
  }
  open_.push_back(&subfolder);
}

}  // namespace quillforth::fileops
