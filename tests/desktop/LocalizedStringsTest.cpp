// SPDX-License-Identifier: MIT

#include "desktop/LocalizedStrings.h"

#include <gtest/gtest.h>

#include "app/ProgressText.h"
#include "platform/linux/TransferText.h"

namespace quillforth::tests {
namespace {

TEST(LocalizedStrings, SpeakTheLanguageOfTheLocaleAndFallBackToTheSource) {
  const desktop::LocalizedStrings german{QLocale(QLocale::German)};
  const auto text = [&german](const QString& key) { return german.localizedText(key); };
  for (int code = 0; code < 128; ++code) {  // libcurl's, and those of the system
    EXPECT_NE(text(platform::TransferErrorText(CURLcode(code), 0)),
              platform::TransferErrorText(CURLcode(code), 0));
    EXPECT_NE(text(platform::FileErrorText(code)), platform::FileErrorText(code));
  }
  EXPECT_EQ(text(platform::HTTPStatusText(404)), u"Der Server hat mit „404 Not Found“ geantwortet.");
  EXPECT_EQ(app::progressLine(7, app::bytesText(QString(u'1'), QString(u'2'), text),
                              app::timeText(1, 0, text), text),
            u"7 Prozent, (1 von 2 Byte, Vergangen: 1 Sek. , verbleibend: 0 Sek.)");
  EXPECT_EQ(text(QStringLiteral("%1 of a page")), u"%1 of a page");
  const auto misshapen = [](const QString& /*key*/) { return QStringLiteral("%s %d %@"); };
  EXPECT_EQ(
      app::LocalizedFormat(misshapen, QStringLiteral("%d%%, %@"), {QString(u'1'), QStringLiteral("%@")}),
      u"1%%, %@");
}

}  // namespace
}  // namespace quillforth::tests
