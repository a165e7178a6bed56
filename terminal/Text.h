// SPDX-License-Identifier: MIT
//
// Texts made fit for a terminal: nothing in them steers it, and their width in columns is known.
//
// Pure functions; any thread, once the C library's locale is one of UTF-8.
#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

#include "net/UTF8.h"

namespace quillforth::terminal {

using platform::Printable;

/// Columns that a printable text takes: wide characters two, combining ones none.
[[nodiscard]] int DisplayWidth(QStringView text);

/// `text`, or what it begins with and "…": enough of a text for a message.
[[nodiscard]] QString Excerpt(const QString& text);

/// The longest beginning of a printable text that fits into `columns`.
[[nodiscard]] QString CutToWidth(const QString& text, int columns);

/// A printable text in at most `columns`: when it is longer, "..." stands for its middle, so that a URL's
/// host and its file name both stay.
[[nodiscard]] QString ElideMiddle(const QString& text, int columns);

/// Appends `bytes` to `text`, with every control character, in ASCII or in UTF-8 (U+0080 to U+009F), as
/// %-escapes: one line.
void AppendPercentEncoded(QByteArray& text, std::string_view bytes);

}  // namespace quillforth::terminal
