// SPDX-License-Identifier: MIT
//
// A host that does nothing by itself: the test says what there is, and drives every download by hand.
#pragma once

#include <QHash>
#include <map>
#include <memory>

#include "app/Host.h"
#include "linux/linkfiles/ResourceMap.h"
#include "platform/HTTPReadStream.h"
#include "platform/MainBundle.h"
#include "tests/support/Recorder.h"

namespace quillforth::tests {

/// What is stored is seen by readers only once they have synchronized.
class FakeUserDefaults final : public platform::UserDefaults {
 public:
  QHash<QString, QVariant> stored;
  void set(const char* key, const QVariant& value) { stored.insert(QString::fromLatin1(key), value); }

  void synchronize() override {
    stored.insert(std::exchange(pending_, {}));
    seen_ = stored;
  }
  [[nodiscard]] QVariant objectForKey(const QString& key) override { return seen_.value(key); }
  void setObject(const QString& key, const QVariant& value) override { pending_.insert(key, value); }
  void removeObject(const QString& key) override { stored.remove(key); }

 private:
  QHash<QString, QVariant> pending_, seen_;
};

class FakeDownload final : public platform::WebDownload, private Recording {
 public:
  FakeDownload(CallLog& log, platform::URL url, platform::WebDownloadDelegate& target)
      : Recording(log, "download"), delegate(target), url_(std::move(url)) {}

  platform::WebDownloadDelegate& delegate;
  bool isCancelled = false;

  [[nodiscard]] const platform::URL& requestURL() const override { return url_; }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override {
    note(allowOverwrite ? ".to (over) " : ".to ", path);
  }
  void cancel() override {
    isCancelled = true;
    note(".cancel ", url_.absoluteString());
  }
  void respond(std::int64_t length) { delegate.downloadDidReceiveResponse(*this, {length, {}}); }
  void receive(std::uint64_t length) { delegate.downloadDidReceiveDataOfLength(*this, length); }
  void finish() { delegate.downloadDidFinish(*this); }
  void fail(const QString& why, const QString& url) { delegate.downloadDidFailWithError(*this, {why, url}); }

 private:
  platform::URL url_;
};

class FakeDownloads final : public platform::WebDownloadService {
 public:
  explicit FakeDownloads(CallLog& log) : log_(log) {}
  std::vector<std::shared_ptr<FakeDownload>> started;

  std::shared_ptr<platform::WebDownload> startDownload(const platform::WebDownloadRequest& request,
                                                       platform::WebDownloadDelegate& delegate) override {
    log_.add("start " + request.url.absoluteString().toStdString());
    return started.emplace_back(std::make_shared<FakeDownload>(log_, request.url, delegate));
  }
  void expectDownloads(const std::vector<platform::WebDownloadRequest>& requests,
                       const QString& folder) override {
    QStringList texts;
    for (const auto& request : requests) texts << request.url.absoluteString();
    texts << QStringLiteral("in") << folder;
    if (!requests.empty()) log_.add("expect " + texts.join(u' ').toStdString());
  }
  void end() override {}

 private:
  CallLog& log_;
};

/// Items by path; the support folder lies in "/data".
class FakeFiles final : public platform::FileManager {
 public:
  std::set<std::string> items;
  common::Status supportStatus = 0, lookStatus = 0, createStatus = 0;

