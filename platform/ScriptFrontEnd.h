// SPDX-License-Identifier: MIT
//
// What a script host asks of the front end that it serves. It is here because a host must not include the
// room of a front end.
//
// Called on the thread that runs the script. An answer that has to come from the main thread is awaited for a
// moment only, because the program may be about to end.
#pragma once

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillforth::platform {

class ScriptFrontEnd {
 public:
  virtual ~ScriptFrontEnd() = default;
  virtual void activateThisProgram() = 0;
  /// Asks for a window of these processes to come forward. The window may still stay where it is.
  virtual void activateOtherWindow(const std::vector<std::int64_t>& processIDs, const QString& title) = 0;
  /// Whether the user lets scripts type into a browser and read the clipboard.
  [[nodiscard]] virtual bool allowsKeystrokes() = 0;
  /// Asked only while those are allowed. Nothing when the clipboard holds no text, or its owner does not
  /// answer in time.
  [[nodiscard]] virtual std::optional<QString> clipboardText() = 0;
};

}  // namespace quillforth::platform
