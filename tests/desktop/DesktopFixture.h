// SPDX-License-Identifier: MIT
//
// The whole program in windows over the real services, with a network that can be down, and a server.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <atomic>

#include "desktop/Desktop.h"
#include "host/LinuxHost.h"
#include "platform/NetworkDiagnostics.h"
#include "tests/support/RawServer.h"
#include "tests/support/RunLoop.h"

namespace quillforth::tests {

class SwitchedNetwork final : public platform::NetworkDiagnostics {
 public:
  bool isUp = true;
  platform::NetworkStatus copyNetworkStatusPassively() override {
    return isUp ? platform::NetworkStatus::connectionUp : platform::NetworkStatus::connectionDown;
  }
  void diagnoseProblemInteractively() override {}
};

class DesktopFixture : public ::testing::Test {
 protected:
  DesktopFixture() {
    QApplication::setQuitOnLastWindowClosed(false);
    QDir(folder()).removeRecursively();
    desktop_.start();
    EXPECT_TRUE(RunLoopUntil([this] { return !desktop_.gate().isBusy() && window().isActiveWindow(); }));
  }

  static QString folder() {
    return QDir::homePath() + QStringLiteral("/.local/share/Tessary Software/Quillforth");
  }
  static QString files() {
    return QDir(folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name).join(u' ');
  }
  desktop::StatusWindow& window() { return desktop_.statusWindow(); }
  template <typename Widget>
  Widget& find(const char* name) {
    return *window().findChild<Widget*>(QLatin1StringView(name));
  }
  void trigger(const char* action) { find<QAction>(action).trigger(); }
  [[nodiscard]] bool waitForText(const char* label, const char* start) {
    return RunLoopUntil([&] { return find<QLabel>(label).text().startsWith(QLatin1StringView(start)); });
  }
  /// Drags over the middle of the table and lets go; whether it was taken.
  bool drop(const QMimeData& data) {
    auto& table = find<QWidget>("fileTable");
    const QPointF middle = table.mapTo(&window(), table.rect().center());
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(middle.toPoint(), actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent release(middle, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&window(), &release);
    EXPECT_EQ(release.dropAction(), Qt::CopyAction);
    return release.isAccepted();
  }
  bool drop(const char* path) {
    QMimeData data;
    data.setText(QString::fromStdString(server_.url(path)));
    return drop(data);
  }
  /// Pages link to a.bin and b.bin. "cut" gets no answer until `mayAnswer_`. "slow" never ends; "gated" waits
  /// for `mayAnswer_`, after the first half if it is "half" too; "locked" wants user:word.
  RawServer::After serve(RawServer::Connection& connection, const std::string& request) {
    const auto has = [&request](const char* text) { return request.find(text) != std::string::npos; };
    if (has("/cut") && !mayAnswer_) return RawServer::After::close;
    const bool isSlow = has("/slow") && !has("HEAD ");
    if (isSlow || has("/half")) connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
    if (isSlow) static_cast<void>(connection.waitForEnd(20'000));
    while (has("gated") && !mayAnswer_) {
      if (connection.waitForEnd(5)) return RawServer::After::close;
    }
    const bool isLocked = has("locked") && !has("Basic dXNlcjp3b3Jk");
    const char* challenge = "WWW-Authenticate: Basic realm=\"<b>100%s</b>\"\r\n";
    const char* body = has(".html ") ? "<a href=\"a.bin\">a</a><a href=\"b.bin\">b</a>" : "data";
    connection.send(isLocked ? HttpReply("401 No", "", challenge) : HttpReply("200 OK", body));
    return RawServer::After::close;
  }

  std::atomic<bool> mayAnswer_ = false;
  RawServer server_{[this](auto& connection, const auto& request) { return serve(connection, request); }};
  platform::Interruption interruption_;
  host::LinuxHost services_;
  SwitchedNetwork network_;
  desktop::Desktop desktop_{
      {.makeHost = [this](app::Application& asked) { return services_.host(asked, network_); },
       .holdDownloads = [this](bool isHeld) { services_.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .holdEnds = [this](bool isHeld) { services_.downloads().setHoldingEnds(isHeld); },
       .holdsAnEnd = [this] { return services_.downloads().isHoldingAnEnd(); },
       .undeliveredBytes = [this] { return services_.downloads().undeliveredLength(); },
       .settingsFile = services_.userDefaults().fileName(),
       .isStored = [] { return true; }}};
};

}  // namespace quillforth::tests
