// SPDX-License-Identifier: MIT

#include "desktop/Desktop.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <algorithm>
#include <utility>

#include "app/Pasteboard.h"
#include "desktop/Activation.h"
#include "desktop/AddSheet.h"
#include "desktop/MessageSheets.h"
#include "desktop/Request.h"
#include "desktop/ShownText.h"
#include "net/URL.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

QString ShownURL(const QString& text, qsizetype limit) {
  return ShownText(platform::WithoutCredentials(text), limit);
}

// A line each. The texts may be anything, and as many; the sheet has to fit the screen, also where most of
// the characters are escapes.
QString ShownURLs(const QStringList& texts) {
  constexpr qsizetype kMostShown = 8;
  constexpr qsizetype kLongestShown = 80;
  QStringList lines;
  for (const QString& text : texts.first(std::min(texts.size(), kMostShown))) {
    lines.append(ShownText(ShownURL(text, kLongestShown), kLongestShown));
  }
  if (texts.size() > kMostShown) lines.append(QStringLiteral("…"));
  return lines.join(u'\n');
}

}  // namespace

Desktop::Desktop(const DesktopServices& services)
    : services_(services),
      window_(*this),
      application_(window_, gate_),
      host_(services.makeHost(application_)),
      notice_(noticeServices()),
      outcomes_(pacer_, window_, host_.localizedText),
      pacedIntake_(gate_),
      pageLoader_(*host_.pageLoader, *host_.log, gate_),
      readStreams_(*host_.readStreams, gate_),
      scripts_(host_.scripts, gate_),
      aggregation_(host_.aggregation, gate_),
      importWindow_(&window_),
      preferencesWindow_(preferencesServices(), &window_),
      statusOutlet_(window_, gate_),
      importOutlet_(importWindow_, gate_, pageLoader_, [this] { importPage(); }),
      preferencesOutlet_(preferencesWindow_, gate_),
      downloadDestinationTextField_(pacer_, *window_.ui().downloadDestinationTextField),
      countTextField_(pacer_, *window_.ui().countTextField,
                      [this] { outcomes_.showWaiting(controller_.numberOfRows()); }),
      spinner_(pacer_, *window_.ui().spinner),
      fileDownloadProgressBar_(pacer_, *window_.ui().fileDownloadProgressBar),
      fileDownloadProgressText_(pacer_, *window_.ui().fileDownloadProgressText),
      currentURLTextField_(pacer_, *window_.ui().currentURLTextField,
                           [this] { shownDownload_ = controller_.startedCount(); }),
      fileDownloadCancelButton_(pacer_, *window_.ui().fileDownloadCancelButton, *window_.ui().fileTable,
                                window_.ui().actionCancelDownload),
      deleteButton_(pacer_, *window_.ui().deleteButton, *window_.ui().fileTable, window_.ui().actionDelete),
      stopButton_(pacer_, *window_.ui().stopButton, *window_.ui().fileTable),
      openOutputFolderButton_(pacer_, *window_.ui().openOutputFolderButton, *window_.ui().fileTable),
      fileTable_(pacer_, *window_.ui().fileTable, [this] { controller_.tableViewSelectionDidChange(); }),
      controller_(outlets(), waitingHost()) {
  gate_.whenDownloadsAreHeld(services_.holdDownloads);
  gate_.waitWhile([this] { return controller_.isBeginning(); });
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
  host.observers = {&notice_, &outcomes_, this};
  host.pageLoader = &pageLoader_;
  host.readStreams = &readStreams_;
  host.scripts = &scripts_;
  host.aggregation = &aggregation_;
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
  const std::shared_ptr<const QString> given = begin(purpose);
  if (given && !gate_.post([given, command = std::move(command)] { command(); })) application_.beep();
}

