// SPDX-License-Identifier: MIT

#include "fileops/AggregateFolder.h"

#include <QByteArrayView>
#include <algorithm>

#include "fileops/FolderItems.h"
#include "net/URL.h"

namespace quillforth::fileops {

namespace {

// A look costs a fifth of a move. A folder that was removed is noticed at once anyway, because moves fail.
constexpr int kUsesBetweenLooks = 64;

}  // namespace

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

HiddenNames::HiddenNames(const platform::Folder& folder)
    : text_(folder.readFile(".hidden", kLongestFile).value_or(std::string())) {
  if (text_.size() < kLongestFile) text_ += '\n';
  std::size_t begin = 0;
  for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n', begin)) {
    if (end > begin) names_.push_back(std::string_view(text_).substr(begin, end - begin));
    begin = end + 1;
  }
  std::sort(names_.begin(), names_.end());
}

bool HiddenNames::contains(std::string_view name) const {
  return std::binary_search(names_.begin(), names_.end(), name);
}

namespace {

using common::Status;
using platform::Folder;
using platform::FolderItem;

// Longest name that is tried when the one that the rule gives is too long.
constexpr std::size_t kLongestName = 255;

void LogThatItemStays(platform::SystemLog& log, const ItemReference& item, const Subfolder& subfolder) {
  log.log(
      QStringLiteral("The file \"%1\" could not be moved to \"%2\". A file by the same name may exists there "
                     "already.")
          .arg(QString::fromStdString(platform::PathInFolder(item.parent.path(), item.name)),
               QString::fromStdString(subfolder.path())));
}

// Whether the item itself is what is missing.
bool IsGone(const ItemReference& item, Status status) {
  return status == common::kFileNotFound && item.parent.findItem(item.name) == common::kFileNotFound;
}

// Moves the item, and says under which name, or why not. The move itself finds out that a name is taken,
// because the name could be taken between a test and the move.
struct Moved {
  Status status;
  std::string name;
};
Moved MoveUnderFreeName(const ItemReference& item, Folder& destination) {
  Moved moved{item.parent.moveItem(item.name, destination, item.name), item.name};
  if (moved.status != common::kDuplicateName) return moved;
  moved.name = MakeUniqueNameForMove(destination, item.name).value_or(item.name);
  moved.status = item.parent.moveItem(item.name, destination, moved.name);
  if (moved.status != common::kBadName) return moved;
  moved.name = UniqueName(item.name, kLongestName);
  moved.status = item.parent.moveItem(item.name, destination, moved.name);
  return moved;
}

// One run over one folder.
class Walk {
 public:
  Walk(const AggregationServices& services, Folder& folder)
      : services_(services), folder_(folder), hidden_(folder), subfolders_(folder) {}

  AggregationResult run();

 private:
  [[nodiscard]] bool hasPath(const std::string& name) const;
  void sort(const FolderItem& item);
  [[nodiscard]] Status moveIntoSubfolder(const ItemReference& item, std::string_view extension);

  const AggregationServices& services_;
  Folder& folder_;
  AggregationResult result_;
  HiddenNames hidden_;
  Subfolders subfolders_;
};

AggregationResult Walk::run() {
  std::vector<FolderItem> items;
  result_.status = ListFolderItems(folder_, false, items);
  for (const FolderItem& item : items) sort(item);
  return result_;
}

bool Walk::hasPath(const std::string& name) const {
  return folder_.path().size() + 1 + name.size() <= kLongestItemPath &&
         QByteArrayView(folder_.path()).isValidUtf8() && QByteArrayView(name).isValidUtf8();
}

void Walk::sort(const FolderItem& item) {
  if (ShouldSkipItem(item, hidden_)) return;
  const std::string_view extension = PathExtension(item.name);
  if (extension.empty()) return;
  const ItemReference reference{folder_, item.name};
  const Status status = hasPath(item.name) ? moveIntoSubfolder(reference, extension) : common::kBadName;
  if (status == common::kNoError) {
    ++result_.moved;
  } else if (!IsGone(reference, status)) {
    ++result_.left;
    if (services_.itemStays) services_.itemStays(item.name, status);
  }
}

Status Walk::moveIntoSubfolder(const ItemReference& item, std::string_view extension) {
  const Subfolders::Result found = subfolders_.forExtension(extension);
  if (found.subfolder == nullptr) return found.status;
  const Status status = MoveItemToFolderPath(services_, item, *found.subfolder);
  if (status != common::kNoError && !IsGone(item, status)) {
    LogThatItemStays(services_.log, item, *found.subfolder);
  }
  return status;
}

}  // namespace

AggregationResult AggregateFolder(const AggregationServices& services, const QString& path) {
  const std::optional<platform::FileReference> reference = platform::FileAtPath(path);
  if (!reference) return {common::kBadParameter};
  const platform::FolderResult opened = services.folders.openFolder(*reference);
  return opened.folder ? AggregateFolderRef(services, *opened.folder) : AggregationResult{opened.status};
}

AggregationResult AggregateFolderRef(const AggregationServices& services, Folder& folder) {
  return Walk(services, folder).run();
}

Status ListFolderItems(const Folder& folder, bool filesOnly, std::vector<FolderItem>& items) {
  const std::size_t before = items.size();
  const Status status = folder.listItems(items);
  const auto first = items.begin() + static_cast<std::ptrdiff_t>(before);
  if (status != common::kNoError) {
    items.erase(first, items.end());
  } else if (filesOnly) {
    items.erase(std::remove_if(first, items.end(), [](const FolderItem& item) { return item.isFolder; }),
                items.end());
  }
  return status;
}

bool ShouldSkipItem(const FolderItem& item, const HiddenNames& hidden) {
  return (!item.isFolder && hidden.contains(item.name)) || item.name.starts_with('.');
}

Status MoveItemToFolderPath(const AggregationServices& services, const ItemReference& item,
                            Subfolder& subfolder) {
  Status status = subfolder.open();
  if (status == common::kNoError) {
    status = MoveItemPreservingComment(services, item, subfolder.folder());
    if (status == common::kNoError || !subfolder.wasReplaced()) return status;
    status = subfolder.open();
    if (status == common::kNoError) return MoveItemPreservingComment(services, item, subfolder.folder());
  }
  // Something that is no folder may have the subfolder's name. Then the item stays, and nothing is logged.
  if (status != common::kNotAFolder && !IsGone(item, status)) {
    services.log.log(
        QStringLiteral("An error occurred moving a folder or file. Error code = %1").arg(status));
  }
  return status;
}

Status MoveItemPreservingComment(const AggregationServices& services, const ItemReference& item,
                                 Folder& destination) {
  std::optional<QString> comment;
  if (services.comments != nullptr) {
    comment = services.comments->comment(
        platform::FileReference(platform::PathInFolder(item.parent.path(), item.name)));
  }
  if (item.parent.isSameFolder(destination)) return common::kNoError;
  const Moved moved = MoveUnderFreeName(item, destination);
  if (comment && moved.status == common::kNoError) {
    services.comments->setComment(
        platform::FileReference(platform::PathInFolder(destination.path(), moved.name)), *comment);
  }
  if (services.itemMoved && moved.status == common::kNoError) {
    services.itemMoved(platform::PathInFolder(item.parent.path(), item.name),
                       platform::PathInFolder(destination.path(), moved.name));
  }
  return moved.status;
}

}  // namespace quillforth::fileops
