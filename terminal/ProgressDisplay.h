// SPDX-License-Identifier: MIT
//
// The live display of `get` on a terminal: what is under way at the bottom, finished files scrolling above.
//
//     done http://host/a.jpg -> /home/me/a.jpg        finished files: whole lines, never touched again
//     http://host/files/b.zip                         the live area: three lines, redrawn in place
//     [########------------] 17 urls queued
//     42 percent, (1,234 of 2,938 bytes, Elapsed: 1 min 3 secs , Rem
//
// Drawing happens some ten times a second, however often something changes, and each time in one write: a
// thousand small files a second neither flicker nor slow the transfers. The window's size is asked for at
// each drawing, and what a narrower window has wrapped is taken into account. Uses the escape sequences of
// ECMA-48 that every terminal since the VT100 knows. Main thread.
#pragma once

#include <QByteArrayList>
#include <QTimer>

#include "terminal/Reporter.h"
#include "terminal/TerminalOutlets.h"

namespace quillforth::terminal {

struct WindowSize {
  int columns = 80;
  int rows = 24;
  friend bool operator==(const WindowSize&, const WindowSize&) = default;
};

/// The lines of the live area, each narrower than the window and fewer than its rows; none when nothing is
/// under way.
[[nodiscard]] QByteArrayList LiveLines(const ShownValues& shown, WindowSize size);

class ProgressDisplay final : public Reporter {
 public:
  enum class Colour { none, some };
  /// `terminal` is one; `shown` outlives this.
  ProgressDisplay(Output& terminal, Output& errors, const ShownValues& shown, Colour colour);
  ~ProgressDisplay() override;

  void willWait(const QString& what, const QString& url) override;
  void didWait() override { waitingFor_ = QString(); }
  void pageDidLoad(const QString& url, int links) override;
  void fileDidBegin(const QString& /*url*/) override {}
  void fileDidProgress(const QString&, std::uint64_t, std::int64_t) override {}
  void fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) override;
  void didFail(const Failure& failure) override;
  void willRetry(const Failure& failure) override { appendLine("", RetryLine(failure)); }
  void didSkip(const QString& url, const QString& where) override { appendLine("", SkippedLine(url, where)); }
  /// A dry run shows lines.
  void wouldFetch(const QString&, const QString&) override {}
  void didMove(const QString& from, const QString& to) override { appendLine("", MovedLine(from, to)); }
  void notice(const QString& message) override;
  void suspend() override;
  void end(const Summary& summary) override;

 private:
  void appendLine(const char* colour, const QByteArray& line);
  void draw();
  void write(const QByteArrayList& live);
  [[nodiscard]] QByteArray eraseSequence(int columns) const;

  Output& terminal_;
  Output& errors_;
  const ShownValues& shown_;
  Colour colour_;
  QTimer timer_;
  QString waitingFor_;   // null: nothing blocks the run
  QByteArray finished_;  // lines that wait for the next drawing
  QByteArrayList drawn_;
  WindowSize drawnSize_;
};

}  // namespace quillforth::terminal
