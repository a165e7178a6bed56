// SPDX-License-Identifier: MIT

#include "terminal/Links.h"

#include <fcntl.h>
#include <unistd.h>

#include <QByteArray>
#include <cerrno>
#include <cstring>

#include "common/BoundedText.h"
#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

// Links go out in portions of about this many bytes.
constexpr qsizetype kPortion = 65536;

struct Page {
  QByteArray bytes;
  QString error;  // null when the page was read
};

Page ReadDescriptor(int descriptor, const QString& name) {
  QByteArray bytes;
  QByteArray chunk(kPortion, Qt::Uninitialized);
  for (;;) {
    const ssize_t length = ::read(descriptor, chunk.data(), static_cast<std::size_t>(chunk.size()));
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return {{}, name + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno))};
    if (length == 0) return {bytes, {}};
    bytes.append(chunk.constData(), length);
    if (bytes.size() > platform::PageLoader::kMaxPageLength) {
      return {{}, name + QStringLiteral(": longer than a page may be")};
    }
  }
}

Page ReadFile(const std::string& path) {
  if (path == "-") return ReadDescriptor(STDIN_FILENO, QStringLiteral("standard input"));
  const QString name = QString::fromStdString(path);
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return {{}, name + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno))};
  Page page = ReadDescriptor(descriptor, name);
  ::close(descriptor);
  return page;
}

Page LoadPage(const std::string& source, platform::PageLoader& pages) {
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

void AppendLine(QByteArray& portion, std::string_view url) {
  if (!linkextract::IsValidUTF8(url)) return;
  AppendPercentEncoded(portion, url);
  portion.append('\n');
}

}  // namespace

bool IsWebSource(const std::string& source) {
  return platform::HasWebScheme(QString::fromStdString(source));
}

std::optional<QString> PrintLinks(const std::string& source, const LinksArguments& arguments,
                                  const classify::CExtensionMap& extensions, platform::PageLoader& pages,
                                  Output& output) {
  const Page page = IsWebSource(source) ? LoadPage(source, pages) : ReadFile(source);
  if (!page.error.isNull()) return page.error;
  QByteArray portion;
  for (const linkextract::LinkEntry& entry : LinksOf(page.bytes, source, arguments, extensions)) {
    const common::BoundedText url = entry.value();
    if (arguments.withFilename) AppendField(portion, source);
    if (arguments.null) {
      AppendField(portion, entry.key());
      AppendField(portion, url.view());
    } else {
      AppendLine(portion, url.view());
    }
    if (portion.size() < kPortion) continue;
    if (!output.write(portion)) return std::nullopt;
    portion.resize(0);
  }
  output.write(portion);
  return std::nullopt;
}

}  // namespace quillforth::terminal
