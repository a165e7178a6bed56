// SPDX-License-Identifier: MIT

#include "desktop/Desktop.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/MessageSheets.h"
#include "net/URL.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

Desktop::Desktop(const DesktopServices& services)
    : services_(services),
      window_(*this),
      application_(window_, gate_),
      host_(services.makeHost(application_)),
      preferences_(*host_.userDefaults),
      notice_(noticeServices()),
      outcomes_(pacer_, window_, host_.localizedText),
      state_(pacer_, [this] { followState(); }),
      pacedIntake_(gate_, [this] { state_.request(); }),
      workLine_(pacer_, window_,
                [this](bool isWaiting) {
                  return isHeld_ && !isWaiting ? QString() : workProgress_.bytesText(isWaiting);
                }),
      workProgress_(pacer_, window_,
                    {.waitingCount = [this] { return controller_.numberOfRows(); },
                     .isWorkLeft = [this] { return hasWork() || gate_.hasWaiting(); },
                     .undeliveredBytes = services_.undeliveredBytes,
                     .tellEnd =
                         [this](const QString& text) {
                           end_ = text;
                           showStanding();
                         },
                     .wasShown = [this] { workLine_.show(); }}),
      pageLoader_(*host_.pageLoader, *host_.log, gate_, workLine_),
      readStreams_(*host_.readStreams, gate_, workLine_, [this] { rememberUnwantedFile(); }),
      scripts_(host_.scripts, gate_),
      aggregation_(host_.aggregation, gate_, [this] { return isHeld_; }),
      importWindow_(&window_),
      preferencesWindow_(preferencesServices(), &window_),
      statusOutlet_(window_, gate_),
      importOutlet_(importWindow_, gate_, pageLoader_, [this] { importPage(); }),
      preferencesOutlet_(preferencesWindow_, gate_),
      downloadDestinationTextField_(pacer_, *window_.ui().downloadDestinationTextField),
      countTextField_(pacer_, *window_.ui().countTextField,
                      [this] {
                        outcomes_.showWaiting(controller_.numberOfRows());
                        workProgress_.queueDidChange();
                        followState();
                      }),
      spinner_(pacer_, *window_.ui().spinner),
      fileDownloadProgressBar_(pacer_, *window_.ui().fileDownloadProgressBar),
      fileDownloadProgressText_(pacer_, *window_.ui().fileDownloadProgressText),
      currentURLTextField_(pacer_, *window_.ui().currentURLTextField,
                           [this] { shownDownload_ = controller_.startedCount(); }),
      fileDownloadCancelButton_(pacer_, *window_.ui().fileDownloadCancelButton, *window_.ui().fileTable,
                                window_.ui().actionCancelDownload),
      deleteButton_(pacer_, *window_.ui().deleteButton, *window_.ui().fileTable, window_.ui().actionDelete),
      stopButton_(pacer_, *window_.ui().stopButton, *window_.ui().fileTable, window_.ui().actionStop),
      startNextButton_(pacer_, *window_.ui().tryAgainButton, *window_.ui().fileTable,
                       window_.ui().actionTryAgain),
      holdButton_(pacer_, *window_.ui().holdButton, *window_.ui().fileTable, window_.ui().actionHold),
      openOutputFolderButton_(pacer_, *window_.ui().openOutputFolderButton, *window_.ui().fileTable),
      fileTable_(pacer_, *window_.ui().fileTable, [this] { controller_.tableViewSelectionDidChange(); }),
      controller_(outlets(), waitingHost()) {
  gate_.whenDownloadsAreHeld(services_.holdDownloads);
  gate_.waitWhile([this] { return controller_.isBeginning(); });
  gate_.afterEach([this] {
    takeOutUnwantedFile();
    workProgress_.settle();
    followState();
  });
  fileTable_.setDataSource(controller_);
  connectCommands();
  window_.resize(window_.size().boundedTo(RoomOnScreen(window_)));
  restorePlaces();
}

// The window goes first in what it says: nothing of it may reach the controller any more.
Desktop::~Desktop() {
  gate_.close();
  host_.downloads->end();  // nothing of the controller is going on any more
  storePlaces();
}

