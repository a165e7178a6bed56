// SPDX-License-Identifier: MIT
//
// A short sound, whole in memory. Pure values; the loader may be called from any thread.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

namespace quillforth::platform {

struct Sound {
  std::vector<std::int16_t> samples;  ///< frame by frame, one sample for each channel
  int channels = 0;
  int sampleRate = 0;  ///< frames a second
};

class SoundLoader {
 public:
  virtual ~SoundLoader() = default;
  /// Reads the file's data; null when that fails or the sound is unreasonably long.
  [[nodiscard]] virtual std::unique_ptr<Sound> load(const QString& path) = 0;
};

}  // namespace quillforth::platform
