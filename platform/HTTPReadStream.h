// SPDX-License-Identifier: MIT
//
// The answer to one request, as a stream of events: opened, bytes are there, ended, failed, deadline passed.
//
// A stream belongs to one thread, the one that calls `run`; all events come from inside `run`, one at a time.
// Different streams may be used on different threads at once.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "common/BoundedText.h"
#include "net/URL.h"

namespace quillforth::platform {

/// The fields of a response header, in the order of their arrival. A value; any thread.
class HTTPResponseHeader {
 public:
  void addField(std::string name, std::string value) {
    fields_.emplace_back(std::move(name), std::move(value));
  }
  /// Appends the next line of a value that was folded. Does nothing when there is no field yet.
  void continueField(std::string_view text) {
    if (fields_.empty()) return;
    std::string& value = fields_.back().second;
    value.append(value.empty() ? "" : " ").append(text);
  }
  /// The value of the first field called `name` in any letter case, without blanks around it; bytes as sent.
  [[nodiscard]] std::optional<std::string_view> valueOfField(std::string_view name) const {
    const std::vector<std::string_view> values = valuesOfField(name);
    return values.empty() ? std::nullopt : std::optional(values.front());
  }
  /// The values of all such fields.
  [[nodiscard]] std::vector<std::string_view> valuesOfField(std::string_view name) const {
    std::vector<std::string_view> values;
    for (const auto& [fieldName, value] : fields_) {
      if (common::EqualsNoCase(fieldName, name)) values.push_back(value);
    }
    return values;
  }

 private:
  std::vector<std::pair<std::string, std::string>> fields_;
};

/// A request without a body.
struct HTTPRequest {
  std::string method;  ///< an HTTP token, such as "HEAD"
  URL url;             ///< a user name or password in it is not sent
  std::string userAgent;
  std::string userName;  ///< Basic authentication is offered when this and the password are both non-empty
  std::string password;
};

enum class StreamEvent {
  openCompleted,      ///< comes first
  hasBytesAvailable,  ///< again and again until all has been read
  errorOccurred,      ///< the last event
  endEncountered,     ///< the last event
};

class HTTPReadStreamClient {
 public:
  virtual ~HTTPReadStreamClient() = default;
  virtual void streamEvent(StreamEvent event) = 0;
  /// The deadline has passed. It counts once; then there is no deadline until a new one is set.
  virtual void streamDeadlinePassed() = 0;
};

class HTTPReadStream {
 public:
  using Clock = std::chrono::steady_clock;

  virtual ~HTTPReadStream() = default;
  /// Starts the exchange; false when that is impossible. `client` outlives `run`.
  [[nodiscard]] virtual bool open(HTTPReadStreamClient& client) = 0;
  /// Moves the deadline. Without a value it never passes.
  virtual void setDeadline(std::optional<Clock::time_point> deadline) = 0;
  /// Delivers events until the last one, or until `close`. Follows redirects.
  virtual void run() = 0;
  /// Takes body bytes that have arrived, without waiting. Gives their number; 0 at the end; a negative number
  /// after an error.
  [[nodiscard]] virtual std::ptrdiff_t read(std::span<std::byte> buffer) = 0;
  /// The header of the final response, not of redirects and interim responses. Nothing when no response was
  /// HTTP. Not after `close`.
  [[nodiscard]] virtual std::optional<HTTPResponseHeader> responseHeader() = 0;
  /// No event follows, and `run` returns. May be called from an event; the stream may not be destroyed there.
  virtual void close() = 0;
};

class HTTPReadStreamFactory {
 public:
  virtual ~HTTPReadStreamFactory() = default;
  /// Null when no stream can be made of `request`: not http, https or ftp, or texts that no header can hold.
  /// Any thread. The factory outlives its streams.
  [[nodiscard]] virtual std::unique_ptr<HTTPReadStream> createStream(const HTTPRequest& request) = 0;
  /// Waits for the end of a thread that runs a stream to `url`, as it was given. A front end with a window
  /// keeps the window drawn meanwhile.
  virtual void join(std::thread& worker, std::string_view /*url*/) { worker.join(); }
  /// As long as it is true, every stream fails soon, including those that run. Any thread.
  virtual void setGivenUp(bool /*isGivenUp*/) {}
};

}  // namespace quillforth::platform
