// SPDX-License-Identifier: MIT
//
// The text that is selected on the screen, or stands in the clipboard.
//
// Either is asked of the program that owns it, and that may hang, or send without an end. So a helper asks, a
// second process of this program: the window never waits, and the helper is ended when it takes too long.
// Main thread.
#pragma once

#include <QProcess>
#include <QTimer>
#include <functional>
#include <optional>

namespace quillforth::desktop {

enum class SelectionSource {
  selectionOrClipboard,
  clipboard,
  pasteboard,  ///< the clipboard as PasteboardText gives it
};

class SelectionReader final {
 public:
  static constexpr int kPatienceInMilliseconds = 4000;

  SelectionReader();
  /// Ends the helper.
  ~SelectionReader();
  SelectionReader(const SelectionReader&) = delete;
  SelectionReader& operator=(const SelectionReader&) = delete;

  /// Calls `take` with the text, later; with null when there is none, or it is longer than any URL (what is
  /// pasted: than PastedURLs takes), or its owner hangs. While one text is being read, another wish for it is
  /// the same wish, unless a text was selected or copied since: then it takes the place of the first.
  void read(SelectionSource source, std::function<void(const QString& text)> take);
  /// Ends the helper; what was being read is not taken.
  void forget();

 private:
  void finish();

  QProcess helper_;
  QTimer deadline_;
  bool isOutdated_ = false;  // there is another text than the one that is being read
  std::function<void(const QString&)> take_;
};

/// The clipboard's text, from such a helper; nothing when there is none, or as above. Blocks for as long as
/// the helper has; any thread.
[[nodiscard]] std::optional<QString> ReadClipboard();

/// What the helper does: prints the text on standard output, as UTF-8. Needs a QGuiApplication.
void PrintSelection(SelectionSource source);

}  // namespace quillforth::desktop