  platform::FileResult makeReference(const platform::FileReference& folder, std::string_view name) override {
    const std::string path = folder.path() + "/" + std::string(name);
    if (lookStatus != 0) return {lookStatus, {}};
    return items.contains(path) ? platform::FileResult{0, platform::FileReference(path)}
                                : platform::FileResult{common::kFileNotFound, {}};
  }
  platform::FileResult createDirectory(const platform::FileReference& folder,
                                       std::string_view name) override {
    if (createStatus != 0) return {createStatus, {}};
    return {0, platform::FileReference(*items.insert(folder.path() + "/" + std::string(name)).first)};
  }
  platform::FileResult findApplicationSupportFolder() override {
    return {supportStatus, platform::FileReference("/data")};
  }
};

/// The services that only answer, each with what the test has put there. An alias is its folder's path after
/// "@".
class FakeServices final : public platform::NetworkDiagnostics,
                           public platform::PageLoader,
                           public platform::HTTPReadStreamFactory,
                           public platform::InternetConfigComponent,
                           public platform::AliasManager,
                           public platform::MainBundle,
                           public platform::SoundLoader,
                           public platform::SystemLog,
                           public platform::ResourceManager,
                           public platform::RunningProcesses,
                           public platform::ScriptHost,
                           public app::FolderAggregation,
                           public app::FileComments,
                           public app::ControllerObserver,
                           private Recording {
 public:
  explicit FakeServices(CallLog& log) : Recording(log, "") {}
  platform::NetworkStatus network = platform::NetworkStatus::connectionUp;
  std::map<QString, QByteArray> pages;
  std::map<std::string, std::string> moved;  ///< folders that are somewhere else now; "": nowhere
  std::optional<QString> soundPath;
  std::vector<platform::ICMapEntry> mappings;
  std::map<std::string, QByteArray> forks;  ///< by path
  std::vector<platform::RunningProcess> processes;
  std::optional<QString> scriptResult;

  platform::NetworkStatus copyNetworkStatusPassively() override { return network; }
  void diagnoseProblemInteractively() override { note("diagnose"); }
  platform::PageLoad resourceData(const platform::URL& url) override {
    const auto found = pages.find(url.absoluteString());
    if (found == pages.end()) return {};
    return {found->second, {}};
  }
  std::unique_ptr<platform::HTTPReadStream> createStream(const platform::HTTPRequest& /*request*/) override {
    return nullptr;
  }
  int countComponents() override { return 1; }
  common::Status start(common::FourCharCode /*creator*/) override { return note("mappings"), 0; }
  common::Status stop() override { return 0; }
  common::Status begin(platform::ICPermission /*permission*/) override { return 0; }
  common::Status end() override { return 0; }
  common::Status getPrefHandle(std::string_view /*key*/) override { return 0; }
  void disposeHandle() override {}
  common::Status countMapEntries(std::int32_t& count) override {
    return count = static_cast<std::int32_t>(mappings.size()), 0;
  }
  common::Status getIndMapEntry(std::int32_t index, platform::ICMapEntry& entry) override {
    return entry = mappings.at(static_cast<std::size_t>(index) - 1), 0;
  }
  std::optional<QByteArray> newAlias(const platform::FileReference& folder) override {
    return QByteArray::fromStdString("@" + folder.path());
  }
  std::optional<platform::FileReference> resolveAlias(const QByteArray& alias) override {
    const std::string path = alias.sliced(1).toStdString();
    const auto found = moved.find(path);
    if (!alias.startsWith('@') || (found != moved.end() && found->second.empty())) return std::nullopt;
    return platform::FileReference(found == moved.end() ? path : found->second);
  }
  std::optional<QString> objectForInfoDictionaryKey(const QString& /*key*/) override { return std::nullopt; }
  std::optional<QString> pathForResource(const QString& name) override {
    return note("resource ", name), soundPath;
  }
  std::unique_ptr<platform::Sound> load(const QString& path) override {
    note("sound ", path);
    return std::make_unique<platform::Sound>();
  }
  void log(const QString& message) override { note("log ", message); }
  std::unique_ptr<platform::ResourceFork> openResourceFork(const platform::FileReference& file) override {
    return platform::ResourceMap::read(forks[file.path()]);
  }
  std::vector<platform::RunningProcess> runningProcesses() override { return processes; }
  std::optional<platform::AEDescriptor> compileAndRun(const QString& source) override {
    note("script ", source);
    return scriptResult ? std::optional(platform::UnicodeTextDescriptor(*scriptResult)) : std::nullopt;
  }
  void aggregateFolder(const QString& path) override { note("aggregate ", path); }
  void setComment(const QString& path, const QString& comment) override {
    note("comment ", QStringList{path, comment});
  }
  void urlWasRefused(const QString& text) override { note("refused ", text); }
};

/// Everything that a controller stands on.
struct FakeHost {
  explicit FakeHost(CallLog& log) : application(log, "application"), downloads(log), services(log) {}

  RecordingApplication application;
  FakeUserDefaults defaults;
  FakeDownloads downloads;
  FakeFiles files;
  FakeServices services;
  std::uint32_t seconds = 1000;
  int translations = 0;  ///< how often the strings table was asked

  [[nodiscard]] app::Host host(const app::EventIntake* events = nullptr) {
    const auto localizedText = [this](const QString& key) { return ++translations, key; };
    const auto currentSeconds = [this] { return seconds; };
    return {&application, &defaults, &downloads,  &services, &services, &services,     &services,
            &services,    &files,    &services,   &services, &services, localizedText, currentSeconds,
            &services,    &services, {&services}, events,    &services, &services};
  }
};

}  // namespace quillforth::tests
