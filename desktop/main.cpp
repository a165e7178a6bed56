// SPDX-License-Identifier: MIT
//
// quillforth: chooses the host, and shows the controller in windows.

#include <curl/curl.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/Appearance.h"
#include "desktop/Arguments.h"
#include "desktop/BusService.h"
#include "desktop/Desktop.h"
#include "desktop/InstanceServer.h"
#include "desktop/RequestIntake.h"
#include "desktop/Translations.h"
#include "desktop/Waiting.h"
#include "host/Exhaustion.h"
#include "host/HeadlessHost.h"
#include "host/LinuxHost.h"
#include "linux/browser/LinuxSessionAccessibility.h"
#include "linux/browser/MessageBus.h"
#include "linux/browser/WindowWatcher.h"
#include "linux/session/Interruption.h"
#include "linux/session/SingleInstance.h"
#include "net/URL.h"
#include "net/UTF8.h"

namespace quillforth::desktop {

namespace {

constexpr int kExitUsage = 2;
constexpr std::chrono::seconds kHandOverPatience(20);
// Callers on the bus wait for 25 seconds.
constexpr std::chrono::seconds kStandInPatience(10);
// The answer to a request that was taken in the last moment is on its way.
constexpr std::chrono::seconds kAnswerTime(1);
constexpr std::chrono::milliseconds kHandOverPause(100);
constexpr std::chrono::seconds kBusPatience(5);  // a session that begins is slow
constexpr std::chrono::seconds kPeerPatience(2);
// How long a start by the bus waits without a window for something to do.
constexpr std::chrono::seconds kServicePatience(60);

void GoOnWithout(const char* bus, const char* addressVariable) {
  std::fprintf(stderr, "quillforth: the %s bus does not answer; going on without it\n", bus);
  qputenv(addressVariable, "disabled:");
}

// The toolkit would wait 25 seconds for the portal of the input method, which it asks where this is set.
void LeaveHungInputMethod(sd_bus& session, const QDeadlineTimer& deadline) {
  if (qEnvironmentVariable("QT_IM_MODULE") != u"ibus" || !qEnvironmentVariableIsSet("IBUS_USE_PORTAL"))
    return;
  const platform::BusObject portal{"org.freedesktop.portal.IBus", "/org/freedesktop/IBus"};
  const platform::BusMessage ping = platform::NewCall(session, portal, "org.freedesktop.DBus.Peer", "Ping");
  if (!platform::Send(session, ping, "", deadline).isSilent) return;
  std::fputs("quillforth: the input method does not answer; going on without it\n", stderr);
  qputenv("QT_IM_MODULE", "compose");
}

// The toolkit would wait without an end for a bus that lets nobody in.
void LeaveHungBuses() {
  const QDeadlineTimer deadline(kBusPatience);
  const platform::Bus session = platform::OpenSessionBus(deadline);
  if (session) LeaveHungInputMethod(*session, QDeadlineTimer(kPeerPatience));
  const bool isMore = session && platform::IsAccessibilityOn(*session, deadline);
  const platform::Bus accessibility = isMore ? platform::OpenAccessibilityBus(*session, deadline) : nullptr;
  if (accessibility || !deadline.hasExpired()) return;
  if (session) {
    GoOnWithout("accessibility", "AT_SPI_BUS_ADDRESS");
  } else {
    GoOnWithout("session", "DBUS_SESSION_BUS_ADDRESS");
  }
}

// Qt goes on where it has got no thread, and waits for it without an end.
void EndIfThreadIsMissing(const QString& message) {
  if (message.startsWith(u"QThread::start: Thread creation error")) host::EndWithoutThread();
}

void PrintMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  EndIfThreadIsMissing(message);
  const QString line = qFormatLogMessage(type, context, message);
  if (!line.isNull()) std::fprintf(stderr, "%s\n", line.toLocal8Bit().constData());
}

// Qt ends the program with a core dump where there is no display; this says it in a line.
void EndWithoutDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
  EndIfThreadIsMissing(message);
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

// What the command line asks for. Arguments that cannot be taken are reported and left out.
Request RequestOf(const Arguments& arguments) {
  const QString token = TakeActivationTokenOfStart();
  const auto handOver = NewHandOver(kHandOverPatience);
  if (arguments.isSelectionWanted) return {Request::Kind::downloadSelection, {}, token, handOver};
  const bool isActivation = arguments.filesAndURLs.empty() && !arguments.isService;
  Request request{isActivation ? Request::Kind::activate : Request::Kind::open, {}, token, handOver};
  for (const std::string& argument : arguments.filesAndURLs) {
    if (const std::optional<QString> uri = URIOfArgument(argument)) {
      request.texts.append(*uri);
    } else {
      const QString shown =
          platform::Printable(platform::WithoutCredentials(QString::fromStdString(argument)));
      std::fprintf(stderr, "quillforth: %s: %s\n", shown.toLocal8Bit().constData(), kUnusableURI);
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
  switch (instance.begin(LineOfRequest(request).toStdString(), kHandOverPatience + kAnswerTime)) {
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

enum class Role {
  window,   ///< is the instance, and shows its window
  service,  ///< is the instance, and waits for a request
  standIn,  ///< waits for a request, while another process is the instance
};

/// Has the name on the bus while an instance runs without it: hands over to that one what is asked for, and
/// becomes the instance when there is none any more.
class StandIn final : public RequestHandler {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// `busySince`: when a request can have come at the earliest. It may have waited behind others.
  StandIn(RequestHandler& own, platform::SingleInstance& instance, std::function<TimePoint()> busySince,
          std::function<void()> becomeInstance)
      : own_(own),
        instance_(instance),
        busySince_(std::move(busySince)),
        becomeInstance_(std::move(becomeInstance)) {}

  [[nodiscard]] Answer take(const Request& request) override {
    if (isInstance_) return own_.take(request);
    using std::chrono::milliseconds;
    const auto left =
        std::chrono::floor<milliseconds>(busySince_() + kStandInPatience - TimePoint::clock::now());
    Request handedOver = request;
    if (request.handOver.identity.isEmpty()) handedOver.handOver = NewHandOver(left);
    if (IsLate(handedOver.handOver)) return Answer::isLate;
    using Outcome = platform::SingleInstance::Outcome;
    switch (instance_.begin(LineOfRequest(handedOver).toStdString(),
                            std::max(left, milliseconds::zero()) + kAnswerTime)) {
      case Outcome::handedOver:
        return Answer::taken;
      case Outcome::noAnswer:
        return Answer::tooBusy;
      default:
        break;
    }
    isInstance_ = true;
    becomeInstance_();
    return own_.take(handedOver);
  }

 private:
  RequestHandler& own_;
  platform::SingleInstance& instance_;
  std::function<TimePoint()> busySince_;
  std::function<void()> becomeInstance_;
  bool isInstance_ = false;
};

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
  QGuiApplication::setDesktopFileName(QString::fromLatin1(kApplicationID));
}

// Whoever has the name on the bus is the instance, also when it has met nobody in this one's folder. What the
// process is to end with, unless it is this one.
std::optional<int> TakeName(BusService& bus, Request request, bool isService) {
  using Outcome = BusService::Outcome;
  request.handOver = NewHandOver(kHandOverPatience);
  const QDeadlineTimer end(kHandOverPatience + kAnswerTime);
  while (true) {
    const Outcome outcome = bus.begin();
    if (isService && outcome != Outcome::isNamed) return EXIT_FAILURE;
    if (outcome != Outcome::isNameTaken) return std::nullopt;
    if (bus.handOver(request, std::chrono::ceil<std::chrono::microseconds>(end.remainingTimeAsDuration())))
      return EXIT_SUCCESS;
    if (end.hasExpired()) return EndWithoutAnswer();
    std::this_thread::sleep_for(kHandOverPause);
  }
}

void Listen(InstanceServer& server, const platform::SingleInstance& instance) {
  const std::string& path = instance.socketPath();
  if (!path.empty() && !server.listen(QString::fromLocal8Bit(path))) {
    std::fprintf(stderr, "quillforth: %s: cannot listen for further starts\n", path.c_str());
  }
}

// The ways in for other programs are open before the first window asks anything of the user.
int RunInstance(Desktop& desktop, RequestIntake& intake, const Request& request,
                platform::SingleInstance& instance, Role role) {
  InstanceServer server(intake);
  std::optional<BusService> bus;
  StandIn standIn(
      intake, instance, [&] { return bus->busySince(); },
      [&] {
        Listen(server, instance);
        bus->stay();
      });
  if (role == Role::standIn) {
    bus.emplace(standIn, [&desktop] { desktop.quit(); });
  } else {
    Listen(server, instance);
    bus.emplace(intake);
  }
  const bool isService = role != Role::window;
  if (const std::optional<int> status = TakeName(*bus, request, isService)) return *status;
  desktop.setOpenDocumentsCommand([&intake](const QStringList& files) { intake.openDocuments(files); });
  Request own = request;
  own.handOver = {};  // however long the start has taken
  if (!isService && intake.take(own) != RequestHandler::Answer::taken) return EXIT_FAILURE;
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
  qInstallMessageHandler(&PrintMessage);
  if (!HasDisplay()) EndWithoutDisplay(QtFatalMsg, {}, {});
  if (arguments.printed) return RunSelectionHelper(*arguments.printed, argc, argv);
  const Request request = RequestOf(arguments);
  const bool isIncomplete = static_cast<std::size_t>(request.texts.size()) < arguments.filesAndURLs.size() &&
                            !arguments.isSelectionWanted;
  if (isIncomplete && request.texts.isEmpty()) return kExitUsage;
  const int success = isIncomplete ? kExitUsage : EXIT_SUCCESS;
  if (const QString fault = Fault(request); !fault.isNull()) {
    std::fprintf(stderr, "quillforth: %s\n", qPrintable(fault));
    return EXIT_FAILURE;
  }
  platform::SingleInstance instance;
  Role role = Role::window;
  if (arguments.isService) {
    const bool isAlone = instance.beginAlone() != platform::SingleInstance::Outcome::noAnswer;
    role = isAlone ? Role::service : Role::standIn;
  } else if (const std::optional<int> status = HandOver(request, instance, arguments.isWaiting)) {
    return *status == EXIT_SUCCESS ? success : *status;
  }
  LeaveHungBuses();
  const platform::Interruption interruption;
  qInstallMessageHandler(&EndWithoutDisplay);
  // The desktop's own place for menus is on the bus, where whoever has it can keep the toolkit waiting.
  QCoreApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
  QApplication application(argc, argv);
  qInstallMessageHandler(&PrintMessage);
  DescribeApplication();

  const Translations translations;
  const Appearance appearance;
  host::LinuxHost services;
  host::AssumedNetwork assumedNetwork;
  const auto makeHost = [&](app::Application& asked) {
    app::Host host =
        arguments.isNetworkAssumedUp ? services.host(asked, assumedNetwork) : services.host(asked);
    host.localizedText = [&translations](const QString& key) { return translations.localizedText(key); };
    return host;
  };
  Desktop desktop(
      {.makeHost = makeHost,
       .holdDownloads = [&](bool isHeld) { services.downloads().setDelivering(!isHeld); },
       .interrupt = &platform::Interruption::request,
       .holdEnds = [&](bool isHeld) { services.downloads().setHoldingEnds(isHeld); },
       .holdsAnEnd = [&] { return services.downloads().isHoldingAnEnd(); },
       .undeliveredBytes = [&] { return services.downloads().undeliveredLength(); },
       .settingsFile = services.userDefaults().fileName(),
       .transferLibrary =
           QStringLiteral("libcurl %1").arg(QLatin1StringView(curl_version_info(CURLVERSION_NOW)->version)),
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
  const int status = RunInstance(desktop, intake, request, instance, role);
  if (status != EXIT_SUCCESS) return status;
  return interruption.happened() ? interruption.exitStatus() : success;
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
  char** const arguments = argv + (argc > 0 ? 1 : 0);
  const auto command = ParseCommandLine(std::vector<std::string>(arguments, argv + argc));
  std::for_each(arguments, argv + argc, &quillforth::platform::OverwriteCredentials);
  return std::visit([&](const auto& chosen) { return Run(chosen, argc, argv); }, command);
}
