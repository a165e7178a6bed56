// SPDX-License-Identifier: MIT
//
// A host that does nothing by itself: the test says what there is, and drives every download by hand.
#pragma once

#include <QHash>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/Host.h"
#include "platform/HTTPReadStream.h"
#include "platform/MainBundle.h"
#include "tests/support/Recorder.h"

namespace quillforth::tests {

class FakeUserDefaults final : public platform::UserDefaults {
 public:
  /// What is stored, and seen by readers only once they have synchronized.
  QHash<QString, QVariant> stored;
  void set(const char* key, const QVariant& value) { stored.insert(QString::fromLatin1(key), value); }

  void synchronize() override {
    stored.insert(pending_);
    pending_.clear();
    seen_ = stored;
  }
  [[nodiscard]] QVariant objectForKey(const QString& key) override { return seen_.value(key); }
  void setObject(const QString& key, const QVariant& value) override { pending_.insert(key, value); }
  void removeObject(const QString& key) override { stored.remove(key); }

 private:
  QHash<QString, QVariant> pending_;
  QHash<QString, QVariant> seen_;
};

class FakeDownload final : public platform::WebDownload, private Recording {
 public:
  FakeDownload(CallLog& log, platform::URL url, platform::WebDownloadDelegate& target)
      : Recording(log, "download"), delegate(target), url_(std::move(url)) {}

  platform::WebDownloadDelegate& delegate;
  bool isCancelled = false;

  [[nodiscard]] const platform::URL& requestURL() const override { return url_; }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override {
    note(QStringLiteral(".to ") + path + (allowOverwrite ? QStringLiteral(" over") : QString()));
  }
  void cancel() override {
    isCancelled = true;
    note(QStringLiteral(".cancel ") + url_.absoluteString());
  }
  void begin() { delegate.downloadDidBegin(*this); }
  void respond(std::int64_t length) { delegate.downloadDidReceiveResponse(*this, {length, {}}); }
  void receive(std::uint64_t length) { delegate.downloadDidReceiveDataOfLength(*this, length); }
  void finish() { delegate.downloadDidFinish(*this); }
  void fail(const QString& description, const QString& url = {}) {
    delegate.downloadDidFailWithError(*this, {description, url});
  }

 private:
  platform::URL url_;
};

class FakeDownloads final : public platform::WebDownloadService {
 public:
  explicit FakeDownloads(CallLog& log) : log_(log) {}
  std::vector<std::shared_ptr<FakeDownload>> started;

  std::shared_ptr<platform::WebDownload> startDownload(const platform::URL& url,
                                                       platform::WebDownloadDelegate& delegate) override {
    log_.add(QStringLiteral("start ") + url.absoluteString());
    started.push_back(std::make_shared<FakeDownload>(log_, url, delegate));
    return started.back();
  }

 private:
  CallLog& log_;
};

/// Folders and files by path; only those under `roots` can be looked at.
class FakeFiles final : public platform::FileManager {
 public:
  std::set<std::string> items{"/data"};
  common::Status supportStatus = common::kNoError;
  common::Status lookStatus = common::kNoError;
  common::Status createStatus = common::kNoError;

  platform::FileResult makeReference(const platform::FileReference& folder, std::string_view name) override {
    const std::string path = folder.path() + "/" + std::string(name);
    if (lookStatus != common::kNoError) return {lookStatus, {}};
    if (!items.contains(path)) return {common::kFileNotFound, {}};
    return {common::kNoError, platform::FileReference(path)};
  }
  platform::FileResult createDirectory(const platform::FileReference& folder,
                                       std::string_view name) override {
    if (createStatus != common::kNoError) return {createStatus, {}};
    const std::string path = folder.path() + "/" + std::string(name);
    items.insert(path);
    return {common::kNoError, platform::FileReference(path)};
  }
  std::optional<std::string> itemName(const platform::FileReference& item) override {
    if (!items.contains(item.path())) return std::nullopt;
    return item.path().substr(item.path().rfind('/') + 1);
  }
  platform::FileResult findApplicationSupportFolder() override {
    return {supportStatus, platform::FileReference("/data")};
  }
};

/// Records are the folder's path with "@" before it; a folder in `moved` is somewhere else now.
class FakeAliases final : public platform::AliasManager {
 public:
  std::map<std::string, std::string> moved;
  std::set<std::string> gone;

