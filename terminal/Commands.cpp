// SPDX-License-Identifier: MIT

#include "terminal/Commands.h"

#include <unistd.h>

#include <QJsonObject>
#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/Aggregation.h"
#include "appleevents/HFSPath.h"
#include "classify/PageOrFile.h"
#include "fileops/AggregateFolder.h"
#include "fileops/FinderComment.h"
#include "fileops/MovePlan.h"
#include "net/URL.h"
#include "platform/SystemLog.h"
#include "terminal/Folders.h"
#include "terminal/Reporter.h"
#include "terminal/TerminalOutlets.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace fs = std::filesystem;

namespace {

using fileops::AggregationResult;

constexpr qsizetype kPortion = 65536;

// What the system's log gets in a window goes to the person at the terminal, unless nothing is tried.
class NoticeLog final : public platform::SystemLog {
 public:
  NoticeLog(Output& errors, bool isDryRun) : errors_(errors), isDryRun_(isDryRun) {}
  void log(const QString& message) override {
    if (!isDryRun_) errors_.write(NoticeText(message));
  }

 private:
  Output& errors_;
  const bool isDryRun_;
};

std::string ReasonToStay(common::Status status) {
  switch (status) {
    case common::kFileNotFound:
      return "its subfolder is gone";
    case common::kNotAFolder:
      return "its subfolder is there as a file or a link";
    case common::kPermissionDenied:
      return "Permission denied";
    case common::kDifferentVolume:
      return "it is on another file system, or its subfolder is";
    case common::kBadName:
      return "its name is not UTF-8, or too long";
    case common::kDiskFull:
      return "No space left on device";
    default:
      return "error " + std::to_string(status);
  }
}

int Fail(const std::string& message, Output& errors) {
  errors.write(NoticeText(QString::fromStdString(message)));
  return kExitFailure;
}

// Where items would be, by where they are.
using Moves = std::map<std::string, std::string>;

std::vector<fs::path> LinksIn(const std::string& folder) {
  std::vector<fs::path> links;
  std::error_code error;
  for (fs::directory_iterator item(folder, error); !error && item != fs::directory_iterator();
       item.increment(error)) {
    std::error_code unknown;
    if (item->is_symlink(unknown)) links.push_back(item->path());
  }
  return links;
}

// Whether something will be at `path`, which is in `folder` or not, once nothing but `moves` has happened.
bool WillExist(const fs::path& path, const fs::path& folder, const Moves& moves) {
  std::error_code error;
  const fs::path below = path.lexically_relative(folder);
  const bool isInFolder = !below.empty() && *below.begin() != "..";
  if (isInFolder && moves.contains((folder / *below.begin()).string())) return false;
  if (fs::exists(path, error)) return true;
  return std::ranges::any_of(moves, [&](const auto& move) { return move.second == path.string(); });
}

bool WillDangle(const fs::path& link, const fs::path& folder, const Moves& moves) {
  std::error_code error;
  const fs::path target = fs::read_symlink(link, error);
  if (error || !fs::exists(link, error)) return false;  // it dangles already
  const auto moved = moves.find(link.string());
  const fs::path place = moved == moves.end() ? link : fs::path(moved->second);
  return !WillExist((place.parent_path() / target).lexically_normal(), folder, moves);
}

AggregationResult Plan(const QString& folder, const fileops::AggregationServices& services, Output& results,
                       Output& errors) {
  const auto start = static_cast<std::size_t>(folder.toUtf8().size()) + (folder.endsWith(u'/') ? 0 : 1);
  const auto relative = [start](const std::string& path) {
    return Printable(QString::fromStdString(path.substr(start))).toUtf8();
  };
  const std::vector<fs::path> links = LinksIn(folder.toStdString());
  Moves moves;
  QByteArray portion;  // nobody waits for single lines of a plan
  fileops::MovePlan plan(services.folders, [&](const std::string& from, const std::string& to) {
    portion += relative(from) + '\t' + relative(to) + '\n';
    if (!links.empty()) moves.emplace(from, to);
    if (portion.size() > kPortion) results.write(std::exchange(portion, {}));
  });
  const AggregationResult result =
      fileops::AggregateFolder({plan, services.log, nullptr, services.itemStays}, folder);
  results.write(portion);
  for (const fs::path& link : links) {
    if (!WillDangle(link, folder.toStdString(), moves)) continue;
    errors.write(NoticeText(platform::LosslessText(link.filename().string()) +
                            QStringLiteral(" would point to nothing after the move")));
  }
  return result;
}

}  // namespace