app::Outlets Desktop::outlets() {
  return {.downloadDestinationTextField = downloadDestinationTextField_,
          .urlTextField = importOutlet_,
          .countTextField = countTextField_,
          .preferencesWindow = preferencesOutlet_,
          .statusWindow = statusOutlet_,
          .spinner = spinner_,
          .fileDownloadProgressBar = fileDownloadProgressBar_,
          .fileDownloadProgressText = fileDownloadProgressText_,
          .currentURLTextField = currentURLTextField_,
          .fileDownloadCancelButton = fileDownloadCancelButton_,
          .deleteButton = deleteButton_,
          .stopButton = stopButton_,
          .openOutputFolderButton = openOutputFolderButton_,
          .fileTable = fileTable_};
}

app::Host Desktop::waitingHost() {
  app::Host host = host_;
  host.observers.insert(host.observers.end(), {&notice_, &outcomes_, &workProgress_, this});
  host.pageLoader = &pageLoader_;
  host.readStreams = &readStreams_;
  host.scripts = &scripts_;
  host.aggregation = &aggregation_;
  host.chooseLinks = [this](app::UrlQueue& links) { chooseLinks(links); };
  host.calculate = [this](const std::function<void()>& calculation) {
    WaitFor(gate_, calculation);
    return !importOutlet_.isGivenUp();
  };
  return host;
}

PreferencesServices Desktop::preferencesServices() {
  return {.userDefaults = *host_.userDefaults,
          .settingsFile = services_.settingsFile,
          .isStored = services_.isStored,
          .destinationPath = [this] { return storedDestinationPath(); },
          .chooseDestination = [this] { window_.ui().actionChooseDestination->trigger(); },
          .localizedText = host_.localizedText,
          .accessibility = services_.accessibility};
}

CompletionNoticeServices Desktop::noticeServices() {
  return {.userDefaults = *host_.userDefaults,
          .localizedText = host_.localizedText,
          .isWorkLeft = [this] { return hasWork(); },
          .isInFront = &IsInFront,
          .sound = [this] { return controller_.completionSound(); }};
}

QString Desktop::storedDestinationPath() {
  const auto folder = controller_.destinationFolder().storedDestinationFolder();
  return folder ? app::FolderPath(*folder, app::kLongestShownPath) : QString();
}

void Desktop::start() {
  const CommandGate::Hold hold(gate_);
  controller_.awakeFromNib();
  controller_.applicationWillFinishLaunching();
}

void Desktop::bringForward() {
  controller_.statusWindow().makeKeyAndOrderFront();
  application_.activateIgnoringOtherApps();
}

void Desktop::bind(QAction* action, QAbstractButton* button, const std::function<void()>& give) {
  if (action != nullptr) QObject::connect(action, &QAction::triggered, &window_, give);
  if (button != nullptr) QObject::connect(button, &QAbstractButton::clicked, &window_, give);
}

void Desktop::bind(QAction* action, QAbstractButton* button, Command command) {
  bind(action, button, [this, purpose = action->objectName(), command] {
    giveOnce(purpose, [this, command] { (controller_.*command)(); });
  });
}

void Desktop::give(CommandGate::Command command) {
  giveOnce(QString(), std::move(command));
}

void Desktop::giveOnce(const QString& purpose, CommandGate::Command command) {
  const Given given = begin(purpose);
  if (given && !gate_.post([given, command = std::move(command)] { command(); })) application_.beep();
  followState();
}

Desktop::Given Desktop::begin(const QString& purpose) {
  const Given latest = latestPurpose_.lock();
  if (latest && !purpose.isEmpty() && *latest == purpose) return nullptr;
  auto given = std::make_shared<const QString>(purpose);
  latestPurpose_ = given;
  return given;
}

void Desktop::keepUpToDate(bool& isPosted, Command command) {
  if (isPosted) return;
  isPosted = gate_.post([this, &isPosted, command] {
    isPosted = false;
    (controller_.*command)();
  });
}

