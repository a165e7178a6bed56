// SPDX-License-Identifier: MIT
//
// The real window under a storm of random commands, from its start to its end: window_storm.py starts this,
// has a server for it, and accounts for what it writes (see StormLog).
//
//   window_storm PHASE SEED SECONDS ORIGIN
//
// PHASE, from 1 on, says how the program ends. The user works from a timer, so also in the middle of every
// wait of the program. Main thread.

#include <QCheckBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QSocketNotifier>
#include <csignal>
#include <cstdlib>

#include "bench/storm/StormCommands.h"
#include "desktop/MessageSheets.h"
#include "linux/session/Interruption.h"

namespace quillforth::bench {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr unsigned kPatienceInSeconds = 200;  // beyond the time that was asked for; a hang ends by SIGALRM
constexpr auto kTimeAtRest = 600ms;           // so long without anything means that nothing more comes
constexpr auto kLongestCalm = 60s;
constexpr auto kLongestWaitForMoment = 10s;
constexpr auto kPatienceInCalm = 3s;  // with a download

class StormUser {
 public:
  StormUser(desktop::Desktop& desktop, desktop::RequestIntake& intake, StormHost& host, const StormRun& run)
      : desktop_(desktop),
        host_(host),
        commands_(desktop, intake, host, run),
        duration_(std::chrono::seconds(run.seconds)),
        end_(static_cast<End>(run.phase % 5)) {
    tick_.setSingleShot(true);
    tick_.callOnTimeout([this] { tick(); });
    go(Stage::storm, duration_ / 2);
    tick_.start(0);
  }
  StormUser(const StormUser&) = delete;
  StormUser& operator=(const StormUser&) = delete;

 private:
  /// How the program is ended.
  enum class End { atRest, question, pageLoading, panelOpen, signal };
  enum class Stage { storm, calm, lastStorm, lastCalm, waitForMoment, ending };

  void go(Stage stage, Clock::duration duration) {
    stage_ = stage;
    stageEnd_ = Clock::now() + duration;
    restSince_ = underWaySince_ = Clock::time_point::max();
  }
  [[nodiscard]] bool isCalming() const { return stage_ == Stage::calm || stage_ == Stage::lastCalm; }

  // Bursts, with moments of quiet between them.
  void tick() {
    tick_.start(commands_.roll(6) == 0 ? commands_.roll(600) : commands_.roll(80));
    host_.log.sample();
    answerDialogs();
    const bool isOver = Clock::now() >= stageEnd_;
    switch (stage_) {
      case Stage::storm:
      case Stage::lastStorm:
        if (!isOver) return commands_.giveAny();
        if (stage_ == Stage::storm) return go(Stage::calm, kLongestCalm);
        if (end_ != End::question && end_ != End::signal) return go(Stage::lastCalm, kLongestCalm);
        return endProgram();
      case Stage::calm:
      case Stage::lastCalm:
        calmDown();
        if (isOver || isCalm()) leaveCalm(isOver);
        return;
      case Stage::waitForMoment:
        if (isOver) host_.log.write("info", QStringLiteral("no file ended while it was held back"));
        if (isOver || isMomentToEnd()) return endProgram();
        return holdBack();
      case Stage::ending:
        return;
    }
  }

