// SPDX-License-Identifier: MIT
//
// What comes into the window: drops, pastes, typed URLs, link files, and what is queued again.

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <algorithm>
#include <utility>

#include "app/Pasteboard.h"
#include "desktop/AddSheet.h"
#include "desktop/ChooseSheet.h"
#include "desktop/Desktop.h"
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

// As an alert of the controller, which is in the middle of a page. It takes the keyboard from no other sheet.
void Desktop::chooseLinks(app::UrlQueue& links) {
  if (!preferences_.chooseLinks()) return;
  const CommandGate::Hold hold(gate_);
  QPointer<ChooseSheet> sheet;
  const int result = statusOutlet_.runSheet([&] {
    sheet = new ChooseSheet(links, controller_.extensionMap(), &window_);
    if (wasQueueEmptied_)
      sheet->setNotice(StatusWindow::tr("Import has emptied the queue; Undo brings it back."));
    return sheet.data();
  });
  const std::vector<std::size_t> unwanted = sheet ? sheet->unwanted() : std::vector<std::size_t>();
  delete sheet;  // it reads the links
  result == QDialog::Accepted ? links.takeAt(unwanted) : links.takeAll();
  isNoneChosen_ = links.empty();
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
  const Given given = begin(QStringLiteral("paste ") + taken.join(u'\n'));
  if (!given) return;
  if (taken.isEmpty()) return tellRefused(refused);
  if (static_cast<std::size_t>(SizeOf(taken)) > pacedIntake_.room()) {
    return tellTooMuch();
  }
  add(given, pasted.entries, [this, entries = pasted.entries] { queueEntries(entries); });
  for (const QString& url : pasted.urls) {
    add(given, {url},
        [this, pasteboard = MimePasteboard(url)] { controller_.tableViewAcceptDrop(pasteboard); });
  }
  add(given, linkFiles, [this, linkFiles] { openDocuments_(linkFiles); });
  if (!refused.isEmpty()) tellRefused(refused);
  followState();
}

void Desktop::add(const Given& given, const QStringList& texts, const PacedIntake::Item& item) {
  if (texts.isEmpty()) return;
  static_cast<void>(pacedIntake_.add([given, item] { item(); }, static_cast<std::size_t>(SizeOf(texts)),
                                     static_cast<std::size_t>(texts.size())));
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

void Desktop::askForURLs(const QStringList& urls) {
  statusOutlet_.beginSheet([this, urls] {
    auto* sheet = new AddSheet(urls, &window_);
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
    return askForURLs(batch->urls);
  }
  const Given given = begin(QString());
  for (const QString& url : batch->urls) add(given, {url}, [this, batch] { takeNext(*batch); });
  followState();
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
  askForURLs(batch.urls.sliced(batch.next));
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
  const Given given = begin(QString());
  add(given, files, [this, files] { queueFiles(files); });
  for (const QString& page : pages) add(given, {page}, [this, page] { controller_.extractLinks(page); });
  followState();
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

}  // namespace quillforth::desktop
