// SPDX-License-Identifier: MIT
//
// Compiles a script and carries it out. `ScriptEffects` is what it needs for that: what a script does to
// other programs.
#pragma once

#include <QString>
#include <QStringView>
#include <chrono>
#include <optional>

#include "appleevents/AppleEvents.h"

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

/// What a script does to other programs, and learns from them.
///
/// Each call may take a while, but has a limit. A failure ends the script. Applications have the names that
/// scripts use. Called on the thread that runs the script.
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

/// All delays of a script together last no longer than this; a longer one is cut short.
inline constexpr std::chrono::milliseconds kMaximumScriptDelay{5000};
/// A list that holds more values than this, counting those in its lists, ends its script.
inline constexpr int kMaximumScriptListSize = 1000;

/// The value of the sentence that was carried out last, as a script host gives it. A text that does not
/// compile gives nothing, and none of its sentences is carried out. Blocks; any thread. `effects` is called
/// on the same one.
[[nodiscard]] std::optional<AEDescriptor> RunScript(QStringView source, ScriptEffects& effects);

}  // namespace quillforth::platform
