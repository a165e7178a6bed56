// SPDX-License-Identifier: MIT
//
// The import window: a field for the URL of a page whose links are to be fetched.
//
// It does not close itself on "Import": whoever imports orders it out, and says meanwhile how far it is.
// "Cancel", Escape and its frame close it, as QDialog::rejected tells. Main thread.
#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <functional>
#include <memory>

#include "desktop/DesktopWindow.h"
#include "platform/PageLoader.h"

namespace Ui {
class ImportWindow;
}

namespace quillforth::desktop {

class ImportWindow final : public QDialog {
  Q_OBJECT

 public:
  explicit ImportWindow(QWidget* parent = nullptr);
  ~ImportWindow() override;

  enum class Import { none, waits, loads };
  /// There is one import at a time: until it is over, there is no other to be asked for.
  void showImport(Import import);
  /// Why the last import gave nothing.
  void showFailure(const QString& reason);
  [[nodiscard]] QLineEdit& urlTextField();

 signals:
  /// The button "Import", or Return.
  void importRequested();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  std::unique_ptr<Ui::ImportWindow> ui_;
  QPushButton* import_;
};

/// The import window as the controller sees it, and an import from the button to its end.
///
/// An import takes the text that stood in the field when it was asked for, whatever is typed meanwhile.
/// Whoever closes the window gives it up: one that waits for its turn is not done at all, and one whose page
/// is being loaded gets no page. One that gave nothing says so in the window, which stays. Main thread.
class ImportOutlet final : public DesktopWindow, public app::TextField {
 public:
  /// `import` makes the controller import with this as the sender. All outlive this.
  ImportOutlet(ImportWindow& window, CommandGate& gate, platform::PageLoader& pages,
               std::function<void()> import);

  /// What is to be done in its turn for the import that is asked for now.
  [[nodiscard]] CommandGate::Command begin();
  [[nodiscard]] QString stringValue() const override;
  void setStringValue(const QString& text) override;
  void setHidden(bool hidden) override { window_.urlTextField().setHidden(hidden); }
  /// Leaves a window that the user has closed and opened anew meanwhile, and one that has a failure to tell.
  void orderOut() override;
  /// What runs has given nothing, for this reason. Nothing happens when no import runs.
  void setFailure(const QString& reason);
  /// What runs is an import that nobody wants any more.
  [[nodiscard]] bool isGivenUp() const { return running_ != nullptr && running_ != given_; }

 private:
  using Text = std::shared_ptr<QString>;

  void run(const Text& text);
  void giveUp();
  void forget();

  ImportWindow& window_;
  platform::PageLoader& pages_;
  std::function<void()> import_;
  Text given_;    // that the user waits for; null: none
  Text running_;  // the controller's; null: none
  QString failure_;
};

}  // namespace quillforth::desktop
