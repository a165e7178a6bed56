// SPDX-License-Identifier: MIT

#include "terminal/Reporter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <chrono>

#include "net/URL.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

constexpr std::int64_t kMillisecondsBetweenProgressEvents = 1000;

std::int64_t SteadyMilliseconds() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

QJsonObject Event(QLatin1String name) {
  return {{QStringLiteral("event"), name}};
}

QJsonObject URLEvent(QLatin1String name, const QString& url) {
  QJsonObject event = Event(name);
  event.insert(QStringLiteral("url"), url);
  return event;
}

QJsonObject FailureEvent(QLatin1String name, const Failure& failure) {
  QJsonObject event = URLEvent(name, failure.url);
  event.insert(QStringLiteral("reason"), failure.reason);
  event.insert(QStringLiteral("kind"), failure.isPage ? QStringLiteral("page") : QStringLiteral("file"));
  if (!failure.cause.code.isNull()) event.insert(QStringLiteral("code"), failure.cause.code);
  if (failure.cause.httpStatus != 0) event.insert(QStringLiteral("httpStatus"), failure.cause.httpStatus);
  return event;
}

QString NoLinksNotice(const QString& url) {
  return QStringLiteral("no links on %1").arg(url);
}

}  // namespace

QByteArray DoneLine(const QString& url, const QString& path) {
  return (QStringLiteral("done ") + Printable(url) + QStringLiteral(" -> ") + Printable(path)).toUtf8();
}

QByteArray FailedLine(const Failure& failure) {
  return (QStringLiteral("failed ") + Printable(failure.url) + QStringLiteral(": ") +
          Printable(failure.reason))
      .toUtf8();
}

QByteArray RetryLine(const Failure& failure) {
  return "retry" + FailedLine(failure).sliced(6);
}

QByteArray SkippedLine(const QString& url, const QString& where) {
  return (QStringLiteral("skipped ") + Printable(url) + QStringLiteral(" -> ") + Printable(where)).toUtf8();
}

QByteArray MovedLine(const QString& from, const QString& to) {
  return (QStringLiteral("moved ") + Printable(from) + QStringLiteral(" -> ") + Printable(to)).toUtf8();
}

QByteArray JsonLine(const QJsonObject& object) {
  const QString text = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
  QByteArray line;
  line.reserve(text.size());
  // Beyond ASCII everything is escaped: some of it would steer a terminal.
  for (const QChar c : text) {
    if (c.unicode() < 0x7f) {
      line.append(static_cast<char>(c.unicode()));
    } else {
      line.append("\\u").append(QByteArray::number(c.unicode(), 16).rightJustified(4, '0'));
    }
  }
  return line;
}

QByteArray NoticeText(const QString& message) {
  return "quillforth-cli: " + Printable(message).toUtf8() + '\n';
}

QString SummaryNotice(const Summary& summary) {
  const bool wasInterrupted = summary.exitStatus >= 128;
  if (summary.notFetched == 0 || wasInterrupted) return {};
  return QStringLiteral("%1 of the URLs not fetched").arg(summary.notFetched);
}

QString TooMuchWorkReason() {
  return QStringLiteral("A regular expression needs too much work on this URL.");
}

QString UnknownWordNotice(const QString& word) {
  return QStringLiteral("\"%1\" is neither a kind nor a known extension").arg(Excerpt(word));
}

QString NotInListNotice(const QString& text) {
  return Excerpt(platform::WithoutCredentials(text)) +
         QStringLiteral(": no list of URLs can hold this text, so it is left out of what is left");
}

void LineReporter::pageDidLoad(const QString& url, int links) {
  if (links == 0) notice(NoLinksNotice(url));
}

void LineReporter::fileDidFinish(const QString& url, const QString& path, std::uint64_t /*bytes*/) {
  results_.writeLine(DoneLine(url, path));
}

void LineReporter::didFail(const Failure& failure) {
  results_.writeLine(FailedLine(failure));
}

void LineReporter::willRetry(const Failure& failure) {
  results_.writeLine(RetryLine(failure));
}

void LineReporter::didSkip(const QString& url, const QString& where) {
  results_.writeLine(SkippedLine(url, where));
}

void LineReporter::wouldFetch(const QString& url, const QString& name) {
  results_.writeLine(
      (QStringLiteral("would fetch %1 -> %2 (a guess)").arg(Printable(url), Printable(name))).toUtf8());
}

void LineReporter::didMove(const QString& from, const QString& to) {
  results_.writeLine(MovedLine(from, to));
}

void LineReporter::notice(const QString& message) {
  errors_.write(NoticeText(message));
}

void LineReporter::end(const Summary& summary) {
  const QString message = SummaryNotice(summary);
  if (!message.isEmpty() && !results_.failed()) notice(message);
}

void JsonReporter::write(const QJsonObject& event) {
  results_.writeLine(JsonLine(event));
}

void JsonReporter::pageDidLoad(const QString& url, int links) {
  QJsonObject event = URLEvent(QLatin1String("page"), url);
  event.insert(QStringLiteral("links"), links);
  write(event);
}

void JsonReporter::fileDidBegin(const QString& url) {
  write(URLEvent(QLatin1String("begin"), url));
}

void JsonReporter::fileDidProgress(const QString& url, std::uint64_t received, std::int64_t expected) {
  const std::int64_t now = SteadyMilliseconds();
  if (now - lastProgress_ < kMillisecondsBetweenProgressEvents) return;
  lastProgress_ = now;
  QJsonObject event = URLEvent(QLatin1String("progress"), url);
  event.insert(QStringLiteral("received"), static_cast<qint64>(received));
  event.insert(QStringLiteral("expected"), expected < 0 ? QJsonValue() : QJsonValue(qint64{expected}));
  write(event);
}

void JsonReporter::fileDidFinish(const QString& url, const QString& path, std::uint64_t bytes) {
  QJsonObject event = URLEvent(QLatin1String("done"), url);
  event.insert(QStringLiteral("path"), path);
  event.insert(QStringLiteral("bytes"), static_cast<qint64>(bytes));
  write(event);
}

void JsonReporter::didFail(const Failure& failure) {
  write(FailureEvent(QLatin1String("failed"), failure));
}

void JsonReporter::willRetry(const Failure& failure) {
  write(FailureEvent(QLatin1String("retry"), failure));
}

void JsonReporter::didSkip(const QString& url, const QString& where) {
  QJsonObject event = URLEvent(QLatin1String("skipped"), url);
  event.insert(QStringLiteral("where"), where);
  write(event);
}

void JsonReporter::wouldFetch(const QString& url, const QString& name) {
  QJsonObject event = URLEvent(QLatin1String("wouldFetch"), url);
  event.insert(QStringLiteral("guessedName"), name);
  write(event);
}

void JsonReporter::didMove(const QString& from, const QString& to) {
  QJsonObject event = Event(QLatin1String("moved"));
  event.insert(QStringLiteral("from"), from);
  event.insert(QStringLiteral("to"), to);
  write(event);
}

void JsonReporter::notice(const QString& message) {
  errors_.write(NoticeText(message));
}

void JsonReporter::end(const Summary& summary) {
  QJsonObject event = Event(QLatin1String("end"));
  event.insert(QStringLiteral("done"), summary.finished);
  event.insert(QStringLiteral("failed"), summary.failed);
  event.insert(QStringLiteral("notFetched"), summary.notFetched);
  if (summary.skipped > 0) event.insert(QStringLiteral("skipped"), summary.skipped);
  event.insert(QStringLiteral("status"), summary.exitStatus);
  write(event);
}

}  // namespace quillforth::terminal
