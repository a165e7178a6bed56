// SPDX-License-Identifier: MIT
//
// Plays the scenarios in tests/data/controller.tsv, each a test of its own: rows of steps, with the calls to
// the outside that the last step of a row causes.

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "app/MyAppController.h"
#include "appleevents/AppleEventManager.h"
#include "appleevents/FSRefTable.h"
#include "tests/support/CaseTable.h"
#include "tests/support/FakeHost.h"
#include "tests/support/ForkBytes.h"

namespace quillforth::tests {
namespace {

using platform::AEDescriptor;

struct FakePasteboard final : app::Pasteboard {
  std::map<std::string, QString> strings;
  [[nodiscard]] QString stringForType(const char* type) const override {
    const auto found = strings.find(type);
    return found == strings.end() ? QString() : found->second;
  }
};

QString Q(const std::string& text) {
  return text.empty() ? QString() : QString::fromStdString(text);
}

class Stage {
 public:
  Stage() { outlets_.table.dataSource = controller_.get(); }

  /// What the last of `steps` causes; "~" stands for the home folder.
  std::string play(const std::string& steps) {
    for (std::size_t start = 0; start < steps.size();) {
      const std::size_t end = std::min(steps.find("; ", start), steps.size());
      log_.take();
      playStep(steps.substr(start, end - start));
      start = end + 2;
    }
    return QByteArray::fromStdString(log_.take()).replace(QDir::homePath().toUtf8(), "~").toStdString();
  }

 private:
  /// "verb" or "verb argument" or "verb a|b".
  void playStep(const std::string& step) {
    const std::size_t blank = std::min(step.find(' '), step.size());
    a_ = step.substr(std::min(blank + 1, step.size()));
    const std::size_t bar = std::min(a_.find('|'), a_.size());
    b_ = a_.substr(std::min(bar + 1, a_.size()));
    a_.resize(bar);
    verbs_.at(step.substr(0, blank))();
  }
  FakeDownload& latest() { return *host_.downloads.started.back(); }
  /// The download with the number that is given, else the latest.
  FakeDownload& download() { return a_.empty() ? latest() : *host_.downloads.started.at(std::stoul(a_)); }
  void begin() {
    controller_->startURL(Q(a_), false);
    controller_->downloadDidBegin(latest());
  }
  void import() {
    outlets_.url.text = Q(a_);
    controller_->importURL(outlets_.preferencesWindow);
  }
  /// "string|URL"; an empty one is not offered.
  void drag() {
    FakePasteboard pasteboard;
    pasteboard.strings = {{app::kStringPasteboardType, Q(a_)}, {app::kURLPasteboardType, Q(b_)}};
    const bool isWelcome = controller_->tableViewValidateDrop(pasteboard) == app::DragOperation::every;
    log_.add(isWelcome ? "welcome" : "refused");
    if (!controller_->tableViewAcceptDrop(pasteboard)) log_.add("not taken");
  }
  void queue() {
    for (const QString& url : Q(a_).split(u',')) controller_->queueURL(url);
  }
  void showQueue() {
    QStringList urls;
    for (std::size_t row = 0; row < controller_->numberOfRows(); ++row)
      urls << controller_->objectValueForRow(row);
    log_.add(urls.join(u' ').toStdString());
  }
  void run() {
    const auto code = platform::CodeValue({platform::descriptor_type::kType, a_.substr(0, 4).c_str()},
                                          platform::descriptor_type::kType);
    host_.services.processes.push_back({common::FourCC("APPL"), *code, 1});
    if (b_ == "other") host_.services.processes.back().fileType = 0;
  }
  void select() {
    std::vector<std::size_t> rows;
    for (const char row : a_) rows.push_back(static_cast<std::size_t>(row - '0'));
    outlets_.table.select(rows);
    controller_->tableViewSelectionDidChange();
  }
  void choose() {
    host_.application.dialogAnswer = {std::stoi(a_), {}};
    if (!b_.empty()) host_.application.dialogAnswer.folder = platform::FileReference(b_);
    controller_->selectDestinationDirectory();
  }
  void decide() {
    controller_->destinationFolder().decideDestinationFolder();
    log_.add(controller_->destinationFolder().currentDestinationPath().toStdString());
  }
  void map() {
    platform::ICMapEntry& entry = host_.services.mappings.emplace_back();
    entry.extension = platform::MakePascalString(a_);
    entry.MIMEType = platform::MakePascalString(b_);
  }
  void ask() {
    log_.add(controller_->downloadShouldDecodeSourceDataOfMIMEType(latest(), Q(a_)) ? "yes" : "no");
    const auto* window = controller_->downloadWindowForAuthenticationSheet(latest());
    log_.add(window == &outlets_.statusWindow ? "asks on the status window" : "asks elsewhere");
  }
  [[nodiscard]] AEDescriptor descriptor() const {
    return {qFromBigEndian<common::FourCharCode>(a_.c_str()), QByteArray::fromStdString(b_)};
  }
  void send(const char (&eventClass)[5], const char (&eventID)[5], std::optional<AEDescriptor> object = {}) {
    platform::AppleEvent event(common::FourCC(eventClass), common::FourCC(eventID), {}), reply;
    if (object) event.setParameter(platform::event_keyword::kDirectObject, *object);
    if (dispatcher_.dispatch(event, reply) != 0) log_.add("not handled");
  }
  void addFork(const char* type) {
    host_.services.forks[a_] = ForkBytes(type, {QByteArray::fromStdString(b_), "http://second"});
  }
  void service() {
    QString error = QStringLiteral("error");
    FakePasteboard pasteboard;
    pasteboard.strings[a_] = Q(b_);
    controller_->downloadURLUserDataError(pasteboard, {}, &error);
    if (!error.isNull()) log_.add("error");
  }
  void set(const QVariant& value) { host_.defaults.set(a_.c_str(), value); }

