// SPDX-License-Identifier: MIT
//
// Strict UTF-8: turns bytes into a text and a text into bytes, or gives nothing. Also makes texts fit to be
// shown. Pure; any thread.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace quillforth::platform {

/// Nothing unless all of `bytes` is valid UTF-8. Never null. A byte-order mark and NUL bytes stay.
[[nodiscard]] std::optional<QString> TextFromUTF8(QByteArrayView bytes);
/// Nothing when `text` holds a surrogate without its partner.
[[nodiscard]] std::optional<QByteArray> UTF8OfText(QStringView text);

/// The text of a stranger, fit to be shown in one line.
///
/// URLs, server messages and file names may hold characters that control a terminal, turn the direction in
/// which a text is read, or end a line. Every control, format and unassigned character is written as "\xHH",
/// "\uHHHH" or "\UHHHHHHHH". These include all direction marks, so only letters of right-to-left scripts
/// still run the other way.
[[nodiscard]] QString Printable(const QString& text);

}  // namespace quillforth::platform
