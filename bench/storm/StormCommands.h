// SPDX-License-Identifier: MIT
//
// The commands that the user of the storm gives, each by one of the ways that the window and the desktop have
// for it: menus, buttons, keys, drops and other programs. Main thread.
#pragma once

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <array>
#include <random>

#include "bench/storm/StormHost.h"
#include "desktop/Desktop.h"
#include "desktop/RequestIntake.h"

namespace quillforth::bench {

using desktop::Request;

/// One run of the program. Its URLs are "ORIGIN/KIND/PHASE-NUMBER.ext"; the server decides what "any" is.
struct StormRun {
  int phase;
  std::uint64_t seed;
  int seconds;
  QString origin;  ///< "http://HOST:PORT"
};

class StormCommands {
 public:
  /// All outlive this.
  StormCommands(desktop::Desktop& desktop, desktop::RequestIntake& intake, StormHost& host,
                const StormRun& run)
      : desktop_(desktop),
        intake_(intake),
        host_(host),
        run_(run),
        dice_(run.seed * 1000 + static_cast<unsigned>(run.phase)) {}
  StormCommands(const StormCommands&) = delete;
  StormCommands& operator=(const StormCommands&) = delete;

  [[nodiscard]] int roll(int count) { return static_cast<int>(dice_() % static_cast<unsigned>(count)); }
  /// A window under a sheet, an alert or a panel takes nothing from a user.
  [[nodiscard]] bool isWindowFree() const {
    return QApplication::activeModalWidget() == nullptr && QApplication::activePopupWidget() == nullptr &&
           !window().isMinimized();
  }
  [[nodiscard]] QString newURL(const char* extension, const char* kind = "any") {
    return QStringLiteral("%1/%2/%3-%4%5")
        .arg(run_.origin, QLatin1StringView(kind))
        .arg(run_.phase)
        .arg(++urlCount_)
        .arg(QLatin1StringView(extension));
  }
  /// The page that was imported last; null: none.
  [[nodiscard]] const QString& importedURL() const { return importedURL_; }

  void giveAny() {
    struct Command {
      int weight;
      bool isOfWindow;
      void (*give)(StormCommands& user);
    };
    using User = StormCommands;
    static constexpr std::array kCommands{
        Command{20, true, [](User& user) { user.drop(); }},
        Command{6, true, [](User& user) { user.paste(); }},
        Command{2, true, [](User& user) { user.importPage(user.newURL(".html")); }},
        Command{6, false, [](User& user) { user.open(user.newURLs()); }},
        Command{5, false, [](User& user) { user.openLinkFiles(user.newURLs()); }},
        Command{6, false, [](User& user) { user.sendText(user.anyURL(true)); }},
        Command{2, false, [](User& user) { user.sendGetURL(); }},
        Command{2, true, [](User& user) { user.askBrowser(); }},
        Command{12, true, [](User& user) { user.select(); }},
        Command{8, true, [](User& user) { user.deleteSelected(); }},
        Command{2, true, [](User& user) { user.giveRemoval("Clear", {}, {}, "actionClear", nullptr); }},
        Command{2, true, [](User& user) { user.giveRemoval("Stop", {}, {}, "actionStop", "stopButton"); }},
        Command{4, true, [](User& user) { user.tryAgain(); }},
        Command{8, true, [](User& user) { user.cancel(user.roll(3) == 0 ? 2 : 1); }},
        Command{2, false, [](User& user) { user.minimizeOrShow(); }},
        Command{1, false, [](User& user) { user.host_.failNetwork(1 + user.roll(3)); }},
        Command{1, true, [](User& user) { user.give("actionAggregate"); }},
        Command{1, true, [](User& user) { user.give("actionChooseDestination"); }},
        Command{1, true, [](User& user) { user.give("actionAbout"); }},
        Command{1, true, [](User& user) { user.give("actionPreferences"); }},
        Command{1, true, [](User& user) { user.closeAndStay(); }}};
    int sum = 0;
    for (const Command& command : kCommands) sum += command.weight;
    int rolled = roll(sum);
    const auto* command = kCommands.begin();
    while ((rolled -= command->weight) >= 0) ++command;
    if (!command->isOfWindow || isWindowFree()) command->give(*this);
  }

