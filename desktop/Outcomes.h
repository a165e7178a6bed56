// SPDX-License-Identifier: MIT
//
// What came of each URL of this run, beside the queue: the tabs "Waiting", "Finished" and "Failed" over one
// place for a table, what can be done with their rows, and the line that counts them.
//
// It hears what the controller did, and never calls it. Main thread.
#pragma once

#include <QObject>
#include <QStringList>
#include <vector>

#include "app/ControllerObserver.h"
#include "app/LocalizedText.h"
#include "desktop/FramePacer.h"
#include "desktop/OutcomeModel.h"
#include "desktop/QueueTable.h"
#include "desktop/StatusWindow.h"

namespace quillforth::desktop {

class Outcomes final : public QObject, public app::ControllerObserver {
  Q_OBJECT

 public:
  /// `localizedText`: for reasons. The others outlive this.
  Outcomes(FramePacer& pacer, StatusWindow& window, app::LocalizedText localizedText);
  ~Outcomes() override;

  void pageDidNotLoad(const QString& url, const QString& reason) override;
  void urlWasRefused(const QString& text) override;
  void urlWasLost(const QString& url) override;
  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void downloadCancelled(const app::DownloadProgress& progress) override;
  void controllerMovedOn() override;

  /// A file that the user has given up before it was started.
  void addCancelled(const QString& url);
  /// How many URLs wait.
  void showWaiting(std::size_t count);
  /// The URLs of the rows that are selected under "Finished" or "Failed", whichever is shown.
  [[nodiscard]] QStringList selectedURLs() const;
  [[nodiscard]] QStringList failedURLs() const;
  /// Removes what can be queued again of the selected failures, or of all when none is selected: the first of
  /// them whose URLs have no more than `limit` bytes together.
  [[nodiscard]] std::vector<Outcome> takeFailures(std::size_t limit);

 private:
  void setUp(QueueTable& table, OutcomeModel& model, const QString& invitation);
  void addFailure(Outcome::Kind kind, const QString& url, const QString& reason, const QString& page = {});
  void showTab(int tab);
  void showCounts();
  void followSelection();
  /// "Finished" or "Failed"; the latter while the queue is shown.
  [[nodiscard]] OutcomeModel& shownModel();
  void openFile();
  void showInFolder();
  /// Of the first selected row; null, after a beep, when its file is gone.
  [[nodiscard]] QString selectedPlace() const;

  StatusWindow& window_;
  Ui::StatusWindow& ui_;
  app::LocalizedText localizedText_;
  FinishedModel finished_;
  FailedModel failed_;
  QString folder_;  // of the last file, and the reason of the last failure, for the rows to share
  QString reason_;
  QString page_;  // of the last failure
};

}  // namespace quillforth::desktop
