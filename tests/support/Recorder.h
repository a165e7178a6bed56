// SPDX-License-Identifier: MIT
//
// Outlets that write down what is done to them, all in one list, so that a test can ask for the order.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/Outlets.h"

namespace quillforth::tests {

/// Calls as text: "spinner.start", "count = 2 urls queued".
class CallLog {
 public:
  void add(std::string call) { calls_.push_back(std::move(call)); }
  /// The calls, parted by "; ". The log is empty afterwards.
  std::string take() {
    std::string text;
    for (const std::string& call : std::exchange(calls_, {}))
      text.append(text.empty() ? "" : "; ").append(call);
    return text;
  }

 private:
  std::vector<std::string> calls_;
};

/// A named thing that writes to the log.
class Recording {
 public:
  Recording(CallLog& log, std::string name) : log_(log), name_(std::move(name)) {}

 protected:
  void note(const char* call) const { log_.add(name_ + call); }
  void note(const char* call, const QString& value) const { log_.add(name_ + call + value.toStdString()); }
  void note(const char* call, bool value) const { log_.add(name_ + call + (value ? " YES" : " NO")); }
  void note(const char* call, const QStringList& values) const { note(call, values.join(u" | ")); }

 private:
  CallLog& log_;
  std::string name_;
};

/// A text field, button or progress indicator.
class RecordingWidget final : public app::TextField,
                              public app::Button,
                              public app::ProgressIndicator,
                              private Recording {
 public:
  using Recording::Recording;
  QString text;
  [[nodiscard]] QString stringValue() const override { return text; }
  void setStringValue(const QString& value) override { note(" = ", text = value); }
  void setDoubleValue(double value) override { note(" = ", QString::number(value, 'f', 3)); }
  void setHidden(bool hidden) override { note(".hidden", hidden); }
  void setEnabled(bool enabled) override { note(".enabled", enabled); }
  void setToolTip(const QString& tip) override { note(".toolTip = ", tip); }
  void startAnimation() override { note(".start"); }
  void stopAnimation() override { note(".stop"); }
};

/// Its selection is of entries, not of rows, and so survives a reload.
class RecordingTable final : public app::TableView, private Recording {
 public:
  using Recording::Recording;
  const app::TableViewDataSource* dataSource = nullptr;

  void registerForDraggedTypes(const QStringList& types) override { note(".types ", types); }
  void reloadData() override { note(".reload"); }
  [[nodiscard]] std::vector<std::size_t> selectedRowIndexes() const override {
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < dataSource->numberOfRows(); ++row) {
      if (selected_.contains(dataSource->identifierOfRow(row))) rows.push_back(row);
    }
    return rows;
  }
  void select(const std::vector<std::size_t>& rows) {
    selected_.clear();
    for (const std::size_t row : rows) selected_.insert(dataSource->identifierOfRow(row));
  }

 private:
  std::set<std::uint64_t> selected_;
};

class RecordingWindow final : public app::Window, private Recording {
 public:
  using Recording::Recording;
  void makeKeyAndOrderFront() override { note(".front"); }
  void orderOut() override { note(".out"); }
  void beginAlertSheet(const QString& title, const QString& message) override {
    note(".sheet ", QStringList{title, message});
  }
  int sheetReturnCode = 0;
  void beginSheetModal(const app::Alert& a, std::function<void(int returnCode)> didEnd) override {
    note(".sheet ", QStringList{a.messageText, a.informativeText, a.defaultButton, a.alternateButton});
    didEnd(sheetReturnCode);
  }
  void beginAuthenticationSheet(const platform::AuthenticationChallenge& /*challenge*/,
                                std::function<void(std::optional<platform::Credential>)> answer) override {
    answer(std::nullopt);
  }
};

/// Answers panels and alerts with what the test put here.
class RecordingApplication final : public app::Application, private Recording {
 public:
  using Recording::Recording;
  app::AlertResult alertAnswer = app::AlertResult::alternateButton;
  std::optional<QString> panelAnswer;
  app::ChosenFolder dialogAnswer;

  void activateIgnoringOtherApps() override { note(".activate"); }
  void beep() override { note(".beep"); }
  app::AlertResult runModalAlert(const app::Alert& a) override {
    note(".alert ", QStringList{a.messageText, a.informativeText, a.defaultButton, a.alternateButton});
    return alertAnswer;
  }
  std::optional<QString> runOpenPanel(const app::FolderPanel& p) override {
    note(".panel ", QStringList{p.title, p.prompt, p.message, p.directory});
    return panelAnswer;
  }
  app::ChosenFolder runChooseFolderDialog(const app::FolderPanel& p) override {
    note(".dialog ", QStringList{p.title, p.prompt, p.message, p.directory});
    return dialogAnswer;
  }
  void openFile(const QString& path) override { note(".open ", path); }
  void setServicesProvider(app::ServicesProvider& /*provider*/) override { note(".servicesProvider"); }
  void updateDynamicServices() override { note(".updateServices"); }
};

/// All outlets of one controller.
struct RecordedOutlets {
  explicit RecordedOutlets(CallLog& calls) : log(calls) {}

  CallLog& log;
  RecordingWidget destination{log, "destination"}, url{log, "url"}, count{log, "count"}, line{log, "line"};
  RecordingWidget spinner{log, "spinner"}, bar{log, "bar"}, currentURL{log, "currentURL"};
  RecordingWidget cancelButton{log, "cancelButton"}, deleteButton{log, "deleteButton"};
  RecordingWidget stopButton{log, "stopButton"}, openFolderButton{log, "openFolderButton"};
  RecordingWindow preferencesWindow{log, "preferencesWindow"}, statusWindow{log, "statusWindow"};
  RecordingTable table{log, "table"};

  [[nodiscard]] app::Outlets outlets() {
    return {destination, url,        count,        preferencesWindow, statusWindow, spinner,          bar,
            line,        currentURL, cancelButton, deleteButton,      stopButton,   openFolderButton, table};
  }
};

}  // namespace quillforth::tests
