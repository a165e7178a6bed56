// SPDX-License-Identifier: MIT

#include "fileops/MovePlan.h"

#include <set>
#include <utility>

#include "fileops/FolderItems.h"

namespace quillforth::fileops {

namespace {

using common::Status;
using platform::Folder;
using platform::FolderResult;

class PlannedFolder final : public Folder {
 public:
  /// `real`: null for a folder that the real run would make.
  PlannedFolder(std::unique_ptr<Folder> real, std::string path, const MovePlan::Planned& planned)
      : real_(std::move(real)), path_(std::move(path)), planned_(planned) {}

  [[nodiscard]] const std::string& path() const override { return path_; }
  [[nodiscard]] Status listItems(std::vector<platform::FolderItem>& items) const override {
    return real_ ? real_->listItems(items) : common::kNoError;
  }
  [[nodiscard]] Status findItem(const std::string& name) const override {
    if (made_.count(name) > 0) return common::kNoError;
    return real_ ? real_->findItem(name) : common::kFileNotFound;
  }
  [[nodiscard]] bool holds(const std::string& name, const Folder& other) const override {
    const PlannedFolder& planned = Planned(other);
    return planned.real_ ? real_ && real_->holds(name, *planned.real_) : made_.count(name) > 0;
  }
  [[nodiscard]] std::optional<std::string> readFile(const std::string& name,
                                                    std::size_t limit) const override {
    return real_ ? real_->readFile(name, limit) : std::nullopt;
  }
  [[nodiscard]] Status createFolder(const std::string& name) override;
  [[nodiscard]] FolderResult openFolder(const std::string& name) const override;
  [[nodiscard]] bool isSameFolder(const Folder& other) const override {
    return this == &other || (real_ && Planned(other).real_ && real_->isSameFolder(*Planned(other).real_));
  }
  [[nodiscard]] Status checkChanges() const override {
    return real_ ? real_->checkChanges() : common::kNoError;
  }
  [[nodiscard]] Status checkMove(const std::string& name, const Folder& destination) const override;
  [[nodiscard]] Status moveItem(const std::string& name, Folder& destination,
                                const std::string& newName) override;

 private:
  static const PlannedFolder& Planned(const Folder& folder) {
    return static_cast<const PlannedFolder&>(folder);
  }

  std::unique_ptr<Folder> real_;
  std::string path_;
  const MovePlan::Planned& planned_;
  std::set<std::string> made_;
};

FolderResult PlannedFolder::openFolder(const std::string& name) const {
  FolderResult opened;
  if (made_.count(name) == 0) {
    if (!real_) return {common::kFileNotFound, nullptr};
    opened = real_->openFolder(name);
    if (opened.status != common::kNoError) return opened;
  }
  opened.folder = std::make_unique<PlannedFolder>(std::move(opened.folder),
                                                  platform::PathInFolder(path(), name), planned_);
  return opened;
}

Status PlannedFolder::createFolder(const std::string& name) {
  const Status status = checkChanges();
  if (status != common::kNoError) return status;
  return made_.insert(name).second ? common::kNoError : common::kDuplicateName;
}

Status PlannedFolder::checkMove(const std::string& name, const Folder& destination) const {
  if (!real_) return common::kFileNotFound;
  // A subfolder that the real run would make has the permissions of this folder.
  const PlannedFolder& planned = Planned(destination);
  return real_->checkMove(name, planned.real_ ? *planned.real_ : *real_);
}

Status PlannedFolder::moveItem(const std::string& name, Folder& destination, const std::string& newName) {
  const Status found = destination.findItem(newName);
  if (found == common::kNoError) return common::kDuplicateName;
  if (found != common::kFileNotFound) return found;
  const Status status = checkMove(name, destination);
  if (status != common::kNoError) return status;
  planned_(platform::PathInFolder(path(), name), platform::PathInFolder(destination.path(), newName));
  return common::kNoError;
}

}  // namespace

FolderResult MovePlan::openFolder(const platform::FileReference& folder) {
  FolderResult opened = folders_.openFolder(folder);
  if (opened.folder) {
    opened.folder = std::make_unique<PlannedFolder>(std::move(opened.folder), folder.path(), planned_);
  }
  return opened;
}

}  // namespace quillforth::fileops
