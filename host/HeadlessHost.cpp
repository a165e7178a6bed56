// SPDX-License-Identifier: MIT

#include "host/HeadlessHost.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "fileops/FinderComment.h"
#include "linux/files/ExtendedAttributes.h"

namespace quillforth::host {

void LinuxFileComments::setComment(const QString& path, const QString& comment) {
  const platform::FileReference file(path.toStdString());
  static_cast<void>(fileops::SetFinderComment(events_, file, comment));
  static_cast<void>(platform::WriteAttribute(file.path(), "user.xdg.origin.url", comment.toStdString()));
}

namespace {

constexpr std::chrono::seconds kDurabilityPatience(10);

const char* ReasonText(int error) {
  if (error == ETIME) return "the disk is still at work after 10 seconds";
  return error == EINTR ? "the wait for the disk was interrupted" : std::strerror(error);
}

}  // namespace

HeadlessHost::HeadlessHost(const platform::DownloadOptions& options, bool keepsCookies)
    : transfers_{.caCertificateFile = {},
                 .interrupted = &platform::Interruption::flag(),
                 .keepsCookies = keepsCookies},
      downloads_(transfers_, options) {}

HeadlessHost::~HeadlessHost() {
  downloads_.end();
  const int error = downloads_.makeDurable(kDurabilityPatience);
  if (error == 0) return;
  std::fprintf(stderr, "%s: a power cut now might take files that were downloaded last: %s\n",
               program_invocation_short_name, ReasonText(error));
}

app::Host HeadlessHost::host(app::Application& application, platform::NetworkDiagnostics& network) {
  return {.application = &application,
          .userDefaults = &defaults_,
          .downloads = &downloads_,
          .pageLoader = &pages_,
          .network = &network,
          .readStreams = &streams_,
          .internetConfig = &types_,
          .aliases = &aliases_,
          .files = &files_,
          .mainBundle = &bundle_,
          .sounds = &sounds_,
          .log = &log_,
          .localizedText = [](const QString& key) { return key; },
          .currentSeconds = [] { return static_cast<std::uint32_t>(std::time(nullptr)); },
          .aggregation = &aggregation_,
          .fileComments = &fileComments_};
}

}  // namespace quillforth::host
