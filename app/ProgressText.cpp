// SPDX-License-Identifier: MIT

#include "app/ProgressText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "app/LocalizedText.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

namespace {

struct Unit {
  const char* one;
  const char* many;
};

constexpr Unit kHours{LOCALIZED_CHARS("hr"), LOCALIZED_CHARS("hrs")};
constexpr Unit kMinutes{LOCALIZED_CHARS("min"), LOCALIZED_CHARS("mins")};
constexpr Unit kSeconds{LOCALIZED_CHARS("sec"), LOCALIZED_CHARS("secs")};

void AppendAmount(std::uint32_t amount, const Unit& unit, const LocalizedText& localizedText,
                  common::BoundedText& text) {
  if (amount == 0) return;
  const QString name = localizedText(QLatin1String(amount == 1 ? unit.one : unit.many));
  text.append(std::to_string(amount).append(" ").append(name.toStdString()).append(" "));
}

}  // namespace

QString groupedNumberText(std::int64_t count, QLocale locale) {
  locale.setNumberOptions(QLocale::OmitGroupSeparator);
  QString text = locale.toString(static_cast<qlonglong>(count));
  const qsizetype group = 3 * locale.zeroDigit().size();  // a digit may be two UTF-16 units
  const qsizetype firstDigit = count < 0 ? locale.negativeSign().size() : 0;
  for (qsizetype i = text.size() - group; i > firstDigit; i -= group) text.insert(i, u',');
  return text;
}

void durationText(std::uint32_t seconds, common::BoundedText& text, const LocalizedText& localizedText) {
  if (seconds == 0) {
    text.append(localizedText(LOCALIZED("0 secs")).toStdString());
    return;
  }
  AppendAmount(seconds / 3600, kHours, localizedText, text);
  AppendAmount(seconds % 3600 / 60, kMinutes, localizedText, text);
  AppendAmount(seconds % 60, kSeconds, localizedText, text);
}

common::BoundedText timeText(std::uint32_t elapsed, std::uint32_t remaining,
                             const LocalizedText& localizedText) {
  const QString beforeElapsed = localizedText(LOCALIZED("Elapsed: "));
  const QString beforeRemaining = localizedText(LOCALIZED(", Remaining: "));
  common::BoundedText text(beforeElapsed.toStdString());
  durationText(elapsed, text, localizedText);
  text.append(beforeRemaining.toStdString());
  durationText(remaining, text, localizedText);
  return text;
}

QString bytesText(const QString& received, const QString& expected, const LocalizedText& localizedText) {
  return LocalizedFormat(localizedText, LOCALIZED("(%@ of %@ bytes"),
                         {TextOrNull(received), TextOrNull(expected)});
}

std::uint32_t remainingSeconds(std::uint32_t elapsed, double fraction) {
  const auto passed = static_cast<float>(elapsed);
  const auto done = static_cast<float>(fraction);
  if (done == 0.0F) return 0;  // infinite or no number
  const float left = passed / done - passed;
  if (!std::isfinite(left) || left < 0.0F) return 0;
  if (left >= 4294967296.0F) return std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(left);
}

std::int32_t percentOfFraction(double fraction) {
  using Limits = std::numeric_limits<std::int32_t>;
  const double percent = fraction * 100;
  if (std::isnan(percent)) return 0;
  return static_cast<std::int32_t>(std::clamp<double>(percent, Limits::min(), Limits::max()));
}

QString progressLine(std::int32_t percent, const QString& bytes, const common::BoundedText& times,
                     const LocalizedText& localizedText) {
  return LocalizedFormat(localizedText, LOCALIZED("%d percent, %@, %s)"),
                         {QString::number(percent), bytes, QString::fromUtf8(times.c_str())});
}

}  // namespace quillforth::app