  void calmDown() {
    host_.failNetwork(0);
    if (desktop_.statusWindow().isMinimized()) desktop_.statusWindow().showNormal();
    if (!commands_.isWindowFree()) return;
    const auto now = Clock::now();
    if (!host_.log.isUnderWay()) {
      underWaySince_ = Clock::time_point::max();
      if (!desktop_.gate().isBusy() && desktop_.controller().numberOfRows() > 0) commands_.tryAgain();
    } else if (underWaySince_ == Clock::time_point::max()) {
      underWaySince_ = now;
    } else if (now - underWaySince_ > kPatienceInCalm) {
      underWaySince_ = now;
      commands_.cancel(1);
    }
  }
  [[nodiscard]] bool areCommandsWaiting() const {
    return desktop_.gate().isBusy() || !desktop_.pacedIntake().isEmpty();
  }
  bool isCalm() {
    const bool rests = !host_.log.isUnderWay() && desktop_.controller().numberOfRows() == 0 &&
                       !areCommandsWaiting() && QApplication::activeModalWidget() == nullptr;
    restSince_ = rests ? std::min(restSince_, Clock::now()) : Clock::time_point::max();
    return rests && Clock::now() - restSince_ >= kTimeAtRest;
  }
  // With some ends, a file is on its way then, and ends under an open panel, or while a page that loads holds
  // the news of its end back.
  void leaveCalm(bool isOver) {
    if (isOver) host_.log.write("fault", QStringLiteral("does not come to rest"));
    host_.log.write("rest");
    if (stage_ == Stage::calm) return go(Stage::lastStorm, duration_ * 2 / 5);
    if (end_ == End::atRest) return endProgram();
    go(Stage::waitForMoment, kLongestWaitForMoment);
    commands_.open({commands_.newURL(".bin", "drip")});
  }
  void holdBack() {
    if (isHoldingBack_ || !host_.log.isGrowing()) return;
    isHoldingBack_ = true;
    if (end_ == End::panelOpen) return commands_.give("actionChooseDestination");
    commands_.importPage(commands_.newURL(".html", "held"));
  }
  [[nodiscard]] bool isMomentToEnd() const {
    const bool isHeldBack = end_ == End::pageLoading
                                ? host_.isPageLoading()
                                : qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) != nullptr;
    return isHoldingBack_ && isHeldBack && (host_.log.hasFinalName() || !host_.log.isGrowing());
  }

  void endProgram() {
    stage_ = Stage::ending;
    if (end_ != End::atRest && end_ != End::question) {
      noteEnd("ends by a signal");
      std::raise(SIGTERM);
      return;
    }
    const bool areWaiting = areCommandsWaiting();
    host_.log.write("said", QStringLiteral("close"));
    desktop_.statusWindow().close();
    if (!desktop_.isQuitting()) return;  // it asks
    host_.log.write("unasked", areWaiting ? QStringLiteral("waiting") : QString());
    noteEnd("ends without a question", areWaiting);
  }
  void noteEnd(const char* how) { noteEnd(how, areCommandsWaiting()); }
  void noteEnd(const char* how, bool areWaiting) {
    host_.log.sample();
    host_.log.write("info", QLatin1StringView(how));
    host_.log.write({QStringLiteral("quit"), areWaiting ? QStringLiteral("waiting") : QString(),
                     host_.log.hasFinalName() ? QStringLiteral("stands") : QString()});
  }

