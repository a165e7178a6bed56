// SPDX-License-Identifier: MIT

#include "fileops/SupportFolder.h"

#include "fileops/FolderItems.h"

namespace quillforth::fileops {

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
