// SPDX-License-Identifier: MIT
//
// What a drag, the clipboard or another program offers, as the texts of a few types.
//
// A front end makes one of its toolkit's data, so that the controller knows no widget. Main thread.
#pragma once

#include <QString>
#include <QStringList>

namespace quillforth::app {

/// A plain text, as it stands.
inline constexpr const char* kStringPasteboardType = "text/plain";
/// One URL: where a list is offered, its first.
inline constexpr const char* kURLPasteboardType = "text/uri-list";

class Pasteboard {
 public:
  /// More UTF-16 units than any URL has; a longer text is offered as an empty one.
  static constexpr qsizetype kMaxStringLength = 65'536;

  virtual ~Pasteboard() = default;
  /// The text of one of the types above; null when it is not offered.
  [[nodiscard]] virtual QString stringForType(const char* type) const = 0;
};

/// The string type first, else the URL type; null without either.
[[nodiscard]] QString DraggedString(const Pasteboard& pasteboard);

/// What the source of a drag may do with what it drags.
enum class DragOperation { none, every };

}  // namespace quillforth::app
