// SPDX-License-Identifier: MIT
//
// quillforth: chooses the host, and shows the controller in windows.

#include <QApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <thread>

#include "desktop/Activation.h"
#include "desktop/Appearance.h"
#include "desktop/BrowserScripts.h"
#include "desktop/BusService.h"
#include "desktop/CommandLine.h"
#include "desktop/Desktop.h"
#include "desktop/InstanceServer.h"
#include "desktop/LocalizedStrings.h"
#include "desktop/RequestIntake.h"
#include "host/AssumedNetwork.h"
#include "host/Exhaustion.h"
#include "host/LinuxHost.h"
#include "platform/linux/Interruption.h"
#include "platform/linux/LinuxSessionAccessibility.h"
#include "platform/linux/MessageBus.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/WindowWatcher.h"

namespace quillforth::desktop {

namespace {

constexpr std::chrono::seconds kHandOverPatience(20);
constexpr std::chrono::milliseconds kHandOverPause(100);
constexpr std::chrono::seconds kBusPatience(5);  // a session that begins is slow
// How long a start by the bus waits without a window for something to do.
constexpr std::chrono::seconds kServicePatience(60);

void GoOnWithout(const char* bus, const char* addressVariable) {
  std::fprintf(stderr, "quillforth: the %s bus does not answer; going on without it\n", bus);
  qputenv(addressVariable, "disabled:");
}

// The toolkit would wait without an end for a bus that lets nobody in.
void LeaveHungBuses() {
  const QDeadlineTimer deadline(kBusPatience);
  const platform::Bus session = platform::OpenSessionBus(deadline);
  const bool isMore = session && platform::IsAccessibilityOn(*session, deadline);
  const platform::Bus accessibility = isMore ? platform::OpenAccessibilityBus(*session, deadline) : nullptr;
  if (accessibility || !deadline.hasExpired()) return;
  if (session) {
    GoOnWithout("accessibility", "AT_SPI_BUS_ADDRESS");
  } else {
    GoOnWithout("session", "DBUS_SESSION_BUS_ADDRESS");
  }
}

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

// What the command line asks for. Arguments that are neither files nor URLs are reported and left out.
Request RequestOf(const Arguments& arguments) {
  const QString token = TakeActivationTokenOfStart();
  if (arguments.isSelectionWanted) return {Request::Kind::downloadSelection, {}, token};
  const bool isActivation = arguments.filesAndURLs.empty() && !arguments.isService;
  Request request{isActivation ? Request::Kind::activate : Request::Kind::open, {}, token};
  for (const std::string& argument : arguments.filesAndURLs) {
    if (const std::optional<QString> uri = URIOfArgument(argument)) {
      request.texts.append(*uri);
    } else {
      std::fprintf(stderr, "quillforth: %s: neither a file nor a URL\n",
                   platform::WithoutCredentials(QString::fromStdString(argument)).toLocal8Bit().constData());
    }
  }
  return request;
}

int EndWithoutAnswer() {
  std::fputs("quillforth: the Quillforth that runs does not answer, or has too much to do\n", stderr);
  return EXIT_FAILURE;
}

// What the process is to end with, when another instance has the request or shall have it.
std::optional<int> HandOver(const Request& request, platform::SingleInstance& instance, bool isWaiting) {
  using Outcome = platform::SingleInstance::Outcome;
  switch (instance.begin(LineOfRequest(request).toStdString(), kHandOverPatience)) {
    case Outcome::isFirst:
      return std::nullopt;
    case Outcome::handedOver:
      if (isWaiting) instance.waitForEnd();
      return EXIT_SUCCESS;
    case Outcome::noFolder:
      std::fputs(
          "quillforth: no safe folder for the lock; a second start finds this one by the session bus only\n",
          stderr);
      return std::nullopt;
    case Outcome::noAnswer:
      break;
  }
  return EndWithoutAnswer();
}

int RunSelectionHelper(SelectionSource source, int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  PrintSelection(source);
  return EXIT_SUCCESS;
}

void DescribeApplication() {
  QApplication::setApplicationDisplayName(QStringLiteral("Quillforth"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLFORTH_VERSION));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setWindowIcon(ProgramIcon());
  QGuiApplication::setDesktopFileName(QStringLiteral("com.tessarysoftware.Quillforth"));
}

// Whoever has the name on the bus is the instance, also when it has met nobody in this one's folder. What the
// process is to end with, unless it is this one.
std::optional<int> TakeName(BusService& bus, const Request& request, bool isService) {
  using Outcome = BusService::Outcome;
  const QDeadlineTimer end(kHandOverPatience);
  while (true) {
    const Outcome outcome = bus.begin();
    if (isService && outcome != Outcome::isNamed) return EXIT_FAILURE;
    if (outcome != Outcome::isNameTaken) return std::nullopt;
    if (bus.handOver(request)) return EXIT_SUCCESS;
    if (end.hasExpired()) return EndWithoutAnswer();
    std::this_thread::sleep_for(kHandOverPause);
  }
}

// The ways in for other programs are open before the first window asks anything of the user.
int RunInstance(Desktop& desktop, RequestIntake& intake, const Request& request,
                const platform::SingleInstance& instance, bool isService) {
  InstanceServer server(intake);
  const std::string& path = instance.socketPath();
  if (!path.empty() && !server.listen(QString::fromLocal8Bit(path))) {
    std::fprintf(stderr, "quillforth: %s: cannot listen for further starts\n", path.c_str());
  }
  BusService bus(intake);
  if (const std::optional<int> status = TakeName(bus, request, isService)) return *status;
  desktop.setOpenDocumentsCommand([&intake](const QStringList& paths) { intake.openDocuments(paths); });
  if (!isService && intake.take(request) != RequestHandler::Answer::taken) return EXIT_FAILURE;
  QTimer idle;
  idle.setSingleShot(true);
  idle.callOnTimeout([&] {
    if (!intake.hasBegun()) desktop.quit();
  });
  idle.start(kServicePatience);
  if (!desktop.isQuitting()) QApplication::exec();
  return EXIT_SUCCESS;
}

int Run(const Arguments& arguments, int argc, char** argv) {
  if (!HasDisplay()) EndWithoutDisplay(QtFatalMsg, {}, {});
  if (arguments.printed) return RunSelectionHelper(*arguments.printed, argc, argv);
  const Request request = RequestOf(arguments);
  if (const QString fault = Fault(request); !fault.isNull()) {
    std::fprintf(stderr, "quillforth: %s\n", qPrintable(fault));
    return EXIT_FAILURE;
  }
  platform::SingleInstance instance;
  if (const std::optional<int> status = HandOver(request, instance, arguments.isWaiting)) {
    return *status;
  }
  LeaveHungBuses();
  const platform::Interruption interruption;
  const QtMessageHandler usual = qInstallMessageHandler(&EndWithoutDisplay);
  QApplication application(argc, argv);
  qInstallMessageHandler(usual);
  DescribeApplication();

  const LocalizedStrings strings;
  const Appearance appearance;
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
                   .isStored = [&] { return services.userDefaults().isStored(); },
                   .accessibility = std::make_shared<platform::LinuxSessionAccessibility>()});
  DesktopScriptFrontEnd scriptFrontEnd(services.userDefaults(), [&desktop] { desktop.activate(); });
  services.scripts().setFrontEnd(&scriptFrontEnd);
  const platform::WindowWatcher watcher(services.windows());
  QSocketNotifier notifier(interruption.descriptor(), QSocketNotifier::Read);
  QObject::connect(&notifier, &QSocketNotifier::activated, [&desktop, &notifier] {
    notifier.setEnabled(false);
    desktop.quit();
  });
  RequestIntake intake(desktop, services.events(), host::LinuxHost::kSignature);
  const int status = RunInstance(desktop, intake, request, instance, arguments.isService);
  return status == EXIT_SUCCESS ? interruption.exitStatus() : status;
}

int Run(const Answer& answer, int /*argc*/, char** /*argv*/) {
  std::fputs(answer.text.c_str(), answer.exitStatus == 0 ? stdout : stderr);
  return answer.exitStatus;
}

}  // namespace

}  // namespace quillforth::desktop

int main(int argc, char** argv) {
  using namespace quillforth::desktop;
  quillforth::host::EndInALineWhenExhausted();
  std::signal(SIGPIPE, SIG_IGN);
  const auto command = ParseCommandLine(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
  return std::visit([&](const auto& chosen) { return Run(chosen, argc, argv); }, command);
}
