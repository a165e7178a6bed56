// SPDX-License-Identifier: MIT
//
// Takes Apple events from their senders to the handlers of the application that they are addressed to.
//
// All applications that can be reached live in this process: each registers its dispatcher under its
// signature. Main thread; handlers run inside `send`, or from the main loop when nobody waits for a reply.
#pragma once

#include <QObject>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

#include "appleevents/AppleEvents.h"
#include "common/OwnerThread.h"
#include "common/Status.h"

namespace quillforth::platform {

enum class SendMode : std::int32_t { noReply = 1, waitReply = 3 };

inline constexpr std::int16_t kNormalPriority = 0;
inline constexpr std::int32_t kNoTimeOut = -2;

struct MouseRegion {
  std::int16_t top = 0;
  std::int16_t left = 0;
  std::int16_t bottom = 0;
  std::int16_t right = 0;
};

/// What an idle function may set while a sender waits.
struct IdleRequest {
  std::int32_t sleepTicks = 0;             ///< until the next call, in sixtieths of a second
  std::optional<MouseRegion> mouseRegion;  ///< leaving it is a reason to call sooner; may be absent
};
/// Called while a sender waits for its reply; true gives up waiting.
using IdleFunction = bool (*)(IdleRequest& request);

struct SendOptions {
  SendMode mode = SendMode::waitReply;
  std::int16_t priority = kNormalPriority;
  std::int32_t timeoutTicks = kNoTimeOut;  ///< how long to wait for a reply
  IdleFunction idle = nullptr;
};

/// What code that sends events needs.
class AppleEventSender {
 public:
  virtual ~AppleEventSender() = default;
  /// With `SendMode::noReply`, 0 means that the event is queued, and `reply` is the null event. The failure
  /// of a handler does not make the send fail: it is in the reply.
  [[nodiscard]] virtual common::Status send(const AppleEvent& event, const SendOptions& options,
                                            AppleEvent& reply) = 0;
};

/// An application's handlers, by event class and ID.
class AppleEventDispatcher {
 public:
  /// What it returns, unless 0, becomes the reply's error number. `reply` is the null event when nobody
  /// waits.
  using Handler = std::function<common::Status(const AppleEvent& event, AppleEvent& reply)>;

  /// Replaces an earlier handler for the same events.
  void installHandler(common::FourCharCode eventClass, common::FourCharCode eventID, Handler handler);
  /// Does nothing where there is no handler. A handler that runs must not remove itself.
  void removeHandler(common::FourCharCode eventClass, common::FourCharCode eventID);
  /// -1708 when no handler takes such events.
  [[nodiscard]] common::Status dispatch(const AppleEvent& event, AppleEvent& reply) const;

 private:
  std::map<std::pair<common::FourCharCode, common::FourCharCode>, Handler> handlers_;
};

class AppleEventManager final : public QObject, public AppleEventSender {
 public:
  /// `dispatcher` outlives its registration. An earlier one of the same signature is replaced.
  void registerTarget(common::FourCharCode signature, const AppleEventDispatcher& dispatcher);
  void unregisterTarget(common::FourCharCode signature) { targets_.erase(signature); }

  /// Targets answer at once: nothing is waited for, so no time-out ever passes, and no idle function is
  /// called. -1716 when the target address is not an application signature; -600 when nobody registered under
  /// it.
  [[nodiscard]] common::Status send(const AppleEvent& event, const SendOptions& options,
                                    AppleEvent& reply) override;

 protected:
  void customEvent(QEvent* queued) override;

 private:
  [[nodiscard]] const AppleEventDispatcher* dispatcherFor(common::FourCharCode signature) const;
  [[nodiscard]] common::Status sendAndWait(const AppleEvent& event, common::FourCharCode signature,
                                           AppleEvent& reply);
  std::int16_t newReturnID();

  common::OwnerThread owner_;
  std::map<common::FourCharCode, const AppleEventDispatcher*> targets_;
  std::int16_t lastReturnID_ = 0;
};

}  // namespace quillforth::platform
