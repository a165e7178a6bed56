// SPDX-License-Identifier: MIT
//
// Texts of strangers on their way to the screen: never markup, in the order in which they stand, never longer
// than a screen has use for.
#pragma once

#include <QString>

namespace quillforth::desktop {

/// One line: what is longer than `limit` units loses its middle to a "…", and characters that steer are
/// escapes.
[[nodiscard]] QString ShownText(const QString& text, qsizetype limit);
/// The same of a text that may have lines; words without an end may break.
[[nodiscard]] QString ShownLines(const QString& text, qsizetype limit);

/// The text as a tool tip that shows it literally, in lines that fit a screen. Null for an empty text.
[[nodiscard]] QString ToolTipText(const QString& text);

}  // namespace quillforth::desktop
