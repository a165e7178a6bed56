// SPDX-License-Identifier: MIT
//
// The program in windows: one controller with its outlets, and what leads from menus, buttons, drops and the
// desktop's events to its commands.
//
// Every command goes through the gate, so that it begins from the event loop and never inside another one. It
// is for what the user saw when it was given: the entries that were selected, the download that was shown,
// the text in the field or in the clipboard. What has gone when its turn comes is left alone, and so is what
// has come in its place. Main thread; a QApplication exists.
#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <array>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "app/Host.h"
#include "app/MyAppController.h"
#include "desktop/CommandGate.h"
#include "desktop/CompletionNotice.h"
#include "desktop/DesktopApplication.h"
#include "desktop/DesktopWindow.h"
#include "desktop/FramePacer.h"
#include "desktop/ImportWindow.h"
#include "desktop/MimePasteboard.h"
#include "desktop/Outcomes.h"
#include "desktop/PacedIntake.h"
#include "desktop/PreferencesWindow.h"
#include "desktop/QueueTable.h"
#include "desktop/SelectionReader.h"
#include "desktop/StatusWindow.h"
#include "desktop/Waiting.h"
#include "desktop/WidgetOutlets.h"
#include "desktop/WorkLine.h"
#include "desktop/WorkProgress.h"

namespace quillforth::desktop {

/// What the program in windows needs of its main().
struct DesktopServices {
  /// The host, with the application that it asks.
  std::function<app::Host(app::Application&)> makeHost;
  /// Holds the callbacks of downloads back, or lets them come again.
  std::function<void(bool isHeld)> holdDownloads;
  /// Makes blocking transfers give up: the program ends.
  std::function<void()> interrupt;
  /// Holds just the ends of downloads back, or tells them.
  std::function<void(bool isHeld)> holdEnds;
  /// Whether the end of a download is held back.
  std::function<bool()> holdsAnEnd;
  /// Bytes of the file under way that have come in while callbacks are held back.
  std::function<std::uint64_t()> undeliveredBytes = [] { return 0; };
  QString settingsFile;            ///< absolute path
  QString transferLibrary{};       ///< with its version, for people
  std::function<bool()> isStored;  ///< whether all that was set is in that file
  /// May be called from any thread. Null: it cannot be switched.
  std::shared_ptr<platform::SessionAccessibility> accessibility = nullptr;
};

class Desktop final : private StatusWindowOwner, private app::ControllerObserver {
 public:
  explicit Desktop(const DesktopServices& services);
  ~Desktop() override;
  Desktop(const Desktop&) = delete;
  Desktop& operator=(const Desktop&) = delete;

  /// Starts the controller and shows the window. Questions to the user may come up in here.
  void start();
  /// The user wants to see the window: whatever the settings say, it comes to the front.
  void bringForward();
  /// Other programs' windows give way, if this one is shown already.
  void activate() { application_.activateIgnoringOtherApps(); }
  /// Ends the event loop, and with it whatever is waited for. Nobody is asked.
  void quit();
  /// The event loop need not be entered any more.
  [[nodiscard]] bool isQuitting() const { return gate_.isClosed(); }

  [[nodiscard]] StatusWindow& statusWindow() { return window_; }
  [[nodiscard]] app::MyAppController& controller() { return controller_; }
  [[nodiscard]] CommandGate& gate() { return gate_; }
  /// For what comes in by the dozen.
  [[nodiscard]] PacedIntake& pacedIntake() { return pacedIntake_; }
  /// Null until the controller has started.
  [[nodiscard]] app::ServicesProvider* servicesProvider() const { return application_.servicesProvider(); }

  /// Says, in the log and in a sheet that nobody waits for, which texts of other programs are no usable URIs.
  void tellOfUnusable(const QStringList& texts);
  /// What takes the files that "Open Link File…" has picked, and link files that are dropped; the command is
  /// there from then on.
  void setOpenDocumentsCommand(std::function<void(const QStringList& fileURIs)> command);

 private:
  using Command = void (app::MyAppController::*)();

  bool mayDrop(const QMimeData& data) override;
  void drop(const QMimeData& data) override;
  void windowDidBecomeKey() override;
  bool windowShouldClose() override;
  void controllerMovedOn() override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void urlsWereDiscarded(const std::shared_ptr<const app::UrlQueue>& urls) override;
  void pageWasQueued(const QString& url, std::size_t linkCount) override;
  void pageDidNotLoad(const QString& url, const QString& reason) override;
  void urlWasLost(const QString& /*url*/) override { wasURLLost_ = true; }

