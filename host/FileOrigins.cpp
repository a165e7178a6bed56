// SPDX-License-Identifier: MIT

#include "host/FileOrigins.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "linux/files/ExtendedAttributes.h"

namespace quillforth::host {

namespace fs = std::filesystem;

namespace {

std::string OriginOf(const std::string& path) {
  for (const char* attribute : {"user.xdg.origin.url", "user.xdg.comment"}) {
    std::string value;
    if (platform::ReadAttribute(path, attribute, value) == common::kNoError && !value.empty()) return value;
  }
  return {};
}

}  // namespace

void ForEachOrigin(const std::string& folder,
                   const std::function<void(const std::string& path, const std::string& origin)>& take,
                   const std::function<bool()>& shouldStop) {
  std::vector<fs::path> folders{folder};
  while (!folders.empty()) {
    const fs::path next = std::move(folders.back());
    folders.pop_back();
    std::error_code error;
    for (fs::directory_iterator item(next, error); !error && item != fs::directory_iterator();
         item.increment(error)) {
      if (shouldStop()) return;
      if (item->path().filename().native().starts_with('.')) continue;
      std::error_code unknown;
      // None of these three looks at the item: the listing of the folder has told its kind.
      if (item->is_symlink(unknown)) continue;
      if (item->is_directory(unknown)) folders.push_back(item->path());
      if (!item->is_regular_file(unknown)) continue;
      if (const std::string origin = OriginOf(item->path()); !origin.empty()) take(item->path(), origin);
    }
  }
}

}  // namespace quillforth::host
