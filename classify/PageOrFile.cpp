// SPDX-License-Identifier: MIT

#include "classify/PageOrFile.h"

#include <QByteArray>
#include <algorithm>
#include <optional>
#include <string_view>
#include <thread>

#include "classify/HTTPProbe.h"
#include "common/BoundedText.h"
#include "net/HeaderText.h"
#include "net/URL.h"
#include "net/UTF8.h"

namespace quillforth::classify {

namespace {

constexpr std::int32_t kProbeTimeoutSeconds = 10;

bool IsTextType(const QString& type) {
  return type.startsWith(QStringLiteral("text/"), Qt::CaseSensitive);
}

// Nothing when the type is not valid UTF-8. It ends at its first NUL byte.
std::optional<QString> ReadableType(const platform::PascalString& type) {
  return platform::TextFromUTF8(common::UpToNul(platform::PascalStringView(type)));
}

Classification ClassifyExtension(const QString& extension, const CExtensionMap& map) {
  const QByteArray spelled = "." + extension.toUtf8();
  const common::BoundedText key(
      std::string_view(spelled.constData(), static_cast<std::size_t>(spelled.size())));
  Classification result{false, ClassificationReason::extensionUnknown, QString::fromUtf8(key.c_str()), {}};
  const platform::ICMapEntry* record = map.find(key.view());
  if (record == nullptr) return result;
  const std::optional<QString> type = ReadableType(record->MIMEType);
  if (!type) {
    result.reason = ClassificationReason::typeUnreadable;
    return result;
  }
  return {IsTextType(*type), ClassificationReason::extensionKnown, result.extension, *type};
}

// Empty when ISO Latin-1 has no form for one of its characters.
QByteArray Latin1Bytes(const QString& text) {
  const bool fits = std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() <= 0xff; });
  return fits ? text.toLatin1() : QByteArray();
}

Classification ProbeURL(const QString& url, platform::HTTPReadStreamFactory& streams) {
  CHTTPProbe probe(kProbeTimeoutSeconds, true, streams);
  Classification result{false, ClassificationReason::serverDidNotAnswer, {}, {}};
  if (probe.head(Latin1Bytes(url).constData(), platform::kUserAgent, "", "") != 0) return result;
  while (!probe.workerFinished()) std::this_thread::yield();
  if (!probe.succeeded()) return result;
  result.reason = ClassificationReason::serverGaveNoType;
  const auto& header = probe.responseHeader();
  const auto type = header ? header->valueOfField("Content-Type") : std::nullopt;
  if (!type) return result;
  result.reason = ClassificationReason::serverAnswered;
  result.type = QString::fromLatin1(type->data(), static_cast<qsizetype>(type->size()));
  result.isPage = IsTextType(result.type);
  return result;
}

}  // namespace

Classification classifyURL(const QString& url, const CExtensionMap& map,
                           platform::HTTPReadStreamFactory& streams) {
  const std::optional<platform::URL> parsed = platform::URL::URLWithString(url);
  if (!parsed) return {};
  const QString extension = parsed->pathExtension();
  return extension.isEmpty() ? ProbeURL(url, streams) : ClassifyExtension(extension, map);
}

bool isWebPageURL(const QString& url, const CExtensionMap& map, platform::HTTPReadStreamFactory& streams) {
  return classifyURL(url, map, streams).isPage;
}

bool probeURLIsText(const QString& url, platform::HTTPReadStreamFactory& streams) {
  return ProbeURL(url, streams).isPage;
}

}  // namespace quillforth::classify
