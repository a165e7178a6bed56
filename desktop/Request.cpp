// SPDX-License-Identifier: MIT

#include "desktop/Request.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>
#include <algorithm>
#include <array>
#include <filesystem>
#include <numeric>

#include "net/URL.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kMaxTokenLength = 1024;

struct KindName {
  Request::Kind kind;
  const char* name;
};
constexpr std::array kKindNames = {
    KindName{Request::Kind::activate, "activate"}, KindName{Request::Kind::open, "open"},
    KindName{Request::Kind::getURL, "get-url"}, KindName{Request::Kind::downloadText, "download-text"},
    KindName{Request::Kind::downloadSelection, "download-selection"}};

bool IsTooLong(const QString& text) {
  return text.size() > Request::kMaxTextLength;
}

bool HasRightCount(const Request& request) {
  switch (request.kind) {
    case Request::Kind::open:
      return true;
    case Request::Kind::getURL:
    case Request::Kind::downloadText:
      return request.texts.size() == 1;
    default:
      return request.texts.isEmpty();
  }
}

// The steady clock is CLOCK_MONOTONIC.
std::int64_t Now() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

bool Exists(const platform::FileReference& file) {
  std::error_code error;
  return std::filesystem::exists(file.path(), error);
}

}  // namespace

bool IsFileURI(const QString& uri) {
  return uri.startsWith(QStringLiteral("file:"), Qt::CaseInsensitive);
}

bool IsUsableURI(const QString& uri) {
  if (IsTooLong(uri)) return false;
  if (IsFileURI(uri)) return platform::FileAtURL(uri.toUtf8()).has_value();
  const std::optional<platform::URL> url = platform::URL::URLWithString(uri);
  return url && platform::CanBeFetched(*url);
}

qsizetype SizeOf(const QStringList& texts) {
  return std::accumulate(texts.begin(), texts.end(), qsizetype{0}, [](qsizetype sum, const QString& text) {
    return sum + Request::kTextSize + text.size();
  });
}

Request::HandOver NewHandOver(std::chrono::milliseconds patience) {
  return {QUuid::createUuid().toString(QUuid::WithoutBraces), Now() + patience.count()};
}

bool IsLate(const Request::HandOver& handOver) {
  return !handOver.identity.isEmpty() && Now() > handOver.deadline;
}

QString ActivationTokenIn(const QVariantMap& platformData) {
  for (const char* key : {"activation-token", "desktop-startup-id"}) {
    QString token = platformData.value(QLatin1StringView(key)).toString();
    if (!token.isEmpty() && token.size() <= kMaxTokenLength && !token.contains(QChar::Null)) return token;
  }
  return {};
}

QString Fault(const Request& request) {
  const QStringList& texts = request.texts;
  if (!HasRightCount(request)) return QStringLiteral("nothing to download");
  if (SizeOf(texts) > Request::kMaxSize) return QStringLiteral("too much at a time");
  if (request.kind != Request::Kind::open) {
    return std::any_of(texts.begin(), texts.end(), IsTooLong) ? QStringLiteral("too long") : QString();
  }
  const bool hasUsable = texts.isEmpty() || std::any_of(texts.begin(), texts.end(), IsUsableURI);
  return hasUsable ? QString() : QString::fromLatin1(kUnusableURI);
}

QByteArray LineOfRequest(const Request& request) {
  const auto* kind = std::find_if(kKindNames.begin(), kKindNames.end(),
                                  [&](const KindName& row) { return row.kind == request.kind; });
  const QJsonObject object{{QStringLiteral("kind"), QLatin1StringView(kind->name)},
                           {QStringLiteral("texts"), QJsonArray::fromStringList(request.texts)},
                           {QStringLiteral("activation-token"), request.activationToken},
                           {QStringLiteral("identity"), request.handOver.identity},
                           {QStringLiteral("deadline"), static_cast<qint64>(request.handOver.deadline)}};
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Request> RequestInLine(const QByteArray& line) {
  const QJsonObject object = QJsonDocument::fromJson(line).object();
  const QString name = object.value(QStringLiteral("kind")).toString();
  const auto* kind = std::find_if(kKindNames.begin(), kKindNames.end(),
                                  [&](const KindName& row) { return name == QLatin1StringView(row.name); });
  if (kind == kKindNames.end()) return std::nullopt;
  Request request{.kind = kind->kind, .activationToken = ActivationTokenIn(object.toVariantMap())};
  request.handOver = {object.value(QStringLiteral("identity")).toString().left(kMaxTokenLength),
                      object.value(QStringLiteral("deadline")).toInteger()};
  for (const auto& text : object.value(QStringLiteral("texts")).toArray()) {
    request.texts.append(text.toString());
  }
  return Fault(request).isNull() ? std::optional(request) : std::nullopt;
}

std::optional<QString> URIOfArgument(const std::string& argument) {
  std::error_code error;
  const platform::FileReference file(std::filesystem::absolute(argument, error).string());
  if (!error && Exists(file)) return QString::fromLatin1(platform::FileURL(file));
  QString text = QString::fromStdString(argument);
  const bool isMissing = IsFileURI(text) && !Exists(platform::FileAtURL(argument).value_or(file));
  return isMissing || !IsUsableURI(text) ? std::nullopt : std::optional(std::move(text));
}

}  // namespace quillforth::desktop
