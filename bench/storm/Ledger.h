// SPDX-License-Identifier: MIT
//
// What became of each URL of the storm.
//
// Every URL is unique, and has one entry from the command that brought it in to the reason it is gone for:
//
//   entered ──► queued ◄──► limbo ──► (settled: a command took it out of the queue)
//      │          │           │
//      └──────────┴───────────┴────► started ──► (settled: done, failed, cancelled, …)
//
// The queue tells nobody why an entry goes. So the ledger compares it with how it was, at every command and
// every callback: an entry that has gone is in limbo until it is started, waits again, or a removing command
// that was given before and has come to its end explains it. What nothing explains is a fault. Main thread,
// except for what says otherwise.
#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <vector>

#include "app/Outlets.h"

namespace quillforth::bench {

/// A command that may take entries out of the queue, as it was when it was given.
struct Removal {
  QString name;        ///< for the ledger, such as "deleted by a command that named it"
  bool isAll = false;  ///< whether its rule is to empty the queue
  QSet<QString> named = {};
  bool isForIntake = false;    ///< whether it empties the paced intake, too
  QString page = {};           ///< that is loaded when it is done indeed; null: it always is
  QSet<QString> waiting = {};  ///< in the paced intake, maybe; the ledger's own
};

class Ledger {
 public:
  enum class State { entered, queued, limbo, loading, started, settled };
  struct Entry {
    State state = State::entered;
    bool isPaced = false;  ///< waits for its turn in the paced intake
    bool isGrowing = false;
    bool isSortedAway = false;  ///< from where it had finished, before that was told
    QString page;               ///< that it is a link of; null: of none
    QString fate;               ///< what it was settled as
    QStringList history;
  };

  /// `queue` lives until nothing samples any more, or `settleAfterEnd`.
  void watch(const app::TableViewDataSource& queue) { queue_ = &queue; }

  // Commands.
  void enter(const QString& url, const QString& by);
  /// The same for one that waits for its turn in the paced intake.
  void enterPaced(const QString& url, const QString& by);
  /// The command that brought in `url` is done from now on; null: it is over.
  void doing(const QString& url) { doing_ = url; }
  /// The removal counts from now until `removalDone`.
  int removalGiven(Removal removal);
  void removalDone(int number);
  /// Cancel was pressed while `shown` stood on the screen; null: nothing did.
  void cancelGiven(const QString& shown);
  /// An import that waits, or that runs, was given up.
  void importGivenUp(const QString& url) {
    note(url, "import given up");
    givenUp_.insert(url);
  }

  // What the services see.
  void sample();
  void started(const QString& url);
  void began(const QString& url) { note(url, "began"); }
  /// Its file is there, though not whole.
  void growing(const QString& url) { entries_[url].isGrowing = true; }
  void finished(const QString& url, const QString& path);
  void failed(const QString& url, const QString& reason);
  void cancelled(const QString& url);
  void notConnected();
  /// These three from any thread; they count with the next sample.
  void pageLoading(const QString& url);
  void pageEnded(const QString& url, bool isRead, const QStringList& links);
  void enteredByBrowser(const QString& url);

  // The program's end.
  /// `areCommandsWaiting`: some were given, and are still to be done.
  void quitBegins(bool areCommandsWaiting);
  [[nodiscard]] bool isQuitting() const { return isQuitting_; }

  /// Everything that was brought in is settled; what is not, is a fault.
  void settleAtRest();
  /// What is not settled was lost with the program.
  void settleAfterEnd();
  [[nodiscard]] bool isAtRest() const;
  [[nodiscard]] bool isUnderWay() const { return !underWay_.empty(); }
  /// A file is being written.
  [[nodiscard]] bool isFileGrowing() const;
  /// Entries that a user would miss: those that wait, and those under way.
  [[nodiscard]] int unfinished() const;
  [[nodiscard]] const QHash<QString, Entry>& entries() const { return entries_; }

  void fault(const QString& what, const QString& url = {});
  void count(const QString& what, int number = 1) { counts_[what] += number; }
  /// A line for the histories of the entries that a fault is about.
  void note(const QString& url, const QString& text);
  void note(const QString& url, const char* text) { note(url, QLatin1StringView(text)); }
  void remember(const QString& command);
  /// Prints counts as "COUNT<TAB>NAME", and faults; true when there was none.
  [[nodiscard]] bool print() const;

 private:
  void takePages();
  /// The queue has taken the URL in: it is not what an import brought that was given up.
  void cameIn(const Entry& entry);
  [[nodiscard]] bool isGivenUp(const Entry& entry) const;
  void settle(const QString& url, const QString& as);
  /// False when nothing explains that `url` never came any further than in.
  [[nodiscard]] bool settleEntered(const QString& url);
  void settleWithFault(const QString& url, const QString& as);
  void vanish(const QString& url);
  [[nodiscard]] QString now() const;

  const app::TableViewDataSource* queue_ = nullptr;
  QHash<QString, Entry> entries_;
  QSet<QString> lastQueue_;
  QStringList justVanished_;
  std::map<int, Removal> removals_;    // those under way
  QHash<QString, QString> explained_;  // entries in limbo, by the removal that would explain them
  QSet<QString> underWay_, named_, givenUp_;
  QSet<QString> queuedPages_;  // whose links have come as far as the queue
  int lastRemoval_ = 0;
  QString doing_;
  int unnamedLosses_ = 0;
  int emptiedEarly_ = 0;  // before their turn; some of them may be unnamed losses
  bool isQuitting_ = false;
  bool areCommandsWaiting_ = false;
  QStringList recent_;
  std::map<QString, int> counts_;
  std::map<QString, std::vector<QString>> faults_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::mutex mutex_;  // guards the one below
  std::vector<std::function<void()>> fromThreads_;
};

}  // namespace quillforth::bench
