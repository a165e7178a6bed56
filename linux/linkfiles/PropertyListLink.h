// SPDX-License-Identifier: MIT
//
// The URL in a property list, read by libplist. It gets no list that could cost more than its size.
//
// libplist follows references and frees nested values by calling itself, so that a few bytes could make it
// fill the memory or the stack. A link is one dictionary of plain values, and libplist gets only such
// lists. Pure; any thread.
#pragma once

#include <QByteArray>
#include <optional>

namespace quillforth::platform {

/// Whether `bytes` begin like a property list, XML without a byte-order mark or binary.
[[nodiscard]] bool IsPropertyList(QByteArrayView bytes);
/// The text "URL" in the list's dictionary. `bytes` may be anything, but not over 4 GiB.
[[nodiscard]] std::optional<QByteArray> URLInPropertyList(QByteArrayView bytes);

}  // namespace quillforth::platform
