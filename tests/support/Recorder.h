// SPDX-License-Identifier: MIT
//
// Outlets that write down what is done to them, all in one list, so that a test can ask for the order.
#pragma once

#include <QString>
#include <QStringList>
#include <algorithm>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/Outlets.h"

namespace quillforth::tests {

/// Calls as text: "spinner.start", "count = 2 urls queued". Takes what is asked for and forgets it.
class CallLog {
 public:
  void add(const QString& call) { calls_ << call; }
  [[nodiscard]] QStringList take() { return std::exchange(calls_, {}); }
  /// One text, for comparing: calls parted by "; ".
  [[nodiscard]] std::string takeText() { return take().join(QStringLiteral("; ")).toStdString(); }
  /// Only the calls that begin with one of the prefixes, one text.
  [[nodiscard]] std::string takeOnly(std::initializer_list<const char*> prefixes) {
    QStringList chosen;
    for (const QString& call : take()) {
      if (std::any_of(prefixes.begin(), prefixes.end(),
                      [&](const char* prefix) { return call.startsWith(QLatin1String(prefix)); })) {
        chosen << call;
      }
    }
    return chosen.join(QStringLiteral("; ")).toStdString();
  }

 private:
  QStringList calls_;
};

/// A named thing that writes to the log.
class Recording {
 public:
  Recording(CallLog& log, const char* name) : log_(log), name_(QString::fromLatin1(name)) {}

 protected:
  void note(const QString& call) const { log_.add(name_ + call); }
  void noteFlag(const char* property, bool value) const {
    note(u'.' + QString::fromLatin1(property) + (value ? QStringLiteral(" YES") : QStringLiteral(" NO")));
  }

 private:
  CallLog& log_;
  QString name_;
};

class RecordingTextField final : public app::TextField, private Recording {
 public:
  using Recording::Recording;
  QString text;
  [[nodiscard]] QString stringValue() const override { return text; }
  void setStringValue(const QString& value) override {
    text = value;
    note(QStringLiteral(" = ") + value);
  }
  void setHidden(bool hidden) override { noteFlag("hidden", hidden); }
};

class RecordingButton final : public app::Button, private Recording {
 public:
  using Recording::Recording;
  void setEnabled(bool enabled) override { noteFlag("enabled", enabled); }
  void setHidden(bool hidden) override { noteFlag("hidden", hidden); }
  void setToolTip(const QString& text) override { note(QStringLiteral(".toolTip = ") + text); }
};

class RecordingProgressIndicator final : public app::ProgressIndicator, private Recording {
 public:
  using Recording::Recording;
  void setDoubleValue(double value) override { note(QStringLiteral(" = ") + QString::number(value, 'f', 3)); }
  void setHidden(bool hidden) override { noteFlag("hidden", hidden); }
  void startAnimation() override { note(QStringLiteral(".start")); }
  void stopAnimation() override { note(QStringLiteral(".stop")); }
};

/// Its selection is of entries, not of rows, and so survives a reload.
class RecordingTable final : public app::TableView, private Recording {
 public:
  using Recording::Recording;
  const app::TableViewDataSource* dataSource = nullptr;

  void registerForDraggedTypes(const QStringList& types) override {
    note(QStringLiteral(".types ") + types.join(u','));
  }
  void reloadData() override { note(QStringLiteral(".reload")); }
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
  void makeKeyAndOrderFront() override { note(QStringLiteral(".front")); }
  void beginAlertSheet(const QString& title, const QString& message) override {
    note(QStringLiteral(".sheet ") + title + QStringLiteral(" | ") + message);
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

  void activateIgnoringOtherApps() override { note(QStringLiteral(".activate")); }
  void beep() override { note(QStringLiteral(".beep")); }
  app::AlertResult runModalAlert(const app::Alert& alert) override {
    note(QStringList{QStringLiteral(".alert ") + alert.messageText, alert.informativeText,
                     alert.defaultButton, alert.alternateButton}
             .join(QStringLiteral(" | ")));
    return alertAnswer;
  }
  std::optional<QString> runOpenPanel(const app::FolderPanel& panel) override {
    noteFolderPanel(QStringLiteral(".openPanel "), panel);
    return panelAnswer;
  }
  app::ChosenFolder runChooseFolderDialog(const app::FolderPanel& panel) override {
    noteFolderPanel(QStringLiteral(".chooseDialog "), panel);
    return dialogAnswer;
  }
  void openFile(const QString& path) override { note(QStringLiteral(".openFile ") + path); }

 private:
  void noteFolderPanel(const QString& kind, const app::FolderPanel& panel) {
    note(kind +
         QStringList{panel.title, panel.prompt, panel.message, panel.directory}.join(QStringLiteral(" | ")));
  }
};

/// All outlets of one controller.
struct RecordedOutlets {
  explicit RecordedOutlets(CallLog& calls) : log(calls) {}

  CallLog& log;
  RecordingTextField destination{log, "destination"};
  RecordingTextField url{log, "url"};
  RecordingTextField count{log, "count"};
  RecordingWindow preferencesWindow{log, "preferencesWindow"};
  RecordingWindow statusWindow{log, "statusWindow"};
  RecordingProgressIndicator spinner{log, "spinner"};
  RecordingProgressIndicator bar{log, "bar"};
  RecordingTextField line{log, "line"};
  RecordingTextField currentURL{log, "currentURL"};
  RecordingButton cancelButton{log, "cancelButton"};
  RecordingButton deleteButton{log, "deleteButton"};
  RecordingButton stopButton{log, "stopButton"};
  RecordingButton openFolderButton{log, "openFolderButton"};
  RecordingTable table{log, "table"};

  [[nodiscard]] app::Outlets outlets() {
    return {destination, url,        count,        preferencesWindow, statusWindow, spinner,          bar,
            line,        currentURL, cancelButton, deleteButton,      stopButton,   openFolderButton, table};
  }
};

}  // namespace quillforth::tests
