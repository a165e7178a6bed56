// SPDX-License-Identifier: MIT
//
// A window as the controller's outlet: how it comes forward, and its sheets.
//
// Sheets block their window only, and come one after the other; nobody waits for them. Downloads go on while
// one is open; commands wait for those only that the user has opened. Main thread.
#pragma once

#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QStringList>
#include <deque>
#include <optional>

#include "app/Outlets.h"
#include "desktop/CommandGate.h"

namespace quillforth::desktop {

class DesktopWindow : public app::Window {
 public:
  /// Alert sheets that wait for the one that is shown; the rest is dropped. The log has what they say.
  static constexpr std::size_t kMaxWaitingAlerts = 100;
  /// Failures that are listed in their sheet; more are counted.
  static constexpr qsizetype kMaxListedFailures = 100;

  /// Both outlive this.
  DesktopWindow(QWidget& window, CommandGate& gate) : window_(window), gate_(gate) {}
  ~DesktopWindow() override;
  DesktopWindow(const DesktopWindow&) = delete;
  DesktopWindow& operator=(const DesktopWindow&) = delete;

  /// A window comes forward among those of the program. It takes the keyboard neither from another program
  /// nor from a dialog of this one. The main window, when the user has minimised it, stays so: this comes
  /// with every file, while a dialog is shown when the user asks for it. Whoever wants more activates the
  /// application first.
  void makeKeyAndOrderFront() override;
  /// Shows the window above the others, also when it was minimised, then with its dialogs, and leaves the
  /// keyboard where it is: as far as the window system lets a program do this.
  void orderFrontForNewWork() override;
  void orderOut() override { window_.hide(); }
  void beginAlertSheet(const QString& title, const QString& message) override;
  void beginSheetModal(const app::Alert& alert, std::function<void(int returnCode)> didEnd) override;
  /// Credentials go to `answer` and nowhere else. Not answered when the program ends first.
  void beginAuthenticationSheet(const platform::AuthenticationChallenge& challenge,
                                std::function<void(std::optional<platform::Credential>)> answer) override;

  /// A dialog, not shown yet, that its window owns.
  using MakeSheet = std::function<QDialog*()>;
  /// For a sheet that the user has opened: commands wait for it, unlike for those above, which come by
  /// themselves and may find nobody. Called when the sheets before it have gone; the dialog is deleted when
  /// it is finished.
  void beginSheet(MakeSheet makeSheet);
  /// For a sheet that the caller waits for, behind those before it. What it has ended with; rejected, too,
  /// when the program ends first.
  [[nodiscard]] int runSheet(MakeSheet makeSheet);
  /// The next alert sheet is for the failure of this URL. Failures that wait, or come while one is shown, are
  /// one sheet, which blocks nothing.
  void expectFailure(const QString& url) { failing_ = url; }

 private:
  struct Waiting {
    MakeSheet makeSheet;
    std::optional<CommandGate::Held> held = std::nullopt;
    bool isModal = true;
  };

  void begin(Waiting sheet);
  void showNext();
  void show(const Waiting& sheet);
  void addFailure(const QString& title, const QString& message, const QString& url);
  void showFailures();

  QWidget& window_;
  CommandGate& gate_;
  std::deque<Waiting> waiting_;
  QPointer<QDialog> shown_;
  struct Failures {
    QString title;
    QString message;  // of the first
    QString url;      // of the first, without credentials
    QStringList lines;
    qsizetype count = 0;
    QPointer<QMessageBox> box;  // null: waits for its turn
  };
  std::optional<QString> failing_;
  Failures failures_;
  QString asking_;  // the server and realm that a user name was given for last, and that name
  QString userName_;
  std::optional<CommandGate::Hold> hold_;  // as long as the one is shown that has it
};

/// The largest size that a window has room for on its screen, with what a window manager puts around it.
[[nodiscard]] QSize RoomOnScreen(const QWidget& window);

}  // namespace quillforth::desktop