void Desktop::connectCommands() {
  Ui::StatusWindow& ui = window_.ui();
  const QAbstractItemModel* rows = ui.fileTable->model();
  QObject::connect(rows, &QAbstractItemModel::modelReset, &window_, [this] { showFilterCount(); });
  QObject::connect(rows, &QAbstractItemModel::rowsInserted, &window_, [this] { showFilterCount(); });
  QObject::connect(rows, &QAbstractItemModel::rowsRemoved, &window_, [this] { showFilterCount(); });
  using Controller = app::MyAppController;
  bind(ui.actionImportURL, ui.importButton, [this] { importOutlet_.makeKeyAndOrderFront(); });
  bind(ui.actionAddURLs, ui.addButton, [this] { askForURLs({}); });
  bind(ui.actionGetBrowserURL, nullptr, &Controller::processCurrentBrowserURL);
  bind(ui.actionPreferences, nullptr, &Controller::showPreferencesWindow);
  bind(ui.actionChooseDestination, ui.chooseFolderButton, [this] { chooseDestination(); });
  bind(ui.actionOpenDestination, ui.openOutputFolderButton, &Controller::openDestinationDirectory);
  bind(ui.actionAggregate, nullptr, &Controller::aggregateFile);
  bind(ui.actionDelete, ui.deleteButton,
       [this] { give([this, entries = fileTable_.selectedEntries()] { deleteEntries(entries); }); });
  bind(ui.actionRemoveDuplicates, nullptr, [this] { give([this] { removeDuplicates(); }); });
  bind(ui.actionSaveList, nullptr, [this] { saveList(); });
  bind(ui.actionHelp, nullptr, [this] { showManual(); });
  QObject::connect(ui.filterField, &QLineEdit::textChanged, &window_, [this] { filter(); });
  QObject::connect(ui.kindsButton, &KindsButton::kindsDidChange, &window_, [this] { filter(); });
  bind(ui.actionUndo, nullptr, [this] { give([this] { undo(); }); });
  bind(ui.actionHold, ui.holdButton, [this] { toggleHold(); });
  bind(ui.actionClear, nullptr,
       [this] { giveToAll(&Controller::clearQueue, StatusWindow::tr("&Undo Clear")); });
  bind(ui.actionStop, ui.stopButton,
       [this] { giveToAll(&Controller::stop, StatusWindow::tr("&Undo Stop")); });
  QObject::connect(&importWindow_, &ImportWindow::importRequested, &window_, [this] {
    addedBeforeImport_ = pacedIntake_.addedCount();
    if (!importWindow_.urlTextField().text().isEmpty()) clipboard_.forget();
    give(importOutlet_.begin());
  });
  bind(ui.actionTryAgain, ui.tryAgainButton, [this, purpose = ui.actionTryAgain->objectName()] {
    giveOnce(purpose, [this, head = fileTable_.firstEntry()] { tryAgain(head); });
  });
  bind(ui.actionCancelDownload, nullptr,
       [this] { give([this, download = shownDownload_] { cancelDownload(download); }); });
  QObject::connect(ui.fileDownloadCancelButton, &QPushButton::pressed, &window_,
                   [this] { pressedDownload_ = shownDownload_; });
  bind(nullptr, ui.fileDownloadCancelButton,
       [this] { give([this, download = pressedDownload_] { cancelDownload(download); }); });
  bind(ui.actionQueueAgain, nullptr, [this] { queueAgain(); });
  bind(ui.actionPaste, nullptr, [this] { paste(); });
  bind(ui.actionCopy, nullptr, [this] { copy(); });
  bind(ui.actionAbout, nullptr, [this] { showAbout(); });
  QObject::connect(&notice_, &CompletionNotice::activationRequested, &window_,
                   [this](const QString& token) { BringForward(window_, token); });
  QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &window_,
                   [this](Qt::ApplicationState state) {
                     if (state != Qt::ApplicationActive) return;
                     keepUpToDate(isBecomingActive_, &Controller::applicationWillBecomeActive);
                   });
}

void Desktop::chooseDestination() {
  giveOnce(window_.ui().actionChooseDestination->objectName(), [this] {
    application_.pickFolder(controller_.destinationFolder().chooseFolderPanel());
    controller_.selectDestinationDirectory();
  });
}

void Desktop::pageWasQueued(const QString& url, std::size_t linkCount) {
  beforeUnwantedFile_.reset();  // the answer came first: it is a page
  const bool isEmpty = linkCount == 0 && !std::exchange(isNoneChosen_, false);
  if (!isEmpty) return;
  importOutlet_.setFailure(StatusWindow::tr("The page has no links."));
  end_ = StatusWindow::tr("No links on %1.").arg(platform::WithoutCredentials(url));
  showStanding();
}

void Desktop::pageDidNotLoad(const QString& /*url*/, const QString& reason) {
  beforeUnwantedFile_.reset();
  if (!reason.isNull()) importOutlet_.setFailure(host_.localizedText(reason));
}

void Desktop::windowDidBecomeKey() {
  keepUpToDate(isBecomingKey_, &app::MyAppController::windowDidBecomeKey);
}