  // Each gets its answer after a while, in the calm at once.
  void answerDialogs() {
    const auto now = Clock::now();
    std::map<QObject*, Clock::time_point> times;
    QDialog* due = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* dialog = qobject_cast<QDialog*>(widget);
      if (dialog == nullptr || !dialog->isVisible()) continue;
      const auto known = answerTimes_.find(dialog);
      const auto time =
          known != answerTimes_.end() ? known->second : now + std::chrono::milliseconds(commands_.roll(1500));
      times.emplace(dialog, time);
      const QWidget* modal = QApplication::activeModalWidget();
      if ((modal == nullptr || modal == dialog) && (isCalming() || now >= time)) due = dialog;
    }
    answerTimes_ = std::move(times);
    if (due == nullptr) return;
    answerTimes_.erase(due);
    answer(*due);
  }
  void answer(QDialog& dialog) {
    auto* box = qobject_cast<QMessageBox*>(&dialog);
    if (box != nullptr && box->text().startsWith(QStringLiteral("Quit Quillforth?"))) {
      const bool isEnding = stage_ == Stage::ending;
      if (isEnding) noteEnd("asks before it ends");
      return press(*box, isEnding ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
    }
    const bool isLeftOpen = stage_ == Stage::ending && end_ != End::question && end_ != End::atRest;
    if (stage_ == Stage::waitForMoment || isLeftOpen) return;
    if (box != nullptr) {
      const auto buttons = box->buttons();
      return buttons.at(commands_.roll(static_cast<int>(buttons.size())))->click();
    }
    if (qobject_cast<desktop::ImportWindow*>(&dialog) != nullptr) return giveImportUp(dialog);
    if (qobject_cast<desktop::PreferencesWindow*>(&dialog) != nullptr) return changePreference(dialog);
    if (auto* panel = qobject_cast<QFileDialog*>(&dialog)) return choose(*panel);
    if (auto* sheet = qobject_cast<desktop::AuthenticationSheet*>(&dialog)) return logIn(*sheet);
    dialog.reject();
  }
  static void press(QMessageBox& box, QMessageBox::ButtonRole role) {
    for (QAbstractButton* button : box.buttons()) {
      if (box.buttonRole(button) == role) return button->click();
    }
  }
  void giveImportUp(QDialog& dialog) {
    if (!commands_.importedURL().isNull()) host_.log.write("given up", commands_.importedURL());
    QTest::keyClick(&dialog, Qt::Key_Escape);
  }
  void changePreference(QDialog& dialog) {
    constexpr std::array kSettings{"aggregateFiles",           "alwaysPromptForOutputLocation",
                                   "overwriteFilesBySameName", "showAlertsWhenErrorsOccur",
                                   "showStatusWindow",         "bringApplicationToFront"};
    const QLatin1StringView name(kSettings[static_cast<std::size_t>(commands_.roll(kSettings.size()))]);
    auto* box = dialog.findChild<QCheckBox*>(name);
    const bool isChanged = !isCalming() && box != nullptr;
    if (isChanged) {
      box->click();
      host_.log.write("said", name + QLatin1StringView(box->isChecked() ? " on" : " off"));
    }
    if (!isChanged || commands_.roll(2) == 0) dialog.close();
  }
  void choose(QFileDialog& panel) {
    if (commands_.roll(3) == 0) return panel.reject();
    constexpr std::array kFolders{"/.local/share/Tessary Software/Quillforth", "/a", "/b"};
    panel.setDirectory(QDir::homePath() +
                       QLatin1StringView(kFolders[static_cast<std::size_t>(commands_.roll(3))]));
    panel.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->clear();
    static_cast<QDialog&>(panel).accept();
  }
  void logIn(desktop::AuthenticationSheet& sheet) {
    if (commands_.roll(3) == 0) return sheet.reject();
    sheet.findChild<QLineEdit*>(QStringLiteral("user"))->setText(QStringLiteral("user"));
    sheet.findChild<QLineEdit*>(QStringLiteral("password"))
        ->setText(commands_.roll(4) == 0 ? QStringLiteral("wrong") : QStringLiteral("word"));
    sheet.accept();
  }

  desktop::Desktop& desktop_;
  StormHost& host_;
  StormCommands commands_;
  const Clock::duration duration_;
  const End end_;
  QTimer tick_;
  Stage stage_ = Stage::storm;
  Clock::time_point stageEnd_, restSince_, underWaySince_;
  bool isHoldingBack_ = false;
  std::map<QObject*, Clock::time_point> answerTimes_;
};

int RunStorm(const StormRun& run) {
  const platform::Interruption interruption;
  StormHost host;
  host::LinuxHost& services = host.services;
  services.userDefaults().setObject(QStringLiteral("playSoundWhenDone"), false);
  services.userDefaults().synchronize();
  desktop::Desktop desktop(
      {.makeHost = [&](app::Application& asked) { return host.host(asked); },
       .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .holdEnds = [&](bool isHeld) { services.downloads().setHoldingEnds(isHeld); },
       .holdsAnEnd = [&] { return services.downloads().isHoldingAnEnd(); },
       .settingsFile = services.userDefaults().fileName(),
       .isStored = [&] { return services.userDefaults().isStored(); }});
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&] {
    notifier.setEnabled(false);
    desktop.quit();
  });
  desktop::RequestIntake intake(desktop, services.events(), host::LinuxHost::kSignature);
  desktop.setOpenDocumentsCommand([&intake](const QStringList& uris) { intake.openDocuments(uris); });
  host.log.watch(desktop.controller());
  if (intake.take({}) != desktop::RequestHandler::Answer::taken) return EXIT_FAILURE;
  const StormUser user(desktop, intake, host, run);
  QApplication::exec();
  host.log.sample();
  return EXIT_SUCCESS;
}

}  // namespace

}  // namespace quillforth::bench

int main(int argc, char** argv) {
  if (argc != 5) return std::fputs("usage: window_storm PHASE SEED SECONDS ORIGIN\n", stderr), 2;
  const quillforth::bench::StormRun run{std::atoi(argv[1]), std::strtoull(argv[2], nullptr, 10),
                                        std::atoi(argv[3]), QString::fromUtf8(argv[4])};
  std::signal(SIGPIPE, SIG_IGN);
  alarm(static_cast<unsigned>(run.seconds) + quillforth::bench::kPatienceInSeconds);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return quillforth::bench::RunStorm(run);
}
