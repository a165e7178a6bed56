// SPDX-License-Identifier: MIT
//
// Read streams that play a script instead of asking anyone.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/HTTPReadStream.h"

namespace quillforth::tests {

/// One stream's script, and what was asked of the factory. A script calls the client of the stream it is
/// given.
class FakeReadStreams final : public platform::HTTPReadStreamFactory {
 public:
  class Stream;
  using Script = std::function<void(Stream& stream)>;

  Script script;
  bool refusesStream = false;
  bool refusesOpen = false;
  std::vector<platform::HTTPRequest> requests;
  int deadlinesSet = 0;
  int closes = 0;
  int streamsAlive = 0;
  bool hasDeadline = false;

  class Stream final : public platform::HTTPReadStream {
   public:
    explicit Stream(FakeReadStreams& owner) : owner_(owner) { ++owner_.streamsAlive; }
    ~Stream() override { --owner_.streamsAlive; }
    bool open(platform::HTTPReadStreamClient& client) override {
      client_ = &client;
      return !owner_.refusesOpen;
    }
    void setDeadline(std::optional<Clock::time_point> deadline) override {
      owner_.hasDeadline = deadline.has_value();
      if (deadline) ++owner_.deadlinesSet;
    }
    void run() override { owner_.script(*this); }
    std::ptrdiff_t read(std::span<std::byte> buffer) override {
      EXPECT_EQ(buffer.size(), 1'024'000U);
      const std::ptrdiff_t count = next_;
      if (count > 0) std::memset(buffer.data(), 'x', static_cast<std::size_t>(count));
      return count;
    }
    std::optional<platform::HTTPResponseHeader> responseHeader() override {
      EXPECT_FALSE(isClosed_);
      platform::HTTPResponseHeader header;
      header.addField("Content-Type", "text/html");
      return header;
    }
    void close() override {
      ++owner_.closes;
      isClosed_ = true;
    }

    [[nodiscard]] platform::HTTPReadStreamClient& client() { return *client_; }
    void event(platform::StreamEvent event) { client_->streamEvent(event); }
    /// The next read gives `count`.
    void bytes(std::ptrdiff_t count) {
      next_ = count;
      event(platform::StreamEvent::hasBytesAvailable);
    }

   private:
    FakeReadStreams& owner_;
    platform::HTTPReadStreamClient* client_ = nullptr;
    std::ptrdiff_t next_ = 0;
    bool isClosed_ = false;
  };

  std::unique_ptr<platform::HTTPReadStream> createStream(const platform::HTTPRequest& request) override {
    requests.push_back(request);
    return refusesStream ? nullptr : std::make_unique<Stream>(*this);
  }
};

}  // namespace quillforth::tests
