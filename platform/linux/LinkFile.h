// SPDX-License-Identifier: MIT
//
// The link files that Linux users have: small files that stand for a URL.
//
//   .webloc, .inetloc  a property list, XML or binary; a dictionary with the text "URL"
//   .url               an INI file; "URL=…" in the section "[InternetShortcut]", letter case apart
//   .desktop           a desktop entry (freedesktop.org, Desktop Entry Specification) with "Type=Link" and
//                      "URL=…"
//
// Text is UTF-8 or UTF-16, with or without a byte-order mark, and its lines may end in LF, CR LF or CR. Keys
// with a locale, "URL[de]", are other keys. KDE puts flags after keys and groups, "[Desktop Entry][$i]",
// and marks a value as one with variables, "URL[$e]": none is looked up here and no command is run, but "$$"
// is one "$". Bytes may be anything; pure, any thread.
#pragma once

#include <QByteArray>
#include <optional>
#include <string_view>

namespace quillforth::platform {

/// Bytes of a link file; a longer one stands for nothing.
inline constexpr qsizetype kMaxLinkFileLength = 65536;

/// The URL as it stands in the file, blanks around it dropped. Nothing unless it begins like one of http,
/// https or ftp; it is not checked further.
///
/// The extension of `name`, in any letter case, says which kind of link file it is, and the bytes have to be
/// that. A name without an extension says nothing, and the bytes decide. Any other file is no link file.
[[nodiscard]] std::optional<QByteArray> URLInLinkFile(std::string_view name, QByteArrayView bytes);

}  // namespace quillforth::platform
