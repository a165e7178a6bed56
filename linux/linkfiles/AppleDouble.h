// SPDX-License-Identifier: MIT
//
// Finds the resource fork in an AppleDouble file (RFC 1740, appendix B). Such a file keeps what another
// file has besides its data.
//
//   file     magic 0x00051607 4 | version 4 | filler 16 | number of entries 2 | entries | …
//   entry    ID 4 | offset 4 | length 4                                   (ID 2: the resource fork)
//
// Numbers are big-endian. Versions 1 and 2 are the same in everything that is read here. Pure;
// any thread.
#pragma once

#include <QByteArrayView>
#include <optional>

namespace quillforth::platform {

/// Nothing when `bytes` are no AppleDouble file, or have no such entry, or two. Nothing either when that
/// entry is not wholly in the file, or shares bytes with the header or another entry.
[[nodiscard]] std::optional<QByteArrayView> ResourceForkInAppleDouble(QByteArrayView bytes);

}  // namespace quillforth::platform
