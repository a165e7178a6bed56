// SPDX-License-Identifier: MIT
//
// What a script does to other programs, and learns from them.
//
// Each call may take a while, but has a limit. A failure ends the script. Applications have the names that
// scripts use. Called on the thread that runs the script.
#pragma once

#include <QString>
#include <chrono>
#include <optional>

namespace quillforth::platform {

/// What a browser says of the window that was active last.
struct BrowserWindow {
  QString title;
  QString documentURL;  ///< of the document that it shows; null when it does not say
};

struct Keystroke {
  QString characters;
  bool isCommandDown = false;  ///< no other modifier is ever down
};

class ScriptEffects {
 public:
  virtual ~ScriptEffects() = default;
  [[nodiscard]] virtual bool activateApplication(const QString& name) = 0;
  /// Brings this program forward.
  virtual void activateThisProgram() = 0;
  /// Nothing when the application does not run or has no window.
  [[nodiscard]] virtual std::optional<BrowserWindow> frontWindow(const QString& application) = 0;
  /// Types into the window that is in front, whichever it is.
  [[nodiscard]] virtual bool type(const Keystroke& keystroke) = 0;
  [[nodiscard]] virtual std::optional<QString> clipboardText() = 0;
  virtual void wait(std::chrono::milliseconds duration) = 0;
};

}  // namespace quillforth::platform
