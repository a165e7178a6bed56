// SPDX-License-Identifier: MIT
//
// Plays a sound in the background.
//
// What it takes to reach a sound device is much, and is slow to load: it is in a module of its own
// (desktop/sound/PlaySound.cpp), which is loaded and run on a thread of its own when the first sound is
// played. Without the module or a device there is silence. Main thread.
#pragma once

#include <QPointer>
#include <QThread>

#include "platform/Sound.h"

namespace quillforth::desktop {

class SoundPlayer {
 public:
  SoundPlayer() = default;
  /// Breaks a sound off. Waits for a moment only: a device that hangs is left to the end of the process.
  ~SoundPlayer();
  SoundPlayer(const SoundPlayer&) = delete;
  SoundPlayer& operator=(const SoundPlayer&) = delete;

  /// Begins to play a copy of it, unless one is playing.
  void play(const platform::Sound& sound);

 private:
  QPointer<QThread> thread_;  // goes by itself when the sound is over
};

}  // namespace quillforth::desktop
