// SPDX-License-Identifier: MIT

#include "desktop/Desktop.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <algorithm>
#include <utility>

#include "app/LinkFile.h"
#include "desktop/MessageSheets.h"
#include "desktop/Request.h"
#include "desktop/ShownText.h"
#include "platform/FileURL.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

Desktop::Desktop(const DesktopServices& services)
    : services_(services),
      window_(*this),
      application_(window_, gate_),
      host_(services.makeHost(application_)),
      notice_(noticeServices()),
      downloads_(*host_.downloads, notice_),
      pacedIntake_(gate_, [this] { return downloads_.isBeginning(); }),
      pageLoader_(*host_.pageLoader, gate_),
      readStreams_(*host_.readStreams, gate_),
      scripts_(host_.scripts, gate_),
      aggregation_(host_.aggregation, gate_),
      importWindow_(&window_),
      preferencesWindow_(preferencesServices(), &window_),
      statusOutlet_(window_, gate_),
      importOutlet_(importWindow_, gate_),
      preferencesOutlet_(preferencesWindow_, gate_),
      downloadDestinationTextField_(pacer_, *window_.ui().downloadDestinationTextField),
      urlTextField_(importWindow_.urlTextField()),
      countTextField_(pacer_, *window_.ui().countTextField),
      spinner_(pacer_, *window_.ui().spinner),
      fileDownloadProgressBar_(pacer_, *window_.ui().fileDownloadProgressBar),
      fileDownloadProgressText_(pacer_, *window_.ui().fileDownloadProgressText),
      currentURLTextField_(pacer_, *window_.ui().currentURLTextField),
      fileDownloadCancelButton_(pacer_, *window_.ui().fileDownloadCancelButton, *window_.ui().fileTable,
                                window_.ui().actionCancelDownload),
      deleteButton_(pacer_, *window_.ui().deleteButton, *window_.ui().fileTable, window_.ui().actionDelete),
      stopButton_(pacer_, *window_.ui().stopButton, *window_.ui().fileTable),
      openOutputFolderButton_(pacer_, *window_.ui().openOutputFolderButton, *window_.ui().fileTable),
      fileTable_(pacer_, *window_.ui().fileTable, [this] { controller_.tableViewSelectionDidChange(); }),
      controller_(outlets(), waitingHost()) {
  gate_.whenHeldChanges(services_.holdDownloads);
  downloads_.whenOneMovedOn([this] { pacedIntake_.moveOn(); });
  fileTable_.setDataSource(controller_);
  connectCommands();
  window_.resize(window_.size().boundedTo(RoomOnScreen(window_)));
  restorePlaces();
}

// The window goes first in what it says: nothing of it may reach the controller any more.
Desktop::~Desktop() {
  gate_.close();
  downloads_.end();  // nothing of the controller is going on any more
  storePlaces();
}

