// SPDX-License-Identifier: MIT

#include "terminal/Comment.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "fileops/FinderComment.h"
#include "platform/LosslessText.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace fs = std::filesystem;

namespace {

// The item itself, also when it is a link. The folder that it lies in is free of links.
platform::FileReference ItemAtPath(const std::string& path, std::error_code& error) {
  const fs::path item(path);
  const fs::file_status status = fs::symlink_status(item, error);
  if (!error && !fs::exists(status)) error = std::make_error_code(std::errc::no_such_file_or_directory);
  if (error) return {};
  const fs::path name = item.filename();
  const bool isSpecial = name.empty() || name == "." || name == "..";
  if (isSpecial) return platform::FileReference(fs::canonical(item, error).string());
  const fs::path parent = fs::canonical(item.has_parent_path() ? item.parent_path() : ".", error);
  return platform::FileReference((parent / name).string());
}

std::string Reason(common::Status status) {
  switch (status) {
    case common::kFileNotFound:
    case common::kCoreFoundationFailure:
      return "No such file or directory";
    case common::kPermissionDenied:
      return "Permission denied";
    case common::kNotAFile:
      return "only files and folders have comments";
    case common::kWrongVolumeType:
      return "its file system keeps no comments";
    case common::kDataTooBig:
    case common::kDiskFull:
      return "no room for such a comment";
    default:
      return "error " + std::to_string(status);
  }
}

void Print(const QString& comment, Output& output) {
  if (comment.isEmpty()) return;
  if (::isatty(output.descriptor()) == 1) {
    output.writeLine(Printable(comment).toUtf8());
  } else {
    output.writeLine(QByteArray::fromStdString(platform::BytesOfLosslessText(comment).value_or("")));
  }
}

}  // namespace

std::optional<std::string> RunComment(const CommentArguments& arguments, platform::AppleEventSender& events,
                                      Output& output) {
  std::error_code error;
  const platform::FileReference item = ItemAtPath(arguments.file, error);
  if (error) return arguments.file + ": " + error.message();
  common::Status status = common::kNoError;
  if (arguments.text) {
    status = fileops::SetFinderComment(events, item, platform::LosslessText(*arguments.text));
  } else {
    QString comment;
    status = fileops::CopyFinderComment(events, item, &comment, fileops::finderEventIdleFunction);
    if (status == common::kNoError) Print(comment, output);
  }
  if (status != common::kNoError) return arguments.file + ": " + Reason(status);
  return std::nullopt;
}

}  // namespace quillforth::terminal
