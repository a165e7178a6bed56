// SPDX-License-Identifier: MIT
//
// Paths in the form that Apple events carry: "Volume:folder:name".
//
// The one volume is called "Linux" and is the root folder. Between its colons every name stands as lossless
// text (LosslessText.h), with "/" for the ":" that it may hold; a name cannot hold "/". An empty component
// goes up one folder, as ".." does; "." has no component. So every path comes back as it was, except that
// doubled and trailing "/" and "/." are gone. Pure; any thread.
#pragma once

#include <QString>
#include <QStringView>
#include <optional>
#include <string>

namespace quillforth::platform {

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
