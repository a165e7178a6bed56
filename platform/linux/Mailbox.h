// SPDX-License-Identifier: MIT
//
// Carries messages to another thread, in order, and tells an event loop when there are some.
//
// The descriptor (eventfd) is readable exactly as long as messages wait, so a loop that polls it, a nested
// one included, can neither miss a message nor wake for nothing; and a sender pays for a system call only
// when the box was empty.
#pragma once

#include <sys/eventfd.h>

#include <cerrno>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/FileDescriptor.h"

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
    bool wasEmpty = false;
    {
      const std::lock_guard lock(mutex_);
      wasEmpty = messages_.empty();
      messages_.push_back(std::move(message));
      signalCount_ += wasEmpty ? 1 : 0;
    }
    if (wasEmpty) ::eventfd_write(signal_.get(), 1);
  }

  /// Empties `messages`; the receiver wakes once for all of them.
  void postAll(std::vector<Message>& messages) {
    if (messages.empty()) return;
    bool wasEmpty = false;
    {
      const std::lock_guard lock(mutex_);
      wasEmpty = messages_.empty();
      for (Message& message : messages) messages_.push_back(std::move(message));
      signalCount_ += wasEmpty ? 1 : 0;
    }
    messages.clear();
    if (wasEmpty) ::eventfd_write(signal_.get(), 1);
  }

  /// To be repeated until there is none: only then the descriptor is no longer readable.
  [[nodiscard]] std::optional<Message> take() {
    const std::lock_guard lock(mutex_);
    if (messages_.empty()) {
      eventfd_t count = 0;
      if (signalCount_ > 0 && ::eventfd_read(signal_.get(), &count) == 0) signalCount_ -= count;
      return std::nullopt;
    }
    std::optional<Message> message(std::move(messages_.front()));
    messages_.pop_front();
    return message;
  }

  [[nodiscard]] int descriptor() const { return signal_.get(); }

 private:
  FileDescriptor signal_;
  std::mutex mutex_;
  std::deque<Message> messages_;
  eventfd_t signalCount_ = 0;  // written to the descriptor, or about to be, and not read yet
};

}  // namespace quillforth::platform
