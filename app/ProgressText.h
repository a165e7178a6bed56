// SPDX-License-Identifier: MIT
//
// The words and numbers of the progress line, such as
//
//   42 percent, (1,234 of 2,938 bytes, Elapsed: 1 min 3 secs , Remaining: 1 min 26 secs )
//
// In the user's language, or in English where that is unknown. Byte counts are 32-bit and may have wrapped,
// so that a fraction can be negative or far above 1; every result is defined all the same. Pure; any thread.
#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>

#include "app/LocalizedText.h"
#include "common/BoundedText.h"

namespace quillforth::app {

/// The count in the locale's digits, in groups of three with "," between them, whatever separator the locale
/// has.
[[nodiscard]] QString groupedNumberText(std::int64_t count, QLocale locale);

/// Appends "0 secs", or what is not zero of "2 hrs ", "1 min ", "5 secs ", each with its trailing blank.
void durationText(std::uint32_t seconds, common::BoundedText& text,
                  const LocalizedText& localizedText = EnglishText);

/// "Elapsed: … , Remaining: … "; at most 255 bytes of UTF-8.
[[nodiscard]] common::BoundedText timeText(std::uint32_t elapsed, std::uint32_t remaining,
                                           const LocalizedText& localizedText = EnglishText);

/// "(… of … bytes"; a null number reads "(null)".
[[nodiscard]] QString bytesText(const QString& received, const QString& expected,
                                const LocalizedText& localizedText = EnglishText);

/// Seconds that are left at the pace so far, in single precision: 0 where that is no number or negative, the
/// largest value where it is too large.
[[nodiscard]] std::uint32_t remainingSeconds(std::uint32_t elapsed, double fraction);

/// Whole percent, truncated toward zero, kept within the range of 32 bits.
[[nodiscard]] std::int32_t percentOfFraction(double fraction);

/// The whole line.
[[nodiscard]] QString progressLine(std::int32_t percent, const QString& bytes,
                                   const common::BoundedText& times,
                                   const LocalizedText& localizedText = EnglishText);

}  // namespace quillforth::app
