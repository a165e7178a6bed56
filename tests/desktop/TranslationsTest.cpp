// SPDX-License-Identifier: MIT

#include "desktop/Translations.h"

#include <gtest/gtest.h>

#include "app/ProgressText.h"
#include "linux/transfer/TransferText.h"

namespace quillforth::tests {
namespace {

TEST(Translations, SpeakTheLanguageOfTheLocaleAndFallBackToTheSource) {
  const desktop::Translations german{QLocale(QLocale::German)};
  const auto text = [&german](const QString& key) { return german.localizedText(key); };
  using platform::OutcomeKind;
  for (int code = 1; code < 128; ++code) {  // of the system, and every kind
    const int kind = std::min(code, static_cast<int>(OutcomeKind::other));
    for (const QString& error :
         {platform::TransferOutcome{OutcomeKind(kind), code}.sentence(), platform::FileErrorText(code)})
      EXPECT_NE(text(error), error);
  }
  EXPECT_EQ(text(platform::TransferOutcome{OutcomeKind::status, 404}.sentence()),
            u"Der Server hat mit „404 Not Found“ geantwortet.");
  EXPECT_EQ(app::progressLine(7, app::bytesText(u"1"_qs, u"2"_qs, text), app::timeText(1, 0, text), text),
            u"7 Prozent, (1 von 2 Byte, Vergangen: 1 Sek. , verbleibend: 0 Sek.)");
  EXPECT_EQ(text(u"%1 of a page"_qs), u"%1 of a page");
  const auto misshapen = [](const QString& /*key*/) { return u"%s %d %@"_qs; };
  EXPECT_EQ(app::LocalizedFormat(misshapen, u"%d%%, %@"_qs, {u"1"_qs, u"%@"_qs}), u"1%%, %@");
}

}  // namespace
}  // namespace quillforth::tests
