// SPDX-License-Identifier: MIT
//
// What comes from elsewhere: what a drag, the clipboard or another program offers, as the texts of a few
// types, and files that hold a URL.
//
// A front end makes a pasteboard of its toolkit's data, so that the controller knows no widget. Main thread.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "common/FileReference.h"
#include "platform/ResourceFork.h"

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

/// What other programs can ask for through the Services menu. All that an application knows of the
/// controller.
class ServicesProvider {
 public:
  virtual ~ServicesProvider() = default;
  /// Takes the pasteboard's string as a page or a file. Never fails: `error`, where it is not null, becomes
  /// null text, also when there is no string and nothing is done.
  virtual void downloadURLUserDataError(const Pasteboard& pasteboard, const QString& userData,
                                        QString* error) = 0;
};

/// The URL in a file, as an open-documents event takes it: the file's first 'url ' resource, up to its first
/// NUL byte; nothing when it is empty or not UTF-8, and for every other file.
[[nodiscard]] std::optional<QString> URLInFile(const platform::FileReference& file,
                                               platform::ResourceManager& resources);

}  // namespace quillforth::app
