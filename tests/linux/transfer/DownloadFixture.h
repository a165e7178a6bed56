// SPDX-License-Identifier: MIT
//
// What the tests of downloads share: a delegate that writes down what it hears, and one place that checks
// what must hold after every download, however it went.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <optional>
#include <regex>

#include "linux/transfer/CurlDownloadService.h"
#include "tests/support/RawServer.h"
#include "tests/support/RunLoop.h"

namespace quillforth::tests {

using platform::Credential;
using platform::WebDownload;

/// What one download said.
class DownloadRecorder final : public platform::WebDownloadDelegate,
                               public platform::AuthenticationSheetParent {
 public:
  // How it answers.
  QString folder;  ///< null: no destination is set
  QString name;    ///< null: as suggested
  bool allowOverwrite = false, hasWindow = true;
  std::list<std::optional<Credential>> answers;  ///< none left: cancelled
  bool leavesSheetOpen = false;                  ///< the test answers, with `openSheet`
  std::function<void(char, WebDownload&)> hook;  ///< with the letter of each callback

  // What it heard. The letters: B begin, W window, R response, S should decode, D decide, C create,
  // L length, F finish, E error.
  std::string calls;
  platform::URLResponse response;
  QString suggested, path, failingURL;
  std::string error;
  std::vector<platform::AuthenticationChallenge> challenges;
  std::function<void(std::optional<Credential>)> openSheet;
  std::uint64_t received = 0;

  [[nodiscard]] bool isOver() const { return calls.ends_with('F') || calls.ends_with('E'); }

  void downloadDidBegin(WebDownload& download) override { note('B', download); }
  void downloadDidReceiveResponse(WebDownload& download, const platform::URLResponse& r) override {
    response = r;
    note('R', download);
  }
  void downloadDecideDestinationWithSuggestedFilename(WebDownload& download,
                                                      const QString& filename) override {
    suggested = filename;
    note('D', download);
    if (folder.isNull()) return;
    download.setDestinationAllowOverwrite(folder + u'/' + (name.isNull() ? filename : name), allowOverwrite);
  }
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(WebDownload& download) override {
    note('W', download);
    return hasWindow ? this : nullptr;
  }
  bool downloadShouldDecodeSourceDataOfMIMEType(WebDownload& download, const QString&) override {
    note('S', download);
    return false;
  }
  void downloadDidCreateDestination(WebDownload& download, const QString& created) override {
    path = created;
    note('C', download);
  }
  void downloadDidReceiveDataOfLength(WebDownload& download, std::uint64_t length) override {
    received += length;
    note('L', download);
  }
  void downloadDidFinish(WebDownload& download) override { note('F', download); }
  void downloadDidFailWithError(WebDownload& download, const platform::DownloadError& e) override {
    error = e.localizedDescription.toStdString();
    failingURL = e.failingURLString;
    note('E', download);
  }
  void beginAuthenticationSheet(const platform::AuthenticationChallenge& challenge,
                                std::function<void(std::optional<Credential>)> answer) override {
    challenges.push_back(challenge);
    if (leavesSheetOpen) return openSheet.swap(answer);
    if (answers.empty()) answers.emplace_back();
    const std::optional<Credential> next = answers.front();
    answers.pop_front();
    if (challenges.size() % 2 == 0) return answer(next);  // a sheet may answer at once, or later
    const auto later = [answer = std::move(answer), next] { answer(next); };
    QMetaObject::invokeMethod(QCoreApplication::instance(), later, Qt::QueuedConnection);
  }

 private:
  void note(char call, WebDownload& download) {
    calls.push_back(call);
    if (hook) hook(call, download);
  }
};

class DownloadTest : public testing::Test {
 protected:
  DownloadTest() { restart(); }

  void restart(const platform::DownloadOptions& options = {}) {
    service.reset();
    service = std::make_unique<platform::CurlDownloadService>(settings, options);
  }
  [[nodiscard]] DownloadRecorder recorder() const {
    DownloadRecorder made;
    made.folder = directory.path();
    return made;
  }
  std::shared_ptr<WebDownload> start(const std::string& url, DownloadRecorder& recorder) const {
    return service->startDownload({*platform::URL::URLWithString(QString::fromStdString(url))}, recorder);
  }

  /// Downloads `url` to its end, and checks what must always hold.
  DownloadRecorder& download(const std::string& url, DownloadRecorder& recorder) const {
    QStringList expected = names();
    const std::weak_ptr<WebDownload> download = start(url, recorder);
    EXPECT_EQ(recorder.calls, "") << "called from inside startDownload";
    EXPECT_TRUE(RunLoopUntil([&] { return recorder.isOver(); })) << url << " after " << recorder.calls;
    EXPECT_TRUE(download.expired());
    static const std::regex order("B(W*|W*RS?D(CL*C?L*)?)E|BW*RS?DCL*C?L*F");
    EXPECT_TRUE(std::regex_match(recorder.calls, order)) << recorder.calls;
    EXPECT_EQ(recorder.calls.ends_with('E'), recorder.error.ends_with('.')) << recorder.error;
    if (recorder.calls.ends_with('F')) {
      EXPECT_EQ(recorder.received, content(recorder).size());
      if (!expected.contains(fileName(recorder))) expected << fileName(recorder);
    }
    expected.sort();
    EXPECT_EQ(names(), expected) << recorder.error;
    return recorder;
  }
  DownloadRecorder download(const std::string& url) const {
    DownloadRecorder made = recorder();
    return download(url, made);
  }

  /// Everything in the folder, hidden or not.
  [[nodiscard]] QStringList names() const {
    return QDir(directory.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
  }
  [[nodiscard]] static QString fileName(const DownloadRecorder& recorder) {
    return recorder.path.sliced(recorder.path.lastIndexOf(u'/') + 1);
  }
  [[nodiscard]] static std::string content(const DownloadRecorder& recorder) {
    QFile file(recorder.path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(unreadable)";
  }

  inline static const platform::CurlGlobal curl{};
  platform::TransferSettings settings;
  QTemporaryDir directory;
  std::unique_ptr<platform::CurlDownloadService> service;
};

}  // namespace quillforth::tests
