// SPDX-License-Identifier: MIT
//
// The program in windows, measured from inside. Each mode is a run of its own:
//
//   desktop_benchmark bare          a plain window of Qt, until it is painted: what "startup" is held against
//   desktop_benchmark startup       the status window, until it is painted
//   desktop_benchmark queue COUNT   COUNT URLs are queued, and shown
//   desktop_benchmark rows COUNT    they are scrolled, filtered, selected, deleted, brought back and grow,
//   with
//                                   half as many in each other list; the longest gap in each
//   desktop_benchmark choose COUNT  the sheet that lists COUNT links of a page; the longest gap in each step
//   desktop_benchmark download URL  one file; also the longest time for which the event loop did not turn
//
// Prints "NAME VALUE" lines: milliseconds, and the peak memory in MiB.

#include <sys/resource.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QScrollBar>
#include <QTabBar>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "desktop/ChooseSheet.h"
#include "desktop/Desktop.h"
#include "host/HeadlessHost.h"
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

/// Watches how long the event loop does not turn; beats rarely enough to leave the processor to the program.
class Heart {
 public:
  Heart() {
    beat_.callOnTimeout([this] { longestGap_ = std::max(longestGap_, turn_.restart()); });
    turn_.start();
    beat_.setTimerType(Qt::PreciseTimer);
    beat_.start(1);
  }
  [[nodiscard]] long long longestGap() const { return longestGap_; }

 private:
  qint64 longestGap_ = 0;
  QElapsedTimer turn_;
  QTimer beat_;
};

void QueueURLs(desktop::Desktop& program, int count) {
  for (int i = 0; i < count; ++i) {
    program.controller().queueURL(
        QStringLiteral("http://127.0.0.1:9/some/folder/of/files/file-%1.jpeg").arg(i));
  }
}

void Queue(desktop::Desktop& program, int count) {
  RunUntil([&program] { return !program.gate().isBusy(); });
  const double before = PeakMebibytes();
  QElapsedTimer timer;
  timer.start();
  QueueURLs(program, count);
  const auto queued = timer.elapsed();
  auto* table = &program.statusWindow().table();
  RunUntil([table, count] { return table->model()->rowCount() == count; });
  std::printf("queued-ms %lld\nshown-ms %lld\nmemory-before-MiB %.1f\nmemory-MiB %.1f\n",
              static_cast<long long>(queued), static_cast<long long>(timer.elapsed()), before,
              PeakMebibytes());
}

/// Does `step` with its number from 0 on, one a frame, and prints the longest gap.
void MeasureSteps(const char* name, int count, const std::function<void(int number)>& step) {
  const Heart heart;
  int number = 0;
  QTimer frame;
  frame.callOnTimeout([&] {
    if (number < count) step(number);
    ++number;
  });
  frame.start(16);
  RunUntil([&] { return number > count + 5; });  // with the frames in which it is drawn
  std::printf("%s-gap-ms %lld\n", name, heart.longestGap());
}

void AppendOutcomes(QAbstractItemModel& model, int count) {
  for (int i = 0; i < count; ++i) {
    static_cast<desktop::OutcomeModel&>(model).append(
        {.url = "http://127.0.0.1:9/some/folder/of/files/file-" + QByteArray::number(i) + ".jpeg",
         .detail = QStringLiteral("/tmp"),
         .name = "file-" + QByteArray::number(i) + ".jpeg"});
  }
}

void Turn(QWidget& viewport, int notches) {
  constexpr int kNotch = 120;
  const QPointF middle = viewport.rect().center();
  QWheelEvent turn(middle, viewport.mapToGlobal(middle), {}, {0, -notches * kNotch}, Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&viewport, &turn);
}

void Rows(desktop::Desktop& program, int count) {
  RunUntil([&program] { return !program.gate().isBusy(); });
  const auto tableCalled = [&](const char* name) {
    return program.statusWindow().findChild<desktop::QueueTable*>(QLatin1StringView(name));
  };
  auto& table = *tableCalled("fileTable");
  auto& tabs = *program.statusWindow().findChild<QTabBar*>();
  auto& filter = *program.statusWindow().findChild<QLineEdit*>(QStringLiteral("filterField"));
  auto& bar = *table.verticalScrollBar();
  auto& selection = *table.selectionModel();
  const auto press = [&](const char* name) {
    program.statusWindow().findChild<QAction*>(QLatin1StringView(name))->trigger();
  };
  const auto selectRow = [&](int row) {
    selection.select(table.model()->index(row, 0), QItemSelectionModel::Select);
  };
  MeasureSteps("fill", 1, [&](int) { QueueURLs(program, count); });
  for (const char* name : {"finishedTable", "failedTable"})
    MeasureSteps(name, 1, [&](int) { AppendOutcomes(*tableCalled(name)->model(), count / 2); });
  MeasureSteps("tabs", 60, [&](int number) { tabs.setCurrentIndex((number + 1) % 3); });
  for (const int tab : {1, 2}) {
    tabs.setCurrentIndex(tab);
    auto& shown = program.statusWindow().table();
    MeasureSteps("wheel-outcomes", 100, [&](int number) { Turn(*shown.viewport(), number % 20); });
    MeasureSteps("select-all-outcomes", 1, [&](int) { press("actionSelectAll"); });
  }
  tabs.setCurrentIndex(0);
  MeasureSteps("filter", 4, [&](int number) { filter.setText(QStringLiteral("file-9").first(3 + number)); });
  MeasureSteps("filter-end", 1, [&](int) { filter.clear(); });
  MeasureSteps("wheel", 300, [&](int number) { Turn(*table.viewport(), number % 20); });
  MeasureSteps("drag", 100, [&](int number) { bar.setValue(bar.maximum() / 100 * number); });
  MeasureSteps("grow", 200, [&](int) { QueueURLs(program, 10); });
  MeasureSteps("select", 200, [&](int number) { selectRow(number * (count / 200)); });
  MeasureSteps("delete-selected", 1, [&](int) { press("actionDelete"); });
  MeasureSteps("select-all", 1, [&](int) { press("actionSelectAll"); });
  MeasureSteps("grow-selected", 200, [&](int) { QueueURLs(program, 10); });
  MeasureSteps("copy-all", 1, [&](int) { press("actionCopy"); });
  MeasureSteps("delete-all", 1, [&](int) { press("actionDelete"); });
  MeasureSteps("undo", 1, [&](int) { press("actionUndo"); });
  MeasureSteps("clear", 1, [&](int) { press("actionClear"); });
  MeasureSteps("undo-clear", 1, [&](int) { press("actionUndo"); });
}

