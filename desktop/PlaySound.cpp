// SPDX-License-Identifier: MIT
//
// The sound module: plays by the sound server (PulseAudio's protocol, which PipeWire speaks, too).

#include <pulse/simple.h>

#include <QThread>
#include <algorithm>
#include <memory>

#include "desktop/SoundPlayer.h"

namespace {

constexpr pa_usec_t kStepMicroseconds = 20'000;

// Waits until what was handed over has been heard; false when the thread is asked to end before that.
bool WaitUntilHeard(pa_simple* stream) {
  while (const pa_usec_t left = pa_simple_get_latency(stream, nullptr)) {
    if (left == static_cast<pa_usec_t>(-1) || left <= kStepMicroseconds) break;
    if (QThread::currentThread()->isInterruptionRequested()) return false;
    QThread::usleep(static_cast<unsigned long>(kStepMicroseconds));
  }
  return true;
}

}  // namespace

extern "C" Q_DECL_EXPORT void QuillforthPlaySound(const quillforth::platform::Sound& sound) {
  const pa_sample_spec format = {PA_SAMPLE_S16NE, static_cast<std::uint32_t>(std::max(sound.sampleRate, 0)),
                                 static_cast<std::uint8_t>(std::clamp(sound.channels, 0, 255))};
  if (!pa_sample_spec_valid(&format)) return;
  constexpr auto kServersChoice = static_cast<std::uint32_t>(-1);
  // Playing begins with the first sample.
  const pa_buffer_attr buffer = {kServersChoice, kServersChoice, 0, kServersChoice, kServersChoice};
  const std::unique_ptr<pa_simple, decltype(&pa_simple_free)> stream(
      pa_simple_new(nullptr, "Quillforth", PA_STREAM_PLAYBACK, nullptr, "Queue complete", &format, nullptr,
                    &buffer, nullptr),
      &pa_simple_free);
  if (!stream) return;
  const std::size_t size = sound.samples.size() * sizeof sound.samples[0];
  if (pa_simple_write(stream.get(), sound.samples.data(), size, nullptr) != 0) return;
  if (WaitUntilHeard(stream.get())) pa_simple_drain(stream.get(), nullptr);
}