app::Outlets Desktop::outlets() {
  return {.downloadDestinationTextField = downloadDestinationTextField_,
          .urlTextField = urlTextField_,
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
  host.downloads = &downloads_;
  host.pageLoader = &pageLoader_;
  host.readStreams = &readStreams_;
  host.scripts = &scripts_;
  host.aggregation = &aggregation_;
  host.calculate = [this](const std::function<void()>& calculation) { WaitFor(gate_, calculation); };
  return host;
}

PreferencesServices Desktop::preferencesServices() {
  return {.userDefaults = *host_.userDefaults,
          .settingsFile = services_.settingsFile,
          .isStored = services_.isStored,
          .destinationPath = [this] { return storedDestinationPath(); },
          .chooseDestination = [this] { gate_.post([this] { controller_.selectDestinationDirectory(); }); },
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

void Desktop::bind(QAction* action, QAbstractButton* button, Command command) {
  const auto post = [this, command] { gate_.post([this, command] { (controller_.*command)(); }); };
  if (action != nullptr) QObject::connect(action, &QAction::triggered, &window_, post);
  if (button != nullptr) QObject::connect(button, &QAbstractButton::clicked, &window_, post);
}

void Desktop::connectCommands() {
  Ui::StatusWindow& ui = window_.ui();
  using Controller = app::MyAppController;
  const auto showImport = [this] { importOutlet_.makeKeyAndOrderFront(); };
  QObject::connect(ui.actionImportURL, &QAction::triggered, &window_, showImport);
  QObject::connect(ui.importButton, &QPushButton::clicked, &window_, showImport);
  QObject::connect(&importWindow_, &ImportWindow::importRequested, &window_,
                   [this] { gate_.post([this] { controller_.importURL(importOutlet_); }); });
  QObject::connect(&notice_, &CompletionNotice::activationRequested, &window_,
                   [this](const QString& token) { BringForward(window_, token); });
  bind(ui.actionGetBrowserURL, nullptr, &Controller::processCurrentBrowserURL);
  bind(ui.actionPreferences, nullptr, &Controller::showPreferencesWindow);
  bind(ui.actionChooseDestination, ui.chooseFolderButton, &Controller::selectDestinationDirectory);
  bind(ui.actionOpenDestination, ui.openOutputFolderButton, &Controller::openDestinationDirectory);
  bind(ui.actionAggregate, nullptr, &Controller::aggregateFile);
  bind(ui.actionDelete, ui.deleteButton, &Controller::deleteButtonClicked);
  bind(ui.actionClear, nullptr, &Controller::clearQueue);
  bind(ui.actionStop, ui.stopButton, &Controller::stop);
  bind(ui.actionTryAgain, ui.tryAgainButton, &Controller::tryAgain);
  bind(ui.actionCancelDownload, ui.fileDownloadCancelButton, &Controller::cancelDownloadFile);
  QObject::connect(ui.actionPaste, &QAction::triggered, &window_, [this] { paste(); });
  QObject::connect(ui.actionCopy, &QAction::triggered, &window_, [this] {
    if (const QString urls = fileTable_.selectedURLs(); !urls.isEmpty())
      QApplication::clipboard()->setText(urls);
  });
  QObject::connect(ui.actionAbout, &QAction::triggered, &window_, [this] { showAbout(); });
  QObject::connect(qApp, &QGuiApplication::applicationStateChanged, &window_,
                   [this](Qt::ApplicationState state) {
                     if (state != Qt::ApplicationActive) return;
                     gate_.post([this] { controller_.applicationWillBecomeActive(); });
                   });
}

void Desktop::tellOfUnusable(const QStringList& texts) {
  constexpr qsizetype kMaxLogged = 100;
  constexpr qsizetype kMaxShown = 15;
  constexpr qsizetype kLongest = 200;
  QStringList lines;
  for (const QString& text : texts.first(std::min(texts.size(), kMaxLogged))) {
    lines.append(ShownText(platform::WithoutCredentials(text), kLongest));
    host_.log->log(
        QStringLiteral("Quillforth takes %1: %2").arg(QLatin1StringView(kUnusableURI), lines.constLast()));
  }
  if (lines.size() > kMaxShown) lines = lines.first(kMaxShown) << QStringLiteral("…");
  controller_.statusWindow().beginAlertSheet(
      StatusWindow::tr("Not everything could be taken."),
      StatusWindow::tr("Neither a file nor an http, https or ftp URL:") + u'\n' + lines.join(u'\n'));
}

void Desktop::setOpenDocumentsCommand(std::function<void(const QStringList& fileURIs)> command) {
  openDocuments_ = std::move(command);
  QAction* action = window_.ui().actionOpenLinkFile;
  QObject::connect(action, &QAction::triggered, &window_, [this] {
    auto* dialog = new QFileDialog(&window_, StatusWindow::tr("Open Link File"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    QObject::connect(dialog, &QFileDialog::filesSelected, &window_, [this](QStringList files) {
      for (QString& file : files) {
        const platform::FileReference reference(QFile::encodeName(file).toStdString());
        file = QString::fromLatin1(platform::FileURL(reference));
      }
      openDocuments_(files);
    });
    dialog->open();
  });
  action->setVisible(true);
}

bool Desktop::mayDrop(const QMimeData& data) {
  return controller_.tableViewValidateDrop(MimePasteboard(data)) == app::DragOperation::every;
}

void Desktop::drop(const QMimeData& data) {
  takeDrop(MimePasteboard(data));
}

// The source of a drag waits until the drop has returned, so the work comes after it.
void Desktop::takeDrop(const MimePasteboard& pasteboard) {
  const QString string = app::DraggedString(pasteboard);
  if (namesLinkFile(string)) return openDocuments_({string});
  if (controller_.tableViewValidateDrop(pasteboard) == app::DragOperation::none) return application_.beep();
  gate_.post([this, pasteboard] { controller_.tableViewAcceptDrop(pasteboard); });
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
    clipboard_.read(SelectionSource::pasteboard,
                    [this](const QString& text) { takeDrop(MimePasteboard(text)); });
  } else if (const QMimeData* data = clipboard.mimeData()) {
    takeDrop(MimePasteboard(*data));
  }
}

void Desktop::windowDidBecomeKey() {
  gate_.post([this] { controller_.windowDidBecomeKey(); });
}

bool Desktop::windowShouldClose() {
  if (gate_.isClosed()) return true;
  if (!hasWork() && !gate_.isBusy()) {
    quit();
    return true;
  }
  auto* box = MakeMessageBox({StatusWindow::tr("Quit Quillforth?"),
                              StatusWindow::tr("The download in progress and the queue will be lost."),
                              StatusWindow::tr("Quit"), StatusWindow::tr("Cancel")},
                             QMessageBox::Question, &window_);
  box->setAttribute(Qt::WA_DeleteOnClose);
  QObject::connect(box, &QMessageBox::finished, &window_, [this, box] {
    if (IsAccepted(*box)) quit();
  });
  box->open();
  return false;
}

bool Desktop::hasWork() const {
  return downloads_.isBusy() || controller_.numberOfRows() > 0 || !pacedIntake_.isEmpty();
}

void Desktop::quit() {
  if (gate_.isClosed()) return;
  gate_.close();
  services_.interrupt();
  QCoreApplication::exit();
}

void Desktop::showAbout() {
  auto* box = MakeMessageBox(
      {StatusWindow::tr("Quillforth %1").arg(QStringLiteral(QUILLFORTH_VERSION)),
       StatusWindow::tr("Downloads files from the web in batches."), QDialog::tr("OK"), QString()},
      QMessageBox::Information, &window_);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
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
