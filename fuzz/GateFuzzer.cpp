// SPDX-License-Identifier: MIT
//
// Random commands, given through the gate, and ends of downloads, also while a page loads: what waits, what
// is under way, and what came of every URL is what a plain model says. Each byte of the input is a step.

#include <QCoreApplication>
#include <deque>

#include "app/MyAppController.h"
#include "desktop/CommandGate.h"
#include "fuzz/Fuzz.h"
#include "tests/support/FakeHost.h"

namespace quillforth::fuzz {

namespace {

using desktop::CommandGate;

/// What came of URLs, a line each, and what the controller tells of it in the same words.
struct Ledger : app::ControllerObserver {
  using Progress = app::DownloadProgress;
  QStringList lines;

  void add(const char* what, const QString& url) { lines << QLatin1StringView(what) + url; }
  void pageWasQueued(const QString& url, std::size_t) override { add("page ", url); }
  void pageDidNotLoad(const QString& url, const QString&) override { add("no page ", url); }
  void urlWasRefused(const QString& text) override { add("refused ", text); }
  void urlWasLost(const QString& url) override { add("lost ", url); }
  void urlsWereDiscarded(const std::shared_ptr<const app::UrlQueue>& urls) override {
    for (std::size_t i = 0; i < urls->size(); ++i) add("discarded ", urls->at(i));
  }
  void downloadBegan(const Progress& progress) override { add("began ", progress.text); }
  void downloadFinished(const Progress& progress) override { add("finished ", progress.text); }
  void downloadFailed(const Progress& progress, const QString&) override { add("failed ", progress.text); }
  void downloadCancelled(const Progress& progress) override { add("cancelled ", progress.text); }
};

QStringList LinksOf(const QString& page) {
  QStringList links;
  for (int i = 0; i < page.back().digitValue(); ++i) links << QStringLiteral("http://h/%1.zip").arg(i);
  return links;
}

/// The controller as it is defined: a queue, at most one download, and an interval before it begins.
struct Model {
  Ledger ledger;
  QStringList waiting;
  QStringList flight;  // one URL, or none
  bool isDownloading = false, isUp = true;

  void download(const QString& url) {
    if (url.contains(u' ')) return ledger.add("refused ", url);
    flight << url;
  }
  void start(const QString& url) {
    if (!isUp) return ledger.add("lost ", url);
    isDownloading ? waiting.append(url) : download(url);
  }
  void takeNext() {
    if (!waiting.isEmpty()) start(waiting.takeFirst());
  }
  void extract(const QString& page) {
    const QStringList links = LinksOf(page);
    links.isEmpty() ? ledger.add("no page ", page) : ledger.add("page ", page);
    waiting += links;
    takeNext();
  }
  void import(const QString& page) {
    remove(0);
    extract(page.startsWith(u'h') ? page : QStringLiteral("http://") + page);
  }
  static bool isSelected(unsigned mask, qsizetype row) { return (mask >> row % 3 & 1) != 0; }
  // The selected rows; all when there is none.
  void remove(unsigned mask) {
    const QStringList before = std::exchange(waiting, {});
    for (qsizetype row = 0; row < before.size(); ++row) {
      if (!isSelected(mask, row)) waiting << before[row];
    }
    if (waiting == before) waiting.clear();
    for (qsizetype row = 0; row < before.size(); ++row) {
      if (waiting.isEmpty() || isSelected(mask, row)) ledger.add("discarded ", before[row]);
    }
  }
  void begin() {
    isDownloading = true;
    ledger.add("began ", flight[0]);
  }
  void end(const char* how) {
    if (!flight.isEmpty()) ledger.add(how, flight[0]);
    flight.clear();
    isDownloading = false;
    takeNext();
  }
  [[nodiscard]] bool isBeginning() const { return !flight.isEmpty() && !isDownloading; }
};

/// One run: the real ones, and the model beside them.
class Stage final : platform::PageLoader {
 public:
  explicit Stage(std::string_view steps) : steps_(steps) {
    app::Host host = host_.host();
    host.pageLoader = this;
    host.observers = {&told_};
    controller_ = std::make_unique<app::MyAppController>(outlets_.outlets(), host);
    outlets_.table.dataSource = controller_.get();
    gate_.waitWhile([this] { return controller_->isBeginning(); });
    gate_.whenDownloadsAreHeld([this](bool isHeld) { areDownloadsHeld_ = isHeld; });
  }
  ~Stage() override { gate_.close(); }

  void play() {
    while (!steps_.empty()) step();
    hold_.reset();
    run();
  }

 private:
  unsigned take(unsigned limit) {
    const unsigned value = steps_.empty() ? 0 : static_cast<unsigned char>(steps_[0]) % limit;
    steps_.remove_prefix(steps_.empty() ? 0 : 1);
    return value;
  }

