// SPDX-License-Identifier: MIT
//
// Resource forks on Linux, where no file system has them: other places keep them, and link files stand in.
//
// A fork is looked for, in this order,
//   - in AppleDouble files: "._name" beside the file, ".AppleDouble/name", "__MACOSX/._name", and as archives
//     are unpacked, "__MACOSX/folder/._name" beside "folder/name", where "folder" is up to 31 folders deep;
//   - in the attributes "user.com.apple.ResourceFork" and "user.org.netatalk.ResourceFork", which hold the
//     fork or an AppleDouble file with it.
// The first that holds a 'url ' resource counts. Without one, a link file (LinkFile.h) answers as a fork with
// one 'url ' resource and nothing else; any other file with the first fork that there is.
//
// A symbolic link stands for the file that it leads to; beyond that none is followed, neither to a file nor
// to a folder beside it. Nothing is read but regular files of at most 16 MiB, and nothing waits for a writer.
// Any thread.
#pragma once

#include "platform/ResourceFork.h"

namespace quillforth::platform {

class LinuxResourceManager final : public ResourceManager {
 public:
  [[nodiscard]] std::unique_ptr<ResourceFork> openResourceFork(const FileReference& file) override;
};

}  // namespace quillforth::platform
