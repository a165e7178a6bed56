// SPDX-License-Identifier: MIT
//
// What the sound module offers. Any thread but the main one: it waits until the sound is over.
#pragma once

#include "platform/Sound.h"

namespace quillforth::desktop {

/// Plays it on the default device, in an event loop of the calling thread, and returns when it is over, when
/// the loop is ended, or after a while in any case. At once without a device.
using PlaySoundFunction = void (*)(const platform::Sound& sound);

/// The name, in the module, of a function of that kind.
inline constexpr const char* kPlaySoundName = "QuillforthPlaySound";

}  // namespace quillforth::desktop
