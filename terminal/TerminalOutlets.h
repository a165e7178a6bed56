// SPDX-License-Identifier: MIT
//
// The controller's outlets in a terminal: a few of them fill the ShownValues, the others have nobody to show
// themselves to.
//
// Windows have no place here, so bringing them forward is nothing; sheets and alerts are messages; questions
// are asked on the controlling terminal where there is one, and count as cancelled where there is none. Main
// thread.
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "app/Outlets.h"
#include "terminal/Reporter.h"
#include "terminal/TerminalPrompt.h"

namespace quillforth::terminal {

/// What the controller's outlets show at the moment, as plain values for whoever draws them. Main thread.
struct ShownValues {
  QString currentURL;
  bool currentURLHidden = true;
  double fraction = 0.0;
  bool progressBarHidden = true;
  QString progressText;
  bool progressTextHidden = true;
  QString countText;
};

/// Keeps its text where the display finds it.
class ShownTextField final : public app::TextField {
 public:
  ShownTextField(QString& text, bool& hidden) : text_(text), hidden_(hidden) {}
  [[nodiscard]] QString stringValue() const override { return text_; }
  void setStringValue(const QString& text) override { text_ = text; }
  void setHidden(bool hidden) override { hidden_ = hidden; }

 private:
  QString& text_;
  bool& hidden_;
};

class ShownProgressBar final : public app::ProgressIndicator {
 public:
  explicit ShownProgressBar(ShownValues& shown) : shown_(shown) {}
  void setDoubleValue(double value) override { shown_.fraction = value; }
  void setHidden(bool hidden) override { shown_.progressBarHidden = hidden; }
  void startAnimation() override {}
  void stopAnimation() override {}

 private:
  ShownValues& shown_;
};

/// A button, spinner or table that a terminal has no use for.
class UnseenButton final : public app::Button {
 public:
  void setEnabled(bool /*enabled*/) override {}
  void setHidden(bool /*hidden*/) override {}
  void setToolTip(const QString& /*text*/) override {}
};
class UnseenSpinner final : public app::ProgressIndicator {
 public:
  void setDoubleValue(double /*value*/) override {}
  void setHidden(bool /*hidden*/) override {}
  void startAnimation() override {}
  void stopAnimation() override {}
};
class UnseenTable final : public app::TableView {
 public:
  void registerForDraggedTypes(const QStringList& /*types*/) override {}
  void reloadData() override {}
  [[nodiscard]] std::vector<std::size_t> selectedRowIndexes() const override { return {}; }
};

/// Sheets become messages, the authentication sheet two questions.
class TerminalWindow final : public app::Window {
 public:
  TerminalWindow(Reporter& reporter, const TerminalPrompt& prompt) : reporter_(reporter), prompt_(prompt) {}
  void makeKeyAndOrderFront() override {}
  void orderOut() override {}
  void beginAlertSheet(const QString& title, const QString& message) override;
  /// Asked on the terminal, and answered before this returns.
  void beginSheetModal(const app::Alert& alert, std::function<void(int returnCode)> didEnd) override;
  /// Answers at once. An empty user name cancels.
  void beginAuthenticationSheet(const platform::AuthenticationChallenge& challenge,
                                std::function<void(std::optional<platform::Credential>)> answer) override;

 private:
  Reporter& reporter_;
  const TerminalPrompt& prompt_;
};

class TerminalApplication final : public app::Application {
 public:
  /// `destination`: what every folder panel answers; null: the user is asked. `storedFolder`: what Return
  /// alone answers to the first question, absolute; null: nothing.
  TerminalApplication(Reporter& reporter, const TerminalPrompt& prompt, QString destination,
                      std::function<QString()> storedFolder)
      : reporter_(reporter),
        prompt_(prompt),
        destination_(std::move(destination)),
        storedFolder_(std::move(storedFolder)) {}

  void activateIgnoringOtherApps() override {}
  /// Rings where standard error is a terminal.
  void beep() override;
  /// Shows the text on standard error. Never asks: the answer is the alternate button, where there is one.
  app::AlertResult runModalAlert(const app::Alert& alert) override;
  std::optional<QString> runOpenPanel(const app::FolderPanel& panel) override;
  app::ChosenFolder runChooseFolderDialog(const app::FolderPanel& panel) override;
  /// Shows the path.
  void openFile(const QString& path) override;

 private:
  Reporter& reporter_;
  const TerminalPrompt& prompt_;
  QString destination_;
  std::function<QString()> storedFolder_;
  QString keptFolder_;  // the last answer, which Return alone keeps; null: none
  bool hasToldOfTo_ = false;
};

/// Whether the user answers the question with its first button. False without a terminal.
[[nodiscard]] bool Confirm(const TerminalPrompt& prompt, const app::Alert& alert);

/// All outlets of one controller.
class TerminalOutlets {
 public:
  TerminalOutlets(ShownValues& shown, Reporter& reporter, const TerminalPrompt& prompt);
  [[nodiscard]] app::Outlets outlets();

 private:
  QString unseenTexts_[2];
  bool unseenHidden_ = false;
  ShownTextField downloadDestinationTextField_;
  ShownTextField urlTextField_;
  ShownTextField countTextField_;
  TerminalWindow window_;
  UnseenSpinner spinner_;
  ShownProgressBar fileDownloadProgressBar_;
  ShownTextField fileDownloadProgressText_;
  ShownTextField currentURLTextField_;
  UnseenButton button_;
  UnseenTable fileTable_;
};

}  // namespace quillforth::terminal
