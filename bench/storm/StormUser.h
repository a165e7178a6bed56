// SPDX-License-Identifier: MIT
//
// Whoever sits in front of the window in the storm: gives commands at random moments, by menus, buttons,
// keys, drops and other programs, and answers what comes up after a while.
//
// Works from timers, so also in the middle of every wait of the program. Main thread.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <random>

#include "bench/storm/Ledger.h"
#include "bench/storm/StormFiles.h"
#include "bench/storm/StormItem.h"
#include "bench/storm/WatchedHost.h"
#include "desktop/Desktop.h"
#include "desktop/RequestIntake.h"
#include "tests/support/RawServer.h"

namespace quillforth::bench {

/// What the user works with. All outlive the user.
struct StormScene {
  desktop::Desktop& desktop;
  desktop::RequestIntake& intake;
  WatchedHost& host;
  Ledger& ledger;
  StormFiles& files;
  const tests::RawServer& server;
  QStringList folders;  ///< to choose from; absolute paths
  QString linkFolder;   ///< for link files
};

class StormUser {
 public:
  /// How the program is ended.
  enum class End { atRest, question, signal, panelOpen, pageLoading };

  StormUser(const StormScene& scene, int phase, std::uint64_t seed);
  StormUser(const StormUser&) = delete;
  StormUser& operator=(const StormUser&) = delete;

  /// Gives commands for a while, lets the program come to rest, gives commands again, and ends the program.
  void begin(std::chrono::milliseconds duration, End end);

 private:
  using Clock = std::chrono::steady_clock;
  enum class Stage { storm, calm, lastStorm, lastCalm, waitForMoment, ending };

  // The course of events.
  void tick();
  void calmDown();
  [[nodiscard]] bool isCalm();
  void go(Stage stage, std::chrono::milliseconds duration);
  void prepareEnd();
  void holdBack();
  [[nodiscard]] bool isMomentToEnd() const;
  [[nodiscard]] bool areCommandsWaiting() const;
  void endProgram();

  // Dialogs.
  void answerDialogs();
  void answer(QDialog& dialog);
  void answerImportWindow(QDialog& dialog);
  void answerPreferences(QDialog& dialog);

  // Commands.
  void giveCommand();
  void dropURL();
  void pasteURLs();
  void importNewPage() { importPage(newURL(".html")); }
  void importPage(const QString& url);
  void openURIs();
  void openLinkFiles();
  void sendServicesText();
  void sendGetURL();
  void askBrowser();
  void selectRows();
  void deleteRows();
  void emptyQueue();
  void tryAgain();
  void cancelDownload();
  void changeWindow();
  void closeAndStay();

  /// A command by one of its ways: the menu, the button (null: it has none), or the key.
  void give(const char* action, const char* button = nullptr);
  /// Gives a command that may take entries out of the queue, with a look at it just before and just after.
  void giveRemoval(Removal removal, const std::function<void()>& command);
  void giveRemoval(Removal removal, const char* action, const char* button);
  [[nodiscard]] QString newURL(bool mayBePage);
  [[nodiscard]] QString newURL(const char* extension);
  /// With the next number that has this fate.
  [[nodiscard]] QString newURL(const char* extension, Fate fate);
  [[nodiscard]] bool isStorming() const { return stage_ == Stage::storm || stage_ == Stage::lastStorm; }
  [[nodiscard]] bool isWindowFree();
  template <typename Widget>
  [[nodiscard]] Widget& find(const char* name);
  [[nodiscard]] desktop::QueueTable& table();
  [[nodiscard]] int roll(int count) { return static_cast<int>(dice_() % static_cast<unsigned>(count)); }

  StormScene scene_;
  int phase_;
  std::uint64_t seed_;
  std::mt19937_64 dice_;
  QTimer tick_;
  Stage stage_ = Stage::storm;
  Clock::time_point stageEnd_;
  Clock::time_point restSince_ = Clock::time_point::max();
  Clock::time_point underWaySince_ = Clock::time_point::max();
  std::chrono::milliseconds duration_{};
  End end_ = End::atRest;
  int urlCount_ = 0;
  int publishedBefore_ = 0;
  bool isHoldingBack_ = false;
  QString importedURL_;
  std::map<QObject*, Clock::time_point> answerTimes_;
};

}  // namespace quillforth::bench
