// SPDX-License-Identifier: MIT
//
// Makes texts of strangers fit to be shown in one line.
//
// URLs, server messages and file names may hold characters that control a terminal, turn the direction in
// which a text is read, or end a line. Written as escapes, they are harmless and show what is there. Pure;
// any thread.
#pragma once

#include <QString>

namespace quillforth::platform {

/// `text` with every control, format and unassigned character as "\xHH", "\uHHHH" or "\UHHHHHHHH". One line,
/// which is read in the order in which it stands. Only letters of right-to-left scripts run the other way.
[[nodiscard]] QString Printable(const QString& text);

}  // namespace quillforth::platform