int RunAggregate(const AggregateArguments& arguments, platform::FolderAccess& folders,
                 const TerminalPrompt& prompt, Output& results, Output& errors) {
  const FolderAtPath found = ExistingFolder(arguments.folder);
  if (!found.path) return Fail(found.error, errors);
  const QString folder = QString::fromStdString(*found.path);
  if (folder.toStdString() != *found.path) return Fail(*found.path + ": not UTF-8", errors);
  if (!arguments.yes && !arguments.dryRun) {
    if (!TerminalPrompt::isAvailable()) {
      const Answer refusal = UsageError("aggregate", "there is no terminal to ask on; use --yes");
      errors.write(QByteArray::fromStdString(refusal.errors));
      return refusal.exitStatus;
    }
    if (!Confirm(prompt, app::AggregationConfirmation(folder))) return Fail("nothing was moved", errors);
  }
  NoticeLog log(errors, arguments.dryRun);
  const fileops::AggregationServices services{
      folders, log, nullptr, [&errors](const std::string& name, common::Status reason) {
        const QString item = Printable(platform::LosslessText(name));
        errors.write(
            NoticeText(item + QStringLiteral(" stays: ") + QString::fromStdString(ReasonToStay(reason))));
      }};
  const AggregationResult result =
      arguments.dryRun ? Plan(folder, services, results, errors) : fileops::AggregateFolder(services, folder);
  if (result.status != common::kNoError) return Fail(*found.path + ": cannot be read", errors);
  if (result.left == 0) return kExitSuccess;
  return Fail("not everything can be moved; items that stay: " + std::to_string(result.left), errors);
}

namespace {

using classify::ClassificationReason;

QString ReasonText(const classify::Classification& classification) {
  switch (classification.reason) {
    case ClassificationReason::notAURL:
      return QStringLiteral("not a valid URL");
    case ClassificationReason::extensionKnown:
      return QStringLiteral("extension %1 is %2").arg(classification.extension, classification.type);
    case ClassificationReason::extensionUnknown:
      return QStringLiteral("extension %1 is not in the table").arg(classification.extension);
    case ClassificationReason::typeUnreadable:
      return QStringLiteral("extension %1 has an unreadable type").arg(classification.extension);
    case ClassificationReason::serverAnswered:
      return QStringLiteral("the server says %1").arg(classification.type);
    case ClassificationReason::serverGaveNoType:
      return QStringLiteral("the server gives no type");
    case ClassificationReason::serverDidNotAnswer:
      return QStringLiteral("the server did not answer");
  }
  return {};
}

QByteArray TabSeparated(const QStringList& columns) {
  QByteArray line;
  for (const QString& column : columns) {
    if (!line.isEmpty()) line.append('\t');
    line.append(Printable(column).toUtf8());
  }
  return line;
}

}  // namespace

void PrintClassifications(const std::vector<GivenURL>& urls, bool asJson, const classify::CExtensionMap& map,
                          platform::HTTPReadStreamFactory& streams, Output& output) {
  for (const GivenURL& url : urls) {
    const std::optional<platform::URL> meant = MeantURL(url);
    const classify::Classification classification =
        meant ? classify::classifyURL(meant->absoluteString(), map, streams) : classify::Classification();
    const QString kind = classification.isPage ? QStringLiteral("page") : QStringLiteral("file");
    const QString shown = platform::WithoutCredentials(meant ? meant->absoluteString() : url.text);
    const QString reason = ReasonText(classification);
    const QByteArray line = asJson ? JsonLine({{QStringLiteral("kind"), kind},
                                               {QStringLiteral("url"), shown},
                                               {QStringLiteral("reason"), reason}})
                                   : TabSeparated({kind, shown, reason});
    if (!output.writeLine(line)) return;
  }
}

void PrintExtensions(const classify::CExtensionMap& map, Output& output) {
  QByteArray lines;
  for (const auto& node : map.nodes()) {
    const std::string_view type = platform::PascalStringView(node->record.MIMEType);
    lines.append(TabSeparated({QString::fromUtf8(node->key.c_str()), QString::fromUtf8(type)})).append('\n');
  }
  output.write(lines);
}

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

int RunFind(const CommentArguments& arguments, const FindOrigins& findOrigins, Output& results,
            Output& errors) {
  int exitStatus = kExitFailure;
  for (const std::string& path : arguments.files) {
    const FolderAtPath folder = ExistingFolder(path);
    if (!folder.path) return Fail(folder.error, errors);
    const auto take = [&](const std::string& file, const std::string& origin) {
      const QString url = platform::WithoutCredentials(QString::fromStdString(origin));
      if (!url.contains(QString::fromStdString(*arguments.find))) return;
      results.writeLine(TabSeparated({platform::LosslessText(file), url}));
      exitStatus = kExitSuccess;
    };
    findOrigins(*folder.path, take, [&results] { return results.failed(); });
  }
  return exitStatus;
}

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