std::shared_ptr<const QString> Desktop::begin(const QString& purpose) {
  const std::shared_ptr<const QString> latest = latestPurpose_.lock();
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
  using Controller = app::MyAppController;
  bind(ui.actionImportURL, ui.importButton, [this] { importOutlet_.makeKeyAndOrderFront(); });
  bind(ui.actionAddURLs, ui.addButton, [this] { askForURLs(QString()); });
  bind(ui.actionGetBrowserURL, nullptr, &Controller::processCurrentBrowserURL);
  bind(ui.actionPreferences, nullptr, &Controller::showPreferencesWindow);
  bind(ui.actionChooseDestination, ui.chooseFolderButton, [this] { chooseDestination(); });
  bind(ui.actionOpenDestination, ui.openOutputFolderButton, &Controller::openDestinationDirectory);
  bind(ui.actionAggregate, nullptr, &Controller::aggregateFile);
  bind(ui.actionDelete, ui.deleteButton,
       [this] { give([this, entries = fileTable_.selectedEntries()] { deleteEntries(entries); }); });
  bind(ui.actionClear, nullptr, [this] { giveToAll(&Controller::clearQueue); });
  bind(ui.actionStop, ui.stopButton, [this] { giveToAll(&Controller::stop); });
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

// What was asked for before is emptied out with the queue, also where it has not come that far.
void Desktop::giveToAll(Command command) {
  clipboard_.forget();
  give([this, command, count = pacedIntake_.addedCount()] {
    pacedIntake_.dropFirst(count);
    (controller_.*command)();
  });
}

void Desktop::importPage() {
  if (!importOutlet_.stringValue().isEmpty()) pacedIntake_.dropFirst(addedBeforeImport_);
  controller_.importURL(importOutlet_);
}

// Given with nothing selected it means all of them, also when something is selected by now.
void Desktop::deleteEntries(const Entries& entries) {
  if (!entries.empty() && !fileTable_.isAnyQueued(entries)) return;
  fileTable_.runFor(entries, [this] { controller_.deleteButtonClicked(); });
}

void Desktop::tryAgain(const Entries& head) {
  if (head.empty() || fileTable_.isAnyQueued(head)) controller_.tryAgain();
}

void Desktop::cancelDownload(int download) {
  if (download == controller_.startedCount() && controller_.isDownloading()) controller_.cancelDownloadFile();
}

void Desktop::chooseDestination() {
  giveOnce(window_.ui().actionChooseDestination->objectName(), [this] {
    application_.pickFolder(controller_.destinationFolder().chooseFolderPanel());
    controller_.selectDestinationDirectory();
  });
}

void Desktop::tellOfUnusable(const QStringList& texts) {
  constexpr qsizetype kMaxLogged = 100;
  constexpr qsizetype kLongestLogged = 200;
  for (const QString& text : texts.first(std::min(texts.size(), kMaxLogged))) {
    host_.log->log(QStringLiteral("Quillforth cannot take %1: %2")
                       .arg(ShownURL(text, kLongestLogged), QLatin1StringView(kUnusableURI)));
  }
  statusOutlet_.beginAlertSheet(
      StatusWindow::tr("Not everything could be taken."),
      StatusWindow::tr("Neither a file nor an http, https or ftp URL:") + u'\n' + ShownURLs(texts));
}

void Desktop::setOpenDocumentsCommand(std::function<void(const QStringList& fileURIs)> command) {
  openDocuments_ = std::move(command);
  QAction* action = window_.ui().actionOpenLinkFile;
  const auto makeDialog = [this] {
    auto* dialog = new QFileDialog(&window_, StatusWindow::tr("Open Link File"));
    dialog->setFileMode(QFileDialog::ExistingFiles);
    QObject::connect(dialog, &QFileDialog::filesSelected, &window_, [this](QStringList files) {
      for (QString& file : files) {
        const platform::FileReference reference(QFile::encodeName(file).toStdString());
        file = QString::fromLatin1(platform::FileURL(reference));
      }
      openDocuments_(files);
    });
    return dialog;
  };
  QObject::connect(action, &QAction::triggered, &window_,
                   [this, makeDialog] { statusOutlet_.beginSheet(makeDialog); });
  action->setVisible(true);
}

bool Desktop::mayDrop(const QMimeData& data) {
  return controller_.tableViewValidateDrop(MimePasteboard(data)) == app::DragOperation::every;
}

// The source of a drag waits until the drop has returned, so the work comes after it.
void Desktop::drop(const QMimeData& data) {
  const MimePasteboard pasteboard(data);
  const QString string = app::DraggedString(pasteboard);
  if (namesLinkFile(string)) return openDocuments_({string});
  give([this, pasteboard] { controller_.tableViewAcceptDrop(pasteboard); });
}

void Desktop::copy() {
  const bool isQueueShown = &window_.table() == window_.ui().fileTable;
  const QStringList urls = isQueueShown ? fileTable_.selectedURLs() : outcomes_.selectedURLs();
  if (!urls.isEmpty()) QApplication::clipboard()->setMimeData(CopiedEntries(urls).release());
}

bool Desktop::namesLinkFile(const QString& url) const {
  if (!IsFileURI(url) || !IsUsableURI(url) || host_.events == nullptr) return false;
  const std::optional<platform::FileReference> file = platform::FileAtURL(url.toUtf8());
  return file && app::URLInFile(*file, host_.events->resources).has_value();
}

// Only on X11 does the toolkit wait as long as a clipboard's owner hangs.
void Desktop::paste() {
  const QClipboard& clipboard = *QApplication::clipboard();
  if (QGuiApplication::platformName() == u"xcb" && !clipboard.ownsClipboard()) {
    clipboard_.read(SelectionSource::pasteboard, [this](const QString& text) { take(PastedURLs::in(text)); });
  } else {
    clipboard_.forget();
    const QMimeData* data = clipboard.mimeData();
    take(PastedURLs::in(data == nullptr ? QString() : PasteboardText(*data)));
  }
}

void Desktop::take(const PastedURLs& pasted) {
  const auto isLinkFile = [this](const QString& line) { return namesLinkFile(line); };
  QStringList refused = pasted.refused;
  const auto firstRefused = std::stable_partition(refused.begin(), refused.end(), isLinkFile);
  const QStringList linkFiles(refused.begin(), firstRefused);
  refused.erase(refused.begin(), firstRefused);

  const QStringList taken = pasted.entries + pasted.urls + linkFiles;
  const std::shared_ptr<const QString> given = begin(QStringLiteral("paste ") + taken.join(u'\n'));
  if (!given) return;
  if (taken.isEmpty()) return tellRefused(refused);
  if (static_cast<std::size_t>(SizeOf(taken)) > pacedIntake_.room()) {
    return tellTooMuch();
  }
  const auto add = [this, given](const QStringList& texts, const PacedIntake::Item& item) {
    if (texts.isEmpty()) return;
    static_cast<void>(pacedIntake_.add([given, item] { item(); }, static_cast<std::size_t>(SizeOf(texts))));
  };
  add(pasted.entries, [this, entries = pasted.entries] { queueEntries(entries); });
  for (const QString& url : pasted.urls) {
    add({url}, [this, pasteboard = MimePasteboard(url)] { controller_.tableViewAcceptDrop(pasteboard); });
  }
  add(linkFiles, [this, linkFiles] { openDocuments_(linkFiles); });
  if (!refused.isEmpty()) tellRefused(refused);
}

void Desktop::tellTooMuch() {
  statusOutlet_.beginAlertSheet(
      StatusWindow::tr("That is too much at a time."),
      StatusWindow::tr("Nothing was taken. Paste fewer lines, or wait until those before are taken."));
}

struct Desktop::TypedBatch {
  QStringList urls;
  qsizetype next = 0;
  bool isFolderChosen = false;
  bool isOver = false;  // the rest went back to the user
};

void Desktop::askForURLs(const QString& text) {
  statusOutlet_.beginSheet([this, text] {
    auto* sheet = new AddSheet(text, &window_);
    QObject::connect(sheet, &QDialog::accepted, &window_, [this, sheet] {
      auto batch = std::make_shared<TypedBatch>();
      batch->urls = sheet->urls();
      take(batch);
    });
    return sheet;
  });
}

void Desktop::take(const std::shared_ptr<TypedBatch>& batch) {
  if (static_cast<std::size_t>(SizeOf(batch->urls)) > pacedIntake_.room()) {
    tellTooMuch();
    return askForURLs(batch->urls.join(u'\n'));
  }
  const std::shared_ptr<const QString> given = begin(QString());
  for (const QString& url : batch->urls) {
    const PacedIntake::Item item = [this, given, batch] { takeNext(*batch); };
    static_cast<void>(pacedIntake_.add(item, static_cast<std::size_t>(url.size())));
  }
}

// The first that needs the folder is a drop, which may ask for it, and then the others go there, too; only a
// page asks again. Without a connection every further URL would be lost with an alert of its own.
void Desktop::takeNext(TypedBatch& batch) {
  if (batch.isOver) return;
  const QString url = batch.urls[batch.next++];
  const auto work = [this] { return std::pair(controller_.startedCount(), controller_.numberOfRows()); };
  const auto before = work();
  wasURLLost_ = false;
  if (!batch.isFolderChosen) {
    controller_.tableViewAcceptDrop(MimePasteboard(url));
  } else if (controller_.isWebPageURL(url)) {
    controller_.extractLinks(url);
  } else {
    controller_.startURL(url, false);
  }
  batch.isFolderChosen = batch.isFolderChosen || work() != before;
  if (!wasURLLost_ || batch.next == batch.urls.size()) return;
  batch.isOver = true;
  askForURLs(batch.urls.sliced(batch.next).join(u'\n'));
}

void Desktop::pageWasQueued(const QString& /*url*/, std::size_t linkCount) {
  if (linkCount == 0) importOutlet_.setFailure(StatusWindow::tr("The page has no links."));
}

void Desktop::pageDidNotLoad(const QString& /*url*/, const QString& reason) {
  if (!reason.isNull()) importOutlet_.setFailure(host_.localizedText(reason));
}

// They were judged when they were queued first. Where nothing runs, the first one sets the queue going.
void Desktop::queueEntries(const QStringList& entries) {
  const bool isIdle = !controller_.isBusy();
  if (isIdle) controller_.startURL(entries.constFirst(), true);
  for (const QString& url : entries.sliced(isIdle ? 1 : 0)) controller_.queueURL(url);
}

// What is too much for now stays listed.
void Desktop::queueAgain() {
  QStringList files;
  QStringList pages;
  for (const Outcome& outcome : outcomes_.takeFailures(pacedIntake_.room())) {
    (outcome.kind == Outcome::Kind::page ? pages : files).append(QString::fromUtf8(outcome.url));
  }
  const std::shared_ptr<const QString> given = begin(QString());
  const auto add = [this, given](const QStringList& texts, const PacedIntake::Item& item) {
    static_cast<void>(pacedIntake_.add([given, item] { item(); }, static_cast<std::size_t>(SizeOf(texts))));
  };
  if (!files.isEmpty()) add(files, [this, files] { queueFiles(files); });
  for (const QString& page : pages) add({page}, [this, page] { controller_.extractLinks(page); });
}

// As the links of a page: they come last, and where nothing runs, the first of all that wait sets off.
void Desktop::queueFiles(const QStringList& urls) {
  for (const QString& url : urls) controller_.queueURL(url);
  if (!controller_.isBusy()) controller_.takeNextURL(true);
}

void Desktop::tellRefused(const QStringList& lines) {
  statusOutlet_.beginAlertSheet(StatusWindow::tr("Paste takes http, https and ftp URLs, one a line."),
                                lines.isEmpty() ? StatusWindow::tr("The clipboard holds none.")
                                                : StatusWindow::tr("Not taken:") + u'\n' + ShownURLs(lines));
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
    auto* box = MakeMessageBox({StatusWindow::tr("Quit Quillforth?"),
                                StatusWindow::tr("The download in progress and the queue will be lost."),
                                StatusWindow::tr("Quit"), StatusWindow::tr("Cancel")},
                               QMessageBox::Question, &window_);
    QObject::connect(box, &QMessageBox::finished, &window_, [this, box] {
      if (IsAccepted(*box)) quit();
    });
    return box;
  });
  return false;
}

bool Desktop::hasWork() const {
  return controller_.isBusy() || controller_.numberOfRows() > 0 || !pacedIntake_.isEmpty();
}

void Desktop::quit() {
  if (gate_.isClosed()) return;
  gate_.close();
  services_.interrupt();
  QCoreApplication::exit();
}

void Desktop::showAbout() {
  statusOutlet_.beginSheet([this] {
    return MakeMessageBox(
        {StatusWindow::tr("Quillforth %1").arg(QStringLiteral(QUILLFORTH_VERSION)),
         StatusWindow::tr("Downloads files from the web in batches."), QDialog::tr("OK"), QString()},
        QMessageBox::Information, &window_);
  });
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
