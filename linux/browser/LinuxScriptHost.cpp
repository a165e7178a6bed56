// SPDX-License-Identifier: MIT

#include "linux/browser/LinuxScriptHost.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QThread>
#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <string>
#include <string_view>
#include <utility>

#include "linux/browser/AccessibleBrowser.h"
#include "linux/files/FileDescriptor.h"
#include "scripting/ScriptRunner.h"

namespace quillforth::platform {

namespace {

using common::FourCC;
using common::FourCharCode;

struct Program {
  std::string_view name;
  FourCharCode creator;
};

constexpr std::array kPrograms{
    Program{"firefox", FourCC("MOZB")},       Program{"firefox-esr", FourCC("MOZB")},
    Program{"firefox-bin", FourCC("MOZB")},   Program{"chrome", FourCC("rimZ")},
    Program{"chromium", FourCC("rimZ")},      Program{"chromium-browser", FourCC("rimZ")},
    Program{"msedge", FourCC("rimZ")},        Program{"brave", FourCC("rimZ")},
    Program{"brave-browser", FourCC("rimZ")}, Program{"vivaldi", FourCC("rimZ")},
    Program{"vivaldi-bin", FourCC("rimZ")},   Program{"opera", FourCC("OPRA")},
    Program{"epiphany", FourCC("sfri")},      Program{"epiphany-browser", FourCC("sfri")},
};

// 0 for no browser. The link ends in " (deleted)" once the program has been replaced by an update.
FourCharCode CreatorOfExecutable(std::string_view path) {
  constexpr std::string_view kDeleted = " (deleted)";
  if (path.ends_with(kDeleted)) path.remove_suffix(kDeleted.size());
  path.remove_prefix(path.rfind('/') + 1);
  const auto* found = std::find_if(kPrograms.begin(), kPrograms.end(),
                                   [path](const Program& program) { return program.name == path; });
  return found == kPrograms.end() ? 0 : found->creator;
}

// 0 for a process of someone else, one that has ended, and one that is no browser.
FourCharCode CreatorOfProcess(int processes, const std::string& processID) {
  struct stat status {};
  if (::fstatat(processes, processID.c_str(), &status, 0) != 0 || status.st_uid != ::geteuid()) return 0;
  std::array<char, PATH_MAX> path{};
  const ssize_t length = ::readlinkat(processes, (processID + "/exe").c_str(), path.data(), path.size());
  return length <= 0 ? 0 : CreatorOfExecutable({path.data(), static_cast<std::size_t>(length)});
}

}  // namespace

std::vector<RunningProcess> LinuxRunningProcesses::runningProcesses() {
  std::vector<RunningProcess> running;
  const Directory processes = OpenDirectory(AT_FDCWD, "/proc");
  if (!processes) return running;
  while (const dirent* entry = ::readdir(processes.get())) {
    const std::string name = entry->d_name;
    std::int64_t processID = 0;
    const auto parsed = std::from_chars(name.data(), name.data() + name.size(), processID);
    if (parsed.ec != std::errc() || parsed.ptr != name.data() + name.size()) continue;
    const FourCharCode creator = CreatorOfProcess(::dirfd(processes.get()), name);
    if (creator != 0) running.push_back({kApplicationFileType, creator, processID});
  }
  return running;
}

namespace {

using common::FourCC;
using common::FourCharCode;

struct ScriptedBrowser {
  QLatin1String name;  ///< as scripts call it
  FourCharCode creator;
};

constexpr FourCharCode kFirefox = FourCC("MOZB");
constexpr int kMillisecondsToComeForward = 1000;
constexpr std::array kBrowsers{
    ScriptedBrowser{QLatin1String("Safari"), FourCC("sfri")},
    ScriptedBrowser{QLatin1String("Firefox"), kFirefox},
    ScriptedBrowser{QLatin1String("OmniWeb"), FourCC("OWEB")},
    ScriptedBrowser{QLatin1String("Internet Explorer"), FourCC("MSIE")},
    ScriptedBrowser{QLatin1String("Camino"), FourCC("MOZC")},
    ScriptedBrowser{QLatin1String("Opera"), FourCC("OPRA")},
    ScriptedBrowser{QLatin1String("Flock"), FourCC("FLKb")},
    ScriptedBrowser{QLatin1String("Google Chrome"), FourCC("rimZ")},
};

// 0 for an application that is no browser.
FourCharCode CreatorOf(const QString& application) {
  const auto* found =
      std::find_if(kBrowsers.begin(), kBrowsers.end(),
                   [&application](const ScriptedBrowser& browser) { return browser.name == application; });
  return found == kBrowsers.end() ? 0 : found->creator;
}

// The names that the programs of a creator have as accessible objects.
QStringList AccessibleNames(FourCharCode creator) {
  switch (creator) {
    case FourCC("sfri"):
      return {QStringLiteral("epiphany"), QStringLiteral("Web")};
    case kFirefox:
      return {QStringLiteral("Firefox"), QStringLiteral("firefox")};
    case FourCC("OPRA"):
      return {QStringLiteral("Opera")};
    case FourCC("rimZ"):
      return {QStringLiteral("Google Chrome"), QStringLiteral("Chromium"),       QStringLiteral("Brave"),
              QStringLiteral("Brave Browser"), QStringLiteral("Microsoft Edge"), QStringLiteral("Vivaldi")};
    default:
      return {};
  }
}

/// The effects of one run.
class LinuxScriptEffects final : public ScriptEffects {
 public:
  LinuxScriptEffects(RunningProcesses& processes, SystemLog& log, const WindowHistory& history,
                     ScriptFrontEnd* frontEnd)
      : processes_(processes), log_(log), history_(history), frontEnd_(frontEnd) {}

