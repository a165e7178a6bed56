// SPDX-License-Identifier: MIT

#include "terminal/Comment.h"

#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "appleevents/LosslessText.h"
#include "fileops/FinderComment.h"
#include "terminal/Reporter.h"
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

// `file` is null unless each line has to say which file it is about.
void Print(const QString& comment, const std::string* file, Output& results) {
  if (comment.isEmpty()) return;
  const bool isTerminal = ::isatty(results.descriptor()) == 1;
  const auto bytes = [isTerminal](const QString& text) {
    return isTerminal ? Printable(text).toUtf8()
                      : QByteArray::fromStdString(platform::BytesOfLosslessText(text).value_or(""));
  };
  const QByteArray prefix = file == nullptr ? QByteArray() : bytes(platform::LosslessText(*file)) + ": ";
  results.writeLine(prefix + bytes(comment).replace("\n", "\n" + prefix));
}

// What went wrong, if something did.
std::optional<std::string> ShowOrSet(const std::string& file, const CommentArguments& arguments,
                                     platform::AppleEventSender& events, Output& results) {
  std::error_code error;
  const platform::FileReference item = ItemAtPath(file, error);
  if (error) return error.message();
  common::Status status = common::kNoError;
  if (arguments.text) {
    status = fileops::SetFinderComment(events, item, platform::LosslessText(*arguments.text));
  } else {
    QString comment;
    status = fileops::CopyFinderComment(events, item, &comment, fileops::finderEventIdleFunction);
    if (status == common::kNoError) Print(comment, arguments.files.size() > 1 ? &file : nullptr, results);
  }
  return status == common::kNoError ? std::nullopt : std::optional(Reason(status));
}

}  // namespace

int RunComment(const CommentArguments& arguments, platform::AppleEventSender& events, Output& results,
               Output& errors) {
  int exitStatus = kExitSuccess;
  for (const std::string& file : arguments.files) {
    if (const auto reason = ShowOrSet(file, arguments, events, results)) {
      errors.write(NoticeText(QString::fromStdString(file + ": " + *reason)));
      exitStatus = kExitFailure;
    }
  }
  return exitStatus;
}

}  // namespace quillforth::terminal