  std::optional<QByteArray> newAlias(const platform::FileReference& folder) override {
    return QByteArray::fromStdString("@" + folder.path());
  }
  std::optional<platform::FileReference> resolveAlias(const QByteArray& alias) override {
    const std::string path = alias.sliced(1).toStdString();
    if (!alias.startsWith('@') || gone.contains(path)) return std::nullopt;
    const auto found = moved.find(path);
    return platform::FileReference(found == moved.end() ? path : found->second);
  }
};

class FakePageLoader final : public platform::PageLoader {
 public:
  std::map<QString, QByteArray> pages;
  std::optional<QByteArray> resourceData(const platform::URL& url) override {
    const auto found = pages.find(url.absoluteString());
    return found == pages.end() ? std::nullopt : std::optional(found->second);
  }
};

/// The services that only answer, each with what the test has put there.
class FakeServices final : public platform::NetworkDiagnostics,
                           public platform::HTTPReadStreamFactory,
                           public platform::InternetConfigComponent,
                           public platform::MainBundle,
                           public platform::SoundLoader,
                           public platform::SystemLog,
                           public app::FolderAggregation,
                           public app::FileComments,
                           public app::DriverObserver {
 public:
  explicit FakeServices(CallLog& log) : log_(log) {}
  platform::NetworkStatus network = platform::NetworkStatus::connectionUp;
  std::optional<QString> soundPath;
  std::vector<platform::ICMapEntry> mappings;

  platform::NetworkStatus copyNetworkStatusPassively() override { return network; }
  void diagnoseProblemInteractively() override { log_.add(QStringLiteral("diagnose")); }
  std::unique_ptr<platform::HTTPReadStream> createStream(const platform::HTTPRequest& /*request*/) override {
    return nullptr;
  }
  int countComponents() override { return 1; }
  common::Status start(common::FourCharCode /*creator*/) override {
    log_.add(QStringLiteral("mappings"));
    return common::kNoError;
  }
  common::Status stop() override { return common::kNoError; }
  common::Status begin(platform::ICPermission /*permission*/) override { return common::kNoError; }
  common::Status end() override { return common::kNoError; }
  common::Status getPrefHandle(std::string_view /*key*/) override { return common::kNoError; }
  void disposeHandle() override {}
  common::Status countMapEntries(std::int32_t& count) override {
    count = static_cast<std::int32_t>(mappings.size());
    return common::kNoError;
  }
  common::Status getIndMapEntry(std::int32_t index, platform::ICMapEntry& entry) override {
    entry = mappings.at(static_cast<std::size_t>(index) - 1);
    return common::kNoError;
  }
  std::optional<QString> objectForInfoDictionaryKey(const QString& /*key*/) override { return std::nullopt; }
  std::optional<QString> pathForResource(const QString& name) override {
    log_.add(QStringLiteral("resource ") + name);
    return soundPath;
  }
  std::unique_ptr<platform::Sound> load(const QString& path) override {
    log_.add(QStringLiteral("sound ") + path);
    return std::make_unique<platform::Sound>();
  }
  void log(const QString& message) override { log_.add(QStringLiteral("log ") + message); }
  void aggregateFolder(const QString& path) override { log_.add(QStringLiteral("aggregate ") + path); }
  void setComment(const QString& path, const QString& comment) override {
    log_.add(QStringLiteral("comment ") + path + u' ' + comment);
  }
  void downloadFileRefusedURL(const QString& text) override { log_.add(QStringLiteral("refused ") + text); }

 private:
  CallLog& log_;
};

/// Everything that a controller stands on.
struct FakeHost {
  explicit FakeHost(CallLog& log) : application(log, "application"), downloads(log), services(log) {}

  RecordingApplication application;
  FakeUserDefaults defaults;
  FakeDownloads downloads;
  FakePageLoader pages;
  FakeAliases aliases;
  FakeFiles files;
  FakeServices services;
  std::uint32_t seconds = 1000;
  int translations = 0;  ///< how often the strings table was asked

  [[nodiscard]] app::Host host() {
    app::Host host{application, defaults, downloads, pages,    services, services, services,
                   aliases,     files,    services,  services, services, {},       {}};
    host.localizedText = [this](const QString& key) {
      ++translations;
      return key;
    };
    host.currentSeconds = [this] { return seconds; };
    host.aggregation = &services;
    host.fileComments = &services;
    host.observer = &services;
    return host;
  }
};

}  // namespace quillforth::tests
