// SPDX-License-Identifier: MIT
//
// Texts of strangers on their way to the screen: never markup, never longer than a screen has use for.
#pragma once

#include <QString>

namespace quillforth::desktop {

/// At most `limit` units: what is longer loses its middle to a "…".
[[nodiscard]] QString WithoutMiddle(const QString& text, qsizetype limit);

/// The text as a tool tip that shows it literally, in lines that fit a screen. Null for an empty text.
[[nodiscard]] QString ToolTipText(const QString& text);

}  // namespace quillforth::desktop
