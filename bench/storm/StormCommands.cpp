// SPDX-License-Identifier: MIT
//
// The commands that the user gives, each by one of the ways that the window and the desktop have for it.

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <array>

#include "bench/storm/StormUser.h"
#include "desktop/QueueTable.h"
#include "net/URL.h"

namespace quillforth::bench {

using desktop::Request;

template <typename Widget>
Widget& StormUser::find(const char* name) {
  return *scene_.desktop.statusWindow().findChild<Widget*>(QLatin1StringView(name));
}

desktop::QueueTable& StormUser::table() {
  return find<desktop::QueueTable>("fileTable");
}

QString StormUser::newURL(const char* extension) {
  const std::string path = "/" + std::to_string(phase_) + "-" + std::to_string(++urlCount_) + extension;
  return QString::fromStdString(scene_.server.url(path));
}

QString StormUser::newURL(const char* extension, Fate fate) {
  QString url = newURL(extension);
  const auto origin = static_cast<qsizetype>(scene_.server.url("").size());
  while (ItemAt(url.sliced(origin).toStdString(), seed_).fate != fate) url = newURL(extension);
  return url;
}

QString StormUser::newURL(bool mayBePage) {
  constexpr std::array kExtensions{".bin", ".zip", ".png", ".dat", ".bin", ".dat", "", ".html"};
  const int count = static_cast<int>(kExtensions.size()) - (mayBePage ? 0 : 2);
  return newURL(kExtensions[static_cast<std::size_t>(roll(count))]);
}

// A window under a sheet, an alert or a panel takes nothing from a user.
bool StormUser::isWindowFree() {
  return QApplication::activeModalWidget() == nullptr && QApplication::activePopupWidget() == nullptr &&
         !scene_.desktop.statusWindow().isMinimized();
}

void StormUser::giveCommand() {
  struct Command {
    int weight;
    bool isOfWindow;
    void (StormUser::*give)();
  };
  static constexpr std::array kCommands{
      Command{20, true, &StormUser::dropURL},       Command{6, true, &StormUser::pasteURLs},
      Command{2, true, &StormUser::importNewPage},  Command{6, false, &StormUser::openURIs},
      Command{5, false, &StormUser::openLinkFiles}, Command{6, false, &StormUser::sendServicesText},
      Command{2, false, &StormUser::sendGetURL},    Command{2, true, &StormUser::askBrowser},
      Command{12, true, &StormUser::selectRows},    Command{8, true, &StormUser::deleteRows},
      Command{2, true, &StormUser::emptyQueue},     Command{4, true, &StormUser::tryAgain},
      Command{8, true, &StormUser::cancelDownload}, Command{5, false, &StormUser::changeWindow},
      Command{1, true, &StormUser::closeAndStay}};
  int sum = 0;
  for (const Command& command : kCommands) sum += command.weight;
  int rolled = roll(sum);
  for (const Command& command : kCommands) {
    if ((rolled -= command.weight) >= 0) continue;
    if (!command.isOfWindow || isWindowFree()) (this->*command.give)();
    return;
  }
}

void StormUser::give(const char* action, const char* button) {
  auto& menu = find<QAction>(action);
  const int way = roll(3);
  if (way == 0 && button != nullptr && find<QAbstractButton>(button).isVisible()) {
    find<QAbstractButton>(button).click();
  } else if (way == 1 && !menu.shortcut().isEmpty() && scene_.desktop.statusWindow().isActiveWindow()) {
    const QKeyCombination keys = menu.shortcut()[0];
    QTest::keyClick(&table(), keys.key(), keys.keyboardModifiers());
  } else {
    menu.trigger();
  }
}

void StormUser::giveRemoval(Removal removal, const std::function<void()>& command) {
  const int number = scene_.ledger.removalGiven(std::move(removal));
  scene_.desktop.gate().post([this] { scene_.ledger.sample(); });
  command();
  scene_.desktop.gate().post([this, number] { scene_.ledger.removalDone(number); });
}

void StormUser::giveRemoval(Removal removal, const char* action, const char* button) {
  if (!find<QAction>(action).isEnabled()) return;
  giveRemoval(std::move(removal), [this, action, button] { give(action, button); });
}

void StormUser::dropURL() {
  const QString url = newURL(true);
  QMimeData data;
  if (roll(2) == 0) {
    data.setText(url);
  } else {
    data.setData(QStringLiteral("text/uri-list"), url.toUtf8() + "\r\n");
  }
  auto& window = scene_.desktop.statusWindow();
  const QPointF middle = table().mapTo(&window, table().rect().center());
  const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
  QDragEnterEvent over(middle.toPoint(), actions, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&window, &over);
  QDropEvent release(middle, actions, &data, Qt::LeftButton, Qt::NoModifier);
  scene_.ledger.enter(url, QStringLiteral("drop"));
  scene_.desktop.gate().post([this, url] { scene_.ledger.doing(url); });
  QApplication::sendEvent(&window, &release);
  scene_.desktop.gate().post([this] { scene_.ledger.doing({}); });
}

void StormUser::pasteURLs() {
  const int count = roll(3) == 0 ? 3 : 1;
  QStringList urls;
  for (int i = 0; i < count; ++i) {
    urls.append(newURL(true));
    scene_.ledger.enterPaced(urls.last(), QStringLiteral("paste"));
  }
  QApplication::clipboard()->setText(urls.join(u'\n'));
  give("actionPaste");
}

// Pressed as often as an impatient user does.
void StormUser::importPage(const QString& url) {
  give("actionImportURL");
  auto* window = scene_.desktop.statusWindow().findChild<desktop::ImportWindow*>();
  auto& button = *window->findChild<QPushButton*>(QStringLiteral("importButton"));
  if (!window->isVisible() || !button.isEnabled()) return;
  importedURL_ = url;
  const bool isShort = roll(3) == 0;
  window->urlTextField().setText(isShort ? url.sliced(7) : url);
  scene_.ledger.enter(url, QStringLiteral("import"));
  Removal removal{QStringLiteral("emptied by an import"), true};
  removal.isForIntake = true;
  removal.page = url;
  giveRemoval(std::move(removal), [this, &button] {
    for (int clicks = roll(3) == 0 ? 3 : 1; clicks > 0; --clicks) button.click();
  });
}

void StormUser::openURIs() {
  Request request{Request::Kind::open};
  for (int i = roll(4); i >= 0; --i) request.texts.append(newURL(false));
  if (scene_.intake.take(request) != desktop::RequestHandler::Answer::taken) return;
  for (const QString& url : request.texts) scene_.ledger.enterPaced(url, QStringLiteral("request"));
}

void StormUser::openLinkFiles() {
  Request request{Request::Kind::open};
  QStringList urls;
  for (int i = roll(4); i >= 0; --i) {
    urls.append(newURL(false));
    QFile file(scene_.linkFolder + u'/' + QString::number(urlCount_) + QStringLiteral(".url"));
    if (!file.open(QIODevice::WriteOnly)) return;
    file.write("[InternetShortcut]\r\nURL=" + urls.last().toUtf8() + "\r\n");
    request.texts.append(
        QString::fromUtf8(platform::FileURL(platform::FileReference(file.fileName().toStdString()))));
  }
  if (roll(2) == 0) {
    scene_.intake.openDocuments(request.texts);
  } else if (scene_.intake.take(request) != desktop::RequestHandler::Answer::taken) {
    return;
  }
  for (const QString& url : urls) scene_.ledger.enterPaced(url, QStringLiteral("link files"));
}

void StormUser::sendServicesText() {
  const QString url = newURL(true);
  if (scene_.intake.take({Request::Kind::downloadText, {u' ' + url}}) !=
      desktop::RequestHandler::Answer::taken) {
    return;
  }
  scene_.ledger.enterPaced(url, QStringLiteral("services"));
}

// Only the host travels on, and fails.
void StormUser::sendGetURL() {
  const QString host = QStringLiteral("h%1x%2.invalid").arg(phase_).arg(++urlCount_);
  const Request request{Request::Kind::getURL, {QStringLiteral("http://%1/a").arg(host)}};
  if (scene_.intake.take(request) != desktop::RequestHandler::Answer::taken) return;
  scene_.ledger.enterPaced(host, QStringLiteral("get-URL event"));
}

void StormUser::askBrowser() {
  if (roll(4) != 0) scene_.host.browser().show(newURL(true));
  give("actionGetBrowserURL");
}

void StormUser::selectRows() {
  QItemSelectionModel& selection = *table().selectionModel();
  const int rows = table().model()->rowCount();
  if (rows == 0) return;
  if (roll(6) == 0) return give("actionSelectAll");
  auto mode = QItemSelectionModel::ClearAndSelect;
  for (int i = roll(3); i >= 0; --i) {
    // The rows that are about to go are the ones that matter.
    const int row = roll(2) == 0 ? 0 : roll(rows);
    selection.select(table().model()->index(row, 0), mode);
    mode = QItemSelectionModel::Select;
  }
  if (roll(2) != 0) return;
  QTimer::singleShot(roll(120), &tick_, [this] {
    if (isStorming() && isWindowFree()) deleteRows();
  });
}

void StormUser::deleteRows() {
  QItemSelectionModel& selection = *table().selectionModel();
  if (roll(12) == 0) selection.clear();  // the menu is on until the next frame
  Removal removal{QStringLiteral("deleted by a command that named it")};
  for (const QModelIndex& index : selection.selectedRows()) removal.named.insert(index.data().toString());
  if (!selection.hasSelection()) removal = {QStringLiteral("emptied by Delete without a selection"), true};
  for (int i = roll(4) == 0 ? 1 : 0; i >= 0; --i) giveRemoval(removal, "actionDelete", "deleteButton");
}

void StormUser::emptyQueue() {
  const bool isClear = roll(2) == 0;
  Removal removal{isClear ? QStringLiteral("emptied by Clear") : QStringLiteral("emptied by Stop"), true};
  removal.isForIntake = true;
  giveRemoval(std::move(removal), isClear ? "actionClear" : "actionStop", isClear ? nullptr : "stopButton");
}

void StormUser::tryAgain() {
  scene_.ledger.remember(QStringLiteral("Try Again"));
  give("actionTryAgain", "tryAgainButton");
}

void StormUser::cancelDownload() {
  for (int i = roll(3) == 0 ? 1 : 0; i >= 0; --i) {
    if (!find<QAction>("actionCancelDownload").isEnabled()) return;
    const auto& label = find<QLabel>("currentURLTextField");
    scene_.ledger.cancelGiven(label.isHidden() ? QString() : label.text());
    give("actionCancelDownload", "fileDownloadCancelButton");
  }
}

void StormUser::changeWindow() {
  auto& window = scene_.desktop.statusWindow();
  const int what = roll(8);
  if (what < 2) return window.isMinimized() ? window.showNormal() : window.showMinimized();
  if (window.isMinimized()) return window.showNormal();
  if (what == 2) return scene_.host.network().fail(1 + roll(3));
  if (!isWindowFree()) return;
  if (what == 3) return give("actionAggregate");
  if (what == 4) return give("actionChooseDestination");
  if (what == 5) return give("actionAbout");
  give("actionPreferences");
}

void StormUser::closeAndStay() {
  if (!scene_.desktop.controller().isDownloading()) return;
  scene_.ledger.remember(QStringLiteral("close, and stay"));
  scene_.desktop.statusWindow().close();
}

}  // namespace quillforth::bench
