// SPDX-License-Identifier: MIT
//
// Reads sounds with libsndfile. Any thread.
#pragma once

#include "platform/Sound.h"

namespace quillforth::platform {

class SndfileSoundLoader final : public SoundLoader {
 public:
  static constexpr std::int64_t kMostSamples = std::int64_t{4} * 1024 * 1024;
  static constexpr int kMostChannels = 8;
  static constexpr int kHighestSampleRate = 192'000;

  /// Null also for a file that holds less than it announces.
  [[nodiscard]] std::unique_ptr<Sound> load(const QString& path) override;
};

}  // namespace quillforth::platform