  /// A command by one of its ways: the menu, the button (null: it has none), or the key.
  void give(const char* action, const char* button = nullptr) {
    auto& menu = find<QAction>(action);
    const int way = roll(3);
    if (way == 0 && button != nullptr && find<QAbstractButton>(button).isVisible()) {
      find<QAbstractButton>(button).click();
    } else if (way == 1 && !menu.shortcut().isEmpty() && window().isActiveWindow()) {
      const QKeyCombination keys = menu.shortcut()[0];
      QTest::keyClick(&table(), keys.key(), keys.keyboardModifiers());
    } else {
      menu.trigger();
    }
  }
  void open(const QStringList& urls) { take({Request::Kind::open, urls}, "request", urls); }
  /// Pressed as often as an impatient user does.
  void importPage(const QString& url) {
    give("actionImportURL");
    auto* import = window().findChild<desktop::ImportWindow*>();
    auto& button = *import->findChild<QPushButton*>(QStringLiteral("importButton"));
    if (!import->isVisible() || !button.isEnabled()) return;
    importedURL_ = url;
    const bool isShort = roll(3) == 0;
    import->urlTextField().setText(isShort ? url.sliced(7) : url);
    note("in", "import", url);
    giveRemoval("Import", url, {}, [this, &button] {
      for (int clicks = roll(3) == 0 ? 3 : 1; clicks > 0; --clicks) button.click();
    });
  }
  void tryAgain() {
    host_.log.write("said", QStringLiteral("Try Again"));
    give("actionTryAgain", "tryAgainButton");
  }
  void cancel(int times) {
    for (; times > 0 && find<QAction>("actionCancelDownload").isEnabled(); --times) {
      const auto& label = find<QLabel>("currentURLTextField");
      host_.log.write({QStringLiteral("cancel"), label.isHidden() ? QString() : label.text(),
                       host_.log.hasFinalName() ? QStringLiteral("stands") : QString()});
      give("actionCancelDownload", "fileDownloadCancelButton");
    }
  }

 private:
  template <typename Widget>
  [[nodiscard]] Widget& find(const char* name) const {
    return *window().findChild<Widget*>(QLatin1StringView(name));
  }
  [[nodiscard]] desktop::StatusWindow& window() const { return desktop_.statusWindow(); }
  [[nodiscard]] desktop::QueueTable& table() const { return find<desktop::QueueTable>("fileTable"); }
  void note(const char* how, const char* by, const QString& url) {
    host_.log.write({QLatin1StringView(how), QLatin1StringView(by), url});
  }
  [[nodiscard]] QString anyURL(bool mayBePage) {
    constexpr std::array kExtensions{".bin", ".zip", ".png", ".dat", ".bin", ".dat", "", ".html"};
    const int count = static_cast<int>(kExtensions.size()) - (mayBePage ? 0 : 2);
    return newURL(kExtensions[static_cast<std::size_t>(roll(count))]);
  }
  [[nodiscard]] QStringList newURLs() {
    QStringList urls;
    for (int i = roll(4); i >= 0; --i) urls.append(anyURL(false));
    return urls;
  }
  /// `urls` wait for their turn in the paced intake.
  void take(const Request& request, const char* by, const QStringList& urls) {
    if (intake_.take(request) != desktop::RequestHandler::Answer::taken) return;
    for (const QString& url : urls) note("paced", by, url);
  }

