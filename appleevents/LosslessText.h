// SPDX-License-Identifier: MIT
//
// Turns bytes that should be UTF-8 into UTF-16 text, and back, without loss.
//
// File names and other programs' attributes are bytes, of any encoding or none. Valid UTF-8 becomes its
// text. Every other byte b (0x80 to 0xFF) becomes the lone surrogate U+DC00 + b, which valid UTF-8 never
// gives. Pure; any thread.
#pragma once

#include <QString>
#include <QStringView>
#include <optional>
#include <string>
#include <string_view>

namespace quillforth::platform {

/// Never null. A byte-order mark stays, and so do NUL bytes.
[[nodiscard]] QString LosslessText(std::string_view bytes);
/// The bytes that `text` stands for; nothing when a surrogate without partner stands for no byte.
[[nodiscard]] std::optional<std::string> BytesOfLosslessText(QStringView text);

}  // namespace quillforth::platform