  bool activateApplication(const QString& name) override {
    activated_ = CreatorOf(name);
    return !processIDs(activated_).empty();
  }

  void activateThisProgram() override {
    if (frontEnd_ != nullptr) frontEnd_->activateThisProgram();
  }

  std::optional<BrowserWindow> frontWindow(const QString& application) override {
    return frontWindow(CreatorOf(application));
  }

  bool type(const Keystroke& keystroke) override {
    if (!keystroke.isCommandDown || activated_ != kFirefox) return false;
    if (keystroke.characters == u"l") return selectAddress();
    return keystroke.characters == u"c" && copyAddress();
  }

  std::optional<QString> clipboardText() override {
    if (!copied_.isNull()) return copied_;
    if (!allowsKeystrokes()) return std::nullopt;
    std::optional<QString> text = frontEnd_->clipboardText();
    if (!text || !hasTyped_) return text;
    const QString address = WebAddress(*text);
    return address.isNull() ? std::nullopt : std::optional(address);
  }

  void wait(std::chrono::milliseconds duration) override {
    if (copied_.isNull()) QThread::msleep(static_cast<unsigned long>(duration.count()));
  }

 private:
  [[nodiscard]] bool allowsKeystrokes() const {
    return frontEnd_ != nullptr && frontEnd_->allowsKeystrokes();
  }

  std::vector<std::int64_t> processIDs(FourCharCode creator) {
    std::vector<std::int64_t> processIDs;
    for (const RunningProcess& process : processes_.runningProcesses()) {
      if (process.creator == creator) processIDs.push_back(process.processID);
    }
    return processIDs;
  }

  std::vector<AccessibleWindow> windows(AccessibilityBus& bus, FourCharCode creator) {
    const std::vector<std::int64_t> running = processIDs(creator);
    return running.empty() ? std::vector<AccessibleWindow>()
                           : BrowserWindows(bus, running, AccessibleNames(creator), history_);
  }

  std::optional<BrowserWindow> frontWindow(FourCharCode creator) {
    const std::unique_ptr<AccessibilityBus> bus = AccessibilityBus::open();
    return bus ? FirstBrowserWindow(*bus, windows(*bus, creator)) : std::nullopt;
  }

  bool selectAddress() {
    const std::optional<BrowserWindow> window = frontWindow(activated_);
    selected_ = window ? window->documentURL : QString();
    return !selected_.isNull() || typeIntoFirefox('l');
  }

  bool copyAddress() {
    copied_ = selected_;
    return !copied_.isNull() || typeIntoFirefox('c');
  }

  bool typeIntoFirefox(char letter) {
    if (!allowsKeystrokes()) return false;
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY")) {
      log_.log(QStringLiteral("Firefox does not say its address, and Wayland lets no program type into it."));
      return false;
    }
    const std::unique_ptr<AccessibilityBus> bus = AccessibilityBus::open();
    hasTyped_ = bus && bringForward(*bus) && bus->typeWithControl(letter);
    return hasTyped_;
  }

  /// Keys go to the window in front. So that must be a window of Firefox, and say that it is in front.
  bool bringForward(AccessibilityBus& bus) {
    std::vector<AccessibleWindow> found = windows(bus, kFirefox);
    if (found.empty()) return false;
    if (found.front().states.isActive()) return true;
    frontEnd_->activateOtherWindow(processIDs(kFirefox), found.front().title);
    for (const QDeadlineTimer deadline(kMillisecondsToComeForward); !deadline.hasExpired();) {
      const std::optional<AccessibleStates> states = bus.states(found.front().object);
      if (!states || states->isActive()) return states.has_value();
      QThread::msleep(20);
    }
    return false;
  }

  RunningProcesses& processes_;
  SystemLog& log_;
  const WindowHistory& history_;
  ScriptFrontEnd* frontEnd_;
  FourCharCode activated_ = 0;
  QString selected_;  // null: not read
  QString copied_;    // null: not copied by reading
  bool hasTyped_ = false;
};

}  // namespace

std::optional<AEDescriptor> LinuxScriptHost::compileAndRun(const QString& source) {
  LinuxScriptEffects effects(processes_, log_, history_, frontEnd_);
  return RunScript(source, effects);
}

}  // namespace quillforth::platform
