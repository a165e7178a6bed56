// SPDX-License-Identifier: MIT

#include "terminal/Classify.h"

#include "classify/PageOrFile.h"
#include "net/URL.h"
#include "terminal/Text.h"

namespace quillforth::terminal {

namespace {

using classify::ClassificationReason;

QString ReasonText(const classify::Classification& classification) {
  switch (classification.reason) {
    case ClassificationReason::notAURL:
      return QStringLiteral("not a valid URL");
    case ClassificationReason::extensionKnown:
      return QStringLiteral("extension %1 is %2").arg(classification.extension, classification.type);
    case ClassificationReason::extensionUnknown:
      return QStringLiteral("extension %1 is not in the table").arg(classification.extension);
    case ClassificationReason::typeUnreadable:
      return QStringLiteral("extension %1 has an unreadable type").arg(classification.extension);
    case ClassificationReason::serverAnswered:
      return QStringLiteral("the server says %1").arg(classification.type);
    case ClassificationReason::serverGaveNoType:
      return QStringLiteral("the server gives no type");
    case ClassificationReason::serverDidNotAnswer:
      return QStringLiteral("the server did not answer");
  }
  return {};
}

QByteArray TabSeparated(const QStringList& columns) {
  QByteArray line;
  for (const QString& column : columns) {
    if (!line.isEmpty()) line.append('\t');
    line.append(Printable(column).toUtf8());
  }
  return line;
}

}  // namespace

void PrintClassifications(const QStringList& urls, const classify::CExtensionMap& map,
                          platform::HTTPReadStreamFactory& streams, Output& output) {
  for (const QString& url : urls) {
    const classify::Classification classification = classify::classifyURL(url, map, streams);
    const QString kind = classification.isPage ? QStringLiteral("page") : QStringLiteral("file");
    if (!output.writeLine(
            TabSeparated({kind, platform::WithoutCredentials(url), ReasonText(classification)}))) {
      return;
    }
  }
}

void PrintExtensions(const classify::CExtensionMap& map, Output& output) {
  QByteArray lines;
  for (const auto& node : map.nodes()) {
    const std::string_view type = platform::PascalStringView(node->record.MIMEType);
    lines.append(TabSeparated({QString::fromUtf8(node->key.c_str()), QString::fromUtf8(type)})).append('\n');
  }
  output.write(lines);
}

}  // namespace quillforth::terminal
