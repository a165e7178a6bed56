// SPDX-License-Identifier: MIT
//
// The whole program in windows over the real services, with the network taken as up.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <QStandardPaths>

#include "desktop/Desktop.h"
#include "host/LinuxHost.h"
#include "tests/support/RawServer.h"
#include "tests/support/RunLoop.h"

namespace quillforth::tests {

class NetworkThatIsUp final : public platform::NetworkDiagnostics {
 public:
  platform::NetworkStatus copyNetworkStatusPassively() override {
    return platform::NetworkStatus::connectionUp;
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
  static QStringList files() { return QDir(folder()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
  desktop::StatusWindow& window() { return desktop_.statusWindow(); }
  template <typename Widget>
  Widget& find(const char* name) {
    return *window().findChild<Widget*>(QLatin1StringView(name));
  }
  QString text(const char* label) { return find<QLabel>(label).text(); }
  void trigger(const char* action) { find<QAction>(action).trigger(); }
  [[nodiscard]] bool waitForText(const char* label, const QString& wanted) {
    return RunLoopUntil([&] { return text(label) == wanted; });
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
  bool drop(const std::string& string) {
    QMimeData data;
    data.setText(QString::fromStdString(string));
    return drop(data);
  }

  platform::Interruption interruption_;
  host::LinuxHost services_;
  NetworkThatIsUp network_;
  desktop::Desktop desktop_{
      {.makeHost = [this](app::Application& asked) { return services_.host(asked, network_); },
       .holdDownloads = [this](bool isHeld) { services_.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .settingsFile = services_.userDefaults().fileName(),
       .isStored = [] { return true; }}};
};

}  // namespace quillforth::tests
