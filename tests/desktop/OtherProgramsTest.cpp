// SPDX-License-Identifier: MIT
//
// From other programs' calls, and from further starts, to the files on the disk: the real program, a private
// bus that starts it, gdbus(1) as the caller and xclip(1) as the owner of the selection.

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <atomic>
#include <fstream>
#include <memory>

#include "tests/support/RawServer.h"
#include "tests/support/RunLoop.h"

namespace quillforth::tests {
namespace {

constexpr int kStarts = 20;

class OtherProgramsTest : public ::testing::Test {
 protected:
  OtherProgramsTest() {
    QDir(root_.path()).mkpath("data/dbus-1/services");
    std::ofstream(root_.filePath("data/dbus-1/services/quillforth.service").toStdString())
        << "[D-BUS Service]\nName=com.tessarysoftware.Quillforth\nExec=" QUILLFORTH " --service --local\n";
    std::ofstream(root_.filePath("link.url").toStdString())
        << "[InternetShortcut]\nURL=" << server_.url("/linked.zip") << "\n";
    environment_.insert("HOME", root_.path());
    environment_.insert("XDG_RUNTIME_DIR", root_.path());
    environment_.insert("XDG_DATA_HOME", root_.filePath("data"));
    environment_.insert("QT_QPA_PLATFORM", "offscreen");
    environment_.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
  }
  ~OtherProgramsTest() override {
    for (const auto& process : started_) {
      if (process->state() == QProcess::NotRunning) continue;
      ::kill(-pid_t(process->processId()), SIGTERM);  // with what the bus has started
      process->waitForFinished(20'000);
    }
  }

  QProcess& start(const QString& program, const QStringList& arguments) {
    QProcess& process = *started_.emplace_back(std::make_unique<QProcess>());
    process.setProcessEnvironment(environment_);
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start(program, arguments);
    return process;
  }
  QProcess& startWith(const QString& path) {
    return start(QUILLFORTH, {"--local", QString::fromStdString(server_.url(path.toStdString()))});
  }
  /// Starts a daemon, and sets a variable to the first line that it prints.
  void serve(const QString& program, const QStringList& arguments, const char* variable, const char* prefix) {
    QProcess& daemon = start(program, arguments);
    ASSERT_TRUE(RunLoopUntil([&] { return daemon.canReadLine(); }));
    environment_.insert(variable, prefix + QString::fromUtf8(daemon.readLine().trimmed()));
  }
  void startBus() {
    const QString address = "--address=unix:path=" + root_.filePath("bus");
    serve("dbus-daemon", {"--session", "--nofork", "--print-address=1", address}, "DBUS_SESSION_BUS_ADDRESS",
          "");
  }
  /// The answer, errors too. "LINK" in arguments stands for a link file, "WEB" for the server.
  QString call(const QString& method, QStringList arguments) {
    arguments.replaceInStrings("WEB", QString::fromStdString(server_.url("")));
    arguments.replaceInStrings("LINK", "file://" + root_.filePath("link.url"));
    const QString path = method.startsWith("org.kde") ? "/KRunner" : "/com/tessarysoftware/Quillforth";
    QProcess& client = start("gdbus", QStringList{"call", "--session", "-d", "com.tessarysoftware.Quillforth",
                                                  "-o", path, "-m", method, "--"} +
                                          arguments);
    EXPECT_TRUE(client.waitForFinished(20'000));
    const QString answer = QString::fromUtf8(client.readAllStandardOutput() + client.readAllStandardError());
    started_.pop_back();
    return answer;
  }
  [[nodiscard]] bool arrives(const QString& name) const {
    const QString path = root_.filePath("data/Tessary Software/Quillforth/" + name);
    return RunLoopUntil([&] { return QFile::exists(path); });
  }
  [[nodiscard]] bool remain(int count) const {
    return RunLoopUntil([&] {
      return count == std::count_if(started_.begin(), started_.end(), [](const auto& process) {
               return process->program() == QUILLFORTH && process->state() != QProcess::NotRunning;
             });
    });
  }

  QTemporaryDir root_;
  std::atomic<bool> isPageHeld_ = true;
  RawServer server_{[this](RawServer::Connection& connection, const std::string& request) {
    const bool isPage = request.find("/page.html ") != std::string::npos;
    for (int i = 0; isPage && isPageHeld_ && i < 2000; ++i) static_cast<void>(connection.waitForEnd(10));
    connection.send(isPage ? HtmlReply("<a href=\"a.bin\">") : HttpReply("200 OK", "data"));
    return RawServer::After::close;
  }};
  QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
  std::vector<std::unique_ptr<QProcess>> started_;
};

TEST_F(OtherProgramsTest, EachWayInOnTheBusLeadsToTheFile) {
  serve("Xvfb", {"-displayfd", "1", "-nolisten", "tcp"}, "DISPLAY", ":");
  environment_.insert("QT_QPA_PLATFORM", "xcb");
  startBus();
  QProcess& selection = start("xclip", {"-quiet", "-selection", "primary"});
  selection.write(server_.url("/selected.zip\n").c_str());
  selection.closeWriteChannel();
  const QString application = "org.freedesktop.Application.";
  const QString own = "com.tessarysoftware.Quillforth.";
  const QString runner = "org.kde.krunner1.";
  const struct {
    QString method;
    QStringList arguments;
    QString answer;  // what it holds
    QString file;    // that arrives
  } rows[] = {
      {runner + "Match", {"WEB/m.zip"}, "([('http://127.0.0.1:", ""},
      {runner + "Match", {"file:///etc/passwd"}, "(@a(sssuda{sv}) [],)", ""},
      {application + "Activate", {"{'activation-token': <'t_TIME7'>}"}, "()", ""},
      {application + "Open", {"['LINK', 'WEB/b.zip']", "{}"}, "()", "linked.zip"},
      {application + "Open", {"[]", "{'desktop-startup-id': <1>}"}, "()", "b.zip"},
      {own + "DownloadText", {" WEB/text.zip\n"}, "()", "text.zip"},
      {application + "ActivateAction", {"download-selection", "[]", "{}"}, "()", "selected.zip"},
      {runner + "Run", {"WEB/m.zip", ""}, "()", "m.zip"},
      {runner + "Run", {"file:///etc/passwd", ""}, "InvalidArgs", ""},
      {application + "Open", {"['WEB/c.zip', 'two words', 'mailto:a@b']", "{}"}, "()", "c.zip"},
      {application + "Open",
       {"['a'" + QString(",'a'").repeated(1000) + ",'WEB/d.zip']", "{}"},
       "()",
       "d.zip"},
      {application + "Open", {"['file://elsewhere/a', 'mailto:a@b']", "{}"}, "InvalidArgs", ""},
      {application + "Open",
       {"['WEB/e.zip']",
        "{'x-quillforth-identity': <'i'>, 'x-quillforth-deadline': "
        "<int64 1>}"},
       "Timeout",
       ""},
      {application + "ActivateAction", {"nonsense", "[]", "{}"}, "InvalidArgs", ""},
      {own + "GetURL", {QString(65'537, 'a')}, "InvalidArgs", ""},
  };
  for (const auto& row : rows) {
    const QString answer = call(row.method, row.arguments);
    EXPECT_TRUE(answer.contains(row.answer)) << qPrintable(row.method + ": " + answer);
    EXPECT_TRUE(row.file.isEmpty() || arrives(row.file)) << qPrintable(row.file);
  }
  ::kill(pid_t(selection.processId()), SIGSTOP);  // whoever asks for the selection hangs
  call(application + "ActivateAction", {"download-selection", "[]", "{}"});
  call(own + "DownloadText", {"WEB/meanwhile.zip"});
  EXPECT_TRUE(arrives("meanwhile.zip"));
  ::kill(pid_t(selection.processId()), SIGCONT);
  // Only the host travels on, which is nowhere to download from; but the folder is looked for.
  QDir(root_.filePath("data/Tessary Software")).removeRecursively();
  EXPECT_EQ(call(own + "GetURL", {"http://somehost/file.zip"}), "()\n");
  EXPECT_TRUE(arrives(""));
}

TEST_F(OtherProgramsTest, TheInstalledServiceStartsForKRunner) {
  QProcess& install = start(CMAKE, {"--install", BUILD, "--prefix", root_.filePath("installed here")});
  ASSERT_TRUE(install.waitForFinished() && install.exitCode() == 0);
  environment_.insert("XDG_DATA_HOME", root_.filePath("elsewhere"));
  environment_.insert("XDG_DATA_DIRS", root_.filePath("installed here/share"));
  startBus();
  EXPECT_EQ(call("org.kde.krunner1.Actions", {}), "(@a(sss) [],)\n");
  EXPECT_TRUE(
      call("org.kde.krunner1.Match", {"http://a.test/m.zip"}).startsWith("([('http://a.test/m.zip', "));
}

TEST_F(OtherProgramsTest, WorkWaitsForThePageThatIsBeingLoaded) {
  startBus();
  for (const char* uri : {"['WEB/page.html']", "['WEB/1.bin']", "['WEB/2.bin']"}) {
    EXPECT_EQ(call("org.freedesktop.Application.Open", {uri, "{}"}), "()\n");
  }
  isPageHeld_ = false;
  ASSERT_TRUE(arrives("2.bin"));
  const std::vector<std::string> requests = server_.requests();
  ASSERT_EQ(requests.size(), 4u);
  EXPECT_TRUE(requests[1].starts_with("GET /a.bin") && requests[2].starts_with("GET /1.bin"));
}

TEST_F(OtherProgramsTest, TheBusMayComeLateAndGoAndComeBack) {
  environment_.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + root_.filePath("bus"));
  startWith("/first.zip");
  EXPECT_TRUE(arrives("first.zip"));
  for (const QString& name : {QString("late.zip"), QString("again.zip")}) {
    startBus();  // a call starts the service, which stands in until the instance has the name
    EXPECT_EQ(call("com.tessarysoftware.Quillforth.DownloadText", {"WEB/" + name}), "()\n");
    EXPECT_TRUE(arrives(name));
    const QString owner = "org.freedesktop.DBus.GetConnectionUnixProcessID";
    const QString instance = QString::number(started_.front()->processId());
    EXPECT_TRUE(RunLoopUntil([&] {
      QProcess& client = start("gdbus", {"call", "--session", "-d", "org.freedesktop.DBus", "-o", "/", "-m",
                                         owner, "com.tessarysoftware.Quillforth"});
      client.waitForFinished();
      const bool isInstance = client.readAllStandardOutput().contains(instance.toUtf8());
      started_.pop_back();
      return isInstance;
    })) << qPrintable(name);
    ::kill(-pid_t(started_.back()->processId()), SIGTERM);
    EXPECT_TRUE(started_.back()->waitForFinished(20'000));
    started_.pop_back();
    QFile::remove(root_.filePath("bus"));
  }
}

TEST_F(OtherProgramsTest, AStartWhoseUserWasToldOfNoAnswerIsNotObeyedLater) {
  QProcess& instance = startWith("/first.zip");
  EXPECT_TRUE(arrives("first.zip"));
  ::kill(pid_t(instance.processId()), SIGSTOP);
  QProcess& late = startWith("/late.zip");
  EXPECT_TRUE(late.waitForFinished(40'000));
  EXPECT_EQ(late.exitCode(), 1);
  ::kill(pid_t(instance.processId()), SIGCONT);
  QProcess& next = start(QUILLFORTH, {"--local", "mailto:a@b", root_.filePath("missing.url"),
                                      QString::fromStdString(server_.url("/next.zip"))});
  EXPECT_TRUE(arrives("next.zip"));
  EXPECT_TRUE(next.state() == QProcess::NotRunning || next.waitForFinished(20'000));
  EXPECT_EQ(next.exitCode(), 2);
  EXPECT_EQ(server_.requests().size(), 2U);
}

TEST_F(OtherProgramsTest, ManyStartsLeaveOneInstanceAndLoseNothing) {
  for (const QString& bus : {QString(), QString("bus"), QString("apart")}) {
    if (bus == "bus") startBus();
    const int starts = bus == "apart" ? 5 : kStarts;  // those go a longer way
    for (int number = 0; number < starts; ++number) {
      const QString name = bus + QString::number(number);
      if (bus == "apart") environment_.insert("XDG_RUNTIME_DIR", root_.filePath(name));
      QDir(root_.path()).mkpath(name);
      startWith("/" + name);
    }
    EXPECT_TRUE(remain(1));
    for (int number = 0; number < starts; ++number) EXPECT_TRUE(arrives(bus + QString::number(number)));
    for (const auto& process : started_) EXPECT_EQ(process->exitCode(), 0);
    started_.resize(bus.isEmpty() ? 0 : 1);  // kills: a stale socket and lock file are left
    QProcess& next = startWith("/killed" + bus);
    EXPECT_TRUE(arrives("killed" + bus));
    next.terminate();
    QProcess& last = startWith("/ended" + bus);
    EXPECT_TRUE(arrives("ended" + bus));
    EXPECT_TRUE(remain(1));
    start(QUILLFORTH, {"--wait", QString::fromStdString(server_.url("/waited" + bus.toStdString()))});
    EXPECT_TRUE(arrives("waited" + bus));
    EXPECT_TRUE(remain(2));  // until the other one ends
    last.terminate();
    EXPECT_TRUE(remain(0));
    started_.resize(bus.isEmpty() ? 0 : 1);
  }
}

}  // namespace
}  // namespace quillforth::tests
