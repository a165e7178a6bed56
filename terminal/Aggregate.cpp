// SPDX-License-Identifier: MIT

#include "terminal/Aggregate.h"

#include "app/Aggregation.h"
#include "appleevents/LosslessText.h"
#include "fileops/AggregateFolder.h"
#include "fileops/MovePlan.h"
#include "platform/SystemLog.h"
#include "terminal/Folders.h"
#include "terminal/Reporter.h"
#include "terminal/TerminalOutlets.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

using fileops::AggregationResult;

// What the system's log gets in a window goes to the person at the terminal.
class NoticeLog final : public platform::SystemLog {
 public:
  explicit NoticeLog(Output& errors) : errors_(errors) {}
  void log(const QString& message) override { errors_.write(NoticeText(message)); }

 private:
  Output& errors_;
};

std::string Reason(common::Status status) {
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

AggregationResult Plan(const QString& folder, const fileops::AggregationServices& services, Output& results) {
  const auto relative = [&folder](const std::string& path) {
    const QString text = QString::fromStdString(path).sliced(folder.size());
    return Printable(text.startsWith(u'/') ? text.sliced(1) : text).toUtf8();
  };
  fileops::MovePlan plan(services.folders, [&](const std::string& from, const std::string& to) {
    results.writeLine(relative(from) + '\t' + relative(to));
  });
  return fileops::AggregateFolder({plan, services.log, nullptr, services.itemStays}, folder);
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
  NoticeLog log(errors);
  const fileops::AggregationServices services{
      folders, log, nullptr, [&errors](const std::string& name, common::Status reason) {
        const QString item = Printable(platform::LosslessText(name));
        errors.write(NoticeText(item + QStringLiteral(" stays: ") + QString::fromStdString(Reason(reason))));
      }};
  const AggregationResult result =
      arguments.dryRun ? Plan(folder, services, results) : fileops::AggregateFolder(services, folder);
  if (result.status != common::kNoError) return Fail(*found.path + ": cannot be read", errors);
  if (result.left == 0) return kExitSuccess;
  return Fail("not everything could be moved; items that stay: " + std::to_string(result.left), errors);
}

}  // namespace quillforth::terminal
