// SPDX-License-Identifier: MIT
//
// How a text that is not there reads in a log line, a tool tip or the progress line.
#pragma once

#include <QString>

namespace quillforth::app {

/// "(null)" for a null text, every other one as it is; an empty text is not null.
[[nodiscard]] inline QString TextOrNull(const QString& text) {
  return text.isNull() ? QStringLiteral("(null)") : text;
}

}  // namespace quillforth::app
