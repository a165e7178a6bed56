// SPDX-License-Identifier: MIT
//
// The link files that Linux users have: small files that stand for a URL.
//
//   .webloc, .inetloc  a property list, XML or binary; a dictionary with the text "URL"
//   .url               an INI file; "URL=…" in the section "[InternetShortcut]", in any letter case
//   .desktop           a desktop entry (freedesktop.org, Desktop Entry Specification) with "Type=Link" and
//                      "URL=…"
//
// Text is UTF-8 or UTF-16, with or without a byte-order mark, and its lines may end in LF, CR LF or CR. A
// key with a locale, "URL[de]", is another key. KDE puts flags after keys and groups, "[Desktop
// Entry][$i]", and marks a value that holds variables, "URL[$e]". Here no variable is looked up and no
// command is run, but "$$" is one "$". Bytes may be anything; pure, any thread.
#pragma once

#include <QByteArray>
#include <optional>
#include <string_view>

namespace quillforth::platform {

/// The most bytes of a link file. A longer one stands for nothing.
inline constexpr qsizetype kMaxLinkFileLength = 65536;

/// The URL as it stands in the file, without the blanks around it. Nothing unless it begins with http,
/// https or ftp as its scheme. It is not checked further.
///
/// The extension of `name`, in any letter case, says which kind of link file it is, and the bytes have to
/// be of that kind. Without an extension the bytes decide. A file with another extension is no link file.
[[nodiscard]] std::optional<QByteArray> URLInLinkFile(std::string_view name, QByteArrayView bytes);

}  // namespace quillforth::platform