void Choose(int count) {
  app::UrlQueue links;
  for (int i = 0; i < count; ++i)
    links.append(QStringLiteral("http://127.0.0.1:9/some/folder/of/files/file-%1.jpeg").arg(i));
  const classify::CExtensionMap extensions;
  desktop::ChooseSheet sheet(links, extensions, nullptr);
  auto& field = *sheet.findChild<QLineEdit*>();
  auto& table = *sheet.findChild<desktop::QueueTable*>();
  const QList<QPushButton*> buttons = sheet.findChildren<QPushButton*>();
  const auto press = [&](QStringView text) {
    for (QPushButton* button : buttons) {
      if (button->text() == text) button->click();
    }
  };
  MeasureSteps("show", 1, [&](int) { sheet.show(); });
  MeasureSteps("wheel", 100, [&](int number) { Turn(*table.viewport(), number % 20); });
  MeasureSteps("untick-all", 1, [&](int) { press(u"&Untick All"); });
  MeasureSteps("filter", 4, [&](int number) { field.setText(QStringLiteral("file-9").first(3 + number)); });
  RunUntil([&] { return !static_cast<desktop::LinkModel*>(table.model())->isLooking(); });
  MeasureSteps("tick-all", 1, [&](int) { press(u"&Tick All"); });
  MeasureSteps("filter-end", 1, [&](int) { field.clear(); });
  MeasureSteps("kinds", 1, [&](int) { sheet.findChild<QMenu*>()->actions().constFirst()->trigger(); });
  RunUntil([&] { return !static_cast<desktop::LinkModel*>(table.model())->isLooking(); });
  std::printf("memory-MiB %.1f\n", PeakMebibytes());
}

void Download(desktop::Desktop& program, const char* url) {
  RunUntil([&program] { return !program.gate().isBusy(); });
  const Heart heart;
  QElapsedTimer timer;
  timer.start();
  const desktop::MimePasteboard pasteboard(QString::fromLatin1(url));
  program.gate().post([&] { program.controller().tableViewAcceptDrop(pasteboard); });
  bool hasBegun = false;
  RunUntil([&] {
    hasBegun = hasBegun || program.controller().isDownloading();
    return hasBegun && !program.controller().isDownloading();
  });
  std::printf("download-ms %lld\ngap-ms %lld\n", static_cast<long long>(timer.elapsed()), heart.longestGap());
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc > 1 ? argv[1] : "";
  const char* argument = argc > 2 ? argv[2] : nullptr;
  const bool needsArgument = mode == "queue" || mode == "rows" || mode == "choose" || mode == "download";
  if (!needsArgument && mode != "bare" && mode != "startup") return 2;
  if (needsArgument && argument == nullptr) return 2;
  const platform::Interruption interruption;
  const QApplication application(argc, argv);
  if (mode == "bare") return RunBare();
  if (mode == "choose") return Choose(std::max(1, std::atoi(argument))), 0;
  host::LinuxHost services;
  host::AssumedNetwork network;
  desktop::Desktop program(
      {.makeHost = [&](app::Application& asked) { return services.host(asked, network); },
       .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .holdEnds = [&](bool isHeld) { services.downloads().setHoldingEnds(isHeld); },
       .holdsAnEnd = [&] { return services.downloads().isHoldingAnEnd(); },
       .settingsFile = services.userDefaults().fileName(),
       .isStored = [] { return true; }});
  program.start();
  if (mode == "startup") return RunUntilPainted();
  if (mode == "queue") Queue(program, std::max(0, std::atoi(argument)));
  if (mode == "rows") Rows(program, std::max(0, std::atoi(argument)));
  if (mode == "download") Download(program, argument);
  return 0;
}