  void drop() {
    const QString url = anyURL(true);
    QMimeData data;
    if (roll(2) == 0) {
      data.setText(url);
    } else {
      data.setData(QStringLiteral("text/uri-list"), url.toUtf8() + "\r\n");
    }
    const QPointF middle = table().mapTo(&window(), table().rect().center());
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent over(middle.toPoint(), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &over);
    QDropEvent release(middle, actions, &data, Qt::LeftButton, Qt::NoModifier);
    note("in", "drop", url);
    QApplication::sendEvent(&window(), &release);
  }
  void paste() {
    QStringList urls;
    for (int i = roll(3) == 0 ? 3 : 1; i > 0; --i) urls.append(anyURL(true));
    for (const QString& url : urls) note("paced", "paste", url);
    QApplication::clipboard()->setText(urls.join(u'\n'));
    give("actionPaste");
  }
  void openLinkFiles(const QStringList& urls) {
    Request request{Request::Kind::open};
    for (const QString& url : urls) {
      QFile file(QDir::tempPath() + url.sliced(url.lastIndexOf(u'/')) + QStringLiteral(".url"));
      if (!file.open(QIODevice::WriteOnly)) return;
      file.write("[InternetShortcut]\r\nURL=" + url.toUtf8() + "\r\n");
      const platform::FileReference reference(file.fileName().toStdString());
      request.texts.append(QString::fromUtf8(platform::FileURL(reference)));
    }
    if (roll(2) == 0) return take(request, "link files", urls);
    intake_.openDocuments(request.texts);
    for (const QString& url : urls) note("paced", "link files", url);
  }
  void sendText(const QString& url) { take({Request::Kind::downloadText, {u' ' + url}}, "services", {url}); }
  // Only the host travels on, and fails.
  void sendGetURL() {
    const QString host = QStringLiteral("h%1x%2.invalid").arg(run_.phase).arg(++urlCount_);
    take({Request::Kind::getURL, {QStringLiteral("http://%1/a").arg(host)}}, "get-URL event", {host});
  }
  void askBrowser() {
    if (roll(4) != 0) host_.showInBrowser(anyURL(true));
    give("actionGetBrowserURL");
  }
  void select() {
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
    QTimer::singleShot(roll(120), &window(), [this] {
      if (isWindowFree()) deleteSelected();
    });
  }
  void deleteSelected() {
    if (roll(12) == 0) table().selectionModel()->clear();  // the menu is on until the next frame
    QStringList named;
    for (const QModelIndex& index : table().selectionModel()->selectedRows())
      named.append(index.data().toString());
    for (int i = roll(4) == 0 ? 2 : 1; i > 0; --i)
      giveRemoval("Delete", {}, named, "actionDelete", "deleteButton");
  }
  void minimizeOrShow() { window().isMinimized() ? window().showNormal() : window().showMinimized(); }
  void closeAndStay() {
    if (!desktop_.controller().isDownloading()) return;
    host_.log.write("said", QStringLiteral("close, and stay"));
    window().close();
  }

  /// Gives a command that may take entries out of the queue: all of them, unless it names some. `page`: that
  /// is loaded when it is done indeed.
  void giveRemoval(const char* command, const QString& page, const QStringList& named,
                   const std::function<void()>& press) {
    StormLog& log = host_.log;
    const QString number = QString::number(++removalCount_);
    log.sample();
    log.write(QStringList{QStringLiteral("give"), number, QLatin1StringView(command), page} + named);
    desktop_.gate().post([&log, number] {
      log.sample();
      log.write("begin", number);
    });
    press();
    desktop_.gate().post([this, &log, number] {
      log.sample();
      log.write({QStringLiteral("done"), number, find<QAction>("actionUndo").text().remove(u'&')});
    });
  }
  void giveRemoval(const char* command, const QString& page, const QStringList& named, const char* action,
                   const char* button) {
    if (find<QAction>(action).isEnabled())
      giveRemoval(command, page, named, [this, action, button] { give(action, button); });
  }

  desktop::Desktop& desktop_;
  desktop::RequestIntake& intake_;
  StormHost& host_;
  const StormRun run_;
  std::mt19937_64 dice_;
  QString importedURL_;
  int urlCount_ = 0;
  int removalCount_ = 0;
};

}  // namespace quillforth::bench
