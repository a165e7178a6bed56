// SPDX-License-Identifier: MIT

#include "app/ProgressText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "app/NilText.h"

namespace quillforth::app {

namespace {

void AppendAmount(std::uint32_t amount, const char* unit, common::BoundedText& text) {
  if (amount == 0) return;
  text.append(std::to_string(amount).append(" ").append(unit).append(amount == 1 ? " " : "s "));
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

void durationText(std::uint32_t seconds, common::BoundedText& text) {
  if (seconds == 0) {
    text.append("0 secs");
    return;
  }
  AppendAmount(seconds / 3600, "hr", text);
  AppendAmount(seconds % 3600 / 60, "min", text);
  AppendAmount(seconds % 60, "sec", text);
}

common::BoundedText timeText(std::uint32_t elapsed, std::uint32_t remaining) {
  common::BoundedText text("Elapsed: ");
  durationText(elapsed, text);
  text.append(", Remaining: ");
  durationText(remaining, text);
  return text;
}

QString bytesText(const QString& received, const QString& expected) {
  return u'(' + TextOrNull(received) + QStringLiteral(" of ") + TextOrNull(expected) +
         QStringLiteral(" bytes");
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

QString progressLine(std::int32_t percent, const QString& bytes, const common::BoundedText& times) {
  return QString::number(percent) + QStringLiteral(" percent, ") + bytes + QStringLiteral(", ") +
         QString::fromLatin1(times.c_str()) + u')';
}

}  // namespace quillforth::app
