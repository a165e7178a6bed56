// SPDX-License-Identifier: MIT
//
// The import window: a field for the URL of a page whose links are to be fetched.
//
// It does not close itself on "Import": whoever imports orders it out, and says meanwhile how far it is.
// "Cancel", Escape and its frame close it, as QDialog::rejected tells. Main thread.
#pragma once

#include <QDialog>
#include <QLineEdit>
#include <memory>

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
};

}  // namespace quillforth::desktop
