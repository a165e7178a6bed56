// SPDX-License-Identifier: MIT
//
// What is asked for ahead of its turn makes no difference but in time: not in what the controller says and
// leaves behind, whatever servers answer, and not when something has changed before its turn.

#include <sys/mount.h>
#include <sys/socket.h>

#include <QDirIterator>
#include <random>
#include <semaphore>

#include "app/MyAppController.h"
#include "tests/linux/transfer/DownloadFixture.h"
#include "tests/support/CaseTable.h"
#include "tests/support/FakeHost.h"

namespace quillforth::tests {
namespace {

using namespace std::chrono_literals;
using After = RawServer::After;

// The huge one is more than what may come ahead and what sockets hold.
constexpr std::size_t kLarge = 600'000, kHuge = 128UL << 20;
constexpr qint64 kMostAhead = 64 << 20;

class LookAhead : public DownloadTest {
 protected:
  ~LookAhead() override { go_.release(); }

  /// Starts what its server holds back, and has `paths` asked for ahead, into `folder` below the test's.
  void begin(const std::vector<std::string>& paths, const QString& folder = {}) {
    held_ = recorder();
    start(server.url("/held"), held_);
    std::vector<platform::WebDownloadRequest> requests;
    for (const std::string& path : paths)
      requests.push_back({*platform::URL::URLWithString(QString::fromStdString(server.url(path)))});
    service->expectDownloads(requests, directory.path() + folder);
  }
  void endHeld() {
    go_.release();
    EXPECT_TRUE(RunLoopUntil([this] { return held_.isOver(); })) << held_.calls;
  }
  /// Downloads it in its turn; what the file holds, or the error.
  std::string take(const std::string& path, DownloadRecorder result) const {
    start(server.url(path), result);
    EXPECT_TRUE(RunLoopUntil([&] { return result.isOver(); })) << result.calls;
    return result.error.empty() ? content(result) : result.error;
  }
  [[nodiscard]] std::ptrdiff_t requestCount(const std::string& path) const {
    return std::ranges::count_if(server.requests(),
                                 [&](const auto& request) { return request.starts_with("GET " + path); });
  }
  /// The hidden files in all folders of the test.
  [[nodiscard]] QFileInfoList hidden() const {
    QFileInfoList found;
    QDirIterator files(directory.path(), {QStringLiteral(".q*")}, QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) found << files.nextFileInfo();
    return found;
  }

