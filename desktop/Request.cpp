// SPDX-License-Identifier: MIT

#include "desktop/Request.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <array>
#include <filesystem>
#include <numeric>

#include "platform/FileURL.h"
#include "platform/URL.h"

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

bool IsURI(const QString& text) {
  return IsFileURI(text) ? platform::FileAtURL(text.toUtf8()).has_value()
                         : platform::URL::URLWithString(text).has_value();
}

bool HasRightCount(const Request& request) {
  switch (request.kind) {
    case Request::Kind::open:
      return request.texts.size() <= Request::kMaxTexts;
    case Request::Kind::getURL:
    case Request::Kind::downloadText:
      return request.texts.size() == 1;
    default:
      return request.texts.isEmpty();
  }
}

}  // namespace

bool IsFileURI(const QString& uri) {
  return uri.startsWith(QStringLiteral("file:"), Qt::CaseInsensitive);
}

QString ActivationTokenIn(const QVariantMap& platformData) {
  for (const char* key : {"activation-token", "desktop-startup-id"}) {
    QString token = platformData.value(QLatin1StringView(key)).toString();
    if (!token.isEmpty() && token.size() <= kMaxTokenLength && !token.contains(QChar::Null)) return token;
  }
  return {};
}

QString Fault(const Request& request) {
  if (!HasRightCount(request)) return QStringLiteral("too many files and URLs at a time, or none");
  const auto isTooLong = [](const QString& text) { return text.size() > Request::kMaxTextLength; };
  if (std::any_of(request.texts.begin(), request.texts.end(), isTooLong)) {
    return QStringLiteral("too long");
  }
  const qsizetype length =
      std::accumulate(request.texts.begin(), request.texts.end(), qsizetype{0},
                      [](qsizetype sum, const QString& text) { return sum + text.size(); });
  if (length > Request::kMaxLength) return QStringLiteral("too much at a time");
  if (request.kind == Request::Kind::open &&
      !std::all_of(request.texts.begin(), request.texts.end(), IsURI)) {
    return QStringLiteral("neither a file nor a URL");
  }
  return {};
}

QByteArray LineOfRequest(const Request& request) {
  const auto* kind = std::find_if(kKindNames.begin(), kKindNames.end(),
                                  [&](const KindName& row) { return row.kind == request.kind; });
  const QJsonObject object{{QStringLiteral("kind"), QLatin1StringView(kind->name)},
                           {QStringLiteral("texts"), QJsonArray::fromStringList(request.texts)},
                           {QStringLiteral("activation-token"), request.activationToken}};
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Request> RequestInLine(const QByteArray& line) {
  const QJsonObject object = QJsonDocument::fromJson(line).object();
  const QString name = object.value(QStringLiteral("kind")).toString();
  const auto* kind = std::find_if(kKindNames.begin(), kKindNames.end(),
                                  [&](const KindName& row) { return name == QLatin1StringView(row.name); });
  if (kind == kKindNames.end()) return std::nullopt;
  Request request{.kind = kind->kind, .activationToken = ActivationTokenIn(object.toVariantMap())};
  for (const auto& text : object.value(QStringLiteral("texts")).toArray()) {
    request.texts.append(text.toString());
  }
  return Fault(request).isNull() ? std::optional(request) : std::nullopt;
}

std::optional<QString> URIOfArgument(const std::string& argument) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::absolute(argument, error);
  if (!error && std::filesystem::exists(path, error)) {
    const platform::FileReference file(path.string());
    return QString::fromLatin1(platform::FileURL(file));
  }
  const QString text = QString::fromStdString(argument);
  return IsURI(text) ? std::optional(text) : std::nullopt;
}

}  // namespace quillforth::desktop
