// SPDX-License-Identifier: MIT
//
// Resource forks on Linux. No file system has them, so other places keep them, and link files stand in.
//
// A fork is looked for, in this order,
//   - in AppleDouble files: "._name" beside the file, ".AppleDouble/name", "__MACOSX/._name", and as archives
//     are unpacked, "__MACOSX/folder/._name" beside "folder/name", where "folder" is up to 31 folders deep;
//   - in the attributes "user.com.apple.ResourceFork" and "user.org.netatalk.ResourceFork", which hold the
//     fork or an AppleDouble file with it.
// The first fork that holds a 'url ' resource counts. Without one, a link file (LinkFile.h) answers as a
// fork with one 'url ' resource and nothing else. Any other file has the first fork that is found.
//
// A symbolic link stands for the file that it leads to. No other link is followed, neither to a file nor to a
// folder beside it. Only regular files of at most 16 MiB are read, and no read waits for a writer.
// Any thread.
#pragma once

#include "platform/ResourceFork.h"

namespace quillforth::platform {

class LinuxResourceManager final : public ResourceManager {
 public:
  [[nodiscard]] std::unique_ptr<ResourceFork> openResourceFork(const FileReference& file) override;
};

}  // namespace quillforth::platform
