// SPDX-License-Identifier: MIT
//
// How a run of `get` tells what becomes of each URL.
//
// Three forms: lines for pipes and files, JSON objects for programs, and a live display for people
// (ProgressDisplay.h). Texts are handed in as they came, URLs without credentials; making them fit to show
// is the reporter's work. Main thread.
#pragma once

#include <QString>
#include <cstdint>

#include "platform/TransferFailure.h"
#include "terminal/Output.h"

class QJsonObject;

namespace quillforth::terminal {

struct Summary {
  int finished = 0;
  int failed = 0;
  int notFetched = 0;  ///< still waiting when the run ended
  int skipped = 0;     ///< there already
  int exitStatus = 0;
};

/// A page or a file that did not come.
struct Failure {
  QString url;  ///< without credentials
  QString reason;
  bool isPage = false;
  platform::TransferFailure cause = {};
};

class Reporter {
 public:
  virtual ~Reporter() = default;
  /// The run is about to block, "Loading" a page or "Asking" what a URL is, until `didWait`.
  virtual void willWait(const QString& what, const QString& url) = 0;
  virtual void didWait() = 0;
  virtual void pageDidLoad(const QString& url, int links) = 0;
  virtual void fileDidBegin(const QString& url) = 0;
  /// Comes often. `expected`: -1 when unknown.
  virtual void fileDidProgress(const QString& url, std::uint64_t received, std::int64_t expected) = 0;
  virtual void fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) = 0;
  virtual void didFail(const Failure& failure) = 0;
  /// It has failed, and will be tried again when all else is done.
  virtual void willRetry(const Failure& failure) = 0;
  /// `where`: its file, or the list that it stands in.
  virtual void didSkip(const QString& url, const QString& where) = 0;
  /// `name`: what the URL suggests.
  virtual void wouldFetch(const QString& url, const QString& name) = 0;
  /// A file was sorted.
  virtual void didMove(const QString& from, const QString& to) = 0;
  /// A message for the person at the terminal, apart from the results; one line or more.
  virtual void notice(const QString& message) = 0;
  /// Leaves the terminal to somebody else, until the next event.
  virtual void suspend() = 0;
  virtual void end(const Summary& summary) = 0;
};

/// Why a link failed that `app::LinkFilter` could not judge.
[[nodiscard]] QString TooMuchWorkReason();
/// What is told of a word that `--accept` and `--reject` do not know.
[[nodiscard]] QString UnknownWordNotice(const QString& word);
/// What is told of a text that no list can hold.
[[nodiscard]] QString NotInListNotice(const QString& text);

/// "done URL -> PATH", "failed URL: reason" and the like on `results`, a line each; all else on `errors`.
class LineReporter : public Reporter {
 public:
  LineReporter(Output& results, Output& errors) : results_(results), errors_(errors) {}

  void willWait(const QString& /*what*/, const QString& /*url*/) override {}
  void didWait() override {}
  void pageDidLoad(const QString& url, int links) override;
  void fileDidBegin(const QString& /*url*/) override {}
  void fileDidProgress(const QString&, std::uint64_t, std::int64_t) override {}
  void fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) override;
  void didFail(const Failure& failure) override;
  void willRetry(const Failure& failure) override;
  void didSkip(const QString& url, const QString& where) override;
  void wouldFetch(const QString& url, const QString& name) override;
  void didMove(const QString& from, const QString& to) override;
  void notice(const QString& message) override;
  void suspend() override {}
  void end(const Summary& summary) override;

 private:
  Output& results_;
  Output& errors_;
};

/// Of these lines, only those of what failed, and of a dry run.
class QuietReporter final : public LineReporter {
 public:
  using LineReporter::LineReporter;
  void fileDidFinish(const QString&, const QString&, std::uint64_t) override {}
  void willRetry(const Failure& /*failure*/) override {}
  void didSkip(const QString&, const QString&) override {}
  void didMove(const QString&, const QString&) override {}
};

/// One JSON object (RFC 8259) a line on `results`; its member "event" says what it is.
class JsonReporter final : public Reporter {
 public:
  JsonReporter(Output& results, Output& errors) : results_(results), errors_(errors) {}

  void willWait(const QString& /*what*/, const QString& /*url*/) override {}
  void didWait() override {}
  void pageDidLoad(const QString& url, int links) override;
  void fileDidBegin(const QString& url) override;
  /// At most one object a second.
  void fileDidProgress(const QString& url, std::uint64_t received, std::int64_t expected) override;
  void fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) override;
  void didFail(const Failure& failure) override;
  void willRetry(const Failure& failure) override;
  void didSkip(const QString& url, const QString& where) override;
  void wouldFetch(const QString& url, const QString& name) override;
  void didMove(const QString& from, const QString& to) override;
  void notice(const QString& message) override;
  void suspend() override {}
  void end(const Summary& summary) override;

 private:
  void write(const QJsonObject& event);

  Output& results_;
  Output& errors_;
  std::int64_t lastProgress_ = 0;  // milliseconds of the steady clock
};

/// The lines of a LineReporter, without their newlines.
[[nodiscard]] QByteArray DoneLine(const QString& url, const QString& path);
[[nodiscard]] QByteArray FailedLine(const Failure& failure);
[[nodiscard]] QByteArray RetryLine(const Failure& failure);
[[nodiscard]] QByteArray SkippedLine(const QString& url, const QString& where);
[[nodiscard]] QByteArray MovedLine(const QString& from, const QString& to);
/// The object in ASCII, so that nothing in it steers a terminal.
[[nodiscard]] QByteArray JsonLine(const QJsonObject& object);
/// What standard error gets: "quillforth-cli: " and the message, made one harmless line.
[[nodiscard]] QByteArray NoticeText(const QString& message);
/// What is worth saying at the end; empty when the lines before, or the user, have said it all.
[[nodiscard]] QString SummaryNotice(const Summary& summary);

}  // namespace quillforth::terminal
