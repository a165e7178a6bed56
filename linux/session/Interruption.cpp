// SPDX-License-Identifier: MIT

#include "linux/session/Interruption.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace quillforth::platform {

namespace {

std::atomic<bool> interrupted = false;
std::atomic<int> firstSignal = 0;
std::atomic<int> wakeDescriptor = -1;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

extern "C" void NoteSignal(int signalNumber) {
  const int savedError = errno;
  int none = 0;
  firstSignal.compare_exchange_strong(none, signalNumber);
  interrupted = true;
  const std::uint64_t one = 1;
  // A full counter is readable already.
  [[maybe_unused]] const ssize_t written = ::write(wakeDescriptor, &one, sizeof one);
  errno = savedError;
}

}  // namespace

Interruption::Interruption() {
  wakeDescriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  struct sigaction action = {};
  action.sa_handler = NoteSignal;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    ::sigaction(kSignals[i], nullptr, &previous_[i]);
    if (previous_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

Interruption::~Interruption() {
  for (std::size_t i = 0; i < std::size(kSignals); ++i) ::sigaction(kSignals[i], &previous_[i], nullptr);
  ::close(wakeDescriptor.exchange(-1));
  firstSignal = 0;
  interrupted = false;
}

const std::atomic<bool>& Interruption::flag() {
  return interrupted;
}

void Interruption::request() {
  interrupted = true;
}

int Interruption::descriptor() const {
  return wakeDescriptor;
}

int Interruption::exitStatus() const {
  return firstSignal == 0 ? 0 : 128 + firstSignal;
}

}  // namespace quillforth::platform
