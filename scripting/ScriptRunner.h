// SPDX-License-Identifier: MIT
//
// Compiles a script and carries it out.
#pragma once

#include <QStringView>
#include <chrono>
#include <optional>

#include "appleevents/AppleEvents.h"
#include "scripting/ScriptEffects.h"

namespace quillforth::platform {

/// All delays of a script together last no longer than this; a longer one is cut short.
inline constexpr std::chrono::milliseconds kMaximumScriptDelay{5000};
/// A list that holds more values than this, counting those in its lists, ends its script.
inline constexpr int kMaximumScriptListSize = 1000;

/// The value of the sentence that was carried out last, as a script host gives it. Nothing comes of a text
/// that does not compile, and none of its sentences is carried out. Blocks; any thread, on which
/// `effects` is called.
[[nodiscard]] std::optional<AEDescriptor> RunScript(QStringView source, ScriptEffects& effects);

}  // namespace quillforth::platform
