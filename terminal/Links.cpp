// SPDX-License-Identifier: MIT

#include "terminal/Links.h"

#include <QByteArray>
#include <QJsonObject>

#include "common/BoundedText.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "terminal/InputFile.h"
#include "terminal/Reporter.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

// Links go out in portions of about this many bytes.
constexpr qsizetype kPortion = 65536;

InputFile LoadPage(const std::string& source, platform::PageLoader& pages) {
  const QString shown = platform::WithoutCredentials(QString::fromStdString(source));
  const std::optional<platform::URL> url = platform::URL::URLWithString(QString::fromStdString(source));
  if (!url) return {{}, shown + QStringLiteral(": not a valid URL")};
  platform::PageLoad load = pages.resourceData(*url);
  if (!load.data) return {{}, shown + QStringLiteral(": ") + load.failure};
  return {*std::move(load.data), {}};
}

linkextract::LinkTable LinksOf(const QByteArray& bytes, const std::string& source,
                               const LinksArguments& arguments, const classify::CExtensionMap& extensions) {
  const std::string_view page(bytes.constData(), static_cast<std::size_t>(bytes.size()));
  if (!arguments.base) {
    return linkextract::ExtractPageLinks(page, arguments.url.value_or(source), extensions);
  }
  linkextract::LinkTable table;
  const common::BoundedText base(*arguments.base);
  const std::optional<linkextract::PageText> text = linkextract::DecodePage(page);
  if (text && !base.empty()) linkextract::ScanPage(text->view(), base, table, extensions);
  return table;
}

void AppendField(QByteArray& portion, std::string_view field) {
  portion.append(field).append('\0');
}

QByteArray JsonOf(const std::string& source, std::string_view link, const QString& url) {
  return JsonLine({{QStringLiteral("source"), platform::WithoutCredentials(QString::fromStdString(source))},
                   {QStringLiteral("link"), QString::fromUtf8(link)},
                   {QStringLiteral("url"), platform::WithoutCredentials(url)}});
}

// A link that is not valid UTF-8 is left out, as the queue does.
void AppendLine(QByteArray& portion, const std::string& source, const linkextract::LinkEntry& entry,
                bool isJson) {
  const common::BoundedText url = entry.value();
  if (!linkextract::IsValidUTF8(url.view())) return;
  if (isJson) {
    portion.append(JsonOf(source, entry.key(), QString::fromUtf8(url.view())));
  } else {
    AppendPercentEncoded(portion, url.view());
  }
  portion.append('\n');
}

}  // namespace

bool IsWebSource(const std::string& source) {
  return platform::HasWebScheme(QString::fromStdString(source));
}

std::optional<QString> PrintLinks(const std::string& source, const LinksArguments& arguments,
                                  const classify::CExtensionMap& extensions, const app::LinkFilter& filter,
                                  platform::PageLoader& pages, Output& output) {
  const InputFile page = IsWebSource(source) ? LoadPage(source, pages)
                                             : ReadInputFile(source, platform::PageLoader::kMaxPageLength,
                                                             QStringLiteral("longer than a page may be"));
  if (!page.error.isNull()) return page.error;
  const QString own = QString::fromStdString(arguments.base.value_or(arguments.url.value_or(source)));
  QByteArray portion;
  int unjudgedCount = 0;
  for (const linkextract::LinkEntry& entry : LinksOf(page.bytes, source, arguments, extensions)) {
    const common::BoundedText url = entry.value();
    if (!filter.isEmpty()) {
      const auto verdict = filter.passes({QString::fromUtf8(url.view()), own, own}, extensions);
      if (verdict == app::LinkFilter::Verdict::tooMuchWork) ++unjudgedCount;
      if (verdict != app::LinkFilter::Verdict::yes) continue;
    }
    if (arguments.withFilename) AppendField(portion, source);
    if (arguments.null) {
      AppendField(portion, entry.key());
      AppendField(portion, url.view());
    } else {
      AppendLine(portion, source, entry, arguments.json);
    }
    if (portion.size() < kPortion) continue;
    if (!output.write(portion)) return std::nullopt;
    portion.resize(0);
  }
  output.write(portion);
  if (unjudgedCount == 0) return std::nullopt;
  return QStringLiteral("%1: links on which a regular expression needs too much work: %2")
      .arg(platform::WithoutCredentials(QString::fromStdString(source)))
      .arg(unjudgedCount);
}

}  // namespace quillforth::terminal