bool Desktop::windowShouldClose() {
  if (gate_.isClosed()) return true;
  if (!hasWork() && !gate_.isBusy()) {
    quit();
    return true;
  }
  statusOutlet_.beginSheet([this] {
    auto* box = MakeMessageBox({StatusWindow::tr("Quit Quillforth?"), lossText(), StatusWindow::tr("Quit"),
                                StatusWindow::tr("Stay")},
                               QMessageBox::Question, &window_);
    quitQuestion_ = box;
    PreferStaying(*box);
    QObject::connect(box, &QMessageBox::finished, &window_, [this, box] {
      if (IsAccepted(*box)) quit();
    });
    return box;
  });
  return false;
}

bool Desktop::hasWork() const {
  return workCount() > 0;
}

std::size_t Desktop::workCount() const {
  return controller_.numberOfRows() + pacedIntake_.urlCount() + (controller_.isBusy() ? 1 : 0);
}

QString Desktop::lossText() const {
  const std::size_t count = workCount() + (workLine_.isWaiting() ? 1 : 0);
  if (count > 0)
    return StatusWindow::tr("URLs that will be lost: %1").arg(QLocale().toString(qulonglong{count}));
  return gate_.hasCommand() ? StatusWindow::tr("What is under way will be broken off.")
                            : StatusWindow::tr("Nothing will be lost.");
}

void Desktop::quit() {
  if (gate_.isClosed()) return;
  gate_.close();
  services_.interrupt();
  QCoreApplication::exit();
}

void Desktop::showAbout() {
  statusOutlet_.beginSheet([this] {
    const QString about = StatusWindow::tr("Downloads files from the web in batches.") +
                          QStringLiteral("\n\n") + StatusWindow::tr("Free software under the MIT licence.") +
                          QStringLiteral("\nQt ") + QLatin1StringView(qVersion()) + QStringLiteral("\n") +
                          services_.transferLibrary;
    auto* box = MakeMessageBox({StatusWindow::tr("Quillforth %1").arg(QStringLiteral(QUILLFORTH_VERSION)),
                                about, QDialog::tr("OK"), QString()},
                               QMessageBox::NoIcon, &window_);
    box->setIconPixmap(QApplication::windowIcon().pixmap(64));
    return box;
  });
}

// The manual that is installed with the program. Where there is none, or nothing to show it with, the manual
// page: in the viewers of the two large desktops, and then in what every desktop has.
void Desktop::showManual() {
  const QString folder =
      QCoreApplication::applicationDirPath() + QStringLiteral("/../share/doc/quillforth/manual/");
  const QString language = QLocale().name().section(u'_', 0, 0);
  for (const QString& page :
       {folder + language + QStringLiteral("/index.html"), folder + QStringLiteral("index.html")}) {
    if (QFileInfo::exists(page) &&
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(page).canonicalFilePath())))
      return;
  }
  const std::pair<const char*, QStringList> viewers[] = {
      {"yelp", {QStringLiteral("man:quillforth")}},
      {"khelpcenter", {QStringLiteral("man:/quillforth")}},
      {"x-terminal-emulator", {QStringLiteral("-e"), QStringLiteral("man"), QStringLiteral("quillforth")}}};
  for (const auto& [program, arguments] : viewers) {
    const QString path = QStandardPaths::findExecutable(QLatin1StringView(program));
    if (!path.isEmpty() && QProcess::startDetached(path, arguments)) return;
  }
  statusOutlet_.beginAlertSheet(StatusWindow::tr("There is no program here to show the manual with."),
                                StatusWindow::tr("A terminal shows it with: man quillforth"));
}

std::array<Desktop::Place, 3> Desktop::places() {
  return {Place{"Windows/statusWindow", window_}, Place{"Windows/importWindow", importWindow_},
          Place{"Windows/preferencesWindow", preferencesWindow_}};
}

void Desktop::restorePlaces() {
  host_.userDefaults->synchronize();
  for (const Place& place : places()) {
    place.window.restoreGeometry(
        host_.userDefaults->objectForKey(QLatin1StringView(place.key)).toByteArray());
  }
}

// A window that was not shown has no place of its own to tell.
void Desktop::storePlaces() {
  for (const Place& place : places()) {
    if (!place.window.testAttribute(Qt::WA_WState_ExplicitShowHide)) continue;
    host_.userDefaults->setObject(QLatin1StringView(place.key), place.window.saveGeometry());
  }
  host_.userDefaults->synchronize();
}

}  // namespace quillforth::desktop
