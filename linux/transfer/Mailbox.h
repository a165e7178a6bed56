// SPDX-License-Identifier: MIT
//
// Carries messages to another thread, in order, and tells an event loop when there are some.
//
// The descriptor (eventfd) is readable as long as messages wait, and until the receiver has found the box
// empty; so a loop that polls it cannot miss a message, and neither can a nested one. A sender makes a system
// call only when the receiver may be asleep.
#pragma once

#include <sys/eventfd.h>

#include <cerrno>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

/// Any thread may post; one takes.
template <typename Message>
class Mailbox {
 public:
  /// Throws std::system_error when the process has no descriptor left.
  Mailbox() : signal_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!signal_.isOpen()) throw std::system_error(errno, std::generic_category());
  }
  Mailbox(const Mailbox&) = delete;
  Mailbox& operator=(const Mailbox&) = delete;

  void post(Message message) {
    postQuietly(std::move(message));
    signal();
  }

  /// Does not wake the receiver. Afterwards either `signal` is called, or the sender takes the message
  /// itself.
  void postQuietly(Message message) {
    const std::lock_guard lock(mutex_);
    messages_.push_back(std::move(message));
  }

  /// Empties `messages`; the receiver wakes once for all of them.
  void postAll(std::vector<Message>& messages) {
    if (messages.empty()) return;
    {
      const std::lock_guard lock(mutex_);
      for (Message& message : messages) messages_.push_back(std::move(message));
    }
    messages.clear();
    signal();
  }

  void signal() {
    bool mustSignal = false;
    {
      const std::lock_guard lock(mutex_);
      mustSignal = !std::exchange(isSignalled_, true);
    }
    if (mustSignal) ::eventfd_write(signal_.get(), 1);
  }

  /// The next message. Repeat this until there is none: only then is the descriptor no longer readable.
  [[nodiscard]] std::optional<Message> take() {
    const std::lock_guard lock(mutex_);
    eventfd_t count = 0;
    const bool isToBeCleared = messages_.empty() && isSignalled_;
    if (isToBeCleared && ::eventfd_read(signal_.get(), &count) == 0) isSignalled_ = false;
    return next();
  }

  /// The same for a receiver that will take again before it sleeps. The descriptor stays readable, so that
  /// senders pay for nothing meanwhile.
  [[nodiscard]] std::optional<Message> takeAwake() {
    const std::lock_guard lock(mutex_);
    return next();
  }

  [[nodiscard]] bool isEmpty() {
    const std::lock_guard lock(mutex_);
    return messages_.empty();
  }

  [[nodiscard]] int descriptor() const { return signal_.get(); }

 private:
  std::optional<Message> next() {
    if (messages_.empty()) return std::nullopt;
    std::optional<Message> message(std::move(messages_.front()));
    messages_.pop_front();
    return message;
  }

  FileDescriptor signal_;
  std::mutex mutex_;
  std::deque<Message> messages_;
  bool isSignalled_ = false;  // written to the descriptor, or about to be, and not read yet
};

}  // namespace quillforth::platform