  std::atomic<bool> hasLostPatience = false;
  RawServer server{[this](RawServer::Connection& connection, const std::string& request) {
    const auto isFor = [&](std::string_view path) { return request.substr(4).starts_with(path); };
    if (isFor("/held") && !go_.try_acquire_for(20s)) return After::close;
    const timeval patience{0, isFor("/huge") && !hasLostPatience ? 100'000 : 0};
    ::setsockopt(connection.descriptor(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    const bool isKnown = request.find("Authorization: ") != std::string::npos;
    const std::size_t length = isFor("/huge") ? kHuge : isFor("/large") ? kLarge : 0;
    const char* status = isFor("/busy") ? "503 Busy" : isFor("/locked") && !isKnown ? "401 No" : "200 OK";
    const bool isSent =
        connection.send(HttpReply(status,
                                  length > 0 ? std::string(length, 'x')
                                  : isKnown  ? "known"
                                             : "new",
                                  isFor("/bake") ? "Set-Cookie: c=1\r\n" : "WWW-Authenticate: Basic\r\n"));
    if (!isSent) hasLostPatience = true;
    return isSent ? After::keepOpen : After::close;
  }};

 private:
  DownloadRecorder held_;
  std::counting_semaphore<> go_{0};
};

TEST_F(LookAhead, ComesOverSixConnectionsAtMostAndIsAskedForOnce) {
  const std::vector<std::string> paths = {"/a", "/b", "/a", "/c", "/d", "/e", "/f", "/g"};
  begin(paths);
  EXPECT_TRUE(RunLoopUntil([&] { return server.requests().size() == 9; }));
  EXPECT_LE(server.connectionCount(), 6);
  endHeld();
  for (const std::string& path : paths) EXPECT_EQ(content(download(server.url(path))), "new");
  EXPECT_EQ(server.requests().size(), 9U);
}

TEST_F(LookAhead, EndsForAHostThatIsTooBusyAndIsLetGoWhenNothingIsUnderWay) {
  begin({"/large", "/busy", "/busy", "/busy", "/busy", "/busy", "/busy", "/busy"});
  EXPECT_TRUE(RunLoopUntil([&] { return !hidden().empty() && requestCount("/busy") > 0; }));
  endHeld();
  EXPECT_LE(requestCount("/busy"), 5);
  EXPECT_TRUE(RunLoopUntil([&] { return hidden().empty(); }));
  EXPECT_EQ(take("/busy", recorder()), "The server answered 503 Service Unavailable.");
}

TEST_F(LookAhead, IsAskedForAgainWhenSomethingHasChanged) {
  QDir root(directory.path());
  const QString in = root.filePath(QStringLiteral("in"));
  for (const std::string change : {"nothing", "folder", "path", "hidden-file", "limit", "login"}) {
    SCOPED_TRACE(change);
    const std::string path = (change == "login"   ? "/small-"
                              : change == "limit" ? "/huge-"
                                                  : "/large-") +
                             change;
    root.mkdir(in);
    begin({path}, QStringLiteral("/in"));
    ASSERT_TRUE(RunLoopUntil([&] {
      if (change == "limit") return hasLostPatience.load();
      return change == "login" ? requestCount(path) == 1 : !hidden().empty() && hidden().at(0).size() > 0;
    }));
    EXPECT_TRUE(change != "limit" ||
                (hidden().at(0).size() <= kMostAhead && hidden().at(0).size() > kMostAhead / 2));
    DownloadRecorder result = recorder(), locked = recorder();
    if (change != "folder") result.folder = in;
    if (change == "path") root.rename(in, QStringLiteral("moved"));
    if (change == "hidden-file") QFile::remove(hidden().at(0).filePath());
    root.mkdir(in);
    locked.answers = {Credential{QStringLiteral("u"), QStringLiteral("p")}};
    EXPECT_TRUE(change != "login" || take("/locked", locked) == "known");
    endHeld();
    const std::string taken = take(path, result);
    EXPECT_EQ(taken.size(), change == "login" ? 5 : change == "limit" ? kHuge : kLarge);
    EXPECT_EQ(requestCount(path), change == "nothing" ? 1 : 2);
    EXPECT_TRUE(hidden().empty());
  }
}

TEST_F(LookAhead, SendsAndSetsTheCookiesThatItWouldInItsTurn) {
  begin({"/new", "/old"});
  ASSERT_TRUE(RunLoopUntil([&] { return server.requests().size() == 3; }));
  endHeld();
  EXPECT_EQ(take("/old", recorder()), "new");
  EXPECT_EQ(requestCount("/old"), 1);
  EXPECT_EQ(take("/bake-1", recorder()), "new");
  EXPECT_EQ(take("/new", recorder()), "new");  // asked for without the cookie that has come since
  EXPECT_EQ(requestCount("/new"), 2);
  begin({"/bake-2"});
  ASSERT_TRUE(RunLoopUntil([&] { return requestCount("/bake-2") == 1; }));
  endHeld();
  EXPECT_EQ(take("/bake-2", recorder()), "new");
  EXPECT_EQ(requestCount("/bake-2"), 2);
  const auto hasCookie = [](const std::string& request) {
    return request.find("Cookie: c=1") != std::string::npos;
  };
  EXPECT_EQ(std::ranges::count_if(server.requests(), hasCookie), 4);  // /new, /held and twice /bake-2
}

TEST_F(LookAhead, GivesUpItsRoomOnTheDiskForTheFileWhoseTurnItIs) {
  const QByteArray path = directory.path().toUtf8();
  if (::mount("none", path.constData(), "tmpfs", 0, "size=1m") != 0) GTEST_SKIP() << "no permission to mount";
  begin({"/large-2"});
  EXPECT_TRUE(RunLoopUntil([&] { return !hidden().empty(); }));
  EXPECT_EQ(take("/large-1", recorder()).size(), kLarge);
  EXPECT_EQ(take("/large-2", recorder()), "There is not enough space in the destination folder.");
  EXPECT_TRUE(hidden().empty());
  ::umount2(path.constData(), MNT_DETACH);
}

TEST_F(DownloadTest, LookingAheadInAQueueMakesNoDifferenceWhateverServersAnswer) {
  // What the controller says, but for the progress, and leaves, with so many ahead.
  const auto work = [this](const QStringList& urls, int ahead) {
    CallLog log;
    FakeHost fakes(log);
    fakes.defaults.set("downloadsAhead", ahead);
    fakes.defaults.set("DestinationDirectory", QByteArray("@" + directory.path().toUtf8()));
    RecordedOutlets outlets(log);
    app::Host host = fakes.host();
    host.downloads = service.get();
    app::MyAppController controller(outlets.outlets(), host);
    for (const QString& url : urls) controller.queueURL(url);
    controller.tryAgain();
    EXPECT_TRUE(RunLoopUntil([&] { return outlets.line.text == u"Done!"; }));
    restart();
    std::string text = std::regex_replace(log.take(), std::regex("(line|bar) = [^;]*; "), "");
    for (const QString& name : names()) {
      QFile file(directory.filePath(name));
      EXPECT_TRUE(file.open(QIODevice::ReadOnly));
      text += '\n' + name.toStdString() + ' ' + std::to_string(qHash(file.readAll()));
      file.remove();
    }
    return text;
  };
  auto rows = ReadCases(QUILLFORTH_TEST_DATA "/answers.tsv", 5);
  const std::string part = "HTTP/1.1 200 OK\r\nContent-Length: 900000\r\n\r\n" + std::string(500'000, 'x');
  rows.insert(rows.end(), {{"/cut", part}, {"/large", part + std::string(400'000, 'y')}});
  const RawServer other(AnswerFrom(rows), RawServer::Greeting::client, "localhost");
  rows.push_back({"/elsewhere", HttpReply("302 Found", "", "Location: " + other.url("/large") + "\r\n")});
  const RawServer server(AnswerFrom(rows));
  const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
  for (unsigned run = 0; run < 5; ++run) {
    std::mt19937 random(seed * 5 + run);
    QStringList urls;
    for (int i = 0; i < 40; ++i) {
      const RawServer& any = random() % 3 == 0 ? other : server;
      urls << QString::fromStdString(any.url(rows[random() % rows.size()][0]));
    }
    urls << QString::fromStdString(server.url("/length"));
    EXPECT_EQ(work(urls, 8), work(urls, 0)) << seed << ' ' << run;
  }
}

}  // namespace
}  // namespace quillforth::tests
