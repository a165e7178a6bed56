// SPDX-License-Identifier: MIT

#include "appleevents/AppleEventManager.h"

#include <QCoreApplication>
#include <QEvent>
#include <limits>

namespace quillforth::platform {

namespace {

// An event that nobody waits for, in the main loop's queue. A manager gets no other custom events.
class QueuedEvent final : public QEvent {
 public:
  explicit QueuedEvent(AppleEvent event) : QEvent(User), event_(std::move(event)) {}
  [[nodiscard]] const AppleEvent& event() const { return event_; }

 private:
  AppleEvent event_;
};

std::optional<common::FourCharCode> SignatureOf(const AppleEvent& event) {
  return CodeValue(event.target(), descriptor_type::kApplicationSignature);
}

}  // namespace

void AppleEventDispatcher::installHandler(common::FourCharCode eventClass, common::FourCharCode eventID,
                                          Handler handler) {
  handlers_[{eventClass, eventID}] = std::move(handler);
}

void AppleEventDispatcher::removeHandler(common::FourCharCode eventClass, common::FourCharCode eventID) {
  handlers_.erase({eventClass, eventID});
}

common::Status AppleEventDispatcher::dispatch(const AppleEvent& event, AppleEvent& reply) const {
  const auto found = handlers_.find({event.eventClass(), event.eventID()});
  return found == handlers_.end() ? common::kAEEventNotHandled : found->second(event, reply);
}

void AppleEventManager::registerTarget(common::FourCharCode signature,
                                       const AppleEventDispatcher& dispatcher) {
  targets_[signature] = &dispatcher;
}

const AppleEventDispatcher* AppleEventManager::dispatcherFor(common::FourCharCode signature) const {
  const auto found = targets_.find(signature);
  return found == targets_.end() ? nullptr : found->second;
}

std::int16_t AppleEventManager::newReturnID() {
  constexpr std::int16_t kLast = std::numeric_limits<std::int16_t>::max();
  lastReturnID_ = lastReturnID_ == kLast ? std::int16_t{1} : static_cast<std::int16_t>(lastReturnID_ + 1);
  return lastReturnID_;
}

common::Status AppleEventManager::send(const AppleEvent& event, const SendOptions& options,
                                       AppleEvent& reply) {
  owner_.check();
  reply = AppleEvent();
  const std::optional<common::FourCharCode> signature = SignatureOf(event);
  if (!signature) return common::kAEUnknownAddressType;
  if (dispatcherFor(*signature) == nullptr) return common::kProcessNotFound;
  AppleEvent sent = event;
  if (sent.returnID() == kAutoGenerateReturnID) sent.setReturnID(newReturnID());
  if (options.mode == SendMode::noReply) {
    QCoreApplication::postEvent(this, new QueuedEvent(sent));
    return common::kNoError;
  }
  return sendAndWait(sent, *signature, reply);
}

void AppleEventManager::customEvent(QEvent* queued) {
  const AppleEvent& event = static_cast<QueuedEvent*>(queued)->event();
  AppleEvent unwanted;
  const AppleEventDispatcher* dispatcher = dispatcherFor(SignatureOf(event).value_or(0));
  if (dispatcher != nullptr) static_cast<void>(dispatcher->dispatch(event, unwanted));
}

common::Status AppleEventManager::sendAndWait(const AppleEvent& event, common::FourCharCode signature,
                                              AppleEvent& reply) {
  const AppleEventDispatcher* dispatcher = dispatcherFor(signature);
  if (dispatcher == nullptr) return common::kProcessNotFound;
  reply = AppleEvent(common::FourCC("aevt"), common::FourCC("ansr"), AEDescriptor(), event.returnID(),
                     event.transactionID());
  const common::Status status = dispatcher->dispatch(event, reply);
  if (status != common::kNoError) {
    reply.setParameter(event_keyword::kErrorNumber, Int32Descriptor(status));
  }
  return common::kNoError;
}

}  // namespace quillforth::platform
