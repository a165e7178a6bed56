// SPDX-License-Identifier: MIT
//
// Browsers that answer, lie or stay silent, on a session bus of the test's own that is the accessibility bus
// too.

#include "linux/browser/AccessibleBrowser.h"

#include <unistd.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include "linux/browser/LinuxScriptHost.h"
#include "linux/browser/LinuxSessionAccessibility.h"
#include "linux/browser/WindowWatcher.h"
#include "linux/session/SyslogSystemLog.h"
#include "tests/support/CaseTable.h"

namespace quillforth::tests {
namespace {

using platform::AccessibilityBus;
using Reference = std::pair<QString, QDBusObjectPath>;
using Relation = std::pair<unsigned, QList<Reference>>;

struct Node {
  std::string kind;
  QString address;
  QList<int> children;
};

/// Appends the node whose text begins at `start`, and those in it; where that text ends.
std::size_t Plant(const std::string& text, std::size_t start, std::vector<Node>& nodes) {
  const std::size_t self = nodes.size();
  std::size_t end = std::min(text.find_first_of(" ()", start), text.size());
  const std::size_t equals = std::min(text.find('=', start), end);
  nodes.push_back({text.substr(start, equals - start), {}, {}});
  nodes[self].address = QString::fromStdString(text.substr(equals, end - equals)).mid(1);
  if (end == text.size() || text[end] != '(') return end;
  while (text[end] != ')') {
    nodes[self].children << static_cast<int>(nodes.size());
    end = Plant(text, end + 1, nodes);
  }
  return end + 1;
}

/// The launcher, the registry, and one browser, whose object N has the path "/N"; "" for what has no answer.
class FakeAccessibility final : public QDBusVirtualObject {
 public:
  std::vector<Node> nodes;
  QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");  // of the bus

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    const bool isOfNode = call.path()[1].isDigit();
    const QVariant answer = isOfNode ? answerOf(nodes.at(call.path().mid(1).toUInt()), call, connection)
                                     : answerOf(call, connection);
    if (call.member() == u"Set") {
      connection.send(QDBusMessage::createSignal(call.path(),
                                                 QStringLiteral("org.freedesktop.DBus.Properties"),
                                                 QStringLiteral("PropertiesChanged")));
      return connection.send(call.createReply());
    }
    return !answer.isValid() || connection.send(call.createReply(answer));
  }

 private:
  static QVariant references(const QList<int>& children, const QDBusConnection& connection) {
    QList<Reference> all;
    for (int child : children)
      all.append({connection.baseService(), QDBusObjectPath(u'/' + QString::number(child))});
    return QVariant::fromValue(all);
  }
  QVariant answerOf(const QDBusMessage& call, const QDBusConnection& connection) {
    if (call.member() == u"GetAddress") return address;
    if (call.member() == u"GetChildren") return references({0}, connection);
    isEnabled_ |= call.member() == u"Set";
    return QVariant::fromValue(QDBusVariant(isEnabled_));
  }
  static QVariant answerOf(const Node& node, const QDBusMessage& call, const QDBusConnection& connection) {
    const auto is = [&node](char flag) { return node.kind.find(flag) != std::string::npos; };
    const auto bit = [&is](char flag, int state) { return unsigned{is(flag)} << state; };
    const std::size_t embeds = node.kind.find_first_of("123456789");
    if (is('!')) return {};
    if (is('?')) return 1.5;
    if (call.member() == u"GetRole") return is('F') ? 23U : is('D') ? 95U : 39U;
    if (call.member() == u"GetState")
      return QVariant::fromValue(QList<unsigned>{bit('a', 1) | bit('f', 12) | bit('i', 15) | bit('s', 25)});
    if (call.member() == u"GetRelationSet") {
      QList<Relation> relations{{7, {}}};
      if (embeds != std::string::npos)
        relations.append({13, references({node.kind[embeds] - '0'}, connection).value<QList<Reference>>()});
      return QVariant::fromValue(relations << Relation{1, {}});
    }
    if (call.member() == u"GetChildren")
      return references(is('^') ? QList<int>(999, 1) : node.children, connection);
    if (call.member() == u"Get")
      return QVariant::fromValue(QDBusVariant(QString::fromLatin1(is('u') ? "" : "Title")));
    const bool isAsked = call.arguments()[0].toString() == (is('C') ? u"URI" : u"DocURL");
    return isAsked ? node.address : QStringLiteral("");
  }