  std::string a_, b_;
  CallLog log_;
  FakeHost host_{log_};
  RecordedOutlets outlets_{log_};
  platform::AppleEventDispatcher dispatcher_;
  platform::FSRefTable references_;
  const app::EventIntake events_{dispatcher_, references_, host_.services};
  AEDescriptor list_{platform::descriptor_type::kList, {}};
  std::unique_ptr<app::MyAppController> controller_ =
      std::make_unique<app::MyAppController>(outlets_.outlets(), host_.host(&events_));
  const std::map<std::string, std::function<void()>> verbs_ = {
      // What there is.
      {"set", [this] { set(QJsonDocument::fromJson(("[" + b_ + "]").c_str()).array()[0].toVariant()); }},
      {"setBytes", [this] { set(QByteArray::fromStdString(b_)); }},
      {"stored", [this] { log_.add(host_.defaults.stored.value(Q(a_)).toByteArray().toStdString()); }},
      {"translations", [this] { log_.add(std::to_string(host_.translations)); }},
      {"moved", [this] { host_.services.moved[a_] = b_; }},
      {"supportStatus", [this] { host_.files.supportStatus = static_cast<common::Status>(std::stoi(a_)); }},
      {"seconds", [this] { host_.seconds = static_cast<std::uint32_t>(std::stoul(a_)); }},
      {"sound", [this] { host_.services.soundPath = Q(a_); }},
      {"mapping", [this] { map(); }},
      {"page", [this] { host_.services.pages[Q(a_)] = QByteArray::fromStdString(b_); }},
      {"panel", [this] { host_.application.panelAnswer = Q(a_); }},
      {"network", [this] { host_.services.network = platform::NetworkStatus{std::stoi(a_)}; }},
      {"sayYes", [this] { host_.application.alertAnswer = app::AlertResult::defaultButton; }},
      {"running", [this] { run(); }},
      {"address", [this] { host_.services.scriptResult = Q(a_); }},
      {"sheetCode", [this] { outlets_.statusWindow.sheetReturnCode = std::stoi(a_); }},
      {"touch", [this] { static_cast<void>(QFile(QDir::home().filePath(Q(a_))).open(QFile::WriteOnly)); }},
      {"fork", [this] { addFork("url "); }},
      {"otherFork", [this] { addFork("STR "); }},
      // What other programs send.
      {"item", [this] { list_.append(descriptor()); }},
      {"openItems",
       [this] {
         send("aevt", "odoc", std::exchange(list_, {list_.type(), {}}));
       }},
      {"open", [this] { send("aevt", "odoc", descriptor()); }},
      {"openNothing", [this] { send("aevt", "odoc"); }},
      {"getURL", [this] { send("GURL", "GURL", descriptor()); }},
      {"getNothing", [this] { send("GURL", "GURL"); }},
      {"service", [this] { service(); }},
      // What the user and the system do.
      {"awake", [this] { controller_->awakeFromNib(); }},
      {"launch", [this] { controller_->applicationWillFinishLaunching(); }},
      {"activate", [this] { controller_->applicationWillBecomeActive(); }},
      {"becomeKey", [this] { controller_->windowDidBecomeKey(); }},
      {"work", [this] { controller_->showStatusAndActivate(); }},
      {"alert", [this] { controller_->doAlertAdding(Q(a_), Q(b_)); }},
      {"preferences", [this] { controller_->showPreferencesWindow(); }},
      {"isPage", [this] { log_.add(controller_->isWebPageURL(Q(a_)) ? "page" : "file"); }},
      {"browser", [this] { controller_->processCurrentBrowserURL(); }},
      {"choose", [this] { choose(); }},
      {"decide", [this] { decide(); }},
      {"openFolder", [this] { controller_->openDestinationDirectory(); }},
      {"aggregate", [this] { controller_->aggregateFile(); }},
      {"extract", [this] { controller_->extractLinks(Q(a_)); }},
      {"import", [this] { import(); }},
      {"drag", [this] { drag(); }},
      {"queue", [this] { queue(); }},
      {"queued", [this] { showQueue(); }},
      {"select", [this] { select(); }},
      {"delete", [this] { controller_->deleteButtonClicked(); }},
      {"stop", [this] { controller_->stop(); }},
      {"tryAgain", [this] { controller_->tryAgain(); }},
      {"start", [this] { controller_->startURL(Q(a_), false); }},
      {"startPrompting", [this] { controller_->startURL(Q(a_), true); }},
      {"begin", [this] { begin(); }},
      {"cancel", [this] { controller_->cancelDownloadFile(); }},
      {"isDownloading", [this] { log_.add(controller_->isDownloading() ? "yes" : "no"); }},
      {"quit", [this] { controller_.reset(); }},
      // What a download says.
      {"begins", [this] { controller_->downloadDidBegin(download()); }},
      {"respond", [this] { latest().respond(std::stoll(a_, nullptr, 0)); }},
      {"receive", [this] { latest().receive(std::stoull(a_, nullptr, 0)); }},
      {"name", [this] { controller_->downloadDecideDestinationWithSuggestedFilename(latest(), Q(a_)); }},
      {"create",
       [this] { controller_->downloadDidCreateDestination(latest(), QDir::home().filePath(Q(a_))); }},
      {"ask", [this] { ask(); }},
      {"finish", [this] { download().finish(); }},
      {"fail", [this] { latest().fail(Q(a_), Q(b_)); }},
  };
};

/// Whether `calls` are the expected ones: "-" is none, and "..." stands for any.
bool Matches(std::string_view calls, std::string_view expected) {
  if (expected == "-") return calls.empty();
  const bool isOpen = expected.ends_with("...");
  for (bool isFirst = true; !expected.empty(); isFirst = false) {
    const std::size_t end = std::min(expected.find("..."), expected.size());
    const bool isLast = end == expected.size();
    const std::string_view part = expected.substr(0, end);
    const std::size_t found = isLast && !isFirst ? calls.rfind(part) : calls.find(part);
    if (found == std::string_view::npos || (isFirst && found != 0)) return false;
    calls.remove_prefix(found + part.size());
    expected.remove_prefix(isLast ? end : end + 3);
  }
  return isOpen || calls.empty();
}

constexpr const char* kTable = QUILLFORTH_TEST_DATA "/controller.tsv";

struct Row {
  int line;
  std::string steps, calls;
};

/// The rows of one controller's life.
class Scenario final : public ::testing::Test {
 public:
  explicit Scenario(std::vector<Row> rows) : rows_(std::move(rows)) {}
  void TestBody() override {
    Stage stage;
    for (const Row& row : rows_) {
      const std::string calls = stage.play(row.steps);
      if (Matches(calls, row.calls)) continue;
      ADD_FAILURE_AT(kTable, row.line) << row.steps << "\n" << row.calls << "\n" << calls;
    }
  }

 private:
  std::vector<Row> rows_;
};

/// "A page's links are queued" is Controller.APagesLinksAreQueued.
void Register(const std::string& title, const std::vector<Row>& rows) {
  std::string name;
  bool beginsWord = true;
  for (const char c : title) {
    if (std::isalnum(c) != 0) name += beginsWord ? common::UpperCased(c) : c;
    beginsWord = std::isalnum(c) == 0 && c != '\'';
  }
  const auto make = [rows]() -> ::testing::Test* { return new Scenario(rows); };
  ::testing::RegisterTest("Controller", name.c_str(), nullptr, nullptr, kTable, rows[0].line, make);
}

const bool kIsRegistered = [] {
  std::string title;
  std::vector<Row> rows;
  std::ifstream table(kTable);
  int number = 1;
  for (std::string line; std::getline(table, line); ++number) {
    const std::vector<std::string> cells = CellsOf(line);
    if (cells.empty()) continue;
    if (!cells[0].empty() && !rows.empty()) Register(title, std::exchange(rows, {}));
    if (!cells[0].empty()) title = cells[0];
    rows.push_back({number, cells.at(1), cells.at(2)});
  }
  Register(title, rows);
  return true;
}();

}  // namespace
}  // namespace quillforth::tests
