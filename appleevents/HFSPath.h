// SPDX-License-Identifier: MIT
//
// Paths in the form that Apple events carry: "Volume:folder:name".
//
// The one volume is called "Linux" and is the root folder. Between the colons stand the names, as lossless
// text. A ":" in a name becomes "/", which no name can hold. An empty component goes up one folder, as ".."
// does; "." becomes no component. So every path comes back as it was, except that doubled and trailing "/"
// and "/." are gone. Pure; any thread.
#pragma once

#include <QString>
#include <QStringView>
#include <optional>
#include <string>
#include <string_view>

namespace quillforth::platform {

/// Bytes that should be UTF-8 as UTF-16 text, without loss.
///
/// File names and other programs' attributes are bytes, of any encoding or none. Valid UTF-8 becomes its
/// text. Every other byte b (0x80 to 0xFF) becomes the lone surrogate U+DC00 + b, which valid UTF-8 never
/// gives. Never null. A byte-order mark stays, and so do NUL bytes.
[[nodiscard]] QString LosslessText(std::string_view bytes);
/// The bytes that `text` stands for; nothing when a surrogate without partner stands for no byte.
[[nodiscard]] std::optional<std::string> BytesOfLosslessText(QStringView text);

struct HFSPathTarget {
  std::string path;  ///< absolute
  bool isDirectory = false;
};

/// `target.path` as HFS-style path, with a ":" at its end for a folder; nothing unless it is absolute and
/// holds no NUL byte.
[[nodiscard]] std::optional<QString> HFSPath(const HFSPathTarget& target);
/// Nothing for a text that names no path of this volume.
[[nodiscard]] std::optional<HFSPathTarget> TargetOfHFSPath(QStringView hfsPath);

}  // namespace quillforth::platform
