// SPDX-License-Identifier: MIT
//
// What the controller sees of its interface: a few operations of a few kinds of widgets.
//
// The desktop, the terminal and the tests' recorder implement these. Main thread only. The controller does
// not own any of them; they outlive it.
#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "common/FileReference.h"
#include "platform/WebDownload.h"

namespace quillforth::app {

class ServicesProvider;

class TextField {
 public:
  virtual ~TextField() = default;
  [[nodiscard]] virtual QString stringValue() const = 0;
  virtual void setStringValue(const QString& text) = 0;
  virtual void setHidden(bool hidden) = 0;
};

class Button {
 public:
  virtual ~Button() = default;
  virtual void setEnabled(bool enabled) = 0;
  virtual void setHidden(bool hidden) = 0;
  virtual void setToolTip(const QString& text) = 0;
};

class ProgressIndicator {
 public:
  virtual ~ProgressIndicator() = default;
  /// 0.0 to 1.0. Counters may have wrapped; then a value outside is shown as the nearer end.
  virtual void setDoubleValue(double value) = 0;
  virtual void setHidden(bool hidden) = 0;
  virtual void startAnimation() = 0;
  virtual void stopAnimation() = 0;
};

/// Where a table takes its rows from.
class TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  [[nodiscard]] virtual std::size_t numberOfRows() const = 0;
  /// Null when there is no such row.
  [[nodiscard]] virtual QString objectValueForRow(std::size_t row) const = 0;
  /// An entry keeps its identifier while it waits, whatever row it is in. Identifiers ascend with the rows,
  /// and none is used again. A selection follows it over a reload.
  [[nodiscard]] virtual std::uint64_t identifierOfRow(std::size_t row) const = 0;
};

class TableView {
 public:
  virtual ~TableView() = default;
  /// MIME types, the preferred one first.
  virtual void registerForDraggedTypes(const QStringList& types) = 0;
  /// The rows may have changed in any way; entries that are still there stay selected. It is called after
  /// every change, so its cost must depend on the visible rows only. The owner of the table tells the
  /// controller when the selection has changed, also when this call has changed it.
  virtual void reloadData() = 0;
  /// Ascending, without duplicates.
  [[nodiscard]] virtual std::vector<std::size_t> selectedRowIndexes() const = 0;
};

/// A modal alert. Its texts are shown literally.
struct Alert {
  QString messageText;
  QString informativeText;
  QString defaultButton;
  QString alternateButton;  ///< null: none
};
enum class AlertResult { defaultButton, alternateButton };

/// The codes for the button that has ended a sheet: the default one, and the alternate one.
inline constexpr int kAlertFirstButtonReturn = 1000;
inline constexpr int kAlertSecondButtonReturn = 1001;

class Window : public platform::AuthenticationSheetParent {
 public:
  virtual void makeKeyAndOrderFront() = 0;
  /// The same, called when new work comes in. A window that the user has minimised may come back.
  virtual void orderFrontForNewWork() { makeKeyAndOrderFront(); }
  /// Takes the window off the screen. Nothing happens when it is not there.
  virtual void orderOut() = 0;
  /// A sheet with the default button only, which nobody waits for.
  virtual void beginAlertSheet(const QString& title, const QString& message) = 0;
  /// A warning that blocks this window only. `didEnd` gets the button's return code, once and perhaps before
  /// this returns; never after the application has begun to quit.
  virtual void beginSheetModal(const Alert& alert, std::function<void(int returnCode)> didEnd) = 0;
};

/// A panel that lets the user pick one existing folder, or make a new one.
struct FolderPanel {
  QString title;
  QString prompt;     ///< label of the button that confirms
  QString message;    ///< null: none
  QString directory;  ///< where it opens; null: left to the panel
};

/// The result of a choose-folder dialog. A cancel is a success without a folder.
struct ChosenFolder {
  int status = 0;
  std::optional<platform::FileReference> folder;
};

/// What the controller asks of the application and its desktop.
class Application {
 public:
  virtual ~Application() = default;
  virtual void activateIgnoringOtherApps() = 0;
  virtual void beep() = 0;
  /// Returns when the user has answered.
  virtual AlertResult runModalAlert(const Alert& alert) = 0;
  /// The absolute path of the folder, or nothing when the user did not confirm.
  [[nodiscard]] virtual std::optional<QString> runOpenPanel(const FolderPanel& panel) = 0;
  [[nodiscard]] virtual ChosenFolder runChooseFolderDialog(const FolderPanel& panel) = 0;
  /// Shows a folder in the user's file manager.
  virtual void openFile(const QString& path) = 0;
  // A front end without a Services menu leaves these two as they are.
  /// From now on `provider` does what the menu's entries ask for. It may go once the event loop has ended.
  virtual void setServicesProvider(ServicesProvider& /*provider*/) {}
  /// Makes the desktop read again which entries there are.
  virtual void updateDynamicServices() {}
};

/// The controller's outlets, by name. All are set.
struct Outlets {
  TextField& downloadDestinationTextField;
  TextField& urlTextField;
  TextField& countTextField;
  Window& preferencesWindow;
  Window& statusWindow;
  ProgressIndicator& spinner;
  ProgressIndicator& fileDownloadProgressBar;
  TextField& fileDownloadProgressText;
  TextField& currentURLTextField;
  Button& fileDownloadCancelButton;
  Button& deleteButton;
  Button& stopButton;
  Button& openOutputFolderButton;
  TableView& fileTable;
};

}  // namespace quillforth::app
