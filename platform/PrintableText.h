// SPDX-License-Identifier: MIT
//
// Texts of strangers made fit to be shown in a line.
//
// URLs, server messages and file names may hold characters that steer what shows them: a terminal, the
// direction in which a text is read, the end of a line. Written as escapes they show what is there. Pure; any
// thread.
#pragma once

#include <QString>

namespace quillforth::platform {

/// `text` with every control, format and unassigned character as "\xHH", "\uHHHH" or "\UHHHHHHHH". One line,
/// which reads in the order in which it stands but for letters that are written from the right.
[[nodiscard]] QString Printable(const QString& text);

}  // namespace quillforth::platform