  void connectCommands();
  /// Calls `give` whenever one of these is triggered.
  void bind(QAction* action, QAbstractButton* button, const std::function<void()>& give);
  /// The same for a command without a target, which is one as long as it waits or runs, however often it is
  /// given.
  void bind(QAction* action, QAbstractButton* button, Command command);
  /// A file URL of a file that an open-documents event takes a URL from.
  [[nodiscard]] bool namesLinkFile(const QString& url) const;
  void give(CommandGate::Command command);
  /// Nothing when the command that was given last has the same purpose and is still to be done: it is pressed
  /// again because nothing has happened yet. Else that command is to be done as long as the result lives.
  using Given = std::shared_ptr<const QString>;
  [[nodiscard]] Given begin(const QString& purpose);
  void giveOnce(const QString& purpose, CommandGate::Command command);
  /// Posts the command unless it is posted already.
  void keepUpToDate(bool& isPosted, Command command);
  /// For one that empties the queue.
  void giveToAll(Command command, const QString& undoText);
  /// A step of this text brings back what the command throws away.
  void doUndoably(const QString& undoText, const std::function<void()>& command,
                  std::vector<PacedIntake::Waiting> dropped = {});
  void sortLater();
  void filter();
  void showFilterCount();
  void undo();
  void toggleHold();
  void setHeld(bool isHeld);
  void showStanding();
  void removeDuplicates();
  void saveList();
  /// Which commands for the queue there are at the moment.
  void followState();
  void importPage();
  void deleteEntries(const Entries& entries);
  void tryAgain(const Entries& head);
  [[nodiscard]] std::uint64_t nextIdentifier() const;
  void rememberUnwantedFile() { beforeUnwantedFile_ = {controller_.startedCount(), nextIdentifier()}; }
  void takeOutUnwantedFile();
  /// `download`: by how many had been started.
  void cancelDownload(int download);
  void chooseDestination();
  void copy();
  void paste();
  void take(const PastedURLs& pasted);
  void queueEntries(const QStringList& entries);
  void queueAgain();
  /// Opens the sheet that URLs are typed into, with these in it.
  void askForURLs(const QStringList& urls);
  struct TypedBatch;
  void take(const std::shared_ptr<TypedBatch>& batch);
  void takeNext(TypedBatch& batch);
  /// Has `item` done in its turn; `texts` is what it takes, and without any it is nothing.
  void add(const Given& given, const QStringList& texts, const PacedIntake::Item& item);
  void tellTooMuch();
  void queueFiles(const QStringList& urls);
  void tellRefused(const QStringList& lines);
  [[nodiscard]] PreferencesServices preferencesServices();
  [[nodiscard]] QString storedDestinationPath();
  [[nodiscard]] CompletionNoticeServices noticeServices();
  /// Something waits or is being downloaded.
  [[nodiscard]] bool hasWork() const;
  /// How many URLs wait or are being downloaded.
  [[nodiscard]] std::size_t workCount() const;
  /// What the end of the program would break off.
  [[nodiscard]] QString lossText() const;
  /// Lets the user choose among the links of a page, if that is wanted.
  void chooseLinks(app::UrlQueue& links);
  void showAbout();
  void showManual();
  /// A window, and where its place is kept in the settings, as Qt describes it.
  struct Place {
    const char* key;
    QWidget& window;
  };
  [[nodiscard]] std::array<Place, 3> places();
  void restorePlaces();
  void storePlaces();
  [[nodiscard]] app::Outlets outlets();
  /// The host, with a window that is drawn while it is waited for.
  [[nodiscard]] app::Host waitingHost();

  DesktopServices services_;
  FramePacer pacer_;
  CommandGate gate_;
  StatusWindow window_;
  DesktopApplication application_;
  app::Host host_;
  app::Preferences preferences_;
  CompletionNotice notice_;
  Outcomes outcomes_;
  FramePacer::Update state_;
  PacedIntake pacedIntake_;
  WorkLine workLine_;
  WorkProgress workProgress_;
  WaitingPageLoader pageLoader_;
  WaitingReadStreams readStreams_;
  WaitingScriptHost scripts_;
  WaitingAggregation aggregation_;
  ImportWindow importWindow_;
  PreferencesWindow preferencesWindow_;
  DesktopWindow statusOutlet_;
  ImportOutlet importOutlet_;
  DesktopWindow preferencesOutlet_;
  LabelOutlet downloadDestinationTextField_;
  LabelOutlet countTextField_;
  SpinnerOutlet spinner_;
  ProgressBarOutlet fileDownloadProgressBar_;
  LabelOutlet fileDownloadProgressText_;
  LabelOutlet currentURLTextField_;
  ButtonOutlet fileDownloadCancelButton_;
  ButtonOutlet deleteButton_;
  ButtonOutlet stopButton_;
  ButtonOutlet startNextButton_;
  ButtonOutlet holdButton_;
  ButtonOutlet openOutputFolderButton_;
  TableOutlet fileTable_;
  app::MyAppController controller_;
  SelectionReader clipboard_;
  std::function<void(const QStringList&)> openDocuments_ = [](const QStringList&) {};
  std::weak_ptr<const QString> latestPurpose_;
  std::uint64_t addedBeforeImport_ = 0;  // to the paced intake
  int shownDownload_ = 0;                // by how many had been started
  int pressedDownload_ = 0;              // the one that was shown when the button to cancel it went down
  bool wasURLLost_ = false;              // since it was set to false
  struct UndoStep {
    QString text;  ///< of its menu entry
    std::shared_ptr<const app::UrlQueue> urls;
    std::vector<PacedIntake::Waiting> dropped;  ///< before its turn
  };
  std::deque<UndoStep> undoSteps_;
  QString undoText_;                           // of the command that runs; null: it cannot be undone
  std::vector<PacedIntake::Waiting> dropped_;  // by that command
  bool wasQueueEmptied_ = false;               // by that command
  bool isHeld_ = false;
  bool isNoneChosen_ = false;  // of the links of a page that is about to be queued
  QPointer<QMessageBox> quitQuestion_;
  QString end_;  // what there is to say of the work that has ended
  /// What there was before a cancelled question makes a file of its URL.
  struct BeforeFile {
    int startedCount;
    std::uint64_t nextIdentifier;
  };
  std::optional<BeforeFile> beforeUnwantedFile_;
  bool isBecomingKey_ = false;
  bool isBecomingActive_ = false;
};

}  // namespace quillforth::desktop
