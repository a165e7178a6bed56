// SPDX-License-Identifier: MIT
//
// A transfer whose body goes through memory to a thread that waits for it.
//
// The body is handed over in pieces: when the reader is slow, the transfer pauses. A Fetch belongs to one
// thread, which need not be the one that made it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "linux/transfer/TransferRequest.h"
#include "linux/transfer/TransferText.h"
#include "linux/transfer/TransferThread.h"
#include "platform/HTTPReadStream.h"

namespace quillforth::platform {

class Fetch {
 public:
  using Clock = std::chrono::steady_clock;

  /// Starts. `thread` outlives this.
  Fetch(TransferThread& thread, TransferRequest request);
  /// Aborts the transfer if it has not ended.
  ~Fetch();
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;

  /// Waits until there are bytes, or the end; false when there are neither by `until`, or a tenth of a second
  /// after `thread` gave up.
  [[nodiscard]] bool wait(Clock::time_point until);
  /// The bytes that have come since the last call.
  [[nodiscard]] std::string takeBytes();
  /// Nothing until all bytes have been taken.
  [[nodiscard]] std::optional<TransferOutcome> outcome() const;
  /// The header of the answer that counted. Nothing when it was not HTTP, or has not ended well.
  [[nodiscard]] std::optional<HTTPResponseHeader> header() const;
  /// The URL that the answer came from, after redirects, without credentials and fragment.
  [[nodiscard]] std::string url() const;

 private:
  struct Shared;
  class Body;

  TransferThread& thread_;
  const TransferId id_;
  const std::shared_ptr<Shared> shared_;
};

}  // namespace quillforth::platform