  bool isEnabled_ = false;
};

TEST(AccessibleBrowser, SaysWhatItShowsAndNeverKeepsAnybodyWaiting) {
  qDBusRegisterMetaType<Reference>();
  qDBusRegisterMetaType<QList<Reference>>();
  qDBusRegisterMetaType<Relation>();
  qDBusRegisterMetaType<QList<Relation>>();
  auto connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("fake"));
  FakeAccessibility fake;
  connection.registerVirtualObject(QStringLiteral("/"), &fake, QDBusConnection::SubPath);
  for (const char* name : {"org.a11y.Bus", "org.a11y.atspi.Registry"})
    EXPECT_TRUE(connection.registerService(QString::fromLatin1(name)));
  QThread thread;
  fake.moveToThread(&thread);
  thread.start();
  for (const auto& row : ReadCases(QUILLFORTH_TEST_DATA "/accessible_browsers.tsv", 2)) {
    fake.nodes.clear();
    Plant(row[0], 0, fake.nodes);
    const QDeadlineTimer deadline(AccessibilityBus::kMilliseconds + 1000);
    const auto bus = AccessibilityBus::open();
    ASSERT_TRUE(bus);
    const auto window = FirstBrowserWindow(*bus, BrowserWindows(*bus, {::getpid()}, {}, {}));
    const QString address = window ? window->documentURL : QString();
    EXPECT_EQ(address.isNull() ? "nil" : address.toStdString(), row[1]) << row[0];
    EXPECT_FALSE(deadline.hasExpired()) << row[0];
    EXPECT_TRUE(BrowserWindows(*bus, {::getppid()}, {}, {}).empty()) << "another program's: " << row[0];
  }
  RawServer silent([](auto&, auto&) { return RawServer::After::close; });  // waits for a request's end
  for (const std::string& address :
       {"tcp:host=127.0.0.1,port=" + std::to_string(silent.port()), std::string("x")}) {
    fake.address = QString::fromStdString(address);
    const QDeadlineTimer deadline(AccessibilityBus::kMilliseconds + 1000);
    EXPECT_FALSE(AccessibilityBus::open() || deadline.hasExpired()) << address;
  }
  fake.address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
  platform::WindowHistory history;
  const platform::WindowWatcher watcher(history);
  platform::LinuxSessionAccessibility accessibility;
  EXPECT_FALSE(accessibility.isOn()) << "asking browsers switched it on";
  EXPECT_TRUE(accessibility.switchOn() && accessibility.isOn());
  fake.nodes.clear();
  Plant("P(F2s(D=http://a.test/) Fs(Ds=http://b.test/))", 0, fake.nodes);
  const platform::BusObject older{connection.baseService().toStdString(), "/1"};
  for (QDeadlineTimer left(10'000); history.age(older) != 0 && !left.hasExpired(); QThread::msleep(10))
    connection.send(QDBusMessage::createSignal(
        QStringLiteral("/1"), QStringLiteral("org.a11y.atspi.Event.Window"), QStringLiteral("Activate")));
  const auto bus = AccessibilityBus::open();
  const auto window = FirstBrowserWindow(*bus, BrowserWindows(*bus, {::getpid()}, {}, history));
  EXPECT_TRUE(window && window->documentURL == u"http://a.test/") << "the one that was active last";
  for (int i = 0; i < 1000; ++i) history.remember({":9.9", "/" + std::to_string(i)});
  EXPECT_LT(history.age(older), platform::WindowHistory::kWindows) << "one program's windows hide all others";
  for (int i = 0; i < 1000; ++i) history.remember({":8." + std::to_string(i), "/"});
  EXPECT_EQ(history.age(older), platform::WindowHistory::kWindows);
  thread.quit();
  thread.wait();
}

// The distribution's browsers, each on a screen of its own. Slow, and so left out unless it is asked for.
void ExpectAddressOf(const QString& browser, QStringList arguments, const QString& script) {
  if (!qEnvironmentVariableIsSet("QUILLFORTH_TEST_BROWSERS"))
    GTEST_SKIP() << "QUILLFORTH_TEST_BROWSERS is not set";
  for (const QString& program :
       {browser, QStringLiteral("Xvfb"), QStringLiteral("/usr/libexec/at-spi-bus-launcher")})
    if (QStandardPaths::findExecutable(program).isEmpty())
      GTEST_SKIP() << program.toStdString() << " is missing";
  RawServer server([](RawServer::Connection& connection, const std::string& /*request*/) {
    return connection.send(HttpReply("200 OK", "<title>Page</title>", "Content-Type: text/html\r\n")),
           RawServer::After::close;
  });
  QProcess screen, program;
  screen.start(QStringLiteral("Xvfb"), {QStringLiteral("-displayfd"), QStringLiteral("1")});
  ASSERT_TRUE(screen.waitForReadyRead(10'000) && platform::LinuxSessionAccessibility().switchOn());
  qputenv("DISPLAY", ":" + screen.readLine().trimmed());
  program.start(browser, arguments << QString::fromStdString(server.url("/a?b=1")));
  platform::LinuxRunningProcesses processes;
  platform::SyslogSystemLog log;
  const platform::WindowHistory history;
  platform::LinuxScriptHost host(processes, log, history);
  std::optional<platform::AEDescriptor> said;
  for (const QDeadlineTimer deadline(60'000); !said && !deadline.hasExpired(); QThread::msleep(200))
    said = host.compileAndRun(script);
  ASSERT_TRUE(said);
  EXPECT_EQ(UnicodeTextValue(*said)->toStdString(), server.url("/a?b=1"));
  program.terminate();
  EXPECT_TRUE(program.waitForFinished(20'000));
  screen.terminate();
  EXPECT_TRUE(screen.waitForFinished());
}

TEST(RealBrowser, FirefoxSaysItsAddress) {
  ExpectAddressOf(
      QStringLiteral("firefox-esr"), {QStringLiteral("--no-remote")},
      QStringLiteral(
          "tell application \"Firefox\" to activate\rtell application \"System Events\"\r"
          "keystroke \"l\" using command down\rkeystroke \"c\" using command down\rend\rthe clipboard"));
}

TEST(RealBrowser, ChromiumSaysItsAddress) {
  ExpectAddressOf(
      QStringLiteral("chromium"),
      QStringLiteral("--no-sandbox --no-first-run --disable-gpu --force-renderer-accessibility").split(u' '),
      QStringLiteral("tell application \"Google Chrome\" to get URL of active tab of first window"));
}

}  // namespace
}  // namespace quillforth::tests
