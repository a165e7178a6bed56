// SPDX-License-Identifier: MIT
//
// Compiles a script and carries it out.
#pragma once

#include <QStringView>
#include <chrono>
#include <optional>

#include "platform/AppleEvents.h"
#include "platform/ScriptEffects.h"

namespace quillforth::platform {

/// All delays of a script together last no longer than this; the rest of a longer one is left out.
inline constexpr std::chrono::milliseconds kMaximumScriptDelay{5000};
/// A list that holds more values than this, those in its lists included, ends its script.
inline constexpr int kMaximumScriptListSize = 1000;

/// The value of the sentence that was carried out last, as a script host gives it. Nothing comes of a text
/// that does not compile, and none of its sentences is carried out. Main thread.
[[nodiscard]] std::optional<AEDescriptor> RunScript(QStringView source, ScriptEffects& effects);

}  // namespace quillforth::platform
