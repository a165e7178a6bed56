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

#include "terminal/Output.h"

class QJsonObject;

namespace quillforth::terminal {

struct Summary {
  int finished = 0;
  int failed = 0;
  int notFetched = 0;  ///< still waiting when the run ended
  int exitStatus = 0;
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
  /// A page or a file.
  virtual void didFail(const QString& url, const QString& reason) = 0;
  /// A message for the person at the terminal, apart from the results; one line or more.
  virtual void notice(const QString& message) = 0;
  /// Leaves the terminal to somebody else, until the next event.
  virtual void suspend() = 0;
  virtual void end(const Summary& summary) = 0;
};

/// "done URL -> PATH" and "failed URL: reason" on `results`, a line each; all else on `errors`.
class LineReporter final : public Reporter {
 public:
  LineReporter(Output& results, Output& errors) : results_(results), errors_(errors) {}

  void willWait(const QString& /*what*/, const QString& /*url*/) override {}
  void didWait() override {}
  void pageDidLoad(const QString& url, int links) override;
  void fileDidBegin(const QString& /*url*/) override {}
  void fileDidProgress(const QString&, std::uint64_t, std::int64_t) override {}
  void fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) override;
  void didFail(const QString& url, const QString& reason) override;
  void notice(const QString& message) override;
  void suspend() override {}
  void end(const Summary& summary) override;

 private:
  Output& results_;
  Output& errors_;
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
  void didFail(const QString& url, const QString& reason) override;
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
[[nodiscard]] QByteArray FailedLine(const QString& url, const QString& reason);
/// What standard error gets: "quillforth-cli: " and the message, made one harmless line.
[[nodiscard]] QByteArray NoticeText(const QString& message);
/// What is worth saying at the end; empty when the lines before, or the user, have said it all.
[[nodiscard]] QString SummaryNotice(const Summary& summary);

}  // namespace quillforth::terminal
