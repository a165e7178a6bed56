// SPDX-License-Identifier: MIT
//
// Strict UTF-8: bytes that become a text, and texts that become bytes, or nothing. Pure; any thread.
#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace quillforth::platform {

/// Nothing unless all of `bytes` is valid UTF-8. Never null. A byte-order mark and NUL bytes stay.
[[nodiscard]] std::optional<QString> TextFromUTF8(QByteArrayView bytes);
/// Nothing when `text` holds a surrogate without its partner.
[[nodiscard]] std::optional<QByteArray> UTF8OfText(QStringView text);

}  // namespace quillforth::platform