  // A byte says what to do, the next one with what.
  void step() {
    const unsigned kind = take(16), argument = take(12);
    const QString url =
        argument == 11 ? QStringLiteral("no url") : QStringLiteral("http://h/%1").arg(argument % 5);
    if (kind < 2) give([=, this] { controller_->startURL(url, false); }, [=, this] { model_.start(url); });
    if (kind / 2 == 1)
      give([=, this] { controller_->extractLinks(url); }, [=, this] { model_.extract(url); });
    if (kind == 4) give([=, this] { import(url); }, [=, this] { model_.import(url); });
    if (kind == 5) give([this] { controller_->clearQueue(); }, [this] { model_.remove(0); });
    if (kind == 6) give([=, this] { remove(argument); }, [=, this] { model_.remove(argument); });
    if (kind == 7) give([this] { controller_->tryAgain(); }, [this] { model_.takeNext(); });
    if (kind == 8) give([this] { controller_->cancelDownloadFile(); }, [this] { model_.end("cancelled "); });
    if (kind == 9) {
      model_.isUp = argument % 2 == 0;
      host_.services.network =
          model_.isUp ? platform::NetworkStatus::connectionUp : platform::NetworkStatus{};
    }
    if (kind == 10) {
      hold_.reset();
      if (argument % 3 < 2) hold_.emplace(gate_, static_cast<CommandGate::Held>(argument % 3));
    }
    if (kind > 10 && kind < 14) callBack(kind);
    if (kind > 13) run();
  }
  void import(const QString& page) {
    outlets_.url.text = page;
    controller_->importURL(outlets_.preferencesWindow);
  }
  void remove(unsigned mask) {
    std::vector<std::size_t> rows;
    for (std::size_t row = 0; row < controller_->numberOfRows(); ++row) {
      if (Model::isSelected(mask, static_cast<qsizetype>(row))) rows.push_back(row);
    }
    outlets_.table.select(rows);
    controller_->deleteButtonClicked();
  }

  // Both do the same, one after the other, when it is their turn.
  void give(std::function<void()> real, std::function<void()> plain) {
    const bool hasRoom = gate_.room() > 0;
    const bool isTaken = gate_.post([this, real = std::move(real), plain = std::move(plain), turn = given_] {
      Require(turn == done_++, "commands are done in the order in which they were given");
      Require(!isInside_ && !hold_ && !isLoading_ && !model_.isBeginning(),
              "no command begins inside another wait");
      isInside_ = true;
      real();
      plain();
      isInside_ = false;
      compare();
    });
    Require(isTaken == hasRoom, "a command is refused when there is no room, and only then");
    if (isTaken) ++given_;
  }
  void callBack(unsigned kind) {
    if (areDownloadsHeld_ || model_.flight.isEmpty()) return;
    tests::FakeDownload& download = *host_.downloads.started.back();
    const bool hasBegun = model_.isDownloading;
    if (kind == 11 && hasBegun) return;
    if (kind == 11) {
      download.delegate.downloadDidBegin(download);
      model_.begin();
    } else if (kind == 12 && hasBegun) {
      download.finish();
      model_.end("finished ");
    } else {
      download.fail(QStringLiteral("Why."), {});
      model_.end("failed ");
    }
    gate_.goOn();
    compare();
  }
  // The event loop, until it has nothing more to do.
  void run() {
    for (unsigned before = done_ + 1; before != done_;) {
      before = done_;
      for (int pass = 0; pass < 2; ++pass) QCoreApplication::processEvents();
    }
    const bool mayGoOn = !isInside_ && !hold_ && !isLoading_ && !model_.isBeginning();
    Require(!mayGoOn || given_ == done_, "no command waits without a reason");
    Require(gate_.hasWaiting() == (given_ != done_), "the gate knows what waits");
  }
  // As the window waits: its event loop runs, and nothing enters.
  platform::PageLoad resourceData(const platform::URL& url) override {
    const CommandGate::Hold hold(gate_);
    isLoading_ = true;
    for (unsigned left = take(4); left > 0; --left) step();
    run();
    isLoading_ = false;
    QByteArray page;
    for (const QString& link : LinksOf(url.absoluteString())) page += "<a href=\"" + link.toLatin1() + "\">";
    return page.isEmpty() ? platform::PageLoad{} : platform::PageLoad{page, {}};
  }
  void compare() {
    QStringList waiting;
    for (std::size_t row = 0; row < controller_->numberOfRows(); ++row)
      waiting << controller_->objectValueForRow(row);
    Require(told_.lines == model_.ledger.lines, "what came of every URL");
    Require(waiting == model_.waiting, "what waits");
    Require(controller_->textsInFlight() == model_.flight && model_.flight.size() <= 1,
            "what is under way, one at a time");
    Require(controller_->isDownloading() == model_.isDownloading, "whether a download is under way");
    static_cast<void>(log_.take());
  }

  std::string_view steps_;
  tests::CallLog log_;
  tests::FakeHost host_{log_};
  tests::RecordedOutlets outlets_{log_};
  CommandGate gate_;
  Ledger told_;
  std::unique_ptr<app::MyAppController> controller_;
  Model model_;
  std::optional<CommandGate::Hold> hold_;  // an alert, or a question
  unsigned given_ = 0, done_ = 0;
  bool isInside_ = false, isLoading_ = false, areDownloadsHeld_ = false;
};

}  // namespace

void Check(std::string_view input) {
  static int argumentCount = 0;
  static const QCoreApplication application(argumentCount, nullptr);
  static_cast<void>(Home());
  Stage(input.substr(0, 300)).play();
}

}  // namespace quillforth::fuzz
