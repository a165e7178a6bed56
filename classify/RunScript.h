// SPDX-License-Identifier: MIT
//
// The string extension that runs a string as a script.
#pragma once

#include <QString>
#include <optional>

#include "platform/ScriptHost.h"

namespace quillforth::classify {

/// The text of what the script `source` gives; nothing on every failure, and for a result without a text.
///
/// Of a list it is the text of the item at 0. Items are counted from 1, so that every list gives nothing;
/// that is kept. Blocks while the script runs. Main thread.
[[nodiscard]] std::optional<QString> runScript(const QString& source, platform::ScriptHost& host);

}  // namespace quillforth::classify
