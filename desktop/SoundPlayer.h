// SPDX-License-Identifier: MIT
//
// Plays a sound in the background.
//
// The sound server's library is in a module of its own (desktop/PlaySound.cpp), which is loaded and run on a
// thread of its own when the first sound is played. Without the module or a server there is silence. Main
// thread.
#pragma once

#include <QPointer>
#include <QThread>

#include "platform/Sound.h"

namespace quillforth::desktop {

/// What the module offers: plays the sound on the default device, and returns when it has been heard, when
/// the calling thread is asked to end, or at once without a sound server. Any thread but the main one.
using PlaySoundFunction = void (*)(const platform::Sound& sound);

/// The name, in the module, of a function of that kind.
inline constexpr const char* kPlaySoundName = "QuillforthPlaySound";

class SoundPlayer {
 public:
  SoundPlayer() = default;
  /// Breaks a sound off. Waits for a moment only: a server that hangs is left to the end of the process.
  ~SoundPlayer();
  SoundPlayer(const SoundPlayer&) = delete;
  SoundPlayer& operator=(const SoundPlayer&) = delete;

  /// Begins to play a copy of it, unless one is playing.
  void play(const platform::Sound& sound);

 private:
  QPointer<QThread> thread_;  // goes by itself when the sound is over
};

}  // namespace quillforth::desktop
