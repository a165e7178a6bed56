// SPDX-License-Identifier: MIT
//
// The program in windows, measured from inside. Each mode is a run of its own:
//
//   desktop_benchmark bare          a plain window of Qt, until it is painted: what "startup" is held against
//   desktop_benchmark startup       the status window, until it is painted
//   desktop_benchmark queue COUNT   COUNT URLs are queued, and shown
//   desktop_benchmark download URL  one file; also the longest time for which the event loop did not turn
//
// Prints "NAME VALUE" lines: milliseconds, and the peak memory in MiB.

#include <sys/resource.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "desktop/Desktop.h"
#include "host/AssumedNetwork.h"
#include "host/LinuxHost.h"

namespace {

using namespace quillforth;

/// Ends the program after the first paint event of anything: what comes later is not measured.
class FirstPaint final : public QObject {
 public:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Paint) QTimer::singleShot(0, [] { std::_Exit(EXIT_SUCCESS); });
    return false;
  }
};

double PeakMebibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

int RunUntilPainted() {
  FirstPaint firstPaint;
  qApp->installEventFilter(&firstPaint);
  return QApplication::exec();
}

int RunBare() {
  QMainWindow window;
  window.setCentralWidget(new QLabel(QStringLiteral("Quillforth")));
  window.show();
  return RunUntilPainted();
}

void RunUntil(const std::function<bool()>& isDone) {
  QTimer tick;
  tick.callOnTimeout([&isDone] {
    if (isDone()) QCoreApplication::exit();
  });
  tick.start(1);
  QApplication::exec();
}

void Queue(desktop::Desktop& program, int count) {
  RunUntil([&program] { return !program.gate().isBusy(); });
  const double before = PeakMebibytes();
  QElapsedTimer timer;
  timer.start();
  for (int i = 0; i < count; ++i) {
    program.controller().queueURL(
        QStringLiteral("http://127.0.0.1:9/some/folder/of/files/file-%1.jpeg").arg(i));
  }
  const auto queued = timer.elapsed();
  auto* table = program.statusWindow().findChild<desktop::QueueTable*>();
  RunUntil([table, count] { return table->model()->rowCount() == count; });
  std::printf("queued-ms %lld\nshown-ms %lld\nmemory-before-MiB %.1f\nmemory-MiB %.1f\n",
              static_cast<long long>(queued), static_cast<long long>(timer.elapsed()), before,
              PeakMebibytes());
}

void Download(desktop::Desktop& program, const char* url) {
  RunUntil([&program] { return !program.gate().isBusy(); });
  qint64 longestGap = 0;
  QElapsedTimer turn;
  QTimer heart;
  heart.callOnTimeout([&] { longestGap = std::max(longestGap, turn.restart()); });
  QElapsedTimer timer;
  timer.start();
  turn.start();
  heart.start(0);
  program.takeURL(QString::fromLatin1(url));
  bool hasBegun = false;
  RunUntil([&] {
    hasBegun = hasBegun || program.controller().isDownloading();
    return hasBegun && !program.controller().isDownloading();
  });
  std::printf("download-ms %lld\ngap-ms %lld\n", static_cast<long long>(timer.elapsed()),
              static_cast<long long>(longestGap));
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc > 1 ? argv[1] : "";
  const char* argument = argc > 2 ? argv[2] : nullptr;
  const bool needsArgument = mode == "queue" || mode == "download";
  if (!needsArgument && mode != "bare" && mode != "startup") return 2;
  if (needsArgument && argument == nullptr) return 2;
  const platform::Interruption interruption;
  const QApplication application(argc, argv);
  if (mode == "bare") return RunBare();
  host::LinuxHost services;
  host::AssumedNetwork network;
  desktop::Desktop program(
      {.makeHost = [&](app::Application& asked) { return services.host(asked, network); },
       .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .settingsFile = services.userDefaults().fileName(),
       .isStored = [] { return true; }});
  program.start();
  if (mode == "startup") return RunUntilPainted();
  if (mode == "queue") Queue(program, std::max(0, std::atoi(argument)));
  if (mode == "download") Download(program, argument);
  return 0;
}
