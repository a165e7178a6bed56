// SPDX-License-Identifier: MIT
//
// What the controller asks of the application: alerts and panels that it waits for, sounds and folders.
//
// While one of them is open no command begins and no download calls back, but for the folder that the user
// wants to choose: that panel is answered before the controller asks, and holds up commands only. After the
// program has begun to end they are answered at once, with no. Main thread.
#pragma once

#include <QWidget>
#include <optional>

#include "app/Outlets.h"
#include "desktop/CommandGate.h"

namespace quillforth::desktop {

class DesktopApplication final : public app::Application {
 public:
  /// `window`: the one that is in front; both outlive this.
  DesktopApplication(QWidget& window, CommandGate& gate) : window_(window), gate_(gate) {}

  void activateIgnoringOtherApps() override;
  void beep() override;
  app::AlertResult runModalAlert(const app::Alert& alert) override;
  [[nodiscard]] std::optional<QString> runOpenPanel(const app::FolderPanel& panel) override;
  [[nodiscard]] app::ChosenFolder runChooseFolderDialog(const app::FolderPanel& panel) override;
  /// Lets the user pick, within a command; the answer is what `runChooseFolderDialog` gives next, once.
  void pickFolder(const app::FolderPanel& panel);
  void openFile(const QString& path) override;
  void setServicesProvider(app::ServicesProvider& provider) override { servicesProvider_ = &provider; }
  /// Null until the controller has started.
  [[nodiscard]] app::ServicesProvider* servicesProvider() const { return servicesProvider_; }

 private:
  [[nodiscard]] std::optional<QString> runPanel(const app::FolderPanel& panel);

  QWidget& window_;
  CommandGate& gate_;
  app::ChosenFolder picked_;
  app::ServicesProvider* servicesProvider_ = nullptr;
};

}  // namespace quillforth::desktop
