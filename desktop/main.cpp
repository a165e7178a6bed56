// SPDX-License-Identifier: MIT
//
// quillforth: chooses the host, and shows the controller in windows.

#include <QApplication>
#include <QSocketNotifier>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>

#include "desktop/Appearance.h"
#include "desktop/CommandLine.h"
#include "desktop/Desktop.h"
#include "desktop/LocalizedStrings.h"
#include "host/AssumedNetwork.h"
#include "host/LinuxHost.h"
#include "platform/linux/Interruption.h"

namespace quillforth::desktop {

namespace {

// Qt ends the program with a core dump where there is no display; this says it in a line.
void EndWithoutDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*message*/) {
  if (type != QtFatalMsg) return;
  std::fputs("quillforth: there is no display to open a window on; quillforth-cli works in a terminal\n",
             stderr);
  std::_Exit(EXIT_FAILURE);
}

bool HasDisplay() {
  constexpr const char* kVariables[] = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
  return std::any_of(std::begin(kVariables), std::end(kVariables),
                     [](const char* variable) { return !qEnvironmentVariableIsEmpty(variable); });
}

int Run(const Arguments& arguments, int argc, char** argv) {
  if (!HasDisplay()) EndWithoutDisplay(QtFatalMsg, {}, {});
  const platform::Interruption interruption;
  const QtMessageHandler usual = qInstallMessageHandler(&EndWithoutDisplay);
  QApplication application(argc, argv);
  qInstallMessageHandler(usual);
  QApplication::setApplicationDisplayName(QStringLiteral("Quillforth"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLFORTH_VERSION));
  QApplication::setQuitOnLastWindowClosed(false);

  const LocalizedStrings strings;
  const Appearance appearance;
  QApplication::setWindowIcon(ProgramIcon());
  QGuiApplication::setDesktopFileName(QStringLiteral("com.tessarysoftware.Quillforth"));
  host::LinuxHost services;
  host::AssumedNetwork assumedNetwork;
  const auto makeHost = [&](app::Application& asked) {
    app::Host host =
        arguments.isNetworkAssumedUp ? services.host(asked, assumedNetwork) : services.host(asked);
    host.localizedText = [&strings](const QString& key) { return strings.localizedText(key); };
    return host;
  };
  Desktop desktop({.makeHost = makeHost,
                   .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
                   .interrupt = &platform::Interruption::request,
                   .settingsFile = services.userDefaults().fileName(),
                   .isStored = [&] { return services.userDefaults().isStored(); }});
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&desktop, &notifier] {
    notifier.setEnabled(false);
    desktop.quit();
  });
  desktop.start();
  for (const std::string& url : arguments.urls) {
    if (!desktop.takeURL(QString::fromStdString(url))) {
      std::fprintf(stderr, "quillforth: %s: not a URL\n",
                   platform::WithoutCredentials(QString::fromStdString(url)).toLocal8Bit().constData());
    }
  }
  if (!desktop.isQuitting()) QApplication::exec();
  return interruption.exitStatus();
}

int Run(const Answer& answer, int /*argc*/, char** /*argv*/) {
  std::fputs(answer.text.c_str(), answer.exitStatus == 0 ? stdout : stderr);
  return answer.exitStatus;
}

}  // namespace

}  // namespace quillforth::desktop

int main(int argc, char** argv) {
  using namespace quillforth::desktop;
  std::signal(SIGPIPE, SIG_IGN);
  const auto command = ParseCommandLine(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  return std::visit([&](const auto& chosen) { return Run(chosen, argc, argv); }, command);
}
