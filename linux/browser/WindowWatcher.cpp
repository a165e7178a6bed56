// SPDX-License-Identifier: MIT

#include "linux/browser/WindowWatcher.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

#include "linux/browser/LinuxSessionAccessibility.h"

namespace quillforth::platform {

void WindowHistory::remember(BusObject window) {
  const std::lock_guard lock(mutex_);
  std::erase(windows_, window);
  std::size_t others = 0;
  std::erase_if(windows_, [&](const BusObject& other) {
    return other.program == window.program && ++others >= kWindowsOfAProgram;
  });
  windows_.push_front(std::move(window));
  if (windows_.size() > kWindows) windows_.pop_back();
}

std::size_t WindowHistory::age(const BusObject& window) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::find(windows_.begin(), windows_.end(), window);
  return found == windows_.end() ? kWindows : static_cast<std::size_t>(found - windows_.begin());
}

namespace {

constexpr int kMilliseconds = 2500;  // for connecting
constexpr std::size_t kLongestPath = 255;

constexpr const char* kSwitchChanged =
    "type='signal',sender='org.a11y.Bus',path='/org/a11y/bus',"
    "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged'";
constexpr const char* kLauncherChanged =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.a11y.Bus'";
constexpr const char* kRegistryChanged =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg0='org.a11y.atspi.Registry'";
constexpr const char* kActivation = "type='signal',interface='org.a11y.atspi.Event.Window',member='Activate'";

/// What the thread runs.
class Watch {
 public:
  Watch(WindowHistory& history, int stop) : history_(history), stop_(stop) {}

  void run() {
    session_ = OpenSessionBus(QDeadlineTimer(kMilliseconds));
    if (!session_ || !hears<&Watch::noteChange>(*session_, kSwitchChanged) ||
        !hears<&Watch::noteChange>(*session_, kLauncherChanged)) {
      return;
    }
    bool isMore = true;
    while (waitForMessages(isMore)) {
      if (isChanged_) followSwitch();
      const int ofSession = sd_bus_process(session_.get(), nullptr);
      const int ofEvents = events_ ? sd_bus_process(events_.get(), nullptr) : 0;
      if (ofSession < 0) return;
      if (ofEvents < 0) events_.reset();
      isMore = ofSession > 0 || ofEvents > 0;
    }
  }

 private:
  /// From now on `hear` is called with each message that matches. Does not wait for the bus. When the bus
  /// refuses, its connection ends.
  template <void (Watch::*hear)(sd_bus_message*)>
  bool hears(sd_bus& bus, const char* match) {
    const auto call = [](sd_bus_message* message, void* self, sd_bus_error*) {
      (static_cast<Watch*>(self)->*hear)(message);
      return 0;
    };
    return sd_bus_add_match_async(&bus, nullptr, match, call, nullptr, this) >= 0;
  }

  /// False when the thread is to end. Does not wait while messages that have been read are left.
  bool waitForMessages(bool isMore) {
    std::array<pollfd, 3> waiting{pollfd{stop_, POLLIN, 0}, waitingFor(session_.get()),
                                  waitingFor(events_.get())};
    const int found = ::poll(waiting.data(), waiting.size(), isMore ? 0 : -1);
    return found <= 0 || waiting[0].revents == 0;
  }
  static pollfd waitingFor(sd_bus* bus) {
    if (bus == nullptr) return {-1, 0, 0};
    return {sd_bus_get_fd(bus), static_cast<short>(sd_bus_get_events(bus)), 0};
  }

  void noteChange(sd_bus_message* /*message*/) { isChanged_ = true; }

  void followSwitch() {
    isChanged_ = false;
    const QDeadlineTimer deadline(kMilliseconds);
    if (!IsAccessibilityOn(*session_, deadline)) return events_.reset();
    if (events_) return;
    events_ = OpenAccessibilityBus(*session_, deadline);
    if (!events_) return;
    if (!hears<&Watch::noteActivation>(*events_, kActivation) ||
        !hears<&Watch::registerAgain>(*events_, kRegistryChanged)) {
      return events_.reset();
    }
    registerAgain(nullptr);
  }

  /// Programs send events only while a program is registered for them.
  void registerAgain(sd_bus_message* /*message*/) {
    const BusMessage call = NewCall(*events_, {"org.a11y.atspi.Registry", "/org/a11y/atspi/registry"},
                                    "org.a11y.atspi.Registry", "RegisterEvent", "s", "window:activate");
    if (call && sd_bus_message_set_expect_reply(call.get(), 0) >= 0) {
      sd_bus_send(events_.get(), call.get(), nullptr);
    }
  }

  void noteActivation(sd_bus_message* message) {
    const char* program = sd_bus_message_get_sender(message);
    const char* path = sd_bus_message_get_path(message);
    if (program != nullptr && path != nullptr && std::strlen(path) <= kLongestPath) {
      history_.remember({program, path});
    }
  }

  WindowHistory& history_;
  int stop_;
  Bus session_;
  Bus events_;  // null while accessibility is off
  bool isChanged_ = true;
};

}  // namespace

WindowWatcher::WindowWatcher(WindowHistory& history) : stop_(::eventfd(0, EFD_CLOEXEC)) {
  if (!stop_.isOpen()) return;
  try {
    thread_ = std::thread([&history, stop = stop_.get()] { Watch(history, stop).run(); });
  } catch (const std::system_error&) {
    // Without a thread, no window is ever known to have been active.
  }
}

WindowWatcher::~WindowWatcher() {
  if (!thread_.joinable()) return;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(stop_.get(), &one, sizeof one);
  thread_.join();
}

}  // namespace quillforth::platform
