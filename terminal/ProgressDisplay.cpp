// SPDX-License-Identifier: MIT

#include "terminal/ProgressDisplay.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <utility>

#include "net/URL.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

constexpr int kMillisecondsBetweenDrawings = 100;
constexpr const char* kRed = "\x1b[31m";
constexpr const char* kGreen = "\x1b[32m";
constexpr const char* kPlain = "\x1b[0m";

WindowSize SizeOf(const Output& terminal) {
  winsize size = {};
  WindowSize result;
  if (::ioctl(terminal.descriptor(), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
    result = {size.ws_col, size.ws_row};
  }
  return result;
}

QString Bar(double fraction, int width) {
  // Written so that a NaN counts as nothing.
  const double filled = fraction > 0.0 ? std::min(fraction, 1.0) * width : 0.0;
  const QString done(static_cast<int>(filled), u'#');
  return u'[' + done.leftJustified(width, u'-') + u']';
}

}  // namespace

QByteArrayList LiveLines(const ShownValues& shown, WindowSize size) {
  if (shown.currentURLHidden) return {};
  const int columns = std::max(size.columns - 1, 1);
  const QString url = ElideMiddle(Printable(platform::WithoutCredentials(shown.currentURL)), columns);
  const QString bar =
      shown.progressBarHidden ? QString() : Bar(shown.fraction, std::min(columns / 2, 40)) + u' ';
  const QString text = shown.progressTextHidden ? QString() : Printable(shown.progressText);
  const QByteArrayList lines = {url.toUtf8(), CutToWidth(bar + shown.countText, columns).toUtf8(),
                                CutToWidth(text, columns).toUtf8()};
  return lines.last(std::clamp<qsizetype>(size.rows - 1, 1, lines.size()));
}

ProgressDisplay::ProgressDisplay(Output& terminal, Output& errors, const ShownValues& shown, Colour colour)
    : terminal_(terminal), errors_(errors), shown_(shown), colour_(colour) {
  timer_.callOnTimeout([this] { draw(); });
  timer_.start(kMillisecondsBetweenDrawings);
}

ProgressDisplay::~ProgressDisplay() {
  suspend();
}

void ProgressDisplay::willWait(const QString& what, const QString& url) {
  waitingFor_ = what + u' ' + Printable(url);
  draw();
}

void ProgressDisplay::pageDidLoad(const QString& url, int links) {
  appendLine("", QStringLiteral("page %1: %2 %3")
                     .arg(Printable(url))
                     .arg(links)
                     .arg(links == 1 ? QStringLiteral("link") : QStringLiteral("links"))
                     .toUtf8());
}

void ProgressDisplay::fileDidFinish(const QString& url, const QString& path, std::uint64_t /*bytes*/) {
  appendLine(kGreen, DoneLine(url, path));
}

void ProgressDisplay::didFail(const Failure& failure) {
  appendLine(kRed, FailedLine(failure));
}

void ProgressDisplay::appendLine(const char* colour, const QByteArray& line) {
  if (colour_ == Colour::none || *colour == '\0') {
    finished_.append(line);
  } else {
    // Only the first word, which is the outcome.
    const qsizetype end = line.indexOf(' ');
    finished_.append(colour).append(line.first(end)).append(kPlain).append(line.sliced(end));
  }
  finished_.append('\n');
}

void ProgressDisplay::notice(const QString& message) {
  suspend();
  errors_.write(NoticeText(message));
}

void ProgressDisplay::suspend() {
  write({});
}

void ProgressDisplay::end(const Summary& summary) {
  timer_.stop();
  suspend();
  if (const QString message = SummaryNotice(summary); !message.isEmpty()) notice(message);
  const bool wasInterrupted = summary.exitStatus >= 128;
  if (wasInterrupted || shown_.progressTextHidden || shown_.progressText.isEmpty()) return;
  terminal_.writeLine(Printable(shown_.progressText).toUtf8());
}

void ProgressDisplay::draw() {
  const WindowSize size = SizeOf(terminal_);
  QByteArrayList live;
  if (waitingFor_.isNull()) {
    live = LiveLines(shown_, size);
  } else {
    live = {ElideMiddle(waitingFor_, std::max(size.columns - 1, 1)).toUtf8()};
  }
  if (finished_.isEmpty() && live == drawn_ && size == drawnSize_) return;
  write(live);
}

void ProgressDisplay::write(const QByteArrayList& live) {
  const WindowSize size = SizeOf(terminal_);
  QByteArray bytes = eraseSequence(size.columns);
  bytes.append(std::exchange(finished_, {}));
  for (const QByteArray& line : live) bytes.append(line).append('\n');
  drawn_ = live;
  drawnSize_ = size;
  if (!bytes.isEmpty()) terminal_.write(bytes);
}

QByteArray ProgressDisplay::eraseSequence(int columns) const {
  if (drawn_.isEmpty()) return {};
  int rows = 0;
  for (const QByteArray& line : drawn_) {
    rows += std::max(1, (DisplayWidth(QString::fromUtf8(line)) + columns - 1) / columns);
  }
  return "\r\x1b[" + QByteArray::number(rows) + "A\x1b[J";
}

}  // namespace quillforth::terminal
